#include "OssInterface/Actions/OssHostMenus.h"

namespace {

// The graph's own menu: what is done to the nodes under the hand.
const char *const GraphContextMenu = R"(
    /Ossa/NodeGraph/Quick Create
    /Ossa/NodeGraph/Search Node
    -
    /Ossa/NodeGraph/Cut
    /Ossa/NodeGraph/Copy
    /Ossa/NodeGraph/Paste
    /Ossa/NodeGraph/Duplicate
    /Ossa/NodeGraph/Delete
    -
    /Ossa/NodeGraph/Rename Node
    /Ossa/NodeGraph/Disable
    /Ossa/NodeGraph/Bypass
    /Ossa/NodeGraph/Extract
    /Ossa/NodeGraph/Swap Inputs
    -
    /Ossa/NodeGraph/Connect Selected Node to Viewer
    /Ossa/NodeGraph/Focus Selection
    /Ossa/NodeGraph/Frame Nodes
    > Select
        /Ossa/NodeGraph/Select All
        /Ossa/NodeGraph/Select All Upstream
        /Ossa/NodeGraph/Select All Downstream
        /Ossa/NodeGraph/Select Stream Upstream
        /Ossa/NodeGraph/Select Stream Downstream
        /Ossa/NodeGraph/Select Between
    <
    > Ports
        /Ossa/NodeGraph/Toggle Port List
        /Ossa/NodeGraph/Cycle Port List Mode
        -
        /Ossa/NodeGraph/Switch to Expanded mode
        /Ossa/NodeGraph/Switch to Stream Collapsed mode
        /Ossa/NodeGraph/Switch to Connected Only mode
        /Ossa/NodeGraph/Switch to Collapsed mode
    <
    -
    > Paint and Bake
        /Ossa/NodeGraph/Create Paint Node
        /Ossa/NodeGraph/Bake to Paint Node
        /Ossa/NodeGraph/Export to Geo-Channel
        -
        /Ossa/NodeGraph/Smart Bake And Update
        /Ossa/NodeGraph/Bake Selected
        /Ossa/NodeGraph/Update Selected
        /Ossa/NodeGraph/Update Upstream
        /Ossa/NodeGraph/Update Downstream
    <
    > Group
        /Ossa/NodeGraph/Group Selected Nodes
        /Ossa/NodeGraph/Ungroup
        /Ossa/NodeGraph/Open Group Node Subgraph
        -
        /Ossa/NodeGraph/Add Group Input
        /Ossa/NodeGraph/Add Group Output
        /Ossa/NodeGraph/Manage User Knobs
        /Ossa/NodeGraph/Expose Node Properties
        /Ossa/NodeGraph/Export as Gizmo
        /Ossa/NodeGraph/Export Material to Archive
        /Ossa/NodeGraph/Export as Custom Procedural
    <
    > Import and Export
        /Ossa/NodeGraph/Import Nodes
        /Ossa/NodeGraph/Export Nodes
        -
        /Ossa/NodeGraph/Import Material
        /Ossa/NodeGraph/Import Custom Procedural
    <
    -
    /Ossa/NodeGraph/Open Node Properties
    /Ossa/NodeGraph/Info Viewer
)";

const char *const FileMenu = R"(
    /Ossa/File/New
    /Ossa/File/Open...
    > Open Recent
        /Ossa/File/Recent/*
        -
        /Ossa/File/Clear Recent
    <
    > Open Example
        /Ossa/File/Example/*
    <
    /Ossa/File/Recover Unsaved Work...
    -
    /Ossa/File/Save
    /Ossa/File/Save As...
    /Ossa/File/Close
    -
    /Ossa/File/Quit
)";

const char *const EditMenu = R"(
    /Ossa/Edit/Undo
    /Ossa/Edit/Redo
    -
    /Ossa/NodeGraph/Cut
    /Ossa/NodeGraph/Copy
    /Ossa/NodeGraph/Paste
    /Ossa/NodeGraph/Duplicate
    /Ossa/NodeGraph/Delete
    -
    /Ossa/NodeGraph/Select All
    /Ossa/NodeGraph/Search Node
    -
    /Ossa/Edit/Preferences...
    /Ossa/Edit/Keyboard Shortcuts...
)";

const char *const ViewMenu = R"(
    /Ossa/NodeGraph/Frame Nodes
    /Ossa/NodeGraph/Focus Selection
    -
    /Ossa/NodeGraph/Zoom In
    /Ossa/NodeGraph/Zoom Out
    > Pan
        /Ossa/NodeGraph/Pan Left
        /Ossa/NodeGraph/Pan Right
        /Ossa/NodeGraph/Pan Up
        /Ossa/NodeGraph/Pan Down
    <
    /Ossa/NodeGraph/Toggle Snap to Grid
    -
    > Viewer
        /Ossa/Viewer/*
    <
    -
    /Ossa/View/*
)";

const char *const GraphMenu = R"(
    /Ossa/NodeGraph/Quick Create
    > Create
        /Ossa/NodeGraph/Create/*
    <
    -
    /Ossa/NodeGraph/Rename Node
    /Ossa/NodeGraph/Disable
    /Ossa/NodeGraph/Bypass
    /Ossa/NodeGraph/Extract
    /Ossa/NodeGraph/Swap Inputs
    /Ossa/NodeGraph/Remove All Nodes
    -
    /Ossa/NodeGraph/Autoplace
    > Select
        /Ossa/NodeGraph/Select Previous Upstream
        /Ossa/NodeGraph/Select Next Downstream
        /Ossa/NodeGraph/Select Previous Sibling
        /Ossa/NodeGraph/Select Next Sibling
        -
        /Ossa/NodeGraph/Add Select Previous Upstream
        /Ossa/NodeGraph/Add Select Next Downstream
        /Ossa/NodeGraph/Add Select Previous Sibling
        /Ossa/NodeGraph/Add Select Next Sibling
        -
        /Ossa/NodeGraph/Select All Upstream
        /Ossa/NodeGraph/Select All Downstream
        /Ossa/NodeGraph/Select Stream Upstream
        /Ossa/NodeGraph/Select Stream Downstream
        /Ossa/NodeGraph/Select Between
    <
    > Edges
        /Ossa/NodeGraph/Pick Up Edge Under Mouse
        /Ossa/NodeGraph/Toggle Edge Sever Mode
        /Ossa/NodeGraph/Shake To Extract
    <
    > Ports
        /Ossa/NodeGraph/Toggle Port List
        /Ossa/NodeGraph/Cycle Port List Mode
        -
        /Ossa/NodeGraph/Switch to Expanded mode
        /Ossa/NodeGraph/Switch to Stream Collapsed mode
        /Ossa/NodeGraph/Switch to Connected Only mode
        /Ossa/NodeGraph/Switch to Collapsed mode
    <
    > Viewer
        /Ossa/NodeGraph/Connect Selected Node to Viewer
        /Ossa/NodeGraph/Connect Selected Node to Viewer2
        /Ossa/NodeGraph/Connect Selected Node to Viewer3
        /Ossa/NodeGraph/Connect Selected Node to Viewer4
        /Ossa/NodeGraph/Connect Selected Node to Viewer5
        /Ossa/NodeGraph/Connect Selected Node to Viewer6
        /Ossa/NodeGraph/Connect Selected Node to Viewer7
        /Ossa/NodeGraph/Connect Selected Node to Viewer8
        /Ossa/NodeGraph/Connect Selected Node to Viewer9
        /Ossa/NodeGraph/Connect Selected Node to Viewer0
        -
        /Ossa/NodeGraph/Move Viewer to Cursor
    <
    > Group
        /Ossa/NodeGraph/Group Selected Nodes
        /Ossa/NodeGraph/Ungroup
        /Ossa/NodeGraph/Open Group Node Subgraph
        -
        /Ossa/NodeGraph/Add Group Input
        /Ossa/NodeGraph/Add Group Output
        /Ossa/NodeGraph/Manage User Knobs
        /Ossa/NodeGraph/Expose Node Properties
        /Ossa/NodeGraph/Export as Gizmo
        /Ossa/NodeGraph/Export Material to Archive
        /Ossa/NodeGraph/Export as Custom Procedural
    <
    -
    > Import and Export
        /Ossa/NodeGraph/Import Nodes
        /Ossa/NodeGraph/Export Nodes
        -
        /Ossa/NodeGraph/Import Material
        /Ossa/NodeGraph/Import Custom Procedural
    <
    > Properties
        /Ossa/NodeGraph/Open Node Properties
        /Ossa/NodeGraph/Delete All Properties
    <
    > Versions
        /Ossa/NodeGraph/Dump Selected Node Info
        /Ossa/NodeGraph/Upgrade Selected Node Info
        /Ossa/NodeGraph/Upgrade All Node Info
    <
    /Ossa/NodeGraph/Info Viewer
)";

const char *const ObjectMenu = R"(
    /Ossa/Object/*
    -
    /Ossa/NodeGraph/Create Paint Node
    /Ossa/NodeGraph/Bake to Paint Node
    /Ossa/NodeGraph/Export to Geo-Channel
    -
    /Ossa/NodeGraph/Smart Bake And Update
    /Ossa/NodeGraph/Bake Selected
    /Ossa/NodeGraph/Update Selected
    /Ossa/NodeGraph/Update Upstream
    /Ossa/NodeGraph/Update Downstream
)";

} // namespace

const std::vector<OssHostMenus::Row> &OssHostMenus::table()
{
    static const std::vector<Row> rows = {
        {"Context", "NodeGraph", GraphContextMenu},
        {"Main", "File", FileMenu},
        {"Main", "Edit", EditMenu},
        {"Main", "View", ViewMenu},
        {"Main", "Node Graph", GraphMenu},
        {"Main", "Object", ObjectMenu},
        {"Main", "Palettes", "/Ossa/Palettes/*"},
        {"Main", "Script", "/Ossa/Script/*"},
        {"Main", "Help", "/Ossa/Help/*"},
    };
    return rows;
}
