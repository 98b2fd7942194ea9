// Masks from how the surface lies: towards a direction, along an axis, downhill, in light.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Mesh/Points.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Kernels/Position.h"
#include "OssEvaluation/Kernels/SurfaceAxes.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using OssEvSurfacePoints::dot;
using OssEvSurfacePoints::normalized;
using Vector = OssEvSurfacePoint::Vector;
using Box = OssEvMeshFacts::Box;

constexpr double DegreesToRadians = 0.017453292519943295;

float smooth(float t)
{
    const float within = std::clamp(t, 0.0F, 1.0F);
    return within * within * (3.0F - 2.0F * within);
}

/// Of a point in the space that was chosen.
Vector normalIn(int space, const OssEvStrip &strip, const OssEvSurfacePoint &point)
{
    return space == OssEvSurfacePoints::Object
               ? point.normal
               : normalized(strip.surface->mesh().facts().normalToWorld(point.normal));
}

/// In the object's space, of length 1.
Vector toObject(int space, const OssEvStrip &strip, const Vector &direction)
{
    return space == OssEvSurfacePoints::Object || strip.surface == nullptr
               ? direction
               : normalized(strip.surface->mesh().facts().directionToObject(direction));
}

struct MaskValues
{
    Vector towards;
    int space;
    /// Angles from the direction, in radians: up to the one all, from the other on nothing.
    float full;
    float none;
};

void directionMask(const OssEvStrip &strip, const MaskValues &values)
{
    const auto maskOf = [&values](const Vector &normal) {
        const float angle = std::acos(std::clamp(dot(normal, values.towards), -1.0F, 1.0F));
        return smooth((values.none - angle) / std::max(values.none - values.full, 1e-5F));
    };
    std::fill_n(strip.output[0], strip.texels(),
                strip.surface == nullptr ? maskOf({0.0F, 0.0F, 1.0F}) : 0.0F);
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        strip.output[0][point.index] = maskOf(normalIn(values.space, strip, point));
    });
}

struct HeightValues
{
    enum Range { ObjectBox, Own };

    std::size_t axis;
    int space;
    int range;
    float from;
    float to;
    bool isSmooth;
};

void heightGradient(const OssEvStrip &strip, const HeightValues &values)
{
    const OssEvPositions positions = OssEvPositions::of(strip, 0);
    const OssEvMesh *mesh = strip.surface != nullptr ? &strip.surface->mesh() : nullptr;
    const bool isWorld = values.space == OssEvSurfacePoints::World && mesh != nullptr
                         && !strip.inputs[0].connected;
    const std::size_t axis = values.axis;
    float low = values.from;
    float high = values.to;
    if (values.range == HeightValues::ObjectBox) {
        const Box plane{{0, 0, 0}, {1, 1, 1}};
        const Box &box = mesh == nullptr ? plane
                         : isWorld       ? mesh->facts().worldBox()
                                         : mesh->facts().box();
        const float size = box.high[axis] - box.low[axis];
        low = box.low[axis] + values.from * size;
        high = box.low[axis] + values.to * size;
    }
    for (std::size_t i = 0; i < strip.texels(); ++i) {
        const Vector p{positions.plane[0][i], positions.plane[1][i], positions.plane[2][i]};
        float at = p[axis];
        if (isWorld) {
            const float *row = mesh->world.data() + 4 * axis;
            at = row[0] * p[0] + row[1] * p[1] + row[2] * p[2] + row[3];
        }
        // Where both ends are one, everything above it is 1.
        const float t = high != low ? (at - low) / (high - low) : (at >= low ? 1.0F : 0.0F);
        strip.output[0][i] = values.isSmooth ? smooth(t) : std::clamp(t, 0.0F, 1.0F);
    }
}

struct FlowValues
{
    enum Output { InObject, InPatch, Steepness };

    int output;
    int space;
    Vector pull;
};

/// What of the pull lies along the surface.
Vector downhill(const Vector &pull, const Vector &normal)
{
    const float inwards = dot(pull, normal);
    return {pull[0] - normal[0] * inwards, pull[1] - normal[1] * inwards,
            pull[2] - normal[2] * inwards};
}

/// The direction on the patch in which one moves along `way` on the object; of the same length.
Vector onPatch(const OssEvStrip &strip, const OssEvSurfacePoint &point, const Vector &way)
{
    const OssEvSurfaceAxes axes = OssEvSurfaceAxes::of(*strip.surface, point.x, point.y, way);
    if (!axes.exist)
        return {};
    const Vector turned = normalized({float(axes.u), float(axes.v), 0.0F});
    const float length = std::sqrt(dot(way, way));
    return {turned[0] * length, turned[1] * length, 0.0F};
}

void surfaceFlow(const OssEvStrip &strip, const FlowValues &values)
{
    // A flat patch stands upright and is looked at from the front.
    const Vector flat = downhill(values.pull, {0.0F, 0.0F, 1.0F});
    for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k) {
        const float none = values.output == FlowValues::Steepness ? std::sqrt(dot(flat, flat))
                                                                  : flat[k];
        std::fill_n(strip.output[k], strip.texels(), strip.surface == nullptr ? none : 0.0F);
    }
    const Vector pull = toObject(values.space, strip, values.pull);
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        Vector way = downhill(pull, point.normal);
        if (values.output == FlowValues::Steepness) {
            strip.output[0][point.index] = std::min(std::sqrt(dot(way, way)), 1.0F);
            return;
        }
        if (values.output == FlowValues::InPatch)
            way = onPatch(strip, point, way);
        for (std::size_t k = 0; k < 3; ++k)
            strip.output[k][point.index] = way[k];
    });
}

struct LightValues
{
    enum Output { Color, Direct };

    int output;
    int space;
    Vector towards;
    std::array<float, 3> light;
    std::array<float, 3> sky;
    std::array<float, 3> ground;
    int rays; ///< 0: no shadows
    float spread;
};

/// How much of the light is seen from a point.
float seen(const OssEvStrip &strip, const OssEvSurfacePoint &point, const LightValues &values,
           const Vector &towards, float size)
{
    if (values.rays == 0)
        return 1.0F;
    const OssEvRayTree &tree = strip.surface->mesh().rayTree();
    const OssEvRayFan fan(point, towards, values.spread);
    const int rays = values.spread > 0.0F ? values.rays : 1;
    Vector origin = point.position;
    for (std::size_t k = 0; k < 3; ++k)
        origin[k] += point.normal[k] * size * 2e-4F;
    int hits = 0;
    for (int ray = 0; ray < rays; ++ray)
        hits += tree.isHit(origin, fan.direction(ray), 4.0F * size) ? 1 : 0;
    return 1.0F - float(hits) / float(rays);
}

void putLight(const OssEvStrip &strip, std::size_t i, const LightValues &values, float direct,
              float up, float open)
{
    if (values.output == LightValues::Direct) {
        strip.output[0][i] = direct;
        return;
    }
    const float t = 0.5F + 0.5F * up;
    for (std::size_t k = 0; k < 3; ++k) {
        const float around = values.ground[k] + (values.sky[k] - values.ground[k]) * t;
        strip.output[k][i] = values.light[k] * direct + around * open;
    }
    strip.output[3][i] = 1.0F;
}

void bakedLight(const OssEvStrip &strip, const LightValues &values)
{
    const bool isFlat = strip.surface == nullptr;
    for (std::size_t i = 0; i < strip.texels(); ++i) {
        putLight(strip, i, values, isFlat ? std::max(values.towards[2], 0.0F) : 0.0F, 0.0F,
                 strip.inputs[1].plane[0][i]);
    }
    const float size = OssEvSurfacePoints::lengthOf(OssEvSurfacePoints::ObjectSize, strip.surface);
    const Vector towards = toObject(values.space, strip, values.towards);
    OssEvSurfacePoints::each(strip, strip.inputs, [&](const OssEvSurfacePoint &point) {
        const Vector normal = normalIn(values.space, strip, point);
        const float facing = std::max(dot(normal, values.towards), 0.0F);
        const float direct = facing > 0.0F ? facing * seen(strip, point, values, towards, size)
                                           : 0.0F;
        putLight(strip, point.index, values, direct, normal[1],
                 strip.inputs[1].plane[0][point.index]);
    });
}

std::shared_ptr<const OssEvOperation> makeLight(const OssEvKernelSetup &setup)
{
    const auto scaled = [&setup](const char *color, const char *intensity) {
        const OssEvColor plain = setup.color(color);
        const auto factor = float(setup.real(intensity));
        return std::array<float, 3>{plain[0] * factor, plain[1] * factor, plain[2] * factor};
    };
    const LightValues values{
        setup.output(),
        setup.integer("Space"),
        OssEvSurfacePoints::direction(setup.real("Azimuth"), setup.real("Elevation")),
        scaled("LightColor", "Intensity"),
        scaled("SkyColor", "Ambient"),
        scaled("GroundColor", "Ambient"),
        setup.flag("Shadows") ? setup.integer("Rays") : 0,
        float(std::sin(setup.real("Softness") * DegreesToRadians))};
    return OssEvMakePoint(bakedLight, values, {{}, OssEvScalar(1.0)});
}

Vector chosenDirection(const OssEvKernelSetup &setup)
{
    static constexpr Vector Axes[] = {{0, 1, 0},  {0, -1, 0}, {1, 0, 0},
                                      {-1, 0, 0}, {0, 0, 1},  {0, 0, -1}};
    const auto choice = std::size_t(setup.integer("Direction"));
    return choice < std::size(Axes)
               ? Axes[choice]
               : OssEvSurfacePoints::direction(setup.real("Azimuth"), setup.real("Elevation"));
}

OssEvKernel surfaceKernel(const char *name, std::vector<OssEvKernelInput> inputs,
                          std::vector<OssEvKernelOutput> outputs)
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = std::move(inputs);
    kernel.outputs = std::move(outputs);
    kernel.usesSurface = true;
    return kernel;
}

void addMasks(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel mask = surfaceKernel("directionMask", {{"Normal", 3}}, {{"Output", 1}});
    mask.parameters = {
        choice("Direction", {"Up", "Down", "Right", "Left", "Front", "Back", "Angles"}),
        real("Azimuth", 0, -360, 360),
        real("Elevation", 45, -90, 90),
        real("Width", 60, 0, 180),
        real("Softness", 0.7, 0, 1),
        OssEvSurfacePoints::spaceParameter()};
    mask.make = [](const OssEvKernelSetup &setup) {
        const double none = setup.real("Width") * DegreesToRadians;
        return OssEvMakePoint(
            directionMask, MaskValues{chosenDirection(setup), setup.integer("Space"),
                                      float(none * (1.0 - setup.real("Softness"))), float(none)});
    };
    kernels->push_back(mask);

    OssEvKernel height = surfaceKernel("heightGradient", {{"Position", 3}}, {{"Output", 1, true}});
    height.parameters = {choice("Axis", {"X", "Y", "Z"}, 1),
                         choice("Range", {"Object Box", "Own"}),
                         real("From", 0, -10000, 10000),
                         real("To", 1, -10000, 10000),
                         flag("Smooth", false),
                         OssEvSurfacePoints::spaceParameter()};
    height.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(
            heightGradient, HeightValues{std::size_t(setup.integer("Axis")), setup.integer("Space"),
                                         setup.integer("Range"), float(setup.real("From")),
                                         float(setup.real("To")), setup.flag("Smooth")});
    };
    kernels->push_back(height);
}

} // namespace

void OssEvFamilies::addDirections(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    addMasks(kernels);

    OssEvKernel flow = surfaceKernel("surfaceFlow", {{"Normal", 3}},
                                     {{"Output", 3, true}, {"UV", 3, true}, {"Steepness", 1}});
    flow.parameters = {real("Azimuth", 0, -360, 360), real("Elevation", -90, -90, 90),
                       OssEvSurfacePoints::spaceParameter()};
    flow.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(surfaceFlow,
                              FlowValues{setup.output(), setup.integer("Space"),
                                         OssEvSurfacePoints::direction(setup.real("Azimuth"),
                                                                       setup.real("Elevation"))});
    };
    kernels->push_back(flow);

    OssEvKernel light = surfaceKernel("bakedLight", {{"Normal", 3}, {"Occlusion", 1}},
                                      {{"Output", 4}, {"Direct", 1}});
    light.parameters = {real("Azimuth", 40, -360, 360),
                        real("Elevation", 45, -90, 90),
                        OssEvSurfacePoints::spaceParameter(),
                        color("LightColor", {1.0F, 0.93F, 0.82F, 1.0F}),
                        real("Intensity", 0.8, 0, 100),
                        flag("Shadows", true),
                        real("Softness", 5, 0, 90),
                        integer("Rays", 16, 1, 1024),
                        color("SkyColor", {0.55F, 0.7F, 1.0F, 1.0F}),
                        color("GroundColor", {0.3F, 0.25F, 0.2F, 1.0F}),
                        real("Ambient", 0.3, 0, 100)};
    light.costly = true;
    light.make = makeLight;
    kernels->push_back(light);
}
