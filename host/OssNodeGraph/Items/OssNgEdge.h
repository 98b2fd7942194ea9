#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QColor>
#include <QGraphicsItem>
#include <QMetaType>
#include <QPainterPath>
#include <QPointer>

#include <memory>

class OssNgNode;
class OssNgSceneIndex;

/// A wire from an output of one node to an input of another, or from a port to the pointer while
/// the user pulls it. Made and owned by its destination node; a pulled one by the node it comes
/// from. Coordinates are the scene's. A view draws all wires of a scene in one batch: as an item a
/// wire can be found, selected and hold the mouse, but has no contents of its own.
class OSSNODEGRAPH_EXPORT OssNgEdge : public QGraphicsItem
{
public:
    enum { Type = UserType + 20 };
    enum class DragEnd : quint8 { None, Source, Destination };

    enum Mark : quint8 {
        Bypassed = 1U << 0,
        Shared = 1U << 1,
        Activated = 1U << 2,
        Debug = 1U << 3,
        Virtual = 1U << 4,
        Dotable = 1U << 5,
        Doomed = 1U << 6,   ///< would go if the button were released now
        Inviting = 1U << 7, ///< a node would be spliced in if the button were released now
    };

    OssNgEdge(OssNgNode *source, const QString &output, OssNgNode *destination,
              const QString &input);
    ~OssNgEdge() override;

    OssNgNode *source() const { return m_source; }

    OssNgNode *destination() const { return m_destination; }

    const QString &sourceOutput() const { return m_output; }

    const QString &destinationInput() const { return m_input; }

    bool isFullConnected() const { return m_source && m_destination; }

    bool hasMark(Mark mark) const { return (m_marks & mark) != 0; }

    void setMark(Mark mark, bool on);

    void setBypassed(bool on) { setMark(Bypassed, on); }

    void setShared(bool on) { setMark(Shared, on); }

    /// The wire that the viewer shows now.
    void setActivated(bool on) { setMark(Activated, on); }

    void setDebug(bool on) { setMark(Debug, on); }

    void setDebugColor(const QColor &color);

    /// Dashed; cannot be picked up.
    void setVirtual(bool on) { setMark(Virtual, on); }

    bool isVirtual() const { return hasMark(Virtual); }

    bool hovered() const { return m_hovered; }

    void setHovered(bool hovered);

    /// Shows a marker at the middle; a click on it asks for a dot node. Needs both ends.
    void switchToDotableMode(bool on);

    bool isDotable() const { return hasMark(Dotable); }

    /// Middle of the curve, where the marker is.
    QPointF markerPosition() const;
    bool isOnMarker(const QPointF &scenePos) const;
    /// Announces the click through the destination node.
    void clickMarker();

    /// One end follows the pointer. The caller makes the wire the scene's mouse grabber.
    void beginDrag(DragEnd end);

    DragEnd dragEnd() const { return m_dragEnd; }

    /// Moves the loose end and lights the port on which a release would drop it.
    void dragTo(const QPointF &scenePos);

    /// Whether a release there would connect the loose end.
    bool connectsAt(const QPointF &scenePos) const { return targetAt(scenePos).node != nullptr; }

    /// Ends a drag. A null position or one that hits the port it came from gives the wire back
    /// unchanged; a position over a port connects there; one over the canvas disconnects, unless
    /// `keep` is set. Announced by the nodes concerned, in one undo macro; listeners may delete the
    /// wire. The caller ungrabs the mouse before where a position is given, afterwards otherwise.
    void releaseMouse(const QPointF &scenePos, bool keep);

    /// The curve. Empty without ends.
    QPainterPath path() const;
    /// The four points of the curve.
    void controlPoints(QPointF points[4]) const;
    /// Distance of the point from the curve; large when far.
    qreal distanceTo(const QPointF &scenePos) const;
    QColor color() const;

    QColor debugColor() const { return m_debugColor; }

    /// Shown while both ends are.
    void updateVisibility();
    /// Brings the wire to where its ports are.
    void updateGeometry();

    QRectF boundingRect() const override { return m_bounds; }

    QPainterPath shape() const override;

    int type() const override { return Type; }

    void paint(QPainter *, const QStyleOptionGraphicsItem *, QWidget *) override {}

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;

private:
    friend class OssNgNode;
    friend class OssNgSceneIndex;

    struct Target
    {
        OssNgNode *node = nullptr;
        QString port;
    };

    Target targetAt(const QPointF &scenePos) const;
    void light(const Target &target);
    void markReplaced(bool on);
    void announceDrop(DragEnd end, const Target &target, bool keep);
    void repaintScene() const;
    void takeUnlessHidden(QGraphicsSceneMouseEvent *event) const;

    OssNgNode *m_source;
    OssNgNode *m_destination;
    QString m_output;
    QString m_input;
    OssNgSceneIndex *m_index = nullptr; ///< cleared by the index when it dies first
    int m_indexSlot = -1;
    mutable int m_outputHint = 0;
    mutable int m_inputHint = 0;
    QPointF m_start;
    QPointF m_end;
    QRectF m_bounds;
    QColor m_debugColor;
    QPointer<OssNgNode> m_litNode;
    QString m_litPort;
    quint8 m_marks = 0;
    DragEnd m_dragEnd = DragEnd::None;
    bool m_hovered = false;
};

Q_DECLARE_METATYPE(OssNgEdge *)
