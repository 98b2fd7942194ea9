#include "Ossa/Palettes/LogPanel.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Palettes/LogModel.h"
#include "OssCore/Program/OssDebug.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QScrollBar>
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

TEST_F(Log, followsTheEndUnlessTheUserHasScrolledAway)
{
    panel->resize(400, 200);
    panel->show();
    const auto write = [this](int count) {
        const int before = rows();
        for (int i = 0; i < count; ++i)
            OssDebug(__FILE__, __LINE__, "line %d", i);
        ASSERT_TRUE(waitForRows(before + count));
        QCoreApplication::processEvents();
    };
    QScrollBar *bar = view->verticalScrollBar();
    write(200);
    ASSERT_GT(bar->maximum(), 0);
    EXPECT_EQ(bar->value(), bar->maximum());
    write(10);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(20);
    write(10);
    EXPECT_EQ(bar->value(), 20);
    bar->setValue(bar->maximum());
    write(10);
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(Log, kindsOfLinesDifferInColour)
{
    const ExpectedLog expected("brick is missing");
    OssDebug(__FILE__, __LINE__, "[ !! ] brick is missing");
    OssDebug(__FILE__, __LINE__, "[ -- ] brick is there");
    OssDebug(__FILE__, __LINE__, "stone");
    ASSERT_TRUE(waitForRows(3));
    const QColor wanted[] = {Theme::warningText(), Theme::mutedText(), QColor()};
    EXPECT_GT(wanted[0].red(), wanted[0].blue() + 40) << "a warning is red";
    EXPECT_LT(std::abs(wanted[1].red() - wanted[1].blue()), 40) << "what is less is grey";
    for (int row = 0; row < 3; ++row)
        EXPECT_EQ(view->model()->index(row, 0).data(Qt::ForegroundRole).value<QColor>(),
                  wanted[row]);
}

TEST_F(Log, whatIsSelectedIsCopiedAndClearingLeavesNothing)
{
    for (int i = 0; i < 4; ++i)
        OssDebug(__FILE__, __LINE__, "line %d", i);
    ASSERT_TRUE(waitForRows(4));
    const auto press = [this](const char *text) {
        const auto buttons = panel->findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            if (button->text() == QLatin1String(text))
                button->click();
        }
    };
    const auto copied = [&press] {
        press("Copy");
        return QGuiApplication::clipboard()->text().split(QLatin1Char('\n'));
    };
    EXPECT_EQ(copied().size(), 4) << "all when none is chosen";
    for (const int row : {3, 1})
        view->selectionModel()->select(view->model()->index(row, 0), QItemSelectionModel::Select);
    const QStringList two = copied();
    ASSERT_EQ(two.size(), 2);
    EXPECT_TRUE(two.first().endsWith(QStringLiteral("line 1"))) << "in their order";
    EXPECT_TRUE(two.last().endsWith(QStringLiteral("line 3")));
    press("Clear");
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(OssDebugLog::instance()->lines().isEmpty());
    EXPECT_TRUE(panel->textToCopy().isEmpty());
}
