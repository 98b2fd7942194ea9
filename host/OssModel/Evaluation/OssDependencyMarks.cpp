#include "OssModel/Evaluation/OssDependencyMarks.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnUpstream.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

constexpr double UsualPatch = 2048.0 * 2048.0; // texels

double costOf(const OssSnBaseNode *node, const OssEvStatistics &statistics)
{
    const auto found = statistics.costs.find(node->path().toStdString());
    return found == statistics.costs.end() || found->second.texels == 0
               ? 0.0
               : found->second.seconds / double(found->second.texels);
}

/// From turquoise, for what costs nothing, to red. Blue would look as if it were selected.
QColor colorOf(double share)
{
    constexpr double Turquoise = 0.47;
    return QColor::fromHsvF(Turquoise * (1.0 - std::sqrt(std::clamp(share, 0.0, 1.0))), 0.75, 0.95);
}

QVector<OssSnProducer> producersOf(const OssSnBaseNode *node, QVector<OssSnWireEnd> *way)
{
    QVector<OssSnProducer> producers;
    for (const OssSnBaseNode::OutputPoint &point : node->outputPoints())
        producers.append(OssSnProducer::of(node, point.name, way));
    if (node->outputPoints().isEmpty()) { // a viewer, or an end of a group
        for (const OssSnBaseNode::InputPort &port : node->inputPorts())
            producers.append(OssSnProducer::ofInput(node, port.name, way));
    }
    return producers;
}

/// Visits each node that computes something for one of the nodes once, and tells the wires.
template <class Visit>
void visitSources(const QList<OssSnBaseNode *> &nodes, QVector<OssSnWireEnd> *way, Visit visit)
{
    QSet<const OssSnBaseNode *> seen;
    for (const OssSnBaseNode *node : nodes) {
        const QVector<OssSnProducer> producers = producersOf(node, way);
        for (const OssSnProducer &producer : producers) {
            if (!producer.node || seen.contains(producer.node))
                continue;
            OssSnUpstream::walk(producer.node, [&](const OssSnBaseNode *source,
                                                   const QVector<OssSnUpstream::Input> &inputs) {
                if (seen.contains(source))
                    return;
                seen.insert(source);
                for (const OssSnUpstream::Input &input : inputs)
                    OssSnProducer::ofInput(source, input.name, way);
                visit(const_cast<OssSnBaseNode *>(source));
            });
        }
    }
}

QVector<OssDependencyMarks::Cost> costsAndWires(const QList<OssSnBaseNode *> &nodes,
                                                QVector<OssSnWireEnd> *way)
{
    const OssEvStatistics statistics = OssEvaluationService::instance()->engine()->statistics();
    QVector<OssDependencyMarks::Cost> costs;
    visitSources(nodes, way, [&](OssSnBaseNode *source) {
        costs.append({source, costOf(source, statistics)});
    });
    return costs;
}

/// "350 ms", "22.1 s".
QString duration(double perTexel)
{
    const double seconds = perTexel * UsualPatch;
    return seconds < 1.0 ? OssDependencyMarks::tr("%1 ms").arg(seconds * 1e3, 0, 'f', 0)
                         : OssDependencyMarks::tr("%1 s").arg(seconds, 0, 'f', 1);
}

double sumOf(const QVector<OssDependencyMarks::Cost> &costs)
{
    double sum = 0.0;
    for (const OssDependencyMarks::Cost &cost : costs)
        sum += cost.perTexel;
    return sum;
}

} // namespace

OssDependencyMarks::OssDependencyMarks()
{
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::nodeGraphIsManuallyChanged, this,
            &OssDependencyMarks::refresh);
    const OssUndoManager *history = OssUndoManager::instance();
    connect(history, &OssUndoManager::undone, this, &OssDependencyMarks::refresh);
    connect(history, &OssUndoManager::redone, this, &OssDependencyMarks::refresh);
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::currentShaderNetworkChanged, this,
            [this](const OssShaderNetwork *network) {
                if (!network) // the project is closed
                    mark({});
            });
}

QVector<OssDependencyMarks::Cost> OssDependencyMarks::costs(const QList<OssSnBaseNode *> &nodes)
{
    QVector<OssSnWireEnd> way;
    return costsAndWires(nodes, &way);
}

void OssDependencyMarks::mark(const QList<OssSnBaseNode *> &nodes)
{
    m_nodes.clear();
    for (OssSnBaseNode *node : nodes)
        m_nodes.append(node);
    QVector<OssSnWireEnd> way;
    m_costs = costsAndWires(nodes, &way);
    // A group costs what is inside it.
    QHash<OssSnBaseNode *, double> perTexel;
    for (const Cost &cost : qAsConst(m_costs)) {
        perTexel[cost.node] += cost.perTexel;
        const OssShaderNetwork *network = cost.node->network();
        while (OssSnGroupNode *group = network ? network->parentGroupNode() : nullptr) {
            perTexel[group] += cost.perTexel;
            network = group->network();
        }
    }
    double most = 0.0;
    for (const double cost : qAsConst(perTexel))
        most = std::max(most, cost);
    OssShaderNetworkManager::DebugNodes colors;
    for (auto node = perTexel.cbegin(); node != perTexel.cend(); ++node)
        colors.insert(node.key()->uuidString(), colorOf(most > 0.0 ? *node / most : 0.0));
    OssShaderNetworkManager::DebugInputs wires;
    for (const OssSnWireEnd &end : qAsConst(way))
        wires[end.node->uuidString()].insert(end.input, colorOf(0.0));
    OssShaderNetworkManager::instance()->setDebugNodes(colors, wires);
}

void OssDependencyMarks::refresh()
{
    if (m_nodes.isEmpty())
        return;
    QList<OssSnBaseNode *> there;
    for (const QPointer<OssSnBaseNode> &node : qAsConst(m_nodes)) {
        if (node && node->network())
            there.append(node);
    }
    mark(there);
}

QString OssDependencyMarks::inWords() const
{
    if (m_nodes.isEmpty())
        return {};
    const double sum = sumOf(m_costs);
    const QString count = m_costs.size() == 1
                              ? tr("1 node computes what was selected")
                              : tr("%1 nodes compute what was selected").arg(m_costs.size());
    if (sum <= 0.0)
        return tr("%1; none was computed in this session").arg(count);
    const auto dearest = std::max_element(
        m_costs.cbegin(), m_costs.cend(),
        [](const Cost &a, const Cost &b) { return a.perTexel < b.perTexel; });
    return tr("%1: %2 for a patch of 2048 \u00d7 2048, of which %3 for %4")
        .arg(count, duration(sum), duration(dearest->perTexel), dearest->node->name());
}

QString OssDependencyMarks::shareOf(const OssSnBaseNode *node) const
{
    const auto found = std::find_if(m_costs.cbegin(), m_costs.cend(),
                                    [node](const Cost &cost) { return cost.node == node; });
    const double sum = sumOf(m_costs);
    if (found == m_costs.cend() || sum <= 0.0)
        return {};
    return tr("%1, %2 % of what is marked")
        .arg(duration(found->perTexel))
        .arg(100.0 * found->perTexel / sum, 0, 'f', 0);
}
