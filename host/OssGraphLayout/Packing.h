#pragma once

#include "OssGraphLayout/OssLyGraph.h"

#include <vector>

struct PackedPart
{
    OssLyRect today;
    double width = 0.0;
    double height = 0.0;
    double x = 0.0; ///< the result
    double y = 0.0;
};

/// Puts rectangles beside and below each other, about as high as wide, in the order in which they stand
/// today.
void packParts(std::vector<PackedPart> *parts, double gap);
