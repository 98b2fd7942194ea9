#pragma once

#include "OssGraphLayout/OssLyGraph.h"

#include <vector>

/// A part that nothing joins to the others. What it consists of counts from its top left corner.
struct PackedPart
{
    struct Wire
    {
        OssLyPoint from;
        OssLyPoint to;
    };

    OssLyRect today;
    double width = 0.0;
    double height = 0.0;
    std::vector<OssLyRect> areas; ///< boxes, and frames that no other holds
    std::vector<Wire> wires;
    double x = 0.0; ///< the result
    double y = 0.0;
};

/// Puts parts beside and below each other, about as high as wide, in the order in which they stand today. Small ones
/// go where a larger one leaves room, off its wires. What fits where it stands today stays.
void packParts(std::vector<PackedPart> *parts, double gap);
