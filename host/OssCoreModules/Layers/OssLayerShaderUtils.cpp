#include "OssCoreModules/Layers/OssLayerShaderUtils.h"

#include "OssCoreModules/Layers/OssLayerShaderManager.h"

bool OssLayerShaderUtils::isLayerShaderNode(const OssSnBaseNode *node)
{
    return OssLayerShaderManager::instance()->isLayerShader(node);
}
