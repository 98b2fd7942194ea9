#pragma once

#include "OssGraphLayout/OssGraphLayout_export.h"
#include "OssGraphLayout/OssLyGraph.h"

#include <vector>

/// Layouts of graphs in layers: wires run to the right, few of them cross, long ones run level. The same graph
/// always gives the same.
namespace OssLyLayout {

/// Members of a frame stand in it and nothing else does; frames that do not hold each other lie apart. Parts
/// that nothing joins are packed beside each other. Starts from the order in which things stand today, so small
/// edits move little and what is arranged already stays. What stands furthest right of those that feed nothing
/// keeps its place. Ten thousand nodes take half a second.
OSSGRAPHLAYOUT_EXPORT OssLyPlaces arranged(const OssLyGraph &graph,
                                           const OssLyOptions &options = {});

/// For each wire that runs through nodes the points by which it runs around them, from its source on; empty for
/// others, and where there is no way around. A point is the middle of something `size` wide and high.
OSSGRAPHLAYOUT_EXPORT std::vector<std::vector<OssLyPoint>> detours(
    const OssLyGraph &graph, const std::vector<OssLyRect> &places, double size);

} // namespace OssLyLayout
