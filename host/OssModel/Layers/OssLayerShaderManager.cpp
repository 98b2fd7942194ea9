#include "OssModel/Layers/OssLayerShaderManager.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Layers/OssLayerManager.h"
#include "OssModel/Layers/OssLayerShader.h"
#include "OssModel/Types/OssSnTags.h"

bool OssLayerShaderManager::isSystemShaderNode(const OssSnBaseNode *node, bool includeInside) const
{
    for (; node; node = node->network() ? node->network()->parentGroupNode() : nullptr) {
        if (node->hasTag(OssSnTags::systemShader()))
            return true;
        if (!includeInside)
            return false;
    }
    return false;
}

bool OssLayerShaderManager::isLayerShader(const OssSnBaseNode *node) const
{
    return node && node->hasTag(OssSnTags::shader()) && !qobject_cast<const OssSnGroupNode *>(node);
}

OssLayerShader *OssLayerShaderManager::getLayerShader(OssSnBaseNode *node) const
{
    if (!isLayerShader(node))
        return nullptr;
    auto *shader = node->findChild<OssLayerShader *>(QString(), Qt::FindDirectChildrenOnly);
    return shader ? shader : new OssLayerShader(node); // the node owns it
}

void OssLayerShaderManager::setCurrentShader(OssSnBaseNode *shader)
{
    if (!shader || !shader->network())
        return;
    OssShaderNetwork *network = shader->network();
    if (isLayerShader(shader)) {
        OssSnBaseNode *viewer = network->moveCurrentViewerNodeToNetwork();
        if (viewer)
            viewer->setInputNode(QStringLiteral("0"), shader, shader->prefferedOutputPoint());
    }
    network->rootNetwork()->setViewerNodeCurrentEdge(0, true);
}

OssSnBaseNode *OssLayerShaderManager::getCurrentMaterialProxyShader(
    const OssShaderNetwork *network) const
{
    return OssLayerManager::currentMaterialProxy(network);
}
