#include "Ossa/Viewer/ViewerSource.h"

#include "Ossa/Viewer/ViewerHint.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Evaluation/OssViewedNode.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>
#include <iterator>

namespace {

constexpr int lookInterval = 16;  // milliseconds, of a frame
constexpr int longestHold = 1000; // milliseconds
constexpr int coarseResolution = 256;
constexpr double coarseShare = 0.1; // of the work

/// Of a material only one channel is seen as a picture.
QVector<QPointer<const OssSnBaseNode>> seenIn(const OssSnEvaluationGraph &graph)
{
    const std::vector<OssEvGraph::Node> &nodes = graph.graph->nodes();
    if (graph.node < 0)
        return {};
    const OssEvGraph::Node &target = nodes[std::size_t(graph.node)];
    if (!target.kernel || target.kernel->name != "material" || graph.output < 0)
        return graph.sources;
    const int channel = std::max(graph.output - 1, 0); // the material looks like the first
    const int from = target.inputs[std::size_t(channel)].node;
    QSet<QString> seen{QString::fromStdString(target.name)};
    for (const int node : from < 0 ? std::vector<int>() : graph.graph->upstream(from))
        seen.insert(QString::fromStdString(nodes[std::size_t(node)].name));
    QVector<QPointer<const OssSnBaseNode>> sources;
    std::copy_if(graph.sources.cbegin(), graph.sources.cend(), std::back_inserter(sources),
                 [&seen](const OssSnBaseNode *node) { return seen.contains(node->path()); });
    return sources;
}

} // namespace

ViewerSource::ViewerSource(QObject *parent)
    : QObject(parent)
{
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &ViewerSource::touch);
    connect(OssFileWatch::instance(), &OssFileWatch::changed, this, &ViewerSource::touch);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, &ViewerSource::touch);
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    connect(networks, &OssShaderNetworkManager::currentShaderNetworkChanged, this,
            &ViewerSource::touch);
    connect(networks, &OssShaderNetworkManager::graphRefreshRequested, this, [this] { refresh(); });
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this, [this] {
        stop();
        refresh();
    });
    connect(OssStatusManager::instance(), &OssStatusManager::stopAsked, this, &ViewerSource::halt);
    connect(OssUndoManager::instance(), &OssUndoManager::changedWithoutStep, this,
            &ViewerSource::wake);
    connect(OssSolo::instance(), &OssSolo::changed, this, &ViewerSource::wake);
    connect(&m_timer, &QTimer::timeout, this, &ViewerSource::look);
    m_timer.setInterval(lookInterval);
}

ViewerSource::~ViewerSource()
{
    stop();
}

const OssGeoEntity *ViewerSource::entity() const
{
    return m_entity;
}

bool ViewerSource::shows(const OssSnBaseNode *node) const
{
    return node && std::any_of(m_sources.cbegin(), m_sources.cend(), [node](const auto &source) {
               return source.data() == node;
           });
}

bool ViewerSource::dependsOn(const OssSnBaseNode *node) const
{
    return node && m_allSources.contains(node);
}

bool ViewerSource::showsOnly(const OssSnBaseNode *node) const
{
    return node && m_shown.node
           && OssSnProducer::of(m_shown.node, m_shown.outputPoint).node == node;
}

void ViewerSource::setActive(bool active)
{
    m_active = active;
    if (active) {
        wake();
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
            request.id, (place.x() - OssEvPatch::column(request.patch)) * request.resolution,
            (1.0 - (place.y() - OssEvPatch::row(request.patch))) * request.resolution);
}

QString ViewerSource::shownName() const
{
    if (!m_shown.node)
        return {};
    return m_shown.isSolo ? tr("Solo: %1").arg(m_shown.node->name()) : m_shown.node->name();
}

void ViewerSource::refresh()
{
    m_shown = {};
    touch();
}

void ViewerSource::touch()
{
    m_dirty = true;
    wake();
}

void ViewerSource::wake()
{
    if (m_active && !m_timer.isActive())
        m_timer.start();
}

void ViewerSource::look()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    const OssSnProducer now = OssViewedNode::now();
    const bool isSolo = OssSolo::instance()->node();
    const bool other = now.node != m_shown.node || now.outputPoint != m_shown.outputPoint
                       || isSolo != m_shown.isSolo;
    if (!m_dirty && !other) {
        m_timer.stop();
        return;
    }
    // Under a steady drag every coarse picture would otherwise make way for the next.
    if (m_coarseLeft > 0 && !other && m_sinceStart.elapsed() < longestHold)
        return;
    m_dirty = false;
    const QString key = OssSnResultKey::of(now.node, now.outputPoint);
    if (!other && key == m_shown.key && !key.isEmpty()) {
        m_expectsSame = false;
        if (m_toldName != shownName())
            Q_EMIT renamed(m_toldName = shownName());
        return;
    }
    m_shown = {now.node, now.outputPoint, key, isSolo};
    m_toldName = shownName();
    start(network ? network->geoEntity() : nullptr);
}

void ViewerSource::stop()
{
    ++m_generation;
    for (const Running &request : qAsConst(m_running))
        OssEvaluationService::instance()->engine()->cancel(request.id);
    m_running.clear();
    m_startFine = {};
    m_coarseLeft = 0;
    m_follower.reset();
}

void ViewerSource::start(const OssGeoEntity *entity)
{
    stop();
    m_entity = entity;
    m_sources.clear();
    m_allSources.clear();
    if (!m_shown.node) {
        const bool isOpen = OssProjectManager::instance()->currentProject();
        Q_EMIT began({}, {}, isOpen ? ViewerHint::whyNothing() : tr("No project is open"));
        return;
    }
    const OssSnEvaluationGraph graph = OssSnEvaluationGraph::of(m_shown.node, m_shown.outputPoint);
    m_sources = seenIn(graph);
    m_allSources = graph.sources;
    const OssMeshes::Look shape = OssMeshes::instance()->look(entity ? entity->source()
                                                                     : OssGeometrySource());
    if (!shape.mesh) {
        Q_EMIT began({}, shownName(),
                     shape.state == OssMeshes::State::Reading ? tr("The mesh is being read")
                                                              : shape.problem);
        return;
    }
    QList<int> patches;
    for (const int patch : shape.mesh->patches()) {
        if (graph.error.isEmpty())
            patches.append(patch);
    }
    const bool isOff = graph.node < 0 && OssViewedNode::off().node;
    Q_EMIT began(patches, shownName(), isOff ? ViewerHint::whyNothing() : graph.error);
    graph.tellProblem(graph.faulty, graph.error);
    follow(graph);
    const bool coarse = m_resolution > coarseResolution && !m_expectsSame;
    m_expectsSame = false;
    m_startFine = [this, graph, patches, entity = m_entity] {
        for (const int patch : patches)
            startPatch(graph, entity, patch, m_resolution);
        setFocus(m_focus);
    };
    m_coarseLeft = coarse ? patches.size() : 0;
    m_fineLeft = patches.size();
    m_patches = patches.size();
    m_told = 0;
    m_sinceStart.start();
    if (!coarse) {
        m_startFine();
        return;
    }
    for (const int patch : patches)
        startPatch(graph, entity, patch, coarseResolution);
    setFocus(m_focus);
}

void ViewerSource::follow(const OssSnEvaluationGraph &graph)
{
    // A value that is being dragged is no step of the history yet.
    m_follower = std::make_unique<QObject>();
    for (const OssSnBaseNode *node : graph.sources)
        connect(node, &OssSnBaseNode::userAttributeChanged, m_follower.get(), [this] { touch(); });
}

template <class Work>
void ViewerSource::later(const QPointer<ViewerSource> &self, int generation, Work work)
{
    QMetaObject::invokeMethod(
        qApp,
        [self, generation, work] {
            if (self && generation == self->m_generation)
                work(self.data());
        },
        Qt::QueuedConnection);
}

void ViewerSource::startPatch(const OssSnEvaluationGraph &graph, const OssGeoEntity *entity,
                              int patch, int resolution)
{
    OssEvRequest request;
    request.target = OssEvaluationService::instance()->target(graph, entity, patch, resolution);
    const int generation = m_generation;
    const ViewerLook look = m_look;
    const QPointer<ViewerSource> self(this);
    request.onTile = [self, generation, patch, resolution, look](const OssEvArrival &arrival) {
        const QImage picture = ViewerPixels::picture(*arrival.tile, look);
        const QPoint place(arrival.x * OssEvTile::Size, arrival.y * OssEvTile::Size);
        later(self, generation, [=, tile = arrival.tile](ViewerSource *source) {
            Q_EMIT source->tileArrived(patch, resolution, place, picture, tile);
        });
    };
    request.onProgress = [self, generation, patch, resolution](int done, int total) {
        later(self, generation,
              [=](ViewerSource *source) { source->progress(patch, resolution, done, total); });
    };
    request.onFinished = [self, generation, graph, resolution](const OssEvOutcome &outcome) {
        later(self, generation,
              [=](ViewerSource *source) { source->finish(graph, resolution, outcome); });
    };
    m_running.append({OssEvaluationService::instance()->engine()->start(std::move(request)), patch,
                      resolution, 0.0});
}

void ViewerSource::finish(const OssSnEvaluationGraph &graph, int resolution,
                          const OssEvOutcome &outcome)
{
    if (!outcome.error.empty()) {
        const QString problem = QString::fromStdString(outcome.error);
        graph.tellProblem(outcome.node, problem);
        stop(); // the other patches have the same fault
        Q_EMIT began({}, shownName(), problem);
        return;
    }
    if (outcome.ok() && resolution == m_resolution && --m_fineLeft == 0) {
        tellProgress(resolution);
        graph.tellSuccess();
    }
    if (resolution < m_resolution && --m_coarseLeft == 0)
        m_startFine();
}

void ViewerSource::progress(int patch, int resolution, int done, int total)
{
    for (Running &request : m_running) {
        if (request.resolution == resolution && request.patch == patch && total > 0)
            request.done = std::max(request.done, double(done) / total); // they come in any order
    }
    tellProgress(resolution);
}

// A patch counts as much as any other, whether it is known by now how much there is to do for it.
void ViewerSource::tellProgress(int resolution)
{
    const bool hasCoarse = std::any_of(
        m_running.cbegin(), m_running.cend(),
        [this](const Running &request) { return request.resolution < m_resolution; });
    double all = 0.0;
    for (const Running &request : qAsConst(m_running)) {
        const bool isCoarse = request.resolution < m_resolution;
        all += request.done * (isCoarse ? coarseShare : hasCoarse ? 1.0 - coarseShare : 1.0);
    }
    const bool isDone = m_fineLeft == 0;
    m_told = isDone ? 1000 : std::clamp(int(1000.0 * all / std::max(1, m_patches)), m_told, 999);
    Q_EMIT progressed(m_told,
                      resolution < m_resolution ? tr("preview") : tr("%1 pixels").arg(resolution));
}

bool ViewerSource::makeWay()
{
    if (m_running.isEmpty() || m_told == 1000)
        return false;
    stop();
    m_told = 1000;
    Q_EMIT progressed(m_told, {});
    return true;
}

void ViewerSource::halt()
{
    if (makeWay())
        OssStatusManager::instance()->showMessage(
            tr("The Viewer's picture was stopped. The next change begins it again."));
}
