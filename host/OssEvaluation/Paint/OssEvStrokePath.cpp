#include "OssEvaluation/Paint/OssEvStrokePath.h"

#include <algorithm>
#include <cmath>

namespace {

using Point = OssEvStrokePath::Point;

constexpr double SmallestStep = 0.5;
constexpr double SamePlace = 1e-6;
constexpr double CurvePart = 4.0; // that is a straight line
constexpr int MostCurveParts = 256;

double mix(double a, double b, double t)
{
    return a + (b - a) * t;
}

double distance(const Point &a, const Point &b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

} // namespace

OssEvStrokePath::OssEvStrokePath(Dab dab)
    : m_dab(std::move(dab))
{
}

double OssEvStrokePath::put(const Point &point) const
{
    return std::max(SmallestStep, m_dab(point));
}

void OssEvStrokePath::moveTo(const Point &to)
{
    if (m_recent.empty()) {
        lineTo(to);
    } else if (distance(m_recent.back(), to) < SamePlace) {
        // Held there, perhaps with another pressure.
        m_recent.back().pressure = to.pressure;
        if (m_recent.size() == 1)
            put(to);
        return;
    }
    m_recent.push_back(to);
    const std::size_t count = m_recent.size();
    if (count == 3)
        curveTo(beyond(m_recent[1], m_recent[0]), m_recent[0], m_recent[1], m_recent[2]);
    if (count == 4) {
        curveTo(m_recent[0], m_recent[1], m_recent[2], m_recent[3]);
        m_recent.erase(m_recent.begin());
    }
}

void OssEvStrokePath::finish()
{
    const std::size_t count = m_recent.size();
    if (count >= 2) {
        const Point &from = m_recent[count - 2];
        const Point &to = m_recent[count - 1];
        curveTo(count > 2 ? m_recent[count - 3] : beyond(to, from), from, to, beyond(from, to));
    }
    m_recent.clear();
}

// A centripetal Catmull-Rom spline: it goes through all places and makes no loops or overshoots where
// they lie at uneven distances.
void OssEvStrokePath::curveTo(const Point &before, const Point &from, const Point &to,
                              const Point &after)
{
    const double t1 = std::sqrt(distance(before, from));
    const double t2 = t1 + std::sqrt(distance(from, to));
    const double t3 = t2 + std::sqrt(distance(to, after));
    const auto along = [=](double a, double b, double c, double d, double t) {
        const double ab = mix(a, b, t / t1);
        const double bc = mix(b, c, (t - t1) / (t2 - t1));
        const double cd = mix(c, d, (t - t2) / (t3 - t2));
        return mix(mix(ab, bc, t / t2), mix(bc, cd, (t - t1) / (t3 - t1)), (t - t1) / (t2 - t1));
    };
    const int parts = std::clamp(int(distance(from, to) / CurvePart), 1, MostCurveParts);
    for (int i = 1; i < parts; ++i) {
        const double way = double(i) / parts;
        const double t = mix(t1, t2, way);
        lineTo({along(before.x, from.x, to.x, after.x, t),
                along(before.y, from.y, to.y, after.y, t), mix(from.pressure, to.pressure, way)});
    }
    lineTo(to);
}

void OssEvStrokePath::lineTo(const Point &to)
{
    if (!m_last) {
        m_toNext = put(to);
    } else {
        const Point from = *m_last;
        const double length = distance(from, to);
        double done = m_toNext;
        while (done <= length + SamePlace) { // as if the line were not in parts
            const double t = std::min(1.0, done / length);
            done += put(
                {mix(from.x, to.x, t), mix(from.y, to.y, t), mix(from.pressure, to.pressure, t)});
        }
        m_toNext = done - length;
    }
    m_last = to;
}
