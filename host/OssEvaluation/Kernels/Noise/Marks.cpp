// Marks that lie about: scratches, fibres, dust, stains, and what has run down.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Marks.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Feature-inl.h"
#include "OssEvaluation/Kernels/Noise/NoiseStrip-inl.h"

#ifndef OSSEV_MARKS_VALUES
#define OSSEV_MARKS_VALUES

namespace OssEvNoise {

struct Strokes
{
    float density;
    float length; ///< half of it, in cells
    float width;  ///< half of it, in cells
    float cosine;
    float sine;
    float spread;
    float bend;
};

struct Specks
{
    float density;
    float size;
    float lint;
};

struct Blots
{
    float density;
    float size;
    float ring;
    float distort;
};

struct Runs
{
    float density;
    float length;
    float width;
    float wobble;
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;

/// Where a place lies beside a stroke: how far across its middle line, and along it from -1 to 1. In space
/// a stroke is where a disc cuts the surface.
struct Beside
{
    V across;
    V along;
};

template <bool Flat>
HWY_INLINE Beside beside(const Strokes &strokes, VW bits, const Place &to)
{
    const V bend = (tenBits<20>(otherBits(bits, 8)) - 0.5F) * (2.0F * strokes.bend);
    const V shorter = tenBits<10>(bits) * 0.6F + 0.4F;
    const V length = shorter * strokes.length;
    if (Flat) {
        const V turns = (tenBits<0>(bits) - 0.5F) * (strokes.spread * 0.5F);
        const V c = cosineOfTurns(turns);
        const V s = sineOfTurns(turns);
        const V x = hn::NegMulAdd(splat(strokes.sine), s, c * strokes.cosine);
        const V y = hn::MulAdd(splat(strokes.sine), c, s * strokes.cosine);
        const V along = hn::Div(hn::MulAdd(to.x, x, hn::Mul(to.y, y)), length);
        const V across = hn::MulSub(to.y, x, hn::Mul(to.x, y));
        const V curve = hn::Mul(hn::Mul(hn::Mul(along, along), bend), length);
        return {hn::Abs(hn::Sub(across, curve)), hn::Abs(along)};
    }
    const Place fixed{splat(-strokes.sine), splat(strokes.cosine), zero()};
    const Place normal = towards(fixed, chanceDirection<false>(bits), strokes.spread);
    const V across = dot(normal, to);
    const V rest = hn::Max(hn::NegMulAdd(across, across, dot(to, to)), zero());
    const V along = hn::Div(hn::Sqrt(rest), length);
    const V curve = hn::Mul(hn::Mul(hn::Mul(along, along), bend), length);
    return {hn::Abs(hn::Sub(across, curve)), along};
}

template <bool Flat>
struct AddScratch
{
    const Strokes &strokes;
    V texel;
    V *best;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const VW more = otherBits(bits, 2);
        const Beside b = beside<Flat>(strokes, otherBits(bits, 1), to);
        const V taper = saturate(hn::NegMulAdd(b.along, b.along, splat(1.0F)));
        const V thick = hn::Mul(taper, tenBits<0>(more) * 0.8F + 0.2F) * strokes.width;
        const V strength = tenBits<10>(more) * 0.75F + 0.25F;
        const V cover = hn::Mul(lineCover(b.across, thick, texel), strength);
        const auto here = hn::Lt(tenBits<20>(more), splat(strokes.density));
        *best = hn::Max(*best, hn::IfThenElseZero(here, cover));
    }
};

struct Scratches
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Strokes> &n, const Spot &s)
    {
        V best = zero();
        for (int layer = 0; layer < 4; ++layer) {
            const Spot f = finer(s, 1.0F + 0.6F * float(layer));
            aroundSpot<Flat>(f, 1.0F, octaveSeed(n.seed, layer), 1,
                             AddScratch<Flat>{n.own, f.texel, &best});
        }
        return best;
    }
};

/// The fibre on top counts: that with the larger number.
template <bool Flat>
struct AddFibre
{
    const Strokes &strokes;
    V texel;
    V *top;
    V *best;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const VW more = otherBits(bits, 2);
        const Beside b = beside<Flat>(strokes, otherBits(bits, 1), to);
        const V ends = saturate((1.0F - b.along) * 6.0F);
        const V thick = hn::Mul(saturate(ends + 0.4F), tenBits<0>(more) * 0.6F + 0.4F)
                        * strokes.width;
        const V present = hn::IfThenElseZero(
            hn::And(hn::Lt(b.along, splat(1.0F)),
                    hn::Lt(tenBits<20>(more), splat(strokes.density))),
            splat(1.0F));
        const V cover = hn::Mul(lineCover(b.across, thick, texel), present);
        const V relative = hn::Div(b.across, hn::Max(thick, texel));
        const V round = saturate(hn::NegMulAdd(relative, relative, splat(1.0F)));
        const V order = tenBits<10>(more);
        const V shade = hn::Mul(hn::Sqrt(round), order * 0.6F + 0.4F);
        const auto over = hn::And(hn::Gt(cover, zero()), hn::Gt(order, *top));
        *best = hn::IfThenElse(over, mix(*best, shade, cover), *best);
        *top = hn::IfThenElse(hn::And(over, hn::Gt(cover, splat(0.5F))), order, *top);
    }
};

struct Fibres
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Strokes> &n, const Spot &s)
    {
        V best = zero();
        V top = splat(-1.0F);
        for (int layer = 0; layer < 6; ++layer) {
            const Spot f = finer(s, 1.0F + 0.15F * float(layer));
            aroundSpot<Flat>(f, 1.0F, octaveSeed(n.seed, layer), 1,
                             AddFibre<Flat>{n.own, f.texel, &top, &best});
        }
        return best;
    }
};

struct AddSpeck
{
    const Specks &specks;
    float size;
    V texel;
    V *best;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const VW more = otherBits(bits, 4);
        const V chance = tenBits<0>(more);
        const V radius = hn::Mul(chance, hn::Mul(chance, chance)) * size + size * 0.12F;
        const V cover = lineCover(hn::Sqrt(dot(to, to)), radius, hn::Max(texel, radius * 0.5F));
        const V strength = tenBits<10>(more) * 0.8F + 0.2F;
        const auto here = hn::Lt(tenBits<20>(more), splat(specks.density));
        *best = hn::Max(*best, hn::IfThenElseZero(here, hn::Mul(cover, strength)));
    }
};

struct Dust
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Specks> &n, const Spot &s)
    {
        V best = zero();
        float times = 1.0F;
        float size = 0.25F * n.own.size;
        for (int layer = 0; layer < 4; ++layer) {
            const Spot f = finer(s, times);
            aroundSpot<Flat>(f, 1.0F, octaveSeed(n.seed, layer), 1,
                             AddSpeck{n.own, size, f.texel, &best});
            times *= 1.7F;
            size *= 1.1F;
        }
        const Strokes hairs{n.own.lint * 0.35F, 0.8F, 0.012F, 1.0F, 0.0F, 1.0F, 0.9F};
        const Spot f = finer(s, 0.5F);
        aroundSpot<Flat>(f, 1.0F, n.seed + 991U, 1, AddScratch<Flat>{hairs, f.texel, &best});
        return best;
    }
};

struct AddBlot
{
    const Blots &blots;
    V texel;
    V ragged;
    V *sum;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const VW more = otherBits(bits, 6);
        const V radius = (tenBits<0>(more) * 0.75F + 0.25F) * (blots.size * 0.75F);
        const V far = hn::MulAdd(ragged, radius * 0.4F, hn::Sqrt(dot(to, to)));
        const V inside = hn::Div(hn::Sub(radius, far), hn::Max(radius, splat(1e-3F)));
        const V soft = hn::Max(hn::Div(texel, hn::Max(radius, splat(1e-3F))), splat(0.06F));
        const V body = edgeCover(inside, soft);
        // What dries gathers at the edge.
        const V rim = saturate(1.0F - hn::Abs(inside - 0.07F) * 9.0F);
        const V shade = hn::Mul(body, splat(0.35F * (1.0F - 0.6F * blots.ring)))
                        + hn::Mul(hn::Mul(rim, rim), body) * (0.8F * blots.ring);
        const V strength = tenBits<10>(more) * 0.7F + 0.3F;
        const auto here = hn::Lt(tenBits<20>(more), splat(blots.density));
        *sum = hn::Add(*sum, hn::IfThenElseZero(here, hn::Mul(shade, strength)));
    }
};

struct Stains
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Blots> &n, const Spot &s)
    {
        V sum = zero();
        const NoiseLayers layers{4, 2.0F, 0.5F, 0.5333F};
        const Spot bent = warped<Flat>(s, layers, n.own.distort * 0.35F, n.seed);
        const V ragged = fractal<Flat>(finer(s, 3.0F), layers, n.seed + 3U) * n.own.distort;
        for (int layer = 0; layer < 3; ++layer) {
            const Spot f = finer(bent, 1.0F + 0.7F * float(layer));
            aroundSpot<Flat>(f, 1.0F, octaveSeed(n.seed, layer), 1,
                             AddBlot{n.own, f.texel, ragged, &sum});
        }
        const V film = saturate(ragged * 0.4F + 0.55F);
        return hn::Mul(sum, film + 0.4F) * 1.1F;
    }
};

/// What has run down from points in columns; down is against v on the plane, against y in space.
struct AddRun
{
    const Runs &runs;
    V texel;
    V *best;

    HWY_INLINE void at(VW bits, const Place &to) const
    {
        const VW more = otherBits(bits, 7);
        const V chance = tenBits<0>(more);
        const V length = chance * 0.7F + 0.25F;
        const V down = hn::Div(to.y, length);
        const V width = (tenBits<10>(more) * 0.7F + 0.3F) * runs.width;
        const V half = hn::Mul(width, saturate(1.0F - down * 0.75F));
        const V side = hn::Sqrt(hn::MulAdd(to.x, to.x, hn::Mul(to.z, to.z)));
        const V soft = hn::Max(texel, half * 0.7F);
        const V cover = saturate(hn::Div(hn::Sub(half, side), soft) + 0.5F);
        const V left = saturate(1.0F - down);
        const V fade = hn::Mul(hn::Mul(left, left), saturate(to.y * 25.0F + 0.5F));
        const auto here = hn::Lt(tenBits<20>(more), splat(runs.density));
        const V run = hn::Mul(hn::Mul(cover, fade), tenBits<20>(bits) * 0.6F + 0.4F);
        *best = hn::Max(*best, hn::IfThenElseZero(here, run));
    }
};

struct Leaks
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Runs> &n, const Spot &s)
    {
        V best = zero();
        const NoiseLayers layers{3, 2.0F, 0.5F, 0.5714F};
        const V wobble = fractal<Flat>(s, layers, n.seed + 3U) * (n.own.wobble * 0.25F);
        const V film = fractal<Flat>(finer(s, 2.0F), layers, n.seed + 4U);
        for (int layer = 0; layer < 3; ++layer) {
            Spot f = finer(s, 1.0F + 0.8F * float(layer));
            f.p.x = hn::Add(f.p.x, wobble);
            // Cells are as long as runs.
            float rows = 1.0F / n.own.length;
            if (f.period > 0) {
                f.rows = std::max(1, int(std::lround(float(f.period) * rows)));
                rows = float(f.rows) / float(f.period);
            }
            f.p.y = f.p.y * rows;
            aroundSpot<Flat>(f, 1.0F, octaveSeed(n.seed, layer), 1, AddRun{n.own, f.texel, &best});
        }
        return saturate(hn::Mul(best, film * 0.5F + 1.0F) * 1.2F);
    }
};

void scratches(const OssEvStrip &strip, const Noise<Strokes> &n)
{
    noiseOver<Scratches>(strip, n);
}

void fibres(const OssEvStrip &strip, const Noise<Strokes> &n)
{
    noiseOver<Fibres>(strip, n);
}

void dust(const OssEvStrip &strip, const Noise<Specks> &n)
{
    noiseOver<Dust>(strip, n);
}

void stains(const OssEvStrip &strip, const Noise<Blots> &n)
{
    noiseOver<Stains>(strip, n);
}

void leaks(const OssEvStrip &strip, const Noise<Runs> &n)
{
    noiseOver<Leaks>(strip, n);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(scratches);
HWY_EXPORT(fibres);
HWY_EXPORT(dust);
HWY_EXPORT(stains);
HWY_EXPORT(leaks);
} // namespace OssEvSimd

namespace {

OssEvNoise::Strokes strokesOf(const OssEvKernelSetup &setup)
{
    const double angle = setup.real("Direction") * 0.017453292519943295;
    return {float(setup.real("Density")),     float(setup.real("Length")),
            float(setup.real("Width") / 2.0), float(std::cos(angle)),
            float(std::sin(angle)),           float(setup.real("Spread")),
            float(setup.real("Bend"))};
}

std::vector<OssEvParameterDescription> strokeParameters(double density, double length, double width,
                                                        double spread, double bend)
{
    using namespace OssEvDescribe;
    return {real("Density", density, 0, 1),   real("Length", length, 0.05, 1),
            real("Width", width, 0.001, 0.3), real("Direction", 0, -360, 360),
            real("Spread", spread, 0, 1),     real("Bend", bend, 0, 1)};
}

} // namespace

void OssEvFamilies::addMarks(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvNoise;
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    add(kernels, {"scratches", 6, 0, 0, 0, strokeParameters(0.8, 1, 0.03, 0.8, 0.25)},
        [](const Setup &setup) {
            return make(&HWY_DYNAMIC_DISPATCH(scratches), setup, strokesOf(setup));
        });
    add(kernels, {"fibres", 8, 0, 0, 0, strokeParameters(0.9, 1, 0.08, 1, 0.6)},
        [](const Setup &setup) {
            return make(&HWY_DYNAMIC_DISPATCH(fibres), setup, strokesOf(setup));
        });
    add(kernels,
        {"dust",
         16,
         0,
         0,
         0,
         {real("Density", 0.5, 0, 1), real("Size", 0.5, 0, 1), real("Lint", 0.25, 0, 1)}},
        [](const Setup &setup) {
            const Specks own{float(setup.real("Density")), float(setup.real("Size")),
                             float(setup.real("Lint"))};
            return make(&HWY_DYNAMIC_DISPATCH(dust), setup, own);
        });
    add(kernels,
        {"stains",
         3,
         0,
         0,
         0,
         {real("Density", 0.6, 0, 1), real("Size", 0.7, 0, 1), real("Ring", 0.6, 0, 1),
          real("Distortion", 0.7, 0, 1)}},
        [](const Setup &setup) {
            const Blots own{float(setup.real("Density")), float(setup.real("Size")),
                            float(setup.real("Ring")), float(setup.real("Distortion"))};
            return make(&HWY_DYNAMIC_DISPATCH(stains), setup, own);
        });
    add(kernels,
        {"leaks",
         8,
         0,
         0,
         0,
         {real("Density", 0.6, 0, 1), real("Length", 6, 1, 20), real("Width", 0.2, 0.01, 1),
          real("Wobble", 0.4, 0, 1)}},
        [](const Setup &setup) {
            const Runs own{float(setup.real("Density")), float(setup.real("Length")),
                           float(setup.real("Width")), float(setup.real("Wobble"))};
            return make(&HWY_DYNAMIC_DISPATCH(leaks), setup, own);
        });
}
#endif
