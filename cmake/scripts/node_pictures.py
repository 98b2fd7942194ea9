"""Draws what types of nodes make, each at its defaults and in variations: pictures for a manual, and for
eyes that look for what is poor.

    ossa run cmake/scripts/node_pictures.py -- FOLDER [SIZE [PREFIX...]] [--examples EXAMPLES]

writes "Perlin Noise.png", "Perlin Noise 1.png" and so on for types whose keys begin with a prefix
(Procedural/ by default, / for all), without a mesh, and what was set for each into captions.json. With
--examples the graph of the first picture of each type is kept as a project in that folder. With ImageMagick
one sheet is
montage -label '%t' FOLDER/*.png -geometry 200x200+3+3 sheet.png
"""
import json
import os
import sys

import ossa

# What else to show than the defaults; numbers and texts of attributes.
VARIATIONS = {
    "Perlin Noise": [{"Octaves": 1}, {"Octaves": 8, "Contrast": 0.6}],
    "Simplex Noise": [{"Octaves": 1}, {"Octaves": 8, "Scale": 4}],
    "Value Noise": [{"Octaves": 1}, {"Octaves": 8, "Contrast": 0.7}],
    "Worley Noise": [{"Feature": "Edges", "Contrast": 0.5}, {"Feature": "Cell Id", "Distance": "Manhattan"}],
    "Gabor Noise": [{"Spread": 1}, {"Waves": 6, "Direction": 90, "Spread": 0.02}],
    "Phasor Noise": [{"Profile": "Square", "Spread": 1}, {"Profile": "Saw", "Spread": 0.2}],
    "White Noise": [{"Scale": 32}, {"Distribution": "Bell"}],
    "Blue Noise": [{"Scale": 64}, {"Contrast": 0.95, "Balance": 0.25}],
    "Ridged Noise": [{"Sharpness": 3, "Contrast": 0.4}, {"Smoothness": 1, "Scale": 8}],
    "Billow Noise": [{"Octaves": 1}, {"Invert": True, "Contrast": 0.5}],
    "Domain-Warped Noise": [{"Folds": 1, "Amount": 3}, {"Folds": 3, "Contrast": 0.5}],
    "Curl Noise": [{"Amount": 0.25}, {"Amount": 1.5, "Steps": 10, "Scale": 4}],
    "Flow Noise": [{"Drift": 0}, {"Drift": 0.6, "Phase": 0.6}],
    "Crystal": [{"Detail": 0}, {"Jitter": 0.3, "Detail": 0.8}],
    "Clouds": [{"Coverage": 0.75, "Softness": 0.2}, {"Billows": 1, "Coverage": 0.6}],
    "Scratches": [{"Spread": 0.05, "Bend": 0, "Scale": 12}, {"Density": 0.3, "Width": 0.06}],
    "Fibres": [{"Spread": 0.1, "Bend": 0.2}, {"Width": 0.2, "Density": 0.5}],
    "Dust": [{"Lint": 1, "Scale": 8}, {"Size": 1, "Density": 0.2}],
    "Stains": [{"Ring": 0, "Distortion": 1}, {"Ring": 1, "Size": 1}],
    "Leaks": [{"Length": 14, "Density": 1}, {"Wobble": 1, "Width": 0.5}],
    "Voronoi Cracks": [{"FineCracks": 0, "Width": 0.12}, {"Distortion": 0.6, "Slope": 0.5}],
    "Running Bond": [{"Offset": 0.25, "Gap": 0.3}, {"Output": "Height"}],
    "Stack Bond": [{"Columns": 8, "Rows": 8}, {"Output": "Random"}],
    "English Bond": [{"Gap": 0.3}, {"Output": "Height"}],
    "Flemish Bond": [{"Variation": 0.8}, {"Output": "Height"}],
    "Herringbone": [{"Diagonal": False, "Ratio": 5}, {"Output": "Tile UV"}],
    "Basket Weave": [{"Ratio": 3}, {"Output": "Height"}],
    "Planks": [{"Grain": 1, "Rows": 4}, {"Output": "Height"}],
    "Hexagons": [{"Gap": 0.3}, {"Output": "Height"}],
    "Triangles": [{"Variation": 1}, {"Output": "Random"}],
    "Cobbles": [{"Jitter": 1, "Gap": 0.3}, {"Output": "Height"}],
    "Roof Tiles": [{"Shape": "Pointed"}, {"Output": "Height"}],
    "Weave Plain": [{"Gap": 0.5}, {"Output": "Height"}],
    "Weave Twill": [{"Over": 3, "Under": 1}, {"Output": "Height"}],
    "Knit": [{"Slant": 1.4, "Columns": 6, "Rows": 8}, {"Output": "Height"}],
    "Stripes": [{"Angle": 0, "Width": 0.2}, {"Angle": 20, "Softness": 0.05}],
    "Dots": [{"SizeVariation": 1}, {"Stagger": False, "Radius": 0.45}],
    "Waves": [{"Profile": "Triangle"}, {"Waves": 2, "Amplitude": 2}],
    "Spiral": [{"Arms": 5}, {"Turns": 20, "Width": 0.2}],
    "Rays": [{"Twist": 1}, {"Count": 40, "Width": 0.2}],
    "Truchet": [{"Style": "Diagonals"}, {"Style": "Triangles"}],
    "Polygon": [{"Sides": 3, "Rounding": 0.4}, {"Sides": 8, "Outline": 0.04}],
    "Star": [{"Points": 12, "InnerRadius": 0.8}, {"Rounding": 0.5}],
    "Shape": [{"Shape": "Heart"}, {"Shape": "Cross", "Rounding": 0.3, "Outline": 0.04}],
    "Shape Blend": [{"Operation": "Subtraction"}, {"Smoothness": 0.3, "Outline": 0.03}],
    "Shape Outline": [{"Rings": 4}, {"Width": 0.06, "Offset": 0.05}],
    "Text": [{"Text": "Ossa", "Font": "Serif:italic", "Size": 0.4}, {"Rotation": 30, "Spacing": 0.2}],
    "Scatter": [{"Columns": 16, "Rows": 16, "Hue": 0.3}, {"Blend": "Add", "Brightness": 0.9}],
    "Tile Sampler": [{"Offset": 0.5, "Rotation": 20}, {"RotationVariation": 1, "ScaleVariation": 0.7}],
}
VARIATIONS.update({
    "Direction Mask": [{"Direction": "Angles", "Azimuth": 60}, {"Width": 120, "Softness": 0.1}],
    "Height Gradient": [{"Axis": "X"}, {"From": 0.3, "To": 0.5, "Smooth": True}],
    "Thickness": [{"Distance": 0.05}],
    "Bent Normal": [{"Output": "Openness"}],
    "Concavity": [{"Output": "Edges"}, {"Radius": 0.1}],
    "Edge Wear": [{"Amount": 0.8, "BreakUp": 1}, {"Flakes": 0.6, "Scale": 12}],
    "Dirt": [{"Amount": 0.9, "Settled": 1}, {"Settled": 0, "Softness": 0.05}],
    "Light": [{"Azimuth": -60, "Elevation": 20, "Softness": 25, "Rays": 64}, {"Output": "Direct"}],
    "Proximity": [{"To": "Own Surface", "Distance": 0.2}, {"Distance": 0.15}],
    "Island": [{"Of": "Parts"}, {"Output": "Random"}],
    "UV Density": [{"Output": "Heat"}, {"Output": "Stretch"}],
    "Surface Flow": [{"Output": "UV"}, {"Output": "Steepness"}],
    "Decal": [{"RotationZ": 30, "Width": 1.2}, {"Repeat": "Tiled", "Width": 0.25, "Height": 0.25}],
    "Compare": [{"Operation": "Less"}, {"Softness": 0.6}],
    "Blend by Mask": [{"Contrast": 0.9}, {"Invert": True}],
    "Expression": [
        {"Expression": "r = length(u - 0.5, v - 0.5, 0); hsv(atan(v - 0.5, u - 0.5) / (2 * pi), 1, smoothstep(0.5, 0.45, r))"},
        {"Expression": "n = fractal(u * 6, v * 6); rgb(n, n ^ 3, fract(n * 9))"},
    ],
    "Patch Variation": [{"Brightness": 1.5, "Seed": 4}, {"Output": "Color"}],
    "Seed": [{"Output": "Color"}],
})
for _kind in ("Rusty", "Scraped", "Smeared", "Spotted", "Creased", "Porous"):
    VARIATIONS["Grunge " + _kind] = [{"Amount": 0.8, "Detail": 0.2}, {"Amount": 0.3, "Detail": 0.9}]

# What is given to inputs that nodes cannot do without, by the names of the inputs: a type, its output, its
# values, and what is given to it.
STAR = ("Procedural/Pattern/Star", "Output", {"Color": (0.75, 0.3, 0.05, 1), "Background": (0, 0, 0, 0)})
NOISE = ("Procedural/Noise/Perlin Noise", "Output", {"Scale": 6, "Octaves": 4})
MARBLE = ("Procedural/Noise/Domain-Warped Noise", "Color",
          {"Scale": 3, "ColorA": (0.3, 0.03, 0.01, 1), "ColorB": (0.02, 0.12, 0.22, 1)})
FIGURE = ("Procedural/Pattern/Star", "Output", {})
TILES = ("Procedural/Pattern/Roof Tiles", "Output",
         {"Columns": 6, "Rows": 8, "Shape": "Round", "Color": (0.5, 0.14, 0.06, 1), "Variation": 0.7})
COBBLES = ("Procedural/Pattern/Cobbles", "Height", {"Columns": 6})
RELIEF = ("Math/Height to Normal", "Output", {"Strength": 3}, {"Height": COBBLES})
FINE_RELIEF = ("Math/Height to Normal", "Output", {"Strength": 2},
               {"Height": ("Procedural/Noise/Perlin Noise", "Output", {"Scale": 24, "Octaves": 4})})
RUST = ("Procedural/Color", "Output", {"Color": (0.25, 0.08, 0.02, 1)})
SAND = ("Procedural/Color", "Output", {"Color": (0.62, 0.5, 0.3, 1)})
SOURCES = {
    "Input": STAR,
    "A": ("Procedural/Pattern/Shape", "Distance", {"Center": (0.4, 0.5), "Radius": 0.22}),
    "B": ("Procedural/Pattern/Shape", "Distance",
          {"Shape": "Box", "Center": (0.62, 0.5), "Radius": 0.18}),
}
# The same for the types of a folder, or for one; the longest beginning of a key counts.
SOURCES_OF = {
    "Adjust/": {"Input": MARBLE, "Reference": TILES},
    "Adjust/Threshold": {"Input": NOISE},
    "Adjust/Histogram Scan": {"Input": NOISE},
    "Channel/": {"Input": MARBLE, "Red": NOISE, "Green": COBBLES},
    "Filter/": {"Input": TILES, "Slope": NOISE, "Vector": ("Procedural/Noise/Curl Noise", "Vector", {})},
    "Filter/Anisotropic Blur": {"Input": ("Procedural/Noise/White Noise", "Output", {"Scale": 96})},
    "Filter/Bevel": {"Input": FIGURE},
    "Filter/Dilate": {"Input": STAR},
    "Filter/Distance": {"Input": FIGURE},
    "Filter/Erode": {"Input": STAR},
    "Filter/Outline": {"Input": FIGURE},
    "Filter/Upscale": {"Input": STAR},
    "Geometry/": {},
    "Geometry/Decal": {"Image": STAR},
    "Height/": {"Height": COBBLES, "HeightA": COBBLES, "HeightB": NOISE, "A": RUST, "B": SAND,
                "Normal": RELIEF, "Base": RELIEF, "Detail": FINE_RELIEF},
    "Height/Hydraulic Erosion": {"Height": NOISE},
    "Height/Thermal Erosion": {"Height": NOISE},
    "Layer/": {"Base": TILES, "Over": MARBLE, "Mask": NOISE},
    "Logic/": {"Input": TILES, "Input 1": TILES, "Input 2": MARBLE, "A": TILES, "B": MARBLE, "Mask": NOISE},
    "Logic/Compare": {"A": NOISE, "B": ("Procedural/Scalar", "Output", {})},
    "Logic/Expression": {},
    "Math/": {"A": NOISE, "B": COBBLES, "Height": COBBLES},
    "Math/Vector Math": {"A": RELIEF, "B": FINE_RELIEF},
    "Procedural/Pattern/Shape Outline": {"A": SOURCES["A"]},
    "Space/": {"Input": TILES, "Map": NOISE, "Intensity": NOISE,
               "Vector": ("Procedural/Noise/Curl Noise", "Color", {}),
               "UV": ("Procedural/Pattern/Running Bond", "Tile UV", {"Columns": 4, "Rows": 6})},
    "Space/Texture Bombing": {"Input": STAR},
}
# Types that look at the mesh are shown on one, and on that of its patches that has the most to show.
ON_MESH = ("Geometry/",)
MESH = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "examples", "Barrel.ossa", "barrel.obj")
MESH_PATCH = 1003
# What has nothing to show by itself.
SKIPPED = ("Channel Input/", "Environment/", "Geometry/Color Id Mask", "Geometry/Vertex Color", "Logic/Group Attribute",
           "Logic/Patch Mask", "Misc/", "Procedural/Pattern/Tiled", "Shaders/", "Teleport", "_System/")


def longest(table, type_, otherwise):
    """What a table has for the longest beginning of a type's key."""
    fitting = [key for key in table if type_.startswith(key)]
    return table[max(fitting, key=len)] if fitting else otherwise


def given(graph, source, place):
    """The node that stands at such an input, and which of its outputs."""
    type_, output, values, inputs = (source + ({},))[:4]
    node = graph.createNode(type_, "Given " + type_.rsplit("/", 1)[1], place)
    for attribute, value in values.items():
        node.setAttribute(attribute, value)
    for name, before in inputs.items():
        node.connectInput(name, *given(graph, before, (place[0] - 240, place[1])))
    return node, output


def build(type_):
    """A new project with a node of the type and what it needs."""
    project = ossa.newProject(type_.rsplit("/", 1)[1])
    graph = ossa.graph()
    if type_.startswith(ON_MESH):
        plane = project.objects()[0]
        graph = project.importMesh(os.path.normpath(MESH), "one")[0].graphs()[0]
        project.removeObject(plane)
    node = graph.createNode(type_, type_.rsplit("/", 1)[1], (0, 0))
    sources = longest(SOURCES_OF, type_, SOURCES)
    row = 0
    for name in node.inputs:
        if name in sources:
            node.connectInput(name, *given(graph, sources[name], (-280, row * 160)))
            row += 1
    return graph, node


def usual_variations(node):
    """For types without any: another choice, or a number near its other end."""
    found = []
    for name in node.attributes:
        info = node.attributeInfo(name)
        choices = info.get("choices")
        if choices and len(choices) > 1:
            found.append({name: [choice for choice in choices if choice != node.attribute(name)][0]})
        elif info["kind"] == "real" and info["minimum"] is not None and info["maximum"] is not None:
            low, high = info["minimum"], info["maximum"]
            now = node.attribute(name)
            other = high if now - low < high - now else low
            found.append({name: round(now + 0.35 * (other - now), 3)})
    return found[:2]


def words_of(node, values):
    texts = []
    for attribute, value in values.items():
        label = "Output" if attribute == "Output" else node.attributeInfo(attribute)["label"]
        if isinstance(value, bool):
            value = "on" if value else "off"
        texts.append("%s %s" % (label, value))
    return ", ".join(texts)


def draw(graph, node, values, path, size):
    shown = node
    for attribute, value in values.items():
        if attribute != "Output":
            node.setAttribute(attribute, value)
            continue
        # A node is baked by its first output; what passes on another one stands in for it.
        shown = graph.createNode("Misc/Dot")
        shown.connectInput(shown.inputs[0], node, value)
    shown.bake(path, size, [MESH_PATCH if node.type.startswith(ON_MESH) else 1001])


def keep(graph, node, folder):
    viewer = graph.viewer()
    viewer.connectInput("1", node)
    viewer.position = (320, 0)
    ossa.project().saveAs(os.path.join(folder, node.name + ".ossa"))


def draw_type(type_, folder, size, examples, captions):
    name = type_.rsplit("/", 1)[1]
    graph, node = build(type_)
    if examples:
        keep(graph, node, examples)
    for number, values in enumerate([{}] + VARIATIONS.get(name, usual_variations(node))):
        if number:
            graph, node = build(type_)
        file = name + (" %d" % number if number else "") + ".png"
        try:
            draw(graph, node, values, os.path.join(folder, file), size)
            captions[file] = words_of(node, values)
        except ossa.Error as error:
            print(type_, values, error.message, file=sys.stderr)


def main(arguments):
    examples = None
    if "--examples" in arguments:
        place = arguments.index("--examples")
        examples = os.path.abspath(arguments[place + 1])
        os.makedirs(examples, exist_ok=True)
        del arguments[place:place + 2]
    if not arguments:
        raise SystemExit(__doc__)
    folder = arguments[0]
    size = int(arguments[1]) if len(arguments) > 1 else 256
    prefixes = tuple(arguments[2:]) or ("Procedural/",)
    os.makedirs(folder, exist_ok=True)
    captions = {}
    for type_ in ossa.nodeTypes():
        if (prefixes == ("/",) or type_.startswith(prefixes)) and not type_.startswith(SKIPPED):
            draw_type(type_, folder, size, examples, captions)
    with open(os.path.join(folder, "captions.json"), "w", encoding="utf-8") as file:
        json.dump(captions, file, indent=1, sort_keys=True)


main(sys.argv[1:])
