// How kernels of vector code change colours one texel at a time. Compiled once for each instruction
// set, so it has the kind of guard that Highway's own headers have, and no external linkage.
#if defined(OSSEV_CHANGE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_CHANGE_INL_H_
#undef OSSEV_CHANGE_INL_H_
#else
#define OSSEV_CHANGE_INL_H_
#endif

#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

template <int N>
struct Channels
{
    V c[N];
};

// Changes colours that are not premultiplied.
template <int N, class Change>
HWY_INLINE Channels<N> changed(const Channels<N> &before, const Change &change)
{
    Channels<N> after = before;
    change.apply(after);
    return after;
}

// Changes premultiplied colours. Light without cover has no colour underneath: it is taken as it is.
template <int N, class Change>
HWY_INLINE Channels<N> changedSoft(const Channels<N> &before, V alpha, const Change &change)
{
    const V cover = hn::IfThenElse(hn::Gt(alpha, zero()), alpha, splat(1.0F));
    Channels<N> after;
    for (int k = 0; k < N; ++k)
        after.c[k] = hn::Div(before.c[k], cover);
    change.apply(after);
    for (int k = 0; k < N; ++k)
        after.c[k] = hn::Mul(after.c[k], cover);
    return after;
}

// Applies `change` to N channels of a strip, by alpha and mask.
template <int N, class Change>
void adjustChannels(const OssEvStrip &strip, const Change &change)
{
    const OssEvStripInput &in = strip.inputs[0];
    const float *mask = strip.inputs[1].connected ? strip.inputs[1].plane[0] : nullptr;
    const float *alpha = strip.outputChannels == 4 ? in.plane[3] : nullptr;
    const bool soft = alpha != nullptr && !allOne(alpha, strip.texels());
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        Channels<N> before;
        for (int k = 0; k < N; ++k)
            before.c[k] = load(in.plane[k] + i);
        const Channels<N> after = soft ? changedSoft(before, load(alpha + i), change)
                                       : changed(before, change);
        const V part = mask != nullptr ? load(mask + i) : splat(1.0F);
        for (int k = 0; k < N; ++k) {
            const V result = mask != nullptr ? mix(before.c[k], after.c[k], part) : after.c[k];
            store(result, strip.output[k] + i);
        }
    }
    if (alpha != nullptr)
        std::copy_n(alpha, strip.texels(), strip.output[3]);
}

template <class Change>
void adjust(const OssEvStrip &strip, const Change &change)
{
    if (strip.outputChannels == 1)
        adjustChannels<1>(strip, change);
    else
        adjustChannels<3>(strip, change);
}

/// Hue in turns, from the hexagon of the largest and smallest channel; 0 for greys.
HWY_INLINE V hueOf(const Channels<3> &x, V high, V range)
{
    const auto grey = hn::Le(range, splat(1e-20F));
    const V sixth = hn::Div(splat(1.0F / 6.0F), hn::IfThenElse(grey, splat(1.0F), range));
    const V fromGreen = hn::MulAdd(hn::Sub(x.c[2], x.c[0]), sixth, splat(2.0F / 6.0F));
    const V fromBlue = hn::MulAdd(hn::Sub(x.c[0], x.c[1]), sixth, splat(4.0F / 6.0F));
    V hue = hn::IfThenElse(hn::Eq(high, x.c[1]), fromGreen, fromBlue);
    hue = hn::IfThenElse(hn::Eq(high, x.c[0]), hn::Mul(hn::Sub(x.c[1], x.c[2]), sixth), hue);
    return hn::IfThenElseZero(hn::Not(grey), hue);
}

/// A channel of the colour of a hue: red at the offset 0, green at 4/6, blue at 2/6.
HWY_INLINE V hueChannel(V hue, float offset, V high, V range)
{
    const V turned = hn::Add(hue, splat(offset));
    const V t = hn::Sub(turned, hn::Floor(turned));
    const V up = hn::Abs(hn::MulSub(t, splat(6.0F), splat(3.0F)));
    const V part = clamp(hn::Sub(splat(2.0F), up), zero(), splat(1.0F));
    return hn::NegMulAdd(range, part, high);
}

HWY_INLINE Channels<3> times(const OssEvWorkingSpace::Matrix &matrix, const Channels<3> &color)
{
    Channels<3> result;
    for (std::size_t k = 0; k < 3; ++k) {
        result.c[k] = hn::Mul(splat(matrix[3 * k]), color.c[0]);
        result.c[k] = hn::MulAdd(splat(matrix[3 * k + 1]), color.c[1], result.c[k]);
        result.c[k] = hn::MulAdd(splat(matrix[3 * k + 2]), color.c[2], result.c[k]);
    }
    return result;
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
