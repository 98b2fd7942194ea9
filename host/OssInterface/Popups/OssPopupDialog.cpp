#include "OssInterface/Popups/OssPopupDialog.h"

#include "OssInterface/Popups/OssApplication.h"

#include <QEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QPointer>
#include <QScreen>

OssPopupDialog::OssPopupDialog(QWidget *parent)
    : QDialog(parent, Qt::Popup | Qt::FramelessWindowHint)
{
}

int OssPopupDialog::exec()
{
    if (!OssApplication::popupsAllowed())
        return Rejected;
    // Not modal, as QDialog::exec() would have it: keys that the window system gives to the window behind
    // while this one comes up would be lost. What else is done there a popup keeps away.
    QEventLoop loop;
    connect(this, &OssPopupDialog::left, &loop, &QEventLoop::quit);
    connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
    const QPointer<OssPopupDialog> self(this);
    setResult(Rejected);
    show();
    loop.exec(QEventLoop::DialogExec);
    return self ? result() : int(Rejected);
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

void OssPopupDialog::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    Q_EMIT left();
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
