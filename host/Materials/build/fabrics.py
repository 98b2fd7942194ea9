"""Cloth and skins: patterns of the patch, so that threads follow the cut of a garment."""


def leather(m):
    m.part("Grain")
    m.scale()
    bend = m.noise("Fractal Noise", "Grown", 9, Octaves=4)
    place = m.place("Hide Place", (1, 1, 1), (bend, "Vector"), 0.06)
    pebbles = m.noise("Worley Noise", "Pebbles", 24, Position=place, Feature="F2 minus F1", Seed=3)
    small = m.noise("Worley Noise", "Small Pebbles", 52, Position=place, Feature="F2 minus F1", Seed=5)
    pores = m.noise("Perlin Noise", "Pores", 90, Octaves=3, Seed=7)
    domes = m.levels("Domes", pebbles, 0.0, 0.42, gamma=1.6)
    small_domes = m.levels("Small Domes", small, 0.0, 0.5, gamma=1.4)
    folds = m.noise("Ridged Noise", "Folds", 1.8, Octaves=4, Sharpness=3.0, Roughness=0.45, Seed=2)
    creases = m.levels("Creases", folds, 0.55, 0.95)
    m.part("Dye")
    tone = m.tint("Leather Color", "The dye on what stands out", (0.155, 0.058, 0.026))
    depth = m.total("Grain Depth", (domes, 0.65), (small_domes, 0.35))
    blotch = m.noise("Clouds", "Uneven Dye", 1.6, Seed=9)
    dyed = m.merge("Dyed Hide", tone, m.levels("Dye in Grain", depth, to_low=0.42, to_high=1.08), mode="Multiply")
    clouded = m.merge("Clouded Hide", dyed, m.levels("Cloud Shade", blotch, 0.2, 0.8, 0.72, 1.15), mode="Multiply")
    m.part("Use")
    worn = m.knob("Wear", "How much the dye is rubbed off", 0.35)
    rubbed = m.noise("Grunge Scraped", "Rubbed", 1.8, Detail=0.7, Seed=6)
    tops = m.times("Rubbed Tops", m.levels("Tops", depth, 0.45, 0.95), m.mask("Rubbed Mask", m.merge("Where It Rubs", rubbed, blotch, mode="Lighten", amount=0.6), worn, 0.6, none=1.2, all_of_it=0.2))
    pale = m.merge("Worn Hide", clouded, (0.36, 0.19, 0.095), m.levels("Thin Wear", tops, to_high=0.7))
    base = m.merge("Dark Creases", pale, (0.025, 0.011, 0.006), m.levels("Crease Shade", creases, to_high=0.6))
    sheen = m.knob("Roughness", "How dull the leather is", 0.42, 0.1, 0.9)
    rough = m.total("Roughness of All", (sheen, 1), (m.levels("Valleys", depth, to_low=0.2, to_high=0.0), 1), (tops, 0.12))
    height = m.total("Heights", (domes, 0.09), (small_domes, 0.035), (creases, -0.2), (pores, 0.015))
    m.surface(base, rough, height, strength=1.0, depth=0.004)


def threads(m, kind, columns, warp, weft, bend_amount, **more):
    """A weave whose threads wander a little, and the noise by which they do."""
    bend = m.noise("Fractal Noise", "Wander", 12, Octaves=4)
    place = m.place("Cloth Place", (1, 1, 1), (bend, "Vector"), bend_amount)
    values = {"Columns": columns, "Rows": columns, "HeightVariation": 0.45, "Variation": 0.25}
    values.update(more)
    weave = m.pattern(kind, "Weave", UV=place, Color=warp, WeftColor=weft, **values)
    m.expose("Threads", "How many threads lie beside each other on a patch", weave, "Columns", 8, 400, ((weave, "Rows"),))
    m.expose("Warp Color", "The threads along the cloth", weave, "Color")
    m.expose("Weft Color", "The threads across it", weave, "WeftColor")
    return weave


def denim(m):
    m.space = "UV"
    m.part("Cloth")
    m.scale()
    weave = threads(m, "Weave Twill", 128, (0.022, 0.05, 0.135, 1.0), (0.42, 0.43, 0.44, 1.0), 0.006, Over=3, Under=1, Depth=0.85, Twist=0.6,
                    Gap=0.08, GapColor=(0.006, 0.012, 0.03, 1.0), Seed=5)
    slubs = m.noise("Perlin Noise", "Slubs", 1.0, Position=m.place("Along the Warp", (90, 4, 1)), Octaves=3, Seed=6)
    lint = m.noise("Fibres", "Lint", 42, Density=0.6, Width=0.03, Seed=3)
    uneven = m.merge("Uneven Indigo", weave, m.levels("Slub Shade", slubs, 0.2, 0.8, 0.6, 1.3), mode="Multiply")
    fuzzy = m.merge("Fuzzy Cloth", uneven, (0.20, 0.24, 0.31), m.levels("Lint Mask", lint, 0.5, 1.0, 0.0, 0.3))
    m.part("Washing")
    washed = m.knob("Washing", "How far washing and wearing have faded it", 0.4)
    clouds = m.noise("Clouds", "Faded Clouds", 2.2, Seed=8)
    creased = m.noise("Ridged Noise", "Whiskers", 3.0, Octaves=5, Sharpness=2.2, Seed=4)
    where = m.merge("Where It Fades", m.levels("Broad Fading", clouds, 0.2, 0.85), m.levels("Along Creases", creased, 0.4, 1.0), mode="Screen", amount=0.6)
    tops = m.levels("Thread Tops", (weave, "Height"), 0.3, 0.9, 0.35, 1.0)
    fades = m.times("Faded", m.times("Faded Tops", where, tops), washed)
    base = m.merge("Faded Denim", fuzzy, (0.40, 0.46, 0.54), m.levels("Fading", fades, to_high=0.85))
    rough = m.levels("Roughness", (weave, "Height"), to_low=0.95, to_high=0.8)
    height = m.total("Heights", ((weave, "Height"), 0.16), (slubs, 0.05), (creased, 0.12), (lint, 0.02))
    m.surface(base, rough, height, strength=1.1, depth=0.004)


def canvas(m):
    m.space = "UV"
    m.part("Cloth")
    m.scale()
    weave = threads(m, "Weave Plain", 84, (0.50, 0.425, 0.30, 1.0), (0.545, 0.47, 0.345, 1.0), 0.007, Depth=0.75, Twist=0.7, Gap=0.1,
                    GapColor=(0.10, 0.08, 0.05, 1.0), Seed=3)
    warp = m.noise("Perlin Noise", "Thick Warp", 1.0, Position=m.place("Along the Warp", (84, 3, 1)), Octaves=2, Seed=6)
    weft = m.noise("Perlin Noise", "Thick Weft", 1.0, Position=m.place("Along the Weft", (3, 84, 1)), Octaves=2, Seed=9)
    slubs = m.total("Slubs", (warp, 0.5), (weft, 0.5))
    linen = m.merge("Uneven Threads", weave, m.levels("Slub Shade", slubs, 0.25, 0.75, 0.7, 1.2), mode="Multiply")
    specks = m.noise("Dust", "Seed Husks", 26, Density=0.35, Size=0.25, Lint=0.6, Seed=4)
    husks = m.merge("Husks in Threads", linen, (0.14, 0.085, 0.04), m.levels("Husk Mask", specks, 0.3, 1.0, 0.0, 0.7))
    m.part("Use")
    dirty = m.knob("Stains", "How stained it is", 0.3)
    stains = m.times("Seen Stains", m.merge("Blots", m.noise("Stains", "Water Marks", 2.5, Seed=7), m.noise("Clouds", "Gray Clouds", 2.0, Seed=2),
                                            mode="Lighten", amount=0.6), dirty)
    base = m.merge("Stained Canvas", husks, (0.17, 0.125, 0.075), m.levels("Thin Stain", stains, to_high=0.65))
    rough = m.levels("Roughness", (weave, "Height"), to_low=0.96, to_high=0.82)
    height = m.total("Heights", ((weave, "Height"), 0.2), (slubs, 0.12))
    m.surface(base, rough, height, strength=1.1, depth=0.004)


def knit(m):
    m.space = "UV"
    m.part("Stitches")
    m.scale()
    bend = m.noise("Fractal Noise", "Loose Hands", 7, Octaves=4)
    place = m.place("Wool Place", (1, 1, 1), (bend, "Vector"), 0.012)
    stitches = m.pattern("Knit", "Stitches", UV=place, Columns=20, Rows=26, Slant=0.75, Twist=0.75, Gap=0.05, HeightVariation=0.4,
                         Color=(0.30, 0.055, 0.05, 1.0), GapColor=(0.03, 0.006, 0.006, 1.0), Variation=0.2, Seed=4)
    m.expose("Wool Color", "The wool", stitches, "Color")
    m.expose("Stitches Across", "How many stitches lie beside each other on a patch", stitches, "Columns", 4, 120)
    m.expose("Rows", "How many rows lie above each other on a patch", stitches, "Rows", 4, 160)
    m.part("Wool")
    hairs = m.noise("Fibres", "Hairs", 30, Density=0.95, Width=0.025, Bend=0.9, Seed=3)
    ply = m.noise("Perlin Noise", "Plies", 95, Octaves=3, Roughness=0.6, Seed=6)
    melange = m.knob("Melange", "How much hairs of the wool differ in color", 0.4)
    mixed = m.merge("Mixed Wool", stitches, m.mix("Melange Share", (1.0, 1.0, 1.0), m.ramp("Melange Tones", ply, (0.25, (0.4, 0.42, 0.5)), (0.75, (1.7, 1.6, 1.5))), melange),
                    mode="Multiply")
    fuzz = m.knob("Fuzz", "How many hairs stand out", 0.5)
    halo = m.times("Fuzz Mask", m.levels("Hair Mask", hairs, 0.35, 1.0), m.levels("Fuzz Strength", fuzz, to_high=0.55))
    light = m.merge("Light Hairs", stitches, (0.62, 0.5, 0.46), amount=0.35)
    base = m.merge("Fuzzy Wool", mixed, light, halo)
    rough = m.levels("Roughness", (stitches, "Height"), to_low=0.97, to_high=0.86)
    height = m.total("Heights", ((stitches, "Height"), 0.55), (ply, 0.05), (m.times("Standing Hairs", hairs, fuzz), 0.07))
    m.surface(base, rough, height, strength=1.1, depth=0.012)


MATERIALS = [
    ("Fabric/Leather", "Grained leather with creases, rubbed pale where it is touched.",
     ["hide", "skin", "sofa", "shoe", "bag", "worn"], leather),
    ("Fabric/Denim", "Twill of indigo and white threads, faded by washing along its creases.",
     ["jeans", "cloth", "twill", "cotton"], denim),
    ("Fabric/Canvas", "Plain weave of raw linen with slubs, husks and stains.",
     ["linen", "cloth", "sail", "tent", "sack"], canvas),
    ("Fabric/Knit", "Knitted wool with loose stitches and standing hairs.",
     ["wool", "sweater", "cloth", "winter"], knit),
]
