// Sums of noise on lattices: the plain ones, and those that fold, weigh or cover them. Ridges after
// F. K. Musgrave in D. Ebert and others, "Texturing and Modeling" (2003).

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Noise/Gradients.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/NoiseStrip-inl.h"

#ifndef OSSEV_GRADIENTS_VALUES
#define OSSEV_GRADIENTS_VALUES

namespace OssEvNoise {

struct Ridges
{
    /// How much of an octave stays where the one before has none.
    float smooth;
    float sharpness;
};

struct Cover
{
    float coverage;
    float softness;
    float billows;
};

} // namespace OssEvNoise
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNoise;

/// Sums lie near their middle; this spreads them over what can be seen.
constexpr float Spread = 0.75F;

struct Perlin
{
    template <bool Flat>
    static HWY_INLINE V at(const NoiseShared &n, const Spot &s)
    {
        return layered<GradientBasis<Flat>>(s, n.layers, n.seed) * Spread + 0.5F;
    }
};

struct Simplex
{
    template <bool Flat>
    static HWY_INLINE V at(const NoiseShared &n, const Spot &s)
    {
        return layered<SimplexBasis<Flat>>(s, n.layers, n.seed) * Spread + 0.5F;
    }
};

struct ValueSum
{
    template <bool Flat>
    static HWY_INLINE V at(const NoiseShared &n, const Spot &s)
    {
        return layered<ValueBasis<Flat>>(s, n.layers, n.seed) * Spread + 0.5F;
    }
};

struct Billow
{
    template <bool Flat>
    static HWY_INLINE V at(const NoiseShared &n, const Spot &s)
    {
        return layered<GradientBasis<Flat>, true>(s, n.layers, n.seed) * 1.6F;
    }
};

struct Ridged
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Ridges> &n, const Spot &s)
    {
        V sum = zero();
        V before = splat(1.0F);
        float weight = n.layers.normaliser;
        float times = 1.0F;
        for (int octave = 0; octave < n.layers.octaves; ++octave) {
            const V noise = gradientAt<Flat>(finer(s, times).p, octaveSeed(n.seed, octave),
                                             finer(s, times).period);
            const V crest = saturate(1.0F - hn::Abs(noise) * n.own.sharpness);
            const V signal = hn::Mul(hn::Mul(crest, crest), before);
            sum = hn::MulAdd(signal, splat(weight), sum);
            before = saturate(
                hn::MulAdd(signal, splat(2.0F * (1.0F - n.own.smooth)), splat(n.own.smooth)));
            weight *= n.layers.gain;
            times *= n.layers.lacunarity;
        }
        return sum;
    }
};

struct Clouds
{
    template <bool Flat>
    static HWY_INLINE V at(const Noise<Cover> &n, const Spot &s)
    {
        const Spot moved = warped<Flat>(s, NoiseLayers{2, 2.0F, 0.5F, 0.6667F}, 0.35F, n.seed);
        const V sum = fractal<Flat>(moved, n.layers, n.seed);
        const V puffs = 0.6F
                        - layered<GradientBasis<Flat>, true>(finer(moved, 2.0F), n.layers,
                                                             n.seed + 31U)
                              * 1.6F;
        const V body = mix(sum, hn::MulAdd(sum, splat(0.6F), puffs), splat(n.own.billows)) * 0.75F
                       + 0.5F;
        const float from = 0.95F - n.own.coverage;
        return smoothStep(from, from + 0.05F + n.own.softness, body);
    }
};

void perlin(const OssEvStrip &strip, const Noise<Nothing> &n)
{
    noiseOver<Perlin>(strip, n);
}

void simplex(const OssEvStrip &strip, const Noise<Nothing> &n)
{
    noiseOver<Simplex>(strip, n);
}

void valueSum(const OssEvStrip &strip, const Noise<Nothing> &n)
{
    noiseOver<ValueSum>(strip, n);
}

void billow(const OssEvStrip &strip, const Noise<Nothing> &n)
{
    noiseOver<Billow>(strip, n);
}

void ridged(const OssEvStrip &strip, const Noise<Ridges> &n)
{
    noiseOver<Ridged>(strip, n);
}

void clouds(const OssEvStrip &strip, const Noise<Cover> &n)
{
    noiseOver<Clouds>(strip, n);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(perlin);
HWY_EXPORT(simplex);
HWY_EXPORT(valueSum);
HWY_EXPORT(billow);
HWY_EXPORT(ridged);
HWY_EXPORT(clouds);
} // namespace OssEvSimd

void OssEvFamilies::addGradientNoises(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvNoise;
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    const auto plain = [kernels](const char *name, double scale, int octaves, Make make) {
        add(kernels, {name, scale, octaves}, make);
    };
    plain("perlinNoise", 8, 3, [](const Setup &setup) {
        return make(&HWY_DYNAMIC_DISPATCH(perlin), setup, Nothing{}, NoiseLayers::of(setup));
    });
    plain("simplexNoise", 8, 3, [](const Setup &setup) {
        return make(&HWY_DYNAMIC_DISPATCH(simplex), setup, Nothing{}, NoiseLayers::of(setup));
    });
    plain("valueNoise", 8, 3, [](const Setup &setup) {
        return make(&HWY_DYNAMIC_DISPATCH(valueSum), setup, Nothing{}, NoiseLayers::of(setup));
    });
    plain("billowNoise", 6, 5, [](const Setup &setup) {
        return make(&HWY_DYNAMIC_DISPATCH(billow), setup, Nothing{}, NoiseLayers::of(setup));
    });
    add(kernels,
        {"ridgedNoise",
         4,
         7,
         0.5,
         0.2,
         {real("Smoothness", 0.1, 0, 1), real("Sharpness", 1.2, 0.2, 4)}},
        [](const Setup &setup) {
            const Ridges own{float(setup.real("Smoothness")), float(setup.real("Sharpness"))};
            return make(&HWY_DYNAMIC_DISPATCH(ridged), setup, own, NoiseLayers::of(setup));
        });
    add(kernels,
        {"clouds",
         4,
         7,
         0.5,
         0,
         {real("Coverage", 0.5, 0, 1), real("Softness", 0.5, 0, 1), real("Billows", 0.4, 0, 1)}},
        [](const Setup &setup) {
            const Cover own{float(setup.real("Coverage")), float(setup.real("Softness")),
                            float(setup.real("Billows"))};
            return make(&HWY_DYNAMIC_DISPATCH(clouds), setup, own, NoiseLayers::of(setup));
        });
}
#endif
