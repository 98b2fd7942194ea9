"""What a careless or hostile script does: every piece must end in an exception, none in a crash."""

import gc
import tempfile
import threading

import ossa


def refused(kind, call, *arguments):
    try:
        call(*arguments)
    except kind as error:
        assert str(error), "an error says what is wrong"
    else:
        raise AssertionError(f"{call} took {arguments}")


project = ossa.newProject("Hostile")
graph = ossa.graph()
node = graph.createNode("Filter/Blur", "Blur")

# Wrong types and values.
endless = []
endless.append(endless)
for value in (endless, object(), {1: 2}, b"bytes", ossa, refused):
    refused((TypeError, ValueError), node.setAttribute, "Radius", value)
refused(OverflowError, node.setAttribute, "Radius", 10**30)
refused(UnicodeEncodeError, node.setAttribute, "Radius", "\ud800")
for value in (float("nan"), float("inf"), -1e300, "seven", node, [node], None):
    refused(ossa.Error, node.setAttribute, "Radius", value)
for arguments in ((), (1,), ("Radius",), ("Radius", 1, 2), (node, node), (None, 1)):
    refused(TypeError, node.setAttribute, *arguments)
refused(TypeError, lambda: node.setAttribute(name="Radius", value=1))
refused(TypeError, graph.select, [node, None])
refused(TypeError, graph.select, [graph])
refused(TypeError, node.connectInput, "Input", graph)
refused(AttributeError, setattr, node, "nmae", "x")
refused(AttributeError, setattr, node, "path", "/x")
refused(TypeError, setattr, node, "position", (1, 2, 3))
refused(TypeError, ossa.Node)
refused(AttributeError, lambda: object.__new__(ossa.Node).name)
refused(TypeError, node.renamed.connect, 3)
color = graph.createNode("Procedural/Color")
for value in ("red", "1,2", (1, 2), (float("nan"), 0, 0), ossa.Color(float("inf"), 0, 0)):
    refused(ossa.Error, color.setAttribute, "Color", value)
refused(ossa.Error, node.setAttribute, "Radius", "nan")
for place in ((float("nan"), 0), (0, float("inf")), (1e300, 0)):
    refused(ossa.Error, setattr, node, "position", place)
    refused(ossa.Error, setattr, node, "size", place)
for value in (float("nan"), 10**12, "x", 2):
    refused(ossa.Error, ossa.preferences().setValue, "Node Graph/General/Auto Insert Node", value)
    if value != 2:
        name = "Node Graph/Shake to Extract/Shakes to Trigger"
        refused(ossa.Error, ossa.preferences().setValue, name, value)
color.remove()
assert node.attribute("Radius") == node.attributeInfo("Radius")["default"]

# What the graph cannot do.
refused(ossa.Error, node.connectInput, "Input", node)
refused(ossa.Error, node.connectInput, "Nowhere", node)
refused(ossa.Error, graph.createNode, "No/Such Type")
refused(ossa.Error, graph.fromText, "<nodes><node></nodes>")
refused(ossa.Error, graph.importNodes, "/no/such/file.ong")
refused(ossa.Error, graph.ungroup, node)
refused(ossa.Error, graph.connect, None, node)
refused(ossa.Error, graph.view, None)
refused(ossa.Error, project.saveAs, "")
refused(ossa.Error, ossa.openProject, "/no/such/project.ossa")
refused(ossa.Error, ossa.palette, "None Such")
refused(ossa.Error, ossa.trigger, "/None/Such")
refused(ossa.Error, node.bake, "/proc/no/where.<UDIM>.png", 8)
refused(ossa.Error, node.bake, "x.exr", -3)
refused(ossa.Error, ossa.undo().end)
for slot in ("deleteLater", "close", "none such", ""):
    refused(ossa.Error, ossa.invoke, graph, slot)
assert ossa.project() == project, "a project that cannot be opened leaves the open one"

# Deletion of what is iterated, and use of what is deleted.
for other in [graph.createNode("Filter/Blur") for _ in range(20)]:
    other.remove()
names = [other.name for other in graph.nodes()]
assert sorted(names) == ["Blur", "Viewer"], names
gone = graph.createNode("Misc/Group", "Gone")
inside = gone.inside()
inner = inside.createNode("Filter/Blur")
bound = inner.setAttribute
gone.remove()
refused(ossa.Error, gone.inside)
refused(ossa.Error, lambda: gone.name)
repr(gone), repr(inner), hash(gone), gone == inner
ossa.undo().undo()
ossa.undo().redo()

# Signals that call back, change what they tell of, and fail.
calls = []


def rename(name):
    calls.append(name)
    if len(calls) < 50:
        node.name = f"Blur {len(calls)}"


node.renamed.connect(rename)
node.name = "First"
assert len(calls) == 50, calls
node.renamed.disconnect(rename)
node.name = "Last"
assert len(calls) == 50
node.renamed.connect(lambda name: node.remove())
node.name = "Doomed"
refused(ossa.Error, lambda: node.name)


# Recursion, in Python and through the program.
def deep(depth):
    graph.nodes()
    return deep(depth + 1)


refused(RecursionError, deep, 0)

# Threads of the script.
made = []


def work():
    for _ in range(25):
        made.append(graph.createNode("Filter/Blur"))


threads = [threading.Thread(target=work) for _ in range(4)]
for thread in threads:
    thread.start()
for thread in threads:
    thread.join()
assert len({one.name for one in made}) == 100

# Objects of a project that is no more.
ossa.undo().begin("Open")
refused(ossa.Error, ossa.newProject, "Not now")
refused(ossa.Error, ossa.undo().undo)
ossa.undo().end()
old = [project, graph, made[0], project.objects()[0]]
ossa.newProject("Next")
refused(ossa.Error, project.images)
refused(ossa.Error, graph.nodes)
refused(ossa.Error, lambda: made[0].name)
refused(ossa.Error, made[0].renamed.connect, print)
refused(ossa.Error, graph.select, [made[0]])
refused(ossa.Error, ossa.graph().select, [made[0]])
refused(ossa.Error, bound, "Radius", 1)
repr(old)

# Letters that files cannot carry.
ossa.graph().createNode("Filter/Blur", "\0")
odd = ossa.graph().createNode("Filter/Blur", "\x01")
odd.description = "\x08\ufffe"
names = sorted(one.name for one in ossa.graph().nodes())
with tempfile.TemporaryDirectory() as folder:
    ossa.project().saveAs(folder + "/Odd.ossa")
    ossa.openProject(folder + "/Odd.ossa")
    assert sorted(one.name for one in ossa.graph().nodes()) == names, names
del old, odd, project, graph, made, gone, inside, inner, bound, node
gc.collect()
print("survived")
