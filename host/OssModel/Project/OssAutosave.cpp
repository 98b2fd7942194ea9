#include "OssModel/Project/OssAutosave.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>

#include <algorithm>

namespace {

constexpr int LookEvery = 1000;  // milliseconds
constexpr int StepLength = 4;    // of the 16 that a frame has
constexpr int BetweenSteps = 12; // for everything else

} // namespace

OssAutosave::Decision OssAutosave::decide(const Situation &now)
{
    if (now.interval <= 0 || now.inGesture)
        return Wait;
    const bool wanted = now.sinceFirstEdit >= now.interval
                        || now.sinceLastEdit >= std::min(now.interval, RestAfterEdit);
    if (!wanted)
        return Wait;
    if (now.sinceInput >= RestOfHands)
        return TakeInSteps;
    return now.sinceFirstEdit >= 2 * now.interval ? TakeAtOnce : Wait;
}

OssAutosave::OssAutosave(const QString &recoveryFolder, QObject *parent)
    : QObject(parent)
    , m_session(recoveryFolder)
{
    m_worker.setMaxThreadCount(1);
    m_looking.setInterval(LookEvery);
    connect(&m_looking, &QTimer::timeout, this, &OssAutosave::look);
    m_stepping.setInterval(BetweenSteps);
    connect(&m_stepping, &QTimer::timeout, this, &OssAutosave::step);
    m_lastInput.start();
    const auto *projects = OssProjectManager::instance();
    const auto *undo = OssUndoManager::instance();
    connect(undo, &OssUndoManager::changed, this, &OssAutosave::noteEdit);
    connect(undo, &OssUndoManager::changedWithoutStep, this, &OssAutosave::noteEdit);
    connect(projects, &OssProjectManager::projectClosing, this, &OssAutosave::abandon);
    connect(projects, &OssProjectManager::modifiedChanged, this, [this](bool modified) {
        if (!modified)
            forgetCopy();
    });
    // Not at once: it may be wanted in the middle of an undo.
    connect(
        projects, &OssProjectManager::copyWanted, this,
        [this] {
            if (m_interval > 0)
                takeCopy();
        },
        Qt::QueuedConnection);
    QCoreApplication::instance()->installEventFilter(this);
}

OssAutosave::~OssAutosave()
{
    m_worker.waitForDone();
}

void OssAutosave::setInterval(int seconds)
{
    m_interval = seconds;
    if (m_interval <= 0)
        abandon();
}

void OssAutosave::waitForDisk()
{
    m_worker.waitForDone();
    // What the worker has to tell is on its way.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

void OssAutosave::onWorker(std::function<void()> work)
{
    m_worker.start(std::move(work));
}

// --- when

void OssAutosave::noteEdit()
{
    abandon();
    if (m_revision++ == m_copiedRevision)
        m_firstEdit.start();
    m_lastEdit.start();
    m_looking.start();
}

bool OssAutosave::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::TabletPress:
    case QEvent::TouchBegin:
    case QEvent::Drop:
        // Not all that follows is recorded as an edit, and a snapshot is of one moment.
        m_lastInput.start();
        abandon();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

OssAutosave::Situation OssAutosave::situation() const
{
    Situation now;
    now.interval = qint64(m_interval) * 1000;
    now.sinceFirstEdit = m_firstEdit.elapsed();
    now.sinceLastEdit = m_lastEdit.elapsed();
    now.sinceInput = m_lastInput.elapsed();
    now.inGesture = QGuiApplication::mouseButtons() != Qt::NoButton
                    || OssUndoManager::instance()->isMacroOpen();
    return now;
}

void OssAutosave::look()
{
    if (m_revision == m_copiedRevision || !OssProjectManager::instance()->isModified()) {
        m_looking.stop();
        return;
    }
    if (m_writing || m_snapshot)
        return;
    switch (decide(situation())) {
    case Wait:
        break;
    case TakeInSteps:
        begin();
        m_stepping.start();
        break;
    case TakeAtOnce:
        takeCopy();
        break;
    }
}

// --- the snapshot

void OssAutosave::begin()
{
    OssProject *project = OssProjectManager::instance()->currentProject();
    m_snapshot = std::make_unique<OssProjectSnapshot>(
        project, OssRecovery::describe(*project, QDateTime::currentDateTimeUtc()));
}

void OssAutosave::step()
{
    if (!m_snapshot->advance(StepLength)) {
        abandon();
        return;
    }
    if (!m_snapshot->isDone())
        return;
    m_stepping.stop();
    hand(m_snapshot->takeParts());
    m_snapshot.reset();
}

void OssAutosave::takeCopy()
{
    if (!OssProjectManager::instance()->isModified())
        return;
    abandon();
    begin();
    if (m_snapshot->advance(-1))
        hand(m_snapshot->takeParts());
    m_snapshot.reset();
}

void OssAutosave::abandon()
{
    m_stepping.stop();
    m_snapshot.reset();
}

// --- the disk

void OssAutosave::hand(OssProjectSnapshot::Parts parts)
{
    m_writing = true;
    onWorker([this, parts = std::move(parts), revision = m_revision] {
        const OssResult result = m_session.write(OssProjectSnapshot::joined(parts));
        QMetaObject::invokeMethod(
            this, [this, result, revision] { finish(result, revision); }, Qt::QueuedConnection);
    });
}

void OssAutosave::finish(const OssResult &result, int revision)
{
    m_writing = false;
    if (result) {
        m_failing = false;
        m_copiedRevision = revision;
        if (m_revision != revision)
            m_firstEdit.start(); // about: while it was being written
        Q_EMIT copied();
        return;
    }
    // It is tried again after the interval.
    m_firstEdit.start();
    m_lastEdit.start();
    OssDebug("OssAutosave", __LINE__, "[ !! ] %s", qPrintable(result.error()));
    if (!m_failing)
        Q_EMIT failed(result.error());
    m_failing = true;
}

void OssAutosave::forgetCopy()
{
    abandon();
    m_copiedRevision = m_revision;
    onWorker([this] { m_session.removeCopy(); });
}

OssResult OssAutosave::restore(const OssRecovery::Entry &entry)
{
    const OssResult opened = OssProjectManager::instance()->restoreProject(entry.copy, entry.path,
                                                                           entry.readOnly);
    if (!opened)
        return opened;
    // After the removal of the copy of what was open before.
    m_copiedRevision = m_revision;
    onWorker([this, entry] {
        const OssResult adopted = m_session.adopt(entry);
        if (!adopted)
            OssDebug("OssAutosave", __LINE__, "[ !! ] %s", qPrintable(adopted.error()));
    });
    return {};
}
