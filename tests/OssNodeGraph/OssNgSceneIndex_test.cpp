#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include "OssNodeGraph/Items/OssNgDotNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "support/ExampleGraph.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

const QString In = text("Base");
const QString Out = text("Output");

} // namespace

TEST(OssNgSceneIndex, agreesWithAWalkOverAllItemsAfterRandomMoves)
{
    GraphScene scene;
    buildGrid(&scene, 300);
    const OssNgSceneIndex &index = *OssNgSceneIndex::of(&scene);
    std::mt19937 random(7);
    std::uniform_real_distribution<qreal> place(-4000.0, 9000.0);
    const QVector<OssNgNode *> all = index.nodesIn({-1e5, -1e5, 2e5, 2e5});
    ASSERT_EQ(all.size(), 300);
    for (int round = 0; round < 200; ++round) {
        OssNgNode *node = all[int(random() % 300)];
        node->setPosition({place(random), place(random)});
        if (round % 7 == 0)
            node->attachInput(In, all[int(random() % 300)], Out);
        if (round % 11 == 0)
            node->detachInput(In);
        const QRectF area(place(random), place(random), 1500.0, 1200.0);
        QVector<OssNgNode *> nodes;
        QVector<OssNgEdge *> edges;
        for (OssNgNode *other : all) {
            if (area.intersects(other->bodyRect().translated(other->pos())))
                nodes.append(other);
            for (OssNgEdge *edge : other->inputs()) {
                if (area.intersects(edge->boundingRect()))
                    edges.append(edge);
            }
        }
        QVector<OssNgNode *> foundNodes = index.nodesIn(area);
        QVector<OssNgEdge *> foundEdges = index.edgesIn(area);
        std::sort(nodes.begin(), nodes.end());
        std::sort(edges.begin(), edges.end());
        std::sort(foundNodes.begin(), foundNodes.end());
        std::sort(foundEdges.begin(), foundEdges.end());
        ASSERT_EQ(foundNodes, nodes) << round;
        ASSERT_EQ(foundEdges, edges) << round;
    }
}

TEST(OssNgSceneIndex, topmostNodeTakesTheClick)
{
    GraphScene scene;
    auto *lower = scene.add(text("lower"), {0, 0});
    auto *upper = scene.add(text("upper"), {40, 5});
    const OssNgSceneIndex &index = *OssNgSceneIndex::of(&scene);
    EXPECT_EQ(index.nodeAt({100, 20}), upper);
    EXPECT_EQ(index.nodeAt({20, 20}), lower);
    lower->setZValue(1.0);
    EXPECT_EQ(index.nodeAt({100, 20}), lower);
    lower->setVisible(false);
    EXPECT_EQ(index.nodeAt({20, 20}), nullptr);
}

TEST(OssNgSceneIndex, longWireIsFoundAllAlong)
{
    GraphScene scene;
    auto *a = scene.add("a", {0, 0}, {}, {Out});
    auto *b = scene.add("b", {30000, 20000}, {In}, {});
    const OssNgEdge *edge = b->attachInput(In, a, Out);
    const OssNgSceneIndex &index = *OssNgSceneIndex::of(&scene);
    for (const qreal t : {0.05, 0.3, 0.5, 0.8, 0.95})
        EXPECT_EQ(index.edgeAt(edge->path().pointAtPercent(t), 60.0), edge) << t;
    b->setPosition({300, 0});
    EXPECT_EQ(index.edgeAt(edge->markerPosition(), 2.0), edge);
}

TEST(OssNgSceneIndex, everyItemLeavesNoTrace)
{
    GraphScene scene;
    const OssNgSceneIndex &index = *OssNgSceneIndex::of(&scene);
    {
        GraphScene other;
        buildGrid(&other, 50);
        EXPECT_EQ(index.nodeCount(), 0);
        EXPECT_EQ(OssNgSceneIndex::of(&other)->nodeCount(), 50);
        EXPECT_EQ(OssNgSceneIndex::of(&other)->wireCount(), 49);
        OssNgSceneIndex::releaseItems(&other);
        EXPECT_EQ(OssNgSceneIndex::of(&other)->nodeCount(), 0);
        EXPECT_EQ(OssNgSceneIndex::of(&other)->wireCount(), 0);
        EXPECT_TRUE(other.items().isEmpty());
    }
    EXPECT_TRUE(index.visibleNodeBounds().isEmpty());
}

TEST(OssNgSceneIndex, parentsThatLostAllTheirNodesAreNotKeptForEver)
{
    QGraphicsScene many;
    int most = 0;
    std::vector<std::unique_ptr<OssNgDotNode>> kept;
    for (int round = 0; round < 5; ++round) {
        std::vector<std::unique_ptr<OssNgDotNode>> nodes;
        for (int i = 0; i < 640; ++i) {
            nodes.push_back(std::make_unique<OssNgDotNode>());
            many.addItem(nodes.back().get());
        }
        kept.push_back(std::move(nodes.back()));
        nodes.clear();
        most = std::max(most, many.items().size());
    }
    EXPECT_LT(most, 80);
    for (const auto &node : kept)
        EXPECT_EQ(node->scene(), &many);
}
