#pragma once

#include <QAbstractListModel>

/// The steps of the undo history from the document as it was opened to the latest; those that were
/// undone are dim. Without a project there are none.
class HistoryModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit HistoryModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// Row of the last step that is done; invalid without a project.
    QModelIndex current() const;

Q_SIGNALS:
    void currentMoved();

private:
    void refresh();

    int m_rows = 0;
};
