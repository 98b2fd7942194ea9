#pragma once

#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <array>
#include <vector>

class OssEvSurfaceMap;

/// Reads single texels anywhere in a grid, linearly between texel centres. For kernels that move
/// texels around; those that walk in rows assemble a region instead.
class OssEvSampler
{
public:
    using Texel = std::array<float, 4>;

    /// Both must outlive the sampler.
    OssEvSampler(const OssEvTileGrid &grid, OssEvTileGrid::Border border, OssEvScratch *scratch);

    /// x and y in texels of the grid's frame: the first texel's centre is (0.5, 0.5).
    Texel at(double x, double y);

    /// The same where texels without a face have no say; the nearest covered texel answers where
    /// there is no other.
    Texel covered(double x, double y, const OssEvSurfaceMap &surface);

private:
    Texel texel(int x, int y);
    const float *plane(int tileX, int tileY);

    const OssEvTileGrid &m_grid;
    OssEvTileGrid::Border m_border;
    OssEvScratch *m_scratch;
    /// Float planes of the tiles that were touched.
    std::vector<const float *> m_planes;
};

/// The frame after halving so many times.
OssEvFrame OssEvReduced(OssEvFrame frame, int times);

/// Halvings after which texels stepped over by `factor` at a time are next to each other.
int OssEvReductionFor(double factor);
