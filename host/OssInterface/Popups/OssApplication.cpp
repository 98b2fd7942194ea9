#include "OssInterface/Popups/OssApplication.h"

#include "OssInterface/Popups/OssPopupGuard.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace {

struct State
{
    bool popupsAllowed = true;
    QPointer<QWidget> mainWindow;
    QPointer<OssPopupGuard> guard; ///< child of the application object
};

State &state()
{
    static State state;
    return state;
}

} // namespace

bool OssApplication::popupsAllowed()
{
    return state().popupsAllowed;
}

void OssApplication::setPopupsAllowed(bool allowed)
{
    state().popupsAllowed = allowed;
    if (allowed)
        delete state().guard;
    else if (!state().guard && qApp)
        state().guard = new OssPopupGuard(qApp);
}

void OssApplication::takeTyped()
{
    const QPointer<QWidget> field = QApplication::focusWidget();
    if (!field || !field->testAttribute(Qt::WA_InputMethodEnabled))
        return;
    const QPointer<QWidget> around = field->parentWidget();
    field->clearFocus();
    // A field that was open for typing alone has gone: what it stands in goes on with the keys.
    QWidget *next = field && field->isVisible() ? field.data() : around.data();
    while (next && (next->focusPolicy() == Qt::NoFocus || !next->isVisible()))
        next = next->parentWidget();
    if (next)
        next->setFocus(Qt::OtherFocusReason);
}

QWidget *OssApplication::mainWindow()
{
    return state().mainWindow;
}

void OssApplication::setMainWindow(QWidget *window)
{
    state().mainWindow = window;
}
