#include "OssGraphLayout/OssLyLayout.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr double Clear = 12.0; ///< between a node and what runs around it
constexpr int MostPoints = 6;  ///< of a wire

std::size_t at(int index)
{
    return std::size_t(index);
}

class Detour
{
public:
    Detour(const std::vector<OssLyRect> &places, const OssLyWire &wire, double size)
        : m_places(places)
        , m_wire(wire)
        , m_size(size)
    {
    }

    std::vector<OssLyPoint> points()
    {
        const OssLyRect &from = m_places[at(m_wire.from)];
        const OssLyRect &to = m_places[at(m_wire.to)];
        const OssLyPoint start{from.right(), from.y + m_wire.fromY};
        const OssLyPoint end{to.x, to.y + m_wire.toY};
        std::vector<OssLyPoint> found;
        if (start.x >= end.x || !lead(start, end, &found) || int(found.size()) > MostPoints)
            return {};
        return found;
    }

private:
    int firstHit(const OssLyPoint &a, const OssLyPoint &b) const
    {
        int best = -1;
        for (int n = 0; n < int(m_places.size()); ++n) {
            const OssLyRect &rect = m_places[at(n)];
            const double left = std::max(a.x, rect.x);
            const double right = std::min(b.x, rect.right());
            if (n == m_wire.from || n == m_wire.to || left >= right)
                continue;
            const double first = a.y + (b.y - a.y) * (left - a.x) / (b.x - a.x);
            const double last = a.y + (b.y - a.y) * (right - a.x) / (b.x - a.x);
            if (std::min(first, last) < rect.bottom() && std::max(first, last) > rect.y
                && (best < 0 || rect.x < m_places[at(best)].x))
                best = n;
        }
        return best;
    }

    bool isFree(const OssLyPoint &point) const
    {
        const OssLyRect own{point.x - m_size / 2.0, point.y - m_size / 2.0, m_size, m_size};
        return std::none_of(m_places.begin(), m_places.end(),
                            [&own](const OssLyRect &rect) { return rect.intersects(own); });
    }

    /// Above or below the node, on beyond others that stand there.
    OssLyPoint beside(int node, double line, bool above) const
    {
        const OssLyRect *rect = &m_places[at(node)];
        OssLyPoint point{rect->x + rect->width / 2.0, line};
        for (std::size_t i = 0; i <= m_places.size(); ++i) {
            point.y = above ? rect->y - Clear - m_size / 2.0
                            : rect->bottom() + Clear + m_size / 2.0;
            if (isFree(point))
                break;
            for (const OssLyRect &other : m_places) {
                const OssLyRect own{point.x - m_size / 2.0, point.y - m_size / 2.0, m_size, m_size};
                if (other.intersects(own))
                    rect = &other;
            }
        }
        return point;
    }

    bool lead(const OssLyPoint &a, const OssLyPoint &b, std::vector<OssLyPoint> *found)
    {
        const int hit = firstHit(a, b);
        if (hit < 0)
            return true;
        if (int(found->size()) >= MostPoints)
            return false;
        const OssLyRect &rect = m_places[at(hit)];
        const double x = rect.x + rect.width / 2.0;
        const double line = a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x);
        const OssLyPoint above = beside(hit, line, true);
        const OssLyPoint below = beside(hit, line, false);
        const bool up = line - above.y < below.y - line;
        const std::vector<OssLyPoint> before = *found;
        for (const OssLyPoint &point : {up ? above : below, up ? below : above}) {
            *found = before;
            if (point.x <= a.x || point.x >= b.x)
                return false;
            if (firstHit(a, point) >= 0)
                continue;
            found->push_back(point);
            if (lead(point, b, found))
                return true;
        }
        return false;
    }

    const std::vector<OssLyRect> &m_places;
    const OssLyWire &m_wire;
    double m_size;
};

} // namespace

std::vector<std::vector<OssLyPoint>> OssLyLayout::detours(const OssLyGraph &graph,
                                                          const std::vector<OssLyRect> &places,
                                                          double size)
{
    std::vector<std::vector<OssLyPoint>> found;
    for (const OssLyWire &wire : graph.wires) {
        found.emplace_back();
        if (!graph.nodes[at(wire.to)].looksOnly && wire.from != wire.to)
            found.back() = Detour(places, wire, size).points();
    }
    return found;
}
