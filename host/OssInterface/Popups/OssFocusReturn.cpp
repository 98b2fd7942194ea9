#include "OssInterface/Popups/OssFocusReturn.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QMenu>
#include <QMenuBar>
#include <QWindow>

namespace {

bool isMenu(const QWidget *widget)
{
    return qobject_cast<const QMenu *>(widget) || qobject_cast<const QMenuBar *>(widget);
}

void give(QWidget *widget)
{
    if (QGuiApplication::focusWindow() != widget->window()->windowHandle())
        widget->window()->activateWindow();
    widget->setFocus(Qt::PopupFocusReason);
}

/// A part of a window may have a native window of its own, to which a menu of it would belong otherwise.
void attach(const QMenu *menu)
{
    QWindow *handle = menu->windowHandle();
    const QWidget *owner = menu->parentWidget() ? menu->parentWidget()->window()
                                                : QApplication::activeWindow();
    if (handle && !handle->transientParent() && owner && owner != menu && owner->windowHandle())
        handle->setTransientParent(owner->windowHandle());
}

} // namespace

OssFocusReturn::OssFocusReturn()
{
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &OssFocusReturn::onFocusChanged);
}

bool OssFocusReturn::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Show && event->type() != QEvent::Hide)
        return false;
    const bool shown = event->type() == QEvent::Show;
    if (auto *dialog = qobject_cast<QDialog *>(watched); dialog && dialog->isWindow()) {
        if (shown)
            remember(dialog);
        else
            giveBack(dialog);
    } else if (const auto *menu = qobject_cast<QMenu *>(watched); menu && shown) {
        attach(menu);
    } else if (menu) {
        QMetaObject::invokeMethod(this, &OssFocusReturn::mend, Qt::QueuedConnection);
    }
    return false;
}

void OssFocusReturn::onFocusChanged(const QWidget *, QWidget *now)
{
    if (now && !isMenu(now) && !qobject_cast<const QDialog *>(now->window())
        && now->window()->windowType() != Qt::Popup)
        m_last = now;
}

void OssFocusReturn::remember(QWidget *dialog)
{
    QWidget *focus = QApplication::focusWidget();
    const bool isElsewhere = focus && !isMenu(focus) && focus->window() != dialog;
    if (!m_before.contains(dialog))
        connect(dialog, &QObject::destroyed, this,
                [this](const QObject *gone) { m_before.remove(gone); });
    m_before.insert(dialog, isElsewhere ? focus : m_last.data());
}

void OssFocusReturn::giveBack(const QWidget *dialog)
{
    QWidget *before = m_before.value(dialog);
    const QWidget *focus = QApplication::focusWidget();
    const bool hadIt = !focus || focus->window() == dialog || dialog->isModal();
    if (before && before->isVisible() && hadIt)
        give(before);
    QMetaObject::invokeMethod(this, &OssFocusReturn::mend, Qt::QueuedConnection);
}

void OssFocusReturn::mend()
{
    QWidget *focus = QApplication::focusWidget();
    if ((focus && focus->isVisible()) || QApplication::activePopupWidget()
        || QApplication::activeModalWidget())
        return;
    if (focus)
        focus->clearFocus();
    if (m_last && m_last->isVisible())
        give(m_last);
}
