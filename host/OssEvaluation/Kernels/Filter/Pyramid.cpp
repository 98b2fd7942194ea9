#include "OssEvaluation/Kernels/Filter/Pyramid.h"

#include <algorithm>
#include <cmath>

std::vector<OssEvTap> OssEvPyramid::taps(std::size_t input, int levels)
{
    std::vector<OssEvTap> taps;
    taps.reserve(std::size_t(levels));
    for (int level = 0; level < levels; ++level)
        taps.push_back({input, level});
    return taps;
}

OssEvPyramid::OssEvPyramid(const OssEvBlock &block, std::size_t first, int levels,
                           OssEvTileGrid::Border border, OssEvScratch *scratch)
{
    m_samplers.reserve(std::size_t(levels));
    for (std::size_t i = 0; i < std::size_t(levels); ++i)
        m_samplers.emplace_back(block.inputs[first + i], border, scratch);
}

OssEvSampler::Texel OssEvPyramid::at(double x, double y, double level)
{
    const double within = std::clamp(level, 0.0, double(m_samplers.size() - 1));
    const auto lower = std::size_t(within);
    const auto unit = double(1U << lower);
    OssEvSampler::Texel texel = m_samplers[lower].at(x / unit, y / unit);
    const auto part = float(within - double(lower));
    if (part < 1e-3F)
        return texel;
    const OssEvSampler::Texel upper = m_samplers[lower + 1].at(x / unit / 2.0, y / unit / 2.0);
    for (std::size_t k = 0; k < 4; ++k)
        texel[k] += (upper[k] - texel[k]) * part;
    return texel;
}
