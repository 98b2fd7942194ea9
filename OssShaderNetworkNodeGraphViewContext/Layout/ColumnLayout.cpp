#include "Layout/ColumnLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr qreal NoPlace = std::numeric_limits<qreal>::max();

} // namespace

ColumnLayout::ColumnLayout(std::vector<Node> nodes)
    : m_nodes(std::move(nodes))
    , m_laidOut(m_nodes.size(), false)
    , m_columnOf(m_nodes.size(), -1)
    , m_indexIn(m_nodes.size(), -1)
{
}

void ColumnLayout::layOut(const QVector<int> &startNodes, const QVector<int> &ignored)
{
    constexpr int MostStarts = 1000; // of which orders are tried: time grows with their square
    m_before = m_nodes;
    m_ignored = ignored;
    const QVector<int> starts = sortedStarts(startNodes);
    const bool triesOrders = starts.size() > 1 && starts.size() <= MostStarts;
    // What was laid out so stays.
    if (triesOrders) {
        layOutInOrder(leftFirst(starts));
        if (standsAsBefore())
            return;
    }
    layOutInOrder(starts);
    const int asRead = triesOrders && !standsAsBefore() ? backwardWires() : 0;
    if (asRead == 0)
        return;
    const std::vector<Node> nodes = m_before;
    if (!layOutLeftFirst(starts) || backwardWires() >= asRead) {
        m_before = nodes;
        layOutInOrder(starts);
    }
}

/// Starts that had to give way stand elsewhere then, and may come in another order: again, until nothing moves. False
/// where that never ends.
bool ColumnLayout::layOutLeftFirst(const QVector<int> &starts)
{
    constexpr int MostRounds = 12;
    m_nodes = m_before;
    for (int round = 0; round < MostRounds; ++round) {
        layOutInOrder(leftFirst(starts));
        if (standsAsBefore())
            return true;
        m_before = m_nodes;
    }
    return false;
}

bool ColumnLayout::standsAsBefore() const
{
    constexpr qreal Same = 0.01;
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        const QPointF way = m_nodes[i].position - m_before[i].position;
        if (std::abs(way.x()) > Same || std::abs(way.y()) > Same)
            return false;
    }
    return true;
}

void ColumnLayout::layOutInOrder(const QVector<int> &starts)
{
    m_nodes = m_before;
    m_laidOut.assign(m_nodes.size(), false);
    m_moves.clear();
    // What waits for its own tree will move, so it need not be kept clear of yet.
    gatherObstacles(upstreamOf(starts, true));
    for (const int start : starts) {
        if (!m_laidOut[std::size_t(start)])
            layoutTree(start);
    }
}

void ColumnLayout::gatherObstacles(const std::vector<bool> &without)
{
    m_obstacles.clear();
    m_widestObstacle = 0.0;
    for (int i = 0; i < int(m_nodes.size()); ++i) {
        if (!without[std::size_t(i)] && !m_ignored.contains(i))
            keepClearOf(i);
    }
}

// --- wires that run backward

int ColumnLayout::backwardWires() const
{
    int count = 0;
    for (int i = 0; i < int(m_nodes.size()); ++i) {
        if (!m_laidOut[std::size_t(i)] || !m_nodes[std::size_t(i)].hasItem)
            continue;
        for (const Input &input : m_nodes[std::size_t(i)].inputs) {
            const bool counts = input.source >= 0 && m_laidOut[std::size_t(input.source)]
                                && m_nodes[std::size_t(input.source)].hasItem;
            count += counts && rect(input.source).right() > rect(i).left() ? 1 : 0;
        }
    }
    return count;
}

/// Followed nodes before those that feed them; without those in loops, which frames may close.
std::vector<int> ColumnLayout::downstreamFirst() const
{
    std::vector<int> waiting(m_nodes.size(), 0);
    for (const Node &node : m_nodes) {
        for (const Input &input : node.inputs) {
            if (input.source >= 0)
                ++waiting[std::size_t(input.source)];
        }
    }
    std::vector<int> order;
    for (int i = 0; i < int(m_nodes.size()); ++i) {
        if (waiting[std::size_t(i)] == 0)
            order.push_back(i);
    }
    for (std::size_t next = 0; next < order.size(); ++next) {
        for (const Input &input : m_nodes[std::size_t(order[next])].inputs) {
            if (input.source >= 0 && --waiting[std::size_t(input.source)] == 0)
                order.push_back(input.source);
        }
    }
    return order;
}

/// Where the columns of a tree begin when it is laid out before all others, for each node; NoPlace outside of it.
std::vector<qreal> ColumnLayout::placesAlone(int root, const std::vector<int> &order) const
{
    std::vector<int> column(m_nodes.size(), -1);
    std::vector<qreal> widths;
    column[std::size_t(root)] = 0;
    for (const int node : order) {
        const int own = column[std::size_t(node)];
        if (own < 0)
            continue;
        widths.resize(std::max(widths.size(), std::size_t(own) + 1), 0.0);
        if (m_nodes[std::size_t(node)].hasItem)
            widths[std::size_t(own)] = std::max(widths[std::size_t(own)],
                                                m_nodes[std::size_t(node)].size.width());
        for (const Input &input : m_nodes[std::size_t(node)].inputs) {
            if (input.source >= 0)
                column[std::size_t(input.source)] = std::max(column[std::size_t(input.source)],
                                                             own + 1);
        }
    }
    std::vector<qreal> lefts(widths.size(), m_nodes[std::size_t(root)].position.x());
    for (std::size_t i = 1; i < widths.size(); ++i)
        lefts[i] = lefts[i - 1] - widths[i] - ColumnGap;
    std::vector<qreal> places(m_nodes.size(), NoPlace);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (column[i] >= 0 && column[i] < int(lefts.size()))
            places[i] = lefts[std::size_t(column[i])];
    }
    return places;
}

/// What several trees share belongs to the first, and stands left of all that it feeds when that is the tree in which
/// it lies furthest left: each start comes before those in whose trees more of what they share lies further right.
QVector<int> ColumnLayout::leftFirst(const QVector<int> &starts) const
{
    const auto count = std::size_t(starts.size());
    const std::vector<int> order = downstreamFirst();
    std::vector<std::vector<std::pair<qreal, int>>> trees(m_nodes.size()); // that reach a node
    for (std::size_t s = 0; s < count; ++s) {
        const std::vector<qreal> places = placesAlone(starts.at(int(s)), order);
        for (std::size_t node = 0; node < places.size(); ++node) {
            if (places[node] < NoPlace)
                trees[node].emplace_back(places[node], int(s));
        }
    }
    std::vector<int> wins(count * count, 0); // of the first over the second
    for (const auto &reaching : trees) {
        if (reaching.size() < 2)
            continue;
        const auto left = std::min_element(reaching.begin(), reaching.end());
        for (const auto &other : reaching)
            wins[std::size_t(left->second) * count + std::size_t(other.second)] +=
                other.first > left->first ? 1 : 0;
    }
    return byWins(starts, wins);
}

/// Next is always who wins most over those that are left.
QVector<int> ColumnLayout::byWins(const QVector<int> &starts, const std::vector<int> &wins)
{
    const auto count = std::size_t(starts.size());
    std::vector<int> lead(count, 0);
    for (std::size_t one = 0; one < count; ++one) {
        for (std::size_t other = 0; other < count; ++other)
            lead[one] += wins[one * count + other] - wins[other * count + one];
    }
    QVector<int> order;
    std::vector<bool> isTaken(count, false);
    while (order.size() < starts.size()) {
        std::size_t best = count;
        for (std::size_t s = 0; s < count; ++s) {
            if (!isTaken[s] && (best == count || lead[s] > lead[best]))
                best = s;
        }
        isTaken[best] = true;
        order.append(starts.at(int(best)));
        for (std::size_t s = 0; s < count; ++s)
            lead[s] += wins[s * count + best] - wins[best * count + s];
    }
    return order;
}

void ColumnLayout::keepClearOf(int node)
{
    if (!m_nodes[std::size_t(node)].hasItem)
        return;
    const QRectF obstacle = rect(node).marginsAdded(m_nodes[std::size_t(node)].margins);
    const auto place = std::upper_bound(
        m_obstacles.begin(), m_obstacles.end(), obstacle,
        [](const QRectF &a, const QRectF &b) { return a.left() < b.left(); });
    m_obstacles.insert(place, obstacle);
    m_widestObstacle = std::max(m_widestObstacle, obstacle.width());
}

std::vector<bool> ColumnLayout::upstreamOf(const QVector<int> &starts, bool includeStarts) const
{
    std::vector<bool> reached(m_nodes.size(), false);
    std::vector<int> open;
    const auto reach = [&](int node) {
        if (node < 0 || reached[std::size_t(node)])
            return;
        reached[std::size_t(node)] = true;
        open.push_back(node);
    };
    const auto follow = [&](int node) {
        for (const Input &input : m_nodes[std::size_t(node)].inputs)
            reach(input.source);
    };
    for (const int start : starts) {
        if (includeStarts)
            reach(start);
        else
            follow(start);
    }
    while (!open.empty()) {
        const int node = open.back();
        open.pop_back();
        follow(node);
    }
    return reached;
}

QVector<int> ColumnLayout::sortedStarts(const QVector<int> &startNodes) const
{
    const std::vector<bool> inner = upstreamOf(startNodes, false);
    QVector<int> starts;
    for (const int start : startNodes) {
        if (!inner[std::size_t(start)] && !starts.contains(start))
            starts.append(start);
    }
    // From top to bottom, as they are read. Starts that feed each other do not exist.
    std::stable_sort(starts.begin(), starts.end(), [this](int a, int b) {
        const QPointF left = m_nodes[std::size_t(a)].position;
        const QPointF right = m_nodes[std::size_t(b)].position;
        return left.y() != right.y() ? left.y() < right.y() : left.x() > right.x();
    });
    return starts;
}

QVector<int> ColumnLayout::followedInputs(const Node &node)
{
    QVector<int> order;
    for (int i = 0; i < node.inputs.size(); ++i) {
        if (node.inputs[i].source >= 0)
            order.append(i);
    }
    if (node.merge)
        std::stable_partition(order.begin(), order.end(),
                              [&](int input) { return node.inputs[input].base; });
    return order;
}

void ColumnLayout::enter(const Entry &entry, int column, Columns *columns)
{
    const auto node = std::size_t(entry.node);
    if (m_columnOf[node] >= column)
        return;
    if (m_columnOf[node] >= 0)
        (*columns)[std::size_t(m_columnOf[node])][std::size_t(m_indexIn[node])].node = -1;
    if (int(columns->size()) <= column)
        columns->resize(std::size_t(column) + 1);
    m_columnOf[node] = column;
    m_indexIn[node] = int((*columns)[std::size_t(column)].size());
    (*columns)[std::size_t(column)].push_back(entry);
}

void ColumnLayout::enterSources(int node, int root, int column, Columns *columns)
{
    const QVector<int> inputs = followedInputs(m_nodes[std::size_t(node)]);
    for (const int input : inputs) {
        const int source = m_nodes[std::size_t(node)].inputs[input].source;
        if (source != node && source != root && !m_laidOut[std::size_t(source)])
            enter({source, node, input}, column, columns);
    }
}

ColumnLayout::Columns ColumnLayout::columnsOf(int root)
{
    Columns columns(1);
    enter({root, -1, -1}, 0, &columns);
    // No path without a loop is longer than there are nodes: what would stand deeper closes one.
    const std::size_t deepest = m_nodes.size();
    for (std::size_t column = 0; column < columns.size() && column + 1 < deepest; ++column) {
        for (std::size_t i = 0; i < columns[column].size(); ++i) {
            const int node = columns[column][i].node;
            if (node >= 0)
                enterSources(node, root, int(column) + 1, &columns);
        }
    }
    for (std::vector<Entry> &column : columns) {
        // Those that stand deeper by now.
        column.erase(std::remove_if(column.begin(), column.end(),
                                    [](const Entry &entry) { return entry.node < 0; }),
                     column.end());
        for (const Entry &entry : column)
            m_columnOf[std::size_t(entry.node)] = -1;
    }
    while (columns.back().empty())
        columns.pop_back(); // the first one always holds the root
    return columns;
}

qreal ColumnLayout::entryY(const Entry &entry, qreal cursor, qreal rootY) const
{
    // In a loop, which frames may close, one may come before what it feeds, and that stand anywhere.
    if (entry.downstream < 0 || !m_laidOut[std::size_t(entry.downstream)])
        return cursor;
    const Node &downstream = m_nodes[std::size_t(entry.downstream)];
    const Input &input = downstream.inputs[entry.input];
    qreal y = 0.0;
    if (downstream.hasItem)
        y = downstream.position.y() + (downstream.merge && !input.base ? input.portY : 0.0);
    return std::max(cursor, y - rootY);
}

void ColumnLayout::move(int node, const QPointF &position, bool shift)
{
    m_nodes[std::size_t(node)].position = position;
    m_moves.append({node, position, shift});
}

void ColumnLayout::placeColumn(const std::vector<Entry> &column, qreal width, qreal x,
                               const QPointF &root)
{
    qreal cursor = 0.0;
    bool first = true;
    m_columnRect = QRectF();
    for (const Entry &entry : column) {
        m_laidOut[std::size_t(entry.node)] = true;
        const Node &node = m_nodes[std::size_t(entry.node)];
        if (!node.hasItem)
            continue;
        const qreal left = width * 0.5 + x - node.size.width() * 0.5;
        const qreal y = entryY(entry, cursor, root.y());
        move(entry.node, root + QPointF(left, y), false);
        m_columnRect = first ? rect(entry.node) : m_columnRect.united(rect(entry.node));
        first = false;
        cursor = y + node.size.height() + RowGap;
    }
}

qreal ColumnLayout::shiftClear(const QRectF &column) const
{
    QRectF test = column;
    qreal shift = 0.0;
    bool found = !m_obstacles.empty() && !column.isEmpty();
    while (found) {
        found = false;
        // Each pass moves by all of the shift found so far, which may be more than is needed.
        test.translate(shift, 0.0);
        const auto from = std::lower_bound(
            m_obstacles.begin(), m_obstacles.end(), test.left() - m_widestObstacle,
            [](const QRectF &rect, qreal left) { return rect.left() < left; });
        for (auto obstacle = from;
             obstacle != m_obstacles.end() && obstacle->left() <= test.right(); ++obstacle) {
            if (!obstacle->intersects(test))
                continue;
            found = true;
            shift = std::min(shift, obstacle->left() - test.right() - Clearance);
        }
    }
    return test.left() - column.left();
}

qreal ColumnLayout::widthOf(const std::vector<Entry> &column) const
{
    qreal width = 0.0;
    for (const Entry &entry : column) {
        const Node &node = m_nodes[std::size_t(entry.node)];
        width = std::max(width, node.hasItem ? node.size.width() : 0.0);
    }
    return width;
}

/// Wider where the margins of frames need it.
qreal ColumnLayout::gapBetween(const std::vector<Entry> &left,
                               const std::vector<Entry> &right) const
{
    constexpr qreal Apart = 30.0; // frames
    qreal rightOfLeft = 0.0;
    qreal leftOfRight = 0.0;
    for (const Entry &entry : left)
        rightOfLeft = std::max(rightOfLeft, m_nodes[std::size_t(entry.node)].margins.right());
    for (const Entry &entry : right)
        leftOfRight = std::max(leftOfRight, m_nodes[std::size_t(entry.node)].margins.left());
    return std::max(ColumnGap, rightOfLeft + leftOfRight + Apart);
}

void ColumnLayout::shiftColumn(const std::vector<Entry> &column, qreal shift)
{
    for (const Entry &entry : column) {
        if (m_nodes[std::size_t(entry.node)].hasItem)
            move(entry.node, rect(entry.node).topLeft() + QPointF(shift, 0.0), true);
    }
}

void ColumnLayout::layoutTree(int root)
{
    const Columns layoutColumns = columnsOf(root);
    const Node &rootNode = m_nodes[std::size_t(root)];
    const QPointF anchor = rootNode.hasItem ? rootNode.position : QPointF();
    qreal x = 0.0;
    for (std::size_t i = 0; i < layoutColumns.size(); ++i) {
        placeColumn(layoutColumns[i], widthOf(layoutColumns[i]), x, anchor);
        const qreal shift = shiftClear(m_columnRect);
        if (shift != 0.0)
            shiftColumn(layoutColumns[i], shift);
        if (i + 1 < layoutColumns.size())
            x += shift - gapBetween(layoutColumns[i + 1], layoutColumns[i])
                 - widthOf(layoutColumns[i + 1]);
    }
    // The next trees keep clear of this one.
    for (const std::vector<Entry> &column : layoutColumns) {
        for (const Entry &entry : column)
            keepClearOf(entry.node);
    }
}
