#include "OssModel/Export/OssExportManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QEventLoop>

namespace {

constexpr int RestsAfter = 700; ///< milliseconds without an edit

} // namespace

OssExportManager::OssExportManager()
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(RestsAfter);
    connect(&m_rest, &QTimer::timeout, this, &OssExportManager::look);
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this,
            &OssExportManager::noteChange);
    connect(OssUndoManager::instance(), &OssUndoManager::changedWithoutStep, this,
            &OssExportManager::noteChange);
    connect(OssFileWatch::instance(), &OssFileWatch::changed, this, &OssExportManager::noteChange);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this,
            [this] { setWatching(false); });
}

OssExportManager::~OssExportManager() = default;

OssResult OssExportManager::start(const OssExportPlan &plan)
{
    m_keys.clear();
    return begin(std::make_unique<OssExportJob>(plan));
}

OssResult OssExportManager::begin(std::unique_ptr<OssExportJob> job)
{
    if (isRunning())
        return OssResult::failure(tr("An export is still running: stop it or wait"));
    m_project = OssProjectManager::instance()->currentProject();
    m_job = std::move(job);
    connect(m_job.get(), &OssExportJob::finished, this, &OssExportManager::end);
    m_isBeginning = true;
    m_job->start();
    m_isBeginning = false;
    Q_EMIT jobChanged();
    return {};
}

OssResult OssExportManager::run(const OssExportPlan &plan,
                                const std::function<bool(const OssExportJob &)> &onProgress)
{
    OssResult result = start(plan);
    if (!result)
        return result;
    OssExportJob *job = m_job.get();
    QEventLoop loop;
    connect(job, &OssExportJob::finished, &loop, &QEventLoop::quit);
    connect(job, &QObject::destroyed, &loop, &QEventLoop::quit);
    connect(job, &OssExportJob::progressed, &loop, [&onProgress, job] {
        if (onProgress && !onProgress(*job))
            job->cancel();
    });
    loop.exec();
    return job == m_job.get() ? job->result() : OssResult::cancelled(tr("The export was stopped"));
}

bool OssExportManager::canExportAgain() const
{
    return m_job && m_project && m_project == OssProjectManager::instance()->currentProject();
}

OssResult OssExportManager::planAgain(OssExportPlan *plan) const
{
    if (!canExportAgain())
        return OssResult::failure(tr("Nothing of this project was exported yet"));
    const OssExportPlan &last = m_job->plan();
    plan->temporary = last.temporary;
    return last.options.file.isEmpty()
               ? OssExportPlan::make(m_project, last.preset, last.options, plan)
               : OssExportPlan::makeGltf(m_project, last.options, plan);
}

OssResult OssExportManager::exportAgain()
{
    OssExportPlan plan;
    const OssResult planned = planAgain(&plan);
    return planned ? start(plan) : planned;
}

void OssExportManager::setWatching(bool watching)
{
    if (watching == m_isWatching)
        return;
    m_isWatching = watching;
    Q_EMIT watchingChanged(watching);
    noteChange();
}

void OssExportManager::noteChange()
{
    if (m_isWatching && canExportAgain())
        m_rest.start();
}

void OssExportManager::look()
{
    if (!m_isWatching || !canExportAgain())
        return;
    if (isRunning() || OssUndoManager::instance()->isMacroOpen()) {
        m_rest.start();
        return;
    }
    OssExportPlan plan;
    const OssResult planned = planAgain(&plan);
    if (!planned) {
        OssStatusManager::instance()->showMessage(planned.error());
        return;
    }
    // Whoever goes through the history, back to paint that was fresh, is to be able to go on.
    auto job = std::make_unique<OssExportJob>(plan, m_keys);
    job->setLeavesPaint(true);
    const OssResult begun = begin(std::move(job));
    if (!begun)
        OssStatusManager::instance()->showMessage(begun.error());
}

void OssExportManager::end()
{
    const OssExportJob::Keys keys = m_job->keys();
    for (auto at = keys.cbegin(); at != keys.cend(); ++at)
        m_keys.insert(at.key(), at.value());
    const OssResult result = m_job->result();
    const int count = m_job->written().size();
    const OssExportOptions &options = m_job->plan().options;
    const QString &folder = options.folder;
    if (count > 0 && !options.file.isEmpty())
        OssStatusManager::instance()->showMessage(tr("Written: %1").arg(options.file));
    else if (count > 0)
        OssStatusManager::instance()->showMessage(
            result ? tr("Textures written to %1: %2").arg(folder).arg(count)
                   : tr("Textures written to %1: %2; others could not be, or were stopped")
                         .arg(folder)
                         .arg(count));
    else if (!result)
        OssStatusManager::instance()->showMessage(result.error());
    Q_EMIT finished();
}
