#pragma once

#include <QPoint>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QVector>

#include <optional>

/// Where nodes go relative to each other. Plain values in scene units: a node is the rectangle its
/// item occupies, its position the top-left corner.
namespace NodePlacement {

/// Clear space between a node and what it was put beside.
constexpr qreal Gap = 30.0;

/// Grid step (column, row) of a layout type; for flipped nodes (ports along the edges, streams that
/// run downwards) the axes are exchanged, but for type 11, whose flipped step is its own.
QPoint gridStep(int layoutType, bool flipped);

/// Diagonally below and to the right of the other node, clear of its corner. Single precision.
QPointF beside(const QRectF &other);

/// The place nearest to the wanted one where a node of that size lies wholly within the area and clear
/// of all obstacles; none when there is no room. Places lie on a grid through the wanted one.
std::optional<QPointF> nearestFree(const QPointF &wanted, const QSizeF &own,
                                   const QVector<QRectF> &obstacles, const QRectF &area);

/// Centred horizontally on the reference, the centre 100 units per `factor` below its centre.
/// Single precision for the target centre.
QPointF underneath(const QRectF &reference, const QPointF &ownCenter, int factor);

/// To the right of everything, a little below its top.
QPointF freeSpot(const QRectF &everything, int spacing, qreal extraSpacing);

struct Spacing
{
    qreal horizontal;
    qreal vertical;
};

/// `step` columns and rows away from the reference: half the reference's size for each step and,
/// in its direction, the gap, the spacing and half the node's own size. No step in an axis means
/// the same centre there.
QPointF onGrid(const QRectF &reference, const QSizeF &own, const QPoint &step,
               const Spacing &spacing);

/// Right of the reference at the height of its centre; for flipped nodes below it, centred.
QPointF nextInStream(const QRectF &reference, const QSizeF &own, bool flipped);

/// Left edge of a container put beside a reference that is none. Single precision.
qreal besideForContainer(const QRectF &reference, qreal horizontalSpacing);

} // namespace NodePlacement
