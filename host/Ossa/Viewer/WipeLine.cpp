#include "Ossa/Viewer/WipeLine.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace {

constexpr double knob = 6.0;
constexpr double gap = 8.0;      // between the line and the names beside it
constexpr double padding = 12.0; // of a name within its plate

void drawName(QPainter *painter, const QRectF &plate, const QString &name)
{
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0x14, 0x15, 0x18, 200));
    painter->drawRoundedRect(plate, 4.0, 4.0);
    painter->setPen(QColor(0xe4, 0xe7, 0xec));
    painter->drawText(plate, Qt::AlignCenter, name);
}

} // namespace

void WipeLine::draw(QPainter *painter, const QRectF &view, double x, const QString &keptName,
                    const QString &shownName)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    // Dark and light, so that it is seen on any picture.
    painter->setPen(QPen(QColor(0, 0, 0, 160), 3.0));
    painter->drawLine(QPointF(x, 0.0), QPointF(x, view.height()));
    painter->setPen(QPen(Qt::white, 1.0));
    painter->drawLine(QPointF(x, 0.0), QPointF(x, view.height()));
    painter->setBrush(Qt::white);
    painter->setPen(QPen(QColor(0, 0, 0, 160), 1.0));
    painter->drawEllipse(QPointF(x, view.height() / 2.0), knob, knob);
    const QFontMetricsF metrics(painter->font());
    const double line = metrics.height() + 6.0;
    const QString kept = QCoreApplication::translate("WipeLine", "Kept: %1").arg(keptName);
    const auto name = [&](const QString &whole, double room, bool isLeft) {
        const QString words = metrics.elidedText(whole, Qt::ElideRight, room - 2.0 * gap - padding);
        const double width = metrics.horizontalAdvance(words) + padding;
        if (!words.isEmpty())
            drawName(painter, {isLeft ? x - gap - width : x + gap, 6.0, width, line}, words);
    };
    name(kept, x - view.left(), true);
    name(shownName, view.right() - x, false);
    painter->restore();
}

// --- the handle

WipeHandle::WipeHandle(QWidget *view)
    : QObject(view)
    , m_view(view)
{
    view->installEventFilter(this);
}

void WipeHandle::setShown(bool shown)
{
    if (shown == m_isShown)
        return;
    if (shown)
        m_part = 0.5;
    m_isShown = shown;
    m_isDragged = false;
    if (shown)
        m_hadTracking = m_view->hasMouseTracking();
    m_view->setMouseTracking(shown || m_hadTracking);
    showCursor(false);
}

// Elsewhere the view has its own.
void WipeHandle::showCursor(bool atLine)
{
    if (atLine == m_ownCursor.has_value())
        return;
    if (atLine) {
        m_ownCursor = m_view->cursor();
        m_view->setCursor(Qt::SplitHCursor);
    } else {
        m_view->setCursor(*m_ownCursor);
        m_ownCursor.reset();
    }
}

bool WipeHandle::isAt(const QPointF &place) const
{
    return std::abs(place.x() - m_part * m_view->width()) <= WipeLine::grip;
}

bool WipeHandle::take(const QMouseEvent &event)
{
    const bool isDragged = m_isDragged;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        m_isDragged = event.button() == Qt::LeftButton && isAt(event.localPos());
        return m_isDragged;
    case QEvent::MouseButtonRelease:
        m_isDragged = false;
        if (isDragged)
            Q_EMIT moved();
        return isDragged;
    default:
        break;
    }
    showCursor(m_isDragged || (event.buttons() == Qt::NoButton && isAt(event.localPos())));
    if (m_isDragged) {
        m_part = std::clamp(event.localPos().x() / std::max(1, m_view->width()), WipeLine::least,
                            1.0 - WipeLine::least);
        Q_EMIT moved();
    }
    return m_isDragged;
}

bool WipeHandle::eventFilter(QObject *watched, QEvent *event)
{
    const bool isPointer = event->type() == QEvent::MouseButtonPress
                           || event->type() == QEvent::MouseMove
                           || event->type() == QEvent::MouseButtonRelease;
    if (m_isShown && watched == m_view && isPointer)
        return take(*static_cast<QMouseEvent *>(event));
    return QObject::eventFilter(watched, event);
}
