// Normals as maps hold them, around one half, in vector code. Compiled once for each instruction set, so
// it has the kind of guard that Highway's own headers have, and no external linkage.
#if defined(OSSEV_NORMAL_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_NORMAL_INL_H_
#undef OSSEV_NORMAL_INL_H_
#else
#define OSSEV_NORMAL_INL_H_
#endif

#include "OssEvaluation/Kernels/Simd-inl.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

struct Normal
{
    V x;
    V y;
    V z;
};

/// What has no length points straight up.
HWY_INLINE Normal normalised(const Normal &n)
{
    const V square = hn::MulAdd(n.x, n.x, hn::MulAdd(n.y, n.y, hn::Mul(n.z, n.z)));
    const auto some = hn::Gt(square, splat(1e-12F));
    const V scale = hn::Div(splat(1.0F), hn::Sqrt(hn::IfThenElse(some, square, splat(1.0F))));
    return {hn::IfThenElseZero(some, hn::Mul(n.x, scale)),
            hn::IfThenElseZero(some, hn::Mul(n.y, scale)),
            hn::IfThenElse(some, hn::Mul(n.z, scale), splat(1.0F))};
}

HWY_INLINE Normal normalAt(const OssEvStripInput &input, std::size_t i)
{
    const auto component = [&input, i](std::size_t k) {
        return hn::MulSub(load(input.plane[k] + i), splat(2.0F), splat(1.0F));
    };
    return normalised({component(0), component(1), component(2)});
}

HWY_INLINE void putNormal(const Normal &n, const OssEvStrip &strip, std::size_t i)
{
    store(hn::MulAdd(n.x, splat(0.5F), splat(0.5F)), strip.output[0] + i);
    store(hn::MulAdd(n.y, splat(0.5F), splat(0.5F)), strip.output[1] + i);
    store(hn::MulAdd(n.z, splat(0.5F), splat(0.5F)), strip.output[2] + i);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
