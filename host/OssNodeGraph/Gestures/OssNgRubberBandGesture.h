#pragma once

#include "OssNodeGraph/Gestures/OssNgGesture.h"

#include <QList>
#include <QRectF>

class QGraphicsItem;

/// Selects what the band touches, nodes and wires. With `extend` what was selected stays so.
class OssNgRubberBandGesture final : public OssNgGesture
{
public:
    OssNgRubberBandGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start,
                           bool extend);

    int state() const override;
    void enter() override;
    void move(QMouseEvent *event) override;
    void release(QMouseEvent *event) override;

    bool finishesWhenInterrupted() const override { return true; }

    void cancel() override;

    bool pansAtBorders() const override { return true; }

    void paint(QPainter *painter) const override;

private:
    void select(const QRectF &sceneBand);
    QRectF band() const;
    void repaintBand(const QRectF &old) const;

    QPointF m_startScene; ///< the canvas may move below the pointer
    QPointF m_current;
    QList<QGraphicsItem *> m_before;
    bool m_extend;
    bool m_moved = false;
};
