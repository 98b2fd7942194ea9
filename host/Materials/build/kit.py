"""What the ready materials are made with: a group whose nodes are wired as they are named, in backdrops,
with knobs that say what they do, and a surface at its end."""

import ossa

BACKDROPS = ("0.30,0.36,0.42,1", "0.42,0.34,0.26,1", "0.30,0.40,0.30,1", "0.40,0.30,0.38,1",
             "0.42,0.40,0.28,1", "0.28,0.38,0.40,1")
STEEPNESS = 1.0  # as Height to Normal has it
NOISE, PATTERN = "Procedural/Noise/", "Procedural/Pattern/"


class Material:
    """One material. Numbers, colors and nodes may stand for each other wherever a node takes both."""

    def __init__(self, key, help_text, aliases):
        self.category, self.name = key.rsplit("/", 1)
        self.help_text, self.aliases = help_text, aliases
        self.group = ossa.graph().createNode("Misc/Group", self.name)
        self.inside = self.group.inside()
        self.backdrop = None
        self.backdrops = []
        self.space = "Surface"  # where noises are: on the object, or "UV" beside patterns of the patch
        self.factors = {}
        self.starts, self.ends = [], []

    # --- nodes

    def part(self, title):
        """What is added from now on lies on a backdrop of this title."""
        self.backdrop = self.inside.createNode("Misc/Backdrop", title + " Part")
        self.backdrop.setAttribute("TitleText", title)
        self.backdrop.setAttribute("BackgroundColor", BACKDROPS[len(self.backdrops) % len(BACKDROPS)])
        self.backdrops.append([title, self.backdrop, []])

    def add(self, node_type, name, **values):
        """A node; what is a node, or a node and one of its outputs, is wired to the input of that name."""
        node = self.inside.createNode(node_type, name)
        if self.backdrops:
            self.backdrops[-1][2].append(node)
        for key, value in values.items():
            self.give(node, key, value)
        return node

    def give(self, node, key, value):
        source, output = value if isinstance(value, tuple) and hasattr(value[0], "inputs") else (value, "")
        if not hasattr(source, "inputs"):
            node.setAttribute(key, value)
            return
        inputs = node.inputs
        port = key if key in inputs else key.replace("_", " ")
        if port not in inputs:  # "GapColor" is the attribute beside the input "Gap Color"
            port = next(one for one in inputs if one.replace(" ", "") == key)
        if output:
            node.connectInput(port, source, output)
        else:
            node.connectInput(port, source)

    def noise(self, kind, name, factor, **values):
        """Noise whose scale is that many times the knob "Scale", if there is one."""
        if self.space == "UV" and "Position" not in values and kind != "Fractal Noise":
            values["Space"] = "UV"
        if kind == "Voronoi Cracks":  # which are dark
            values["Invert"] = True
        if kind == "Fractal Noise":
            values["Frequency"] = self.at(factor)
        else:
            values["Scale"] = self.at(factor)
        return self.add((PATTERN if kind == "Voronoi Cracks" else NOISE) + kind, name, **values)

    def at(self, factor):
        if "Scale" not in self.factors or factor in self.factors:
            return self.factors.get(factor, factor)
        self.factors[factor] = self.times("Scale x %g" % factor, self.factors["Scale"], float(factor))
        return self.factors[factor]

    def scale(self, value=1.0, help_text="How small everything is: more is smaller"):
        """The knob that noises share."""
        self.factors["Scale"] = self.knob("Scale", help_text, value, 0.1, 10.0)

    def place(self, name, stretch, moved=None, amount=0.0):
        """Places on the object, or of the patch, stretched; moved by a vector around 0.5."""
        kind = "Geometry/UV" if self.space == "UV" else "Geometry/Position"
        where = self.add(kind, name + " Place")
        if moved is not None:
            by = self.add("Math/Vector Math", name + " Shift", Operation="Multiply", A=moved,
                          B=self.color(name + " Amount", (amount, amount, amount, 1.0)))
            where = self.add("Math/Vector Math", name + " Moved", Operation="Add", A=where, B=by)
        return self.add("Math/Vector Math", name, Operation="Multiply", A=where,
                        B=self.color(name + " Stretch", tuple(stretch) + (1.0,)))

    def total(self, name, *parts):
        """The sum of (node, weight); weights may be nodes."""
        nodes = [one if weight == 1 else self.times("%s %d" % (name, index + 1), one, weight)
                 for index, (one, weight) in enumerate(parts)]
        while len(nodes) > 1:
            last = len(nodes) == 2
            nodes[:2] = [self.plus(name if last else "%s Sum %d" % (name, len(nodes)), nodes[0], nodes[1])]
        return nodes[0]

    def pattern(self, kind, name, **values):
        return self.add(PATTERN + kind, name, **values)

    def color(self, name, value):
        return self.add("Procedural/Color", name, Color=value)

    def math(self, operation, name, a, b):
        return self.add("Math/Math", name, Operation=operation, A=a, B=b)

    def times(self, name, a, b):
        return self.math("Multiply", name, a, b)

    def plus(self, name, a, b):
        return self.math("Add", name, a, b)

    def levels(self, name, source, low=0.0, high=1.0, to_low=0.0, to_high=1.0, gamma=1.0):
        if 0.0 <= min(to_low, to_high) and max(to_low, to_high) <= 1.0:
            return self.add("Adjust/Levels", name, Input=source, InLow=low, InHigh=high, OutLow=to_low,
                            OutHigh=to_high, Gamma=gamma)
        within = self.levels(name + " Part", source, low, high, gamma=gamma)
        return self.plus(name, self.times(name + " Span", within, to_high - to_low), to_low)

    def mask(self, name, source, amount, softness=0.1, none=0.9, all_of_it=0.1):
        """White where the source is brighter than a limit that falls as the amount grows."""
        rest = amount
        if hasattr(amount, "inputs"):
            rest = self.levels(name + " Limit", amount, to_low=none, to_high=all_of_it)
        return self.add("Adjust/Threshold", name, Input=source, Threshold=rest, Softness=softness)

    def ramp(self, name, source, *stops):
        """Colors by the source's value: (place, (r, g, b))."""
        text = " ".join("%g,%g,%g,%g,1" % ((place,) + tuple(tone)) for place, tone in stops)
        return self.add("Adjust/Remap Ramp", name, Input=source, Ramp=text, Interpolation="Smooth")

    def merge(self, name, base, over, mask=None, mode="Normal", amount=1.0):
        node = self.add("Layer/Merge", name, BlendMode=mode, Amount=amount,
                        Base=self.source(base, name + " Below"), Over=self.source(over, name + " Above"))
        if mask is not None:
            self.give(node, "Mask", mask)
        return node

    def mix(self, name, a, b, mask):
        """Numbers, colors or nodes."""
        return self.merge(name, self.source(a, name + " Low"), self.source(b, name + " High"), mask)

    def source(self, value, name):
        if hasattr(value, "inputs") or (isinstance(value, tuple) and hasattr(value[0], "inputs")):
            return value
        if isinstance(value, tuple):
            return self.color(name, value + (1.0,))
        return self.add("Procedural/Scalar", name, Value=value)

    # --- knobs

    def knob(self, name, help_text, value, minimum=0.0, maximum=1.0):
        """A number that the user turns, as a node."""
        node = self.add("Procedural/Scalar", name, Value=value)
        self.expose(name, help_text, node, "Value", minimum, maximum)
        return node

    def tint(self, name, help_text, value):
        """A color that the user picks, as a node."""
        node = self.color(name, tuple(value) + (1.0,))
        self.expose(name, help_text, node, "Color")
        return node

    def expose(self, name, help_text, node, attribute, minimum=None, maximum=None, others=()):
        """An attribute as a knob, at the value that it has; the others follow it."""
        knob = self.group.renameKnob(self.group.createKnob(node, attribute), name)
        info = {"toolTip": help_text, "section": "", "default": node.attribute(attribute)}
        if minimum is not None:
            info.update({"minimum": minimum, "maximum": maximum})
        self.group.setKnobInfo(knob, info)
        for other, which in others:
            self.group.linkKnob(knob, other, which)

    # --- the end

    def surface(self, base, roughness, height=None, strength=1.0, depth=0.02, metallic=None, occlusion=True,
                **more):
        """What all of it comes to: normals and occlusion follow from the height."""
        self.part("Surface")
        strength *= STEEPNESS
        values = {"Base_Color": base, "Roughness": roughness}
        if metallic is not None:
            values["Metallic"] = metallic
        if height is not None:
            relief = self.knob("Relief", "How deep the surface is: 0 is smooth, 1 as it is in life", 1.0, 0.0, 3.0)
            self.relief = self.times("Height with Relief", height, relief)
            values["Displacement"] = self.relief
            values["Normal"] = self.add("Math/Height to Normal", "Normal", Height=self.relief,
                                        Strength=strength)
            if occlusion:
                values["Ambient_Occlusion"] = self.add("Height/Occlusion from Height", "Occlusion",
                                                       Height=self.relief, Strength=strength)
        values.update(more)
        shader = self.add("Shaders/Standard Surface", self.name + " Surface", Height=depth)
        for key, value in values.items():
            self.give(shader, key, value)
        self.output("Material", "material", shader)
        if height is not None:
            self.output("Height", "scalar", self.relief)

    def input(self, name, kind="color"):
        self.starts.append(name)
        return self.group.createInput(name, kind)

    def output(self, name, kind, source):
        end = self.group.createOutput(name, kind)
        self.give(end, end.inputs[0], source)
        self.ends.append(name)

    def lay_out(self):
        x = 0.0
        for _, backdrop, nodes in self.backdrops:
            for row, node in enumerate(nodes):
                node.position = (x + 40, 60 + row * 110)
            backdrop.position = (x, 0)
            backdrop.size = (320, 120 + 110 * len(nodes))
            for node in nodes:
                node.container = backdrop
            x += 700
        self.inside.arrange()
        self.group.reorderInputs(self.starts)
        self.group.reorderOutputs(self.ends)

    def write(self, path):
        self.lay_out()
        return self.group.writeType(path, self.category, self.name, self.help_text,
                                    self.aliases)
