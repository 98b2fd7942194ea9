#include "OssEvaluation/Schedule/OssEvScheduler.h"

#include "OssEvaluation/Schedule/HandOver.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <new>

namespace {

constexpr const char *NotEnoughMemory = "there is not enough memory";

int threadsOrDefault(int threads)
{
    return threads > 0 ? threads : int(std::max(1U, std::thread::hardware_concurrency()));
}

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

/// What the pool runs.
struct OssEvScheduler::Task
{
    OssEvScheduler *scheduler;

    OSSEV_UNWATCHED void operator()() const
    {
        OssEvTakeOver(scheduler);
        scheduler->work();
    }
};

// The pool counts the thread that starts it, which here only hands work over.
OssEvScheduler::OssEvScheduler(std::size_t cacheBytes, int threads)
    : m_cache(cacheBytes)
    , m_threads(threadsOrDefault(threads))
    , m_parallelism(tbb::global_control::max_allowed_parallelism, std::size_t(m_threads) + 1)
    , m_arena(m_threads, 0)
    , m_reader([this] { readFiles(); })
{
}

OssEvScheduler::~OssEvScheduler()
{
    Jobs calls;
    Lock lock(m_mutex);
    m_stopping = true;
    const auto requests = m_requests;
    for (const auto &[id, request] : requests)
        end(request, {true, {}, {}}, &calls);
    lock.unlock();
    for (const auto &call : calls)
        call();
    m_changed.notify_all();
    m_reader.join();
    lock.lock();
    m_changed.wait(lock, [this] { return m_workers == 0; });
}

OssEvStatistics OssEvScheduler::statistics() const
{
    const Lock lock(m_mutex);
    return m_statistics;
}

void OssEvScheduler::resetStatistics()
{
    const Lock lock(m_mutex);
    m_statistics = {};
}

// Work that is neither a unit nor may happen on the caller's thread. With the lock held.
void OssEvScheduler::addJob(std::function<void()> job)
{
    m_jobs.push_back(std::move(job));
    wakeWorker();
}

// One task in the arena for each piece of work; which one it does is decided when it runs.
void OssEvScheduler::wakeWorker()
{
    ++m_workers;
    OssEvHandOver(this);
    m_arena.enqueue(Task{this});
}

void OssEvScheduler::work()
{
    Lock lock(m_mutex);
    if (!m_jobs.empty()) {
        const auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        job();
        lock.lock();
    } else if (const Unit unit = takeNext(&m_ready)) {
        lock.unlock();
        run(unit);
        lock.lock();
    }
    --m_workers;
    // While the lock is held: the scheduler may be gone as soon as it is not.
    if (m_workers == 0)
        m_changed.notify_all();
}

void OssEvScheduler::readFiles()
{
    Lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_stopping || !m_readyToRead.empty(); });
        if (m_stopping)
            return;
        const Unit unit = takeNext(&m_readyToRead);
        lock.unlock();
        run(unit);
        lock.lock();
    }
}

OssEvScheduler::Unit OssEvScheduler::takeNext(Queue *queue)
{
    if (queue->empty())
        return nullptr;
    const Unit unit = *queue->begin();
    queue->erase(queue->begin());
    unit->state = OssEvUnit::State::Running;
    return unit;
}

void OssEvScheduler::run(const Unit &unit)
{
    const auto start = std::chrono::steady_clock::now();
    std::vector<OssEvUnitTile> tiles;
    std::string error;
    try {
        if (unit->kind == OssEvUnit::Kind::Surface)
            runSurface(unit);
        else if (unit->kind == OssEvUnit::Kind::Image)
            error = runImage(unit, &tiles).error();
        else
            runTiles(unit, &tiles);
    } catch (const std::bad_alloc &) {
        error = NotEnoughMemory;
    } catch (const std::exception &fault) {
        error = fault.what();
    }
    const double seconds = secondsSince(start);

    Jobs calls;
    Lock lock(m_mutex);
    if (unit->state == OssEvUnit::State::Dropped)
        ++m_statistics.cancelledUnits;
    else if (error.empty())
        complete(unit, tiles, seconds, &calls);
    else
        fail(unit, error, &calls);
    lock.unlock();
    for (const auto &call : calls)
        call();
}

void OssEvScheduler::runTiles(const Unit &unit, std::vector<OssEvUnitTile> *tiles)
{
    *tiles = OssEvRunUnit(unit->place, unit->windows, unit->surface.get(), unit->cancel,
                          &unit->times);
}

void OssEvScheduler::runSurface(const Unit &unit)
{
    unit->surface = OssEvSurfaceMap::make(unit->plan->target().mesh, unit->plan->surfaceFrame(),
                                          &unit->cancel, unit->plan->target().bleed);
}

OssEvResult OssEvScheduler::runImage(const Unit &unit, std::vector<OssEvUnitTile> *tiles)
{
    const OssEvPlanStage &stage = unit->place.description();
    return unit->plan->target().images->read(stage.image, stage.imageReduction, unit->place.y,
                                             unit->cancel,
                                             [tiles](int x, int y, OssEvTilePointer tile) {
                                                 tiles->push_back({x, y, std::move(tile)});
                                             });
}

// With the lock held.
void OssEvScheduler::count(const OssEvUnit &unit, std::size_t tiles)
{
    if (unit.kind == OssEvUnit::Kind::Surface)
        return;
    const OssEvPlanStage &stage = unit.place.description();
    if (unit.kind == OssEvUnit::Kind::Image) {
        m_statistics.tilesRead += tiles;
        ++m_statistics.calls[stage.headKernel];
        return;
    }
    m_statistics.tilesComputed += tiles;
    const auto addCost = [&](int node, double seconds) {
        OssEvNodeCost &cost = m_statistics.costs[unit.plan->nodeName(node)];
        cost.seconds += seconds;
        cost.texels += tiles * OssEvTile::Texels;
    };
    if (stage.head != nullptr) {
        ++m_statistics.calls[stage.headKernel];
        addCost(stage.headNode, unit.times.head);
    }
    for (std::size_t i = 0; i < stage.steps.size(); ++i) {
        m_statistics.calls[stage.steps[i].kernel] += tiles;
        addCost(stage.steps[i].node, unit.times.steps[i]);
    }
}
