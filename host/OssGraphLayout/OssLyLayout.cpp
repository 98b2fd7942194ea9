#include "OssGraphLayout/OssLyLayout.h"

#include "OssGraphLayout/Layers.h"
#include "OssGraphLayout/Packing.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// Pairs to look at: of large graphs so many for each box, so that time grows no faster than they do.
constexpr long RefineBudget = 1500;
constexpr long OrderBudget = 250;
constexpr long SmallGraph = 16000; ///< boxes whose budget small graphs have
constexpr double Same = 1.0;
constexpr double NoteStep = 30.0;
constexpr int MostSteps = 1000;

long budgetFor(const Layers &layers, long perBox)
{
    const long count = long(layers.boxes.size());
    return perBox * (count > 1000 ? count : SmallGraph);
}

std::size_t at(int index)
{
    return std::size_t(index);
}

/// A part that nothing joins to others, with where its boxes and frames come from.
struct Part
{
    Layers layers;
    std::vector<int> nodeOf;  ///< of boxes: whom others are attached to
    std::vector<int> frameOf; ///< of frames
    OssLyRect today;
    OssLyRect placed;
};

class Arrangement
{
public:
    Arrangement(const OssLyGraph &graph, const OssLyOptions &options)
        : m_graph(graph)
        , m_options(options)
    {
    }

    OssLyPlaces run();

private:
    int find(int unit);
    bool forms(int node) const;

    int frameUnit(int frame) const { return int(m_graph.nodes.size()) + frame; }

    void joinParts();
    void makeBoxes();
    void fillPart(Part *part, const std::vector<int> &nodes);
    void placePart(Part *part);
    std::vector<double> columnLefts(const Layers &layers) const;
    void placeColumns(Layers *layers) const;
    bool isArranged(const Layers &placed, const std::vector<OssLyRect> &today) const;
    void refitFrames();
    void anchor();
    void placeLookers();
    void placeBesideFrames();
    OssLyRect frameToday(int frame) const;
    bool isFree(int node, const OssLyRect &rect) const;
    int rightmost() const;

    const OssLyGraph &m_graph;
    const OssLyOptions &m_options;
    std::vector<int> m_leader;
    std::vector<OssLyRect> m_boxes; ///< of nodes with what is attached to them
    std::vector<int> m_boxOf;       ///< of nodes in their part
    std::vector<int> m_frameOf;
    std::vector<Part> m_parts;
    OssLyPlaces m_places;
};

int Arrangement::find(int unit)
{
    while (m_leader[at(unit)] != unit)
        unit = m_leader[at(unit)] = m_leader[at(m_leader[at(unit)])];
    return unit;
}

/// Lookers in a frame stay in it as any other node.
bool Arrangement::forms(int node) const
{
    const OssLyNode &one = m_graph.nodes[at(node)];
    return one.attachedTo < 0 && one.besideFrame < 0 && (!one.looksOnly || one.frame >= 0);
}

void Arrangement::makeBoxes()
{
    for (const OssLyNode &node : m_graph.nodes)
        m_boxes.push_back(node.rect);
    for (const OssLyNode &node : m_graph.nodes) {
        if (node.attachedTo >= 0)
            m_boxes[at(node.attachedTo)] = m_boxes[at(node.attachedTo)].united(node.rect);
    }
}

void Arrangement::joinParts()
{
    const int nodeCount = int(m_graph.nodes.size());
    m_leader.resize(m_graph.nodes.size() + m_graph.frames.size());
    std::iota(m_leader.begin(), m_leader.end(), 0);
    const auto join = [this](int a, int b) {
        // Parts come in the order of their first nodes.
        const int first = std::min(find(a), find(b));
        const int second = std::max(find(a), find(b));
        m_leader[at(second)] = first;
    };
    for (int n = 0; n < nodeCount; ++n) {
        if (forms(n) && m_graph.nodes[at(n)].frame >= 0)
            join(n, frameUnit(m_graph.nodes[at(n)].frame));
    }
    for (int f = 0; f < int(m_graph.frames.size()); ++f) {
        if (m_graph.frames[at(f)].parent >= 0)
            join(frameUnit(f), frameUnit(m_graph.frames[at(f)].parent));
    }
    for (const OssLyWire &wire : m_graph.wires) {
        if (forms(wire.from) && forms(wire.to))
            join(wire.from, wire.to);
    }
}

void Arrangement::fillPart(Part *part, const std::vector<int> &nodes)
{
    Layers &layers = part->layers;
    const auto enter = [&](int frame, const auto &self) -> int {
        if (frame < 0)
            return -1;
        if (m_frameOf[at(frame)] >= 0)
            return m_frameOf[at(frame)];
        const OssLyFrame &own = m_graph.frames[at(frame)];
        Layers::Frame copy;
        copy.parent = self(own.parent, self);
        copy.margin = own.margin;
        copy.topMargin = own.topMargin;
        copy.depth = copy.parent < 0 ? 1 : layers.frames[at(copy.parent)].depth + 1;
        m_frameOf[at(frame)] = int(layers.frames.size());
        layers.frames.push_back(copy);
        part->frameOf.push_back(frame);
        return m_frameOf[at(frame)];
    };
    for (const int n : nodes) {
        m_boxOf[at(n)] = int(layers.boxes.size());
        layers.boxes.push_back({m_boxes[at(n)], enter(m_graph.nodes[at(n)].frame, enter)});
        part->nodeOf.push_back(n);
        part->today = part->today.united(m_boxes[at(n)]);
    }
}

/// Columns as wide as their widest box; between them room for the sides of frames.
std::vector<double> Arrangement::columnLefts(const Layers &layers) const
{
    const std::size_t count = layers.ranks.size();
    std::vector<double> widths(count, 0.0);
    for (std::size_t b = 0; b < layers.boxes.size(); ++b) {
        double &width = widths[at(layers.rankOf[b])];
        width = std::max(width, layers.boxes[b].rect.width);
    }
    std::vector<double> before(count, 0.0);
    std::vector<double> after(count, 0.0);
    for (const Layers::Frame &frame : layers.frames) {
        double left = 0.0;
        double right = 0.0;
        for (const Layers::Frame *f = &frame;; f = &layers.frames[at(f->parent)]) {
            left += f->first == frame.first ? f->margin : 0.0;
            right += f->last == frame.last ? f->margin : 0.0;
            if (f->parent < 0)
                break;
        }
        if (frame.last < frame.first)
            continue;
        before[at(frame.first)] = std::max(before[at(frame.first)], left);
        after[at(frame.last)] = std::max(after[at(frame.last)], right);
    }
    constexpr double Least = 30.0; ///< between the sides of frames
    std::vector<double> lefts(count, 0.0);
    for (std::size_t i = 1; i < count; ++i) {
        const double sides = after[i - 1] + before[i];
        const double gap = std::max(m_options.columnGap, sides + Least);
        lefts[i] = lefts[i - 1] + widths[i - 1] + gap;
    }
    return lefts;
}

/// What only feeds others stands at the right of its column, what is only fed at its left: wires there are
/// short and turn beside no other box.
void Arrangement::placeColumns(Layers *layers) const
{
    const std::vector<double> lefts = columnLefts(*layers);
    std::vector<double> widths(lefts.size(), 0.0);
    for (std::size_t b = 0; b < layers->boxes.size(); ++b) {
        double &width = widths[at(layers->rankOf[b])];
        width = std::max(width, layers->boxes[b].rect.width);
    }
    std::vector<char> feeds(layers->boxes.size(), 0);
    std::vector<char> isFed(layers->boxes.size(), 0);
    for (const Layers::Link &link : layers->links)
        feeds[at(link.from)] = isFed[at(link.to)] = 1;
    for (std::size_t b = 0; b < layers->boxes.size(); ++b) {
        const std::size_t rank = at(layers->rankOf[b]);
        OssLyRect &rect = layers->boxes[b].rect;
        const double free = widths[rank] - rect.width;
        rect.x = lefts[rank] + (feeds[b] == isFed[b] ? free / 2.0 : feeds[b] ? free : 0.0);
    }
}

/// What stands as it would, and as well, stays.
bool Arrangement::isArranged(const Layers &placed, const std::vector<OssLyRect> &today) const
{
    if (!placed.isKept || placed.boxes.empty())
        return false;
    Layers before = placed;
    const double dx = placed.boxes.front().rect.x - today.front().x;
    for (std::size_t b = 0; b < today.size(); ++b) {
        if (std::abs(placed.boxes[b].rect.x - today[b].x - dx) > Same)
            return false;
        before.boxes[b].rect = today[b];
    }
    for (const std::vector<int> &rank : placed.ranks) {
        const Layers::Box *above = nullptr;
        for (const int e : rank) {
            if (placed.element(e).kind != Layers::Kind::Box)
                continue;
            const Layers::Box &box = before.boxes[at(placed.element(e).owner)];
            if (above && above->rect.bottom() + m_options.rowGap > box.rect.y + Same)
                return false;
            above = &box;
        }
    }
    return placed.frames.empty() && drawnCost(before) <= 1.05 * drawnCost(placed) + 0.5;
}

void Arrangement::placePart(Part *part)
{
    Layers &layers = part->layers;
    std::vector<OssLyRect> today;
    for (const Layers::Box &box : layers.boxes)
        today.push_back(box.rect);
    rankBoxes(&layers);
    layers.build();
    orderElements(&layers, budgetFor(layers, OrderBudget));
    placeHeights(&layers, m_options);
    placeColumns(&layers);
    for (std::size_t b = 0; b < layers.boxes.size(); ++b)
        layers.boxes[b].rect.y = layers.tops[b];
    refineHeights(&layers, m_options, budgetFor(layers, RefineBudget));
    if (isArranged(layers, today)) {
        for (std::size_t b = 0; b < today.size(); ++b)
            layers.boxes[b].rect = today[b];
    }
    for (const Layers::Box &box : layers.boxes) {
        OssLyRect outer = box.rect;
        for (int f = box.frame; f >= 0; f = layers.frames[at(f)].parent) {
            const Layers::Frame &frame = layers.frames[at(f)];
            outer = {outer.x - frame.margin, outer.y - frame.topMargin,
                     outer.width + 2.0 * frame.margin,
                     outer.height + frame.margin + frame.topMargin};
        }
        part->placed = part->placed.united(outer);
    }
}

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
    for (std::size_t n = 0; n < m_places.nodes.size(); ++n) {
        m_places.nodes[n].x += dx;
        m_places.nodes[n].y += dy;
    }
    for (OssLyRect &rect : m_places.frames) {
        rect.x += dx;
        rect.y += dy;
    }
}

/// Right of what they look at and of its frames, as high, and on nothing.
void Arrangement::placeLookers()
{
    for (int n = 0; n < int(m_graph.nodes.size()); ++n) {
        const OssLyNode &node = m_graph.nodes[at(n)];
        if (!node.looksOnly || forms(n) || node.attachedTo >= 0)
            continue;
        OssLyRect &rect = m_places.nodes[at(n)];
        const OssLyWire *looks = nullptr;
        double left = 0.0;
        for (const OssLyWire &wire : m_graph.wires) {
            if (wire.to != n || wire.from == n)
                continue;
            double right = m_places.nodes[at(wire.from)].right();
            for (int f = m_graph.nodes[at(wire.from)].frame; f >= 0;
                 f = m_graph.frames[at(f)].parent)
                right = std::max(right, m_places.frames[at(f)].right());
            left = looks ? std::max(left, right) : right;
            if (!looks)
                looks = &wire;
        }
        if (!looks)
            continue;
        rect.x = left + m_options.columnGap;
        rect.y = m_places.nodes[at(looks->from)].y + looks->fromY - looks->toY;
        for (bool clear = false; !clear;) {
            clear = true;
            const auto avoid = [&](const OssLyRect &other) {
                if (other.isEmpty() || !other.intersects(rect))
                    return;
                rect.x = other.right() + m_options.columnGap;
                clear = false;
            };
            for (int other = 0; other < int(m_graph.nodes.size()); ++other) {
                if (other != n && m_graph.nodes[at(other)].attachedTo != n)
                    avoid(m_places.nodes[at(other)]);
            }
            for (const OssLyRect &frame : m_places.frames)
                avoid(frame);
        }
    }
}

/// Around its members, as they stand today.
OssLyRect Arrangement::frameToday(int frame) const
{
    const OssLyFrame &own = m_graph.frames[at(frame)];
    OssLyRect rect;
    for (const OssLyNode &node : m_graph.nodes) {
        if (node.frame == frame)
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

OssLyPlaces Arrangement::run()
{
    const int nodeCount = int(m_graph.nodes.size());
    for (const OssLyNode &node : m_graph.nodes)
        m_places.nodes.push_back(node.rect);
    makeBoxes();
    joinParts();
    m_boxOf.assign(m_graph.nodes.size(), -1);
    m_frameOf.assign(m_graph.frames.size(), -1);
    std::vector<std::vector<int>> members;
    std::vector<int> partOf(m_leader.size(), -1);
    for (int n = 0; n < nodeCount; ++n) {
        if (!forms(n))
            continue;
        int &part = partOf[at(find(n))];
        if (part < 0) {
            part = int(members.size());
            members.emplace_back();
        }
        members[at(part)].push_back(n);
    }
    m_parts.resize(members.size());
    for (std::size_t p = 0; p < members.size(); ++p)
        fillPart(&m_parts[p], members[p]);
    for (const OssLyWire &wire : m_graph.wires) {
        if (!forms(wire.from) || !forms(wire.to) || wire.from == wire.to)
            continue;
        Layers::Link link;
        link.from = m_boxOf[at(wire.from)];
        link.to = m_boxOf[at(wire.to)];
        link.fromY = wire.fromY + m_graph.nodes[at(wire.from)].rect.y - m_boxes[at(wire.from)].y;
        link.toY = wire.toY + m_graph.nodes[at(wire.to)].rect.y - m_boxes[at(wire.to)].y;
        m_parts[at(partOf[at(find(wire.from))])].layers.links.push_back(link);
    }
    std::vector<PackedPart> packed;
    for (Part &part : m_parts) {
        placePart(&part);
        packed.push_back({part.today, part.placed.width, part.placed.height});
    }
    packParts(&packed, m_options.partGap);
    for (std::size_t p = 0; p < m_parts.size(); ++p) {
        const Part &part = m_parts[p];
        for (std::size_t b = 0; b < part.nodeOf.size(); ++b) {
            const std::size_t n = at(part.nodeOf[b]);
            const OssLyRect &box = part.layers.boxes[b].rect;
            const OssLyRect &today = m_graph.nodes[n].rect;
            m_places.nodes[n].x = box.x - part.placed.x + packed[p].x + today.x - m_boxes[n].x;
            m_places.nodes[n].y = box.y - part.placed.y + packed[p].y + today.y - m_boxes[n].y;
        }
    }
    anchor();
    const auto follow = [this] {
        for (std::size_t n = 0; n < m_graph.nodes.size(); ++n) {
            if (const int whom = m_graph.nodes[n].attachedTo; whom >= 0) {
                const OssLyRect &today = m_graph.nodes[at(whom)].rect;
                m_places.nodes[n].x = m_places.nodes[at(whom)].x + m_graph.nodes[n].rect.x
                                      - today.x;
                m_places.nodes[n].y = m_places.nodes[at(whom)].y + m_graph.nodes[n].rect.y
                                      - today.y;
            }
        }
    };
    follow();
    refitFrames();
    placeBesideFrames();
    placeLookers();
    follow();
    return m_places;
}

} // namespace

OssLyPlaces OssLyLayout::arranged(const OssLyGraph &graph, const OssLyOptions &options)
{
    return Arrangement(graph, options).run();
}
