#include "Layout/ContainerPlacement.h"

#include "Layout/NodePlacement.h"

#include <algorithm>
#include <numeric>

QRectF ContainerPlacement::around(const QRectF &members, qreal titleBarHeight)
{
    return members.adjusted(-titleBarHeight, -2.0 * titleBarHeight, titleBarHeight, titleBarHeight);
}

QVector<qreal> ContainerPlacement::respaced(const QVector<QRectF> &members, const QRectF &reference)
{
    QVector<int> order(members.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return members.at(a).top() < members.at(b).top(); });
    QVector<qreal> shifts(members.size(), 0.0);
    const qreal least = reference.bottom() + NodePlacement::Gap;
    qreal shift = 0.0;
    for (const int member : qAsConst(order)) {
        const QRectF &rect = members.at(member);
        if (rect.top() <= reference.top())
            continue; // above it, or it itself
        const bool under = rect.left() < reference.right() && reference.left() < rect.right();
        if (under)
            shift = std::max(shift, least - rect.top());
        shifts[member] = shift;
    }
    return shifts;
}

qreal ContainerPlacement::belowShift(const QRectF &container, const QRectF &reference)
{
    return std::max(0.0, reference.bottom() + NodePlacement::Gap - container.top());
}

QPointF ContainerPlacement::freshLocation(const QRectF &container, const QRectF &everything,
                                          bool preserveY)
{
    if (everything.isEmpty())
        return container.topLeft();
    return {everything.right() + NodePlacement::Gap,
            preserveY ? container.top() : everything.top()};
}

QPointF ContainerPlacement::wayOut(const QRectF &node, const QRectF &before, const QRectF &now)
{
    constexpr qreal Gap = NodePlacement::Gap;
    QVector<QPointF> ways;
    if (node.left() >= before.right())
        ways.append({now.right() + Gap - node.left(), 0.0});
    if (node.right() <= before.left())
        ways.append({now.left() - Gap - node.right(), 0.0});
    if (node.top() >= before.bottom())
        ways.append({0.0, now.bottom() + Gap - node.top()});
    if (node.bottom() <= before.top())
        ways.append({0.0, now.top() - Gap - node.bottom()});
    if (ways.isEmpty())
        return {0.0, now.bottom() + Gap - node.top()};
    return *std::min_element(ways.cbegin(), ways.cend(), [](const QPointF &a, const QPointF &b) {
        return a.manhattanLength() < b.manhattanLength();
    });
}

QPointF ContainerPlacement::wayPast(const QRectF &area, const QRectF &place, const QPointF &way)
{
    constexpr qreal Gap = NodePlacement::Gap;
    if (way.x() != 0.0)
        return {way.x() > 0.0 ? area.right() + Gap - place.left()
                              : area.left() - Gap - place.right(),
                0.0};
    return {0.0,
            way.y() > 0.0 ? area.bottom() + Gap - place.top() : area.top() - Gap - place.bottom()};
}
