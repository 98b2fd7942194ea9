#include "OssInterface/Properties/OssHandleField.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

constexpr double Handle = 5.0; // half of what is drawn of one

/// In a corner of the picture, the upper right one if it may be.
QRectF clearOf(const QVector<QPointF> &handles, const QSizeF &size, const QRectF &picture)
{
    const QRectF inside = picture.adjusted(3.0, 3.0, -3.0, -3.0);
    const QPointF down(0.0, inside.height() - size.height());
    const QPointF right(inside.width() - size.width(), 0.0);
    for (const QPointF &corner : {right, QPointF(), right + down, down}) {
        const QRectF box(inside.topLeft() + corner, size);
        const QRectF kept = box.adjusted(-Handle, -Handle, Handle, Handle);
        if (std::none_of(handles.cbegin(), handles.cend(),
                         [&kept](const QPointF &handle) { return kept.contains(handle); }))
            return box;
    }
    return {inside.topLeft() + right, size};
}

} // namespace

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

void OssHandleField::paintMixed(QPainter *painter, const QRectF &picture,
                                const QVector<QPointF> &handles) const
{
    if (!m_mixed)
        return;
    const QString text = tr("mixed");
    const QSizeF size(fontMetrics().horizontalAdvance(text) + 8.0, fontMetrics().height() + 2.0);
    const QRectF box = clearOf(handles, size, picture);
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
