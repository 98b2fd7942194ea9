#include "OssEvaluation/Kernels/Halving.h"

#include "OssEvaluation/Kernels/Convolve.h"
#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <algorithm>
#include <cmath>

namespace {

class Halving : public OssEvAreaOperation
{
public:
    Halving()
        : OssEvAreaOperation({{0, 0}})
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return {2 * block.x - 1, 2 * block.y - 1, 2 * block.width + 2, 2 * block.height + 2};
    }

    void run(const OssEvBlock &block) const override
    {
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            OssEvScratch scratch;
            const OssEvRegion region = needed(0, block.region);
            const OssEvPlane from(&scratch, region.width, region.height);
            block.inputs[0].assemble(channel, region, OssEvTileGrid::Border::Clamp, from.data,
                                     from.stride);
            const OssEvPlane to(block.output[std::size_t(channel)], block.region.width,
                                block.region.height, block.stride);
            const OssEvPlane between(&scratch, from.width, to.height);
            OssEvConvolve::halve(from, between, to);
        }
    }
};

/// Source texel before a place and the part of the next one, for each column or row of a block.
struct Steps
{
    std::vector<int> texels;
    std::vector<float> parts;

    Steps(int first, int count, int from, int to)
    {
        const double step = double(from) / to;
        for (int i = 0; i < count; ++i) {
            const double place = (first + i + 0.5) * step - 0.5;
            texels.push_back(int(std::floor(place)));
            parts.push_back(float(place - std::floor(place)));
        }
    }
};

class Resampling : public OssEvAreaOperation
{
public:
    Resampling(const OssEvFrame &from, const OssEvFrame &to)
        : OssEvAreaOperation({{0, 0}})
        , m_from(from)
        , m_to(to)
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        const double x = double(m_from.width) / m_to.width;
        const double y = double(m_from.height) / m_to.height;
        const int left = int(std::floor((block.x + 0.5) * x - 0.5));
        const int top = int(std::floor((block.y + 0.5) * y - 0.5));
        const int right = int(std::floor((block.right() - 0.5) * x - 0.5)) + 2;
        const int bottom = int(std::floor((block.bottom() - 0.5) * y - 0.5)) + 2;
        return {left, top, right - left, bottom - top};
    }

    void run(const OssEvBlock &block) const override
    {
        const OssEvRegion &to = block.region;
        const OssEvRegion region = needed(0, to);
        const Steps across(to.x, to.width, m_from.width, m_to.width);
        const Steps down(to.y, to.height, m_from.height, m_to.height);
        OssEvScratch scratch;
        const OssEvPlane from(&scratch, region.width, region.height);
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            block.inputs[0].assemble(channel, region, OssEvTileGrid::Border::Clamp, from.data,
                                     from.stride);
            for (int y = 0; y < to.height; ++y) {
                const float *upper = from.row(down.texels[std::size_t(y)] - region.y) - region.x;
                const float *lower = upper + from.stride;
                const float t = down.parts[std::size_t(y)];
                float *target = block.output[std::size_t(channel)]
                                + std::ptrdiff_t(y) * block.stride;
                for (int x = 0; x < to.width; ++x) {
                    const int i = across.texels[std::size_t(x)];
                    const float s = across.parts[std::size_t(x)];
                    const float a = upper[i] + (upper[i + 1] - upper[i]) * s;
                    const float b = lower[i] + (lower[i + 1] - lower[i]) * s;
                    target[x] = a + (b - a) * t;
                }
            }
        }
    }

private:
    OssEvFrame m_from;
    OssEvFrame m_to;
};

} // namespace

std::shared_ptr<const OssEvAreaOperation> OssEvHidden::halving()
{
    static const auto operation = std::make_shared<Halving>();
    return operation;
}

std::shared_ptr<const OssEvAreaOperation> OssEvHidden::resampling(const OssEvFrame &from,
                                                                  const OssEvFrame &to)
{
    return std::make_shared<Resampling>(from, to);
}
