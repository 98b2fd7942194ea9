#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <array>
#include <string>
#include <vector>

/// The modes in which one colour is put over another, for what is no graph.
namespace OssEvMergeRows {

constexpr int Normal = 0;
/// Texels that run() takes at most.
constexpr int Most = 128;

/// Names in the order of their numbers.
OSSEVALUATION_EXPORT const std::vector<std::string> &modes();

/// Texels of which some lie over others. Premultiplied.
struct Row
{
    alignas(64) std::array<std::array<float, Most>, 4> base{};
    alignas(64) std::array<std::array<float, Most>, 4> over{};
    alignas(64) std::array<float, Most> mask{}; ///< how much of what lies over counts, 0 to 1
    alignas(64) std::array<std::array<float, Most>, 4> result{};
};

/// Sets the result of all Most texels. `luminance` is that of the space in which the colours are.
OSSEVALUATION_EXPORT void run(int mode, const OssEvWorkingSpace::Weights &luminance, Row *row);

} // namespace OssEvMergeRows
