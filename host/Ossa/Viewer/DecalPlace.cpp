#include "Ossa/Viewer/DecalPlace.h"

#include "OssEvaluation/Values/OssEvRotation.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr const char *names[DecalPlace::attributeCount] = {"PositionX", "PositionY", "PositionZ",
                                                           "RotationX", "RotationY", "RotationZ",
                                                           "Scale",     "Width",     "Height"};
constexpr double smallest = 0.001; // as the attributes may be
constexpr double largestScale = 1000.0;
constexpr double largestSize = 10000.0;
constexpr float upright =
    0.2F; ///< of what points upwards, seen along the surface: less says nothing

} // namespace

const char *DecalPlace::attribute(int index)
{
    return names[index];
}

DecalPlace DecalPlace::of(const OssSnBaseNode &node)
{
    std::array<double, attributeCount> values{};
    for (std::size_t k = 0; k < values.size(); ++k)
        values[k] = node.attribute(QLatin1String(names[k])).toDouble();
    DecalPlace place;
    place.middle = {float(values[0]), float(values[1]), float(values[2])};
    const OssEvRotation::Axes axes = OssEvRotation::axesOf({values[3], values[4], values[5]});
    for (int k = 0; k < 3; ++k) {
        const OssEvRotation::Vector &axis = axes[std::size_t(k)];
        place.axes[k] = {axis[0], axis[1], axis[2]};
    }
    place.scale = values[6];
    place.size = {values[7], values[8]};
    return place;
}

QVector<double> DecalPlace::values() const
{
    OssEvRotation::Axes turned{};
    for (int k = 0; k < 3; ++k)
        turned[std::size_t(k)] = {axes[k].x, axes[k].y, axes[k].z};
    const std::array<double, 3> angles = OssEvRotation::anglesOf(turned);
    return {double(middle.x),
            double(middle.y),
            double(middle.z),
            angles[0],
            angles[1],
            angles[2],
            scale,
            size.x,
            size.y};
}

glm::vec3 DecalPlace::at(glm::vec2 place) const
{
    const glm::dvec2 half = size * (scale * 0.5);
    return middle + across() * (place.x * float(half.x)) + up() * (place.y * float(half.y));
}

bool DecalPlace::onPlane(const glm::vec3 &from, const glm::vec3 &direction, glm::vec2 *place) const
{
    const float towards = glm::dot(direction, out());
    if (std::abs(towards) < 1e-4F * glm::length(direction))
        return false;
    const float along = glm::dot(middle - from, out()) / towards;
    const glm::vec3 met = from + direction * along - middle;
    *place = {glm::dot(met, across()), glm::dot(met, up())};
    return along > 0.0F;
}

DecalPlace DecalPlace::laidOn(const glm::vec3 &place, const glm::vec3 &normal) const
{
    DecalPlace laid = *this;
    laid.middle = place;
    glm::vec3 upwards = up() - normal * glm::dot(up(), normal);
    // Where what pointed upwards points away from the surface now, what pointed sideways says how it lies.
    if (glm::length(upwards) < upright)
        upwards = glm::cross(normal, across());
    laid.axes[2] = normal;
    laid.axes[1] = glm::normalize(upwards);
    laid.axes[0] = glm::cross(laid.axes[1], normal);
    return laid;
}

DecalPlace DecalPlace::turned(float angle) const
{
    DecalPlace turned = *this;
    turned.axes[0] = across() * std::cos(angle) + up() * std::sin(angle);
    turned.axes[1] = up() * std::cos(angle) - across() * std::sin(angle);
    return turned;
}

DecalPlace DecalPlace::scaled(double factor) const
{
    DecalPlace scaled = *this;
    scaled.scale = std::clamp(scale * factor, smallest, largestScale);
    return scaled;
}

DecalPlace DecalPlace::stretched(const glm::dvec2 &factors) const
{
    DecalPlace stretched = *this;
    stretched.size = glm::clamp(size * factors, glm::dvec2(smallest), glm::dvec2(largestSize));
    return stretched;
}
