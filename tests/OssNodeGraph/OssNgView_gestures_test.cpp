#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgShakeDetector.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "ViewFixture.h"

#include <QSignalSpy>

TEST_F(OssNgViewTest, draggedNodeMovesAndIsAnnouncedOnceWhileIdle)
{
    QSignalSpy moved(a, &OssNgNode::posChanged);
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
    auto *backdrop = scene.add<OssNgBackdropNode>(QString(), {-40, -60});
    backdrop->setRect({0, 0, 260, 200});
    const QPointF grip = backdrop->pos() + QPointF(100, 14);
    drag(grip, grip + QPointF(50, 25));
    EXPECT_EQ(backdrop->pos(), QPointF(10, -35));
    EXPECT_EQ(a->pos(), QPointF(50, 25));
    EXPECT_EQ(b->pos(), QPointF(300, 40));
}

TEST_F(OssNgViewTest, resizingABackdropIsOneUndoStep)
{
    OssUndoManager::instance()->clear();
    auto *backdrop = scene.add<OssNgBackdropNode>(QString(), {-100, 150});
    backdrop->setRect({0, 0, 300, 200});
    press({-98, 250});
    EXPECT_NE(view.interactionState(), 0);
    move({-140, 250});
    move({-148, 250});
    release({-148, 250});
    EXPECT_EQ(backdrop->sceneBoundingRect(), QRectF(-150, 150, 350, 200));
    ASSERT_EQ(OssUndoManager::instance()->count(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(backdrop->sceneBoundingRect(), QRectF(-100, 150, 300, 200));
    OssUndoManager::instance()->clear();
}

TEST_F(OssNgViewTest, pulledWireConnectsOnceAndLightsItsTarget)
{
    QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
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

TEST_F(OssNgViewTest, wireCanBePulledFromAnInput)
{
    QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    drag(b->inputPortScenePos(In), a->outputPortScenePos(Out));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(b->input(In)->source(), a);
}

TEST_F(OssNgViewTest, wireDroppedOnCanvasDisconnects)
{
    b->attachInput(In, a, Out);
    QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    drag(b->inputPortScenePos(In), {250, 300});
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].value<OssNgNode *>(), nullptr);
    EXPECT_EQ(b->input(In), nullptr);
}

TEST_F(OssNgViewTest, wirePutBackAnnouncesNothing)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
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
    QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    move({260, 310});
    release({260, 310});
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(view.interactionState(), 0);
}

TEST_F(OssNgViewTest, sceneNodeDyingUnderAPulledWireIsSurvived)
{
    auto source = std::make_unique<OssNgNode>();
    source->addOutputPort(Out);
    source->setPosition({100, 200});
    scene.addItem(source.get());
    press(source->outputPortScenePos(Out));
    move({250, 60});
    source.reset();
    move({260, 70});
    release({260, 70});
    EXPECT_EQ(view.interactionState(), 0);
}

TEST_F(OssNgViewTest, dotMarkerClickIsAnnouncedByOneEnd)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    QSignalSpy fromSource(a, &OssNgNode::clickedOnDotableMarkerOnEdge);
    QSignalSpy fromDestination(b, &OssNgNode::clickedOnDotableMarkerOnEdge);
    edge->switchToDotableMode(true);
    press(edge->markerPosition());
    release(edge->markerPosition());
    EXPECT_EQ(fromSource.count() + fromDestination.count(), 1);
    edge->switchToDotableMode(false);
    press(edge->markerPosition());
    release(edge->markerPosition());
    EXPECT_EQ(fromSource.count() + fromDestination.count(), 1);
}

TEST_F(OssNgViewTest, rubberBandSelectsNodesItTouches)
{
    press({-60, 150});
    EXPECT_NE(view.interactionState(), 0);
    move({0, 100});
    move({100, 20});
    release({100, 20});
    EXPECT_TRUE(a->isSelected());
    EXPECT_FALSE(b->isSelected());
}

TEST_F(OssNgViewTest, severStrokeCutsCrossedWiresOnly)
{
    b->attachInput(In, a, Out);
    auto *c = scene.add(QStringLiteral("C"), {300, 250}, {}, {In}, {Out});
    c->attachInput(In, a, Out);
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    const QPointF end = b->inputPortScenePos(In) + QPointF(-25, 0);
    drag(end + QPointF(0, -30), end + QPointF(0, 20));
    EXPECT_EQ(b->input(In), nullptr);
    EXPECT_NE(c->input(In), nullptr);
}

TEST_F(OssNgViewTest, nodeDroppedOnAWireIsSplicedInWhenAskedFor)
{
    b->setPosition({600, 0});
    b->attachInput(In, a, Out);
    auto *c = scene.add(QStringLiteral("C"), {300, 0}, {}, {In}, {Out});
    c->setPosition(b->input(In)->markerPosition() - c->boundingRect().center());
    c->processAutoinsert();
    EXPECT_EQ(b->input(In)->source(), a);
    view.insert = true;
    c->processAutoinsert();
    EXPECT_EQ(c->input(In)->source(), a);
    EXPECT_EQ(b->input(In)->source(), c);
}

TEST_F(OssNgViewTest, shakingIsNoticedAndTheDragGoesOn)
{
    view.m_shakeToExtractShakes = 3;
    QSignalSpy shaken(&view, &OssNgView::shakeToExtractTriggered);
    const QPointF start = body(a);
    press(start);
    for (int i = 0; i < 6; ++i)
        move(start + QPointF(i % 2 ? -30 : 30, 0));
    EXPECT_GE(shaken.count(), 1);
    move(start + QPointF(100, 40));
    EXPECT_EQ(a->pos(), QPointF(100, 40));
    release(start);
}

TEST_F(OssNgViewTest, shakingMeansNothingWhenItIsSwitchedOff)
{
    view.m_shakeToExtractShakes = 3;
    view.m_shakeToExtractEnabled = false;
    const QSignalSpy shaken(&view, &OssNgView::shakeToExtractTriggered);
    const QPointF start = body(a);
    press(start);
    for (int i = 0; i < 8; ++i)
        move(start + QPointF(i % 2 ? -30 : 30, 0));
    release(start);
    EXPECT_EQ(shaken.count(), 0);
}

TEST_F(OssNgViewTest, shakeTrackingLastsAsLongAsTheDrag)
{
    press(body(a));
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::NormalTracking);
    move(body(a) + QPointF(40, 0));
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::ShakeTracking);
    release(body(a));
    EXPECT_EQ(view.cursorTrackingMode(), OssNgView::NormalTracking);
}

TEST_F(OssNgViewTest, snappedNodeLandsOnTheGrid)
{
    a->setPosition({5, 7});
    view.toggleSnapToGrid();
    drag(body(a), body(a) + QPointF(50, 31));
    EXPECT_EQ(a->pos(), QPointF(48, 48));
}

TEST_F(OssNgViewTest, wireThatADropWouldReplaceIsShownAsGoing)
{
    OssNgEdge *old = b->attachInput(In, a, Out);
    auto *c = scene.add(QStringLiteral("C"), {0, 200}, {}, {In}, {Out});
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
    const QPointF before = view.viewportInSceneCoords().center();
    press(body(a));
    move(body(a) + QPointF(60, 0));
    move(view.toScene(QPointF(view.viewport()->width() + 60, 300)));
    const qreal x = a->pos().x();
    QTRY_VERIFY_WITH_TIMEOUT(view.viewportInSceneCoords().center().x() > before.x() + 100.0, 5000);
    EXPECT_GT(a->pos().x(), x + 50.0); // the pointer rests: it moves with the view
    move(view.viewportInSceneCoords().center());
    const QPointF rest = view.viewportInSceneCoords().center();
    QTest::qWait(60);
    EXPECT_EQ(view.viewportInSceneCoords().center(), rest);
    release(rest);
}

TEST_F(OssNgViewTest, heldNudgeKeyIsOneUndoStepWithTheBackdropsContents)
{
    OssUndoManager *history = OssUndoManager::instance();
    history->clear();
    OssNgBackdropNode backdrop;
    scene.addItem(&backdrop);
    backdrop.setPosition({-50, -60});
    backdrop.setRect({0, 0, 260, 200});
    backdrop.setSelected(true);
    QSignalSpy announced(a, &OssNgNode::posChanged);
    for (int i = 0; i < 3; ++i)
        key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(a->pos(), QPointF(3 * OssNgStyle::GridStep, 0));
    EXPECT_EQ(backdrop.pos(), QPointF(3 * OssNgStyle::GridStep - 50, -60));
    EXPECT_EQ(announced.count(), 3);
    EXPECT_EQ(history->count(), 1);
    history->undo();
    EXPECT_EQ(a->pos(), QPointF(0, 0));
    EXPECT_EQ(backdrop.pos(), QPointF(-50, -60));
    history->redo();
    EXPECT_EQ(a->pos(), QPointF(3 * OssNgStyle::GridStep, 0));
    key(Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier);
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
            count = shakes.move(axis * (i % 2 ? 40.0 : 0.0), i * 50, 500);
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
