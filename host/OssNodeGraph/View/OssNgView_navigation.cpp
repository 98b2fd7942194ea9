#include "OssNodeGraph/View/OssNgView.h"

#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QGestureEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal SmallestZoom = 0.01;
constexpr qreal LargestZoom = 8.0;
constexpr qreal ZoomStep = 1.25;
constexpr qreal WheelStep = 120.0; ///< eighths of a degree in one notch
constexpr qreal PanStep = 0.1;     ///< of the viewport
constexpr std::size_t RememberedZooms = 64;

} // namespace

QPointF OssNgView::toScene(const QPointF &viewportPos) const
{
    return viewportTransform().inverted().map(viewportPos);
}

QPointF OssNgView::fromScene(const QPointF &scenePos) const
{
    return viewportTransform().map(scenePos);
}

QRectF OssNgView::viewportInSceneCoords() const
{
    const QSizeF size = viewport()->size();
    return {toScene({0.0, 0.0}), size / zoom()};
}

qreal OssNgView::exactZoom(qreal wanted) const
{
    // A step back must not miss the level it came from by rounding.
    for (const qreal known : m_exactZooms) {
        if (std::abs(known - wanted) < 1e-9 * known)
            return known;
    }
    return std::abs(wanted - 1.0) < 1e-6 ? 1.0 : wanted;
}

void OssNgView::rememberZoom(qreal zoom)
{
    const auto known = std::find(m_exactZooms.begin(), m_exactZooms.end(), zoom);
    if (known != m_exactZooms.end())
        m_exactZooms.erase(known);
    m_exactZooms.insert(m_exactZooms.begin(), zoom);
    if (m_exactZooms.size() > RememberedZooms)
        m_exactZooms.pop_back();
}

void OssNgView::setZoomAndTopLeft(qreal newZoom, const QPointF &scaledTopLeft)
{
    const ViewportAnchor anchor = transformationAnchor();
    setTransformationAnchor(NoAnchor);
    setTransform(QTransform::fromScale(newZoom, newZoom));
    setTransformationAnchor(anchor);
    // The scroll bars count in pixels of the scaled scene; Qt's own centring truncates.
    horizontalScrollBar()->setValue(qRound(scaledTopLeft.x()));
    verticalScrollBar()->setValue(qRound(scaledTopLeft.y()));
}

void OssNgView::zoomAbout(qreal newZoom, const QPointF &viewportPos)
{
    m_fitted.reset();
    rememberZoom(zoom());
    const qreal exact = exactZoom(std::clamp(newZoom, SmallestZoom, LargestZoom));
    const QPointF fixed = toScene(viewportPos);
    setZoomAndTopLeft(exact, fixed * exact - viewportPos);
}

void OssNgView::fitInView(const QRectF &rect, Qt::AspectRatioMode)
{
    const QSizeF size = viewport()->size();
    if (rect.isEmpty() || size.isEmpty())
        return;
    rememberZoom(zoom());
    const qreal wanted = std::min(size.width() / rect.width(), size.height() / rect.height());
    const qreal exact = exactZoom(std::clamp(wanted, SmallestZoom, LargestZoom));
    m_glideTimer.stop();
    setZoomAndTopLeft(exact,
                      rect.center() * exact - QPointF(size.width() / 2.0, size.height() / 2.0));
    m_fitted = rect;
    m_fittedLimit = 0.0;
}

void OssNgView::limitFittedZoom(qreal largest)
{
    if (zoom() <= largest)
        return;
    const std::optional<QRectF> fitted = m_fitted;
    scaleView(largest / zoom());
    m_fitted = fitted;
    m_fittedLimit = largest;
}

void OssNgView::resizeEvent(QResizeEvent *event)
{
    QGraphicsView::resizeEvent(event);
    if (!m_fitted)
        return;
    // What was fitted stays so until the user looks elsewhere; at first a view has no real size.
    const qreal largest = m_fittedLimit > 0.0 ? m_fittedLimit : std::max(1.0, zoom());
    const bool limited = m_fittedLimit > 0.0;
    fitInView(QRectF(*m_fitted), Qt::KeepAspectRatio);
    limitFittedZoom(largest);
    m_fittedLimit = limited ? largest : 0.0;
}

void OssNgView::scaleView(qreal factor)
{
    if (factor <= 0.0)
        return;
    zoomAbout(zoom() * factor, QRectF(viewport()->rect()).center());
    replayMove();
}

void OssNgView::zoomIn(double factor, ViewportAnchor anchor)
{
    if (factor <= 0.0)
        return;
    QPointF fixed;
    if (anchor != NoAnchor)
        fixed = anchor == AnchorUnderMouse ? pointerOnViewport()
                                           : QRectF(viewport()->rect()).center();
    m_fitted.reset();
    // No clamping: the inverse step must lead back.
    rememberZoom(zoom());
    const qreal exact = exactZoom(zoom() * factor);
    const QPointF scenePos = toScene(fixed);
    setZoomAndTopLeft(exact, scenePos * exact - fixed);
}

void OssNgView::zoomOut(double factor, ViewportAnchor anchor)
{
    if (factor > 0.0)
        zoomIn(1.0 / factor, anchor);
}

QPointF OssNgView::pointerOnViewport() const
{
    const QPoint mouse = viewport()->mapFromGlobal(QCursor::pos());
    return viewport()->rect().contains(mouse) ? QPointF(mouse)
                                              : QRectF(viewport()->rect()).center();
}

QPointF OssNgView::zoomAnchor(const QPointF &viewportPos) const
{
    return transformationAnchor() == AnchorUnderMouse ? viewportPos
                                                      : QRectF(viewport()->rect()).center();
}

void OssNgView::zoomByStep(qreal factor)
{
    m_glideTimer.stop();
    zoomAbout(zoom() * factor, zoomAnchor(pointerOnViewport()));
    replayMove();
}

void OssNgView::zoomIn()
{
    zoomByStep(ZoomStep);
}

void OssNgView::zoomOut()
{
    zoomByStep(1.0 / ZoomStep);
}

void OssNgView::scrollBy(const QPointF &pixels)
{
    m_glideTimer.stop();
    m_fitted.reset();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + qRound(pixels.x()));
    verticalScrollBar()->setValue(verticalScrollBar()->value() + qRound(pixels.y()));
}

void OssNgView::panByFraction(qreal dx, qreal dy)
{
    scrollBy({PanStep * dx * viewport()->width(), PanStep * dy * viewport()->height()});
    replayMove();
}

void OssNgView::panLeft()
{
    panByFraction(-1.0, 0.0);
}

void OssNgView::panRight()
{
    panByFraction(1.0, 0.0);
}

void OssNgView::panUp()
{
    panByFraction(0.0, -1.0);
}

void OssNgView::panDown()
{
    panByFraction(0.0, 1.0);
}

void OssNgView::centerViewOn(const QPointF &position, bool animated)
{
    m_fitted.reset();
    const QPointF way = (position - viewportInSceneCoords().center()) * zoom();
    // A glide helps to keep one's bearings; over more than a few screens it only takes time.
    const bool far = std::abs(way.x()) > 3.0 * viewport()->width()
                     || std::abs(way.y()) > 3.0 * viewport()->height();
    if (animated && isVisible() && !far && !(way.manhattanLength() < 2.0)) {
        m_glideTarget = position;
        m_glideTimer.start();
        return;
    }
    const QSizeF size = viewport()->size();
    const QPointF topLeft = position * zoom() - QPointF(size.width() / 2.0, size.height() / 2.0);
    horizontalScrollBar()->setValue(qRound(topLeft.x()));
    verticalScrollBar()->setValue(qRound(topLeft.y()));
}

void OssNgView::wheelEvent(QWheelEvent *event)
{
    event->accept();
    m_glideTimer.stop();
    // Only a touchpad tells pixels: two fingers move the canvas, with Control they zoom.
    const bool touchpad = !event->pixelDelta().isNull();
    const QPointF turn = event->angleDelta();
    const bool zooms = touchpad ? bool(event->modifiers() & Qt::ControlModifier) : turn.y() != 0.0;
    if (zooms) {
        zoomAbout(zoom() * std::pow(ZoomStep, turn.y() / WheelStep), zoomAnchor(event->position()));
    } else {
        scrollBy(touchpad ? -QPointF(event->pixelDelta()) : -turn / 2.0);
    }
    replayMove();
}

bool OssNgView::handlePinch(QEvent *event)
{
    if (event->type() == QEvent::NativeGesture) {
        const auto *gesture = static_cast<QNativeGestureEvent *>(event);
        if (gesture->gestureType() != Qt::ZoomNativeGesture)
            return false;
        zoomAbout(zoom() * (1.0 + gesture->value()), zoomAnchor(gesture->localPos()));
        return true;
    }
    if (event->type() != QEvent::Gesture)
        return false;
    auto *gestures = static_cast<QGestureEvent *>(event);
    const auto *pinch = static_cast<QPinchGesture *>(gestures->gesture(Qt::PinchGesture));
    if (!pinch)
        return false;
    const QPointF centre = viewport()->mapFromGlobal(pinch->centerPoint().toPoint());
    const QPointF last = viewport()->mapFromGlobal(pinch->lastCenterPoint().toPoint());
    if (pinch->changeFlags() & QPinchGesture::ScaleFactorChanged)
        zoomAbout(zoom() * pinch->scaleFactor(), zoomAnchor(centre));
    if (pinch->changeFlags() & QPinchGesture::CenterPointChanged)
        scrollBy(last - centre);
    gestures->accept(Qt::PinchGesture);
    return true;
}
