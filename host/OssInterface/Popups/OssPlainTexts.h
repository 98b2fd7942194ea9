#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QObject>
#include <QString>

class QHelpEvent;
class QWidget;

/// Names that look like markup, "<b>x</b>" or "a < b", are shown as they are: labels that leave their
/// format open, those of Qt's own dialogs too, show plain text, and so do tool tips of widgets, rows,
/// menus and tabs, of which long lines are broken. What is meant as markup says so: labels by their
/// format, tips and boxes by "<html>" and "</html>" around the whole. GUI thread.
class OSSINTERFACE_EXPORT OssPlainTexts : public QObject
{
    Q_OBJECT

public:
    OssPlainTexts();

    static bool isMarkup(const QString &text);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static bool showPlainTip(QWidget *widget, const QHelpEvent &help);
};
