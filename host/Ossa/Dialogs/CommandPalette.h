#pragma once

#include "OssInterface/Popups/OssPopupDialog.h"

class CommandListModel;
class QLineEdit;
class QListView;

/// Finds any command by a few letters of its name: arrows choose, Enter runs it, Escape leaves.
/// The command runs after the dialog has closed and the focus is back where it was, so that it
/// acts on what the user was working in.
class CommandPalette : public OssPopupDialog
{
    Q_OBJECT

public:
    explicit CommandPalette(QWidget *parent = nullptr);

    void accept() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void search(const QString &text);

    CommandListModel *m_model;
    QLineEdit *m_search;
    QListView *m_list;
};
