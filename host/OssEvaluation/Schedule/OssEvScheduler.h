#pragma once

#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssEvaluation/Schedule/OssEvTileCache.h"
#include "OssEvaluation/Schedule/OssEvUnit.h"

#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <unordered_map>
#include <vector>

/// The engine's inside. One lock guards what is wanted and what is known; it is never held while
/// something is computed, read or told.
///
/// Units wait until their inputs are there, then in order in one of two queues: for the pool, or
/// for the thread that reads files. A unit that nobody wants any more is dropped, with everything
/// upstream that only it wanted.
class OssEvScheduler
{
public:
    // What is public takes the lock itself and may be called on any thread, also from a callback,
    // unless it says otherwise.

    OssEvScheduler(std::size_t cacheBytes, int threads);
    OssEvScheduler(const OssEvScheduler &) = delete;
    OssEvScheduler &operator=(const OssEvScheduler &) = delete;
    /// Not on a thread of the engine's: waits for them. Requests that are still open are told their
    /// end on the calling thread, but for those of which a callback is under way: there by whoever
    /// carries it out.
    ~OssEvScheduler();

    /// Only leaves the request behind: a worker plans it.
    OssEvEngine::Id start(OssEvRequest request);
    /// The end is told by a worker or the reader.
    void cancel(OssEvEngine::Id id);
    void setFocus(OssEvEngine::Id id, double x, double y);
    /// Not on a thread of the engine's: sleeps, without the lock, until the end has been told.
    void wait(OssEvEngine::Id id);

    /// Has a lock of its own.
    OssEvTileCache &cache() { return m_cache; }

    OssEvStatistics statistics() const;
    void resetStatistics();

private:
    using Unit = std::shared_ptr<OssEvUnit>;
    using Request = std::shared_ptr<OssEvRequestState>;
    using Lock = std::unique_lock<std::mutex>;
    /// What is to be called once the lock is let go: callbacks of requests.
    using Jobs = std::vector<std::function<void()>>;

    struct EarlierUnit
    {
        bool operator()(const Unit &a, const Unit &b) const
        {
            if (a->order < b->order || b->order < a->order)
                return a->order < b->order;
            return a->key < b->key;
        }
    };

    using Queue = std::set<Unit, EarlierUnit>;

    // Requests: OssEvScheduler_requests.cpp.

    /// Worker, without the lock; takes it when the plan is made.
    void plan(const Request &request);

    // Any thread, with the lock held. They add to `calls`, which whoever took the lock works off.

    void sortLeft(OssEvRequestState *request) const;
    void pump(const Request &request, Jobs *calls);
    bool deliverFromCache(const Request &request, int x, int y, Jobs *calls);
    void deliver(const Request &request, std::vector<OssEvArrival> arrivals, Jobs *calls);
    void end(const Request &request, const OssEvOutcome &outcome, Jobs *calls);
    void tellIfEnded(const Request &request, Jobs *calls);

    // Units: OssEvScheduler_units.cpp. With the lock held: what opens units on workers and the
    // reader, what drops them on any thread that cancels.

    Unit open(const std::shared_ptr<const OssEvPlan> &plan, int stage, int x, int y,
              const OssEvUnit::Order &order);
    void connectInputs(const Unit &unit);
    void connectWindow(const Unit &unit, int input, OssEvWindow *window);
    void connectSurface(const Unit &unit);
    void depend(const Unit &unit, const Unit &dependency);
    void makeReady(const Unit &unit);
    void hurry(const Unit &unit, const OssEvUnit::Order &order);
    void dropIfUnwanted(const Unit &unit);
    /// Worker or reader that ran the unit; the same for fail().
    void complete(const Unit &unit, const std::vector<OssEvUnitTile> &tiles, double seconds,
                  Jobs *calls);
    void passOn(const Unit &unit, const std::vector<OssEvUnitTile> &tiles);
    void fail(const Unit &unit, const std::string &error, Jobs *calls);
    void keepSurface(const OssEvKey &key, std::shared_ptr<const OssEvSurfaceMap> surface);
    std::shared_ptr<const OssEvSurfaceMap> findSurface(const OssEvKey &key);

    struct Task;

    // Threads: OssEvScheduler.cpp.

    // Any thread, with the lock held.

    void addJob(std::function<void()> job);
    void wakeWorker();
    Unit takeNext(Queue *queue);
    void count(const OssEvUnit &unit, std::size_t tiles);

    // Without the lock, which they take where they need it.

    /// A task of the pool: one job or one unit.
    void work();
    /// The reader's whole life.
    void readFiles();
    /// Worker or reader: runs the unit and takes the lock to tell what came of it.
    void run(const Unit &unit);

    // Without the lock, and they never take it. Of the unit they read what was set before it was
    // ready, and write its surface and times, which nobody else looks at while it runs.

    /// Worker.
    void runTiles(const Unit &unit, std::vector<OssEvUnitTile> *tiles);
    /// Worker.
    void runSurface(const Unit &unit);
    /// Reader.
    OssEvResult runImage(const Unit &unit, std::vector<OssEvUnitTile> *tiles);

    OssEvTileCache m_cache; ///< has a lock of its own
    const int m_threads;

    /// Guards everything from here to the pool.
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<OssEvEngine::Id, Request> m_requests;
    std::map<OssEvUnit::Key, Unit> m_units;
    Queue m_ready;
    Queue m_readyToRead;
    std::deque<std::function<void()>> m_jobs;
    /// Latest used last.
    std::list<std::pair<OssEvKey, std::shared_ptr<const OssEvSurfaceMap>>> m_surfaces;
    OssEvStatistics m_statistics;
    OssEvEngine::Id m_lastId = 0;
    int m_workers = 0;
    bool m_stopping = false;

    tbb::global_control m_parallelism;
    /// Given work with the lock held; runs it without.
    tbb::task_arena m_arena;
    std::thread m_reader;
};
