#include "Ossa/Viewer/NodeThumbnails.h"

#include "Ossa/Viewer/ViewerPixels.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Export/OssExportMaterials.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>
#include <QTabWidget>

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>

namespace {

constexpr int size = 96;   // texels that are computed
constexpr int height = 56; // of them shown, the middle: nodes stay low
// Of a picture in its node, in units of the graph.
constexpr qreal inset = 10.0;
constexpr qreal margin = 6.0;
constexpr qreal leastHeight = 24.0;
constexpr qreal mostRoom = 170.0;
constexpr int lookInterval = 120;
constexpr int longestLook = 6; // ms of the GUI thread
constexpr int mostRunning = 4;

OssNgView *shownView()
{
    OssPalette *palette = OssPaletteManager::instance()->find(QStringLiteral("node_graph_palette"));
    const auto *tabs = palette ? qobject_cast<QTabWidget *>(palette->originalWidget()) : nullptr;
    auto *view = tabs ? qobject_cast<OssNgView *>(tabs->currentWidget()) : nullptr;
    return view && view->isVisible() ? view : nullptr;
}

/// The material that the node gives; a null node where that is none.
OssSnProducer materialOf(const OssSnBaseNode *node)
{
    const OssSnProducer made = OssExportMaterial::behind({node, node->prefferedOutputPoint()});
    return OssExportMaterial::of(made.node).node ? made : OssSnProducer();
}

} // namespace

NodeThumbnails::NodeThumbnails(QObject *parent)
    : QObject(parent)
{
    const auto touch = [this] {
        m_dirty = true;
    };
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, touch);
    connect(OssFileWatch::instance(), &OssFileWatch::changed, this, touch);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, touch);
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::currentViewNetworkChanged, this, touch);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this,
            &NodeThumbnails::forgetAll);
    connect(&m_timer, &QTimer::timeout, this, &NodeThumbnails::look);
    m_timer.setInterval(lookInterval);
}

NodeThumbnails::~NodeThumbnails()
{
    forgetAll();
}

void NodeThumbnails::setEnabled(bool enabled)
{
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    m_dirty = true;
    if (enabled) {
        m_timer.start();
    } else {
        m_timer.stop();
        forgetAll();
    }
}

void NodeThumbnails::forgetAll()
{
    // Callbacks come to an object that is looked up by then; those of cancelled work find nothing.
    for (auto running = m_running.cbegin(); running != m_running.cend(); ++running)
        OssEvaluationService::instance()->engine()->cancel(running.key());
    m_running.clear();
    m_balls.cancel();
    m_ballsRunning = 0;
    const QHash<OssNgNode *, Shown> shown = std::exchange(m_shown, {});
    for (const Shown &entry : shown) {
        if (entry.item)
            entry.item->setThumbnail({});
    }
}

void NodeThumbnails::look()
{
    const OssNgView *view = shownView();
    if (!view || !view->scene() || view->transform().m11() < OssNgStyle::FullDetail
        || OssUndoManager::instance()->isMacroOpen())
        return;
    const QRectF place = view->mapToScene(view->viewport()->rect()).boundingRect();
    if (!m_dirty && place == m_lastView)
        return;
    m_lastView = place;
    m_dirty = false;
    QElapsedTimer spent;
    spent.start();
    const QVector<OssNgNode *> items = OssNgSceneIndex::of(view->scene())->nodesIn(place);
    for (OssNgNode *item : items) {
        // The rest is looked at the next time.
        if (m_running.size() + m_ballsRunning >= mostRunning || spent.elapsed() > longestLook) {
            m_dirty = true;
            return;
        }
        lookAt(item);
    }
}

void NodeThumbnails::lookAt(OssNgNode *item)
{
    const auto *node = qobject_cast<OssSnBaseNode *>(item->businessNode());
    QString output = OssSolo::pictureOutput(node);
    if (output.isEmpty() && node && materialOf(node).node)
        output = node->prefferedOutputPoint();
    if (output.isEmpty())
        return;
    const QString key = OssSnResultKey::of(node, output);
    Shown &shown = m_shown[item];
    if (shown.item == item && shown.key == key) {
        fit(&shown);
        return;
    }
    if (shown.item != item)
        shown = {};
    shown.item = item; // what it shows stays until the new one is there
    shown.key = key;
    start(item, node);
}

void NodeThumbnails::start(OssNgNode *item, const OssSnBaseNode *node)
{
    if (materialOf(node).node && !m_balls.isHopeless())
        startBall(item, node);
    else
        startFlat(item, node);
}

void NodeThumbnails::startBall(OssNgNode *item, const OssSnBaseNode *node)
{
    const OssSurfaceMaps maps = OssSurfaceMaps::of(materialOf(node), node->network()->geoEntity());
    if (!maps.problem().isEmpty() || !maps.mesh() || maps.mesh()->patches().empty()) {
        startFlat(item, node);
        return;
    }
    ++m_ballsRunning;
    const QPointer<OssNgNode> whose(item);
    const QPointer<const OssSnBaseNode> what(node);
    m_balls.start(maps, [this, whose, what](const QImage &picture) {
        --m_ballsRunning;
        if (whose && what && picture.isNull())
            startFlat(whose, what);
        else if (whose)
            showPicture(whose, picture);
    });
}

void NodeThumbnails::startFlat(OssNgNode *item, const OssSnBaseNode *node)
{
    const OssSnEvaluationGraph graph = OssSnEvaluationGraph::of(node, node->prefferedOutputPoint());
    OssEvaluationService *service = OssEvaluationService::instance();
    const OssGeoEntity *entity = node->network()->geoEntity();
    // While it is being read there is none: the node's key is another when it is there.
    const auto mesh =
        OssMeshes::instance()->look(entity ? entity->source() : OssGeometrySource()).mesh;
    if (!graph.error.isEmpty() || !mesh || mesh->patches().empty()) {
        m_shown[item].picture = {};
        fit(&m_shown[item]);
        return;
    }

    // Tells its result by its own number, which is known only when it has been started.
    struct Work
    {
        std::mutex mutex;
        QImage picture;
        OssEvEngine::Id id = 0;
    };

    const auto work = std::make_shared<Work>();
    const QPointer<NodeThumbnails> self(this);
    OssEvRequest request;
    request.target = service->target(graph, entity, mesh->patches().front(), size);
    request.priority = -1;
    request.onTile = [work](const OssEvArrival &arrival) {
        const QImage picture = ViewerPixels::picture(*arrival.tile, ViewerLook());
        const std::lock_guard<std::mutex> lock(work->mutex);
        work->picture = picture;
    };
    request.onFinished = [work, self, receiver = qApp](const OssEvOutcome &outcome) {
        const bool ok = outcome.ok();
        QMetaObject::invokeMethod(
            receiver,
            [work, self, ok] {
                const std::lock_guard<std::mutex> lock(work->mutex);
                if (self)
                    self->finish(work->id, ok ? work->picture : QImage());
            },
            Qt::QueuedConnection);
    };
    work->id = service->engine()->start(std::move(request));
    m_running.insert(work->id, item);
}

void NodeThumbnails::finish(OssEvEngine::Id id, const QImage &picture)
{
    const auto running = m_running.find(id);
    if (running == m_running.end())
        return;
    const QPointer<OssNgNode> item = *running;
    m_running.erase(running);
    m_dirty = true;
    if (item)
        showPicture(item, picture);
}

void NodeThumbnails::showPicture(OssNgNode *item, const QImage &picture)
{
    m_dirty = true;
    const auto shown = m_shown.find(item);
    if (shown == m_shown.end())
        return;
    shown->picture = picture;
    shown->rows = 0; // another picture in the same room
    fit(&*shown);
}

void NodeThumbnails::fit(Shown *shown)
{
    OssNgNode *item = shown->item;
    if (!item || !item->scene())
        return;
    int rows = 0;
    qreal room = 0.0;
    if (!shown->picture.isNull())
        room = OssNgSceneIndex::of(item->scene())->roomBelow(item, shown->grown, mostRoom) - margin;
    const qreal texel = (item->bodyRect().width() - 2.0 * inset) / size; // in the graph
    if (room >= leastHeight && texel > 0.0)
        rows = std::min(height, int(room / texel));
    if (rows == shown->rows && (rows > 0 || shown->grown == 0.0))
        return;
    item->setThumbnail({});
    const qreal before = item->bodyRect().height();
    if (rows > 0)
        item->setThumbnail(
            QPixmap::fromImage(shown->picture.copy(0, (size - rows) / 2, size, rows)));
    shown->rows = rows;
    shown->grown = item->bodyRect().height() - before;
}
