#include "Ossa/ViewerSource.h"

#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Evaluation/OssEvaluationService.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssShaderNetworkManager.h"
#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssCoreModules/Network/OssSnProducer.h"
#include "OssCoreModules/Network/OssSnResultKey.h"
#include "OssCoreModules/Project/OssGeoEntity.h"
#include "OssCoreModules/Project/OssProjectManager.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/Values/OssEvPatch.h"

namespace {

constexpr int LookInterval = 60; // milliseconds

/// What the current network's viewer looks at.
OssSnProducer viewed(const OssShaderNetwork *network)
{
    const OssSnBaseNode *viewer = network ? network->viewerNode() : nullptr;
    if (!viewer)
        return {};
    const QString input = QString::number(network->rootNetwork()->viewerNodeCurrentEdge());
    return {viewer->inputNode(input), viewer->inputOutputPoint(input)};
}

} // namespace

ViewerSource::ViewerSource(QObject *parent)
    : QObject(parent)
{
    const auto touch = [this] {
        m_dirty = true;
    };
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, touch);
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    connect(networks, &OssShaderNetworkManager::currentShaderNetworkChanged, this, touch);
    connect(networks, &OssShaderNetworkManager::graphRefreshRequested, this, [this] { refresh(); });
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this, [this] {
        stop();
        m_shown = {};
        m_dirty = true;
    });
    connect(&m_timer, &QTimer::timeout, this, &ViewerSource::look);
    m_timer.setInterval(LookInterval);
}

ViewerSource::~ViewerSource()
{
    const QVector<Running> running = m_running;
    stop();
    // Their callbacks know this object.
    for (const Running &request : running)
        OssEvaluationService::instance()->engine()->wait(request.id);
}

void ViewerSource::setActive(bool active)
{
    m_active = active;
    if (active) {
        m_timer.start();
        return;
    }
    m_timer.stop();
    stop();
    m_shown = {};
}

void ViewerSource::setLook(const ViewerLook &look)
{
    if (look == m_look)
        return;
    m_look = look;
    refresh();
}

void ViewerSource::setResolution(int resolution)
{
    if (resolution == m_resolution)
        return;
    m_resolution = resolution;
    refresh();
}

void ViewerSource::setFocus(const QPointF &place)
{
    m_focus = place;
    for (const Running &request : qAsConst(m_running))
        OssEvaluationService::instance()->engine()->setFocus(
            request.id, (place.x() - OssEvPatch::column(request.patch)) * m_resolution,
            (1.0 - (place.y() - OssEvPatch::row(request.patch))) * m_resolution);
}

void ViewerSource::refresh()
{
    m_shown = {};
    m_dirty = true;
}

void ViewerSource::look()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    const OssSnProducer now = viewed(network);
    const bool other = now.node != m_shown.node || now.outputPoint != m_shown.outputPoint;
    if (!m_dirty && !other)
        return;
    m_dirty = false;
    const QString key = OssSnResultKey::of(now.node, now.outputPoint);
    if (!other && key == m_shown.key && !key.isEmpty())
        return;
    m_shown = {now.node, now.outputPoint, key};
    start(network ? network->geoEntity() : nullptr);
}

void ViewerSource::stop()
{
    ++m_generation;
    for (const Running &request : qAsConst(m_running))
        OssEvaluationService::instance()->engine()->cancel(request.id);
    m_running.clear();
}

void ViewerSource::start(const OssGeoEntity *entity)
{
    stop();
    if (!m_shown.node) {
        Q_EMIT began({}, {}, tr("Nothing is connected to the viewer here"));
        return;
    }
    const OssSnEvaluationGraph graph = OssSnEvaluationGraph::of(m_shown.node, m_shown.outputPoint);
    const QList<int> patches = graph.error.isEmpty()
                                   ? OssEvaluationService::instance()->patches(entity)
                                   : QList<int>();
    Q_EMIT began(patches, m_shown.node->name(), graph.error);
    for (const int patch : patches)
        startPatch(graph, entity, patch);
    setFocus(m_focus);
}

void ViewerSource::startPatch(const OssSnEvaluationGraph &graph, const OssGeoEntity *entity,
                              int patch)
{
    OssEvRequest request;
    request.target = OssEvaluationService::instance()->target(graph, entity, patch, m_resolution);
    const int generation = m_generation;
    const ViewerLook look = m_look;
    request.onTile = [this, generation, patch, look](const OssEvArrival &arrival) {
        const QImage picture = ViewerPixels::picture(*arrival.tile, look);
        const QPoint place(arrival.x * OssEvTile::Size, arrival.y * OssEvTile::Size);
        QMetaObject::invokeMethod(
            this,
            [this, generation, patch, place, picture, tile = arrival.tile] {
                arrive(generation, patch, place, picture, tile);
            },
            Qt::QueuedConnection);
    };
    request.onProgress = [this, generation, patch](int done, int total) {
        QMetaObject::invokeMethod(
            this,
            [this, generation, patch, done, total] { progress(generation, patch, done, total); },
            Qt::QueuedConnection);
    };
    request.onFinished = [this, generation](const OssEvOutcome &outcome) {
        if (outcome.error.empty())
            return;
        const QString problem = QString::fromStdString(outcome.error);
        QMetaObject::invokeMethod(
            this,
            [this, generation, problem] {
                if (generation == m_generation)
                    Q_EMIT began({}, m_shown.node ? m_shown.node->name() : QString(), problem);
            },
            Qt::QueuedConnection);
    };
    m_running.append(
        {OssEvaluationService::instance()->engine()->start(std::move(request)), patch, 0, 0});
}

void ViewerSource::arrive(int generation, int patch, const QPoint &place, const QImage &picture,
                          const OssEvTilePointer &tile)
{
    if (generation == m_generation)
        Q_EMIT tileArrived(patch, place, picture, tile);
}

void ViewerSource::progress(int generation, int patch, int done, int total)
{
    if (generation != m_generation)
        return;
    int allDone = 0;
    int all = 0;
    for (Running &request : m_running) {
        if (request.patch == patch) {
            request.done = done;
            request.total = total;
        }
        allDone += request.done;
        all += request.total;
    }
    Q_EMIT progressed(allDone, all);
}
