#pragma once

#include <QAbstractListModel>
#include <QPointer>
#include <QVector>

class QAction;

/// The commands of the action tree that fit a search text, best first; with an empty text those
/// that can be used now, in the order of filing.
class CommandListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        FolderRole = Qt::UserRole, ///< "Node Graph > Create > Filter"
        KeyRole,                   ///< native text of the first key
        PathRole
    };

    explicit CommandListModel(QObject *parent = nullptr);

    void setSearchText(const QString &text);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Null for an invalid index, or when the command has gone since.
    QAction *action(const QModelIndex &index) const;

private:
    struct Row
    {
        QString path;
        QPointer<QAction> action;
        int score;
    };

    QVector<Row> m_rows;
};
