#include "OssGraphLayout/Arrangement.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

// What comes to its place when nodes have theirs: frames, notes beside them, and those that only look.

namespace {

constexpr double NoteStep = 30.0;
constexpr int MostSteps = 1000;

std::size_t at(int index)
{
    return std::size_t(index);
}

} // namespace

void Arrangement::refitFrames()
{
    m_places.frames.assign(m_graph.frames.size(), {});
    // Inner ones first: a frame stands above those that it holds.
    std::vector<int> order(m_graph.frames.size());
    std::iota(order.begin(), order.end(), 0);
    const auto depth = [this](int frame) {
        int levels = 0;
        for (; frame >= 0; frame = m_graph.frames[at(frame)].parent)
            ++levels;
        return levels;
    };
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return depth(a) > depth(b); });
    for (std::size_t n = 0; n < m_graph.nodes.size(); ++n) {
        const OssLyNode &node = m_graph.nodes[n];
        const int frame = node.attachedTo >= 0 ? m_graph.nodes[at(node.attachedTo)].frame
                                               : node.frame;
        if (frame >= 0)
            m_places.frames[at(frame)] = m_places.frames[at(frame)].united(m_places.nodes[n]);
    }
    for (const int f : order) {
        OssLyRect &rect = m_places.frames[at(f)];
        const OssLyFrame &frame = m_graph.frames[at(f)];
        if (rect.isEmpty())
            continue;
        rect = {rect.x - frame.margin, rect.y - frame.topMargin, rect.width + 2.0 * frame.margin,
                rect.height + frame.margin + frame.topMargin};
        if (frame.parent >= 0)
            m_places.frames[at(frame.parent)] = m_places.frames[at(frame.parent)].united(rect);
    }
}

/// Of those furthest downstream the one that stands furthest right today.
int Arrangement::rightmost() const
{
    std::vector<char> feeds(m_graph.nodes.size(), 0);
    for (const OssLyWire &wire : m_graph.wires) {
        if (forms(wire.to))
            feeds[at(wire.from)] = 1;
    }
    int best = -1;
    for (int n = 0; n < int(m_graph.nodes.size()); ++n) {
        if (!forms(n) || feeds[at(n)])
            continue;
        if (best < 0 || m_graph.nodes[at(n)].rect.right() > m_graph.nodes[at(best)].rect.right())
            best = n;
    }
    return best;
}

void Arrangement::anchor()
{
    const int root = rightmost();
    if (root < 0)
        return;
    const OssLyRect &today = m_graph.nodes[at(root)].rect;
    const double dx = today.x - m_places.nodes[at(root)].x;
    const double dy = today.y - m_places.nodes[at(root)].y;
    for (auto &place : m_places.nodes) {
        place.x += dx;
        place.y += dy;
    }
    for (OssLyRect &rect : m_places.frames) {
        rect.x += dx;
        rect.y += dy;
    }
}

/// Right of what it looks at and of its frames, level with the first of it; where it stands when it looks at nothing.
OssLyRect Arrangement::besideLookedAt(int looker) const
{
    OssLyRect place = m_places.nodes[at(looker)];
    bool isFirst = true;
    double left = 0.0;
    for (const OssLyWire &wire : m_graph.wires) {
        if (wire.to != looker || wire.from == looker)
            continue;
        double right = m_places.nodes[at(wire.from)].right();
        for (int f = m_graph.nodes[at(wire.from)].frame; f >= 0; f = m_graph.frames[at(f)].parent)
            right = std::max(right, m_places.frames[at(f)].right());
        left = isFirst ? right : std::max(left, right);
        if (isFirst)
            place.y = m_places.nodes[at(wire.from)].y + wire.fromY - wire.toY;
        isFirst = false;
    }
    if (!isFirst)
        place.x = left + m_options.columnGap;
    return place;
}

/// What lies under the place but for the node itself and its notes; null where it is free.
const OssLyRect *Arrangement::under(int node, const OssLyRect &place) const
{
    for (int other = 0; other < int(m_graph.nodes.size()); ++other) {
        const bool isOwn = other == node || m_graph.nodes[at(other)].attachedTo == node;
        if (!isOwn && m_places.nodes[at(other)].intersects(place))
            return &m_places.nodes[at(other)];
    }
    for (const OssLyRect &frame : m_places.frames) {
        if (!frame.isEmpty() && frame.intersects(place))
            return &frame;
    }
    return nullptr;
}

/// Further right where something stands there already.
void Arrangement::placeLookers()
{
    for (int n = 0; n < int(m_graph.nodes.size()); ++n) {
        const OssLyNode &node = m_graph.nodes[at(n)];
        if (!node.looksOnly || forms(n) || node.attachedTo >= 0)
            continue;
        OssLyRect &rect = m_places.nodes[at(n)];
        rect = besideLookedAt(n);
        while (const OssLyRect *other = under(n, rect))
            rect.x = other->right() + m_options.columnGap;
    }
}

/// Around its members, as they stand today.
OssLyRect Arrangement::frameToday(int frame) const
{
    const OssLyFrame &own = m_graph.frames[at(frame)];
    OssLyRect rect;
    for (const OssLyNode &node : m_graph.nodes) {
        const int whom = node.attachedTo;
        if ((whom >= 0 ? m_graph.nodes[at(whom)].frame : node.frame) == frame)
            rect = rect.united(node.rect);
    }
    for (int f = 0; f < int(m_graph.frames.size()); ++f) {
        if (m_graph.frames[at(f)].parent == frame)
            rect = rect.united(frameToday(f));
    }
    return {rect.x - own.margin, rect.y - own.topMargin, rect.width + 2.0 * own.margin,
            rect.height + own.margin + own.topMargin};
}

bool Arrangement::isFree(int node, const OssLyRect &rect) const
{
    for (int other = 0; other < int(m_graph.nodes.size()); ++other) {
        if (other != node && m_places.nodes[at(other)].intersects(rect))
            return false;
    }
    return std::none_of(m_places.frames.begin(), m_places.frames.end(),
                        [&rect](const OssLyRect &frame) { return frame.intersects(rect); });
}

/// At the same side of the frame and as far from it; away from it where something else stands there.
void Arrangement::placeBesideFrames()
{
    for (int n = 0; n < int(m_graph.nodes.size()); ++n) {
        const int frame = m_graph.nodes[at(n)].besideFrame;
        if (frame < 0 || m_places.frames[at(frame)].isEmpty())
            continue;
        const OssLyRect &own = m_graph.nodes[at(n)].rect;
        const OssLyRect before = frameToday(frame);
        const OssLyRect &now = m_places.frames[at(frame)];
        const bool isRight = own.x >= before.right();
        const bool isBelow = own.y >= before.bottom();
        const double x = own.x + (isRight ? now.right() - before.right() : now.x - before.x);
        const double y = own.y + (isBelow ? now.bottom() - before.bottom() : now.y - before.y);
        const bool isBeside = isRight || own.right() <= before.x;
        const double way = (isBeside ? isRight : isBelow) ? NoteStep : -NoteStep;
        OssLyRect place{x, y, own.width, own.height};
        for (int step = 0; step < MostSteps && !isFree(n, place); ++step)
            (isBeside ? place.x : place.y) += way;
        m_places.nodes[at(n)] = place;
    }
}
