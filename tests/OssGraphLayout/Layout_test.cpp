#include "OssGraphLayout/OssLyLayout.h"
#include "OssGraphLayout/OssLyMeasure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr double Margin = 28.0;

OssLyNode nodeAt(double x, double y, int frame = -1)
{
    OssLyNode node;
    node.rect = {x, y, 160.0, 80.0};
    node.frame = frame;
    return node;
}

OssLyWire wire(int from, int to, int port = 0)
{
    return {from, to, 40.0, 40.0 + 20.0 * port};
}

OssLyFrame frame(int parent = -1)
{
    return {parent, Margin, 2.0 * Margin};
}

/// Wires lead from lower to higher indexes.
OssLyGraph randomGraph(int nodes, int frames, std::mt19937 *random)
{
    const auto below = [random](int limit) {
        return int((*random)() % unsigned(limit));
    };
    OssLyGraph graph;
    for (int f = 0; f < frames; ++f)
        graph.frames.push_back(frame(f > 0 && below(3) == 0 ? below(f) : -1));
    for (int n = 0; n < nodes; ++n) {
        OssLyNode node = nodeAt(below(3000), below(2000));
        node.rect.width += below(80);
        node.rect.height += below(120);
        if (frames > 0 && below(2) == 0)
            node.frame = below(frames);
        graph.nodes.push_back(node);
        for (int k = below(3); k > 0 && n > 0; --k)
            graph.wires.push_back(wire(std::max(0, n - 1 - below(12)), n, k));
    }
    return graph;
}

OssLyGraph moved(OssLyGraph graph, const OssLyPlaces &places)
{
    for (std::size_t n = 0; n < graph.nodes.size(); ++n)
        graph.nodes[n].rect = places.nodes[n];
    return graph;
}

bool isIn(const OssLyGraph &graph, int frame, int outer)
{
    while (frame >= 0 && frame != outer)
        frame = graph.frames[std::size_t(frame)].parent;
    return frame == outer;
}

double distance(const OssLyRect &a, const OssLyRect &b)
{
    return std::abs(a.x - b.x) + std::abs(a.y - b.y);
}

void expectWhole(const OssLyGraph &graph, const OssLyPlaces &places)
{
    for (std::size_t a = 0; a < graph.nodes.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b)
            EXPECT_FALSE(places.nodes[a].intersects(places.nodes[b])) << a << " and " << b;
        for (std::size_t f = 0; f < graph.frames.size(); ++f) {
            const OssLyRect &rect = places.frames[f];
            if (rect.isEmpty())
                continue;
            const OssLyRect &node = places.nodes[a];
            if (isIn(graph, graph.nodes[a].frame, int(f)))
                EXPECT_TRUE(rect.x <= node.x && rect.y <= node.y && rect.right() >= node.right()
                            && rect.bottom() >= node.bottom())
                    << a << " in " << f;
            else
                EXPECT_FALSE(rect.intersects(node)) << a << " and frame " << f;
        }
    }
    for (std::size_t f = 0; f < graph.frames.size(); ++f) {
        for (std::size_t g = 0; g < f; ++g) {
            const bool both = !places.frames[f].isEmpty() && !places.frames[g].isEmpty();
            if (both && !isIn(graph, int(f), int(g)) && !isIn(graph, int(g), int(f)))
                EXPECT_FALSE(places.frames[f].intersects(places.frames[g])) << f << " and " << g;
        }
    }
    for (const OssLyWire &one : graph.wires)
        EXPECT_LE(places.nodes[std::size_t(one.from)].right(), places.nodes[std::size_t(one.to)].x)
            << one.from << " to " << one.to;
}

TEST(OssLyLayout, aChainRunsLevelAndItsEndKeepsItsPlace)
{
    OssLyGraph graph;
    graph.nodes = {nodeAt(500, 900), nodeAt(20, 20), nodeAt(700, 300)};
    graph.wires = {wire(0, 1, 1), wire(1, 2)};
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    EXPECT_EQ(places.nodes[2].x, 700.0);
    EXPECT_EQ(places.nodes[2].y, 300.0);
    EXPECT_NEAR(places.nodes[1].y, 300.0, 0.5);
    EXPECT_NEAR(places.nodes[0].y, 320.0, 0.5) << "from port to port";
    EXPECT_EQ(places.nodes[1].right() + OssLyOptions().columnGap, places.nodes[2].x);
}

TEST(OssLyLayout, sourcesStandInTheOrderOfThePortsThatTheyFeed)
{
    OssLyGraph graph;
    for (int i = 0; i < 6; ++i)
        graph.nodes.push_back(nodeAt(0.0, 100.0 * i));
    for (int i = 1; i < 6; ++i)
        graph.wires.push_back(wire(i, 0, 6 - i));
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    EXPECT_EQ(ossLyMeasured(graph, places.nodes).crossings, 0);
    for (std::size_t i = 2; i < 6; ++i)
        EXPECT_LT(places.nodes[i].y, places.nodes[i - 1].y);
}

TEST(OssLyLayout, wiresAreAsShortAsTheyMayBe)
{
    // 1 feeds the end of a chain: it stands beside that, not at the chain's beginning.
    OssLyGraph graph;
    for (int i = 0; i < 6; ++i)
        graph.nodes.push_back(nodeAt(0.0, 100.0 * i));
    graph.wires = {wire(0, 2), wire(2, 3), wire(3, 4), wire(4, 5), wire(1, 5, 1)};
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    EXPECT_EQ(places.nodes[1].x, places.nodes[4].x);
}

TEST(OssLyLayout, randomGraphsWithFramesComeOutWholeAndAlwaysTheSame)
{
    std::mt19937 random(19);
    for (int round = 0; round < 120; ++round) {
        SCOPED_TRACE(round);
        const OssLyGraph graph = randomGraph(2 + int(random() % 50), int(random() % 6), &random);
        const OssLyPlaces places = OssLyLayout::arranged(graph);
        expectWhole(graph, places);
        const OssLyPlaces again = OssLyLayout::arranged(graph);
        for (std::size_t n = 0; n < graph.nodes.size(); ++n)
            EXPECT_EQ(distance(places.nodes[n], again.nodes[n]), 0.0);
        if (testing::Test::HasFailure())
            return;
    }
}

TEST(OssLyLayout, loopsAndWiresToThemselvesAreBorne)
{
    OssLyGraph graph;
    graph.nodes = {nodeAt(0, 0), nodeAt(10, 0), nodeAt(20, 0)};
    graph.wires = {wire(0, 1), wire(1, 2), wire(2, 0), wire(1, 1)};
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    EXPECT_EQ(ossLyMeasured(graph, places.nodes).backward, 2);
    EXPECT_TRUE(OssLyLayout::arranged({}).nodes.empty());
}

TEST(OssLyLayout, whatIsArrangedStaysAndSmallEditsMoveLittle)
{
    std::mt19937 random(7);
    int stayed = 0;
    int near = 0;
    int all = 0;
    for (int round = 0; round < 20; ++round) {
        OssLyGraph graph = randomGraph(40, round % 3, &random);
        graph = moved(graph, OssLyLayout::arranged(graph));
        const OssLyPlaces again = OssLyLayout::arranged(graph);
        double most = 0.0;
        for (std::size_t n = 0; n < graph.nodes.size(); ++n)
            most = std::max(most, distance(again.nodes[n], graph.nodes[n].rect));
        stayed += most < 1.0 ? 1 : 0;
        graph = moved(graph, again);
        graph.nodes.push_back(nodeAt(graph.nodes[5].rect.x - 200.0, graph.nodes[5].rect.y + 100.0));
        graph.wires.push_back(wire(40, 5, 3));
        const OssLyPlaces edited = OssLyLayout::arranged(graph);
        for (std::size_t n = 0; n < 40; ++n) {
            ++all;
            near += std::abs(edited.nodes[n].y - graph.nodes[n].rect.y) < 200.0 ? 1 : 0;
        }
    }
    EXPECT_EQ(stayed, 20);
    EXPECT_GE(near, all * 2 / 3) << "of " << all;
}

TEST(OssLyLayout, notesKeepTheirPlaceBesideTheirNodeAndFrame)
{
    OssLyGraph graph;
    graph.frames = {frame()};
    graph.nodes = {nodeAt(500, 900, 0), nodeAt(20, 20, 0), nodeAt(500, 800), nodeAt(20, -160)};
    graph.nodes[2].attachedTo = 0;
    graph.nodes[3].besideFrame = 0;
    graph.wires = {wire(0, 1)};
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    EXPECT_NEAR(places.nodes[2].y - places.nodes[0].y, -100.0, 0.01);
    EXPECT_NEAR(places.nodes[2].x, places.nodes[0].x, 0.01);
    EXPECT_LE(places.frames[0].y, places.nodes[2].y) << "goes with its node into the frame";
    EXPECT_LE(places.nodes[3].bottom(), places.frames[0].y);
    EXPECT_GE(places.nodes[3].bottom(), places.frames[0].y - 100.0);
}

TEST(OssLyLayout, lookersStandRightOfWhatTheyLookAtAndTakeNoPartOtherwise)
{
    OssLyGraph graph;
    graph.frames = {frame()};
    graph.nodes = {nodeAt(0, 0), nodeAt(0, 50, 0), nodeAt(-900, 0)};
    graph.nodes[2].looksOnly = true;
    graph.wires = {wire(0, 1), wire(1, 2), wire(0, 2)};
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    EXPECT_GE(places.nodes[2].x, places.frames[0].right() + 100.0);
    EXPECT_NEAR(places.nodes[2].y, places.nodes[1].y, 1.0) << "its first wire runs level";
    EXPECT_EQ(places.nodes[1].x, 0.0) << "and is no end of its own";
}

TEST(OssLyLayout, partsThatNothingJoinsArePackedAndOnesThatFitStay)
{
    OssLyGraph graph;
    for (int part = 0; part < 6; ++part) {
        graph.nodes.push_back(nodeAt(5000.0 * part, 3000.0 * (part % 2)));
        graph.nodes.push_back(nodeAt(5000.0 * part + 40.0, 3000.0 * (part % 2) + 30.0));
        graph.wires.push_back(wire(2 * part, 2 * part + 1));
    }
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    const OssLyMeasure found = ossLyMeasured(graph, places.nodes);
    EXPECT_LT(found.width * found.height, 6.0 * (470.0 + 60.0) * (80.0 + 60.0) * 1.3);
    expectWhole(graph, places);
    const OssLyPlaces again = OssLyLayout::arranged(moved(graph, places));
    for (std::size_t n = 0; n < graph.nodes.size(); ++n)
        EXPECT_LT(distance(again.nodes[n], places.nodes[n]), 1.0);
}

TEST(OssLyLayout, aSmallPartGoesWhereALargeOneLeavesRoomAndStaysThere)
{
    OssLyGraph graph;
    for (int leaf = 0; leaf < 6; ++leaf)
        graph.nodes.push_back(nodeAt(600, 200 * leaf));
    graph.nodes.push_back(nodeAt(0, 0));
    graph.nodes.push_back(nodeAt(300, 0));
    graph.wires = {wire(6, 7)};
    for (int leaf = 0; leaf < 6; ++leaf)
        graph.wires.push_back(wire(7, leaf));
    const OssLyMeasure alone = ossLyMeasured(graph, OssLyLayout::arranged(graph).nodes);
    graph.nodes.push_back(nodeAt(-5000, 5000));
    const OssLyPlaces places = OssLyLayout::arranged(graph);
    const OssLyMeasure found = ossLyMeasured(graph, places.nodes);
    EXPECT_EQ(found.width * found.height, alone.width * alone.height);
    EXPECT_EQ(found.throughNodes, 0);
    graph.nodes.back().standsApart = true;
    const OssLyPlaces apart = OssLyLayout::arranged(graph);
    OssLyRect around = apart.nodes.back();
    around = {around.x - 120.0, around.y - 120.0, around.width + 240.0, around.height + 240.0};
    for (std::size_t n = 0; n + 1 < graph.nodes.size(); ++n)
        EXPECT_FALSE(apart.nodes[n].intersects(around));
    graph.nodes.back().standsApart = false;
    expectWhole(graph, places);
    const OssLyPlaces again = OssLyLayout::arranged(moved(graph, places));
    for (std::size_t n = 0; n < graph.nodes.size(); ++n)
        EXPECT_LT(distance(again.nodes[n], places.nodes[n]), 1.0);
}

TEST(OssLyLayout, detoursLeadAroundTheNodesInTheWay)
{
    OssLyGraph graph;
    graph.nodes = {nodeAt(0, 0), nodeAt(400, 0), nodeAt(400, -90), nodeAt(800, 0)};
    graph.wires = {wire(0, 3), wire(0, 1)};
    std::vector<OssLyRect> places;
    for (const OssLyNode &node : graph.nodes)
        places.push_back(node.rect);
    const auto found = OssLyLayout::detours(graph, places, 20.0);
    ASSERT_EQ(found.size(), 2U);
    ASSERT_EQ(found[0].size(), 1U);
    EXPECT_TRUE(found[1].empty());
    EXPECT_GT(found[0][0].y, 90.0) << "below, for two nodes are above";
    EXPECT_EQ(found[0][0].x, 480.0);
}

TEST(OssLyMeasure, countsWhatIsSeen)
{
    OssLyGraph graph;
    graph.nodes = {nodeAt(0, 0), nodeAt(0, 200), nodeAt(400, 0), nodeAt(400, 200), nodeAt(200, 0)};
    graph.wires = {wire(0, 3), wire(1, 2), wire(0, 2), wire(3, 1)};
    std::vector<OssLyRect> places;
    for (const OssLyNode &node : graph.nodes)
        places.push_back(node.rect);
    const OssLyMeasure found = ossLyMeasured(graph, places);
    EXPECT_EQ(found.crossings, 1) << "wires that meet in a port do not cross";
    EXPECT_EQ(found.throughNodes, 3);
    EXPECT_EQ(found.backward, 1);
    EXPECT_EQ(found.width, 560.0);
    EXPECT_EQ(found.height, 280.0);
}

} // namespace
