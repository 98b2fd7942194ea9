#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"

#include <string_view>
#include <vector>

/// All kernels, by name. Made on first use; may be asked from any thread.
namespace OssEvKernelLibrary {

/// Null when there is none of that name.
OSSEVALUATION_EXPORT const OssEvKernel *find(std::string_view name);

OSSEVALUATION_EXPORT const std::vector<OssEvKernel> &kernels();

} // namespace OssEvKernelLibrary
