"""Metals: colors are what they reflect, looked at from the front, scene-linear."""


def rusty_steel(m):
    m.part("Where It Rusts")
    m.scale()
    amount = m.knob("Rust", "How much of the steel has rusted", 0.62)
    blooms = m.noise("Grunge Rusty", "Blooms", 2, Detail=0.7, Amount=0.5, Seed=7)
    grit = m.noise("Perlin Noise", "Grit", 22, Octaves=6, Roughness=0.6, Seed=3)
    frayed = m.merge("Frayed Blooms", blooms, grit, mode="Overlay", amount=0.45)
    rust = m.mask("Rust Mask", frayed, amount, 0.2)
    bleeding = m.add("Filter/Blur", "Bleeding", Input=rust, Radius=24)
    m.part("Steel")
    tone = m.tint("Steel Color", "What the bare steel reflects", (0.53, 0.51, 0.49))
    mill = m.noise("Domain-Warped Noise", "Mill Scale", 2.5, Octaves=6, Amount=1.0, Seed=12)
    steel = m.merge("Steel", tone, m.levels("Uneven Steel", mill, to_low=0.45), mode="Multiply")
    stained = m.merge("Stained Steel", steel, (0.30, 0.16, 0.08), m.levels("Stain", bleeding, to_high=0.75))
    m.part("Rust")
    fresh = m.tint("Rust Color", "The rust where it is freshest", (0.34, 0.105, 0.028))
    flakes = m.noise("Grunge Porous", "Flakes", 8, Detail=0.8, Seed=5)
    tones = m.ramp("Old to Fresh", m.noise("Clouds", "Ages", 5, Seed=9), (0.1, (0.18, 0.16, 0.18)),
                   (0.5, (0.6, 0.52, 0.5)), (0.9, (1.05, 1.15, 1.3)))
    aged = m.merge("Aged Rust", fresh, tones, mode="Multiply")
    gritty = m.merge("Gritty Rust", aged, m.levels("Grit Shade", grit, 0.2, 0.8, 0.5, 1.0), mode="Multiply")
    dark = m.merge("Pitted Rust", gritty, (0.03, 0.014, 0.009), m.levels("Pits", flakes, 0.55, 0.95, 0.0, 0.85))
    m.part("Both Together")
    base = m.merge("Rust over Steel", stained, dark, rust)
    rough = m.mix("Roughness", m.levels("Steel Roughness", mill, to_low=0.3, to_high=0.5), 0.9, rust)
    crust = m.times("Crust", rust, m.levels("Crust Relief", grit, 0.1, 0.9, 0.35, 1.0))
    pits = m.times("Deep Pits", rust, flakes)
    height = m.total("Relief of Both", (mill, 0.02), (crust, 0.2), (pits, -0.08))
    m.surface(base, rough, height, strength=1.6, metallic=m.levels("Bare Metal", rust, to_low=1.0, to_high=0.05))


def galvanised(m):
    m.part("Spangle")
    m.scale()
    contrast = m.knob("Spangle", "How much crystals of zinc differ from each other", 0.5)
    warp = m.noise("Fractal Noise", "Bent Borders", 6, Octaves=3)
    place = m.place("Crystals Place", (1, 1, 1), (warp, "Vector"), 0.05)
    grains = m.noise("Worley Noise", "Crystals", 7, Position=place, Feature="Cell Id", Seed=2)
    small = m.noise("Worley Noise", "Small Crystals", 17, Position=place, Feature="Cell Id", Seed=6)
    ferns = m.noise("Crystal", "Ferns", 20, Detail=0.8, Seed=3)
    both = m.total("Facets", (grains, 0.5), (small, 0.25), (ferns, 0.25))
    edges = m.noise("Worley Noise", "Borders", 7, Position=place, Feature="Edges", Seed=2)
    m.part("Zinc")
    tone = m.tint("Zinc Color", "What the zinc reflects", (0.62, 0.64, 0.66))
    shade = m.levels("Facet Shade", both, 0.15, 0.85, 0.42, 1.15)
    flat = m.source(1.0, "Even")
    zinc = m.merge("Zinc", tone, m.mix("Shade", flat, shade, contrast), mode="Multiply")
    m.part("White Rust")
    amount = m.knob("White Rust", "How much chalky bloom has come with the rain", 0.25)
    bloom = m.merge("Bloom", m.noise("Grunge Spotted", "Spots", 2, Detail=0.8, Seed=8),
                    m.noise("Leaks", "Runs", 4, Length=12, Seed=3), mode="Lighten")
    chalk = m.mask("Chalk Mask", m.merge("Broken Bloom", bloom, ferns, mode="Overlay", amount=0.5), amount, 0.5)
    soft = m.levels("Thin Chalk", chalk, to_high=0.75)
    base = m.merge("Chalk over Zinc", zinc, (0.56, 0.57, 0.57), soft)
    m.part("Shine")
    polish = m.knob("Roughness", "How dull the zinc is", 0.34, 0.05, 0.9)
    facets = m.levels("Facet Roughness", both, 0.15, 0.85, -0.2, 0.2)
    bare = m.plus("Zinc Roughness", polish, m.times("Facet Difference", facets, contrast))
    rough = m.mix("Roughness with Chalk", bare, 0.85, soft)
    height = m.total("Heights", (both, 0.012), (edges, 0.01), (soft, 0.012))
    m.surface(base, rough, height, strength=0.6, metallic=m.levels("Bare Metal", soft, to_low=1.0, to_high=0.2))


def brushed_aluminium(m):
    m.part("Brushing")
    m.scale()
    brushing = m.knob("Brushing", "How deep the strokes of the brush are", 0.5)
    long = m.place("Along the Brush", (0.25, 40, 0.25))
    fine = m.place("Along the Hairs", (0.4, 110, 0.4))
    broad = m.noise("Perlin Noise", "Strokes", 3, Position=long, Octaves=4, Roughness=0.7, Seed=2)
    hairs = m.noise("Perlin Noise", "Hairs", 3, Position=fine, Octaves=3, Roughness=0.8, Seed=5)
    strokes = m.total("All Strokes", (broad, 0.3), (hairs, 0.7))
    m.part("Wear")
    scratched = m.knob("Scratches", "How many stray scratches there are", 0.3)
    scratches = m.noise("Scratches", "Stray Scratches", 5, Width=0.006, Density=0.45, Spread=1.0, Seed=4)
    lines = m.times("Seen Scratches", scratches, scratched)
    smudged = m.knob("Smudges", "How much it was touched", 0.35)
    smudge = m.times("Seen Smudges", m.noise("Grunge Smeared", "Smudges", 2.2, Seed=6), smudged)
    m.part("Metal")
    tone = m.tint("Aluminium Color", "What the metal reflects; anodised metal has other colors", (0.88, 0.885, 0.89))
    shade = m.levels("Stroke Shade", strokes, 0.25, 0.75, 0.55, 1.06)
    metal = m.merge("Brushed Metal", tone, shade, mode="Multiply", amount=1.0)
    base = m.merge("Smudged Metal", metal, (0.42, 0.41, 0.40), m.levels("Thin Smudge", smudge, to_high=0.35))
    polish = m.knob("Roughness", "How dull the metal is", 0.3, 0.05, 0.8)
    rough = m.total("Roughness of All", (polish, 1), (m.levels("Stroke Roughness", strokes, 0.25, 0.75, -0.12, 0.14), 1),
                    (smudge, 0.28), (lines, 0.15))
    cut = m.times("Depth of Strokes", strokes, m.levels("Stroke Depth", brushing, to_high=0.05))
    height = m.total("Heights", (cut, 1), (lines, -0.015))
    m.surface(base, rough, height, strength=0.7, metallic=1.0, occlusion=False, depth=0.002)


def copper_verdigris(m):
    m.part("Where It Is Green")
    m.scale()
    amount = m.knob("Verdigris", "How much of the copper has turned green", 0.5)
    runs = m.noise("Leaks", "Runs of Rain", 3, Length=16, Width=0.45, Density=0.8, Seed=4)
    patches = m.noise("Grunge Rusty", "Patches", 1.7, Detail=0.75, Seed=11)
    grain = m.noise("Perlin Noise", "Grain", 26, Octaves=5, Roughness=0.65, Seed=2)
    where = m.total("Where It Is Wet", (runs, 0.3), (patches, 0.5), (grain, 0.2))
    green = m.mask("Verdigris Mask", where, amount, 0.22, none=0.85)
    m.part("Copper")
    tone = m.tint("Copper Color", "What the bare copper reflects", (0.93, 0.58, 0.45))
    tarnish = m.knob("Tarnish", "How brown the bare copper has become", 0.55)
    clouds = m.noise("Domain-Warped Noise", "Clouds of Tarnish", 2, Amount=1.4, Seed=7)
    brown = m.ramp("Tarnish Tones", clouds, (0.15, (0.09, 0.035, 0.02)), (0.5, (0.30, 0.12, 0.06)),
                   (0.85, (0.55, 0.24, 0.12)))
    copper = m.merge("Tarnished Copper", tone, brown, m.times("Tarnish Mask", tarnish, m.levels(
        "Uneven Tarnish", clouds, 0.2, 0.9, 1.0, 0.45)))
    m.part("Verdigris")
    salt = m.tint("Verdigris Color", "The green of the old salts", (0.17, 0.42, 0.34))
    crumbs = m.noise("Grunge Porous", "Crumbs", 9, Detail=0.9, Seed=3)
    tones = m.ramp("Pale to Deep", m.noise("Clouds", "Ages", 3.5, Seed=9), (0.1, (0.55, 0.72, 0.8)),
                   (0.5, (1, 1, 1)), (0.9, (1.9, 1.45, 1.45)))
    patina = m.merge("Patina", salt, tones, mode="Multiply")
    dirty = m.merge("Dirty Patina", patina, (0.05, 0.07, 0.055), m.levels("Dark Crumbs", crumbs, 0.5, 1.0, 0.0, 0.7))
    m.part("Both Together")
    base = m.merge("Verdigris over Copper", copper, dirty, green)
    rough = m.mix("Roughness", m.levels("Copper Roughness", clouds, to_low=0.42, to_high=0.2), 0.92, green)
    crust = m.times("Crust", green, m.levels("Crust Relief", grain, 0.1, 0.9, 0.4, 1.0))
    height = m.total("Heights", (clouds, 0.03), (crust, 0.16), (m.times("Crumbling", green, crumbs), -0.07))
    m.surface(base, rough, height, strength=1.4, metallic=m.levels("Bare Metal", green, to_low=1.0, to_high=0.0))


def gold_leaf(m):
    m.space = "UV"
    m.part("Leaves")
    m.scale()
    bend = m.noise("Fractal Noise", "Uneven Hands", 7, Octaves=4)
    place = m.place("Leaf Place", (1, 1, 1), (bend, "Vector"), 0.022)
    leaves = m.pattern("Stack Bond", "Leaves", UV=place, Columns=5, Rows=5, Gap=0.02, Bevel=0.0,
                       HeightVariation=1.0, Seed=5)
    m.expose("Leaves Across", "How many leaves lie beside each other on a patch", leaves, "Columns", 1, 40,
             ((leaves, "Rows"),))
    m.part("Wear")
    worn = m.knob("Wear", "How much of the gold is rubbed off", 0.26)
    rubbed = m.noise("Grunge Scraped", "Rubbed", 3, Detail=0.8, Seed=3)
    cracks = m.noise("Voronoi Cracks", "Cracks", 5, Width=0.012, Slope=0.04, Distortion=0.7, FineCracks=0.8, Seed=9)
    open_cracks = m.levels("Open Cracks", cracks, to_high=0.75)
    lost = m.merge("Lost Gold", rubbed, open_cracks, mode="Lighten")
    seams = m.merge("Lost at Seams", lost, m.levels("Seams", (leaves, "Mask"), to_low=0.62, to_high=0.0), mode="Lighten")
    bare = m.mask("Bare Mask", seams, worn, 0.12, none=1.05, all_of_it=0.2)
    m.part("Gold")
    tone = m.tint("Gold Color", "What the gold reflects", (1.0, 0.71, 0.29))
    wrinkles = m.noise("Ridged Noise", "Wrinkles", 6, Octaves=6, Roughness=0.55, Sharpness=1.6, Seed=6)
    each = m.levels("Each Leaf", (leaves, "Random"), to_low=0.82, to_high=1.0)
    gold = m.merge("Gold", tone, each, mode="Multiply")
    aged = m.merge("Aged Gold", gold, (0.36, 0.19, 0.06), m.levels("Age", wrinkles, 0.35, 1.0, 0.0, 0.5))
    m.part("Ground")
    bole = m.tint("Ground Color", "The clay below the gold", (0.24, 0.045, 0.022))
    chalk = m.noise("Perlin Noise", "Chalk", 40, Octaves=4, Seed=8)
    ground = m.merge("Ground", bole, m.levels("Chalk Shade", chalk, to_low=0.55, to_high=1.2), mode="Multiply")
    m.part("Both Together")
    base = m.merge("Gold over Ground", aged, ground, bare)
    creased = m.knob("Wrinkles", "How crumpled the leaves lie", 0.5)
    rough = m.mix("Roughness", m.levels("Gold Roughness", wrinkles, to_low=0.16, to_high=0.36), 0.75, bare)
    creases = m.times("Deep Wrinkles", wrinkles, m.levels("Wrinkle Depth", creased, to_high=0.3))
    height = m.total("Heights", (creases, 1), ((leaves, "Random"), 0.05), (bare, -0.06), (chalk, 0.02))
    m.surface(base, rough, height, strength=0.9, metallic=m.levels("Bare Metal", bare, to_low=1.0, to_high=0.0), depth=0.005)


def painted_metal(m):
    m.part("Where It Is Worn")
    m.scale()
    wear = m.knob("Edge Wear", "How far the paint is gone from edges of the object", 0.5)
    chips = m.knob("Chips", "How much has chipped off elsewhere", 0.22)
    bends = m.add("Geometry/Curvature", "Edges of the Object", Radius=0.03)
    ragged = m.noise("Perlin Noise", "Ragged", 14, Octaves=6, Roughness=0.65, Seed=2)
    dents = m.noise("Grunge Rusty", "Knocks", 2.6, Detail=0.8, Seed=19)
    edge = m.times("Worn Edges", (bends, "Edges"), m.levels("Wear Reach", wear, to_high=1.0))
    edges = m.merge("Ragged Edges", m.levels("Strong Edges", edge, 0.0, 0.6), ragged, mode="Multiply")
    knocks = m.mask("Knock Mask", m.merge("Ragged Knocks", dents, ragged, mode="Overlay", amount=0.5), chips, 0.03, none=0.92,
                    all_of_it=0.25)
    bare = m.merge("Bare Mask", m.add("Adjust/Threshold", "Edge Mask", Input=edges, Threshold=0.28, Softness=0.06),
                   knocks, mode="Lighten")
    around = m.add("Filter/Blur", "Around Chips", Input=bare, Radius=7)
    primer = m.add("Adjust/Threshold", "Primer Mask", Input=around, Threshold=0.22, Softness=0.08)
    m.part("Paint")
    tone = m.tint("Paint Color", "The paint where it is new", (0.03, 0.15, 0.24))
    sun = m.noise("Clouds", "Bleaching", 1.6, Seed=7)
    paint = m.merge("Bleached Paint", tone, (0.55, 0.56, 0.55), m.levels("Bleached", sun, 0.3, 1.0, 0.0, 0.12))
    grime_amount = m.knob("Grime", "How dirty it has become", 0.4)
    streaks = m.merge("Dirt", m.noise("Leaks", "Streaks", 3, Length=14, Width=0.3, Seed=6),
                      m.noise("Grunge Smeared", "Smears", 2, Seed=4), mode="Lighten")
    grime = m.times("Grime Mask", streaks, grime_amount)
    dirty = m.merge("Dirty Paint", paint, (0.055, 0.045, 0.032), m.levels("Thin Grime", grime, to_high=0.7))
    m.part("What Lies Below")
    undercoat = m.merge("Primer over Rust", dirty, (0.22, 0.075, 0.045), primer)
    mill = m.noise("Domain-Warped Noise", "Mill Scale", 4, Seed=8)
    steel = m.ramp("Steel and Rust", mill, (0.2, (0.14, 0.055, 0.025)), (0.45, (0.30, 0.24, 0.2)), (0.7, (0.5, 0.49, 0.47)))
    base = m.merge("Paint over Steel", undercoat, steel, bare)
    m.part("Shine")
    gloss = m.knob("Roughness", "How dull the paint is", 0.32, 0.05, 0.9)
    painted = m.total("Paint Roughness", (gloss, 1), (grime, 0.35), (m.levels("Orange Peel Roughness", ragged, to_high=0.06), 1))
    rough = m.mix("Roughness of All", painted, m.levels("Steel Roughness", mill, to_low=0.75, to_high=0.35), bare)
    peel = m.noise("Perlin Noise", "Orange Peel", 30, Octaves=2, Seed=9)
    coat = m.levels("Coats of Paint", around, 0.1, 0.6, 1.0, 0.0)
    height = m.total("Heights", (coat, 0.1), (m.times("Scaly Steel", bare, mill), 0.02), (peel, 0.006))
    metal = m.times("Bare Metal", bare, m.levels("Clean Steel", mill, 0.3, 0.55))
    m.surface(base, rough, height, strength=1.6, metallic=metal, depth=0.004)


MATERIALS = [
    ("Metal/Rusty Steel", "Bare steel that rusts in blooms: a dull crust with pits over gray metal, which it stains around.",
     ["rust", "iron", "worn", "old", "outdoor"], rusty_steel),
    ("Metal/Galvanised Steel", "Sheet steel in a coat of zinc, whose crystals show, with a chalky bloom where rain stood.",
     ["zinc", "spangle", "sheet", "bucket", "outdoor"], galvanised),
    ("Metal/Brushed Aluminium", "Aluminium that was brushed in one direction, with stray scratches and smudges of hands.",
     ["aluminum", "anodised", "stainless", "clean", "device"], brushed_aluminium),
    ("Metal/Copper with Verdigris", "Copper that has become brown, then green where water runs: roofs, statues, boilers.",
     ["patina", "bronze", "roof", "statue", "old"], copper_verdigris),
    ("Metal/Gold Leaf", "Leaves of gold on red clay, wrinkled and rubbed: frames, icons, ornaments.",
     ["gilding", "gilded", "ornament", "frame", "precious"], gold_leaf),
    ("Metal/Painted Metal", "Painted steel whose paint is gone from the edges of the object and chipped elsewhere, down to primer and rust.",
     ["paint", "edge wear", "chipped", "machine", "worn"], painted_metal),
]
