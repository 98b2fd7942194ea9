#include "GraphFixture.h"
#include "Layout/ColumnLayout.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include <random>

namespace {

using Node = ColumnLayout::Node;

Node box(const QSizeF &size, const QVector<int> &sources = {}, const QPointF &position = {})
{
    Node node;
    node.position = position;
    node.size = size;
    for (const int source : sources)
        node.inputs.append({source, 0.0, false});
    return node;
}

/// A graph without loops: what a node takes from has a higher index.
std::vector<Node> randomGraph(int count, std::mt19937 *random)
{
    const auto below = [random](int limit) {
        return int((*random)() % unsigned(limit));
    };
    std::vector<Node> nodes;
    for (int i = 0; i < count; ++i) {
        QVector<int> sources;
        for (int k = below(4); k > 0 && i + 1 < count; --k)
            sources.append(i + 1 + below(std::min(20, count - i - 1)));
        Node node = box(QSizeF(120 + below(100), 40 + below(160)), sources,
                        QPointF(below(4000), below(4000)));
        node.merge = below(3) == 0;
        for (int k = 0; k < node.inputs.size(); ++k) {
            node.inputs[k].base = node.merge && k == 1;
            node.inputs[k].portY = 20.0 * k;
        }
        nodes.push_back(node);
    }
    return nodes;
}

TEST(ColumnLayout, aChainRunsLeftFromItsRootAndTheRootStays)
{
    ColumnLayout layout({box({100, 50}, {1}, {500, 300}), box({80, 40}, {2}), box({60, 70})});
    layout.layOut({0}, {});
    EXPECT_EQ(layout.rect(0).topLeft(), QPointF(500, 300));
    EXPECT_EQ(layout.rect(1).topLeft(), QPointF(500 - 150 - 80, 300));
    EXPECT_EQ(layout.rect(2).topLeft(), QPointF(500 - 150 - 80 - 150 - 60, 300));
}

TEST(ColumnLayout, aNodeStandsInTheDeepestColumnInTheMiddleOfItsWidth)
{
    // 3 feeds the root directly and through 1 and 2.
    ColumnLayout layout(
        {box({100, 50}, {3, 1}), box({200, 50}, {2}), box({40, 50}, {3}), box({90, 50})});
    layout.layOut({0}, {});
    EXPECT_LT(layout.rect(3).right(), layout.rect(2).left());
    EXPECT_LT(layout.rect(2).right(), layout.rect(1).left());
    EXPECT_EQ(layout.rect(1).right() + 150.0, layout.rect(0).left());
    EXPECT_EQ(layout.rect(2).right() + 150.0, layout.rect(1).left());
}

TEST(ColumnLayout, baseStreamsRunLevelAndWhatLiesOverThemHangsBelow)
{
    std::vector<Node> nodes{box({100, 90}, {3, 1}), box({100, 90}, {4, 2}), box({100, 40}),
                            box({100, 40}), box({100, 40})};
    for (int merge = 0; merge < 2; ++merge) {
        auto &node = nodes[std::size_t(merge)];
        node.merge = true;
        node.inputs[0].portY = 60.0;
        node.inputs[1].base = true;
    }
    ColumnLayout layout(nodes);
    layout.layOut({0}, {});
    EXPECT_EQ(layout.rect(1).top(), 0.0);
    EXPECT_EQ(layout.rect(2).top(), 0.0);
    EXPECT_EQ(layout.rect(3).top(), layout.rect(1).bottom() + 60.0);
    EXPECT_EQ(layout.rect(4).top(), layout.rect(2).bottom() + 60.0);
}

TEST(ColumnLayout, aColumnInTheWayGoesLeftWithAllThatFollow)
{
    std::vector<Node> nodes{box({100, 50}, {1}), box({100, 50}, {2}), box({100, 50}),
                            box({60, 60}, {}, {-220, 20})};
    ColumnLayout layout(nodes);
    layout.layOut({0}, {});
    EXPECT_EQ(layout.rect(1).right(), -220.0 - 75.0);
    EXPECT_EQ(layout.rect(2).right(), layout.rect(1).left() - 150.0);
    EXPECT_EQ(layout.rect(3).topLeft(), QPointF(-220, 20));
    ColumnLayout behind(nodes);
    behind.layOut({0}, {3}); // a backdrop lies behind and is in nobody's way
    EXPECT_EQ(behind.rect(1).right(), -150.0);
}

TEST(ColumnLayout, loopsEndAndNodesWithoutItemsTakeNoRoom)
{
    std::vector<Node> nodes{box({100, 50}, {1}), box({100, 50}, {2}), box({100, 50}, {1, 0, 3}),
                            box({100, 50})};
    nodes[1].hasItem = false;
    ColumnLayout layout(nodes);
    layout.layOut({0, 2}, {});
    EXPECT_EQ(layout.rect(0).topLeft(), QPointF());
    for (const ColumnLayout::Move &move : layout.moves())
        EXPECT_NE(move.node, 1);
}

TEST(ColumnLayout, startsThatFeedOtherStartsOrComeTwiceStartNothing)
{
    const std::vector<Node> nodes{box({100, 50}, {1}, {500, 300}), box({80, 40}, {2}, {900, 0}),
                                  box({60, 70}, {}, {700, 100})};
    ColumnLayout alone(nodes);
    alone.layOut({0}, {});
    ColumnLayout all(nodes);
    all.layOut({2, 1, 0, 0}, {});
    ASSERT_EQ(all.moves().size(), alone.moves().size());
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(all.rect(i), alone.rect(i)) << i;
}

TEST(ColumnLayout, whatHasNoItemIsNeitherInTheWayNorHoldsARow)
{
    std::vector<Node> nodes{box({100, 50}, {1}), box({100, 50}, {2}, {0, 900}), box({100, 50}),
                            box({60, 60}, {}, {-380, 20})};
    nodes[1].hasItem = false;
    nodes[3].hasItem = false;
    ColumnLayout layout(nodes);
    layout.layOut({0}, {});
    EXPECT_EQ(layout.rect(2).top(), 0.0) << "not at the height of what has none";
    EXPECT_EQ(layout.rect(2).right(), -300.0) << "an empty column between two gaps";
    for (const ColumnLayout::Move &move : layout.moves())
        EXPECT_NE(move.node, 1);
}

TEST(ColumnLayout, aSourceThatFeedsANodeTwiceStandsInTheRowOfItsFirstInput)
{
    ColumnLayout layout({box({100, 50}, {1, 2, 1}), box({100, 50}), box({100, 50})});
    layout.layOut({0}, {});
    EXPECT_EQ(layout.rect(1).top(), 0.0);
    EXPECT_GT(layout.rect(2).top(), layout.rect(1).bottom());
    EXPECT_EQ(layout.moves().size(), 3);
}

TEST(ColumnLayout, ofSeveralThingsInTheWayTheFurthestCounts)
{
    ColumnLayout layout({box({100, 50}, {1}), box({100, 50}), box({60, 60}, {}, {-240, 0}),
                         box({20, 20}, {}, {-170, 20})});
    layout.layOut({0}, {});
    EXPECT_EQ(layout.rect(1).right(), -240.0 - 75.0);
}

TEST(ColumnLayout, aColumnThatGoesLeftTakesNoNodesWithoutItemsAlong)
{
    std::vector<Node> nodes{box({100, 50}, {1, 2}), box({100, 50}), box({100, 50}),
                            box({60, 60}, {}, {-220, 0})};
    nodes[1].hasItem = false;
    ColumnLayout layout(nodes);
    layout.layOut({0}, {});
    EXPECT_EQ(layout.rect(2).right(), -220.0 - 75.0);
    for (const ColumnLayout::Move &move : layout.moves())
        EXPECT_NE(move.node, 1);
}

TEST(ColumnLayout, randomGraphsComeOutReadableAndAlwaysTheSame)
{
    std::mt19937 random(20);
    for (int round = 0; round < 60; ++round) {
        const std::vector<Node> nodes = randomGraph(2 + int(random() % 120), &random);
        QVector<bool> fed(int(nodes.size()), false);
        for (const Node &node : nodes) {
            for (const ColumnLayout::Input &input : node.inputs)
                fed[input.source] = true;
        }
        const int count = int(nodes.size());
        QVector<int> starts;
        for (int i = 0; i < count; ++i) {
            if (!fed.at(i))
                starts.append(i);
        }
        ColumnLayout layout(nodes);
        layout.layOut(starts, {});
        ColumnLayout again(nodes);
        again.layOut(starts, {});
        QSet<int> placed;
        for (const ColumnLayout::Move &move : layout.moves()) {
            if (!move.shift) {
                EXPECT_FALSE(placed.contains(move.node)) << round;
            }
            placed.insert(move.node);
        }
        EXPECT_EQ(placed.size(), count) << round;
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(layout.rect(i), again.rect(i));
            for (const ColumnLayout::Input &input : nodes[std::size_t(i)].inputs) {
                // Trees of other roots may stand anywhere; within one, streams run to the right.
                if (starts.size() == 1) {
                    EXPECT_LE(layout.rect(input.source).right() + 150.0,
                              layout.rect(i).left() + 0.001);
                }
            }
            for (int k = i + 1; k < count; ++k) {
                const bool roots = starts.contains(i) && starts.contains(k);
                EXPECT_TRUE(roots || !layout.rect(i).intersects(layout.rect(k)))
                    << round << ": " << i << " and " << k;
            }
        }
    }
}

class AutoplaceTest : public GraphFixture
{};

TEST_F(AutoplaceTest, selectionOrAllLeavesAreLaidOutInOneStep)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {800, 400});
    OssSnBaseNode *base = addAt("Procedural/Color", {810, 410});
    OssSnBaseNode *over = addAt("Procedural/Color", {100, 900});
    OssSnBaseNode *apart = addAt("Filter/Blur", {2000, 2000});
    wire(base, merge, "Base");
    wire(over, merge, "Over");
    OssUndoManager::instance()->clear();
    merge->setSelected(true);
    m_manager->beautifyNodesLayout();
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Layout Nodes"));
    EXPECT_EQ(itemOf(merge)->pos(), QPointF(800, 400));
    EXPECT_EQ(itemOf(base)->pos().y(), 400.0);
    EXPECT_EQ(itemOf(base)->sceneBoundingRect().right() + 150.0, 800.0);
    EXPECT_EQ(itemOf(over)->pos().x(), itemOf(base)->pos().x());
    EXPECT_GE(itemOf(over)->pos().y(), itemOf(base)->sceneBoundingRect().bottom() + 60.0);
    EXPECT_EQ(itemOf(apart)->pos(), QPointF(2000, 2000));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(itemOf(base)->pos(), QPointF(810, 410));
    EXPECT_EQ(itemOf(over)->pos(), QPointF(100, 900));
    merge->setSelected(false);
    OssUndoManager::instance()->clear();
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(itemOf(base)->sceneBoundingRect().right() + 150.0, 800.0);
    m_manager->beautifyNodesLayout(m_network, QList<OssSnBaseNode *>{nullptr});
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(AutoplaceTest, viewersDoNotKeepANodeFromBeingALeafAndToViewIsNotFollowed)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *blur = addAt("Filter/Blur", {-40, 30});
    wire(color, blur);
    OssSnBaseNode *viewer = m_network->viewerNode();
    ASSERT_TRUE(viewer->setInputNode(QStringLiteral("1"), blur, blur->prefferedOutputPoint()));
    ASSERT_TRUE(
        viewer->setInputNode(QStringLiteral("ToView"), color, color->prefferedOutputPoint()));
    const QPointF viewerPlace(900, 0);
    contextOf(viewer)->setNodePosition(viewerPlace);
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(itemOf(viewer)->pos(), viewerPlace);
    EXPECT_EQ(itemOf(blur)->pos(), QPointF(-40, 30));
    EXPECT_EQ(itemOf(color)->sceneBoundingRect().right() + 150.0, -40.0);
}

TEST_F(AutoplaceTest, backdropsAreRefittedAroundWhatTheyHeldAndNothingIsSaidAboutNothing)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 120});
    wire(color, blur);
    contextOf(m_network->viewerNode())->setNodePosition({3000, 0});
    OssSnBaseNode *area = addAt("Misc/Backdrop", {-60, -80});
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(area));
    backdrop->setRect({0, 0, 500, 500});
    OssUndoManager::instance()->clear();
    area->setSelected(true); // stands for what lies on it
    m_manager->beautifyNodesLayout(m_network);
    const qreal margin = backdrop->titleBarHeight();
    const QRectF members = itemOf(blur)->sceneBoundingRect() | itemOf(color)->sceneBoundingRect();
    EXPECT_EQ(backdrop->rect().translated(backdrop->pos()),
              members.adjusted(-margin, -2 * margin, margin, margin));
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(backdrop->rect().translated(backdrop->pos()), QRectF(-60, -80, 500, 500));

    m_network->removeNodes({blur, color});
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] Nothing to autoplace.")));
}

TEST_F(AutoplaceTest, portsOfAGroupFollowTheNodesThatStandForThem)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    ASSERT_NE(group, nullptr);
    QList<OssSnBaseNode *> inside;
    for (const char *name : {"A", "B", "C"})
        inside.append(group->createInput(QString::fromLatin1(name), OssSnDataKind::Color));
    for (int i = 0; i < 3; ++i)
        contextOf(inside.at(i))->setNodePosition({0.0, 100.0 * i});
    OssUndoManager::instance()->clear();
    itemOf(inside.first())->setPosition({0, 500});
    Q_EMIT itemOf(inside.first())->posChanged({0, 500});
    const QStringList order{QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("A")};
    EXPECT_EQ(group->inputNames(), order);
    EXPECT_EQ(itemOf(group)->inputPortNames(), order);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(group->inputNames().first(), QStringLiteral("A"));
    Q_EMIT OssShaderNetworkManager::instance()->arrangeGroupInputNodesByOrderRequested(
        group->groupNetwork(), {QStringLiteral("C"), QStringLiteral("A"), QStringLiteral("B")});
    EXPECT_LT(itemOf(inside.at(2))->pos().y(), itemOf(inside.at(0))->pos().y());
    EXPECT_LT(itemOf(inside.at(0))->pos().y(), itemOf(inside.at(1))->pos().y());
    m_manager->reorderGroupInputsByPos(nullptr);
    EXPECT_TRUE(logHas(QStringLiteral("GroupNode is NULL")));
}

TEST_F(AutoplaceTest, hiddenNodesAndTheViewerOnABackdropStayAndEmptyBackdropsToo)
{
    OssSnBaseNode *merge = addAt("Layer/Merge", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 120});
    OssSnBaseNode *hidden = addAt("Filter/Blur", {200, 300});
    OssSnBaseNode *viewer = m_network->viewerNode();
    contextOf(viewer)->setNodePosition({250, 200});
    wire(color, merge, "Base");
    wire(hidden, merge, "Over");
    viewer->setInputNode(QStringLiteral("1"), color, color->prefferedOutputPoint());
    itemOf(hidden)->setVisible(false);
    const auto areaAt = [&](const QPointF &position) {
        OssSnBaseNode *area = addAt("Misc/Backdrop", position);
        contextOf(area)->setNodeSize({900, 900});
        return area;
    };
    OssSnBaseNode *area = areaAt({-60, -80});
    OssSnBaseNode *empty = areaAt({5000, 5000});
    area->setSelected(true);
    OssUndoManager::instance()->clear();
    m_manager->beautifyNodesLayout(m_network);
    EXPECT_EQ(itemOf(viewer)->pos(), QPointF(250, 200)) << "it only looks";
    EXPECT_EQ(itemOf(hidden)->pos(), QPointF(200, 300));
    EXPECT_LT(itemOf(color)->sceneBoundingRect().right(), itemOf(merge)->x());
    EXPECT_EQ(contextOf(empty)->nodeSize(), QSizeF(900, 900));
    EXPECT_EQ(itemOf(empty)->pos(), QPointF(5000, 5000));
    const QRectF shown = itemOf(merge)->sceneBoundingRect() | itemOf(color)->sceneBoundingRect()
                         | itemOf(viewer)->sceneBoundingRect();
    const qreal margin = qobject_cast<OssNgBackdropNode *>(itemOf(area))->titleBarHeight();
    EXPECT_EQ(itemOf(area)->sceneBoundingRect(),
              shown.adjusted(-margin, -2 * margin, margin, margin))
        << "around what is to be seen";
    itemOf(hidden)->setVisible(true);
}

TEST_F(AutoplaceTest, backdropsAreInNobodysWay)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *color = addAt("Procedural/Color", {30, 500});
    wire(color, blur);
    contextOf(m_network->viewerNode())->setNodePosition({3000, 0});
    OssSnBaseNode *area = addAt("Misc/Backdrop", {-350, -40});
    contextOf(area)->setNodeSize({250, 150});
    m_manager->beautifyNodesLayout(m_network, blur);
    EXPECT_EQ(itemOf(color)->sceneBoundingRect().right(), -150.0);
}

TEST_F(AutoplaceTest, theHostAsksForAWholeNetworkForOneNodeOrForSeveral)
{
    QList<OssSnBaseNode *> ends;
    QList<OssSnBaseNode *> sources;
    for (int i = 0; i < 3; ++i) {
        ends.append(addAt("Filter/Blur", {0, 1000.0 * i}));
        sources.append(addAt("Procedural/Color", {10, 1000.0 * i + 20}));
        wire(sources.last(), ends.last());
    }
    const auto laidOut = [&] {
        QString which;
        for (int i = 0; i < 3; ++i)
            which += QLatin1Char(itemOf(sources.at(i))->x() < 0.0 ? 'x' : '-');
        OssUndoManager::instance()->undo();
        return which.toStdString();
    };
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    select({});
    Q_EMIT networks->beautifyNodesLayout(m_network, ends.at(1));
    EXPECT_EQ(laidOut(), "-x-");
    Q_EMIT networks->beautifyNodesLayout(m_network,
                                         QList<OssSnBaseNode *>{ends.at(0), nullptr, ends.at(2)});
    EXPECT_EQ(laidOut(), "x-x");
    Q_EMIT networks->beautifyNodesLayout(m_network);
    EXPECT_EQ(laidOut(), "xxx");
    const int steps = undoCount();
    const QByteArray before = m_project->stateHash();
    Q_EMIT networks->beautifyNodesLayout(m_network, static_cast<OssSnBaseNode *>(nullptr));
    Q_EMIT networks->beautifyNodesLayout(m_network, QList<OssSnBaseNode *>());
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), steps);
}

TEST_F(AutoplaceTest, portsWithoutNodesKeepTheirPlacesAndOneAloneHasNoOrder)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    OssSnBaseNode *single = group->createInput(QStringLiteral("A"), OssSnDataKind::Color);
    OssSnBaseNode *end = group->createOutput(QStringLiteral("Z"), OssSnDataKind::Color);
    OssUndoManager::instance()->clear();
    m_manager->reorderGroupInputsByPos(group);
    m_manager->reorderGroupOutputsByPos(group);
    EXPECT_EQ(undoCount(), 0);
    EXPECT_NE(single, end);
    OssSnBaseNode *second = group->createInput(QStringLiteral("B"), OssSnDataKind::Color);
    OssSnBaseNode::InputPort loose;
    loose.name = QStringLiteral("Loose");
    group->addInput(loose);
    group->reorderInputs({QStringLiteral("A"), QStringLiteral("Loose"), QStringLiteral("B")});
    contextOf(single)->setNodePosition({0, 500});
    contextOf(second)->setNodePosition({0, 0});
    OssUndoManager::instance()->clear();
    m_manager->reorderGroupInputsByPos(group);
    EXPECT_EQ(group->inputNames(),
              QStringList({QStringLiteral("B"), QStringLiteral("Loose"), QStringLiteral("A")}));
    // An order that is there already moves nothing, a name that is none or comes twice neither.
    OssUndoManager::instance()->clear();
    m_manager->arrangeGroupInputNodesByOrder(
        group->groupNetwork(), {QStringLiteral("B"), QStringLiteral("None"), QStringLiteral("Z"),
                                QStringLiteral("B"), QStringLiteral("A")});
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(itemOf(second)->pos(), QPointF(0, 0));
    EXPECT_EQ(itemOf(single)->pos(), QPointF(0, 500));
    m_manager->arrangeGroupInputNodesByOrder(nullptr, {});
    EXPECT_TRUE(logHas(QStringLiteral("Network is NULL")));
}

} // namespace
