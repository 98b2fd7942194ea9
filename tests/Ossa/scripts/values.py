"""Values arrive as they were given; edits do what they say, in steps that go back."""

import tempfile

import ossa


def refused(kind, words, call, *arguments):
    try:
        call(*arguments)
    except kind as error:
        assert words in str(error), (words, str(error))
    else:
        raise AssertionError(f"{call} took {arguments}")


def found(type):
    """A node with the name of an attribute of that type."""
    for path in ossa.nodeTypes():
        node = graph.createNode(path)
        for name in node.attributes:
            if isinstance(node.attribute(name), type):
                return node, name
        node.remove()


def names(nodes):
    return sorted(node.name for node in nodes)


project = ossa.newProject("Values")
graph = ossa.graph()
node = graph.createNode("Filter/Blur", "Blur")

# In every form that they may have.
node.name = "Named"
assert node.name == "Named"
node.enabled = False
assert node.enabled is False
assert graph.node("None such") is None
for selection in ([node, graph.viewer()], (node,), []):
    graph.select(selection)
    assert len(graph.selectedNodes()) == len(selection)
owner, place = found(ossa.Point)
owner.setAttribute(place, ossa.Point(3, 4))
assert owner.attribute(place).y == 4.0
refused(ossa.Error, "", owner.setAttribute, place, "here")
owner, color = found(ossa.Color)
owner.setAttribute(color, ossa.Color(0.25, 0.5, 2, 1))
value = owner.attribute(color)
assert (value.red, value.green, value.blue, value.alpha) == (0.25, 0.5, 2.0, 1.0)
refused(ossa.Error, "is no value for", owner.setAttribute, color, "no colour")
refused(AttributeError, "", setattr, value, "red", "x")
assert owner.attribute(color).red == 0.25


# Of other libraries they are numbers when they say so.
class Whole:
    def __index__(self):
        return 1


class Real:
    def __float__(self):
        return 0.25


class Broken:
    def __index__(self):
        raise RuntimeError("mine")


class Text:
    def __float__(self):
        return "x"


owner, number = found(float)
for given, wanted in ((Whole(), 1.0), (Real(), 0.25)):
    owner.setAttribute(number, given)
    assert owner.attribute(number) == wanted
refused(RuntimeError, "mine", owner.setAttribute, number, Broken())
refused(TypeError, "", owner.setAttribute, number, Text())
assert owner.attribute(number) == 0.25

# A call that fits nothing is told what there is.
for words, call, arguments in (
    ("None", graph.node, (None,)),
    ("Node", graph.node, (node,)),
    ("float", graph.node, (1.5,)),
    ("node(name: str) -> Node", graph.node, ()),
    ("list[Node]", graph.select, (5,)),
    ("", graph.select, (node,)),
    ("", graph.select, ([node, "x"],)),
    ("", graph.connect, (graph, node)),
    ("list[int]", node.bake, ("x", 1, 2)),
    ("", node.bake, ("x.exr", 16, ["a"])),
    ("", node.bake, ("x.exr", 16, [1.5])),
    ("remove()", node.remove, (1,)),
    ("", graph.createNode, ("Misc/Dot", "D", "here")),
    ("", graph.createNode, ("Misc/Dot", "D", (1, 2, 3))),
    ("", setattr, (node, "position", "here")),
    ("", setattr, (node, "name", 5)),
    ("", ossa.status().set, (1.5, 2)),
    ("", ossa.status().set, ("1", 2)),
    ("", ossa.status().set, (2**40, 2)),
    ("", ossa.status().message, (b"x",)),
):
    refused(TypeError, words, call, *arguments)
refused(ossa.Error, "pixels wide, not 0", node.bake, "x.exr", 0)
try:
    node.remove(1)
except TypeError as error:
    assert "remove() ->" not in str(error), "it returns nothing"

# Objects of a project that is no more, wherever they stand.
ossa.newProject("Edits")
for call, *arguments in (
    (lambda: node.name,),
    (setattr, node, "name", "x"),
    (node.remove,),
    (graph.nodes,),
    (project.save,),
    (ossa.graph().connect, node, node),
    (node.renamed.connect, print),
):
    refused(ossa.Error, "", call, *arguments)
refused(TypeError, "", ossa.graph().remove, [[node]])

# Edits, each of which is undone again: a color, two blurs behind it, a group beside them.
graph = ossa.graph()
paint = graph.createNode("Procedural/Color", "Paint")
first = graph.createNode("Filter/Blur", "First")
second = graph.createNode("Filter/Blur", "Second")
around = graph.createNode("Misc/Group", "Around")
first.connectInput("Input", paint)
second.connectInput("Input", first)
nodes = (paint, first, second, around)
start = graph.toText(nodes)


def does(edit, holds, *arguments):
    with ossa.undoMacro("Edit"):
        result = edit(*arguments)
        assert holds(result), (edit, arguments)
    ossa.undo().undo()
    assert graph.toText(nodes) == start, (edit, arguments)


does(lambda: setattr(first, "enabled", False), lambda _: not first.enabled)
does(lambda: setattr(first, "bypassed", True), lambda _: first.bypassed)
does(lambda: setattr(first, "description", "soft"), lambda _: first.description == "soft")
does(lambda: setattr(first, "name", "Hard"), lambda _: names(nodes)[1] == "Hard")
does(first.disconnectInput, lambda _: first.inputNode("Input") is None, "Input")
does(second.connectInput, lambda _: second.inputNode("Input") == paint, "Input", paint)
does(graph.extract, lambda _: second.inputNode("Input") == paint, [first])
third = graph.createNode("Misc/Dot", "Third")
third.connectInput("Input", second)
does(graph.extract, lambda _: third.inputNode("Input") == paint, [first, second])
does(graph.remove, lambda _: not {"First", "Second"} & set(names(graph.nodes())), [first, second])
does(graph.remove, lambda _: graph.node("First"), [])
does(first.remove, lambda _: graph.node("First") is None)
does(graph.group, lambda made: {first, second} <= set(made.inside().nodes()), [first, second], "Two")
does(graph.duplicate, lambda made: names(made) == ["First 2", "Second 2"], [first, second])
does(graph.fromText, lambda made: [n.type for n in made] == [first.type], graph.toText([first]))
does(first.setAttribute, lambda _: first.attribute("Radius") == 3, "Radius", 3)
first.setAttribute("Radius", 3)
first.resetAttribute("Radius")
assert first.attribute("Radius") == first.attributeInfo("Radius")["default"]
graph.view(first)
assert graph.viewer().inputNode("1") == first
graph.select([paint, second])
assert names(graph.selectedNodes()) == ["Paint", "Second"]
assert paint.selected and not first.selected
paint.selected = False
assert names(graph.selectedNodes()) == ["Second"]

# What cannot be done is told and changes nothing.
start = graph.toText(nodes)
with tempfile.TemporaryDirectory() as folder:
    for words, call, *arguments in (
        ("no input 99", graph.view, paint, 99),
        ("no input", paint.connectInput, "No", first),
        ("no group", graph.ungroup, first),
        ("", graph.fromText, "words"),
        ("none.ong", graph.importNodes, folder + "/none.ong"),
        ("No", first.disconnectInput, "No"),
        ("", first.connectInput, "Input", second),
        ("none", graph.exportNodes, [paint], folder + "/none/x.ong"),
        ("/proc", ossa.project().saveAs, "/proc/x.ossa"),
        ("no node type", graph.createNode, "No/Such"),
    ):
        refused(ossa.Error, words, call, *arguments)
        assert graph.toText(nodes) == start, call

# The history says when it cannot.
ossa.newProject("History")
undo = ossa.undo()
refused(ossa.Error, "nothing to undo", undo.undo)
refused(ossa.Error, "nothing to redo", undo.redo)
with ossa.undoMacro("Mine"):
    ossa.graph().createNode("Misc/Dot", "Here")
    refused(ossa.Error, "inside an undo macro", undo.undo)
    refused(ossa.Error, "inside an undo macro", undo.redo)
assert undo.texts() == ["Mine"] and undo.count == 1
undo.undo()
assert not ossa.graph().node("Here")
undo.redo()
assert ossa.graph().node("Here")
print("survived")
