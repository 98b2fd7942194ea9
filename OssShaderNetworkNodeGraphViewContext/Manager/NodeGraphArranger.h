#pragma once

#include "OssCore/Documents/OssSerializableObject.h"

#include <QList>
#include <QStringList>

class OssShaderNetwork;
class OssShaderNetworkView;
class OssSnBaseNode;
class OssSnGroupNode;

/// Arranges what stands in a network: lays nodes out, and keeps the ports of a group and the nodes
/// inside that stand for them in one order. Base of OssSnNodeGraphViewContextManager. Each call is
/// one undo step; a missing object is a debug line and no effect.
class NodeGraphArranger : public OssSerializableObject
{
    Q_OBJECT

public Q_SLOTS:
    /// Lays out the selected nodes and what feeds them; without a selection, everything from the
    /// last nodes of all streams. Without a network that of the current view is meant.
    void beautifyNodesLayout();
    void beautifyNodesLayout(OssShaderNetwork *Network);
    /// The given nodes and what feeds them, whatever is selected. An empty list lays out everything
    /// when `ArrangeFromLeavesIfEmpty`, otherwise nothing.
    void beautifyNodesLayout(OssShaderNetwork *Network, OssSnBaseNode *Node);
    void beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes);
    void beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes,
                             bool ArrangeFromLeavesIfEmpty);
    /// Everything, whatever is selected.
    void layOutAll(OssShaderNetwork *Network);
    /// Orders a group's ports as the nodes inside that stand for them stand, from top to bottom.
    /// Ports that no node stands for keep their places. Fewer than two nodes: nothing.
    void reorderGroupInputsByPos(OssSnGroupNode *GroupNode);
    void reorderGroupOutputsByPos(OssSnGroupNode *GroupNode);
    /// Gives the input or output nodes inside a group each other's places, from top to bottom in the
    /// order. Names that no such node bears are passed over.
    void arrangeGroupInputNodesByOrder(OssShaderNetwork *GroupNetwork, QStringList InputOrder);
    void arrangeGroupOutputNodesByOrder(OssShaderNetwork *GroupNetwork, QStringList OutputOrder);

protected Q_SLOTS:
    void autoLayoutNodes(OssShaderNetwork *StartNetwork, QList<OssSnBaseNode *> StartNodes,
                         bool ArrangeFromLeavesIfEmpty);

protected:
    /// Null, and told, when there is none.
    virtual OssShaderNetworkView *viewOrComplain() const = 0;
};
