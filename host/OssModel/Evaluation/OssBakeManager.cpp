#include "OssModel/Evaluation/OssBakeManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/BakeTask.h"
#include "OssModel/Evaluation/OssBakeWork.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssMeshes.h"

#include <algorithm>

namespace {

constexpr const char *Source = "OssBakeManager";
constexpr int TellEvery = 50;   ///< milliseconds
constexpr int RestsAfter = 300; ///< milliseconds without an edit
/// What goes on changing without the user, as a file that is written all the time, is given up.
constexpr int MostTries = 5;
constexpr int Whole = 1000;
/// Behind what is looked at.
constexpr int Priority = -1;

BakeChoice choiceOf(OssBakeManager::Which which)
{
    return {true, which != OssBakeManager::OutOfDate, which == OssBakeManager::Again};
}

bool isBusy()
{
    return OssUndoManager::instance()->isMacroOpen();
}

} // namespace

struct OssBakeManager::Current
{
    std::unique_ptr<BakeTask> task;
    QString name;
    std::unique_ptr<OssBakeWork> work; ///< null until it is begun, and once it is done
    bool isComputed = false;
    bool isOutdated = false; ///< its work is stopped for that
    int tries = 0;

    void discard() const { OssEvaluationService::discard(task->pixels()); }
};

OssBakeManager::OssBakeManager()
{
    m_timer.setInterval(TellEvery);
    connect(&m_timer, &QTimer::timeout, this, &OssBakeManager::tick);
    const auto note = [this] {
        m_isEdited = true;
        m_sinceEdit.start();
    };
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, note);
    connect(OssUndoManager::instance(), &OssUndoManager::changedWithoutStep, this, note);
    connect(OssFileWatch::instance(), &OssFileWatch::changed, this, note);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, note);
}

OssBakeManager::~OssBakeManager()
{
    if (!m_current)
        return;
    m_current->work.reset();
    m_current->discard();
}

void OssBakeManager::start(const QList<OssSnBakePointNode *> &nodes, Which which)
{
    begin();
    const QList<OssSnBakePointNode *> sorted = BakePointBake::sourcesFirst(nodes);
    for (OssSnBakePointNode *node : sorted) {
        const auto isIt = [node](const std::unique_ptr<BakeTask> &task) {
            return task->node() == node && dynamic_cast<const BakePointTask *>(task.get());
        };
        if (std::none_of(m_waiting.cbegin(), m_waiting.cend(), isIt))
            wait(std::make_unique<BakePointTask>(node, choiceOf(which)));
    }
    Q_EMIT progressed();
}

void OssBakeManager::start(OssNodeBake bake)
{
    begin();
    wait(std::make_unique<NodeBakeTask>(std::move(bake)));
    Q_EMIT progressed();
}

void OssBakeManager::begin()
{
    if (!m_isRunning) {
        m_report = {};
        m_done = 0;
        m_total = 0;
        m_isPaused = false;
        m_clock.start();
    }
    m_isRunning = true;
    m_timer.start();
}

void OssBakeManager::wait(std::unique_ptr<BakeTask> task)
{
    m_waiting.push_back(std::move(task));
    ++m_total;
}

void OssBakeManager::setPaused(bool paused)
{
    if (!m_isRunning || paused == m_isPaused)
        return;
    m_isPaused = paused;
    m_clock.setResting(paused);
    if (m_current && m_current->work)
        m_current->work->setPaused(paused);
    Q_EMIT progressed();
}

void OssBakeManager::cancel()
{
    if (!m_isRunning)
        return;
    m_waiting.clear();
    m_report.isStopped = true;
    if (m_current && m_current->work)
        m_current->work->cancel();
}

QString OssBakeManager::currentNode() const
{
    return m_current ? m_current->name : QString();
}

QString OssBakeManager::waitsFor() const
{
    if (!m_current || m_current->work)
        return {};
    if (!m_current->isComputed)
        return tr("%1 has changed: its bake begins again").arg(m_current->name);
    return OssUndoManager::instance()->canRedo()
               ? tr("%1 is baked; redo what was undone, or edit, to take that over")
                     .arg(m_current->name)
               : QString();
}

int OssBakeManager::thousandths() const
{
    int within = 0;
    if (m_current && m_current->work)
        within = m_current->work->thousandths();
    else if (m_current && m_current->isComputed)
        within = Whole;
    return m_total > 0 ? std::min(Whole, (Whole * m_done + within) / m_total) : 0;
}

int OssBakeManager::secondsLeft() const
{
    return m_clock.secondsLeft(thousandths(), Whole);
}

// --- one after the other

void OssBakeManager::tick()
{
    const bool rests = !m_sinceEdit.isValid() || m_sinceEdit.elapsed() > RestsAfter;
    Q_EMIT progressed();
    if (m_isPreparing)
        return;
    if (m_report.isStopped && (!m_current || !m_current->work)) {
        if (m_current)
            m_current->discard();
        m_current.reset();
        end();
        return;
    }
    if (!m_current) {
        if (!m_isPaused && !isBusy())
            next();
        return;
    }
    if (!m_current->work) {
        if (m_current->isComputed)
            take();
        else if (rests && !m_isPaused && !isBusy())
            compute();
        return;
    }
    if (!m_isEdited || !rests || isBusy())
        return;
    m_isEdited = false;
    if (!m_current->task->isCurrent()) {
        m_current->isOutdated = true;
        m_current->work->cancel();
    }
}

void OssBakeManager::next()
{
    if (m_waiting.empty()) {
        end();
        return;
    }
    m_current = std::make_unique<Current>();
    m_current->task = std::move(m_waiting.front());
    m_waiting.pop_front();
    const BakeTask *task = m_current->task.get();
    if (!task->isThere()) {
        leaveRemoved();
        return;
    }
    m_current->name = task->node()->name();
    m_isPreparing = true;
    task->knowFiles([this] { return !m_report.isStopped; });
    m_isPreparing = false;
    if (!task->isThere() || m_report.isStopped)
        return;
    if (task->isWanted(&m_report))
        compute();
    else
        leave({});
}

/// From the document as it is now.
void OssBakeManager::compute()
{
    BakeTask *task = m_current->task.get();
    if (!task->isThere()) {
        leaveRemoved();
        return;
    }
    ++m_current->tries;
    m_current->isOutdated = false;
    m_isEdited = false;
    m_isPreparing = true;
    OssResult result = task->prepare();
    m_isPreparing = false;
    if (!result)
        result = task->tell(result);
    if (!result) {
        leave(result.error());
        return;
    }
    for (OssEvBake::Job &job : task->pixels().jobs)
        job.priority = Priority;
    m_current->work = std::make_unique<OssBakeWork>(task->pixels().jobs);
    connect(m_current->work.get(), &OssBakeWork::finished, this, &OssBakeManager::endWork,
            Qt::QueuedConnection);
    m_current->work->setPaused(m_isPaused);
    m_current->work->start(true);
    if (m_report.isStopped)
        m_current->work->cancel();
}

void OssBakeManager::endWork()
{
    if (!m_current || !m_current->work || m_current->work->isRunning())
        return;
    const OssEvResult result = m_current->work->result();
    m_current->work.reset();
    if (m_report.isStopped)
        return; // the next tick ends it
    const bool isCurrent = !m_current->isOutdated && m_current->task->isCurrent();
    if (result && isCurrent) {
        m_current->isComputed = true;
        take();
        return;
    }
    m_current->discard();
    if (!m_current->task->isThere()) {
        leaveRemoved();
    } else if (isCurrent) {
        const QString reason = QString::fromStdString(result.error());
        m_current->task->pixels().graph.tellProblem(result.node(), reason);
        leave(m_current->task->tell(OssResult::failure(reason)).error());
    } else if (!m_current->isOutdated && m_current->tries >= MostTries) {
        leave(tr("%1: what feeds it changes all the time").arg(m_current->name));
    } else {
        OssDebug(Source, __LINE__, "[ -- ] %s has changed meanwhile: its bake begins again",
                 qPrintable(m_current->name));
    }
}

void OssBakeManager::take()
{
    if (isBusy() || OssUndoManager::instance()->canRedo())
        return;
    if (!m_current->task->isCurrent()) { // it waited, and was edited
        m_current->isComputed = false;
        m_current->discard();
        return;
    }
    BakeTask *task = m_current->task.get();
    task->pixels().graph.tellSuccess();
    const OssResult taken = task->tell(task->take(&m_report));
    leave(taken ? QString() : taken.error());
}

/// The current one is done with.
void OssBakeManager::leave(const QString &failure)
{
    if (!failure.isEmpty())
        m_report.failures.append(failure);
    m_current.reset();
    ++m_done;
}

void OssBakeManager::leaveRemoved()
{
    if (!m_current->name.isEmpty())
        OssDebug(Source, __LINE__, "[ -- ] %s was removed: it is not baked",
                 qPrintable(m_current->name));
    leave({});
}

void OssBakeManager::end()
{
    m_timer.stop();
    m_isRunning = false;
    m_isPaused = false;
    for (const QString &failure : qAsConst(m_report.failures))
        OssDebug(Source, __LINE__, "[ !! ] %s", qPrintable(failure));
    QStringList words{m_report.inWords()};
    words += m_report.failures;
    words.removeAll(QString());
    OssStatusManager::instance()->showMessage(words.join(QStringLiteral("; ")));
    Q_EMIT progressed();
}
