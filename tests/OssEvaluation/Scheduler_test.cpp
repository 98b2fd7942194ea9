#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <limits>
#include <set>
#include <thread>

namespace {

constexpr int Size = OssEvTile::Size;

/// Somebody waits here until it is opened.
class Gate
{
public:
    void pass()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_reached = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_open; });
    }

    void waitUntilReached()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [this] { return m_reached; });
    }

    void open()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_reached = false;
    bool m_open = false;
};

/// An engine of one thread, which can be held while requests pile up.
class Scheduling : public EngineFixture
{
protected:
    Scheduling()
    {
        engine = std::make_unique<OssEvEngine>(OssEvEngine::Options{std::size_t(64) << 20, 1});
    }

    static std::shared_ptr<const OssEvGraph> checker(double scale)
    {
        return nodeOf("checker", {{"Scale", scale}});
    }

    /// Keeps the engine's thread busy until `gate` is opened.
    OssEvEngine::Id hold(Gate *gate)
    {
        OssEvRequest request;
        request.target = target(checker(99.0), "Node", Size);
        request.onTile = [gate](const OssEvArrival &) {
            gate->pass();
        };
        const OssEvEngine::Id id = engine->start(std::move(request));
        gate->waitUntilReached();
        return id;
    }

    /// A request whose tiles are noted as `name`.
    OssEvEngine::Id follow(OssEvRequest request, const std::string &name)
    {
        request.onTile = [this, name](const OssEvArrival &arrival) {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_names.push_back(name);
            m_places.emplace_back(arrival.x, arrival.y);
        };
        return engine->start(std::move(request));
    }

    OssEvRequest request(double scale, int priority, int size = 4 * Size) const
    {
        OssEvRequest result;
        result.target = target(checker(scale), "Node", size);
        result.order = OssEvRequest::Order::Rows;
        result.priority = priority;
        return result;
    }

    /// How many tiles of `name` came before the first of `other`.
    long before(const std::string &name, const std::string &other) const
    {
        const auto end = std::find(m_names.begin(), m_names.end(), other);
        return std::count(m_names.begin(), end, name);
    }

    std::vector<std::string> m_names;
    std::vector<std::pair<int, int>> m_places;

private:
    std::mutex m_mutex;
};

TEST_F(Scheduling, whatIsUrgentComesFirstAndOfEqualsTheEarlierOne)
{
    Gate gate;
    const OssEvEngine::Id held = hold(&gate);
    const OssEvEngine::Id idle = follow(request(3.0, -1), "idle");
    const OssEvEngine::Id usual = follow(request(4.0, 0), "usual");
    const OssEvEngine::Id later = follow(request(6.0, 0), "later");
    const OssEvEngine::Id urgent = follow(request(5.0, 2), "urgent");
    gate.open();
    waitFor({held, idle, usual, later, urgent});
    EXPECT_EQ(before("urgent", "usual"), 16);
    EXPECT_EQ(before("usual", "later"), 16);
    EXPECT_EQ(before("later", "idle"), 16);
}

TEST_F(Scheduling, whatIsJoinedHurriesWithWhoIsUrgent)
{
    Gate gate;
    hold(&gate);
    const OssEvEngine::Id idle = follow(request(3.0, -5), "idle");
    const OssEvEngine::Id usual = follow(request(4.0, 0), "usual");
    OssEvRequest same = request(3.0, 5);
    same.region = {2 * Size, 0, 10, 10}; // the idle request has it in work, too
    const OssEvEngine::Id urgent = follow(same, "urgent");
    gate.open();
    waitFor({idle, usual, urgent});
    EXPECT_EQ(before("usual", "urgent"), 0);
    EXPECT_EQ(std::count(m_names.begin(), m_names.end(), "urgent"), 1);
    EXPECT_EQ(engine->statistics().callsOf("checker"), 1U + 16U + 16U) << "computed once";
}

TEST_F(Scheduling, hurryReachesWhatLiesUpstream)
{
    Gate gate;
    hold(&gate);
    OssEvRequest idle = request(1.0, -5, 2 * Size);
    idle.target.graph = chainOf({"checker", "blur"});
    idle.target.node = 1;
    OssEvRequest urgent = idle;
    urgent.priority = 5;
    const OssEvEngine::Id first = follow(idle, "idle");
    const OssEvEngine::Id usual = follow(request(4.0, 0), "usual");
    const OssEvEngine::Id last = follow(urgent, "urgent");
    gate.open();
    waitFor({first, usual, last});
    EXPECT_EQ(before("usual", "urgent"), 0);
}

TEST_F(Scheduling, aFocusThatMovesChangesWhatIsStillToCome)
{
    Gate gate;
    OssEvRequest wanted = request(3.0, 0, 8 * Size);
    wanted.order = OssEvRequest::Order::Nearest;
    std::vector<std::pair<int, int>> places;
    wanted.onTile = [&](const OssEvArrival &arrival) {
        places.emplace_back(arrival.x, arrival.y);
        if (places.size() == 1)
            gate.pass();
    };
    const OssEvEngine::Id id = engine->start(wanted);
    gate.waitUntilReached();
    engine->setFocus(id, 8.0 * Size, 8.0 * Size);
    gate.open();
    engine->wait(id);
    ASSERT_EQ(places.size(), 64U);
    EXPECT_EQ(places[0], std::make_pair(0, 0));
    // Four are in work already, at most five more come in between.
    const auto corner = std::find(places.begin(), places.end(), std::make_pair(7, 7));
    EXPECT_LE(corner - places.begin(), 9);
    const auto old = std::find(places.begin(), places.end(), std::make_pair(3, 3));
    const auto now = std::find(places.begin(), places.end(), std::make_pair(5, 5));
    EXPECT_LT(now - places.begin(), old - places.begin());
}

TEST_F(Scheduling, rowsComeFromTheTop)
{
    OssEvRequest wanted = request(3.0, 0, 5 * Size);
    wanted.focusX = 5.0 * Size;
    wanted.focusY = 5.0 * Size;
    engine->wait(follow(wanted, "rows"));
    ASSERT_EQ(m_places.size(), 25U);
    for (std::size_t i = 0; i < m_places.size(); ++i)
        EXPECT_EQ(m_places[i], std::make_pair(int(i % 5), int(i / 5)));
}

TEST_F(Scheduling, whoAlsoWaitsKeepsAUnitThatOneGivesUp)
{
    const auto graph = graphOf(
        {{"Image", "image", file("wave")}, {"Node", "invert", {}, {{"Input", "Image"}}}});
    images->hold();
    std::array<Collected, 3> results;
    std::vector<OssEvEngine::Id> ids;
    // Of one tile: nothing is joined but by another request.
    for (std::size_t i = 0; i < results.size(); ++i) {
        OssEvRequest wanted;
        wanted.target = target(graph, "Node");
        wanted.region = {0, 0, 1, 1};
        ids.push_back(start(wanted, &results[i]));
        waitUntil([this, i] { return engine->statistics().joins >= i; });
    }
    engine->cancel(ids[0]);
    engine->wait(ids[0]);
    engine->cancel(ids[2]);
    engine->wait(ids[2]);
    images->letGo();
    engine->wait(ids[1]);
    EXPECT_TRUE(results[0].outcome.cancelled);
    EXPECT_TRUE(results[2].outcome.cancelled);
    EXPECT_TRUE(results[1].outcome.ok());
    EXPECT_EQ(results[1].tiles.size(), 1U);
    EXPECT_EQ(images->reads(), 1);
}

TEST_F(Scheduling, whatNobodyWantsAnyMoreIsNotBegun)
{
    Gate gate;
    const OssEvEngine::Id held = hold(&gate);
    const OssEvEngine::Id gone = follow(request(3.0, 5), "gone");
    const OssEvEngine::Id stays = follow(request(4.0, 0), "stays");
    engine->cancel(gone);
    gate.open();
    waitFor({held, gone, stays});
    EXPECT_EQ(std::count(m_names.begin(), m_names.end(), "gone"), 0);
    EXPECT_EQ(engine->statistics().callsOf("checker"), 1U + 16U);
}

TEST_F(Scheduling, aFaultEndsEveryoneWhoWaitsForItAndNobodyElse)
{
    const auto graph = graphOf({{"Photo", "image", file("broken")},
                                {"First", "blur", {}, {{"Input", "Photo"}}},
                                {"Second", "invert", {}, {{"Input", "Photo"}}},
                                {"Good", "image", file("wave")}});
    images->hold();
    std::map<std::string, Collected> results;
    std::vector<OssEvEngine::Id> ids;
    ids.reserve(3);
    for (const char *node : {"First", "Second", "Good"})
        ids.push_back(start(target(graph, node), &results[node]));
    waitUntil([this] { return engine->statistics().joins > 0; });
    images->letGo();
    waitFor(ids);
    for (const char *node : {"First", "Second"}) {
        EXPECT_EQ(results[node].outcome.error,
                  "\"Photo\": Cannot read \"broken\": its pixels cannot be decoded");
        EXPECT_EQ(results[node].finished, 1);
    }
    EXPECT_TRUE(results["Good"].outcome.ok());
    EXPECT_EQ(results["Good"].tiles.size(), 16U);
}

TEST_F(Scheduling, aTileThatTheCacheBroughtIsNotBroughtAgainWithItsRow)
{
    const auto graph = nodeOf("image", file("wave"));
    EXPECT_EQ(evaluate(graph, "Node").tiles.size(), 16U);
    EXPECT_EQ(evaluate(graph, "Node").tiles.size(), 16U);
    EXPECT_EQ(images->reads(), 4) << "all came from the cache the second time";
    // Only a few of the tiles stay.
    const std::size_t tile = engine->cache().bytes() / 16;
    engine->cache().setBudget(3 * tile + tile / 2);
    ASSERT_EQ(engine->cache().count(), 3U);
    engine->cache().setBudget(std::size_t(64) << 20);
    const Collected again = evaluate(graph, "Node");
    EXPECT_EQ(again.tiles.size(), 16U);
    EXPECT_EQ(again.lastProgress, 16);
    EXPECT_EQ(again.texel(0, 300, 300), float(300 % 97) / 97.0F);
}

TEST_F(Scheduling, regionsReachNoFartherThanTheImage)
{
    using Places = std::set<std::pair<int, int>>;
    const auto placesIn = [this](const OssEvRegion &region) {
        Collected result;
        OssEvRequest wanted;
        wanted.target = target(checker(3.0), "Node", 300);
        wanted.region = region;
        engine->wait(start(wanted, &result));
        EXPECT_TRUE(result.outcome.ok()) << result.outcome.error;
        EXPECT_EQ(result.finished, 1);
        return Places(result.order.begin(), result.order.end());
    };
    EXPECT_EQ(placesIn({}).size(), 9U) << "all";
    EXPECT_EQ(placesIn({-50, -50, 51, 51}), (Places{{0, 0}}));
    EXPECT_EQ(placesIn({299, 299, 5000, 5000}), (Places{{2, 2}}));
    EXPECT_EQ(placesIn({127, 127, 2, 2}), (Places{{0, 0}, {0, 1}, {1, 0}, {1, 1}}));
    EXPECT_EQ(placesIn({128, 0, 128, 128}), (Places{{1, 0}}));
    EXPECT_EQ(placesIn({130, 140, 10, 300}), (Places{{1, 1}, {1, 2}}));
    EXPECT_EQ(placesIn({300, 0, 10, 10}), Places()) << "beyond the edge there is nothing";
    EXPECT_EQ(placesIn({-10, 0, 10, 10}), Places());
}

TEST_F(Scheduling, requestsThatAreOverOrNeverWereAreNoMatter)
{
    engine->cancel(12345);
    engine->setFocus(12345, 1.0, 1.0);
    engine->wait(12345);
    const OssEvEngine::Id id = follow(request(3.0, 0), "a");
    engine->wait(id);
    engine->cancel(id);
    engine->setFocus(id, 1.0, 1.0);
    engine->wait(id);
    EXPECT_EQ(m_names.size(), 16U);
}

TEST_F(Scheduling, callbacksMayAskForMore)
{
    std::atomic<int> finished{0};
    std::atomic<OssEvEngine::Id> last{0};
    OssEvRequest outer = request(3.0, 0);
    outer.onFinished = [&](const OssEvOutcome &outcome) {
        EXPECT_TRUE(outcome.ok());
        ++finished;
        OssEvRequest inner = request(4.0, 0);
        inner.onFinished = [&finished](const OssEvOutcome &) {
            ++finished;
        };
        last = engine->start(inner);
        engine->setFocus(last, 5.0, 5.0);
        engine->statistics();
    };
    engine->wait(engine->start(outer));
    engine->wait(last);
    EXPECT_EQ(finished, 2);
}

TEST_F(Scheduling, aCancelledRequestIsToldSoOnceEvenBeforeItWasPlanned)
{
    Gate gate;
    hold(&gate);
    Collected result;
    OssEvRequest wanted = request(3.0, 0);
    const OssEvEngine::Id id = start(wanted, &result);
    engine->cancel(id);
    gate.open();
    engine->wait(id);
    EXPECT_TRUE(result.outcome.cancelled);
    EXPECT_TRUE(result.outcome.error.empty());
    EXPECT_EQ(result.finished, 1);
    EXPECT_TRUE(result.tiles.empty());
}

TEST_F(Scheduling, dearTilesOutliveCheapOnesThatCameLater)
{
    OssEvTarget dear = target(nodeOf("ambientOcclusion", {{"Rays", 16.0}}), "Node", Size);
    dear.mesh = OssEvShapes::sphere();
    engine->cache().setBudget(std::size_t(2) << 20);
    ASSERT_TRUE(evaluate(dear).outcome.ok());
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(evaluate(checker(3.0 + i), "Node", 4 * Size).outcome.ok());
    ASSERT_GT(engine->cache().evictions(), 20U);
    engine->resetStatistics();
    ASSERT_TRUE(evaluate(dear).outcome.ok());
    EXPECT_EQ(engine->statistics().tilesComputed, 0U);
}

TEST_F(Scheduling, aTileIsUniformOnlyWhenAllOfItIs)
{
    // Strips of rows that are uniform each, but not the same.
    images->add("steps", 256, 256, [](int, int y) {
        return TestImages::Texel{float(y / 8) / 64.0F, 0.5F, 0.5F, 1.0F};
    });
    images->add("flat", 256, 256, [](int, int) {
        return TestImages::Texel{0.1F, 0.5F, 0.7F, 1.0F};
    });
    const auto inverted = [this](const char *image) {
        return evaluate(graphOf({{"Image", "image", file(image)},
                                 {"Node", "invert", {}, {{"Input", "Image"}}}}),
                        "Node", 256);
    };
    const Collected steps = inverted("steps");
    for (int y = 0; y < 256; ++y)
        ASSERT_NEAR(steps.texel(0, 17, y), 1.0F - float(y / 8) / 64.0F, 1e-3) << y;
    const Collected flat = inverted("flat");
    EXPECT_TRUE(flat.tiles.at({1, 1})->isConstant());
    EXPECT_NEAR(flat.texel(0, 200, 200), 0.9F, 1e-3);
}

TEST_F(Scheduling, numbersThatAreNoneStayOutOfPreciseTilesToo)
{
    // Divided by what is nothing at some texels.
    images->add("zeros", 128, 128, [](int x, int y) {
        const float number = (x + y) % 5 == 0 ? std::numeric_limits<float>::infinity() : 1.0F;
        return TestImages::Texel{number, -number, number, 1.0F};
    });
    const Collected result = evaluate(graphOf({{"Image", "image", file("zeros")},
                                               {"Node",
                                                "vectorMath",
                                                {{"Operation", std::string("Multiply")}},
                                                {{"A", "Image"}, {"B", "Image"}}}}),
                                      "Node", 128);
    expectFinite(result, 128);
    EXPECT_EQ(result.tiles.begin()->second->format(), OssEvTile::Format::Float);
}

} // namespace
