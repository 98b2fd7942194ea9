#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

#include <QDialog>

/// A small frameless dialog that stands where it is moved to. Escape and a click outside reject it.
/// Without a user exec() rejects at once.
class OSSCOREMODULES_EXPORT OssPopupDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OssPopupDialog(QWidget *parent = nullptr);

public Q_SLOTS:
    int exec() override;

protected:
    /// Moves the dialog so that all of it is on its screen.
    void showEvent(QShowEvent *event) override;
};
