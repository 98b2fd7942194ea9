#pragma once

#include "OssNodeGraph/Gestures/OssNgGesture.h"

#include <QPointer>

class OssNgEdge;
class OssNgNode;

/// A wire end in the user's hand. The wire is the scene's mouse grabber meanwhile; whoever takes
/// the grab away has ended the gesture.
class OssNgEdgeDragGesture final : public OssNgGesture
{
public:
    /// `held` says which end of the wire follows the pointer: an OssNgEdge::DragEnd.
    OssNgEdgeDragGesture(OssNgGestureHost *host, Qt::MouseButton button, OssNgEdge *edge, int held,
                         const QPointF &start);
    ~OssNgEdgeDragGesture() override;

    int state() const override;
    void enter() override;
    void move(QMouseEvent *event) override;
    void release(QMouseEvent *event) override;
    void cancel() override;

    bool pansAtBorders() const override { return true; }

    bool isAlive() const override;

private:
    void dropTemporary();
    bool liesOnNothing(const QPointF &scenePos) const;

    OssNgEdge *m_edge; ///< only touched while it is the mouse grabber
    QPointer<OssNgNode> m_owner;
    int m_held;
    QPointF m_start;
    bool m_moved = false;
};
