#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

/// Point kernels with one picture in, one out, and a scalar "Mask" that says how far they act.
namespace OssEvMasked {

/// Values of unconnected inputs: nothing, and a mask that lets all of it act.
const std::vector<std::array<float, 4>> &defaults();

/// `channels` are those of OssEvKernelInput, of what comes in and goes out.
OssEvKernel kernel(std::string name, int channels,
                   std::vector<OssEvParameterDescription> parameters,
                   std::shared_ptr<const OssEvOperation> (*make)(const OssEvKernelSetup &));

} // namespace OssEvMasked
