#pragma once

#include "OssNodeGraph/Gestures/OssNgGesture.h"

#include <QPointer>
#include <QRectF>

class OssNgBackdropNode;

/// Drags edges of a backdrop and records the whole as one undo step.
class OssNgBackdropResizeGesture final : public OssNgGesture
{
public:
    OssNgBackdropResizeGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start,
                               OssNgBackdropNode *backdrop, Qt::Edges edges);

    int state() const override;
    void enter() override;
    void move(QMouseEvent *event) override;
    void release(QMouseEvent *event) override;

    bool finishesWhenInterrupted() const override { return true; }

    void cancel() override;

    bool pansAtBorders() const override { return true; }

private:
    QPointer<OssNgBackdropNode> m_backdrop;
    Qt::Edges m_edges;
    QPointF m_startScene;
    QRectF m_startArea; ///< scene coordinates
};
