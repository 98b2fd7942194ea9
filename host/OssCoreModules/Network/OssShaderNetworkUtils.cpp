#include "OssCoreModules/Network/OssShaderNetworkUtils.h"

#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Layers/OssLayerStreamUtils.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssSnBakePointNode.h"
#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"
#include "OssCoreModules/Network/OssSnImageSetNodeBase.h"

#include <algorithm>

namespace {

OssSnGroupNode *groupAround(const OssSnBaseNode *node, const QString &portTag)
{
    return node->hasTag(portTag) && node->network() ? node->network()->parentGroupNode() : nullptr;
}

/// Breadth first. `next` appends the neighbours of a node.
template <class Next, class Visit>
void walkFrom(OssSnBaseNode *start, Next next, Visit visit)
{
    if (!start)
        return;
    QSet<OssSnBaseNode *> seen{start};
    QList<OssSnBaseNode *> open{start};
    for (int i = 0; i < open.size(); ++i) {
        OssSnBaseNode *node = open.at(i);
        visit(node);
        QList<OssSnBaseNode *> neighbours;
        next(node, &neighbours);
        for (OssSnBaseNode *neighbour : qAsConst(neighbours)) {
            if (neighbour && !seen.contains(neighbour)) {
                seen.insert(neighbour);
                open.append(neighbour);
            }
        }
    }
}

class UpstreamCollector final : public OssShaderNetworkUtils::OssNodeWalkerUpstream
{
public:
    UpstreamCollector(bool leaveGroups, bool wholeGraph)
        : OssNodeWalkerUpstream(leaveGroups)
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
    DownstreamCollector(bool leaveGroups, bool wholeGraph)
        : OssNodeWalkerDownstream(leaveGroups)
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
                                                         bool notify, bool replace, bool batch)
{
    return node && node->connectInput(input, source, outputPoint, record, notify, replace, batch);
}

OssSnImageSetNodeBase *OssShaderNetworkUtils::asTrueImageSetNode(OssSnBaseNode *node)
{
    return qobject_cast<OssSnImageSetNodeBase *>(node);
}

OssSnBakePointNode *OssShaderNetworkUtils::asTrueBakePointNode(OssSnBaseNode *node)
{
    return qobject_cast<OssSnBakePointNode *>(node);
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

void OssShaderNetworkUtils::OssNodeWalkerUpstream::walk(OssSnBaseNode *start)
{
    walkFrom(
        start,
        [this](OssSnBaseNode *node, QList<OssSnBaseNode *> *sources) {
            for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
                if (port.source && enters(node, port.name))
                    sources->append(port.source);
            }
            const OssSnGroupNode *group = m_leaveGroups
                                              ? groupAround(node, QStringLiteral("_input"))
                                              : nullptr;
            if (group && enters(group, node->name()))
                sources->append(group->inputNode(node->name()));
        },
        [this](OssSnBaseNode *node) { visit(node); });
}

void OssShaderNetworkUtils::OssNodeWalkerDownstream::walk(OssSnBaseNode *start)
{
    walkFrom(
        start,
        [this](OssSnBaseNode *node, QList<OssSnBaseNode *> *targets) {
            const auto follow = [&](const OssSnBaseNode *from, const QString &only) {
                for (const OssSnBaseNode::OutgoingConnection &wire : from->outgoingConnections()) {
                    if ((only.isEmpty() || wire.outputPoint == only)
                        && leaves(from, wire.outputPoint) && enters(wire.target, wire.input))
                        targets->append(wire.target);
                }
            };
            follow(node, {});
            const OssSnGroupNode *group = m_leaveGroups
                                              ? groupAround(node, QStringLiteral("_output"))
                                              : nullptr;
            if (group)
                follow(group, node->name());
        },
        [this](OssSnBaseNode *node) { visit(node); });
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

QList<OssSnBaseNode *> OssShaderNetworkUtils::getUpstreamNodes(OssSnBaseNode *node,
                                                               bool leaveGroups, bool wholeGraph,
                                                               bool includeStart)
{
    UpstreamCollector collector(leaveGroups, wholeGraph);
    collector.walk(node);
    return includeStart ? collector.found : collector.found.mid(1);
}

QList<OssSnBaseNode *> OssShaderNetworkUtils::getDownstreamNodes(OssSnBaseNode *node,
                                                                 bool leaveGroups, bool wholeGraph)
{
    DownstreamCollector collector(leaveGroups, wholeGraph);
    collector.walk(node);
    return collector.found.mid(1);
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
    QSet<OssSnBaseNode *> above;
    QList<OssSnBaseNode *> below;
    for (OssSnBaseNode *node : nodes) {
        const QList<OssSnBaseNode *> up = getUpstreamNodes(node, false, true, false);
        above.unite(QSet<OssSnBaseNode *>(up.cbegin(), up.cend()));
        below.append(getDownstreamNodes(node, false, true));
    }
    QList<OssSnBaseNode *> between;
    QSet<OssSnBaseNode *> seen(nodes.cbegin(), nodes.cend());
    for (OssSnBaseNode *node : qAsConst(below)) {
        if (above.contains(node) && !seen.contains(node)) {
            seen.insert(node);
            between.append(node);
        }
    }
    return between;
}
