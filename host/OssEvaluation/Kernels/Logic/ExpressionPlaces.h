#pragma once

#include "OssEvaluation/Kernels/Logic/Expression.h"

#include <array>

class OssEvScratch;
struct OssEvStrip;

/// What an expression knows of the places of a strip's texels.
namespace OssEvExpressionPlaces {

/// By OssEvExpression::Places; null for those that it does not ask for.
using Planes = std::array<const float *, OssEvExpression::PlaceCount>;

Planes of(const OssEvStrip &strip, const OssEvExpression &expression, OssEvScratch *scratch);

} // namespace OssEvExpressionPlaces
