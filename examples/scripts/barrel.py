"""Builds the example project "Barrel" from nothing: a mesh of four patches and two material slots, that
becomes two objects, and their materials, ready to be exported.

    ossa run examples/scripts/barrel.py -- examples/Barrel.ossa
"""

import math
import os
import sys

import ossa

STAVES = 28  # around the barrel, half of them in each of two patches
ROWS = 12
HEIGHT = 1.1
HOOPS = ((0.06, 0.07), (0.30, 0.05), (0.70, 0.05), (0.94, 0.07))  # middle and width, of the height
COLUMN = 240.0


class Mesh:
    """Vertices and faces as a mesh file lists them."""

    def __init__(self):
        self.lines = []
        self.places = 0
        self.texels = 0

    def grid(self, columns, rows, place, texel):
        """A sheet of squares; both functions get shares across and up."""
        first, first_texel = self.places + 1, self.texels + 1
        for row in range(rows + 1):
            for column in range(columns + 1):
                across, up = column / columns, row / rows
                self.lines.append("v %.6f %.6f %.6f" % place(across, up))
                self.lines.append("vt %.6f %.6f" % texel(across, up))
        self.places += (columns + 1) * (rows + 1)
        self.texels += (columns + 1) * (rows + 1)
        for row in range(rows):
            for column in range(columns):
                corners = []
                for x, y in ((0, 0), (1, 0), (1, 1), (0, 1)):
                    index = (row + y) * (columns + 1) + column + x
                    corners.append("%d/%d" % (first + index, first_texel + index))
                self.lines.append("f " + " ".join(corners))

    def material(self, name):
        self.lines.append("usemtl " + name)


def radius(up):
    return 0.36 + 0.09 * math.sin(math.pi * up)


def around(angle, distance, up):
    return (distance * math.cos(angle), HEIGHT * up, -distance * math.sin(angle))


def side(half):
    """Staves of one half; the texels of each fill a patch but for its margin."""
    def place(across, up):
        return around(math.pi * (half + across), radius(up), up)

    def texel(across, up):
        return (half + 0.02 + 0.96 * across, 0.02 + 0.96 * up)

    return place, texel


def lid(top):
    """A disc below the rim, facing out; both lie in one patch."""
    def place(across, up):
        turn = 1.0 - across if top else across
        return around(2 * math.pi * turn, 0.985 * radius(top) * up, 0.965 if top else 0.035)

    def texel(across, up):
        angle = -2 * math.pi * across
        x, y = (0.25 if top else 0.75), 0.5
        return (2 + x + 0.23 * up * math.cos(angle), y + 0.23 * up * math.sin(angle))

    return place, texel


def rim(top):
    """From the staves' end down to the lid, on the inside."""
    def place(across, up):
        depth = 1.0 - 0.035 * up if top else 0.035 * up
        turn = across if top else 1.0 - across
        return around(2 * math.pi * turn, (1.0 - 0.015 * up) * radius(top), depth)

    def texel(across, up):
        low = 0.86 if top else 0.06
        return (2.04 + 0.92 * across, low + 0.06 * up)

    return place, texel


def hoop(index):
    middle, width = HOOPS[index]

    def place(across, up):
        at = middle + width * (up - 0.5)
        bulge = 0.012 - 0.004 * (2 * up - 1) ** 4
        return around(2 * math.pi * across, radius(at) + bulge, at)

    def texel(across, up):
        return (3.02 + 0.96 * across, 0.04 + 0.24 * index + 0.18 * up)

    return place, texel


def write_mesh(path):
    mesh = Mesh()
    mesh.lines.append("o Barrel")
    mesh.material("Wood")
    for half in (0, 1):
        mesh.grid(STAVES // 2 * 2, ROWS, *side(half))
    for top in (0, 1):
        mesh.grid(STAVES * 2, 6, *lid(top))
        mesh.grid(STAVES * 2, 1, *rim(top))
    mesh.material("Iron")
    for index in range(len(HOOPS)):
        mesh.grid(STAVES * 2, 3, *hoop(index))
    with open(path, "w") as file:
        file.write("\n".join(mesh.lines) + "\n")


class Builder:
    """Nodes by column and row, wired by name."""

    def __init__(self, graph):
        self.graph = graph

    def add(self, node_type, name, column, y, **attributes):
        node = self.graph.createNode(node_type, name, (column * COLUMN, y))
        for key, value in attributes.items():
            node.setAttribute(key, value)
        return node

    def wire(self, target, **sources):
        for name, source in sources.items():
            target.connectInput(name.replace("_", " "), source)
        return target


def build_wood(graph):
    make = Builder(graph)
    add, wire = make.add, make.wire
    position = add("Geometry/Position", "Position", 0, 0)
    factor = add("Procedural/Color", "Across and Along", 0, 160, Color=(9, 0.9, 9))
    stretch = add("Math/Vector Math", "Along the Stave", 1, 0, Operation="Multiply")
    grain = add("Procedural/Noise/Fractal Noise", "Grain", 2, 0, Frequency=3, Kind="Ridged", Seed=4)
    tone = add("Adjust/Remap Ramp", "Oak", 3, 0, Ramp="0,0.13,0.07,0.035,1 0.5,0.27,0.16,0.08,1 "
                                                         "1,0.42,0.27,0.14,1")
    joints = add("Procedural/Pattern/Grid", "Joints", 2, 200, Columns=STAVES // 2, Rows=1,
                 LineWidth=0.045)
    gap = add("Procedural/Color", "Gap", 3, 200, Color=(0.02, 0.014, 0.01))
    planks = add("Layer/Merge", "Joints over Oak", 4, 0)
    occlusion = add("Geometry/Ambient Occlusion", "Occlusion", 2, 400, Distance=0.3)
    hollow = add("Adjust/Invert", "Hollows", 3, 400)
    spots = add("Procedural/Noise/Fractal Noise", "Spots", 2, 580, Frequency=5, Seed=11)
    dirt = add("Math/Math", "Dirt Mask", 4, 480)
    soil = add("Procedural/Color", "Dirt", 4, 280, Color=(0.05, 0.045, 0.03))
    dirty = add("Layer/Merge", "Dirt over Planks", 5, 0)
    rough = add("Adjust/Levels", "Roughness", 5, 260, OutLow=0.55, OutHigh=0.9)
    deep = add("Adjust/Levels", "Joint Depth", 3, 740, OutLow=1.0, OutHigh=0.0)
    height = add("Math/Math", "Height", 5, 560, Operation="Multiply")
    normal = add("Math/Height to Normal", "Normal", 6, 420, Strength=2)
    shader = add("Shaders/Standard Surface", "Oak Staves", 7.2, 60)
    wire(stretch, A=position, B=factor)
    wire(grain, Position=stretch)
    wire(tone, Input=grain)
    wire(planks, Base=tone, Over=gap, Mask=joints)
    wire(hollow, Input=occlusion)
    wire(dirt, A=hollow, B=spots)
    wire(dirty, Base=planks, Over=soil, Mask=dirt)
    wire(rough, Input=grain)
    wire(deep, Input=joints)
    wire(height, A=grain, B=deep)
    wire(normal, Height=height)
    wire(shader, Base_Color=dirty, Roughness=rough, Normal=normal, Displacement=height,
         Ambient_Occlusion=occlusion)
    return shader


def build_iron(graph):
    make = Builder(graph)
    add, wire = make.add, make.wire
    blotches = add("Procedural/Noise/Fractal Noise", "Blotches", 0, 0, Frequency=6, Seed=21)
    rust = add("Adjust/Levels", "Rust Mask", 1, 0, InLow=0.45, InHigh=0.62)
    steel = add("Procedural/Color", "Steel", 1, -160, Color=(0.16, 0.16, 0.17))
    grit = add("Procedural/Noise/Fractal Noise", "Grit", 0, 200, Frequency=40, Seed=8)
    tone = add("Adjust/Remap Ramp", "Rust", 1, 200, Ramp="0,0.1,0.025,0.01,1 1,0.34,0.11,0.03,1")
    coat = add("Layer/Merge", "Rust over Steel", 2, 0)
    metal = add("Adjust/Invert", "Metal", 2, 200)
    rough = add("Adjust/Levels", "Roughness", 2, 360, OutLow=0.35, OutHigh=0.95)
    height = add("Math/Math", "Height", 2, 520)
    normal = add("Math/Height to Normal", "Normal", 3, 440, Strength=1.5)
    occlusion = add("Geometry/Ambient Occlusion", "Occlusion", 3, 620, Distance=0.2)
    shader = add("Shaders/Standard Surface", "Hoops", 4.2, 60)
    wire(rust, Input=blotches)
    wire(tone, Input=grit)
    wire(coat, Base=steel, Over=tone, Mask=rust)
    wire(metal, Input=rust)
    wire(rough, Input=rust)
    wire(height, A=rust, B=grit)
    wire(normal, Height=height)
    wire(shader, Base_Color=coat, Roughness=rough, Metallic=metal, Normal=normal,
         Displacement=height, Ambient_Occlusion=occlusion)
    return shader


def build(path):
    project = ossa.newProject("Barrel", "plane")
    project.fileRules = []  # there are no files whose names could tell
    first = project.objects()[0]
    project.saveAs(path)
    mesh = os.path.join(path, "barrel.obj")
    write_mesh(mesh)
    made = project.importMesh(mesh, "materials")
    project.removeObject(first)
    builders = {"Wood": build_wood, "Iron": build_iron}
    for entity in made:
        graph = entity.graphs()[0]
        shader = builders[entity.name](graph)
        viewer = graph.viewer()
        if viewer:
            viewer.connectInput("1", shader.inputNode("Base Color"))
            viewer.connectInput("2", shader)
            viewer.position = shader.position + (COLUMN * 1.3, 0)
    project.save()
    print(sum(len(entity.graphs()[0].nodes()) for entity in made), "nodes", project.stateHash())


build(os.path.abspath(sys.argv[1]))
