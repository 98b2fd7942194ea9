#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"

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
                                              NodeImport *import)
{
    if (nodes.isEmpty())
        return;
    import->nodes.append(nodes);
    if (scene())
        scene()->clearSelection();
    QRectF bounds;
    for (OssSnBaseNode *node : nodes) {
        node->setSelected(true);
        if (const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node))
            bounds |= item->sceneBoundingRect();
    }
    if (!import->place)
        OssDebug(Source, __LINE__, "[ !! ] Position is NULL");
    const QPointF way = import->place ? *import->place - bounds.topLeft() : QPointF();
    if (import->place)
        import->place->rx() += bounds.width() + OssNgStyle::instance()->horizontalSpacing();
    for (OssSnBaseNode *node : nodes) {
        if (OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node))
            moveNode(item, item->pos() + way);
        // The host gave names that are free in the network; one that others share makes way here.
        if (node->network() && node->network()->node(node->name()) != node)
            node->setName(node->network()->generateUniqueNodeName(node->name()));
    }
    OssShaderNetworkManager::instance()->createDelayedKnobs(nodes);
    QVector<Backdrops::Placed> placed;
    for (OssSnBaseNode *node : nodes) {
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(
                OssSnNodeGraphViewContextManager::guiNodeOf(node)))
            backdrop->refreshChildrenList();
        placed.append(Backdrops::Placed{node, node->container()});
    }
    Backdrops::settle(placed);
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
    NodeImport copies{mapToScene(cursor), {}, {}, {}};
    placeInsertedNodes(OssShaderNetworkIO::duplicateNodes(m_network, nodes, true), &copies);
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
    NodeImport import{mapToScene(cursor), {}, {}, {}};
    placeInsertedNodes(nodes, &import);
}

void OssShaderNetworkView::dropText(const QByteArray &nodes, NodeImport *import)
{
    if (nodes.isEmpty())
        return;
    const SmartLinking linking;
    const OssUndoManager::AutoMacro macro(tr("Drop Nodes"));
    QList<OssSnBaseNode *> inserted;
    const OssResult result = OssShaderNetworkIO::nodesFromText(m_network, nodes,
                                                               tr("the dropped text"), &inserted);
    if (!result)
        import->refuse(tr("Drop Nodes"), {result.error()});
    placeInsertedNodes(inserted, import);
}
