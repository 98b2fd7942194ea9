#include "OssSnNodeGraphViewContext.h"

#include "Layout/NodePlacement.h"
#include "OssCore/Program/OssDebug.h"
#include "OssShaderNetworkView.h"

// Each slot asks the current view, which does the geometry.

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContext";

} // namespace

void OssSnNodeGraphViewContext::connectNodePlacement()
{
    using Node = OssSnBaseNode;
    using Context = OssSnNodeGraphViewContext;
    const Node *node = parentNode();
    connect(node, &Node::emitSetLayout, this, &Context::onSetLayout);
    connect(node, &Node::nodePositionedManual, this, &Context::onNodePositionedManual);
    connect(node, &Node::nodePositionedUnderneath, this, &Context::onNodePositionedUnderneath);
    connect(node, &Node::nodePositionedNextTo, this, &Context::onNodePositionedNextTo);
    connect(node, &Node::nodeSyncedUnderneathNode, this, &Context::onNodeSyncedUnderneathNode);
    connect(node, &Node::nodePositionedOnTopIdented, this, &Context::onNodePositionedOnTopIdented);
    connect(node, &Node::uniformariseContainers, this, &Context::onUniformariseContainers);
    connect(node, &Node::newNodeAdded, this, &Context::placeNode);
    connect(node, &Node::newNodeAdded, this, &Context::onNewNodeAdded);
}

void OssSnNodeGraphViewContext::onSetLayout(OssSnBaseNode::NodeLayoutType Type,
                                            OssSnBaseNode *ReferenceNode, bool FreshCoordinates,
                                            bool PreventOverlap)
{
    OssShaderNetworkView *view = viewOrComplain();
    OssSnBaseNode *node = parentNode();
    if (!view || !node)
        return;
    if (Type == OssSnBaseNode::LayoutFreeSpot) {
        view->positionNodeAtFreeSpot(node);
        return;
    }
    if (Type == OssSnBaseNode::LayoutBeside) {
        view->positionNodeBesideReference(node, ReferenceNode);
        return;
    }
    const QPoint step = NodePlacement::gridStep(int(Type),
                                                portListMode() == OssNgExtendedNode::NoPortList);
    OssDebug(Source, __LINE__, "[ -- ] Positioning node '%s' wrt node '%s' at (%d, %d)",
             qPrintable(node->path()), ReferenceNode ? qPrintable(ReferenceNode->path()) : "",
             step.x(), step.y());
    view->positionNodeOnGrid(node, ReferenceNode, step.x(), step.y(), FreshCoordinates);
    if (PreventOverlap || Type == OssSnBaseNode::LayoutTwoRight)
        view->placeNode(node);
}

void OssSnNodeGraphViewContext::onNodePositionedManual(OssSnBaseNode *ReferenceNode, QPointF Offset)
{
    if (OssShaderNetworkView *view = viewOrComplain())
        view->positionNodeManual(parentNode(), ReferenceNode, Offset);
}

void OssSnNodeGraphViewContext::onNodePositionedUnderneath(OssSnBaseNode *ReferenceNode, int Factor)
{
    if (OssShaderNetworkView *view = viewOrComplain())
        view->positionNodeUnderneath(parentNode(), ReferenceNode, Factor);
}

void OssSnNodeGraphViewContext::onNodePositionedNextTo(OssSnBaseNode *ReferenceNode)
{
    if (OssShaderNetworkView *view = viewOrComplain())
        view->positionNodeNextTo(parentNode(), ReferenceNode);
}

void OssSnNodeGraphViewContext::onNodePositionedOnTopIdented(OssSnBaseNode *ReferenceNode)
{
    if (OssShaderNetworkView *view = viewOrComplain())
        view->relocateNodeBeside(guiNode(),
                                 OssSnNodeGraphViewContextManager::guiNodeOf(ReferenceNode));
}

void OssSnNodeGraphViewContext::onNodeSyncedUnderneathNode(OssSnBaseNode *ReferenceNode,
                                                           bool IgnoreContainerOfPreviousNode)
{
    OssShaderNetworkView *view = viewOrComplain();
    OssSnBaseNode *node = parentNode();
    if (!view || !node || !ReferenceNode)
        return;
    view->syncNodeUnderneath(node, node->container(), ReferenceNode,
                             IgnoreContainerOfPreviousNode ? nullptr : ReferenceNode->container());
}

void OssSnNodeGraphViewContext::onUniformariseContainers(QList<OssSnBaseNode *> LayerListNode)
{
    OssShaderNetworkView *view = viewOrComplain();
    if (!view)
        return;
    OssDebug(Source, __LINE__, "[ -- ] About to uniformarise %d layer stack containers",
             LayerListNode.size());
    view->uniformariseContainers(LayerListNode);
}

void OssSnNodeGraphViewContext::placeNode()
{
    if (OssShaderNetworkView *view = viewOrComplain())
        view->placeNode(parentNode());
}
