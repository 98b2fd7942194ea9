#include "OssSnGeoChannelNodeGraphViewContext.h"

#include "ZelGL/ZelTextureToken.h"

namespace {

const ZelTextureToken TextureToken;

} // namespace

OssSnBakePointNodeGraphViewContext::OssSnBakePointNodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, true)
{
}

OssSnBakePointNodeGraphViewContext::~OssSnBakePointNodeGraphViewContext() = default;

OssSnGeoChannelNodeGraphViewContext::OssSnGeoChannelNodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, true)
{
}

OssSnGeoChannelNodeGraphViewContext::~OssSnGeoChannelNodeGraphViewContext() = default;

OssSnBaseTeleportNodeGraphViewContext::OssSnBaseTeleportNodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, true)
{
}

OssSnBaseTeleportNodeGraphViewContext::~OssSnBaseTeleportNodeGraphViewContext() = default;
