// Kernels that tell of the mesh: position, normal, texture coordinates, curvature, the colours of its
// vertices, its materials; and dilation, which carries colours beyond the edges of charts.

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Kernels/Position.h"
#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace {

struct SpaceValues
{
    enum Space { Object, Other };

    int space;
};

struct CurvatureValues
{
    enum Output { Signed, Edges, Hollows };

    int output;
    float radius;
    float contrast;
};

void toWorld(const OssEvMesh &mesh, std::size_t texels, const std::array<float *, 4> &planes)
{
    const std::array<float, 12> &m = mesh.world;
    for (std::size_t i = 0; i < texels; ++i) {
        const float x = planes[0][i];
        const float y = planes[1][i];
        const float z = planes[2][i];
        for (std::size_t k = 0; k < 3; ++k)
            planes[k][i] = m[4 * k] * x + m[4 * k + 1] * y + m[4 * k + 2] * z + m[4 * k + 3];
    }
}

void position(const OssEvStrip &strip, const SpaceValues &values)
{
    const OssEvStripInput none;
    OssEvStrip plain = strip;
    plain.inputs = &none;
    const OssEvPositions positions = OssEvPositions::of(plain, 0);
    for (std::size_t k = 0; k < 3; ++k)
        std::copy_n(positions.plane[k], strip.texels(), strip.output[k]);
    if (values.space == SpaceValues::Other && strip.surface != nullptr)
        toWorld(strip.surface->mesh(), strip.texels(), strip.output);
}

void normal(const OssEvStrip &strip, const SpaceValues &values)
{
    if (values.space == SpaceValues::Other || strip.surface == nullptr) {
        // A surface's own normal points straight up in its tangent space.
        for (std::size_t k = 0; k < 3; ++k)
            std::fill_n(strip.output[k], strip.texels(), k == 2 ? 1.0F : 0.0F);
        return;
    }
    for (int row = 0; row < strip.rows; ++row) {
        const std::ptrdiff_t offset = std::ptrdiff_t(row) * strip.width;
        strip.surface->normals(
            strip.x, strip.y + row, strip.width,
            {strip.output[0] + offset, strip.output[1] + offset, strip.output[2] + offset});
    }
}

void uv(const OssEvStrip &strip, const SpaceValues & /*values*/)
{
    const OssEvFrame &frame = strip.frame;
    std::size_t i = 0;
    for (int row = 0; row < strip.rows; ++row) {
        const double v = 1.0 - (strip.y + row + 0.5) / frame.height;
        for (int x = 0; x < strip.width; ++x, ++i) {
            const double u = (strip.x + x + 0.5) / frame.width;
            strip.output[0][i] = float(u + OssEvPatch::column(frame.patch));
            strip.output[1][i] = float(v + OssEvPatch::row(frame.patch));
            strip.output[2][i] = 0.0F;
        }
    }
}

using Vector = std::array<float, 3>;

struct SurfacePoint
{
    Vector position{};
    Vector normal{};

    SurfacePoint(const OssEvSurfaceMap &surface, int x, int y)
    {
        surface.positions(x, y, 1, {&position[0], &position[1], &position[2]});
        surface.normals(x, y, 1, {&normal[0], &normal[1], &normal[2]});
    }
};

float dot(const Vector &a, const Vector &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// How much normals turn per length between a texel and texels about `radius` away from it: positive
// on edges, negative in hollows.
float curvatureAt(const OssEvSurfaceMap &surface, int x, int y, float radius)
{
    constexpr int Directions = 8;
    constexpr int Farthest = 256;
    std::array<double, 3> alongU{};
    std::array<double, 3> alongV{};
    surface.derivatives(x, y, &alongU, &alongV);
    const double lengthU = std::hypot(alongU[0], alongU[1], alongU[2]) / surface.frame().width;
    const double lengthV = std::hypot(alongV[0], alongV[1], alongV[2]) / surface.frame().height;
    if (!(lengthU > 0.0) || !(lengthV > 0.0))
        return 0.0F;
    const SurfacePoint centre(surface, x, y);
    float sum = 0.0F;
    int found = 0;
    for (int i = 0; i < Directions; ++i) {
        const double angle = i * 6.283185307179586 / Directions;
        const double stepX = std::clamp(std::cos(angle) * radius / lengthU, -256.0, 256.0);
        const double stepY = std::clamp(std::sin(angle) * radius / lengthV, -256.0, 256.0);
        int dx = int(std::lround(stepX));
        const int dy = int(std::lround(stepY));
        if (dx == 0 && dy == 0)
            dx = stepX < 0.0 ? -1 : 1;
        const int column = x + std::clamp(dx, -Farthest, Farthest);
        const int line = y + std::clamp(dy, -Farthest, Farthest);
        if (!surface.frame().region().contains(column, line) || !surface.isCovered(column, line))
            continue;
        const SurfacePoint other(surface, column, line);
        Vector way{};
        Vector turn{};
        for (std::size_t k = 0; k < 3; ++k) {
            way[k] = other.position[k] - centre.position[k];
            turn[k] = other.normal[k] - centre.normal[k];
        }
        const float square = dot(way, way);
        // Texels of another chart may lie anywhere on the object.
        if (square <= 0.0F || square > 16.0F * radius * radius)
            continue;
        sum += dot(turn, way) / square;
        ++found;
    }
    return found == 0 ? 0.0F : sum / float(found);
}

void curvature(const OssEvStrip &strip, const CurvatureValues &values)
{
    const bool isSigned = values.output == CurvatureValues::Signed;
    std::size_t i = 0;
    for (int row = 0; row < strip.rows; ++row) {
        if (strip.cancel != nullptr && strip.cancel->isCancelled())
            return;
        for (int x = 0; x < strip.width; ++x, ++i) {
            float bend = 0.0F;
            const bool inside = strip.surface != nullptr
                                && strip.frame.region().contains(strip.x + x, strip.y + row);
            if (inside && values.radius > 0.0F) {
                bend = curvatureAt(*strip.surface, strip.x + x, strip.y + row, values.radius)
                       * values.radius * values.contrast;
            }
            bend = std::clamp(bend, -1.0F, 1.0F);
            if (isSigned)
                strip.output[0][i] = 0.5F + 0.5F * bend;
            else
                strip.output[0][i] = std::max(
                    0.0F, values.output == CurvatureValues::Edges ? bend : -bend);
        }
    }
}

struct VertexColorValues
{
    enum Output { Color, Alpha };

    int output;
    bool isDisplay;
    /// Red, green and blue of BT.709 in the working space.
    OssEvWorkingSpace::Matrix fromBt709;
};

float linear(float display)
{
    return display <= 0.04045F ? display / 12.92F : std::pow((display + 0.055F) / 1.055F, 2.4F);
}

std::array<float, 3> fromDisplay(const std::array<float, 3> &display,
                                 const OssEvWorkingSpace::Matrix &fromBt709)
{
    std::array<float, 3> color{};
    for (std::size_t k = 0; k < 9; ++k)
        color[k / 3] += linear(display[k % 3]) * fromBt709[k];
    return color;
}

void vertexColor(const OssEvStrip &strip, const VertexColorValues &values)
{
    const bool isAlpha = values.output == VertexColorValues::Alpha;
    std::vector<float> row(std::size_t(strip.width) * 4, 1.0F);
    const std::array<float *, 4> planes{row.data(), row.data() + strip.width,
                                        row.data() + 2 * std::ptrdiff_t(strip.width),
                                        row.data() + 3 * std::ptrdiff_t(strip.width)};
    for (int y = 0; y < strip.rows; ++y) {
        if (strip.surface != nullptr)
            strip.surface->colors(strip.x, strip.y + y, strip.width, planes);
        const std::ptrdiff_t offset = std::ptrdiff_t(y) * strip.width;
        for (int x = 0; x < strip.width; ++x) {
            // A point within the margin may lie beyond the face that answers for it.
            const float alpha = std::clamp(planes[3][x], 0.0F, 1.0F);
            if (isAlpha) {
                strip.output[0][offset + x] = alpha;
                continue;
            }
            std::array<float, 3> color{};
            for (std::size_t k = 0; k < 3; ++k)
                color[k] = std::max(planes[k][x], 0.0F);
            if (values.isDisplay)
                color = fromDisplay(color, values.fromBt709);
            for (std::size_t k = 0; k < 3; ++k)
                strip.output[k][offset + x] = color[k] * alpha;
            strip.output[3][offset + x] = alpha;
        }
    }
}

struct MaterialValues
{
    enum Output { Color, Id, Mask };

    int output;
    int slot;         ///< of the mask; the first is 1
    std::string name; ///< of the mask's slot; empty: by number
};

/// Colours that differ well from each other, the same for a number on any mesh.
Vector materialColor(int slot)
{
    constexpr float GoldenShare = 0.618034F;
    const float hue = 6.0F * std::fmod(float(slot) * GoldenShare, 1.0F);
    const float value = slot % 2 == 0 ? 0.9F : 0.55F;
    Vector color{};
    for (std::size_t k = 0; k < 3; ++k) {
        const float away = std::abs(std::fmod(hue + 6.0F - 2.0F * float(k), 6.0F) - 3.0F);
        color[k] = value * std::clamp(away - 1.0F, 0.05F, 1.0F);
    }
    return color;
}

bool isMasked(const OssEvMesh *mesh, int slot, const MaterialValues &values)
{
    if (values.name.empty())
        return slot + 1 == values.slot;
    return mesh != nullptr && mesh->materialNames[std::size_t(slot)] == values.name;
}

/// `slot`: negative where no face is.
void writeMaterial(const OssEvStrip &strip, std::size_t i, int slot, const MaterialValues &values)
{
    const OssEvMesh *mesh = strip.surface != nullptr ? &strip.surface->mesh() : nullptr;
    if (values.output == MaterialValues::Mask) {
        strip.output[0][i] = slot >= 0 && isMasked(mesh, slot, values) ? 1.0F : 0.0F;
        return;
    }
    if (values.output == MaterialValues::Id) {
        strip.output[0][i] = float(slot + 1);
        return;
    }
    const Vector color = slot < 0 ? Vector{} : materialColor(slot);
    for (std::size_t k = 0; k < 3; ++k)
        strip.output[k][i] = color[k];
    strip.output[3][i] = slot < 0 ? 0.0F : 1.0F;
}

/// Without a mesh everything is the first one.
void materialId(const OssEvStrip &strip, const MaterialValues &values)
{
    const OssEvRegion inside = strip.frame.region();
    std::size_t i = 0;
    for (int y = 0; y < strip.rows; ++y) {
        const int row = std::clamp(strip.y + y, 0, inside.height - 1);
        for (int x = 0; x < strip.width; ++x, ++i) {
            int slot = 0;
            if (strip.surface != nullptr) {
                const int column = std::clamp(strip.x + x, 0, inside.width - 1);
                const int face = strip.surface->face(column, row);
                slot = face < 0 ? -1 : strip.surface->mesh().materials[std::size_t(face)];
            }
            writeMaterial(strip, i, slot, values);
        }
    }
}

/// Texels without a face get the colour of the nearest texel that has one, whatever its alpha.
class Dilate : public OssEvAreaOperation
{
public:
    Dilate(const OssEvFrame &frame, int bleed)
        : OssEvAreaOperation({{0, 0}})
        , m_frame(frame)
        , m_margin(OssEvSurfaceMap::margin(frame.width, bleed))
    {
    }

    bool leavesAsItIs(const OssEvRegion &region, const OssEvSurfaceMap *surface) const override
    {
        return surface == nullptr || surface->isItself(region.intersected(m_frame.region()));
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return block.expanded(m_margin);
    }

    void run(const OssEvBlock &block) const override
    {
        if (leavesAsItIs(block.region, block.surface))
            pass(block);
        else
            spread(block, block.region.intersected(m_frame.region()));
    }

private:
    static void pass(const OssEvBlock &block)
    {
        for (int channel = 0; channel < block.outputChannels; ++channel)
            block.inputs[0].assemble(channel, block.region, OssEvTileGrid::Border::Clamp,
                                     block.output[std::size_t(channel)], block.stride);
    }

    void spread(const OssEvBlock &block, const OssEvRegion &inside) const
    {
        const OssEvRegion region = needed(0, block.region);
        OssEvScratch scratch;
        const OssEvPlane from(&scratch, region.width, region.height);
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            block.inputs[0].assemble(channel, region, OssEvTileGrid::Border::Clamp, from.data,
                                     from.stride);
            float *output = block.output[std::size_t(channel)];
            for (int y = 0; y < block.region.height; ++y) {
                std::copy_n(from.row(y + m_margin) + m_margin, block.region.width,
                            output + std::ptrdiff_t(y) * block.stride);
            }
            for (int y = inside.y; y < inside.bottom(); ++y) {
                for (int x = inside.x; x < inside.right(); ++x) {
                    int nearX = 0;
                    int nearY = 0;
                    block.surface->nearestCovered(x, y, &nearX, &nearY);
                    output[std::ptrdiff_t(y - block.region.y) * block.stride + x - block.region.x] =
                        from.row(nearY - region.y)[nearX - region.x];
                }
            }
        }
    }

    OssEvFrame m_frame;
    int m_margin;
};

OssEvKernel surfaceKernel(const char *name, std::vector<OssEvKernelOutput> outputs)
{
    OssEvKernel kernel;
    kernel.name = name;
    kernel.outputs = std::move(outputs);
    kernel.usesSurface = true;
    return kernel;
}

/// What meshes carry along.
void addMeshData(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel colors = surfaceKernel("vertexColor", {{"Output", 4}, {"Alpha", 1}});
    colors.parameters = {choice("Space", {"Linear", "sRGB"})};
    colors.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(vertexColor,
                              VertexColorValues{setup.output(), setup.integer("Space") == 1,
                                                setup.working().fromBt709});
    };
    kernels->push_back(colors);

    OssEvKernel materials = surfaceKernel("materialId",
                                          {{"Output", 4}, {"Id", 1, true}, {"Mask", 1}});
    materials.parameters = {integer("Slot", 1, 1, 9999), text("Material")};
    materials.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(materialId, MaterialValues{setup.output(), setup.integer("Slot"),
                                                         setup.text("Material")});
    };
    kernels->push_back(materials);
}

} // namespace

void OssEvFamilies::addSurface(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel positions = surfaceKernel("position", {{"Output", 3, true}});
    positions.parameters = {choice("Space", {"Object", "World"})};
    positions.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(position, SpaceValues{setup.integer("Space")});
    };
    kernels->push_back(positions);

    OssEvKernel normals = surfaceKernel("normal", {{"Output", 3, true}});
    normals.parameters = {choice("Space", {"Object", "Tangent"})};
    normals.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(normal, SpaceValues{setup.integer("Space")});
    };
    kernels->push_back(normals);

    OssEvKernel coordinates = surfaceKernel("uv", {{"Output", 3, true}});
    coordinates.usesSurface = false;
    coordinates.make = [](const OssEvKernelSetup & /*setup*/) {
        return OssEvMakePoint(uv, SpaceValues{SpaceValues::Object});
    };
    kernels->push_back(coordinates);

    OssEvKernel bends = surfaceKernel("curvature", {{"Output", 1}, {"Edges", 1}, {"Hollows", 1}});
    bends.parameters = {real("Radius", 0.02, 0, 1), real("Contrast", 1, 0, 5)};
    bends.costly = true;
    bends.make = [](const OssEvKernelSetup &setup) {
        return OssEvMakePoint(curvature,
                              CurvatureValues{setup.output(), float(setup.real("Radius")),
                                              float(setup.real("Contrast"))});
    };
    kernels->push_back(bends);

    addMeshData(kernels);

    OssEvKernel dilation = surfaceKernel("dilate", {{"Output", 0}});
    dilation.inputs = {{"Input", 0, true}};
    dilation.keepsPrecision = true;
    // As the target has it.
    dilation.parameters = {integer("Bleed", OssEvSurfaceMap::MarginAt4k, 0, 4096)};
    dilation.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<Dilate>(setup.frame(), setup.integer("Bleed"));
    };
    kernels->push_back(dilation);
}
