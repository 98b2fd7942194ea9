"""What walls and floors are made of."""


def concrete(m):
    m.part("Cast")
    m.scale()
    tone = m.tint("Concrete Color", "The concrete where it is dry and clean", (0.36, 0.345, 0.32))
    clouds = m.noise("Clouds", "Clouds", 1.4, Octaves=7, Seed=3)
    mottle = m.noise("Perlin Noise", "Mottle", 7, Octaves=6, Roughness=0.6, Seed=8)
    sand = m.noise("Perlin Noise", "Sand", 60, Octaves=4, Roughness=0.7, Seed=5)
    shade = m.total("Shade", (clouds, 0.45), (mottle, 0.35), (sand, 0.2))
    cast = m.merge("Cast Concrete", tone, m.levels("Uneven", shade, 0.25, 0.75, 0.72, 1.12), mode="Multiply")
    m.part("Air Holes")
    holed = m.knob("Air Holes", "How many bubbles of air broke open at the surface", 0.4)
    cells = m.noise("Worley Noise", "Bubbles", 9, Seed=4)
    chosen = m.add("Adjust/Threshold", "Chosen Bubbles", Input=(cells, "Cell Id"), Softness=0.0,
                   Threshold=m.levels("Bubble Limit", holed, to_low=1.0, to_high=0.35))
    size = m.levels("Bubble Sizes", cells, 0.06, 0.16, 1.0, 0.0)
    holes = m.times("Holes", size, chosen)
    m.part("Age")
    cracked = m.knob("Cracks", "How far hairline cracks are open", 0.3)
    cracks = m.noise("Voronoi Cracks", "Cracks", 0.9, Width=0.006, Slope=0.014, Distortion=0.9, FineCracks=0.15, Seed=7)
    faded = m.times("Broken Cracks", cracks, m.levels("Where Cracks Are", clouds, 0.45, 0.6))
    open_cracks = m.times("Open Cracks", faded, cracked)
    damp = m.knob("Stains", "How much water has stained it", 0.35)
    stains = m.merge("Water Marks", m.noise("Stains", "Stains", 1.5, Seed=2), m.noise("Leaks", "Runs", 2.5, Length=15, Seed=9),
                     mode="Lighten")
    wet = m.times("Stained", stains, damp)
    stained = m.merge("Stained Concrete", cast, (0.14, 0.125, 0.105), m.levels("Thin Stain", wet, to_high=0.7))
    pitted = m.merge("Holes in Concrete", stained, (0.07, 0.065, 0.06), m.levels("Dark Holes", holes, 0.0, 0.6, 0.0, 0.8))
    base = m.merge("Cracks in Concrete", pitted, (0.05, 0.045, 0.04), open_cracks)
    rough = m.total("Roughness", (m.levels("Dry Roughness", shade, 0.2, 0.8, 0.72, 0.92), 1), (wet, -0.18))
    height = m.total("Heights", (mottle, 0.1), (sand, 0.05), (holes, -0.35), (open_cracks, -0.25), (clouds, 0.1))
    m.surface(base, rough, height, strength=1.3)


def plaster(m):
    m.part("Trowel")
    m.scale()
    tone = m.tint("Plaster Color", "The wash on the plaster", (0.66, 0.56, 0.42))
    strokes = m.noise("Curl Noise", "Trowel Strokes", 2.2, Octaves=4, Amount=0.8, Seed=3)
    ridges = m.noise("Ridged Noise", "Edges of Strokes", 2.6, Octaves=5, Sharpness=2.0, Seed=5)
    grain = m.noise("Perlin Noise", "Grain", 45, Octaves=4, Roughness=0.7, Seed=6)
    coat = m.total("Plaster Relief", (strokes, 0.6), (ridges, 0.25), (grain, 0.1))
    m.part("Wash")
    clouds = m.noise("Clouds", "Thin Wash", 1.5, Seed=9)
    faded = m.knob("Fading", "How far the wash has faded in clouds", 0.45)
    pale = m.merge("Pale Plaster", tone, (0.74, 0.70, 0.63), m.times("Faded", m.levels("Faded Clouds", clouds, 0.25, 0.85), faded))
    wash = m.merge("Wash", pale, m.levels("Wash Shade", coat, 0.2, 0.7, 0.84, 1.04), mode="Multiply")
    m.part("Damage")
    lost = m.knob("Damage", "How much plaster has fallen off", 0.32)
    spots = m.merge("Weak Spots", m.noise("Domain-Warped Noise", "Weak Places", 1.3, Octaves=6, Seed=14), ridges, mode="Overlay", amount=0.25)
    fallen = m.mask("Fallen", spots, lost, 0.015, none=1.0, all_of_it=0.15)
    rim = m.add("Filter/Blur", "Around Damage", Input=fallen, Radius=10)
    cracks = m.noise("Voronoi Cracks", "Cracks", 1.6, Width=0.008, Slope=0.02, Distortion=0.8, FineCracks=0.6, Seed=2)
    near = m.times("Cracks by Damage", cracks, m.levels("Cracked Places", spots, 0.45, 0.75))
    seen = m.times("Seen Cracks", near, m.levels("Crack Strength", lost, 0.0, 0.4))
    under = m.ramp("Ground Coat", grain, (0.2, (0.22, 0.18, 0.14)), (0.8, (0.40, 0.35, 0.29)))
    dirty = m.merge("Dusty Rims", wash, (0.36, 0.29, 0.21), m.levels("Dust", rim, 0.05, 0.7, 0.0, 0.75))
    lined = m.merge("Cracked Plaster", dirty, (0.12, 0.09, 0.065), m.levels("Dark Cracks", seen, to_high=0.85))
    base = m.merge("Ground below Plaster", lined, under, fallen)
    rough = m.mix("Roughness", m.levels("Plaster Roughness", grain, to_low=0.78, to_high=0.9), 0.95, fallen)
    height = m.total("Heights", (coat, 0.13), (fallen, -0.28), (seen, -0.12), (m.times("Rough Ground", fallen, grain), 0.12))
    m.surface(base, rough, height, strength=1.5)


def brick(m):
    m.space = "UV"
    m.part("Bond")
    m.scale()
    bend = m.noise("Fractal Noise", "Hand Made", 22, Octaves=4, Gain=0.55)
    place = m.place("Wall Place", (1, 1, 1), (bend, "Vector"), 0.006)
    bond = m.pattern("Running Bond", "Bond", UV=place, Columns=5, Rows=16, Gap=0.13, Bevel=0.35, HeightVariation=0.5,
                     Variation=0.0, Seed=4)
    m.expose("Bricks Across", "How many bricks lie beside each other on a patch", bond, "Columns", 1, 60)
    m.expose("Courses", "How many courses lie above each other on a patch", bond, "Rows", 1, 200)
    m.expose("Joint", "How wide joints are, as a part of a brick's height", bond, "Gap", 0.02, 0.5)
    m.part("Bricks")
    tone = m.tint("Brick Color", "The clay as most bricks show it", (0.34, 0.095, 0.05))
    vary = m.knob("Variation", "How much bricks differ by where they lay in the kiln", 0.6)
    kiln = m.ramp("Kiln", (bond, "Random"), (0.0, (0.30, 0.30, 0.42)), (0.3, (0.75, 0.65, 0.62)), (0.6, (1, 1, 1)),
                  (0.85, (1.3, 1.7, 1.6)), (1.0, (1.55, 2.6, 2.9)))
    burnt = m.merge("Fired Clay", tone, m.mix("Kiln Share", (1.0, 1.0, 1.0), kiln, vary), mode="Multiply")
    pits = m.noise("Grunge Porous", "Pits", 9, Detail=0.8, Seed=3)
    sand = m.noise("Perlin Noise", "Sand", 90, Octaves=4, Roughness=0.7, Seed=7)
    faces = m.noise("Clouds", "Faces", 8, Seed=5)
    shaded = m.merge("Sandy Clay", burnt, m.total("Clay Shade", (m.levels("Sand Shade", sand, 0.2, 0.8, 0.75, 1.15), 0.7), (faces, 0.5)),
                     mode="Multiply")
    clay = m.merge("Pitted Clay", shaded, (0.09, 0.035, 0.025), m.levels("Dark Pits", pits, 0.45, 0.95, 0.0, 0.7))
    m.part("Mortar")
    lime = m.tint("Mortar Color", "The mortar in the joints", (0.37, 0.34, 0.29))
    mortar = m.merge("Sandy Mortar", lime, m.levels("Mortar Shade", sand, 0.15, 0.85, 0.6, 1.15), mode="Multiply")
    wall = m.merge("Bricks in Mortar", mortar, clay, (bond, "Mask"))
    m.part("Weather")
    bloom_amount = m.knob("Efflorescence", "How much salt has bloomed on the wall", 0.18)
    bloom = m.mask("Salt Mask", m.merge("Patchy Salt", m.noise("Clouds", "Damp Places", 2, Seed=8), sand, mode="Overlay", amount=0.7),
                   bloom_amount, 0.3, none=1.0)
    base = m.merge("Salt on Wall", wall, (0.62, 0.6, 0.56), m.levels("Thin Salt", bloom, to_high=0.6))
    rough = m.mix("Roughness", 0.93, m.levels("Clay Roughness", pits, to_low=0.74, to_high=0.9), (bond, "Mask"))
    pitted = m.times("Pits of Bricks", pits, (bond, "Mask"))
    height = m.total("Heights", ((bond, "Height"), 0.5), (pitted, -0.1), (sand, 0.06), (faces, 0.08))
    m.surface(base, rough, height, strength=1.5, depth=0.012)


def marble(m):
    m.part("Flow")
    m.scale()
    drift = m.noise("Fractal Noise", "Drift", 1.2, Octaves=5, Gain=0.5)
    place = m.place("Bent Place", (1, 1, 1), (drift, "Vector"), 0.55)
    slant = m.place("Slanted Place", (1.0, 0.45, 1.0), (drift, "Vector"), 0.35)
    clouds = m.noise("Domain-Warped Noise", "Clouds", 1.1, Octaves=6, Amount=1.2, Seed=4)
    m.part("Veins")
    veined = m.knob("Veins", "How strong veins are", 0.7)
    wide = m.noise("Ridged Noise", "Wide Veins", 1.3, Position=slant, Octaves=6, Sharpness=3.2, Roughness=0.45, Contrast=0.0, Seed=3)
    fine = m.noise("Ridged Noise", "Fine Veins", 3.4, Position=place, Octaves=5, Sharpness=4.0, Roughness=0.4, Contrast=0.0, Seed=8)
    strong = m.levels("Strong Veins", wide, 0.26, 0.8)
    thin = m.levels("Thin Veins", fine, 0.3, 0.85, 0.0, 0.75)
    there = m.times("Thin Veins in Places", thin, m.levels("Places", clouds, 0.3, 0.6))
    veins = m.merge("Both Veins", strong, there, mode="Screen")
    m.part("Stone")
    tone = m.tint("Stone Color", "The stone between veins", (0.79, 0.775, 0.745))
    vein_tone = m.tint("Vein Color", "Veins where they are strongest", (0.13, 0.125, 0.13))
    warm = m.merge("Clouded Stone", tone, (0.50, 0.50, 0.51), m.levels("Gray Clouds", clouds, 0.4, 0.9, 0.0, 0.7))
    sugar = m.noise("Worley Noise", "Crystals", 70, Feature="Cell Id", Seed=2)
    stone = m.merge("Crystalline Stone", warm, m.levels("Crystal Shade", sugar, to_low=0.93), mode="Multiply")
    rust = m.merge("Warm Veins", stone, (0.50, 0.34, 0.17), m.levels("Iron", strong, 0.05, 0.5, 0.0, 0.28))
    base = m.merge("Veined Stone", rust, vein_tone, m.times("Vein Mask", veins, veined))
    m.part("Polish")
    polish = m.knob("Roughness", "0.1 is polished, 0.5 honed", 0.13, 0.03, 0.8)
    worn = m.knob("Etching", "How much spills and steps have dulled the polish", 0.2)
    spill = m.times("Etched", m.noise("Grunge Smeared", "Spills", 1.6, Seed=5), worn)
    rough = m.total("Roughness of All", (polish, 1), (spill, 0.45), (veins, 0.05))
    height = m.total("Heights", (veins, -0.02), (sugar, 0.004))
    m.surface(base, rough, height, strength=0.7, occlusion=False, depth=0.002)


def granite(m):
    m.part("Grains")
    m.scale()
    bend = m.noise("Fractal Noise", "Bent Grains", 14, Octaves=3)
    place = m.place("Grain Place", (1, 1, 1), (bend, "Vector"), 0.05)
    large = m.noise("Worley Noise", "Feldspar", 13, Position=place, Feature="Cell Id", Seed=3)
    middle = m.noise("Worley Noise", "Quartz", 26, Position=place, Feature="Cell Id", Seed=5)
    small = m.noise("Worley Noise", "Mica", 40, Position=place, Feature="Cell Id", Seed=7)
    inside = m.noise("Perlin Noise", "In Grains", 60, Octaves=4, Roughness=0.7, Seed=2)
    m.part("Minerals")
    tone = m.tint("Feldspar Color", "The mineral that gives the stone its color", (0.44, 0.235, 0.17))
    quartz_tone = m.tint("Quartz Color", "The glassy grains", (0.36, 0.35, 0.34))
    feldspar = m.merge("Feldspar Grains", tone, m.levels("Feldspar Shade", large, to_low=0.55, to_high=1.35), mode="Multiply")
    quartz = m.merge("Quartz Grains", quartz_tone, m.levels("Quartz Shade", middle, 0.5, 1.0, 0.6, 1.4), mode="Multiply")
    quartzes = m.add("Adjust/Threshold", "Quartz Mask", Input=middle, Threshold=0.55, Softness=0.02)
    both = m.merge("Quartz in Feldspar", feldspar, quartz, quartzes)
    dark = m.knob("Mica", "How many black grains there are", 0.5)
    black = m.add("Adjust/Threshold", "Mica Mask", Input=small, Softness=0.02,
                  Threshold=m.levels("Mica Limit", dark, to_low=1.0, to_high=0.55))
    stone = m.merge("Mica in Stone", both, (0.018, 0.018, 0.02), black)
    base = m.merge("Stone", stone, m.levels("Grain Shade", inside, 0.2, 0.8, 0.78, 1.1), mode="Multiply")
    m.part("Polish")
    polish = m.knob("Roughness", "0.1 is polished, 0.8 is flamed", 0.16, 0.05, 0.95)
    rough = m.total("Roughness of All", (polish, 1), (black, 0.1), (inside, 0.06))
    flamed = m.levels("Flamed", polish, 0.1, 0.9, 0.05, 1.0)
    height = m.times("Heights", m.total("Grain Heights", (large, 0.12), (black, -0.1), (inside, 0.12), (middle, 0.08)), flamed)
    m.surface(base, rough, height, strength=1.0, depth=0.006)


def sandstone(m):
    m.part("Layers")
    m.scale()
    drift = m.noise("Fractal Noise", "Drift", 1.1, Octaves=5)
    place = m.place("Layer Place", (0.35, 3.2, 0.35), (drift, "Vector"), 0.3)
    beds = m.noise("Perlin Noise", "Beds", 1.6, Position=place, Octaves=6, Roughness=0.62, Seed=4)
    sand = m.noise("Perlin Noise", "Sand", 75, Octaves=3, Roughness=0.75, Seed=6)
    grains = m.noise("White Noise", "Grains", 220, Seed=2)
    banded = m.knob("Layers", "How much the beds of sand differ in color", 0.65)
    m.part("Stone")
    tone = m.tint("Stone Color", "The stone as a whole", (0.52, 0.33, 0.18))
    tones = m.ramp("Bed Tones", beds, (0.2, (0.55, 0.38, 0.3)), (0.38, (1.15, 1.1, 1.0)), (0.46, (0.8, 0.6, 0.5)),
                   (0.55, (1.2, 1.3, 1.4)), (0.63, (0.95, 0.8, 0.7)), (0.8, (0.6, 0.42, 0.34)))
    bands = m.merge("Banded Stone", tone, m.mix("Bands", (1.0, 1.0, 1.0), tones, banded), mode="Multiply")
    speckled = m.merge("Grains of Sand", bands, m.total("Grain Shade", (m.levels("Sand Shade", sand, 0.2, 0.8, 0.5, 0.85), 1),
                                                        (grains, 0.3)), mode="Multiply")
    m.part("Weathering")
    eaten = m.knob("Weathering", "How far wind and salt have eaten into softer beds", 0.5)
    hollows = m.noise("Worley Noise", "Honeycombs", 5, Seed=9)
    soft_beds = m.levels("Soft Beds", beds, 0.5, 0.6)
    combs = m.times("Eaten", m.times("Combs in Soft Beds", m.levels("Comb Shape", hollows, 0.05, 0.45, 1.0, 0.0), soft_beds), eaten)
    base = m.merge("Shaded Hollows", speckled, (0.10, 0.052, 0.028), m.levels("Hollow Shade", combs, to_high=0.65))
    rough = m.levels("Roughness", sand, to_low=0.82, to_high=0.97)
    steps = m.times("Bed Steps", beds, m.levels("Step Depth", eaten, to_low=0.08, to_high=0.4))
    height = m.total("Heights", (steps, 1), (combs, -0.4), (sand, 0.06), (grains, 0.015))
    m.surface(base, rough, height, strength=1.5)


def cobbles(m):
    m.space = "UV"
    m.part("Stones")
    m.scale()
    bend = m.noise("Fractal Noise", "Hewn", 26, Octaves=3)
    place = m.place("Street Place", (1, 1, 1), (bend, "Vector"), 0.008)
    stones = m.pattern("Cobbles", "Stones", UV=place, Columns=9, Jitter=0.55, Dome=0.75, Rounding=0.55, Gap=0.14, Bevel=0.5,
                       HeightVariation=0.35, Variation=0.0, Seed=6)
    m.expose("Stones Across", "How many stones lie beside each other on a patch", stones, "Columns", 2, 60)
    m.expose("Joint", "How far stones lie apart", stones, "Gap", 0.02, 0.5)
    tone = m.tint("Stone Color", "The stone as most of it is", (0.19, 0.18, 0.17))
    kinds = m.ramp("Kinds of Stone", (stones, "Random"), (0.0, (0.45, 0.47, 0.52)), (0.4, (0.9, 0.9, 0.92)), (0.7, (1.2, 1.1, 1.0)),
                   (1.0, (1.75, 1.5, 1.25)))
    mottle = m.noise("Domain-Warped Noise", "Mottle", 14, Octaves=6, Seed=3)
    grain = m.noise("Perlin Noise", "Grain", 80, Octaves=4, Roughness=0.7, Seed=5)
    kind = m.merge("Each Stone", tone, kinds, mode="Multiply")
    stone = m.merge("Mottled Stone", kind, m.total("Stone Shade", (m.levels("Mottle Shade", mottle, 0.2, 0.8, 0.4, 0.75), 1),
                                                   (grain, 0.5)), mode="Multiply")
    m.part("Joints")
    moss_amount = m.knob("Moss", "How much moss grows between the stones", 0.5)
    tufts = m.noise("Billow Noise", "Tufts", 34, Octaves=5, Seed=8)
    damp = m.noise("Clouds", "Damp Places", 2.5, Seed=2)
    earth = m.ramp("Earth", grain, (0.2, (0.035, 0.027, 0.019)), (0.8, (0.13, 0.105, 0.075)))
    green = m.ramp("Moss Tones", tufts, (0.1, (0.012, 0.02, 0.006)), (0.5, (0.05, 0.085, 0.018)), (0.9, (0.13, 0.17, 0.04)))
    low = m.levels("Low Places", (stones, "Height"), 0.0, 0.55, 1.0, 0.0)
    grows = m.mask("Moss Mask", m.total("Where Moss Grows", (low, 0.55), (damp, 0.3), (tufts, 0.15)), moss_amount, 0.1, none=1.05, all_of_it=0.3)
    street = m.merge("Stones in Earth", earth, stone, (stones, "Mask"))
    base = m.merge("Moss on Street", street, green, grows)
    m.part("Wear")
    walked = m.knob("Polish", "How smooth wheels and feet have made the tops", 0.45)
    tops = m.times("Polished Tops", m.levels("Tops", (stones, "Height"), 0.55, 1.0), walked)
    dry = m.total("Stone Roughness", (m.levels("Rough Stone", mottle, to_low=0.72, to_high=0.9), 1), (tops, -0.42))
    rough = m.mix("Roughness", m.mix("Stone and Earth", 0.95, dry, (stones, "Mask")), 0.95, grows)
    height = m.total("Heights", ((stones, "Height"), 0.75), (mottle, 0.07), (grain, 0.035), (m.times("Moss Height", grows, tufts), 0.16))
    m.surface(base, rough, height, strength=1.6, depth=0.02)


MATERIALS = [
    ("Stone/Concrete", "Cast concrete with open bubbles, hairline cracks and marks of water.",
     ["cement", "wall", "floor", "gray", "building"], concrete),
    ("Stone/Plaster", "Plaster from the trowel with a faded wash, fallen off in places.",
     ["stucco", "render", "wall", "paint", "old"], plaster),
    ("Stone/Brick Wall", "Fired bricks in a running bond with sandy mortar and a bloom of salt.",
     ["bricks", "masonry", "clay", "building"], brick),
    ("Stone/Marble", "Polished white marble with veins that flow.",
     ["vein", "polished", "floor", "statue"], marble),
    ("Stone/Granite", "Grains of feldspar, quartz and mica, polished or flamed.",
     ["speckled", "polished", "kitchen", "floor"], granite),
    ("Stone/Sandstone", "Beds of sand in bands, which wind has eaten into.",
     ["layers", "strata", "desert", "cliff"], sandstone),
    ("Stone/Cobbles", "Cobblestones in earth with moss in the joints and tops that feet have polished.",
     ["cobblestone", "street", "paving", "moss"], cobbles),
]
