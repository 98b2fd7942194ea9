#include "Ossa/Dialogs/CommandListModel.h"

#include "OssCore/Values/OssFuzzyMatch.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Actions/OssShortcutManager.h"

#include <QAction>

#include <algorithm>

namespace {

QString folderText(const QString &path)
{
    const QString folder = OssActionTreeManager::folderOf(path);
    QStringList parts = folder.split(QLatin1Char('/'), Qt::SkipEmptyParts).mid(2);
    parts.prepend(OssShortcutManager::instance()->groupOf(path));
    return parts.join(QStringLiteral(" \u203a "));
}

// Names count more than the folder they are in.
int scoreOf(const QString &text, const QString &path, const QString &name)
{
    const int byName = OssFuzzyMatch::score(text, name);
    if (byName >= 0)
        return byName + 1000;
    return OssFuzzyMatch::score(text, folderText(path) + QLatin1Char(' ') + name);
}

} // namespace

CommandListModel::CommandListModel(QObject *parent)
    : QAbstractListModel(parent)
{
    setSearchText(QString());
}

void CommandListModel::setSearchText(const QString &text)
{
    QVector<Row> rows;
    const auto *tree = OssActionTreeManager::instance();
    const QStringList paths = tree->paths();
    for (const QString &path : paths) {
        QAction *action = tree->findAction(path);
        const int score = scoreOf(text, path, OssMenu::asSeen(action->text()));
        if (score >= 0)
            rows.append({path, action, score + (action->isEnabled() ? 1 : 0)});
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row &a, const Row &b) { return a.score > b.score; });
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int CommandListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant CommandListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !action(index))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return OssMenu::asSeen(row.action->text());
    case Qt::AccessibleTextRole:
        return QStringList{OssMenu::asSeen(row.action->text()), folderText(row.path),
                           row.action->shortcut().toString(QKeySequence::NativeText)}
            .join(QStringLiteral(", "));
    case Qt::ToolTipRole:
        return row.action->statusTip();
    case FolderRole:
        return folderText(row.path);
    case KeyRole:
        return row.action->shortcut().toString(QKeySequence::NativeText);
    case PathRole:
        return row.path;
    default:
        return {};
    }
}

Qt::ItemFlags CommandListModel::flags(const QModelIndex &index) const
{
    const QAction *command = action(index);
    if (!command)
        return Qt::NoItemFlags;
    return command->isEnabled() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::ItemIsSelectable;
}

QAction *CommandListModel::action(const QModelIndex &index) const
{
    return index.isValid() && index.row() < m_rows.size() ? m_rows.at(index.row()).action.data()
                                                          : nullptr;
}
