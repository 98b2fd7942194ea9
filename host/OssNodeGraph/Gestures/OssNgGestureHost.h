#pragma once

#include <QPointF>

class OssNgNode;
class QGraphicsScene;
class QString;
class QWidget;

/// The view as a gesture sees it: what it may ask and move while a button is held. Positions are
/// scene coordinates unless said otherwise.
class OssNgGestureHost
{
public:
    enum InteractionState {
        Idle = 0, ///< also while nodes are dragged
        Panning = 1,
        Zooming = 2,
        RubberBand = 3,
        EdgeDrag = 4,
        EdgeSever = 5,
        BackdropResize = 6,
        MinimapDrag = 7,
        MakingRoom = 8,
    };

    enum CursorTrackingMode {
        NormalTracking = 0,
        SeverTracking = 1, ///< a left drag cuts the wires it crosses
        ShakeTracking = 2, ///< while dragged nodes are watched for shaking
    };

    struct ShakeRule
    {
        bool enabled;
        int reversals;
        int time; ///< milliseconds within which they count
    };

    /// Of nodes that are dragged, in scene units; less is a click with an unsteady hand.
    static constexpr qreal LeastMove = 5.0;

    /// Not null while a gesture is in hand.
    virtual QGraphicsScene *graphScene() const = 0;
    /// Shows the graph; viewport pixels are its.
    virtual QWidget *canvas() const = 0;

    virtual qreal zoom() const = 0;
    /// Exact for sub-pixel positions, unlike QGraphicsView's.
    virtual QPointF toScene(const QPointF &viewportPos) const = 0;
    virtual QPointF fromScene(const QPointF &scenePos) const = 0;
    /// Scene point that a point of the minimap (viewport pixels) stands for.
    virtual QPointF minimapToScene(const QPointF &viewportPos) const = 0;

    virtual void scrollBy(const QPointF &pixels) = 0;
    virtual void zoomAbout(qreal newZoom, const QPointF &viewportPos) = 0;
    /// The point of the viewport that stays where it is while the user zooms with the pointer there.
    virtual QPointF zoomAnchor(const QPointF &viewportPos) const = 0;
    virtual void centerViewOn(const QPointF &position, bool animated) = 0;

    virtual bool isSnapToGridOn() const = 0;
    virtual int cursorTrackingMode() const = 0;
    virtual void setCursorTrackingMode(int mode) = 0;
    virtual ShakeRule shakeRule() const = 0;
    /// Nodes in the hand were shaken.
    virtual void announceShake() = 0;
    /// A new wire was let go where nothing is.
    virtual void announceLooseWire(OssNgNode *node, const QString &port, bool fromOutput,
                                   const QPointF &scenePos) = 0;

protected:
    ~OssNgGestureHost() = default;
};
