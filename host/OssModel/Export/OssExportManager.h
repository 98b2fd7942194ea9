#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/Export/OssExportJob.h"

#include <QTimer>

#include <functional>
#include <memory>

/// The exports of the process, one at a time: begins them, repeats the last, and writes again what has
/// changed while it is asked to watch. GUI thread.
class OSSMODEL_EXPORT OssExportManager
    : public QObject
    , public OssService<OssExportManager>
{
    Q_OBJECT

public:
    OssExportManager();
    /// Stops what runs; files are whole or as they were.
    ~OssExportManager() override;

    /// Fails while another export runs.
    OssResult start(const OssExportPlan &plan);
    /// The same, for commands and scripts: returns when all is written, while events go on being
    /// handled. `onProgress` is called several times a second; false stops it.
    OssResult run(const OssExportPlan &plan,
                  const std::function<bool(const OssExportJob &)> &onProgress);

    bool isRunning() const { return m_isBeginning || (m_job && m_job->isRunning()); }

    /// The one that runs or ran last, of whatever project; null before the first.
    OssExportJob *job() const { return m_job.get(); }

    /// Of what was exported last: the same preset and choices, and the document of now.
    bool canExportAgain() const;

    OssResult exportAgain();

    /// While it watches, files of the last export whose pixels would be others are written again when
    /// the user rests.
    bool isWatching() const { return m_isWatching; }

    void setWatching(bool watching);

Q_SIGNALS:
    /// An export began: `job()` is another.
    void jobChanged();
    /// It ended; `job()` tells how.
    void finished();
    void watchingChanged(bool watching);

private:
    OssResult begin(std::unique_ptr<OssExportJob> job);
    OssResult planAgain(OssExportPlan *plan) const;
    void noteChange();
    void look();
    void end();

    std::unique_ptr<OssExportJob> m_job;
    QPointer<OssProject> m_project; ///< that was exported last
    OssExportJob::Keys m_keys;      ///< of files written by exports with these choices
    bool m_isWatching = false;
    bool m_isBeginning = false; ///< fresh paint is settled then, and events are handled
    QTimer m_rest;
};
