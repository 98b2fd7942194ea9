#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"

#include <vector>

/// The families of kernels, one function and one file each. A row here is all that a family needs to
/// be in the library.
// clang-format off
#define OSS_EV_FAMILIES(FAMILY) \
    FAMILY(addConstants) \
    FAMILY(addPatterns) \
    FAMILY(addNoise) \
    FAMILY(addGradientNoises) \
    FAMILY(addGrain) \
    FAMILY(addCells) \
    FAMILY(addWaveNoises) \
    FAMILY(addCurrents) \
    FAMILY(addGrunge) \
    FAMILY(addMarks) \
    FAMILY(addBricks) \
    FAMILY(addTilings) \
    FAMILY(addWeaves) \
    FAMILY(addLines) \
    FAMILY(addShapes) \
    FAMILY(addScatter) \
    FAMILY(addAdjustments) \
    FAMILY(addRamps) \
    FAMILY(addTone) \
    FAMILY(addColorChanges) \
    FAMILY(addMeasured) \
    FAMILY(addChannels) \
    FAMILY(addMath) \
    FAMILY(addMerge) \
    FAMILY(addBlur) \
    FAMILY(addDetail) \
    FAMILY(addWindows) \
    FAMILY(addSoft) \
    FAMILY(addMorphology) \
    FAMILY(addDistance) \
    FAMILY(addPaths) \
    FAMILY(addNormals) \
    FAMILY(addFromHeight) \
    FAMILY(addErosion) \
    FAMILY(addPlacement) \
    FAMILY(addBending) \
    FAMILY(addMapped) \
    FAMILY(addSurface) \
    FAMILY(addOcclusion) \
    FAMILY(addWear) \
    FAMILY(addDirections) \
    FAMILY(addIslands) \
    FAMILY(addColorId) \
    FAMILY(addDecal) \
    FAMILY(addSwitches) \
    FAMILY(addExpression) \
    FAMILY(addPatches) \
    FAMILY(addStore)

// clang-format on

namespace OssEvFamilies {

#define OSS_EV_DECLARE(name) void name(std::vector<OssEvKernel> *kernels);
OSS_EV_FAMILIES(OSS_EV_DECLARE)
#undef OSS_EV_DECLARE

} // namespace OssEvFamilies
