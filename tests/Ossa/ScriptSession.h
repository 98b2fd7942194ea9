#pragma once

#include "OssScripting/OssScriptEngine.h"
#include "support/ModelFixture.h"

#include <QEventLoop>
#include <QTimer>

/// A project, and the engine of this process as the console uses it.
class ScriptSession : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        QObject::connect(
            engine(), &OssScriptEngine::outputWritten, &m_listener,
            [this](const QString &text, bool error) { (error ? m_errors : m_output) += text; });
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

    /// Runs the lines and waits. The exit code; -1 for what was not complete.
    int run(const QString &text, bool everything = true)
    {
        m_output.clear();
        m_errors.clear();
        m_incomplete = false;
        m_exitCode = -1;
        while (engine()->isRunning())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        EXPECT_TRUE(engine()->runInput(text, everything));
        QTimer::singleShot(60000, &m_loop, &QEventLoop::quit);
        m_loop.exec();
        return m_exitCode;
    }

    int run(const char *text) { return run(QString::fromUtf8(text)); }

    QObject m_listener;
    QEventLoop m_loop;
    QString m_output;
    QString m_errors;
    bool m_incomplete = false;
    int m_exitCode = -1;
};
