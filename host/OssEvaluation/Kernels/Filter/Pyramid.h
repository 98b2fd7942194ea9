#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/Kernels/Sampler.h"

#include <vector>

/// An input at its size, at half of it and so on, read at any place and scale between them.
class OssEvPyramid
{
public:
    /// The taps of an input for so many levels.
    static std::vector<OssEvTap> taps(std::size_t input, int levels);

    /// Of the taps from `first` on; the block must outlive the pyramid.
    OssEvPyramid(const OssEvBlock &block, std::size_t first, int levels,
                 OssEvTileGrid::Border border, OssEvScratch *scratch);

    /// x and y in texels of the frame; at level 1 texels are two by two of the input's.
    OssEvSampler::Texel at(double x, double y, double level);

private:
    std::vector<OssEvSampler> m_samplers;
};
