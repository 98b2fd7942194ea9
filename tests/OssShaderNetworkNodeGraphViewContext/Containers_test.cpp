#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "PointerFixture.h"

namespace {

class ContainerTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        contextOf(m_network->viewerNode())->setNodePosition({3000, 3000});
        m_node = addAt("Filter/Blur", {40, 60});
        m_area = addArea({0, 0, 300, 200}, "Area");
        m_backdrop = backdropOf(m_area);
        OssUndoManager::instance()->clear();
    }

    QRectF area() const { return m_backdrop->rect().translated(m_backdrop->pos()); }

    /// One step that leads back.
    void expectUndone(const QRectF &before)
    {
        EXPECT_EQ(undoCount(), 1);
        undo();
        EXPECT_EQ(area(), before);
        EXPECT_EQ(itemOf(m_node)->pos(), QPointF(40, 60));
        OssUndoManager::instance()->clear();
    }

    OssSnBaseNode *m_node = nullptr;
    OssSnBaseNode *m_area = nullptr;
    OssNgBackdropNode *m_backdrop = nullptr;
};

TEST_F(ContainerTest, aContainerStretchesAroundWhatItIsToHoldAndKnowsItsMembers)
{
    OssSnBaseNode *outside = addAt("Filter/Blur", {600, 60});
    OssUndoManager::instance()->clear();
    const QRectF before = area();
    Q_EMIT m_area->containerStretchedBy(outside);
    EXPECT_TRUE(area().contains(rectOf(outside)));
    EXPECT_TRUE(area().contains(before));
    expectUndone(before);
    Q_EMIT m_area->containerChildrenRefreshed({m_node, outside}, true);
    EXPECT_EQ(m_node->container(), m_area);
    EXPECT_TRUE(area().contains(rectOf(m_node) | rectOf(outside)));
    EXPECT_EQ(m_backdrop->childrenList().size(), 2);
    Q_EMIT m_area->containerChildrenRefreshed({outside}, true);
    EXPECT_EQ(m_node->container(), nullptr);
    EXPECT_FALSE(area().contains(rectOf(m_node)));
}

TEST_F(ContainerTest, aMovedContainerTakesItsMembersAlong)
{
    OssSnBaseNode *other = addAt("Filter/Blur", {20, 400});
    OssUndoManager::instance()->clear();
    const QRectF before = area();
    Q_EMIT m_area->containerMovedDown(other);
    expectLogged("About to move container 'Area' down wrt to Blur 2'");
    EXPECT_EQ(area().top(), rectOf(other).bottom() + 30.0);
    EXPECT_TRUE(area().contains(rectOf(m_node)));
    expectUndone(before);
    OssSnBaseNode *hidden = addAt("Filter/Blur", {90000, 0});
    itemOf(hidden)->setVisible(false);
    OssUndoManager::instance()->clear();
    Q_EMIT m_area->containerMovedToFreshLocation(true);
    EXPECT_LT(area().left(), 9000.0);
    itemOf(hidden)->setVisible(true);
    EXPECT_EQ(area().top(), before.top());
    EXPECT_TRUE(area().contains(rectOf(m_node)));
    EXPECT_FALSE(area().intersects(rectOf(other) | rectOf(m_network->viewerNode())));
    expectUndone(before);
}

TEST_F(ContainerTest, respacingMakesRoomBelowTheReferenceInsideTheContainer)
{
    OssSnBaseNode *below = addAt("Filter/Blur", {40, 90});
    OssUndoManager::instance()->clear();
    const QRectF before = area();
    Q_EMIT m_area->containerRespacedWrt(m_node);
    EXPECT_EQ(rectOf(below).top(), rectOf(m_node).bottom() + 30.0);
    EXPECT_TRUE(area().contains(rectOf(below)));
    expectUndone(before);
    OssSnBaseNode *peer = addArea({0, 800, 700, 100});
    OssSnBaseNode *narrow = addArea({0, 1200, 200, 100});
    Q_EMIT m_area->containerPeersStretched({peer, narrow});
    EXPECT_EQ(area().width(), 700.0);
    EXPECT_EQ(rectOf(narrow).width(), 700.0);
    Q_EMIT m_area->containerPeersStretched({m_node});
    expectLogged("[ !! ] Invalid container gui node found for node 'Blur'");
}

TEST_F(ContainerTest, whatFitsAlreadyStaysAndMakesNoStep)
{
    OssSnBaseNode *other = addAt("Filter/Blur", {20, -400});
    OssSnBaseNode *peer = addArea({0, 800, 300, 100});
    OssSnBaseNode *narrow = addArea({50, 1200, 250, 100});
    m_backdrop->setRect({0, 0, 300, 300});
    contextOf(m_node)->setNodePosition({40, 90}); // clear of the title bar, too
    m_node->setContainer(m_area);
    OssUndoManager::instance()->clear();
    const QRectF before = area();
    Q_EMIT m_area->containerStretchedBy(m_node);
    Q_EMIT m_area->containerChildrenRefreshed({m_node}, false);
    Q_EMIT m_area->containerChildrenRefreshed({nullptr, m_node}, false);
    Q_EMIT m_area->containerPeersStretched({peer});
    Q_EMIT m_area->containerMovedDown(other);
    Q_EMIT m_area->uniformariseContainers({m_area, peer, narrow});
    EXPECT_EQ(area(), before);
    EXPECT_EQ(undoCount(), 0) << qPrintable(undoText());
    Q_EMIT m_area->containerChildrenRefreshed({}, true);
    EXPECT_EQ(area(), before);
    EXPECT_EQ(m_node->container(), nullptr);
    undo();
    EXPECT_EQ(m_node->container(), m_area);
}

TEST_F(ContainerTest, oneRightEdgeIsThatOfTheFurthestAndTheWidestOfEachKindAreNamed)
{
    OssSnBaseNode *mask = addArea({700, 500, 100, 100}, "Mask");
    mask->addTag(text("_maskStack"));
    OssSnBaseNode *wide = addArea({0, 800, 500, 100}, "Wide");
    Q_EMIT m_area->uniformariseContainers({mask, wide, m_area});
    expectLogged(
        "WidestMaskStackNode : 'Mask', WidestAdjustmentStackNode : 'Wide', FurthestX : 800");
    for (const OssSnBaseNode *node : {mask, wide, static_cast<OssSnBaseNode *>(m_area)})
        EXPECT_EQ(rectOf(node).right(), 800.0) << qPrintable(node->name());
}

TEST_F(ContainerTest, noPlaceIsTakenFromWhatHasNone)
{
    OssSnBaseNode *removed = add("Misc/Backdrop");
    m_network->removeNodes({removed});
    const int steps = undoCount(); // which keep the removed one
    const QByteArray before = m_project->stateHash();
    OssSnBaseNode *const none = nullptr;
    m_view->positionNodeUnderneath(m_node, none, 1);
    m_view->positionNodeNextTo(m_area, none);
    m_view->positionNodeBesideReference(m_node, none);
    m_view->syncNodeUnderneath(m_node, m_area, none, nullptr);
    m_view->stretchContainerBy(m_area, none);
    m_view->respaceContainer(m_area, none);
    m_view->moveContainerDown(m_area, none);
    m_view->relocateNodeBeside(itemOf(m_node), nullptr);
    m_view->placeNode(none);
    m_view->positionNodeManual(none, m_node, {1, 1});
    m_view->positionNodeUnderneath(none, m_node, 1);
    m_view->positionNodeNextTo(none, m_node);
    m_view->positionNodeAtFreeSpot(none);
    m_view->positionNodeOnGrid(none, m_node, 1, 1, true);
    m_view->positionNodeBesideReference(none, m_node);
    m_view->syncNodeUnderneath(none, m_area, m_node, nullptr);
    m_view->uniformariseContainers({none});
    m_view->holdInContainer(none, {m_node}, true);
    m_view->stretchContainerBy(none, m_node);
    m_view->stretchPeers({none});
    m_view->respaceContainer(none, m_node);
    m_view->moveContainerDown(none, m_node);
    m_view->moveContainerToFreshLocation(none, false);
    m_view->relocateNodeBeside(nullptr, itemOf(m_node));
    m_view->moveContainerToFreshLocation(removed, false); // in no scene
    OssShaderNetworkView without(nullptr);
    without.placeNode(m_node);
    without.positionNodeNextTo(m_area, m_node);
    expectLogged("scene() is NULL");
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(ContainerTest, theContainerStretchesAroundTheReferencesOwnOneWhereThatLiesInside)
{
    const QRectF before = area();
    OssSnBaseNode *inner = addArea({120, 40, 100, 90}, "Inner");
    OssSnBaseNode *reference = addAt("Filter/Blur", {130, 70});
    const auto sync = [&](OssSnBaseNode *container, OssSnBaseNode *other) {
        m_view->syncNodeUnderneath(m_node, container, reference, other);
        EXPECT_EQ(rectOf(m_node).center(), rectOf(reference).center() + QPointF(0, 100));
        const QRectF stretched = area();
        while (OssUndoManager::instance()->canUndo() && area().translated(0, 0) != before)
            undo();
        return stretched;
    };
    OssUndoManager::instance()->clear();
    EXPECT_EQ(sync(nullptr, nullptr), before);
    OssUndoManager::instance()->clear();
    const QRectF aroundNode = sync(m_area, nullptr);
    EXPECT_NE(aroundNode, before);
    const QRectF aroundBoth = sync(m_area, inner);
    EXPECT_TRUE(aroundBoth.contains(rectOf(inner)));
}

} // namespace
