#include "Ossa/Palettes/LogPanel.h"

#include "Ossa/Palettes/LogModel.h"
#include "OssCore/Program/OssDebug.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include <thread>

namespace {

class Log : public testing::Test
{
protected:
    Log()
    {
        OssDebugLog::instance()->clear();
        panel = std::make_unique<LogPanel>();
        view = panel->findChild<QListView *>();
    }

    int rows() const { return view->model()->rowCount(); }

    bool waitForRows(int count) const
    {
        return QTest::qWaitFor([this, count] { return rows() == count; }, 2000);
    }

    std::unique_ptr<LogPanel> panel;
    QListView *view;
};

} // namespace

TEST_F(Log, linesArriveInBatches)
{
    int inserts = 0;
    QObject::connect(panel->findChild<LogModel *>(), &QAbstractItemModel::rowsInserted,
                     [&inserts] { ++inserts; });
    for (int i = 0; i < 1000; ++i)
        OssDebug(__FILE__, __LINE__, "line %d", i);
    EXPECT_TRUE(waitForRows(1000));
    EXPECT_EQ(inserts, 1);
}

TEST_F(Log, linesOfOtherThreadsArriveToo)
{
    std::thread([] { OssDebug(__FILE__, __LINE__, "from elsewhere"); }).join();
    EXPECT_TRUE(waitForRows(1));
}

TEST_F(Log, theOldestGoWhenThereAreTooMany)
{
    for (int i = 0; i < OssDebugLog::Capacity + 10; ++i)
        OssDebug(__FILE__, __LINE__, "line %d", i);
    EXPECT_TRUE(waitForRows(OssDebugLog::Capacity));
    EXPECT_EQ(view->model()->index(0, 0).data().toString(), QStringLiteral("line 10"));
    OssDebug(__FILE__, __LINE__, "one more");
    EXPECT_TRUE(QTest::qWaitFor([this] {
        return view->model()->index(0, 0).data().toString() == QLatin1String("line 11");
    }));
}

TEST_F(Log, filtersByCategoryAndText)
{
    const ExpectedLog expected("brick is missing");
    OssDebug(__FILE__, __LINE__, "[ !! ] brick is missing");
    OssDebug(__FILE__, __LINE__, "[ -- ] brick is there");
    OssDebug(__FILE__, __LINE__, "stone");
    ASSERT_TRUE(waitForRows(3));
    QTest::keyClicks(panel->findChild<QLineEdit *>(), QStringLiteral("BRICK"));
    EXPECT_EQ(rows(), 2);
    const auto buttons = panel->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text() == QLatin1String("Notes"))
            button->click();
    }
    EXPECT_EQ(rows(), 1);
    EXPECT_TRUE(panel->textToCopy().endsWith(QStringLiteral("[ !! ] brick is missing")));
}

TEST_F(Log, dumpsTakeOneRowAndAreCopiedWhole)
{
    OssDebugTitle(__FILE__, __LINE__, "Dump", "%s", "first\nsecond");
    ASSERT_TRUE(waitForRows(1));
    EXPECT_FALSE(view->model()->index(0, 0).data().toString().contains(QLatin1Char('\n')));
    EXPECT_TRUE(panel->textToCopy().endsWith(QStringLiteral("Dump\nfirst\nsecond")));
}
