#pragma once

#include "WavePicture.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>

/// What the peers of ossa_bench_daily are measured in: nanoseconds of processor time for a texel.
namespace DailyWork {

constexpr int Edge = 2048;
constexpr int BlurDeviation = 8; ///< lengths are in texels
constexpr double SharpenDeviation = 2.0;
constexpr int GrowRadius = 4;
constexpr int MedianRadius = 3;
constexpr double Degrees = 30.0;
constexpr double WarpAmount = 0.05; ///< in widths of the picture

inline double best(const std::function<void()> &work)
{
    double seconds = 1e9;
    // What takes very long is not measured again.
    for (int round = 0; round < 3 && (round == 0 || seconds < 4.0); ++round) {
        const double start = processSeconds();
        work();
        seconds = std::min(seconds, processSeconds() - start);
    }
    return seconds * 1e9 / (double(Edge) * Edge);
}

using Figures = std::map<std::string, double>;

/// By kernel. A peer knows some of them.
Figures ofOpenImageIo();
Figures ofOpenCv();

} // namespace DailyWork
