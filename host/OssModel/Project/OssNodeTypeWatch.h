#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/Graph/OssPublishedGroup.h"
#include "OssModel/OssModel_export.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

/// The user's own node types: descriptions in a folder of the configuration, which are known as soon as
/// they are there, and again when they change, while the program runs. GUI thread.
class OSSMODEL_EXPORT OssNodeTypeWatch
    : public QObject
    , public OssService<OssNodeTypeWatch>
{
    Q_OBJECT

public:
    OssNodeTypeWatch();

    static QString folderPath();
    /// Makes the folder where there is none yet.
    static OssResult makeFolder();

    /// Reads the folder now, and follows it from then on. What cannot be used, and what changed, is told
    /// in the log and the status bar.
    void start();

    /// Where a published type lies.
    static QString filePath(const QString &pathKey);
    /// Whether publishing under the key gives a type of the user's own a new version.
    static bool isPublished(const QString &pathKey);
    /// Whether a group can be published so; else why not.
    static OssResult canPublish(const OssSnGroupNode *group, const OssPublishedGroup::Form &form);
    /// Writes the group as a type of the user's own, which is known at once, and makes the group a node of
    /// it. Nodes of an older version stay what they are until they are upgraded.
    OssResult publish(OssSnGroupNode *group, const OssPublishedGroup::Form &form);

Q_SIGNALS:
    void published(OssSnGroupNode *group, const OssPublishedGroup::Form &form);

private:
    QStringList read();
    /// Folders, and the files in them: not every system tells of a file's change by its folder.
    void watch();

    QFileSystemWatcher m_watcher;
    QTimer m_soon; ///< a file is not written at once
    bool m_isFirst = true;
    QStringList m_faults; ///< when it was read last
};
