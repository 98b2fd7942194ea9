"""Builds the six guided examples from nothing: small projects with notes in their graphs that lead from one
step to the next.

    ossa run examples/scripts/guides.py -- examples/Guides
"""

import math
import os
import sys

import ossa

COLUMN = 240.0
STEP = (0.16, 0.22, 0.32, 1)  # color of the notes that are read in their order
TRY = (0.11, 0.25, 0.16, 1)  # of those that propose something


class Guide:
    """One project on its way to its folder."""

    def __init__(self, folder, name, shape):
        self.path = os.path.join(folder, name + ".ossa")
        self.project = ossa.newProject(name, shape)
        self.project.fileRules = []  # there are no files whose names could tell
        self.graph = ossa.graph()

    def bring(self, file, write):
        """Takes a mesh of the project's own folder in place of the shape."""
        shape = self.project.objects()[0]
        self.project.saveAs(self.path)
        mesh = os.path.join(self.path, file)
        write(mesh)
        self.graph = self.project.importMesh(mesh, "one")[0].graphs()[0]
        self.project.removeObject(shape)

    def add(self, node_type, name, column, y, **attributes):
        node = self.graph.createNode(node_type, name, (column * COLUMN, y))
        for key, value in attributes.items():
            node.setAttribute(key, value)
        return node

    def wire(self, target, **sources):
        for name, source in sources.items():
            node, output = source if isinstance(source, tuple) else (source, "")
            if output:
                target.connectInput(name.replace("_", " "), node, output)
            else:
                target.connectInput(name.replace("_", " "), node)
        return target

    def note(self, name, column, y, text, color=STEP):
        self.add("Misc/Sticky Note", name, column, y, Label=text, BackgroundColor=color)

    def finish(self, shown):
        viewer = self.graph.viewer()
        for number, node in enumerate(shown, 1):
            viewer.connectInput(str(number), node)
        viewer.position = shown[0].position + (COLUMN * 1.4, 0)
        self.project.saveAs(self.path)
        print(self.path, len(self.graph.nodes()), "nodes", self.project.stateHash())


def first_material(folder):
    guide = Guide(folder, "1 First Material", "sphere")
    add, wire, note = guide.add, guide.wire, guide.note
    noise = add("Procedural/Noise/Perlin Noise", "Pattern", 0, 0, Scale=5, Octaves=6)
    color = add("Adjust/Gradient Map", "Colors", 1, -120,
                Gradient="0,0.02,0.035,0.05,1 0.5,0.1,0.2,0.22,1 1,0.62,0.55,0.36,1")
    rough = add("Adjust/Histogram Range", "Gloss", 1, 60, Range=0.4, Position=0.5)
    normal = add("Math/Height to Normal", "Relief", 1, 240, Strength=2)
    surface = add("Shaders/Standard Surface", "Surface", 2.2, -60)
    wire(color, Input=noise)
    wire(rough, Input=noise)
    wire(normal, Height=noise)
    wire(surface, Base_Color=color, Roughness=rough, Normal=normal)
    note("Step 1", -0.1, -330, "1  Everything begins here: a noise. Select it: Return shows its values, "
         "F1 its page. Press 1 and choose Output to see it, then drag Scale and Octaves.")
    note("Step 2", 0.95, -330, "2  A gradient turns grey into color. Click a stop, choose another color.")
    note("Step 3", 0.95, 400, "3  The same noise is also the gloss and the relief: one result feeds many nodes. "
         "Turn Strength of Relief up to 6.")
    note("Step 4", 2.2, -330, "4  The surface puts them together. Select it and press 1, choose 3D in the Viewer, "
         "then drag to turn it; N is another light.")
    note("Try", 2.2, 400, "Try: drag a Swirl out of Palettes > Nodes into the graph, "
         "then drag it by its title onto the wire to Colors: it is put in between.", TRY)
    guide.finish([surface])


def write_box(path):
    """A box with round edges, each side in a sixth of the patch; its lines stand close where it is round."""
    size, radius = 16, 0.09
    places = [0.5 - 0.5 * math.cos(math.pi * step / size) for step in range(size + 1)]
    lines = ["o Box"]
    for side in range(6):
        axis, sign = side // 2, 1 if side % 2 else -1
        for up in places:
            for across in places:
                point = [0.0, 0.0, 0.0]
                point[axis] = 0.5 * sign
                point[(axis + 1) % 3] = (across - 0.5) * sign
                point[(axis + 2) % 3] = up - 0.5
                core = [max(radius - 0.5, min(0.5 - radius, value)) for value in point]
                away = [value - inner for value, inner in zip(point, core)]
                length = math.sqrt(sum(value * value for value in away))
                lines.append("v %.5f %.5f %.5f" % tuple(
                    inner + radius * value / length for inner, value in zip(core, away)))
                lines.append("vt %.5f %.5f" % ((side % 3 + 0.03 + 0.94 * across) / 3,
                                               (side // 3 + 0.03 + 0.94 * up) / 2))
        lines += faces(side * (size + 1) ** 2 + 1, size, size)
    save_lines(path, lines)


def faces(first, columns, rows):
    """Those of a grid of vertices that begins with the given one."""
    for row in range(rows):
        for column in range(columns):
            corners = [first + (row + y) * (columns + 1) + column + x
                       for x, y in ((0, 0), (1, 0), (1, 1), (0, 1))]
            yield "f " + " ".join("%d/%d" % (corner, corner) for corner in corners)


def save_lines(path, lines):
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n")


def masks_and_layers(folder):
    guide = Guide(folder, "2 Masks and Layers", "plane")
    guide.bring("box.obj", write_box)
    add, wire, note = guide.add, guide.wire, guide.note
    edges = add("Geometry/Curvature", "Edges", 0, 0, Radius=0.03, Contrast=2)
    grunge = add("Procedural/Noise/Grunge Scraped", "Scrapes", 0, 240, Scale=3)
    both = add("Math/Math", "Edges and Scrapes", 1, 80, Operation="Multiply")
    wear = add("Adjust/Histogram Scan", "Wear", 2, 80, Position=0.72, Contrast=0.9)
    paint = add("Procedural/Color", "Paint", 2, -260, Color=(0.42, 0.045, 0.02, 1))
    steel = add("Procedural/Color", "Steel", 2, -110, Color=(0.5, 0.5, 0.52, 1))
    coat = add("Layer/Merge", "Steel under Paint", 3, -160)
    rough = add("Adjust/Levels", "Roughness", 3, 60, OutLow=0.5, OutHigh=0.3)
    surface = add("Shaders/Standard Surface", "Painted Steel", 4.2, -60)
    wire(both, A=(edges, "Edges"), B=grunge)
    wire(wear, Input=both)
    wire(coat, Base=paint, Over=steel, Mask=wear)
    wire(rough, Input=wear)
    wire(surface, Base_Color=coat, Roughness=rough, Metallic=wear)
    note("Step 1", -0.1, -200, "1  Where is it worn? At its edges: select Edges, press 1, choose Edges.")
    note("Step 2", -0.1, 460, "2  ... and not evenly: a grunge breaks it up. Look at that with 1 as well, its Output.")
    note("Step 3", 1.9, 300, "3  One knob says how much: look at Wear with 1, press Return, and drag its Position "
         "from 0 to 1. This is the mask.")
    note("Step 4", 2.9, -420, "4  Steel shows where the mask is white: Base lies below, Over above, Mask between. Look "
         "at Painted Steel with 1, choose 3D, and drag Position again.")
    note("Step 5", 4.2, 300, "5  The same mask is the metal, and turned round a little it is the roughness: "
         "one mask, every channel. Choose Metallic in place of Lit above the object to see it.")
    note("Try", 4.2, -420, "Try: a third layer. Select Steel under Paint, press Tab, type merge, then Return. Wire a "
         "pale Color to its Over, a Dust to its Mask, and the merge to Base Color.", TRY)
    guide.finish([surface])


def painting(folder):
    guide = Guide(folder, "3 Painting on the Object", "sphere")
    add, wire, note = guide.add, guide.wire, guide.note
    ground = add("Procedural/Noise/Grunge Porous", "Ground", 0, 0, Scale=4)
    tone = add("Adjust/Gradient Map", "Stone", 1, 0, Gradient="0,0.12,0.11,0.1,1 1,0.5,0.47,0.42,1")
    paint = add("Channel Input/Paint", "Your Paint", 1, -200)
    over = add("Layer/Merge", "Paint over Stone", 2, -60)
    normal = add("Math/Height to Normal", "Relief", 1, 200, Strength=1.5)
    surface = add("Shaders/Standard Surface", "Surface", 3.2, -60, Roughness=0.8)
    wire(tone, Input=ground)
    wire(over, Base=tone, Over=paint)
    wire(normal, Height=ground)
    wire(surface, Base_Color=over, Normal=normal)
    note("Step 1", 0.9, -430, "1  Paint lives in this node. In the Viewer, choose 3D and switch Paint on; the bar "
         "above says \"Your Paint\". Click its white square, choose a strong color, and drag over the sphere.")
    note("Step 2", 2, -430, "2  A merge lays it over the stone. Open it with Return: turn its Amount, or choose "
         "Multiply as Blend Mode: "
         "the stone shows through the paint.")
    note("Step 3", -0.2, 330, "3  What lies below still changes: open Ground with Return and turn its Scale. Your "
         "paint stays where it is.")
    note("Step 4", 2.2, 330, "4  With the pointer over the sphere [ and ] change the brush, E erases and paints again, "
         "Ctrl+Z takes a stroke back. Bake, in the bar, keeps the paint in images of the project.")
    note("Try", 3.4, -430, "Try: New Layer in the Viewer's bar paints color, roughness, metal and displacement "
         "at once.", TRY)
    guide.finish([surface])


def write_tube(path):
    """Two halves of a tube, each filling a patch but for its margin."""
    columns, rows = 24, 12
    lines = ["o Tube"]
    for half in (0, 1):
        for row in range(rows + 1):
            for column in range(columns + 1):
                across, up = column / columns, row / rows
                angle = math.pi * (half + across)
                radius = 0.4 + 0.1 * math.sin(math.pi * up)
                lines.append("v %.5f %.5f %.5f" % (radius * math.cos(angle), up - 0.5, -radius * math.sin(angle)))
                lines.append("vt %.5f %.5f" % (half + 0.02 + 0.96 * across, 0.02 + 0.96 * up))
        lines += faces(half * (columns + 1) * (rows + 1) + 1, columns, rows)
    save_lines(path, lines)


def udim(folder):
    guide = Guide(folder, "4 UDIM and Baking", "plane")
    guide.bring("tube.obj", write_tube)
    add, wire, note = guide.add, guide.wire, guide.note
    noise = add("Procedural/Noise/Domain-Warped Noise", "Marble", 0, 0, Scale=3)
    color = add("Adjust/Gradient Map", "Colors", 1, 0,
                Gradient="0,0.03,0.05,0.045,1 0.45,0.16,0.22,0.19,1 1,0.8,0.8,0.74,1")
    kept = add("Misc/Bake Point", "Kept", 2, 0)
    soft = add("Filter/Blur", "Softer", 3, 120, Radius=2)
    surface = add("Shaders/Standard Surface", "Surface", 4.2, 0, Roughness=0.25)
    wire(color, Input=noise)
    wire(kept, Input=color)
    wire(soft, Input=kept)
    wire(surface, Base_Color=soft)
    note("Step 1", -0.1, -260, "1  This object has two patches, 1001 and 1002. Choose 2D in the Viewer: they stand "
         "beside each other.")
    note("Step 2", 0.1, 240, "2  The noise is looked up on the surface, so it goes over the border. Open Marble with "
         "Return, set Space to UV, and see the seam in 3D. Ctrl+Z takes it back.")
    note("Step 3", 1.9, -260, "3  Press Ctrl+B, then Bake: the bake point keeps its input as images, one for each "
         "patch. It turns green; what follows goes on from them.")
    note("Step 4", 2.9, 300, "4  Turn Scale of Marble: Kept is out of date and turns yellow, and the picture stays "
         "as it is. Ctrl+B again.")
    note("Step 5", 4.2, -260, "5  Ctrl+E opens the palette Export: its list shows a file for each channel and patch "
         "before any is written.")
    note("Try", 4.4, 300, "Try on the command line: ossa bake PROJECT --node Softer --patches 1002 -o out", TRY)
    guide.finish([surface])


def groups(folder):
    guide = Guide(folder, "5 Groups and Knobs", "sphere")
    add, wire, note = guide.add, guide.wire, guide.note
    grunge = add("Procedural/Noise/Grunge Rusty", "Blooms", 0, 0, Scale=3)
    amount = add("Adjust/Histogram Scan", "Threshold", 1, 0, Position=0.5, Contrast=0.85)
    soft = add("Filter/Blur", "Fringe", 2, 0, Radius=1)
    wire(amount, Input=grunge)
    wire(soft, Input=amount)
    group = guide.graph.group([grunge, amount, soft], "Rust Mask")
    inside = {node.name: node for node in group.inside().nodes()}
    for node, attribute, name in (("Threshold", "Position", "Amount"), ("Threshold", "Contrast", "Hardness"),
                                  ("Blooms", "Scale", "Scale")):
        knob = group.createKnob(inside[node], attribute)
        if knob != name:
            group.renameKnob(knob, name)
    if not group.outputs:
        group.createOutput("Mask", "scalar").connectInput("Input", inside["Fringe"])
    group.position = (0, 0)
    steel = add("Procedural/Color", "Steel", 0, -200, Color=(0.3, 0.31, 0.33, 1))
    rust = add("Procedural/Color", "Rust", 0, 200, Color=(0.23, 0.07, 0.02, 1))
    coat = add("Layer/Merge", "Rust over Steel", 1.2, -60)
    metal = add("Adjust/Invert", "Metal", 1.2, 140)
    rough = add("Adjust/Levels", "Roughness", 1.2, 300, OutLow=0.3, OutHigh=0.9)
    surface = add("Shaders/Standard Surface", "Surface", 2.4, -20)
    wire(coat, Base=steel, Over=rust, Mask=group)
    wire(metal, Input=group)
    wire(rough, Input=group)
    wire(surface, Base_Color=coat, Metallic=metal, Roughness=rough)
    note("Step 1", -0.9, -330, "1  Rust Mask is a group. Select it, press Return: three knobs are all that its user "
         "sees. Drag Amount.")
    note("Step 2", -1.6, 0, "2  Ctrl+Return opens it. Inside are three nodes. Their values are the knobs. The tab "
         "above the graph leads back.")
    note("Step 3", 0.9, -330, "3  Inside, select Fringe and choose Node Graph > Group > Expose Node Properties: "
         "the group has two more knobs. Click on the name Radius, and F2 renames it.")
    note("Step 4", 2.3, -330, "4  Back here, select Rust Mask. Node Graph > Group > Publish as Node Type makes it a "
         "kind of node of your own: find it with Tab, in every project.")
    note("Try", 2.3, 340, "Try: select Metal and Roughness, press Ctrl+G. Ctrl+Shift+G takes the group apart "
         "again.", TRY)
    guide.finish([surface])


def script_of_manual():
    """What the manual shows as the script of the sixth guide, so that it is what was run."""
    root = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
    with open(os.path.join(root, "docs", "manual", "90-scripting.md"), encoding="utf-8") as file:
        text = file.read()
    start = text.index("```python", text.index("## The script of the guide"))
    return text[start + len("```python"):text.index("```", start + 3)]


def scripting(folder):
    guide = Guide(folder, "6 Scripting", "plane")
    names = {}
    exec(script_of_manual(), names)
    note = guide.note
    note("Step 1", -1.1, 0, "1  A script made this graph: six petals and what joins them. Help > Manual > Scripting "
         "shows it.")
    note("Step 2", 1.2, -60, "2  Open Script > Console. Select Petal 1, press Return and turn its Radius: the console "
         "shows the line that does the same.")
    note("Step 3", 2.3, -60, "3  Type that line with another number, and press Return. One undo takes it back. (A "
         "brings all of the graph into view.)")
    note("Step 4", 3.4, -60, "4  A line for all of them: for n in ossa.graph().nodesOfType("
         "'Procedural/Pattern/Shape'): n.setAttribute('Radius', 0.12). Return twice runs it.")
    note("Try", 3.4, 160, "Try: Script > Run File runs a script from a file, ossa run SCRIPT.py without a window.", TRY)
    guide.finish([names["before"]])


def main(folder):
    os.makedirs(folder, exist_ok=True)
    for build in (first_material, masks_and_layers, painting, udim, groups, scripting):
        build(folder)


main(os.path.abspath(sys.argv[1]))
