#include "OssModel/Nodes/OssSnProducer.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"
#include "OssModel/Nodes/OssSnTeleportNodeManager.h"
#include "OssModel/Types/OssSnTags.h"

namespace {

/// Ways through teleports may close a loop that wires cannot.
constexpr int LongestWay = 10000;

/// What is seen on the way.
struct Way
{
    QVector<OssSnWireEnd> *wires = nullptr; ///< may be null
    OssSnWireEnd off;                       ///< where it ends, if that is switched off
};

OssSnProducer feeding(const OssSnBaseNode *node, const QString &input, Way *way)
{
    if (!node)
        return {};
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (port.name != input || !port.source)
            continue;
        if (!port.enabled) {
            way->off = {node, input};
            continue;
        }
        if (way->wires)
            way->wires->append({node, input});
        return {port.source, port.sourceOutput};
    }
    return {};
}

QString firstInput(const OssSnBaseNode *node)
{
    return node && !node->inputPorts().isEmpty() ? node->inputPorts().first().name : QString();
}

bool passesOn(const OssSnBaseNode *node)
{
    return node->hasTag(OssSnTags::dot()) || node->hasTag(OssSnTags::splitMaterial())
           || node->hasTag(OssSnTags::output())
           || (node->nodeType() && node->nodeType()->kernel == QLatin1String("pass"));
}

bool isSplitting(const OssSnBaseNode *node)
{
    return node->hasTag(OssSnTags::splitMaterial()) && node->enabledAsBool() && !node->isBypassed();
}

/// What computes each of a material's channels, though only the material is an output of the node.
bool isMaterial(const OssSnBaseNode *node)
{
    return node->nodeType() && node->nodeType()->kernel == QLatin1String("material");
}

/// One step towards what computes; false when the node itself does.
bool step(OssSnProducer *at, Way *way)
{
    const OssSnBaseNode *node = at->node;
    if (!node->enabledAsBool() || node->isBypassed()) {
        *at = feeding(node, OssShaderNetworkUtils::streamInput(node, at->outputPoint), way);
        return true;
    }
    if (const auto *group = qobject_cast<const OssSnGroupNode *>(node)) {
        *at = {group->outputNodeInside(at->outputPoint), {}};
        return true;
    }
    const OssSnGroupNode *around = node->hasTag(OssSnTags::input()) && node->network()
                                       ? node->network()->parentGroupNode()
                                       : nullptr;
    if (around) {
        *at = feeding(around, node->name(), way);
        return true;
    }
    const auto *teleport = qobject_cast<const OssSnBaseTeleportNode *>(node);
    if (teleport && !teleport->isBroadcast()) {
        const OssSnBaseNode *heard = OssSnTeleportNodeManager::instance()->broadcastNode(
            node->network(), teleport->channelName());
        *at = feeding(heard, firstInput(heard), way);
        return true;
    }
    if (!passesOn(node))
        return false;
    *at = feeding(node, firstInput(node), way);
    return true;
}

OssSnProducer follow(const OssSnProducer &from, Way *way)
{
    OssSnProducer at = from;
    QString channel; // of a material that is split on the way
    for (int steps = 0; at.node; ++steps) {
        if (steps > LongestWay)
            return {};
        if (isSplitting(at.node))
            channel = at.outputPoint;
        if (!step(&at, way))
            break;
    }
    if (channel.isEmpty() || !at.node)
        return at;
    return isMaterial(at.node) ? OssSnProducer{at.node, channel} : OssSnProducer{};
}

} // namespace

OssSnProducer OssSnProducer::of(const OssSnBaseNode *node, const QString &outputPoint,
                                QVector<OssSnWireEnd> *wires)
{
    Way way{wires, {}};
    return follow({node, outputPoint}, &way);
}

OssSnProducer OssSnProducer::ofInput(const OssSnBaseNode *node, const QString &input,
                                     QVector<OssSnWireEnd> *wires)
{
    Way way{wires, {}};
    return follow(feeding(node, input, &way), &way);
}

OssSnWireEnd OssSnProducer::offAtInput(const OssSnBaseNode *node, const QString &input)
{
    Way way{nullptr, {}};
    follow(feeding(node, input, &way), &way);
    return way.off;
}

OssSnWireEnd OssSnProducer::offBehind(const OssSnBaseNode *node, const QString &outputPoint)
{
    Way way{nullptr, {}};
    follow({node, outputPoint}, &way);
    return way.off;
}
