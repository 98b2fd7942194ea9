// Kernels that change colours one texel at a time. Colours are taken out of their premultiplied
// form for it, so that a soft edge keeps the colour that the inside has.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/MaskedKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Adjust/Adjust.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Adjust/Change-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>
#include <cmath>
#include <vector>

#ifndef OSSEV_ADJUST_VALUES
#define OSSEV_ADJUST_VALUES

namespace OssEvAdjust {

struct LevelsValues
{
    float inLow;
    float inScale;
    float exponent;
    float outLow;
    float outRange;
};

struct ContrastValues
{
    float contrast;
    float offset;
    float saturation;
    OssEvWorkingSpace::Weights luminance;
};

struct PairValues
{
    float a;
    float b;
};

struct HueValues
{
    float hue;
    float saturation;
    float value;
};

/// Samples of a curve at even distances.
struct CurveValues
{
    std::vector<float> samples;
    float first;
    float scale;
};

} // namespace OssEvAdjust
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvAdjust;

struct LevelsChange
{
    const LevelsValues &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (int k = 0; k < N; ++k) {
            V t = hn::Mul(hn::Sub(x.c[k], splat(v.inLow)), splat(v.inScale));
            t = clamp(t, zero(), splat(1.0F));
            if (v.exponent != 1.0F)
                t = power(t, splat(v.exponent));
            x.c[k] = hn::MulAdd(t, splat(v.outRange), splat(v.outLow));
        }
    }
};

void levels(const OssEvStrip &strip, const LevelsValues &values)
{
    adjust(strip, LevelsChange{values});
}

struct ContrastChange
{
    const ContrastValues &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (int k = 0; k < N; ++k)
            x.c[k] = hn::MulAdd(x.c[k], splat(v.contrast), splat(v.offset));
        if constexpr (N == 3) {
            if (v.saturation != 1.0F) {
                const V grey = luminance(x.c[0], x.c[1], x.c[2], v.luminance);
                for (int k = 0; k < N; ++k)
                    x.c[k] = mix(grey, x.c[k], splat(v.saturation));
            }
        }
    }
};

void brightnessContrast(const OssEvStrip &strip, const ContrastValues &values)
{
    adjust(strip, ContrastChange{values});
}

struct GammaChange
{
    float exponent;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (int k = 0; k < N; ++k)
            x.c[k] = power(x.c[k], splat(exponent));
    }
};

void gamma(const OssEvStrip &strip, const PairValues &values)
{
    adjust(strip, GammaChange{values.a});
}

struct ClampChange
{
    const PairValues &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (int k = 0; k < N; ++k)
            x.c[k] = clamp(x.c[k], splat(v.a), splat(v.b));
    }
};

void clampColors(const OssEvStrip &strip, const PairValues &values)
{
    adjust(strip, ClampChange{values});
}

struct InvertChange
{
    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (int k = 0; k < N; ++k)
            x.c[k] = hn::Sub(splat(1.0F), x.c[k]);
    }
};

// With `a` set, alpha is inverted as well and the result stays premultiplied by the new alpha.
void invertAlpha(const OssEvStrip &strip)
{
    const OssEvStripInput &in = strip.inputs[0];
    const float *mask = strip.inputs[1].connected ? strip.inputs[1].plane[0] : nullptr;
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V m = mask != nullptr ? load(mask + i) : splat(1.0F);
        const V alpha = load(in.plane[3] + i);
        const V inverse = hn::Sub(splat(1.0F), alpha);
        const V cover = hn::IfThenElse(hn::Gt(alpha, zero()), alpha, splat(1.0F));
        for (int k = 0; k < 3; ++k) {
            const V before = load(in.plane[k] + i);
            const V plain = hn::Div(before, cover);
            const V after = hn::Mul(hn::Sub(splat(1.0F), plain), inverse);
            store(mix(before, after, m), strip.output[k] + i);
        }
        store(mix(alpha, inverse, m), strip.output[3] + i);
    }
}

void invert(const OssEvStrip &strip, const PairValues &values)
{
    if (values.a != 0.0F && strip.outputChannels == 4)
        invertAlpha(strip);
    else
        adjust(strip, InvertChange{});
}

struct HueChange
{
    const HueValues &v;

    HWY_INLINE void apply(Channels<1> &x) const { x.c[0] = hn::Mul(x.c[0], splat(v.value)); }

    // Hue in turns, from the hexagon of the largest and smallest channel.
    HWY_INLINE void apply(Channels<3> &x) const
    {
        const V r = x.c[0];
        const V g = x.c[1];
        const V b = x.c[2];
        const V high = hn::Max(r, hn::Max(g, b));
        const V low = hn::Min(r, hn::Min(g, b));
        const V range = hn::Sub(high, low);
        const V hue = hn::Add(hueOf(x, high, range), splat(v.hue));
        const V newHigh = hn::Mul(high, splat(v.value));
        // Saturation is the range as a part of the value and ends where the smallest channel is 0.
        const V wanted = hn::Mul(range, splat(v.saturation));
        const V positive = hn::Max(high, zero());
        const V newRange = hn::Mul(hn::Min(wanted, hn::Max(positive, range)), splat(v.value));
        x.c[0] = hueChannel(hue, 0.0F, newHigh, newRange);
        x.c[1] = hueChannel(hue, 4.0F / 6.0F, newHigh, newRange);
        x.c[2] = hueChannel(hue, 2.0F / 6.0F, newHigh, newRange);
    }
};

void hueShift(const OssEvStrip &strip, const HueValues &values)
{
    adjust(strip, HueChange{values});
}

HWY_INLINE V lookUp(const CurveValues &values, V x)
{
    return sampleAt(values.samples, hn::Mul(hn::Sub(x, splat(values.first)), splat(values.scale)));
}

struct CurveChange
{
    const CurveValues &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (int k = 0; k < N; ++k)
            x.c[k] = lookUp(v, x.c[k]);
    }
};

void curve(const OssEvStrip &strip, const CurveValues &values)
{
    adjust(strip, CurveChange{values});
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(levels);
HWY_EXPORT(brightnessContrast);
HWY_EXPORT(gamma);
HWY_EXPORT(clampColors);
HWY_EXPORT(invert);
HWY_EXPORT(hueShift);
HWY_EXPORT(curve);
} // namespace OssEvSimd

namespace {

using namespace OssEvAdjust;
using namespace OssEvSimd;
namespace Describe = OssEvDescribe;
using Operation = std::shared_ptr<const OssEvOperation>;

Operation makeLevels(const OssEvKernelSetup &setup)
{
    const double range = setup.real("InHigh") - setup.real("InLow");
    // Equal ends make a step: everything above the low end is high.
    const double scale = std::abs(range) < 1e-12 ? 1e12 : 1.0 / range;
    const LevelsValues values{float(setup.real("InLow")), float(scale),
                              float(1.0 / setup.real("Gamma")), float(setup.real("OutLow")),
                              float(setup.real("OutHigh") - setup.real("OutLow"))};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(levels), values, OssEvMasked::defaults());
}

Operation makeContrast(const OssEvKernelSetup &setup)
{
    constexpr double QuarterTurn = 0.78539816339744831;
    constexpr double Steepest = 1000.0;
    // From flat (-1) over unchanged (0) to a step (1), about the middle of the display range.
    const double contrast = std::min(std::tan((setup.real("Contrast") + 1.0) * QuarterTurn),
                                     Steepest);
    const double offset = 0.5 - 0.5 * contrast + setup.real("Brightness");
    const ContrastValues values{float(contrast), float(offset), float(setup.real("Saturation")),
                                setup.working().luminance};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(brightnessContrast), values,
                          OssEvMasked::defaults());
}

Operation makeGamma(const OssEvKernelSetup &setup)
{
    const PairValues values{float(1.0 / setup.real("Gamma")), 0.0F};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(gamma), values, OssEvMasked::defaults());
}

Operation makeClamp(const OssEvKernelSetup &setup)
{
    const PairValues values{float(setup.real("Low")),
                            float(std::max(setup.real("Low"), setup.real("High")))};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(clampColors), values, OssEvMasked::defaults());
}

Operation makeInvert(const OssEvKernelSetup &setup)
{
    const PairValues values{setup.flag("Alpha") ? 1.0F : 0.0F, 0.0F};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(invert), values, OssEvMasked::defaults());
}

Operation makeHueShift(const OssEvKernelSetup &setup)
{
    const HueValues values{float(setup.real("Hue") / 360.0), float(setup.real("Saturation")),
                           float(setup.real("Value"))};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(hueShift), values, OssEvMasked::defaults());
}

Operation makeCurve(const OssEvKernelSetup &setup)
{
    constexpr int Samples = 4097;
    const OssEvCurve shape = setup.curve("Curve");
    const auto &points = shape.points();
    const double first = points.empty() ? 0.0 : points.front()[0];
    const double last = points.empty() ? 1.0 : points.back()[0];
    const double range = std::max(last - first, 1e-6);
    CurveValues values{{}, float(first), float((Samples - 1) / range)};
    values.samples.reserve(Samples);
    for (int i = 0; i < Samples; ++i)
        values.samples.push_back(float(shape.at(first + range * i / (Samples - 1))));
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(curve), values, OssEvMasked::defaults());
}

} // namespace

void OssEvFamilies::addAdjustments(std::vector<OssEvKernel> *kernels)
{
    using namespace Describe;
    kernels->push_back(OssEvMasked::kernel("levels", 0,
                                           {real("InLow", 0, 0, 1), real("InHigh", 1, 0, 1),
                                            real("Gamma", 1, 0.01, 10), real("OutLow", 0, 0, 1),
                                            real("OutHigh", 1, 0, 1)},
                                           makeLevels));
    kernels->push_back(OssEvMasked::kernel(
        "brightnessContrast", 0,
        {real("Brightness", 0, -1, 1), real("Contrast", 0, -1, 1), real("Saturation", 1, 0, 4)},
        makeContrast));
    kernels->push_back(OssEvMasked::kernel("gamma", 0, {real("Gamma", 1, 0.01, 10)}, makeGamma));
    kernels->push_back(
        OssEvMasked::kernel("clamp", 0, {real("Low", 0), real("High", 1)}, makeClamp));
    kernels->push_back(OssEvMasked::kernel("invert", 0, {flag("Alpha", false)}, makeInvert));
    kernels->push_back(OssEvMasked::kernel(
        "hueShift", 0,
        {real("Hue", 0, -180, 180), real("Saturation", 1, 0, 4), real("Value", 1, 0, 4)},
        makeHueShift));
    kernels->push_back(OssEvMasked::kernel("curve", 0, {Describe::curve("Curve")}, makeCurve));
}
#endif
