#include "OssEvaluation/Schedule/OssEvScheduler.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int Size = OssEvTile::Size;

// Target units in work at a time: enough to keep the pool busy while one waits for a file, few
// enough that what was computed for one is still at hand.
int windowOf(int threads)
{
    return 2 * threads + 2;
}

OssEvRegion tilesOf(const OssEvRequest &request, const OssEvFrame &frame)
{
    const OssEvRegion wanted = request.region.isEmpty()
                                   ? frame.region()
                                   : request.region.intersected(frame.region());
    if (wanted.isEmpty())
        return {};
    const int left = wanted.x / Size;
    const int top = wanted.y / Size;
    return {left, top, (wanted.right() - 1) / Size - left + 1,
            (wanted.bottom() - 1) / Size - top + 1};
}

} // namespace

OssEvEngine::Id OssEvScheduler::start(OssEvRequest request)
{
    auto state = std::make_shared<OssEvRequestState>();
    state->request = std::move(request);
    const Lock lock(m_mutex);
    state->id = ++m_lastId;
    m_requests[state->id] = state;
    // Planning may look at files: not on the caller's thread.
    addJob([this, state] { plan(state); });
    return state->id;
}

void OssEvScheduler::cancel(OssEvEngine::Id id)
{
    Jobs calls;
    const Lock lock(m_mutex);
    const auto found = m_requests.find(id);
    if (found == m_requests.end())
        return;
    end(found->second, {true, {}, {}}, &calls);
    for (auto &call : calls)
        addJob(std::move(call));
}

void OssEvScheduler::setFocus(OssEvEngine::Id id, double x, double y)
{
    const Lock lock(m_mutex);
    const auto found = m_requests.find(id);
    if (found == m_requests.end())
        return;
    found->second->request.focusX = x;
    found->second->request.focusY = y;
    sortLeft(found->second.get());
}

void OssEvScheduler::wait(OssEvEngine::Id id)
{
    Lock lock(m_mutex);
    m_changed.wait(lock, [this, id] { return m_requests.count(id) == 0; });
}

void OssEvScheduler::plan(const Request &request)
{
    std::shared_ptr<const OssEvPlan> plan;
    const OssEvResult result = OssEvPlan::make(request->request.target, &plan);
    Jobs calls;
    Lock lock(m_mutex);
    if (!request->ended && !result)
        end(request, {false, result.error(), result.node()}, &calls);
    if (!request->ended) {
        request->plan = std::move(plan);
        const OssEvPlanStage &stage = request->plan->stages().back();
        request->tiles = tilesOf(request->request, stage.frame);
        const int size = stage.isImage ? 1 : stage.unitTiles();
        const OssEvRegion &tiles = request->tiles;
        for (int y = tiles.y / size; y * size < tiles.bottom(); ++y) {
            for (int x = tiles.x / size; x * size < tiles.right(); ++x)
                request->left.emplace_back(x, y);
        }
        request->total = tiles.width * tiles.height;
        request->told.assign(std::size_t(request->total), false);
        sortLeft(request.get());
        pump(request, &calls);
    }
    lock.unlock();
    for (const auto &call : calls)
        call();
}

// What comes next stands last.
void OssEvScheduler::sortLeft(OssEvRequestState *request) const
{
    if (request->plan == nullptr)
        return;
    if (request->request.order == OssEvRequest::Order::Rows) {
        std::sort(request->left.begin(), request->left.end(), [](const auto &a, const auto &b) {
            return std::make_pair(a.second, a.first) > std::make_pair(b.second, b.first);
        });
        return;
    }
    const OssEvPlanStage &stage = request->plan->stages().back();
    const double size = Size * (stage.isImage ? 1 : stage.unitTiles());
    const double focusX = request->request.focusX / size - 0.5;
    const double focusY = request->request.focusY / size - 0.5;
    const auto distance = [focusX, focusY](const std::pair<int, int> &unit) {
        const double x = unit.first - focusX;
        const double y = unit.second - focusY;
        return x * x + y * y;
    };
    std::stable_sort(
        request->left.begin(), request->left.end(),
        [&distance](const auto &a, const auto &b) { return distance(a) > distance(b); });
}

// Opens units of the target until enough are in work.
void OssEvScheduler::pump(const Request &request, Jobs *calls)
{
    while (!request->ended && !request->left.empty()
           && int(request->open.size()) < windowOf(m_threads)) {
        const auto [x, y] = request->left.back();
        request->left.pop_back();
        if (deliverFromCache(request, x, y, calls))
            continue;
        const OssEvUnit::Order order{-request->request.priority, request->id, request->opened++};
        const int stage = int(request->plan->stages().size()) - 1;
        const Unit unit = open(request->plan, stage, x, y, order);
        // Several tiles of an image may come from one unit.
        if (std::find(request->open.begin(), request->open.end(), unit) == request->open.end()) {
            unit->waiters.push_back(request);
            request->open.push_back(unit);
        }
    }
    if (!request->ended && request->done == request->total)
        end(request, {}, calls);
}

bool OssEvScheduler::deliverFromCache(const Request &request, int x, int y, Jobs *calls)
{
    const auto &stages = request->plan->stages();
    const OssEvPlanStage &stage = stages.back();
    const OssEvUnitPlace place{request->plan.get(), int(stages.size()) - 1, x, y};
    const OssEvRegion tiles = place.tiles().intersected(request->tiles);
    std::vector<OssEvArrival> arrivals;
    for (int row = tiles.y; row < tiles.bottom(); ++row) {
        for (int column = tiles.x; column < tiles.right(); ++column) {
            OssEvTilePointer tile = m_cache.find({stage.key, column, row});
            if (tile == nullptr)
                return false;
            arrivals.push_back({column, row, std::move(tile), stage.frame});
        }
    }
    m_statistics.tilesFromCache += arrivals.size();
    deliver(request, std::move(arrivals), calls);
    return true;
}

void OssEvScheduler::deliver(const Request &request, std::vector<OssEvArrival> arrivals,
                             Jobs *calls)
{
    // The rows of an image may bring a tile that the cache has brought before.
    const auto isTold = [&request](const OssEvArrival &arrival) {
        const OssEvRegion &tiles = request->tiles;
        const int index = (arrival.y - tiles.y) * tiles.width + arrival.x - tiles.x;
        const bool before = request->told[std::size_t(index)];
        request->told[std::size_t(index)] = true;
        return before;
    };
    arrivals.erase(std::remove_if(arrivals.begin(), arrivals.end(), isTold), arrivals.end());
    request->done += int(arrivals.size());
    ++request->callbacks;
    const int done = request->done;
    calls->push_back([this, request, arrivals = std::move(arrivals), done] {
        for (const OssEvArrival &arrival : arrivals) {
            if (request->request.onTile)
                request->request.onTile(arrival);
        }
        if (request->request.onProgress)
            request->request.onProgress(done, request->total);
        Jobs next;
        Lock lock(m_mutex);
        --request->callbacks;
        tellIfEnded(request, &next);
        lock.unlock();
        for (const auto &call : next)
            call();
    });
}

// Lets go of everything the request still wanted.
void OssEvScheduler::end(const Request &request, const OssEvOutcome &outcome, Jobs *calls)
{
    if (request->ended)
        return;
    request->ended = true;
    request->outcome = outcome;
    request->left.clear();
    const std::vector<Unit> open = std::move(request->open);
    request->open.clear();
    for (const Unit &unit : open) {
        auto &waiters = unit->waiters;
        waiters.erase(std::remove(waiters.begin(), waiters.end(), request), waiters.end());
        dropIfUnwanted(unit);
    }
    tellIfEnded(request, calls);
}

// The outcome is told once no callback is under way any more.
void OssEvScheduler::tellIfEnded(const Request &request, Jobs *calls)
{
    if (!request->ended || request->callbacks > 0)
        return;
    // So that nobody else comes to the same conclusion.
    request->callbacks = 1;
    calls->push_back([this, request] {
        if (request->request.onFinished)
            request->request.onFinished(request->outcome);
        const Lock lock(m_mutex);
        m_requests.erase(request->id);
        m_changed.notify_all();
    });
}
