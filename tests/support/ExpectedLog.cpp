#include "support/ExpectedLog.h"

#include "OssCore/Program/OssDebug.h"

#include <gtest/gtest.h>

#include <QMutex>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <cstdio>

namespace {

/// What comes from the platform, and says nothing about the code under test.
bool isNoise(const QString &text)
{
    static const char *const noise[] = {
        // The platform "offscreen" has no window manager.
        "This plugin does not support propagateSizeHints()",
        "This plugin does not support raise()",
        "This plugin does not support lower()",
        "This plugin does not support setParent!",
        "This plugin does not support grabbing the",
        "This plugin does not support QPlatformServices::openDocument()",
        // Machines that nobody is logged in at have no such folder.
        "QStandardPaths: XDG_RUNTIME_DIR not set",
    };
    return std::any_of(std::begin(noise), std::end(noise), [&text](const char *start) {
        return text.startsWith(QLatin1String(start));
    });
}

} // namespace

/// Holds what is logged, in any thread, against what is expected.
class LogWatch
{
public:
    static LogWatch &instance()
    {
        // Never deleted: Qt may warn until the very end.
        static auto *const watch = new LogWatch;
        return *watch;
    }

    void add(const QString &line)
    {
        const QMutexLocker lock(&m_mutex);
        bool expected = false;
        for (ExpectedLog *expectation : qAsConst(m_expected)) {
            if (line.contains(expectation->m_text)) {
                expectation->m_came = true;
                expected = true;
            }
        }
        if (!expected)
            m_unexpected += line;
    }

    void takePast(const QString &text)
    {
        const QMutexLocker lock(&m_mutex);
        m_unexpected.erase(
            std::remove_if(m_unexpected.begin(), m_unexpected.end(),
                           [&text](const QString &line) { return line.contains(text); }),
            m_unexpected.end());
    }

    void begin(ExpectedLog *expectation)
    {
        const QMutexLocker lock(&m_mutex);
        m_expected += expectation;
    }

    void end(ExpectedLog *expectation)
    {
        const QMutexLocker lock(&m_mutex);
        m_expected.removeOne(expectation);
    }

    void failOnUnexpected()
    {
        QStringList lines;
        {
            const QMutexLocker lock(&m_mutex);
            lines.swap(m_unexpected);
        }
        for (QString &line : lines) {
            if (line.size() > LongestShown)
                line = line.left(LongestShown) + QStringLiteral("...");
        }
        if (!lines.isEmpty())
            ADD_FAILURE() << "unexpected in the log:\n  "
                          << qPrintable(lines.join(QLatin1String("\n  ")));
    }

private:
    static constexpr int LongestShown = 500;

    QMutex m_mutex;
    QVector<ExpectedLog *> m_expected;
    QStringList m_unexpected;
};

namespace {

void takeQtMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (isNoise(text))
        return;
    const QString message = QStringLiteral("Qt: ") + qFormatLogMessage(type, context, text);
    std::fprintf(stderr, "%s\n", qPrintable(message));
    if (type == QtWarningMsg || type == QtCriticalMsg)
        LogWatch::instance().add(message);
}

class LogListener : public testing::EmptyTestEventListener
{
    void OnTestEnd(const testing::TestInfo &) override { LogWatch::instance().failOnUnexpected(); }

    // What came after the last test fails the program.
    void OnEnvironmentsTearDownStart(const testing::UnitTest &) override
    {
        LogWatch::instance().failOnUnexpected();
    }
};

} // namespace

ExpectedLog::ExpectedLog(const char *text, Kind kind)
    : m_text(QString::fromUtf8(text))
    , m_kind(kind)
{
    LogWatch::instance().begin(this);
}

ExpectedLog::~ExpectedLog()
{
    LogWatch::instance().end(this);
    EXPECT_TRUE(m_came || m_kind == Possible)
        << "expected in the log, but it did not come: " << qPrintable(m_text);
}

void ExpectedLog::takePast(const QString &text)
{
    LogWatch::instance().takePast(text);
}

void ExpectedLog::failOnUnexpected()
{
    LogWatch::instance().failOnUnexpected();
}

void failTestsOnUnexpectedLog()
{
    qInstallMessageHandler(takeQtMessage);
    QObject::connect(OssDebugLog::instance(), &OssDebugLog::lineAdded,
                     [](const OssDebugLog::Line &line) {
                         if (line.category == OssDebugLog::Warning)
                             LogWatch::instance().add(line.text);
                     });
    testing::UnitTest::GetInstance()->listeners().Append(new LogListener);
}
