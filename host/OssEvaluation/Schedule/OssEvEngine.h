#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/Schedule/OssEvTileCache.h"
#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

/// A tile of the target that is done.
struct OssEvArrival
{
    /// Place in tiles; the first texel of the patch is in tile (0, 0).
    int x = 0;
    int y = 0;
    OssEvTilePointer tile;
    /// Size of the whole target in texels.
    OssEvFrame frame;
};

/// How a request ended.
struct OssEvOutcome
{
    bool cancelled = false;
    /// Empty when every tile arrived. Names the node and the reason.
    std::string error;
    /// The node that is at fault, by its name in the graph; empty when none is known to be.
    std::string node;

    bool ok() const { return !cancelled && error.empty(); }
};

struct OssEvRequest
{
    /// Nearest to the focus first, or line by line from the top.
    enum class Order { Nearest, Rows };

    OssEvTarget target;
    /// Texels of the target that are wanted; all when empty.
    OssEvRegion region;
    Order order = Order::Nearest;
    /// In texels of the target.
    double focusX = 0.0;
    double focusY = 0.0;
    /// Higher ones come first, whenever they were started.
    int priority = 0;

    /// All are called on the engine's threads, or on the one that destroys the engine; never with
    /// a lock held and never after `onFinished`, which is called exactly once. Tiles of a request
    /// may come from several threads at a time, and `done` then in another order than it grew. They
    /// may call the engine, but not wait for it.
    std::function<void(const OssEvArrival &arrival)> onTile;
    std::function<void(int done, int total)> onProgress;
    std::function<void(const OssEvOutcome &outcome)> onFinished;
};

/// What computing one node has cost.
struct OssEvNodeCost
{
    /// Processor time, of which that of point operations is reckoned from samples.
    double seconds = 0.0;
    std::uint64_t texels = 0;
};

/// What the engine has done since it was made or the figures were reset.
struct OssEvStatistics
{
    /// Calls by kernel. One call computes one tile; of a filter, a block of four; of an image it
    /// reads a row of tiles, or all.
    std::map<std::string, std::uint64_t> calls;
    /// By the name of the node. Nodes whose result is one value everywhere cost nothing.
    std::map<std::string, OssEvNodeCost> costs;
    std::uint64_t tilesComputed = 0;
    std::uint64_t tilesFromCache = 0;
    /// Times that something was wanted which was already being computed.
    std::uint64_t joins = 0;
    /// What was given up while it was being computed or read.
    std::uint64_t cancelledUnits = 0;
    /// Tiles of images, among them such as nobody asked for.
    std::uint64_t tilesRead = 0;

    std::uint64_t callsOf(const std::string &kernel) const
    {
        const auto found = calls.find(kernel);
        return found == calls.end() ? 0 : found->second;
    }
};

/// Computes pixels: one pool of threads for all requests, one thread for files, one cache.
///
/// A request is cut into tiles of its target; what they need is computed only as far as it is
/// needed and not in the cache, and only once however many ask for it. Safe to use from any thread;
/// nothing but `wait` and the destructor ever waits for pixels.
class OSSEVALUATION_EXPORT OssEvEngine
{
public:
    using Id = std::uint64_t;

    struct Options
    {
        /// 0 for the default.
        std::size_t cacheBytes = 0;
        /// 0 for as many as there are processors.
        int threads = 0;
    };

    OssEvEngine();
    explicit OssEvEngine(const Options &options);
    OssEvEngine(const OssEvEngine &) = delete;
    OssEvEngine &operator=(const OssEvEngine &) = delete;
    /// Cancels everything and waits for the work in hand. Not from a callback.
    ~OssEvEngine();

    /// Returns at once and calls nothing back itself; every fault of the request is told by its
    /// outcome.
    Id start(OssEvRequest request);

    /// The outcome may still be that all was done. Work that nobody else wants stops within a few
    /// milliseconds.
    void cancel(Id id);

    /// Changes the order of what is still to come.
    void setFocus(Id id, double x, double y);

    /// Until the outcome has been told. Not from a callback.
    void wait(Id id);

    /// Safe to use beside the engine's work.
    OssEvTileCache &cache();

    /// Of this moment.
    OssEvStatistics statistics() const;
    void resetStatistics();

private:
    std::unique_ptr<class OssEvScheduler> m_scheduler;
};
