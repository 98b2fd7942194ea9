// Noise that was moved by noise: warped domains after I. Quilez, "Domain Warping" (2002); curls after
// R. Bridson and others, "Curl-Noise for Procedural Fluid Flow" (2007); flow noise after K. Perlin and
// F. Neyret, "Flow Noise" (2001).

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Currents.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/NoiseStrip-inl.h"

#ifndef OSSEV_CURRENTS_VALUES
#define OSSEV_CURRENTS_VALUES

namespace OssEvNoise {

struct Warping
{
    float amount;
    int folds;
};

struct Curling
{
    float amount;
    int steps;
};

struct Flowing
{
    /// Cosines and sines of the turns of each octave.
    std::array<float, 12> cosine;
    std::array<float, 12> sine;
    float drift;
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;

struct DomainWarped
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Warping> &n, const Spot &s)
    {
        Spot moved = s;
        for (int fold = 0; fold < n.own.folds; ++fold) {
            const Spot from = warped<Flat>(moved, NoiseLayers{2, 2.0F, 0.5F, 0.6667F}, n.own.amount,
                                           n.seed + std::uint32_t(fold) * 77U);
            // Each fold moves the first place, by noise read where the last one led.
            moved.p = s.p + (from.p - moved.p);
        }
        return fractal<Flat>(moved, n.layers, n.seed) * 0.75F + 0.5F;
    }
};

/// How a noise changes along the axes, by differences.
template <bool Flat>
HWY_NOINLINE Place slopeOf(const Spot &s, std::uint32_t seed)
{
    constexpr float Step = 1.0F / 64.0F;
    const V step = splat(Step);
    const V at = gradientAt<Flat>(s.p, seed, s.period);
    const V x = gradientAt<Flat>({hn::Add(s.p.x, step), s.p.y, s.p.z}, seed, s.period);
    const V y = gradientAt<Flat>({s.p.x, hn::Add(s.p.y, step), s.p.z}, seed, s.period);
    const V z = Flat ? at : gradientAt<Flat>({s.p.x, s.p.y, hn::Add(s.p.z, step)}, seed, s.period);
    return Place{hn::Sub(x, at), hn::Sub(y, at), hn::Sub(z, at)} * (1.0F / Step);
}

/// A field without sources: the curl of a noise in the plane, the product of two slopes in space.
template <bool Flat>
HWY_NOINLINE Place curlAt(const Spot &s, std::uint32_t seed)
{
    const Place a = slopeOf<Flat>(s, seed);
    if (Flat)
        return {a.y, hn::Neg(a.x), zero()};
    const Place b = slopeOf<Flat>(s, seed + 7919U);
    return {hn::MulSub(a.y, b.z, hn::Mul(a.z, b.y)), hn::MulSub(a.z, b.x, hn::Mul(a.x, b.z)),
            hn::MulSub(a.x, b.y, hn::Mul(a.y, b.x))};
}

struct CurlWork
{
    const OssEvStrip &strip;
    const Noise<Curling> &n;

    template <bool Flat>
    HWY_INLINE void at(std::size_t i, const Spot &s) const
    {
        if (n.output == OssEvNoise::Extra) {
            const Place curl = curlAt<Flat>(s, n.seed);
            store(curl.x, strip.output[0] + i);
            store(curl.y, strip.output[1] + i);
            store(curl.z, strip.output[2] + i);
            return;
        }
        Spot moved = s;
        for (int step = 0; step < n.own.steps; ++step)
            moved.p = moved.p + curlAt<Flat>(moved, n.seed) * (n.own.amount / float(n.own.steps));
        const V value = fractal<Flat>(finer(moved, 2.0F), n.layers, n.seed + 17U);
        finish(strip, n, i, value * 0.75F + 0.5F);
    }
};

struct Flow
{
    // Gradients that turn are a mixture of two fields of them.
    template <bool Flat>
    static HWY_NOINLINE V turned(const Noise<Flowing> &n, int octave, const Place &p, int period)
    {
        const std::uint32_t seed = octaveSeed(n.seed, octave);
        const auto k = std::size_t(octave);
        return hn::MulAdd(gradientAt<Flat>(p, seed, period), splat(n.own.cosine[k]),
                          gradientAt<Flat>(p, seed + 51U, period) * n.own.sine[k]);
    }

    template <bool Flat>
    static HWY_INLINE V at(const Noise<Flowing> &n, const Spot &s)
    {
        constexpr float Step = 1.0F / 64.0F;
        const V step = splat(Step);
        Place drifted{zero(), zero(), zero()};
        V sum = zero();
        float weight = n.layers.normaliser;
        float times = 1.0F;
        for (int octave = 0; octave < n.layers.octaves; ++octave) {
            const Spot f = finer(s, times);
            // What is fine is carried along by what is coarse.
            const Place p = f.p - drifted * (n.own.drift * times);
            const V here = turned<Flat>(n, octave, p, f.period);
            const V x = turned<Flat>(n, octave, {hn::Add(p.x, step), p.y, p.z}, f.period);
            const V y = turned<Flat>(n, octave, {p.x, hn::Add(p.y, step), p.z}, f.period);
            const V z = Flat ? here
                             : turned<Flat>(n, octave, {p.x, p.y, hn::Add(p.z, step)}, f.period);
            drifted = drifted
                      + Place{hn::Sub(x, here), hn::Sub(y, here), hn::Sub(z, here)}
                            * (1.0F / (Step * times * times));
            sum = hn::MulAdd(here, splat(weight), sum);
            weight *= n.layers.gain;
            times *= n.layers.lacunarity;
        }
        return sum * 0.75F + 0.5F;
    }
};

void domainWarped(const OssEvStrip &strip, const Noise<Warping> &n)
{
    noiseOver<DomainWarped>(strip, n);
}

void curl(const OssEvStrip &strip, const Noise<Curling> &n)
{
    eachSpot(strip, n, CurlWork{strip, n});
}

void flow(const OssEvStrip &strip, const Noise<Flowing> &n)
{
    noiseOver<Flow>(strip, n);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(domainWarped);
HWY_EXPORT(curl);
HWY_EXPORT(flow);
} // namespace OssEvSimd

namespace {

OssEvNoise::Flowing flowingOf(const OssEvKernelSetup &setup)
{
    OssEvNoise::Flowing own{};
    double turns = setup.real("Phase");
    for (std::size_t k = 0; k < own.cosine.size(); ++k) {
        own.cosine[k] = float(std::cos(turns * 6.283185307179586));
        own.sine[k] = float(std::sin(turns * 6.283185307179586));
        turns *= 2.0;
    }
    own.drift = float(setup.real("Drift"));
    return own;
}

} // namespace

void OssEvFamilies::addCurrents(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvNoise;
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    add(kernels,
        {"domainWarpedNoise",
         4,
         5,
         0.5,
         0.15,
         {real("Amount", 1.5, 0, 4), integer("Folds", 2, 1, 3)}},
        [](const Setup &setup) {
            const Warping own{float(setup.real("Amount")), setup.integer("Folds")};
            return make(&HWY_DYNAMIC_DISPATCH(domainWarped), setup, own, NoiseLayers::of(setup));
        });
    add(kernels,
        {"curlNoise",
         6,
         3,
         0.5,
         0.2,
         {real("Amount", 0.6, 0, 4), integer("Steps", 4, 1, 12)},
         {{"Vector", 3, true}}},
        [](const Setup &setup) {
            const Curling own{float(setup.real("Amount")), setup.integer("Steps")};
            return make(&HWY_DYNAMIC_DISPATCH(curl), setup, own, NoiseLayers::of(setup));
        });
    add(kernels,
        {"flowNoise", 4, 6, 0.55, 0.1, {real("Phase", 0.1, 0, 10), real("Drift", 0.25, 0, 1)}},
        [](const Setup &setup) {
            return make(&HWY_DYNAMIC_DISPATCH(flow), setup, flowingOf(setup),
                        NoiseLayers::of(setup));
        });
}
#endif
