#include "OssNodeGraph/Gestures/OssNgBackdropResizeGesture.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgGestureHost.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"

#include <QMouseEvent>

#include <algorithm>
#include <cmath>

OssNgBackdropResizeGesture::OssNgBackdropResizeGesture(OssNgGestureHost *host,
                                                       Qt::MouseButton button, const QPointF &start,
                                                       OssNgBackdropNode *backdrop, Qt::Edges edges)
    : OssNgGesture(host, button)
    , m_backdrop(backdrop)
    , m_edges(edges)
    , m_startScene(host->toScene(start))
    , m_startArea(backdrop->rect().translated(backdrop->pos()))
{
}

int OssNgBackdropResizeGesture::state() const
{
    return OssNgGestureHost::BackdropResize;
}

void OssNgBackdropResizeGesture::enter()
{
    m_backdrop->savePosition();
    m_backdrop->saveBoundingRect();
}

void OssNgBackdropResizeGesture::move(QMouseEvent *event)
{
    if (!m_backdrop)
        return;
    QPointF way = host()->toScene(event->localPos()) - m_startScene;
    if (host()->isSnapToGridOn())
        way = {std::round(way.x() / OssNgStyle::GridStep) * OssNgStyle::GridStep,
               std::round(way.y() / OssNgStyle::GridStep) * OssNgStyle::GridStep};
    // The backdrop keeps its least size by itself; only its corner must not be pushed on.
    const QSizeF least = OssNgBackdropNode::minimumSize();
    QRectF area = m_startArea;
    if (m_edges & Qt::LeftEdge)
        area.setLeft(std::min(area.left() + way.x(), area.right() - least.width()));
    if (m_edges & Qt::RightEdge)
        area.setRight(area.right() + way.x());
    if (m_edges & Qt::TopEdge)
        area.setTop(std::min(area.top() + way.y(), area.bottom() - least.height()));
    if (m_edges & Qt::BottomEdge)
        area.setBottom(area.bottom() + way.y());
    m_backdrop->setPosition(area.topLeft());
    m_backdrop->setRect({QPointF(), area.size()});
}

void OssNgBackdropResizeGesture::release(QMouseEvent *)
{
    if (!m_backdrop || m_backdrop->rect().translated(m_backdrop->pos()) == m_startArea)
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Resize backdrop"));
    macro.addUndo(new OssNgNodePositionChangeUndo(m_backdrop));
    macro.addUndo(new OssNgBackdropNodeRectChangeUndo(m_backdrop));
    m_backdrop->refreshChildrenList();
    Q_EMIT m_backdrop->posChanged(m_backdrop->pos());
}

void OssNgBackdropResizeGesture::cancel()
{
    if (!m_backdrop)
        return;
    m_backdrop->setPosition(m_startArea.topLeft());
    m_backdrop->setRect({QPointF(), m_startArea.size()});
}
