"""Metals: colors are reflectances at normal incidence, scene-linear."""


def rusty_steel(m):
    m.part("Where It Rusts")
    scale = m.knob("Scale", "How small everything is: more is smaller", 3.0, 0.5, 20.0)
    amount = m.knob("Rust", "How much of the steel has rusted", 0.5)
    seed_a = m.noise("Grunge Rusty", "Blooms", scale, Detail=0.7, Amount=0.5, Contrast=0.1, Seed=7)
    fine_scale = m.times("Fine Scale", scale, 6.0)
    grit = m.noise("Perlin Noise", "Grit", fine_scale, Octaves=6, Roughness=0.65, Seed=3)
    ragged = m.merge("Frayed Blooms", seed_a, grit, mode="Overlay", amount=0.6)
    rust = m.mask("Rust Mask", ragged, amount, 0.12)
    m.part("Steel")
    tone = m.tint("Steel Color", "What the bare steel reflects", (0.53, 0.51, 0.49))
    mill = m.noise("Domain-Warped Noise", "Mill Scale", scale, Octaves=6, Amount=1.0, Seed=12)
    shade = m.levels("Uneven Steel", mill, to_low=0.55, to_high=1.0)
    steel = m.merge("Steel", tone, shade, mode="Multiply")
    steel_rough = m.levels("Steel Roughness", mill, to_low=0.28, to_high=0.48)
    m.part("Rust")
    rust_tone = m.tint("Rust Color", "The rust where it is freshest", (0.30, 0.085, 0.022))
    flakes = m.noise("Grunge Porous", "Flakes", m.times("Flake Scale", scale, 3.0), Detail=0.8, Seed=5)
    tones = m.ramp("Old to Fresh", grit, (0.2, (0.16, 0.14, 0.16)), (0.5, (0.62, 0.56, 0.55)), (0.8, (1.1, 1.2, 1.35)))
    rusty = m.merge("Rust", rust_tone, tones, mode="Multiply")
    dark = m.merge("Dark Pits", rusty, m.color("Pit Color", (0.035, 0.014, 0.009)), m.levels("Pits", flakes, 0.55, 0.95, 0.0, 0.8))
    m.part("Together")
    base = m.merge("Rust over Steel", steel, dark, rust)
    metallic = m.add("Adjust/Invert", "Metal", Input=rust)
    rough = m.mix("Roughness", steel_rough, 0.88, rust)
    crust = m.levels("Crust", grit, 0.2, 0.8, 0.3, 1.0)
    bulk = m.times("Rust Height", rust, crust)
    pitted = m.math("Subtract", "Pitted", bulk, m.times("Pit Depth", flakes, m.times("Pit Share", rust, 0.45)))
    height = m.plus("Heights", m.times("Mill Height", mill, 0.05), m.times("Crust Height", pitted, 0.4))
    m.surface(base, rough, height, strength=2.5, metallic=metallic)


MATERIALS = [
    ("Metal/Rusty Steel", "Bare steel that rusts in blooms: a dull crust with pits over gray metal.",
     ["rust", "iron", "steel", "worn", "old", "outdoor"], rusty_steel),
]
