#pragma once

#include "OssScripting/OssScriptCall.h"
#include "OssScripting/OssScriptEngine.h"

#include <QMutex>
#include <QThread>
#include <QVector>
#include <QWaitCondition>

#include <atomic>
#include <functional>

#include <pthread.h>

class OssPython;

/// Python's thread: everything of Python happens here, one job after the other. What it needs of the
/// program it asks the GUI thread for, and waits.
class OssScriptThread : public QThread
{
    Q_OBJECT

public:
    struct Job
    {
        enum Kind { File, Input, Completion, Reset, Callback, Quit };

        Kind kind = Quit;
        QString text; ///< path, input, text to complete
        QStringList arguments;
        bool everything = false;
        int callback = 0;
        QVariantList values;
    };

    explicit OssScriptThread(OssScriptEngine::Output output);
    ~OssScriptThread() override;

    // --- GUI thread
    void post(const Job &job);
    /// The thread ends after the job that it is at.
    void postLast();
    void stop();

    /// Carries out no call any more, whatever still runs. False when one is under way.
    bool abandon();

    bool isBusy() const { return m_busy; }

    /// A signal that a script listens to was emitted. The running script takes it, or who posts it.
    void deliver(int callback, const QVariantList &values);
    bool hasCallback();
    /// Hands over what was printed since the last time.
    void flushOutput();

    // --- Python's thread, and threads that a script starts
    /// Carries the function out on the GUI thread, one call at a time. False when no job is running
    /// any more: threads that a script left behind change nothing.
    bool onGui(const std::function<void()> &work);
    void write(const QString &text, bool isError);
    /// The next signal that a script listens to and that was not delivered yet. Any thread.
    bool takeCallback(Job *job);
    static OssScriptThread *current();

Q_SIGNALS:
    void incomplete();
    void completed(const QString &text, const QStringList &names);
    void outputWaiting();

protected:
    void run() override;

private:
    struct Piece
    {
        QString text;
        bool isError;
    };

    Job next();
    void execute(const Job &job, OssPython *python);
    void runScript(const QString &title, const std::function<int()> &script);

    const OssScriptEngine::Output m_output;
    QMutex m_mutex; ///< guards the next two
    QWaitCondition m_wake;
    QVector<Job> m_jobs;
    QVector<Job> m_callbacks;
    QMutex m_outputMutex; ///< guards the next two
    QVector<Piece> m_pieces;
    int m_waitingCharacters = 0;
    QWaitCondition m_drained;
    QMutex m_callMutex; ///< held by the thread whose call is being carried out
    std::atomic<bool> m_busy{false};
    std::atomic<bool> m_open{false}; ///< calls are carried out
    std::atomic<bool> m_stopping{false};
    QMutex m_stopMutex; ///< a signal is only sent to a thread that has a job
    bool m_hasJob = false;
    pthread_t m_native{};
};
