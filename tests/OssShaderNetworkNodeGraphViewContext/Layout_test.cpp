#include "Layout/ColumnLayout.h"
#include "Layout/FramedLayout.h"

#include <gtest/gtest.h>

#include <QMarginsF>
#include <QPointF>
#include <QRectF>
#include <QSet>
#include <QSizeF>
#include <QVector>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <random>
#include <vector>

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

Node usual(const QVector<int> &sources = {}, const QPointF &position = {})
{
    return box({100, 50}, sources, position);
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

ColumnLayout laidOut(const std::vector<Node> &nodes, const QVector<int> &starts = {0},
                     const QVector<int> &ignored = {})
{
    ColumnLayout layout(nodes);
    layout.layOut(starts, ignored);
    return layout;
}

bool moves(const ColumnLayout &layout, int node)
{
    const QVector<ColumnLayout::Move> &all = layout.moves();
    return std::any_of(all.cbegin(), all.cend(),
                       [node](const ColumnLayout::Move &move) { return move.node == node; });
}

TEST(ColumnLayout, aChainRunsLeftFromItsRootAndTheRootStays)
{
    const ColumnLayout layout = laidOut(
        {usual({1}, {500, 300}), box({80, 40}, {2}), box({60, 70})});
    EXPECT_EQ(layout.rect(0).topLeft(), QPointF(500, 300));
    EXPECT_EQ(layout.rect(1).topLeft(), QPointF(500 - 150 - 80, 300));
    EXPECT_EQ(layout.rect(2).topLeft(), QPointF(500 - 150 - 80 - 150 - 60, 300));
}

TEST(ColumnLayout, aNodeStandsInTheDeepestColumnInTheMiddleOfItsWidth)
{
    // 3 feeds the root directly and through 1 and 2.
    const ColumnLayout layout = laidOut(
        {usual({3, 1}), box({200, 50}, {2}), box({40, 50}, {3}), box({90, 50})});
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
    const ColumnLayout layout = laidOut(nodes);
    EXPECT_EQ(layout.rect(1).top(), 0.0);
    EXPECT_EQ(layout.rect(2).top(), 0.0);
    EXPECT_EQ(layout.rect(3).top(), layout.rect(1).bottom() + 60.0);
    EXPECT_EQ(layout.rect(4).top(), layout.rect(2).bottom() + 60.0);
}

TEST(ColumnLayout, aColumnInTheWayGoesLeftWithAllThatFollow)
{
    std::vector<Node> nodes{usual({1}), usual({2}), usual(), box({60, 60}, {}, {-220, 20})};
    const ColumnLayout layout = laidOut(nodes);
    EXPECT_EQ(layout.rect(1).right(), -220.0 - 75.0);
    EXPECT_EQ(layout.rect(2).right(), layout.rect(1).left() - 150.0);
    EXPECT_EQ(layout.rect(3).topLeft(), QPointF(-220, 20));
    nodes.push_back(box({20, 20}, {}, {-170, 20})); // of several the furthest counts
    EXPECT_EQ(laidOut(nodes).rect(1).right(), -220.0 - 75.0);
    nodes.pop_back();
    // A backdrop lies behind and is in nobody's way.
    const ColumnLayout behind = laidOut(nodes, {0}, {3});
    EXPECT_EQ(behind.rect(1).right(), -150.0);
}

TEST(ColumnLayout, loopsEndAndNodesWithoutItemsTakeNoRoom)
{
    std::vector<Node> nodes{usual({1}), usual({2}), usual({1, 0, 3}), usual()};
    nodes[1].hasItem = false;
    const ColumnLayout layout = laidOut(nodes, {0, 2});
    EXPECT_EQ(layout.rect(0).topLeft(), QPointF());
    EXPECT_FALSE(moves(layout, 1));
}

TEST(ColumnLayout, startsThatFeedOtherStartsOrComeTwiceStartNothing)
{
    const std::vector<Node> nodes{usual({1}, {500, 300}), box({80, 40}, {2}, {900, 0}),
                                  box({60, 70}, {}, {700, 100})};
    const ColumnLayout alone = laidOut(nodes);
    const ColumnLayout all = laidOut(nodes, {2, 1, 0, 0});
    ASSERT_EQ(all.moves().size(), alone.moves().size());
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(all.rect(i), alone.rect(i)) << i;
}

TEST(ColumnLayout, whatHasNoItemIsNeitherInTheWayNorHoldsARow)
{
    std::vector<Node> nodes{usual({1}), usual({2}, {0, 900}), usual(),
                            box({60, 60}, {}, {-380, 20})};
    nodes[1].hasItem = false;
    nodes[3].hasItem = false;
    const ColumnLayout layout = laidOut(nodes);
    EXPECT_EQ(layout.rect(2).top(), 0.0) << "not at the height of what has none";
    EXPECT_EQ(layout.rect(2).right(), -300.0) << "an empty column between two gaps";
    EXPECT_FALSE(moves(layout, 1));
}

TEST(ColumnLayout, aSourceThatFeedsANodeTwiceStandsInTheRowOfItsFirstInput)
{
    const ColumnLayout layout = laidOut({usual({1, 2, 1}), usual(), usual()});
    EXPECT_EQ(layout.rect(1).top(), 0.0);
    EXPECT_GT(layout.rect(2).top(), layout.rect(1).bottom());
    EXPECT_EQ(layout.moves().size(), 3);
}

TEST(ColumnLayout, aColumnThatGoesLeftTakesNoNodesWithoutItemsAlong)
{
    std::vector<Node> nodes{usual({1, 2}), usual(), usual(), box({60, 60}, {}, {-220, 0})};
    nodes[1].hasItem = false;
    const ColumnLayout layout = laidOut(nodes);
    EXPECT_EQ(layout.rect(2).right(), -220.0 - 75.0);
    EXPECT_FALSE(moves(layout, 1));
}

/// Those that feed nothing.
QVector<int> rootsOf(const std::vector<Node> &nodes)
{
    std::vector<bool> fed(nodes.size(), false);
    for (const Node &node : nodes) {
        for (const ColumnLayout::Input &input : node.inputs)
            fed[std::size_t(input.source)] = true;
    }
    QVector<int> roots;
    for (int i = 0; i < int(nodes.size()); ++i) {
        if (!fed[std::size_t(i)])
            roots.append(i);
    }
    return roots;
}

void expectEachPlacedOnce(const ColumnLayout &layout, int count)
{
    QSet<int> placed;
    for (const ColumnLayout::Move &move : layout.moves()) {
        if (!move.shift) {
            EXPECT_FALSE(placed.contains(move.node));
        }
        placed.insert(move.node);
    }
    EXPECT_EQ(placed.size(), count);
}

/// What starts stays where it is, also on others.
void expectApart(const ColumnLayout &layout, const QVector<int> &starts, int count)
{
    for (int i = 0; i < count; ++i) {
        for (int k = i + 1; k < count; ++k) {
            const bool both = starts.contains(i) && starts.contains(k);
            EXPECT_TRUE(both || !layout.rect(i).intersects(layout.rect(k))) << i << " and " << k;
        }
    }
}

void expectTheSameAgain(const ColumnLayout &layout, const std::vector<Node> &nodes,
                        const QVector<int> &starts)
{
    std::vector<Node> standing = nodes;
    for (int i = 0; i < int(nodes.size()); ++i)
        standing[std::size_t(i)].position = layout.rect(i).topLeft();
    const ColumnLayout again = laidOut(standing, starts);
    for (int i = 0; i < int(nodes.size()); ++i) {
        EXPECT_NEAR(layout.rect(i).x(), again.rect(i).x(), 0.001) << i;
        EXPECT_NEAR(layout.rect(i).y(), again.rect(i).y(), 0.001) << i;
    }
}

TEST(ColumnLayout, randomGraphsComeOutReadableAndASecondTimeTheSame)
{
    std::mt19937 random(20);
    int wires = 0;
    int backward = 0;
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const std::vector<Node> nodes = randomGraph(2 + int(random() % 120), &random);
        const QVector<int> starts = rootsOf(nodes);
        const ColumnLayout layout = laidOut(nodes, starts);
        expectEachPlacedOnce(layout, int(nodes.size()));
        expectApart(layout, starts, int(nodes.size()));
        expectTheSameAgain(layout, nodes, starts);
        for (int i = 0; i < int(nodes.size()); ++i) {
            for (const ColumnLayout::Input &input : nodes[std::size_t(i)].inputs) {
                const qreal room = layout.rect(i).left() - layout.rect(input.source).right();
                ++wires;
                backward += room < 0.0 ? 1 : 0;
                EXPECT_TRUE(starts.size() > 1 || room >= 150.0 - 0.001) << i << ": " << room;
            }
        }
    }
    // Where two starts share two things in contrary order no order of the starts helps.
    EXPECT_LE(backward, wires / 25) << "of " << wires;
}

TEST(ColumnLayout, whatStartsShareStandsLeftOfAllThatItFeeds)
{
    // One for many, which stand scattered.
    std::vector<Node> star{usual()};
    QVector<int> leaves;
    for (int leaf = 1; leaf <= 12; ++leaf) {
        leaves.append(leaf);
        star.push_back(box({100, 60}, {0}, {700.0 * (leaf * 7 % 12), 90.0 * leaf}));
    }
    const ColumnLayout many = laidOut(star, leaves);
    for (const int leaf : leaves)
        EXPECT_LT(many.rect(0).right(), many.rect(leaf).left());
    // The first as they read is near what both share, the second is not.
    const std::vector<Node> nodes{box({100, 60}, {2}, {0, 0}), box({100, 60}, {3}, {0, 400}),
                                  usual(), usual({4}), usual({2})};
    const ColumnLayout two = laidOut(nodes, {0, 1});
    EXPECT_LT(two.rect(2).right(), two.rect(4).left());
    EXPECT_LT(two.rect(2).right(), two.rect(0).left());
}

FramedLayout::Frame frameOf(const QVector<int> &members)
{
    return {-1, members, QMarginsF(28, 56, 28, 28), {}};
}

TEST(FramedLayout, membersFarApartPushNobodyAsFar)
{
    // Each frame holds one that nothing reaches, far off.
    const std::vector<Node> nodes{usual({1}), usual({3}), usual({}, {-20000, 9000}), usual(),
                                  usual({}, {-60000, 300})};
    const std::vector<FramedLayout::Frame> frames{frameOf({1, 2}), frameOf({3, 4})};
    FramedLayout layout(nodes, frames, {});
    layout.layOut({0}, {});
    QRectF all;
    for (int i = 0; i < int(nodes.size()); ++i)
        all |= QRectF(layout.position(i), nodes[std::size_t(i)].size);
    EXPECT_LT(all.width(), 2500.0);
    EXPECT_LT(all.height(), 2500.0);
    EXPECT_LT(layout.position(2).x(), layout.position(1).x()) << "on the side where it lay";
    EXPECT_EQ(layout.position(0), nodes.front().position);
}

TEST(FramedLayout, aFrameInAFrameThatHoldsNothingMakesItNoWider)
{
    const std::vector<Node> nodes{usual({1}, {-30000, 900}), usual({2}, {-30300, 900}),
                                  usual({}, {-30600, 900}), usual({1}, {-30000, 1200})};
    std::vector<FramedLayout::Frame> frames{frameOf({}), frameOf({1, 2})};
    frames[0].parent = 1;
    FramedLayout layout(nodes, frames, {});
    layout.layOut({0, 3}, {});
    EXPECT_EQ(layout.position(0), nodes[0].position);
    EXPECT_LT(nodes[0].position.x() - layout.position(2).x(), 1000.0);
}

TEST(FramedLayout, aFrameGrowsOverNoneThatHasNoMembers)
{
    const std::vector<Node> nodes{usual({1}), usual({2}, {-300, 0}), usual({3}, {-320, 100}),
                                  usual({}, {-340, 200})};
    std::vector<FramedLayout::Frame> frames{frameOf({1, 2, 3}), frameOf({})};
    frames[0].area = QRectF(-400, -100, 300, 500);
    frames[1].area = QRectF(-1200, -100, 700, 500);
    FramedLayout layout(nodes, frames, {});
    layout.layOut({0}, {});
    for (int i = 1; i < 4; ++i)
        EXPECT_FALSE(
            QRectF(layout.position(i), nodes[std::size_t(i)].size).intersects(frames[1].area));
}

/// What the members of a frame cover after a layout, with its margins.
QRectF coveredAfter(const FramedLayout::Frame &frame, const std::vector<Node> &nodes,
                    const FramedLayout &layout)
{
    QRectF area;
    for (const int member : frame.members)
        area |= QRectF(layout.position(member), nodes[std::size_t(member)].size);
    return area.marginsAdded(frame.margins);
}

/// Whether a frame covers its members and nobody else.
void expectMembersAlone(const FramedLayout::Frame &frame, const QRectF &area,
                        const std::vector<Node> &nodes, const FramedLayout &layout)
{
    for (int i = 0; i < int(nodes.size()); ++i) {
        const QRectF rect(layout.position(i), nodes[std::size_t(i)].size);
        EXPECT_EQ(area.contains(rect), frame.members.contains(i)) << i;
    }
}

TEST(FramedLayout, membersStayTogetherAndOthersStayOut)
{
    std::mt19937 random(5);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const int count = 8 + int(random() % 30);
        std::vector<Node> nodes = randomGraph(count, &random);
        // Members follow each other, so that frames close no loops of their own.
        std::vector<FramedLayout::Frame> frames{frameOf({1, 2, 3}), frameOf({4, 5})};
        // What stands in a frame stands apart from others today.
        for (std::size_t f = 0; f < frames.size(); ++f) {
            for (const int member : qAsConst(frames[f].members))
                nodes[std::size_t(member)].position.rx() += 20000.0 * double(f + 1);
        }
        QVector<int> starts(count);
        std::iota(starts.begin(), starts.end(), 0);
        FramedLayout layout(nodes, frames, {});
        layout.layOut(starts, {});
        const QVector<QRectF> areas{coveredAfter(frames[0], nodes, layout),
                                    coveredAfter(frames[1], nodes, layout)};
        EXPECT_FALSE(areas.at(0).intersects(areas.at(1)));
        for (int f = 0; f < 2; ++f)
            expectMembersAlone(frames[std::size_t(f)], areas.at(f), nodes, layout);
        std::vector<Node> placed = nodes;
        for (int i = 0; i < count; ++i)
            placed[std::size_t(i)].position = layout.position(i);
        FramedLayout again(placed, frames, {});
        again.layOut(starts, {});
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(again.position(i), layout.position(i)) << i;
    }
}

/// What a frame covers after a layout: it is fitted only where a member moved.
QRectF areaAfter(const FramedLayout::Frame &frame, const std::vector<Node> &before,
                 const FramedLayout &layout)
{
    const bool moved = std::any_of(frame.members.cbegin(), frame.members.cend(), [&](int member) {
        return layout.position(member) != before[std::size_t(member)].position;
    });
    return moved ? coveredAfter(frame, before, layout) : frame.area;
}

TEST(FramedLayout, framesThatWiresLeadOutOfAndInAgainStayApartAndASecondTimeNothingMoves)
{
    std::mt19937 random(11);
    const auto below = [&random](int limit) {
        return int(random() % unsigned(limit));
    };
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const int frameCount = 2 + below(4);
        const int count = frameCount * (4 + below(4));
        std::vector<Node> nodes = randomGraph(count, &random);
        std::vector<FramedLayout::Frame> frames;
        for (int f = 0; f < frameCount; ++f) {
            frames.push_back(frameOf({}));
            const int row = f / 3;
            frames.back().area = QRectF(f % 3 * 2000.0, row * 1700.0, 1500.0, 1300.0);
        }
        QVector<int> starts;
        for (int i = 0; i < count; ++i) {
            starts.append(i);
            const int f = below(frameCount + 1);
            nodes[std::size_t(i)].position = QPointF(below(5500), -500.0 - below(800));
            if (f == frameCount)
                continue;
            frames[std::size_t(f)].members.append(i);
            nodes[std::size_t(i)].position = frames[std::size_t(f)].area.topLeft()
                                             + QPointF(100.0 + below(1200), 100.0 + below(1000));
        }
        FramedLayout layout(nodes, frames, {});
        layout.layOut(starts, {});
        for (std::size_t f = 0; f < frames.size(); ++f) {
            const QRectF area = areaAfter(frames[f], nodes, layout);
            for (std::size_t g = 0; g < f && !frames[f].members.isEmpty(); ++g)
                EXPECT_TRUE(frames[g].members.isEmpty() || !frames[g].area.intersects(area))
                    << g << " and " << f;
            frames[f].area = area;
        }
        for (int i = 0; i < count; ++i)
            nodes[std::size_t(i)].position = layout.position(i);
        FramedLayout again(nodes, frames, {});
        again.layOut(starts, {});
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(again.position(i), nodes[std::size_t(i)].position) << i;
    }
}

TEST(FramedLayout, framesInFramesAndFollowersComeAlong)
{
    std::vector<Node> nodes{usual({1}, {1000, 0}), usual({2}, {500, 300}), usual({}, {900, 300}),
                            box({60, 40}, {}, {910, 240})};
    std::vector<FramedLayout::Frame> frames{frameOf({2}), frameOf({1})};
    frames[0].parent = 1;
    FramedLayout layout(nodes, frames, {{3, 2}});
    layout.layOut({0}, {});
    EXPECT_EQ(layout.position(0), QPointF(1000, 0));
    EXPECT_EQ(layout.position(1).x(), 750.0) << "the column rule";
    EXPECT_EQ(layout.position(2).x(), 500.0);
    EXPECT_EQ(layout.position(3) - layout.position(2), QPointF(10, -60));
}

} // namespace
