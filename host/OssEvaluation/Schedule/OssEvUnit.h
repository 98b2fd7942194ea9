#pragma once

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/Schedule/OssEvRun.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvKey.h"

#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

struct OssEvRequestState;

/// What the scheduler computes at once: tiles of a stage, rows of an image, the map of a surface.
/// All of it but `cancel` belongs to the scheduler's lock; while a unit runs, its worker alone
/// reads the inputs.
struct OssEvUnit
{
    enum class Kind { Tiles, Image, Surface };

    enum class State { Waiting, Ready, Running, Done, Dropped };

    struct Key
    {
        OssEvKey key;
        int x = 0;
        int y = 0;
        /// Tiles along an edge: the same stage may be computed in different portions.
        int size = 1;

        bool operator<(const Key &other) const
        {
            return std::tie(key, x, y, size) < std::tie(other.key, other.x, other.y, other.size);
        }
    };

    /// Smaller ones first.
    struct Order
    {
        int priority = 0;
        std::uint64_t request = 0;
        std::uint64_t number = 0;

        bool operator<(const Order &other) const
        {
            return std::tie(priority, request, number)
                   < std::tie(other.priority, other.request, other.number);
        }
    };

    Kind kind = Kind::Tiles;
    State state = State::Waiting;
    Key key;
    Order order;
    std::shared_ptr<const OssEvPlan> plan;
    OssEvUnitPlace place;
    std::vector<OssEvWindow> windows;
    std::shared_ptr<const OssEvSurfaceMap> surface;
    OssEvCancel cancel;
    OssEvRunTimes times; ///< of one that is done

    /// Units whose results are still missing.
    int missing = 0;
    std::vector<std::shared_ptr<OssEvUnit>> dependencies;
    std::vector<OssEvUnit *> dependents;
    std::vector<std::shared_ptr<OssEvRequestState>> waiters;

    bool isWanted() const { return !dependents.empty() || !waiters.empty(); }
};

/// A request on its way. Belongs to the scheduler's lock.
struct OssEvRequestState
{
    OssEvEngine::Id id = 0;
    OssEvRequest request;
    std::shared_ptr<const OssEvPlan> plan;
    /// Units of the target that were not opened yet, the next one last.
    std::vector<std::pair<int, int>> left;
    std::vector<std::shared_ptr<OssEvUnit>> open;
    OssEvRegion tiles;
    /// Tiles that were told, row by row.
    std::vector<bool> told;
    int done = 0;
    int total = 0;
    std::uint64_t opened = 0;
    int callbacks = 0;
    OssEvOutcome outcome;
    bool ended = false;
};
