#include "OssInterface/Popups/OssPopupDialog.h"

#include "OssInterface/Popups/OssApplication.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>

OssPopupDialog::OssPopupDialog(QWidget *parent)
    : QDialog(parent, Qt::Popup | Qt::FramelessWindowHint)
{
}

int OssPopupDialog::exec()
{
    return OssApplication::popupsAllowed() ? QDialog::exec() : int(Rejected);
}

bool OssPopupDialog::event(QEvent *event)
{
    // To the shortcuts of its parent a popup is a part of it, so Return would be theirs.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QDialog::event(event);
}

void OssPopupDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    const QScreen *screen = QGuiApplication::screenAt(pos());
    if (!screen)
        return;
    const QRect room = screen->availableGeometry();
    move(qBound(room.left(), x(), qMax(room.left(), room.right() - width() + 1)),
         qBound(room.top(), y(), qMax(room.top(), room.bottom() - height() + 1)));
}
