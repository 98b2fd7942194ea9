#include "OssInterface/Widgets/OssSearchKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

bool OssSearchKeys::passOn(QEvent *event, QWidget *list)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        QApplication::sendEvent(list, event);
        return true;
    default:
        return false;
    }
}
