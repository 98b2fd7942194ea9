#include "Layout/GroupPortPlacement.h"

#include <algorithm>

QPointF GroupPortPlacement::outputPosition(const QPointF &feeder, qreal feederWidth)
{
    return feeder + QPointF(feederWidth + StreamGap, 0.0);
}

void GroupPortPlacement::moveBelow(QRectF *rect, const QVector<QRectF> &taken)
{
    for (bool clear = false; !clear;) {
        const auto hit = std::find_if(taken.cbegin(), taken.cend(), [rect](const QRectF &other) {
            return other.intersects(*rect);
        });
        clear = hit == taken.cend();
        if (!clear)
            rect->moveTop(hit->bottom() + StackGap);
    }
}

void GroupPortPlacement::moveClear(QRectF *rect, const QVector<QRectF> &taken,
                                   const QVector<QRectF> &frames, Side side)
{
    // Always down and to one side, so it ends.
    for (bool clear = false; !clear;) {
        moveBelow(rect, taken);
        const auto hit = std::find_if(frames.cbegin(), frames.cend(), [rect](const QRectF &frame) {
            return frame.intersects(*rect) && !frame.contains(*rect);
        });
        clear = hit == frames.cend();
        if (!clear && side == Side::Left)
            rect->moveRight(hit->left() - StackGap);
        else if (!clear)
            rect->moveLeft(hit->right() + StackGap);
    }
}

QVector<QPointF> GroupPortPlacement::inputPositions(const QVector<Input> &inputs,
                                                    const QVector<QRectF> &fed,
                                                    const QVector<QRectF> &others,
                                                    const QVector<QRectF> &frames)
{
    QVector<QPointF> positions(inputs.size());
    QVector<QRectF> placed = fed + others;
    QVector<qreal> next;
    for (const QRectF &rect : fed)
        next.append(rect.top());
    QRectF bounds;
    for (int i = 0; i < inputs.size(); ++i) {
        const Input &input = inputs.at(i);
        if (input.fed < 0)
            continue;
        qreal &y = next[input.fed];
        QRectF rect(fed.at(input.fed).left() - StreamGap - input.size.width(), y,
                    input.size.width(), input.size.height());
        // Two nodes that are fed side by side must not get their inputs on one spot.
        moveClear(&rect, placed, frames, Side::Left);
        y = rect.bottom() + StackGap;
        positions[i] = rect.topLeft();
        placed.append(rect);
        bounds |= rect;
    }
    QRectF area;
    for (const QRectF &rect : fed)
        area |= rect;
    const qreal right = bounds.isEmpty() ? area.left() - StreamGap : bounds.right();
    qreal y = bounds.isEmpty() ? area.top() : bounds.bottom() + LooseGap;
    for (int i = 0; i < inputs.size(); ++i) {
        if (inputs.at(i).fed >= 0)
            continue;
        QRectF rect({right - inputs.at(i).size.width(), y}, inputs.at(i).size);
        moveClear(&rect, placed, frames, Side::Left);
        positions[i] = rect.topLeft();
        y = rect.bottom() + LooseGap;
    }
    return positions;
}
