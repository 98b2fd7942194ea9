// The loop of all kinds of noise: where texels lie, and what becomes of the number that a kind has there.
// Compiled once for each instruction set, like Simd-inl.h.
#if defined(OSSEV_NOISE_STRIP_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_NOISE_STRIP_INL_H_
#undef OSSEV_NOISE_STRIP_INL_H_
#else
#define OSSEV_NOISE_STRIP_INL_H_
#endif

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Kernels/Noise/Fractal-inl.h"
#include "OssEvaluation/Kernels/Position.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using OssEvNoise::NoiseShared;

/// Levels about the middle, then gray or between two colours.
HWY_INLINE void finish(const OssEvStrip &strip, const NoiseShared &n, std::size_t i, V value)
{
    V t = saturate(hn::MulAdd(value - n.middle, splat(n.contrast), splat(0.5F)));
    if (n.invert)
        t = 1.0F - t;
    if (n.output != OssEvNoise::Colored) {
        store(t, strip.output[0] + i);
        return;
    }
    for (std::size_t k = 0; k < 4; ++k)
        store(mix(splat(n.low[k]), splat(n.high[k]), t), strip.output[k] + i);
}

/// How far a texel is from the next in space, on the surface or on the plane.
HWY_INLINE float texelAt(const OssEvStrip &strip, bool flat, std::size_t i)
{
    const int size = std::max(1, std::min(strip.frame.width, strip.frame.height));
    if (flat || strip.surface == nullptr)
        return 1.0F / float(size);
    std::array<double, 3> alongU{};
    std::array<double, 3> alongV{};
    const int x = strip.x + int(i) % strip.width;
    const int y = strip.y + int(i) / strip.width;
    strip.surface->derivatives(std::clamp(x, 0, strip.frame.width - 1),
                               std::clamp(y, 0, strip.frame.height - 1), &alongU, &alongV);
    const double u = std::hypot(alongU[0], alongU[1], alongU[2]) / strip.frame.width;
    const double v = std::hypot(alongV[0], alongV[1], alongV[2]) / strip.frame.height;
    return float(std::min(std::max(u, v), 1e3));
}

/// Calls `each(i, spot, flat)`, the last as a constant of its type.
template <bool Flat, class Each>
HWY_INLINE void eachSpotIn(const OssEvStrip &strip, const NoiseShared &n,
                           const OssEvPositions &positions, const Each &each)
{
    const bool tiles = Flat && n.tile && !strip.inputs[0].connected;
    // An even number of cells suits every lattice.
    const int period = tiles ? std::max(1, int(std::lround(n.scale * 0.5F))) * 2 : 0;
    const bool onSurface = !strip.inputs[1].connected;
    const V farthest = splat(1e6F);
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V scale = tiles ? splat(float(period)) : load(strip.inputs[0].plane[0] + i);
        Place p;
        V *axes[3] = {&p.x, &p.y, &p.z};
        for (std::size_t k = 0; k < 3; ++k) {
            const V at = hn::Mul(load(positions.plane[k] + i), scale);
            *axes[k] = clamp(at, hn::Neg(farthest), farthest);
        }
        const V texel = scale * texelAt(strip, Flat || !onSurface, i);
        each.template at<Flat>(i, Spot{p, period, hn::Max(texel, splat(1e-6F))});
    }
}

template <class Each>
HWY_INLINE void eachSpot(const OssEvStrip &strip, const NoiseShared &n, const Each &each)
{
    const OssEvPositions positions = OssEvPositions::of(strip, 1, n.flat);
    if (positions.flat)
        eachSpotIn<true>(strip, n, positions, each);
    else
        eachSpotIn<false>(strip, n, positions, each);
}

/// Of a kind with `template <bool Flat> static V at(const Values &, const Spot &)`.
template <class Kind, class Values>
struct NoiseWork
{
    const OssEvStrip &strip;
    const Values &n;

    template <bool Flat>
    HWY_INLINE void at(std::size_t i, const Spot &spot) const
    {
        finish(strip, n, i, Kind::template at<Flat>(n, spot));
    }
};

template <class Kind, class Values>
HWY_INLINE void noiseOver(const OssEvStrip &strip, const Values &n)
{
    eachSpot(strip, n, NoiseWork<Kind, Values>{strip, n});
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
