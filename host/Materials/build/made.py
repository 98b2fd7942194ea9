"""What is made in factories and kilns."""


def rubber(m):
    m.part("Mould")
    m.scale()
    tone = m.tint("Rubber Color", "The rubber where it is clean", (0.022, 0.021, 0.021))
    grain = m.noise("Perlin Noise", "Mould Grain", 70, Octaves=3, Roughness=0.7, Seed=3)
    uneven = m.noise("Domain-Warped Noise", "Uneven", 2.4, Seed=6)
    m.part("Age")
    aged = m.knob("Age", "How gray and cracked the rubber has become", 0.35)
    bloom = m.times("Bloom", m.levels("Bloom Clouds", m.noise("Clouds", "Gray Clouds", 1.8, Seed=8), 0.2, 0.8, 0.3, 1.0), aged)
    gray = m.merge("Grayed Rubber", tone, (0.13, 0.125, 0.115), m.levels("Bloom Mask", bloom, to_high=0.6))
    cracks = m.noise("Voronoi Cracks", "Perished", 9, Width=0.012, Slope=0.05, Distortion=0.8, FineCracks=0.8, Seed=5)
    open_cracks = m.times("Open Cracks", m.times("Cracks in Places", cracks, m.levels("Places", uneven, 0.45, 0.7)), aged)
    m.part("Dust and Scuffs")
    dirty = m.knob("Dust", "How much dust lies on it", 0.35)
    dust = m.times("Seen Dust", m.merge("Dust", m.noise("Dust", "Specks", 14, Density=0.6, Size=0.4, Seed=2), m.noise("Grunge Smeared", "Wiped Dust", 1.7, Seed=4),
                                        mode="Screen"), dirty)
    scuffed = m.knob("Scuffs", "How much it was dragged and scraped", 0.3)
    scuffs = m.times("Seen Scuffs", m.noise("Scratches", "Scuffs", 4, Density=0.6, Width=0.02, Spread=0.5, Seed=7), scuffed)
    dusty = m.merge("Dusty Rubber", gray, (0.30, 0.265, 0.215), m.levels("Thin Dust", dust, to_high=0.45))
    base = m.merge("Scuffed Rubber", dusty, (0.17, 0.165, 0.155), m.levels("Thin Scuffs", scuffs, to_high=0.7))
    sheen = m.knob("Roughness", "How dull clean rubber is", 0.52, 0.15, 0.95)
    rough = m.total("Roughness of All", (sheen, 1), (m.levels("Uneven Roughness", uneven, to_low=0.0, to_high=0.08), 1), (bloom, 0.18), (dust, 0.25), (scuffs, 0.15))
    height = m.total("Heights", (grain, 0.035), (uneven, 0.05), (open_cracks, -0.12), (scuffs, -0.03))
    m.surface(base, rough, height, strength=0.9, depth=0.003)


def car_paint(m):
    m.part("Base Coat")
    m.scale()
    tone = m.tint("Paint Color", "The paint below the lacquer", (0.26, 0.004, 0.008))
    flakes = m.noise("Worley Noise", "Flakes", 190, Feature="Cell Id", Seed=3)
    fine = m.noise("Worley Noise", "Fine Flakes", 260, Feature="Cell Id", Seed=6)
    glints = m.total("Glints", (flakes, 0.55), (fine, 0.45))
    strength = m.knob("Flakes", "How much metal flakes glitter in the paint: 0 is plain paint", 0.55)
    glitter = m.times("Glitter", m.levels("Bright Flakes", glints, 0.7, 0.98), strength)
    shimmer = m.merge("Shimmering Paint", tone, m.mix("Shimmer", (1.0, 1.0, 1.0), m.levels("Shimmer Range", glints, to_low=0.5, to_high=1.6), strength), mode="Multiply")
    base = m.merge("Flakes in Paint", shimmer, m.merge("Flake Color", tone, (0.95, 0.80, 0.70), amount=0.2), m.levels("Flake Mask", glitter, to_high=0.8))
    m.part("Dirt")
    dirty = m.knob("Dust", "How long it has not been washed", 0.1)
    film = m.merge("Road Film", m.noise("Clouds", "Film", 1.8, Seed=8), m.merge("Dried Drops", m.noise("Stains", "Drops", 6, Seed=4), m.noise("Dust", "Specks", 24, Density=0.5, Seed=9), mode="Screen"),
                   mode="Lighten")
    dust = m.times("Dust on Lacquer", m.levels("Film Strength", film, 0.2, 0.9), dirty)
    dusty = m.merge("Dusty Paint", base, (0.30, 0.27, 0.23), m.levels("Dust Mask", dust, to_high=0.8))
    m.part("Lacquer")
    lacquer = m.knob("Lacquer", "How much lacquer lies on the paint: 0 is a matt wrap", 1.0)
    peel_amount = m.knob("Orange Peel", "How wavy the lacquer is", 0.25)
    peel = m.noise("Perlin Noise", "Orange Peel Waves", 28, Octaves=2, Roughness=0.4, Seed=2)
    coat_rough = m.total("Lacquer Roughness", (m.levels("Clean Lacquer", dust, to_low=0.03, to_high=0.6), 1))
    rough = m.levels("Roughness", glints, to_low=0.5, to_high=0.3)
    metal = m.levels("Metal in Paint", strength, to_low=0.0, to_high=0.6)
    waves = m.times("Wavy Lacquer", peel, m.levels("Wave Depth", peel_amount, to_high=0.03))
    height = m.total("Heights", (waves, 1), (dust, 0.004))
    m.surface(dusty, rough, height, strength=1.0, metallic=m.times("Metallic", metal, m.levels("Clean", dust, to_low=1.0, to_high=0.0)),
              occlusion=False, depth=0.001, Clear_Coat=lacquer, Clear_Coat_Roughness=coat_rough)


def ceramic(m):
    m.part("Body")
    m.scale()
    wheel = m.noise("Perlin Noise", "Turned Rings", 1.0, Position=m.place("Along the Wheel", (0.6, 13, 0.6)), Octaves=3, Roughness=0.5, Seed=4)
    pooled = m.noise("Clouds", "Pooled Glaze", 1.7, Seed=7)
    thick = m.total("Glaze Thickness", (wheel, 0.55), (pooled, 0.45))
    m.part("Glaze")
    tone = m.tint("Glaze Color", "The glaze where it is thin", (0.50, 0.655, 0.575))
    deep = m.tint("Pooled Color", "The glaze where it has run together", (0.115, 0.315, 0.275))
    glaze = m.merge("Celadon", tone, deep, m.levels("Thick Glaze", thick, 0.33, 0.72))
    iron = m.knob("Specks", "How many specks of iron have come through", 0.35)
    specks = m.noise("Worley Noise", "Iron", 26, Seed=3)
    seen_specks = m.times("Seen Specks", m.times("Chosen Specks", m.levels("Speck Shape", specks, 0.05, 0.22, 1.0, 0.0),
                                                 m.levels("Speck Chance", (specks, "Cell Id"), 0.5, 0.9)), iron)
    speckled = m.merge("Specks in Glaze", glaze, (0.13, 0.06, 0.022), m.levels("Speck Mask", seen_specks, to_high=0.9))
    crackled = m.knob("Crackle", "How strong the net of cracks in the glaze is", 0.6)
    coarse = m.noise("Voronoi Cracks", "Crackle", 4.2, Width=0.008, Slope=0.022, Distortion=0.3, FineCracks=0.7, Seed=9)
    lines = m.times("Seen Crackle", coarse, crackled)
    base = m.merge("Crackled Glaze", speckled, (0.20, 0.125, 0.065), m.levels("Crackle Mask", lines, to_high=0.75))
    m.part("Shine")
    dull = m.knob("Roughness", "How dull the glaze is", 0.08, 0.02, 0.8)
    rough = m.total("Roughness of All", (dull, 1), (seen_specks, 0.2), (lines, 0.06))
    height = m.total("Heights", (wheel, 0.10), (pooled, 0.16), (lines, -0.012), (seen_specks, 0.012))
    m.surface(base, rough, height, strength=1.0, occlusion=False, depth=0.004, Clear_Coat=m.levels("Glassy", dull, 0.05, 0.6, 1.0, 0.0),
              Clear_Coat_Roughness=m.levels("Glass Roughness", dull, to_low=0.02, to_high=0.6))


MATERIALS = [
    ("Made/Rubber", "Moulded rubber that grays and perishes, with dust and scuffs.",
     ["tire", "tyre", "sole", "seal", "black"], rubber),
    ("Made/Car Paint", "Paint with metal flakes below a wavy lacquer.",
     ["automotive", "lacquer", "metallic", "flakes", "vehicle"], car_paint),
    ("Made/Glazed Ceramic", "Stoneware in a pooled, crackled celadon glaze with specks of iron.",
     ["pottery", "vase", "tile", "porcelain", "glaze"], ceramic),
]
