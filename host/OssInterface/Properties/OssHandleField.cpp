#include "OssInterface/Properties/OssHandleField.h"

#include <QKeyEvent>
#include <QPainter>

#include <utility>

OssHandleField::OssHandleField(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

bool OssHandleField::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->modifiers() == Qt::NoModifier
            && (key->key() == Qt::Key_Delete || key->key() == Qt::Key_Space
                || key->key() == Qt::Key_Plus)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void OssHandleField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT left();
    else
        QWidget::keyPressEvent(event);
}

void OssHandleField::setMixed(bool mixed)
{
    m_mixed = mixed;
    update();
}

void OssHandleField::paintMixed(QPainter *painter, const QRectF &picture) const
{
    if (!m_mixed)
        return;
    const QString text = tr("mixed");
    QRectF box(0.0, 0.0, fontMetrics().horizontalAdvance(text) + 8.0, fontMetrics().height() + 2.0);
    box.moveTopRight(picture.topRight() + QPointF(-3.0, 3.0));
    painter->setPen(Qt::NoPen);
    painter->setBrush(palette().color(QPalette::Base));
    painter->drawRoundedRect(box, 3.0, 3.0);
    painter->setPen(palette().color(QPalette::PlaceholderText));
    painter->drawText(box, Qt::AlignCenter, text);
}

bool OssHandleField::isDragging()
{
    if (m_hasHandle && !m_dragging) {
        m_dragging = true;
        Q_EMIT dragBegun();
    }
    return m_dragging;
}

bool OssHandleField::endDrag()
{
    m_hasHandle = false;
    return std::exchange(m_dragging, false);
}
