#include "OssNodeGraph/Gestures/OssNgEdgeDragGesture.h"

#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QMouseEvent>

OssNgEdgeDragGesture::OssNgEdgeDragGesture(OssNgView *view, Qt::MouseButton button, OssNgEdge *edge,
                                           int held, const QPointF &start)
    : OssNgGesture(view, button)
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
    return OssNgView::EdgeDrag;
}

void OssNgEdgeDragGesture::enter()
{
    m_edge->beginDrag(OssNgEdge::DragEnd(m_held));
    m_edge->grabMouse();
}

bool OssNgEdgeDragGesture::isAlive() const
{
    return view()->scene() && view()->scene()->mouseGrabberItem() == m_edge;
}

void OssNgEdgeDragGesture::move(QMouseEvent *event)
{
    const QPointF way = event->localPos() - m_start;
    if (!m_moved && way.manhattanLength() < QApplication::startDragDistance())
        return;
    m_moved = true;
    m_edge->dragTo(view()->toScene(event->localPos()));
}

void OssNgEdgeDragGesture::release(QMouseEvent *event)
{
    m_edge->ungrabMouse();
    // A click on a port or wire that did not move changes nothing.
    const QPointF drop = m_moved ? view()->toScene(event->localPos()) : QPointF();
    m_edge->releaseMouse(drop, false);
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
