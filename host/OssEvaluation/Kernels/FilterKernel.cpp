#include "OssEvaluation/Kernels/FilterKernel.h"

#include <utility>

OssEvKernel OssEvFilterKernel::describe(std::string name, std::string input, int channels,
                                        std::vector<OssEvParameterDescription> parameters,
                                        Make make)
{
    OssEvKernel kernel;
    kernel.name = std::move(name);
    kernel.inputs = {{std::move(input), channels, true}};
    kernel.outputs = {{"Output", channels}};
    kernel.parameters = std::move(parameters);
    kernel.keepsPrecision = channels == 0;
    kernel.make = std::move(make);
    return kernel;
}
