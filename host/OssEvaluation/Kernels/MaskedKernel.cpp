#include "OssEvaluation/Kernels/MaskedKernel.h"

#include "OssEvaluation/Kernels/PointKernel.h"

#include <utility>

const std::vector<std::array<float, 4>> &OssEvMasked::defaults()
{
    static const std::vector<std::array<float, 4>> values{{}, OssEvScalar(1.0)};
    return values;
}

OssEvKernel OssEvMasked::kernel(
    std::string name, int channels, std::vector<OssEvParameterDescription> parameters,
    std::shared_ptr<const OssEvOperation> (*make)(const OssEvKernelSetup &))
{
    OssEvKernel kernel;
    kernel.name = std::move(name);
    kernel.inputs = {{"Input", channels, true}, {"Mask", 1}};
    kernel.outputs = {{"Output", channels}};
    kernel.parameters = std::move(parameters);
    kernel.uniform = true;
    kernel.keepsPrecision = true;
    kernel.make = make;
    return kernel;
}
