#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/View/OssNgGlide.h"
#include "ViewFixture.h"

namespace {

constexpr Qt::KeyboardModifiers RoomKeys = Qt::ControlModifier | Qt::AltModifier;

class RoomTest : public OssNgViewTest
{
protected:
    void SetUp() override
    {
        a->setPosition({100, 100});
        b->setPosition({400, 100});
        OssUndoManager::instance()->clear();
    }

    void makeRoom(const QPointF &from, const QPointF &to)
    {
        press(from, Qt::LeftButton, RoomKeys);
        move((from + to) / 2.0);
        move(to);
    }
};

TEST_F(RoomTest, whatStandsRightOfTheLineGoesAlongAsOneStep)
{
    makeRoom({350, 250}, {430, 260});
    EXPECT_EQ(view.interactionState(), OssNgView::MakingRoom);
    EXPECT_EQ(b->pos(), QPointF(480, 100)) << "seen before it is let go";
    release({430, 260});
    EXPECT_EQ(b->pos(), QPointF(480, 100));
    EXPECT_EQ(a->pos(), QPointF(100, 100));
    EXPECT_EQ(OssUndoManager::instance()->undoText(), text("Make Room"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(b->pos(), QPointF(400, 100));
    EXPECT_FALSE(OssUndoManager::instance()->canUndo());
}

TEST_F(RoomTest, downwardsWhatStandsBelowGoesAndBackNoFurtherThanTheLine)
{
    b->setPosition({100, 300});
    makeRoom({60, 280}, {70, 350});
    release({70, 350});
    EXPECT_EQ(b->pos(), QPointF(100, 370));
    makeRoom({60, 350}, {60, 100});
    release({60, 100});
    EXPECT_EQ(b->pos().x(), 100.0);
    EXPECT_GE(b->pos().y(), 350.0);
}

TEST_F(RoomTest, backdropsAcrossTheLineGrowAndEscapePutsAllBack)
{
    const OssNgBackdropNode *area = addBackdrop({50, 50, 600, 300});
    makeRoom({350, 250}, {450, 250});
    EXPECT_EQ(area->rect().width(), 700.0);
    EXPECT_EQ(area->pos(), QPointF(50, 50));
    view.cancelGesture();
    EXPECT_EQ(area->rect().width(), 600.0);
    EXPECT_EQ(b->pos(), QPointF(400, 100));
    EXPECT_FALSE(OssUndoManager::instance()->canUndo());
    press({350, 250}, Qt::LeftButton, RoomKeys);
    release({350, 250});
    EXPECT_FALSE(OssUndoManager::instance()->canUndo()) << "a click makes none";
}

TEST_F(RoomTest, glidingNodesHaveTheirPlacesAndWhateverIsDoneShowsThemThere)
{
    b->setPosition({500, 300});
    view.glideFrom({{b, QPointF(400, 100)}});
    EXPECT_TRUE(view.isGliding());
    EXPECT_EQ(b->pos(), QPointF(500, 300));
    const QImage onTheWay = view.grab().toImage();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !view.isGliding(); }));
    EXPECT_NE(view.grab().toImage(), onTheWay);
    view.glideFrom({{b, QPointF(400, 100)}});
    press({500, 10});
    EXPECT_FALSE(view.isGliding());
    release({500, 10});
    OssNgGlide::setEnabled(false);
    view.glideFrom({{b, QPointF(400, 100)}});
    EXPECT_FALSE(view.isGliding());
    OssNgGlide::setEnabled(true);
    view.glideFrom({{b, b->pos()}});
    EXPECT_FALSE(view.isGliding()) << "no way to go";
}

} // namespace
