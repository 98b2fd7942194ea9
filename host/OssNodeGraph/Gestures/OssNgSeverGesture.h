#pragma once

#include "OssNodeGraph/Gestures/OssNgGesture.h"

#include <QLineF>
#include <QPolygonF>

/// Cuts the wires that the drawn stroke crosses, when it ends; they are shown before.
class OssNgSeverGesture final : public OssNgGesture
{
public:
    OssNgSeverGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start);

    int state() const override;
    void move(QMouseEvent *event) override;
    void release(QMouseEvent *event) override;
    void cancel() override;

    bool pansAtBorders() const override { return true; }

    void paint(QPainter *painter) const override;

private:
    void markCrossed(const QLineF &stroke) const;
    void endMarks() const;

    QPolygonF m_stroke; ///< scene coordinates
};
