#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(Graph, sourcesComeBeforeWhatDependsOnThemAndOnlyThose)
{
    OssEvGraphBuilder builder;
    const int a = builder.addNode("A", "checker");
    const int b = builder.addNode("B", "invert");
    const int c = builder.addNode("C", "gamma");
    const int d = builder.addNode("D", "merge");
    const int stranger = builder.addNode("Stranger", "checker");
    builder.connect(a, "", b, "Input");
    builder.connect(a, "", c, "Input");
    builder.connect(b, "", d, "Base");
    builder.connect(c, "", d, "Over");
    const auto graph = builder.finish();
    const std::vector<int> order = graph->upstream(d);
    ASSERT_EQ(order.size(), 4U);
    EXPECT_EQ(order.front(), a);
    EXPECT_EQ(order.back(), d);
    EXPECT_EQ(graph->upstream(stranger), std::vector<int>{stranger});
    for (const int nobody : {-1, 5})
        EXPECT_TRUE(graph->upstream(nobody).empty());
    EXPECT_EQ(graph->find("C"), c);
    EXPECT_EQ(graph->find("c"), -1);
}

TEST(Graph, lengthIsNoProblem)
{
    OssEvGraphBuilder builder;
    int last = builder.addNode("First", "checker");
    for (int i = 0; i < 100000; ++i) {
        const int node = builder.addNode("Node", "pass");
        builder.connect(last, "", node, "Input");
        last = node;
    }
    const auto graph = builder.finish();
    EXPECT_TRUE(graph->check(last));
    EXPECT_EQ(graph->upstream(last).size(), 100001U);
    OssEvTarget target;
    target.graph = graph;
    target.node = last;
    std::shared_ptr<const OssEvPlan> plan;
    EXPECT_TRUE(OssEvPlan::make(target, &plan));
}

TEST(Graph, wiresToNowhereAreIgnoredAndWiresFromNowhereAreFaults)
{
    OssEvGraphBuilder builder;
    const int checker = builder.addNode("Checker", "checker");
    const int brick = builder.addNode("Brick", "brick");
    const int invert = builder.addNode("Invert", "invert");
    const int bad = builder.addNode("Bad", "invert");
    const int worse = builder.addNode("Worse", "");
    builder.connect(checker, "", 17, "Input");
    builder.connect(checker, "", -1, "Input");
    builder.setCachePoint(99);
    builder.setCachePoint(-1);
    builder.connect(checker, "", invert, "Input");
    builder.connect(brick, "Height", invert, "Input"); // takes the place of the first
    builder.connect(brick, "Depth", bad, "Input");
    const auto graph = builder.finish();
    EXPECT_TRUE(graph->check(invert));
    const OssEvGraph::Link link = graph->nodes()[std::size_t(invert)].inputs[0];
    EXPECT_EQ(link.node, brick);
    EXPECT_EQ(link.output, 2);
    EXPECT_EQ(graph->check(bad).error(), "\"Bad\": \"Brick\" has no output \"Depth\"");
    EXPECT_EQ(graph->check(worse).error(), "\"Worse\": it computes no pixels");
    EXPECT_TRUE(builder.finish()->nodes().empty()) << "the builder begins anew";
}

TEST(Graph, goingOnFromAGraphLeavesItAsItWas)
{
    OssEvGraphBuilder first;
    const int checker = first.addNode("Checker", "checker");
    const auto graph = first.finish();
    OssEvGraphBuilder second(*graph);
    const int invert = second.addNode("Invert", "invert");
    second.connect(checker, "", invert, "Input");
    const auto more = second.finish();
    EXPECT_EQ(graph->nodes().size(), 1U);
    ASSERT_EQ(more->nodes().size(), 2U);
    EXPECT_EQ(more->find("Checker"), checker);
    EXPECT_TRUE(more->check(invert));
}

TEST(Graph, aNamedImageServesWhereNothingIsConnected)
{
    const auto sourceOf = [](bool connected, const std::string &name) {
        OssEvGraphBuilder builder;
        const int checker = builder.addNode("Checker", "checker");
        const int tiled = builder.addNode("Tiled", "tiled", {{"TileImage", name}});
        if (connected)
            builder.connect(checker, "", tiled, "TileImage");
        const auto graph = builder.finish();
        const OssEvResult good = graph->check(tiled);
        if (!good)
            return good.error();
        const int source = graph->nodes()[std::size_t(tiled)].inputs[0].node;
        return graph->nodes()[std::size_t(source)].kernel->name;
    };
    EXPECT_EQ(sourceOf(false, "a.png"), "image");
    EXPECT_EQ(sourceOf(true, "a.png"), "checker");
    EXPECT_EQ(sourceOf(true, ""), "checker");
    EXPECT_EQ(sourceOf(false, ""), "\"Tiled\": nothing is connected to \"TileImage\"");
}

TEST(Graph, everyValueIsBroughtToItsTypeOrRefused)
{
    OssEvKernel kernel;
    constexpr double Any = std::numeric_limits<double>::infinity();
    kernel.parameters = {{"Real", 0.5, -1.0, 2.0, {}},
                         {"Free", 0.0, -Any, Any, {}},
                         {"Integer", std::int64_t(3), 1.0, 9.0, {}},
                         {"Flag", true, 0.0, 1.0, {}},
                         {"Color", OssEvColor{1, 0, 0, 1}, 0.0, 0.0, {}},
                         {"Vector", OssEvVector2{1, 2}, 0.0, 0.0, {}},
                         {"Text", std::string(), 0.0, 0.0, {}},
                         {"Curve", OssEvCurve(), 0.0, 0.0, {}},
                         {"Ramp", OssEvRamp(), 0.0, 0.0, {}},
                         {"Choice", std::int64_t(1), 0.0, 2.0, {"First", "Second", "Third"}}};

    struct Case
    {
        const char *name;
        OssEvParameter given;
        OssEvParameter expected;
    };

    const std::int64_t one = 1;
    const Case good[] = {
        {"Real", 9.0, 2.0},
        {"Real", -9.0, -1.0},
        {"Real", one, 1.0},
        {"Real", true, 1.0},
        {"Free", -1e300, -1e300},
        {"Integer", 4.5, std::int64_t(5)},
        {"Integer", -4.0, one},
        {"Integer", 1e300, std::int64_t(9)},
        {"Flag", 0.0, false},
        {"Flag", std::int64_t(7), true},
        {"Color", OssEvColor{-1, 99, 0, 2}, OssEvColor{-1, 99, 0, 2}},
        {"Vector", OssEvVector2{-5, 1e9}, OssEvVector2{-5, 1e9}},
        {"Text", std::string("a"), std::string("a")},
        {"Curve", std::string("0,0 1,2"), OssEvCurve({{0, 0}, {1, 2}})},
        {"Curve", OssEvCurve({{0, 3}}), OssEvCurve({{0, 3}})},
        {"Ramp", std::string("0,1,1,1,1"),
         OssEvRamp(std::vector<OssEvRamp::Stop>{{0.0, {1, 1, 1, 1}}})},
        {"Choice", std::string("Third"), std::int64_t(2)},
        {"Choice", 9.0, std::int64_t(2)},
        {"Choice", -3.0, std::int64_t(0)},
    };
    for (const Case &value : good) {
        OssEvParameters complete;
        const OssEvResult result = kernel.normalise({{value.name, value.given}}, &complete);
        ASSERT_TRUE(result) << value.name << ": " << result.error();
        EXPECT_TRUE(complete.at(value.name) == value.expected)
            << value.name << ", case " << &value - good;
        EXPECT_EQ(complete.size(), kernel.parameters.size());
    }

    struct Bad
    {
        const char *name;
        OssEvParameter given;
        const char *reason;
    };

    const float none = std::numeric_limits<float>::quiet_NaN();
    const Bad bad[] = {
        {"Real", std::string("1"), "\"Real\" is no number"},
        {"Real", Any, "\"Real\" is no number"},
        {"Real", double(none), "\"Real\" is no number"},
        {"Integer", OssEvColor{}, "\"Integer\" is no number"},
        {"Flag", std::string("true"), "\"Flag\" is no number"},
        {"Color", 1.0, "\"Color\" is no color"},
        {"Color", OssEvColor{0, none, 0, 1}, "\"Color\" is no color"},
        {"Vector", 1.0, "\"Vector\" is no vector"},
        {"Text", 1.0, "\"Text\" is no text"},
        {"Curve", std::string("0,0 1"), "\"Curve\" is no curve"},
        {"Curve", 1.0, "\"Curve\" is no curve"},
        {"Ramp", std::string("red"), "\"Ramp\" is no ramp"},
        {"Choice", std::string("Fourth"), "\"Choice\" knows no \"Fourth\""},
        {"Choice", Any, "\"Choice\" is no number"},
    };
    for (const Bad &value : bad) {
        OssEvParameters complete;
        EXPECT_EQ(kernel.normalise({{value.name, value.given}}, &complete).error(), value.reason)
            << "case " << &value - bad;
    }
    OssEvParameters complete;
    ASSERT_TRUE(kernel.normalise({{"Stranger", 1.0}}, &complete));
    EXPECT_EQ(complete.count("Stranger"), 0U);
    EXPECT_TRUE(complete.at("Choice") == OssEvParameter(one)) << "defaults fill in";
}

} // namespace
