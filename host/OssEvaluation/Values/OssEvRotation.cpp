#include "OssEvaluation/Values/OssEvRotation.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double Radians = 0.017453292519943295; // of a degree
constexpr double Upright = 1e-6; ///< cosine: x and z turn about the same axis where it is less

} // namespace

OssEvRotation::Axes OssEvRotation::axesOf(const std::array<double, 3> &angles)
{
    const double cx = std::cos(angles[0] * Radians);
    const double sx = std::sin(angles[0] * Radians);
    const double cy = std::cos(angles[1] * Radians);
    const double sy = std::sin(angles[1] * Radians);
    const double cz = std::cos(angles[2] * Radians);
    const double sz = std::sin(angles[2] * Radians);
    return {Vector{float(cy * cz), float(cy * sz), float(-sy)},
            Vector{float(sx * sy * cz - cx * sz), float(sx * sy * sz + cx * cz), float(sx * cy)},
            Vector{float(cx * sy * cz + sx * sz), float(cx * sy * sz - sx * cz), float(cx * cy)}};
}

std::array<double, 3> OssEvRotation::anglesOf(const Axes &axes)
{
    const Vector &across = axes[0];
    const Vector &up = axes[1];
    const double level = std::hypot(double(across[0]), double(across[1]));
    const double y = std::atan2(-double(across[2]), level) / Radians;
    if (level > Upright)
        return {std::atan2(double(up[2]), double(axes[2][2])) / Radians, y,
                std::atan2(double(across[1]), double(across[0])) / Radians};
    return {std::atan2(across[2] > 0.0F ? -double(up[0]) : double(up[0]), double(up[1])) / Radians,
            y, 0.0};
}
