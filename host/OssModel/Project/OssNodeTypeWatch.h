#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssResult.h"
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

private:
    void read();
    /// Folders, and the files in them: not every system tells of a file's change by its folder.
    void watch();

    QFileSystemWatcher m_watcher;
    QTimer m_soon; ///< a file is not written at once
    bool m_isFirst = true;
};
