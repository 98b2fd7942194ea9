#include "Ossa/Palettes/HistoryModel.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QGuiApplication>
#include <QPalette>

namespace {

/// The step's title, with the one node that it changed where the title does not name it.
QString textOf(int step)
{
    const auto *history = OssUndoManager::instance();
    const QString title = history->text(step);
    const OssSnBaseNode *changed = nullptr;
    const QList<QObject *> subjects = history->subjects(step);
    for (const QObject *subject : subjects) {
        const auto *node = qobject_cast<const OssSnBaseNode *>(subject);
        if (node && changed && node != changed)
            return title;
        changed = node ? node : changed;
    }
    return !changed || title.contains(changed->name())
               ? title
               : HistoryModel::tr("%1 (%2)").arg(title, changed->name());
}

} // namespace

HistoryModel::HistoryModel(QObject *parent)
    : QAbstractListModel(parent)
{
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &HistoryModel::refresh);
    const OssProjectManager *projects = OssProjectManager::instance();
    connect(projects, &OssProjectManager::projectClosed, this, &HistoryModel::refresh);
    connect(projects, &OssProjectManager::projectOpenCompleted, this, &HistoryModel::refresh);
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
        return index.row() == 0 ? tr("As Opened") : textOf(index.row() - 1);
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
    const int steps = OssUndoManager::instance()->count();
    const int rows = OssProjectManager::instance()->currentProject() ? steps + 1 : 0;
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
    if (m_rows > 0)
        Q_EMIT dataChanged(index(0), index(m_rows - 1));
    Q_EMIT currentMoved();
}
