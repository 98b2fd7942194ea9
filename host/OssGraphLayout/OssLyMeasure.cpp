#include "OssGraphLayout/OssLyMeasure.h"

#include <algorithm>
#include <cstddef>

namespace {

struct Line
{
    double x1, y1, x2, y2; ///< x1 is not right of x2
    int wire;
};

double side(const Line &line, double x, double y)
{
    return (line.x2 - line.x1) * (y - line.y1) - (line.y2 - line.y1) * (x - line.x1);
}

bool cross(const Line &a, const Line &b)
{
    const double first = side(a, b.x1, b.y1);
    const double second = side(a, b.x2, b.y2);
    const double third = side(b, a.x1, a.y1);
    const double fourth = side(b, a.x2, a.y2);
    return ((first > 0.0 && second < 0.0) || (first < 0.0 && second > 0.0))
           && ((third > 0.0 && fourth < 0.0) || (third < 0.0 && fourth > 0.0));
}

bool runsThrough(const Line &line, const OssLyRect &rect)
{
    const double left = std::max(line.x1, rect.x);
    const double right = std::min(line.x2, rect.right());
    if (left > right)
        return false;
    const double run = line.x2 - line.x1;
    const auto yAt = [&](double x) {
        return run > 0.0 ? line.y1 + (line.y2 - line.y1) * (x - line.x1) / run : line.y1;
    };
    double top = yAt(left);
    double bottom = yAt(right);
    if (run <= 0.0)
        bottom = line.y2;
    if (top > bottom)
        std::swap(top, bottom);
    constexpr double Touch = 0.01;
    return top < rect.bottom() - Touch && bottom > rect.y + Touch;
}

std::vector<Line> linesOf(const OssLyGraph &graph, const std::vector<OssLyRect> &places)
{
    std::vector<Line> lines;
    for (int i = 0; i < int(graph.wires.size()); ++i) {
        const OssLyWire &wire = graph.wires[std::size_t(i)];
        if (graph.nodes[std::size_t(wire.to)].looksOnly
            || graph.nodes[std::size_t(wire.from)].looksOnly)
            continue;
        const OssLyRect &from = places[std::size_t(wire.from)];
        const OssLyRect &to = places[std::size_t(wire.to)];
        Line line{from.right(), from.y + wire.fromY, to.x, to.y + wire.toY, i};
        if (line.x1 > line.x2) {
            std::swap(line.x1, line.x2);
            std::swap(line.y1, line.y2);
        }
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end(), [](const Line &a, const Line &b) {
        return a.x1 != b.x1 ? a.x1 < b.x1 : a.wire < b.wire;
    });
    return lines;
}

/// Nodes by their left sides, so that those that a wire may meet lie together.
class Standing
{
public:
    Standing(const OssLyGraph &graph, const std::vector<OssLyRect> &places)
        : m_places(places)
    {
        for (int i = 0; i < int(places.size()); ++i) {
            if (!graph.nodes[std::size_t(i)].looksOnly)
                m_order.push_back(i);
            m_widest = std::max(m_widest, places[std::size_t(i)].width);
        }
        std::sort(m_order.begin(), m_order.end(), [this](int a, int b) {
            return m_places[std::size_t(a)].x < m_places[std::size_t(b)].x;
        });
    }

    int meeting(const Line &line, const OssLyWire &wire) const
    {
        int count = 0;
        auto next = std::lower_bound(
            m_order.begin(), m_order.end(), line.x1 - m_widest,
            [this](int node, double x) { return m_places[std::size_t(node)].x < x; });
        for (; next != m_order.end() && m_places[std::size_t(*next)].x <= line.x2; ++next) {
            if (*next == wire.from || *next == wire.to
                || !runsThrough(line, m_places[std::size_t(*next)]))
                continue;
            ++count;
        }
        return count;
    }

private:
    const std::vector<OssLyRect> &m_places;
    std::vector<int> m_order;
    double m_widest = 0.0;
};

} // namespace

OssLyMeasure ossLyMeasured(const OssLyGraph &graph, const std::vector<OssLyRect> &places)
{
    OssLyMeasure found;
    const std::vector<Line> lines = linesOf(graph, places);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        for (std::size_t j = i + 1; j < lines.size() && lines[j].x1 < lines[i].x2; ++j)
            found.crossings += cross(lines[i], lines[j]) ? 1 : 0;
    }
    const Standing standing(graph, places);
    for (const Line &line : lines) {
        const OssLyWire &wire = graph.wires[std::size_t(line.wire)];
        found.throughNodes += standing.meeting(line, wire);
        const OssLyRect &from = places[std::size_t(wire.from)];
        found.backward += places[std::size_t(wire.to)].x < from.right() ? 1 : 0;
    }
    OssLyRect all;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (!graph.nodes[i].looksOnly)
            all = all.united(places[i]);
    }
    found.width = all.width;
    found.height = all.height;
    return found;
}
