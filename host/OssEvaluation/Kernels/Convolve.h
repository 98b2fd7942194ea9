#pragma once

#include "OssEvaluation/Kernels/Scratch.h"

#include <vector>

/// Filters of float planes. Rows are read and written in whole vectors: what lies between a plane's
/// width and the next vector's end is overwritten.
namespace OssEvConvolve {

/// Weights of a symmetric filter from the middle outwards, `radius + 1` of them, that sum up to 1
/// over the whole filter.
std::vector<float> gaussian(double sigma);

/// Mean over `2 * radius + 1` texels; a part of a texel counts as a part.
std::vector<float> box(double radius);

/// Filters down the columns: `to` has `2 * radius` rows less than `from`.
void columns(const OssEvPlane &from, const std::vector<float> &weights, const OssEvPlane &to);

/// Filters along the rows: `to` has `2 * radius` columns less than `from`.
void rows(const OssEvPlane &from, const std::vector<float> &weights, const OssEvPlane &to);

/// Half the size, with binomial weights 1 3 3 1 in both directions: (w, h) texels of (2w + 2,
/// 2h + 2), the first of which lies one texel before the pair that the first result stands for.
/// `between` has the height of `to` and the width of `from`.
void halve(const OssEvPlane &from, const OssEvPlane &between, const OssEvPlane &to);

/// Twice the size by linear interpolation between texel centres: (2w, 2h) texels of (w + 2, h + 2).
/// `between` has the height of `to` and the width of `from`.
void doubleSize(const OssEvPlane &from, const OssEvPlane &between, const OssEvPlane &to);

} // namespace OssEvConvolve
