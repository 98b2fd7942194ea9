#include "View/Backdrops.h"

#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "PointerFixture.h"

namespace {

using Networks = OssShaderNetworkManager;
using Nodes = QList<OssSnBaseNode *>;

/// A backdrop with one node on it, and a node beside it.
class BackdropsTest : public PointerFixture
{
protected:
    void SetUp() override
    {
        PointerFixture::SetUp();
        m_view->resize(1200, 900);
        contextOf(m_network->viewerNode())->setNodePosition({5000, 5000});
        m_area = addArea({0, 0, 300, 240}, "Area");
        m_inside = addAt("Filter/Blur", {40, 60}, "Inside");
        m_outside = addAt("Filter/Blur", {600, 60}, "Outside");
        m_inside->setContainer(m_area);
        select({});
        m_view->resetTransform();
        m_view->centerOn(300, 300);
        mark();
    }

    void mark()
    {
        begin();
        m_before = m_project->stateHash();
    }

    /// By its header, its corner to a place of the scene.
    void dragTo(const OssSnBaseNode *node, const QPointF &corner)
    {
        select({});
        const QPoint from = Backdrops::isBackdrop(node)
                                ? at(rectOf(node).topLeft() + QPointF(100, 12))
                                : headerOf(node);
        drag(from, from + at(corner) - at(rectOf(node).topLeft()));
    }

    void expectOneStepBack(const char *title)
    {
        expectStep(title);
        const QByteArray done = m_project->stateHash();
        undo();
        EXPECT_EQ(m_project->stateHash(), m_before) << title;
        OssUndoManager::instance()->redo();
        EXPECT_EQ(m_project->stateHash(), done) << title;
        expectWhole();
    }

    QByteArray m_before;
    QPoint m_pointer;
    OssSnBaseNode *m_area = nullptr;
    OssSnBaseNode *m_inside = nullptr;
    OssSnBaseNode *m_outside = nullptr;
};

TEST_F(BackdropsTest, aNodeDroppedInIsHeldWhollyAndOneDraggedOutIsNot)
{
    dragTo(m_outside, {250, 100});
    EXPECT_EQ(m_outside->container(), nullptr) << "its middle lies beside";
    undo();
    OssUndoManager::instance()->clear();
    dragTo(m_outside, {220, 190});
    EXPECT_EQ(m_outside->container(), m_area);
    EXPECT_TRUE(rectOf(m_area).contains(rectOf(m_outside)));
    EXPECT_TRUE(rectOf(m_area).contains(QRectF(0, 0, 300, 240)));
    EXPECT_EQ(itemOf(m_inside)->pos(), QPointF(40, 60));
    expectOneStepBack("Move node Outside");
    mark();
    const QRectF held = rectOf(m_area);
    dragTo(m_outside, {700, 500});
    EXPECT_EQ(m_outside->container(), nullptr);
    EXPECT_EQ(rectOf(m_area), held);
    expectOneStepBack("Move node Outside");
}

TEST_F(BackdropsTest, aBackdropLightsUpAsLongAsItWouldTakeWhatIsInTheHand)
{
    const auto isLit = [this] {
        const QColor edge = m_view->viewport()->grab().toImage().pixelColor(at({1, 120}));
        return edge.red() > 200 && edge.green() > 150 && edge.blue() < 130;
    };
    const QPoint from = headerOf(m_outside);
    const auto bring = [&](const QPointF &middle) {
        const QPoint way = at(middle) - at(rectOf(m_outside).center());
        pointer(QEvent::MouseMove, m_pointer += way, Qt::NoButton, Qt::LeftButton);
    };
    m_pointer = from;
    pointer(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    bring({400, 150});
    EXPECT_FALSE(isLit());
    bring({200, 235});
    EXPECT_TRUE(isLit()) << "half over its lower edge";
    bring({200, 250});
    EXPECT_FALSE(isLit()) << "no longer with its middle";
    bring({200, 235});
    pointer(QEvent::MouseButtonRelease, m_pointer, Qt::LeftButton, Qt::NoButton);
    EXPECT_FALSE(isLit());
    EXPECT_EQ(m_outside->container(), m_area);
}

TEST_F(BackdropsTest, membersMakeRoomForANodeThatIsDroppedOverThem)
{
    const qreal height = rectOf(m_inside).height();
    OssSnBaseNode *below = addAt("Filter/Blur", {50, 60 + height + 5}, "Below");
    mark();
    dragTo(m_outside, {60, 62});
    EXPECT_EQ(itemOf(m_inside)->pos(), QPointF(40, 60));
    EXPECT_GE(rectOf(m_outside).top(), 60 + height + 30 - 1);
    EXPECT_GE(rectOf(below).top(), rectOf(m_outside).bottom() + 30 - 1);
    EXPECT_TRUE(rectOf(m_area).contains(rectOf(below)));
    expectOneStepBack("Move node Outside");
    mark();
    dragTo(m_outside, itemOf(m_outside)->pos() + QPointF(30, -50));
    EXPECT_TRUE(rectOf(m_outside).intersects(rectOf(m_inside))) << "who moves within is free to";
    expectOneStepBack("Move node Outside");
}

TEST_F(BackdropsTest, thoseAroundGrowThoseInLineStayInLineAndThoseBelowGiveWay)
{
    OssSnBaseNode *outer = addArea({-60, -100, 400, 400}, "Outer");
    OssSnBaseNode *peer = addArea({0, 800, 300, 100}, "Peer");
    OssSnBaseNode *beneath = addArea({-60, 320, 300, 200}, "Beneath");
    OssSnBaseNode *carried = addAt("Procedural/Scalar", {0, 360}, "Carried");
    OssSnBaseNode *elsewhere = addArea({900, 0, 200, 800}, "Elsewhere");
    mark();
    dragTo(m_outside, {220, 180});
    EXPECT_TRUE(rectOf(m_area).contains(rectOf(m_outside)));
    EXPECT_GT(rectOf(m_area).width(), 300.0);
    EXPECT_EQ(rectOf(peer).width(), rectOf(m_area).width());
    EXPECT_EQ(rectOf(peer).left(), rectOf(m_area).left());
    EXPECT_TRUE(rectOf(outer).contains(rectOf(m_area)));
    EXPECT_EQ(m_area->container(), outer);
    EXPECT_EQ(rectOf(beneath).top(), rectOf(outer).bottom() + 30.0);
    EXPECT_EQ(carried->container(), beneath);
    EXPECT_EQ(rectOf(elsewhere), QRectF(900, 0, 200, 800));
    expectOneStepBack("Move node Outside");
}

TEST_F(BackdropsTest, thoseAboveAGrowingBackdropGoUpAndTheirNodesWithThem)
{
    OssSnBaseNode *above = addArea({20, -130, 400, 120}, "Above");
    OssSnBaseNode *carried = addAt("Procedural/Scalar", {40, -90}, "Carried");
    OssSnBaseNode *highest = addArea({60, -240, 500, 100}, "Highest");
    mark();
    dragTo(m_outside, {100, -20});
    EXPECT_EQ(m_outside->container(), m_area);
    ASSERT_LT(rectOf(m_area).top(), 0.0);
    EXPECT_EQ(rectOf(above).bottom(), rectOf(m_area).top() - 30.0);
    EXPECT_EQ(carried->container(), above);
    EXPECT_TRUE(rectOf(above).contains(rectOf(carried)));
    EXPECT_LE(rectOf(highest).bottom(), rectOf(above).top() - 30.0);
    expectOneStepBack("Move node Outside");
}

TEST_F(BackdropsTest, membersMakeRoomForABackdropToo)
{
    OssSnBaseNode *outer = addArea({-20, -60, 500, 400}, "Outer");
    OssSnBaseNode *dropped = addArea({600, 300, 300, 260}, "Dropped");
    OssSnBaseNode *carried = addAt("Filter/Blur", {640, 360}, "Carried");
    m_network->removeNodes({m_area});
    mark();
    dragTo(dropped, {20, 30});
    EXPECT_EQ(dropped->container(), outer);
    EXPECT_EQ(carried->container(), dropped);
    EXPECT_EQ(itemOf(carried)->pos() - itemOf(dropped)->pos(), QPointF(40, 60));
    EXPECT_EQ(m_inside->container(), outer);
    EXPECT_GE(rectOf(m_inside).top(), rectOf(dropped).bottom() + 30 - 1);
    expectOneStepBack("Move multiple (2) nodes");
}

TEST_F(BackdropsTest, aBackdropThatGrowsOverTheOneAroundItEndsThere)
{
    OssSnBaseNode *outer = addArea({-5, -5, 310, 250}, "Outer");
    OssSnBaseNode *dropped = addArea({400, 300, 320, 220}, "Dropped");
    mark();
    dragTo(dropped, {-10, 10});
    EXPECT_EQ(dropped->container(), m_area);
    EXPECT_TRUE(rectOf(m_area).contains(rectOf(dropped)));
    EXPECT_TRUE(rectOf(outer).contains(rectOf(m_area)));
    EXPECT_EQ(m_area->container(), outer);
    EXPECT_EQ(outer->container(), nullptr);
    expectOneStepBack("Move node Dropped");
}

TEST_F(BackdropsTest, aBackdropCarriesItsMembersAndTheyStayItsOwn)
{
    dragTo(m_area, {100, 300});
    EXPECT_EQ(itemOf(m_inside)->pos(), QPointF(140, 360));
    EXPECT_EQ(m_inside->container(), m_area);
    expectOneStepBack("Move multiple (2) nodes");
    OssSnBaseNode *large = addArea({-100, 400, 700, 500}, "Large");
    mark();
    dragTo(m_area, {0, 480});
    EXPECT_EQ(m_area->container(), large);
    EXPECT_EQ(m_inside->container(), m_area);
    expectOneStepBack("Move multiple (2) nodes");
    mark();
    // Dragged small, it gives up what no longer lies on it.
    const QRectF area = rectOf(m_area);
    drag(at(area.bottomRight() - QPointF(2, 2)), at(area.topLeft() + QPointF(110, 80)));
    EXPECT_LT(rectOf(m_area).width(), 120.0);
    EXPECT_EQ(m_inside->container(), large);
    expectOneStepBack("Resize backdrop");
}

TEST_F(BackdropsTest, aBackdropDraggedOverASmallerOneKeepsItsMembers)
{
    for (const bool isSaid : {true, false}) {
        addArea({490, 290, 250, 200}, "Small");
        m_inside->setContainer(isSaid ? m_area : nullptr);
        mark();
        dragTo(m_area, {460, 240});
        EXPECT_EQ(m_inside->container(), m_area) << isSaid;
        expectOneStepBack("Move multiple (2) nodes");
        dragTo(m_area, {0, 300});
        EXPECT_EQ(itemOf(m_inside)->pos(), QPointF(40, 360));
        dragTo(m_area, {0, 0});
    }
}

TEST_F(BackdropsTest, aNodeMadeInABackdropOrWiredNearAMemberJoinsIt)
{
    OssSnBaseNode *made = m_view->createNodeAt(text("Filter/Blur"), at({180, 150}));
    EXPECT_EQ(made->container(), m_area);
    EXPECT_TRUE(rectOf(m_area).contains(rectOf(made)));
    expectOneStepBack("Create Node : Blur");
    mark();
    select({m_inside});
    const QRectF area = rectOf(m_area);
    OssSnBaseNode *wired = m_view->createNodeAt(text("Filter/Blur"), at({area.right() + 60, 60}));
    EXPECT_EQ(wired->inputNode(text("Input")), m_inside);
    EXPECT_EQ(wired->container(), m_area);
    EXPECT_TRUE(rectOf(m_area).contains(rectOf(wired)));
    expectOneStepBack("Create Node : Blur");
    select({m_inside});
    OssSnBaseNode *far = m_view->createNodeAt(text("Filter/Blur"), at({area.right() + 500, 400}));
    EXPECT_EQ(far->container(), nullptr);
    select({m_outside});
    OssSnBaseNode *around = m_view->createNodeAt(text("Misc/Backdrop"), at({700, 60}));
    EXPECT_EQ(m_outside->container(), around);
}

TEST_F(BackdropsTest, copiesKeepTheirBackdropAndJoinTheOneTheyArePastedOn)
{
    const Nodes copies = OssShaderNetworkIO::duplicateNodes(m_network, {m_area, m_inside}, true);
    ASSERT_EQ(copies.size(), 2);
    EXPECT_EQ(copies.at(1)->container(), copies.at(0));
    EXPECT_EQ(m_inside->container(), m_area);
    undo();
    const Nodes alone = OssShaderNetworkIO::duplicateNodes(m_network, {m_inside}, true);
    EXPECT_EQ(alone.first()->container(), nullptr);
    undo();
    select({m_outside});
    m_view->copyNodesAction();
    mark();
    QCursor::setPos(m_view->viewport()->mapToGlobal(at({100, 150})));
    m_view->pasteNodesAction();
    const Nodes pasted = m_network->selectedNodes();
    ASSERT_EQ(pasted.size(), 1);
    EXPECT_EQ(pasted.first()->container(), m_area);
    expectOneStepBack("Paste Nodes");
}

TEST_F(BackdropsTest, membershipIsSavedAndOutlivesWhatIsUndone)
{
    reopen();
    const OssSnBaseNode *area = m_network->node(text("Area"));
    OssSnBaseNode *inside = m_network->node(text("Inside"));
    ASSERT_NE(area, nullptr);
    EXPECT_EQ(inside->container(), area);
    m_network->removeNodes({m_network->node(text("Area"))});
    EXPECT_EQ(inside->container(), nullptr);
    undo();
    EXPECT_EQ(inside->container(), area);
    OssSnGroupNode *group = m_network->groupNodes({inside});
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(inside->container(), nullptr);
    undo();
    EXPECT_EQ(inside->container(), area);
}

TEST_F(BackdropsTest, insideAGroupAndWithNotesItIsTheSame)
{
    OssSnGroupNode *group = m_network->groupNodes({m_area, m_inside, m_outside});
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(m_inside->container(), m_area);
    group->requestOpen();
    m_view = m_manager->currentView();
    ASSERT_EQ(m_view->network(), group->groupNetwork());
    m_view->resetTransform();
    m_view->centerOn(rectOf(m_area).center());
    OssSnBaseNode *note = addInside(group, "Misc/Sticky Note");
    contextOf(note)->setNodePosition(rectOf(m_area).bottomRight() + QPointF(200, 100));
    m_view->centerOn(rectOf(note).center());
    mark();
    const QPoint from = at(rectOf(note).center());
    drag(from,
         from + at(rectOf(m_area).bottomRight() - QPointF(30, 30)) - at(rectOf(note).center()));
    EXPECT_EQ(note->container(), m_area);
    EXPECT_TRUE(rectOf(m_area).contains(rectOf(note)));
    expectStep(qPrintable(text("Move node ") + note->name()));
    undo();
    EXPECT_EQ(m_project->stateHash(), m_before);
}

TEST_F(BackdropsTest, tidyBackdropsFitTheirMembersPartedAndWithOneRightEdge)
{
    OssSnBaseNode *over = addAt("Filter/Blur", {60, 60}, "Over");
    OssSnBaseNode *second = addArea({20, 200, 700, 300}, "Second");
    OssSnBaseNode *inner = addArea({120, 300, 200, 160}, "Inner");
    OssSnBaseNode *deep = addAt("Filter/Blur", {150, 350}, "Deep");
    mark();
    select({m_area, second, inner});
    m_view->arrange(Networks::TidyBackdrops);
    EXPECT_FALSE(rectOf(over).intersects(rectOf(m_inside)));
    EXPECT_FALSE(rectOf(m_area).intersects(rectOf(second)));
    EXPECT_EQ(rectOf(m_area).right(), rectOf(second).right());
    EXPECT_TRUE(rectOf(second).contains(rectOf(inner)));
    EXPECT_TRUE(rectOf(inner).contains(rectOf(deep)));
    EXPECT_EQ(deep->container(), inner);
    EXPECT_EQ(inner->container(), second);
    EXPECT_EQ(over->container(), m_area);
    EXPECT_EQ(rectOf(m_area).top(), 60 - 2 * backdropOf(m_area)->titleBarHeight());
    expectOneStepBack("Tidy Backdrops");
    mark();
    m_view->arrange(Networks::TidyBackdrops);
    expectNothingDone("tidying what is tidy");
}

TEST_F(BackdropsTest, theOrderOfBackdropsIsChangedUndoablyUnlessTheyAreLocked)
{
    OssSnBaseNode *other = addArea({100, 100, 300, 200}, "Other");
    const auto order = [](const OssSnBaseNode *node) {
        return node->attribute(text("ZOrder")).toInt();
    };
    mark();
    select({m_area, m_outside});
    m_view->arrange(Networks::BringToFront);
    EXPECT_GT(order(m_area), order(other));
    EXPECT_EQ(backdropOf(m_area)->zOrder(), order(m_area));
    EXPECT_EQ(m_view->itemAt(at({102, 240 - 2})), itemOf(m_area));
    expectOneStepBack("Bring to Front");
    m_view->arrange(Networks::BringToFront);
    EXPECT_EQ(undoCount(), 1) << "it is in front already";
    m_view->arrange(Networks::SendToBack);
    EXPECT_LT(order(m_area), order(other));
    m_area->setLocked(true);
    OssUndoManager::instance()->clear();
    m_view->arrange(Networks::BringToFront);
    EXPECT_EQ(undoCount(), 0);
    EXPECT_LT(order(m_area), order(other));
    m_area->setLocked(false);
    for (int i = 0; i < 1000; ++i) {
        for (OssSnBaseNode *node : {other, m_area}) {
            select({node});
            m_view->arrange(Networks::BringToFront);
        }
    }
    EXPECT_EQ(order(m_area), order(other) + 1);
    EXPECT_LE(order(m_area), 900) << "beyond it nothing would show";
}

} // namespace
