#include "OssInterface/Actions/OssActionTreeManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Actions/OssCommandTable.h"

#include <QAction>
#include <QSet>

#include <algorithm>

namespace {

constexpr const char *NameProperty = "ossCommandName";

} // namespace

QString OssActionTreeManager::normalizedPath(const QString &path)
{
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    return QLatin1Char('/') + parts.join(QLatin1Char('/'));
}

QString OssActionTreeManager::folderOf(const QString &path)
{
    const QString normalized = normalizedPath(path);
    return normalizedPath(normalized.left(normalized.lastIndexOf(QLatin1Char('/'))));
}

QString OssActionTreeManager::nameOf(const QString &path)
{
    const QString normalized = normalizedPath(path);
    return normalized.mid(normalized.lastIndexOf(QLatin1Char('/')) + 1);
}

bool OssActionTreeManager::hasAction(const QString &fullPath) const
{
    return m_countByFoldedPath.contains(normalizedPath(fullPath).toCaseFolded());
}

QAction *OssActionTreeManager::findAction(const QString &fullPath) const
{
    const QString path = normalizedPath(fullPath);
    const int count = m_byPath.count(path);
    if (count <= 1)
        return m_byPath.value(path);
    const auto first = std::find_if(m_entries.cbegin(), m_entries.cend(),
                                    [&path](const Entry &entry) { return entry.path == path; });
    return first->action;
}

void OssActionTreeManager::registerAction(const QString &folder, QAction *action)
{
    if (!action) {
        OssDebug(__FILE__, __LINE__, "Action is NULL");
        return;
    }
    const QVariant name = action->property(NameProperty);
    const QString path = normalizedPath(folder + QLatin1Char('/')
                                        + (name.isValid() ? name.toString() : action->text()));
    if (m_byPath.contains(path, action))
        return;
    m_entries.append({folder, path, action});
    m_byPath.insert(path, action);
    ++m_countByFoldedPath[path.toCaseFolded()];
    connect(action, &QObject::destroyed, this, &OssActionTreeManager::dropAction,
            Qt::UniqueConnection);
    const int condition = OssCommandTable::whenOf(path);
    if (condition != OssCommandTable::Always)
        m_byCondition.insert(condition, action);
    if (m_missing.contains(condition))
        action->setEnabled(false);
    Q_EMIT actionRegistered(path, action);
}

void OssActionTreeManager::setHolds(int condition, bool holds)
{
    if (holds)
        m_missing.remove(condition);
    else
        m_missing.insert(condition);
    const QList<QAction *> actions = m_byCondition.values(condition);
    for (QAction *action : actions)
        action->setEnabled(holds);
}

void OssActionTreeManager::setName(QAction *action, const QString &name)
{
    action->setProperty(NameProperty, name);
}

QVector<OssActionTreeManager::Entry> OssActionTreeManager::entries(const QString &folder,
                                                                   bool withSubfolders) const
{
    const QString wanted = normalizedPath(folder);
    const QString prefix = wanted == QLatin1String("/") ? wanted : wanted + QLatin1Char('/');
    QVector<Entry> found;
    for (const Entry &entry : m_entries) {
        const bool below = withSubfolders && entry.path.startsWith(prefix);
        if (below || folderOf(entry.path) == wanted)
            found.append(entry);
    }
    return found;
}

QStringList OssActionTreeManager::paths() const
{
    QStringList paths;
    QSet<QString> seen;
    for (const Entry &entry : m_entries) {
        if (!seen.contains(entry.path)) {
            seen.insert(entry.path);
            paths.append(entry.path);
        }
    }
    return paths;
}

QString OssActionTreeManager::pathOf(const QAction *action) const
{
    const auto found = std::find_if(
        m_entries.cbegin(), m_entries.cend(),
        [action](const Entry &entry) { return entry.action == action; });
    return found == m_entries.cend() ? QString() : found->path;
}

void OssActionTreeManager::dropAction(QObject *action)
{
    QStringList removed;
    for (int i = m_entries.size() - 1; i >= 0; --i) {
        // Compared as addresses: the action's own part is destroyed already.
        if (static_cast<QObject *>(m_entries.at(i).action) != action)
            continue;
        const Entry entry = m_entries.takeAt(i);
        m_byPath.remove(entry.path, entry.action);
        m_byCondition.remove(OssCommandTable::whenOf(entry.path), entry.action);
        const QString folded = entry.path.toCaseFolded();
        if (--m_countByFoldedPath[folded] == 0)
            m_countByFoldedPath.remove(folded);
        removed.append(entry.path);
    }
    for (const QString &path : qAsConst(removed))
        Q_EMIT actionRemoved(path);
}
