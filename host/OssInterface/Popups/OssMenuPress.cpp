#include "OssInterface/Popups/OssMenuPress.h"

#include <QApplication>
#include <QMenu>
#include <QMouseEvent>

OssMenuPress::OssMenuPress()
{
    qApp->installEventFilter(this);
}

bool OssMenuPress::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool press = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick;
    if (!press && type != QEvent::Show && type != QEvent::MouseMove
        && type != QEvent::MouseButtonRelease)
        return false;
    const auto *menu = qobject_cast<QMenu *>(watched);
    if (!menu)
        return false;
    if (type == QEvent::Show) {
        // A submenu comes while another one is there.
        if (QApplication::activePopupWidget() && QApplication::activePopupWidget() != menu)
            return false;
        m_held = QGuiApplication::mouseButtons() & ~Qt::MouseButtons(Qt::LeftButton);
        m_isInside = false;
        m_hasMoved = false;
        m_since.start();
        return false;
    }
    const auto *mouse = static_cast<QMouseEvent *>(event);
    if (press) {
        m_held = Qt::NoButton;
    } else if (type == QEvent::MouseMove) {
        follow(*mouse, menu->rect());
    } else if (m_held & mouse->button()) {
        m_held = Qt::NoButton;
        return !m_hasMoved || m_since.elapsed() < QApplication::doubleClickInterval();
    }
    return false;
}

void OssMenuPress::follow(const QMouseEvent &move, const QRect &menu)
{
    if (!m_held || !menu.contains(move.pos()))
        return;
    if (!m_isInside)
        m_entered = move.globalPos();
    m_isInside = true;
    m_hasMoved = m_hasMoved
                 || (move.globalPos() - m_entered).manhattanLength()
                        >= QApplication::startDragDistance();
}
