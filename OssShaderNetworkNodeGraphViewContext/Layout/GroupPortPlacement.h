#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QVector>

/// Where the nodes that stand for a group's ports go inside it. Scene units.
namespace GroupPortPlacement {

constexpr qreal StreamGap = 150.0; ///< between a port's node and the node it is wired to
constexpr qreal StackGap = 30.0;   ///< between inputs that feed the same node
constexpr qreal LooseGap = 70.0;   ///< between inputs that feed nothing

/// Right of the node that feeds it, at its height.
QPointF outputPosition(const QPointF &feeder, qreal feederWidth);

/// Moves the rectangle down until it stands on none of the others.
void moveBelow(QRectF *rect, const QVector<QRectF> &taken);

enum class Side { Left, Right };

/// The same, and beside each frame on which it would lie half.
void moveClear(QRectF *rect, const QVector<QRectF> &taken, const QVector<QRectF> &frames,
               Side side);

struct Input
{
    QSizeF size;
    int fed = -1; ///< index of what it feeds; -1: nothing
};

/// Left of what each one feeds, stacked below each other; those that feed nothing below them all,
/// right edges in line. `fed` are the rectangles that Input::fed means, `others` what else is there:
/// an input that would stand on one of them goes below it, and left of a frame that it would lie
/// half on.
QVector<QPointF> inputPositions(const QVector<Input> &inputs, const QVector<QRectF> &fed,
                                const QVector<QRectF> &others = {},
                                const QVector<QRectF> &frames = {});

} // namespace GroupPortPlacement
