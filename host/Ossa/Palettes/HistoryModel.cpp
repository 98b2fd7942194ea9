#include "Ossa/Palettes/HistoryModel.h"

#include "OssCore/Undo/OssUndoManager.h"

#include <QGuiApplication>
#include <QPalette>

HistoryModel::HistoryModel(QObject *parent)
    : QAbstractListModel(parent)
{
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &HistoryModel::refresh);
    refresh();
}

int HistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const
{
    const auto *history = OssUndoManager::instance();
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return index.row() == 0 ? tr("As Opened") : history->text(index.row() - 1);
    if (role == Qt::ForegroundRole && index.row() > history->index())
        return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
    return {};
}

QModelIndex HistoryModel::current() const
{
    return index(OssUndoManager::instance()->index());
}

void HistoryModel::refresh()
{
    const int rows = OssUndoManager::instance()->count() + 1;
    if (rows > m_rows) {
        beginInsertRows({}, m_rows, rows - 1);
        m_rows = rows;
        endInsertRows();
    } else if (rows < m_rows) {
        beginRemoveRows({}, rows, m_rows - 1);
        m_rows = rows;
        endRemoveRows();
    }
    // A step may have joined the last one, and what follows the current one is dim.
    Q_EMIT dataChanged(index(0), index(m_rows - 1));
    Q_EMIT currentMoved();
}
