// Filters that compare a picture with a softened one.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Coverage.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/FilterKernel.h"
#include "OssEvaluation/Kernels/Smoothing.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;

class Detail : public OssEvAreaOperation
{
public:
    /// How much of the difference from what is soft goes where.
    struct Values
    {
        bool highPass;
        float amount;
        float threshold;
    };

    Detail(const OssEvSmoothing &smoothing, const Values &values)
        : OssEvAreaOperation({{0, 0}, {0, smoothing.reduction()}})
        , m_smoothing(smoothing)
        , m_values(values)
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return tap == 0 ? block : m_smoothing.needed(block);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const int width = block.region.width;
        const int height = block.region.height;
        const OssEvPlane soft(&scratch, width, height);
        const OssEvPlane alpha(&scratch, width, height);
        const bool hasAlpha = block.outputChannels == 4;
        if (hasAlpha)
            block.inputs[0].assemble(3, block.region, Clamp, alpha.data, alpha.stride);
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            const OssEvPlane to(block.output[std::size_t(channel)], width, height, block.stride);
            block.inputs[0].assemble(channel, block.region, Clamp, to.data, to.stride);
            // Alpha is a shape, not detail.
            if (channel == 3)
                continue;
            OssEvSmoothCovered(m_smoothing, block, block.inputs[1], channel, soft);
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    const float cover = hasAlpha ? alpha.row(y)[x] : 1.0F;
                    to.row(y)[x] = changed(to.row(y)[x], soft.row(y)[x], cover);
                }
            }
        }
    }

private:
    float changed(float value, float soft, float alpha) const
    {
        const float detail = value - soft;
        if (m_values.highPass)
            return 0.5F * alpha + m_values.amount * detail;
        // Less than the threshold stays, and what is above grows from nothing on.
        const float size = std::max(0.0F, std::abs(detail) - m_values.threshold);
        return value + m_values.amount * std::copysign(size, detail);
    }

    OssEvSmoothing m_smoothing;
    Values m_values;
};

OssEvKernel kernelOf(const char *name, std::vector<OssEvParameterDescription> parameters,
                     bool highPass)
{
    const auto make = [highPass](const OssEvKernelSetup &setup) {
        const OssEvSmoothing smoothing(OssEvSmoothing::Shape::Gaussian,
                                       setup.real("Radius") * setup.frame().width);
        const double threshold = highPass ? 0.0 : setup.real("Threshold");
        return std::make_shared<Detail>(
            smoothing, Detail::Values{highPass, float(setup.real("Amount")), float(threshold)});
    };
    OssEvKernel kernel = OssEvFilterKernel::describe(name, "Input", 0, std::move(parameters), make);
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addSoft(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    kernels->push_back(
        kernelOf("highPass", {real("Radius", 0.02, 0, 0.25), real("Amount", 1, 0, 10)}, true));
    kernels->push_back(kernelOf(
        "unsharpMask",
        {real("Radius", 0.003, 0, 0.05), real("Amount", 1, 0, 10), real("Threshold", 0, 0, 1)},
        false));
}
