// What the vector code of several kernels shares. Compiled once for each instruction set, so it has
// the kind of guard that Highway's own headers have, and no external linkage.
#if defined(OSSEV_SIMD_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_SIMD_INL_H_
#undef OSSEV_SIMD_INL_H_
#else
#define OSSEV_SIMD_INL_H_
#endif

#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <hwy/contrib/math/math-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;
using Ints = hn::ScalableTag<std::int32_t>;
using Words = hn::ScalableTag<std::uint32_t>;
using V = hn::Vec<Floats>;
using VI = hn::Vec<Ints>;
using VW = hn::Vec<Words>;

HWY_INLINE V splat(float value)
{
    return hn::Set(Floats(), value);
}

HWY_INLINE V zero()
{
    return hn::Zero(Floats());
}

HWY_INLINE V load(const float *from)
{
    return hn::Load(Floats(), from);
}

HWY_INLINE void store(V value, float *to)
{
    hn::Store(value, Floats(), to);
}

HWY_INLINE V clamp(V value, V low, V high)
{
    return hn::Min(hn::Max(value, low), high);
}

/// Between a and b by t.
HWY_INLINE V mix(V a, V b, V t)
{
    return hn::MulAdd(hn::Sub(b, a), t, a);
}

/// x to the power y for positive x; 0 for what is not positive.
HWY_INLINE V power(V x, V y)
{
    const Floats d;
    const V safe = hn::Max(x, splat(1e-30F));
    return hn::IfThenElseZero(hn::Gt(x, zero()), hn::Exp(d, hn::Mul(y, hn::Log(d, safe))));
}

HWY_INLINE V luminance(V red, V green, V blue, const OssEvWorkingSpace::Weights &weights)
{
    return hn::MulAdd(red, splat(weights[0]),
                      hn::MulAdd(green, splat(weights[1]), hn::Mul(blue, splat(weights[2]))));
}

/// Display values of IEC 61966-2-1 from linear ones; odd about zero. Written out here and in the next
/// function, although OssEvColorSpaces asks a library: that one works on buffers, and a merge needs
/// four pixels in registers. A test holds them to the formula.
HWY_INLINE V toSrgb(V linear)
{
    const V size = hn::Abs(linear);
    const V curved = hn::MulSub(splat(1.055F), power(size, splat(1.0F / 2.4F)), splat(0.055F));
    const V straight = hn::Mul(size, splat(12.92F));
    return hn::CopySign(hn::IfThenElse(hn::Gt(size, splat(0.0031308F)), curved, straight), linear);
}

HWY_INLINE V fromSrgb(V display)
{
    const V size = hn::Abs(display);
    const V curved = power(hn::Mul(hn::Add(size, splat(0.055F)), splat(1.0F / 1.055F)),
                           splat(2.4F));
    const V straight = hn::Mul(size, splat(1.0F / 12.92F));
    return hn::CopySign(hn::IfThenElse(hn::Gt(size, splat(0.04045F)), curved, straight), display);
}

/// Whether every value is 1: most alphas are.
HWY_INLINE bool allOne(const float *values, std::size_t count)
{
    const Floats d;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        if (!hn::AllTrue(d, hn::Eq(load(values + i), splat(1.0F))))
            return false;
    }
    return true;
}

// What a table of samples has at a place, counted in samples; linear between neighbours.
HWY_INLINE V sampleAt(const std::vector<float> &samples, V at)
{
    const Floats d;
    const Ints di;
    const auto last = float(samples.size() - 1);
    const V place = clamp(at, zero(), splat(last));
    const V whole = hn::Min(hn::Floor(place), splat(last - 1.0F));
    const VI index = hn::ConvertTo(di, whole);
    const V left = hn::GatherIndex(d, samples.data(), index);
    const V right = hn::GatherIndex(d, samples.data() + 1, index);
    return mix(left, right, hn::Sub(place, whole));
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
