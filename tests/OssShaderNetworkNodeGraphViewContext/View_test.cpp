#include "GraphFixture.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include <QAction>
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
        for (int i = 1; i <= 4; ++i) {
            const QPoint position = from + (to - from) * i / 4;
            QMouseEvent move(QEvent::MouseMove, position, viewport->mapToGlobal(position),
                             Qt::NoButton, Qt::LeftButton, modifiers);
            QApplication::sendEvent(viewport, &move);
        }
        QTest::mouseRelease(viewport, Qt::LeftButton, modifiers, to);
    }
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
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] --FIT TO VIEW[lt(")));
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] --POST FIT scale  ")));
    const qreal zoom = m_view->transform().m11();
    m_view->ensureIsVisibleAction();
    EXPECT_TRUE(logHas(QStringLiteral("--ENSURING IS VISIBLE")));
    EXPECT_EQ(m_view->transform().m11(), zoom);
    OssShaderNetworkView lonely(nullptr);
    lonely.frameNodes();
    OssDebugLog::instance()->clear();
    lonely.fitToViewAction();
    EXPECT_TRUE(logHas(QStringLiteral("scene() is NULL")));
    EXPECT_EQ(OssDebugLog::instance()->lines().first().source,
              QStringLiteral("OssShaderNetworkView"));
}

TEST_F(ViewTest, aDragIsOneStepWithItsTitle)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0}, "A");
    OssUndoManager::instance()->clear();
    const QPointF start = itemOf(a)->pos();
    drag(at(a), at(a) + QPoint(120, 60));
    EXPECT_NE(itemOf(a)->pos(), start);
    ASSERT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Move node A"));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(itemOf(a)->pos(), start);
    OssUndoManager::instance()->clear();
    drag(at(a), at(a) + QPoint(2, 1)); // an unsteady click
    EXPECT_EQ(undoCount(), 0);
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
    kept->setName(QStringLiteral("Left")); // nothing can bring the other node back now
    EXPECT_TRUE(item.isNull());
    kept->setSelected(true);
    const int steps = undoCount();
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, QPoint(400, 300));
    EXPECT_EQ(undoCount(), steps);

    // A second button in the middle does not change where the drag began.
    const QPointF start = itemOf(kept)->pos();
    const QPoint from = at(kept);
    const auto send = [viewport](QEvent::Type type, const QPoint &position, Qt::MouseButton button,
                                 Qt::MouseButtons buttons) {
        QMouseEvent event(type, position, viewport->mapToGlobal(position), button, buttons, {});
        QApplication::sendEvent(viewport, &event);
    };
    const Qt::MouseButtons both = Qt::LeftButton | Qt::RightButton;
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, from + QPoint(60, 30), Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonPress, from + QPoint(60, 30), Qt::RightButton, both);
    send(QEvent::MouseButtonRelease, from + QPoint(60, 30), Qt::RightButton, Qt::LeftButton);
    send(QEvent::MouseMove, from + QPoint(120, 60), Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, from + QPoint(120, 60), Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(undoCount(), steps + 1);
    undo->undo();
    EXPECT_EQ(itemOf(kept)->pos(), start);
}

TEST_F(ViewTest, aBackdropTakesItsNodesAlongInOneStep)
{
    OssSnBaseNode *backdrop = addAt("Misc/Backdrop", {-50, -60}, "Area");
    contextOf(backdrop)->setNodeSize({600, 300});
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0}, "A");
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0}, "B");
    OssUndoManager::instance()->clear();
    const QPointF distance = itemOf(b)->pos() - itemOf(backdrop)->pos();
    drag(at(backdrop), at(backdrop) + QPoint(100, 80));
    EXPECT_EQ(itemOf(b)->pos() - itemOf(backdrop)->pos(), distance);
    ASSERT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Move multiple (3) nodes"));
    OssUndoManager::instance()->undo();
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
}

TEST_F(ViewTest, wiresShowTheirMarkerWhileControlIsHeld)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0});
    wire(a, b);
    const OssNgEdge *edge = itemOf(b)->input(QStringLiteral("Input"));
    QTest::keyPress(m_view, Qt::Key_Control);
    EXPECT_TRUE(edge->isDotable());
    QTest::keyRelease(m_view, Qt::Key_A);
    EXPECT_TRUE(edge->isDotable());
    QTest::keyRelease(m_view, Qt::Key_Control);
    EXPECT_FALSE(edge->isDotable());
    QTest::keyPress(m_view, Qt::Key_Control);
    QFocusEvent lost(QEvent::FocusOut);
    QApplication::sendEvent(m_view, &lost);
    EXPECT_FALSE(edge->isDotable());
}

TEST_F(ViewTest, aDotGoesIntoTheWireInOneStep)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *b = addAt("Filter/Blur", {400, 0});
    wire(a, b);
    const QByteArray before = m_project->stateHash();
    OssUndoManager::instance()->clear();
    m_view->highlightDotableEdges();
    itemOf(b)->input(QStringLiteral("Input"))->clickMarker();
    OssSnBaseNode *dot = b->inputNode(QStringLiteral("Input"));
    ASSERT_NE(dot, a);
    EXPECT_EQ(dot->inputNode(QStringLiteral("Input")), a);
    ASSERT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Add dot node in edge"));
    expectWhole();
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
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
    QTest::qWait(600);
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
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0}, "A");
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0}, "B");
    OssSnBaseNode *layer = addAt("_System/Graph Layer Input", {0, 300}, "Layer");
    OssSnBaseNode *viewer = m_network->viewerNode();
    wire(a, b);
    const QByteArray before = m_project->stateHash();
    OssUndoManager *undo = OssUndoManager::instance();
    const auto expectStep = [&](const char *title) {
        ASSERT_EQ(undo->count(), 1) << title;
        EXPECT_EQ(undo->undoText(), QString::fromLatin1(title));
        undo->undo();
        EXPECT_EQ(m_project->stateHash(), before) << title;
        undo->clear();
    };
    undo->clear();
    m_view->deleteSelectedNodes();
    m_view->disableSelectedNodes();
    m_view->extractSelectedNode();
    EXPECT_EQ(undo->count(), 0);

    a->setSelected(true);
    m_view->disableSelectedNodes();
    EXPECT_FALSE(a->enabledAsBool());
    expectStep("Disable A");
    viewer->setSelected(true);
    b->setSelected(true);
    m_view->disableSelectedNodes();
    EXPECT_TRUE(viewer->enabledAsBool());
    expectStep("Toggle Selected Nodes");

    viewer->setSelected(false);
    layer->setSelected(true);
    m_view->deleteSelectedNodes();
    EXPECT_EQ(layer->network(), m_network);
    EXPECT_EQ(a->network(), nullptr);
    EXPECT_TRUE(logHas(QStringLiteral("'Layer' cannot be removed by the user")));
    expectStep("Remove Selected Nodes");

    m_view->deleteAllNodes();
    EXPECT_EQ(m_network->nodes(), (QList<OssSnBaseNode *>{viewer, layer}));
    expectStep("Remove All Nodes");

    m_view->scene()->clearSelection();
    m_view->selectAll();
    EXPECT_EQ(m_network->selectedNodes().size(), 4);
    m_view->togglePortVisibility();
    EXPECT_EQ(contextOf(a)->portListModeAsInt(), 4);
    m_view->togglePortVisibility();
    OssShaderNetworkView lonely(nullptr);
    lonely.deleteSelectedNodes();
    EXPECT_TRUE(logHas(QStringLiteral("m_network is NULL")));
}

TEST_F(ViewTest, groupsOpenByControlAndADoubleClickOrReturn)
{
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}, "G"));
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
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0});
    wire(a, b);
    OssNgEdge *edge = itemOf(b)->input(QStringLiteral("Input"));
    edge->beginDrag(OssNgEdge::DragEnd::Destination);
    edge->grabMouse();
    QTest::keyPress(m_view, Qt::Key_Control);
    EXPECT_FALSE(edge->isDotable()) << "while a wire is in hand";
    QTest::keyRelease(m_view, Qt::Key_Control);
    QTest::keyRelease(m_view, Qt::Key_A);
    EXPECT_EQ(m_view->scene()->mouseGrabberItem(), edge);
    QTest::keyRelease(m_view, Qt::Key_Escape);
    EXPECT_EQ(m_view->scene()->mouseGrabberItem(), nullptr);
    EXPECT_EQ(b->inputNode(QStringLiteral("Input")), a);
    QTest::keyRelease(m_view, Qt::Key_Escape); // there is none
}

TEST_F(ViewTest, theNameOfAPlaceInsideGroupsIsOnTheCanvas)
{
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}, "Wall"));
    const QRect line(0, 0, 400, 36);
    const auto shown = [&] {
        return m_view->viewport()->grab(line).toImage();
    };
    m_view->centerOn(9000, 9000); // far from all nodes
    const QImage root = shown();
    m_network->geoEntity()->setName(QStringLiteral("Another"));
    EXPECT_EQ(shown(), root) << "at the top the tab says it";
    m_manager->showNetworkInView(group->groupNetwork(), m_view);
    m_view->centerOn(9000, 9000);
    const QImage inside = shown();
    EXPECT_NE(inside, root);
    group->setName(QStringLiteral("Dirt"));
    EXPECT_NE(shown(), inside);
    m_manager->showNetworkInView(m_network, m_view);
}

TEST_F(ViewTest, aDotMovesNothingAndABackdropOnlyItsOwn)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0}, "A");
    OssUndoManager::instance()->clear();
    const QPoint from = at(a);
    QWidget *viewport = m_view->viewport();
    QTest::mousePress(viewport, Qt::RightButton, {}, from);
    QTest::mouseRelease(viewport, Qt::RightButton, {}, from + QPoint(80, 80));
    EXPECT_EQ(undoCount(), 0);
    // What is dragged and let go unselected is no step of the selection.
    drag(QPoint(5, 5), QPoint(20, 20));
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(itemOf(a)->pos(), QPointF(0, 0));
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
    EXPECT_EQ(c->inputNode(QStringLiteral("Input")), a);
    EXPECT_TRUE(b->outgoingConnections().isEmpty());
}

} // namespace
