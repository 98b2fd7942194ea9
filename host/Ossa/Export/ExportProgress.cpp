#include "Ossa/Export/ExportProgress.h"

#include "OssModel/Export/OssExportManager.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

namespace {

constexpr int barWidth = 140;
constexpr int whole = 1000;

QString timeText(int seconds)
{
    return seconds < 0 ? QString()
                       : ExportProgress::tr(", %1:%2 left")
                             .arg(seconds / 60)
                             .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

ExportProgress::ExportProgress(QWidget *parent)
    : QWidget(parent)
    , m_text(new QLabel(this))
    , m_bar(new QProgressBar(this))
    , m_pause(new QToolButton(this))
    , m_stop(new QToolButton(this))
{
    m_text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_bar->setRange(0, whole);
    m_bar->setTextVisible(false);
    m_bar->setFixedWidth(barWidth);
    m_bar->setAccessibleName(tr("Progress of the export"));
    m_pause->setText(tr("Pause"));
    m_pause->setCheckable(true);
    m_pause->setToolTip(tr("Let the export rest; files are whole or as they were"));
    m_stop->setText(tr("Stop"));
    m_stop->setToolTip(tr("Stop the export; what is written stays"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *widget : {static_cast<QWidget *>(m_text), static_cast<QWidget *>(m_bar),
                            static_cast<QWidget *>(m_pause), static_cast<QWidget *>(m_stop)})
        layout->addWidget(widget);
    connect(m_pause, &QToolButton::clicked, this, &ExportProgress::pause);
    connect(m_stop, &QToolButton::clicked, this, [] {
        if (OssExportJob *job = OssExportManager::instance()->job())
            job->cancel();
    });
    connect(OssExportManager::instance(), &OssExportManager::jobChanged, this,
            &ExportProgress::follow);
    connect(OssExportManager::instance(), &OssExportManager::finished, this,
            &ExportProgress::refresh);
    hide();
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
    m_text->setText(job->isPaused() ? tr("Export rests at %1 %").arg(job->thousandths() / 10)
                                    : tr("Writing %1%2").arg(file, timeText(job->secondsLeft())));
    m_bar->setValue(job->thousandths());
    m_pause->setChecked(job->isPaused());
}

void ExportProgress::pause(bool paused)
{
    if (OssExportJob *job = OssExportManager::instance()->job())
        job->setPaused(paused);
}
