#include "OssEvaluation/EngineFixture.h"

namespace {

/// What size a picture is asked for in, and what comes in another.
class EngineFrames : public EngineFixture
{};

TEST_F(EngineFrames, mipsAreMeansOfTheFullPatch)
{
    OssEvGraphBuilder builder;
    builder.addNode("Checker", "checker", {{"Scale", 200.0}});
    OssEvTarget wanted = target(builder.finish(), "Checker", 400);
    wanted.mip = 3;
    const Collected small = evaluate(wanted);
    ASSERT_TRUE(small.outcome.ok()) << small.outcome.error;
    EXPECT_EQ(small.frame.width, 50);
    for (int i = 2; i < 48; ++i)
        EXPECT_NEAR(small.texel(0, i, 49 - i), 0.5F, 2e-3F);
}

TEST_F(EngineFrames, anImageItselfIsDeliveredTileByTile)
{
    OssEvGraphBuilder builder;
    builder.addNode("Wave", "image", {{"File", std::string("wave")}});
    const auto graph = builder.finish();
    for (int round = 0; round < 2; ++round) {
        const Collected result = evaluate(target(graph, "Wave"));
        EXPECT_EQ(result.tiles.size(), 16U);
        EXPECT_EQ(result.texel(0, 300, 40), float(300 % 97) / 97.0F);
    }
    EXPECT_EQ(images->reads(), 4);
}

TEST_F(EngineFrames, imagesOfAnySizeFillThePatch)
{
    OssEvGraphBuilder builder;
    builder.addNode("Odd", "image", {{"File", std::string("odd")}});
    const auto graph = builder.finish();
    const Collected larger = evaluate(target(graph, "Odd", 600));
    ASSERT_TRUE(larger.outcome.ok()) << larger.outcome.error;
    // 300 x 200 on 600 x 600: texel (2 x, 3 y + 1) lies near the middle of texel (x, y).
    EXPECT_NEAR(larger.texel(0, 101, 301), float(50 % 97) / 97.0F, 0.01);
    EXPECT_NEAR(larger.texel(1, 101, 301), float(100 % 61) / 61.0F, 0.01);
    const Collected smaller = evaluate(target(graph, "Odd", 50));
    EXPECT_TRUE(smaller.outcome.ok()) << smaller.outcome.error;
}

} // namespace
