#include "OssGraphLayout/OssLyLayout.h"

#include "OssGraphLayout/Arrangement.h"
#include "OssGraphLayout/Packing.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// Pairs to look at: of large graphs so many for each box, so that time grows no faster than they do.
struct Budget
{
    long small;
    long perBox;
};

constexpr Budget RefineBudget{20000000, 2200};
constexpr Budget OrderBudget{3150000, 250};
constexpr long LargeGraph = 1000;     ///< boxes, from which on
constexpr std::size_t FewBoxes = 150; ///< of which several orders are tried to the end
constexpr double RoomCost = 0.25e-6;  ///< of a square unit
constexpr double Same = 1.0;
constexpr std::size_t ManyNodes = 400;
constexpr int MostRounds = 6;
// So many times worse than it might be may stand what stays: for the user, and while it is made.
constexpr double StaysUnless = 1.25;
constexpr double ImprovesFor = 1.02;

long budgetFor(const Layers &layers, const Budget &budget)
{
    const long count = long(layers.boxes.size());
    return count > LargeGraph ? budget.perBox * count : budget.small;
}

std::size_t at(int index)
{
    return std::size_t(index);
}

double areaOf(const Layers &layers)
{
    OssLyRect all;
    for (const Layers::Box &box : layers.boxes)
        all = all.united(box.rect);
    return all.width * all.height;
}

bool isWithin(const Layers &layers, int frame, int outer)
{
    while (frame >= 0 && frame != outer)
        frame = layers.frames[at(frame)].parent;
    return frame == outer;
}

/// A box with as much of the frames around it as belongs to its side.
OssLyRect withFrames(const Layers &layers, const Layers::Box &box)
{
    OssLyRect outer = box.rect;
    for (int f = box.frame; f >= 0; f = layers.frames[at(f)].parent) {
        const Layers::Frame &frame = layers.frames[at(f)];
        outer = {outer.x - frame.margin, outer.y - frame.topMargin,
                 outer.width + 2.0 * frame.margin, outer.height + frame.margin + frame.topMargin};
    }
    return outer;
}

OssLyRect grown(const OssLyRect &rect, double by)
{
    return {rect.x - by, rect.y - by, rect.width + 2.0 * by, rect.height + 2.0 * by};
}

/// What a part consists of, from its top left corner.
PackedPart packable(const Part &part)
{
    const Layers &layers = part.layers;
    PackedPart packed;
    packed.today = part.today;
    packed.width = part.placed.width;
    packed.height = part.placed.height;
    const auto fromCorner = [&part](OssLyRect rect) {
        rect.x -= part.placed.x;
        rect.y -= part.placed.y;
        return rect;
    };
    std::vector<OssLyRect> frames(layers.frames.size());
    for (const Layers::Box &box : layers.boxes) {
        int outermost = box.frame;
        while (outermost >= 0 && layers.frames[at(outermost)].parent >= 0)
            outermost = layers.frames[at(outermost)].parent;
        const OssLyRect area = fromCorner(grown(withFrames(layers, box), part.around));
        if (outermost >= 0)
            frames[at(outermost)] = frames[at(outermost)].united(area);
        else
            packed.areas.push_back(area);
    }
    for (const OssLyRect &frame : frames) {
        if (!frame.isEmpty())
            packed.areas.push_back(frame);
    }
    for (const Layers::Link &link : layers.links) {
        const OssLyRect from = fromCorner(layers.boxes[at(link.from)].rect);
        const OssLyRect to = fromCorner(layers.boxes[at(link.to)].rect);
        packed.wires.push_back({{from.right(), from.y + link.fromY}, {to.x, to.y + link.toY}});
    }
    return packed;
}

/// Whether boxes of one rank have the gap between them.
bool columnsAreApart(const Layers &layers, double gap)
{
    for (const std::vector<int> &rank : layers.ranks) {
        std::vector<const OssLyRect *> rects;
        for (const int e : rank) {
            if (layers.element(e).kind == Layers::Kind::Box)
                rects.push_back(&layers.boxes[at(layers.element(e).owner)].rect);
        }
        std::sort(rects.begin(), rects.end(),
                  [](const OssLyRect *a, const OssLyRect *b) { return a->y < b->y; });
        for (std::size_t i = 1; i < rects.size(); ++i) {
            if (rects[i - 1]->bottom() + gap > rects[i]->y + Same)
                return false;
        }
    }
    return true;
}

/// Whether frames around their members, as those stand, hold nothing else and do not meet.
bool framesAreApart(const Layers &layers)
{
    std::vector<OssLyRect> areas(layers.frames.size());
    for (const Layers::Box &box : layers.boxes) {
        OssLyRect outer = box.rect;
        for (int f = box.frame; f >= 0; f = layers.frames[at(f)].parent) {
            const Layers::Frame &frame = layers.frames[at(f)];
            outer = {outer.x - frame.margin, outer.y - frame.topMargin,
                     outer.width + 2.0 * frame.margin,
                     outer.height + frame.margin + frame.topMargin};
            areas[at(f)] = areas[at(f)].united(outer);
        }
    }
    for (int f = 0; f < int(areas.size()); ++f) {
        for (const Layers::Box &box : layers.boxes) {
            if (!isWithin(layers, box.frame, f) && box.rect.intersects(areas[at(f)]))
                return false;
        }
        for (int g = 0; g < f; ++g) {
            if (!isWithin(layers, f, g) && !isWithin(layers, g, f)
                && areas[at(f)].intersects(areas[at(g)]))
                return false;
        }
    }
    return true;
}

} // namespace

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
        if (m_graph.nodes[at(n)].standsApart)
            part->around = m_options.apartGap - m_options.partGap;
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

/// What stands in its columns, and about as well as it would, stays.
bool Arrangement::isArranged(const Layers &placed, const std::vector<OssLyRect> &today) const
{
    if (placed.boxes.empty())
        return false;
    Layers before = placed;
    const double dx = placed.boxes.front().rect.x - today.front().x;
    for (std::size_t b = 0; b < today.size(); ++b) {
        if (std::abs(placed.boxes[b].rect.x - today[b].x - dx) > Same)
            return false;
        before.boxes[b].rect = today[b];
    }
    return columnsAreApart(before, m_options.rowGap) && framesAreApart(before)
           && drawnCost(before) <= m_worthMoving * drawnCost(placed) + 0.01;
}

/// The order of the elements is known.
void Arrangement::placeOrdered(Layers *layers) const
{
    placeHeights(layers, m_options);
    placeColumns(layers);
    for (std::size_t b = 0; b < layers->boxes.size(); ++b)
        layers->boxes[b].rect.y = layers->tops[b];
    refineHeights(layers, m_options, budgetFor(*layers, RefineBudget));
}

/// What is best as it is drawn; where that is even, what needs less room.
void Arrangement::placeBest(Layers *layers) const
{
    const std::vector<Layers::Order> orders = orderElements(layers,
                                                            budgetFor(*layers, OrderBudget));
    if (orders.size() < 2 || layers->boxes.size() > FewBoxes) {
        placeOrdered(layers);
        return;
    }
    Layers best;
    double least = 0.0;
    for (const Layers::Order &order : orders) {
        Layers tried = *layers;
        tried.setOrder(order);
        placeOrdered(&tried);
        const double cost = drawnCost(tried) + RoomCost * areaOf(tried);
        if (best.boxes.empty() || cost < least) {
            least = cost;
            best = std::move(tried);
        }
    }
    *layers = std::move(best);
}

void Arrangement::placePart(Part *part)
{
    Layers &layers = part->layers;
    std::vector<OssLyRect> today;
    for (const Layers::Box &box : layers.boxes) {
        today.push_back(box.rect);
        part->today = part->today.united(grown(withFrames(layers, box), part->around));
    }
    rankBoxes(&layers);
    layers.build();
    placeBest(&layers);
    if (isArranged(layers, today)) {
        for (std::size_t b = 0; b < today.size(); ++b)
            layers.boxes[b].rect = today[b];
    }
    for (const Layers::Box &box : layers.boxes)
        part->placed = part->placed.united(grown(withFrames(layers, box), part->around));
}

void Arrangement::makeParts()
{
    const int nodeCount = int(m_graph.nodes.size());
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
}

void Arrangement::placeParts()
{
    std::vector<PackedPart> packed;
    for (Part &part : m_parts) {
        placePart(&part);
        packed.push_back(packable(part));
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
}

OssLyPlaces Arrangement::run()
{
    for (const OssLyNode &node : m_graph.nodes)
        m_places.nodes.push_back(node.rect);
    makeBoxes();
    joinParts();
    makeParts();
    placeParts();
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

OssLyPlaces OssLyLayout::arranged(const OssLyGraph &graph, const OssLyOptions &options)
{
    Arrangement first(graph, options, StaysUnless);
    OssLyPlaces places = first.run();
    // From what is drawn by now small graphs become better still, and stay when they are laid out again.
    OssLyGraph drawn = graph;
    const int rounds = graph.nodes.size() < ManyNodes ? MostRounds : 0;
    for (int round = 0; round < rounds; ++round) {
        bool moved = false;
        for (std::size_t n = 0; n < graph.nodes.size(); ++n) {
            OssLyRect &rect = drawn.nodes[n].rect;
            moved = moved || std::abs(rect.x - places.nodes[n].x) > Same
                    || std::abs(rect.y - places.nodes[n].y) > Same;
            rect = places.nodes[n];
        }
        if (!moved)
            break;
        places = Arrangement(drawn, options, round + 1 < rounds / 2 ? ImprovesFor : StaysUnless)
                     .run();
    }
    const int root = first.rightmost();
    if (root < 0)
        return places;
    const double dx = graph.nodes[at(root)].rect.x - places.nodes[at(root)].x;
    const double dy = graph.nodes[at(root)].rect.y - places.nodes[at(root)].y;
    for (std::vector<OssLyRect> *rects : {&places.nodes, &places.frames}) {
        for (OssLyRect &rect : *rects) {
            rect.x += rect.isEmpty() ? 0.0 : dx;
            rect.y += rect.isEmpty() ? 0.0 : dy;
        }
    }
    return places;
}
