"""Draws what types of nodes make, each at its defaults and in variations: pictures for a manual, and for
eyes that look for what is poor.

    ossa run cmake/scripts/node_pictures.py -- FOLDER [SIZE [PREFIX...]]

writes "Perlin Noise.png", "Perlin Noise 1.png" and so on for types whose keys begin with a prefix
(Procedural/ by default), without a mesh. With ImageMagick one sheet is
montage -label '%t' FOLDER/*.png -geometry 200x200+3+3 sheet.png
"""
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
for _kind in ("Rusty", "Scraped", "Smeared", "Spotted", "Creased", "Porous"):
    VARIATIONS["Grunge " + _kind] = [{"Amount": 0.8, "Detail": 0.2}, {"Amount": 0.3, "Detail": 0.9}]

# What is given to inputs that nodes cannot do without, by the names of the inputs.
SOURCES = {
    "Input": ("Procedural/Pattern/Star", "Output", {"Color": (0.75, 0.3, 0.05, 1), "Background": (0, 0, 0, 0)}),
    "A": ("Procedural/Pattern/Shape", "Distance", {"Center": (0.4, 0.5), "Radius": 0.22}),
    "B": ("Procedural/Pattern/Shape", "Distance", {"Shape": "Box", "Center": (0.62, 0.5), "Radius": 0.18}),
}


def given(graph, name):
    """The node that stands at such an input, and which of its outputs."""
    type_, output, values = SOURCES[name]
    source = graph.createNode(type_, "Given " + name)
    for attribute, value in values.items():
        source.setAttribute(attribute, value)
    return source, output


def draw(graph, type_, values, path, size):
    node = graph.createNode(type_)
    for name in node.inputs:
        if name in SOURCES:
            source, output = given(graph, name)
            node.connectInput(name, source, output)
    shown = node
    for attribute, value in values.items():
        if attribute != "Output":
            node.setAttribute(attribute, value)
            continue
        # A node is baked by its first output; what passes on another one stands in for it.
        shown = graph.createNode("Misc/Dot")
        shown.connectInput(shown.inputs[0], node, value)
    shown.bake(path, size, [1001])


def main(arguments):
    if not arguments:
        raise SystemExit(__doc__)
    folder = arguments[0]
    size = int(arguments[1]) if len(arguments) > 1 else 256
    prefixes = tuple(arguments[2:]) or ("Procedural/",)
    os.makedirs(folder, exist_ok=True)
    ossa.newProject("Pictures")
    graph = ossa.graph()
    for type_ in ossa.nodeTypes():
        if not type_.startswith(prefixes):
            continue
        name = type_.rsplit("/", 1)[1]
        for number, values in enumerate([{}] + VARIATIONS.get(name, [])):
            suffix = " %d" % number if number else ""
            try:
                draw(graph, type_, values, os.path.join(folder, name + suffix + ".png"), size)
            except ossa.Error as error:
                print(type_, values, error.message, file=sys.stderr)


main(sys.argv[1:])
