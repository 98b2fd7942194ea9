#include "Layout/ColumnLayout.h"

#include <algorithm>

ColumnLayout::ColumnLayout(std::vector<Node> nodes)
    : m_nodes(std::move(nodes))
    , m_laidOut(m_nodes.size(), false)
    , m_columnOf(m_nodes.size(), -1)
    , m_indexIn(m_nodes.size(), -1)
{
}

void ColumnLayout::layOut(const QVector<int> &startNodes, const QVector<int> &ignored)
{
    m_before = m_nodes;
    m_ignored = ignored;
    const QVector<int> starts = sortedStarts(startNodes);
    layOutInOrder(starts);
    int least = backwardWires();
    QVector<int> best = starts;
    for (const QVector<int> &order :
         least > 0 ? otherOrders(starts) : std::vector<QVector<int>>()) {
        if (least == 0)
            break;
        layOutInOrder(order);
        const int found = backwardWires();
        if (found < least) {
            least = found;
            best = order;
        }
    }
    layOutInOrder(best);
    if (least > 0)
        mendBackwardWires();
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

/// From the left, from the right, and with each of the first few at the beginning: what several trees share belongs
/// to the first.
std::vector<QVector<int>> ColumnLayout::otherOrders(const QVector<int> &starts) const
{
    constexpr int MostWork = 20000;
    std::vector<QVector<int>> orders;
    QVector<int> byLeft = starts;
    std::stable_sort(byLeft.begin(), byLeft.end(), [this](int a, int b) {
        return m_before[std::size_t(a)].position.x() < m_before[std::size_t(b)].position.x();
    });
    orders.push_back(byLeft);
    orders.emplace_back(byLeft.crbegin(), byLeft.crend());
    for (int i = 1; i < starts.size() && int(orders.size() * m_nodes.size()) < MostWork; ++i) {
        QVector<int> order = byLeft;
        order.removeOne(starts.at(i));
        order.prepend(starts.at(i));
        orders.push_back(order);
    }
    return orders;
}

std::vector<int> ColumnLayout::downstreamFirst() const
{
    std::vector<int> waiting(m_nodes.size(), 0);
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        for (const Input &input : m_nodes[i].inputs)
            waiting[std::size_t(std::max(0, input.source))] += input.source >= 0 && m_laidOut[i]
                                                                   ? 1
                                                                   : 0;
    }
    std::vector<int> order;
    for (int i = 0; i < int(m_nodes.size()); ++i) {
        if (m_laidOut[std::size_t(i)] && waiting[std::size_t(i)] == 0)
            order.push_back(i);
    }
    for (std::size_t next = 0; next < order.size(); ++next) {
        for (const Input &input : m_nodes[std::size_t(order[next])].inputs) {
            if (input.source >= 0 && m_laidOut[std::size_t(input.source)]
                && --waiting[std::size_t(input.source)] == 0)
                order.push_back(input.source);
        }
    }
    return order;
}

void ColumnLayout::mendBackwardWires()
{
    constexpr qreal Far = 1e12;
    std::vector<qreal> limits(m_nodes.size(), Far);
    gatherObstacles(std::vector<bool>(m_nodes.size(), false));
    for (const int node : downstreamFirst()) {
        const Node &own = m_nodes[std::size_t(node)];
        if (own.hasItem && rect(node).right() > limits[std::size_t(node)]) {
            stopKeepingClearOf(node);
            QRectF place = rect(node);
            place.moveRight(limits[std::size_t(node)] - ColumnGap);
            move(node, place.topLeft() + QPointF(shiftClear(place), 0.0), true);
            keepClearOf(node);
        }
        for (const Input &input : own.inputs) {
            if (input.source >= 0 && own.hasItem)
                limits[std::size_t(input.source)] = std::min(limits[std::size_t(input.source)],
                                                             rect(node).left());
        }
    }
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

void ColumnLayout::stopKeepingClearOf(int node)
{
    const QRectF obstacle = rect(node).marginsAdded(m_nodes[std::size_t(node)].margins);
    auto place = std::lower_bound(
        m_obstacles.begin(), m_obstacles.end(), obstacle.left(),
        [](const QRectF &rect, qreal left) { return rect.left() < left; });
    while (place != m_obstacles.end() && *place != obstacle)
        ++place;
    if (place != m_obstacles.end())
        m_obstacles.erase(place);
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
    if (entry.downstream < 0)
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

void ColumnLayout::shiftColumn(const std::vector<Entry> &column, qreal shift)
{
    for (const Entry &entry : column) {
        if (m_nodes[std::size_t(entry.node)].hasItem)
            move(entry.node, rect(entry.node).topLeft() + QPointF(shift, 0.0), true);
    }
}

void ColumnLayout::layoutTree(int root)
{
    const Columns columns = columnsOf(root);
    const Node &rootNode = m_nodes[std::size_t(root)];
    const QPointF anchor = rootNode.hasItem ? rootNode.position : QPointF();
    qreal x = 0.0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        placeColumn(columns[i], widthOf(columns[i]), x, anchor);
        const qreal shift = shiftClear(m_columnRect);
        if (shift != 0.0)
            shiftColumn(columns[i], shift);
        x += shift - ColumnGap - (i + 1 < columns.size() ? widthOf(columns[i + 1]) : 0.0);
    }
    // The next trees keep clear of this one.
    for (const std::vector<Entry> &column : columns) {
        for (const Entry &entry : column)
            keepClearOf(entry.node);
    }
}
