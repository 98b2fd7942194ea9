#include "Ossa/Window/StatusArea.h"

#include "OssCore/Program/OssStatusManager.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

class Status : public testing::Test
{
protected:
    Status()
        : field(new QLineEdit)
        , area(new StatusArea)
    {
        window.setCentralWidget(field);
        window.setStatusBar(area);
        window.show();
        stop = area->findChild<QPushButton *>();
    }

    /// Steps of work on this thread that take longer than the bar is patient, until cancelled.
    static int stepsUntilCancelled(int atMost)
    {
        OssStatusManager::Work work(QStringLiteral("Baking"));
        int step = 0;
        for (; step < atMost && !work.isCancelled(); ++step) {
            QTest::qSleep(60);
            work.setProgress(step, atMost);
        }
        return step;
    }

    QMainWindow window;
    QLineEdit *field;
    StatusArea *area;
    QPushButton *stop;
};

} // namespace

TEST_F(Status, stopIsThereOnlyWhileWorkRuns)
{
    EXPECT_FALSE(stop->isVisible());
    {
        const OssStatusManager::Work work(QStringLiteral("Baking"));
        EXPECT_TRUE(stop->isVisible());
    }
    EXPECT_FALSE(stop->isVisible());
}

TEST_F(Status, stopReachesWorkThatBlocksTheEventLoop)
{
    QTimer::singleShot(0, stop, [this] { QTest::mouseClick(stop, Qt::LeftButton); });
    EXPECT_LT(stepsUntilCancelled(40), 40);
}

TEST_F(Status, nothingElseIsReachedMeanwhile)
{
    int closed = 0;
    QTimer::singleShot(0, field, [this, &closed] {
        QTest::keyClicks(field, QStringLiteral("typed"));
        closed += window.close() ? 1 : 0;
    });
    stepsUntilCancelled(12);
    EXPECT_TRUE(field->text().isEmpty());
    EXPECT_EQ(closed, 0);
    EXPECT_TRUE(window.isVisible());
    QTest::keyClicks(field, QStringLiteral("typed"));
    EXPECT_EQ(field->text(), QStringLiteral("typed"));
}

TEST_F(Status, messagesAreShown)
{
    OssStatusManager::instance()->showMessage(QStringLiteral("Saved wall.ossa"));
    EXPECT_EQ(area->currentMessage(), QStringLiteral("Saved wall.ossa"));
}

TEST_F(Status, whatIsNoInputArrivesMeanwhile)
{
    bool arrived = false;
    QMetaObject::invokeMethod(
        field, [&arrived] { arrived = true; }, Qt::QueuedConnection);
    stepsUntilCancelled(12);
    EXPECT_TRUE(arrived);
}

TEST_F(Status, workWithinWorkLetsNothingElseThroughEither)
{
    QTimer::singleShot(0, field, [this] {
        Q_EMIT OssStatusManager::instance()->progressChanged(1, 2);
        QTest::keyClicks(field, QStringLiteral("typed"));
    });
    stepsUntilCancelled(12);
    EXPECT_TRUE(field->text().isEmpty());
}
