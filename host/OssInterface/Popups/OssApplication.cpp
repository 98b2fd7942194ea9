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

QWidget *OssApplication::mainWindow()
{
    return state().mainWindow;
}

void OssApplication::setMainWindow(QWidget *window)
{
    state().mainWindow = window;
}
