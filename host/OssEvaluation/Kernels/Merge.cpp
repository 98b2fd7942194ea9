// One stream over another. Blending and compositing follow W3C "Compositing and Blending Level 1"
// on premultiplied colours; colours above 1 are kept wherever a mode makes sense for them.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/MergeRows.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Merge.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#ifndef OSSEV_MERGE_VALUES
#define OSSEV_MERGE_VALUES

namespace OssEvMerge {

/// In the order in which the node type lists them.
enum Mode {
    Normal,
    Add,
    Subtract,
    Multiply,
    Divide,
    Screen,
    Overlay,
    SoftLight,
    HardLight,
    ColorDodge,
    ColorBurn,
    LinearBurn,
    Darken,
    Lighten,
    Difference,
    Exclusion,
    Average,
    Hue,
    Saturation,
    Color,
    Luminosity,
    ModeCount
};

struct MergeValues
{
    int mode;
    float amount;
    /// Blends display values of sRGB instead of linear ones.
    bool displayValues;
    OssEvWorkingSpace working;

    const OssEvWorkingSpace::Weights &luminance() const
    {
        return displayValues ? OssEvWorkingSpace::Bt709Luminance : working.luminance;
    }
};

} // namespace OssEvMerge
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvMerge;

struct Rgb
{
    V c[3];
};

HWY_INLINE V one()
{
    return splat(1.0F);
}

HWY_INLINE V screen(V b, V s)
{
    return hn::NegMulAdd(b, s, hn::Add(b, s));
}

HWY_INLINE V hardLight(V b, V s)
{
    const V twice = hn::Add(s, s);
    return hn::IfThenElse(hn::Le(s, splat(0.5F)), hn::Mul(b, twice),
                          screen(b, hn::Sub(twice, one())));
}

HWY_INLINE V softLight(V b, V s)
{
    const V polynomial = hn::Mul(
        hn::MulAdd(hn::MulSub(splat(16.0F), b, splat(12.0F)), b, splat(4.0F)), b);
    const V root = hn::Sqrt(hn::Max(b, zero()));
    const V lifted = hn::IfThenElse(hn::Le(b, splat(0.25F)), polynomial, root);
    const V strength = hn::MulSub(s, splat(2.0F), one());
    const V darker = hn::MulAdd(strength, hn::Mul(b, hn::Sub(one(), b)), b);
    const V lighter = hn::MulAdd(strength, hn::Sub(lifted, b), b);
    return hn::IfThenElse(hn::Le(s, splat(0.5F)), darker, lighter);
}

HWY_INLINE V colorDodge(V b, V s)
{
    const V left = hn::Sub(one(), s);
    const V ratio = hn::Min(one(), hn::Div(b, hn::Max(left, splat(1e-6F))));
    return hn::IfThenElseZero(hn::Gt(b, zero()), ratio);
}

HWY_INLINE V colorBurn(V b, V s)
{
    const V ratio = hn::Div(hn::Sub(one(), b), hn::Max(s, splat(1e-6F)));
    const V burnt = hn::Sub(one(), hn::Min(one(), ratio));
    return hn::IfThenElse(hn::Ge(b, one()), one(), burnt);
}

HWY_INLINE V divide(V b, V s)
{
    const auto some = hn::Gt(s, splat(1e-6F));
    return hn::IfThenElse(some, hn::Div(b, hn::IfThenElse(some, s, one())), one());
}

template <int Kind>
HWY_INLINE V blendChannel(V b, V s)
{
    if constexpr (Kind == Normal)
        return s;
    else if constexpr (Kind == Add)
        return hn::Add(b, s);
    else if constexpr (Kind == Subtract)
        return hn::Max(hn::Sub(b, s), zero());
    else if constexpr (Kind == Multiply)
        return hn::Mul(b, s);
    else if constexpr (Kind == Divide)
        return divide(b, s);
    else if constexpr (Kind == Screen)
        return screen(b, s);
    else if constexpr (Kind == Overlay)
        return hardLight(s, b);
    else if constexpr (Kind == SoftLight)
        return softLight(b, s);
    else if constexpr (Kind == HardLight)
        return hardLight(b, s);
    else if constexpr (Kind == ColorDodge)
        return colorDodge(b, s);
    else if constexpr (Kind == ColorBurn)
        return colorBurn(b, s);
    else if constexpr (Kind == LinearBurn)
        return hn::Max(hn::Sub(hn::Add(b, s), one()), zero());
    else if constexpr (Kind == Darken)
        return hn::Min(b, s);
    else if constexpr (Kind == Lighten)
        return hn::Max(b, s);
    else if constexpr (Kind == Difference)
        return hn::Abs(hn::Sub(b, s));
    else if constexpr (Kind == Exclusion)
        return hn::NegMulAdd(hn::Mul(splat(2.0F), b), s, hn::Add(b, s));
    else
        return hn::Mul(hn::Add(b, s), splat(0.5F));
}

HWY_INLINE V brightness(const Rgb &color, const OssEvWorkingSpace::Weights &weights)
{
    return luminance(color.c[0], color.c[1], color.c[2], weights);
}

HWY_INLINE V highest(const Rgb &color)
{
    return hn::Max(color.c[0], hn::Max(color.c[1], color.c[2]));
}

HWY_INLINE V lowest(const Rgb &color)
{
    return hn::Min(color.c[0], hn::Min(color.c[1], color.c[2]));
}

// The colour with another brightness, drawn towards grey where a channel would leave 0 to 1.
HWY_INLINE Rgb withBrightness(const Rgb &color, V wanted, const OssEvWorkingSpace::Weights &weights)
{
    const V shift = hn::Sub(wanted, brightness(color, weights));
    Rgb result;
    for (int k = 0; k < 3; ++k)
        result.c[k] = hn::Add(color.c[k], shift);
    const V low = lowest(result);
    const V high = highest(result);
    const V top = hn::Max(one(), wanted);
    const V below = hn::Div(wanted, hn::Max(hn::Sub(wanted, low), splat(1e-9F)));
    const V above = hn::Div(hn::Sub(top, wanted), hn::Max(hn::Sub(high, wanted), splat(1e-9F)));
    V part = hn::IfThenElse(hn::Lt(low, zero()), below, one());
    part = hn::IfThenElse(hn::Gt(high, top), hn::Min(part, above), part);
    for (V &channel : result.c)
        channel = hn::MulAdd(hn::Sub(channel, wanted), part, wanted);
    return result;
}

// The colour with the same order of channels and another distance from lowest to highest.
HWY_INLINE Rgb withRange(const Rgb &color, V wanted)
{
    const V low = lowest(color);
    const V range = hn::Sub(highest(color), low);
    const auto some = hn::Gt(range, splat(1e-9F));
    const V factor = hn::IfThenElseZero(some, hn::Div(wanted, hn::IfThenElse(some, range, one())));
    Rgb result;
    for (int k = 0; k < 3; ++k)
        result.c[k] = hn::Mul(hn::Sub(color.c[k], low), factor);
    return result;
}

HWY_INLINE V rangeOf(const Rgb &color)
{
    return hn::Sub(highest(color), lowest(color));
}

template <int Kind>
HWY_INLINE Rgb blend(const Rgb &b, const Rgb &s, const OssEvWorkingSpace::Weights &weights)
{
    if constexpr (Kind == Hue) {
        return withBrightness(withRange(s, rangeOf(b)), brightness(b, weights), weights);
    } else if constexpr (Kind == Saturation) {
        return withBrightness(withRange(b, rangeOf(s)), brightness(b, weights), weights);
    } else if constexpr (Kind == Color) {
        return withBrightness(s, brightness(b, weights), weights);
    } else if constexpr (Kind == Luminosity) {
        return withBrightness(b, brightness(s, weights), weights);
    } else {
        Rgb result;
        for (int k = 0; k < 3; ++k)
            result.c[k] = blendChannel<Kind>(b.c[k], s.c[k]);
        return result;
    }
}

HWY_INLINE Rgb divided(const Rgb &color, V alpha)
{
    const V cover = hn::IfThenElse(hn::Gt(alpha, zero()), alpha, one());
    Rgb result;
    for (int k = 0; k < 3; ++k)
        result.c[k] = hn::Div(color.c[k], cover);
    return result;
}

HWY_INLINE Rgb times(const OssEvWorkingSpace::Matrix &matrix, const Rgb &color)
{
    Rgb result;
    for (std::size_t k = 0; k < 3; ++k) {
        result.c[k] = hn::Mul(splat(matrix[3 * k]), color.c[0]);
        result.c[k] = hn::MulAdd(splat(matrix[3 * k + 1]), color.c[1], result.c[k]);
        result.c[k] = hn::MulAdd(splat(matrix[3 * k + 2]), color.c[2], result.c[k]);
    }
    return result;
}

// What a screen of sRGB is sent for a colour of the working space.
HWY_INLINE Rgb display(const Rgb &color, const OssEvWorkingSpace &working)
{
    Rgb result = working.isBt709 ? color : times(working.toBt709, color);
    for (V &channel : result.c)
        channel = toSrgb(channel);
    return result;
}

// Back again; both are premultiplied.
HWY_INLINE Rgb light(const Rgb &color, V alpha, const OssEvWorkingSpace &working)
{
    const V cover = hn::IfThenElse(hn::Gt(alpha, zero()), alpha, one());
    Rgb result;
    for (int k = 0; k < 3; ++k)
        result.c[k] = hn::Mul(fromSrgb(hn::Div(color.c[k], cover)), cover);
    return working.isBt709 ? result : times(working.fromBt709, result);
}

HWY_INLINE V maskAt(const OssEvStrip &strip, std::size_t i, float amount)
{
    return hn::Mul(clamp(load(strip.inputs[2].plane[0] + i), zero(), one()), splat(amount));
}

// The common case, which needs no division.
void mergeNormal(const OssEvStrip &strip, const MergeValues &values)
{
    const auto &base = strip.inputs[0].plane;
    const auto &over = strip.inputs[1].plane;
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V mask = maskAt(strip, i, values.amount);
        const V left = hn::NegMulAdd(load(over[3] + i), mask, one());
        for (std::size_t k = 0; k < 4; ++k) {
            const V under = hn::Mul(load(base[k] + i), left);
            store(hn::MulAdd(load(over[k] + i), mask, under), strip.output[k] + i);
        }
    }
}

template <int Kind>
void mergeKind(const OssEvStrip &strip, const MergeValues &values)
{
    const auto &base = strip.inputs[0].plane;
    const auto &over = strip.inputs[1].plane;
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        Rgb b;
        Rgb s;
        for (std::size_t k = 0; k < 3; ++k) {
            b.c[k] = load(base[k] + i);
            s.c[k] = load(over[k] + i);
        }
        const V baseAlpha = load(base[3] + i);
        const V sourceAlpha = load(over[3] + i);
        const V overAlpha = hn::Mul(sourceAlpha, maskAt(strip, i, values.amount));
        b = divided(b, baseAlpha);
        s = divided(s, sourceAlpha);
        if (values.displayValues) {
            b = display(b, values.working);
            s = display(s, values.working);
        }
        const Rgb blended = blend<Kind>(b, s, values.luminance());
        const V alpha = hn::NegMulAdd(overAlpha, baseAlpha, hn::Add(overAlpha, baseAlpha));
        const V both = hn::Mul(overAlpha, baseAlpha);
        Rgb color;
        for (std::size_t k = 0; k < 3; ++k) {
            color.c[k] = hn::Mul(s.c[k], hn::Sub(overAlpha, both));
            color.c[k] = hn::MulAdd(b.c[k], hn::Sub(baseAlpha, both), color.c[k]);
            color.c[k] = hn::MulAdd(blended.c[k], both, color.c[k]);
        }
        if (values.displayValues)
            color = light(color, alpha, values.working);
        for (std::size_t k = 0; k < 3; ++k)
            store(color.c[k], strip.output[k] + i);
        store(alpha, strip.output[3] + i);
    }
}

template <int Kind>
void mergeFrom(const OssEvStrip &strip, const MergeValues &values)
{
    if constexpr (Kind < ModeCount) {
        if (values.mode == Kind)
            mergeKind<Kind>(strip, values);
        else
            mergeFrom<Kind + 1>(strip, values);
    }
}

void merge(const OssEvStrip &strip, const MergeValues &values)
{
    if (values.mode == Normal && !values.displayValues)
        mergeNormal(strip, values);
    else
        mergeFrom<0>(strip, values);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(merge);
} // namespace OssEvSimd

void OssEvFamilies::addMerge(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "merge";
    kernel.inputs = {{"Base", 4}, {"Over", 4}, {"Mask", 1}};
    kernel.outputs = {{"Output", 4}};
    kernel.parameters = {choice("BlendMode", OssEvMergeRows::modes()), real("Amount", 1, 0, 1),
                         choice("BlendColorSpaceEnabled", {"Disable", "Enable"}),
                         choice("BlendColorSpace", {"sRGB", "Linear"})};
    kernel.uniform = true;
    kernel.make = [](const OssEvKernelSetup &setup) {
        using namespace OssEvSimd;
        const bool displayValues = setup.integer("BlendColorSpaceEnabled") == 1
                                   && setup.integer("BlendColorSpace") == 0;
        const OssEvMerge::MergeValues values{setup.integer("BlendMode"),
                                             float(setup.real("Amount")), displayValues,
                                             setup.working()};
        return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(merge), values, {{}, {}, OssEvScalar(1.0)});
    };
    kernels->push_back(kernel);
}

const std::vector<std::string> &OssEvMergeRows::modes()
{
    static const std::vector<std::string> names{
        "Normal",     "Add",        "Subtract",   "Multiply",    "Divide",     "Screen",
        "Overlay",    "Soft Light", "Hard Light", "Color Dodge", "Color Burn", "Linear Burn",
        "Darken",     "Lighten",    "Difference", "Exclusion",   "Average",    "Hue",
        "Saturation", "Color",      "Luminosity"};
    return names;
}

void OssEvMergeRows::run(int mode, const OssEvWorkingSpace::Weights &luminance, Row *row)
{
    OssEvWorkingSpace space;
    space.luminance = luminance;
    std::array<OssEvStripInput, 3> inputs;
    OssEvStrip strip;
    strip.width = Most;
    strip.rows = 1;
    strip.inputs = inputs.data();
    strip.outputChannels = 4;
    for (std::size_t c = 0; c < 4; ++c) {
        inputs[0].plane[c] = row->base[c].data();
        inputs[1].plane[c] = row->over[c].data();
        strip.output[c] = row->result[c].data();
    }
    inputs[2].plane[0] = row->mask.data();
    using namespace OssEvSimd;
    HWY_DYNAMIC_DISPATCH(merge)(strip, {mode, 1.0F, false, space});
}
#endif
