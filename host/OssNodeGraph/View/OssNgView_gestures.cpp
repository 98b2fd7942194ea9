#include "OssNodeGraph/View/OssNgView.h"

#include "OssNodeGraph/Gestures/OssNgGesture.h"
#include "OssNodeGraph/View/OssNgGlide.h"

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include <algorithm>

// The gesture in hand, and moving the view under it.

namespace {

constexpr qreal BorderZone = 20.0;      ///< pixels inside the viewport
constexpr qreal BorderFullSpeed = 80.0; ///< pixels from the zone's inner side
constexpr qreal BorderStep = 26.0;      ///< pixels per step at full speed

/// -1 to 1: how fast the view follows a pointer beyond the inner side of the border zone.
qreal borderSpeed(qreal position, qreal size)
{
    if (position < BorderZone)
        return -std::min(1.0, (BorderZone - position) / BorderFullSpeed);
    if (position > size - BorderZone)
        return std::min(1.0, (position - size + BorderZone) / BorderFullSpeed);
    return 0.0;
}

} // namespace

OssNgGestureHost::ShakeRule OssNgView::shakeRule() const
{
    return {m_shakeToExtractEnabled, m_shakeToExtractShakes, m_shakeToExtractTime};
}

void OssNgView::announceShake()
{
    Q_EMIT shakeToExtractTriggered();
}

void OssNgView::announceLooseWire(OssNgNode *node, const QString &port, bool fromOutput,
                                  const QPointF &scenePos)
{
    Q_EMIT wireDroppedOnCanvas(node, port, fromOutput, scenePos);
}

void OssNgView::startGesture(std::unique_ptr<OssNgGesture> gesture)
{
    m_glideTimer.stop();
    m_nodeGlide->stop();
    m_borderPanArmed = false;
    m_gesture = std::move(gesture);
    m_interactionState = m_gesture->state();
    m_gesture->enter();
}

void OssNgView::endGesture()
{
    m_borderPanTimer.stop();
    m_navigation.reset();
    m_interactionState = Idle;
    m_gesture.reset();
    disconnect(m_buttonWatch);
    viewport()->setCursor(m_cursorTrackingMode == SeverTracking ? Qt::CrossCursor
                                                                : Qt::ArrowCursor);
}

void OssNgView::dropDeadGesture()
{
    // Without a scene there is nothing left to put back.
    if (m_gesture && (!scene() || !m_gesture->isAlive()))
        endGesture();
}

bool OssNgView::cancelGesture()
{
    const bool had = m_gesture != nullptr;
    dropDeadGesture();
    if (m_gesture) {
        m_gesture->cancel();
        endGesture();
    }
    return had;
}

void OssNgView::interruptGesture()
{
    dropDeadGesture();
    if (!m_gesture || m_handling > 0)
        return;
    m_interrupted = m_gesture->button();
    if (!m_gesture->finishesWhenInterrupted()) {
        cancelGesture();
        return;
    }
    const QScopedValueRollback<int> handling(m_handling, m_handling + 1);
    QMouseEvent event(QEvent::MouseButtonRelease, m_pointer,
                      viewport()->mapToGlobal(m_pointer.toPoint()), m_interrupted, Qt::NoButton,
                      m_pointerModifiers);
    mouseReleaseEvent(&event);
}

void OssNgView::watchButton()
{
    // Of events that only a program makes the application knows nothing.
    if (QGuiApplication::mouseButtons() & m_gesture->button())
        m_buttonWatch = connect(QAbstractEventDispatcher::instance(),
                                &QAbstractEventDispatcher::awake, this,
                                &OssNgView::endUnheldGesture);
}

/// The release does not come where a dialog came in between, or hands were kept off while something was
/// computed: what the application knows of the buttons is always true.
void OssNgView::endUnheldGesture()
{
    if (m_gesture && m_isHeld && !(QGuiApplication::mouseButtons() & m_gesture->button()))
        interruptGesture();
}

/// True for what belongs to a gesture that is over.
bool OssNgView::handlePointer(const QMouseEvent *event)
{
    // The release went to somebody else.
    if (event->type() == QEvent::MouseMove && m_isHeld && m_gesture
        && !(event->buttons() & m_gesture->button())) {
        interruptGesture();
        m_interrupted = Qt::NoButton;
    }
    const bool press = event->type() == QEvent::MouseButtonPress
                       || event->type() == QEvent::MouseButtonDblClick;
    if (press) {
        m_rightPressTaken = event->button() == Qt::RightButton && navigationFor(event);
        if (event->button() == Qt::RightButton && !m_rightPressTaken)
            interruptGesture();
    }
    if (event->button() == Qt::NoButton || event->button() != m_interrupted)
        return false;
    m_interrupted = Qt::NoButton;
    return !press;
}

void OssNgView::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    if (!scene())
        return;
    m_fitted.reset();
    dropDeadGesture();
    m_pointer = event->localPos();
    if (m_gesture) {
        // Another button does not end the gesture; with that of navigation the view moves under it.
        const bool busy = m_navigation || m_interactionState == Panning
                          || m_interactionState == Zooming;
        if (!busy && (m_navigation = navigationFor(event)))
            m_navigation->enter();
        return;
    }
    // While another button is held that was pressed elsewhere, or came with a menu, Qt brings the
    // release of this one to whatever is under the pointer then.
    const bool alone = !(event->buttons() & ~event->button());
    if (auto gesture = alone ? gestureFor(event) : nullptr) {
        startGesture(std::move(gesture));
        m_isHeld = true;
        watchButton();
    } else if (event->button() == Qt::RightButton) {
        selectForMenu(toScene(event->localPos()));
        event->ignore();
    }
}

void OssNgView::mouseMoveEvent(QMouseEvent *event)
{
    event->accept();
    if (!scene())
        return;
    dropDeadGesture();
    if (!m_gesture) {
        updateHover(event->localPos());
        return;
    }
    m_pointer = event->localPos();
    m_pointerButtons = event->buttons();
    m_pointerModifiers = event->modifiers();
    if (m_navigation)
        m_navigation->move(event);
    else
        updateBorderPan();
    m_gesture->move(event);
}

void OssNgView::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
    if (!scene())
        return;
    if (!m_gesture) {
        // After a double-click an item may hold the mouse in Qt's own way.
        QGraphicsView::mouseReleaseEvent(event);
        return;
    }
    if (m_navigation && event->button() == m_navigation->button()) {
        m_navigation->release(event);
        m_navigation.reset();
        return;
    }
    if (event->button() != m_gesture->button())
        return;
    // Listeners of what the release announces may reach this view: the gesture is no longer its.
    const std::unique_ptr<OssNgGesture> gesture = std::move(m_gesture);
    const bool alive = gesture->isAlive();
    if (alive)
        gesture->release(event);
    endGesture();
    updateHover(event->localPos());
}

void OssNgView::replayMove()
{
    dropDeadGesture();
    if (!m_gesture)
        return;
    const QScopedValueRollback<int> handling(m_handling, m_handling + 1);
    QMouseEvent event(QEvent::MouseMove, m_pointer, Qt::NoButton, m_pointerButtons,
                      m_pointerModifiers);
    m_gesture->move(&event);
}

// --- going on at the border

void OssNgView::updateBorderPan()
{
    const QSizeF size = viewport()->size();
    const bool inside = borderSpeed(m_pointer.x(), size.width()) == 0.0
                        && borderSpeed(m_pointer.y(), size.height()) == 0.0;
    if (inside || !m_gesture->pansAtBorders()) {
        m_borderPanTimer.stop();
        m_borderPanArmed = m_borderPanArmed || inside;
        return;
    }
    if (!viewport()->rect().contains(m_pointer.toPoint()))
        m_borderPanArmed = true;
    if (m_borderPanArmed && !m_borderPanTimer.isActive())
        m_borderPanTimer.start();
}

void OssNgView::borderPanStep()
{
    dropDeadGesture();
    if (!m_gesture || m_navigation) {
        m_borderPanTimer.stop();
        return;
    }
    const QSizeF size = viewport()->size();
    scrollBy(
        QPointF(borderSpeed(m_pointer.x(), size.width()), borderSpeed(m_pointer.y(), size.height()))
        * BorderStep);
    replayMove();
}
