#pragma once

#include <QPointF>
#include <QRectF>
#include <QVector>

/// Where a container and what it holds go. Plain values in scene units; a container is the
/// rectangle of its backdrop, a member that of its item.
namespace ContainerPlacement {

/// The area that holds the members below its title bar, with the bar's height as margin.
QRectF around(const QRectF &members, qreal titleBarHeight);

/// How far each member goes down, so that what begins below the reference's top leaves the gap
/// under it and nothing comes to lie over anything. Order and distances are kept: where one goes
/// down, all below it go along. Never negative.
QVector<qreal> respaced(const QVector<QRectF> &members, const QRectF &reference);

/// How far a container goes down to stand below the reference; 0 where it does.
qreal belowShift(const QRectF &container, const QRectF &reference);

/// Where a container stands clear of everything: right of it, at the top or at its own height.
QPointF freshLocation(const QRectF &container, const QRectF &everything, bool preserveY);

/// How a node that stood clear of the area goes on when that has become another: the shortest way.
QPointF wayOut(const QRectF &node, const QRectF &before, const QRectF &now);

/// The same way on from the area, and a little farther.
QPointF wayPast(const QRectF &area, const QRectF &place, const QPointF &way);

} // namespace ContainerPlacement
