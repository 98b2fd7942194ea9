// Kernels that look at small differences: sharpen, edges, normals from heights.

#include "OssEvaluation/Kernels/Convolve.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Smoothing.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;

class Sharpen : public OssEvAreaOperation
{
public:
    Sharpen(const OssEvSmoothing &smoothing, double amount)
        : OssEvAreaOperation({{0, 0}, {0, smoothing.reduction()}})
        , m_smoothing(smoothing)
        , m_amount(float(amount))
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return tap == 0 ? block : m_smoothing.needed(block);
    }

    void run(const OssEvBlock &block) const override
    {
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            OssEvScratch scratch;
            const OssEvPlane to(block.output[std::size_t(channel)], block.region.width,
                                block.region.height, block.stride);
            block.inputs[0].assemble(channel, block.region, Clamp, to.data, to.stride);
            // Alpha is a shape, not detail.
            if (channel == 3)
                continue;
            const OssEvPlane soft(&scratch, to.width, to.height);
            m_smoothing.run(OssEvGridSource(block.inputs[1], channel), block.region, soft);
            for (int y = 0; y < to.height; ++y) {
                for (int x = 0; x < to.width; ++x)
                    to.row(y)[x] += m_amount * (to.row(y)[x] - soft.row(y)[x]);
            }
        }
    }

private:
    OssEvSmoothing m_smoothing;
    float m_amount;
};

/// Differences across a texel by the filter of I. Sobel, in values per texel.
struct Slope
{
    float x;
    float y;

    Slope(const OssEvPlane &plane, int column, int line)
        : x(side(plane, column + 1, line) - side(plane, column - 1, line))
        , y(edge(plane, column, line + 1) - edge(plane, column, line - 1))
    {
    }

private:
    static float side(const OssEvPlane &plane, int column, int line)
    {
        return (plane.row(line - 1)[column] + 2.0F * plane.row(line)[column]
                + plane.row(line + 1)[column])
               / 8.0F;
    }

    static float edge(const OssEvPlane &plane, int column, int line)
    {
        const float *row = plane.row(line);
        return (row[column - 1] + 2.0F * row[column] + row[column + 1]) / 8.0F;
    }
};

// The first channel with one texel around the block.
OssEvPlane withMargin(OssEvScratch *scratch, const OssEvBlock &block)
{
    const OssEvRegion region = block.region.expanded(1);
    OssEvPlane plane(scratch, region.width, region.height);
    block.inputs[0].assemble(0, region, Clamp, plane.data, plane.stride);
    return plane;
}

/// Slopes at the size of the lines that are wanted: the derivative of a smoothed image. A step from
/// 0 to 1 gives 1 at a gain of 1.
class EdgeDetect : public OssEvAreaOperation
{
public:
    EdgeDetect(double width, double gain)
        : OssEvAreaOperation({{0, 0}})
        , m_weights(OssEvConvolve::gaussian(width / 2.0))
        , m_factor(float(std::max(1.0, width) * std::sqrt(std::acos(-1.0) / 2.0) * gain))
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return block.expanded(int(m_weights.size()));
    }

    void run(const OssEvBlock &block) const override
    {
        const int radius = int(m_weights.size()) - 1;
        OssEvScratch scratch;
        const OssEvRegion region = needed(0, block.region);
        const OssEvPlane from(&scratch, region.width, region.height);
        block.inputs[0].assemble(0, region, Clamp, from.data, from.stride);
        const OssEvPlane tall(&scratch, region.width, region.height - 2 * radius);
        OssEvConvolve::columns(from, m_weights, tall);
        const OssEvPlane soft(&scratch, tall.width - 2 * radius, tall.height);
        OssEvConvolve::rows(tall, m_weights, soft);
        for (int y = 0; y < block.region.height; ++y) {
            float *target = block.output[0] + std::ptrdiff_t(y) * block.stride;
            for (int x = 0; x < block.region.width; ++x) {
                const Slope slope(soft, x + 1, y + 1);
                const float steepness = std::sqrt(slope.x * slope.x + slope.y * slope.y);
                target[x] = std::min(1.0F, steepness * m_factor);
            }
        }
    }

private:
    std::vector<float> m_weights;
    float m_factor;
};

/// Stores the normal as a colour around one half, as normal maps are.
class HeightToNormal : public OssEvAreaOperation
{
public:
    HeightToNormal(double strength, bool flip)
        : OssEvAreaOperation({{0, 0}})
        , m_strength(float(strength * Depth))
        , m_flip(flip)
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return block.expanded(1);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const OssEvPlane heights = withMargin(&scratch, block);
        const float across = m_strength * float(block.frame.width);
        const float up = (m_flip ? -m_strength : m_strength) * float(block.frame.height);
        for (int y = 0; y < block.region.height; ++y) {
            const std::ptrdiff_t offset = std::ptrdiff_t(y) * block.stride;
            for (int x = 0; x < block.region.width; ++x) {
                const Slope slope(heights, x + 1, y + 1);
                // v grows upwards and lines downwards.
                const float nx = -slope.x * across;
                const float ny = slope.y * up;
                const float half = 0.5F / std::sqrt(nx * nx + ny * ny + 1.0F);
                block.output[0][offset + x] = 0.5F + nx * half;
                block.output[1][offset + x] = 0.5F + ny * half;
                block.output[2][offset + x] = 0.5F + half;
            }
        }
    }

private:
    /// A height of 1 is this part of the patch's width at a strength of 1.
    static constexpr double Depth = 1.0 / 32.0;

    float m_strength;
    bool m_flip;
};

} // namespace

void OssEvFamilies::addDetail(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel sharpen;
    sharpen.name = "sharpen";
    sharpen.version = 2;
    sharpen.inputs = {{"Input", 0, true}};
    sharpen.outputs = {{"Output", 0}};
    sharpen.parameters = {real("Amount", 0.5, 0, 5), real("Radius", 2, 0, 50)};
    sharpen.keepsPrecision = true;
    sharpen.make = [](const OssEvKernelSetup &setup) {
        const OssEvSmoothing smoothing(
            OssEvSmoothing::Shape::Gaussian,
            OssEvSmoothing::lengthOf(setup.real("Radius"), setup.frame()));
        return std::make_shared<Sharpen>(smoothing, setup.real("Amount"));
    };
    kernels->push_back(sharpen);

    OssEvKernel edges;
    edges.name = "edgeDetect";
    edges.version = 2;
    edges.inputs = {{"Input", 1, true}};
    edges.outputs = {{"Output", 1}};
    edges.parameters = {real("Width", 1, 0.1, 20), real("Gain", 1, 0, 20)};
    edges.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<EdgeDetect>(
            OssEvSmoothing::lengthOf(setup.real("Width"), setup.frame()), setup.real("Gain"));
    };
    kernels->push_back(edges);

    OssEvKernel normals;
    normals.name = "heightToNormal";
    normals.inputs = {{"Height", 1, true}};
    normals.outputs = {{"Output", 3, true}};
    normals.parameters = {real("Strength", 1, 0, 20), flag("Flip", false)};
    normals.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<HeightToNormal>(setup.real("Strength"), setup.flag("Flip"));
    };
    kernels->push_back(normals);
}
