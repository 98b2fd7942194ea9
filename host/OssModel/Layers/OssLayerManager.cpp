#include "OssModel/Layers/OssLayerManager.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <algorithm>

namespace {

const QString ProxyKey = QStringLiteral("_System/Current Material");

} // namespace

OssSnBaseNode *OssLayerManager::currentMaterialProxy(const OssShaderNetwork *network)
{
    if (!network)
        return nullptr;
    const QList<OssSnBaseNode *> all = network->rootNetwork()->getAllNodes();
    const auto found = std::find_if(all.cbegin(), all.cend(), [](const OssSnBaseNode *node) {
        return node->hasTag(OssSnTags::currentMaterialProxy());
    });
    return found == all.cend() ? nullptr : *found;
}

bool OssLayerManager::connectNodeToCurrentMaterialProxy(OssShaderNetwork *network,
                                                        OssSnBaseNode *node,
                                                        const QString &outputPoint,
                                                        const QString &stream)
{
    const QString output = stream.isEmpty() ? outputPoint : stream;
    if (!network || !node || !node->hasOutputPoint(output))
        return false;
    OssUndoManager::AutoMacro macro(
        QStringLiteral("View '%1' as Current Material").arg(node->name()));
    OssSnBaseNode *proxy = currentMaterialProxy(network);
    if (!proxy)
        proxy = network->createNode(ProxyKey);
    else if (proxy->network() != network)
        network->moveNodeHereUndo(proxy);
    OssSnBaseNode *viewer = proxy ? network->moveCurrentViewerNodeToNetwork() : nullptr;
    if (viewer && proxy->setInputNode(proxy->inputNames().first(), node, output)
        && viewer->setInputNode(QStringLiteral("0"), proxy, proxy->prefferedOutputPoint()))
        return true;
    macro.cancel();
    return false;
}
