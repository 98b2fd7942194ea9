// Which texels have about one colour: masks from maps that mark materials by colours.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Mesh/ColorId.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#ifndef OSSEV_COLOR_ID_VALUES
#define OSSEV_COLOR_ID_VALUES

namespace OssEvColorId {

struct ColorIdValues
{
    std::array<float, 3> wanted; ///< as a screen shows it
    float tolerance;
    float softness;
    bool invert;
};

} // namespace OssEvColorId
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using OssEvColorId::ColorIdValues;

void colorIdMask(const OssEvStrip &strip, const ColorIdValues &values)
{
    const Floats d;
    const OssEvStripInput &input = strip.inputs[0];
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(d)) {
        const V alpha = load(input.plane[3] + i);
        const V part = hn::Div(splat(1.0F), hn::Max(alpha, splat(1e-6F)));
        V away = zero();
        for (std::size_t k = 0; k < 3; ++k) {
            const V shown = toSrgb(hn::Mul(load(input.plane[k] + i), part));
            away = hn::Max(away, hn::Abs(hn::Sub(shown, splat(values.wanted[k]))));
        }
        const V over = hn::Mul(hn::Sub(away, splat(values.tolerance)),
                               splat(1.0F / values.softness));
        V mask = hn::Sub(splat(1.0F), clamp(over, zero(), splat(1.0F)));
        mask = hn::Mul(mask, clamp(alpha, zero(), splat(1.0F)));
        store(values.invert ? hn::Sub(splat(1.0F), mask) : mask, strip.output[0] + i);
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(colorIdMask);
} // namespace OssEvSimd

namespace {

float shown(float linear)
{
    const float size = std::abs(linear);
    const float curved = 1.055F * std::pow(size, 1.0F / 2.4F) - 0.055F;
    return std::copysign(size > 0.0031308F ? curved : 12.92F * size, linear);
}

} // namespace

void OssEvFamilies::addColorId(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using namespace OssEvSimd;
    OssEvKernel kernel;
    kernel.name = "colorIdMask";
    kernel.inputs = {{"Input", 4, false, {}, "vertexColor", {}}};
    kernel.outputs = {{"Output", 1}};
    kernel.parameters = {color("Color", {1, 0, 0, 1}), real("Tolerance", 0.1, 0, 1),
                         real("Softness", 0.02, 0, 1), flag("Invert", false)};
    kernel.uniform = true;
    kernel.make = [](const OssEvKernelSetup &setup) {
        const OssEvColor wanted = setup.color("Color");
        return OssEvMakePoint(
            &HWY_DYNAMIC_DISPATCH(colorIdMask),
            OssEvColorId::ColorIdValues{{shown(wanted[0]), shown(wanted[1]), shown(wanted[2])},
                                        float(setup.real("Tolerance")),
                                        float(std::max(setup.real("Softness"), 1e-3)),
                                        setup.flag("Invert")});
    };
    kernels->push_back(kernel);
}
#endif
