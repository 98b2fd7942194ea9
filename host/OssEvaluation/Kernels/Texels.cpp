#include "OssEvaluation/Values/Texels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Texels.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <hwy/highway.h>

#include <limits>

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using Halves = hn::Rebind<hwy::float16_t, Floats>;

void toFloats(const std::uint16_t *from, float *to, std::size_t count)
{
    const Floats d;
    const Halves h;
    const auto *halves = reinterpret_cast<const hwy::float16_t *>(from);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d))
        store(hn::PromoteTo(d, hn::Load(h, halves + i)), to + i);
}

HWY_INLINE V finite(V value, V largest)
{
    const V number = hn::IfThenElseZero(hn::Eq(value, value), value);
    return clamp(number, hn::Neg(largest), largest);
}

void toHalves(const float *from, std::uint16_t *to, std::size_t count)
{
    const Floats d;
    const Halves h;
    const V largest = splat(65504.0F);
    auto *halves = reinterpret_cast<hwy::float16_t *>(to);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d))
        hn::Store(hn::DemoteTo(h, finite(load(from + i), largest)), h, halves + i);
}

void toFinite(float *values, std::size_t count)
{
    const Floats d;
    const V largest = splat(std::numeric_limits<float>::max());
    for (std::size_t i = 0; i < count; i += hn::Lanes(d))
        store(finite(load(values + i), largest), values + i);
}

bool same(const float *values, std::size_t count)
{
    const Floats d;
    const V first = splat(values[0]);
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        if (!hn::AllTrue(d, hn::Eq(load(values + i), first)))
            return false;
    }
    return true;
}

void toLuminance(const float *red, const float *green, const float *blue,
                 const OssEvWorkingSpace::Weights &weights, float *to, std::size_t count)
{
    for (std::size_t i = 0; i < count; i += hn::Lanes(Floats()))
        store(luminance(load(red + i), load(green + i), load(blue + i), weights), to + i);
}

void toUnmultiplied(const float *values, const float *alpha, float *to, std::size_t count)
{
    for (std::size_t i = 0; i < count; i += hn::Lanes(Floats())) {
        const V cover = load(alpha + i);
        const auto isThere = hn::Gt(cover, zero());
        store(hn::Div(load(values + i), hn::IfThenElse(isThere, cover, splat(1.0F))), to + i);
    }
}

void toMean(const float *a, const float *b, const float *c, float *to, std::size_t count)
{
    const V third = splat(1.0F / 3.0F);
    for (std::size_t i = 0; i < count; i += hn::Lanes(Floats())) {
        const V sum = hn::Add(load(a + i), hn::Add(load(b + i), load(c + i)));
        store(hn::Mul(sum, third), to + i);
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(toFloats);
HWY_EXPORT(toHalves);
HWY_EXPORT(toFinite);
HWY_EXPORT(same);
HWY_EXPORT(toLuminance);
HWY_EXPORT(toMean);
HWY_EXPORT(toUnmultiplied);
} // namespace OssEvSimd

void OssEvTexels::halfToFloat(const std::uint16_t *from, float *to, std::size_t count)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(toFloats)(from, to, count);
}

void OssEvTexels::floatToHalf(const float *from, std::uint16_t *to, std::size_t count)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(toHalves)(from, to, count);
}

void OssEvTexels::makeFinite(float *values, std::size_t count)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(toFinite)(values, count);
}

bool OssEvTexels::isUniform(const float *values, std::size_t count)
{
    using namespace OssEvSimd;
    return HWY_DYNAMIC_DISPATCH(same)(values, count);
}

void OssEvTexels::luminance(const float *red, const float *green, const float *blue,
                            const OssEvWorkingSpace::Weights &weights, float *to, std::size_t count)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(toLuminance)(red, green, blue, weights, to, count);
}

void OssEvTexels::unmultiply(const float *values, const float *alpha, float *to, std::size_t count)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(toUnmultiplied)(values, alpha, to, count);
}

void OssEvTexels::mean(const float *a, const float *b, const float *c, float *to, std::size_t count)
{
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(toMean)(a, b, c, to, count);
}

std::array<float, 4> OssEvTexels::convert(const std::array<float, 4> &texel, int from, int to,
                                          const OssEvWorkingSpace::Weights &luminance)
{
    if (to == 0 || from == to)
        return texel;
    if (from == 1)
        return {texel[0], texel[0], texel[0], 1.0F};
    if (to == 1 && from == 3)
        return {(texel[0] + texel[1] + texel[2]) / 3.0F, 0.0F, 0.0F, 0.0F};
    if (to == 1) {
        return {texel[0] * luminance[0] + texel[1] * luminance[1] + texel[2] * luminance[2], 0.0F,
                0.0F, 0.0F};
    }
    return {texel[0], texel[1], texel[2], 1.0F};
}
#endif
