#include "GraphFixture.h"
#include "Layout/NodePlacement.h"

namespace {

TEST(NodePlacement, stepsExchangeTheirAxesWhenFlippedButForOne)
{
    for (int type = -1; type <= 14; ++type) {
        const QPoint normal = NodePlacement::gridStep(type, false);
        const QPoint flipped = NodePlacement::gridStep(type, true);
        const QPoint expected = type == 11 ? QPoint(-1, 0) : QPoint(normal.y(), normal.x());
        EXPECT_EQ(flipped, expected) << type;
    }
    EXPECT_EQ(NodePlacement::gridStep(6, false), QPoint(3, 0));
    EXPECT_EQ(NodePlacement::gridStep(12, false), QPoint());
}

TEST(NodePlacement, aGridStepNeverOverlapsItsReference)
{
    const QRectF reference(10, 20, 150, 90);
    const QSizeF own(230, 40);
    for (int column = -3; column <= 3; ++column) {
        for (int row = -3; row <= 3; ++row) {
            const QRectF there(NodePlacement::onGrid(reference, own, {column, row}, {20.0, 20.0}),
                               own);
            EXPECT_EQ(there.intersects(reference), column == 0 && row == 0) << column << " " << row;
            if (column == 0) {
                EXPECT_EQ(there.center().x(), reference.center().x());
            }
        }
    }
}

class PlacementTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_reference = addAt("Layer/Merge", {100, 200}, "Reference");
        m_node = addAt("Filter/Blur", {900, 700}, "Node");
        OssUndoManager::instance()->clear();
    }

    OssSnBaseNode *m_reference = nullptr;
    OssSnBaseNode *m_node = nullptr;
};

TEST_F(PlacementTest, nodesAreClearOfWhatStandsInTheirOwnNetwork)
{
    auto *group = addGroup("Around");
    QVector<QRectF> places;
    for (int i = 0; i < 4; ++i) { // while the network around them is shown
        const OssSnBaseNode *node = group->groupNetwork()->createNode(text("Filter/Blur"), {});
        for (const QRectF &place : qAsConst(places))
            EXPECT_FALSE(rectOf(node).intersects(place)) << i;
        places.append(rectOf(node));
    }
    OssSnBaseNode *last = group->groupNetwork()->nodes().last();
    QRectF all;
    for (const QRectF &place : qAsConst(places))
        all |= place;
    Q_EMIT last->emitSetLayout(OssSnBaseNode::LayoutFreeSpot, nullptr, false, false);
    EXPECT_NEAR(itemOf(last)->x(), all.right() + NodePlacement::Gap, 2.0);
}

TEST_F(PlacementTest, requestsOfTheNodeMoveItsItemUndoably)
{
    const QPointF start = itemOf(m_node)->pos();
    Q_EMIT m_node->nodePositionedManual(m_reference, {7, -9});
    EXPECT_EQ(itemOf(m_node)->pos(), QPointF(107, 191));
    Q_EMIT m_node->nodePositionedUnderneath(m_reference, 0);
    EXPECT_EQ(rectOf(m_node).center(), rectOf(m_reference).center());
    Q_EMIT m_node->nodePositionedUnderneath(m_reference, 2);
    EXPECT_EQ(rectOf(m_node).center(), rectOf(m_reference).center() + QPointF(0, 200));
    Q_EMIT m_node->nodePositionedOnTopIdented(m_reference);
    EXPECT_EQ(itemOf(m_node)->pos(), rectOf(m_reference).bottomRight() + QPointF(30, 30));
    undoAll();
    EXPECT_EQ(itemOf(m_node)->pos(), start);
    Q_EMIT m_node->nodePositionedManual(nullptr, {1, 1});
    EXPECT_EQ(itemOf(m_node)->pos(), start);
}

TEST_F(PlacementTest, onlyTypeTwoAndTheFlagResolveOverlaps)
{
    using Type = OssSnBaseNode::NodeLayoutType;
    Q_EMIT m_node->emitSetLayout(Type::LayoutBelow, m_reference, true, false);
    const QPointF below = itemOf(m_node)->pos();
    expectLogged("Positioning node '/Node' wrt node '/Reference' at (0, 1)");
    OssSnBaseNode *blocker = addAt("Filter/Blur", below);
    Q_EMIT m_node->emitSetLayout(Type::LayoutBelow, m_reference, true, false);
    EXPECT_EQ(itemOf(m_node)->pos(), below);
    Q_EMIT m_node->emitSetLayout(Type::LayoutBelow, m_reference, true, true);
    EXPECT_FALSE(rectOf(m_node).intersects(rectOf(blocker)));
    Q_EMIT m_node->emitSetLayout(Type::LayoutTwoRightLoose, m_reference, true, false);
    contextOf(blocker)->setNodePosition(itemOf(m_node)->pos());
    Q_EMIT m_node->emitSetLayout(Type::LayoutTwoRight, m_reference, true, false);
    EXPECT_FALSE(rectOf(m_node).intersects(rectOf(blocker)));
}

TEST_F(PlacementTest, oldCoordinatesStayInAnAxisWithoutAStep)
{
    using Type = OssSnBaseNode::NodeLayoutType;
    Q_EMIT m_node->emitSetLayout(Type::LayoutBelow, m_reference, false, false);
    EXPECT_EQ(itemOf(m_node)->x(), 900.0);
    EXPECT_GT(itemOf(m_node)->y(), rectOf(m_reference).bottom());
    Q_EMIT m_node->emitSetLayout(Type::LayoutFreeSpot, nullptr, false, false);
    const QRectF others = rectOf(m_reference) | rectOf(m_network->viewerNode());
    EXPECT_GT(itemOf(m_node)->x(), others.right());
    Q_EMIT m_node->emitSetLayout(Type::LayoutFreeSpot, m_reference, false, false);
    EXPECT_GT(itemOf(m_node)->x(), others.right()) << "whatever it refers to";
    const qreal y = itemOf(m_node)->y();
    Q_EMIT m_node->emitSetLayout(Type::LayoutTwoRightLoose, m_reference, false, false);
    EXPECT_EQ(itemOf(m_node)->y(), y);
    EXPECT_GT(itemOf(m_node)->x(), rectOf(m_reference).right());
    contextOf(m_node)->setPortListMode(OssNgExtendedNode::NoPortList); // streams run down
    Q_EMIT m_node->emitSetLayout(Type::LayoutBeside, m_reference, false, false);
    EXPECT_EQ(itemOf(m_node)->y(), rectOf(m_reference).bottom() + 30);
    contextOf(m_node)->setPortListMode(OssNgExtendedNode::Expanded);
    Q_EMIT m_node->emitSetLayout(Type::LayoutBeside, m_reference, false, false);
    EXPECT_EQ(itemOf(m_node)->x(), rectOf(m_reference).right() + 30);
    EXPECT_EQ(rectOf(m_node).center().y(), rectOf(m_reference).center().y());
}

TEST_F(PlacementTest, containersStandBesideAndStretch)
{
    OssSnBaseNode *a = addArea({0, 0, 300, 200}, "A");
    OssSnBaseNode *b = addArea({50, 900, 500, 200}, "B");
    Q_EMIT m_node->nodePositionedNextTo(m_reference);
    expectLogged("Invalid container gui node found for node 'Node'");
    Q_EMIT b->nodePositionedNextTo(a);
    EXPECT_EQ(itemOf(b)->pos(), QPointF(330, 0));
    Q_EMIT a->uniformariseContainers({a, b, m_node});
    EXPECT_EQ(rectOf(a).right(), rectOf(b).right());
    expectLogged("About to uniformarise 3 layer stack containers");

    m_node->setContainer(a);
    begin();
    Q_EMIT m_node->nodeSyncedUnderneathNode(m_reference, true);
    EXPECT_TRUE(rectOf(a).contains(rectOf(m_node)));
    expectLogged("* Stretch out container node");
    undoAll();
    OssUndoManager::instance()->clear();
    expectNothingDone();
}

} // namespace
