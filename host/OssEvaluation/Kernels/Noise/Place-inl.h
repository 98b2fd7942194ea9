// Short forms for vectors of numbers and of places, and functions of the circle by polynomials. Compiled
// once for each instruction set, like Simd-inl.h.
#if defined(OSSEV_PLACE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_PLACE_INL_H_
#undef OSSEV_PLACE_INL_H_
#else
#define OSSEV_PLACE_INL_H_
#endif

#include "OssEvaluation/Kernels/Simd-inl.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

struct Place
{
    V x;
    V y;
    V z;
};

HWY_INLINE V operator*(V a, float b)
{
    return hn::Mul(a, splat(b));
}

HWY_INLINE V operator+(V a, float b)
{
    return hn::Add(a, splat(b));
}

HWY_INLINE V operator-(V a, float b)
{
    return hn::Sub(a, splat(b));
}

HWY_INLINE V operator-(float a, V b)
{
    return hn::Sub(splat(a), b);
}

HWY_INLINE Place operator*(Place p, float by)
{
    return {p.x * by, p.y * by, p.z * by};
}

HWY_INLINE Place operator+(Place a, Place b)
{
    return {hn::Add(a.x, b.x), hn::Add(a.y, b.y), hn::Add(a.z, b.z)};
}

HWY_INLINE Place operator-(Place a, Place b)
{
    return {hn::Sub(a.x, b.x), hn::Sub(a.y, b.y), hn::Sub(a.z, b.z)};
}

HWY_INLINE V dot(Place a, Place b)
{
    return hn::MulAdd(a.x, b.x, hn::MulAdd(a.y, b.y, hn::Mul(a.z, b.z)));
}

HWY_INLINE V fraction(V value)
{
    return hn::Sub(value, hn::Floor(value));
}

HWY_INLINE V saturate(V value)
{
    return clamp(value, zero(), splat(1.0F));
}

/// 0 up to `from`, 1 from `to` on, smooth between them.
HWY_INLINE V smoothStep(float from, float to, V value)
{
    const V t = saturate((value - from) * (1.0F / (to - from)));
    return hn::Mul(hn::Mul(t, t), 3.0F - t * 2.0F);
}

/// Sine and cosine of a number of turns, by a polynomial; wrong by 1e-5 at most.
HWY_INLINE V sineOfQuarter(V z)
{
    const V s = hn::Mul(z, z);
    V sum = hn::MulAdd(s, splat(42.05869F), splat(-76.70586F));
    sum = hn::MulAdd(sum, s, splat(81.605249F));
    sum = hn::MulAdd(sum, s, splat(-41.341702F));
    return hn::Mul(z, hn::MulAdd(sum, s, splat(6.2831853F)));
}

HWY_INLINE V cosineOfTurns(V turns)
{
    return sineOfQuarter(0.25F - hn::Abs(hn::Sub(turns, hn::Round(turns))));
}

HWY_INLINE V sineOfTurns(V turns)
{
    return cosineOfTurns(turns - 0.25F);
}

/// The angle of a direction in turns, -0.5 to 0.5; 0 for none. Wrong by 2e-6 turns at most (polynomial
/// after Abramowitz and Stegun, 4.4.49).
HWY_INLINE V turnsOf(V y, V x)
{
    const V ax = hn::Abs(x);
    const V ay = hn::Abs(y);
    const V longer = hn::Max(hn::Max(ax, ay), splat(1e-20F));
    const V t = hn::Div(hn::Min(ax, ay), longer);
    const V s = hn::Mul(t, t);
    V sum = hn::MulAdd(s, splat(0.0208351F), splat(-0.0851330F));
    sum = hn::MulAdd(sum, s, splat(0.1801410F));
    sum = hn::MulAdd(sum, s, splat(-0.3302995F));
    sum = hn::MulAdd(sum, s, splat(0.9998660F));
    V turns = hn::Mul(sum, t) * 0.15915494F;
    turns = hn::IfThenElse(hn::Gt(ay, ax), 0.25F - turns, turns);
    turns = hn::IfThenElse(hn::Lt(x, zero()), 0.5F - turns, turns);
    return hn::CopySign(turns, y);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
