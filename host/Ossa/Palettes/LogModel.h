#pragma once

#include "OssCore/Program/OssDebug.h"

#include <QAbstractListModel>
#include <QTimer>
#include <QVector>

/// The debug log as a list of lines. Lines may arrive from any thread and by the thousand: they
/// are entered in batches. The oldest go when there are more than OssDebugLog::Capacity.
class LogModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        CategoryRole = Qt::UserRole,
        FullTextRole ///< with source and line number, as it is copied
    };

    explicit LogModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    /// Empties the log itself, too.
    void clear();

private:
    void enterPending();

    QVector<OssDebugLog::Line> m_lines;
    QVector<OssDebugLog::Line> m_pending;
    QTimer m_timer;
};
