#pragma once

#include "OssModel/OssModel_export.h"

class OssSnBaseNode;

namespace OssLayerShaderUtils {

/// The same as OssLayerShaderManager::isLayerShader().
OSSMODEL_EXPORT bool isLayerShaderNode(const OssSnBaseNode *node);

} // namespace OssLayerShaderUtils
