#pragma once

/// The fixed actions of the node graph in the order in which they are filed: text, slot of the
/// plug-in object, and what the slot calls on the view. ACTION_AGAIN files a further action for a
/// slot that an earlier row has.
// clang-format off
#define OSS_NODE_GRAPH_ACTIONS(ACTION, ACTION_AGAIN)                                               \
    ACTION("Delete", deleteSelectedNodes, deleteSelectedNodes())                                   \
    ACTION("Extract", extractSelectedNode, extractSelectedNode())                                  \
    ACTION("Remove All Nodes", deleteAllNodes, deleteAllNodes())                                   \
    ACTION("Frame Nodes", frameNodes, frameNodes(true))                                            \
    ACTION("Focus Selection", frameSelectedNodes, frameSelectedNodes())                            \
    ACTION("Disable", disableSelectedNodes, disableSelectedNodes())                                \
    ACTION("Bypass", bypassSelectedNode, bypassSelectedNode())                                     \
    ACTION("Select All", selectAll, selectAll())                                                   \
    ACTION("Toggle Port List", togglePortVisibility, togglePortVisibility())                       \
    ACTION("Cycle Port List Mode", cyclePortListMode, cyclePortListMode())                         \
    ACTION("Open Group Node Subgraph", openGroupNodeSubgraph, openGroupNodeSubgraph())             \
    ACTION("Pick Up Edge Under Mouse", pickUpEdge, pickUpEdge())                                   \
    ACTION_AGAIN("Pick Up Edge Under Mouse", pickUpEdge, pickUpEdge())                             \
    ACTION("Zoom In", zoomIn, zoomIn())                                                            \
    ACTION("Zoom Out", zoomOut, zoomOut())                                                         \
    ACTION("Pan Left", panLeft, panLeft())                                                         \
    ACTION("Pan Right", panRight, panRight())                                                      \
    ACTION("Pan Up", panUp, panUp())                                                               \
    ACTION("Pan Down", panDown, panDown())                                                         \
    ACTION("Toggle Snap to Grid", toggleSnapToGrid, toggleSnapToGrid())                            \
    ACTION("Toggle Edge Sever Mode", toggleEdgeSeverAction, toggleEdgeSeverAction())

/// Slots that forward in the same way but have no action: reached by name.
#define OSS_NODE_GRAPH_NAMED_SLOTS(SLOT)                                                           \
    SLOT(ensureIsVisibleAction, ensureIsVisibleAction())                                           \
    SLOT(fitToViewAction, fitToViewAction())
// clang-format on
