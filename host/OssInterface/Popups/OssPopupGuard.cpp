#include "OssInterface/Popups/OssPopupGuard.h"

#include "OssInterface/Popups/OssMessageBox.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDialog>
#include <QEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>

namespace {

QString textOf(const QDialog *dialog)
{
    if (const auto *box = qobject_cast<const QMessageBox *>(dialog))
        return box->text();
    const auto *label = dialog->findChild<QLabel *>();
    return label ? label->text() : QString();
}

void answerSafely(QDialog *dialog)
{
    // A rejected message box would answer with no button at all.
    if (auto *box = qobject_cast<QMessageBox *>(dialog)) {
        if (QAbstractButton *safe = box->button(OssMessageBox::safeAnswer(box->standardButtons())))
            return safe->click();
    }
    dialog->reject();
}

} // namespace

OssPopupGuard::OssPopupGuard(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool OssPopupGuard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Show)
        return false;
    // Queued: the box first enters its own event loop, which this then ends.
    if (auto *dialog = qobject_cast<QDialog *>(watched)) {
        if (dialog->isModal()) {
            OssMessageBox::report(dialog->windowTitle(), textOf(dialog));
            QMetaObject::invokeMethod(
                dialog, [dialog] { answerSafely(dialog); }, Qt::QueuedConnection);
        }
    } else if (auto *menu = qobject_cast<QMenu *>(watched)) {
        QMetaObject::invokeMethod(menu, &QMenu::close, Qt::QueuedConnection);
    }
    return false;
}
