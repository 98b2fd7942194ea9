#pragma once

#include "OssNodeGraph/Gestures/OssNgGesture.h"
#include "OssNodeGraph/Gestures/OssNgShakeDetector.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QVector>

class OssNgBackdropNode;
class OssNgEdge;
class OssNgNode;

/// Moves the selected nodes, and what lies in selected backdrops, with the pointer. Shows the wire
/// into which the node would be spliced and the backdrops that would take what is moved, watches for shaking and shows what it counted. Positions are
/// announced at the end; whoever listens records the undo.
class OssNgNodeDragGesture final : public OssNgGesture
{
public:
    /// `pressed` is the node under the pointer; it keeps to the grid when snapping is on.
    /// `wasSelected` tells whether it was selected before the press.
    OssNgNodeDragGesture(OssNgGestureHost *host, Qt::MouseButton button, const QPointF &start,
                         OssNgNode *pressed, bool wasSelected);

    int state() const override;
    void enter() override;
    void move(QMouseEvent *event) override;
    void release(QMouseEvent *event) override;

    bool finishesWhenInterrupted() const override { return true; }

    void cancel() override;
    void paint(QPainter *painter) const override;

    bool pansAtBorders() const override { return true; }

private:
    struct Moved
    {
        QPointer<OssNgNode> node;
        QPointF start;
    };

    void collect();
    OssNgEdge *insertionTarget() const;
    void rememberConsumers();
    void moveBy(const QPointF &offset);
    QPointF snapped(const QPointF &offset) const;
    void previewInsertion();
    void endPreview();
    void previewBackdrops();
    void endInvitations();
    bool isCarried(const OssNgNode *node) const;
    void endTracking();
    bool isWatchingShakes() const;
    void watchShake(const QPointF &position);
    QRectF shakeCounterRect() const;

    QPointF m_startScene;
    QPointer<OssNgNode> m_pressed;
    QVector<Moved> m_moved;
    bool m_dragging = false;
    bool m_deselectOthersOnClick;
    QPointer<OssNgNode> m_previewedDestination;
    QString m_previewedInput;
    QVector<QPointer<OssNgBackdropNode>> m_inviting;
    /// Inputs that the node fed before it was shaken: it is not put back there by the same drag.
    QVector<QPair<QPointer<OssNgNode>, QString>> m_shakenFrom;

    QElapsedTimer m_clock;
    QPointF m_pointer; ///< viewport pixels
    OssNgShakeDetector m_shakes;
};
