// What the operations over several nodes know of particular kinds.
#include "OssModel/Graph/OssShaderNetworkUtils.h"

#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnGeoChannelNode.h"
#include "OssModel/Nodes/OssSnMultiChannelBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"

#include <algorithm>

QList<OssSnBakePointNode *> OssShaderNetworkUtils::bakePointsAmong(
    const QList<OssSnBaseNode *> &nodes)
{
    using Streams = OssSnMultiChannelBakePointNode;
    QList<OssSnBakePointNode *> found;
    const auto add = [&found](OssSnBakePointNode *node) {
        if (!found.contains(node))
            found.append(node);
    };
    for (OssSnBaseNode *node : nodes) {
        if (const auto *streams = qobject_cast<const Streams *>(node)) {
            const QList<OssSnBakePointNode *> fed = streams->activeBakePointNodes();
            std::for_each(fed.cbegin(), fed.cend(), add);
        }
        OssSnBakePointNode *bakePoint = asTrueBakePointNode(node);
        if (!bakePoint)
            continue;
        const auto *around = node->network()
                                 ? qobject_cast<Streams *>(node->network()->parentGroupNode())
                                 : nullptr;
        if (!around || around->activeBakePointNodes().contains(bakePoint))
            add(bakePoint);
    }
    return found;
}

OssSnImageSetNodeBase *OssShaderNetworkUtils::asTrueImageSetNode(OssSnBaseNode *node)
{
    return qobject_cast<OssSnImageSetNodeBase *>(node);
}

OssSnBakePointNode *OssShaderNetworkUtils::asTrueBakePointNode(OssSnBaseNode *node)
{
    return qobject_cast<OssSnBakePointNode *>(node);
}

OssImageSet *OssShaderNetworkUtils::imageSetOf(const OssSnBaseNode *node)
{
    if (const auto *images = qobject_cast<const OssSnImageSetNodeBase *>(node))
        return images->imageSet();
    const auto *geoChannel = qobject_cast<const OssSnGeoChannelNode *>(node);
    const OssGeoImageSet *channel = geoChannel ? geoChannel->geoImageSet() : nullptr;
    return channel ? channel->imageSet() : nullptr;
}

bool OssShaderNetworkUtils::readsPixels(const OssSnBaseNode *node)
{
    const OssImageSet *images = imageSetOf(node);
    return images && !images->pixels().isEmpty();
}

QList<OssSnBakePointNode *> OssShaderNetworkUtils::getUpstreamBakePointNodes(
    const QList<OssSnBaseNode *> &nodes)
{
    return bakePointsAmong(getUpstreamNodes(nodes, true, true));
}

QList<OssSnBakePointNode *> OssShaderNetworkUtils::getDownstreamBakePointNodes(
    const QList<OssSnBaseNode *> &nodes)
{
    return bakePointsAmong(getDownstreamNodes(nodes, true, true));
}
