#include "OssEvaluation/EngineFixture.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace {

constexpr int Size = OssEvTile::Size;

} // namespace

void TestImages::add(const std::string &name, int width, int height, Function function)
{
    m_entries[name] = {width, height, std::move(function)};
}

void TestImages::hold()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_held = true;
}

void TestImages::letGo()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_held = false;
    m_changed.notify_all();
}

int TestImages::reads() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_reads;
}

OssEvResult TestImages::describe(const Image &image, OssEvImageInfo *info)
{
    const auto found = m_entries.find(image.name);
    if (found == m_entries.end())
        return OssEvResult::failure("Cannot read \"" + image.name + "\": there is no such file");
    info->width = found->second.width;
    info->height = found->second.height;
    info->format = OssEvTile::Format::Float;
    info->content = OssEvKeyBuilder().add(image.name).key();
    return {};
}

OssEvResult TestImages::read(const Image &image, int reduction, int tileRow,
                             const OssEvCancel &cancel, const Deliver &deliver)
{
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_reads;
        while (m_held && !cancel.isCancelled())
            m_changed.wait_for(lock, std::chrono::milliseconds(1));
    }
    if (image.name == "broken")
        return OssEvResult::failure("Cannot read \"broken\": its pixels cannot be decoded");
    const Entry &entry = m_entries.at(image.name);
    const int scale = 1 << reduction;
    for (int left = 0; left * scale * Size < entry.width; ++left) {
        auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float);
        for (int y = 0; y < Size; ++y) {
            for (int x = 0; x < Size; ++x) {
                const Texel texel = entry.function((left * Size + x) * scale,
                                                   (tileRow * Size + y) * scale);
                for (int k = 0; k < 4; ++k)
                    tile->floatPlane(k)[y * Size + x] = texel[std::size_t(k)];
            }
        }
        deliver(left, tileRow, std::move(tile));
    }
    return {};
}

float Collected::texel(int channel, int x, int y) const
{
    const auto found = tiles.find({x / Size, y / Size});
    if (found == tiles.end()) {
        ADD_FAILURE() << "no tile for " << x << ", " << y;
        return 0.0F;
    }
    return found->second->texel(channel, x % Size, y % Size);
}

void expectNear(const Collected &picture, const Collected &wanted, int size, double tolerance)
{
    ASSERT_TRUE(picture.outcome.ok() && wanted.outcome.ok())
        << picture.outcome.error << wanted.outcome.error;
    ASSERT_GE(picture.channels(), wanted.channels());
    for (int y = 0; y < size; y += 3) {
        for (int x = 0; x < size; x += 3) {
            for (int k = 0; k < wanted.channels(); ++k)
                ASSERT_NEAR(picture.texel(k, x, y), wanted.texel(k, x, y), tolerance)
                    << "channel " << k << " at " << x << ", " << y;
        }
    }
}

void expectFinite(const Collected &picture, int size)
{
    ASSERT_TRUE(picture.outcome.ok()) << picture.outcome.error;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            for (int k = 0; k < picture.channels(); ++k)
                ASSERT_TRUE(std::isfinite(picture.texel(k, x, y))) << x << ", " << y;
        }
    }
}

EngineFixture::EngineFixture()
    : images(std::make_shared<TestImages>())
    , engine(std::make_unique<OssEvEngine>(OssEvEngine::Options{std::size_t(256) << 20, 2}))
{
    const auto wave = [](int x, int y) {
        return TestImages::Texel{float(x % 97) / 97.0F, float(y % 61) / 61.0F,
                                 float((x + y) % 31) / 31.0F, 1.0F};
    };
    images->add("wave", 512, 512, wave);
    images->add("broken", 512, 512, wave);
    images->add("odd", 300, 200, wave);
}

EngineFixture::~EngineFixture()
{
    images->letGo();
}

OssEvTarget EngineFixture::target(const std::shared_ptr<const OssEvGraph> &graph,
                                  const std::string &node, int size) const
{
    OssEvTarget result;
    result.graph = graph;
    result.node = graph->find(node);
    result.width = size;
    result.height = size;
    result.images = images;
    return result;
}

OssEvEngine::Id EngineFixture::start(OssEvRequest request, Collected *collected)
{
    request.onTile = [this, collected](const OssEvArrival &arrival) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        collected->afterFinish += collected->finished;
        collected->order.emplace_back(arrival.x, arrival.y);
        collected->frame = arrival.frame;
        const bool isNew =
            collected->tiles.emplace(std::make_pair(arrival.x, arrival.y), arrival.tile).second;
        collected->twice += isNew ? 0 : 1;
    };
    request.onProgress = [this, collected](int done, int /*total*/) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        collected->afterFinish += collected->finished;
        collected->lastProgress = std::max(collected->lastProgress, done);
    };
    request.onFinished = [this, collected](const OssEvOutcome &outcome) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        collected->outcome = outcome;
        ++collected->finished;
    };
    return engine->start(std::move(request));
}

OssEvEngine::Id EngineFixture::start(const OssEvTarget &target, Collected *collected)
{
    OssEvRequest request;
    request.target = target;
    return start(std::move(request), collected);
}

Collected EngineFixture::evaluate(const OssEvTarget &target)
{
    Collected collected;
    engine->wait(start(target, &collected));
    EXPECT_EQ(collected.finished, 1);
    EXPECT_EQ(collected.twice, 0);
    EXPECT_EQ(collected.afterFinish, 0);
    return collected;
}

Collected EngineFixture::evaluate(const std::shared_ptr<const OssEvGraph> &graph,
                                  const std::string &node, int size)
{
    return evaluate(target(graph, node, size));
}

void EngineFixture::waitFor(const std::vector<OssEvEngine::Id> &ids)
{
    for (const OssEvEngine::Id id : ids)
        engine->wait(id);
}

void EngineFixture::waitUntil(const std::function<bool()> &condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            ADD_FAILURE() << "what is waited for does not come";
            return;
        }
        std::this_thread::yield();
    }
}
