#pragma once

/// Who carries out the fixed commands of the node graph, in the order in which they are filed: name
/// in the command table, which has their texts, tips and keys, slot of the plug-in object, and what
/// the slot calls on the view. ACTION_AGAIN files a further action for a slot that an earlier row
/// has.
// clang-format off
#define OSS_NODE_GRAPH_ACTIONS(ACTION, ACTION_AGAIN)                                               \
    ACTION("Connect Selected Node to Viewer", connectSelectedNodeToViewer, connectSelectedNodeToViewer(nullptr, 1)) \
    ACTION("Connect Selected Node to Viewer2", connectSelectedNodeToViewer2, connectSelectedNodeToViewer(nullptr, 2)) \
    ACTION("Connect Selected Node to Viewer3", connectSelectedNodeToViewer3, connectSelectedNodeToViewer(nullptr, 3)) \
    ACTION("Connect Selected Node to Viewer4", connectSelectedNodeToViewer4, connectSelectedNodeToViewer(nullptr, 4)) \
    ACTION("Connect Selected Node to Viewer5", connectSelectedNodeToViewer5, connectSelectedNodeToViewer(nullptr, 5)) \
    ACTION("Connect Selected Node to Viewer6", connectSelectedNodeToViewer6, connectSelectedNodeToViewer(nullptr, 6)) \
    ACTION("Connect Selected Node to Viewer7", connectSelectedNodeToViewer7, connectSelectedNodeToViewer(nullptr, 7)) \
    ACTION("Connect Selected Node to Viewer8", connectSelectedNodeToViewer8, connectSelectedNodeToViewer(nullptr, 8)) \
    ACTION("Connect Selected Node to Viewer9", connectSelectedNodeToViewer9, connectSelectedNodeToViewer(nullptr, 9)) \
    ACTION("Connect Selected Node to Viewer0", connectSelectedNodeToViewer0, connectSelectedNodeToViewer(nullptr, 0)) \
    ACTION("Move Viewer to Cursor", moveViewerToMouse, moveViewerToMouse())                         \
    ACTION("Delete", deleteSelectedNodes, deleteSelectedNodes())                                    \
    ACTION("Extract", extractSelectedNode, extractSelectedNode())                                   \
    ACTION("Remove All Nodes", deleteAllNodes, deleteAllNodes())                                    \
    ACTION("Frame Nodes", frameNodes, frameNodes(true))                                             \
    ACTION("Focus Selection", frameSelectedNodes, frameSelectedNodes())                             \
    ACTION("Disable", disableSelectedNodes, disableSelectedNodes())                                 \
    ACTION("Bypass", bypassSelectedNode, bypassSelectedNode())                                      \
    ACTION("Quick Create", quickCreate, quickCreate())                                              \
    ACTION("Duplicate", duplicateSelectedNodes, duplicateSelectedNodes())                           \
    ACTION("Select All", selectAll, selectAll())                                                    \
    ACTION("Cut", cutNodesAction, cutNodesAction())                                                 \
    ACTION("Copy", copyNodesAction, copyNodesAction())                                              \
    ACTION("Paste", pasteNodesAction, pasteNodesAction())                                           \
    ACTION("Search Node", searchNodesAction, searchNodesAction())                                   \
    ACTION("Create Paint Node", createPaintableNode, createPaintableNode(QPoint(0, 0)))             \
    ACTION("Bake to Paint Node", bakeToPaintableNode, bakeToPaintableNode())                       \
    ACTION("Export to Geo-Channel", exportToGeoChannel, exportToGeoChannel(nullptr, QString()))    \
    ACTION("Info Viewer", printNodeInfo, printNodeInfo())                                           \
    ACTION("Swap Inputs", swapInputs, swapInputs())                                                 \
    ACTION("Rename Node", popupRenameWindow, popupRenameWindow())                                   \
    ACTION("Import Nodes", importNodes, importNodes())                                              \
    ACTION("Export Nodes", exportNodes, exportNodes())                                              \
    ACTION("Import Material", importMaterial, importMaterial())                                     \
    ACTION("Import Custom Procedural", importCustomProcedural, importCustomProcedural())            \
    ACTION("Toggle Port List", togglePortVisibility, togglePortVisibility())                        \
    ACTION("Cycle Port List Mode", cyclePortListMode, cyclePortListMode())                          \
    ACTION("Smart Bake And Update", bakeEmptyAndUpdateOutOfDateBakePoints, bakeEmptyAndUpdateOutOfDateBakePoints())\
    ACTION("Bake Selected", bakeSelectedBakePoints, bakeSelectedBakePoints())                      \
    ACTION("Update Selected", updateSelectedBakePoints, updateSelectedBakePoints())                \
    ACTION("Update Upstream", updateUpstreamBakePoints, updateUpstreamBakePoints())                \
    ACTION("Update Downstream", updateDownstreamBakePoints, updateDownstreamBakePoints())          \
    ACTION("Manage User Knobs", manageUserKnobs, manageUserKnobs())                                \
    ACTION("Expose Node Properties", exposeNodeProperties, exposeNodeProperties())                 \
    ACTION("Open Group Node Subgraph", openGroupNodeSubgraph, openGroupNodeSubgraph())              \
    ACTION("Pick Up Edge Under Mouse", pickUpEdge, pickUpEdge())                                    \
    ACTION_AGAIN("Pick Up Edge Under Mouse", pickUpEdge, pickUpEdge())                              \
    ACTION("Select All Upstream", selectAllUpstream, selectAllUpstream())                           \
    ACTION("Select All Downstream", selectAllDownstream, selectAllDownstream())                     \
    ACTION("Select Stream Upstream", selectStreamUpstream, selectStreamUpstream())                  \
    ACTION("Select Stream Downstream", selectStreamDownstream, selectStreamDownstream())            \
    ACTION("Select Previous Upstream", selectUpstream, selectUpstream())                            \
    ACTION("Select Next Downstream", selectDownstream, selectDownstream())                          \
    ACTION("Add Select Previous Upstream", addSelectUpstream, addSelectUpstream())                  \
    ACTION("Add Select Next Downstream", addSelectDownstream, addSelectDownstream())                \
    ACTION("Select Next Sibling", selectNextSibling, selectNextSibling())                           \
    ACTION("Select Previous Sibling", selectPrevSibling, selectPrevSibling())                       \
    ACTION("Add Select Next Sibling", addSelectNextSibling, addSelectNextSibling())                 \
    ACTION("Add Select Previous Sibling", addSelectPrevSibling, addSelectPrevSibling())             \
    ACTION("Select Between", selectBetween, selectBetween())                                        \
    ACTION("Zoom In", zoomIn, zoomIn())                                                             \
    ACTION("Zoom Out", zoomOut, zoomOut())                                                          \
    ACTION("Pan Left", panLeft, panLeft())                                                          \
    ACTION("Pan Right", panRight, panRight())                                                       \
    ACTION("Pan Up", panUp, panUp())                                                                \
    ACTION("Pan Down", panDown, panDown())                                                          \
    ACTION("Open Node Properties", openNodeProperties, openNodeProperties())                       \
    ACTION("Toggle Snap to Grid", toggleSnapToGrid, toggleSnapToGrid())                             \
    ACTION("Toggle Edge Sever Mode", toggleEdgeSeverAction, toggleEdgeSeverAction())                \
    ACTION("Bake Again", bakeSelectedBakePointsAgain, bakeSelectedBakePointsAgain())

/// Slots that forward in the same way but have no action: reached by name.
#define OSS_NODE_GRAPH_NAMED_SLOTS(SLOT)                                                           \
    SLOT(generateMaterialPreview, generateMaterialPreview())                                       \
    SLOT(dumpSelectedNodeInfo, dumpSelectedNodeInfo())                                             \
    SLOT(upgradeSelectedNodeInfo, upgradeSelectedNodeInfo())                                       \
    SLOT(upgradeAllNodeInfo, upgradeAllNodeInfo())                                                 \
    SLOT(dumpNodeUIAction, dumpNodeUIAction())                                                     \
    SLOT(ensureIsVisibleAction, ensureIsVisibleAction())                                           \
    SLOT(fitToViewAction, fitToViewAction())                                                       \
    SLOT(setImageSetByNameAction, setImageSetByNameAction())
// clang-format on
