// Kernels that look colours up by the luminance of what comes in.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/MaskedKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Ramps.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <array>
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

// Replaces colours by what `colorAt` gives for their luminance, by alpha and mask.
template <class ColorAt>
void lookColorsUp(const OssEvStrip &strip, const OssEvWorkingSpace::Weights &weights,
                  const ColorAt &colorAt)
{
    const OssEvStripInput &in = strip.inputs[0];
    const float *mask = strip.inputs[1].connected ? strip.inputs[1].plane[0] : nullptr;
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        Color before;
        for (std::size_t k = 0; k < 4; ++k)
            before[k] = load(in.plane[k] + i);
        const V alpha = before[3];
        const V cover = hn::IfThenElse(hn::Gt(alpha, zero()), alpha, splat(1.0F));
        const V grey = hn::Div(luminance(before[0], before[1], before[2], weights), cover);
        const Color color = colorAt(grey);
        const V m = mask != nullptr ? load(mask + i) : splat(1.0F);
        for (std::size_t k = 0; k < 4; ++k)
            store(mix(before[k], hn::Mul(color[k], alpha), m), strip.output[k] + i);
    }
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

void colorRamp(const OssEvStrip &strip, const ColorRampValues &values)
{
    const auto scale = float(values.samples[0].size() - 1);
    lookColorsUp(strip, values.luminance, [&values, scale](V grey) {
        const V place = hn::Mul(grey, splat(scale));
        Color color;
        for (std::size_t k = 0; k < 4; ++k)
            color[k] = sampleAt(values.samples[k], place);
        return color;
    });
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(ramp);
HWY_EXPORT(colorRamp);
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

Operation makeColorRamp(const OssEvKernelSetup &setup)
{
    constexpr int Samples = 4097;
    const OssEvRamp ramp = setup.ramp("Ramp");
    const auto mix = OssEvRamp::Mix(setup.integer("Interpolation"));
    ColorRampValues values{{}, setup.working().luminance};
    for (int i = 0; i < Samples; ++i) {
        const std::array<double, 4> color = ramp.at(double(i) / (Samples - 1), mix);
        for (std::size_t k = 0; k < 4; ++k)
            values.samples[k].push_back(float(color[k]));
    }
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(colorRamp), values, OssEvMasked::defaults());
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
}
#endif
