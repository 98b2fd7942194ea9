#pragma once

#include "OssNodeGraph/Gestures/OssNgGestureHost.h"
#include "OssNodeGraph/Items/OssNgItemHost.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QGraphicsView>
#include <QHash>
#include <QPixmap>
#include <QPointer>
#include <QRegion>
#include <QTimer>

#include <memory>
#include <optional>
#include <vector>

class OssNgEdge;
class OssNgFlash;
class OssNgGesture;
class OssNgGlide;
class OssNgNode;
class OssNgSceneIndex;

/// The graph on screen: pans, zooms, selects, drags nodes and wires. It edits no model: see
/// OssNgNode for how a user's edit is announced. Undo of node moves is the subclass's; it tells a
/// finished move by an interaction state of 0 before the release.
///
/// Every pointer gesture is an object that lives from its press to its release. Positions passed as
/// points are scene coordinates unless said otherwise. GUI thread.
class OSSNODEGRAPH_EXPORT OssNgView
    : public QGraphicsView
    , public OssNgItemHost
    , public OssNgGestureHost
{
    Q_OBJECT
    Q_INTERFACES(OssNgItemHost)

public:
    explicit OssNgView(QWidget *parent = nullptr);
    ~OssNgView() override;

    /// To be called after the scene was set, also when it is none.
    virtual void init();

    /// Exactly what the viewport shows.
    QRectF viewportInSceneCoords() const;
    /// Shows the rectangle as large as possible, centred, without margins. With
    /// Qt::KeepAspectRatio a rectangle from viewportInSceneCoords() comes back exactly; other modes
    /// do the same, for the graph is never distorted. Nothing happens for an empty one.
    void fitInView(const QRectF &rect, Qt::AspectRatioMode mode = Qt::KeepAspectRatio);
    /// Scales about the viewport's centre, whatever the transformation anchor.
    void scaleView(qreal factor);
    /// Takes a zoom above the level back to it, about the centre. What fitInView() showed stays
    /// fitted, under that limit, when the view gets another size.
    void limitFittedZoom(qreal largest);
    /// Bounds of all visible nodes; empty without any.
    QRectF visibleNodeBounds() const;
    void centerViewOn(const QPointF &position, bool animated) override;
    /// The selected items from top to bottom and left to right; wires after nodes.
    QList<QGraphicsItem *> sortedSelection() const;

    qreal zoom() const override { return transform().m11(); }

    /// Scale by the factor, or its inverse, about the given anchor. One undoes the other exactly.
    void zoomIn(double factor, ViewportAnchor anchor);
    void zoomOut(double factor, ViewportAnchor anchor);
    QPointF toScene(const QPointF &viewportPos) const override;
    QPointF fromScene(const QPointF &scenePos) const override;

    int interactionState() const { return m_interactionState; }

    int cursorTrackingMode() const override { return m_cursorTrackingMode; }

    void setCursorTrackingMode(int mode) override;
    /// False where wires are not being cut.
    bool endSeverMode();
    bool isAutoInsertOn() const override;

    bool isSnapToGridOn() const override { return m_snapToGrid; }

    /// Also false while the view is too small for a map.
    bool isMinimapVisible() const;

    void setMinimapVisible(bool visible);
    OssNgSceneIndex *sceneIndex() const;

    /// Also for a drag of nodes, during which the interaction state is that of rest.
    bool hasGesture() const { return m_gesture != nullptr; }

    /// Takes the gesture in hand back, if there is one.
    bool cancelGesture();
    /// Something else begins: what the gesture in hand moved stays moved, what it pulls goes back, and
    /// the button that still holds it holds nothing.
    void interruptGesture();

    /// Shows where things that are dragged in from elsewhere would come to stand, until
    /// hideDropGhost(). Viewport pixels.
    void showDropGhost(const QPoint &viewPos, int count);
    void hideDropGhost();

    void scrollBy(const QPointF &pixels) override;
    void zoomAbout(qreal newZoom, const QPointF &viewportPos) override;
    QPointF zoomAnchor(const QPointF &viewportPos) const override;
    /// Viewport pixels.
    QRectF minimapRect() const;
    QPointF minimapToScene(const QPointF &viewportPos) const override;

    /// Shows nodes on their way from these places to where they are.
    void glideFrom(const QHash<const OssNgNode *, QPointF> &places);
    bool isGliding() const;

    /// Draws the eye to a node that the user was brought to.
    void flashNode(OssNgNode *node);

    /// Null while none flashes.
    const OssNgNode *flashingNode() const;

public Q_SLOTS:
    // About the pointer while it is over the graph, or about the centre where that is the anchor.
    void zoomIn();
    void zoomOut();
    void panLeft();
    void panRight();
    void panUp();
    void panDown();
    void toggleSnapToGrid();
    /// Puts the nearer end of the wire under the pointer into the user's hand.
    void pickUpEdge();
    /// Moves the selected nodes, and what lies in selected backdrops, by scene units. Repeated
    /// quickly it is one undo step.
    void nudgeSelection(const QPointF &offset);

Q_SIGNALS:
    void cursorTrackingModeChanged(int mode);
    /// Nodes in the hand were shaken. The drag goes on.
    void shakeToExtractTriggered();
    /// A new wire from a port was let go where nothing is. `fromOutput` tells the port's side.
    void wireDroppedOnCanvas(OssNgNode *node, const QString &port, bool fromOutput,
                             const QPointF &scenePos);

protected:
    int m_interactionState = Idle;

    // Read at use, nobody is told of a change.
    bool m_shakeToExtractEnabled = true;
    int m_shakeToExtractShakes = 4; ///< reversals
    int m_shakeToExtractTime = 500; ///< milliseconds
    QString m_navigationControlType = QStringLiteral("Kova");

    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void drawBackground(QPainter *painter, const QRectF &rect) override;
    void scrollContentsBy(int dx, int dy) override;
    void leaveEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    bool event(QEvent *event) override;

    /// The topmost node with a port there that can be pressed. Null where none is.
    OssNgNode *portOwnerAt(const QPointF &scenePos) const;

private:
    // The rest of what gestures see of the view
    QGraphicsScene *graphScene() const override { return scene(); }

    QWidget *canvas() const override { return viewport(); }

    ShakeRule shakeRule() const override;
    void announceShake() override;
    void announceLooseWire(OssNgNode *node, const QString &port, bool fromOutput,
                           const QPointF &scenePos) override;

    std::unique_ptr<OssNgGesture> gestureFor(QMouseEvent *event);
    std::unique_ptr<OssNgGesture> navigationFor(const QMouseEvent *event) const;
    std::unique_ptr<OssNgGesture> leftPressOnNode(QMouseEvent *event, OssNgNode *node);
    std::unique_ptr<OssNgGesture> edgeFromPort(const QPointF &scenePos, OssNgNode *node);
    std::unique_ptr<OssNgGesture> edgeFromWire(const QPointF &scenePos, OssNgEdge *edge);
    void startGesture(std::unique_ptr<OssNgGesture> gesture);
    void endGesture();
    bool handlePointer(const QMouseEvent *event);
    void dropDeadGesture();
    void watchButton();
    void endUnheldGesture();
    void replayMove();
    void updateBorderPan();
    void borderPanStep();
    bool handleMenuKey(const QKeyEvent *event);
    bool handlePinch(QEvent *event);
    void selectForPress(OssNgNode *node, Qt::KeyboardModifiers modifiers);
    void selectForMenu(const QPointF &scenePos);
    void zoomByStep(qreal factor);
    QPointF pointerOnViewport() const;
    QString toolTipAt(const QPointF &scenePos) const;
    void updateHover(const QPointF &viewportPos);
    void setHoveredNode(OssNgNode *node);
    void setHoveredEdge(OssNgEdge *edge);
    qreal wireReach() const;

    qreal exactZoom(qreal wanted) const;
    void rememberZoom(qreal zoom);
    void setZoomAndTopLeft(qreal newZoom, const QPointF &scaledTopLeft);
    void panByFraction(qreal dx, qreal dy);

    void paintOverlay();
    void paintMinimap(QPainter *painter);
    void renderMinimap();
    QTransform minimapTransform() const;
    QVector<QRectF> exposedScene(const QRectF &rect) const;

    void paintDropGhost(QPainter *painter) const;
    QRect dropGhostRect() const;

    QPoint m_dropGhost;
    int m_dropGhostCount = 0; ///< 0: none is shown
    int m_cursorTrackingMode = NormalTracking;
    bool m_snapToGrid = false;
    bool m_minimapVisible = true;
    std::unique_ptr<OssNgGesture> m_gesture;
    std::unique_ptr<OssNgGesture> m_navigation; ///< panning or zooming with a gesture in hand
    int m_handling =
        0; ///< pointer events that are on their way: what is done then is the gesture's
    Qt::MouseButton m_interrupted = Qt::NoButton; ///< still held
    bool m_isHeld = false;                        ///< the gesture, by its button: not picked up
    QMetaObject::Connection m_buttonWatch;        ///< while it is held
    bool m_rightPressTaken = false;               ///< by a gesture: it opens no menu
    QPointF m_pointer;                            ///< viewport pixels, of the gesture's last event
    Qt::MouseButtons m_pointerButtons;
    Qt::KeyboardModifiers m_pointerModifiers;
    QTimer m_borderPanTimer;
    bool m_borderPanArmed = false; ///< a press beside the border alone moves nothing
    QPointer<OssNgNode> m_hoveredNode;
    OssNgEdge *m_hoveredEdge = nullptr; ///< valid while the index knows it
    std::optional<QRectF> m_fitted;     ///< until the user looks elsewhere
    qreal m_fittedLimit = 0.0;          ///< 0: none
    std::vector<qreal> m_exactZooms;    ///< levels that stepping back must hit exactly
    QRegion m_exposed;
    QPixmap m_minimap;
    QRectF m_minimapScene;
    quint32 m_minimapRevision = 0;
    QTimer m_minimapTimer;
    QPointF m_glideTarget;
    QTimer m_glideTimer;
    OssNgFlash *m_flash;     ///< a child
    OssNgGlide *m_nodeGlide; ///< a child
};
