#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <string>
#include <vector>

/// Names of files that hold one patch each.
namespace OssEvUdim {

/// What stands for the number.
constexpr const char *Placeholder = "<UDIM>";

/// "brick.<UDIM>.exr" of "brick.1002.exr", "brick_1002.exr" or "brick-1002.exr"; the name itself
/// where it has no patch number right before its suffix. Behind anything but a dot a number may mean
/// anything: it counts only when there is a file of patch 1001 beside it.
OSSEVALUATION_EXPORT std::string pattern(const std::string &path);

OSSEVALUATION_EXPORT bool isPattern(const std::string &path);

/// The name with the number in all places of "<UDIM>" or "%(UDIM)d".
OSSEVALUATION_EXPORT std::string file(const std::string &pattern, int patch);

/// Patches whose files exist, ascending.
OSSEVALUATION_EXPORT std::vector<int> patches(const std::string &pattern);

} // namespace OssEvUdim
