#include "OssNodeGraph/View/OssNgView.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgBackdropResizeGesture.h"
#include "OssNodeGraph/Gestures/OssNgEdgeDragGesture.h"
#include "OssNodeGraph/Gestures/OssNgNavigationGestures.h"
#include "OssNodeGraph/Gestures/OssNgNodeDragGesture.h"
#include "OssNodeGraph/Gestures/OssNgRoomGesture.h"
#include "OssNodeGraph/Gestures/OssNgRubberBandGesture.h"
#include "OssNodeGraph/Gestures/OssNgSeverGesture.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QGraphicsScene>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal WireReachPixels = 7.0;
constexpr qreal PortReach = 9.0;

/// The end of the wire that lies nearer to the point.
OssNgEdge::DragEnd nearerEnd(const OssNgEdge *edge, const QPointF &scenePos)
{
    const QPointF fromSource = edge->source()->outputPortScenePos(edge->sourceOutput()) - scenePos;
    const QPointF fromDestination = edge->destination()->inputPortScenePos(edge->destinationInput())
                                    - scenePos;
    return QPointF::dotProduct(fromSource, fromSource)
                   < QPointF::dotProduct(fromDestination, fromDestination)
               ? OssNgEdge::DragEnd::Source
               : OssNgEdge::DragEnd::Destination;
}

} // namespace

qreal OssNgView::wireReach() const
{
    return std::clamp(WireReachPixels / zoom(), 5.0, 60.0);
}

OssNgNode *OssNgView::portOwnerAt(const QPointF &scenePos) const
{
    if (zoom() < OssNgStyle::Overview)
        return nullptr;
    const QVector<OssNgNode *> nodes = sceneIndex()->nodesIn(
        {scenePos - QPointF(PortReach, PortReach), QSizeF(2 * PortReach, 2 * PortReach)});
    for (auto it = nodes.crbegin(); it != nodes.crend(); ++it) {
        const QPointF local = scenePos - (*it)->pos();
        if ((*it)->inputPortAt(local, PortReach) || (*it)->outputPortAt(local, PortReach))
            return *it;
    }
    return nullptr;
}

std::unique_ptr<OssNgGesture> OssNgView::navigationFor(const QMouseEvent *event) const
{
    auto *self = const_cast<OssNgView *>(this);
    const bool alt = event->modifiers() & Qt::AltModifier;
    const Qt::MouseButton button = event->button();
    if (button == Qt::LeftButton && isMinimapVisible() && minimapRect().contains(event->localPos()))
        return std::make_unique<OssNgMinimapGesture>(self, button, event->localPos());
    if (m_navigationControlType == QLatin1String("Ossa")) {
        if (alt && button == Qt::LeftButton && !(event->modifiers() & Qt::ControlModifier))
            return std::make_unique<OssNgPanGesture>(self, button, event->localPos());
        if (alt && button == Qt::RightButton)
            return std::make_unique<OssNgZoomGesture>(self, button, event->localPos());
        return nullptr;
    }
    if (button != Qt::MiddleButton)
        return nullptr;
    if (alt)
        return std::make_unique<OssNgZoomGesture>(self, button, event->localPos());
    return std::make_unique<OssNgPanGesture>(self, button, event->localPos());
}

std::unique_ptr<OssNgGesture> OssNgView::edgeFromPort(const QPointF &scenePos, OssNgNode *node)
{
    const QPointF local = scenePos - node->pos();
    const QPointF start = fromScene(scenePos);
    // Of two ports in reach, such as those of a dot, an output is pulled from.
    if (const OssNgPort *output = node->outputPortAt(local, PortReach)) {
        OssNgEdge *edge = node->beginTemporaryEdge(output->name, true);
        return std::make_unique<OssNgEdgeDragGesture>(this, Qt::LeftButton, edge,
                                                      int(OssNgEdge::DragEnd::Destination), start);
    }
    const OssNgPort *input = node->inputPortAt(local, PortReach);
    if (!input)
        return nullptr;
    OssNgEdge *edge = node->input(input->name);
    if (edge && edge->isVirtual())
        edge = nullptr;
    if (edge)
        return std::make_unique<OssNgEdgeDragGesture>(this, Qt::LeftButton, edge,
                                                      int(OssNgEdge::DragEnd::Destination), start);
    edge = node->beginTemporaryEdge(input->name, false);
    return std::make_unique<OssNgEdgeDragGesture>(this, Qt::LeftButton, edge,
                                                  int(OssNgEdge::DragEnd::Source), start);
}

std::unique_ptr<OssNgGesture> OssNgView::edgeFromWire(const QPointF &scenePos, OssNgEdge *edge)
{
    return std::make_unique<OssNgEdgeDragGesture>(
        this, Qt::LeftButton, edge, int(nearerEnd(edge, scenePos)), fromScene(scenePos));
}

void OssNgView::selectForPress(OssNgNode *node, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & (Qt::ShiftModifier | Qt::ControlModifier)) {
        node->setSelected(!node->isSelected());
    } else if (!node->isSelected()) {
        scene()->clearSelection();
        node->setSelected(true);
    }
}

void OssNgView::selectForMenu(const QPointF &scenePos)
{
    QGraphicsItem *hit = sceneIndex()->nodeAt(scenePos);
    if (!hit || static_cast<OssNgNode *>(hit)->isBackground()) {
        if (OssNgEdge *edge = sceneIndex()->edgeAt(scenePos, wireReach()))
            hit = edge;
    }
    if (!hit || hit->isSelected())
        return;
    scene()->clearSelection();
    hit->setSelected(true);
}

std::unique_ptr<OssNgGesture> OssNgView::leftPressOnNode(QMouseEvent *event, OssNgNode *node)
{
    const QPointF local = toScene(event->localPos()) - node->pos();
    if (node->clickAt(local))
        return nullptr;
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(node);
    const Qt::Edges edges = backdrop ? backdrop->resizeEdgesAt(local) : Qt::Edges();
    // The gesture asks whether the node was selected before the press.
    const bool wasSelected = node->isSelected();
    const QPointer<OssNgNode> guard = node;
    selectForPress(node, event->modifiers());
    if (!guard || !node->isSelected())
        return nullptr;
    if (edges)
        return std::make_unique<OssNgBackdropResizeGesture>(this, event->button(),
                                                            event->localPos(), backdrop, edges);
    return std::make_unique<OssNgNodeDragGesture>(this, event->button(), event->localPos(), node,
                                                  wasSelected);
}

std::unique_ptr<OssNgGesture> OssNgView::gestureFor(QMouseEvent *event)
{
    if (auto navigation = navigationFor(event))
        return navigation;
    if (event->button() != Qt::LeftButton)
        return nullptr;
    const QPointF position = toScene(event->localPos());
    if (m_cursorTrackingMode == SeverTracking)
        return std::make_unique<OssNgSeverGesture>(this, event->button(), event->localPos());
    // Wherever it is pressed: where room is wanted there seldom is an empty place.
    if (event->modifiers() == (Qt::ControlModifier | Qt::AltModifier))
        return std::make_unique<OssNgRoomGesture>(this, event->button(), event->localPos());
    OssNgEdge *edge = sceneIndex()->edgeAt(position, wireReach());
    OssNgNode *node = sceneIndex()->nodeAt(position);
    const bool hidden = node && !node->isBackground(); // wires run below nodes
    if (edge && edge->isOnMarker(position) && !hidden) {
        edge->clickMarker();
        return nullptr;
    }
    if (OssNgNode *owner = portOwnerAt(position))
        return edgeFromPort(position, owner);
    if (node && (hidden || !edge))
        return leftPressOnNode(event, node);
    const bool extend = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
    if (edge && edge->isFullConnected()) {
        if (!extend)
            scene()->clearSelection();
        edge->setSelected(!extend || !edge->isSelected());
        return edge->isVirtual() ? nullptr : edgeFromWire(position, edge);
    }
    return std::make_unique<OssNgRubberBandGesture>(this, event->button(), event->localPos(),
                                                    extend);
}

void OssNgView::updateHover(const QPointF &viewportPos)
{
    const QPointF position = toScene(viewportPos);
    OssNgNode *owner = portOwnerAt(position);
    OssNgNode *node = owner ? owner : sceneIndex()->nodeAt(position);
    OssNgEdge *edge = nullptr;
    if (!node || node->isBackground())
        edge = sceneIndex()->edgeAt(position, wireReach());
    setHoveredNode(edge ? nullptr : node);
    setHoveredEdge(edge);
    if (m_cursorTrackingMode == SeverTracking)
        return;
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(node);
    const Qt::Edges edges = backdrop && !edge ? backdrop->resizeEdgesAt(position - node->pos())
                                              : Qt::Edges();
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        shape = Qt::SizeFDiagCursor;
    else if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge))
        shape = Qt::SizeBDiagCursor;
    else if (edges & (Qt::LeftEdge | Qt::RightEdge))
        shape = Qt::SizeHorCursor;
    else if (edges)
        shape = Qt::SizeVerCursor;
    else if (owner)
        shape = Qt::PointingHandCursor;
    if (viewport()->cursor().shape() != shape)
        viewport()->setCursor(shape);
}

void OssNgView::pickUpEdge()
{
    if (!scene() || hasGesture())
        return;
    const QPointF mouse = viewport()->mapFromGlobal(QCursor::pos());
    const QPointF position = toScene(mouse);
    OssNgEdge *edge = sceneIndex()->edgeAt(position, wireReach());
    if (!edge || !edge->isFullConnected() || edge->isVirtual()) {
        OssStatusManager::instance()->showMessage(
            tr("Pick Up Edge Under Mouse: no wire is under the pointer"));
        return;
    }
    startGesture(edgeFromWire(position, edge));
    m_isHeld = false;
    // Without a pressed button the next click drops it.
}
