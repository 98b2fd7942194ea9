#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <array>

/// How what is thrown onto surface is turned: about x, then y, then z, in degrees.
namespace OssEvRotation {

using Vector = std::array<float, 3>;
/// Unit vectors across, upwards and outwards of what is turned.
using Axes = std::array<Vector, 3>;

OSSEVALUATION_EXPORT Axes axesOf(const std::array<double, 3> &angles);
/// Angles that give these axes, which must be at right angles to each other; each within 180 degrees.
OSSEVALUATION_EXPORT std::array<double, 3> anglesOf(const Axes &axes);

} // namespace OssEvRotation
