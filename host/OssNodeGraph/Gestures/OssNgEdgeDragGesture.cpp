#include "OssNodeGraph/Gestures/OssNgEdgeDragGesture.h"

#include "OssNodeGraph/Gestures/OssNgGestureHost.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QMouseEvent>

OssNgEdgeDragGesture::OssNgEdgeDragGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                           OssNgEdge *edge, int held, const QPointF &start)
    : OssNgGesture(host, button)
    , m_edge(edge)
    , m_owner(edge->isFullConnected() ? nullptr
              : edge->source()        ? edge->source()
                                      : edge->destination())
    , m_held(held)
    , m_start(start)
{
}

OssNgEdgeDragGesture::~OssNgEdgeDragGesture()
{
    dropTemporary();
}

int OssNgEdgeDragGesture::state() const
{
    return OssNgGestureHost::EdgeDrag;
}

void OssNgEdgeDragGesture::enter()
{
    m_edge->beginDrag(OssNgEdge::DragEnd(m_held));
    m_edge->grabMouse();
}

bool OssNgEdgeDragGesture::isAlive() const
{
    return host()->graphScene() && host()->graphScene()->mouseGrabberItem() == m_edge;
}

void OssNgEdgeDragGesture::move(QMouseEvent *event)
{
    const QPointF way = event->localPos() - m_start;
    if (!m_moved && way.manhattanLength() < QApplication::startDragDistance())
        return;
    m_moved = true;
    m_edge->dragTo(host()->toScene(event->localPos()));
}

void OssNgEdgeDragGesture::release(QMouseEvent *event)
{
    m_edge->ungrabMouse();
    // A click on a port or wire that did not move changes nothing.
    const QPointF drop = m_moved ? host()->toScene(event->localPos()) : QPointF();
    const QPointer<OssNgNode> owner = m_owner;
    const bool fromOutput = m_edge->source() != nullptr;
    const QString port = fromOutput ? m_edge->sourceOutput() : m_edge->destinationInput();
    const bool loose = m_moved && owner && liesOnNothing(drop);
    m_edge->releaseMouse(drop, false);
    dropTemporary();
    if (loose && owner)
        host()->announceLooseWire(owner, port, fromOutput, drop);
}

bool OssNgEdgeDragGesture::liesOnNothing(const QPointF &scenePos) const
{
    if (m_edge->connectsAt(scenePos))
        return false;
    const OssNgNode *node = OssNgSceneIndex::of(host()->graphScene())->nodeAt(scenePos);
    return !node || node->isBackground();
}

void OssNgEdgeDragGesture::cancel()
{
    m_edge->releaseMouse(QPointF(), true);
    m_edge->ungrabMouse();
}

void OssNgEdgeDragGesture::dropTemporary()
{
    if (m_owner)
        m_owner->removeTemporaryOutputEdge();
}
