#include "OssShaderNetworkView.h"

#include "OssCore/OssDebug.h"
#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssNodeGraph/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QAction>

namespace {

constexpr const char *Source = "OssShaderNetworkView";

} // namespace

QPoint OssShaderNetworkView::creationPoint() const
{
    const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
    const QRect visible = viewport()->rect();
    return visible.contains(pointer) ? pointer : visible.center();
}

OssSnBaseNode *OssShaderNetworkView::createNodeAt(const QString &pathKey, const QPoint &viewPos)
{
    if (!m_network) {
        OssDebug(Source, __LINE__, "m_network is NULL");
        return nullptr;
    }
    OssSnBaseNode *node = m_network->createNode(pathKey);
    OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    if (guiNode) {
        guiNode->setPosition(mapToScene(viewPos) - guiNode->boundingRect().center());
        placeNode(node);
    }
    if (node)
        Q_EMIT nodeAdded(node);
    return node;
}

void OssShaderNetworkView::createNodeFromAction(QAction *action)
{
    const QString pathKey = action ? action->data().toString() : QString();
    if (pathKey.isEmpty())
        return;
    OssUndoManager::AutoMacro macro(tr("Create Node : %1").arg(pathKey));
    OssSnBaseNode *node = createNodeAt(pathKey, creationPoint());
    if (!node) {
        macro.cancel();
        return;
    }
    scene()->clearSelection();
    node->setSelected(true);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}
