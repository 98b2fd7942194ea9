#pragma once

#include "OssGraphLayout/OssGraphLayout_export.h"
#include "OssGraphLayout/OssLyGraph.h"

#include <vector>

/// What makes a drawn graph hard to read. Wires are straight lines between their ports.
struct OssLyMeasure
{
    int crossings = 0;
    int throughNodes = 0; ///< pairs of a wire and a node that is none of its ends
    int backward = 0;     ///< wires that end further left than they begin
    double width = 0.0;
    double height = 0.0;
};

/// Nodes that only look, and their wires, do not count.
OSSGRAPHLAYOUT_EXPORT OssLyMeasure ossLyMeasured(const OssLyGraph &graph,
                                                 const std::vector<OssLyRect> &places);
