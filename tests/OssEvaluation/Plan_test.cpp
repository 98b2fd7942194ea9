#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"

#include <algorithm>
#include <random>

namespace {

using Plan = std::shared_ptr<const OssEvPlan>;
using Source = OssEvPlanSource::Kind;

class Plans : public EngineFixture
{
protected:
    static Plan planOf(const OssEvTarget &target)
    {
        Plan plan;
        const OssEvResult result = OssEvPlan::make(target, &plan);
        EXPECT_TRUE(result) << result.error();
        return plan;
    }

    Plan planOf(const std::shared_ptr<const OssEvGraph> &graph, const std::string &node,
                int size = 256, bool keep = true) const
    {
        OssEvTarget wanted = target(graph, node, size);
        wanted.keepIntermediates = keep;
        return planOf(wanted);
    }
};

/// What each stage does, in the order of the stages.
std::vector<std::string> cuts(const Plan &plan)
{
    std::vector<std::string> result;
    for (const OssEvPlanStage &stage : plan->stages()) {
        std::string text = stage.headKernel;
        for (const OssEvPlanStep &step : stage.steps)
            text += (text.empty() ? "" : " ") + std::string(step.kernel);
        result.push_back(text);
    }
    return result;
}

TEST_F(Plans, whatCannotBeComputedIsSaidInWords)
{
    const auto graph = chainOf({"checker", "invert"});

    const auto expectRefused = [&](const char *reason, const auto &spoil) {
        OssEvTarget wanted = target(graph, "1", 256);
        spoil(&wanted);
        Plan plan;
        EXPECT_EQ(OssEvPlan::make(wanted, &plan).error(), reason);
        EXPECT_EQ(plan, nullptr);
    };
    using Target = OssEvTarget;
    expectRefused("There is no patch 1000", [](Target *wanted) { wanted->patch = 1000; });
    expectRefused("There is no patch 10000", [](Target *wanted) { wanted->patch = 10000; });
    expectRefused("A patch of 0 x 256 texels cannot be computed",
                  [](Target *wanted) { wanted->width = 0; });
    expectRefused("A patch of 256 x -1 texels cannot be computed",
                  [](Target *wanted) { wanted->height = -1; });
    expectRefused("A patch of 256 x 32769 texels cannot be computed",
                  [](Target *wanted) { wanted->height = OssEvPlan::MaximumSize + 1; });
    expectRefused("There is nothing to compute", [](Target *wanted) { wanted->graph = nullptr; });
    for (const int none : {2, -1})
        expectRefused("There is no such node", [none](Target *wanted) { wanted->node = none; });
    for (const int none : {1, -1})
        expectRefused("There is no such output", [none](Target *wanted) { wanted->output = none; });
    OssEvTarget largest = target(graph, "1", OssEvPlan::MaximumSize);
    largest.patch = 9999;
    EXPECT_NE(planOf(largest), nullptr);
}

TEST_F(Plans, levelsBeyondTheLastTexelAreTheLast)
{
    OssEvTarget wanted = target(chainOf({"checker"}), "0", 300);
    const auto keyAt = [&wanted](int level, int mip) {
        wanted.level = level;
        wanted.mip = mip;
        return planOf(wanted)->stages().back().key;
    };
    EXPECT_EQ(keyAt(15, 0), keyAt(99, 0));
    EXPECT_EQ(keyAt(0, 0), keyAt(-5, 0));
    EXPECT_EQ(keyAt(0, 15), keyAt(0, 99));
    EXPECT_EQ(keyAt(0, 0), keyAt(0, -5));
    EXPECT_NE(keyAt(1, 0), keyAt(0, 1)) << "a smaller patch is no smaller picture";
    wanted.level = 99;
    wanted.mip = 0;
    EXPECT_EQ(planOf(wanted)->frame().width, 1);
    wanted.level = 1;
    EXPECT_EQ(planOf(wanted)->frame(), (OssEvFrame{150, 150, 1001, 2.0}));
    wanted.level = 3;
    EXPECT_EQ(planOf(wanted)->frame().width, 38) << "rounded up each time";
}

TEST_F(Plans, pointOperationsRunTogetherAndFiltersBeginAStage)
{
    using Cuts = std::vector<std::string>;

    struct Case
    {
        std::vector<const char *> chain;
        Cuts kept;
        Cuts fused;
    };

    const Case cases[] = {
        {{"checker", "invert", "gamma"}, {"checker invert gamma"}, {"checker invert gamma"}},
        {{"checker", "blur", "gamma"}, {"checker", "blur", "gamma"}, {"checker", "blur gamma"}},
        {{"checker", "blur", "sharpen", "gamma"},
         {"checker", "blur", "sharpen", "gamma"},
         {"checker", "blur", "sharpen gamma"}},
        {{"cellular", "invert", "gamma"}, {"cellular", "invert gamma"}, {"cellular invert gamma"}},
        {{"checker", "pass", "invert", "pass"}, {"checker invert"}, {"checker invert"}},
    };
    for (const Case &cut : cases) {
        const auto graph = chainOf(cut.chain);
        const std::string last = std::to_string(cut.chain.size() - 1);
        EXPECT_EQ(cuts(planOf(graph, last)), cut.kept) << cut.chain[1];
        EXPECT_EQ(cuts(planOf(graph, last, 256, false)), cut.fused) << cut.chain[1];
    }
}

TEST_F(Plans, whatSeveralReadIsComputedOnceAndKept)
{
    const auto graph = graphOf({{"Checker", "checker"},
                                {"Invert", "invert", {}, {{"Input", "Checker"}}},
                                {"Left", "gamma", {{"Gamma", 2.0}}, {{"Input", "Invert"}}},
                                {"Right", "gamma", {{"Gamma", 3.0}}, {{"Input", "Invert"}}},
                                {"Merge", "merge", {}, {{"Base", "Left"}, {"Over", "Right"}}}});
    const Plan plan = planOf(graph, "Merge", 256, false);
    EXPECT_EQ(cuts(plan), (std::vector<std::string>{"checker invert", "gamma gamma merge"}));
    EXPECT_EQ(plan->stages().back().inputs, std::vector<int>{0}) << "each once";
    // Nobody else looks when only one side is wanted.
    EXPECT_EQ(cuts(planOf(graph, "Left", 256, false)),
              std::vector<std::string>{"checker invert gamma"});
}

TEST_F(Plans, twoFiltersIntoOneNodeHaveTilesOfTheirOwn)
{
    const auto graph = graphOf({{"Checker", "checker"},
                                {"Grid", "grid"},
                                {"A", "blur", {}, {{"Input", "Checker"}}},
                                {"B", "blur", {{"Radius", 9.0}}, {{"Input", "Grid"}}},
                                {"Merge", "merge", {}, {{"Base", "A"}, {"Over", "B"}}}});
    const Plan plan = planOf(graph, "Merge", 256, false);
    ASSERT_EQ(plan->stages().size(), 4U);
    int heads = 0;
    for (const OssEvPlanStage &stage : plan->stages())
        heads += stage.head != nullptr ? 1 : 0;
    EXPECT_EQ(heads, 2);
}

/// Random graphs of adjustments, merges, filters and sources.
std::shared_ptr<const OssEvGraph> randomGraph(std::mt19937 *random, int count)
{
    OssEvGraphBuilder builder;
    const auto any = [random](int below) {
        return int((*random)() % unsigned(below));
    };
    for (int i = 0; i < count; ++i) {
        const int kind = i < 2 ? 0 : any(12);
        const std::string name = std::to_string(i);
        if (kind == 0) {
            builder.addNode(name, any(2) == 0 ? "checker" : "grid",
                            {{"Scale", 1.0 + double(any(50))}, {"Rows", double(1 + any(50))}});
        } else if (kind == 1) {
            builder.addNode(name, "constant",
                            {{"Color", OssEvColor{float(any(9)) / 9.0F, 0, 0, 1}}});
        } else if (kind < 5) {
            const int node = builder.addNode(name, "gamma", {{"Gamma", 0.5 + any(20) / 10.0}});
            builder.connect(any(i), "", node, "Input");
        } else if (kind < 6) {
            const int node = builder.addNode(name, "blur", {{"Radius", 1.0 + any(9)}});
            builder.connect(any(i), "", node, "Input");
        } else {
            const int node = builder.addNode(name, "merge", {{"Amount", any(10) / 10.0}});
            builder.connect(any(i), "", node, "Base");
            builder.connect(any(i), "", node, "Over");
            if (any(3) == 0)
                builder.connect(any(i), "", node, "Mask");
        }
    }
    return builder.finish();
}

/// Nothing is written to a buffer before the last who reads it has done so.
void expectBuffersToHold(const OssEvPlanStage &stage)
{
    const auto reads = [](const OssEvPlanStep &step, int index) {
        return std::any_of(step.inputs.begin(), step.inputs.end(),
                           [index](const OssEvPlanSource &source) {
                               return source.kind == Source::Step && source.index == index;
                           });
    };
    const int count = int(stage.steps.size());
    for (int made = 0; made < count; ++made) {
        int last = stage.result.kind == Source::Step && stage.result.index == made ? count : made;
        for (int reader = made + 1; reader < count; ++reader) {
            if (reads(stage.steps[std::size_t(reader)], made))
                last = std::max(last, reader);
        }
        const int buffer = stage.steps[std::size_t(made)].buffer;
        EXPECT_GE(buffer, 0);
        EXPECT_LT(buffer, stage.buffers);
        for (int writer = made + 1; writer <= std::min(last, count - 1); ++writer)
            ASSERT_NE(stage.steps[std::size_t(writer)].buffer, buffer)
                << "step " << writer << " spoils " << made << ", which " << last << " reads";
    }
}

TEST_F(Plans, stagesComeAfterWhatTheyReadAndBuffersHoldWhatIsStillNeeded)
{
    std::mt19937 random(5);
    int steps = 0;
    for (int round = 0; round < 300; ++round) {
        const auto graph = randomGraph(&random, 25);
        const Plan plan = planOf(graph, "24", 256, round % 2 == 0);
        const auto &stages = plan->stages();
        for (std::size_t i = 0; i < stages.size(); ++i) {
            for (const int input : stages[i].inputs) {
                EXPECT_GE(input, 0);
                EXPECT_LT(input, int(i));
            }
            for (const OssEvPlanStep &step : stages[i].steps) {
                ++steps;
                for (const OssEvPlanSource &source : step.inputs) {
                    const bool isInput = source.kind == Source::Input;
                    EXPECT_TRUE(!isInput || source.index < int(stages[i].inputs.size()));
                    EXPECT_TRUE(source.kind != Source::Head || stages[i].head != nullptr);
                }
            }
            expectBuffersToHold(stages[i]);
        }
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(steps, 1000) << "there was something to see";
}

TEST_F(Plans, howeverAGraphIsCutThePixelsAreTheSame)
{
    std::mt19937 random(11);
    for (int round = 0; round < 12; ++round) {
        const auto graph = randomGraph(&random, 20);
        OssEvTarget wanted = target(graph, "19", 140);
        engine->cache().clear();
        const Collected kept = evaluate(wanted);
        wanted.keepIntermediates = false;
        engine->cache().clear();
        const Collected fused = evaluate(wanted);
        SCOPED_TRACE("round " + std::to_string(round));
        expectNear(fused, kept, 140, 0.01);
    }
}

TEST_F(Plans, whatWasComputedBeforeIsNoMatterOfThePixels)
{
    std::mt19937 random(12);
    for (int round = 0; round < 12; ++round) {
        const auto graph = randomGraph(&random, 20);
        engine->cache().clear();
        const Collected alone = evaluate(target(graph, "19", 140));
        engine->cache().clear();
        for (int node = 0; node < 19; ++node)
            evaluate(target(graph, std::to_string(node), 140));
        const Collected after = evaluate(target(graph, "19", 140));
        SCOPED_TRACE("round " + std::to_string(round));
        expectNear(after, alone, 140, 0.0);
    }
}

TEST_F(Plans, aLongChainNeedsNoMoreMemoryThanAShortOne)
{
    std::vector<const char *> kernels{"checker"};
    for (int i = 0; i < 60; ++i)
        kernels.push_back(i % 2 == 0 ? "invert" : "gamma");
    const Plan plan = planOf(chainOf(kernels), "60");
    ASSERT_EQ(plan->stages().size(), 1U);
    EXPECT_EQ(plan->stages().back().steps.size(), 61U);
    EXPECT_LE(plan->stages().back().buffers, 2);
}

TEST_F(Plans, whatIsTheSameEverywhereIsComputedAtOnce)
{
    const OssEvParameters add{{"Operation", std::string("Add")}};
    const auto graph = graphOf({{"Color", "constant", {{"Color", OssEvColor{0.25F, 1, 0, 1}}}},
                                {"Half", "constant", {{"Color", OssEvColor{0.75F, 0, 1, 1}}}},
                                {"Invert", "invert", {}, {{"Input", "Color"}}},
                                {"Red", "split", {}, {{"Input", "Half"}}},
                                {"Sum", "math", add, {{"A", "Red.Red"}, {"B", "Invert"}}},
                                {"Checker", "checker"},
                                {"Mixed", "merge", {}, {{"Base", "Invert"}, {"Over", "Checker"}}}});
    const Plan inverted = planOf(graph, "Invert");
    ASSERT_EQ(inverted->stages().back().result.kind, Source::Constant);
    EXPECT_EQ(inverted->stages().back().result.constant, (std::array<float, 4>{0.75F, 0, 1, 1}));
    EXPECT_EQ(inverted->stages().back().key, planOf(graph, "Half")->stages().back().key)
        << "the same color, wherever it comes from";
    const OssEvPlanStage sums = planOf(graph, "Sum")->stages().back();
    ASSERT_EQ(sums.result.kind, Source::Constant);
    EXPECT_EQ(sums.channels, 1);
    EXPECT_NEAR(sums.result.constant[0], 0.75F + 0.2126F * 0.75F + 0.0722F, 1e-5F);
    EXPECT_EQ(cuts(planOf(graph, "Mixed")), std::vector<std::string>{"checker merge"})
        << "what is the same everywhere has no step";
}

TEST_F(Plans, imagesAreHalvedAsTheyAreReadAndFittedAfterwards)
{
    images->add("wide", 1000, 300, [](int, int) { return TestImages::Texel{}; });

    struct Case
    {
        const char *image;
        int size;
        int reduction;
        OssEvFrame read;
        bool fitted;
    };

    const Case cases[] = {
        {"wave", 512, 0, {512, 512, 1001, 1.0}, false},
        {"wave", 256, 1, {256, 256, 1001, 1.0}, false},
        {"wave", 257, 0, {512, 512, 1001, 1.0}, true},
        {"wave", 100, 2, {128, 128, 1001, 1.0}, true},
        {"wave", 1000, 0, {512, 512, 1001, 1.0}, true},
        {"wide", 200, 0, {1000, 300, 1001, 1.0}, true},
        {"wide", 75, 2, {250, 75, 1001, 1.0}, true},
    };
    for (const Case &image : cases) {
        SCOPED_TRACE(image.image + std::to_string(image.size));
        const Plan plan = planOf(nodeOf("image", file(image.image)), "Node", image.size);
        const OssEvPlanStage &first = plan->stages().front();
        EXPECT_TRUE(first.isImage);
        EXPECT_EQ(first.imageReduction, image.reduction);
        EXPECT_EQ(first.frame, image.read);
        EXPECT_EQ(plan->stages().size(), image.fitted ? 2U : 1U);
        EXPECT_EQ(plan->frame().width, image.size);
        EXPECT_EQ(plan->frame().height, image.size);
    }
}

TEST_F(Plans, anImageThatIsNotThereIsTransparent)
{
    const auto graph = graphOf({{"Nameless", "image"}, {"Named", "image", file("wave")}});
    const OssEvPlanStage nameless = planOf(graph, "Nameless")->stages().back();
    EXPECT_EQ(nameless.result.kind, Source::Constant);
    EXPECT_EQ(nameless.result.constant, (std::array<float, 4>{}));
    EXPECT_EQ(nameless.channels, 4);
    OssEvTarget wanted = target(graph, "Named");
    wanted.images = nullptr;
    EXPECT_EQ(planOf(wanted)->stages().back().result.kind, Source::Constant);
}

TEST_F(Plans, keysFollowTheMeshWhereTheSurfaceIsLookedAt)
{
    const auto graph = graphOf({{"Position", "position"},
                                {"Checker", "checker"},
                                {"Behind", "vectorMath", {}, {{"A", "Position"}}}});
    const auto keyOn = [&](const std::string &node, std::shared_ptr<const OssEvMesh> mesh,
                           int size = 256) {
        OssEvTarget wanted = target(graph, node, size);
        wanted.mesh = std::move(mesh);
        return planOf(wanted)->stages().back().key;
    };
    for (const char *node : {"Position", "Behind"}) {
        EXPECT_NE(keyOn(node, OssEvShapes::plane()), keyOn(node, OssEvShapes::sphere())) << node;
        EXPECT_NE(keyOn(node, OssEvShapes::plane()), keyOn(node, nullptr)) << node;
        EXPECT_EQ(keyOn(node, OssEvShapes::plane()), keyOn(node, OssEvShapes::plane())) << node;
        EXPECT_NE(keyOn(node, OssEvShapes::plane()), keyOn(node, OssEvShapes::plane(), 128))
            << node;
    }
    EXPECT_EQ(keyOn("Checker", OssEvShapes::plane()), keyOn("Checker", nullptr));
}

TEST_F(Plans, numbersStayPreciseAsLongAsTheyAreNumbers)
{
    const auto graph = graphOf({{"Position", "position"},
                                {"Moved", "vectorMath", {}, {{"A", "Position"}}},
                                {"Blurred", "blur", {}, {{"Input", "Moved"}}},
                                {"Color", "merge", {}, {{"Base", "Moved"}}}});
    const auto formatOf = [&](const char *node) {
        OssEvTarget wanted = target(graph, node);
        wanted.mesh = OssEvShapes::plane();
        return planOf(wanted)->stages().back().format;
    };
    for (const char *node : {"Position", "Moved", "Blurred"})
        EXPECT_EQ(formatOf(node), OssEvTile::Format::Float) << node;
    EXPECT_EQ(formatOf("Color"), OssEvTile::Format::Half) << "a picture";
}

TEST_F(Plans, aDotThatIsACachePointKeepsItsTiles)
{
    for (const bool hold : {false, true}) {
        const auto graph = graphOf({{"Checker", "checker"},
                                    {"Dot", "pass", {}, {{"Input", "Checker"}}, hold},
                                    {"Last", "invert", {}, {{"Input", "Dot"}}}});
        EXPECT_EQ(planOf(graph, "Last")->stages().size(), hold ? 2U : 1U);
    }
}

} // namespace
