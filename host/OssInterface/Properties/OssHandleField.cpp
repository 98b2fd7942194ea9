#include "OssInterface/Properties/OssHandleField.h"

#include <QKeyEvent>

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
