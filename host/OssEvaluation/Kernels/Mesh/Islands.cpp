// What belongs together on a mesh: its charts and parts, how near other parts are, how densely charts are laid
// out, and what a colour marks.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Kernels/Chance.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Mesh/Points.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace {

using Vector = OssEvSurfacePoint::Vector;

Vector colorOf(std::uint32_t number, std::uint32_t seed)
{
    const float hue = 6.0F * float(OssEvChance(number, seed));
    const float value = 0.3F + 0.65F * float(OssEvChance(number, seed, 1));
    Vector color{};
    for (std::size_t k = 0; k < 3; ++k) {
        const float away = std::abs(std::fmod(hue + 6.0F - 2.0F * float(k), 6.0F) - 3.0F);
        color[k] = value * std::clamp(away - 1.0F, 0.08F, 1.0F);
    }
    return color;
}

struct IslandValues
{
    enum Output { Color, Random, Id, Mask };

    enum Kind { Charts, Parts };

    int output;
    int kind;
    int number; ///< that the mask shows; the first is 1
    std::uint32_t seed;
};

void putIsland(const OssEvStrip &strip, std::size_t i, int island, const IslandValues &values)
{
    const auto number = std::uint32_t(island);
    switch (values.output) {
    case IslandValues::Color: {
        const Vector color = colorOf(number, values.seed);
        for (std::size_t k = 0; k < 3; ++k)
            strip.output[k][i] = color[k];
        strip.output[3][i] = 1.0F;
        break;
    }
    case IslandValues::Random:
        strip.output[0][i] = float(OssEvChance(number, values.seed));
        break;
    case IslandValues::Id:
        strip.output[0][i] = float(island + 1);
        break;
    default:
        strip.output[0][i] = island + 1 == values.number ? 1.0F : 0.0F;
    }
}

/// Without a mesh everything is the first one.
void island(const OssEvStrip &strip, const IslandValues &values)
{
    if (strip.surface == nullptr) {
        for (std::size_t i = 0; i < strip.texels(); ++i)
            putIsland(strip, i, 0, values);
        return;
    }
    for (int k = 0; k < strip.outputChannels; ++k)
        std::fill_n(strip.output[std::size_t(k)], strip.texels(), 0.0F);
    const OssEvMeshFacts &facts = strip.surface->mesh().facts();
    const auto &islands = values.kind == IslandValues::Charts ? facts.charts() : facts.parts();
    OssEvSurfacePoints::each(strip, nullptr, [&](const OssEvSurfacePoint &point) {
        putIsland(strip, point.index, islands.ofTriangle[std::size_t(point.face)], values);
    });
}

struct ProximityValues
{
    enum Kind { OtherParts, OwnSurface };

    enum Output { Near, Distance };

    int output;
    int kind;
    float distance;
    int unit;
    int rays;
};

/// To the nearest surface that lies before this one, among those rays that leave it steeply.
float nearestAbove(const OssEvRayTree &tree, const OssEvSurfacePoint &point, int rays,
                   float distance)
{
    constexpr float Spread = 0.94F;
    const OssEvRayFan fan(point, point.normal, Spread);
    Vector origin = point.position;
    for (std::size_t k = 0; k < 3; ++k)
        origin[k] += point.normal[k] * distance * 1e-3F;
    float nearest = distance;
    for (int ray = 0; ray < rays; ++ray) {
        const auto hit = tree.firstHit(origin, fan.direction(ray), nearest);
        nearest = hit ? hit->distance : nearest;
    }
    return nearest;
}

void proximity(const OssEvStrip &strip, const ProximityValues &values)
{
    const bool isDistance = values.output == ProximityValues::Distance;
    const float distance = values.distance
                           * OssEvSurfacePoints::lengthOf(values.unit, strip.surface);
    std::fill_n(strip.output[0], strip.texels(), isDistance ? distance : 0.0F);
    if (!(distance > 0.0F))
        return;
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        const OssEvMesh &mesh = strip.surface->mesh();
        float away = distance;
        if (values.kind == ProximityValues::OwnSurface) {
            away = nearestAbove(mesh.rayTree(), point, values.rays, distance);
        } else if (mesh.facts().parts().count > 1) {
            const std::vector<std::int32_t> &parts = mesh.facts().parts().ofTriangle;
            const std::int32_t own = parts[std::size_t(point.face)];
            away = mesh.rayTree().nearest(point.position, distance,
                                          [&](std::uint32_t other) { return parts[other] != own; });
        }
        strip.output[0][point.index] = isDistance ? away : 1.0F - away / distance;
    });
}

struct DensityValues
{
    enum Output { Relative, Heat, Density, Stretch };

    int output;
    float stops;
};

/// How a square of surface lies in the patch: how large its edge is, and how much longer it is one way than
/// the other.
struct Layout
{
    float density = 0.0F;
    float stretch = 1.0F;

    Layout(const OssEvSurfaceMap &surface, const OssEvSurfacePoint &point)
    {
        std::array<double, 3> alongU{};
        std::array<double, 3> alongV{};
        surface.derivatives(point.x, point.y, &alongU, &alongV);
        double uu = 0.0;
        double uv = 0.0;
        double vv = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
            uu += alongU[k] * alongU[k];
            uv += alongU[k] * alongV[k];
            vv += alongV[k] * alongV[k];
        }
        const double area = std::sqrt(std::max(uu * vv - uv * uv, 0.0));
        if (!(area > 1e-18))
            return;
        density = float(1.0 / std::sqrt(area));
        // Of the singular values, by those of the product with the transposed.
        const double middle = (uu + vv) / 2.0;
        const double off = std::sqrt((uu - vv) * (uu - vv) / 4.0 + uv * uv);
        stretch = float(std::sqrt((middle + off) / std::max(middle - off, 1e-18)));
    }
};

/// Blue where it is coarser than usual, green where it is as usual, red where it is finer.
Vector heatOf(float relative)
{
    const float away = 2.0F * relative - 1.0F;
    return {std::clamp(2.0F * away, 0.0F, 1.0F),
            std::clamp(1.6F - 1.6F * std::abs(away), 0.0F, 1.0F),
            std::clamp(-2.0F * away, 0.0F, 1.0F)};
}

void uvDensity(const OssEvStrip &strip, const DensityValues &values)
{
    const bool isFlat = strip.surface == nullptr;
    const auto put = [&](std::size_t i, float relative, float density, float stretch) {
        if (values.output == DensityValues::Heat) {
            const Vector color = heatOf(relative);
            for (std::size_t k = 0; k < 3; ++k)
                strip.output[k][i] = color[k];
            strip.output[3][i] = 1.0F;
            return;
        }
        strip.output[0][i] = values.output == DensityValues::Relative  ? relative
                             : values.output == DensityValues::Density ? density
                                                                       : 1.0F - 1.0F / stretch;
    };
    for (int k = 0; k < strip.outputChannels; ++k)
        std::fill_n(strip.output[std::size_t(k)], strip.texels(), 0.0F);
    for (std::size_t i = 0; isFlat && i < strip.texels(); ++i)
        put(i, 0.5F, 1.0F, 1.0F);
    OssEvSurfacePoints::each(strip, nullptr, [&](const OssEvSurfacePoint &point) {
        const Layout layout(*strip.surface, point);
        const double mean = strip.surface->mesh().facts().density();
        const double stops = layout.density > 0.0F && mean > 0.0
                                 ? std::log2(double(layout.density) / mean)
                                 : 0.0;
        put(point.index, std::clamp(float(0.5 + 0.5 * stops / double(values.stops)), 0.0F, 1.0F),
            layout.density, layout.stretch);
    });
}

OssEvKernel meshKernel(const char *name, std::vector<OssEvKernelOutput> outputs)
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.outputs = std::move(outputs);
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addIslands(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel islands = meshKernel("island",
                                     {{"Output", 4}, {"Random", 1}, {"Id", 1, true}, {"Mask", 1}});
    islands.parameters = {choice("Of", {"Charts", "Parts"}), integer("Number", 1, 1, 999999),
                          integer("Seed", 1, 0, 9999)};
    islands.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(island, IslandValues{setup.output(), setup.integer("Of"),
                                                   setup.integer("Number"),
                                                   std::uint32_t(setup.integer("Seed"))});
    };
    kernels->push_back(islands);

    OssEvKernel near = meshKernel("proximity", {{"Output", 1}, {"Distance", 1, true}});
    near.inputs = {{"Normal", 3}};
    near.parameters = {choice("To", {"Other Parts", "Own Surface"}),
                       real("Distance", 0.05, 0, 1000), OssEvSurfacePoints::unitParameter(),
                       integer("Rays", 32, 4, 1024)};
    near.costly = true;
    near.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(proximity,
                              ProximityValues{setup.output(), setup.integer("To"),
                                              float(setup.real("Distance")), setup.integer("Unit"),
                                              setup.integer("Rays")});
    };
    kernels->push_back(near);

    OssEvKernel density = meshKernel(
        "uvDensity", {{"Output", 1}, {"Heat", 4}, {"Density", 1, true}, {"Stretch", 1}});
    density.parameters = {real("Stops", 2, 0.1, 10)};
    density.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(uvDensity, DensityValues{setup.output(), float(setup.real("Stops"))});
    };
    kernels->push_back(density);
}
