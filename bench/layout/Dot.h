#pragma once

#include "OssGraphLayout/OssLyGraph.h"

#include <QString>

#include <vector>

/// Another program's layout of the same boxes, with the same gaps and with ports in the same order, to measure
/// against: `dot`, where it is installed.
namespace Dot {

bool isInstalled();
/// Where the nodes would stand; empty when it took longer than a minute. `seconds`: processor time.
std::vector<OssLyRect> places(const OssLyGraph &graph, const QString &folder, double *seconds);

} // namespace Dot
