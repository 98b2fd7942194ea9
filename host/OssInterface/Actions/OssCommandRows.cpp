#include "OssInterface/Actions/OssCommandTable.h"

#include <QtGlobal>

// The namespace is the context in which the texts are translated.
namespace OssCommandTable {
// clang-format off
namespace {

const std::vector<Menu> MenuTable{
    {"File", QT_TR_NOOP("&File"), ""},
    {"Edit", QT_TR_NOOP("&Edit"), ""},
    {"View", QT_TR_NOOP("&View"), ""},
    {"Graph", QT_TR_NOOP("&Node Graph"), ""},
    {"Object", QT_TR_NOOP("&Object"), ""},
    {"Palettes", QT_TR_NOOP("&Palettes"), ""},
    {"Script", QT_TR_NOOP("&Script"), ""},
    {"Help", QT_TR_NOOP("&Help"), ""},
    {"Context", QT_TR_NOOP("Node Graph"), ""},
    {"Open Recent", QT_TR_NOOP("Open Recent"), "File 1.3"},
    {"Open Example", QT_TR_NOOP("Open Example"), "File 1.4"},
    {"Pan", QT_TR_NOOP("Pan"), "View 2.3"},
    {"Viewer", QT_TR_NOOP("Viewer"), "View 3.1"},
    {"Create", QT_TR_NOOP("Create"), "Graph 1.2"},
    {"Select", QT_TR_NOOP("Select"), "Graph 3.2, Context 4.4"},
    {"Edges", QT_TR_NOOP("Edges"), "Graph 3.3"},
    {"Ports", QT_TR_NOOP("Ports"), "Graph 3.4, Context 4.5"},
    {"Look", QT_TR_NOOP("Viewer"), "Graph 3.5"},
    {"Group", QT_TR_NOOP("Group"), "Graph 3.6, Context 5.2"},
    {"Bake", QT_TR_NOOP("Paint and Bake"), "Context 5.1"},
    {"Exchange", QT_TR_NOOP("Import and Export"), "Graph 5.1, Context 5.3"},
    {"Properties", QT_TR_NOOP("Properties"), "Graph 5.2"},
    {"Versions", QT_TR_NOOP("Versions"), "Graph 5.3"},
};

const std::vector<Row> RowTable{
    {"/Ossa/File", QT_TR_NOOP("New"), "Ctrl+N", "File 1.1", Always, QT_TR_NOOP("Start an empty project")},
    {"/Ossa/File", QT_TR_NOOP("Open..."), "Ctrl+O", "File 1.2", Always, QT_TR_NOOP("Open a project folder")},
    {"/Ossa/File/Recent", "*", "", "Open Recent 1.1", Always},
    {"/Ossa/File", QT_TR_NOOP("Clear Recent"), "", "Open Recent 2.1", WithRecent, QT_TR_NOOP("Forget which projects were opened")},
    {"/Ossa/File/Example", "*", "", "Open Example 1.1", Always},
    {"/Ossa/File", QT_TR_NOOP("Recover Unsaved Work..."), "", "File 1.5", Always, QT_TR_NOOP("Restore what a session left that ended without saving")},
    {"/Ossa/File", QT_TR_NOOP("Save"), "Ctrl+S", "File 2.1", WithProject, QT_TR_NOOP("Save the project")},
    {"/Ossa/File", QT_TR_NOOP("Save As..."), "Ctrl+Shift+S", "File 2.2", WithProject, QT_TR_NOOP("Save the project under another name")},
    {"/Ossa/File", QT_TR_NOOP("Close"), "Ctrl+W", "File 2.3", WithProject, QT_TR_NOOP("Close the project")},
    {"/Ossa/File", QT_TR_NOOP("Export Textures..."), "Ctrl+E", "File 2.5", WithProject, QT_TR_NOOP("Write the textures of materials as image files")},
    {"/Ossa/File", QT_TR_NOOP("Export glTF..."), "", "File 2.6", WithProject, QT_TR_NOOP("Write objects and textures as one glTF file")},
    {"/Ossa/File", QT_TR_NOOP("Export Again"), "Ctrl+Shift+E", "File 2.7", WithProject, QT_TR_NOOP("Write again what was exported last, as it is now")},
    {"/Ossa/File", QT_TR_NOOP("Watch Exported Textures"), "", "File 2.8", WithProject, QT_TR_NOOP("Write exported textures again when their pixels change")},
    {"/Ossa/File", QT_TR_NOOP("Quit"), "Ctrl+Q", "File 3.1", Always, QT_TR_NOOP("Leave the program")},

    {"/Ossa/Edit", QT_TR_NOOP("Undo"), "Ctrl+Z", "Edit 1.1", WithUndo, QT_TR_NOOP("Take back the last step")},
    {"/Ossa/Edit", QT_TR_NOOP("Redo"), "Ctrl+Shift+Z Ctrl+Y", "Edit 1.2", WithRedo, QT_TR_NOOP("Do again what was taken back")},
    {"/Ossa/Edit", QT_TR_NOOP("Go to Last Change"), "", "Edit 3.3", WithUndo, QT_TR_NOOP("Go to the node that the last step changed")},
    {"/Ossa/Edit", QT_TR_NOOP("Preferences..."), "Ctrl+,", "Edit 4.1", Always, QT_TR_NOOP("Set how the program behaves")},
    {"/Ossa/Edit", QT_TR_NOOP("Size of New Images..."), "", "Edit 4.3", WithProject, QT_TR_NOOP("Set how large images are that are made in this project")},
    {"/Ossa/Edit", QT_TR_NOOP("Node Type Folder"), "", "Edit 4.4", Always, QT_TR_NOOP("Show the folder for kinds of nodes of your own; they are known as soon as their descriptions are there")},
    {"/Ossa/Edit", QT_TR_NOOP("Keyboard Shortcuts..."), "Ctrl+Alt+K", "Edit 4.2", Always, QT_TR_NOOP("See and change the keys of all commands")},

    {"/Ossa/View", QT_TR_NOOP("Full Screen"), "F11", "View 4.1", Always, QT_TR_NOOP("Use the whole screen")},
    {"/Ossa/View", QT_TR_NOOP("Node Thumbnails"), "", "View 4.2", Always, QT_TR_NOOP("Show in the node graph what each node gives")},
    {"/Ossa/View", QT_TR_NOOP("Reset Layout"), "", "View 4.3", Always, QT_TR_NOOP("Put all palettes back to where they were at first")},

    {"/Ossa/Viewer", QT_TR_NOOP("Show Patches"), "", "Viewer 1.1", Always, QT_TR_NOOP("Show the patches of the texture")},
    {"/Ossa/Viewer", QT_TR_NOOP("Show Object"), "", "Viewer 1.2", Always, QT_TR_NOOP("Show the texture on the object")},
    {"/Ossa/Viewer", QT_TR_NOOP("Show Patches and Object"), "", "Viewer 1.3", Always, QT_TR_NOOP("Show both side by side")},
    {"/Ossa/Viewer", QT_TR_NOOP("Frame Pictures"), "F A", "Viewer 1.4", Always, QT_TR_NOOP("Show all patches and the whole object")},
    {"/Ossa/Viewer", QT_TR_NOOP("Toggle Light"), "L", "Viewer 1.5", Always, QT_TR_NOOP("Light the object, or show its plain colors")},
    {"/Ossa/Viewer", QT_TR_NOOP("Compare"), "C", "Viewer 1.6", Always, QT_TR_NOOP("Keep the picture as it looks now and wipe between it and what is looked at next, or let go of it")},
    {"/Ossa/Viewer", QT_TR_NOOP("Toggle Painting"), "", "Viewer 2.1", Always, QT_TR_NOOP("Paint on the patches, or only look at them")},
    {"/Ossa/Viewer", QT_TR_NOOP("New Paint"), "", "Viewer 2.2", Always, QT_TR_NOOP("Put a new paint node over what the viewer shows")},
    {"/Ossa/Viewer", QT_TR_NOOP("Bake Paint"), "", "Viewer 2.3", Always, QT_TR_NOOP("Write the paint into the images of its node")},
    {"/Ossa/Viewer", QT_TR_NOOP("Clear Paint"), "", "Viewer 2.4", Always, QT_TR_NOOP("Take away all paint that is not baked")},
    {"/Ossa/Viewer", QT_TR_NOOP("Toggle Eraser"), "E", "Viewer 3.1", WithBrush, QT_TR_NOOP("Take paint away with the brush, baked paint too, or paint")},
    {"/Ossa/Viewer", QT_TR_NOOP("Smaller Brush"), "[", "Viewer 3.2", WithBrush, QT_TR_NOOP("Make the brush smaller")},
    {"/Ossa/Viewer", QT_TR_NOOP("Larger Brush"), "]", "Viewer 3.3", WithBrush, QT_TR_NOOP("Make the brush larger")},
    {"/Ossa/Viewer", QT_TR_NOOP("Softer Brush"), "{", "Viewer 3.4", WithBrush, QT_TR_NOOP("Let the brush's edge fade more")},
    {"/Ossa/Viewer", QT_TR_NOOP("Harder Brush"), "}", "Viewer 3.5", WithBrush, QT_TR_NOOP("Let the brush's edge fade less")},

    // Offered for the images that are selected in their palette.
    {"/Ossa/Images", QT_TR_NOOP("As Tiled"), "", "", Always, QT_TR_NOOP("Put the selected images into the graph as tiles")},
    {"/Ossa/Images", QT_TR_NOOP("As TriPlanar"), "", "", Always, QT_TR_NOOP("Put the selected images into the graph, projected from three sides")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Quick Create"), "Tab", "Graph 1.1, Context 1.1", Always, QT_TR_NOOP("Find a kind of node by a few letters and put one under the pointer")},
    {"/Ossa/NodeGraph/Create", "*", "", "Create 1.1", Always},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Search Node"), "Ctrl+F", "Edit 3.2, Context 1.2", Always, QT_TR_NOOP("Find a node of this graph by its name and go to it")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Cut"), "Ctrl+X", "Edit 2.1, Context 2.1", Always, QT_TR_NOOP("Take the selected nodes out of the graph to paste them elsewhere")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Copy"), "Ctrl+C", "Edit 2.2, Context 2.2", Always, QT_TR_NOOP("Copy the selected nodes with the wires between them")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Paste"), "Ctrl+V", "Edit 2.3, Context 2.3", Always, QT_TR_NOOP("Put copied nodes under the pointer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Duplicate"), "Ctrl+D", "Edit 2.4, Context 2.4", Always, QT_TR_NOOP("Put a copy of each selected node beside it")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Delete"), "Del Backspace", "Edit 2.5, Context 2.5", Always, QT_TR_NOOP("Remove the selected nodes")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Remove All Nodes"), "", "Graph 2.6", Always, QT_TR_NOOP("Remove all nodes from this graph")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Rename Node"), "F2", "Graph 2.1, Context 3.1", Always, QT_TR_NOOP("Give the selected node another name")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Disable"), "D", "Graph 2.2, Context 3.2", Always, QT_TR_NOOP("Switch the selected nodes off or on again: one that is off passes on what it gets")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Bypass"), "B", "Graph 2.3, Context 3.3", Always, QT_TR_NOOP("Let the stream run past the selected nodes, or through them again")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Extract"), "Ctrl+Shift+X", "Graph 2.4, Context 3.4", Always, QT_TR_NOOP("Take the selected nodes out of their wires and join the loose ends")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Swap Inputs"), "Shift+X", "Graph 2.5, Context 3.5", Always, QT_TR_NOOP("Exchange what feeds the inputs of the selected nodes")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Autoplace"), "L", "Graph 3.1", Always, QT_TR_NOOP("Arrange the nodes so that streams run in columns")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Frame Nodes"), "A", "View 1.1, Context 4.3", Always, QT_TR_NOOP("Show all nodes of the graph")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Focus Selection"), "F", "View 1.2, Context 4.2", Always, QT_TR_NOOP("Show the selected nodes as large as they fit")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Zoom In"), "+ =", "View 2.1", Always, QT_TR_NOOP("See less of the graph, larger")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Zoom Out"), "-", "View 2.2", Always, QT_TR_NOOP("See more of the graph, smaller")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Pan Left"), "Left", "Pan 1.1", Always, QT_TR_NOOP("See what lies to the left")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Pan Right"), "Right", "Pan 1.2", Always, QT_TR_NOOP("See what lies to the right")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Pan Up"), "Up", "Pan 1.3", Always, QT_TR_NOOP("See what lies above")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Pan Down"), "Down", "Pan 1.4", Always, QT_TR_NOOP("See what lies below")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Toggle Snap to Grid"), "G", "View 2.4", Always, QT_TR_NOOP("Have nodes jump to the grid when they are moved, or move freely")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Select All"), "Ctrl+A", "Edit 3.1, Select 1.1", Always, QT_TR_NOOP("Select all nodes of this graph")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select Previous Upstream"), "Ctrl+Left", "Select 2.1", Always, QT_TR_NOOP("Select the node that feeds the selected one instead of it")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select Next Downstream"), "Ctrl+Right", "Select 2.2", Always, QT_TR_NOOP("Select the node that the selected one feeds instead of it")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select Previous Sibling"), "Ctrl+Up", "Select 2.3", Always, QT_TR_NOOP("Select the node before the selected one among those that feed the same node")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select Next Sibling"), "Ctrl+Down", "Select 2.4", Always, QT_TR_NOOP("Select the node after the selected one among those that feed the same node")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Add Select Previous Upstream"), "Ctrl+Shift+Left", "Select 3.1", Always, QT_TR_NOOP("Select the node that feeds the selected one, too")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Add Select Next Downstream"), "Ctrl+Shift+Right", "Select 3.2", Always, QT_TR_NOOP("Select the node that the selected one feeds, too")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Add Select Previous Sibling"), "Ctrl+Shift+Up", "Select 3.3", Always, QT_TR_NOOP("Select the sibling before the selected node, too")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Add Select Next Sibling"), "Ctrl+Shift+Down", "Select 3.4", Always, QT_TR_NOOP("Select the sibling after the selected node, too")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select All Upstream"), "U", "Select 4.1", Always, QT_TR_NOOP("Select everything that feeds the selected nodes, along all wires")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select All Downstream"), "Shift+U", "Select 4.2", Always, QT_TR_NOOP("Select everything that the selected nodes feed, along all wires")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select Stream Upstream"), "Ctrl+U", "Select 4.3", Always, QT_TR_NOOP("Select what the stream runs through before it comes to the selected nodes")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select Stream Downstream"), "Ctrl+Shift+U", "Select 4.4", Always, QT_TR_NOOP("Select what the stream runs through after the selected nodes")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Select Between"), "Shift+B", "Select 4.5", Always, QT_TR_NOOP("Select all nodes on the ways from one selected node to another")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Mark Dependencies"), "", "Select 5.1", Always, QT_TR_NOOP("Mark what computes the selected nodes, the dearer the redder, and tell what it costs")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Clear Marks"), "", "Select 5.2", Always, QT_TR_NOOP("Take the marks of dependencies away")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Pick Up Edge Under Mouse"), "E", "Edges 1.1", Always, QT_TR_NOOP("Take the wire under the pointer in hand to connect it elsewhere")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Toggle Edge Sever Mode"), "Y", "Edges 1.2", Always, QT_TR_NOOP("Cut the wires that the pointer is drawn across, or stop doing so")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Toggle Wire"), "Shift+D", "Edges 1.4", Always, QT_TR_NOOP("Switch the selected wires, or the one under the pointer, off or on again: what comes along one that is off is not used")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Shake To Extract"), "", "Edges 1.3", Always, QT_TR_NOOP("Shake To Extract")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Toggle Port List"), "P", "Ports 1.1", Always, QT_TR_NOOP("Show all ports of the selected nodes, or their headers alone")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Cycle Port List Mode"), "Shift+P", "Ports 1.2", Always, QT_TR_NOOP("Show more or fewer ports on the selected nodes, one step at a time")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Switch to Expanded mode"), "", "Ports 2.1", Always, QT_TR_NOOP("Show every port of the selected nodes")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Switch to Stream Collapsed mode"), "", "Ports 2.2", Always, QT_TR_NOOP("Show the ports of each stream as one on the selected nodes")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Switch to Connected Only mode"), "", "Ports 2.3", Always, QT_TR_NOOP("Show only the connected ports of the selected nodes")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Switch to Collapsed mode"), "", "Ports 2.4", Always, QT_TR_NOOP("Show the selected nodes without their ports")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer"), "1", "Look 1.01, Context 4.1", Always, QT_TR_NOOP("Look at the selected node through input 1 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer2"), "2", "Look 1.02", Always, QT_TR_NOOP("Look at the selected node through input 2 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer3"), "3", "Look 1.03", Always, QT_TR_NOOP("Look at the selected node through input 3 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer4"), "4", "Look 1.04", Always, QT_TR_NOOP("Look at the selected node through input 4 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer5"), "5", "Look 1.05", Always, QT_TR_NOOP("Look at the selected node through input 5 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer6"), "6", "Look 1.06", Always, QT_TR_NOOP("Look at the selected node through input 6 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer7"), "7", "Look 1.07", Always, QT_TR_NOOP("Look at the selected node through input 7 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer8"), "8", "Look 1.08", Always, QT_TR_NOOP("Look at the selected node through input 8 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer9"), "9", "Look 1.09", Always, QT_TR_NOOP("Look at the selected node through input 9 of the viewer")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Connect Selected Node to Viewer0"), "0", "Look 1.10", Always, QT_TR_NOOP("Make the selected material the current one and look at it")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Look At"), "S", "Look 2.2, Context 4.6", Always, QT_TR_NOOP("Show the node under the pointer, or else the selected one, in the Viewer without rewiring it; the key held shows it until it is let go")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Move Viewer to Cursor"), "V", "Look 2.1", Always, QT_TR_NOOP("Bring the viewer to this graph, under the pointer")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Create Paint Node"), "", "Bake 1.1, Object 2.1", Always, QT_TR_NOOP("Make a node with images of its own to paint on")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Bake to Paint Node"), "", "Bake 1.2, Object 2.2", Always, QT_TR_NOOP("Write what the selected node gives into the images of a new paint node")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Export to Geo-Channel"), "", "Bake 1.3, Object 2.3", Always, QT_TR_NOOP("Write what the selected node gives into a channel of the object")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Smart Bake And Update"), "Ctrl+B", "Bake 2.1, Object 3.1", Always, QT_TR_NOOP("Bake the bake points of this graph that are empty or out of date")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Bake Selected"), "", "Bake 2.2, Object 3.2", Always, QT_TR_NOOP("Bake the selected bake points")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Update Selected"), "", "Bake 2.3, Object 3.3", Always, QT_TR_NOOP("Bake the selected bake points that are out of date")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Bake Again"), "", "Bake 2.4, Object 3.4", Always, QT_TR_NOOP("Bake the selected bake points, whether they are out of date or not")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Update Upstream"), "", "Bake 2.5, Object 3.5", Always, QT_TR_NOOP("Bake the bake points that feed the selected nodes, where they are empty or out of date")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Update Downstream"), "", "Bake 2.6, Object 3.6", Always, QT_TR_NOOP("Bake the bake points that the selected nodes feed, where they are empty or out of date")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Group Selected Nodes"), "Ctrl+G", "Group 1.1", Always, QT_TR_NOOP("Put the selected nodes into a group with a port for each stream")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Ungroup"), "Ctrl+Shift+G", "Group 1.2", Always, QT_TR_NOOP("Put what is inside the selected groups in their place")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Open Group Node Subgraph"), "Ctrl+Return Ctrl+Enter", "Group 1.3", Always, QT_TR_NOOP("Open what is inside the selected group in a tab of its own")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Add Group Input"), "", "Group 2.1", Always, QT_TR_NOOP("Give the group another input")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Add Group Output"), "", "Group 2.2", Always, QT_TR_NOOP("Give the group another output")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Order Ports by Position"), "", "Group 3.1", Always, QT_TR_NOOP("Put the group's ports into the order in which their nodes lie inside, from the top")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Arrange Inputs by Order"), "", "Group 3.2", Always, QT_TR_NOOP("Let the nodes of the group's inputs lie inside in the order of the ports")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Manage User Knobs"), "", "Group 2.3", WithKnobs, QT_TR_NOOP("Choose which values of the nodes inside a group its panel shows")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Expose Node Properties"), "", "Group 2.4", WithExposed, QT_TR_NOOP("Show all values of the selected nodes on the panel of their group")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Export as Gizmo"), "", "Group 2.5", Always, QT_TR_NOOP("Save the group as a file that can be imported anywhere")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Export Material to Archive"), "", "Group 2.6", Always, QT_TR_NOOP("Save a material with its images as one file")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Export as Custom Procedural"), "", "Group 2.7", Always, QT_TR_NOOP("Save the group with its images as a node of its own kind")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Import Nodes"), "", "Exchange 1.1", Always, QT_TR_NOOP("Add the nodes of a file to this graph")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Export Nodes"), "", "Exchange 1.2", Always, QT_TR_NOOP("Save the selected nodes as a file")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Import Material"), "", "Exchange 2.1", Always, QT_TR_NOOP("Add a material with its images from an archive")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Import Custom Procedural"), "", "Exchange 2.2", Always, QT_TR_NOOP("Add a node of its own kind with its images from an archive")},

    {"/Ossa/NodeGraph", QT_TR_NOOP("Open Node Properties"), "Return Enter", "Properties 1.1, Context 6.1", Always, QT_TR_NOOP("Show the values of the selected nodes in panels")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Delete All Properties"), "Ctrl+Shift+A", "Properties 1.2", Always, QT_TR_NOOP("Remove all panels."), "NodePropertiesDeleteAll.png"},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Dump Selected Node Info"), "", "Versions 1.1", Always, QT_TR_NOOP("Write what the selected nodes are made of into the log")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Upgrade Selected Node Info"), "", "Versions 1.2", Always, QT_TR_NOOP("Compare the selected nodes with the installed versions of their kinds")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Upgrade All Node Info"), "", "Versions 1.3", Always, QT_TR_NOOP("Compare all nodes with the installed versions of their kinds")},
    {"/Ossa/NodeGraph", QT_TR_NOOP("Info Viewer"), "I", "Graph 5.4, Context 6.2", Always, QT_TR_NOOP("Show what the selected nodes are, in words")},

    // What plug-ins file for the object.
    {"/Ossa/Object", "*", "", "Object 1.1", Always},
    {"/Ossa/Palettes", "*", "", "Palettes 1.1", Always},
    {"/Ossa/Script", QT_TR_NOOP("Console"), "", "Script 1.1", Always, QT_TR_NOOP("Type script lines, and see what was done by hand as script lines"), "ScriptConsole.png"},
    {"/Ossa/Script", QT_TR_NOOP("Run File..."), "", "Script 1.2", WithoutScript, QT_TR_NOOP("Run a Python file as a script of its own")},
    {"/Ossa/Script", QT_TR_NOOP("Stop"), "", "Script 1.3", WithScript, QT_TR_NOOP("Stop the running script")},
    {"/Ossa/Script", QT_TR_NOOP("Forget Names"), "", "Script 1.4", WithoutScript, QT_TR_NOOP("Let the console begin anew, without what was defined in it")},
    {"/Ossa/Help", QT_TR_NOOP("Find Command..."), "Ctrl+Shift+P", "Help 1.1", Always, QT_TR_NOOP("Find a command by a few letters of its name")},
    {"/Ossa/Help", QT_TR_NOOP("About Ossa"), "", "Help 1.2", Always, QT_TR_NOOP("See which version of the program this is")},
};

} // namespace

// clang-format on

const std::vector<Menu> &menus()
{
    return MenuTable;
}

const std::vector<Row> &rows()
{
    return RowTable;
}

} // namespace OssCommandTable
