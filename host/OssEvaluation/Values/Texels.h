#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// Rows of texels: conversion and plain tests, vectorised. Counts are multiples of 16 and pointers
/// 32-byte aligned unless said otherwise.
namespace OssEvTexels {

OSSEVALUATION_EXPORT void halfToFloat(const std::uint16_t *from, float *to, std::size_t count);

/// What is too large becomes the largest half, what is no number becomes 0.
OSSEVALUATION_EXPORT void floatToHalf(const float *from, std::uint16_t *to, std::size_t count);

/// Infinities become the largest float, what is no number becomes 0.
OSSEVALUATION_EXPORT void makeFinite(float *values, std::size_t count);

/// Whether all values are the same.
OSSEVALUATION_EXPORT bool isUniform(const float *values, std::size_t count);

/// Brightness of scene-linear colours; `weights` are the working space's.
OSSEVALUATION_EXPORT void luminance(const float *red, const float *green, const float *blue,
                                    const OssEvWorkingSpace::Weights &weights, float *to,
                                    std::size_t count);

/// Colours as they are under their alpha; what has none stays.
void unmultiply(const float *values, const float *alpha, float *to, std::size_t count);

void mean(const float *a, const float *b, const float *c, float *to, std::size_t count);

/// How a texel of `from` channels reads as one of `to`. 1 to many repeats the value; what lacks
/// alpha is opaque; colours become their luminance, vectors the mean of their components.
OSSEVALUATION_EXPORT std::array<float, 4> convert(const std::array<float, 4> &texel, int from,
                                                  int to,
                                                  const OssEvWorkingSpace::Weights &luminance);

} // namespace OssEvTexels
