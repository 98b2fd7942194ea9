#include "GraphFixture.h"
#include "Layout/Alignment.h"
#include "Layout/ContainerPlacement.h"
#include "Layout/GroupPortPlacement.h"
#include "Layout/NodePlacement.h"
#include "PluginUnderTest.h"
#include "View/Backdrops.h"

#include <QMetaEnum>

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

TEST(ContainerPlacement, respacingClearsTheReferenceAndKeepsOrderAndDistances)
{
    const QRectF reference(0, 0, 100, 80);
    const QVector<QRectF> members{{10, -50, 50, 40},
                                  {20, 60, 50, 40},
                                  {20, 120, 50, 40},
                                  {400, 130, 50, 40},
                                  {20, 500, 50, 40}};
    const QVector<qreal> shifts = ContainerPlacement::respaced(members, reference);
    EXPECT_EQ(shifts, (QVector<qreal>{0.0, 50.0, 50.0, 50.0, 50.0}));
    EXPECT_EQ(ContainerPlacement::respaced({{0, 110, 50, 50}}, reference), QVector<qreal>{0.0});
    EXPECT_EQ(ContainerPlacement::respaced({{400, 20, 50, 40}}, reference), QVector<qreal>{0.0});
}

TEST(ContainerPlacement, aContainerMovesOnlyAsFarAsItMust)
{
    const QRectF container(10, 200, 300, 100);
    EXPECT_EQ(ContainerPlacement::belowShift(container, {0, 0, 50, 80}), 0.0);
    EXPECT_EQ(ContainerPlacement::belowShift(container, {0, 180, 50, 80}), 90.0);
    EXPECT_EQ(ContainerPlacement::freshLocation(container, {}, false), QPointF(10, 200));
    EXPECT_EQ(ContainerPlacement::freshLocation(container, {0, 40, 900, 80}, false),
              QPointF(930, 40));
    EXPECT_EQ(ContainerPlacement::freshLocation(container, {0, 40, 900, 80}, true),
              QPointF(930, 200));
}

TEST(GroupPortPlacement, inputsStandLeftOfWhatTheyFeedAndNeverOnEachOther)
{
    using Input = GroupPortPlacement::Input;
    const QVector<QRectF> fed{{500, 100, 120, 90}, {500, 130, 120, 90}};
    const QVector<Input> inputs{{{100, 40}, 0}, {{80, 40}, 0}, {{100, 40}, 1}, {{60, 40}, -1}};
    const QVector<QPointF> places = GroupPortPlacement::inputPositions(inputs, fed);
    EXPECT_EQ(places.first(), QPointF(500 - 150 - 100, 100));
    EXPECT_EQ(places.at(1), QPointF(500 - 150 - 80, 170));
    for (int i = 0; i < inputs.size(); ++i) {
        for (int k = i + 1; k < inputs.size(); ++k)
            EXPECT_FALSE(QRectF(places.at(i), inputs.at(i).size)
                             .intersects(QRectF(places.at(k), inputs.at(k).size)))
                << i << " " << k;
    }
    EXPECT_GT(places.at(3).y(), places.at(2).y());
}

TEST(GroupPortPlacement, portsNeverLieHalfOnAFrame)
{
    const QRectF frame(300, 0, 400, 300);
    const QRectF around(200, 200, 600, 400);
    const auto input = [&](qreal fed) {
        return GroupPortPlacement::inputPositions({{{100, 40}, 0}}, {{fed, 100, 120, 90}}, {},
                                                  {frame, around})
            .first();
    };
    EXPECT_EQ(input(500), QPointF(300 - 30 - 100, 100));
    EXPECT_EQ(input(620), QPointF(620 - 150 - 100, 100)) << "wholly on it";
    QRectF output(650, 120, 100, 40);
    GroupPortPlacement::moveClear(&output, {{730, 120, 100, 40}}, {frame, around},
                                  GroupPortPlacement::Side::Right);
    EXPECT_EQ(output.topLeft(), QPointF(830, 190)) << "beside one, the other and the taken place";
}

using Networks = OssShaderNetworkManager;
using Nodes = QList<OssSnBaseNode *>;

TEST(Alignment, alignedRectsShareTheEdgeAndNoneLiesOverAnother)
{
    const QVector<QRectF> rects{{0, 0, 100, 40}, {60, 20, 50, 40}, {300, 500, 80, 60}};
    using Edge = Alignment::Edge;
    const QVector<QRectF> left = Alignment::aligned(rects, Edge::Left, {});
    EXPECT_EQ(left, (QVector<QRectF>{{0, 0, 100, 40}, {0, 70, 50, 40}, {0, 500, 80, 60}}));
    const QVector<QRectF> right = Alignment::aligned(rects, Edge::Right, {});
    EXPECT_EQ(right, (QVector<QRectF>{{280, 0, 100, 40}, {330, 70, 50, 40}, {300, 500, 80, 60}}));
    const QVector<QRectF> center = Alignment::aligned(rects, Edge::Center, {{140, 510, 10, 10}});
    EXPECT_EQ(center.at(0), QRectF(140, 0, 100, 40));
    EXPECT_EQ(center.at(2), QRectF(150, 500, 80, 60)) << "an edge in common is no overlap";
    const QVector<QRectF> bottom = Alignment::aligned(rects, Edge::Bottom, {{300, 510, 10, 10}});
    EXPECT_EQ(bottom, (QVector<QRectF>{{0, 520, 100, 40}, {130, 520, 50, 40}, {340, 500, 80, 60}}));
}

TEST(Alignment, distributedRectsHaveEqualGapsBetweenTheOutermost)
{
    const QVector<QRectF> rects{{400, 0, 100, 40}, {0, 10, 50, 40}, {60, 20, 50, 40}};
    const QVector<QRectF> spread = Alignment::distributed(rects, Qt::Horizontal, {});
    EXPECT_EQ(spread, (QVector<QRectF>{{400, 0, 100, 40}, {0, 10, 50, 40}, {200, 20, 50, 40}}));
    const QVector<QRectF> kept = Alignment::distributed(rects, Qt::Horizontal, {{210, 0, 10, 30}});
    EXPECT_EQ(kept.at(2), QRectF(200, 60, 50, 40));
    const QVector<QRectF> tight = Alignment::distributed({{0, 0, 50, 40}, {0, 5, 50, 40}},
                                                         Qt::Vertical, {});
    EXPECT_EQ(tight, (QVector<QRectF>{{0, 0, 50, 40}, {0, 70, 50, 40}}));
}

class ArrangingTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(pluginUnderTest());
        GraphFixture::SetUp();
        contextOf(m_network->viewerNode())->setNodePosition({5000, 5000});
    }

    /// None of the nodes lies over any other node; backdrops may.
    void expectApart(const Nodes &nodes, const char *what) const
    {
        const Nodes all = m_network->nodes();
        for (const OssSnBaseNode *a : nodes) {
            for (const OssSnBaseNode *b : all) {
                if (a != b && !Backdrops::isBackdrop(a) && !Backdrops::isBackdrop(b))
                    EXPECT_FALSE(rectOf(a).intersects(rectOf(b)))
                        << what << ": " << qPrintable(a->name()) << ", " << qPrintable(b->name());
            }
        }
    }

    void mark()
    {
        begin();
        m_before = m_project->stateHash();
    }

    QByteArray m_before;
};

TEST_F(ArrangingTest, everyArrangementIsACommandThatLeavesNoNodeOverAnother)
{
    const auto values = QMetaEnum::fromType<Networks::Arrangement>();
    EXPECT_EQ(values.keyCount(), 29);
    for (int i = 0; i < values.keyCount(); ++i) {
        const auto how = Networks::Arrangement(values.value(i));
        const char *key = values.key(i);
        SCOPED_TRACE(key);
        OssSnBaseNode *area = addArea({500, 600, 400, 300});
        OssSnBaseNode *other = addArea({480, 1000, 300, 200});
        const Nodes nodes{addAt("Procedural/Color", {0, 0}),
                          addAt("Filter/Blur", {30, 10}),
                          addAt("Filter/Blur", {600, 20}),
                          addAt("Filter/Blur", {520, 700}),
                          area,
                          other};
        wire(nodes.at(0), nodes.at(1));
        addAt("Filter/Blur", {0, 150});
        addAt("Filter/Blur", {300, 0});
        addAt("Filter/Blur", {540, 800});
        mark();
        const bool orders = how == Networks::BringToFront || how == Networks::SendToBack;
        const OssResult done = Networks::instance()->requestArrangement(
            orders ? Nodes{area} : nodes, how);
        EXPECT_TRUE(done) << qPrintable(done.error());
        EXPECT_EQ(undoCount(), 1) << key;
        const QByteArray after = m_project->stateHash();
        EXPECT_NE(after, m_before);
        if (!orders && how != Networks::TidyBackdrops)
            expectApart(nodes, key);
        expectWhole();
        undo();
        EXPECT_EQ(m_project->stateHash(), m_before);
        OssUndoManager::instance()->redo();
        EXPECT_EQ(m_project->stateHash(), after);
        replaceProject();
        m_view = m_manager->currentView();
        contextOf(m_network->viewerNode())->setNodePosition({5000, 5000});
    }
}

TEST_F(ArrangingTest, inABackdropOthersMakeRoomForWhatIsPlacedUnderneathOneOfThem)
{
    OssSnBaseNode *area = addArea({0, 0, 300, 500}, "Area");
    OssSnBaseNode *first = addAt("Filter/Blur", {40, 60}, "First");
    OssSnBaseNode *next = addAt("Filter/Blur", {40, 180}, "Next");
    OssSnBaseNode *placed = addAt("Filter/Blur", {900, 60}, "Placed");
    mark();
    const OssResult done = Networks::instance()->requestArrangement({first, placed},
                                                                    Networks::PlaceUnderneath);
    EXPECT_TRUE(done);
    EXPECT_EQ(placed->container(), area);
    EXPECT_EQ(rectOf(placed).center().x(), rectOf(first).center().x());
    EXPECT_LT(rectOf(placed).top(), rectOf(next).top());
    expectApart({first, placed, next}, "in the backdrop");
    expectStepBack("Place Underneath");
}

TEST_F(ArrangingTest, aBackdropThatIsPlacedSomewhereTakesNothingForItsOwnThatLayThere)
{
    OssSnBaseNode *first = addArea({0, 0, 300, 240}, "First");
    OssSnBaseNode *placed = addArea({900, 0, 300, 240}, "Placed");
    OssSnBaseNode *own = addAt("Filter/Blur", {940, 60}, "Own");
    OssSnBaseNode *there = addAt("Filter/Blur", {45, 340}, "There");
    for (const auto how : {Networks::PlaceUnderneath, Networks::PlaceBelow, Networks::PlaceOnTop}) {
        mark();
        EXPECT_TRUE(Networks::instance()->requestArrangement({first, placed}, how));
        EXPECT_EQ(itemOf(there)->pos(), QPointF(45, 340)) << how;
        EXPECT_TRUE(rectOf(placed).contains(rectOf(own))) << how;
        EXPECT_EQ(there->container(), nullptr) << how;
        expectApart({own, there}, "below");
        undo();
    }
}

TEST_F(ArrangingTest, oneNodeGoesByWhatItIsWiredToAndNoneIsRefused)
{
    OssSnBaseNode *source = addAt("Filter/Blur", {40, 60});
    OssSnBaseNode *node = addAt("Filter/Blur", {900, 400});
    wire(source, node);
    mark();
    const auto arrange = [](const Nodes &nodes, Networks::Arrangement how) {
        return Networks::instance()->requestArrangement(nodes, how).error().toStdString();
    };
    EXPECT_EQ(arrange({node}, Networks::PlaceNextTo), "");
    EXPECT_EQ(rectOf(node).left(), rectOf(source).right() + 30.0);
    expectStepBack("Place Next to");
    EXPECT_EQ(arrange({}, Networks::PlaceAtFreeSpot), "Place at Free Spot: select a node first");
    EXPECT_EQ(arrange({node}, Networks::AlignTop), "Align Top: select two nodes or more");
    EXPECT_EQ(arrange({node, source}, Networks::DistributeVertically),
              "Distribute Vertically: select three nodes or more");
    EXPECT_EQ(arrange({node}, Networks::SendToBack), "Send to Back: select a backdrop first");
    EXPECT_EQ(arrange({node}, Networks::TidyBackdrops),
              "Tidy Backdrops: select a backdrop, or what lies on one");
    OssSnBaseNode *area = addArea({2000, 0, 300, 500});
    area->setLocked(true);
    mark();
    EXPECT_EQ(arrange({area}, Networks::BringToFront), "Bring to Front: the backdrop is locked");
    expectNothingDone();
}

TEST_F(ArrangingTest, aBackdropThatGivesWayTakesOnlyItsOwnAlong)
{
    OssSnBaseNode *area = addArea({0, 0, 300, 240}, "Area");
    OssSnBaseNode *low = addAt("Filter/Blur", {40, 140}, "Low");
    OssSnBaseNode *beneath = addArea({-100, 242, 600, 300}, "Beneath");
    OssSnBaseNode *own = addAt("Filter/Blur", {300, 350}, "Own");
    OssSnBaseNode *dropped = addAt("Filter/Blur", {45, 130}, "Dropped");
    mark();
    {
        const OssUndoManager::AutoMacro macro(text("Drop"));
        Backdrops::settle({{dropped, nullptr}});
    }
    EXPECT_EQ(low->container(), area);
    EXPECT_EQ(rectOf(low).top(), rectOf(dropped).bottom() + 30.0);
    EXPECT_TRUE(rectOf(area).contains(rectOf(low)));
    EXPECT_EQ(own->container(), beneath);
    EXPECT_EQ(rectOf(beneath).top(), rectOf(area).bottom() + 30.0);
    EXPECT_TRUE(rectOf(beneath).contains(rectOf(own)));
    expectStepBack("Drop");
}

TEST_F(ArrangingTest, whatHeldABackdropCanComeToLieInIt)
{
    OssSnBaseNode *first = addArea({0, 0, 300, 300}, "First");
    OssSnBaseNode *second = addArea({50, 50, 100, 100}, "Second");
    OssSnBaseNode *third = addArea({60, 60, 90, 80}, "Third");
    second->setContainer(first);
    third->setContainer(second);
    contextOf(third)->setNodePosition({-100, -100});
    contextOf(third)->setNodeSize({900, 900});
    Backdrops::refreshMembership(first);
    EXPECT_EQ(third->container(), nullptr);
    EXPECT_EQ(first->container(), third);
    EXPECT_EQ(second->container(), first);
}

} // namespace
