#pragma once

#include "OssScripting/OssScriptEngine.h"

#include <QStringList>
#include <QVariant>

#include <csignal>
#include <memory>

class OssScriptThread;

/// The Python interpreter of the process. Lives on the thread that makes it; its functions return
/// exit codes and throw nothing. What fails is told on Python's standard error.
class OssPython
{
public:
    /// Sent to the thread, it ends what runs: also a sleep, and a loop that catches everything.
    static constexpr int StopSignal = SIGUSR2;

    OssPython(OssScriptThread *thread, OssScriptEngine::Output output);
    OssPython(const OssPython &) = delete;
    OssPython &operator=(const OssPython &) = delete;
    ~OssPython();

    int runFile(const QString &path, const QStringList &arguments);
    int runInput(const QString &text);
    int runCallback(int callback, const QVariantList &values);
    /// Whether the input can run as it is, if only to tell what is wrong with it.
    bool isComplete(const QString &text);
    QStringList complete(const QString &text);
    void resetNames();

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};
