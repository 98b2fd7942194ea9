#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssSnNodeGraphViewContextManager.h"

// Copies of nodes: duplicate, cut, copy and paste, and where what was inserted goes.

namespace {

constexpr const char *Source = "OssShaderNetworkView";

/// Attributes of nodes that are made in this scope are linked as those they were copied from.
class SmartLinking
{
public:
    SmartLinking() { set(true); }

    SmartLinking(const SmartLinking &) = delete;
    SmartLinking &operator=(const SmartLinking &) = delete;

    ~SmartLinking() { set(false); }

private:
    static void set(bool on)
    {
        OssShaderNetworkManager::instance()->setAttributeSmartLinkingEnabled(on);
    }
};

} // namespace

bool OssShaderNetworkView::hasScene() const
{
    if (!scene())
        OssDebug(Source, __LINE__, "pScene is NULL");
    return scene();
}

QList<OssSnBaseNode *> OssShaderNetworkView::selectionWithoutViewer() const
{
    QList<OssSnBaseNode *> nodes = selectedNodes();
    for (OssSnBaseNode *node : qAsConst(nodes)) {
        if (node->hasTag(OssSnTags::viewer())) {
            nodes.removeOne(node);
            break;
        }
    }
    return nodes;
}

void OssShaderNetworkView::placeInsertedNodes(const QList<OssSnBaseNode *> &nodes,
                                              const QPoint *viewPos)
{
    if (nodes.isEmpty())
        return;
    if (scene())
        scene()->clearSelection();
    QRectF bounds;
    for (OssSnBaseNode *node : nodes) {
        node->setSelected(true);
        if (const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node))
            bounds |= item->sceneBoundingRect();
    }
    if (!viewPos)
        OssDebug(Source, __LINE__, "[ !! ] Position is NULL");
    const QPointF way = viewPos ? mapToScene(*viewPos) - bounds.topLeft() : QPointF();
    for (OssSnBaseNode *node : nodes) {
        OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        if (item && viewPos)
            moveNode(item, item->pos() + way);
        // The host gave names that are free in the network; one that others share makes way here.
        if (node->network() && node->network()->node(node->name()) != node)
            node->setName(node->network()->generateUniqueNodeName(node->name()));
    }
    OssShaderNetworkManager::instance()->createDelayedKnobs(nodes);
    for (const OssSnBaseNode *node : nodes) {
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(
                OssSnNodeGraphViewContextManager::guiNodeOf(node)))
            backdrop->refreshChildrenList();
    }
}

void OssShaderNetworkView::duplicateSelectedNodes()
{
    if (!hasNetwork() || !hasScene())
        return;
    const QPoint cursor = creationPoint();
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (nodes.isEmpty()) {
        if (!selectedNodes().isEmpty())
            tellUser(tr("The viewer is never copied"));
        return;
    }
    const OssUndoManager::AutoMacro macro(tr("Duplicate Nodes"));
    placeInsertedNodes(OssShaderNetworkIO::duplicateNodes(m_network, nodes, true), &cursor);
}

void OssShaderNetworkView::cutNodesAction()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (nodes.isEmpty()) {
        if (!selectedNodes().isEmpty())
            tellUser(tr("The viewer is never copied"));
        return;
    }
    const OssUndoManager::AutoMacro macro(tr("Cut Nodes"));
    OssShaderNetworkIO::copyNodesToClipboard(nodes, {});
    deleteSelectedNodes();
}

void OssShaderNetworkView::copyNodesAction()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (nodes.isEmpty()) {
        if (!selectedNodes().isEmpty())
            tellUser(tr("The viewer is never copied"));
        return;
    }
    OssShaderNetworkIO::copyNodesToClipboard(nodes, {});
    tellUser(nodes.size() == 1 ? tr("Copied %1").arg(nodes.first()->name())
                               : tr("Copied %1 nodes").arg(nodes.size()));
}

void OssShaderNetworkView::pasteNodesAction()
{
    if (!hasNetwork() || !hasScene())
        return;
    const SmartLinking linking;
    const QPoint cursor = creationPoint();
    const OssUndoManager::AutoMacro macro(tr("Paste Nodes"));
    const QList<OssSnBaseNode *> nodes = OssShaderNetworkIO::pasteNodesFromClipboard(m_network,
                                                                                     true);
    if (nodes.isEmpty())
        tellUser(tr("There are no nodes in the clipboard"));
    placeInsertedNodes(nodes, &cursor);
}
