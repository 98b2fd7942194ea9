// Ambient occlusion: rays from the surface into the half space above it.

#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using Vector = std::array<float, 3>;

struct OcclusionValues
{
    int rays;
    float distance;
    /// Sine of the widest angle from the normal.
    float spread;
};

struct Turn
{
    float x;
    float y;
};

float part(float value)
{
    return value - std::floor(value);
}

// A shift of the pattern of rays for each texel, so that what is left of it is noise, not bands.
Turn turnOf(int x, int y)
{
    auto bits = std::uint32_t(x) * 0x9E3779B1U ^ std::uint32_t(y) * 0x85EBCA77U;
    bits = (bits ^ (bits >> 15)) * 0x2C1B3C6DU;
    bits = (bits ^ (bits >> 12)) * 0x297A2D39U;
    constexpr float Scale = 1.0F / 65536.0F;
    return {float(bits & 0xFFFFU) * Scale, float(bits >> 16) * Scale};
}

// Frame around a normal after T. Duff et al., "Building an Orthonormal Basis, Revisited", 2017.
void basisOf(const Vector &n, Vector *a, Vector *b)
{
    const float sign = std::copysign(1.0F, n[2]);
    const float c = -1.0F / (sign + n[2]);
    const float d = n[0] * n[1] * c;
    *a = {1.0F + sign * n[0] * n[0] * c, sign * d, -sign * n[0]};
    *b = {d, sign + n[1] * n[1] * c, -n[1]};
}

float openness(const OssEvRayTree &tree, const Vector &origin, const Vector &normal,
               const OcclusionValues &values, const Turn &turn)
{
    // The two-dimensional sequence of M. Roberts, "The Unreasonable Effectiveness of Quasirandom
    // Sequences", 2018, spread by the cosine.
    constexpr float First = 0.7548776662F;
    constexpr float Second = 0.5698402910F;
    Vector a{};
    Vector b{};
    basisOf(normal, &a, &b);
    int hits = 0;
    for (int ray = 0; ray < values.rays; ++ray) {
        const float radius = std::sqrt(part(turn.x + First * float(ray + 1))) * values.spread;
        const float angle = 6.28318531F * part(turn.y + Second * float(ray + 1));
        const float x = radius * std::cos(angle);
        const float y = radius * std::sin(angle);
        const float z = std::sqrt(std::max(0.0F, 1.0F - radius * radius));
        Vector direction{};
        for (std::size_t k = 0; k < 3; ++k)
            direction[k] = a[k] * x + b[k] * y + normal[k] * z;
        hits += tree.isHit(origin, direction, values.distance) ? 1 : 0;
    }
    return 1.0F - float(hits) / float(values.rays);
}

/// The points of one row of a strip.
struct SurfaceRow
{
    std::vector<float> values;
    std::array<float *, 6> planes{};

    explicit SurfaceRow(int width)
        : values(std::size_t(width) * 6)
    {
        for (std::size_t k = 0; k < 6; ++k)
            planes[k] = values.data() + k * std::size_t(width);
    }

    void read(const OssEvSurfaceMap &surface, int x, int y, int width) const
    {
        surface.positions(x, y, width, {planes[0], planes[1], planes[2]});
        surface.normals(x, y, width, {planes[3], planes[4], planes[5]});
    }

    Vector position(int x) const { return {planes[0][x], planes[1][x], planes[2][x]}; }

    Vector normal(int x) const { return {planes[3][x], planes[4][x], planes[5][x]}; }
};

// The normal that is connected, where it is one.
Vector normalAt(const OssEvStripInput &given, std::size_t i, const Vector &own)
{
    if (!given.connected)
        return own;
    const Vector other{given.plane[0][i], given.plane[1][i], given.plane[2][i]};
    const float length = std::hypot(other[0], other[1], other[2]);
    if (!(length > 1e-6F))
        return own;
    return {other[0] / length, other[1] / length, other[2] / length};
}

void occlusionRow(const OssEvStrip &strip, const OcclusionValues &values, const SurfaceRow &row,
                  int y)
{
    const OssEvRayTree &tree = strip.surface->mesh().rayTree();
    const int line = strip.y + y;
    // Off the surface by a little, so that it does not shade itself.
    const float lift = values.distance * 1e-4F;
    for (int x = 0; x < strip.width; ++x) {
        if (strip.cancel != nullptr && strip.cancel->isCancelled())
            return;
        const std::size_t i = std::size_t(y) * std::size_t(strip.width) + std::size_t(x);
        if (!strip.frame.region().contains(strip.x + x, line)
            || strip.surface->face(strip.x + x, line) < 0)
            continue;
        const Vector normal = normalAt(strip.inputs[0], i, row.normal(x));
        Vector origin = row.position(x);
        for (std::size_t k = 0; k < 3; ++k)
            origin[k] += normal[k] * lift;
        strip.output[0][i] = openness(tree, origin, normal, values, turnOf(strip.x + x, line));
    }
}

void occlusion(const OssEvStrip &strip, const OcclusionValues &values)
{
    std::fill_n(strip.output[0], strip.texels(), 1.0F);
    if (strip.surface == nullptr || !(values.distance > 0.0F))
        return;
    const SurfaceRow row(strip.width);
    for (int y = 0; y < strip.rows; ++y) {
        row.read(*strip.surface, strip.x, strip.y + y, strip.width);
        occlusionRow(strip, values, row, y);
    }
}

} // namespace

void OssEvFamilies::addOcclusion(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "ambientOcclusion";
    kernel.inputs = {{"Normal", 3}};
    kernel.outputs = {{"Output", 1}};
    kernel.parameters = {integer("Rays", 64, 4, 1024), real("Distance", 0.5, 0, 100),
                         real("Spread", 0.9, 0, 1)};
    kernel.usesSurface = true;
    kernel.costly = true;
    kernel.make = [](const OssEvKernelSetup &setup) {
        constexpr double QuarterTurn = 1.5707963267948966;
        const OcclusionValues values{setup.integer("Rays"), float(setup.real("Distance")),
                                     float(std::sin(setup.real("Spread") * QuarterTurn))};
        return OssEvMakePoint(occlusion, values);
    };
    kernels->push_back(kernel);
}
