#pragma once

#include "OssCore/Program/OssService.h"
#include "OssInterface/Popups/OssLateReleases.h"
#include "OssScripting/OssScripting_export.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariant>
#include <QWidget>

#include <memory>

class OssScriptThread;

/// Runs Python scripts. Python has a thread of its own, so that the window lives while a script
/// computes, waits or loops; each call of a script object is carried out on the GUI thread while the
/// script waits for it. While a script runs the user's hands are off the document: input goes only to
/// widgets marked with keepUsable(), and Escape stops the script. No dialog opens.
///
/// Nothing but the functions here starts a script, and a script imports from Python's own folders
/// only. GUI thread.
class OSSSCRIPTING_EXPORT OssScriptEngine
    : public QObject
    , public OssService<OssScriptEngine>
{
    Q_OBJECT

public:
    /// Where what scripts print goes.
    enum class Output {
        Signals, ///< outputWritten()
        Streams  ///< the process's own, with its standard input
    };

    OssScriptEngine();
    ~OssScriptEngine() override;

    /// Before the first script; Signals at first.
    void setOutput(Output output);

    /// Runs a file as a program of its own. False when a script is running.
    bool runFile(const QString &path, const QStringList &arguments);
    /// Runs what the user typed, with the names of earlier inputs. What is not complete yet does not
    /// run: inputIncomplete(). `everything` runs it in any case. False when a script is running.
    bool runInput(const QString &text, bool everything);
    /// Asks for names that may follow; the answer is completed(). Ignored while a script runs.
    void complete(const QString &text);
    /// Forgets the names of earlier inputs.
    void resetNames();

    bool isRunning() const;

    /// The running script ends with KeyboardInterrupt, whether it computes, sleeps or catches
    /// everything. A call that is under way is finished first; work that shows progress is
    /// cancelled. A script that does not end, since it is inside a library that does not ask, is left
    /// alone when it is stopped once more after a while; no other can run then.
    void stop();
    /// Before the application goes: stops what runs and ends Python.
    void shutdown();

    /// A signal that a script listens to was emitted. The running script is told of it; without one
    /// the function runs as a script by itself, once the user's hands are off.
    void deliver(int callback, const QVariantList &values);

    /// Marks a widget, with those inside it, as usable while a script runs.
    static void keepUsable(QObject *widget);

    /// Stubs of the module "ossa" (PEP 484), made from the meta-objects.
    static QString stubs();

Q_SIGNALS:
    void started(const QString &title);
    /// What a program's exit code would be; 130 when it was stopped.
    void finished(int exitCode);
    void outputWritten(const QString &text, bool isError);
    void inputIncomplete();
    /// Names that may stand at the end of the text, whole.
    void completed(const QString &text, const QStringList &names);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    friend class OssScriptThread;

    OssScriptThread *thread();
    void begin(const QString &title);
    void end(int exitCode);

    void runCallback();
    void abandon();

    std::unique_ptr<OssScriptThread> m_thread;
    QTimer m_callbacks;
    QElapsedTimer m_stopping;    ///< since the running script was to stop first
    QPointer<QWidget> m_closing; ///< closes when the script has ended
    OssLateReleases m_releases;
    Output m_output = Output::Signals;
    bool m_running = false;
    bool m_popups = true;
    bool m_isShutDown = false;
};
