// What the operations over several nodes know of particular kinds.
#include "OssModel/Graph/OssShaderNetworkUtils.h"

#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnGeoChannelNode.h"
#include "OssModel/Objects/OssImageSet.h"

namespace {

QList<OssSnBakePointNode *> bakePointsAmong(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBakePointNode *> found;
    for (OssSnBaseNode *node : nodes) {
        if (OssSnBakePointNode *bakePoint = OssShaderNetworkUtils::asTrueBakePointNode(node))
            found.append(bakePoint);
    }
    return found;
}

} // namespace

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
