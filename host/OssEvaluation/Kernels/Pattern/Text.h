#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"

#include <vector>

/// The kernel that writes: outlines of a font, which are drawn at whatever size is asked for.
void OssEvAddText(std::vector<OssEvKernel> *kernels);
