#include "OssModel/Graph/OssShaderNetworkUtils.h"

#include "OssCore/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"

#include <algorithm>

namespace {

OssSnGroupNode *groupAround(const OssSnBaseNode *node, const QString &portTag)
{
    return node->hasTag(portTag) && node->network() ? node->network()->parentGroupNode() : nullptr;
}

/// Breadth first, from nodes that differ. `next` gives the neighbours of a node.
template <class Next, class Visit>
void spread(QList<OssSnBaseNode *> open, Next next, Visit visit)
{
    QSet<OssSnBaseNode *> seen(open.cbegin(), open.cend());
    for (int i = 0; i < open.size(); ++i) {
        OssSnBaseNode *node = open.at(i);
        visit(node);
        const QList<OssSnBaseNode *> neighbours = next(node);
        for (OssSnBaseNode *neighbour : neighbours) {
            if (neighbour && !seen.contains(neighbour)) {
                seen.insert(neighbour);
                open.append(neighbour);
            }
        }
    }
}

template <class Next>
QList<OssSnBaseNode *> neighboursOf(const QList<OssSnBaseNode *> &nodes, Next next)
{
    QSet<OssSnBaseNode *> seen{nullptr};
    QList<OssSnBaseNode *> found;
    for (OssSnBaseNode *node : nodes) {
        const QList<OssSnBaseNode *> neighbours = next(node);
        for (OssSnBaseNode *neighbour : neighbours) {
            if (!seen.contains(neighbour)) {
                seen.insert(neighbour);
                found.append(neighbour);
            }
        }
    }
    return found;
}

class UpstreamCollector final : public OssShaderNetworkUtils::OssNodeWalkerUpstream
{
public:
    UpstreamCollector(bool throughGroups, bool wholeGraph)
        : OssNodeWalkerUpstream(throughGroups)
        , m_wholeGraph(wholeGraph)
    {
    }

    QList<OssSnBaseNode *> found;

protected:
    void visit(OssSnBaseNode *node) override { found.append(node); }

    bool enters(const OssSnBaseNode *node, const QString &input) const override
    {
        return m_wholeGraph || input == OssShaderNetworkUtils::streamInput(node);
    }

private:
    bool m_wholeGraph;
};

class DownstreamCollector final : public OssShaderNetworkUtils::OssNodeWalkerDownstream
{
public:
    DownstreamCollector(bool throughGroups, bool wholeGraph)
        : OssNodeWalkerDownstream(throughGroups)
        , m_wholeGraph(wholeGraph)
    {
    }

    QList<OssSnBaseNode *> found;

protected:
    void visit(OssSnBaseNode *node) override { found.append(node); }

    bool enters(const OssSnBaseNode *node, const QString &input) const override
    {
        return m_wholeGraph || input == OssShaderNetworkUtils::streamInput(node);
    }

private:
    bool m_wholeGraph;
};

QList<OssSnBaseNode *> siblings(const OssSnBaseNode *node)
{
    QList<OssSnBaseNode *> found;
    const auto add = [&found](OssSnBaseNode *sibling) {
        if (sibling && !found.contains(sibling))
            found.append(sibling);
    };
    for (OssSnBaseNode *follower : node->outputNodes()) {
        if (follower->hasTag(QStringLiteral("_viewer")))
            continue;
        for (OssSnBaseNode *sibling : follower->inputNodes())
            add(sibling);
        return found;
    }
    const QString input = OssShaderNetworkUtils::streamInput(node);
    if (const OssSnBaseNode *source = node->inputNode(input)) {
        for (OssSnBaseNode *sibling : source->outputNodes()) {
            if (!sibling->hasTag(QStringLiteral("_viewer")))
                add(sibling);
        }
    }
    return found;
}

OssSnBaseNode *siblingAt(const OssSnBaseNode *node, int way)
{
    if (!node)
        return nullptr;
    const QList<OssSnBaseNode *> all = siblings(node);
    const int place = all.indexOf(const_cast<OssSnBaseNode *>(node));
    return place < 0 ? nullptr : all.value(place + way, nullptr);
}

} // namespace

bool OssShaderNetworkUtils::setInputNodeBatchConnectable(OssSnBaseNode *node, const QString &input,
                                                         OssSnBaseNode *source,
                                                         const QString &outputPoint, bool record,
                                                         bool notify, bool acrossNetworks,
                                                         bool batch)
{
    return node
           && node->connectInput(input, source, outputPoint, record, notify, acrossNetworks, batch);
}

bool OssShaderNetworkUtils::batchConnect(OssSnBaseNode *source, OssSnBaseNode *target)
{
    if (!source || !target)
        return false;
    const OssUndoManager::AutoMacro macro(QStringLiteral("Connect Streams"));
    bool connected = false;
    const QStringList outputs = source->outputPointNames();
    for (const QString &output : outputs) {
        if (target->hasInput(output) && !target->inputNode(output))
            connected = target->setInputNode(output, source, output) || connected;
    }
    return connected;
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::OssNodeWalkerUpstream::next(OssSnBaseNode *node) const
{
    QList<OssSnBaseNode *> sources;
    const auto follow = [&](const OssSnBaseNode *target, const OssSnBaseNode::InputPort &port) {
        if (!port.source || !enters(target, port.name))
            return;
        sources.append(port.source);
        const auto *group = m_throughGroups ? qobject_cast<OssSnGroupNode *>(port.source) : nullptr;
        if (group)
            sources.append(group->outputNodeInside(port.sourceOutput));
    };
    for (const OssSnBaseNode::InputPort &port : node->inputPorts())
        follow(node, port);
    if (m_throughGroups) {
        if (const OssSnGroupNode *around = groupAround(node, QStringLiteral("_input"))) {
            for (const OssSnBaseNode::InputPort &port : around->inputPorts()) {
                if (port.name == node->name())
                    follow(around, port);
            }
        }
    }
    return sources;
}

/// What makes the outputs of a group.
QList<OssSnBaseNode *> OssShaderNetworkUtils::OssNodeWalkerUpstream::insideOf(
    const OssSnBaseNode *node) const
{
    const auto *group = m_throughGroups ? qobject_cast<const OssSnGroupNode *>(node) : nullptr;
    return group ? group->outputNodesInside() : QList<OssSnBaseNode *>();
}

void OssShaderNetworkUtils::OssNodeWalkerUpstream::walk(OssSnBaseNode *start)
{
    if (!start)
        return;
    QList<OssSnBaseNode *> open{start};
    open.append(insideOf(start));
    spread(
        open, [this](OssSnBaseNode *node) { return next(node); },
        [this](OssSnBaseNode *node) { visit(node); });
}

void OssShaderNetworkUtils::OssNodeWalkerUpstream::walkBeyond(const QList<OssSnBaseNode *> &starts)
{
    const auto sources = [this](OssSnBaseNode *node) {
        return next(node);
    };
    QList<OssSnBaseNode *> all = starts;
    for (const OssSnBaseNode *start : starts)
        all.append(insideOf(start));
    spread(neighboursOf(all, sources), sources, [this](OssSnBaseNode *node) { visit(node); });
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::OssNodeWalkerDownstream::next(
    OssSnBaseNode *node) const
{
    QList<OssSnBaseNode *> targets;
    const auto follow = [&](const OssSnBaseNode *from, const QString &only) {
        for (const OssSnBaseNode::OutgoingConnection &wire : from->outgoingConnections()) {
            if ((!only.isEmpty() && wire.outputPoint != only) || !leaves(from, wire.outputPoint)
                || !enters(wire.target, wire.input))
                continue;
            targets.append(wire.target);
            const auto *group = m_throughGroups ? qobject_cast<OssSnGroupNode *>(wire.target)
                                                : nullptr;
            if (group)
                targets.append(group->inputNodeInside(wire.input));
        }
    };
    follow(node, {});
    if (m_throughGroups) {
        if (const OssSnGroupNode *around = groupAround(node, QStringLiteral("_output")))
            follow(around, node->name());
    }
    return targets;
}

void OssShaderNetworkUtils::OssNodeWalkerDownstream::walk(OssSnBaseNode *start)
{
    if (start)
        spread(
            {start}, [this](OssSnBaseNode *node) { return next(node); },
            [this](OssSnBaseNode *node) { visit(node); });
}

void OssShaderNetworkUtils::OssNodeWalkerDownstream::walkBeyond(
    const QList<OssSnBaseNode *> &starts)
{
    const auto targets = [this](OssSnBaseNode *node) {
        return next(node);
    };
    spread(neighboursOf(starts, targets), targets, [this](OssSnBaseNode *node) { visit(node); });
}

QString OssShaderNetworkUtils::streamInput(const OssSnBaseNode *node)
{
    QString first;
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (!port.source)
            continue;
        if (OssLayerStreamUtils::isBaseInput(node, port.name))
            return port.name;
        if (port.preferred && !OssLayerStreamUtils::isMergeNode(node))
            return port.name;
        if (first.isEmpty())
            first = port.name;
    }
    return first;
}

QString OssShaderNetworkUtils::streamInput(const OssSnBaseNode *node, const QString &outputPoint)
{
    if (node->hasStreams()) {
        for (const QString &input : {OssLayerStreamUtils::baseInputName(outputPoint),
                                     OssLayerStreamUtils::inputName(outputPoint)}) {
            if (node->hasInput(input))
                return node->inputNode(input) ? input : QString();
        }
    }
    return streamInput(node);
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getUpstreamNodes(OssSnBaseNode *node,
                                                               bool throughGroups, bool wholeGraph,
                                                               bool includeStart)
{
    UpstreamCollector collector(throughGroups, wholeGraph);
    collector.walk(node);
    return includeStart ? collector.found : collector.found.mid(1);
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getDownstreamNodes(OssSnBaseNode *node,
                                                                 bool throughGroups,
                                                                 bool wholeGraph)
{
    DownstreamCollector collector(throughGroups, wholeGraph);
    collector.walk(node);
    return collector.found.mid(1);
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getUpstreamNodes(const QList<OssSnBaseNode *> &nodes,
                                                               bool throughGroups, bool wholeGraph)
{
    UpstreamCollector collector(throughGroups, wholeGraph);
    collector.walkBeyond(nodes);
    return collector.found;
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getDownstreamNodes(
    const QList<OssSnBaseNode *> &nodes, bool throughGroups, bool wholeGraph)
{
    DownstreamCollector collector(throughGroups, wholeGraph);
    collector.walkBeyond(nodes);
    return collector.found;
}

OssSnBaseNode *OssShaderNetworkUtils::nextSibling(const OssSnBaseNode *node)
{
    return siblingAt(node, 1);
}

OssSnBaseNode *OssShaderNetworkUtils::prevSibling(const OssSnBaseNode *node)
{
    return siblingAt(node, -1);
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::nodesBetween(const QList<OssSnBaseNode *> &nodes)
{
    const QList<OssSnBaseNode *> up = getUpstreamNodes(nodes, false, true);
    const QSet<OssSnBaseNode *> above(up.cbegin(), up.cend());
    const QList<OssSnBaseNode *> below = getDownstreamNodes(nodes, false, true);
    QList<OssSnBaseNode *> between;
    QSet<OssSnBaseNode *> seen(nodes.cbegin(), nodes.cend());
    for (OssSnBaseNode *node : below) {
        if (above.contains(node) && !seen.contains(node)) {
            seen.insert(node);
            between.append(node);
        }
    }
    return between;
}
