#include "OssEvaluation/EngineFixture.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

namespace {

/// Knobs of the chain "noise x image -> levels -> blur -> over a checker".
struct Knobs
{
    double frequency = 5.0;
    double inHigh = 0.9;
    double radius = 4.0;
    double amount = 0.7;
};

std::shared_ptr<const OssEvGraph> chain(const Knobs &knobs)
{
    const auto mode = std::string("Multiply");
    return graphOf(
        {{"Image", "image", file("wave")},
         {"Noise", "fractalNoise", {{"Frequency", knobs.frequency}}},
         {"Times", "merge", {{"BlendMode", mode}}, {{"Base", "Image"}, {"Over", "Noise"}}},
         {"Levels", "levels", {{"InHigh", knobs.inHigh}}, {{"Input", "Times"}}},
         {"Blur", "blur", {{"Radius", knobs.radius}}, {{"Input", "Levels"}}},
         {"Checker", "checker"},
         {"Over", "merge", {{"Amount", knobs.amount}}, {{"Base", "Checker"}, {"Over", "Blur"}}}});
}

/// Pixels that take their time.
std::shared_ptr<const OssEvGraph> slow()
{
    return nodeOf("cellular", {{"Scale", 50.0}});
}

class Engine : public EngineFixture
{};

TEST_F(Engine, anEditRecomputesOnlyWhatIsDownstream)
{
    evaluate(chain({}), "Over");
    const auto callsAfter = [this](const Knobs &knobs) {
        engine->resetStatistics();
        EXPECT_TRUE(evaluate(chain(knobs), "Over").outcome.ok());
        return engine->statistics();
    };
    const OssEvStatistics same = callsAfter({});
    EXPECT_EQ(same.tilesComputed, 0U) << "nothing has changed";
    EXPECT_EQ(same.tilesFromCache, 16U);
    EXPECT_TRUE(same.calls.empty()) << "statistics begin anew";

    Knobs knobs;
    knobs.amount = 0.3;
    const OssEvStatistics late = callsAfter(knobs);
    EXPECT_EQ(late.callsOf("merge"), 16U) << "only the merge at the end";
    EXPECT_EQ(late.callsOf("checker"), 16U) << "cheap and part of the same run";
    EXPECT_EQ(late.callsOf("blur") + late.callsOf("levels") + late.callsOf("fractalNoise"), 0U);

    knobs.radius = 6.0;
    const OssEvStatistics middle = callsAfter(knobs);
    EXPECT_EQ(middle.callsOf("blur"), 4U) << "blocks of four tiles";
    EXPECT_EQ(middle.callsOf("levels"), 0U);

    knobs.inHigh = 0.5;
    const OssEvStatistics early = callsAfter(knobs);
    EXPECT_EQ(early.callsOf("levels"), 16U);
    EXPECT_EQ(early.callsOf("fractalNoise"), 0U) << "costly nodes keep their tiles";
    EXPECT_EQ(early.callsOf("image"), 0U);

    knobs.frequency = 9.0;
    EXPECT_EQ(callsAfter(knobs).callsOf("fractalNoise"), 16U);
    EXPECT_EQ(images->reads(), 4) << "each row of the image once";
}

TEST_F(Engine, aCachePointHoldsWhatARunWouldNot)
{
    const auto graph = [](double gamma, bool hold) {
        return graphOf({{"Checker", "checker"},
                        {"Invert", "invert", {}, {{"Input", "Checker"}}, hold},
                        {"Gamma", "gamma", {{"Gamma", gamma}}, {{"Input", "Invert"}}}});
    };
    for (const bool hold : {false, true}) {
        engine->cache().clear();
        evaluate(graph(1.5, hold), "Gamma");
        engine->resetStatistics();
        evaluate(graph(2.5, hold), "Gamma");
        EXPECT_EQ(engine->statistics().callsOf("invert"), hold ? 0U : 16U);
        EXPECT_EQ(engine->statistics().callsOf("gamma"), 16U);
    }
}

TEST_F(Engine, tellsWhatEachNodeOfARunCost)
{
    const auto graph = chainOf({"checker", "invert", "blur"});
    evaluate(graph, "2");
    const auto costs = engine->statistics().costs;
    ASSERT_EQ(costs.size(), 3U);
    for (const char *name : {"0", "1", "2"}) {
        EXPECT_EQ(costs.at(name).texels, 16U * OssEvTile::Texels) << name;
        EXPECT_GT(costs.at(name).seconds, 0.0) << name;
    }
    evaluate(graph, "2");
    EXPECT_EQ(engine->statistics().costs.at("2").texels, 16U * OssEvTile::Texels)
        << "what comes from the cache costs nothing";
}

TEST_F(Engine, constantsAreFoldedAndTakeNoMemory)
{
    const OssEvColor color{0.25F, 0.5F, 1.0F, 1.0F};
    const Collected result = evaluate(graphOf({{"Color", "constant", {{"Color", color}}},
                                               {"Invert", "invert", {}, {{"Input", "Color"}}}}),
                                      "Invert");
    EXPECT_EQ(engine->statistics().callsOf("invert"), 0U);
    ASSERT_EQ(result.tiles.size(), 16U);
    EXPECT_TRUE(result.tiles.begin()->second->isConstant());
    EXPECT_EQ(result.texel(0, 100, 300), 0.75F);
    EXPECT_LT(engine->cache().bytes(), 16U * 1024U);
}

TEST_F(Engine, valuesFitThePortsThatTheyGoInto)
{
    const OssEvColor color{1.0F, 0.5F, 0.0F, 1.0F};
    const OssEvParameters add{{"BlendMode", std::string("Add")}};
    const OssEvParameters sum{{"Operation", std::string("Add")}};
    const auto graph = graphOf({{"Value", "constant", {{"Value", 0.25}}},
                                {"Color", "constant", {{"Color", color}}},
                                {"Wave", "image", file("wave")},
                                {"Noise", "fractalNoise"},
                                {"Sum", "merge", add, {{"Base", "Value"}, {"Over", "Wave"}}},
                                {"Grey", "math", sum, {{"A", "Wave"}, {"B", "Color"}}},
                                {"Scalars", "merge", add, {{"Base", "Noise"}, {"Over", "Value"}}}});
    const Collected wave = evaluate(graph, "Wave");
    const Collected sums = evaluate(graph, "Sum");
    const Collected greys = evaluate(graph, "Grey");
    const Collected noises = evaluate(graph, "Noise");
    const Collected both = evaluate(graph, "Scalars");
    for (int i = 0; i < 512; i += 37) {
        const auto channel = [&wave, i](int k) {
            return wave.texel(k, i, 511 - i);
        };
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(sums.texel(k, i, 511 - i), channel(k) + 0.25F, 1e-3) << "grey as a color";
            EXPECT_NEAR(both.texel(k, i, i), noises.texel(0, i, i) + 0.25F, 1e-3);
        }
        EXPECT_EQ(sums.texel(3, i, 511 - i), 1.0F) << "opaque";
        const double luminance = 0.2126 * (channel(0) + 1.0) + 0.7152 * (channel(1) + 0.5)
                                 + 0.0722 * channel(2);
        EXPECT_NEAR(greys.texel(0, i, 511 - i), luminance, 2e-3) << "a color as its brightness";
    }
}

TEST_F(Engine, aSmallCacheChangesNothingButTheWork)
{
    const Collected roomy = evaluate(chain({}), "Over");
    engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{std::size_t(512) << 10, 2});
    const Collected tight = evaluate(chain({}), "Over");
    EXPECT_LE(engine->cache().bytes(), std::size_t(512) << 10);
    EXPECT_GT(engine->cache().evictions(), 0U);
    expectNear(tight, roomy, 512, 0.0);
}

TEST_F(Engine, whatIsUnderWayIsJoined)
{
    images->hold();
    std::array<Collected, 3> results;
    std::vector<OssEvEngine::Id> ids;
    ids.reserve(results.size());
    for (Collected &result : results)
        ids.push_back(start(target(chain({}), "Over"), &result));
    waitUntil([this] { return engine->statistics().joins > 0; });
    images->letGo();
    waitFor(ids);
    for (const Collected &result : results)
        EXPECT_EQ(result.tiles.size(), 16U);
    EXPECT_EQ(engine->statistics().callsOf("blur"), 4U);
    EXPECT_EQ(engine->statistics().callsOf("levels"), 16U);
    EXPECT_EQ(images->reads(), 4);
}

TEST_F(Engine, cancellingStopsTheWorkAndTellsOnce)
{
    Collected result;
    const OssEvEngine::Id id = start(target(slow(), "Node", 32768), &result);
    waitUntil([this] { return engine->statistics().tilesComputed > 0; });
    engine->cancel(id);
    engine->cancel(id);
    engine->wait(id);
    const OssEvStatistics after = engine->statistics();
    EXPECT_EQ(result.finished, 1);
    EXPECT_EQ(result.afterFinish, 0);
    EXPECT_TRUE(result.outcome.cancelled);
    EXPECT_LT(after.tilesComputed, 30000U) << "of 65536";
}

TEST_F(Engine, halfDoneTilesOfACancelledRequestAreNotKept)
{
    for (int round = 0; round < 6; ++round) {
        engine->resetStatistics();
        Collected cancelled;
        const OssEvEngine::Id id = start(target(slow(), "Node", 1024), &cancelled);
        waitUntil([this] {
            const OssEvStatistics now = engine->statistics();
            return now.tilesComputed > 0 || now.tilesFromCache == 64;
        });
        engine->cancel(id);
        engine->wait(id);
    }
    const Collected mixed = evaluate(slow(), "Node", 1024);
    engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{0, 1});
    expectNear(mixed, evaluate(slow(), "Node", 1024), 1024, 0.0);
}

TEST_F(Engine, theFocusComesFirst)
{
    engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{0, 1});
    Collected result;
    OssEvRequest request;
    request.target = target(nodeOf("cellular"), "Node", 2048);
    request.focusX = 1500.0;
    request.focusY = 300.0;
    engine->wait(start(std::move(request), &result));
    ASSERT_EQ(result.order.size(), 256U);
    EXPECT_EQ(result.order.front(), std::make_pair(1500 / 128, 300 / 128));
    const auto distance = [](const std::pair<int, int> &place) {
        return std::hypot(place.first + 0.5 - 1500.0 / 128.0, place.second + 0.5 - 300.0 / 128.0);
    };
    double early = 0.0;
    double late = 0.0;
    for (std::size_t i = 0; i < 32; ++i) {
        early = std::max(early, distance(result.order[i]));
        late = std::max(late, distance(result.order[result.order.size() - 1 - i]));
    }
    EXPECT_LT(early, 4.5);
    EXPECT_GT(late, 8.0);
}

TEST_F(Engine, levelsHalveTheFrameAndLengthsWithIt)
{
    OssEvTarget wanted = target(chain({}), "Blur", 512);
    const Collected full = evaluate(wanted);
    wanted.level = 2;
    const Collected small = evaluate(wanted);
    ASSERT_TRUE(small.outcome.ok());
    EXPECT_EQ(small.frame.width, 128);
    double difference = 0.0;
    for (int i = 10; i < 118; ++i)
        difference += std::abs(small.texel(0, i, i) - full.texel(0, 4 * i + 2, 4 * i + 2));
    EXPECT_LT(difference / 108.0, 0.05) << "a preview of the same picture";
}

TEST_F(Engine, faultsAreToldInWordsAndStayWhereTheyAre)
{
    const auto graph = graphOf({{"Photo", "image", file("broken")},
                                {"Scan", "image", file("nowhere.png")},
                                {"Blur A", "blur", {}, {{"Input", "Photo"}}},
                                {"Blur B", "blur", {}, {{"Input", "Scan"}}},
                                {"Checker", "checker"}});
    EXPECT_EQ(evaluate(graph, "Blur A").outcome.error,
              "\"Photo\": Cannot read \"broken\": its pixels cannot be decoded");
    EXPECT_EQ(evaluate(graph, "Blur B").outcome.error,
              "\"Scan\": Cannot read \"nowhere.png\": there is no such file");
    EXPECT_TRUE(evaluate(graph, "Checker").outcome.ok());

    OssEvTarget outside = target(graph, "Checker");
    outside.patch = 1000;
    EXPECT_EQ(evaluate(outside).outcome.error, "There is no patch 1000");
    EXPECT_FALSE(evaluate(graph, "Checker", 100000).outcome.ok());
    EXPECT_FALSE(evaluate(graph, "Nobody").outcome.ok());
}

TEST_F(Engine, badNumbersInPixelsDoNotSpread)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    const float endless = std::numeric_limits<float>::infinity();
    images->add("bad", 256, 256, [none, endless](int x, int y) {
        return TestImages::Texel{x == 100 && y == 100 ? none : 0.5F, x == 50 ? endless : 0.5F, 0.5F,
                                 1.0F};
    });
    const Collected result = evaluate(
        graphOf({{"Bad", "image", file("bad")},
                 {"Gain", "brightnessContrast", {{"Contrast", 0.5}}, {{"Input", "Bad"}}},
                 {"Blur", "blur", {{"Radius", 3.0}}, {{"Input", "Gain"}}}}),
        "Blur", 256);
    expectFinite(result, 256);
    EXPECT_NEAR(result.texel(0, 200, 200), 0.5F, 1e-3);
}

TEST_F(Engine, manyRequestsAtOnceFromManyThreads)
{
    std::vector<std::thread> threads;
    threads.reserve(4);
    std::atomic<int> good{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([this, t, &good] {
            for (int i = 0; i < 12; ++i) {
                Knobs knobs;
                knobs.amount = 0.1 * ((i + t) % 3);
                knobs.radius = 2.0 + (i % 2);
                Collected result;
                OssEvRequest request;
                request.target = target(chain(knobs), "Over", 384);
                request.priority = i % 2;
                const OssEvEngine::Id id = start(std::move(request), &result);
                engine->setFocus(id, 10.0 * i, 5.0 * t);
                if (i % 3 == 2)
                    engine->cancel(id);
                engine->wait(id);
                const bool complete = result.outcome.ok() && result.tiles.size() == 9;
                good += (complete || result.outcome.cancelled) && result.finished == 1
                                && result.twice == 0 && result.afterFinish == 0
                            ? 1
                            : 0;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(good, 48);
}

TEST_F(Engine, destructionCancelsWhatIsUnderWay)
{
    Collected result;
    images->add("wave", 4096, 4096, [](int, int) { return TestImages::Texel{1, 1, 1, 1}; });
    start(target(chain({}), "Over", 4096), &result);
    waitUntil([this] { return engine->statistics().tilesRead > 0; });
    engine.reset();
    EXPECT_EQ(result.finished, 1);
    EXPECT_TRUE(result.outcome.cancelled);
}

// --- sizes

TEST_F(Engine, mipsAreMeansOfTheFullPatch)
{
    OssEvTarget wanted = target(nodeOf("checker", {{"Scale", 200.0}}), "Node", 400);
    wanted.mip = 3;
    const Collected small = evaluate(wanted);
    ASSERT_TRUE(small.outcome.ok()) << small.outcome.error;
    EXPECT_EQ(small.frame.width, 50);
    for (int i = 2; i < 48; ++i)
        EXPECT_NEAR(small.texel(0, i, 49 - i), 0.5F, 2e-3F);
}

TEST_F(Engine, imagesOfAnySizeFillThePatch)
{
    const auto graph = nodeOf("image", file("odd"));
    const Collected larger = evaluate(graph, "Node", 600);
    ASSERT_TRUE(larger.outcome.ok()) << larger.outcome.error;
    // 300 x 200 on 600 x 600: texel (2 x, 3 y + 1) lies near the middle of texel (x, y).
    EXPECT_NEAR(larger.texel(0, 101, 301), float(50 % 97) / 97.0F, 0.01);
    EXPECT_NEAR(larger.texel(1, 101, 301), float(100 % 61) / 61.0F, 0.01);
    EXPECT_TRUE(evaluate(graph, "Node", 50).outcome.ok());
}

} // namespace
