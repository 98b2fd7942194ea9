#pragma once

/// Who carries out the fixed commands of the node graph, in the order in which they are filed: name
/// in the command table, which has their texts, tips and keys, slot of the plug-in object, and what
/// the slot calls on the view. ACTION_AGAIN files a further action for a slot that an earlier row
/// has. ON_NODES act on selected nodes alone, and say so where there are none.
// clang-format off
#define OSS_NODE_GRAPH_ACTIONS(ACTION, ACTION_AGAIN, ON_NODES)                                     \
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
    ON_NODES("Delete", deleteSelectedNodes, deleteSelectedNodes())                                    \
    ON_NODES("Extract", extractSelectedNode, extractSelectedNode())                                   \
    ACTION("Remove All Nodes", deleteAllNodes, deleteAllNodes())                                    \
    ACTION("Frame Nodes", frameNodes, frameNodes(true))                                             \
    ACTION("Focus Selection", frameSelectedNodes, frameSelectedNodes())                             \
    ON_NODES("Disable", disableSelectedNodes, disableSelectedNodes())                                 \
    ON_NODES("Bypass", bypassSelectedNode, bypassSelectedNode())                                      \
    ACTION("Quick Create", quickCreate, quickCreate())                                              \
    ON_NODES("Duplicate", duplicateSelectedNodes, duplicateSelectedNodes())                           \
    ACTION("Select All", selectAll, selectAll())                                                    \
    ON_NODES("Cut", cutNodesAction, cutNodesAction())                                                 \
    ON_NODES("Copy", copyNodesAction, copyNodesAction())                                              \
    ACTION("Paste", pasteNodesAction, pasteNodesAction())                                           \
    ACTION("Search Node", searchNodesAction, searchNodesAction())                                   \
    ACTION("Create Paint Node", createPaintableNode, createPaintableNode(QPoint(0, 0)))             \
    ACTION("Bake to Paint Node", bakeToPaintableNode, bakeToPaintableNode())                       \
    ACTION("Export to Geo-Channel", exportToGeoChannel, exportToGeoChannel(nullptr, QString()))    \
    ON_NODES("Info Viewer", printNodeInfo, printNodeInfo())                                           \
    ACTION("Swap Inputs", swapInputs, swapInputs())                                                 \
    ON_NODES("Rename Node", popupRenameWindow, popupRenameWindow())                                   \
    ACTION("Import Nodes", importNodes, importNodes())                                              \
    ON_NODES("Export Nodes", exportNodes, exportNodes())                                              \
    ACTION("Import Material", importMaterial, importMaterial())                                     \
    ACTION("Import Custom Procedural", importCustomProcedural, importCustomProcedural())            \
    ON_NODES("Toggle Port List", togglePortVisibility, togglePortVisibility())                        \
    ON_NODES("Cycle Port List Mode", cyclePortListMode, cyclePortListMode())                          \
    ACTION("Smart Bake And Update", bakeEmptyAndUpdateOutOfDateBakePoints, bakeEmptyAndUpdateOutOfDateBakePoints())\
    ACTION("Bake Selected", bakeSelectedBakePoints, bakeSelectedBakePoints())                      \
    ACTION("Update Selected", updateSelectedBakePoints, updateSelectedBakePoints())                \
    ACTION("Update Upstream", updateUpstreamBakePoints, updateUpstreamBakePoints())                \
    ACTION("Update Downstream", updateDownstreamBakePoints, updateDownstreamBakePoints())          \
    ACTION("Manage User Knobs", manageUserKnobs, manageUserKnobs())                                \
    ACTION("Expose Node Properties", exposeNodeProperties, exposeNodeProperties())                 \
    ON_NODES("Open Group Node Subgraph", openGroupNodeSubgraph, openGroupNodeSubgraph())              \
    ON_NODES("Open Groups Behind", openGroupsBehind, openGroupsBehind())                             \
    ACTION("Pick Up Edge Under Mouse", pickUpEdge, pickUpEdge())                                    \
    ACTION_AGAIN("Pick Up Edge Under Mouse", pickUpEdge, pickUpEdge())                              \
    ON_NODES("Select All Upstream", selectAllUpstream, selectAllUpstream())                           \
    ON_NODES("Select All Downstream", selectAllDownstream, selectAllDownstream())                     \
    ON_NODES("Select Stream Upstream", selectStreamUpstream, selectStreamUpstream())                  \
    ON_NODES("Select Stream Downstream", selectStreamDownstream, selectStreamDownstream())            \
    ON_NODES("Select Previous Upstream", selectUpstream, selectUpstream())                            \
    ON_NODES("Select Next Downstream", selectDownstream, selectDownstream())                          \
    ON_NODES("Add Select Previous Upstream", addSelectUpstream, addSelectUpstream())                  \
    ON_NODES("Add Select Next Downstream", addSelectDownstream, addSelectDownstream())                \
    ON_NODES("Select Next Sibling", selectNextSibling, selectNextSibling())                           \
    ON_NODES("Select Previous Sibling", selectPrevSibling, selectPrevSibling())                       \
    ON_NODES("Add Select Next Sibling", addSelectNextSibling, addSelectNextSibling())                 \
    ON_NODES("Add Select Previous Sibling", addSelectPrevSibling, addSelectPrevSibling())             \
    ON_NODES("Select Between", selectBetween, selectBetween())                                        \
    ACTION("Zoom In", zoomIn, zoomIn())                                                             \
    ACTION("Zoom Out", zoomOut, zoomOut())                                                          \
    ACTION("Pan Left", panLeft, panLeft())                                                          \
    ACTION("Pan Right", panRight, panRight())                                                       \
    ACTION("Pan Up", panUp, panUp())                                                                \
    ACTION("Pan Down", panDown, panDown())                                                          \
    ON_NODES("Open Node Properties", openNodeProperties, openNodeProperties())                       \
    ACTION("Toggle Snap to Grid", toggleSnapToGrid, toggleSnapToGrid())                             \
    ACTION("Toggle Edge Sever Mode", toggleEdgeSeverAction, toggleEdgeSeverAction())                \
    ON_NODES("Nudge Left", nudgeLeft, nudgeSelection({-OssNgStyle::GridStep, 0.0})) \
    ON_NODES("Nudge Left Finely", nudgeLeftFinely, nudgeSelection({-1.0, 0.0})) \
    ON_NODES("Nudge Right", nudgeRight, nudgeSelection({OssNgStyle::GridStep, 0.0})) \
    ON_NODES("Nudge Right Finely", nudgeRightFinely, nudgeSelection({1.0, 0.0})) \
    ON_NODES("Nudge Up", nudgeUp, nudgeSelection({0.0, -OssNgStyle::GridStep})) \
    ON_NODES("Nudge Up Finely", nudgeUpFinely, nudgeSelection({0.0, -1.0})) \
    ON_NODES("Nudge Down", nudgeDown, nudgeSelection({0.0, OssNgStyle::GridStep})) \
    ON_NODES("Nudge Down Finely", nudgeDownFinely, nudgeSelection({0.0, 1.0})) \
    ON_NODES("Select Backdrop Contents", selectContents, selectContents())                          \
    ACTION("Bake Again", bakeSelectedBakePointsAgain, bakeSelectedBakePointsAgain())               \
    ACTION("Arrange", arrangeInLayers, arrange(OssShaderNetworkManager::ArrangeInLayers)) \
    ACTION("Arrange with Dots", arrangeWithDots, arrange(OssShaderNetworkManager::ArrangeWithDots)) \
    ACTION("Straighten Chain", straightenChain, arrange(OssShaderNetworkManager::StraightenChain)) \
    ACTION("Tidy Overlaps", tidyOverlaps, arrange(OssShaderNetworkManager::TidyOverlaps)) \
    ACTION("Align Left", alignLeft, arrange(OssShaderNetworkManager::AlignLeft)) \
    ACTION("Align Center", alignCenter, arrange(OssShaderNetworkManager::AlignCenter)) \
    ACTION("Align Right", alignRight, arrange(OssShaderNetworkManager::AlignRight)) \
    ACTION("Align Top", alignTop, arrange(OssShaderNetworkManager::AlignTop)) \
    ACTION("Align Middle", alignMiddle, arrange(OssShaderNetworkManager::AlignMiddle)) \
    ACTION("Align Bottom", alignBottom, arrange(OssShaderNetworkManager::AlignBottom)) \
    ACTION("Distribute Horizontally", distributeHorizontally, arrange(OssShaderNetworkManager::DistributeHorizontally)) \
    ACTION("Distribute Vertically", distributeVertically, arrange(OssShaderNetworkManager::DistributeVertically)) \
    ACTION("Tidy Backdrops", tidyBackdrops, arrange(OssShaderNetworkManager::TidyBackdrops)) \
    ACTION("Bring to Front", bringToFront, arrange(OssShaderNetworkManager::BringToFront)) \
    ACTION("Send to Back", sendToBack, arrange(OssShaderNetworkManager::SendToBack)) \
    ACTION("Place Underneath", placeUnderneath, arrange(OssShaderNetworkManager::PlaceUnderneath)) \
    ACTION("Place Next to", placeNextTo, arrange(OssShaderNetworkManager::PlaceNextTo)) \
    ACTION("Place on Top", placeOnTop, arrange(OssShaderNetworkManager::PlaceOnTop)) \
    ACTION("Place at Free Spot", placeAtFreeSpot, arrange(OssShaderNetworkManager::PlaceAtFreeSpot)) \
    ACTION("Place Below", placeBelow, arrange(OssShaderNetworkManager::PlaceBelow)) \
    ACTION("Place Far Below", placeFarBelow, arrange(OssShaderNetworkManager::PlaceFarBelow)) \
    ACTION("Place Left Below", placeLeftBelow, arrange(OssShaderNetworkManager::PlaceLeftBelow)) \
    ACTION("Place Left", placeLeft, arrange(OssShaderNetworkManager::PlaceLeft)) \
    ACTION("Place in the Middle", placeInTheMiddle, arrange(OssShaderNetworkManager::PlaceInTheMiddle)) \
    ACTION("Place Right", placeRight, arrange(OssShaderNetworkManager::PlaceRight)) \
    ACTION("Place Far Right", placeFarRight, arrange(OssShaderNetworkManager::PlaceFarRight)) \
    ACTION("Place Right at Own Height", placeRightAtOwnHeight, arrange(OssShaderNetworkManager::PlaceRightAtOwnHeight)) \
    ACTION("Place Right Above", placeRightAbove, arrange(OssShaderNetworkManager::PlaceRightAbove)) \
    ACTION("Place Above in Stream", placeAboveInStream, arrange(OssShaderNetworkManager::PlaceAboveInStream))

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
