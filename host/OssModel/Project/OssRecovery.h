#pragma once

#include "OssCore/Documents/OssSerializer.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QDateTime>
#include <QString>
#include <QVector>

#include <memory>

class OssProject;

/// Copies of unsaved work. They lie in one folder of the user's, for each running session
///
///     ID.lock    locked by the process for as long as it lives
///     ID.ossa/   a project folder: the copy of what is open and was not saved
///
/// A copy whose lock is free belongs to a session that died. No time stamp has a say in it. The
/// first element of a copy's document tells where the project belongs and when it was copied.
namespace OssRecovery {

/// "recovery" in the user's configuration folder.
OSSMODEL_EXPORT QString standardFolder();

/// A file lock of this process, given back when the object or the process dies.
class OSSMODEL_EXPORT Lock
{
public:
    ~Lock();
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

    /// Makes the file when there is none. Null when another holds it or it cannot be made.
    static std::unique_ptr<Lock> tryLock(const QString &path);
    /// Removes the file before the lock is given back.
    void removeFile() const;

private:
    Lock(QString path, int descriptor);

    QString m_path;
    int m_descriptor;
};

/// The copy that a dead session left. Nobody else sees it while the entry lives.
struct Entry
{
    QString copy;       ///< its project folder
    QString name;       ///< of the project
    QString path;       ///< where the project belongs; empty when it was never saved
    QDateTime copiedAt; ///< UTC
    bool readOnly = false;
    OssResult readable; ///< or why not
    std::shared_ptr<Lock> lock;
};

/// What the first element of a copy's document says beside format and version.
OSSMODEL_EXPORT OssSerializer::Attributes describe(const OssProject &project, const QDateTime &now);

/// All copies of dead sessions that differ from what is saved, the newest first. Those that do not
/// are removed.
OSSMODEL_EXPORT QVector<Entry> entries(const QString &folder);

/// Throws the copy away.
OSSMODEL_EXPORT void discard(const Entry &entry);

/// Puts a copy that cannot be opened out of the way, to a place that is never emptied. Returns it;
/// empty when it had to stay where it is.
OSSMODEL_EXPORT QString setAside(const Entry &entry);

/// The copy of this session. Blocks on the disk: for a worker thread.
class OSSMODEL_EXPORT Session
{
public:
    explicit Session(QString folder);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    OssResult write(const QByteArray &document);
    void removeCopy();
    /// Takes over the copy of a dead session, in one step.
    OssResult adopt(const Entry &entry);

private:
    OssResult begin();
    QString copyPath() const;

    QString m_folder;
    QString m_id;
    std::unique_ptr<Lock> m_lock;
};

} // namespace OssRecovery
