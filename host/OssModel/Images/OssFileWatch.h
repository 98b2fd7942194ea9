#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>

#include <functional>
#include <memory>

class OssEvFileContents;

/// What the files that a document names hold: pictures, patches of pictures, meshes. Whoever asks for
/// one has it watched from then on. Files are looked at and read by a worker; who asks is told what is
/// known. GUI thread.
///
/// Their folders are watched, and the first few hundred files themselves; the others, and what lies
/// where nothing tells of changes, are looked at every few seconds.
class OSSMODEL_EXPORT OssFileWatch
    : public QObject
    , public OssService<OssFileWatch>
{
    Q_OBJECT

public:
    OssFileWatch();
    ~OssFileWatch() override;

    /// A short text for the bytes of a file or, where the path is the pattern of patches, of all that
    /// there are: other bytes, other text. Empty when there is no such file; null as long as nobody
    /// has looked, which then happens soon and is told.
    QString contentOf(const QString &path);
    /// The same, read here and now: for those who are about to read the file anyway.
    QString readContent(const QString &path) const;

    /// Has all files looked at now, whether anything told of a change or not, and returns when they
    /// are known. Events are handled meanwhile; false ends it.
    void settle(const std::function<bool()> &goesOn);

    /// Forgets all files: nobody needs them any more.
    void forget();

    /// What knows the bytes of files, on any thread.
    std::shared_ptr<OssEvFileContents> contents() const { return m_contents; }

Q_SIGNALS:
    /// A file holds something else than before, or became known.
    void changed();

private:
    struct Look;

    struct Entry
    {
        QString content; ///< null: not known
        QStringList files;
        bool isLookedAt = false; ///< at this moment
        bool isDue = true;
    };

    void noteChange(const QString &path);
    void lookSoon();
    void lookAtDue();
    void take(const Look &look);
    void watch(const QString &path, const QStringList &files);
    bool isSettled() const;

    std::shared_ptr<OssEvFileContents> m_contents;
    QHash<QString, Entry> m_entries; ///< by path or pattern
    QFileSystemWatcher m_watcher;
    QSet<QString> m_unwatched; ///< paths of which not all is watched
    QTimer m_soon;
    QTimer m_regular;
    QElapsedTimer m_sinceNotice;
    int m_generation = 0; ///< counts how often everything was forgotten
    QThreadPool m_worker;
};
