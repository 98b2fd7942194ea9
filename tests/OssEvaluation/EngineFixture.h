#pragma once

#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssEvaluation/TestGraph.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Images made up by functions; counts what is read, and can hold readers back.
class TestImages : public OssEvImageProvider
{
public:
    using Texel = std::array<float, 4>;
    using Function = std::function<Texel(int x, int y)>;

    void add(const std::string &name, int width, int height, Function function);

    /// Readers wait until they are let go.
    void hold();
    void letGo();

    int reads() const;

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override;
    OssEvResult read(const Image &image, int reduction, int tileRow, const OssEvCancel &cancel,
                     const Deliver &deliver) override;

private:
    struct Entry
    {
        int width = 0;
        int height = 0;
        Function function;
    };

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<std::string, Entry> m_entries;
    bool m_held = false;
    int m_reads = 0;
};

/// What a request brought.
struct Collected
{
    std::map<std::pair<int, int>, OssEvTilePointer> tiles;
    /// In the order of arrival.
    std::vector<std::pair<int, int>> order;
    OssEvOutcome outcome;
    OssEvFrame frame;
    int finished = 0;
    int afterFinish = 0;
    int twice = 0;
    int lastProgress = 0;

    float texel(int channel, int x, int y) const;

    int channels() const { return tiles.empty() ? 0 : tiles.begin()->second->channels(); }
};

/// Of pictures of `size` x `size` texels: every third one each way, in the channels of `wanted`.
void expectNear(const Collected &picture, const Collected &wanted, int size, double tolerance);
void expectFinite(const Collected &picture, int size);

/// Starts requests on an engine of its own and collects what comes.
class EngineFixture : public testing::Test
{
protected:
    EngineFixture();
    ~EngineFixture() override;

    OssEvTarget target(const std::shared_ptr<const OssEvGraph> &graph, const std::string &node,
                       int size = 512) const;

    /// The collection is complete after the engine has finished the request.
    OssEvEngine::Id start(OssEvRequest request, Collected *collected);
    OssEvEngine::Id start(const OssEvTarget &target, Collected *collected);
    Collected evaluate(const OssEvTarget &target);
    Collected evaluate(const std::shared_ptr<const OssEvGraph> &graph, const std::string &node,
                       int size = 512);
    void waitFor(const std::vector<OssEvEngine::Id> &ids);
    /// While the engine works; ten seconds at most.
    static void waitUntil(const std::function<bool()> &condition);

    std::shared_ptr<TestImages> images;
    std::unique_ptr<OssEvEngine> engine;

private:
    std::mutex m_mutex;
};
