#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssEvaluation/Values/Texels.h"

#include <cmath>
#include <limits>
#include <set>

namespace {

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
    std::shared_ptr<const OssEvPlan> plan;
    const OssEvResult result = OssEvPlan::make(target, &plan);
    EXPECT_TRUE(result) << result.error();
    return result ? plan->stages().back().key : OssEvKey();
}

std::shared_ptr<const OssEvGraph> pair(double scale, double gamma, const OssEvParameters &more = {},
                                       const std::string &name = "Gamma")
{
    OssEvGraphBuilder builder;
    OssEvParameters parameters{{"Scale", scale}};
    parameters.insert(more.begin(), more.end());
    const int checker = builder.addNode("Checker", "checker", parameters);
    const int last = builder.addNode(name, "gamma", {{"Gamma", gamma}});
    builder.connect(checker, "", last, "Input");
    return builder.finish();
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

TEST(Keys, partsCannotBeMistakenForEachOther)
{
    const auto key = [](const char *a, const char *b) {
        return OssEvKeyBuilder().add(std::string_view(a)).add(std::string_view(b)).key();
    };
    EXPECT_NE(key("ab", "c"), key("a", "bc"));
    EXPECT_NE(OssEvKeyBuilder().add(1.0).key(), OssEvKeyBuilder().add(1).key());
    EXPECT_EQ(OssEvKeyBuilder().add(0.0).key(), OssEvKeyBuilder().add(-0.0).key());
}

TEST(Keys, aDotIsNotThere)
{
    OssEvGraphBuilder builder;
    const int checker = builder.addNode("Checker", "checker");
    const int dot = builder.addNode("Dot", "pass");
    const int direct = builder.addNode("Direct", "invert");
    const int behind = builder.addNode("Behind", "invert");
    builder.connect(checker, "", dot, "Input");
    builder.connect(checker, "", direct, "Input");
    builder.connect(dot, "", behind, "Input");
    const auto graph = builder.finish();
    EXPECT_EQ(keyOf(graph, "Direct"), keyOf(graph, "Behind"));
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

TEST(Graph, valuesAreBroughtToTheirTypesAndRanges)
{
    const OssEvKernel *noise = OssEvKernelLibrary::find("fractalNoise");
    ASSERT_NE(noise, nullptr);
    OssEvParameters complete;
    ASSERT_TRUE(noise->normalise(
        {{"Octaves", 99.0}, {"Frequency", std::int64_t(3)}, {"Kind", std::int64_t(2)}}, &complete));
    EXPECT_EQ(std::get<std::int64_t>(complete.at("Octaves")), 12);
    EXPECT_EQ(std::get<double>(complete.at("Frequency")), 3.0);
    EXPECT_EQ(std::get<std::int64_t>(complete.at("Kind")), 2);
    EXPECT_FALSE(
        noise->normalise({{"Frequency", std::numeric_limits<double>::infinity()}}, &complete));
    EXPECT_FALSE(noise->normalise({{"Octaves", std::string("six")}}, &complete));
}

TEST(Graph, aMaterialComputesOnlyTheChannelThatIsAskedFor)
{
    OssEvGraphBuilder builder;
    const int checker = builder.addNode("Checker", "checker");
    const int cells = builder.addNode("Cells", "cellular");
    const int material = builder.addNode("Material", "material", {{"Metallic", 0.25}});
    builder.connect(checker, "", material, "Base Color");
    builder.connect(cells, "", material, "Roughness");
    OssEvTarget target;
    target.graph = builder.finish();
    target.node = material;
    target.output = OssEvKernelLibrary::find("material")->outputIndex("Base Color");
    std::shared_ptr<const OssEvPlan> plan;
    ASSERT_TRUE(OssEvPlan::make(target, &plan));
    for (const OssEvPlanStage &stage : plan->stages()) {
        for (const OssEvPlanStep &step : stage.steps)
            EXPECT_STRNE(step.kernel, "cellular");
    }
    EXPECT_EQ(plan->stages().back().channels, 4);
    target.output = OssEvKernelLibrary::find("material")->outputIndex("Metallic");
    ASSERT_TRUE(OssEvPlan::make(target, &plan));
    EXPECT_EQ(plan->stages().back().result.kind, OssEvPlanSource::Kind::Constant);
    EXPECT_EQ(plan->stages().back().result.constant[0], 0.25F);
}

TEST(Curves, areMonotoneBetweenTheirPointsAndHeldBeyond)
{
    OssEvCurve curve;
    ASSERT_TRUE(OssEvCurve::fromText(" 0.5,1 0,0  1,1 0.25,0.9", &curve));
    EXPECT_EQ(curve.points().size(), 4U);
    EXPECT_EQ(curve.at(-1.0), 0.0);
    EXPECT_EQ(curve.at(2.0), 1.0);
    double last = -1.0;
    for (int i = 0; i <= 1000; ++i) {
        const double value = curve.at(i / 1000.0);
        EXPECT_GE(value, last - 1e-12);
        EXPECT_LE(value, 1.0 + 1e-12) << "no overshoot";
        last = value;
    }
    EXPECT_NEAR(curve.at(0.25), 0.9, 1e-12);
    for (const char *text : {"0", "0,", "0,0 x", "0,0;1,1", "nan,1"})
        EXPECT_FALSE(OssEvCurve::fromText(text, &curve)) << text;
    EXPECT_EQ(OssEvCurve().at(0.3), 0.3);
}

TEST(TexelKernels, halvesAreNearAndAlwaysFinite)
{
    alignas(64) std::array<float, 64> floats{};
    alignas(64) std::array<std::uint16_t, 64> halves{};
    alignas(64) std::array<float, 64> back{};
    const std::array<float, 10> cases{0.0F,  -0.0F,   1.0F,    0.1F,  65504.0F,
                                      1e-7F, 6.1e-5F, -2.718F, 3e-5F, 1.0009766F};
    std::copy(cases.begin(), cases.end(), floats.begin());
    floats[10] = 1e9F;
    floats[11] = -std::numeric_limits<float>::infinity();
    floats[12] = std::numeric_limits<float>::quiet_NaN();
    OssEvTexels::floatToHalf(floats.data(), halves.data(), floats.size());
    OssEvTexels::halfToFloat(halves.data(), back.data(), back.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        // Some processors round, others cut off.
        EXPECT_NEAR(back[i], cases[i], std::abs(cases[i]) * 1e-3F + 7e-8F);
        EXPECT_NEAR(OssEvHalf::toFloat(OssEvHalf::fromFloat(cases[i])), cases[i],
                    std::abs(cases[i]) * 5e-4F + 4e-8F);
    }
    EXPECT_EQ(back[10], 65504.0F);
    EXPECT_EQ(back[11], -65504.0F);
    EXPECT_EQ(back[12], 0.0F);
}

} // namespace
