#pragma once

#include <QRectF>
#include <Qt>
#include <QVector>

/// Where several nodes go so that they stand in line or at equal distances. Plain values in scene
/// units. What would come to lie over another, or over one of the obstacles, goes on across the
/// line, downwards or to the right, until it is clear. Answers are in the order of the rectangles.
namespace Alignment {

enum class Edge { Left, Center, Right, Top, Middle, Bottom };

/// To the outermost of their edges, resp. to the middle between both.
QVector<QRectF> aligned(const QVector<QRectF> &rects, Edge edge, const QVector<QRectF> &obstacles);

/// With the same gap between each and the next; the outermost stay, unless there is too little room
/// between them.
QVector<QRectF> distributed(const QVector<QRectF> &rects, Qt::Orientation orientation,
                            const QVector<QRectF> &obstacles);

/// The rectangle moved on down, resp. to the right, until it lies on none of the obstacles.
QRectF clear(const QRectF &rect, const QVector<QRectF> &obstacles, Qt::Orientation way);

} // namespace Alignment
