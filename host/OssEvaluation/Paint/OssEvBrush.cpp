#include "OssEvaluation/Paint/OssEvBrush.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double Pi = 3.14159265358979323846;
constexpr double SmallestRadius = 0.5;
constexpr double Diagonal = 1.4142135623730951; // of a square, by its side
constexpr double Flattest = 0.02;

/// Even between 0 and 1, and the same for the same dab (the finalizer of MurmurHash3).
double chance(std::uint32_t number, std::uint32_t what)
{
    std::uint32_t h = number * 0x9E3779B9U + what * 0x85EBCA6BU + 0x27D4EB2FU;
    h = (h ^ (h >> 16)) * 0x85EBCA6BU;
    h = (h ^ (h >> 13)) * 0xC2B2AE35U;
    h ^= h >> 16;
    return double(h) / 4294967296.0;
}

} // namespace

OssEvDabShape::OssEvDabShape(const OssEvBrush &brush, double radius, double pressure,
                             double heading, std::uint32_t number)
    : m_stamp(brush.stamp)
{
    double size = brush.pressureSizes ? pressure : 1.0;
    size *= 1.0 - brush.sizeJitter * chance(number, 0);
    m_radius = std::max(SmallestRadius, radius * size);
    m_reach = m_radius + 0.5;
    m_core = m_reach - std::max(1.0, m_radius * (1.0 - brush.hardness));
    double angle = brush.angle * Pi / 180.0
                   + (2.0 * chance(number, 1) - 1.0) * brush.angleJitter * Pi;
    if (brush.followsStroke)
        angle += heading;
    m_cosine = std::cos(angle);
    m_sine = std::sin(angle);
    m_flatness = 1.0 / std::clamp(brush.roundness, Flattest, 1.0);
    const double way = 2.0 * Pi * chance(number, 2);
    const double far = brush.placeJitter * radius * std::sqrt(chance(number, 3));
    m_asideX = far * std::cos(way);
    m_asideY = far * std::sin(way);
    if (m_stamp)
        m_reach = m_radius * Diagonal + 0.5;
    m_isRound = !m_stamp && m_flatness == 1.0;
    const double strength = brush.flow * (brush.pressureCovers ? pressure : 1.0)
                            * (1.0 - brush.flowJitter * chance(number, 4));
    m_strength = float(std::clamp(strength, 0.0, 1.0));
    m_isWhole = brush.flow >= 1.0;
}

float OssEvDabShape::atSquare(double square) const
{
    if (square >= m_reach * m_reach)
        return 0.0F;
    if (m_core > 0.0 && square <= m_core * m_core)
        return 1.0F;
    const double t = std::clamp((m_reach - std::sqrt(square)) / (m_reach - m_core), 0.0, 1.0);
    return float(t * t * (3.0 - 2.0 * t));
}

float OssEvDabShape::at(double x, double y) const
{
    // y goes downwards, angles against the clock.
    const double along = x * m_cosine - y * m_sine;
    const double across = (x * m_sine + y * m_cosine) * m_flatness;
    if (!m_stamp)
        return atSquare(along * along + across * across);
    return m_stamp->coverage(along / m_radius, across / m_radius, 2.0 * m_radius);
}
