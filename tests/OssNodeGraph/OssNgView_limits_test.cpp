#include "ViewFixture.h"

#include <QCursor>
#include <QScrollBar>

#include <cmath>

// What the view does at its edges, and what it shows while something is in hand.

TEST_F(OssNgViewTest, zoomsThatAreNoneChangeNothing)
{
    const double zoom = view.zoom();
    const QRectF seen = view.viewportInSceneCoords();
    view.fitInView(QRectF(), Qt::KeepAspectRatio);
    view.fitInView(QRectF(10, 10, 0, 50), Qt::KeepAspectRatio);
    EXPECT_EQ(view.viewportInSceneCoords(), seen) << "nothing to frame";
    for (const double none : {0.0, -1.0}) {
        view.scaleView(none);
        view.zoomIn(none, QGraphicsView::AnchorViewCenter);
        view.zoomOut(none, QGraphicsView::AnchorViewCenter);
        EXPECT_EQ(view.zoom(), zoom) << none;
        EXPECT_EQ(view.viewportInSceneCoords(), seen) << none;
    }
    view.fitInView(QRectF(0, 0, 1e-6, 1e-6));
    EXPECT_LT(view.zoom(), 1000.0);
    view.fitInView(QRectF(0, 0, 1e9, 1e9));
    EXPECT_GT(view.zoom(), 1e-5);
}

TEST_F(OssNgViewTest, whatWasFittedStaysSoWhenTheViewGrowsButIsNotMadeLarger)
{
    const QRectF wide(-1000, -750, 2000, 1500);
    view.fitInView(wide);
    const double before = view.zoom();
    view.resize(1200, 900);
    QCoreApplication::processEvents();
    EXPECT_GT(view.zoom(), before * 1.3);
    EXPECT_LT((middle() - wide.center()).manhattanLength(), 4.0);
    view.fitInView(QRectF(0, 0, 1300, 1000));
    view.resize(2400, 1800);
    QCoreApplication::processEvents();
    EXPECT_EQ(view.zoom(), 1.0);
}

TEST_F(OssNgViewTest, zoomingKeepsThePlaceUnderThePointer)
{
    const QPoint place(200, 150);
    QCursor::setPos(view.viewport()->mapToGlobal(place));
    ASSERT_EQ(QCursor::pos(), view.viewport()->mapToGlobal(place));
    const QPointF scenePlace = view.toScene(place);
    view.zoomIn(2.0, QGraphicsView::AnchorUnderMouse);
    EXPECT_LT((view.toScene(place) - scenePlace).manhattanLength(), 2.0);
    QCursor::setPos(view.viewport()->mapToGlobal(QPoint(-300, -300)));
    const QPointF centre = middle();
    view.zoomIn(1.5, QGraphicsView::AnchorUnderMouse);
    EXPECT_LT((middle() - centre).manhattanLength(), 2.0) << "a pointer elsewhere has no say";
}

TEST_F(OssNgViewTest, aPointerFarBeyondTheBorderMovesTheViewNoFaster)
{
    for (const double way : {-1.0, 1.0}) {
        view.centerViewOn({250, 100}, false);
        a->setPosition({250, 100});
        press(body(a));
        move(body(a) + QPointF(30, 0));
        double last = middle().x();
        double widest = 0.0;
        int steps = 0;
        const auto connection = QObject::connect(
            view.horizontalScrollBar(), &QScrollBar::valueChanged, &view, [&] {
                const double now = middle().x();
                widest = std::max(widest, std::abs(now - last) * view.zoom());
                last = now;
                ++steps;
            });
        move(view.toScene(QPointF(400 + way * 20000, 300)));
        EXPECT_TRUE(QTest::qWaitFor([&] { return steps > 2; }, 5000));
        QObject::disconnect(connection);
        key(Qt::Key_Escape);
        release(body(a));
        EXPECT_GT(widest, 5.0);
        EXPECT_LT(widest, 60.0) << way;
    }
}

TEST_F(OssNgViewTest, whatIsInHandIsShownAndOnlyThen)
{
    const QImage before = shown();
    press({250, 250});
    EXPECT_EQ(shown(), before) << "a press is no band";
    move({260, 260});
    move({280, 290});
    EXPECT_NE(shown(), before);
    key(Qt::Key_Escape);
    release({280, 290});
    EXPECT_EQ(shown(), before);

    QVector<QImage> ghosts{before};
    for (const int count : {1, 2, 20, 21}) {
        view.showDropGhost({300, 300}, count);
        ghosts.append(shown());
        EXPECT_EQ(ghosts.indexOf(ghosts.last()), ghosts.size() - 1) << count;
    }
    view.hideDropGhost();
    EXPECT_EQ(shown(), before);
}

TEST_F(OssNgViewTest, theMinimapFollowsTheGraph)
{
    view.setMinimapVisible(true);
    const auto map = [this] {
        return view.grab(view.minimapRect().toAlignedRect()).toImage();
    };
    map();
    const QImage before = map();
    scene.add("Far", {900, 700});
    EXPECT_TRUE(QTest::qWaitFor([&] { return map() != before; }, 5000));
}

TEST_F(OssNgViewTest, aDebuggedNodesColourReachesTheScreen)
{
    const auto shownAgain = [this] {
        shown();
        return shown(); // from the cache
    };
    const QImage plain = shownAgain();
    a->setDebugColor(Qt::red);
    EXPECT_EQ(shownAgain(), plain) << "without the mark";
    a->setMark(OssNgNode::Debug, true);
    const QImage red = shownAgain();
    EXPECT_NE(red, plain);
    a->setDebugColor(Qt::blue);
    EXPECT_NE(shownAgain(), red);
}
