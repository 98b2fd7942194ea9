#pragma once

#include "OssCore/Program/OssService.h"
#include "OssInterface/OssInterface_export.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

class QAction;

/// All commands of the application by path: menus, keys, the command palette and scripts find them
/// here. An action's identity is the folder it is filed under followed by its name, which is the
/// text it has when it is filed unless it was given another; texts may be translated and change.
///
/// Paths are read part by part: leading, trailing and doubled slashes mean nothing. Letter case
/// does. Actions are not owned; one that dies drops out. Several may share an identity, and the
/// first of them answers for it. GUI thread.
class OSSINTERFACE_EXPORT OssActionTreeManager
    : public QObject
    , public OssService<OssActionTreeManager>
{
    Q_OBJECT

public:
    struct Entry
    {
        QString folder; ///< as it was passed
        QString path;   ///< identity, in the form of normalizedPath()
        QAction *action;
    };

    OssActionTreeManager() = default;

    /// For guards against filing a command twice; letter case is therefore ignored here.
    bool hasAction(const QString &fullPath) const;
    /// Null when there is none.
    QAction *findAction(const QString &fullPath) const;
    void registerAction(const QString &folder, QAction *action);
    /// What the action is known by whatever its text is. Before it is filed.
    static void setName(QAction *action, const QString &name);

    /// Everything, in the order of filing.
    const QVector<Entry> &entries() const { return m_entries; }

    /// What lies in the folder itself or, if asked, anywhere below it.
    QVector<Entry> entries(const QString &folder, bool withSubfolders) const;
    /// Identities in the order of filing, each once.
    QStringList paths() const;
    /// Identity of a filed action; empty for others.
    QString pathOf(const QAction *action) const;

    /// Enables or disables what needs a condition (OssCommandTable::When), also what is filed later.
    void setHolds(int condition, bool holds);

    /// Before somebody asks without a pause whether an action is enabled, as scripts do: has those
    /// who keep that up to date at the next pause look at once.
    void settleStates() { Q_EMIT statesAsked(); }

    /// "/A/B/C", whatever slashes the text has; "/" for an empty one.
    static QString normalizedPath(const QString &path);
    static QString folderOf(const QString &path);
    static QString nameOf(const QString &path);

Q_SIGNALS:
    void actionRegistered(const QString &path, QAction *action);
    /// The action is half destroyed or gone: use the path only.
    void actionRemoved(const QString &path);
    void statesAsked();

private:
    void dropAction(QObject *action);

    QVector<Entry> m_entries;
    QMultiHash<QString, QAction *> m_byPath;
    QHash<QString, int> m_countByFoldedPath;
    QMultiHash<int, QAction *> m_byCondition;
    QSet<int> m_missing; ///< conditions that do not hold
};
