#include "Layout/Alignment.h"

#include "Layout/NodePlacement.h"

#include <algorithm>
#include <numeric>

namespace {

Qt::Orientation across(Qt::Orientation orientation)
{
    return orientation == Qt::Horizontal ? Qt::Vertical : Qt::Horizontal;
}

qreal start(const QRectF &rect, Qt::Orientation along)
{
    return along == Qt::Horizontal ? rect.left() : rect.top();
}

qreal length(const QRectF &rect, Qt::Orientation along)
{
    return along == Qt::Horizontal ? rect.width() : rect.height();
}

void moveTo(QRectF *rect, qreal place, Qt::Orientation along)
{
    if (along == Qt::Horizontal)
        rect->moveLeft(place);
    else
        rect->moveTop(place);
}

/// Indices in the order of the middles along an axis.
std::vector<int> inOrder(const QVector<QRectF> &rects, Qt::Orientation along)
{
    std::vector<int> order(std::size_t(rects.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return start(rects.at(a), along) + length(rects.at(a), along) / 2.0
               < start(rects.at(b), along) + length(rects.at(b), along) / 2.0;
    });
    return order;
}

/// How far along its axis a rectangle stands, as a share of its own length: 0, 0.5 or 1.
qreal shareOf(Alignment::Edge edge)
{
    return qreal(int(edge) % 3) / 2.0;
}

} // namespace

QRectF Alignment::clear(const QRectF &rect, const QVector<QRectF> &obstacles, Qt::Orientation way)
{
    QRectF place = rect;
    // Each move leaves one obstacle behind for good.
    for (int moves = 0; moves <= obstacles.size(); ++moves) {
        const auto hit = std::find_if(
            obstacles.cbegin(), obstacles.cend(),
            [&place](const QRectF &obstacle) { return place.intersects(obstacle); });
        if (hit == obstacles.cend())
            break;
        moveTo(&place, start(*hit, way) + length(*hit, way) + NodePlacement::Gap, way);
    }
    return place;
}

QVector<QRectF> Alignment::aligned(const QVector<QRectF> &rects, Edge edge,
                                   const QVector<QRectF> &obstacles)
{
    const Qt::Orientation axis = int(edge) < int(Edge::Top) ? Qt::Horizontal : Qt::Vertical;
    QRectF bounds;
    for (const QRectF &rect : rects)
        bounds |= rect;
    const qreal share = shareOf(edge);
    const qreal line = start(bounds, axis) + share * length(bounds, axis);
    QVector<QRectF> placed = rects;
    QVector<QRectF> taken = obstacles;
    for (const int index : inOrder(rects, across(axis))) {
        QRectF &rect = placed[index];
        moveTo(&rect, line - share * length(rect, axis), axis);
        rect = clear(rect, taken, across(axis));
        taken.append(rect);
    }
    return placed;
}

QVector<QRectF> Alignment::distributed(const QVector<QRectF> &rects, Qt::Orientation orientation,
                                       const QVector<QRectF> &obstacles)
{
    if (rects.size() < 2)
        return rects;
    const std::vector<int> order = inOrder(rects, orientation);
    const QRectF &first = rects.at(order.front());
    const QRectF &last = rects.at(order.back());
    qreal room = start(last, orientation) + length(last, orientation) - start(first, orientation);
    for (const QRectF &rect : rects)
        room -= length(rect, orientation);
    const qreal share = room / (rects.size() - 1);
    const qreal gap = share < 0.0 ? NodePlacement::Gap : share;
    QVector<QRectF> placed = rects;
    qreal place = start(first, orientation);
    for (const int index : order) {
        QRectF &rect = placed[index];
        moveTo(&rect, place, orientation);
        place += length(rect, orientation) + gap;
        rect = clear(rect, obstacles, across(orientation));
    }
    return placed;
}
