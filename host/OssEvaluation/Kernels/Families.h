#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"

#include <vector>

/// The families of kernels, one function and one file each.
namespace OssEvFamilies {

void addConstants(std::vector<OssEvKernel> *kernels);
void addPatterns(std::vector<OssEvKernel> *kernels);
void addNoise(std::vector<OssEvKernel> *kernels);
void addAdjustments(std::vector<OssEvKernel> *kernels);
void addRamps(std::vector<OssEvKernel> *kernels);
void addChannels(std::vector<OssEvKernel> *kernels);
void addMath(std::vector<OssEvKernel> *kernels);
void addMerge(std::vector<OssEvKernel> *kernels);
void addBlur(std::vector<OssEvKernel> *kernels);
void addDetail(std::vector<OssEvKernel> *kernels);
void addPlacement(std::vector<OssEvKernel> *kernels);
void addSurface(std::vector<OssEvKernel> *kernels);
void addOcclusion(std::vector<OssEvKernel> *kernels);
void addStore(std::vector<OssEvKernel> *kernels);

} // namespace OssEvFamilies
