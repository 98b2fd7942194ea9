#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

class OssSnBaseNode;

namespace OssLayerShaderUtils {

/// The same as OssLayerShaderManager::isLayerShader().
OSSCOREMODULES_EXPORT bool isLayerShaderNode(const OssSnBaseNode *node);

} // namespace OssLayerShaderUtils
