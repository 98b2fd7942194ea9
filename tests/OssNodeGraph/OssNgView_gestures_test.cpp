#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgShakeDetector.h"
#include "support/PassTime.h"
#include "ViewFixture.h"

#include <QSignalSpy>

TEST_F(OssNgViewTest, draggedNodeMovesAndIsAnnouncedOnceWhileIdle)
{
    const QSignalSpy moved(a, &OssNgNode::posChanged);
    press(body(a));
    move(body(a) + QPointF(20, 20));
    move(body(a) + QPointF(40, 30));
    EXPECT_EQ(view.interactionState(), 0);
    const QPointF end = view.toScene(at(body(a)));
    release(end);
    EXPECT_NE(a->pos(), QPointF(0, 0));
    EXPECT_EQ(moved.count(), 1);
    EXPECT_EQ(b->pos(), QPointF(300, 40));
}

TEST_F(OssNgViewTest, escapeTakesADragBack)
{
    press(body(a));
    move(body(a) + QPointF(60, 60));
    EXPECT_NE(a->pos(), QPointF(0, 0));
    QTest::keyPress(&view, Qt::Key_Escape);
    EXPECT_EQ(a->pos(), QPointF(0, 0));
    release(body(a) + QPointF(60, 60));
    EXPECT_EQ(a->pos(), QPointF(0, 0));
}

TEST_F(OssNgViewTest, backdropCarriesWhatIsInside)
{
    const auto *backdrop = addBackdrop({-40, -60, 260, 200});
    const QPointF grip = backdrop->pos() + QPointF(100, 14);
    drag(grip, grip + QPointF(50, 25));
    EXPECT_EQ(backdrop->pos(), QPointF(10, -35));
    EXPECT_EQ(a->pos(), QPointF(50, 25));
    EXPECT_EQ(b->pos(), QPointF(300, 40));

    press(backdrop->pos() + QPointF(100, 14));
    move(QPointF(300, 300));
    EXPECT_NE(a->pos(), QPointF(50, 25));
    QTest::keyPress(&view, Qt::Key_Escape);
    EXPECT_EQ(backdrop->pos(), QPointF(10, -35));
    EXPECT_EQ(a->pos(), QPointF(50, 25));
}

TEST_F(OssNgViewTest, pulledWireConnectsOnceAndLightsItsTarget)
{
    const QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    press(a->outputPortScenePos(Out));
    EXPECT_NE(view.interactionState(), 0);
    move({250, 60});
    ASSERT_NE(a->temporaryOutputEdge(), nullptr);
    EXPECT_EQ(scene.mouseGrabberItem(), a->temporaryOutputEdge());
    move(b->inputPortScenePos(In) + QPointF(-6, 3));
    EXPECT_EQ(a->temporaryOutputEdge()->path().pointAtPercent(1.0), b->inputPortScenePos(In));
    release(b->inputPortScenePos(In) + QPointF(-6, 3));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].value<OssNgNode *>(), a);
    ASSERT_NE(b->input(In), nullptr);
    EXPECT_EQ(a->temporaryOutputEdge(), nullptr);
    EXPECT_EQ(scene.mouseGrabberItem(), nullptr);
    EXPECT_EQ(view.interactionState(), 0);
}

TEST_F(OssNgViewTest, wiresArePulledFromInputsAndEndOnTheCanvas)
{
    const QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    drag(b->inputPortScenePos(In), a->outputPortScenePos(Out));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(b->input(In)->source(), a);
    drag(b->inputPortScenePos(In), {250, 300});
    ASSERT_EQ(changed.count(), 2);
    EXPECT_EQ(changed[1][0].value<OssNgNode *>(), nullptr);
    EXPECT_EQ(b->input(In), nullptr);
}

TEST_F(OssNgViewTest, wirePutBackAnnouncesNothing)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    const QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    press(b->inputPortScenePos(In));
    move({250, 300});
    move(b->inputPortScenePos(In));
    release(b->inputPortScenePos(In));
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(b->input(In), edge);
}

TEST_F(OssNgViewTest, grabbedWireGivenBackFromOutsideEndsTheGesture)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    press(b->inputPortScenePos(In));
    move({250, 300});
    ASSERT_EQ(scene.mouseGrabberItem(), edge);
    edge->releaseMouse(QPointF(), true);
    edge->ungrabMouse();
    EXPECT_EQ(edge->path().pointAtPercent(1.0), b->inputPortScenePos(In));
    const QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    move({260, 310});
    release({260, 310});
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(view.interactionState(), 0);
}

TEST_F(OssNgViewTest, dotMarkerClickIsAnnouncedByOneEnd)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    const QSignalSpy fromSource(a, &OssNgNode::clickedOnDotableMarkerOnEdge);
    const QSignalSpy fromDestination(b, &OssNgNode::clickedOnDotableMarkerOnEdge);
    for (const bool shown : {true, false}) {
        edge->switchToDotableMode(shown);
        click(edge->markerPosition());
        EXPECT_EQ(fromSource.count() + fromDestination.count(), 1);
    }
}

TEST_F(OssNgViewTest, severStrokeCutsCrossedWiresOnly)
{
    b->attachInput(In, a, Out);
    auto *c = scene.add("C", {300, 250});
    c->attachInput(In, a, Out);
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    const QPointF end = b->inputPortScenePos(In) + QPointF(-25, 0);
    drag(end + QPointF(0, -30), end + QPointF(0, 20));
    EXPECT_EQ(b->input(In), nullptr);
    EXPECT_NE(c->input(In), nullptr);
}

TEST_F(OssNgViewTest, severModeEndsByEscapeAndWithTheViewButAStrokeIsTakenBackFirst)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    const QSignalSpy modes(&view, &OssNgView::cursorTrackingModeChanged);
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    const QPointF end = b->inputPortScenePos(In) + QPointF(-25, 0);
    press(end + QPointF(0, -30));
    move(end + QPointF(0, 20));
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::SeverTracking);
    release(end + QPointF(0, 20));
    EXPECT_EQ(b->input(In), edge);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::NormalTracking);
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    view.hide();
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::NormalTracking);
    EXPECT_EQ(modes.count(), 4);
}

TEST_F(OssNgViewTest, shakingIsNoticedUnlessItIsSwitchedOffAndTheDragGoesOn)
{
    view.m_shakeToExtractShakes = 3;
    const QSignalSpy shaken(&view, &OssNgView::shakeToExtractTriggered);
    for (const bool watched : {false, true}) {
        view.m_shakeToExtractEnabled = watched;
        a->setPosition({0, 0});
        const QPointF start = body(a);
        press(start);
        for (int i = 0; i < 8; ++i)
            move(start + QPointF(i % 2 ? -30 : 30, 0));
        EXPECT_EQ(shaken.count() > 0, watched);
        move(start + QPointF(100, 40));
        EXPECT_EQ(a->pos(), QPointF(100, 40));
        release(start);
    }
}

TEST_F(OssNgViewTest, shakeTrackingLastsAsLongAsTheDragUnlessAnotherModeIsChosen)
{
    press(body(a));
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::NormalTracking);
    move(body(a) + QPointF(40, 0));
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::ShakeTracking);
    release(body(a));
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::NormalTracking);
    press(body(a));
    move(body(a) + QPointF(40, 0));
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    release(body(a));
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::SeverTracking);
}

TEST_F(OssNgViewTest, wireThatADropWouldReplaceIsShownAsGoing)
{
    OssNgEdge *old = b->attachInput(In, a, Out);
    auto *c = scene.add("C", {0, 200});
    press(c->outputPortScenePos(Out));
    move({200, 200});
    EXPECT_FALSE(old->hasMark(OssNgEdge::Doomed));
    move(b->inputPortScenePos(In));
    EXPECT_TRUE(old->hasMark(OssNgEdge::Doomed));
    move({200, 200});
    EXPECT_FALSE(old->hasMark(OssNgEdge::Doomed));
    release({200, 200});
    EXPECT_EQ(b->input(In), old);
}

TEST_F(OssNgViewTest, viewMovesUnderAHeldWireOrNode)
{
    press(a->outputPortScenePos(Out));
    move({250, 60});
    press({250, 60}, Qt::MiddleButton);
    const QPointF to = view.toScene(view.fromScene({250, 60}) + QPointF(-120, 30));
    move(to, Qt::LeftButton | Qt::MiddleButton);
    EXPECT_EQ(a->temporaryOutputEdge()->path().pointAtPercent(1.0), QPointF(250, 60));
    release({250, 60}, Qt::MiddleButton);
    EXPECT_EQ(view.interactionState(), OssNgView::EdgeDrag);
    const QPointF end = b->inputPortScenePos(In);
    move(end);
    release(end);
    ASSERT_NE(b->input(In), nullptr);
    EXPECT_EQ(b->input(In)->source(), a);
}

TEST_F(OssNgViewTest, pointerHeldAtTheBorderTakesTheNodeAlong)
{
    const QPointF before = middle();
    press(body(a));
    move(body(a) + QPointF(60, 0));
    move(view.toScene(QPointF(view.viewport()->width() + 60, 300)));
    const qreal x = a->pos().x();
    EXPECT_TRUE(QTest::qWaitFor([&] { return middle().x() > before.x() + 100.0; }, 5000));
    EXPECT_GT(a->pos().x(), x + 50.0); // the pointer rests: it moves with the view
    move(middle());
    const QPointF rest = middle();
    passTime(60);
    EXPECT_EQ(middle(), rest);
    release(rest);
}

TEST_F(OssNgViewTest, aGestureEndsWithTheFirstMoveThatKnowsOfNoButton)
{
    for (const QPointF &start : {QPointF(250, 300), QPointF(10, 10)}) {
        press(start);
        move(start + QPointF(30, 0));
        ASSERT_TRUE(view.hasGesture());
        move(start + QPointF(60, 0), Qt::NoButton); // whoever else got the release
        EXPECT_FALSE(view.hasGesture());
        press(start);
        move(start + QPointF(30, 0));
        EXPECT_TRUE(view.hasGesture());
        release(start + QPointF(30, 0));
        EXPECT_FALSE(view.hasGesture());
    }
}

/// Keeps releases of buttons from widgets.
class ReleaseEater : public QObject
{
public:
    ReleaseEater() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        return event->type() == QEvent::MouseButtonRelease && watched->isWidgetType();
    }
};

TEST_F(OssNgViewTest, aGestureEndsWhenItsButtonIsUpThoughNobodySaysSo)
{
    QWindow *window = view.windowHandle();
    const QPoint start = view.viewport()->mapTo(&view, at({250, 300}));
    for (int round = 0; round < 2; ++round) {
        QTest::mousePress(window, Qt::LeftButton, {}, start);
        QTest::mouseMove(window, start + QPoint(30, 5));
        QCoreApplication::processEvents();
        ASSERT_TRUE(view.hasGesture());
        {
            const ReleaseEater eater;
            QTest::mouseRelease(window, Qt::LeftButton, {}, start + QPoint(30, 5));
            QCoreApplication::processEvents();
        }
        QCoreApplication::processEvents();
        EXPECT_FALSE(view.hasGesture());
    }
}

TEST_F(OssNgViewTest, nudgesInARowAreOneUndoStepWithTheBackdropsContents)
{
    OssUndoManager *history = OssUndoManager::instance();
    history->clear();
    auto *backdrop = addBackdrop({-50, -60, 260, 200});
    backdrop->setSelected(true);
    const QSignalSpy announced(a, &OssNgNode::posChanged);
    for (int i = 0; i < 3; ++i)
        view.nudgeSelection({OssNgStyle::GridStep, 0});
    EXPECT_EQ(a->pos(), QPointF(3 * OssNgStyle::GridStep, 0));
    EXPECT_EQ(backdrop->pos(), QPointF(3 * OssNgStyle::GridStep - 50, -60));
    EXPECT_EQ(announced.count(), 3);
    EXPECT_EQ(history->count(), 1);
    history->undo();
    EXPECT_EQ(a->pos(), QPointF(0, 0));
    EXPECT_EQ(backdrop->pos(), QPointF(-50, -60));
    history->redo();
    EXPECT_EQ(a->pos(), QPointF(3 * OssNgStyle::GridStep, 0));
    view.nudgeSelection({0, -1});
    EXPECT_EQ(a->pos().y(), -1.0);
    EXPECT_EQ(b->pos(), QPointF(300, 40));
    history->clear();
}

TEST_F(OssNgViewTest, touchpadPansAndPinchZooms)
{
    const auto wheel = [this](const QPoint &pixels, const QPoint &angle,
                              Qt::KeyboardModifiers modifiers) {
        QWheelEvent event(QPointF(300, 200), view.viewport()->mapToGlobal(QPoint(300, 200)), pixels,
                          angle, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.viewport(), &event);
    };
    const QPointF corner = view.viewportInSceneCoords().topLeft();
    wheel({-30, -20}, {-30, -20}, {});
    EXPECT_EQ(view.viewportInSceneCoords().topLeft() - corner, QPointF(30, 20));
    EXPECT_EQ(view.zoom(), 1.0);
    const QPointF under = view.toScene({300, 200});
    wheel({0, 60}, {0, 60}, Qt::ControlModifier);
    EXPECT_GT(view.zoom(), 1.0);
    EXPECT_LT(QLineF(view.toScene({300, 200}), under).length(), 1.0);
    const qreal zoomed = view.zoom();
    QNativeGestureEvent pinch(Qt::ZoomNativeGesture, nullptr, QPointF(300, 200), QPointF(300, 200),
                              QPointF(300, 200), -0.5, 0, 0);
    QCoreApplication::sendEvent(view.viewport(), &pinch);
    EXPECT_NEAR(view.zoom(), zoomed * 0.5, 1e-6);
}

TEST(OssNgShakeDetectorTest, countsReversalsInAnyDirectionWithinTheTime)
{
    for (const QPointF &axis : {QPointF(1, 0), QPointF(0, 1), QPointF(-0.6, 0.8)}) {
        OssNgShakeDetector shakes;
        int count = 0;
        for (int i = 1; i <= 6; ++i)
            count = shakes.move(axis * (i % 2 ? 40.0 : 0.0), qint64(i) * 50, 500);
        EXPECT_EQ(count, 5);
        EXPECT_EQ(shakes.move(axis * 60.0, 2000, 500), 1); // the older ones are forgotten
    }
}

TEST(OssNgShakeDetectorTest, unsteadyHandsAndBendsAreNoShakes)
{
    OssNgShakeDetector shakes;
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(shakes.move({i * 10.0 + (i % 2 ? 8.0 : 0.0), 0.0}, i, 100000), 0);
    OssNgShakeDetector bend;
    for (int i = 0; i <= 90; ++i) {
        const qreal angle = qDegreesToRadians(qreal(i));
        EXPECT_EQ(bend.move({300 * std::sin(angle), 300 * (1 - std::cos(angle))}, i, 100000), 0);
    }
}
