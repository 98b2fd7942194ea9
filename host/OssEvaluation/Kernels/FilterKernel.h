#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// What most filters have in common: one input that they cannot do without, and one output.
namespace OssEvFilterKernel {

using Make = std::function<std::shared_ptr<const OssEvOperation>(const OssEvKernelSetup &setup)>;

/// `channels` of input and output; 0: as many as come, as precisely as they come.
OssEvKernel describe(std::string name, std::string input, int channels,
                     std::vector<OssEvParameterDescription> parameters, Make make);

/// For operations that take what they need from the setup.
template <class Operation>
std::shared_ptr<const OssEvOperation> make(const OssEvKernelSetup &setup)
{
    return std::make_shared<Operation>(setup);
}

} // namespace OssEvFilterKernel
