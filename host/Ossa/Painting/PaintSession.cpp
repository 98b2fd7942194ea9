#include "Ossa/Painting/PaintSession.h"

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/EveryMove.h"
#include "Ossa/Painting/PaintStep.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Images/OssLivePaint.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Objects/OssShadingContext.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <algorithm>
#include <climits>
#include <new>

namespace {

constexpr int smallestResolution = 16;
constexpr int largestResolution = 16384;
constexpr int restTime = 3000; ///< milliseconds without a stroke
constexpr int turnTime = 40;   ///< milliseconds of painting before the picture is seen

const OssEvBrush &brush()
{
    return Brushes::instance()->brush();
}

} // namespace

PaintSession::PaintSession(QObject *parent)
    : PaintSession(static_cast<PaintSession *>(nullptr))
{
    setParent(parent);
    connect(OssProjectManager::instance(), &OssProjectManager::projectOpenCompleted, this,
            &PaintSession::recover);
}

PaintSession::PaintSession(PaintSession *leader)
    : m_tiles(std::make_shared<PaintTileStore>())
    , m_leader(leader)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(restTime);
    connect(&m_rest, &QTimer::timeout, this, &PaintSession::composeInAdvance);
    m_behind.setSingleShot(true);
    connect(&m_behind, &QTimer::timeout, this, [this] { catchUp(turnTime); });
    connect(&m_composer, &PaintComposer::failed, this, [](const QString &reason) {
        OssDebug("PaintSession", __LINE__, "[ !! ] No pixels of the paint: %s", qPrintable(reason));
    });
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this,
            &PaintSession::forget);
    connect(OssUndoManager::instance(), &OssUndoManager::editEnding, this, [this](bool kept) {
        if (kept)
            letGo();
    });
    // Another object: whatever is done about it must not join the step that led there.
    connect(
        OssShaderNetworkManager::instance(), &OssShaderNetworkManager::currentShaderNetworkChanged,
        this,
        [this] {
            // What was told of may be gone by now.
            const OssShaderNetwork *network = OssShaderNetworkManager::instance()
                                                  ->currentShaderNetwork();
            const OssShaderNetwork *own = m_node ? m_node->network() : nullptr;
            if (network && own && own->rootNetwork() != network->rootNetwork())
                setNode(nullptr);
        },
        Qt::QueuedConnection);
}

PaintSession::~PaintSession() = default;

void PaintSession::forget()
{
    letStrokeGo();
    m_macro.reset();
    m_rest.stop();
    m_composer.giveUp();
    m_journal.end();
    m_buffer.clear();
    m_images = nullptr;
    m_node = nullptr;
    m_ground.reset();
    m_surfaces.forget();
    m_lastPlace.reset();
    Q_EMIT stateChanged();
}

// --- what is painted on

OssSnImageSetNodeBase *PaintSession::node() const
{
    return m_node && m_node->network() && m_node->network()->shadingContext() ? m_node.data()
                                                                              : nullptr;
}

bool PaintSession::setNode(OssSnImageSetNodeBase *node)
{
    if (node == m_node)
        return true;
    end();
    OssImageSet *images = node ? node->imageSet() : nullptr;
    if (!m_buffer.isEmpty() && images != m_images && !settle())
        return false;
    m_node = node;
    m_lastPlace.reset();
    OssShadingContext *shading = node && node->network() ? node->network()->shadingContext()
                                                         : nullptr;
    if (shading && images && !m_leader) {
        shading->setCurrentImageSet(images);
        OssProjectManager::instance()->setCurrentChannel(images->channel());
    }
    Q_EMIT stateChanged();
    return true;
}

// As fine as what the images are to have, and as what they have.
int PaintSession::resolutionOf(const OssImageSet *images) const
{
    if (!images)
        return OssImageManager::instance()->newResolution();
    int resolution = images->resolution();
    const QMap<int, QString> pixels = images->pixels();
    for (const QString &name : pixels)
        resolution = std::max(resolution, widthOf(name));
    return std::clamp(resolution, smallestResolution, largestResolution);
}

int PaintSession::widthOf(const QString &pixels) const
{
    const auto known = m_widths.constFind(pixels);
    if (known != m_widths.cend())
        return *known;
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QString path = OssPixelStore::find(pixels, project ? project->path() : QString());
    OssEvImageHeader header;
    const bool isRead = !path.isEmpty()
                        && OssEvImageFiles::readHeader(path.toStdString(), &header).ok();
    return *m_widths.insert(pixels, isRead ? header.width : 0);
}

int PaintSession::texelsAcross() const
{
    const OssSnImageSetNodeBase *painted = node();
    if (!m_buffer.isEmpty() || !painted)
        return m_buffer.resolution();
    return resolutionOf(painted->imageSet());
}

double PaintSession::flatRadius(double pixel) const
{
    const OssEvBrush &used = brush();
    switch (used.sizeIn) {
    case OssEvBrush::SizeIn::Pixels:
        return used.radius * pixel;
    case OssEvBrush::SizeIn::World:
        return std::clamp(used.worldRadius * texelsInWorld(), Brushes::smallestRadius,
                          Brushes::largestRadius);
    case OssEvBrush::SizeIn::Texels:
        break;
    }
    return used.radius * m_scale;
}

std::shared_ptr<const OssEvMesh> PaintSession::mesh() const
{
    const OssSnImageSetNodeBase *painted = node();
    const OssGeoEntity *entity = painted ? painted->network()->geoEntity() : nullptr;
    return entity ? OssMeshes::instance()->look(entity->source()).mesh : nullptr;
}

/// In the mean over the object.
double PaintSession::texelsInWorld() const
{
    const std::shared_ptr<const OssEvMesh> object = mesh();
    if (!object)
        return 1.0;
    if (m_measured.lock() != object) {
        m_measured = object;
        m_meanTexel = OssEvPaintSurface::meanTexel(*object);
    }
    return texelsAcross() / m_meanTexel;
}

// --- strokes

bool PaintSession::makeRoom()
{
    end();
    OssSnImageSetNodeBase *painted = node();
    OssImageSet *images = painted && !m_isBusy ? painted->needImageSet() : nullptr;
    if (!images)
        return false;
    if (!m_buffer.isEmpty() && m_images != images && !settle())
        return false;
    m_painted = node();
    if (m_buffer.isEmpty()) {
        m_images = images;
        m_buffer = OssEvPaintBuffer(resolutionOf(images));
    }
    return true;
}

bool PaintSession::prepare(const MakeStroke &make)
{
    end();
    // A node that never had images gets them with its first stroke.
    std::unique_ptr<OssUndoManager::AutoMacro> macro;
    if (!m_leader && !m_isBusy && node() && !node()->imageSet())
        macro = std::make_unique<OssUndoManager::AutoMacro>(stepName());
    if (makeRoom()) {
        m_stroke = make(&m_buffer);
        m_seen = m_buffer; // it has touched nothing yet
        m_unseen.clear();
        m_soFar.reset();
    }
    if (!m_stroke) {
        if (macro)
            macro->cancel();
        return false;
    }
    m_follows = m_leader && m_leader->m_stroke && m_leader->m_stroke->isFollowedBy(*m_stroke);
    if (!m_leader && !macro) // whose step it is a part of
        macro = std::make_unique<OssUndoManager::AutoMacro>(stepName());
    m_macro = std::move(macro);
    m_everyMove = std::make_unique<EveryMove>();
    return true;
}

bool PaintSession::begin(const PaintStart &start)
{
    if (!areReady() || !prepare(flatStroke(start)))
        return false;
    for (PaintSession *along : inUse())
        along->begin(startOf(*along, start));
    m_lastPlace = start.place;
    if (!m_follows)
        moveTo(start.place, start.pressure);
    return true;
}

bool PaintSession::beginOn(const OssEvSurfaceStroke::ViewPointer &view, const PaintStart &start)
{
    if (!areReady() || !prepare(objectStroke(view, start)))
        return false;
    for (PaintSession *along : inUse())
        along->beginOn(view, startOf(*along, start));
    m_lastPlace.reset(); // it is no place of a patch
    if (!m_follows)
        moveTo(start.place, start.pressure);
    return true;
}

void PaintSession::moveTo(const QPointF &place, double pressure)
{
    if (!m_stroke)
        return;
    m_moves.push_back({place.x(), place.y(), pressure});
    catchUp(INT_MAX);
}

// Half of the time is left for all else: the picture above all, which no event brings while others wait.
void PaintSession::follow(const QPointF &place, double pressure)
{
    if (!m_stroke)
        return;
    m_moves.push_back({place.x(), place.y(), pressure});
    if (m_behind.isActive())
        return;
    const qint64 rested = m_sinceMoves.isValid() ? m_sinceMoves.elapsed() : m_movesTook;
    if (rested >= m_movesTook)
        catchUp(turnTime);
    else
        m_behind.start(int(m_movesTook - rested));
}

/// Paints what waits, as far as there is time for; in milliseconds.
void PaintSession::catchUp(int most)
{
    if (!m_stroke || m_moves.empty())
        return;
    m_behind.stop();
    m_sinceMoves.start();
    paint([&] { return coverMoves(most); });
    m_movesTook = int(m_sinceMoves.restart());
    if (!m_moves.empty())
        m_behind.start(std::min(m_movesTook, turnTime));
}

OssEvStroke::Areas PaintSession::coverMoves(int most)
{
    std::vector<PaintSession *> others;
    for (PaintSession *along : inUse()) {
        if (along->isPainting() && !along->m_follows)
            others.push_back(along);
    }
    std::size_t done = 0;
    while (done < m_moves.size() && (done == 0 || m_sinceMoves.elapsed() < most)) {
        const OssEvStrokePath::Point &move = m_moves[done++];
        m_stroke->coverTo(move.x, move.y, move.pressure);
        for (PaintSession *along : others)
            along->m_moves.push_back(move);
        if (m_lastPlace)
            m_lastPlace = QPointF(move.x, move.y);
    }
    m_moves.erase(m_moves.begin(), m_moves.begin() + std::ptrdiff_t(done));
    for (PaintSession *along : others)
        along->catchUp(INT_MAX);
    return m_stroke->update();
}

void PaintSession::letStrokeGo()
{
    m_stroke.reset();
    m_seen.clear();
    m_unseen.clear();
    m_everyMove.reset();
    m_moves.clear();
    m_behind.stop();
}

/// Where the stroke has covered more.
void PaintSession::paintAlong(const OssEvStroke::Areas &areas)
{
    for (PaintSession *along : inUse()) {
        if (along->isPainting() && along->m_follows)
            along->paint([&] { return along->m_stroke->follow(*m_stroke, areas); });
    }
}

void PaintSession::paint(const std::function<OssEvStroke::Areas()> &step)
{
    try {
        const OssEvStroke::Areas areas = step();
        paintAlong(areas);
        tellAreas(areas);
        if (m_ground && !m_ground->state() && m_stroke) {
            cancel();
            OssStatusManager::instance()->showMessage(
                QString::fromStdString(m_ground->state().error()));
        }
    } catch (const std::bad_alloc &) {
        cancel();
        OssStatusManager::instance()->showMessage(tr("There is no memory left to paint"));
    }
}

void PaintSession::tellArea(int patch, const QRectF &area)
{
    PaintSession *told = m_leader ? m_leader : this;
    if (told->m_shown == this)
        Q_EMIT told->painted(patch, area);
    else
        Q_EMIT told->paintedAlong(patch, area);
}

void PaintSession::tellAreas(const OssEvStroke::Areas &areas)
{
    const double texel = 1.0 / m_buffer.resolution();
    for (const auto &entry : areas) {
        const OssEvRegion &area = entry.second;
        noteUnseen(entry.first, area);
        tellArea(entry.first,
                 QRectF(area.x * texel, area.y * texel, area.width * texel, area.height * texel));
    }
}

void PaintSession::end()
{
    catchUp(INT_MAX);
    if (m_stroke)
        paint([this] { return m_stroke->finish(); });
    if (!m_stroke)
        return;
    for (PaintSession *along : inUse())
        along->end();
    const std::vector<OssEvStroke::Change> changes = m_stroke->changes();
    letStrokeGo();
    finishStep(changes);
}

/// The step in hand ends with these changes of the buffer.
void PaintSession::finishStep(const std::vector<OssEvStroke::Change> &changes)
{
    noteChange();
    const bool isLarge = m_buffer.bytes() > bufferBytes;
    if (!changes.empty())
        record(changes, PaintStep::Stroke);
    const OssResult baked = isLarge ? bakeOwn() : OssResult();
    m_macro.reset();
    if (isLarge) // no journal holds what is in the images
        Q_EMIT OssProjectManager::instance()->copyWanted();
    Tiles now;
    for (const OssEvStroke::Change &change : changes)
        now.emplace_back(change.place, change.after);
    keep(now);
    Q_EMIT stateChanged();
    if (!baked)
        OssStatusManager::instance()->showMessage(baked.error());
}

void PaintSession::cancel()
{
    if (!m_stroke)
        return;
    for (PaintSession *along : inUse())
        along->cancel();
    Tiles before;
    for (const OssEvStroke::Change &change : m_stroke->changes())
        before.emplace_back(change.place, change.before);
    letStrokeGo();
    setTiles(m_images, m_buffer.resolution(), before, Show);
    if (m_macro) // with the images that were made for it
        m_macro->cancel();
    m_macro.reset();
}

// --- the buffer as a whole

void PaintSession::setTiles(OssImageSet *images, int resolution, const Tiles &tiles, Notice notice)
{
    if (m_buffer.isEmpty() && m_buffer.resolution() != resolution)
        m_buffer = OssEvPaintBuffer(resolution);
    m_images = images;
    if (notice == Quietly)
        Q_EMIT settled();
    for (const auto &entry : tiles)
        m_buffer.setTile(entry.first, entry.second);
    noteChange();
    keep(tiles);
    if (notice == Show)
        tellTiles(tiles);
    Q_EMIT stateChanged();
}

void PaintSession::tellTiles(const Tiles &tiles)
{
    const double size = double(OssEvPaintTile::Size) / m_buffer.resolution();
    for (const auto &entry : tiles) {
        const OssEvPaintBuffer::Place &place = entry.first;
        tellArea(place.patch,
                 QRectF(place.x * size, place.y * size, size, size) & QRectF(0.0, 0.0, 1.0, 1.0));
    }
}

void PaintSession::record(const std::vector<OssEvStroke::Change> &changes, int kind)
{
    OssUndoManager::instance()->addUndo(std::make_unique<PaintStep>(
        this, m_images, m_buffer.resolution(), changes, PaintStep::Kind(kind)));
    m_tiles->trim();
}

// --- meanwhile

void PaintSession::noteChange()
{
    m_wasRefused = false;
    m_composer.giveUp();
    publish();
    if (!m_buffer.isEmpty()) {
        m_rest.start();
        return;
    }
    m_rest.stop();
    m_composer.forget();
    m_journal.end();
    if (m_images)
        m_images->setUnbakedPaint({});
}

/// Has what is evaluated from now on show the paint.
void PaintSession::publish()
{
    if (!m_images)
        return;
    m_images->setLivePaint(
        m_buffer.isEmpty() ? nullptr : OssLivePaint::publish(m_buffer, m_images->livePaint()));
    Q_EMIT settled();
}

std::shared_ptr<const OssLivePaint> PaintSession::published() const
{
    return m_shown->m_images ? m_shown->m_images->livePaint() : nullptr;
}
