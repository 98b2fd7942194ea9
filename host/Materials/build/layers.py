"""Types of layers that are groups: built from what there is, so that one can look inside and change them."""

CHANNELS = ("Base Color", "Roughness", "Metallic", "Normal", "Displacement", "Emission", "Opacity", "Ambient Occlusion",
            "Clear Coat", "Clear Coat Roughness")


def blend_knobs(m, merge):
    m.expose("Blend Mode", "How Over goes onto the base", merge, "BlendMode")
    m.expose("Amount", "How much of it is seen", merge, "Amount")


def height_merge(m):
    base, over = m.input("Base"), m.input("Over")
    low, high = m.input("Base Height", "scalar"), m.input("Over Height", "scalar")
    mask = m.input("Mask", "scalar")
    m.part("Where Over Stands Out")
    there = m.math("Multiply", "Mask or All", mask, 1.0)
    share = m.add("Height/Height Blend", "By Height", A=base, B=over, HeightA=low, HeightB=high, Mask=there, Softness=0.1)
    m.part("Merge")
    merge = m.add("Layer/Merge", "Over where It Stands Out", Base=base, Over=over, Mask=(share, "Share"))
    blend_knobs(m, merge)
    m.expose("Softness", "How far heights may differ for both to show", share, "Softness")
    m.expose("Offset", "Raises Over", share, "Offset")
    m.output("Output", "color", merge)
    m.output("Height", "scalar", (share, "Height"))
    m.output("Share", "scalar", (share, "Share"))


def fill_layer(m):
    base, picture, mask = m.input("Base"), m.input("Fill"), m.input("Mask", "scalar")
    m.part("Fill")
    tone = m.color("Fill Color", (0.5, 0.5, 0.5, 1.0))
    m.expose("Color", "What the layer is filled with; a picture at Fill is tinted by it", tone, "Color")
    fill = m.add("Layer/Merge", "Picture in Color", BlendMode="Multiply", Base=tone, Over=picture)
    m.part("Mask")
    whole = m.math("Multiply", "Mask or All", mask, 1.0)
    ranged = m.levels("Mask Range", whole)
    m.part("Merge")
    merge = m.add("Layer/Merge", "Fill over Base", Base=base, Over=fill, Mask=ranged)
    blend_knobs(m, merge)
    m.expose("Mask Begin", "Where the mask is no brighter than this, nothing is filled", ranged, "InLow")
    m.expose("Mask End", "Where the mask is at least as bright as this, all is filled", ranged, "InHigh")
    m.output("Output", "color", merge)


def filter_layer(m):
    base, mask = m.input("Base"), m.input("Mask", "scalar")
    m.part("Filters")
    blur = m.add("Filter/Blur", "Blur", Input=base, Radius=0.0)
    sharpen = m.add("Filter/Sharpen", "Sharpen", Input=blur, Amount=0.0)
    tone = m.add("Adjust/HSL", "Hue and Saturation", Input=sharpen)
    contrast = m.add("Adjust/Brightness Contrast", "Brightness and Contrast", Input=tone)
    m.part("Merge")
    merge = m.add("Layer/Merge", "Filtered over Base", Base=base, Over=contrast, Mask=mask)
    m.expose("Blur", "How far what lies below is blurred, in texels of a patch that is 1024 wide", blur, "Radius", 0, 200)
    m.expose("Sharpen", "How much it is sharpened", sharpen, "Amount")
    m.expose("Hue", "Turns its colors, in degrees", tone, "Hue")
    m.expose("Saturation", "How colorful it becomes: 0 leaves it as it is", tone, "Saturation")
    m.expose("Brightness", "How much brighter it becomes", contrast, "Brightness")
    m.expose("Contrast", "How much differences grow", contrast, "Contrast")
    blend_knobs(m, merge)
    m.output("Output", "color", merge)


def material_merge(m):
    base, over = m.input("Base", "material"), m.input("Over", "material")
    mask = m.input("Mask", "scalar")
    m.part("Materials")
    below = m.add("Channel/Split Material", "Base Channels", Material=base)
    above = m.add("Channel/Split Material", "Over Channels", Material=over)
    m.part("Where Over Is")
    there = m.math("Multiply", "Mask and Amount", mask, 1.0)
    share = m.add("Height/Height Blend", "By Height", HeightA=(below, "Displacement"), HeightB=(above, "Displacement"), Mask=there,
                  Softness=0.1)
    chosen = m.add("Layer/Merge", "Mask by Height", Base=there, Over=(share, "Share"), Amount=1.0)
    m.part("Channels")
    channels = {name.replace(" ", "_"): m.add("Layer/Merge", name, Base=(below, name), Over=(above, name), Mask=chosen)
                for name in CHANNELS}
    m.part("Surface")
    shader = m.add("Shaders/Standard Surface", "Merged Material", **channels)
    m.expose("Amount", "How much of Over there is", there, "B", 0.0, 1.0)
    m.expose("By Height", "How far heights decide: 0 goes by the mask alone, 1 lets what is higher stand out", chosen, "Amount")
    m.expose("Softness", "How far heights may differ for both to show", share, "Softness")
    m.expose("Offset", "Raises Over", share, "Offset")
    m.output("Material", "material", shader)
    m.output("Height", "scalar", channels["Displacement"])
    m.output("Share", "scalar", chosen)


LAYERS = [
    ("Layer/Height Merge", "Puts one stream over another where its height stands out: sand in joints, snow on stones.",
     ["height blend", "layer", "snow", "sand"], height_merge),
    ("Layer/Fill Layer", "A layer of one color, or of a tinted picture, where a mask says.",
     ["solid", "paint", "layer", "color"], fill_layer),
    ("Layer/Filter Layer", "Filters what lies below, where a mask says; others can be put inside.",
     ["adjustment", "layer", "blur", "grade"], filter_layer),
    ("Layer/Material Merge", "Puts one material over another in all channels, by a mask and by their heights.",
     ["blend", "layer", "mix", "materials"], material_merge),
]
