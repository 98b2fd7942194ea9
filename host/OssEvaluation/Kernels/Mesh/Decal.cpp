// An image that is thrown onto the object from a place in space.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Filter/Pyramid.h"
#include "OssEvaluation/Kernels/Mesh/Points.h"
#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvRotation.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using Vector = OssEvSurfacePoint::Vector;
using Texel = OssEvSampler::Texel;

constexpr int Levels = 6;

enum Output { Colored, Mask, Place };

enum Repeat { Once, Tiled };

class Decal : public OssEvAreaOperation
{
public:
    explicit Decal(const OssEvKernelSetup &setup)
        : OssEvAreaOperation(tapsOf(setup))
        , m_output(setup.output())
        , m_frame(setup.frame())
        , m_isWorld(setup.integer("Space") == OssEvSurfacePoints::World)
        , m_repeat(setup.integer("Repeat"))
        , m_place{float(setup.real("PositionX")), float(setup.real("PositionY")),
                  float(setup.real("PositionZ"))}
        , m_axes(OssEvRotation::axesOf(
              {setup.real("RotationX"), setup.real("RotationY"), setup.real("RotationZ")}))
        , m_size{float(setup.real("Width") * setup.real("Scale")),
                 float(setup.real("Height") * setup.real("Scale"))}
        , m_half(float(setup.real("Depth") / 2.0))
        , m_fade(float(setup.real("Fade")))
        , m_facing(float(std::cos(setup.real("Angle") * 0.017453292519943295)))
        , m_opacity(float(setup.real("Opacity")))
        , m_backFaces(setup.flag("BackFaces"))
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return tap == 0 ? block : OssEvReduced(m_frame, int(tap) - 1).region();
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        OssEvPyramid image(block, 1, Levels,
                           m_repeat == Tiled ? OssEvTileGrid::Border::Repeat
                                             : OssEvTileGrid::Border::Zero,
                           &scratch);
        OssEvSurfacePoints::Row row(block.region.width);
        const OssEvRegion inside = block.region.intersected(m_frame.region());
        fillBackground(block);
        for (int y = inside.y; y < inside.bottom(); ++y) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            if (block.surface != nullptr)
                row.read(*block.surface, block.region.x, y);
            for (int x = inside.x; x < inside.right(); ++x) {
                const int column = x - block.region.x;
                Vector position{(float(x) + 0.5F) / float(m_frame.width) - 0.5F,
                                0.5F - (float(y) + 0.5F) / float(m_frame.height), 0.0F};
                Vector normal{0.0F, 0.0F, 1.0F};
                if (block.surface != nullptr) {
                    if (block.surface->face(x, y) < 0)
                        continue;
                    position = row.position(column);
                    normal = row.normal(column);
                }
                const std::ptrdiff_t at = std::ptrdiff_t(y - block.region.y) * block.stride
                                          + column;
                put(block, at, &image, local(block, position), facing(block, normal),
                    levelAt(block, x, y));
            }
        }
    }

private:
    /// On the decal: 0 to 1 across it, and how far in front of it in halves of its depth.
    struct Local
    {
        float u;
        float v;
        float z;
    };

    static std::vector<OssEvTap> tapsOf(const OssEvKernelSetup & /*setup*/)
    {
        std::vector<OssEvTap> taps = OssEvPyramid::taps(0, Levels);
        taps.insert(taps.begin(), OssEvTap{1, 0});
        return taps;
    }

    void fillBackground(const OssEvBlock &block) const
    {
        for (int k = 0; k < block.outputChannels; ++k) {
            float *to = block.output[std::size_t(k)];
            if (m_output == Colored) {
                block.inputs[0].assemble(k, block.region, OssEvTileGrid::Border::Clamp, to,
                                         block.stride);
                continue;
            }
            for (int y = 0; y < block.region.height; ++y)
                std::fill_n(to + std::ptrdiff_t(y) * block.stride, block.region.width, 0.0F);
        }
    }

    Local local(const OssEvBlock &block, Vector position) const
    {
        if (m_isWorld && block.surface != nullptr) {
            const std::array<float, 12> &m = block.surface->mesh().world;
            Vector moved{};
            for (std::size_t k = 0; k < 3; ++k) {
                moved[k] = m[4 * k] * position[0] + m[4 * k + 1] * position[1]
                           + m[4 * k + 2] * position[2] + m[4 * k + 3];
            }
            position = moved;
        }
        for (std::size_t k = 0; k < 3; ++k)
            position[k] -= m_place[k];
        using OssEvSurfacePoints::dot;
        return {dot(position, m_axes[0]) / m_size[0] + 0.5F,
                dot(position, m_axes[1]) / m_size[1] + 0.5F,
                m_half > 0.0F ? std::abs(dot(position, m_axes[2])) / m_half : 2.0F};
    }

    /// The cosine of the angle between the surface and the decal.
    float facing(const OssEvBlock &block, const Vector &normal) const
    {
        const Vector turned = m_isWorld && block.surface != nullptr
                                  ? OssEvSurfacePoints::normalized(
                                      block.surface->mesh().facts().normalToWorld(normal))
                                  : normal;
        const float cosine = OssEvSurfacePoints::dot(turned, m_axes[2]);
        return m_backFaces ? std::abs(cosine) : cosine;
    }

    /// Which halving of the image has texels about as large as those of the patch.
    double levelAt(const OssEvBlock &block, int x, int y) const
    {
        double step = 1.0 / m_frame.width;
        if (block.surface != nullptr) {
            std::array<double, 3> alongU{};
            std::array<double, 3> alongV{};
            block.surface->derivatives(x, y, &alongU, &alongV);
            step = std::min(std::hypot(alongU[0], alongU[1], alongU[2]) / m_frame.width,
                            std::hypot(alongV[0], alongV[1], alongV[2]) / m_frame.height);
        }
        const double texel = double(std::max(m_size[0], m_size[1])) / m_frame.width;
        return step > texel ? std::log2(step / texel) : 0.0;
    }

    void put(const OssEvBlock &block, std::ptrdiff_t at, OssEvPyramid *image, const Local &place,
             float facing, double level) const
    {
        if (place.z >= 1.0F || facing <= m_facing)
            return;
        const bool isInside = place.u >= 0.0F && place.u < 1.0F && place.v >= 0.0F
                              && place.v < 1.0F;
        if (m_repeat == Once && !isInside)
            return;
        const float u = place.u - std::floor(place.u);
        const float v = place.v - std::floor(place.v);
        float strength = m_opacity;
        if (m_fade > 0.0F) {
            strength *= std::min((1.0F - place.z) / m_fade, 1.0F);
            strength *= std::min((facing - m_facing) / (m_fade * (1.0F - m_facing)), 1.0F);
        }
        if (m_output == Place) {
            const std::array<float, 3> found{u, v, 0.0F};
            for (std::size_t k = 0; k < found.size(); ++k)
                block.output[k][at] = found[k];
            return;
        }
        const Texel texel = image->at(double(u) * m_frame.width, (1.0 - double(v)) * m_frame.height,
                                      level);
        const float alpha = std::clamp(texel[3] * strength, 0.0F, 1.0F);
        if (m_output == Mask) {
            block.output[0][at] = alpha;
            return;
        }
        for (std::size_t k = 0; k < 4; ++k) {
            float &value = block.output[k][at];
            value = texel[k] * strength + value * (1.0F - alpha);
        }
    }

    int m_output;
    OssEvFrame m_frame;
    bool m_isWorld;
    int m_repeat;
    Vector m_place;
    OssEvRotation::Axes m_axes;
    std::array<float, 2> m_size;
    float m_half;
    float m_fade;
    float m_facing;
    float m_opacity;
    bool m_backFaces;
};

} // namespace

void OssEvFamilies::addDecal(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "decal";
    kernel.inputs = {{"Image", 4, true, "Image"}, {"Background", 4}};
    kernel.outputs = {{"Output", 4}, {"Mask", 1}, {"UV", 3, true}};
    kernel.parameters = {text("Image")};
    for (const char *name : {"PositionX", "PositionY", "PositionZ"})
        kernel.parameters.push_back(real(name, 0, -10000, 10000));
    for (const char *name : {"RotationX", "RotationY", "RotationZ"})
        kernel.parameters.push_back(real(name, 0, -360, 360));
    const std::vector<OssEvParameterDescription> others{choice("Space", {"World", "Object"}, 1),
                                                        real("Scale", 1, 0.001, 1000),
                                                        real("Width", 0.6, 0.001, 10000),
                                                        real("Height", 0.6, 0.001, 10000),
                                                        real("Depth", 4, 0, 20000),
                                                        choice("Repeat", {"Once", "Tiled"}),
                                                        real("Angle", 85, 0, 90),
                                                        real("Fade", 0.1, 0, 1),
                                                        flag("BackFaces", false),
                                                        real("Opacity", 1, 0, 1)};
    kernel.parameters.insert(kernel.parameters.end(), others.begin(), others.end());
    kernel.usesSurface = true;
    kernel.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<Decal>(setup);
    };
    kernels->push_back(kernel);
}
