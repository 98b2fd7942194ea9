#pragma once

#include "OssCore/Program/OssDebug.h"

#include <QSortFilterProxyModel>

/// Shows the lines of a LogModel of the wanted categories that contain a text.
class LogFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit LogFilter(QObject *parent = nullptr);

    void setCategoryShown(OssDebugLog::Category category, bool shown);
    /// Anywhere in the line, source included; letter case means nothing.
    void setText(const QString &text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    bool m_shown[3] = {true, true, true};
    QString m_text;
};
