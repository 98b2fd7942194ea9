#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QDialog>

/// A small frameless dialog that stands where it is moved to. Escape and a click outside reject it.
/// Its keys are its own, also where commands of what it stands on use them. Without a user exec()
/// rejects at once.
class OSSINTERFACE_EXPORT OssPopupDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OssPopupDialog(QWidget *parent = nullptr);

public Q_SLOTS:
    int exec() override;

Q_SIGNALS:
    void left();

protected:
    void hideEvent(QHideEvent *event) override;
    bool event(QEvent *event) override;
    /// Moves the dialog so that all of it is on its screen.
    void showEvent(QShowEvent *event) override;
};
