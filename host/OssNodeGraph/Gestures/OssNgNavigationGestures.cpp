#include "OssNodeGraph/Gestures/OssNgNavigationGestures.h"

#include "OssNodeGraph/View/OssNgView.h"

#include <QMouseEvent>

#include <cmath>

namespace {

constexpr qreal PixelsPerDoubling = 160.0;

} // namespace

OssNgPanGesture::OssNgPanGesture(OssNgView *view, Qt::MouseButton button, const QPointF &start)
    : OssNgGesture(view, button)
    , m_last(start)
{
}

int OssNgPanGesture::state() const
{
    return OssNgView::Panning;
}

void OssNgPanGesture::enter()
{
    view()->viewport()->setCursor(Qt::ClosedHandCursor);
}

void OssNgPanGesture::move(QMouseEvent *event)
{
    view()->scrollBy(m_last - event->localPos());
    m_last = event->localPos();
}

void OssNgPanGesture::release(QMouseEvent *event)
{
    move(event);
}

OssNgZoomGesture::OssNgZoomGesture(OssNgView *view, Qt::MouseButton button, const QPointF &start)
    : OssNgGesture(view, button)
    , m_start(start)
    , m_startZoom(view->zoom())
{
}

int OssNgZoomGesture::state() const
{
    return OssNgView::Zooming;
}

void OssNgZoomGesture::move(QMouseEvent *event)
{
    const QPointF way = event->localPos() - m_start;
    view()->zoomAbout(m_startZoom * std::exp2((way.x() - way.y()) / PixelsPerDoubling), m_start);
}

OssNgMinimapGesture::OssNgMinimapGesture(OssNgView *view, Qt::MouseButton button,
                                         const QPointF &start)
    : OssNgGesture(view, button)
    , m_start(start)
{
}

int OssNgMinimapGesture::state() const
{
    return OssNgView::MinimapDrag;
}

void OssNgMinimapGesture::enter()
{
    view()->centerViewOn(view()->minimapToScene(m_start), false);
}

void OssNgMinimapGesture::move(QMouseEvent *event)
{
    view()->centerViewOn(view()->minimapToScene(event->localPos()), false);
}
