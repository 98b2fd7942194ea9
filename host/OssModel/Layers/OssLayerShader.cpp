#include "OssModel/Layers/OssLayerShader.h"

#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"

OssLayerShader::OssLayerShader(OssSnBaseNode *node)
    : QObject(node)
{
}

OssSnBaseNode *OssLayerShader::node() const
{
    return static_cast<OssSnBaseNode *>(parent());
}

bool OssLayerShader::isStackShader() const
{
    return node()->hasTag(OssSnTags::stackShader());
}
