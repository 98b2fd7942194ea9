#include "OssModel/Graph/OssShaderNetworkUtils.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssNodeWalker.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QSet>

namespace {

/// What a walk meets; only along one stream unless the whole graph is meant.
template <class Walker>
class Collector final : public Walker
{
public:
    Collector(bool throughGroups, bool wholeGraph)
        : Walker(throughGroups)
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

using UpstreamCollector = Collector<OssShaderNetworkUtils::OssNodeWalkerUpstream>;
using DownstreamCollector = Collector<OssShaderNetworkUtils::OssNodeWalkerDownstream>;

QList<OssSnBaseNode *> siblings(const OssSnBaseNode *node)
{
    QList<OssSnBaseNode *> found;
    const auto add = [&found](OssSnBaseNode *sibling) {
        if (sibling && !found.contains(sibling))
            found.append(sibling);
    };
    for (OssSnBaseNode *follower : node->outputNodes()) {
        if (follower->hasTag(OssSnTags::viewer()))
            continue;
        for (OssSnBaseNode *sibling : follower->inputNodes())
            add(sibling);
        return found;
    }
    const QString input = OssShaderNetworkUtils::streamInput(node);
    if (const OssSnBaseNode *source = node->inputNode(input)) {
        for (OssSnBaseNode *sibling : source->outputNodes()) {
            if (!sibling->hasTag(OssSnTags::viewer()))
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
