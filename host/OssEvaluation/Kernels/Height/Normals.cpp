// Kernels of normals and heights that look at one texel: blending by height, combining, turning.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Height/Normals.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Height/Normal-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#ifndef OSSEV_NORMALS_VALUES
#define OSSEV_NORMALS_VALUES

namespace OssEvNormals {

struct BlendValues
{
    enum Output { Color, Height, Share };

    int output;
    float softness;
    float offset;
};

struct CombineValues
{
    enum Mode { Reoriented, Whiteout, Slopes, Sum };

    int mode;
    float strength;
};

struct FlipValues
{
    float x;
    float y;
    bool swaps;
};

struct TurnValues
{
    float angle;
};

} // namespace OssEvNormals
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvNormals;

void heightBlend(const OssEvStrip &strip, const BlendValues &values)
{
    const OssEvStripInput *in = strip.inputs;
    const V one = splat(1.0F);
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V mask = clamp(load(in[4].plane[0] + i), zero(), one);
        const V a = load(in[2].plane[0] + i);
        const V b = hn::Add(load(in[3].plane[0] + i), splat(values.offset));
        // The mask lifts one over the other; what is higher, by little or by much, shows.
        const V high = hn::Add(a, hn::Sub(one, mask));
        const V other = hn::Add(b, mask);
        const V part = hn::Div(hn::Sub(other, high), splat(values.softness));
        V share = clamp(hn::MulAdd(part, splat(0.5F), splat(0.5F)), zero(), one);
        share = hn::IfThenElse(hn::Ge(mask, one), one, share);
        share = hn::IfThenElse(hn::Le(mask, zero()), zero(), share);
        if (values.output == BlendValues::Share) {
            store(share, strip.output[0] + i);
        } else if (values.output == BlendValues::Height) {
            store(mix(a, b, share), strip.output[0] + i);
        } else {
            for (std::size_t k = 0; k < 4; ++k)
                store(mix(load(in[0].plane[k] + i), load(in[1].plane[k] + i), share),
                      strip.output[k] + i);
        }
    }
}

// Reoriented: C. Barre-Brisebois, S. Hill, "Blending in Detail", 2012.
HWY_INLINE Normal combined(const Normal &a, const Normal &b, int mode)
{
    const V one = splat(1.0F);
    if (mode == CombineValues::Reoriented) {
        const V depth = hn::Add(a.z, one);
        const V dot = hn::NegMulAdd(a.x, b.x, hn::NegMulAdd(a.y, b.y, hn::Mul(depth, b.z)));
        const V scale = hn::Div(dot, hn::Max(depth, splat(1e-4F)));
        return normalised({hn::MulAdd(a.x, scale, b.x), hn::MulAdd(a.y, scale, b.y),
                           hn::MulSub(depth, scale, b.z)});
    }
    if (mode == CombineValues::Whiteout)
        return normalised({hn::Add(a.x, b.x), hn::Add(a.y, b.y), hn::Mul(a.z, b.z)});
    if (mode == CombineValues::Slopes) {
        return normalised({hn::MulAdd(a.x, b.z, hn::Mul(b.x, a.z)),
                           hn::MulAdd(a.y, b.z, hn::Mul(b.y, a.z)), hn::Mul(a.z, b.z)});
    }
    return normalised({hn::Add(a.x, b.x), hn::Add(a.y, b.y), hn::Add(a.z, b.z)});
}

void normalCombine(const OssEvStrip &strip, const CombineValues &values)
{
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const Normal base = normalAt(strip.inputs[0], i);
        Normal detail = normalAt(strip.inputs[1], i);
        detail.x = hn::Mul(detail.x, splat(values.strength));
        detail.y = hn::Mul(detail.y, splat(values.strength));
        putNormal(combined(base, normalised(detail), values.mode), strip, i);
    }
}

void flipNormal(const OssEvStrip &strip, const FlipValues &values)
{
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const Normal n = normalAt(strip.inputs[0], i);
        const V x = hn::Mul(values.swaps ? n.y : n.x, splat(values.x));
        const V y = hn::Mul(values.swaps ? n.x : n.y, splat(values.y));
        putNormal({x, y, n.z}, strip, i);
    }
}

void rotateNormal(const OssEvStrip &strip, const TurnValues &values)
{
    const Floats d;
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(d)) {
        const Normal n = normalAt(strip.inputs[0], i);
        // In turns, so that large angles stay exact.
        const V turns = hn::Mul(load(strip.inputs[1].plane[0] + i), splat(values.angle));
        const V part = hn::Mul(hn::Sub(turns, hn::Round(turns)), splat(6.28318531F));
        const V s = hn::Sin(d, part);
        const V c = hn::Cos(d, part);
        putNormal(
            {hn::NegMulAdd(s, n.y, hn::Mul(c, n.x)), hn::MulAdd(s, n.x, hn::Mul(c, n.y)), n.z},
            strip, i);
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(heightBlend);
HWY_EXPORT(normalCombine);
HWY_EXPORT(flipNormal);
HWY_EXPORT(rotateNormal);
} // namespace OssEvSimd

namespace {

using namespace OssEvNormals;
using namespace OssEvSimd;
using Operation = std::shared_ptr<const OssEvOperation>;

constexpr std::array<float, 4> Flat{0.5F, 0.5F, 1.0F, 1.0F};

Operation makeBlend(const OssEvKernelSetup &setup)
{
    const BlendValues values{setup.output(), float(std::max(setup.real("Softness"), 1e-3)),
                             float(setup.real("Offset"))};
    return OssEvMakePoint(
        &HWY_DYNAMIC_DISPATCH(heightBlend), values,
        {{}, {}, OssEvScalar(0.5), OssEvScalar(0.5), OssEvScalar(setup.real("Mask"))});
}

Operation makeCombine(const OssEvKernelSetup &setup)
{
    const CombineValues values{setup.integer("Mode"), float(setup.real("Strength"))};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(normalCombine), values, {Flat, Flat});
}

Operation makeFlip(const OssEvKernelSetup &setup)
{
    const FlipValues values{setup.flag("FlipX") ? -1.0F : 1.0F, setup.flag("FlipY") ? -1.0F : 1.0F,
                            setup.flag("Swap")};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(flipNormal), values, {Flat});
}

Operation makeTurn(const OssEvKernelSetup &setup)
{
    const TurnValues values{float(setup.real("Angle") / 360.0)};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(rotateNormal), values, {Flat, OssEvScalar(1.0)});
}

OssEvKernel normalKernel(const char *name, std::vector<OssEvKernelInput> inputs,
                         std::vector<OssEvParameterDescription> parameters,
                         Operation (*make)(const OssEvKernelSetup &))
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = std::move(inputs);
    kernel.outputs = {{"Output", 3, true}};
    kernel.parameters = std::move(parameters);
    kernel.uniform = true;
    kernel.make = make;
    return kernel;
}

} // namespace

void OssEvFamilies::addNormals(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel blend = normalKernel(
        "heightBlend", {{"A", 4}, {"B", 4}, {"HeightA", 1}, {"HeightB", 1}, {"Mask", 1}},
        {real("Mask", 0.5, 0, 1), real("Softness", 0.1, 0, 1), real("Offset", 0, -1, 1)},
        makeBlend);
    blend.outputs = {{"Output", 4}, {"Height", 1, true}, {"Share", 1}};
    kernels->push_back(blend);
    kernels->push_back(normalKernel(
        "normalCombine", {{"Base", 3}, {"Detail", 3}},
        {choice("Mode", {"Reoriented", "Whiteout", "Slopes", "Sum"}), real("Strength", 1, 0, 10)},
        makeCombine));
    kernels->push_back(
        normalKernel("flipNormal", {{"Normal", 3, true}},
                     {flag("FlipX", false), flag("FlipY", true), flag("Swap", false)}, makeFlip));
    kernels->push_back(normalKernel("rotateNormal", {{"Normal", 3, true}, {"Map", 1}},
                                    {real("Angle", 90, -3600, 3600)}, makeTurn));
}
#endif
