#include "OssCoreModules/Layers/OssLayerShaderManager.h"

#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"

OssLayerShaderManager *OssLayerShaderManager::instance()
{
    static OssLayerShaderManager manager;
    return &manager;
}

bool OssLayerShaderManager::isSystemShaderNode(const OssSnBaseNode *node, bool includeInside) const
{
    for (; node; node = node->network() ? node->network()->parentGroupNode() : nullptr) {
        if (node->hasTag(QStringLiteral("_systemShader")))
            return true;
        if (!includeInside)
            return false;
    }
    return false;
}
