#pragma once

#include "OssNodeGraph/Gestures/OssNgGesture.h"

#include <QPointer>
#include <QPointF>
#include <QRectF>
#include <QVector>

#include <optional>

class OssNgNode;

/// Makes room, or takes it away: everything that stands right of where the drag began goes along to the right, or
/// everything below it down, by which way the drag went first. Backdrops across the line grow. What goes back goes
/// no further than to the line. One undo step.
class OssNgRoomGesture final : public OssNgGesture
{
public:
    OssNgRoomGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start);

    int state() const override;
    void move(QMouseEvent *event) override;
    void release(QMouseEvent *event) override;

    bool finishesWhenInterrupted() const override { return true; }

    void cancel() override;
    void paint(QPainter *painter) const override;

    bool pansAtBorders() const override { return true; }

private:
    struct Part
    {
        QPointer<OssNgNode> node;
        QRectF area;   ///< before
        bool isAcross; ///< a backdrop that grows
    };

    std::optional<Part> partOf(OssNgNode *node, qreal line) const;
    void begin(bool down);

    /// Along the way in which room is made.
    qreal startOf(const QRectF &area) const { return m_isDown ? area.top() : area.left(); }

    qreal endOf(const QRectF &area) const { return m_isDown ? area.bottom() : area.right(); }

    void spread(qreal by);

    QPointF m_start; ///< scene
    bool m_hasBegun = false;
    bool m_isDown = false;
    QVector<Part> m_parts;
    qreal m_least = 0.0; ///< how far back things may go
    qreal m_by = 0.0;
};
