#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <set>
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
    OssEvGraphBuilder builder;
    const int image = builder.addNode("Image", "image", {{"File", std::string("wave")}});
    const int noise = builder.addNode("Noise", "fractalNoise", {{"Frequency", knobs.frequency}});
    const int times = builder.addNode("Times", "merge", {{"BlendMode", std::string("Multiply")}});
    const int levels = builder.addNode("Levels", "levels", {{"InHigh", knobs.inHigh}});
    const int blur = builder.addNode("Blur", "blur", {{"Radius", knobs.radius}});
    const int checker = builder.addNode("Checker", "checker");
    const int over = builder.addNode("Over", "merge", {{"Amount", knobs.amount}});
    builder.connect(image, "Output", times, "Base");
    builder.connect(noise, "Output", times, "Over");
    builder.connect(times, "", levels, "Input");
    builder.connect(levels, "", blur, "Input");
    builder.connect(checker, "", over, "Base");
    builder.connect(blur, "", over, "Over");
    return builder.finish();
}

class Engine : public EngineFixture
{};

TEST_F(Engine, deliversEveryTileOnceAndEndsOnce)
{
    const Collected result = evaluate(target(chain({}), "Over"));
    EXPECT_TRUE(result.outcome.ok()) << result.outcome.error;
    EXPECT_EQ(result.tiles.size(), 16U);
    EXPECT_EQ(result.lastProgress, 16);
    EXPECT_EQ(result.frame.width, 512);
}

TEST_F(Engine, anEditRecomputesOnlyWhatIsDownstream)
{
    evaluate(target(chain({}), "Over"));
    const auto callsAfter = [this](const Knobs &knobs) {
        engine->resetStatistics();
        EXPECT_TRUE(evaluate(target(chain(knobs), "Over")).outcome.ok());
        return engine->statistics();
    };
    const OssEvStatistics same = callsAfter({});
    EXPECT_EQ(same.tilesComputed, 0U) << "nothing has changed";

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
        OssEvGraphBuilder builder;
        const int checker = builder.addNode("Checker", "checker");
        const int invert = builder.addNode("Invert", "invert");
        const int last = builder.addNode("Gamma", "gamma", {{"Gamma", gamma}});
        builder.connect(checker, "", invert, "Input");
        builder.connect(invert, "", last, "Input");
        if (hold)
            builder.setCachePoint(invert);
        return builder.finish();
    };
    for (const bool hold : {false, true}) {
        engine->cache().clear();
        evaluate(target(graph(1.5, hold), "Gamma"));
        engine->resetStatistics();
        evaluate(target(graph(2.5, hold), "Gamma"));
        EXPECT_EQ(engine->statistics().callsOf("invert"), hold ? 0U : 16U);
        EXPECT_EQ(engine->statistics().callsOf("gamma"), 16U);
    }
}

TEST_F(Engine, tellsWhatEachNodeOfARunCost)
{
    OssEvGraphBuilder builder;
    const int checker = builder.addNode("Checker", "checker");
    const int invert = builder.addNode("Invert", "invert");
    const int blur = builder.addNode("Blur", "blur", {{"Radius", 3.0}});
    builder.connect(checker, "", invert, "Input");
    builder.connect(invert, "", blur, "Input");
    evaluate(target(builder.finish(), "Blur"));
    const auto costs = engine->statistics().costs;
    ASSERT_EQ(costs.size(), 3U);
    for (const char *name : {"Checker", "Invert", "Blur"}) {
        EXPECT_EQ(costs.at(name).texels, 16U * OssEvTile::Texels) << name;
        EXPECT_GT(costs.at(name).seconds, 0.0) << name;
    }
    evaluate(target(builder.finish(), "Blur"));
    EXPECT_EQ(engine->statistics().costs.at("Blur").texels, 16U * OssEvTile::Texels)
        << "what comes from the cache costs nothing";
}

TEST_F(Engine, runsAreCutWhereTilesAreNeeded)
{
    OssEvTarget wanted = target(chain({}), "Over");
    const auto stagesOf = [](const OssEvTarget &what) {
        std::shared_ptr<const OssEvPlan> plan;
        EXPECT_TRUE(OssEvPlan::make(what, &plan));
        return plan->stages().size();
    };
    EXPECT_EQ(stagesOf(wanted), 5U) << "image, noise, levels, blur, over";
    wanted.keepIntermediates = false;
    EXPECT_EQ(stagesOf(wanted), 3U) << "image, levels, and the blur with what follows it";

    OssEvGraphBuilder builder;
    int last = builder.addNode("0", "checker");
    for (int i = 1; i < 2000; ++i) {
        const int next = builder.addNode(std::to_string(i), i % 2 == 0 ? "invert" : "gamma");
        builder.connect(last, "", next, "Input");
        last = next;
    }
    EXPECT_EQ(stagesOf(target(builder.finish(), "1999")), 1U) << "a long chain is one run";

    OssEvGraphBuilder fork;
    const int source = fork.addNode("Source", "checker");
    const int left = fork.addNode("Left", "invert");
    const int both = fork.addNode("Both", "merge");
    fork.connect(source, "", left, "Input");
    fork.connect(source, "", both, "Base");
    fork.connect(left, "", both, "Over");
    EXPECT_EQ(stagesOf(target(fork.finish(), "Both")), 2U) << "what two nodes read is kept";
}

TEST_F(Engine, constantsAreFoldedAndTakeNoMemory)
{
    OssEvGraphBuilder builder;
    const int color = builder.addNode("Color", "constant",
                                      {{"Color", OssEvColor{0.25F, 0.5F, 1.0F, 1.0F}}});
    const int invert = builder.addNode("Invert", "invert");
    builder.connect(color, "", invert, "Input");
    const Collected result = evaluate(target(builder.finish(), "Invert"));
    EXPECT_EQ(engine->statistics().callsOf("invert"), 0U);
    ASSERT_EQ(result.tiles.size(), 16U);
    EXPECT_TRUE(result.tiles.begin()->second->isConstant());
    EXPECT_EQ(result.texel(0, 100, 300), 0.75F);
    EXPECT_LT(engine->cache().bytes(), 16U * 1024U);
}

TEST_F(Engine, valuesFitThePortsThatTheyGoInto)
{
    OssEvGraphBuilder builder;
    const int value = builder.addNode("Value", "constant", {{"Value", 0.25}});
    const int color = builder.addNode("Color", "constant",
                                      {{"Color", OssEvColor{1.0F, 0.5F, 0.0F, 1.0F}}});
    const int image = builder.addNode("Wave", "image", {{"File", std::string("wave")}});
    const int noise = builder.addNode("Noise", "fractalNoise");
    const int sum = builder.addNode("Sum", "merge", {{"BlendMode", std::string("Add")}});
    const int grey = builder.addNode("Grey", "math", {{"Operation", std::string("Add")}});
    const int scalars = builder.addNode("Scalars", "merge", {{"BlendMode", std::string("Add")}});
    builder.connect(value, "", sum, "Base");
    builder.connect(image, "", sum, "Over");
    builder.connect(image, "", grey, "A");
    builder.connect(color, "", grey, "B");
    builder.connect(noise, "", scalars, "Base");
    builder.connect(value, "", scalars, "Over");
    const auto graph = builder.finish();
    const Collected wave = evaluate(target(graph, "Wave"));
    const Collected sums = evaluate(target(graph, "Sum"));
    const Collected greys = evaluate(target(graph, "Grey"));
    const Collected noises = evaluate(target(graph, "Noise"));
    const Collected both = evaluate(target(graph, "Scalars"));
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

TEST_F(Engine, bakingWithoutIntermediatesGivesTheSamePixels)
{
    OssEvTarget wanted = target(chain({}), "Over", 300);
    const Collected kept = evaluate(wanted);
    engine->cache().clear();
    wanted.keepIntermediates = false;
    const Collected fused = evaluate(wanted);
    ASSERT_EQ(fused.tiles.size(), 9U) << "300 texels are three tiles";
    for (int y = 0; y < 300; y += 7) {
        for (int x = 0; x < 300; x += 5)
            ASSERT_NEAR(kept.texel(1, x, y), fused.texel(1, x, y), 2e-3) << x << ", " << y;
    }
}

TEST_F(Engine, aSmallCacheChangesNothingButTheWork)
{
    const Collected roomy = evaluate(target(chain({}), "Over"));
    engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{std::size_t(512) << 10, 2});
    const Collected tight = evaluate(target(chain({}), "Over"));
    ASSERT_TRUE(tight.outcome.ok()) << tight.outcome.error;
    EXPECT_LE(engine->cache().bytes(), std::size_t(512) << 10);
    EXPECT_GT(engine->cache().evictions(), 0U);
    for (int i = 0; i < 512; ++i)
        ASSERT_EQ(roomy.texel(2, i, 511 - i), tight.texel(2, i, 511 - i));
}

TEST_F(Engine, whatIsUnderWayIsJoined)
{
    images->hold();
    std::array<Collected, 3> results;
    std::vector<OssEvEngine::Id> ids;
    for (Collected &result : results) {
        OssEvRequest request;
        request.target = target(chain({}), "Over");
        ids.push_back(start(std::move(request), &result));
    }
    while (engine->statistics().joins == 0)
        std::this_thread::yield();
    images->letGo();
    for (const OssEvEngine::Id id : ids)
        engine->wait(id);
    for (const Collected &result : results)
        EXPECT_EQ(result.tiles.size(), 16U);
    EXPECT_EQ(engine->statistics().callsOf("blur"), 4U);
    EXPECT_EQ(engine->statistics().callsOf("levels"), 16U);
    EXPECT_EQ(images->reads(), 4);
}

TEST_F(Engine, whatOneRequestGivesUpAnotherStillGets)
{
    images->hold();
    Collected first;
    Collected second;
    OssEvRequest request;
    request.target = target(chain({}), "Over");
    const OssEvEngine::Id a = start(request, &first);
    const OssEvEngine::Id b = start(request, &second);
    while (engine->statistics().joins == 0)
        std::this_thread::yield();
    engine->cancel(a);
    engine->wait(a);
    images->letGo();
    engine->wait(b);
    EXPECT_TRUE(first.outcome.cancelled);
    EXPECT_TRUE(second.outcome.ok());
    EXPECT_EQ(second.tiles.size(), 16U);
}

TEST_F(Engine, cancellingStopsTheWorkAndTellsOnce)
{
    OssEvGraphBuilder builder;
    builder.addNode("Cells", "cellular", {{"Scale", 50.0}});
    const auto graph = builder.finish();
    Collected result;
    OssEvRequest request;
    request.target = target(graph, "Cells", 32768);
    const OssEvEngine::Id id = start(std::move(request), &result);
    while (engine->statistics().tilesComputed == 0)
        std::this_thread::yield();
    engine->cancel(id);
    engine->cancel(id);
    engine->wait(id);
    const OssEvStatistics after = engine->statistics();
    EXPECT_EQ(result.finished, 1);
    EXPECT_EQ(result.afterFinish, 0);
    EXPECT_TRUE(result.outcome.cancelled);
    EXPECT_LT(after.tilesComputed, 30000U) << "of 65536";
    // What stopped half-way must not pass for a result.
    const Collected again = evaluate(target(graph, "Cells", 1024));
    EXPECT_TRUE(again.outcome.ok());
}

TEST_F(Engine, halfDoneTilesOfACancelledRequestAreNotKept)
{
    OssEvGraphBuilder builder;
    builder.addNode("Cells", "cellular", {{"Scale", 50.0}});
    const auto graph = builder.finish();
    for (int round = 0; round < 6; ++round) {
        engine->resetStatistics();
        Collected cancelled;
        OssEvRequest request;
        request.target = target(graph, "Cells", 1024);
        const OssEvEngine::Id id = start(std::move(request), &cancelled);
        const auto isUnderWay = [this] {
            const OssEvStatistics now = engine->statistics();
            return now.tilesComputed > 0 || now.tilesFromCache == 64;
        };
        while (!isUnderWay())
            std::this_thread::yield();
        engine->cancel(id);
        engine->wait(id);
    }
    const Collected mixed = evaluate(target(graph, "Cells", 1024));
    engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{0, 1});
    const Collected fresh = evaluate(target(graph, "Cells", 1024));
    for (int y = 0; y < 1024; y += 3) {
        for (int x = 0; x < 1024; x += 11)
            ASSERT_EQ(mixed.texel(0, x, y), fresh.texel(0, x, y)) << x << ", " << y;
    }
}

TEST_F(Engine, theFocusComesFirst)
{
    OssEvGraphBuilder builder;
    builder.addNode("Cells", "cellular");
    engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{0, 1});
    Collected result;
    OssEvRequest request;
    request.target = target(builder.finish(), "Cells", 2048);
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

TEST_F(Engine, onlyTheRegionThatIsWantedIsComputed)
{
    Collected result;
    OssEvRequest request;
    request.target = target(chain({}), "Checker", 1024);
    request.region = {130, 140, 10, 300};
    engine->wait(start(std::move(request), &result));
    std::set<std::pair<int, int>> wanted{{1, 1}, {1, 2}, {1, 3}};
    for (const auto &[place, tile] : result.tiles)
        EXPECT_EQ(wanted.erase(place), 1U);
    EXPECT_TRUE(wanted.empty());
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
    OssEvGraphBuilder builder;
    const int broken = builder.addNode("Photo", "image", {{"File", std::string("broken")}});
    const int missing = builder.addNode("Scan", "image", {{"File", std::string("nowhere.png")}});
    const int blurA = builder.addNode("Blur A", "blur");
    const int blurB = builder.addNode("Blur B", "blur");
    builder.connect(broken, "", blurA, "Input");
    builder.connect(missing, "", blurB, "Input");
    builder.addNode("Checker", "checker");
    const auto graph = builder.finish();
    EXPECT_EQ(evaluate(target(graph, "Blur A")).outcome.error,
              "\"Photo\": Cannot read \"broken\": its pixels cannot be decoded");
    EXPECT_EQ(evaluate(target(graph, "Blur B")).outcome.error,
              "\"Scan\": Cannot read \"nowhere.png\": there is no such file");
    EXPECT_TRUE(evaluate(target(graph, "Checker")).outcome.ok());

    OssEvTarget outside = target(graph, "Checker");
    outside.patch = 1000;
    EXPECT_EQ(evaluate(outside).outcome.error, "There is no patch 1000");
    EXPECT_FALSE(evaluate(target(graph, "Checker", 100000)).outcome.ok());
    EXPECT_FALSE(evaluate(target(graph, "Nobody")).outcome.ok());
}

TEST_F(Engine, badNumbersInPixelsDoNotSpread)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    const float endless = std::numeric_limits<float>::infinity();
    images->add("bad", 256, 256, [none, endless](int x, int y) {
        return TestImages::Texel{x == 100 && y == 100 ? none : 0.5F, x == 50 ? endless : 0.5F, 0.5F,
                                 1.0F};
    });
    OssEvGraphBuilder builder;
    const int image = builder.addNode("Bad", "image", {{"File", std::string("bad")}});
    const int gain = builder.addNode("Gain", "brightnessContrast", {{"Contrast", 0.5}});
    const int blur = builder.addNode("Blur", "blur", {{"Radius", 3.0}});
    builder.connect(image, "", gain, "Input");
    builder.connect(gain, "", blur, "Input");
    const Collected result = evaluate(target(builder.finish(), "Blur", 256));
    ASSERT_TRUE(result.outcome.ok());
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            for (int k = 0; k < 4; ++k)
                ASSERT_TRUE(std::isfinite(result.texel(k, x, y))) << x << ", " << y;
        }
    }
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
    OssEvRequest request;
    request.target = target(chain({}), "Over", 4096);
    images->add("wave", 4096, 4096, [](int, int) { return TestImages::Texel{1, 1, 1, 1}; });
    start(std::move(request), &result);
    while (engine->statistics().tilesRead == 0)
        std::this_thread::yield();
    engine.reset();
    EXPECT_EQ(result.finished, 1);
    EXPECT_TRUE(result.outcome.cancelled);
}

} // namespace
