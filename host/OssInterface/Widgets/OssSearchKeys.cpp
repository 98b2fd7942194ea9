#include "OssInterface/Widgets/OssSearchKeys.h"

#include <QAbstractItemView>
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

bool OssSearchKeys::passOn(QEvent *event, QAbstractItemView *list,
                           const std::function<void(const QModelIndex &row)> &choose)
{
    if (passOn(event, list))
        return true;
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter)
        return false;
    if (list->currentIndex().isValid())
        choose(list->currentIndex());
    return true;
}
