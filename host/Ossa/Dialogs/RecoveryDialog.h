#pragma once

#include "OssModel/Project/OssRecovery.h"

#include <QDialog>

class QPushButton;
class QTreeWidget;

/// Shows the copies that dead sessions left. Accepted: one is to be restored. Discarding is done at
/// once, after a question; whatever else happens to the dialog keeps the copies for later.
class RecoveryDialog : public QDialog
{
    Q_OBJECT

public:
    explicit RecoveryDialog(QVector<OssRecovery::Entry> entries, QWidget *parent = nullptr);

    /// The one to restore, after accept().
    OssRecovery::Entry chosen() const;

    /// A moment as users read it, in their time zone.
    static QString timeText(const QDateTime &time);

private:
    QTreeWidget *createList();
    QWidget *createButtons();
    void fill();
    void discardChosen();
    int row() const;

    QVector<OssRecovery::Entry> m_entries;
    QTreeWidget *m_list = nullptr;
};
