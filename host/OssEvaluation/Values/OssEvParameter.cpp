#include "OssEvaluation/Values/OssEvParameter.h"

#include "OssEvaluation/Values/OssEvNumberList.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace {

// Keeps a tangent from overshooting between two points whose slope is `slope`.
void limit(double slope, double *left, double *right)
{
    if (slope == 0.0) {
        *left = 0.0;
        *right = 0.0;
        return;
    }
    const double a = *left / slope;
    const double b = *right / slope;
    const double length = a * a + b * b;
    if (length > 9.0) {
        const double factor = 3.0 / std::sqrt(length);
        *left = factor * a * slope;
        *right = factor * b * slope;
    }
}

} // namespace

OssEvCurve::OssEvCurve(std::vector<OssEvVector2> points)
{
    points.erase(std::remove_if(points.begin(), points.end(),
                                [](const OssEvVector2 &point) {
                                    return !std::isfinite(point[0]) || !std::isfinite(point[1]);
                                }),
                 points.end());
    std::stable_sort(points.begin(), points.end(),
                     [](const OssEvVector2 &a, const OssEvVector2 &b) { return a[0] < b[0]; });
    for (const OssEvVector2 &point : points) {
        if (!m_points.empty() && m_points.back()[0] == point[0])
            m_points.back() = point;
        else
            m_points.push_back(point);
    }
    const std::size_t count = m_points.size();
    if (count < 2)
        return;
    std::vector<double> slopes;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        slopes.push_back((m_points[i + 1][1] - m_points[i][1])
                         / (m_points[i + 1][0] - m_points[i][0]));
    }
    m_tangents.assign(count, 0.0);
    m_tangents.front() = slopes.front();
    m_tangents.back() = slopes.back();
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const bool turns = slopes[i - 1] * slopes[i] <= 0.0;
        m_tangents[i] = turns ? 0.0 : (slopes[i - 1] + slopes[i]) / 2.0;
    }
    for (std::size_t i = 0; i + 1 < count; ++i)
        limit(slopes[i], &m_tangents[i], &m_tangents[i + 1]);
}

OssEvResult OssEvCurve::fromText(std::string_view text, OssEvCurve *curve)
{
    std::vector<OssEvVector2> points;
    if (!OssEvReadNumbers(text, &points))
        return OssEvResult::failure("\"" + std::string(text) + "\" is no list of points");
    *curve = OssEvCurve(std::move(points));
    return {};
}

double OssEvCurve::at(double x) const
{
    if (m_points.empty())
        return x;
    if (!(x > m_points.front()[0]))
        return m_points.front()[1];
    if (x >= m_points.back()[0])
        return m_points.back()[1];
    const auto next = std::upper_bound(
        m_points.begin(), m_points.end(), x,
        [](double value, const OssEvVector2 &point) { return value < point[0]; });
    const auto i = std::size_t(next - m_points.begin()) - 1;
    const double width = m_points[i + 1][0] - m_points[i][0];
    const double t = (x - m_points[i][0]) / width;
    const double s = 1.0 - t;
    return (1.0 + 2.0 * t) * s * s * m_points[i][1] + t * s * s * width * m_tangents[i]
           + t * t * (3.0 - 2.0 * t) * m_points[i + 1][1] - t * t * s * width * m_tangents[i + 1];
}

void OssEvAddToKey(OssEvKeyBuilder *key, const OssEvParameter &value)
{
    key->add(std::int64_t(value.index()));
    std::visit(
        [key](const auto &held) {
            using Type = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Type, OssEvColor> || std::is_same_v<Type, OssEvVector2>) {
                for (const auto number : held)
                    key->add(double(number));
            } else if constexpr (std::is_same_v<Type, OssEvCurve>) {
                key->add(std::int64_t(held.points().size()));
                for (const OssEvVector2 &point : held.points())
                    key->add(point[0]).add(point[1]);
            } else if constexpr (std::is_same_v<Type, OssEvRamp>) {
                key->add(std::string_view(held.toText()));
            } else if constexpr (std::is_same_v<Type, bool>) {
                key->add(std::int64_t(held));
            } else if constexpr (std::is_same_v<Type, std::string>) {
                key->add(std::string_view(held));
            } else {
                key->add(held);
            }
        },
        value);
}
