#include "GraphFixture.h"
#include "support/InterfaceUser.h"
#include "support/PassTime.h"

#include <QtTest>

namespace {

class ViewTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_view->window()->show(); // or the view has no size of its own
        m_view->fitInView({-100, -100, 800, 500}, Qt::KeepAspectRatio);
    }

    QPoint at(const OssSnBaseNode *node) const
    {
        return m_view->mapFromScene(itemOf(node)->scenePos() + QPointF(30, 8));
    }

    void drag(const QPoint &from, const QPoint &to, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget *viewport = m_view->viewport();
        QTest::mousePress(viewport, Qt::LeftButton, modifiers, from);
        for (int i = 1; i <= 4; ++i)
            moveMouse(viewport, from + (to - from) * i / 4, Qt::LeftButton, modifiers);
        QTest::mouseRelease(viewport, Qt::LeftButton, modifiers, to);
    }

    /// Two blurs side by side, the left one into the right one.
    void addWire()
    {
        m_a = addAt("Filter/Blur", {0, 0}, "A");
        m_b = addAt("Filter/Blur", {300, 0}, "B");
        wire(m_a, m_b);
        m_edge = itemOf(m_b)->input(text("Input"));
        begin();
    }

    OssSnBaseNode *m_a = nullptr;
    OssSnBaseNode *m_b = nullptr;
    OssNgEdge *m_edge = nullptr;
};

TEST_F(ViewTest, framingNeverMagnifies)
{
    addAt("Filter/Blur", {0, 0})->setSelected(true);
    m_view->frameSelectedNodes();
    EXPECT_LE(m_view->transform().m11(), 1.0);
    m_view->frameNodes();
    EXPECT_LE(float(m_view->transform().m11()), 1.0F);
    addAt("Filter/Blur", {9000, 6000});
    m_view->frameNodes();
    EXPECT_LT(m_view->transform().m11(), 0.2);
    EXPECT_TRUE(m_view->viewportInSceneCoords()
                    .adjusted(-1, -1, 1, 1)
                    .contains(m_view->visibleNodeBounds()));
    m_view->frameSelectedNodes();
    EXPECT_EQ(float(m_view->transform().m11()), 1.0F);
}

TEST_F(ViewTest, framingCommandsTellWhatTheyDo)
{
    const ExpectedLog expected("--Rectangle has been downscaled to");
    addAt("Filter/Blur", {0, 0});
    m_view->fitToViewAction();
    expectLogged("[ !! ] --FIT TO VIEW[lt(");
    expectLogged("[ !! ] --POST FIT scale  ");
    const qreal zoom = m_view->transform().m11();
    m_view->ensureIsVisibleAction();
    expectLogged("--ENSURING IS VISIBLE");
    EXPECT_EQ(m_view->transform().m11(), zoom);
    OssShaderNetworkView lonely(nullptr);
    lonely.frameNodes();
    OssDebugLog::instance()->clear();
    lonely.fitToViewAction();
    expectLogged("scene() is NULL");
    EXPECT_EQ(OssDebugLog::instance()->lines().first().source, text("OssShaderNetworkView"));
}

TEST_F(ViewTest, aDragIsOneStepWithItsTitleAndAnythingLessIsNone)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0}, "A");
    const QPoint from = at(a);
    begin();
    drag(from, from + QPoint(120, 60));
    EXPECT_NE(itemOf(a)->pos(), QPointF(0, 0));
    expectStepBack("Move node A");
    drag(from, from + QPoint(2, 1)); // an unsteady click
    dragMouse(m_view->viewport(), Qt::RightButton, from, from + QPoint(80, 80));
    drag(QPoint(5, 5), QPoint(20, 20)); // of nothing, which unselects
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(itemOf(a)->pos(), QPointF(0, 0));
}

TEST_F(ViewTest, aDragIsSafeFromWhatHappensMeanwhile)
{
    OssSnBaseNode *kept = addAt("Filter/Blur", {300, 200}, "Kept");
    OssUndoManager *undo = OssUndoManager::instance();
    undo->clear();
    OssSnBaseNode *doomed = addAt("Filter/Blur", {0, 0}, "Doomed");
    const QPointer<OssNgNode> item = itemOf(doomed);
    QWidget *viewport = m_view->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, at(doomed));
    undo->undo();
    kept->setName(text("Left")); // nothing can bring the other node back now
    EXPECT_TRUE(item.isNull());
    kept->setSelected(true);
    const int steps = undoCount();
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, QPoint(400, 300));
    EXPECT_EQ(undoCount(), steps);

    // A second button in the middle does not change where the drag began.
    const QPointF start = itemOf(kept)->pos();
    const QPoint from = at(kept);
    const QPoint middle = from + QPoint(60, 30);
    const QPoint end = from + QPoint(120, 60);
    const auto send = [viewport](QEvent::Type type, const QPoint &place, Qt::MouseButton button,
                                 Qt::MouseButtons held) {
        QMouseEvent event(type, place, viewport->mapToGlobal(place), button, held, {});
        QApplication::sendEvent(viewport, &event);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    moveMouse(viewport, middle);
    send(QEvent::MouseButtonPress, middle, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    send(QEvent::MouseButtonRelease, middle, Qt::RightButton, Qt::LeftButton);
    moveMouse(viewport, end);
    send(QEvent::MouseButtonRelease, end, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(undoCount(), steps + 1);
    undo->undo();
    EXPECT_EQ(itemOf(kept)->pos(), start);
}

TEST_F(ViewTest, aBackdropTakesItsNodesAlongInOneStep)
{
    OssSnBaseNode *backdrop = addArea({-50, -60, 600, 300}, "Area");
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0}, "A");
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0}, "B");
    begin();
    const QPointF distance = itemOf(b)->pos() - itemOf(backdrop)->pos();
    drag(at(backdrop), at(backdrop) + QPoint(100, 80));
    EXPECT_EQ(itemOf(b)->pos() - itemOf(backdrop)->pos(), distance);
    expectStepBack("Move multiple (3) nodes");
    EXPECT_EQ(itemOf(a)->pos(), QPointF(0, 0));
    EXPECT_EQ(itemOf(backdrop)->pos(), QPointF(-50, -60));
}

TEST_F(ViewTest, doubleClickNamesTheNodeAndPicksTheViewer)
{
    OssSnBaseNode *viewer = m_network->viewerNode();
    contextOf(viewer)->setNodePosition({300, 0});
    OssShaderNetworkManager::instance()->setCurrentViewerNode(nullptr);
    QSignalSpy clicked(m_view, &OssShaderNetworkView::nodeDoubleClicked);
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, at(viewer));
    ASSERT_EQ(clicked.count(), 1);
    EXPECT_EQ(OssShaderNetworkManager::instance()->currentViewerNode(), viewer);
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 300});
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, at(blur));
    EXPECT_EQ(OssShaderNetworkManager::instance()->currentViewerNode(), viewer);
    clicked.removeLast();
    select({});
    // On the empty canvas the selection stands in.
    viewer->setSelected(true);
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(clicked.count(), 2);
    // A port is its node's, also where it reaches out of it.
    const QPointF port = itemOf(blur)->outputPortScenePos(blur->prefferedOutputPoint());
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {},
                       m_view->mapFromScene(port + QPointF(5, 0)));
    ASSERT_EQ(clicked.count(), 3);
    EXPECT_EQ(clicked.last().first().value<OssSnBaseNode *>(), blur);
}

TEST_F(ViewTest, aDoubleClickMeansTheNodeAndNotTheWireBelowIt)
{
    OssSnBaseNode *left = addAt("Procedural/Color", {-300, 0});
    OssSnBaseNode *right = addAt("Filter/Blur", {500, 0});
    OssSnBaseNode *above = addAt("Filter/Blur", {80, 0});
    wire(left, right);
    const QPointF from = itemOf(left)->outputPortScenePos(left->prefferedOutputPoint());
    const QPointF to = itemOf(right)->inputPortScenePos(text("Input"));
    itemOf(above)->setPosition((from + to) / 2.0 - QPointF(40, 20));
    select({});
    QSignalSpy clicked(m_view, &OssShaderNetworkView::nodeDoubleClicked);
    const QPoint place = m_view->mapFromScene((from + to) / 2.0);
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, place);
    ASSERT_EQ(clicked.count(), 1);
    EXPECT_EQ(clicked.first().first().value<OssSnBaseNode *>(), above);
    EXPECT_EQ(m_view->scene()->selectedItems(), QList<QGraphicsItem *>{itemOf(above)});
}

TEST_F(ViewTest, wiresShowTheirMarkerWhileControlIsHeld)
{
    addWire();
    QTest::keyPress(m_view, Qt::Key_Control);
    EXPECT_TRUE(m_edge->isDotable());
    QTest::keyRelease(m_view, Qt::Key_A);
    EXPECT_TRUE(m_edge->isDotable());
    QTest::keyRelease(m_view, Qt::Key_Control);
    EXPECT_FALSE(m_edge->isDotable());
    QTest::keyPress(m_view, Qt::Key_Control);
    loseFocus(m_view);
    EXPECT_FALSE(m_edge->isDotable());
}

TEST_F(ViewTest, aDotGoesIntoTheWireInOneStep)
{
    addWire();
    m_view->highlightDotableEdges();
    m_edge->clickMarker();
    OssSnBaseNode *dot = m_b->inputNode(text("Input"));
    ASSERT_NE(dot, m_a);
    EXPECT_EQ(dot->inputNode(text("Input")), m_a);
    expectWhole();
    expectStepBack("Add dot node in edge");
}

TEST_F(ViewTest, newNodesMoveAwayFromOthersButNotFromBackdrops)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *b = addAt("Filter/Blur", {0, 0});
    m_view->placeNode(b);
    const QRectF bounds = itemOf(a)->boundingRect();
    EXPECT_EQ(itemOf(b)->pos(), QPointF(bounds.width() + 30, bounds.height() + 30));
    OssSnBaseNode *backdrop = addAt("Misc/Backdrop", {2000, 2000});
    OssSnBaseNode *c = addAt("Filter/Blur", {2020, 2050});
    m_view->placeNode(c);
    EXPECT_EQ(itemOf(c)->pos(), QPointF(2020, 2050));
    EXPECT_EQ(itemOf(backdrop)->pos(), QPointF(2000, 2000));
}

TEST_F(ViewTest, preferencesReachTheViewAfterItsBinding)
{
    OssShaderNetworkView view(nullptr);
    passTime(600);
    EXPECT_EQ(view.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
    m_manager->setZoomTo(OssSnNodeGraphViewContextManager::Center);
    EXPECT_EQ(view.transformationAnchor(), QGraphicsView::AnchorViewCenter);
    m_manager->setZoomTo(9);
    EXPECT_EQ(view.transformationAnchor(), QGraphicsView::AnchorViewCenter);
    m_manager->resetZoomTo();
    view.setCursorTrackingMode(OssNgView::ShakeTracking);
    m_manager->setShakeToExtractEnabled(false);
    EXPECT_EQ(view.cursorTrackingMode(), 0);
    view.setCursorTrackingMode(OssNgView::SeverTracking);
    m_manager->setShakeToExtractEnabled(true);
    m_manager->setShakeToExtractEnabled(false);
    EXPECT_EQ(view.cursorTrackingMode(), 1);
    m_manager->resetShakeToExtractEnabled();
    EXPECT_TRUE(view.isAutoInsertOn());
    m_manager->setIsAutoInsertOn(false);
    EXPECT_FALSE(view.isAutoInsertOn());
    m_manager->resetIsAutoInsertOn();
}

TEST_F(ViewTest, viewsDoNotPaintWhileTheirNetworkForbidsIt)
{
    {
        const OssShaderNetwork::ViewUpdateLock lock(m_network);
        EXPECT_FALSE(m_view->updatesEnabled());
        OssShaderNetworkView late(nullptr);
        late.setNetwork(m_network);
        EXPECT_FALSE(late.updatesEnabled());
        late.setNetwork(nullptr);
    }
    EXPECT_TRUE(m_view->updatesEnabled());
}

TEST_F(ViewTest, editingCommandsAreOneStepWithTheirTitle)
{
    const ExpectedLog expected("Node '/Layer' is protected and stays");
    OssSnBaseNode *layer = addAt("_System/Graph Layer Input", {0, 300}, "Layer");
    OssSnBaseNode *viewer = m_network->viewerNode();
    addWire();
    select({m_a});
    m_view->disableSelectedNodes();
    EXPECT_FALSE(m_a->enabledAsBool());
    expectStepBack("Disable A");
    select({m_a, m_b, viewer});
    m_view->disableSelectedNodes();
    EXPECT_TRUE(viewer->enabledAsBool());
    expectStepBack("Toggle Selected Nodes");

    select({m_a, m_b, layer});
    m_view->deleteSelectedNodes();
    EXPECT_EQ(layer->network(), m_network);
    EXPECT_EQ(m_a->network(), nullptr);
    expectLogged("'Layer' cannot be removed by the user");
    expectStepBack("Remove Selected Nodes");

    m_view->deleteAllNodes();
    EXPECT_EQ(m_network->nodes(), (QList<OssSnBaseNode *>{viewer, layer}));
    expectStepBack("Remove All Nodes");

    select({});
    m_view->selectAll();
    EXPECT_EQ(m_network->selectedNodes().size(), 4);
    m_view->togglePortVisibility();
    EXPECT_EQ(contextOf(m_a)->portListModeAsInt(), 4);
    m_view->togglePortVisibility();
    OssShaderNetworkView lonely(nullptr);
    lonely.deleteSelectedNodes();
    expectLogged("m_network is NULL");
}

TEST_F(ViewTest, groupsOpenByControlAndADoubleClickOrReturn)
{
    auto *group = addGroup("G");
    OssSnBaseNode *blur = addAt("Filter/Blur", {300, 0});
    QTabWidget *widget = m_manager->nodeGraphWidget();
    QWindow *window = m_view->window()->windowHandle();
    const auto doubleClick = [&](const OssSnBaseNode *node, Qt::KeyboardModifiers modifiers) {
        const QPoint place = m_view->viewport()->mapTo(m_view->window(), at(node));
        QTest::mouseDClick(window, Qt::LeftButton, modifiers, place);
        QCoreApplication::processEvents();
    };
    doubleClick(group, {});
    doubleClick(blur, Qt::ControlModifier);
    EXPECT_EQ(widget->count(), 1);
    doubleClick(group, Qt::ControlModifier);
    ASSERT_EQ(widget->count(), 2);
    EXPECT_EQ(widget->currentIndex(), 1);
    widget->setCurrentIndex(0);
    widget->removeTab(1);
    const auto enter = [&](OssSnBaseNode *node, Qt::Key key, Qt::KeyboardModifiers modifiers) {
        select({node});
        QTest::keyClick(m_view, key, modifiers);
    };
    enter(group, Qt::Key_Return, {});
    enter(group, Qt::Key_A, Qt::ControlModifier);
    enter(blur, Qt::Key_Return, Qt::ControlModifier);
    select({});
    QTest::keyClick(m_view, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(widget->count(), 1);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        enter(group, key, Qt::ControlModifier);
        ASSERT_EQ(widget->count(), 2);
        widget->setCurrentIndex(0);
        widget->removeTab(1);
    }
}

TEST_F(ViewTest, escapeLetsGoOfAWireAndOtherKeysDoNot)
{
    addWire();
    m_edge->beginDrag(OssNgEdge::DragEnd::Destination);
    m_edge->grabMouse();
    QTest::keyPress(m_view, Qt::Key_Control);
    EXPECT_FALSE(m_edge->isDotable()) << "while a wire is in hand";
    QTest::keyRelease(m_view, Qt::Key_Control);
    QTest::keyRelease(m_view, Qt::Key_A);
    EXPECT_EQ(m_view->scene()->mouseGrabberItem(), m_edge);
    QTest::keyRelease(m_view, Qt::Key_Escape);
    EXPECT_EQ(m_view->scene()->mouseGrabberItem(), nullptr);
    EXPECT_EQ(m_b->inputNode(text("Input")), m_a);
    QTest::keyRelease(m_view, Qt::Key_Escape); // there is none
}

TEST_F(ViewTest, theNameOfAPlaceInsideGroupsIsOnTheCanvas)
{
    auto *group = addGroup("Wall");
    const QRect line(0, 0, 400, 36);
    const auto shown = [&] {
        return m_view->viewport()->grab(line).toImage();
    };
    m_view->centerOn(9000, 9000); // far from all nodes
    const QImage root = shown();
    m_network->geoEntity()->setName(text("Another"));
    EXPECT_EQ(shown(), root) << "at the top the tab says it";
    m_manager->showNetworkInView(group->groupNetwork(), m_view);
    m_view->centerOn(9000, 9000);
    const QImage inside = shown();
    EXPECT_NE(inside, root);
    group->setName(text("Dirt"));
    EXPECT_NE(shown(), inside);
    m_manager->showNetworkInView(m_network, m_view);
}

TEST_F(ViewTest, shakingTakesTheSelectionOutOfItsWires)
{
    OssSnBaseNode *a = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0});
    OssSnBaseNode *c = addAt("Filter/Blur", {600, 0});
    wire(a, b);
    wire(b, c);
    select({b});
    Q_EMIT m_view->shakeToExtractTriggered();
    EXPECT_EQ(c->inputNode(text("Input")), a);
    EXPECT_TRUE(b->outgoingConnections().isEmpty());
}

} // namespace
