#pragma once

#include "OssScripting/OssScriptEngine.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QEventLoop>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

/// A project, and the engine of this process as the console uses it.
class ScriptSession : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        QObject::connect(engine(), &OssScriptEngine::outputWritten, &m_listener,
                         [this](const QString &written, bool error) {
                             (error ? m_errors : m_output) += written;
                         });
        QObject::connect(engine(), &OssScriptEngine::inputIncomplete, &m_listener, [this] {
            m_incomplete = true;
            m_loop.quit();
        });
        QObject::connect(engine(), &OssScriptEngine::finished, &m_listener, [this](int code) {
            m_exitCode = code;
            m_loop.quit();
        });
        engine()->resetNames();
    }

    static OssScriptEngine *engine() { return OssScriptEngine::instance(); }

    /// Until no script runs any more, not even one that a signal began.
    static void waitForEngine()
    {
        while (engine()->isRunning())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }

    /// Runs the lines and waits. The exit code; -1 for what was not complete.
    int run(const QString &lines, bool everything = true)
    {
        m_output.clear();
        m_errors.clear();
        m_incomplete = false;
        m_exitCode = -1;
        waitForEngine();
        EXPECT_TRUE(engine()->runInput(lines, everything));
        QTimer::singleShot(60000, &m_loop, &QEventLoop::quit);
        m_loop.exec();
        return m_exitCode;
    }

    int run(const char *lines) { return run(text(lines)); }

    /// What the lines print, without the last line's end; their errors when they fail.
    std::string printed(const QString &lines)
    {
        return run(lines) == 0 ? m_output.trimmed().toStdString() : m_errors.toStdString();
    }

    std::string printed(const char *lines) { return printed(text(lines)); }

    /// That the lines fail and say so in these words.
    void expectRaised(const QString &lines, const char *words)
    {
        EXPECT_EQ(run(lines), 1) << qPrintable(lines);
        EXPECT_TRUE(m_errors.contains(text(words))) << qPrintable(lines + m_errors);
        EXPECT_FALSE(m_errors.contains(text("SystemError"))) << qPrintable(lines + m_errors);
    }

    void expectRaised(const char *lines, const char *words) { expectRaised(text(lines), words); }

    QObject m_listener;
    QEventLoop m_loop;
    QString m_output;
    QString m_errors;
    bool m_incomplete = false;
    int m_exitCode = -1;
};
