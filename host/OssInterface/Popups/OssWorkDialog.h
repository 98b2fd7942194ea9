#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QObject>

#include <memory>

class QProgressDialog;

/// Shows work that blocks, as OssStatusManager tells of it, in a dialog with a button that stops it.
/// The dialog keeps the user from editing what is worked on. Without popups nothing is shown.
class OSSINTERFACE_EXPORT OssWorkDialog : public QObject
{
    Q_OBJECT

public:
    OssWorkDialog();
    ~OssWorkDialog() override;

private:
    void begin(const QString &title);
    void showPart(const QString &part);
    void showProgress(int done, int total);
    void end();

    std::unique_ptr<QProgressDialog> m_dialog;
};
