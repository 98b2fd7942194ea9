#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/TestGraph.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace {

std::shared_ptr<const OssEvPlan> planOf(const OssEvTarget &target)
{
    std::shared_ptr<const OssEvPlan> plan;
    const OssEvResult result = OssEvPlan::make(target, &plan);
    EXPECT_TRUE(result) << result.error();
    return plan;
}

OssEvKey keyOf(const std::shared_ptr<const OssEvGraph> &graph, const std::string &node,
               int patch = 1001, int size = 256, int level = 0)
{
    OssEvTarget target;
    target.graph = graph;
    target.node = graph->find(node);
    target.patch = patch;
    target.width = size;
    target.height = size;
    target.level = level;
    return planOf(target)->stages().back().key;
}

std::shared_ptr<const OssEvGraph> pair(double scale, double gamma, const OssEvParameters &more = {},
                                       const std::string &name = "Gamma")
{
    OssEvParameters parameters{{"Scale", scale}};
    parameters.insert(more.begin(), more.end());
    return graphOf({{"Checker", "checker", parameters},
                    {name, "gamma", {{"Gamma", gamma}}, {{"Input", "Checker"}}}});
}

TEST(Keys, changeWithEverythingThatChangesPixelsAndNothingElse)
{
    const OssEvKey key = keyOf(pair(4, 2), "Gamma");
    EXPECT_EQ(key, keyOf(pair(4, 2), "Gamma"));
    EXPECT_EQ(key, keyOf(pair(4, 2, {}, "Renamed"), "Renamed")) << "names are no pixels";
    EXPECT_EQ(key, keyOf(pair(4, 2, {{"Comment", std::string("hello")}}), "Gamma"))
        << "attributes that the kernel does not know";
    EXPECT_EQ(key, keyOf(pair(4, 2, {{"ColorB", OssEvColor{0.0F, -0.0F, 0.0F, 1.0F}}}), "Gamma"))
        << "a default that is given";
    std::set<OssEvKey> keys{key};
    EXPECT_TRUE(keys.insert(keyOf(pair(5, 2), "Gamma")).second) << "upstream";
    EXPECT_TRUE(keys.insert(keyOf(pair(4, 3), "Gamma")).second) << "own";
    EXPECT_TRUE(keys.insert(keyOf(pair(4, 2), "Gamma", 1002)).second) << "patch";
    EXPECT_TRUE(keys.insert(keyOf(pair(4, 2), "Gamma", 1001, 512)).second) << "size";
    EXPECT_TRUE(keys.insert(keyOf(pair(4, 2), "Gamma", 1001, 512, 1)).second)
        << "half of 512 is no 256: lengths in texels differ";
    EXPECT_TRUE(keys.insert(keyOf(pair(4, 2), "Checker")).second);
}

TEST(Keys, aDotIsNotThere)
{
    const auto graph = graphOf({{"Checker", "checker"},
                                {"Dot", "pass", {}, {{"Input", "Checker"}}},
                                {"Direct", "invert", {}, {{"Input", "Checker"}}},
                                {"Behind", "invert", {}, {{"Input", "Dot"}}}});
    EXPECT_EQ(keyOf(graph, "Direct"), keyOf(graph, "Behind"));
}

TEST(Graph, sourcesComeBeforeWhatDependsOnThemAndOnlyThose)
{
    const auto graph = graphOf({{"A", "checker"},
                                {"B", "invert", {}, {{"Input", "A"}}},
                                {"C", "gamma", {}, {{"Input", "A"}}},
                                {"D", "merge", {}, {{"Base", "B"}, {"Over", "C"}}},
                                {"Stranger", "checker"}});
    const int d = graph->find("D");
    const int stranger = graph->find("Stranger");
    const std::vector<int> order = graph->upstream(d);
    ASSERT_EQ(order.size(), 4U);
    EXPECT_EQ(order.front(), graph->find("A"));
    EXPECT_EQ(order.back(), d);
    EXPECT_EQ(graph->upstream(stranger), std::vector<int>{stranger});
    for (const int nobody : {-1, 5})
        EXPECT_TRUE(graph->upstream(nobody).empty());
    EXPECT_EQ(graph->find("C"), 2);
    EXPECT_EQ(graph->find("c"), -1);
}

TEST(Graph, lengthIsNoProblem)
{
    std::vector<const char *> kernels(100001, "pass");
    kernels.front() = "checker";
    OssEvTarget target;
    target.graph = chainOf(kernels);
    target.node = 100000;
    EXPECT_TRUE(target.graph->check(target.node));
    EXPECT_EQ(target.graph->upstream(target.node).size(), kernels.size());
    EXPECT_NE(planOf(target), nullptr);
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
        TestNode tiled{"Tiled", "tiled", {{"TileImage", name}}};
        if (connected)
            tiled.inputs = {{"TileImage", "Checker"}};
        const auto graph = graphOf({{"Checker", "checker"}, tiled});
        const OssEvResult good = graph->check(1);
        if (!good)
            return good.error();
        const int source = graph->nodes()[1].inputs[0].node;
        return graph->nodes()[std::size_t(source)].kernel->name;
    };
    EXPECT_EQ(sourceOf(false, "a.png"), "image");
    EXPECT_EQ(sourceOf(true, "a.png"), "checker");
    EXPECT_EQ(sourceOf(true, ""), "checker");
    EXPECT_EQ(sourceOf(false, ""), "\"Tiled\": nothing is connected to \"TileImage\"");
}

TEST(Graph, faultsBecomeErrorsOfTheNodesThatHaveThem)
{
    OssEvGraphBuilder builder;
    const int good = builder.addNode("Good", "checker");
    const int unknown = builder.addNode("Unknown", "melt");
    const int bare = builder.addNode("Bare", "blur");
    const int badValue = builder.addNode("Bad Value", "math",
                                         {{"Operation", std::string("Guess")}});
    const int a = builder.addNode("A", "invert");
    const int b = builder.addNode("B", "invert");
    const int behind = builder.addNode("Behind", "invert");
    const int badPort = builder.addNode("Bad Port", "invert");
    builder.connect(a, "", b, "Input");
    builder.connect(b, "", a, "Input");
    builder.connect(b, "", behind, "Input");
    builder.connect(good, "", badPort, "Inputs");
    builder.connect(99, "", bare, "Radius");
    const auto graph = builder.finish();
    const auto error = [&graph](int node) {
        return graph->check(node).error();
    };
    EXPECT_EQ(error(good), "");
    EXPECT_EQ(error(unknown), "\"Unknown\": there is no kernel \"melt\"");
    EXPECT_EQ(error(bare), "\"Bare\": what is connected to \"Radius\" is missing");
    EXPECT_EQ(error(badValue), "\"Bad Value\": \"Operation\" knows no \"Guess\"");
    EXPECT_EQ(error(a), "\"B\": its wires run in a circle");
    EXPECT_EQ(error(behind).find("circle") == std::string::npos, false);
    EXPECT_EQ(error(badPort), "\"Bad Port\": it has no input \"Inputs\"");
    EXPECT_EQ(error(-1), "There is no such node");
}

TEST(Graph, aMaterialComputesOnlyTheChannelThatIsAskedFor)
{
    OssEvTarget target;
    target.graph = graphOf({{"Checker", "checker"},
                            {"Cells", "cellular"},
                            {"Material",
                             "material",
                             {{"Metallic", 0.25}},
                             {{"Base Color", "Checker"}, {"Roughness", "Cells"}}}});
    target.node = target.graph->find("Material");
    const OssEvKernel *material = OssEvKernelLibrary::find("material");
    target.output = material->outputIndex("Base Color");
    const auto colored = planOf(target);
    for (const OssEvPlanStage &stage : colored->stages()) {
        for (const OssEvPlanStep &step : stage.steps)
            EXPECT_STRNE(step.kernel, "cellular");
    }
    EXPECT_EQ(colored->stages().back().channels, 4);
    target.output = material->outputIndex("Metallic");
    const auto metallic = planOf(target);
    EXPECT_EQ(metallic->stages().back().result.kind, OssEvPlanSource::Kind::Constant);
    EXPECT_EQ(metallic->stages().back().result.constant[0], 0.25F);
}

/// A kernel with an attribute of every kind.
OssEvKernel kernelOfEveryKind()
{
    constexpr double Any = std::numeric_limits<double>::infinity();
    OssEvKernel kernel;
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
    return kernel;
}

TEST(Graph, everyValueIsBroughtToItsType)
{
    const OssEvKernel kernel = kernelOfEveryKind();

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
    OssEvParameters complete;
    ASSERT_TRUE(kernel.normalise({{"Stranger", 1.0}}, &complete));
    EXPECT_EQ(complete.count("Stranger"), 0U);
    EXPECT_TRUE(complete.at("Choice") == OssEvParameter(one)) << "defaults fill in";
}

TEST(Graph, valuesOfOtherKindsAreRefusedInWords)
{
    const OssEvKernel kernel = kernelOfEveryKind();
    constexpr double Any = std::numeric_limits<double>::infinity();

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
}

} // namespace
