// What use and time leave on an object: worn edges and dirt, whose outlines noise breaks up.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshFacts.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Mesh/Points.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Mesh/Wear.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Noise/Fractal-inl.h"
#include "OssEvaluation/Kernels/Position.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#ifndef OSSEV_WEAR_VALUES
#define OSSEV_WEAR_VALUES

namespace OssEvWear {

struct WearValues
{
    /// What must be exceeded, and over what width it is.
    float level;
    float softness;
    float breakUp;
    float scale;
    int unit;
    OssEvNoise::NoiseLayers layers;
    std::uint32_t seed;
    /// Edges: chance of flakes where there is no edge. Dirt: what lies on top.
    float extra;
};

} // namespace OssEvWear
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using OssEvWear::WearValues;

/// Fractal noise, 0 to 1 for most of it, at the places of a strip.
struct WearNoise
{
    const OssEvStrip &strip;
    const WearValues &values;
    OssEvPositions positions;
    float scale;

    WearNoise(const OssEvStrip &of, const WearValues &with)
        : strip(of)
        , values(with)
        , positions(OssEvPositions::of(of, 1))
        , scale(with.scale / OssEvSurfacePoints::lengthOf(with.unit, of.surface))
    {
    }

    HWY_INLINE V at(std::size_t i, float times, std::uint32_t seed) const
    {
        const V farthest = splat(1e6F);
        Place p{load(positions.plane[0] + i), load(positions.plane[1] + i),
                load(positions.plane[2] + i)};
        for (V *axis : {&p.x, &p.y, &p.z})
            *axis = clamp(*axis * (scale * times), hn::Neg(farthest), farthest);
        const Spot spot{p, 0, splat(1.0F)};
        return saturate(fractal<false>(spot, values.layers, values.seed + seed) * 0.75F + 0.5F);
    }
};

/// 0 below the level, 1 above it, over the width that the values say.
HWY_INLINE V covered(const WearValues &values, V amount)
{
    return smoothStep(values.level - values.softness, values.level + values.softness, amount);
}

void edgeWear(const OssEvStrip &strip, const WearValues &values)
{
    const WearNoise noise(strip, values);
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V edge = saturate(load(strip.inputs[0].plane[0] + i));
        const V grain = noise.at(i, 1.0F, 0) * 2.0F - 1.0F;
        V worn = covered(values, hn::MulAdd(hn::Mul(edge, grain), splat(values.breakUp), edge));
        if (values.extra > 0.0F) {
            // Flakes: the tops of another noise, larger near edges.
            const V other = hn::MulAdd(edge, splat(0.1F), noise.at(i, 0.7F, 977U));
            const float top = 0.95F - 0.4F * values.extra;
            worn = hn::Max(worn, smoothStep(top - 0.02F, top + 0.02F, other));
        }
        store(worn, strip.output[0] + i);
    }
}

void dirt(const OssEvStrip &strip, const WearValues &values)
{
    const WearNoise noise(strip, values);
    // How much each texel faces the sky.
    std::fill_n(strip.output[0], strip.texels(), 0.0F);
    if (values.extra > 0.0F) {
        OssEvSurfacePoints::each(strip, nullptr, [&](const OssEvSurfacePoint &point) {
            const auto up = OssEvSurfacePoints::normalized(
                strip.surface->mesh().facts().normalToWorld(point.normal));
            strip.output[0][point.index] = std::max(up[1], 0.0F);
        });
    }
    for (std::size_t i = 0; i < strip.texels(); i += hn::Lanes(Floats())) {
        const V hidden = 1.0F - saturate(load(strip.inputs[0].plane[0] + i));
        const V up = load(strip.output[0] + i);
        const V rest = hn::MulAdd(hn::Mul(up, up), splat(values.extra), hidden);
        const V grain = noise.at(i, 1.0F, 0) * 2.0F - 1.0F;
        const V amount = hn::MulAdd(hn::Mul(rest, grain), splat(values.breakUp), rest);
        store(covered(values, amount), strip.output[0] + i);
    }
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(edgeWear);
HWY_EXPORT(dirt);
} // namespace OssEvSimd

namespace {

using namespace OssEvSimd;
using namespace OssEvDescribe;
using OssEvWear::WearValues;

/// Nothing is covered at an amount of 0, all that is anyhow touched at 1.
WearValues wearOf(const OssEvKernelSetup &setup, const char *extra)
{
    const double softness = 0.01 + 0.5 * setup.real("Softness");
    const double none = 1.0 + setup.real("BreakUp") + softness;
    const double all = softness + 0.02;
    // Slow at first: most of what is covered has little that covers it.
    const double left = std::pow(1.0 - setup.real("Amount"), 2.0);
    return {float(all + (none - all) * left),
            float(softness),
            float(setup.real("BreakUp")),
            float(setup.real("Scale")),
            setup.integer("Unit"),
            OssEvNoise::NoiseLayers::of(setup.integer("Octaves"), 0.55),
            std::uint32_t(setup.integer("Seed")) * 2654435769U,
            float(setup.real(extra))};
}

OssEvKernel wearKernel(const char *name, const OssEvKernelInput &from,
                       std::vector<OssEvParameterDescription> own, double amount, double softness)
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = {from, {"Position", 3}};
    kernel.outputs = {{"Output", 1}};
    kernel.parameters = std::move(own);
    const std::vector<OssEvParameterDescription> shared{
        real("Amount", amount, 0, 1), real("Softness", softness, 0, 1),
        real("BreakUp", 0.7, 0, 1),   real("Scale", 24, 0.01, 2000),
        integer("Octaves", 6, 1, 12), OssEvSurfacePoints::unitParameter(),
        integer("Seed", 1, 0, 9999)};
    kernel.parameters.insert(kernel.parameters.end(), shared.begin(), shared.end());
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addWear(std::vector<OssEvKernel> *kernels)
{
    OssEvKernel edges = wearKernel("edgeWear", {"Edges", 1, false, {}, "concavity", "Edges"},
                                   {integer("Rays", 32, 4, 1024), real("Radius", 0.03, 0, 1000),
                                    real("Contrast", 1, 0, 5), real("Flakes", 0, 0, 1)},
                                   0.5, 0.1);
    edges.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(edgeWear), wearOf(setup, "Flakes"));
    };
    kernels->push_back(edges);

    OssEvKernel soiled = wearKernel("dirt", {"Occlusion", 1, false, {}, "ambientOcclusion", {}},
                                    {integer("Rays", 64, 4, 1024), real("Distance", 0.1, 0, 100),
                                     real("Spread", 0.9, 0, 1), real("Settled", 0.3, 0, 1)},
                                    0.6, 0.4);
    soiled.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(dirt), wearOf(setup, "Settled"),
                              {OssEvScalar(1.0)});
    };
    kernels->push_back(soiled);
}
#endif
