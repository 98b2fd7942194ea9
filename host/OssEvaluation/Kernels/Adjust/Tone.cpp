// Kernels that map values to values: curves, scans of the histogram, steps.

#include "OssEvaluation/Kernels/Adjust/Curves.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/MaskedKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Adjust/Tone.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Adjust/Change-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#ifndef OSSEV_TONE_VALUES
#define OSSEV_TONE_VALUES

namespace OssEvTone {

/// Output is clamp(x * scale + offset, low, high).
struct LineValues
{
    float scale;
    float offset;
    float low;
    float high;
};

struct PosterizeValues
{
    float steps; ///< between the lowest and the highest level
    float softness;
    bool inverse;
};

struct LuminosityValues
{
    std::vector<float> samples; ///< of display values from 0 to 1
    OssEvWorkingSpace::Weights luminance;
};

} // namespace OssEvTone
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvTone;

struct CurvesChange
{
    const OssEvCurves &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        const auto density = float(v.density());
        for (int k = 0; k < N; ++k) {
            const V at = hn::Mul(hn::Sub(x.c[k], splat(float(v.first))), splat(density));
            x.c[k] = sampleAt(v.samples[N == 1 ? 3 : std::size_t(k)], at);
        }
    }
};

void curves(const OssEvStrip &strip, const OssEvCurves &values)
{
    adjust(strip, CurvesChange{values});
}

struct LineChange
{
    const LineValues &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        for (int k = 0; k < N; ++k) {
            const V y = hn::MulAdd(x.c[k], splat(v.scale), splat(v.offset));
            x.c[k] = clamp(y, splat(v.low), splat(v.high));
        }
    }
};

void line(const OssEvStrip &strip, const LineValues &values)
{
    adjust(strip, LineChange{values});
}

// Steps are even to the eye: colours by their display values, single channels as they are.
struct PosterizeChange
{
    const PosterizeValues &v;

    template <int N>
    HWY_INLINE void apply(Channels<N> &x) const
    {
        const V half = splat(0.5F);
        for (int k = 0; k < N; ++k) {
            V t = N == 1 ? x.c[k] : toSrgb(x.c[k]);
            t = hn::Mul(clamp(t, zero(), splat(1.0F)), splat(v.steps));
            const V base = hn::Floor(t);
            const V rise = hn::Div(hn::Sub(hn::Sub(t, base), half), splat(v.softness));
            const V step = clamp(hn::Add(rise, half), zero(), splat(1.0F));
            t = hn::Div(hn::Add(base, step), splat(v.steps));
            x.c[k] = N == 1 ? t : fromSrgb(t);
        }
    }
};

void posterize(const OssEvStrip &strip, const PosterizeValues &values)
{
    adjust(strip, PosterizeChange{values});
}

void threshold(const OssEvStrip &strip, const PosterizeValues &values)
{
    const V sign = splat(values.inverse ? -1.0F : 1.0F);
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V above = hn::Sub(load(strip.inputs[0].plane[0] + i),
                                load(strip.inputs[1].plane[0] + i));
        const V part = hn::MulAdd(hn::Div(above, splat(values.softness)), sign, splat(0.5F));
        store(clamp(part, zero(), splat(1.0F)), strip.output[0] + i);
    }
}

// Colours keep their hue: all channels grow as their luminance does.
struct LuminosityChange
{
    const LuminosityValues &v;

    HWY_INLINE V mapped(V light) const
    {
        const V display = toSrgb(light);
        const V place = hn::Mul(display, splat(float(v.samples.size() - 1)));
        const V inside = fromSrgb(sampleAt(v.samples, place));
        const auto beyond = hn::Or(hn::Lt(light, zero()), hn::Gt(light, splat(1.0F)));
        return hn::IfThenElse(beyond, light, inside);
    }

    HWY_INLINE void apply(Channels<1> &x) const { x.c[0] = mapped(x.c[0]); }

    HWY_INLINE void apply(Channels<3> &x) const
    {
        const V light = luminance(x.c[0], x.c[1], x.c[2], v.luminance);
        const auto dark = hn::Lt(light, splat(1e-7F));
        const V safe = hn::IfThenElse(dark, splat(1.0F), light);
        const V factor = hn::IfThenElse(dark, splat(1.0F), hn::Div(mapped(safe), safe));
        for (V &channel : x.c)
            channel = hn::Mul(channel, factor);
    }
};

void luminosity(const OssEvStrip &strip, const LuminosityValues &values)
{
    adjust(strip, LuminosityChange{values});
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(curves);
HWY_EXPORT(line);
HWY_EXPORT(posterize);
HWY_EXPORT(threshold);
HWY_EXPORT(luminosity);
} // namespace OssEvSimd

std::shared_ptr<const OssEvPointOperation> OssEvMakeCurves(OssEvCurves curves)
{
    using namespace OssEvSimd;
    auto operation = std::make_shared<OssEvPointKernel<OssEvCurves>>(&HWY_DYNAMIC_DISPATCH(curves),
                                                                     std::move(curves));
    operation->defaults = OssEvMasked::defaults();
    return operation;
}

namespace {

using namespace OssEvTone;
using namespace OssEvSimd;
namespace Describe = OssEvDescribe;
using Operation = std::shared_ptr<const OssEvOperation>;

// The narrowest rise of what could as well be a step.
constexpr double Narrowest = 1.0 / 1024.0;

// First what belongs to the channel, then what belongs to all.
Operation makeRgbCurves(const OssEvKernelSetup &setup)
{
    const OssEvCurve all = setup.curve("All");
    const std::array<OssEvCurve, 4> own{setup.curve("Red"), setup.curve("Green"),
                                        setup.curve("Blue"), OssEvCurve()};
    OssEvCurves curves;
    for (const OssEvCurve &curve : own) {
        if (!curve.points().empty()) {
            curves.first = std::min(curves.first, curve.points().front()[0]);
            curves.last = std::max(curves.last, curve.points().back()[0]);
        }
    }
    if (!all.points().empty()) {
        curves.first = std::min(curves.first, all.points().front()[0]);
        curves.last = std::max(curves.last, all.points().back()[0]);
    }
    for (std::size_t k = 0; k < own.size(); ++k) {
        curves.samples[k].reserve(OssEvCurves::Samples);
        for (int i = 0; i < OssEvCurves::Samples; ++i)
            curves.samples[k].push_back(float(all.at(own[k].at(curves.place(i)))));
    }
    return OssEvMakeCurves(std::move(curves));
}

Operation makeLine(const LineValues &values)
{
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(line), values, OssEvMasked::defaults());
}

// A window as wide as the contrast leaves it moves over the values: at 0 nothing is in it, at 1 all.
Operation makeScan(const OssEvKernelSetup &setup)
{
    const double width = std::max(1.0 - setup.real("Contrast"), Narrowest);
    const double low = (1.0 - setup.real("Position")) * (1.0 + width) - width;
    if (setup.flag("Invert"))
        return makeLine({float(-1.0 / width), float(1.0 + low / width), 0.0F, 1.0F});
    return makeLine({float(1.0 / width), float(-low / width), 0.0F, 1.0F});
}

Operation makeRange(const OssEvKernelSetup &setup)
{
    const double range = setup.real("Range");
    const double low = (1.0 - range) * setup.real("Position");
    return makeLine({float(range), float(low), float(low), float(low + range)});
}

Operation makePosterize(const OssEvKernelSetup &setup)
{
    const PosterizeValues values{float(setup.integer("Levels") - 1),
                                 float(std::max(setup.real("Softness"), Narrowest)), false};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(posterize), values, OssEvMasked::defaults());
}

Operation makeThreshold(const OssEvKernelSetup &setup)
{
    const PosterizeValues values{0.0F, float(std::max(setup.real("Softness"), Narrowest)),
                                 setup.flag("Invert")};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(threshold), values,
                          {{}, OssEvScalar(setup.real("Threshold"))});
}

// How steep the curve is follows three parts that sum up to 1: the polynomials of S. Bernstein.
Operation makeLuminosity(const OssEvKernelSetup &setup)
{
    constexpr int Samples = 1025;
    constexpr double Strength = 3.0;
    LuminosityValues values{{0.0F}, setup.working().luminance};
    double height = 0.0;
    values.samples.reserve(Samples);
    for (int i = 1; i < Samples; ++i) {
        const double t = (i - 0.5) / (Samples - 1);
        const double contrast = setup.real("Shadows") * (1.0 - t) * (1.0 - t)
                                + setup.real("Midtones") * 2.0 * t * (1.0 - t)
                                + setup.real("Highlights") * t * t;
        height += std::exp2(Strength * contrast);
        values.samples.push_back(float(height));
    }
    for (float &sample : values.samples)
        sample = float(sample / height);
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(luminosity), std::move(values),
                          OssEvMasked::defaults());
}

} // namespace

void OssEvFamilies::addTone(std::vector<OssEvKernel> *kernels)
{
    using namespace Describe;
    using Describe::curve;
    kernels->push_back(OssEvMasked::kernel(
        "rgbCurves", 0, {curve("All"), curve("Red"), curve("Green"), curve("Blue")},
        makeRgbCurves));
    kernels->push_back(OssEvMasked::kernel(
        "histogramScan", 0,
        {real("Position", 0.5, 0, 1), real("Contrast", 0.5, 0, 1), flag("Invert", false)},
        makeScan));
    kernels->push_back(OssEvMasked::kernel(
        "histogramRange", 0, {real("Range", 0.5, 0, 1), real("Position", 0.5, 0, 1)}, makeRange));
    kernels->push_back(OssEvMasked::kernel(
        "posterize", 0, {integer("Levels", 5, 2, 256), real("Softness", 0, 0, 1)}, makePosterize));
    kernels->push_back(OssEvMasked::kernel(
        "luminosityContrast", 0,
        {real("Shadows", 0, -1, 1), real("Midtones", 0.5, -1, 1), real("Highlights", 0, -1, 1)},
        makeLuminosity));

    OssEvKernel steps;
    steps.name = "threshold";
    steps.inputs = {{"Input", 1, true}, {"Threshold", 1}};
    steps.outputs = {{"Output", 1}};
    steps.parameters = {real("Threshold", 0.5, 0, 1), real("Softness", 0.02, 0, 1),
                        flag("Invert", false)};
    steps.uniform = true;
    steps.make = makeThreshold;
    kernels->push_back(steps);
}
#endif
