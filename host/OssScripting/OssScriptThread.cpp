#include "OssScripting/OssScriptThread.h"

#include "OssScripting/OssPython.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMutexLocker>

#include <algorithm>
#include <csignal>

namespace {

constexpr int StackSize = 64 * 1024 * 1024; // deep recursion ends in Python's own limit
constexpr int MostWaitingCharacters = 1 << 20;
constexpr int Interrupted = 130;

OssScriptThread *pythonThread = nullptr;

/// What takes the document; the rest only asks Python.
bool isScript(const OssScriptThread::Job &job)
{
    using Kind = OssScriptThread::Job::Kind;
    return job.kind == Kind::File || job.kind == Kind::Input || job.kind == Kind::Callback;
}

/// The first line of what was typed, not too long for a menu.
QString titleOf(const QString &input)
{
    constexpr int Longest = 40;
    const QString line = input.trimmed().section(QLatin1Char('\n'), 0, 0);
    return line.size() > Longest ? line.left(Longest) + QChar(0x2026) : line;
}

} // namespace

OssScriptThread::OssScriptThread(OssScriptEngine::Output output)
    : m_output(output)
{
    pythonThread = this;
    setObjectName(QStringLiteral("Python"));
    setStackSize(StackSize);
}

OssScriptThread::~OssScriptThread()
{
    pythonThread = nullptr;
}

OssScriptThread *OssScriptThread::current()
{
    return pythonThread;
}

// --- jobs

void OssScriptThread::post(const Job &job)
{
    const QMutexLocker lock(&m_mutex);
    if (isScript(job))
        m_busy = true;
    m_jobs.append(job);
    m_wake.wakeAll();
}

void OssScriptThread::postLast()
{
    const QMutexLocker lock(&m_mutex);
    m_callbacks.clear();
    m_jobs = {Job()};
    m_wake.wakeAll();
}

void OssScriptThread::deliver(int callback, const QVariantList &values)
{
    Job job;
    job.kind = Job::Callback;
    job.callback = callback;
    job.values = values;
    const QMutexLocker lock(&m_mutex);
    m_callbacks.append(job);
}

bool OssScriptThread::hasCallback()
{
    const QMutexLocker lock(&m_mutex);
    return !m_callbacks.isEmpty();
}

bool OssScriptThread::takeCallback(Job *job)
{
    const QMutexLocker lock(&m_mutex);
    if (m_callbacks.isEmpty())
        return false;
    *job = m_callbacks.takeFirst();
    return true;
}

OssScriptThread::Job OssScriptThread::next()
{
    const QMutexLocker lock(&m_mutex);
    m_busy = std::any_of(m_jobs.cbegin(), m_jobs.cend(), isScript);
    while (m_jobs.isEmpty())
        m_wake.wait(&m_mutex);
    return m_jobs.takeFirst();
}

void OssScriptThread::run()
{
    m_native = pthread_self();
    OssPython python(this, m_output);
    for (Job job = next(); job.kind != Job::Quit; job = next()) {
        {
            const QMutexLocker lock(&m_stopMutex);
            m_stopping = false;
            m_hasJob = true;
        }
        m_open = true;
        execute(job, &python);
        m_open = false;
        const QMutexLocker lock(&m_stopMutex);
        m_hasJob = false;
    }
}

void OssScriptThread::execute(const Job &job, OssPython *python)
{
    switch (job.kind) {
    case Job::File:
        runScript(tr("Run Script: %1").arg(QFileInfo(job.text).fileName()),
                  [&] { return python->runFile(job.text, job.arguments); });
        break;
    case Job::Input:
        if (!job.everything && !python->isComplete(job.text)) {
            Q_EMIT incomplete();
            break;
        }
        runScript(tr("Script: %1").arg(titleOf(job.text)),
                  [&] { return python->runInput(job.text); });
        break;
    case Job::Callback:
        runScript(tr("Script: Callback"),
                  [&] { return python->runCallback(job.callback, job.values); });
        break;
    case Job::Completion:
        Q_EMIT completed(job.text, python->complete(job.text));
        break;
    case Job::Reset:
        python->resetNames();
        break;
    case Job::Quit:
        break;
    }
}

void OssScriptThread::runScript(const QString &title, const std::function<int()> &script)
{
    OssScriptEngine *engine = OssScriptEngine::instance();
    onGui([&] { engine->begin(title); });
    int exitCode = script();
    if (m_stopping)
        exitCode = Interrupted;
    // From here on a script's left-behind threads are refused.
    const auto finish = [&] {
        m_open = false;
        m_busy = false;
        engine->end(exitCode);
    };
    onGui(finish);
}

// --- calls

bool OssScriptThread::onGui(const std::function<void()> &work)
{
    const QMutexLocker lock(&m_callMutex);
    if (!m_open)
        return false;
    QMetaObject::invokeMethod(OssScriptEngine::instance(), work, Qt::BlockingQueuedConnection);
    return true;
}

void OssScriptThread::stop()
{
    const QMutexLocker lock(&m_stopMutex);
    if (!m_hasJob)
        return;
    m_stopping = true;
    {
        const QMutexLocker output(&m_outputMutex);
        m_drained.wakeAll();
    }
    pthread_kill(m_native, OssPython::StopSignal);
}

bool OssScriptThread::abandon()
{
    if (!m_callMutex.tryLock())
        return false;
    m_open = false;
    m_callMutex.unlock();
    m_busy = false;
    return true;
}

// --- output

void OssScriptThread::write(const QString &text, bool isError)
{
    QMutexLocker lock(&m_outputMutex);
    while (m_waitingCharacters > MostWaitingCharacters && !m_stopping)
        m_drained.wait(&m_outputMutex, 100);
    const bool first = m_pieces.isEmpty();
    if (!first && m_pieces.last().isError == isError)
        m_pieces.last().text += text;
    else
        m_pieces.append({text, isError});
    m_waitingCharacters += text.size();
    lock.unlock();
    if (first)
        Q_EMIT outputWaiting();
}

void OssScriptThread::flushOutput()
{
    QVector<Piece> pieces;
    {
        const QMutexLocker lock(&m_outputMutex);
        pieces.swap(m_pieces);
        m_waitingCharacters = 0;
        m_drained.wakeAll();
    }
    for (const Piece &piece : qAsConst(pieces))
        Q_EMIT OssScriptEngine::instance()->outputWritten(piece.text, piece.isError);
}
