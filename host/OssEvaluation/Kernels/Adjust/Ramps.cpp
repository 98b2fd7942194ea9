// Kernels that look colours up by the luminance of what comes in.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/MaskedKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Adjust/Ramps.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#ifndef OSSEV_RAMP_VALUES
#define OSSEV_RAMP_VALUES

namespace OssEvRamps {

struct RampValues
{
    std::array<float, 4> low;
    std::array<float, 4> high;
    float midpoint;
    OssEvWorkingSpace::Weights luminance;
};

/// Samples of a ramp from 0 to 1 at even distances, one table for each channel.
struct ColorRampValues
{
    std::array<std::vector<float>, 4> samples;
    OssEvWorkingSpace::Weights luminance;
};

/// What of a colour is looked up, and how the ramp lies over it.
struct GradientValues
{
    enum Source { Luminance, Red, Green, Blue, Alpha, Brightest };

    ColorRampValues ramp;
    int source;
    float repeats;
    float offset;
    bool wraps;
    bool mirrors;
};

} // namespace OssEvRamps
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvRamps;

using Color = std::array<V, 4>;

HWY_INLINE V rampPlace(V value, float midpoint)
{
    const V t = clamp(value, zero(), splat(1.0F));
    const float below = midpoint > 0.0F ? 0.5F / midpoint : 0.0F;
    const float above = midpoint < 1.0F ? 0.5F / (1.0F - midpoint) : 0.0F;
    const V left = hn::Mul(t, splat(below));
    const V right = hn::MulAdd(hn::Sub(t, splat(midpoint)), splat(above), splat(0.5F));
    return hn::IfThenElse(hn::Lt(t, splat(midpoint)), left, right);
}

// Replaces colours by what `colorAt` gives for what `sourceOf` finds in them, by alpha and mask.
template <class SourceOf, class ColorAt>
void lookUpBy(const OssEvStrip &strip, const SourceOf &sourceOf, const ColorAt &colorAt)
{
    const OssEvStripInput &in = strip.inputs[0];
    const float *mask = strip.inputs[1].connected ? strip.inputs[1].plane[0] : nullptr;
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        Color before;
        for (std::size_t k = 0; k < 4; ++k)
            before[k] = load(in.plane[k] + i);
        const V alpha = before[3];
        const V cover = hn::IfThenElse(hn::Gt(alpha, zero()), alpha, splat(1.0F));
        const Color color = colorAt(sourceOf(before, cover));
        const V m = mask != nullptr ? load(mask + i) : splat(1.0F);
        for (std::size_t k = 0; k < 4; ++k)
            store(mix(before[k], hn::Mul(color[k], alpha), m), strip.output[k] + i);
    }
}

template <class ColorAt>
void lookColorsUp(const OssEvStrip &strip, const OssEvWorkingSpace::Weights &weights,
                  const ColorAt &colorAt)
{
    lookUpBy(
        strip,
        [&weights](const Color &color, V cover) {
            return hn::Div(luminance(color[0], color[1], color[2], weights), cover);
        },
        colorAt);
}

void ramp(const OssEvStrip &strip, const RampValues &values)
{
    lookColorsUp(strip, values.luminance, [&values](V grey) {
        const V t = rampPlace(grey, values.midpoint);
        Color color;
        for (std::size_t k = 0; k < 4; ++k)
            color[k] = mix(splat(values.low[k]), splat(values.high[k]), t);
        return color;
    });
}

HWY_INLINE Color colorOf(const ColorRampValues &values, V value)
{
    const V place = hn::Mul(value, splat(float(values.samples[0].size() - 1)));
    Color color;
    for (std::size_t k = 0; k < 4; ++k)
        color[k] = sampleAt(values.samples[k], place);
    return color;
}

void colorRamp(const OssEvStrip &strip, const ColorRampValues &values)
{
    lookColorsUp(strip, values.luminance, [&values](V grey) { return colorOf(values, grey); });
}

HWY_INLINE V sourceOf(const GradientValues &values, const Color &color, V cover)
{
    if (values.source == GradientValues::Alpha)
        return color[3];
    if (values.source == GradientValues::Luminance) {
        return hn::Div(luminance(color[0], color[1], color[2], values.ramp.luminance), cover);
    }
    if (values.source == GradientValues::Brightest)
        return hn::Div(hn::Max(color[0], hn::Max(color[1], color[2])), cover);
    return hn::Div(color[std::size_t(values.source - GradientValues::Red)], cover);
}

// Folded back into 0 to 1, as a ramp that goes on or there and back.
HWY_INLINE V folded(V place, bool mirrors)
{
    if (!mirrors)
        return hn::Sub(place, hn::Floor(place));
    const V half = hn::Mul(place, splat(0.5F));
    const V turn = hn::Sub(half, hn::Floor(half));
    return hn::Sub(splat(1.0F), hn::Abs(hn::NegMulAdd(splat(2.0F), turn, splat(1.0F))));
}

void gradientMap(const OssEvStrip &strip, const GradientValues &values)
{
    lookUpBy(
        strip, [&values](const Color &color, V cover) { return sourceOf(values, color, cover); },
        [&values](V value) {
            const V within = clamp(value, splat(-1e6F), splat(1e6F));
            const V place = hn::MulAdd(within, splat(values.repeats), splat(values.offset));
            return colorOf(values.ramp, values.wraps ? folded(place, values.mirrors) : place);
        });
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(ramp);
HWY_EXPORT(colorRamp);
HWY_EXPORT(gradientMap);
} // namespace OssEvSimd

namespace {

using namespace OssEvRamps;
using namespace OssEvSimd;
namespace Describe = OssEvDescribe;
using Operation = std::shared_ptr<const OssEvOperation>;

Operation makeRamp(const OssEvKernelSetup &setup)
{
    const RampValues values{setup.premultiplied("LowColor"), setup.premultiplied("HighColor"),
                            float(setup.real("Midpoint")), setup.working().luminance};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(ramp), values, OssEvMasked::defaults());
}

ColorRampValues colorRampOf(const OssEvKernelSetup &setup, const char *name)
{
    constexpr int Samples = 4097;
    const OssEvRamp ramp = setup.ramp(name);
    const auto mix = OssEvRamp::Mix(setup.integer("Interpolation"));
    ColorRampValues values{{}, setup.working().luminance};
    for (int i = 0; i < Samples; ++i) {
        const std::array<double, 4> color = ramp.at(double(i) / (Samples - 1), mix);
        for (std::size_t k = 0; k < 4; ++k)
            values.samples[k].push_back(float(color[k]));
    }
    return values;
}

Operation makeColorRamp(const OssEvKernelSetup &setup)
{
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(colorRamp), colorRampOf(setup, "Ramp"),
                          OssEvMasked::defaults());
}

// A ramp laid over the values once and not moved ends where they do; otherwise it goes on.
Operation makeGradientMap(const OssEvKernelSetup &setup)
{
    const double repeats = setup.real("Repeats");
    const double offset = setup.real("Offset");
    GradientValues values{
        colorRampOf(setup, "Gradient"),  setup.integer("Source"), float(repeats), float(offset),
        repeats != 1.0 || offset != 0.0, setup.flag("Mirror")};
    if (setup.flag("Reverse")) {
        for (std::vector<float> &samples : values.ramp.samples)
            std::reverse(samples.begin(), samples.end());
    }
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(gradientMap), std::move(values),
                          OssEvMasked::defaults());
}

} // namespace

void OssEvFamilies::addRamps(std::vector<OssEvKernel> *kernels)
{
    using namespace Describe;
    kernels->push_back(
        OssEvMasked::kernel("ramp", 4,
                            {color("LowColor", {0, 0, 0, 1}), color("HighColor", {1, 1, 1, 1}),
                             real("Midpoint", 0.5, 0, 1)},
                            makeRamp));
    kernels->push_back(OssEvMasked::kernel(
        "colorRamp", 4,
        {Describe::ramp("Ramp"), choice("Interpolation", {"Linear", "Smooth", "Step"})},
        makeColorRamp));
    kernels->push_back(OssEvMasked::kernel(
        "gradientMap", 4,
        {Describe::ramp("Gradient"), choice("Interpolation", {"Linear", "Smooth", "Step"}, 1),
         choice("Source", {"Luminance", "Red", "Green", "Blue", "Alpha", "Brightest"}),
         real("Repeats", 1, 0.1, 64), real("Offset", 0, -1, 1), flag("Reverse", false),
         flag("Mirror", false)},
        makeGradientMap));
}
#endif
