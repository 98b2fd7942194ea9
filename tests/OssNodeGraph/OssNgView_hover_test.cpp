#include "OssCore/Undo/OssUndoManager.h"
#include "support/PassTime.h"
#include "ViewFixture.h"

#include <QGestureEvent>
#include <QHelpEvent>
#include <QPinchGesture>
#include <QSignalSpy>
#include <QToolTip>

// What lies under the pointer, and what is done by it without a button.

namespace {

class OssNgHoverTest : public OssNgViewTest
{
protected:
    void hover(const QPointF &scenePos) { move(scenePos, Qt::NoButton); }

    Qt::CursorShape cursorAt(const QPointF &scenePos)
    {
        hover(scenePos);
        return view.viewport()->cursor().shape();
    }

    QString tipAt(const QPointF &scenePos)
    {
        QHelpEvent help(QEvent::ToolTip, at(scenePos), view.viewport()->mapToGlobal(at(scenePos)));
        QCoreApplication::sendEvent(view.viewport(), &help);
        return QToolTip::text();
    }

    void leave()
    {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(&view, &event);
    }
};

TEST_F(OssNgHoverTest, onlyWhatIsUnderThePointerLightsUpAndNothingWhenItIsGone)
{
    OssNgEdge *wire = b->attachInput(In, a, Out);
    OssNgEdge *other = scene.add("C", {300, 200})->attachInput(In, a, Out);
    auto *backdrop = addBackdrop({-100, -100, 700, 400});
    const auto lit = [&] {
        return QVector<bool>{a->hovered(), b->hovered(), backdrop->hovered(), wire->hovered(),
                             other->hovered()};
    };
    const QSignalSpy told(a, &OssNgNode::hoveredChanged);
    hover(body(a));
    EXPECT_EQ(lit(), QVector<bool>({true, false, false, false, false}));
    hover(body(a) + QPointF(1, 1));
    EXPECT_EQ(told.count(), 1);
    hover(wire->markerPosition());
    EXPECT_EQ(lit(), QVector<bool>({false, false, false, true, false})) << "also on a backdrop";
    hover(other->path().pointAtPercent(0.6));
    EXPECT_EQ(lit(), QVector<bool>({false, false, false, false, true})) << "each by itself";
    hover(b->outputPortScenePos(Out) + QPointF(4, 0));
    EXPECT_EQ(lit(), QVector<bool>({false, true, false, false, false})) << "a port beside its node";
    hover({0, -95});
    EXPECT_EQ(lit(), QVector<bool>({false, false, true, false, false}));
    press(body(b));
    move(body(b) + QPointF(40, 0));
    leave();
    release(body(b) + QPointF(40, 0));
    EXPECT_TRUE(b->hovered());
    leave();
    EXPECT_EQ(lit(), QVector<bool>(5, false));
    hover(wire->markerPosition());
    leave();
    EXPECT_FALSE(wire->hovered());
    hover(wire->markerPosition());
    b->detachInput(In); // the wire dies under the pointer
    hover(body(a));
    EXPECT_TRUE(a->hovered());
}

TEST_F(OssNgHoverTest, theCursorSaysWhatAPressWouldDo)
{
    const QRectF area(-100, 200, 400, 300);
    addBackdrop(area);

    const struct
    {
        QPointF at;
        Qt::CursorShape shape = Qt::ArrowCursor;
    } cases[] = {
        {area.topLeft() + QPointF(2, 2), Qt::SizeFDiagCursor},
        {area.bottomRight() - QPointF(2, 2), Qt::SizeFDiagCursor},
        {area.topRight() + QPointF(-2, 2), Qt::SizeBDiagCursor},
        {area.bottomLeft() + QPointF(2, -2), Qt::SizeBDiagCursor},
        {{area.left() + 2, area.center().y()}, Qt::SizeHorCursor},
        {{area.right() - 2, area.center().y()}, Qt::SizeHorCursor},
        {{area.center().x(), area.top() + 2}, Qt::SizeVerCursor},
        {{area.center().x(), area.bottom() - 2}, Qt::SizeVerCursor},
        {area.center(), Qt::ArrowCursor},
        {body(a), Qt::ArrowCursor},
        {a->outputPortScenePos(Out), Qt::PointingHandCursor},
    };

    for (const auto &c : cases)
        EXPECT_EQ(cursorAt(c.at), c.shape) << &c - cases;
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    for (const auto &c : cases)
        EXPECT_EQ(cursorAt(c.at), Qt::CrossCursor) << &c - cases;
    view.setCursorTrackingMode(OssNgView::NormalTracking);
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(OssNgHoverTest, tipsComeOverNodesAndGoBesideThem)
{
    a->setToolTip(text("softens"));
    EXPECT_TRUE(tipAt(body(a)).contains(text("softens")));
    EXPECT_TRUE(tipAt(a->outputPortScenePos(Out) + QPointF(4, 0)).contains(Out))
        << "beyond the body";
    b->attachInput(In, a, Out);
    const QPointF half = (a->outputPortScenePos(Out) + b->inputPortScenePos(In)) / 2.0;
    EXPECT_TRUE(tipAt(half).contains(a->text() + text(" . ") + Out));
    tipAt(QPointF(250, 400));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QToolTip::isVisible(); }));
    OssNgView empty;
    QHelpEvent help(QEvent::ToolTip, {5, 5}, {5, 5});
    QCoreApplication::sendEvent(empty.viewport(), &help);
    EXPECT_FALSE(QToolTip::isVisible());
}

TEST_F(OssNgHoverTest, twoFingersZoomAndMoveTheView)
{
    QPinchGesture pinch;
    const auto send = [&](QPinchGesture::ChangeFlags flags) {
        pinch.setChangeFlags(flags);
        QGestureEvent event({&pinch});
        QCoreApplication::sendEvent(view.viewport(), &event);
    };
    const auto global = [&](const QPoint &pos) {
        return QPointF(view.viewport()->mapToGlobal(pos));
    };
    pinch.setScaleFactor(1.5);
    pinch.setLastCenterPoint(global({300, 200}));
    pinch.setCenterPoint(global({330, 210}));
    const QPointF corner = view.viewportInSceneCoords().topLeft();
    send({});
    EXPECT_EQ(view.zoom(), 1.0);
    EXPECT_EQ(view.viewportInSceneCoords().topLeft(), corner);
    send(QPinchGesture::CenterPointChanged);
    EXPECT_EQ(view.zoom(), 1.0);
    EXPECT_EQ(view.viewportInSceneCoords().topLeft(), corner - QPointF(30, 10));
    const QPointF under = view.toScene({330, 210});
    send(QPinchGesture::ScaleFactorChanged);
    EXPECT_NEAR(view.zoom(), 1.5, 1e-6);
    EXPECT_LT(QLineF(view.toScene({330, 210}), under).length(), 1.0);
    QGestureEvent none(QList<QGesture *>{});
    QCoreApplication::sendEvent(view.viewport(), &none);
    QNativeGestureEvent turn(Qt::RotateNativeGesture, nullptr, QPointF(300, 200), QPointF(300, 200),
                             QPointF(300, 200), -0.5, 0, 0);
    QCoreApplication::sendEvent(view.viewport(), &turn);
    EXPECT_NEAR(view.zoom(), 1.5, 1e-6);
}

TEST_F(OssNgHoverTest, theViewGlidesToANearPlaceAndJumpsToAFarOne)
{
    const QPointF start = middle();
    view.centerViewOn(start + QPointF(300, 200), true);
    EXPECT_EQ(middle(), start) << "not yet";
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return QLineF(middle(), start + QPointF(300, 200)).length() < 1.5; }));
    const QPointF there = middle();
    view.centerViewOn({9000, 7000}, true);
    EXPECT_LT(QLineF(middle(), {9000, 7000}).length(), 1.5);
    view.centerViewOn(there, false);
    EXPECT_LT(QLineF(middle(), there).length(), 1.5);
    view.centerViewOn(there + QPointF(300, 0), true);
    view.panLeft(); // who moves the view has it
    const QPointF panned = middle();
    passTime(60);
    EXPECT_EQ(middle(), panned);
    view.hide();
    view.centerViewOn(there, true);
    EXPECT_LT(QLineF(middle(), there).length(), 1.5);
}

TEST_F(OssNgHoverTest, theWireUnderThePointerIsPickedUpAndDroppedByAClick)
{
    OssNgEdge *wire = b->attachInput(In, a, Out);
    const auto point = [this](const QPointF &scenePos) {
        QCursor::setPos(view.viewport()->mapToGlobal(at(scenePos)));
    };
    point({250, 400});
    view.pickUpEdge();
    EXPECT_EQ(view.interactionState(), OssNgView::Idle);
    const QPointF near = b->inputPortScenePos(In) + QPointF(-20, 0);
    point(near);
    b->setVirtualInput(In, true);
    wire->setMark(OssNgEdge::Virtual, true);
    view.pickUpEdge();
    EXPECT_EQ(view.interactionState(), OssNgView::Idle) << "no user's to take";
    wire->setMark(OssNgEdge::Virtual, false);
    b->setVirtualInput(In, false);
    view.pickUpEdge();
    EXPECT_EQ(view.interactionState(), OssNgView::EdgeDrag);
    EXPECT_EQ(scene.mouseGrabberItem(), wire);
    view.pickUpEdge(); // it is in hand
    hover({250, 300});
    hover({250, 350});
    release({250, 350});
    EXPECT_EQ(b->input(In), nullptr);
    EXPECT_EQ(view.interactionState(), OssNgView::Idle);
    OssNgView empty;
    empty.pickUpEdge();
    EXPECT_EQ(empty.interactionState(), OssNgView::Idle);
}

TEST_F(OssNgHoverTest, aNodeInFrontOfAWireTakesTheLight)
{
    b->setPosition({700, 0});
    OssNgEdge *wire = b->attachInput(In, a, Out);
    auto *c = scene.add("C", {0, 0});
    c->setPosition(wire->markerPosition() - QPointF(60, 12));
    hover(wire->markerPosition());
    EXPECT_TRUE(c->hovered());
    EXPECT_FALSE(wire->hovered());
    const QSignalSpy marker(b, &OssNgNode::clickedOnDotableMarkerOnEdge);
    wire->clickMarker(); // which is not there
    EXPECT_EQ(marker.count(), 0);
    wire->switchToDotableMode(true);
    wire->clickMarker();
    EXPECT_EQ(marker.count(), 1);
}

TEST_F(OssNgHoverTest, aBandIsDrawnByAWayAndNotByAnUnsteadyHand)
{
    const QPointF beside = a->pos() + a->bodyRect().bottomLeft() + QPointF(30, 3);
    press(beside);
    move(beside - QPointF(3, 5));
    EXPECT_FALSE(a->isSelected());
    move(beside + QPointF(40, 40));
    move(beside - QPointF(3, 5));
    EXPECT_TRUE(a->isSelected()) << "once it is drawn it may be small";
    release(beside, Qt::RightButton); // that is another button's
    EXPECT_EQ(view.interactionState(), OssNgView::RubberBand);
    release(beside);
    EXPECT_EQ(view.interactionState(), OssNgView::Idle);
}

// --- wires in hand

TEST_F(OssNgHoverTest, aNodeHeldOverAWireShowsThatItWouldBeSplicedIn)
{
    view.insert = true;
    b->setPosition({700, 0});
    OssNgEdge *wire = b->attachInput(In, a, Out);
    auto *c = scene.add("C", {300, 300});
    auto *d = scene.add("D", {300, 500});
    const QPointF way = wire->markerPosition() - c->sceneBoundingRect().center();
    const auto inviting = [&] {
        return wire->hasMark(OssNgEdge::Inviting);
    };
    press(body(c));
    move(body(c) + QPointF(0, -20));
    EXPECT_FALSE(inviting());
    const QPointF start = body(c) - c->pos() + QPointF(300, 300);
    move(start + way);
    EXPECT_TRUE(inviting());
    move(start + way + QPointF(1, 0));
    EXPECT_TRUE(inviting());
    move(start);
    EXPECT_FALSE(inviting());
    move(start + way);
    key(Qt::Key_Escape);
    EXPECT_FALSE(inviting());
    release(start + way);
    d->setSelected(true);
    press(body(c), Qt::LeftButton, Qt::ShiftModifier);
    move(body(c) + QPointF(0, -20));
    move(start + way);
    EXPECT_FALSE(inviting()) << "of several none is spliced in";
    release(start + way);
}

TEST_F(OssNgHoverTest, aDropOnAWireThatWasNotLitDoesNothing)
{
    view.insert = true;
    b->setPosition({700, 0});
    OssNgEdge *wire = b->attachInput(In, a, Out);
    auto *c = scene.add("C", {300, 300});
    auto *d = scene.add("D", {300, 500});
    const auto dragOntoWire = [&] {
        const QPointF start = body(c);
        const QPointF way = wire->markerPosition() - c->sceneBoundingRect().center();
        press(start);
        move(start + way / 2.0);
        move(start + way);
        release(start + way);
        c->processAutoinsert();
    };
    c->setSelected(true);
    d->setSelected(true);
    dragOntoWire();
    EXPECT_EQ(b->input(In), wire) << "several are in the hand";
    c->setPosition({300, 300});
    d->setSelected(false);
    dragOntoWire();
    EXPECT_EQ(b->input(In)->source(), c) << "the next drag knows nothing of the last";
}

TEST_F(OssNgHoverTest, aShakenNodeIsNotPutBackByTheSameDrag)
{
    view.insert = true;
    view.m_shakeToExtractShakes = 2;
    b->setPosition({700, 0});
    auto *c = scene.add("C", {320, 0});
    c->attachInput(In, a, Out);
    b->attachInput(In, c, Out);
    QObject::connect(&view, &OssNgView::shakeToExtractTriggered, &view, [&] {
        c->detachInput(In);
        b->attachInput(In, a, Out);
    });
    const QPointF start = body(c);
    press(start);
    for (const int x : {40, -40, 40, -40, 0})
        move(start + QPointF(x, 0));
    ASSERT_EQ(b->input(In)->source(), a);
    EXPECT_EQ(c->autoinsertCandidate(), b->input(In)) << "it lies where it was";
    EXPECT_FALSE(b->input(In)->hasMark(OssNgEdge::Inviting));
    release(start);
    c->processAutoinsert();
    EXPECT_EQ(b->input(In)->source(), a);
}

TEST_F(OssNgHoverTest, aClickOnAPortOrWireIsNoPull)
{
    OssNgEdge *wire = b->attachInput(In, a, Out);
    const QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    for (const QPointF &place : {b->inputPortScenePos(In), a->outputPortScenePos(Out),
                                 wire->markerPosition() + QPointF(12, 0)}) {
        const QPainterPath before = wire->path();
        press(place);
        move(place + QPointF(2, 1)); // an unsteady hand
        EXPECT_EQ(wire->path(), before);
        release(place + QPointF(2, 1));
        EXPECT_EQ(a->temporaryOutputEdge(), nullptr);
    }
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(b->input(In), wire);
}

TEST_F(OssNgHoverTest, aWireIsNeverDroppedOnTheNodeItComesFromAndItsSourceCanBeChanged)
{
    a->addOutputPort(text("Second"));
    b->attachInput(In, a, Out);
    const QSignalSpy toA(a, &OssNgNode::inputSourceChanged);
    press(a->outputPortScenePos(Out));
    move({200, 200});
    for (const QPointF &own : {a->inputPortScenePos(In), body(a)}) {
        move(own);
        EXPECT_EQ(a->temporaryOutputEdge()->path().pointAtPercent(1.0), own);
    }
    release(a->inputPortScenePos(In));
    EXPECT_EQ(toA.count(), 0);

    // Pressed near its source it is that end which moves.
    const QSignalSpy changed(b, &OssNgNode::inputSourceChanged);
    const QPointF near = a->outputPortScenePos(Out) + QPointF(14, 0);
    const auto pull = [&](const QPointF &to) {
        press(near);
        move({200, 250});
        move(to);
        release(to);
    };
    pull(a->outputPortScenePos(Out));
    EXPECT_EQ(changed.count(), 0) << "where it was";
    pull(a->outputPortScenePos(text("Second")));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(b->input(In)->sourceOutput(), text("Second"));
    OssNgEdge *wire = b->input(In);
    wire->beginDrag(OssNgEdge::DragEnd::Destination);
    wire->releaseMouse({250, 400}, true);
    EXPECT_EQ(b->input(In), wire) << "kept";
    wire->dragTo({0, 0}); // it is in nobody's hand
    EXPECT_EQ(wire->path().pointAtPercent(1.0), b->inputPortScenePos(In));
}

TEST_F(OssNgHoverTest, nothingIsHeldOfWhatDiesWhileItIsDragged)
{
    OssUndoManager::instance()->clear();
    for (const bool cancelled : {false, true}) {
        auto backdrop = std::make_unique<OssNgBackdropNode>();
        scene.addItem(backdrop.get());
        backdrop->setPosition({-100, 200});
        backdrop->setRect({0, 0, 300, 200});
        auto node = std::make_unique<OssNgNode>();
        scene.addItem(node.get());
        node->setPosition({0, 500});
        auto source = std::make_unique<OssNgNode>();
        scene.addItem(source.get());
        source->addOutputPort(Out);
        source->setPosition({400, 200});
        const auto dragged = [&](const QPointF &from, auto *dies) {
            press(from);
            move(from + QPointF(30, 30));
            dies->reset();
            move(from + QPointF(40, 40));
            if (cancelled)
                key(Qt::Key_Escape);
            release(from + QPointF(40, 40));
            EXPECT_EQ(view.interactionState(), OssNgView::Idle);
        };
        dragged({-98, 300}, &backdrop);
        dragged(body(node.get()), &node);
        dragged(source->outputPortScenePos(Out), &source);
    }
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
}

TEST_F(OssNgHoverTest, areasSnapToTheGridByTheWayTheyAreDragged)
{
    auto *backdrop = addBackdrop({-100, 200, 301, 203});
    view.toggleSnapToGrid();
    press({199, 401});
    move({230, 420});
    move({238, 431});
    release({238, 431});
    EXPECT_EQ(backdrop->rect().size(), QSizeF(301 + 48, 203 + 24));
    b->setSelected(true);
    b->setPosition({303, 45});
    a->setPosition({5, 7});
    press(body(a), Qt::LeftButton, Qt::ShiftModifier);
    move(body(a) + QPointF(20, 20));
    move(QPointF(body(a) - a->pos()) + QPointF(5, 7) + QPointF(50, 31));
    release(body(a));
    EXPECT_EQ(a->pos(), QPointF(48, 48));
    EXPECT_EQ(b->pos(), QPointF(303 + 43, 45 + 41)) << "by the way of the pressed one";
}

TEST_F(OssNgHoverTest, aCutThatIsTakenBackLeavesWiresAsTheyWere)
{
    OssNgEdge *wire = b->attachInput(In, a, Out);
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    const QPointF end = b->inputPortScenePos(In) + QPointF(-25, 0);
    press(end + QPointF(0, -30));
    move(end + QPointF(0, 20));
    EXPECT_TRUE(wire->hasMark(OssNgEdge::Doomed));
    key(Qt::Key_Escape);
    EXPECT_FALSE(wire->hasMark(OssNgEdge::Doomed));
    release(end + QPointF(0, 20));
    EXPECT_EQ(b->input(In), wire);
}

TEST_F(OssNgHoverTest, shakesAreCountedOnTheScreen)
{
    view.m_shakeToExtractShakes = 5;
    view.m_shakeToExtractTime = 100000;
    const auto shownAfter = [&](bool watched, int reversals) {
        view.m_shakeToExtractEnabled = watched;
        const QPointF start = body(a);
        press(start);
        for (int i = 0; i <= reversals; ++i)
            move(start + QPointF(i % 2 ? -40 : 40, 0));
        move(start + QPointF(reversals % 2 ? -40 : 40, 60));
        const QImage image = shown();
        key(Qt::Key_Escape);
        release(start);
        return image;
    };
    shownAfter(false, 0); // the first press selects
    EXPECT_EQ(shownAfter(true, 0), shownAfter(false, 0));
    const QImage twice = shownAfter(true, 2);
    EXPECT_NE(twice, shownAfter(false, 2));
    EXPECT_EQ(twice, shownAfter(true, 2));
}

// --- keys and parents

TEST_F(OssNgHoverTest, nudgingNothingIsNoStep)
{
    OssUndoManager::instance()->clear();
    view.nudgeSelection({10, 0});
    a->setSelected(true);
    press(body(a));
    view.nudgeSelection({10, 0}); // while it is in hand
    release(body(a));
    view.nudgeSelection({});
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
    EXPECT_EQ(a->pos(), QPointF(0, 0));
    OssNgView empty;
    empty.nudgeSelection({10, 0});
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
}

} // namespace
