#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"

#include <array>
#include <memory>
#include <vector>

/// A curve for each channel, as samples at even distances; constant beyond them.
struct OssEvCurves
{
    static constexpr int Samples = 4097;

    /// Red, green, blue; and of what has one channel alone.
    std::array<std::vector<float>, 4> samples;
    double first = 0.0;
    double last = 1.0;

    /// Where the i-th sample stands.
    double place(int i) const { return first + (last - first) * i / (Samples - 1); }

    /// How many samples there are to 1.
    double density() const { return (Samples - 1) / (last - first); }
};

/// Takes colours through curves, by a mask as OssEvMasked has it. `last` must lie above `first`.
std::shared_ptr<const OssEvPointOperation> OssEvMakeCurves(OssEvCurves curves);
