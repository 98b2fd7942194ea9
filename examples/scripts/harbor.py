"""Builds the example project "Harbor" from nothing: eight weathered materials, some 400 nodes.

    ossa run examples/scripts/harbor.py -- examples/Harbor.ossa
"""

import random
import sys

import ossa

COLUMN = 240.0

# Each material: its name, its base, what lies on it, and the colour of its backdrop.
MATERIALS = [
    ("Quay Stone", "Procedural/Pattern/Brick",
     ("Algae", "Salt", "Oil", "Cracks", "Rain Streaks"), "0.34,0.37,0.42,1"),
    ("Ship Hull", "Procedural/Pattern/Grid",
     ("Rust", "Antifouling", "Barnacles", "Scratches", "Salt"), "0.45,0.3,0.24,1"),
    ("Deck Planks", "Procedural/Pattern/Gradient",
     ("Grain", "Tar", "Boot Wear", "Rain Streaks", "Dirt"), "0.44,0.37,0.24,1"),
    ("Crane Steel", "Procedural/Color",
     ("Paint", "Rust", "Grease", "Scratches", "Dirt"), "0.44,0.41,0.2,1"),
    ("Container", "Procedural/Pattern/Grid",
     ("Paint", "Logo", "Dents", "Rust", "Rain Streaks"), "0.22,0.4,0.47,1"),
    ("Rope", "Procedural/Pattern/Checker",
     ("Fibers", "Tar", "Salt", "Dirt", "Fraying"), "0.4,0.36,0.3,1"),
    ("Bollard", "Procedural/Color",
     ("Paint", "Rust", "Rope Wear", "Salt", "Algae"), "0.42,0.24,0.28,1"),
    ("Warehouse Brick", "Procedural/Pattern/Brick",
     ("Mortar", "Soot", "Moss", "Chips", "Posters"), "0.46,0.28,0.22,1"),
]

chance = random.Random(20261121)  # the same harbour every time


def whole(end):
    """A number from 0 to below the end."""
    return int(chance.random() * end)


def add_backdrop(graph, title, position, size, color):
    node = graph.createNode("Misc/Backdrop", title + " Backdrop", position)
    node.setAttribute("TitleText", title)
    node.setAttribute("BackgroundColor", color)
    node.size = size
    node.position = position


def add_layer(graph, name, below, occlusion, index):
    """A mask of noise and occlusion, a colour, and the merge that puts it over the rest."""
    x = COLUMN * (1.2 + index * 2.4)
    kind = "Cellular" if index % 2 else "Fractal Noise"
    noise = graph.createNode("Procedural/Noise/" + kind, name + " Noise", (x, 240))
    levels = graph.createNode("Adjust/Levels", name + " Levels", (x, 370))
    mask = graph.createNode("Math/Math", name + " Mask", (x + COLUMN, 330))
    color = graph.createNode("Procedural/Color", name + " Color", (x + COLUMN, 210))
    merge = graph.createNode("Layer/Merge", name, (x + COLUMN * 1.7, 40))
    levels.connectInput("Input", noise)
    mask.connectInput("A", levels)
    mask.connectInput("B", occlusion)
    merge.connectInput("Base", below)
    merge.connectInput("Over", color)
    merge.connectInput("Mask", mask)
    noise.setAttribute("Seed", whole(1000))
    levels.setAttribute("InLow", whole(40) / 100)
    color.setAttribute("Color", (whole(90) / 100, whole(70) / 100, whole(60) / 100))
    return merge


def fill_group(group, name, base_type, layers, backdrop):
    """The inside of a material's group: base, layers, and what the shader takes from them."""
    graph = group.inside()
    wetness = group.createInput("Wetness", "scalar")
    color = group.createOutput("Color", "color")
    rough = group.createOutput("Roughness", "scalar")
    height = group.createOutput("Height", "scalar")
    wetness.position = (-COLUMN, 560)
    add_backdrop(graph, name + " layers", (COLUMN - 30, -50), (COLUMN * 12.4, 560), backdrop)
    last = graph.createNode(base_type, "Base", (0, 40))
    occlusion = graph.createNode("Geometry/Ambient Occlusion", "Occlusion", (0, 420))
    for index, layer in enumerate(layers):
        last = add_layer(graph, layer, last, occlusion, index)
    right = COLUMN * 13.6
    grade = graph.createNode("Adjust/Brightness Contrast", "Grade", (right, 40))
    wet = graph.createNode("Math/Math", "Wet", (right, 380))
    soften = graph.createNode("Filter/Blur", "Soften", (right, 560))
    grade.connectInput("Input", last)
    wet.connectInput("A", graph.node(layers[0] + " Mask"))
    wet.connectInput("B", wetness)
    soften.connectInput("Input", wet)
    color.connectInput("Input", grade)
    rough.connectInput("Input", wet)
    height.connectInput("Input", soften)
    color.position = (right + COLUMN, 60)
    rough.position = (right + COLUMN, 390)
    height.position = (right + COLUMN, 570)


def add_material(graph, material, corner, rain):
    """A material in the root graph: weather in front of its group, grading behind it."""
    name, base_type, layers, backdrop = material

    def add(node_type, suffix, column, y):
        return graph.createNode(node_type, name + suffix, corner + (column * COLUMN, y))

    add_backdrop(graph, name, corner - (40, 60), (COLUMN * 9.6, 640), backdrop)
    paint = add("Misc/Image", " Reference", 0, 20)
    place = add("Filter/Transform", " Placement", 0.9, 20)
    noise = add("Procedural/Noise/Fractal Noise", " Breakup", 0, 200)
    ramp = add("Adjust/Remap Ramp", " Ramp", 0.9, 200)
    wetness = add("Math/Math", " Wetness", 1.8, 330)
    group = add("Misc/Group", " Layers", 2.8, 200)
    fill_group(group, name, base_type, layers, backdrop)
    place.connectInput("Input", paint)
    ramp.connectInput("Input", noise)
    wetness.connectInput("A", ramp)
    wetness.connectInput("B", rain)
    group.connectInput("Wetness", wetness)
    noise.setAttribute("Seed", whole(1000))

    merge = add("Layer/Merge", " Reference Mix", 3.9, 20)
    hue = add("Adjust/Hue Shift", " Hue", 4.9, 20)
    sharpen = add("Filter/Sharpen", " Sharpen", 5.8, 20)
    rough = add("Adjust/Levels", " Roughness", 4.9, 200)
    clamp = add("Adjust/Clamp", " Roughness Clamp", 5.8, 200)
    soft = add("Filter/Blur", " Height Blur", 4.9, 380)
    normal = add("Math/Height to Normal", " Normal", 5.8, 380)
    shader = add("Shaders/Standard Surface", "", 7.2, 120)
    merge.connectInput("Base", group, "Color")
    merge.connectInput("Over", place)
    merge.connectInput("Mask", ramp)
    hue.connectInput("Input", merge)
    sharpen.connectInput("Input", hue)
    rough.connectInput("Input", group, "Roughness")
    clamp.connectInput("Input", rough)
    soft.connectInput("Input", group, "Height")
    normal.connectInput("Height", soft)
    shader.connectInput("Base Color", sharpen)
    shader.connectInput("Roughness", clamp)
    shader.connectInput("Normal", normal)
    shader.connectInput("Displacement", soft)
    return shader


def build():
    project = ossa.newProject("Harbor", "cube")
    project.fileRules = []  # its pictures are colors, whatever they are called
    project.objects()[0].name = "Harbor"
    graph = ossa.graph()
    add_backdrop(graph, "Weather", (-1240, 620), (1000, 460), "0.22,0.34,0.5,1")
    position = graph.createNode("Geometry/Position", "World Position", (-1200, 700))
    clouds = graph.createNode("Procedural/Noise/Fractal Noise", "Clouds", (-960, 690))
    normal = graph.createNode("Geometry/Normal", "World Normal", (-1200, 860))
    up = graph.createNode("Channel/Split", "Facing Up", (-960, 850))
    rain = graph.createNode("Math/Math", "Rain", (-700, 780))
    dot = graph.createNode("Misc/Dot", "Rain Dot", (-430, 830))
    clouds.connectInput("Position", position)
    up.connectInput("Input", normal)
    rain.connectInput("A", clouds)
    rain.connectInput("B", up, "Green")
    dot.connectInput("Input", rain)

    viewer = graph.viewer()
    with ossa.progress("Building the harbor", len(MATERIALS)) as progress:
        for index, material in enumerate(MATERIALS):
            corner = ossa.Point(index % 2 * COLUMN * 11, index // 2 * 760.0)
            shader = add_material(graph, material, corner, dot)
            viewer.connectInput(str(index + 1), shader)
            progress.step()
    viewer.position = (COLUMN * 22, 780)
    note = graph.createNode("Misc/Sticky Note", "Note", (-1200, 1140))
    note.setAttribute("Label", "Wetness drives every material. Change Rain, not the groups.")
    return project


project = build()
print(len(ossa.graph().allNodes()), "nodes", project.stateHash())
if len(sys.argv) > 1:
    project.saveAs(sys.argv[1])
