#include "OssEvaluation/Kernels/Coverage.h"

#include <algorithm>

void OssEvCoverageSource::read(const OssEvRegion &region, const OssEvPlane &to) const
{
    const OssEvFrame &frame = m_surface.frame();
    const int size = 1 << m_reduction; // not by shifts: places may be negative
    const int half = size / 2;
    for (int y = 0; y < region.height; ++y) {
        const int line = std::clamp((region.y + y) * size + half, 0, frame.height - 1);
        float *row = to.row(y);
        for (int x = 0; x < region.width; ++x) {
            const int column = std::clamp((region.x + x) * size + half, 0, frame.width - 1);
            row[x] = m_surface.isCovered(column, line) ? 1.0F : 0.0F;
        }
    }
}

bool OssEvCoverageSource::isWhole(const OssEvRegion &region) const
{
    const OssEvFrame &frame = m_surface.frame();
    const int size = 1 << m_reduction;
    const OssEvRegion texels = OssEvRegion{region.x * size, region.y * size, region.width * size,
                                           region.height * size}
                                   .intersected(frame.region());
    for (int y = texels.y; y < texels.bottom(); ++y) {
        for (int x = texels.x; x < texels.right(); ++x) {
            if (!m_surface.isCovered(x, y))
                return false;
        }
    }
    return true;
}

void OssEvCoveredSource::read(const OssEvRegion &region, const OssEvPlane &to) const
{
    OssEvScratch scratch;
    const OssEvPlane weights(&scratch, region.width, region.height);
    m_coverage.read(region, weights);
    m_values.read(region, to);
    for (int y = 0; y < region.height; ++y) {
        float *row = to.row(y);
        const float *weight = weights.row(y);
        for (int x = 0; x < region.width; ++x)
            row[x] *= weight[x];
    }
}

void OssEvSmoothCovered(const OssEvSmoothing &smoothing, const OssEvBlock &block,
                        const OssEvTileGrid &grid, int channel, const OssEvPlane &to)
{
    if (block.surface == nullptr) {
        smoothing.run(OssEvGridSource(grid, channel), block.region, to);
        return;
    }
    const OssEvCoverageSource coverage(*block.surface, smoothing.reduction());
    if (coverage.isWhole(smoothing.needed(block.region))) {
        smoothing.run(OssEvGridSource(grid, channel), block.region, to);
        return;
    }
    constexpr float Smallest = 1e-3F;
    OssEvScratch scratch;
    const OssEvPlane weights(&scratch, to.width, to.height);
    const OssEvPlane plain(&scratch, to.width, to.height);
    smoothing.run(coverage, block.region, weights);
    smoothing.run(OssEvGridSource(grid, channel), block.region, plain);
    smoothing.run(OssEvCoveredSource(grid, channel, coverage), block.region, to);
    for (int y = 0; y < to.height; ++y) {
        for (int x = 0; x < to.width; ++x) {
            const float weight = weights.row(y)[x];
            float &value = to.row(y)[x];
            value = weight > Smallest ? value / weight : plain.row(y)[x];
        }
    }
}
