#include "OssEvaluation/Paint/OssEvStroke.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = OssEvPaintTile::Size;
constexpr double SmallestStep = 0.5; // texels
constexpr double SamePlace = 1e-6;   // texels
constexpr double CurvePart = 4.0;    // texels that are a straight line
constexpr int MostCurveParts = 256;

double mix(double a, double b, double t)
{
    return a + (b - a) * t;
}

OssEvRegion united(const OssEvRegion &a, const OssEvRegion &b)
{
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() ? b : a;
    const int left = std::min(a.x, b.x);
    const int top = std::min(a.y, b.y);
    return {left, top, std::max(a.right(), b.right()) - left,
            std::max(a.bottom(), b.bottom()) - top};
}

/// Distances come squared: most texels need no root.
void cover(const OssEvBrush &brush, double square, float *covered)
{
    if (*covered >= 1.0F || square >= brush.reach() * brush.reach())
        return;
    const double core = brush.core();
    *covered = core > 0.0 && square <= core * core
                   ? 1.0F
                   : std::max(*covered, brush.coverage(std::sqrt(square)));
}

} // namespace

double OssEvBrush::core() const
{
    return reach() - std::max(1.0, radius * (1.0 - hardness));
}

float OssEvBrush::coverage(double distance) const
{
    const double t = std::clamp((reach() - distance) / (reach() - core()), 0.0, 1.0);
    return float(t * t * (3.0 - 2.0 * t));
}

OssEvStroke::OssEvStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush,
                         std::vector<int> patches)
    : m_buffer(buffer)
    , m_brush(brush)
    , m_patches(std::move(patches))
{
}

double OssEvStroke::distance(const Point &a, const Point &b) const
{
    return std::hypot(b.u - a.u, b.v - a.v) * m_buffer->resolution();
}

OssEvStroke::Areas OssEvStroke::moveTo(double u, double v, double pressure)
{
    const Point to{u, v, std::max(0.5, m_brush.radius * pressure)};
    if (m_recent.empty()) {
        lineTo(to);
    } else if (distance(m_recent.back(), to) < SamePlace) {
        // Held there, perhaps with another pressure.
        m_recent.back().radius = to.radius;
        if (m_recent.size() == 1)
            dab(to);
        return blendStale();
    }
    m_recent.push_back(to);
    const std::size_t count = m_recent.size();
    if (count == 3)
        curveTo(beyond(m_recent[1], m_recent[0]), m_recent[0], m_recent[1], m_recent[2]);
    if (count == 4) {
        curveTo(m_recent[0], m_recent[1], m_recent[2], m_recent[3]);
        m_recent.erase(m_recent.begin());
    }
    return blendStale();
}

OssEvStroke::Areas OssEvStroke::finish()
{
    const std::size_t count = m_recent.size();
    if (count >= 2) {
        const Point &from = m_recent[count - 2];
        const Point &to = m_recent[count - 1];
        curveTo(count > 2 ? m_recent[count - 3] : beyond(to, from), from, to, beyond(from, to));
    }
    m_recent.clear();
    return blendStale();
}

// A centripetal Catmull-Rom spline: it goes through all places and makes no loops or overshoots where
// they lie at uneven distances.
void OssEvStroke::curveTo(const Point &before, const Point &from, const Point &to,
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
        lineTo({along(before.u, from.u, to.u, after.u, t),
                along(before.v, from.v, to.v, after.v, t), mix(from.radius, to.radius, way)});
    }
    lineTo(to);
}

void OssEvStroke::lineTo(const Point &to)
{
    if (!m_last) {
        dab(to);
        m_toNext = std::max(SmallestStep, Spacing * to.radius);
    } else {
        const Point from = *m_last;
        const double length = distance(from, to);
        double done = m_toNext;
        while (done <= length + SamePlace) { // as if the line were not in parts
            const double t = std::min(1.0, done / length);
            const Point at{mix(from.u, to.u, t), mix(from.v, to.v, t),
                           mix(from.radius, to.radius, t)};
            dab(at);
            m_toNext = std::max(SmallestStep, Spacing * at.radius);
            done += m_toNext;
        }
        m_toNext = done - length;
    }
    m_last = to;
}

OssEvStroke::Areas OssEvStroke::blendStale()
{
    Areas areas;
    for (auto &entry : m_touched) {
        Touched &touched = entry.second;
        if (touched.stale.isEmpty())
            continue;
        blend(&touched);
        OssEvRegion area = touched.stale;
        area.x += entry.first.x * Size;
        area.y += entry.first.y * Size;
        areas[entry.first.patch] = united(areas[entry.first.patch], area);
        touched.stale = {};
    }
    return areas;
}

void OssEvStroke::dab(const Point &point)
{
    OssEvBrush brush = m_brush;
    brush.radius = point.radius;
    const double reach = brush.reach() / m_buffer->resolution();
    for (const int patch : m_patches) {
        const double u = point.u - OssEvPatch::column(patch);
        const double v = point.v - OssEvPatch::row(patch);
        if (u > -reach && u < 1.0 + reach && v > -reach && v < 1.0 + reach)
            dabPatch(patch, u * m_buffer->resolution(), (1.0 - v) * m_buffer->resolution(), brush);
    }
}

void OssEvStroke::dabPatch(int patch, double x, double y, const OssEvBrush &brush)
{
    const double reach = brush.reach();
    const int resolution = m_buffer->resolution();
    const int left = int(std::floor(x - reach));
    const int top = int(std::floor(y - reach));
    const OssEvRegion bounds = OssEvRegion{left, top, int(std::ceil(x + reach)) - left,
                                           int(std::ceil(y + reach)) - top}
                                   .intersected({0, 0, resolution, resolution});
    if (bounds.isEmpty())
        return;
    for (int row = bounds.y / Size; row <= (bounds.bottom() - 1) / Size; ++row) {
        for (int column = bounds.x / Size; column <= (bounds.right() - 1) / Size; ++column) {
            const OssEvRegion part = bounds.intersected({column * Size, row * Size, Size, Size});
            Touched &touched = touch({patch, column, row});
            for (int py = part.y; py < part.bottom(); ++py) {
                float *line = touched.coverage.data() + std::ptrdiff_t(py - row * Size) * Size;
                for (int px = part.x; px < part.right(); ++px)
                    cover(brush, (px + 0.5 - x) * (px + 0.5 - x) + (py + 0.5 - y) * (py + 0.5 - y),
                          &line[px - column * Size]);
            }
            OssEvRegion stale = part;
            stale.x -= column * Size;
            stale.y -= row * Size;
            touched.stale = united(touched.stale, stale);
        }
    }
}

OssEvStroke::Touched &OssEvStroke::touch(const OssEvPaintBuffer::Place &place)
{
    const auto found = m_touched.find(place);
    if (found != m_touched.end())
        return found->second;
    Touched touched;
    touched.before = m_buffer->tile(place);
    touched.tile = touched.before ? std::make_shared<OssEvPaintTile>(*touched.before)
                                  : std::make_shared<OssEvPaintTile>();
    touched.coverage.resize(OssEvPaintTile::Texels);
    touched.blended.resize(OssEvPaintTile::Texels);
    m_buffer->setTile(place, touched.tile);
    return m_touched.emplace(place, std::move(touched)).first->second;
}

void OssEvStroke::blend(Touched *touched) const
{
    const OssEvRegion &area = touched->stale;
    const auto opacity = float(m_brush.opacity);
    OssEvPaintTile::Texel brush{};
    if (!m_brush.erases)
        brush = {m_brush.color[0], m_brush.color[1], m_brush.color[2], 1.0F, 0.0F};
    OssEvPaintTile::Texel bare{};
    bare[OssEvPaintTile::Keep] = 1.0F;
    for (int y = area.y; y < area.bottom(); ++y) {
        for (int index = y * Size + area.x; index < y * Size + area.right(); ++index) {
            const float coverage = touched->coverage[std::size_t(index)];
            float &blended = touched->blended[std::size_t(index)];
            if (coverage == blended)
                continue;
            blended = coverage;
            const float alpha = opacity * coverage;
            OssEvPaintTile::Texel texel = touched->before ? touched->before->texel(index) : bare;
            for (std::size_t plane = 0; plane < texel.size(); ++plane)
                texel[plane] = alpha * brush[plane] + (1.0F - alpha) * texel[plane];
            touched->tile->setTexel(index, texel);
        }
    }
}

std::vector<OssEvStroke::Change> OssEvStroke::changes() const
{
    std::vector<Change> changes;
    changes.reserve(m_touched.size());
    for (const auto &entry : m_touched)
        changes.push_back({entry.first, entry.second.before, entry.second.tile});
    return changes;
}
