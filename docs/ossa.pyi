# Types of the module "ossa", for editors and type checkers. Made by "ossa stubs".
from enum import IntEnum
from typing import Any, Callable, ContextManager, NamedTuple, overload

class ErrorType(IntEnum):
    InternalObjectGone = 0
    WrongType = 1
    UnknownName = 2
    ReadOnly = 3
    NotSupported = 4
    FileNotFound = 5
    FileNotAccessible = 6
    FileInvalid = 7
    Cancelled = 8
    NoProject = 9
    NotAllowed = 10
    ObjectUnavailable = 11
    WrongState = 12
    OutOfRange = 13


class Error(Exception):
    type: ErrorType
    message: str

class Point(NamedTuple):
    x: float
    y: float

class Color(NamedTuple):
    red: float
    green: float
    blue: float
    alpha: float = ...

class Signal:
    def connect(self, function: Callable[..., Any]) -> None: ...
    def disconnect(self, function: Callable[..., Any]) -> None: ...

class Object: ...

class _Progress:
    cancelled: bool
    def step(self, count: int = ...) -> None: ...

def undoMacro(title: str) -> ContextManager[None]: ...
def progress(title: str, total: int = ...) -> ContextManager[_Progress]: ...
def invoke(object: Object, slot: str, *arguments: Any) -> Any: ...

class Application(Object):
    """The program. What it has can be called on the module itself."""
    @property
    def version(self) -> str: ...
    def project(self) -> Project:
        """The open project; None when there is none."""
    @overload
    def newProject(self, name: str, geometry: str) -> Project:
        """Starts an empty project with one object, a plane, a sphere, a cube or a file. The open one is closed without saving it."""
    @overload
    def newProject(self, name: str) -> Project: ...
    def openProject(self, path: str) -> Project:
        """Opens a project folder. The open one is closed without saving it, but only when the other one can be opened."""
    def graph(self) -> NodeGraph:
        """The root graph of the current object; None without a project."""
    def shownGraph(self) -> NodeGraph:
        """The graph that the Node Graph palette shows."""
    def nodeTypes(self) -> list[str]:
        """Every type that can be made in a graph."""
    def palettes(self) -> list[str]:
        """Names of all palettes."""
    def palette(self, name: str) -> Palette:
        """By name; a palette that has a script class of its own comes as that."""
    def actions(self) -> Actions:
        """The commands of the program."""
    def preferences(self) -> Preferences:
        """The preferences."""
    def undo(self) -> Undo:
        """The history."""
    def status(self) -> Progress:
        """The progress in the status bar."""
    def trigger(self, path: str) -> None:
        """The same as actions().trigger(path)."""

class Project(Object):
    """A project. It is gone when another one is opened."""
    @property
    def name(self) -> str: ...
    @property
    def path(self) -> str:
        """The folder NAME.ossa; empty before the project was ever saved."""
    @property
    def modified(self) -> bool: ...
    @property
    def readOnly(self) -> bool:
        """A newer version wrote the project; it can only be looked at."""
    @property
    def newResolution(self) -> int:
        """Width and height of new images in pixels, from 256 to 16384."""
    @newResolution.setter
    def newResolution(self, value: int) -> None: ...
    @property
    def colorConfig(self) -> str:
        """Path of an OpenColorIO configuration, '$OCIO' for that of the environment, or empty for the built-in one."""
    @colorConfig.setter
    def colorConfig(self, value: str) -> None: ...
    @property
    def workingSpace(self) -> str:
        """Color space in which everything is computed. Colors of nodes keep their numbers; changeWorkingSpace() has them look the same."""
    @workingSpace.setter
    def workingSpace(self, value: str) -> None: ...
    @property
    def fileRules(self) -> list[str]:
        """In which color spaces image files are, by their names: the first 'PATTERN=SPACE' that fits. The space may be 'Data'."""
    @fileRules.setter
    def fileRules(self, value: list[str]) -> None: ...
    @property
    def colorProblem(self) -> str:
        """Why something stands in for the configuration or the working space; empty when nothing does."""
    def objects(self) -> list[GeoEntity]:
        """The objects that are textured."""
    def object(self, name: str) -> GeoEntity:
        """By name; None when there is none."""
    def createObject(self, name: str, geometry: str) -> GeoEntity:
        """Adds an object with a root graph. Its geometry is 'plane', 'sphere', 'cube', 'cylinder', 'shaderBall' or a file."""
    def removeObject(self, object: GeoEntity) -> None:
        """Takes an object with its graphs out of the project. A project has at least one."""
    @overload
    def importMesh(self, path: str, split: str, unwrap: bool) -> list[GeoEntity]:
        """Makes objects of a mesh file: split is 'one', 'objects' or 'materials'. With unwrap, texture coordinates are made."""
    @overload
    def importMesh(self, path: str, split: str) -> list[GeoEntity]: ...
    @overload
    def importMesh(self, path: str) -> list[GeoEntity]: ...
    def colorSpaces(self) -> list[str]:
        """Names of the color spaces of the configuration."""
    def changeWorkingSpace(self, space: str) -> int:
        """Sets the working space and has the colors of nodes look as before; how many were converted."""
    def missingFiles(self) -> list[str]:
        """Paths of meshes and images that the project names and that are missing or cannot be read."""
    def relink(self, oldPath: str, newPath: str) -> int:
        """Has all that names the old path name the new one; how many those were."""
    def relinkFolder(self, folder: str) -> int:
        """Relinks all missing files that lie under their names in or below the folder; how many uses of files were changed."""
    def graphs(self) -> list[NodeGraph]:
        """The root graphs of all objects."""
    def images(self) -> list[Image]:
        """The images of the image list."""
    def addImage(self, path: str) -> Image:
        """Adds an image file; '<UDIM>' stands for the patch's number."""
    def exportPresets(self) -> list[str]:
        """Names of the presets by which textures are written."""
    @overload
    def exportTextures(self, preset: str, folder: str, options: dict[str, Any]) -> list[str]:
        """Writes the textures of the materials as a preset says, a name or a file, and returns their paths. Options: 'resolution', 'padding' (pixels; -1 fills everything), 'version', 'patches' ('1001-1004'), 'materials' ('OBJECT/MATERIAL'), 'channels', 'constants'."""
    @overload
    def exportTextures(self, preset: str, folder: str) -> list[str]: ...
    @overload
    def exportGltf(self, path: str, options: dict[str, Any]) -> None:
        """Writes objects and textures as one glTF file (*.glb). Options as of exportTextures, without channels and constants."""
    @overload
    def exportGltf(self, path: str) -> None: ...
    def save(self) -> None:
        """Saves the project where it was opened."""
    def saveAs(self, path: str) -> None:
        """Saves the project as a folder NAME.ossa."""
    def close(self) -> None:
        """Closes the project without saving it."""
    def stateHash(self) -> str:
        """Equal for equal documents, however they came about."""

class GeoEntity(Object):
    """An object that is textured."""
    @property
    def name(self) -> str: ...
    @name.setter
    def name(self, value: str) -> None: ...
    @property
    def geometry(self) -> str:
        """'plane', 'sphere', 'cube', 'cylinder', 'shaderBall', or the file of the shape."""
    @property
    def meshState(self) -> str:
        """'ready', or 'kept' or 'missing' where the file cannot be used: then the mesh that the project keeps is used, or there is none."""
    @property
    def meshProblem(self) -> str:
        """Why the file cannot be used, or what is wrong with its texture coordinates; empty when all is well."""
    @property
    def uvSet(self) -> str:
        """The set of the file's texture coordinates; empty for the first."""
    @uvSet.setter
    def uvSet(self, value: str) -> None: ...
    @property
    def unwraps(self) -> bool:
        """Whether texture coordinates are made, whatever the file has."""
    @unwraps.setter
    def unwraps(self, value: bool) -> None: ...
    @property
    def geoChannels(self) -> list[str]:
        """Names of the object's geo-channels."""
    def replaceMesh(self, geometry: str) -> str:
        """Gives the object another shape or file; wires, paint and bakes stay. What is other, in words."""
    def reloadMesh(self) -> None:
        """Reads the file again."""
    def addGeoChannel(self, name: str) -> None:
        """Makes a geo-channel, without pixels at first."""
    def patches(self) -> list[int]:
        """The UDIM patches of the object, ascending."""
    def graphs(self) -> list[NodeGraph]:
        """The root graphs of the object."""
    def imageSets(self) -> list[ImageSet]:
        """The image sets of the object's shading."""
    def imageSet(self, name: str) -> ImageSet:
        """By name; None when there is none."""

class NodeGraph(Object):
    """A node graph: the root graph of an object, or the inside of a group."""
    @property
    def root(self) -> bool:
        """False for the inside of a group."""
    def rootGraph(self) -> NodeGraph:
        """The outermost graph; itself for a root."""
    def parentNode(self) -> Node:
        """The group whose inside this is; None for a root."""
    def object(self) -> GeoEntity:
        """The object whose shading this is."""
    def nodes(self) -> list[Node]:
        """The nodes, without what is inside groups."""
    def allNodes(self) -> list[Node]:
        """The nodes, each followed by what is inside it."""
    def nodesOfType(self, type: str) -> list[Node]:
        """All nodes of a type, inside groups too."""
    def node(self, name: str) -> Node:
        """By name, or by path from this graph; None when there is none."""
    def selectedNodes(self) -> list[Node]:
        """The selected nodes of this graph."""
    def select(self, nodes: list[Node]) -> None:
        """Selects these nodes and no others."""
    @overload
    def createNode(self, type: str, name: str) -> Node:
        """Makes a node of a type. Without a position it is placed freely."""
    @overload
    def createNode(self, type: str) -> Node: ...
    @overload
    def createNode(self, type: str, name: str, position: Point) -> Node: ...
    @overload
    def connect(self, source: Node, target: Node, input: str, output: str) -> None:
        """Wires a source to an input of a target; without an input, to the one that a wire dropped on the node would go to."""
    @overload
    def connect(self, source: Node, target: Node, input: str) -> None: ...
    @overload
    def connect(self, source: Node, target: Node) -> None: ...
    def remove(self, nodes: list[Node]) -> None:
        """Removes nodes. What the graph cannot do without stays."""
    def extract(self, nodes: list[Node]) -> None:
        """Takes nodes out of their streams; what fed each feeds what it fed."""
    @overload
    def group(self, nodes: list[Node], name: str) -> Node:
        """Puts nodes into a new group and returns it."""
    @overload
    def group(self, nodes: list[Node]) -> Node: ...
    def ungroup(self, group: Node) -> list[Node]:
        """Takes a group apart and returns what was inside."""
    def duplicate(self, nodes: list[Node]) -> list[Node]:
        """Copies of nodes, in their order, with the wires among them."""
    def toText(self, nodes: list[Node]) -> str:
        """Nodes as the text that the clipboard carries."""
    def fromText(self, text: str) -> list[Node]:
        """Adds the nodes of such a text."""
    def exportNodes(self, nodes: list[Node], path: str) -> None:
        """Writes nodes into a node file (*.ong)."""
    def importNodes(self, path: str) -> list[Node]:
        """Adds the nodes of a node file."""
    @overload
    def layout(self) -> None:
        """Arranges nodes and what feeds them, or the whole graph whatever is selected, in columns."""
    @overload
    def layout(self, nodes: list[Node]) -> None: ...
    @overload
    def arrange(self) -> None:
        """Puts nodes in order, one of arrangements(): in line, at equal distances, each by the one before it in the list, or backdrops around what lies on them. Without one they are laid out in layers, so that few wires cross; without nodes the whole graph is."""
    @overload
    def arrange(self, nodes: list[Node], how: str) -> None: ...
    @overload
    def arrange(self, nodes: list[Node]) -> None: ...
    def arrangements(self) -> list[str]:
        """What arrange() can do, as 'align left' or 'place below'."""
    def show(self) -> None:
        """Shows the graph in the Node Graph palette."""
    def viewer(self) -> Node:
        """The viewer of the object; None when there is none."""
    @overload
    def view(self, node: Node, input: int) -> None:
        """Shows what a node gives in the Viewer."""
    @overload
    def view(self, node: Node) -> None: ...
    nodesChanged: Signal  # nodesChanged()
    selectionChanged: Signal  # selectionChanged()

class Node(Object):
    """A node of a node graph."""
    @property
    def name(self) -> str:
        """Unique in its graph; a taken name gets a number."""
    @name.setter
    def name(self, value: str) -> None: ...
    @property
    def path(self) -> str:
        """Names from the root graph, as '/Group/Node'."""
    @property
    def type(self) -> str:
        """As in nodeTypes(), for example 'Filter/Blur'."""
    @property
    def description(self) -> str: ...
    @description.setter
    def description(self, value: str) -> None: ...
    @property
    def enabled(self) -> bool: ...
    @enabled.setter
    def enabled(self, value: bool) -> None: ...
    @property
    def bypassed(self) -> bool: ...
    @bypassed.setter
    def bypassed(self, value: bool) -> None: ...
    @property
    def locked(self) -> bool:
        """Whether the attributes are kept from edits, those of scripts too."""
    @locked.setter
    def locked(self, value: bool) -> None: ...
    @property
    def selected(self) -> bool: ...
    @selected.setter
    def selected(self, value: bool) -> None: ...
    @property
    def position(self) -> Point:
        """Upper left corner in the graph's scene."""
    @position.setter
    def position(self, value: Point) -> None: ...
    @property
    def size(self) -> Point:
        """Width and height in the scene. Only backdrops can be given one."""
    @size.setter
    def size(self, value: Point) -> None: ...
    @property
    def container(self) -> Node:
        """The backdrop that the node belongs to; None when there is none. A backdrop that it is put into grows around it."""
    @container.setter
    def container(self, value: Node) -> None: ...
    @property
    def error(self) -> str:
        """Why the node gives no picture; empty when it is well."""
    @property
    def inputs(self) -> list[str]: ...
    @property
    def outputs(self) -> list[str]: ...
    @property
    def attributes(self) -> list[str]: ...
    def graph(self) -> NodeGraph:
        """The graph that the node stands in."""
    def inside(self) -> NodeGraph:
        """The graph inside a group; None for other nodes."""
    def showInside(self) -> None:
        """Shows the inside of a group in the Node Graph palette."""
    def remove(self) -> None:
        """Removes the node from its graph."""
    def placeUnderneath(self, reference: Node) -> None:
        """Stacks the node underneath another one; in that one's backdrop, if it is in any, where others make room."""
    def placeNextTo(self, reference: Node) -> None:
        """Puts the node to the right of another one."""
    def placeOnTop(self, reference: Node) -> None:
        """Puts the node beside the corner of another one."""
    def inputNode(self, input: str) -> Node:
        """What feeds an input; None when it is free."""
    def inputOutput(self, input: str) -> str:
        """The output that feeds an input; empty when it is free."""
    @overload
    def connectInput(self, input: str, source: Node, output: str) -> None:
        """Wires an input to another node's first output, or the named one."""
    @overload
    def connectInput(self, input: str, source: Node) -> None: ...
    def disconnectInput(self, input: str) -> None:
        """Frees an input."""
    def outputNodes(self) -> list[Node]:
        """The nodes that this one feeds."""
    def upstreamNodes(self) -> list[Node]:
        """Everything that feeds the node, nearest first."""
    def downstreamNodes(self) -> list[Node]:
        """Everything that the node feeds, nearest first."""
    def attribute(self, name: str) -> Any:
        """Value of an attribute; of a menu, the chosen text."""
    def setAttribute(self, name: str, value: Any) -> None:
        """Sets an attribute; a menu by its text or number."""
    def resetAttribute(self, name: str) -> None:
        """Gives an attribute its default again."""
    def attributeInfo(self, name: str) -> dict[str, Any]:
        """What a panel knows of an attribute: its kind, label, default, range and, of a menu, the choices."""
    @overload
    def createInput(self, name: str, kind: str) -> Node:
        """Gives a group an input of a kind (color, scalar, vector, material, data) and returns the node inside that stands for it."""
    @overload
    def createInput(self, name: str) -> Node: ...
    @overload
    def createOutput(self, name: str, kind: str) -> Node:
        """Gives a group an output and returns the node inside for it."""
    @overload
    def createOutput(self, name: str) -> Node: ...
    def createKnob(self, inner: Node, attribute: str) -> str:
        """Makes an attribute of a node inside a group a knob of the group."""
    def imageSet(self) -> ImageSet:
        """The images that the node reads; None when it has none."""
    @overload
    def bake(self, path: str, resolution: int, patches: list[int]) -> list[str]:
        """Writes a file for each patch and returns their paths. '<UDIM>' in the path stands for the patch; without patches all are written."""
    @overload
    def bake(self, path: str, resolution: int) -> list[str]: ...
    @overload
    def bake(self, path: str) -> list[str]: ...
    def bakeImageSet(self) -> None:
        """Bakes what feeds a bake point into its images."""
    def upgrade(self) -> list[str]:
        """Makes the node one of its type as it is installed now. What could not be kept is returned."""
    @overload
    def publish(self, category: str, name: str, toolTip: str, aliases: list[str]) -> str:
        """Publishes a group as a type of the user's own, under a category and a name, and returns its key. Publishing again gives it a new version."""
    @overload
    def publish(self, category: str, name: str, toolTip: str) -> str: ...
    @overload
    def publish(self, category: str, name: str) -> str: ...
    @overload
    def writeType(self, path: str, category: str, name: str, toolTip: str, aliases: list[str]) -> str:
        """Writes a group as the description of a type that is part of the program, with words by which people look for it, into a file, and returns its key."""
    @overload
    def writeType(self, path: str, category: str, name: str, toolTip: str) -> str: ...
    def goTo(self) -> None:
        """Brings the user to the node: its graph is shown, the node selected and framed."""
    @overload
    def showProperties(self, after: Node, before: Node) -> None:
        """Opens the node's panel; below that of another node, or above it."""
    @overload
    def showProperties(self, after: Node) -> None: ...
    @overload
    def showProperties(self) -> None: ...
    @overload
    def lookAt(self, input: int) -> None:
        """Wires the viewer to the node, at an input or the one that is looked at."""
    @overload
    def lookAt(self) -> None: ...
    def matchPosition(self, other: Node) -> None:
        """Moves the node onto another one."""
    def isInputEnabled(self, input: str) -> bool:
        """Whether what comes to an input is used."""
    def setInputEnabled(self, input: str, enabled: bool) -> None:
        """Has what comes to an input be used or not; the wire stays."""
    def isInputShared(self, input: str) -> bool:
        """Whether an input of a multi-channel node belongs to all its streams."""
    def markDependencies(self) -> dict[str, Any]:
        """Marks in the graph what computes the node, the dearer the redder, and returns it with milliseconds for a patch of 2048."""
    def renameKnob(self, knob: str, name: str) -> str:
        """Gives a knob of a group another name and returns the one it got."""
    def setKnobInfo(self, knob: str, info: dict[str, Any]) -> None:
        """Gives a knob another toolTip, section, default, minimum or maximum, as attributeInfo() names them; what is not named stays."""
    def linkKnob(self, knob: str, inner: Node, attribute: str) -> None:
        """Has a knob stand for an attribute of one more node inside, which takes its value."""
    def reorderInputs(self, names: list[str]) -> None:
        """Puts the inputs into another order; all of them must be named."""
    def reorderOutputs(self, names: list[str]) -> None:
        """Puts the outputs into another order; all of them must be named."""
    def orderPortsByPosition(self) -> None:
        """Orders a group's ports as their nodes lie inside."""
    def arrangeInputsByOrder(self) -> None:
        """Arranges the nodes inside a group as its inputs are ordered."""
    renamed: Signal  # renamed(name: str)
    attributeChanged: Signal  # attributeChanged(name: str)
    inputChanged: Signal  # inputChanged(input: str)

class Image(Object):
    """An image of the project's image list."""
    @property
    def name(self) -> str:
        """The file's name without its folder."""
    @property
    def path(self) -> str:
        """Where patches have files of their own, '<UDIM>' stands for the number."""
    @property
    def category(self) -> str: ...
    def patches(self) -> list[int]:
        """The patches that have files now; 1001 alone for a single file."""

class ImageSet(Object):
    """The images of one texture, one for each UDIM patch."""
    @property
    def name(self) -> str: ...
    @property
    def resolution(self) -> int:
        """Width and height of a patch in pixels."""
    @property
    def bits(self) -> int:
        """Of each component: 8 for bytes, 16 for half, 32 for single precision."""
    @property
    def scalar(self) -> bool:
        """The values are no colours: masks, heights."""
    @property
    def fillColor(self) -> Color:
        """Of pixels that nothing was written to."""
    def patches(self) -> list[int]:
        """The patches that something was written to."""
    pixelsChanged: Signal  # pixelsChanged()

class Palette(Object):
    """A palette of the window."""
    @property
    def name(self) -> str: ...
    @property
    def title(self) -> str: ...
    @property
    def visible(self) -> bool: ...
    def show(self) -> None:
        """Opens the palette and brings it to the front."""
    def hide(self) -> None:
        """Closes the palette."""

class Actions(Object):
    """The commands of the program, by path."""
    @overload
    def paths(self, folder: str) -> list[str]:
        """Of all commands, or of those below a folder."""
    @overload
    def paths(self) -> list[str]: ...
    def exists(self, path: str) -> bool:
        """Whether there is a command of that path."""
    def isEnabled(self, path: str) -> bool:
        """Whether the command can be used now."""
    def isChecked(self, path: str) -> bool:
        """Whether a command that is switched on and off is on."""
    def trigger(self, path: str) -> None:
        """Does what choosing the command in a menu does. No dialog opens: a question gets its usual answer."""

class Preferences(Object):
    """The preferences, by 'Page/Group/Label' as the dialog shows them in English."""
    def names(self) -> list[str]:
        """Of all preferences."""
    def value(self, name: str) -> Any:
        """What a preference is set to."""
    def setValue(self, name: str, value: Any) -> None:
        """Sets a preference."""
    def reset(self, name: str) -> None:
        """Gives a preference its default again."""
    def choices(self, name: str) -> list[str]:
        """The texts that a preference takes; empty when it takes any value."""

class Undo(Object):
    """The history. A script is one step, unless it opens macros of its own."""
    @property
    def count(self) -> int:
        """Steps that were recorded before the running script."""
    def texts(self) -> list[str]:
        """Titles of the steps, the oldest first."""
    def nodes(self, step: int) -> list[Node]:
        """The nodes that a step changes and that are still in a graph."""
    def undo(self) -> None:
        """Takes the last step back, also one of this script's."""
    def redo(self) -> None:
        """Does again what was undone last."""
    def begin(self, title: str) -> None:
        """Opens a macro; undoMacro() does it for a with statement."""
    def end(self) -> None:
        """Closes the macro that was opened last."""

class Progress(Object):
    """The progress in the status bar."""
    @property
    def cancelled(self) -> bool:
        """The user wants the work stopped."""
    def begin(self, title: str) -> None:
        """Shows that work has begun; progress() does it for a with statement."""
    def set(self, done: int, total: int) -> None:
        """How much of how much is done."""
    def end(self) -> None:
        """The work that was begun last is over."""
    def message(self, text: str) -> None:
        """Shows a line in the status bar."""

class NodeGraphPalette(Palette):
    """The Node Graph palette. Tabs count from 0, which is the root graph's."""
    def currentTabIndex(self) -> int:
        """The tab that is shown."""
    def setCurrentTabIndex(self, Index: int) -> None:
        """Shows a tab."""
    def closeTab(self, Index: int) -> None:
        """Closes a tab."""
    def nodeGraphViewList(self) -> list[NodeGraphView]:
        """The views of all tabs, in their order."""
    def nodeGraphView(self, TabIndex: int) -> NodeGraphView:
        """The view of a tab; None where there is no such tab."""
    def indexForNodeGraph(self, NodeGraphObject: NodeGraph) -> int:
        """The tab that shows a graph; opens one when there is none."""

class NodeGraphView(Object):
    """A view of a node graph."""
    def nodeGraph(self) -> NodeGraph:
        """The graph that is shown."""
    def zoomLevel(self) -> float:
        """Pixels for each unit of the scene."""
    def setZoomLevel(self, ZoomLevel: float) -> None:
        """Zooms about the middle of the view."""
    def center(self) -> Point:
        """The place of the scene under the middle of the view."""
    def setCenter(self, Center: Point) -> None:
        """Shows a place of the scene in the middle."""
    def posFromGlobalPos(self, GlobalPos: Point) -> Point:
        """From the screen to the scene."""
    nodeAdded: Signal  # nodeAdded(name: str)
    nodeRemoved: Signal  # nodeRemoved(name: str)

application: Application
version: str

def project() -> Project:
    """The open project; None when there is none."""
@overload
def newProject(name: str, geometry: str) -> Project:
    """Starts an empty project with one object, a plane, a sphere, a cube or a file. The open one is closed without saving it."""
@overload
def newProject(name: str) -> Project: ...
def openProject(path: str) -> Project:
    """Opens a project folder. The open one is closed without saving it, but only when the other one can be opened."""
def graph() -> NodeGraph:
    """The root graph of the current object; None without a project."""
def shownGraph() -> NodeGraph:
    """The graph that the Node Graph palette shows."""
def nodeTypes() -> list[str]:
    """Every type that can be made in a graph."""
def palettes() -> list[str]:
    """Names of all palettes."""
def palette(name: str) -> Palette:
    """By name; a palette that has a script class of its own comes as that."""
def actions() -> Actions:
    """The commands of the program."""
def preferences() -> Preferences:
    """The preferences."""
def undo() -> Undo:
    """The history."""
def status() -> Progress:
    """The progress in the status bar."""
def trigger(path: str) -> None:
    """The same as actions().trigger(path)."""
