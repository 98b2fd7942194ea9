"""Builds the example project "Harbor" from nothing: a mesh of eight material slots, made of the ready materials
and weathered together, some 500 nodes.

    ossa run examples/scripts/harbor.py -- examples/Harbor.ossa
"""

import os
import sys

sys.dont_write_bytecode = True
sys.path.append(os.path.dirname(os.path.abspath(__file__)))

import ossa
import harbor_mesh

COLUMN, ROW = 240.0, 160.0

# Each slot of the mesh: the material, its knobs, how much algae and rain there is, the colour of its backdrop.
SLOTS = [
    ("Quay", "Stone/Concrete", {"Scale": 1.6, "Concrete Color": (0.31, 0.3, 0.275), "Cracks": 0.55, "Stains": 0.6},
     1.0, 0.5, "0.34,0.37,0.42,1"),
    ("Jetty", "Wood/Pine Planks", {"Boards": 22, "Scale": 2.0, "Weathering": 0.62, "Knots": 0.35}, 1.0, 0.35, "0.44,0.37,0.24,1"),
    ("Warehouse", "Stone/Brick Wall", {"Bricks Across": 22, "Courses": 68, "Joint": 0.12, "Scale": 2.2, "Efflorescence": 0.22},
     0.4, 0.75, "0.46,0.28,0.22,1"),
    ("Roof", "Metal/Rusty Steel", {"Scale": 1.4, "Rust": 0.6, "Steel Color": (0.36, 0.37, 0.37)}, 0.0, 0.6, "0.4,0.36,0.3,1"),
    ("Crane", "Metal/Painted Metal", {"Scale": 2.0, "Paint Color": (0.62, 0.29, 0.015), "Edge Wear": 0.6, "Chips": 0.3,
                                      "Grime": 0.5}, 0.0, 0.6, "0.44,0.41,0.2,1"),
    ("Bollards", "", {}, 0.5, 0.2, "0.42,0.24,0.28,1"),
    ("Canvas", "Fabric/Canvas", {"Threads": 190, "Stains": 0.55, "Warp Color": (0.2, 0.23, 0.17), "Weft Color": (0.24, 0.26, 0.18)},
     0.3, 0.4, "0.3,0.38,0.3,1"),
    ("Water", "", {}, 0.0, 0.0, "0.22,0.4,0.47,1"),
]


class Graph:
    """Nodes by column and row from a corner, wired as they are made."""

    def __init__(self, graph, corner):
        self.graph, self.corner = graph, ossa.Point(*corner)

    def add(self, node_type, name, column, row, **values):
        node = self.graph.createNode(node_type, name, self.corner + (column * COLUMN, row * ROW))
        for key, value in values.items():
            source, output = value if isinstance(value, tuple) and hasattr(value[0], "inputs") else (value, "")
            port = key if key in node.inputs else key.replace("_", " ")
            if hasattr(source, "inputs"):
                node.connectInput(*([port, source] + ([output] if output else [])))
            else:
                node.setAttribute(key, value)
        return node

    def backdrop(self, title, columns, rows, color):
        node = self.add("Misc/Backdrop", title + " Backdrop", 0, 0, TitleText=title, BackgroundColor=color)
        node.size = (columns * COLUMN, rows * ROW)
        node.position = self.corner - (40, 70)

    def send(self, channel, column, row, source):
        self.add("Teleport Broadcast/Broadcast", channel + " Everywhere", column, row, channel=channel, Input=source)

    def receive(self, slot, channel, column, row):
        return self.add("Teleport Receiver/Receiver", "%s %s" % (slot, channel), column, row, channel=channel)


def add_weather(graph):
    """Masks and colours that all slots share: change them here, and the whole harbor follows."""
    make = Graph(graph, (-1750, 700))
    make.backdrop("Weather", 6.5, 5.6, "0.22,0.34,0.5,1")
    add = make.add
    tide = add("Geometry/Height Gradient", "Above the Water", 0, 0, Range="Own", From=-0.04, To=0.2)
    patchy = add("Procedural/Noise/Clouds", "Patchy", 0, 1, Scale=5, Octaves=8, Seed=4)
    low = add("Adjust/Invert", "Near the Water", 1, 0, Input=tide)
    reach = add("Math/Math", "Reach of the Tide", 2, 0.4, Operation="Add", A=low, B=patchy)
    algae = add("Adjust/Levels", "Tide Line", 3, 0.4, Input=reach, InLow=0.9, InHigh=1.0)
    runs = add("Procedural/Noise/Leaks", "Runs", 0, 2.2, Scale=9, Length=12, Width=0.45, Density=0.75, Seed=8)
    up = add("Geometry/Direction Mask", "Facing Up", 0, 3.2, Width=70)
    walls = add("Adjust/Invert", "Walls", 1, 3.2, Input=up)
    rain = add("Math/Math", "Rain", 2, 2.5, A=runs, B=walls)
    hollow = add("Geometry/Ambient Occlusion", "Open Sky", 0, 4.4, Rays=16, Distance=0.3)
    deep = add("Adjust/Levels", "Hollows", 1, 4.4, Input=hollow, InLow=0.0, InHigh=0.85, OutLow=0.75, OutHigh=0.0)
    dirt = add("Layer/Merge", "Rain and Dirt", 3.2, 2.8, BlendMode="Lighten", Base=rain, Over=deep)
    make.send("Algae", 4.6, 0.4, algae)
    make.send("Rain", 4.6, 2.6, dirt)
    make.send("Open Sky", 4.6, 4.4, hollow)
    slime = add("Adjust/Gradient Map", "Weed and Slime", 3.1, 1.4, Input=patchy,
                Gradient="0.25,0.014,0.016,0.009,1 0.5,0.03,0.042,0.014,1 0.75,0.085,0.085,0.04,1")
    soot = add("Procedural/Color", "Soot", 3.2, 3.7, Color=(0.07, 0.062, 0.05, 1))
    make.send("Algae Color", 4.6, 1.4, slime)
    make.send("Rain Color", 4.6, 3.6, soot)


def add_water(make):
    """No material of the palette: swell and ripples, and what is seen in the deep."""
    add = make.add
    place = add("Geometry/Position", "Where the Water Is", 0, 0.6)
    swell = add("Procedural/Noise/Perlin Noise", "Swell", 1, 0, Scale=5, Octaves=3, Position=place, Seed=3)
    ripples = add("Procedural/Noise/Perlin Noise", "Ripples", 1, 1.2, Scale=16, Octaves=3, Roughness=0.45, Position=place, Seed=6)
    waves = add("Layer/Merge", "Waves", 2.2, 0.4, Base=swell, Over=ripples, Amount=0.2)
    color = add("Adjust/Gradient Map", "Deep and Shallow", 3.6, 0,
                Gradient="0,0.006,0.022,0.026,1 0.5,0.012,0.045,0.045,1 1,0.05,0.12,0.10,1", Input=waves)
    normal = add("Math/Height to Normal", "Wavy", 3.6, 1.2, Height=waves, Strength=0.5)
    return {"Base_Color": color, "Normal": normal, "Displacement": waves, "Roughness": 0.06}


def add_slot(graph, index, slot, steel):
    """A slot in the root graph: its material, taken apart, weathered and put together again."""
    name, material, knobs, algae, rain, color = slot
    make = Graph(graph, (index % 2 * COLUMN * 10.4, index // 2 * ROW * 5.6))
    make.backdrop(name, 9.6, 4.7, color)
    if name == "Water":
        channels = add_water(make)
    else:
        group = steel or make.add("Materials/" + material, "%s of %s" % (name, material.split("/")[1]), 0, 0.6, **knobs)
        parts = make.add("Channel/Split Material", name + " Channels", 1.5, 0.4, Material=group)
        base, rough = (parts, "Base Color"), (parts, "Roughness")
        channels = {key.replace(" ", "_"): (parts, key) for key in ("Metallic", "Normal", "Displacement")}
        sky = make.receive(name, "Open Sky", 3.4, 3.1)
        shade = make.add("Math/Math", name + " Occlusion", 6.6, 2.8, A=(parts, "Ambient Occlusion"), B=sky)
        channels["Ambient_Occlusion"] = shade
        for step, (channel, amount) in enumerate((("Rain", rain), ("Algae", algae))):
            if amount:
                column = 4 + step * 1.9
                mask = make.receive(name, channel, column - 1.1, 1.3)
                tone = make.receive(name, channel + " Color", column - 1.1, 0)
                base = make.add("Layer/Merge", name + " in " + channel, column, 0.2, Amount=amount, Base=base, Over=tone, Mask=mask)
                if channel == "Algae":
                    rough = make.add("Layer/Merge", name + " Wet", column, 1.5, BlendMode="Multiply", Amount=0.75 * amount,
                                     Base=rough, Over=make.add("Procedural/Scalar", name + " Wetness", column - 1, 2.4, Value=0.35),
                                     Mask=mask)
        channels.update(Base_Color=base, Roughness=rough)
        steel = group
    surface = make.add("Shaders/Standard Surface", name, 8, 0.6, **channels)
    if name == "Water":
        surface.setAttribute("Height", 0.02)
    return surface, steel


def build(path):
    project = ossa.newProject("Harbor", "plane")
    project.fileRules = []  # there are no files whose names could tell
    first = project.objects()[0]
    project.saveAs(path)
    mesh = os.path.join(path, "harbor.obj")
    harbor_mesh.write(mesh)
    entity = project.importMesh(mesh, "one")[0]
    project.removeObject(first)
    entity.name = "Harbor"
    graph = entity.graphs()[0]
    add_weather(graph)
    viewer = graph.viewer()
    steel = {}
    with ossa.progress("Building the harbor", len(SLOTS)) as progress:
        for index, slot in enumerate(SLOTS):
            shader, steel[slot[0]] = add_slot(graph, index, slot, steel.get("Roof") if slot[0] == "Bollards" else None)
            viewer.connectInput(str(index + 1), shader)
            progress.step()
    viewer.position = (COLUMN * 22, 1500)
    note = graph.createNode("Misc/Sticky Note", "Note", (-1750, 1640))
    note.setAttribute("Label", "The weather reaches every slot of the mesh. Change it here, not in the materials: "
                               "look into those by Ctrl + double click.")
    project.save()
    print(len(graph.allNodes()), "nodes", project.stateHash())


build(os.path.abspath(sys.argv[1]))
