#include "OssNodeGraph/Gestures/OssNgNavigationGestures.h"

#include "OssNodeGraph/Gestures/OssNgGestureHost.h"

#include <QMouseEvent>
#include <QWidget>

#include <cmath>

namespace {

constexpr qreal PixelsPerDoubling = 160.0;

} // namespace

OssNgPanGesture::OssNgPanGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                 const QPointF &start)
    : OssNgGesture(host, button)
    , m_last(start)
{
}

int OssNgPanGesture::state() const
{
    return OssNgGestureHost::Panning;
}

void OssNgPanGesture::enter()
{
    host()->canvas()->setCursor(Qt::ClosedHandCursor);
}

void OssNgPanGesture::move(QMouseEvent *event)
{
    host()->scrollBy(m_last - event->localPos());
    m_last = event->localPos();
}

void OssNgPanGesture::release(QMouseEvent *event)
{
    move(event);
}

OssNgZoomGesture::OssNgZoomGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                   const QPointF &start)
    : OssNgGesture(host, button)
    , m_start(start)
    , m_anchor(host->zoomAnchor(start))
    , m_startZoom(host->zoom())
{
}

int OssNgZoomGesture::state() const
{
    return OssNgGestureHost::Zooming;
}

void OssNgZoomGesture::move(QMouseEvent *event)
{
    const QPointF way = event->localPos() - m_start;
    host()->zoomAbout(m_startZoom * std::exp2((way.x() - way.y()) / PixelsPerDoubling), m_anchor);
}

OssNgMinimapGesture::OssNgMinimapGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                         const QPointF &start)
    : OssNgGesture(host, button)
    , m_start(start)
{
}

int OssNgMinimapGesture::state() const
{
    return OssNgGestureHost::MinimapDrag;
}

void OssNgMinimapGesture::enter()
{
    host()->centerViewOn(host()->minimapToScene(m_start), false);
}

void OssNgMinimapGesture::move(QMouseEvent *event)
{
    host()->centerViewOn(host()->minimapToScene(event->localPos()), false);
}
