#include "OssModel/Layers/OssLayerShaderUtils.h"

#include "OssModel/Layers/OssLayerShaderManager.h"

bool OssLayerShaderUtils::isLayerShaderNode(const OssSnBaseNode *node)
{
    return OssLayerShaderManager::instance()->isLayerShader(node);
}
