#pragma once

#include "OssInterface/OssInterface_export.h"

class QWidget;

/// What the whole program shares about how it was started. GUI thread.
class OSSINTERFACE_EXPORT OssApplication
{
public:
    /// False without a user: in headless and scripted runs. True at first.
    static bool popupsAllowed();
    /// When not allowed, nothing waits for a user: OssMessageBox, OssFileDialog and OssPopupDialog
    /// answer at once, and any other dialog or menu that opens is rejected, its text logged.
    static void setPopupsAllowed(bool allowed);

    /// What is typed in the field that has the focus counts from now on, as if it were left. Before a
    /// command that saves the document, gives it up or works on its values.
    static void takeTyped();

    /// Parent for dialogs that belong to no other widget; null in headless runs.
    static QWidget *mainWindow();
    /// Not owned.
    static void setMainWindow(QWidget *window);
};
