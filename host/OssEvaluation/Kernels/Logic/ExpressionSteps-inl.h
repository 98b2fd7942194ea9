// What the steps of expressions do. Compiled once for each instruction set, like Simd-inl.h.
#if defined(OSSEV_EXPRESSION_STEPS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_EXPRESSION_STEPS_INL_H_
#undef OSSEV_EXPRESSION_STEPS_INL_H_
#else
#define OSSEV_EXPRESSION_STEPS_INL_H_
#endif

#include "OssEvaluation/Kernels/Hash-inl.h"
#include "OssEvaluation/Kernels/Noise/Fractal-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

HWY_INLINE V quotient(V a, V b)
{
    const auto none = hn::Eq(b, zero());
    return hn::IfThenElseZero(hn::Not(none), hn::Div(a, hn::IfThenElse(none, splat(1.0F), b)));
}

HWY_INLINE V truth(hn::Mask<Floats> mask)
{
    return hn::IfThenElseZero(mask, splat(1.0F));
}

// No lambdas, which would not know the instruction set.
struct NotOf
{
    HWY_INLINE V operator()(V a) const { return truth(hn::Eq(a, zero())); }
};

struct AbsOf
{
    HWY_INLINE V operator()(V a) const { return hn::Abs(a); }
};

struct SignOf
{
    HWY_INLINE V operator()(V a) const
    {
        return hn::Sub(truth(hn::Gt(a, zero())), truth(hn::Lt(a, zero())));
    }
};

struct FloorOf
{
    HWY_INLINE V operator()(V a) const { return hn::Floor(a); }
};

struct RoundOf
{
    HWY_INLINE V operator()(V a) const { return hn::Round(a); }
};

struct SqrtOf
{
    HWY_INLINE V operator()(V a) const { return hn::Sqrt(hn::Max(a, zero())); }
};

struct ExpOf
{
    HWY_INLINE V operator()(V a) const
    {
        return hn::Exp(Floats(), clamp(a, splat(-80.0F), splat(80.0F)));
    }
};

struct LogOf
{
    HWY_INLINE V operator()(V a) const { return hn::Log(Floats(), hn::Max(a, splat(1e-30F))); }
};

/// Places so far out have no angle left that means anything.
struct SinOf
{
    HWY_INLINE V operator()(V a) const
    {
        return hn::Sin(Floats(), clamp(a, splat(-30000.0F), splat(30000.0F)));
    }
};

struct CosOf
{
    HWY_INLINE V operator()(V a) const
    {
        return hn::Cos(Floats(), clamp(a, splat(-30000.0F), splat(30000.0F)));
    }
};

struct AddOf
{
    HWY_INLINE V operator()(V a, V b) const { return hn::Add(a, b); }
};

struct SubtractOf
{
    HWY_INLINE V operator()(V a, V b) const { return hn::Sub(a, b); }
};

struct MultiplyOf
{
    HWY_INLINE V operator()(V a, V b) const { return hn::Mul(a, b); }
};

struct DivideOf
{
    HWY_INLINE V operator()(V a, V b) const { return quotient(a, b); }
};

struct ModuloOf
{
    HWY_INLINE V operator()(V a, V b) const
    {
        return hn::NegMulAdd(b, hn::Floor(quotient(a, b)), a);
    }
};

struct PowerOf
{
    HWY_INLINE V operator()(V a, V b) const
    {
        return hn::IfThenElse(hn::Eq(b, zero()), splat(1.0F), power(a, b));
    }
};

struct MinimumOf
{
    HWY_INLINE V operator()(V a, V b) const { return hn::Min(a, b); }
};

struct MaximumOf
{
    HWY_INLINE V operator()(V a, V b) const { return hn::Max(a, b); }
};

struct LessOf
{
    HWY_INLINE V operator()(V a, V b) const { return truth(hn::Lt(a, b)); }
};

struct LessOrEqualOf
{
    HWY_INLINE V operator()(V a, V b) const { return truth(hn::Le(a, b)); }
};

struct EqualOf
{
    HWY_INLINE V operator()(V a, V b) const { return truth(hn::Eq(a, b)); }
};

struct AngleOf
{
    HWY_INLINE V operator()(V y, V x) const { return turnsOf(y, x) * 6.28318531F; }
};

struct MixOf
{
    HWY_INLINE V operator()(V a, V b, V t) const { return mix(a, b, t); }
};

struct SmoothOf
{
    HWY_INLINE V operator()(V from, V to, V value) const
    {
        const V t = saturate(quotient(hn::Sub(value, from), hn::Sub(to, from)));
        const V curved = hn::Mul(hn::Mul(t, t), 3.0F - t * 2.0F);
        return hn::IfThenElse(hn::Eq(from, to), truth(hn::Ge(value, to)), curved);
    }
};

struct SelectOf
{
    HWY_INLINE V operator()(V when, V yes, V no) const
    {
        return hn::IfThenElse(hn::Eq(when, zero()), no, yes);
    }
};

struct LuminanceOf
{
    OssEvWorkingSpace::Weights weights;

    HWY_INLINE V operator()(V r, V g, V b) const { return luminance(r, g, b, weights); }
};

HWY_INLINE Spot spotOf(V x, V y, V z)
{
    const V farthest = splat(1e6F);
    Place p{x, y, z};
    for (V *axis : {&p.x, &p.y, &p.z})
        *axis = clamp(*axis, hn::Neg(farthest), farthest);
    return {p, 0, splat(1.0F)};
}

struct NoiseOf
{
    std::uint32_t seed;

    HWY_INLINE V operator()(V x, V y, V z) const
    {
        return gradientAt<false>(spotOf(x, y, z).p, seed) * 0.5F + 0.5F;
    }
};

struct FractalOf
{
    const OssEvNoise::NoiseLayers *layers;
    std::uint32_t seed;

    HWY_INLINE V operator()(V x, V y, V z) const
    {
        const V noise = fractal<false>(spotOf(x, y, z), *layers, seed);
        return saturate(noise * 0.75F + 0.5F);
    }
};

struct RandomOf
{
    std::uint32_t seed;

    HWY_INLINE V operator()(V x, V y, V z) const
    {
        const Ints di;
        const Place p = spotOf(hn::Floor(x), hn::Floor(y), hn::Floor(z)).p;
        return unit(
            hash(hn::ConvertTo(di, p.x), hn::ConvertTo(di, p.y), hn::ConvertTo(di, p.z), seed));
    }
};

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
