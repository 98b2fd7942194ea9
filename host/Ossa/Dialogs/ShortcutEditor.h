#pragma once

#include <QDialog>
#include <QStringList>

class KeyRecorder;
class QLabel;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QStandardItem;
class QStandardItemModel;
class QTreeView;

/// The keys of all commands, by group: found by name or key, changed by pressing the new key. A key
/// that another command has is named before it is taken. Changes act and are kept at once.
class ShortcutEditor : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutEditor(QWidget *parent = nullptr);

private:
    void createTree();
    QLayout *createEditRow();
    void fillTree();
    QStandardItem *groupItem(const QString &group);
    void showKeys(const QString &path);
    QString currentPath() const;
    void refresh();
    void assign();
    void removeKeys();
    void resetCurrent();
    void resetAll();

    QStandardItemModel *m_model;
    QSortFilterProxyModel *m_filter;
    QLineEdit *m_search;
    QTreeView *m_tree;
    QLabel *m_command;
    KeyRecorder *m_recorder;
    QPushButton *m_assign;
    QPushButton *m_remove;
    QPushButton *m_reset;
    QLabel *m_warning;
    QStringList m_conflicts;
};
