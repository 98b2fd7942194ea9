#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QMessageBox>
#include <QString>

class QWidget;

/// Message boxes that never wait for a user who is not there: when popups are not allowed the text
/// goes to the log and to stderr and the answer is the safe one at once. GUI thread.
class OSSINTERFACE_EXPORT OssMessageBox
{
public:
    using Button = QMessageBox::StandardButton;
    using Buttons = QMessageBox::StandardButtons;

    /// A null parent means the main window. The safe answer is Cancel, No, Close or Ok, the first
    /// of these that is among the buttons; Escape gives it as well.
    static Button warning(QWidget *parent, const QString &title, const QString &text,
                          Buttons buttons = QMessageBox::Ok);
    static Button information(QWidget *parent, const QString &title, const QString &text,
                              Buttons buttons = QMessageBox::Ok);
    static Button question(QWidget *parent, const QString &title, const QString &text,
                           Buttons buttons = QMessageBox::Yes | QMessageBox::No,
                           Button defaultButton = QMessageBox::NoButton);

    /// A question with a check box such as "Don't show again". `checked` is its state before and
    /// after; without a user it stays as it is.
    static Button question(QWidget *parent, const QString &title, const QString &text,
                           Buttons buttons, const QString &checkBoxText, bool *checked);

    static Button safeAnswer(Buttons buttons);

    /// Writes a box's text to the log and to stderr, in one line each.
    static void report(const QString &title, const QString &text);
};
