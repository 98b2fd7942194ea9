#include "Layout/FramedLayout.h"

#include "Layout/Alignment.h"

#include <algorithm>

namespace {

constexpr int MostRounds = 8;
constexpr qreal WidestGap = 2000.0; ///< within a frame

} // namespace

FramedLayout::FramedLayout(std::vector<ColumnLayout::Node> nodes, std::vector<Frame> frames,
                           QVector<QPair<int, int>> followers)
    : m_nodes(std::move(nodes))
    , m_before(m_nodes)
    , m_frames(std::move(frames))
    , m_followers(std::move(followers))
{
}

void FramedLayout::findReached(const QVector<int> &startNodes)
{
    m_reached.assign(m_nodes.size(), false);
    QVector<int> open;
    const auto reach = [&](int node) {
        if (node >= 0 && !m_reached[std::size_t(node)]) {
            m_reached[std::size_t(node)] = true;
            open.append(node);
        }
    };
    for (const int start : startNodes)
        reach(start);
    while (!open.isEmpty()) {
        for (const ColumnLayout::Input &input : m_nodes[std::size_t(open.takeLast())].inputs)
            reach(input.source);
    }
}

bool FramedLayout::isReached(int frame) const
{
    const QVector<int> nodes = nodesIn(frame);
    return std::any_of(nodes.cbegin(), nodes.cend(),
                       [this](int node) { return bool(m_reached[std::size_t(node)]); });
}

/// Frames that are not fitted anew may be wider than they must. Gives whether this one is.
bool FramedLayout::keepArea(int index)
{
    Frame &frame = m_frames[std::size_t(index)];
    const QRectF content = contentOf(index);
    // Members that lie elsewhere would make it a frame over all that is between.
    if (content.isEmpty() || !frame.area.contains(content))
        return false;
    const QRectF all = frame.area | content.marginsAdded(frame.margins);
    const QMarginsF margins(content.left() - all.left(), content.top() - all.top(),
                            all.right() - content.right(), all.bottom() - content.bottom());
    const bool isWider = margins != frame.margins;
    frame.margins = margins;
    return isWider;
}

/// Those in which nothing moved, as what starts does not, are not fitted either.
bool FramedLayout::keepUnmovedAreas()
{
    bool any = false;
    for (int f = 0; f < int(m_frames.size()); ++f) {
        const QVector<int> nodes = nodesIn(f);
        const bool moved = std::any_of(nodes.cbegin(), nodes.cend(), [this](int node) {
            return m_nodes[std::size_t(node)].position != m_before[std::size_t(node)].position;
        });
        any = (!moved && keepArea(f)) || any;
    }
    return any;
}

QRectF FramedLayout::rect(int node) const
{
    return {m_nodes[std::size_t(node)].position, m_nodes[std::size_t(node)].size};
}

QVector<int> FramedLayout::nodesIn(int frame) const
{
    QVector<int> nodes = m_frames[std::size_t(frame)].members;
    for (int f = 0; f < frame; ++f) {
        if (m_frames[std::size_t(f)].parent == frame)
            nodes += nodesIn(f);
    }
    return nodes;
}

/// Around the members, frames inside with their margins, and what follows members.
QRectF FramedLayout::contentOf(int frame) const
{
    QRectF content;
    for (const int node : m_frames[std::size_t(frame)].members) {
        if (m_nodes[std::size_t(node)].hasItem)
            content |= rect(node);
    }
    for (int f = 0; f < frame; ++f) {
        const QRectF inner = m_frames[std::size_t(f)].parent == frame ? contentOf(f) : QRectF();
        if (!inner.isEmpty())
            content |= inner.marginsAdded(m_frames[std::size_t(f)].margins);
    }
    return content;
}

std::vector<FramedLayout::Unit> FramedLayout::unitsOf(int frame, const QVector<int> &ignored)
{
    std::vector<Unit> units;
    m_unitOf.assign(m_nodes.size(), -1);
    std::vector<bool> framed(m_nodes.size(), false);
    const int count = int(m_frames.size());
    for (int f = 0; f < count; ++f) {
        for (const int node : m_frames[std::size_t(f)].members)
            framed[std::size_t(node)] = true;
        if (m_frames[std::size_t(f)].parent != frame || contentOf(f).isEmpty())
            continue;
        for (const int node : nodesIn(f))
            m_unitOf[std::size_t(node)] = int(units.size());
        units.push_back({-1, f});
    }
    QVector<int> own;
    if (frame >= 0)
        own = m_frames[std::size_t(frame)].members;
    for (int node = 0; frame < 0 && node < int(m_nodes.size()); ++node) {
        if (!framed[std::size_t(node)])
            own.append(node);
    }
    for (const int node : qAsConst(own)) {
        if (ignored.contains(node))
            continue;
        m_unitOf[std::size_t(node)] = int(units.size());
        units.push_back({node, -1});
    }
    return units;
}

void FramedLayout::addInputs(int node, const QPointF &origin, int unit,
                             ColumnLayout::Node *value) const
{
    const ColumnLayout::Node &own = m_nodes[std::size_t(node)];
    for (ColumnLayout::Input input : own.inputs) {
        const int source = input.source < 0 ? -1 : m_unitOf[std::size_t(input.source)];
        input.source = source == unit ? -1 : source;
        input.portY += own.position.y() - origin.y();
        value->inputs.append(input);
    }
}

ColumnLayout::Node FramedLayout::valueOf(const Unit &unit) const
{
    if (unit.node >= 0) {
        ColumnLayout::Node value = m_nodes[std::size_t(unit.node)];
        value.inputs.clear();
        addInputs(unit.node, value.position, m_unitOf[std::size_t(unit.node)], &value);
        return value;
    }
    const Frame &frame = m_frames[std::size_t(unit.frame)];
    const QRectF content = contentOf(unit.frame);
    ColumnLayout::Node value;
    value.position = content.topLeft();
    // So much of the margins as the gap between rows does not hold.
    const qreal more = std::max(0.0, frame.margins.top() + frame.margins.bottom()
                                         - ColumnLayout::RowGap + 1.0);
    value.size = content.size() + QSizeF(0.0, more);
    value.margins = frame.margins;
    QVector<int> nodes = nodesIn(unit.frame);
    std::stable_sort(nodes.begin(), nodes.end(), [this](int a, int b) {
        return m_nodes[std::size_t(a)].position.y() < m_nodes[std::size_t(b)].position.y();
    });
    for (const int node : qAsConst(nodes))
        addInputs(node, content.topLeft(), m_unitOf[std::size_t(node)], &value);
    return value;
}

void FramedLayout::shift(const Unit &unit, const QPointF &way)
{
    const QVector<int> nodes = unit.node >= 0 ? QVector<int>{unit.node} : nodesIn(unit.frame);
    for (const int node : nodes)
        m_nodes[std::size_t(node)].position += way;
}

QRectF FramedLayout::areaOf(const Unit &unit) const
{
    return unit.node >= 0
               ? rect(unit.node)
               : contentOf(unit.frame).marginsAdded(m_frames[std::size_t(unit.frame)].margins);
}

/// What lies far off comes nearer, in the order in which it lies: to the right, where wires lead, or up. A frame whose
/// members lie far apart would push what feeds it as far, and that what feeds it, each time that it is laid out.
void FramedLayout::closeGaps(const std::vector<Unit> &units, Qt::Orientation direction)
{
    const bool isAcross = direction == Qt::Horizontal;
    // Ways from the right or from the top.
    const auto span = [&](const Unit &unit) {
        const QRectF area = areaOf(unit);
        return isAcross ? QPair<qreal, qreal>(-area.right(), -area.left())
                        : QPair<qreal, qreal>(area.top(), area.bottom());
    };
    std::vector<Unit> order = units;
    std::stable_sort(order.begin(), order.end(),
                     [&](const Unit &a, const Unit &b) { return span(a).first < span(b).first; });
    const qreal gap = isAcross ? ColumnLayout::ColumnGap : ColumnLayout::RowGap;
    qreal last = order.empty() ? 0.0 : span(order.front()).first;
    qreal way = 0.0;
    for (const Unit &unit : order) {
        const auto [from, to] = span(unit);
        if (from - last > WidestGap)
            way += from - last - gap;
        last = std::max(last, to);
        if (way > 0.0)
            shift(unit, isAcross ? QPointF(way, 0.0) : QPointF(0.0, -way));
    }
}

/// Areas of frames without members that the frame did not meet before.
QVector<QRectF> FramedLayout::emptyFramesApartFrom(int frame) const
{
    QVector<QRectF> areas;
    for (int f = 0; f < int(m_frames.size()); ++f) {
        const QRectF &area = m_frames[std::size_t(f)].area;
        if (f != frame && m_frames[std::size_t(f)].parent < 0
            && !area.intersects(m_frames[std::size_t(frame)].area) && contentOf(f).isEmpty())
            areas.append(area);
    }
    return areas;
}

/// Frames that have grown over others go down.
void FramedLayout::partFrames(const std::vector<Unit> &units)
{
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (units[i].frame >= 0)
            order.push_back(i);
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return areaOf(units[a]).top() < areaOf(units[b]).top();
    });
    for (const std::size_t index : order) {
        QVector<QRectF> others;
        for (std::size_t i = 0; i < units.size(); ++i) {
            const bool isLater = units[i].frame >= 0
                                 && std::find(order.begin(), order.end(), i)
                                        > std::find(order.begin(), order.end(), index);
            if (i != index && !isLater
                && (units[i].frame >= 0 || m_nodes[std::size_t(units[i].node)].hasItem))
                others.append(areaOf(units[i]));
        }
        others += emptyFramesApartFrom(units[index].frame);
        const QRectF now = areaOf(units[index]);
        const QRectF free = Alignment::clear(now, others, Qt::Vertical);
        shift(units[index], free.topLeft() - now.topLeft());
    }
}

/// Frames hold what follows members: left behind, it would make them wider.
void FramedLayout::bringFollowers()
{
    for (const auto &follower : qAsConst(m_followers)) {
        const auto whom = std::size_t(follower.second);
        m_nodes[std::size_t(follower.first)].position =
            m_before[std::size_t(follower.first)].position + m_nodes[whom].position
            - m_before[whom].position;
    }
}

void FramedLayout::layOutLevel(int frame, const QVector<int> &ignored)
{
    const std::vector<Unit> units = unitsOf(frame, ignored);
    std::vector<ColumnLayout::Node> values;
    values.reserve(units.size());
    for (const Unit &unit : units)
        values.push_back(valueOf(unit));
    const auto isUnitReached = [this](const Unit &unit) {
        return unit.node >= 0 ? bool(m_reached[std::size_t(unit.node)]) : isReached(unit.frame);
    };
    QVector<int> starts;
    bool any = false;
    for (int i = 0; i < int(units.size()); ++i) {
        if (!isUnitReached(units[std::size_t(i)]))
            continue;
        any = any || units[std::size_t(i)].frame >= 0;
        starts.append(i); // those that feed others start nothing
    }
    // In a loop that frames close everything feeds something: then all that is left starts.
    QVector<int> ends;
    for (const int start : qAsConst(starts)) {
        const bool feeds = std::any_of(starts.cbegin(), starts.cend(), [&](int other) {
            const QVector<ColumnLayout::Input> &inputs = values[std::size_t(other)].inputs;
            return other != start
                   && std::any_of(inputs.cbegin(), inputs.cend(),
                                  [start](const auto &input) { return input.source == start; });
        });
        if (!feeds)
            ends.append(start);
    }
    if (ends.isEmpty() && !starts.isEmpty())
        ends.append(starts.first());
    ColumnLayout layout(values);
    layout.layOut(ends, {});
    for (std::size_t i = 0; i < units.size(); ++i)
        shift(units[i], layout.rect(int(i)).topLeft() - values[i].position);
    if (any && m_givesWay)
        partFrames(units);
    bringFollowers();
    if (frame < 0 || starts.isEmpty())
        return;
    for (const auto direction : {Qt::Horizontal, Qt::Vertical})
        closeGaps(units, direction);
    bringFollowers();
}

/// Once more, until nothing moves: gives whether that came.
bool FramedLayout::settle(const QVector<int> &ignored)
{
    for (int round = 0; round < MostRounds; ++round) {
        const std::vector<ColumnLayout::Node> last = m_nodes;
        for (int frame = 0; frame < int(m_frames.size()); ++frame)
            layOutLevel(frame, ignored);
        layOutLevel(-1, ignored);
        if (std::equal(m_nodes.cbegin(), m_nodes.cend(), last.cbegin(),
                       [](const auto &a, const auto &b) { return a.position == b.position; }))
            return true;
    }
    return false;
}

/// Frames that gave way are other starts. Where it never ends, as in loops that frames close, none gives way.
void FramedLayout::layOutFrames(const QVector<int> &ignored)
{
    do {
        m_nodes = m_before;
        m_givesWay = true;
        if (settle(ignored))
            continue;
        m_nodes = m_before;
        m_givesWay = false;
        settle(ignored);
    } while (keepUnmovedAreas());
}

void FramedLayout::layOut(const QVector<int> &startNodes, const QVector<int> &ignored)
{
    findReached(startNodes);
    for (int f = 0; f < int(m_frames.size()); ++f) {
        if (!isReached(f))
            keepArea(f);
    }
    QVector<int> passedOver = ignored;
    for (const auto &follower : qAsConst(m_followers))
        passedOver.append(follower.first);
    if (m_frames.empty()) {
        ColumnLayout layout(m_nodes);
        layout.layOut(startNodes, passedOver);
        for (std::size_t i = 0; i < m_nodes.size(); ++i)
            m_nodes[i].position = layout.rect(int(i)).topLeft();
    } else {
        layOutFrames(passedOver);
    }
    bringFollowers();
}
