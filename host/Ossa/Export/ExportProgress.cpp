#include "Ossa/Export/ExportProgress.h"

#include "OssModel/Export/OssExportManager.h"

#include <QFileInfo>

ExportProgress::ExportProgress(QWidget *parent)
    : WorkProgress(tr("Progress of the export"),
                   tr("Let the export rest; files are whole or as they were"),
                   tr("Stop the export; what is written stays"), parent)
{
    const OssExportManager *exports = OssExportManager::instance();
    connect(this, &WorkProgress::pauseAsked, this, [exports](bool paused) {
        if (OssExportJob *job = exports->job())
            job->setPaused(paused);
    });
    connect(this, &WorkProgress::stopAsked, this, [exports] {
        if (OssExportJob *job = exports->job())
            job->cancel();
    });
    connect(exports, &OssExportManager::jobChanged, this, &ExportProgress::follow);
    connect(exports, &OssExportManager::finished, this, &ExportProgress::refresh);
    follow();
}

void ExportProgress::follow()
{
    if (const OssExportJob *job = OssExportManager::instance()->job())
        connect(job, &OssExportJob::progressed, this, &ExportProgress::refresh);
    refresh();
}

void ExportProgress::refresh()
{
    const OssExportJob *job = OssExportManager::instance()->job();
    const bool isRunning = job && job->isRunning();
    setVisible(isRunning);
    if (!isRunning)
        return;
    const QString file = QFileInfo(job->currentFile()).fileName();
    showWork(job->isPaused() ? tr("Export rests at %1 %").arg(job->thousandths() / 10)
                             : tr("Writing %1").arg(withTimeLeft(file, job->secondsLeft())),
             job->thousandths(), job->isPaused());
}
