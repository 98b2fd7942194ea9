#include "Ossa/Surfaces/LitScene.h"

#include "OssModel/Evaluation/OssViewedNode.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Images/OssColorManagement.h"

#include <QCoreApplication>
#include <QThreadPool>

namespace {

constexpr float keyLight = 0.7F;

} // namespace

LitScene::LitScene(QObject *parent)
    : QObject(parent)
{
    m_scene.keyLight = glm::vec3(keyLight);
    connect(&m_pixels, &SurfacePixels::changed, this, &LitScene::changed);
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
        m_pixels.stop();
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

void LitScene::follow()
{
    if (!m_isActive)
        return;
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    const OssGeoEntity *entity = network ? network->geoEntity() : nullptr;
    const OssSurfaceMaps maps = OssSurfaceMaps::of(OssViewedNode::now(), entity);
    m_problem = maps.problem();
    const std::shared_ptr<const OssEvMesh> mesh = m_problem.isEmpty() ? maps.mesh() : nullptr;
    if (!mesh) {
        m_pixels.clear();
        Q_EMIT changed();
        return;
    }
    if (mesh != m_mesh)
        makeGeometry(mesh);
    const std::vector<int> &patches = mesh->patches();
    m_pixels.show(maps, QList<int>(patches.begin(), patches.end()), m_resolution);
}

void LitScene::makeGeometry(const std::shared_ptr<const OssEvMesh> &mesh)
{
    m_mesh = mesh;
    elsewhere([mesh] { return OssRdGeometry::of(*mesh); },
              [this, mesh](const std::shared_ptr<const OssRdGeometry> &made) {
                  if (mesh != m_mesh)
                      return;
                  m_geometry = made;
                  Q_EMIT reshaped();
                  Q_EMIT changed();
              });
}

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

void LitScene::setKeyLight(bool on)
{
    m_scene.keyLight = glm::vec3(on ? keyLight : 0.0F);
    Q_EMIT changed();
}

std::shared_ptr<const OssRdScene> LitScene::scene() const
{
    auto scene = std::make_shared<OssRdScene>(m_scene);
    if (m_geometry && m_problem.isEmpty())
        scene->objects.push_back({m_geometry, m_pixels.materials()});
    return scene;
}
