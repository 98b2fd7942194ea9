#include "OssNodeGraph/OssNgView.h"

#include "OssCore/OssUndoManager.h"
#include "OssNodeGraph/OssNgBackdropNode.h"
#include "OssNodeGraph/OssNgEdge.h"
#include "OssNodeGraph/OssNgRenderer.h"
#include "OssNodeGraph/OssNgSceneIndex.h"
#include "OssNodeGraph/OssNgStyle.h"
#include "support/ExampleGraph.h"

#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QSignalSpy>
#include <QtTest>

namespace {

const QString In = QStringLiteral("Input");
const QString Out = QStringLiteral("Output");

class TestView : public OssNgView
{
public:
    using OssNgView::m_navigationControlType;
    using OssNgView::m_shakeToExtractShakes;
    bool insert = false;

    bool isAutoInsertOn() const override { return insert; }
};

/// A real view without a screen, two nodes, real events.
class OssNgViewTest : public testing::Test
{
protected:
    OssNgViewTest()
    {
        view.setScene(&scene);
        view.setMinimapVisible(false);
        view.resize(800, 600);
        view.init();
        view.show();
        view.centerViewOn({250, 100}, false);
        QCoreApplication::processEvents();
    }

    QPoint at(const QPointF &scenePos) const { return view.fromScene(scenePos).toPoint(); }

    void press(const QPointF &scenePos, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(view.viewport(), button, modifiers, at(scenePos));
    }

    /// QTest's moves carry no buttons; ours do.
    void move(const QPointF &scenePos, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        const QPointF local = view.fromScene(scenePos);
        QMouseEvent event(QEvent::MouseMove, local, view.viewport()->mapToGlobal(local.toPoint()),
                          Qt::NoButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }

    void release(const QPointF &scenePos, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseRelease(view.viewport(), button, {}, at(scenePos));
    }

    void drag(const QPointF &from, const QPointF &to)
    {
        press(from);
        move((from + to) / 2.0);
        move(to);
        release(to);
    }

    QPointF body(const OssNgNode *node) const
    {
        return node->pos() + node->bodyRect().topLeft() + QPointF(40, 13);
    }

    GraphScene scene;
    OssNgExtendedNode *a = scene.add(QStringLiteral("A"), {0, 0}, {}, {In}, {Out});
    OssNgExtendedNode *b = scene.add(QStringLiteral("B"), {300, 40}, {}, {In}, {Out});
    TestView view;
};

} // namespace

TEST_F(OssNgViewTest, framingTheViewportsRectangleChangesNothing)
{
    for (const qreal factor : {1.0, 0.37, 1.7, 0.813, 2.0 / 3.0}) {
        view.scaleView(factor);
        view.scrollBy({37.0, -12.0});
        const QRectF before = view.viewportInSceneCoords();
        const QTransform transform = view.viewportTransform();
        view.scaleView(1.31);
        view.fitInView(before, Qt::KeepAspectRatio);
        EXPECT_EQ(view.viewportTransform(), transform) << factor;
        EXPECT_EQ(view.viewportInSceneCoords(), before) << factor;
    }
}

TEST_F(OssNgViewTest, framingAnEmptyRectangleIsHarmless)
{
    const QTransform before = view.viewportTransform();
    view.fitInView(QRectF(), Qt::KeepAspectRatio);
    view.fitInView(QRectF(10, 10, 0, 50), Qt::KeepAspectRatio);
    EXPECT_EQ(view.viewportTransform(), before);
}

TEST_F(OssNgViewTest, zoomingOutAndInLandsExactly)
{
    view.scaleView(0.7391);
    for (const double factor : {1.1, 1.25, 3.0, 7.7}) {
        const qreal before = view.zoom();
        for (int i = 0; i < 5; ++i)
            view.zoomOut(factor, QGraphicsView::AnchorViewCenter);
        for (int i = 0; i < 5; ++i)
            view.zoomIn(factor, QGraphicsView::AnchorViewCenter);
        EXPECT_EQ(view.zoom(), before) << factor;
    }
}

TEST_F(OssNgViewTest, scaleViewKeepsTheCentre)
{
    view.setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    const QPointF center = view.viewportInSceneCoords().center();
    view.scaleView(2.0);
    EXPECT_LT(QLineF(center, view.viewportInSceneCoords().center()).length(), 1.0);
}

TEST_F(OssNgViewTest, visibleNodeBoundsSkipsHiddenNodes)
{
    b->setVisible(false);
    EXPECT_EQ(view.visibleNodeBounds(), a->sceneBoundingRect());
    a->setVisible(false);
    EXPECT_TRUE(view.visibleNodeBounds().isEmpty());
}

TEST_F(OssNgViewTest, clickSelectsAndShiftClickExtends)
{
    press(body(a));
    release(body(a));
    EXPECT_TRUE(a->isSelected());
    press(body(b), Qt::LeftButton, Qt::ShiftModifier);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::ShiftModifier, at(body(b)));
    EXPECT_TRUE(a->isSelected() && b->isSelected());
    press(body(a));
    release(body(a));
    EXPECT_TRUE(a->isSelected() && !b->isSelected());
    press({250, 300});
    release({250, 300});
    EXPECT_TRUE(scene.selectedItems().isEmpty());
}

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

TEST_F(OssNgViewTest, navigationFollowsTheControlType)
{
    const QPointF start = view.viewportInSceneCoords().center() + QPointF(0, 200);
    press(start, Qt::MiddleButton);
    EXPECT_EQ(view.interactionState(), OssNgView::Panning);
    const QPointF before = view.viewportInSceneCoords().topLeft();
    move(start + QPointF(30, 10), Qt::MiddleButton);
    EXPECT_EQ(view.viewportInSceneCoords().topLeft(), before - QPointF(30, 10));
    release(start, Qt::MiddleButton);
    EXPECT_EQ(view.interactionState(), 0);

    view.m_navigationControlType = QStringLiteral("Ossa");
    press(start, Qt::MiddleButton);
    EXPECT_EQ(view.interactionState(), 0);
    release(start, Qt::MiddleButton);
    press(start, Qt::LeftButton, Qt::AltModifier);
    EXPECT_EQ(view.interactionState(), OssNgView::Panning);
    release(start);
}

TEST_F(OssNgViewTest, wheelZoomsAtThePointer)
{
    const QPointF fixed(120.0, 90.0);
    const QPointF under = view.toScene(fixed);
    QWheelEvent wheel(fixed, view.viewport()->mapToGlobal(fixed.toPoint()), {}, {0, 120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &wheel);
    EXPECT_GT(view.zoom(), 1.0);
    EXPECT_LT(QLineF(view.toScene(fixed), under).length(), 1.0);
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

TEST_F(OssNgViewTest, wiresOfHiddenNodesAreHidden)
{
    const OssNgEdge *edge = b->attachInput(In, a, Out);
    a->setVisible(false);
    EXPECT_FALSE(edge->isVisible());
    EXPECT_EQ(view.sceneIndex()->edgeAt(edge->markerPosition(), 5.0), nullptr);
    a->setVisible(true);
    EXPECT_TRUE(edge->isVisible());
    EXPECT_EQ(view.sceneIndex()->edgeAt(edge->markerPosition(), 5.0), edge);
}

TEST_F(OssNgViewTest, minimapMovesTheView)
{
    view.setMinimapVisible(true);
    QCoreApplication::processEvents();
    view.grab();
    const QPointF spot = view.minimapRect().center() + QPointF(20, 5);
    const QPointF wanted = view.minimapToScene(spot);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, spot.toPoint());
    EXPECT_LT(QLineF(view.viewportInSceneCoords().center(), wanted).length(), 5.0);
    view.resize(300, 200);
    EXPECT_FALSE(view.isMinimapVisible());
}

TEST_F(OssNgViewTest, selectionIsSortedFromTopToBottom)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    a->setPosition({0, 500});
    edge->setSelected(true);
    a->setSelected(true);
    b->setSelected(true);
    EXPECT_EQ(view.sortedSelection(), (QList<QGraphicsItem *>{b, a, edge}));
}

TEST_F(OssNgViewTest, newColoursReachTheScreen)
{
    OssNgStyle *style = OssNgStyle::instance();
    const QColor old = style->color(OssNgStyle::Role::Body);
    const QPoint spot = at(a->pos() + a->bodyRect().topLeft() + QPointF(100, 45));
    view.grab();
    view.grab();
    EXPECT_EQ(view.grab().toImage().pixelColor(spot), old);
    style->setColor(OssNgStyle::Role::Body, Qt::darkGreen);
    EXPECT_EQ(view.grab().toImage().pixelColor(spot), QColor(Qt::darkGreen));
    style->setColor(OssNgStyle::Role::Body, old);
}

TEST_F(OssNgViewTest, fileOfTheGraphShowsWhatTheViewShows)
{
    b->attachInput(In, a, Out);
    const QRectF source = view.viewportInSceneCoords();
    QImage file(view.viewport()->size(), QImage::Format_RGB32);
    QPainter painter(&file);
    paintSceneTo(&painter, &scene, source, QRectF(QPointF(), QSizeF(file.size())));
    painter.end();
    const QImage screen = view.grab().toImage().convertToFormat(QImage::Format_RGB32);
    int different = 0;
    for (int y = 0; y < file.height(); ++y) {
        for (int x = 0; x < file.width(); ++x)
            different += std::abs(qGreen(file.pixel(x, y)) - qGreen(screen.pixel(x, y))) > 40;
    }
    EXPECT_LT(different, file.width() * file.height() / 500);
}

TEST_F(OssNgViewTest, everyLevelOfDetailShowsTheNode)
{
    a->setCategory(QStringLiteral("Layer"));
    const QColor header = a->mainColor();
    for (const qreal zoom : {2.0, 1.0, 0.6, 0.4, 0.2, 0.1}) {
        view.scaleView(zoom / view.zoom());
        view.centerViewOn(a->sceneBoundingRect().center(), false);
        for (int pass = 0; pass < 3; ++pass) { // direct, into the cache, from the cache
            const QImage image = view.grab().toImage();
            const QPointF spot = a->pos() + a->bodyRect().topLeft() + QPointF(100, 6);
            const QColor seen = image.pixelColor(at(spot));
            const int away = std::abs(seen.red() - header.red())
                             + std::abs(seen.green() - header.green())
                             + std::abs(seen.blue() - header.blue());
            EXPECT_LT(away, 90) << "zoom " << zoom << " pass " << pass;
        }
    }
}

TEST_F(OssNgViewTest, wireIsDrawnBetweenTheNodes)
{
    const OssNgEdge *edge = b->attachInput(In, a, Out);
    const QPoint middle = at(edge->markerPosition());
    QCoreApplication::processEvents();
    const QColor wire = view.grab().toImage().pixelColor(middle);
    EXPECT_GT(wire.red(), 150);
    b->detachInput(In);
    EXPECT_LT(view.grab().toImage().pixelColor(middle).red(), 80);
}

TEST_F(OssNgViewTest, movingAWireRepaintsOnlyWhatItCovers)
{
    b->attachInput(In, a, Out);
    QCoreApplication::processEvents();

    struct Watch : QObject
    {
        QRegion painted;

        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                painted += static_cast<QPaintEvent *>(event)->region();
            return false;
        }
    } watch;

    view.viewport()->installEventFilter(&watch);
    b->setPosition(b->pos() + QPointF(5, 5));
    QCoreApplication::processEvents();
    EXPECT_FALSE(watch.painted.isEmpty());
    EXPECT_FALSE(watch.painted.contains(QPoint(5, 5)));
}

TEST_F(OssNgViewTest, keysThatAreNotUsedStayIgnored)
{
    QKeyEvent unused(QEvent::KeyPress, Qt::Key_Control, Qt::NoModifier);
    unused.ignore();

    struct Open : OssNgView
    {
        using OssNgView::keyPressEvent;
    } open;

    open.keyPressEvent(&unused);
    EXPECT_FALSE(unused.isAccepted());
    QKeyEvent used(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
    used.ignore();
    open.keyPressEvent(&used);
    EXPECT_TRUE(used.isAccepted());
}
