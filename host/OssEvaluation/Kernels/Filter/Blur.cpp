// Softening, with one strength for the patch or one for each texel.

#include "OssEvaluation/Kernels/Coverage.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Smoothing.h"

#include <algorithm>

namespace {

class Blur : public OssEvAreaOperation
{
public:
    explicit Blur(const OssEvSmoothing &smoothing)
        : OssEvAreaOperation({{0, smoothing.reduction()}})
        , m_smoothing(smoothing)
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return m_smoothing.needed(block);
    }

    void run(const OssEvBlock &block) const override
    {
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            const OssEvPlane to(block.output[std::size_t(channel)], block.region.width,
                                block.region.height, block.stride);
            OssEvSmoothCovered(m_smoothing, block, block.inputs[0], channel, to);
        }
    }

private:
    OssEvSmoothing m_smoothing;
};

/// Mixes a few strengths: a part of the full size, from none to all of it.
class VaryingBlur : public OssEvAreaOperation
{
public:
    static constexpr std::array<double, 4> Parts{0.0, 0.25, 0.5, 1.0};

    explicit VaryingBlur(std::vector<OssEvSmoothing> smoothings)
        : OssEvAreaOperation(tapsOf(smoothings))
        , m_smoothings(std::move(smoothings))
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return tap == 0 ? block : m_smoothings[tap - 1].needed(block);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const int width = block.region.width;
        const int height = block.region.height;
        const OssEvPlane strength(&scratch, width, height);
        block.inputs[0].assemble(0, block.region, OssEvTileGrid::Border::Clamp, strength.data,
                                 strength.stride);
        const OssEvPlane layer(&scratch, width, height);
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            const OssEvPlane to(block.output[std::size_t(channel)], width, height, block.stride);
            for (std::size_t i = 0; i < Parts.size(); ++i) {
                if (block.cancel != nullptr && block.cancel->isCancelled())
                    return;
                OssEvSmoothCovered(m_smoothings[i], block, block.inputs[i + 1], channel,
                                   i == 0 ? to : layer);
                if (i > 0)
                    mixIn(i, strength, layer, to);
            }
        }
    }

private:
    static std::vector<OssEvTap> tapsOf(const std::vector<OssEvSmoothing> &smoothings)
    {
        std::vector<OssEvTap> taps{{1, 0}};
        for (const OssEvSmoothing &smoothing : smoothings)
            taps.push_back({0, smoothing.reduction()});
        return taps;
    }

    // Variances add up, so they are what is mixed evenly.
    static void mixIn(std::size_t part, const OssEvPlane &strength, const OssEvPlane &layer,
                      const OssEvPlane &to)
    {
        const auto below = float(Parts[part - 1] * Parts[part - 1]);
        const auto range = float(Parts[part] * Parts[part]) - below;
        for (int y = 0; y < to.height; ++y) {
            const float *amount = strength.row(y);
            const float *values = layer.row(y);
            float *target = to.row(y);
            for (int x = 0; x < to.width; ++x) {
                const float s = std::clamp(amount[x], 0.0F, 1.0F);
                const float t = std::clamp((s * s - below) / range, 0.0F, 1.0F);
                target[x] += (values[x] - target[x]) * t;
            }
        }
    }

    std::vector<OssEvSmoothing> m_smoothings;
};

std::shared_ptr<const OssEvOperation> makeBlur(const OssEvKernelSetup &setup)
{
    using Shape = OssEvSmoothing::Shape;
    const Shape shape = setup.integer("Quality") == 0 ? Shape::Box : Shape::Gaussian;
    const double size = OssEvSmoothing::lengthOf(setup.real("Radius"), setup.frame());
    if (!setup.isConnected(1))
        return std::make_shared<Blur>(OssEvSmoothing(shape, size));
    std::vector<OssEvSmoothing> smoothings;
    smoothings.reserve(VaryingBlur::Parts.size());
    for (const double part : VaryingBlur::Parts)
        smoothings.emplace_back(shape, size * part);
    return std::make_shared<VaryingBlur>(std::move(smoothings));
}

} // namespace

void OssEvFamilies::addBlur(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "blur";
    kernel.version = 2;
    kernel.inputs = {{"Input", 0, true}, {"Radius", 1}};
    kernel.outputs = {{"Output", 0}};
    kernel.parameters = {real("Radius", 8, 0, 500), choice("Quality", {"Box", "Gaussian"}, 1)};
    kernel.usesSurface = true;
    kernel.keepsPrecision = true;
    kernel.make = makeBlur;
    kernels->push_back(kernel);
}
