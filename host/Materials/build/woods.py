"""Woods: rings are lines of equal height in slow noise along the trunk, as a saw cuts them open."""


def grain(m, field, fibres, early, late, rings):
    """Colors of rings: light early wood that darkens slowly to late wood, then begins anew."""
    profile = " ".join("%g,%g,%g,%g,1" % ((place,) + tone) for place, tone in
                       ((0.0, (1, 1, 1)), (0.55, (0.62, 0.62, 0.62)), (0.86, (0.1, 0.1, 0.1)),
                        (0.93, (0.0, 0.0, 0.0)), (1.0, (1, 1, 1))))
    ring = m.add("Adjust/Gradient Map", "Rings", Input=field, Gradient=profile, Interpolation="Linear", Repeats=rings)
    wood = m.merge("Early and Late Wood", late, early, ring)
    shade = m.levels("Fibre Shade", fibres, 0.2, 0.8, 0.78, 1.1)
    return ring, m.merge("Fibrous Wood", wood, shade, mode="Multiply")


def oak(m):
    m.part("Trunk")
    m.scale()
    wander = m.noise("Fractal Noise", "Wander", 1.1, Octaves=4)
    along = m.place("Along the Trunk", (1.5, 0.2, 1.5), (wander, "Vector"), 0.05)
    hair = m.place("Along Fibres", (48, 1.6, 48), (wander, "Vector"), 0.02)
    field = m.noise("Perlin Noise", "Trunk", 1.0, Position=along, Octaves=2, Roughness=0.32, Seed=6)
    fibres = m.noise("Perlin Noise", "Fibres", 1.6, Position=hair, Octaves=4, Roughness=0.6, Seed=3)
    m.part("Wood")
    early = m.tint("Early Wood", "The light wood of spring", (0.46, 0.275, 0.135))
    late = m.tint("Late Wood", "The dark wood of autumn", (0.235, 0.115, 0.048))
    ring, wood = grain(m, field, fibres, early, late, 9.0)
    m.part("Pores and Rays")
    open_pores = m.knob("Pores", "How many pores are open along the grain", 0.6)
    lines = m.noise("Perlin Noise", "Pore Lines", 3.2, Position=hair, Octaves=2, Roughness=0.5, Seed=9)
    pores = m.times("Pores in Early Wood", m.levels("Pore Cuts", lines, 0.60, 0.72), m.levels("Where Pores Are", ring, 0.3, 0.9, 0.25, 1.0))
    seen = m.times("Open Pores", pores, open_pores)
    flecks = m.levels("Flecks", m.noise("Perlin Noise", "Rays", 1.0, Position=m.place("Along Rays", (5, 2.2, 5), (wander, "Vector"), 0.3),
                                        Octaves=3, Seed=12), 0.66, 0.78)
    rayed = m.merge("Rays in Wood", wood, (0.56, 0.37, 0.2), m.levels("Ray Strength", flecks, to_high=0.45))
    base = m.merge("Pores in Wood", rayed, (0.075, 0.033, 0.014), m.levels("Pore Shade", seen, to_high=0.8))
    m.part("Finish")
    oil = m.knob("Varnish", "How much varnish lies on the wood", 0.35)
    bare = m.total("Wood Roughness", (m.levels("Fibre Roughness", fibres, to_low=0.5, to_high=0.72), 1), (seen, 0.15))
    rough = m.mix("Roughness", bare, 0.22, oil)
    height = m.total("Heights", (ring, 0.015), (fibres, 0.02), (seen, -0.08))
    m.surface(base, rough, height, strength=0.9, depth=0.003, Clear_Coat=m.levels("Lacquer", oil, 0.4, 1.0))


def boards(m, columns, rows, gap):
    """Boards lengthwise, and places in them that differ from board to board."""
    planks = m.pattern("Planks", "Boards", Columns=columns, Rows=rows, Grain=0.0, Gap=gap, Bevel=0.12, HeightVariation=0.4,
                       Variation=0.0, Seed=8)
    uv = m.add("Channel/Split", "Place in the Patch", Input=m.add("Geometry/UV", "Patch Place"))
    each = m.times("Each Board Elsewhere", (planks, "Random"), 37.0)

    def along(name, stretch_u, stretch_v):
        return m.add("Channel/Combine", name, Red=m.times(name + " U", (uv, "Red"), stretch_u),
                     Green=m.times(name + " V", (uv, "Green"), stretch_v), Blue=each)
    return planks, along


def pine(m):
    m.space = "UV"
    m.part("Boards")
    m.scale()
    planks, along = boards(m, 1, 7, 0.035)
    m.expose("Boards", "How many boards lie beside each other on a patch", planks, "Rows", 1, 60)
    field = m.noise("Perlin Noise", "Trunk", 1.0, Position=along("Along the Trunk", 0.55, 5.0), Octaves=2, Roughness=0.3, Seed=3)
    fibres = m.noise("Perlin Noise", "Fibres", 1.0, Position=along("Along Fibres", 6.0, 210.0), Octaves=4, Roughness=0.6, Seed=5)
    m.part("Knots")
    knotted = m.knob("Knots", "How many knots there are", 0.45)
    spots = m.noise("Worley Noise", "Knot Places", 1.0, Position=along("Across Knots", 3.0, 6.5), Jitter=0.8, Seed=4)
    chosen = m.add("Adjust/Threshold", "Chosen Knots", Input=(spots, "Cell Id"), Softness=0.0,
                   Threshold=m.levels("Knot Limit", knotted, to_low=1.0, to_high=0.45))
    near = m.times("Round Knots", m.levels("Knot Shape", spots, 0.0, 0.55, 1.0, 0.0, gamma=0.6), chosen)
    core = m.levels("Knot Cores", near, 0.62, 0.74)
    bent = m.total("Bent Trunk", (field, 1), (near, 0.22))
    m.part("Wood")
    early = m.tint("Early Wood", "The light wood of spring", (0.63, 0.42, 0.215))
    late = m.tint("Late Wood", "The resinous wood of autumn", (0.40, 0.19, 0.062))
    ring, wood = grain(m, bent, fibres, early, late, 13.0)
    tones = m.levels("Board Tones", (planks, "Random"), to_low=0.74, to_high=1.08)
    each = m.merge("Each Board", wood, tones, mode="Multiply")
    ringed = m.ramp("Knot Wood", m.noise("Perlin Noise", "Knot Fibres", 30, Seed=2), (0.2, (0.09, 0.03, 0.012)), (0.8, (0.20, 0.075, 0.03)))
    knots = m.merge("Knots in Boards", each, ringed, m.levels("Knot Mask", core, to_high=0.92))
    base = m.merge("Gaps between Boards", (0.018, 0.012, 0.008), knots, (planks, "Mask"))
    m.part("Age")
    gray = m.knob("Weathering", "How gray sun and rain have made the wood", 0.15)
    silver = m.ramp("Silver Wood", m.total("Silver Grain", (ring, 0.4), (fibres, 0.6)), (0.2, (0.10, 0.095, 0.09)), (0.8, (0.40, 0.385, 0.36)))
    aged = m.merge("Weathered Boards", base, m.merge("Silver and Gaps", base, silver, (planks, "Mask")), gray)
    rough = m.total("Roughness", (m.levels("Fibre Roughness", fibres, to_low=0.48, to_high=0.66), 1), (gray, 0.25), (core, -0.1))
    raised = m.times("Raised Grain", m.total("Grain Height", (ring, -0.07), (fibres, 0.05)), m.levels("Raised", gray, to_low=0.3, to_high=1.0))
    height = m.total("Heights", ((planks, "Height"), 0.35), (raised, 1))
    m.surface(aged, rough, height, strength=1.0, depth=0.008)


def plywood(m):
    m.part("Veneer")
    m.scale()
    wander = m.noise("Fractal Noise", "Wander", 0.8, Octaves=4)
    along = m.place("Along the Sheet", (0.22, 1.1, 1.1), (wander, "Vector"), 0.22)
    hair = m.place("Along Fibres", (2.2, 60, 60), (wander, "Vector"), 0.01)
    field = m.noise("Perlin Noise", "Peeled Trunk", 1.0, Position=along, Octaves=3, Roughness=0.35, Seed=11)
    fibres = m.noise("Perlin Noise", "Fibres", 1.4, Position=hair, Octaves=4, Roughness=0.6, Seed=3)
    m.part("Birch")
    early = m.tint("Light Wood", "The wood as a whole", (0.60, 0.43, 0.255))
    late = m.tint("Dark Wood", "The lines of its rings", (0.46, 0.29, 0.145))
    ring, wood = grain(m, field, fibres, early, late, 7.0)
    flecked = m.knob("Flecks", "How many short dark flecks there are", 0.5)
    cuts = m.noise("Perlin Noise", "Fleck Lines", 3.4, Position=hair, Octaves=2, Seed=6)
    flecks = m.times("Seen Flecks", m.levels("Fleck Cuts", cuts, 0.66, 0.76), flecked)
    base = m.merge("Flecked Wood", wood, (0.23, 0.115, 0.05), m.levels("Fleck Shade", flecks, to_high=0.75))
    m.part("Wear")
    dirt = m.knob("Dirt", "How much hands and boots have left on it", 0.3)
    smears = m.merge("Marks", m.noise("Grunge Smeared", "Smears", 1.6, Seed=5), m.noise("Scratches", "Scuffs", 4, Width=0.01, Density=0.5, Seed=7),
                     mode="Lighten")
    marks = m.times("Seen Marks", smears, dirt)
    dirty = m.merge("Dirty Wood", base, (0.13, 0.095, 0.06), m.levels("Thin Dirt", marks, to_high=0.6))
    sheen = m.knob("Roughness", "How dull the sheet is; film-faced ones are shiny", 0.6, 0.1, 0.95)
    rough = m.total("Roughness of All", (sheen, 1), (m.levels("Fibre Roughness", fibres, to_low=0.0, to_high=0.12), 1), (marks, 0.12))
    height = m.total("Heights", (ring, 0.015), (fibres, 0.03), (flecks, -0.05), (marks, -0.02))
    m.surface(dirty, rough, height, strength=0.8, depth=0.002)


MATERIALS = [
    ("Wood/Oak", "Solid oak with rings, open pores and the flecks of its rays, raw or varnished.",
     ["timber", "furniture", "floor", "table"], oak),
    ("Wood/Pine Planks", "Boards of pine beside each other, with knots around which the grain bends.",
     ["timber", "boards", "floor", "fence", "knots"], pine),
    ("Wood/Plywood", "A sheet of birch veneer with its wide figure, flecks and marks of use.",
     ["birch", "sheet", "board", "furniture"], plywood),
]
