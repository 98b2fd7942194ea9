#pragma once

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/Kernels/Smoothing.h"

/// Coverage of the mesh in a block, as weights for filters: what no face covers has no say in what
/// a face gets. Empty space between charts does not bleed into them.
class OssEvCoverageSource : public OssEvSmoothing::Source
{
public:
    /// Texels are `1 << reduction` of the surface's.
    OssEvCoverageSource(const OssEvSurfaceMap &surface, int reduction)
        : m_surface(surface)
        , m_reduction(reduction)
    {
    }

    void read(const OssEvRegion &region, const OssEvPlane &to) const override;

    bool isWhole(const OssEvRegion &region) const;

private:
    const OssEvSurfaceMap &m_surface;
    int m_reduction;
};

/// A channel of a grid times the coverage.
class OssEvCoveredSource : public OssEvSmoothing::Source
{
public:
    OssEvCoveredSource(const OssEvTileGrid &grid, int channel, const OssEvCoverageSource &coverage)
        : m_values(grid, channel)
        , m_coverage(coverage)
    {
    }

    void read(const OssEvRegion &region, const OssEvPlane &to) const override;

private:
    OssEvGridSource m_values;
    const OssEvCoverageSource &m_coverage;
};

/// Smooths a channel of the grid, by coverage where there is a surface. The grid was halved as often as
/// the smoothing wants it.
void OssEvSmoothCovered(const OssEvSmoothing &smoothing, const OssEvBlock &block,
                        const OssEvTileGrid &grid, int channel, const OssEvPlane &to);
