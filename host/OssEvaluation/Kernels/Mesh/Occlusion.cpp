// What rays from the surface tell: how open it is to the sky and where that lies, how thick the object is
// beneath it, and where it has edges and hollows.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Mesh/Points.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using OssEvSurfacePoints::lengthOf;
using Vector = OssEvSurfacePoint::Vector;

struct RayValues
{
    int output;
    int rays;
    float distance;
    int unit;
    /// Sine of the widest angle from the normal.
    float spread;
    /// By what results are multiplied.
    float contrast = 1.0F;
};

Vector along(const Vector &from, const Vector &direction, float distance)
{
    return {from[0] + direction[0] * distance, from[1] + direction[1] * distance,
            from[2] + direction[2] * distance};
}

Vector opposite(const Vector &vector)
{
    return {-vector[0], -vector[1], -vector[2]};
}

void occlusion(const OssEvStrip &strip, const RayValues &values)
{
    std::fill_n(strip.output[0], strip.texels(), 1.0F);
    const float distance = values.distance * lengthOf(values.unit, strip.surface);
    if (!(distance > 0.0F))
        return;
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        const OssEvRayTree &tree = strip.surface->mesh().rayTree();
        const OssEvRayFan fan(point, point.normal, values.spread);
        // Off the surface by a little, so that it does not shade itself.
        const Vector origin = along(point.position, point.normal, distance * 1e-4F);
        int hits = 0;
        for (int ray = 0; ray < values.rays; ++ray)
            hits += tree.isHit(origin, fan.direction(ray), distance) ? 1 : 0;
        strip.output[0][point.index] = 1.0F - float(hits) / float(values.rays);
    });
}

void bentNormal(const OssEvStrip &strip, const RayValues &values)
{
    const bool isDirection = values.output == 0;
    if (isDirection) {
        for (std::size_t k = 0; k < 3; ++k)
            std::fill_n(strip.output[k], strip.texels(), k == 2 ? 1.0F : 0.0F);
    } else {
        std::fill_n(strip.output[0], strip.texels(), 1.0F);
    }
    const float distance = values.distance * lengthOf(values.unit, strip.surface);
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        const OssEvRayTree &tree = strip.surface->mesh().rayTree();
        const OssEvRayFan fan(point, point.normal, values.spread);
        const Vector origin = along(point.position, point.normal, distance * 1e-4F);
        Vector sum{};
        int open = 0;
        for (int ray = 0; ray < values.rays; ++ray) {
            const Vector direction = fan.direction(ray);
            if (distance > 0.0F && tree.isHit(origin, direction, distance))
                continue;
            sum = along(sum, direction, 1.0F);
            ++open;
        }
        if (!isDirection) {
            strip.output[0][point.index] = float(open) / float(values.rays);
            return;
        }
        // Where all is hidden, or nothing is, the surface says it better than the rays that happen to be.
        const bool isPlain = open == 0 || open == values.rays;
        const Vector bent = isPlain ? point.normal : OssEvSurfacePoints::normalized(sum);
        for (std::size_t k = 0; k < 3; ++k)
            strip.output[k][point.index] = bent[k];
    });
}

void thickness(const OssEvStrip &strip, const RayValues &values)
{
    std::fill_n(strip.output[0], strip.texels(), 1.0F);
    const float distance = values.distance * lengthOf(values.unit, strip.surface);
    if (!(distance > 0.0F))
        return;
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        const OssEvRayTree &tree = strip.surface->mesh().rayTree();
        const Vector inwards = opposite(point.normal);
        const OssEvRayFan fan(point, inwards, values.spread);
        const float begin = distance * 1e-4F;
        const Vector origin = along(point.position, inwards, begin);
        float sum = 0.0F;
        for (int ray = 0; ray < values.rays; ++ray) {
            const auto hit = tree.firstHit(origin, fan.direction(ray), distance);
            sum += hit ? (hit->distance + begin) / distance : 1.0F;
        }
        strip.output[0][point.index] = sum / float(values.rays);
    });
}

/// How much of the surroundings on one side of the surface lies behind other surface, the nearer the more: of
/// a right angle about a half at its edge, which becomes 1.
float closeness(const OssEvRayTree &tree, const OssEvSurfacePoint &point, const Vector &axis,
                const RayValues &values, float radius)
{
    const OssEvRayFan fan(point, axis, values.spread);
    const Vector origin = along(point.position, axis, radius * 2e-3F);
    float sum = 0.0F;
    for (int ray = 0; ray < values.rays; ++ray) {
        const auto hit = tree.firstHit(origin, fan.direction(ray), radius);
        sum += hit ? 1.0F - hit->distance / radius : 0.0F;
    }
    return std::min(2.0F * values.contrast * sum / float(values.rays), 1.0F);
}

void concavity(const OssEvStrip &strip, const RayValues &values)
{
    std::fill_n(strip.output[0], strip.texels(), 0.0F);
    const float radius = values.distance * lengthOf(values.unit, strip.surface);
    if (!(radius > 0.0F))
        return;
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        const Vector axis = values.output == 0 ? point.normal : opposite(point.normal);
        strip.output[0][point.index] = closeness(strip.surface->mesh().rayTree(), point, axis,
                                                 values, radius);
    });
}

/// `spread` is a part of a quarter turn.
float sineOf(double spread)
{
    constexpr double QuarterTurn = 1.5707963267948966;
    return float(std::sin(spread * QuarterTurn));
}

RayValues valuesOf(const OssEvKernelSetup &setup)
{
    return {setup.output(), setup.integer("Rays"), float(setup.real("Distance")),
            setup.integer("Unit"), sineOf(setup.real("Spread"))};
}

template <void (*Run)(const OssEvStrip &, const RayValues &)>
std::shared_ptr<const OssEvOperation> make(const OssEvKernelSetup &setup)
{
    return OssEvMakePoint(Run, valuesOf(setup));
}

OssEvKernel rayKernel(const char *name, std::vector<OssEvKernelOutput> outputs)
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = {{"Normal", 3}};
    kernel.outputs = std::move(outputs);
    kernel.usesSurface = true;
    kernel.costly = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addOcclusion(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using namespace OssEvSurfacePoints;
    OssEvKernel open = rayKernel("ambientOcclusion", {{"Output", 1}});
    open.parameters = {integer("Rays", 64, 4, 1024), real("Distance", 0.5, 0, 100),
                       real("Spread", 0.9, 0, 1), unitParameter(Units)};
    open.make = make<occlusion>;
    kernels->push_back(open);

    OssEvKernel bent = rayKernel("bentNormal", {{"Output", 3, true}, {"Openness", 1}});
    bent.parameters = {integer("Rays", 64, 4, 1024), real("Distance", 0.25, 0, 1000),
                       real("Spread", 0.9, 0, 1), unitParameter()};
    bent.make = make<bentNormal>;
    kernels->push_back(bent);

    OssEvKernel thick = rayKernel("thickness", {{"Output", 1}});
    thick.parameters = {integer("Rays", 32, 4, 1024), real("Distance", 0.25, 0, 1000),
                        real("Spread", 0.6, 0, 1), unitParameter()};
    thick.make = make<thickness>;
    kernels->push_back(thick);

    OssEvKernel hollow = rayKernel("concavity", {{"Output", 1}, {"Edges", 1}});
    hollow.parameters = {integer("Rays", 32, 4, 1024), real("Radius", 0.03, 0, 1000),
                         real("Contrast", 1, 0, 5), unitParameter()};
    hollow.make = [](const OssEvKernelSetup &setup) {
        // Flatter rays would meet the next face of what is meant to be round.
        constexpr double Widest = 0.9;
        return OssEvMakePoint(concavity,
                              RayValues{setup.output(), setup.integer("Rays"),
                                        float(setup.real("Radius")), setup.integer("Unit"),
                                        sineOf(Widest), float(setup.real("Contrast"))});
    };
    kernels->push_back(hollow);
}
