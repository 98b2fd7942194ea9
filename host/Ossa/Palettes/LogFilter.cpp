#include "Ossa/Palettes/LogFilter.h"

#include "Ossa/Palettes/LogModel.h"

LogFilter::LogFilter(QObject *parent)
    : QSortFilterProxyModel(parent)
{
}

void LogFilter::setCategoryShown(OssDebugLog::Category category, bool shown)
{
    m_shown[category] = shown;
    invalidateFilter();
}

void LogFilter::setText(const QString &text)
{
    m_text = text;
    invalidateFilter();
}

bool LogFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    const QModelIndex index = sourceModel()->index(row, 0, parent);
    if (!m_shown[index.data(LogModel::CategoryRole).toInt()])
        return false;
    return m_text.isEmpty()
           || index.data(LogModel::FullTextRole).toString().contains(m_text, Qt::CaseInsensitive);
}
