#include "Ossa/Surfaces/LitScene.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssViewedNode.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThreadPool>

#include <algorithm>
#include <new>
#include <utility>

namespace {

constexpr float keyLight = 0.7F;
constexpr int restInterval = 200;        // milliseconds
constexpr int displacingInterval = 120;  // milliseconds
constexpr int mostTriangles = 1'000'000; // of a mesh that stands out: it has to be turned
constexpr int enoughLevels = 6;

/// As finely as can be turned; plain where there is no memory for it.
std::shared_ptr<const OssRdGeometry> displaced(const OssRdGeometry &geometry,
                                               const std::vector<OssRdDisplacement::Skin> &skins)
{
    int levels = 0;
    std::size_t triangles = geometry.indices.size() / 3;
    while (levels < enoughLevels && 4 * triangles <= mostTriangles) {
        triangles *= 4;
        ++levels;
    }
    try {
        return OssRdDisplacement::of(geometry, skins,
                                     OssRdDisplacement::levelsFor(geometry, levels));
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

} // namespace

LitScene::LitScene(QObject *parent)
    : QObject(parent)
{
    m_scene.keyLight = glm::vec3(keyLight);
    connect(OssStatusManager::instance(), &OssStatusManager::stopAsked, this, [this] {
        if (m_told < 1000)
            OssStatusManager::instance()->showMessage(
                tr("The Viewer's picture was stopped. The next change begins it again."));
        halt();
    });
    m_displacing.setSingleShot(true);
    m_displacing.setInterval(displacingInterval);
    connect(&m_displacing, &QTimer::timeout, this, &LitScene::displace);
    m_touching.setSingleShot(true);
    connect(&m_touching, &QTimer::timeout, this, &LitScene::takeTouches);
    m_others.setSingleShot(true);
    m_others.setInterval(restInterval);
    connect(&m_others, &QTimer::timeout, this, &LitScene::followOthers);
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, [this] {
        if (m_isActive && m_pieces.size() > 1)
            m_others.start();
    });
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this, [this] {
        m_others.stop();
        m_touched.clear();
        m_pieces.clear();
        m_geometries.clear();
        m_displaced.clear();
    });
    connect(OssColorManagement::instance(), &OssColorManagement::changed, this, [this] {
        setSurroundings(m_surroundingsName); // light in other numbers
        follow();
    });
}

LitScene::~LitScene() = default;

template <class Work, class Use>
void LitScene::elsewhere(Work work, Use use)
{
    class Task : public QRunnable
    {
    public:
        Task(QPointer<LitScene> scene, Work work, Use use)
            : m_scene(std::move(scene))
            , m_work(std::move(work))
            , m_use(std::move(use))
        {
        }

        void run() override
        {
            QMetaObject::invokeMethod(
                qApp,
                [scene = m_scene, use = m_use, made = m_work()] {
                    if (scene)
                        use(made);
                },
                Qt::QueuedConnection);
        }

    private:
        QPointer<LitScene> m_scene;
        Work m_work;
        Use m_use;
    };

    QThreadPool::globalInstance()->start(
        new Task(this, std::move(work), std::move(use))); // the pool takes it
}

void LitScene::setActive(bool active)
{
    if (active == m_isActive)
        return;
    m_isActive = active;
    if (!active) {
        halt();
        return;
    }
    if (!m_scene.probe)
        setSurroundings(m_surroundingsName);
    follow();
}

void LitScene::setResolution(int resolution)
{
    m_resolution = resolution;
    follow();
}

void LitScene::setAlone(bool alone)
{
    m_isAlone = alone;
    for (const auto &piece : m_pieces)
        piece->pixels.setFirst(alone);
}

void LitScene::setCompany(bool company)
{
    m_hasCompany = company;
    follow();
}

void LitScene::halt()
{
    m_others.stop();
    for (const auto &piece : m_pieces)
        piece->pixels.stop();
    tellProgress();
}

// --- pieces

QVector<LitSurface> LitScene::wanted() const
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    const OssGeoEntity *entity = network ? network->geoEntity() : nullptr;
    if (!project || !entity)
        return {};
    QVector<LitSurface> surfaces = LitSurface::of(project, entity, OssViewedNode::now());
    if (m_hasCompany && !m_isPainted) {
        const QVector<const OssGeoEntity *> others = LitSurface::beside(project, entity);
        for (const OssGeoEntity *other : others)
            surfaces += LitSurface::of(project, other);
    }
    return surfaces;
}

std::unique_ptr<LitScene::Piece> LitScene::makePiece()
{
    auto piece = std::make_unique<Piece>();
    connect(&piece->pixels, &SurfacePixels::changed, this, &LitScene::changed);
    connect(&piece->pixels, &SurfacePixels::changed, this, &LitScene::tellProgress);
    connect(&piece->pixels, &SurfacePixels::changed, this, [this] {
        if (m_isDisplaced && !m_isPainted) // else nobody sees it
            m_displacing.start();
    });
    connect(&piece->pixels, &SurfacePixels::touched, this, [this] {
        if (!m_touched.empty())
            m_touching.start(0);
    });
    connect(&piece->pixels, &SurfacePixels::bared, this, [this] {
        for (const auto &[patch, area] : m_inHand)
            touch(patch, area);
    });
    piece->pixels.setFirst(m_isAlone);
    return piece;
}

void LitScene::arrange(const QVector<LitSurface> &surfaces)
{
    std::vector<std::unique_ptr<Piece>> before = std::move(m_pieces);
    m_pieces.clear();
    for (const LitSurface &surface : surfaces) {
        // What is looked at stays seen until what is looked at next is there.
        const auto isSame = [&surface, this](const std::unique_ptr<Piece> &piece) {
            return piece
                   && (m_pieces.empty() ? piece->isFirst
                                        : !piece->isFirst && piece->node == surface.shown.node
                                              && piece->entity == surface.entity);
        };
        const auto found = std::find_if(before.begin(), before.end(), isSame);
        auto piece = found != before.end() ? std::move(*found) : makePiece();
        piece->isFirst = m_pieces.empty();
        piece->node = surface.shown.node;
        piece->output = surface.shown.outputPoint;
        piece->entity = surface.entity;
        piece->slots = surface.slots;
        m_pieces.push_back(std::move(piece));
    }
}

void LitScene::follow()
{
    if (!m_isActive)
        return;
    m_isPutOff = m_hand.isPainting && m_hand.isPainting();
    if (m_isPutOff)
        return;
    arrange(wanted());
    m_told = 0;
    if (!m_pieces.empty())
        followPiece(m_pieces.front().get());
    Q_EMIT changed();
    tellProgress();
    if (m_pieces.size() > 1)
        m_others.start();
}

void LitScene::followOthers()
{
    if (m_hand.isPainting && m_hand.isPainting()) {
        m_isPutOff = true;
        return;
    }
    for (std::size_t i = 1; i < m_pieces.size(); ++i)
        followPiece(m_pieces[i].get());
    for (auto geometry = m_geometries.begin(); geometry != m_geometries.end();) {
        const bool isUsed = std::any_of(
            m_pieces.cbegin(), m_pieces.cend(),
            [&geometry](const auto &piece) { return piece->mesh == geometry->first; });
        if (!isUsed)
            m_displaced.erase(geometry->first);
        geometry = isUsed ? std::next(geometry) : m_geometries.erase(geometry);
    }
    Q_EMIT changed();
    tellProgress();
}

void LitScene::followPiece(Piece *piece)
{
    if (!piece->entity)
        return;
    const OssSurfaceMaps maps = OssSurfaceMaps::of({piece->node, piece->output}, piece->entity);
    piece->problem = maps.problem();
    const OssMeshes::Look look = OssMeshes::instance()->look(piece->entity->source());
    const bool isReading = look.state == OssMeshes::State::Reading;
    if (!look.mesh && (isReading || !look.problem.isEmpty()))
        piece->problem = isReading ? tr("The mesh is being read") : look.problem;
    piece->mesh = look.mesh;
    if (look.mesh && m_geometries.count(look.mesh) == 0)
        makeGeometry(look.mesh);
    if (!look.mesh || !piece->problem.isEmpty()) {
        piece->pixels.clear();
        return;
    }
    const std::vector<int> &patches = look.mesh->patches();
    piece->pixels.show(maps, QList<int>(patches.begin(), patches.end()), m_resolution);
}

void LitScene::makeGeometry(const std::shared_ptr<const OssEvMesh> &mesh)
{
    m_geometries[mesh] = nullptr;
    elsewhere([mesh] { return OssRdGeometry::of(*mesh); },
              [this, mesh](const std::shared_ptr<const OssRdGeometry> &made) {
                  m_geometries[mesh] = made;
                  Q_EMIT reshaped();
                  Q_EMIT changed();
              });
}

// --- surfaces that stand out

void LitScene::setDisplaced(bool displaced)
{
    m_isDisplaced = displaced;
    m_displaced.clear();
    if (displaced)
        displace();
    Q_EMIT changed();
}

std::vector<OssRdDisplacement::Skin> LitScene::skinsOf(const OssEvMesh *mesh) const
{
    std::vector<OssRdDisplacement::Skin> skins;
    for (const auto &piece : m_pieces) {
        if (piece->mesh.get() == mesh)
            skins.push_back({piece->pixels.materials(), piece->slots});
    }
    return skins;
}

void LitScene::displace()
{
    if (!m_isDisplaced)
        return;
    if (m_isDisplacing) {
        m_displacing.start();
        return;
    }

    struct Job
    {
        std::shared_ptr<const OssEvMesh> mesh;
        std::shared_ptr<const OssRdGeometry> geometry;
        std::vector<OssRdDisplacement::Skin> skins;
    };

    std::vector<Job> jobs;
    for (const auto &[mesh, geometry] : m_geometries) {
        if (geometry)
            jobs.push_back({mesh, geometry, skinsOf(mesh.get())});
    }
    m_isDisplacing = true;
    elsewhere(
        [jobs] {
            std::map<std::shared_ptr<const OssEvMesh>, std::shared_ptr<const OssRdGeometry>> made;
            for (const Job &job : jobs)
                made[job.mesh] = displaced(*job.geometry, job.skins);
            return made;
        },
        [this](const auto &made) {
            m_isDisplacing = false;
            if (!m_isDisplaced)
                return;
            m_displaced = made;
            Q_EMIT changed();
        });
}

void LitScene::tellProgress()
{
    int sum = 0;
    bool isWhole = true;
    for (const auto &piece : m_pieces) {
        sum += piece->pixels.progress();
        isWhole = isWhole && piece->pixels.isWhole();
    }
    const int before = m_told;
    m_told = isWhole ? 1000
                     : std::clamp(sum / int(m_pieces.size()), m_told == 1000 ? 0 : m_told, 999);
    if (m_told != before)
        Q_EMIT progressed(m_told);
}

std::shared_ptr<const OssRdGeometry> LitScene::geometryOf(const Piece &piece) const
{
    const auto moved = m_displaced.find(piece.mesh);
    if (!m_isPainted && moved != m_displaced.cend() && moved->second)
        return moved->second;
    const auto plain = m_geometries.find(piece.mesh);
    return plain == m_geometries.cend() ? nullptr : plain->second;
}

std::shared_ptr<const OssRdGeometry> LitScene::geometry() const
{
    return m_pieces.empty() ? nullptr : geometryOf(*m_pieces.front());
}

const OssGeoEntity *LitScene::entityOf(const OssRdGeometry *geometry) const
{
    const auto found = std::find_if(m_pieces.cbegin(), m_pieces.cend(), [&](const auto &piece) {
        return geometry && geometryOf(*piece).get() == geometry;
    });
    return found == m_pieces.cend() ? nullptr : (*found)->entity.data();
}

QString LitScene::problem() const
{
    if (m_pieces.empty())
        return {};
    const Piece &first = *m_pieces.front();
    return first.problem.isEmpty() ? first.pixels.problem() : first.problem;
}

bool LitScene::isBare() const
{
    return !m_pieces.empty() && !m_pieces.front()->node;
}

// --- light

void LitScene::setSurroundings(const QString &nameOrFile)
{
    const QString before = m_surroundingsName;
    m_surroundingsName = nameOrFile;
    if (!m_isActive)
        return;

    struct Made
    {
        Surroundings surroundings;
        OssResult result;
    };

    elsewhere(
        [nameOrFile, colors = OssColorManagement::spaces()] {
            Made made;
            made.result = Surroundings::make(nameOrFile, *colors, &made.surroundings);
            return made;
        },
        [this, nameOrFile, before](const Made &made) {
            if (nameOrFile != m_surroundingsName)
                return; // another one was chosen since
            if (!made.result) {
                // A file that was chosen once may be gone: there is light nevertheless.
                m_surroundingsName = before == nameOrFile ? QString() : before;
                Q_EMIT refused(made.result.error());
                if (!m_scene.probe)
                    setSurroundings(m_surroundingsName);
                return;
            }
            m_scene.probe = made.surroundings.probe;
            m_scene.surrounding = made.surroundings.picture;
            Q_EMIT changed();
        });
}

void LitScene::setTurn(float turn)
{
    m_scene.turn = turn;
    Q_EMIT changed();
}

void LitScene::setIntensity(float intensity)
{
    m_scene.intensity = intensity;
    Q_EMIT changed();
}

void LitScene::setKeyLight(bool on)
{
    m_scene.keyLight = glm::vec3(on ? keyLight : 0.0F);
    Q_EMIT changed();
}

std::shared_ptr<const OssRdScene> LitScene::scene() const
{
    auto scene = std::make_shared<OssRdScene>(m_scene);
    for (const auto &piece : m_pieces) {
        const std::shared_ptr<const OssRdGeometry> geometry = geometryOf(*piece);
        if (geometry)
            scene->objects.push_back({geometry, piece->pixels.materials(), piece->slots});
    }
    return scene;
}
