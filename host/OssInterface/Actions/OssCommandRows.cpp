#include "OssInterface/Actions/OssCommandTable.h"

#include <QCoreApplication>

#define TR(text) QT_TRANSLATE_NOOP("OssCommandTable", text)

using namespace OssCommandTable;

// clang-format off
namespace {

const std::vector<Menu> menuTable{
    {"File", TR("&File"), ""},
    {"Edit", TR("&Edit"), ""},
    {"View", TR("&View"), ""},
    {"Graph", TR("&Node Graph"), ""},
    {"Object", TR("&Object"), ""},
    {"Palettes", TR("&Palettes"), ""},
    {"Script", TR("&Script"), ""},
    {"Help", TR("&Help"), ""},
    {"Context", TR("Node Graph"), ""},
    {"Open Recent", TR("Open Recent"), "File 1.3"},
    {"Open Example", TR("Open Example"), "File 1.4"},
    {"Pan", TR("Pan"), "View 2.3"},
    {"Viewer", TR("Viewer"), "View 3.1"},
    {"Create", TR("Create"), "Graph 1.2"},
    {"Select", TR("Select"), "Graph 3.2, Context 4.4"},
    {"Edges", TR("Edges"), "Graph 3.3"},
    {"Ports", TR("Ports"), "Graph 3.4, Context 4.5"},
    {"Look", TR("Viewer"), "Graph 3.5"},
    {"Group", TR("Group"), "Graph 3.6, Context 5.2"},
    {"Bake", TR("Paint and Bake"), "Context 5.1"},
    {"Exchange", TR("Import and Export"), "Graph 5.1, Context 5.3"},
    {"Properties", TR("Properties"), "Graph 5.2"},
    {"Versions", TR("Versions"), "Graph 5.3"},
};

const std::vector<Row> rowTable{
    {"/Ossa/File/New", "Ctrl+N", "File 1.1", Always, TR("Start an empty project")},
    {"/Ossa/File/Open...", "Ctrl+O", "File 1.2", Always, TR("Open a project folder")},
    {"/Ossa/File/Recent/*", "", "Open Recent 1.1", Always},
    {"/Ossa/File/Clear Recent", "", "Open Recent 2.1", WithRecent, TR("Forget which projects were opened")},
    {"/Ossa/File/Example/*", "", "Open Example 1.1", Always},
    {"/Ossa/File/Recover Unsaved Work...", "", "File 1.5", Always, TR("Restore what a session left that ended without saving")},
    {"/Ossa/File/Save", "Ctrl+S", "File 2.1", WithProject, TR("Save the project")},
    {"/Ossa/File/Save As...", "Ctrl+Shift+S", "File 2.2", WithProject, TR("Save the project under another name")},
    {"/Ossa/File/Close", "Ctrl+W", "File 2.3", WithProject, TR("Close the project")},
    {"/Ossa/File/Quit", "Ctrl+Q", "File 3.1", Always, TR("Leave the program")},

    {"/Ossa/Edit/Undo", "Ctrl+Z", "Edit 1.1", WithUndo},
    {"/Ossa/Edit/Redo", "Ctrl+Shift+Z Ctrl+Y", "Edit 1.2", WithRedo},
    {"/Ossa/Edit/Preferences...", "Ctrl+,", "Edit 4.1", Always, TR("Set how the program behaves")},
    {"/Ossa/Edit/Keyboard Shortcuts...", "Ctrl+Alt+K", "Edit 4.2", Always, TR("See and change the keys of all commands")},

    {"/Ossa/View/Full Screen", "F11", "View 4.1", Always, TR("Use the whole screen")},
    {"/Ossa/View/Node Thumbnails", "", "View 4.2", Always, TR("Show in the node graph what each node gives")},
    {"/Ossa/View/Reset Layout", "", "View 4.3", Always, TR("Put all palettes back to where they were at first")},

    {"/Ossa/Viewer/Show Patches", "", "Viewer 1.1", Always, TR("Show the patches of the texture")},
    {"/Ossa/Viewer/Show Object", "", "Viewer 1.2", Always, TR("Show the texture on the object")},
    {"/Ossa/Viewer/Show Patches and Object", "", "Viewer 1.3", Always, TR("Show both side by side")},
    {"/Ossa/Viewer/Toggle Light", "", "Viewer 1.4", Always, TR("Light the object, or show its plain colors")},
    {"/Ossa/Viewer/Toggle Painting", "", "Viewer 1.5", Always, TR("Paint on the patches, or only look at them")},
    {"/Ossa/Viewer/New Paint", "", "Viewer 1.6", Always, TR("Put a new paint node over what the viewer shows")},
    {"/Ossa/Viewer/Toggle Eraser", "", "Viewer 1.7", Always, TR("Take paint away with the brush, or paint")},
    {"/Ossa/Viewer/Bake Paint", "", "Viewer 1.8", Always, TR("Write the paint into the images of its node")},
    {"/Ossa/Viewer/Clear Paint", "", "Viewer 1.9", Always, TR("Take away all paint that is not baked")},

    {"/Ossa/NodeGraph/Quick Create", "Tab", "Graph 1.1, Context 1.1", Always},
    {"/Ossa/NodeGraph/Create/*", "", "Create 1.1", Always},
    {"/Ossa/NodeGraph/Search Node", "Ctrl+F", "Edit 3.2, Context 1.2", Always},
    {"/Ossa/NodeGraph/Cut", "Ctrl+X", "Edit 2.1, Context 2.1", Always},
    {"/Ossa/NodeGraph/Copy", "Ctrl+C", "Edit 2.2, Context 2.2", Always},
    {"/Ossa/NodeGraph/Paste", "Ctrl+V", "Edit 2.3, Context 2.3", Always},
    {"/Ossa/NodeGraph/Duplicate", "Ctrl+D", "Edit 2.4, Context 2.4", Always},
    {"/Ossa/NodeGraph/Delete", "Del Backspace", "Edit 2.5, Context 2.5", Always},
    {"/Ossa/NodeGraph/Remove All Nodes", "", "Graph 2.6", Always},
    {"/Ossa/NodeGraph/Rename Node", "F2", "Graph 2.1, Context 3.1", Always},
    {"/Ossa/NodeGraph/Disable", "D", "Graph 2.2, Context 3.2", Always},
    {"/Ossa/NodeGraph/Bypass", "B", "Graph 2.3, Context 3.3", Always},
    {"/Ossa/NodeGraph/Extract", "Ctrl+Shift+X", "Graph 2.4, Context 3.4", Always},
    {"/Ossa/NodeGraph/Swap Inputs", "Shift+X", "Graph 2.5, Context 3.5", Always},
    {"/Ossa/NodeGraph/Autoplace", "L", "Graph 3.1", Always},

    {"/Ossa/NodeGraph/Frame Nodes", "A", "View 1.1, Context 4.3", Always},
    {"/Ossa/NodeGraph/Focus Selection", "F", "View 1.2, Context 4.2", Always},
    {"/Ossa/NodeGraph/Zoom In", "+ =", "View 2.1", Always},
    {"/Ossa/NodeGraph/Zoom Out", "-", "View 2.2", Always},
    {"/Ossa/NodeGraph/Pan Left", "Left", "Pan 1.1", Always},
    {"/Ossa/NodeGraph/Pan Right", "Right", "Pan 1.2", Always},
    {"/Ossa/NodeGraph/Pan Up", "Up", "Pan 1.3", Always},
    {"/Ossa/NodeGraph/Pan Down", "Down", "Pan 1.4", Always},
    {"/Ossa/NodeGraph/Toggle Snap to Grid", "G", "View 2.4", Always},

    {"/Ossa/NodeGraph/Select All", "Ctrl+A", "Edit 3.1, Select 1.1", Always},
    {"/Ossa/NodeGraph/Select Previous Upstream", "Ctrl+Left", "Select 2.1", Always},
    {"/Ossa/NodeGraph/Select Next Downstream", "Ctrl+Right", "Select 2.2", Always},
    {"/Ossa/NodeGraph/Select Previous Sibling", "Ctrl+Up", "Select 2.3", Always},
    {"/Ossa/NodeGraph/Select Next Sibling", "Ctrl+Down", "Select 2.4", Always},
    {"/Ossa/NodeGraph/Add Select Previous Upstream", "Ctrl+Shift+Left", "Select 3.1", Always},
    {"/Ossa/NodeGraph/Add Select Next Downstream", "Ctrl+Shift+Right", "Select 3.2", Always},
    {"/Ossa/NodeGraph/Add Select Previous Sibling", "Ctrl+Shift+Up", "Select 3.3", Always},
    {"/Ossa/NodeGraph/Add Select Next Sibling", "Ctrl+Shift+Down", "Select 3.4", Always},
    {"/Ossa/NodeGraph/Select All Upstream", "U", "Select 4.1", Always},
    {"/Ossa/NodeGraph/Select All Downstream", "Shift+U", "Select 4.2", Always},
    {"/Ossa/NodeGraph/Select Stream Upstream", "Ctrl+U", "Select 4.3", Always},
    {"/Ossa/NodeGraph/Select Stream Downstream", "Ctrl+Shift+U", "Select 4.4", Always},
    {"/Ossa/NodeGraph/Select Between", "Shift+B", "Select 4.5", Always},

    {"/Ossa/NodeGraph/Pick Up Edge Under Mouse", "E", "Edges 1.1", Always},
    {"/Ossa/NodeGraph/Toggle Edge Sever Mode", "Y", "Edges 1.2", Always},
    {"/Ossa/NodeGraph/Shake To Extract", "", "Edges 1.3", Always},
    {"/Ossa/NodeGraph/Toggle Port List", "P", "Ports 1.1", Always},
    {"/Ossa/NodeGraph/Cycle Port List Mode", "Shift+P", "Ports 1.2", Always},
    {"/Ossa/NodeGraph/Switch to Expanded mode", "", "Ports 2.1", Always},
    {"/Ossa/NodeGraph/Switch to Stream Collapsed mode", "", "Ports 2.2", Always},
    {"/Ossa/NodeGraph/Switch to Connected Only mode", "", "Ports 2.3", Always},
    {"/Ossa/NodeGraph/Switch to Collapsed mode", "", "Ports 2.4", Always},

    {"/Ossa/NodeGraph/Connect Selected Node to Viewer", "1", "Look 1.01, Context 4.1", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer2", "2", "Look 1.02", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer3", "3", "Look 1.03", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer4", "4", "Look 1.04", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer5", "5", "Look 1.05", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer6", "6", "Look 1.06", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer7", "7", "Look 1.07", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer8", "8", "Look 1.08", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer9", "9", "Look 1.09", Always},
    {"/Ossa/NodeGraph/Connect Selected Node to Viewer0", "0", "Look 1.10", Always},
    {"/Ossa/NodeGraph/Move Viewer to Cursor", "V", "Look 2.1", Always},

    {"/Ossa/NodeGraph/Create Paint Node", "", "Bake 1.1, Object 2.1", Always},
    {"/Ossa/NodeGraph/Bake to Paint Node", "", "Bake 1.2, Object 2.2", Always},
    {"/Ossa/NodeGraph/Export to Geo-Channel", "", "Bake 1.3, Object 2.3", Always},
    {"/Ossa/NodeGraph/Smart Bake And Update", "Ctrl+B", "Bake 2.1, Object 3.1", Always},
    {"/Ossa/NodeGraph/Bake Selected", "", "Bake 2.2, Object 3.2", Always},
    {"/Ossa/NodeGraph/Update Selected", "", "Bake 2.3, Object 3.3", Always},
    {"/Ossa/NodeGraph/Update Upstream", "", "Bake 2.4, Object 3.4", Always},
    {"/Ossa/NodeGraph/Update Downstream", "", "Bake 2.5, Object 3.5", Always},

    {"/Ossa/NodeGraph/Group Selected Nodes", "Ctrl+G", "Group 1.1", Always, TR("Put the selected nodes into a group with a port for each stream")},
    {"/Ossa/NodeGraph/Ungroup", "Ctrl+Shift+G", "Group 1.2", Always, TR("Put what is inside the selected groups in their place")},
    {"/Ossa/NodeGraph/Open Group Node Subgraph", "Ctrl+Return Ctrl+Enter", "Group 1.3", Always},
    {"/Ossa/NodeGraph/Add Group Input", "", "Group 2.1", Always, TR("Give the group another input")},
    {"/Ossa/NodeGraph/Add Group Output", "", "Group 2.2", Always, TR("Give the group another output")},
    {"/Ossa/NodeGraph/Manage User Knobs", "", "Group 2.3", Always},
    {"/Ossa/NodeGraph/Expose Node Properties", "", "Group 2.4", Always},
    {"/Ossa/NodeGraph/Export as Gizmo", "", "Group 2.5", Always, TR("Save the group as a file that can be imported anywhere")},
    {"/Ossa/NodeGraph/Export Material to Archive", "", "Group 2.6", Always, TR("Save a material with its images as one file")},
    {"/Ossa/NodeGraph/Export as Custom Procedural", "", "Group 2.7", Always, TR("Save the group with its images as a node of its own kind")},
    {"/Ossa/NodeGraph/Import Nodes", "", "Exchange 1.1", Always},
    {"/Ossa/NodeGraph/Export Nodes", "", "Exchange 1.2", Always},
    {"/Ossa/NodeGraph/Import Material", "", "Exchange 2.1", Always},
    {"/Ossa/NodeGraph/Import Custom Procedural", "", "Exchange 2.2", Always},

    {"/Ossa/NodeGraph/Open Node Properties", "Return Enter", "Properties 1.1, Context 6.1", Always},
    {"/Ossa/NodeGraph/Delete All Properties", "", "Properties 1.2", Always},
    {"/Ossa/NodeGraph/Dump Selected Node Info", "", "Versions 1.1", Always},
    {"/Ossa/NodeGraph/Upgrade Selected Node Info", "", "Versions 1.2", Always},
    {"/Ossa/NodeGraph/Upgrade All Node Info", "", "Versions 1.3", Always},
    {"/Ossa/NodeGraph/Info Viewer", "I", "Graph 5.4, Context 6.2", Always},

    {"/Ossa/Object/*", "", "Object 1.1", Always},
    {"/Ossa/Palettes/*", "", "Palettes 1.1", Always},
    {"/Ossa/Script/Console", "", "Script 1.1", Always, TR("Type script lines, and see what was done by hand as script lines"), "ScriptConsole.png"},
    {"/Ossa/Script/Run File...", "", "Script 1.2", WithoutScript, TR("Run a Python file as a script of its own")},
    {"/Ossa/Script/Stop", "", "Script 1.3", WithScript, TR("Stop the running script")},
    {"/Ossa/Help/Find Command...", "Ctrl+Shift+P", "Help 1.1", Always, TR("Find a command by a few letters of its name")},
    {"/Ossa/Help/About Ossa", "", "Help 1.2", Always},
};

} // namespace

// clang-format on

const std::vector<Menu> &OssCommandTable::menus()
{
    return menuTable;
}

const std::vector<Row> &OssCommandTable::rows()
{
    return rowTable;
}
