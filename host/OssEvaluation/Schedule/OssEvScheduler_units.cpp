#include "OssEvaluation/Schedule/OssEvScheduler.h"

#include <algorithm>
#include <set>
#include <utility>

namespace {

// Maps of surfaces beside the cache: those of the patches that were looked at last.
constexpr std::size_t SurfaceBytes = std::size_t(256) << 20;

} // namespace

OssEvScheduler::Unit OssEvScheduler::open(const std::shared_ptr<const OssEvPlan> &plan, int stage,
                                          int x, int y, const OssEvUnit::Order &order)
{
    const OssEvPlanStage &description = plan->stages()[std::size_t(stage)];
    if (description.isImage) {
        // A whole row of tiles at a time, or everything.
        x = 0;
        y = description.isSequential ? 0 : y;
    }
    const OssEvUnit::Key key{description.key, x, y,
                             description.isImage ? 0 : description.unitTiles()};
    const auto found = m_units.find(key);
    if (found != m_units.end()) {
        ++m_statistics.joins;
        hurry(found->second, order);
        return found->second;
    }
    auto unit = std::make_shared<OssEvUnit>();
    unit->kind = description.isImage ? OssEvUnit::Kind::Image : OssEvUnit::Kind::Tiles;
    unit->key = key;
    unit->order = order;
    unit->plan = plan;
    unit->place = {plan.get(), stage, x, y};
    m_units[key] = unit;
    if (!description.isImage)
        connectInputs(unit);
    if (unit->missing == 0)
        makeReady(unit);
    return unit;
}

void OssEvScheduler::connectInputs(const Unit &unit)
{
    const OssEvPlanStage &stage = unit->place.description();
    unit->windows = unit->place.windows();
    for (std::size_t i = 0; i < unit->windows.size(); ++i)
        connectWindow(unit, stage.inputs[i], &unit->windows[i]);
    if (stage.usesSurface)
        connectSurface(unit);
}

// Tiles that are there, and units that will make the others.
void OssEvScheduler::connectWindow(const Unit &unit, int input, OssEvWindow *window)
{
    const OssEvPlanStage &source = unit->plan->stages()[std::size_t(input)];
    const int size = source.isImage ? 1 : source.unitTiles();
    std::set<std::pair<int, int>> opened;
    for (int y = window->tiles.y; y < window->tiles.bottom(); ++y) {
        for (int x = window->tiles.x; x < window->tiles.right(); ++x) {
            OssEvTilePointer tile = m_cache.find({source.key, x, y});
            if (tile != nullptr) {
                ++m_statistics.tilesFromCache;
                window->at(x, y) = std::move(tile);
                continue;
            }
            const std::pair<int, int> place{source.isImage ? 0 : x / size,
                                            source.isSequential ? 0 : y / size};
            if (opened.insert(place).second)
                depend(unit, open(unit->plan, input, place.first, place.second, unit->order));
        }
    }
}

void OssEvScheduler::connectSurface(const Unit &unit)
{
    const OssEvKey surfaceKey = unit->plan->surfaceKey();
    unit->surface = findSurface(surfaceKey);
    if (unit->surface != nullptr)
        return;
    const OssEvUnit::Key key{surfaceKey, 0, 0, 0};
    const auto found = m_units.find(key);
    if (found != m_units.end()) {
        hurry(found->second, unit->order);
        depend(unit, found->second);
        return;
    }
    auto surface = std::make_shared<OssEvUnit>();
    surface->kind = OssEvUnit::Kind::Surface;
    surface->key = key;
    surface->order = unit->order;
    surface->plan = unit->plan;
    surface->place = unit->place;
    m_units[key] = surface;
    depend(unit, surface);
    makeReady(surface);
}

void OssEvScheduler::depend(const Unit &unit, const Unit &dependency)
{
    // An image's unit may answer for several places of one window.
    if (std::find(unit->dependencies.begin(), unit->dependencies.end(), dependency)
        != unit->dependencies.end())
        return;
    unit->dependencies.push_back(dependency);
    dependency->dependents.push_back(unit.get());
    ++unit->missing;
}

void OssEvScheduler::makeReady(const Unit &unit)
{
    unit->state = OssEvUnit::State::Ready;
    if (unit->kind == OssEvUnit::Kind::Image) {
        m_readyToRead.insert(unit);
        m_changed.notify_all();
    } else {
        m_ready.insert(unit);
        wakeWorker();
    }
}

// Takes over an earlier order, for everything upstream that is still to be done.
void OssEvScheduler::hurry(const Unit &unit, const OssEvUnit::Order &order)
{
    std::vector<Unit> open{unit};
    while (!open.empty()) {
        const Unit current = open.back();
        open.pop_back();
        if (!(order < current->order) || current->state == OssEvUnit::State::Done)
            continue;
        Queue &queue = current->kind == OssEvUnit::Kind::Image ? m_readyToRead : m_ready;
        const bool queued = current->state == OssEvUnit::State::Ready;
        if (queued)
            queue.erase(current);
        current->order = order;
        if (queued)
            queue.insert(current);
        open.insert(open.end(), current->dependencies.begin(), current->dependencies.end());
    }
}

void OssEvScheduler::dropIfUnwanted(const Unit &unit)
{
    std::vector<Unit> open{unit};
    while (!open.empty()) {
        const Unit current = open.back();
        open.pop_back();
        const bool over = current->state == OssEvUnit::State::Done
                          || current->state == OssEvUnit::State::Dropped;
        if (over || current->isWanted())
            continue;
        if (current->state == OssEvUnit::State::Ready)
            (current->kind == OssEvUnit::Kind::Image ? m_readyToRead : m_ready).erase(current);
        current->cancel.cancel();
        current->state = OssEvUnit::State::Dropped;
        m_units.erase(current->key);
        for (const Unit &dependency : current->dependencies) {
            auto &dependents = dependency->dependents;
            dependents.erase(std::remove(dependents.begin(), dependents.end(), current.get()),
                             dependents.end());
            open.push_back(dependency);
        }
        current->dependencies.clear();
    }
}

void OssEvScheduler::complete(const Unit &unit, const std::vector<OssEvUnitTile> &tiles,
                              double seconds, Jobs *calls)
{
    count(*unit, tiles.size());
    unit->state = OssEvUnit::State::Done;
    m_units.erase(unit->key);
    if (unit->kind == OssEvUnit::Kind::Surface) {
        keepSurface(unit->key.key, unit->surface);
    } else {
        const double cost = seconds * 1e9 / double(std::max<std::size_t>(1, tiles.size()));
        for (const OssEvUnitTile &done : tiles)
            m_cache.insert({unit->key.key, done.x, done.y}, done.tile, cost);
    }
    passOn(unit, tiles);
    const auto waiters = std::move(unit->waiters);
    unit->waiters.clear();
    for (const Request &request : waiters) {
        auto &open = request->open;
        open.erase(std::remove(open.begin(), open.end(), unit), open.end());
        const OssEvFrame &frame = request->plan->frame();
        std::vector<OssEvArrival> arrivals;
        for (const OssEvUnitTile &done : tiles) {
            if (request->tiles.contains(done.x, done.y))
                arrivals.push_back({done.x, done.y, done.tile, frame});
        }
        deliver(request, std::move(arrivals), calls);
        pump(request, calls);
    }
}

// Hands the result to the units that wait for it.
void OssEvScheduler::passOn(const Unit &unit, const std::vector<OssEvUnitTile> &tiles)
{
    const auto dependents = std::move(unit->dependents);
    unit->dependents.clear();
    for (OssEvUnit *dependent : dependents) {
        if (unit->kind == OssEvUnit::Kind::Surface)
            dependent->surface = unit->surface;
        for (OssEvWindow &window : dependent->windows) {
            if (window.key != unit->key.key)
                continue;
            for (const OssEvUnitTile &done : tiles) {
                if (window.tiles.contains(done.x, done.y))
                    window.at(done.x, done.y) = done.tile;
            }
        }
        const Unit shared = m_units.at(dependent->key);
        auto &dependencies = shared->dependencies;
        dependencies.erase(std::remove(dependencies.begin(), dependencies.end(), unit),
                           dependencies.end());
        if (--shared->missing == 0)
            makeReady(shared);
    }
}

// Everything that waits for the unit fails with it.
void OssEvScheduler::fail(const Unit &unit, const std::string &error, Jobs *calls)
{
    const std::string &name = unit->plan->nodeName(unit->place.description().node);
    const OssEvOutcome outcome{false, OssEvResult::prefix(name) + error, name};
    std::set<Request> requests;
    std::vector<const OssEvUnit *> open{unit.get()};
    std::set<const OssEvUnit *> seen{unit.get()};
    while (!open.empty()) {
        const OssEvUnit *current = open.back();
        open.pop_back();
        requests.insert(current->waiters.begin(), current->waiters.end());
        for (const OssEvUnit *dependent : current->dependents) {
            if (seen.insert(dependent).second)
                open.push_back(dependent);
        }
    }
    for (const Request &request : requests)
        end(request, outcome, calls);
}

void OssEvScheduler::keepSurface(const OssEvKey &key,
                                 std::shared_ptr<const OssEvSurfaceMap> surface)
{
    m_surfaces.emplace_back(key, std::move(surface));
    std::size_t bytes = 0;
    for (const auto &[known, map] : m_surfaces)
        bytes += map->bytes();
    while (bytes > SurfaceBytes && m_surfaces.size() > 1) {
        bytes -= m_surfaces.front().second->bytes();
        m_surfaces.pop_front();
    }
}

std::shared_ptr<const OssEvSurfaceMap> OssEvScheduler::findSurface(const OssEvKey &key)
{
    const auto found = std::find_if(m_surfaces.begin(), m_surfaces.end(),
                                    [&key](const auto &entry) { return entry.first == key; });
    if (found == m_surfaces.end())
        return nullptr;
    m_surfaces.splice(m_surfaces.end(), m_surfaces, found);
    return found->second;
}
