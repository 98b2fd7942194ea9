#include "OssEvaluation/Kernels/Mesh/Points.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr double DegreesToRadians = 0.017453292519943295;

float part(float value)
{
    return value - std::floor(value);
}

} // namespace

OssEvSurfacePoints::Row::Row(int width)
    : m_width(std::size_t(width))
    , m_values(m_width * 6)
{
}

void OssEvSurfacePoints::Row::read(const OssEvSurfaceMap &surface, int x, int y)
{
    std::array<float *, 6> planes{};
    for (std::size_t k = 0; k < planes.size(); ++k)
        planes[k] = m_values.data() + k * m_width;
    surface.positions(x, y, int(m_width), {planes[0], planes[1], planes[2]});
    surface.normals(x, y, int(m_width), {planes[3], planes[4], planes[5]});
}

OssEvSurfacePoints::Vector OssEvSurfacePoints::normalAt(const OssEvStripInput *given, std::size_t i,
                                                        const Vector &own)
{
    if (given == nullptr || !given->connected)
        return own;
    const Vector other{given->plane[0][i], given->plane[1][i], given->plane[2][i]};
    const float length = std::hypot(other[0], other[1], other[2]);
    if (!(length > 1e-6F))
        return own;
    return {other[0] / length, other[1] / length, other[2] / length};
}

OssEvParameterDescription OssEvSurfacePoints::unitParameter(Unit fallback)
{
    return OssEvDescribe::choice("Unit", {"Object Size", "Units"}, fallback);
}

float OssEvSurfacePoints::lengthOf(int unit, const OssEvSurfaceMap *surface)
{
    if (unit == Units || surface == nullptr)
        return 1.0F;
    return std::max(surface->mesh().facts().box().diagonal(), 1e-6F);
}

OssEvParameterDescription OssEvSurfacePoints::spaceParameter()
{
    return OssEvDescribe::choice("Space", {"World", "Object"});
}

OssEvSurfacePoints::Vector OssEvSurfacePoints::direction(double azimuth, double elevation)
{
    const double a = azimuth * DegreesToRadians;
    const double e = elevation * DegreesToRadians;
    return {float(std::sin(a) * std::cos(e)), float(std::sin(e)), float(std::cos(a) * std::cos(e))};
}

OssEvSurfacePoints::Vector OssEvSurfacePoints::normalized(const Vector &vector)
{
    const float length = std::hypot(vector[0], vector[1], vector[2]);
    if (!(length > 1e-20F))
        return {};
    return {vector[0] / length, vector[1] / length, vector[2] / length};
}

// Frame around the axis after T. Duff et al., "Building an Orthonormal Basis, Revisited", 2017.
OssEvRayFan::OssEvRayFan(const OssEvSurfacePoint &point, const Vector &axis, float spread)
    : m_axis(axis)
    , m_spread(spread)
{
    const float sign = std::copysign(1.0F, axis[2]);
    const float c = -1.0F / (sign + axis[2]);
    const float d = axis[0] * axis[1] * c;
    m_a = {1.0F + sign * axis[0] * axis[0] * c, sign * d, -sign * axis[0]};
    m_b = {d, sign + axis[1] * axis[1] * c, -axis[1]};
    auto bits = std::uint32_t(point.x) * 0x9E3779B1U ^ std::uint32_t(point.y) * 0x85EBCA77U;
    bits = (bits ^ (bits >> 15)) * 0x2C1B3C6DU;
    bits = (bits ^ (bits >> 12)) * 0x297A2D39U;
    constexpr float Scale = 1.0F / 65536.0F;
    m_turnX = float(bits & 0xFFFFU) * Scale;
    m_turnY = float(bits >> 16) * Scale;
}

OssEvRayFan::Vector OssEvRayFan::direction(int ray) const
{
    constexpr float First = 0.7548776662F;
    constexpr float Second = 0.5698402910F;
    const float radius = std::sqrt(part(m_turnX + First * float(ray + 1))) * m_spread;
    const float angle = 6.28318531F * part(m_turnY + Second * float(ray + 1));
    const float x = radius * std::cos(angle);
    const float y = radius * std::sin(angle);
    const float z = std::sqrt(std::max(0.0F, 1.0F - radius * radius));
    Vector direction{};
    for (std::size_t k = 0; k < 3; ++k)
        direction[k] = m_a[k] * x + m_b[k] * y + m_axis[k] * z;
    return direction;
}
