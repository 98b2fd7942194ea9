// Sums of octaves of a noise, and places moved by noise. Compiled once for each instruction set, like
// Simd-inl.h.
#if defined(OSSEV_FRACTAL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_FRACTAL_INL_H_
#undef OSSEV_FRACTAL_INL_H_
#else
#define OSSEV_FRACTAL_INL_H_
#endif

#include "OssEvaluation/Kernels/Noise/Lattice-inl.h"
#include "OssEvaluation/Kernels/Noise/NoiseRow.h"

#include <algorithm>
#include <cmath>

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using OssEvNoise::NoiseLayers;

/// What a noise is asked at: places in cells of its lattice, which repeats after `period` where that is
/// not 0. `texel` is the size of a texel in cells.
struct Spot
{
    Place p;
    int period;
    V texel;
    /// Along y, where that is another; 0 where it is not.
    int rows = 0;
};

/// The lattice of one octave is `times` finer than the spot's, or about that much where it repeats.
HWY_INLINE Spot finer(const Spot &spot, float times, int quantum = 1)
{
    const float shift = times - 1.0F;
    const Place offset{splat(0.37F * shift), splat(0.71F * shift), splat(0.19F * shift)};
    if (spot.period == 0)
        return {spot.p * times + offset, 0, spot.texel * times};
    const float wanted = float(spot.period) * times / float(quantum);
    const int period = std::max(1, int(std::lround(std::min(wanted, 1e6F)))) * quantum;
    const float ratio = float(period) / float(spot.period);
    return {spot.p * ratio + offset, period, spot.texel * ratio};
}

template <bool Flat>
struct GradientBasis
{
    static constexpr int Quantum = 1;

    static HWY_INLINE V at(const Spot &s, std::uint32_t seed)
    {
        return gradientAt<Flat>(s.p, seed, s.period);
    }
};

template <bool Flat>
struct ValueBasis
{
    static constexpr int Quantum = 1;

    static HWY_INLINE V at(const Spot &s, std::uint32_t seed)
    {
        return valueNoise<Flat>(s.p, seed, s.period);
    }
};

template <bool Flat>
struct SimplexBasis
{
    static constexpr int Quantum = 2;

    static HWY_INLINE V at(const Spot &s, std::uint32_t seed)
    {
        return Flat ? simplexInPlane(s.p, seed, s.period) : simplexInSpace(s.p, seed);
    }
};

HWY_INLINE std::uint32_t octaveSeed(std::uint32_t seed, int octave)
{
    return seed + std::uint32_t(octave) * 101U;
}

/// Sum of octaves, -1 to 1; with `Folded` of their absolute values, 0 to 1.
template <class Basis, bool Folded = false>
HWY_INLINE V layered(const Spot &spot, const NoiseLayers &layers, std::uint32_t seed)
{
    V sum = zero();
    float weight = layers.normaliser;
    float times = 1.0F;
    for (int octave = 0; octave < layers.octaves; ++octave) {
        const V noise = Basis::at(finer(spot, times, Basis::Quantum), octaveSeed(seed, octave));
        sum = hn::MulAdd(Folded ? hn::Abs(noise) : noise, splat(weight), sum);
        weight *= layers.gain;
        times *= layers.lacunarity;
    }
    return sum;
}

/// The usual sum: of gradient noise. Not inlined, for many kinds call it several times.
template <bool Flat>
HWY_NOINLINE V fractal(const Spot &spot, const NoiseLayers &layers, std::uint32_t seed)
{
    return layered<GradientBasis<Flat>>(spot, layers, seed);
}

/// The spot moved by three sums of noise, by up to about `amount` cells.
template <bool Flat>
HWY_NOINLINE Spot warped(const Spot &spot, const NoiseLayers &layers, float amount,
                         std::uint32_t seed)
{
    const V dx = fractal<Flat>(spot, layers, seed + 7919U);
    const V dy = fractal<Flat>(spot, layers, seed + 15838U);
    const V dz = Flat ? zero() : fractal<Flat>(spot, layers, seed + 23757U);
    return {spot.p + Place{dx, dy, dz} * amount, spot.period, spot.texel};
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
