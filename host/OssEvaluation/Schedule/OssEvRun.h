#pragma once

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Schedule/OssEvPlan.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <memory>
#include <vector>

/// Tiles of one input that a unit reads.
struct OssEvWindow
{
    OssEvKey key;
    /// In tiles.
    OssEvRegion tiles;
    std::vector<OssEvTilePointer> pointers;

    OssEvTilePointer &at(int x, int y)
    {
        return pointers[std::size_t(y - tiles.y) * std::size_t(tiles.width)
                        + std::size_t(x - tiles.x)];
    }

    const OssEvTilePointer &at(int x, int y) const
    {
        return pointers[std::size_t(y - tiles.y) * std::size_t(tiles.width)
                        + std::size_t(x - tiles.x)];
    }
};

/// Tiles of a stage that are computed at once.
struct OssEvUnitPlace
{
    const OssEvPlan *plan = nullptr;
    int stage = 0;
    /// In units of the stage.
    int x = 0;
    int y = 0;

    const OssEvPlanStage &description() const { return plan->stages()[std::size_t(stage)]; }

    /// In tiles, cut to the stage's frame. Any thread: reads the plan alone, as windows() does.
    OssEvRegion tiles() const;

    /// Tiles that are needed of each input of the stage; the pointers are still null.
    std::vector<OssEvWindow> windows() const;
};

struct OssEvUnitTile
{
    int x = 0;
    int y = 0;
    OssEvTilePointer tile;
};

/// Seconds that parts of a unit took. Those of the steps are reckoned from one strip in sixteen.
struct OssEvRunTimes
{
    double head = 0.0;
    std::vector<double> steps;
};

/// Computes a unit from its inputs, on the calling thread, which is a worker. Takes no lock, is
/// called with none held, and starts no thread. Returns an incomplete result when cancelled; may
/// throw std::bad_alloc.
std::vector<OssEvUnitTile> OssEvRunUnit(const OssEvUnitPlace &place,
                                        const std::vector<OssEvWindow> &windows,
                                        const OssEvSurfaceMap *surface, const OssEvCancel &cancel,
                                        OssEvRunTimes *times);
