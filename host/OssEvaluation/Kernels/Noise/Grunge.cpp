// Wear and dirt of six characters, each a mixture of noises.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Grunge.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Feature-inl.h"
#include "OssEvaluation/Kernels/Noise/NoiseStrip-inl.h"

#ifndef OSSEV_GRUNGE_VALUES
#define OSSEV_GRUNGE_VALUES

namespace OssEvNoise {

struct Wear
{
    /// How much of it there is, and how much is fine.
    float amount;
    float detail;
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;
using Worn = Noise<Wear>;

HWY_INLINE NoiseLayers six()
{
    return {6, 2.0F, 0.55F, 0.4631F};
}

HWY_INLINE NoiseLayers three()
{
    return {3, 2.0F, 0.5F, 0.5714F};
}

/// Drawn out along x. The lattice repeats after as many cells in both directions, so what is read is.
template <bool Flat>
HWY_INLINE Spot drawn(const Spot &s, float along, float across)
{
    Spot to = s;
    to.p = {s.p.x * along, s.p.y * across, s.p.z * across};
    if (s.period == 0)
        return to;
    // Repeats at both edges when each factor, times the period, is a multiple of the lattice's period.
    const float unit = float(s.period);
    const float a = std::max(1.0F, std::round(unit * along));
    const float b = std::max(1.0F, std::round(unit * across / a)) * a;
    to.p = {s.p.x * (a / unit), s.p.y * (b / unit), zero()};
    to.period = int(a);
    return to;
}

struct Rusty
{
    template <bool Flat>
    static HWY_INLINE V at(const Worn &n, const Spot &s)
    {
        const Spot moved = warped<Flat>(s, three(), 0.5F, n.seed);
        const V body = fractal<Flat>(moved, six(), n.seed);
        const V fine = fractal<Flat>(finer(s, 8.0F), three(), n.seed + 3U);
        const V edge = hn::MulAdd(fine, splat(0.3F * n.own.detail), body);
        const float from = 0.42F - n.own.amount * 0.8F;
        const V rust = smoothStep(from, from + 0.12F, edge);
        const V pits = smoothStep(0.1F, 0.35F, fine) * n.own.detail;
        const V bloom = saturate(body * 0.5F + (0.3F + 0.4F * n.own.amount));
        const V inside = hn::Sub(bloom * 0.5F + 0.5F, pits * 0.45F);
        return hn::MulAdd(rust, inside, saturate(fine * 0.12F + 0.04F));
    }
};

struct Scraped
{
    template <bool Flat>
    static HWY_INLINE V at(const Worn &n, const Spot &s)
    {
        const Spot bent = warped<Flat>(s, three(), 0.08F, n.seed + 9U);
        const V patches = fractal<Flat>(warped<Flat>(s, three(), 0.5F, n.seed), six(), n.seed);
        const V broad = fractal<Flat>(drawn<Flat>(bent, 1.0F, 6.0F), six(), n.seed + 1U);
        const V thin = fractal<Flat>(drawn<Flat>(bent, 2.0F, 24.0F), three(), n.seed + 2U);
        const V bare = hn::MulAdd(broad, splat(0.8F), patches * 1.5F)
                       + (n.own.amount * 1.4F - 0.7F);
        const V cut = hn::MulAdd(thin, splat(1.1F * n.own.detail), bare);
        const V scraped = smoothStep(-0.08F, 0.16F, cut);
        return saturate(scraped * 0.8F + patches * 0.15F + thin * (0.15F * n.own.detail) + 0.05F);
    }
};

struct Smeared
{
    template <bool Flat>
    static HWY_INLINE V at(const Worn &n, const Spot &s)
    {
        const Spot bent = warped<Flat>(s, three(), 0.6F, n.seed);
        const V film = fractal<Flat>(bent, six(), n.seed + 3U);
        const V where = smoothStep(-0.35F, 0.35F, fractal<Flat>(bent, three(), n.seed + 4U));
        const V wipes = fractal<Flat>(drawn<Flat>(bent, 1.0F, 5.0F), six(), n.seed + 1U);
        const V streaks = fractal<Flat>(drawn<Flat>(bent, 1.0F, 16.0F), three(), n.seed + 2U);
        const V wiped = hn::Mul(hn::MulAdd(streaks, splat(0.9F * n.own.detail), wipes * 0.8F),
                                where);
        return smoothStep(-0.8F, 0.8F, hn::Add(wiped, film * 0.9F) + (n.own.amount - 0.5F) * 1.4F);
    }
};

/// Spots with ragged edges, of sizes by chance: the strongest counts.
struct AddSpot
{
    V ragged;
    float amount;
    V texel;
    V *best;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const VW more = otherBits(bits, 5);
        const V size = hn::Mul(tenBits<0>(more), tenBits<0>(more)) * (0.55F * amount) + 0.02F;
        const V far = hn::Sub(size, hn::Sqrt(dot(to, to)));
        const V inside = hn::MulAdd(ragged, size * 0.9F, far);
        const V here = hn::IfThenElseZero(hn::Lt(tenBits<10>(more), splat(0.2F + 0.8F * amount)),
                                          tenBits<20>(more) * 0.7F + 0.3F);
        *best = hn::Max(*best, hn::Mul(edgeCover(inside, hn::Max(texel, splat(0.03F))), here));
    }
};

struct Spotted
{
    template <bool Flat>
    static HWY_INLINE V at(const Worn &n, const Spot &s)
    {
        const V film = fractal<Flat>(s, six(), n.seed);
        V best = zero();
        float times = 1.0F;
        float weight = 1.0F;
        for (int octave = 0; octave < 4; ++octave) {
            const Spot f = finer(s, times);
            const V ragged = fractal<Flat>(finer(f, 4.0F), three(), octaveSeed(n.seed, octave));
            V layer = zero();
            aroundSpot<Flat>(f, 1.0F, octaveSeed(n.seed, octave), 1,
                             AddSpot{ragged, n.own.amount, f.texel, &layer});
            best = hn::Max(best, layer * weight);
            times *= 2.3F;
            weight *= 0.45F + 0.5F * n.own.detail;
        }
        return saturate(hn::MulAdd(best, splat(0.85F), saturate(film * 0.25F + 0.12F)));
    }
};

struct Creased
{
    template <bool Flat>
    static HWY_INLINE V at(const Worn &n, const Spot &s)
    {
        // Folds are where a bent plane turns: creases of folded noise, ever finer.
        V sum = zero();
        V creases = zero();
        float times = 1.0F;
        float weight = 0.5F;
        Spot moved = warped<Flat>(s, three(), 0.25F, n.seed);
        for (int octave = 0; octave < 5; ++octave) {
            const Spot f = finer(moved, times);
            const V noise = gradientAt<Flat>(f.p, octaveSeed(n.seed, octave), f.period);
            const V fold = hn::Abs(noise);
            sum = hn::MulAdd(fold, splat(weight), sum);
            const V line = saturate(1.0F - fold * 14.0F);
            creases = hn::MulAdd(hn::Mul(line, line), splat(weight), creases);
            times *= 1.9F;
            weight *= 0.35F + 0.4F * n.own.detail;
        }
        return saturate(sum * 1.1F + creases * (0.2F + 0.8F * n.own.amount)
                        + (0.15F * n.own.amount));
    }
};

struct AddPore
{
    float amount;
    V texel;
    V *best;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const VW more = otherBits(bits, 9);
        const V size = hn::Mul(tenBits<0>(more), tenBits<10>(more)) * (0.5F * amount);
        const V inside = hn::Sub(size, hn::Sqrt(dot(to, to)));
        const V soft = hn::Max(texel, hn::Max(size * 0.5F, splat(1e-4F)));
        *best = hn::Max(*best, saturate(hn::Div(inside, soft)));
    }
};

struct Porous
{
    template <bool Flat>
    static HWY_INLINE V at(const Worn &n, const Spot &s)
    {
        const Spot moved = warped<Flat>(s, three(), 0.3F, n.seed);
        const V body = fractal<Flat>(moved, six(), n.seed);
        const V grain = fractal<Flat>(finer(s, 24.0F), three(), n.seed + 1U);
        V pores = zero();
        for (int octave = 0; octave < 3; ++octave) {
            const Spot f = finer(moved, 3.0F * float(1 << octave));
            V layer = zero();
            aroundSpot<Flat>(f, 1.0F, octaveSeed(n.seed, octave), 1,
                             AddPore{n.own.amount, f.texel, &layer});
            pores = hn::Max(pores, layer);
        }
        const V ground = hn::MulAdd(body, splat(0.55F), grain * (0.3F * n.own.detail)) + 0.62F;
        return saturate(hn::Mul(ground, 1.0F - pores * 0.85F));
    }
};

void rusty(const OssEvStrip &strip, const Worn &n)
{
    noiseOver<Rusty>(strip, n);
}

void scraped(const OssEvStrip &strip, const Worn &n)
{
    noiseOver<Scraped>(strip, n);
}

void smeared(const OssEvStrip &strip, const Worn &n)
{
    noiseOver<Smeared>(strip, n);
}

void spotted(const OssEvStrip &strip, const Worn &n)
{
    noiseOver<Spotted>(strip, n);
}

void creased(const OssEvStrip &strip, const Worn &n)
{
    noiseOver<Creased>(strip, n);
}

void porous(const OssEvStrip &strip, const Worn &n)
{
    noiseOver<Porous>(strip, n);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(rusty);
HWY_EXPORT(scraped);
HWY_EXPORT(smeared);
HWY_EXPORT(spotted);
HWY_EXPORT(creased);
HWY_EXPORT(porous);
} // namespace OssEvSimd

void OssEvFamilies::addGrunge(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvNoise;
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    const auto row = [kernels](const char *name, double scale, Make make) {
        add(kernels, {name, scale, 0, 0, 0, {real("Amount", 0.5, 0, 1), real("Detail", 0.5, 0, 1)}},
            make);
    };
    static const auto own = [](const Setup &setup) {
        return Wear{float(setup.real("Amount")), float(setup.real("Detail"))};
    };
    row("grungeRusty", 4,
        [](const Setup &setup) { return make(&HWY_DYNAMIC_DISPATCH(rusty), setup, own(setup)); });
    row("grungeScraped", 4,
        [](const Setup &setup) { return make(&HWY_DYNAMIC_DISPATCH(scraped), setup, own(setup)); });
    row("grungeSmeared", 4,
        [](const Setup &setup) { return make(&HWY_DYNAMIC_DISPATCH(smeared), setup, own(setup)); });
    row("grungeSpotted", 4,
        [](const Setup &setup) { return make(&HWY_DYNAMIC_DISPATCH(spotted), setup, own(setup)); });
    row("grungeCreased", 4,
        [](const Setup &setup) { return make(&HWY_DYNAMIC_DISPATCH(creased), setup, own(setup)); });
    row("grungePorous", 4,
        [](const Setup &setup) { return make(&HWY_DYNAMIC_DISPATCH(porous), setup, own(setup)); });
}
#endif
