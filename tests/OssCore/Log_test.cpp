#include "OssCore/Program/OssDebug.h"
#include "support/ExpectedLog.h"
#include "support/Text.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

TEST(DebugLog, linesAreWholeAndSorted)
{
    const ExpectedLog expected("[ !! ] xxx");
    OssDebugLog::instance()->clear();
    const QByteArray longText(100000, 'x');
    OssDebug("folder/Source.cpp", 7, "[ !! ] %s %d", longText.constData(), 5);
    OssDebug("Source", 8, "[ -- ] 100%% of %p", static_cast<void *>(nullptr));
    OssDebugTitle("Source", 9, "Dump", "%s", "plain %s");
    const auto lines = OssDebugLog::instance()->lines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines.at(0).category, OssDebugLog::Warning);
    EXPECT_EQ(lines.at(0).source, text("Source"));
    EXPECT_EQ(lines.at(0).text.size(), 100000 + 9);
    EXPECT_EQ(lines.at(1).category, OssDebugLog::Information);
    EXPECT_EQ(lines.at(1).text, text("[ -- ] 100% of (nil)"));
    EXPECT_EQ(lines.at(2).title, text("Dump"));
    EXPECT_EQ(lines.at(2).text, text("plain %s"));
}

TEST(DebugLog, keepsTheLatestLinesAndForgetsTheOldest)
{
    OssDebugLog *log = OssDebugLog::instance();
    log->clear();
    const int written = OssDebugLog::Capacity + 500;
    for (int i = 0; i < written; ++i)
        log->append("Source.cpp", i, "", text("line"));
    const auto lines = log->lines();
    EXPECT_LE(lines.size(), OssDebugLog::Capacity);
    EXPECT_GE(lines.size(), OssDebugLog::Capacity / 2) << "not more than needed";
    EXPECT_EQ(lines.last().number, written - 1);
    for (int i = 1; i < lines.size(); ++i)
        ASSERT_EQ(lines.at(i).number, lines.at(i - 1).number + 1) << "without gaps";
    log->clear();
    EXPECT_TRUE(log->lines().isEmpty());
}

TEST(DebugLog, everyLineIsToldToWhoListens)
{
    QObject listener;
    QStringList told;
    QObject::connect(OssDebugLog::instance(), &OssDebugLog::lineAdded, &listener,
                     [&told](const OssDebugLog::Line &line) {
                         told.append(line.source + QLatin1Char(' ') + line.text);
                     });
    OssDebug("a/b/Source_part.test.cpp", 1, "%s", "one");
    OssDebug(nullptr, 2, "%d%%", 2);
    OssDebug("", 3, "%s", "");
    EXPECT_EQ(told, texts({"Source_part one", " 2%", " "}));
}

TEST(DebugLog, threadsMayLogAtOnce)
{
    OssDebugLog::instance()->clear();
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 200; ++i)
                OssDebug("Thread", t, "[ -- ] %d", i);
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    int next[4] = {};
    for (const OssDebugLog::Line &line : OssDebugLog::instance()->lines()) {
        EXPECT_EQ(line.text, QStringLiteral("[ -- ] %1").arg(next[line.number]++));
        EXPECT_EQ(line.category, OssDebugLog::Information);
    }
    for (const int count : next)
        EXPECT_EQ(count, 200);
}

// --- what tests expect of it

TEST(ExpectedLog, failsOnlyWhereANeededLineDoesNotCome)
{
    EXPECT_NONFATAL_FAILURE({ const ExpectedLog none("of this"); }, "of this");
    const ExpectedLog perhaps("of this", ExpectedLog::Possible);
    const ExpectedLog ours("from the log");
    const ExpectedLog theirs("Qt: from Qt");
    OssDebug("Here", __LINE__, "[ !! ] a line from the log");
    OssDebug("Here", __LINE__, "[ -- ] no warning");
    qWarning("from Qt");
}

TEST(ExpectedLog, takesWhatATestLookedForAfterwards)
{
    OssDebug("Here", __LINE__, "[ !! ] looked for");
    ExpectedLog::takePast(text("looked for"));
}

} // namespace
