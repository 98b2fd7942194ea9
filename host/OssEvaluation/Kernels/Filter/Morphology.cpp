// Filters that let bright or dark parts grow.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Coverage.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/FilterKernel.h"
#include "OssEvaluation/Kernels/Scratch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;

/// The highest of a disc about each texel, from rows of windows whose widths are powers of two. In a
/// large disc several rows share one width, so that it costs no more than a small one.
class DiscMaximum
{
public:
    explicit DiscMaximum(int radius)
        : m_radius(radius)
        , m_step(std::max(1, (2 * radius + 1 + MostBands - 1) / MostBands))
    {
        const int bands = (2 * radius + m_step) / m_step;
        for (int i = 0; i < bands; ++i) {
            // The row of the band that is farthest from the middle decides on its width.
            const int top = std::min(-radius + i * m_step, radius - m_step + 1);
            const double away = std::max(std::abs(top), std::abs(top + m_step - 1));
            const double square = (radius + 0.25) * (radius + 0.25) - away * away;
            if (square >= 0.0)
                m_bands.push_back({top, int(std::floor(std::sqrt(square)))});
        }
    }

    /// `from` has the radius around `to`; it is overwritten.
    void run(const OssEvPlane &from, const OssEvPlane &to, OssEvScratch *scratch) const
    {
        if (m_step > 1)
            joinRows(from);
        std::vector<OssEvPlane> powers{from};
        for (int size = 1; 2 * size <= 2 * m_radius + 1; size *= 2) {
            powers.emplace_back(scratch, from.width, from.height);
            for (int y = 0; y < from.height; ++y) {
                const float *row = powers[powers.size() - 2].row(y);
                float *target = powers.back().row(y);
                std::copy_n(row, from.width, target);
                for (int x = 0; x + size < from.width; ++x)
                    target[x] = std::max(row[x], row[x + size]);
            }
        }
        for (int y = 0; y < to.height; ++y) {
            float *target = to.row(y);
            std::fill_n(target, to.width, std::numeric_limits<float>::lowest());
            for (const Band &band : m_bands) {
                const int length = 2 * band.half + 1;
                const auto power = std::size_t(std::log2(length));
                const int rest = length - (1 << power);
                const float *row = powers[power].row(y + m_radius + band.top) + m_radius
                                   - band.half;
                for (int x = 0; x < to.width; ++x)
                    target[x] = std::max({target[x], row[x], row[x + rest]});
            }
        }
    }

private:
    static constexpr int MostBands = 33;

    struct Band
    {
        int top;
        int half; ///< of its width, without the middle
    };

    void joinRows(const OssEvPlane &from) const
    {
        for (int y = 0; y + m_step <= from.height; ++y) {
            float *row = from.row(y);
            for (int i = 1; i < m_step; ++i) {
                const float *other = from.row(y + i);
                for (int x = 0; x < from.width; ++x)
                    row[x] = std::max(row[x], other[x]);
            }
        }
    }

    int m_radius;
    int m_step;
    std::vector<Band> m_bands;
};

/// The parts of a texel that a radius has count as parts.
class Grow : public OssEvAreaOperation
{
public:
    Grow(double radius, bool shrinks)
        : OssEvAreaOperation({{0, 0}})
        , m_inner(int(std::floor(radius)))
        , m_part(float(radius - std::floor(radius)))
        , m_outer(m_inner + (m_part > 1e-3F ? 1 : 0))
        , m_sign(shrinks ? -1.0F : 1.0F)
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return block.expanded(m_outer);
    }

    void run(const OssEvBlock &block) const override
    {
        const OssEvRegion region = needed(0, block.region);
        OssEvScratch scratch;
        const OssEvPlane cover(&scratch, region.width, region.height);
        bool partly = false;
        if (block.surface != nullptr) {
            const OssEvCoverageSource coverage(*block.surface, 0);
            partly = !coverage.isWhole(region);
            if (partly)
                coverage.read(region, cover);
        }
        for (int channel = 0; channel < block.outputChannels; ++channel) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            const OssEvPlane to(block.output[std::size_t(channel)], block.region.width,
                                block.region.height, block.stride);
            grow(block, channel, partly ? &cover : nullptr, to);
        }
    }

private:
    // What no face covers has no say, but for itself.
    void grow(const OssEvBlock &block, int channel, const OssEvPlane *cover,
              const OssEvPlane &to) const
    {
        OssEvScratch scratch;
        const OssEvRegion region = needed(0, block.region);
        const OssEvPlane own(&scratch, region.width, region.height);
        block.inputs[0].assemble(channel, region, Clamp, own.data, own.stride);
        const OssEvPlane from(&scratch, region.width, region.height);
        for (int y = 0; y < region.height; ++y) {
            for (int x = 0; x < region.width; ++x) {
                const bool counts = cover == nullptr || cover->row(y)[x] > 0.0F;
                from.row(y)[x] = counts ? m_sign * own.row(y)[x]
                                        : std::numeric_limits<float>::lowest();
            }
        }
        const OssEvPlane wide(&scratch, to.width, to.height);
        if (m_outer > m_inner) {
            const OssEvPlane copy(&scratch, region.width, region.height);
            for (int y = 0; y < region.height; ++y)
                std::copy_n(from.row(y), region.width, copy.row(y));
            DiscMaximum(m_outer).run(copy, wide, &scratch);
        }
        const int margin = m_outer - m_inner;
        const OssEvPlane inner(from.row(margin) + margin, region.width - 2 * margin,
                               region.height - 2 * margin, from.stride);
        DiscMaximum(m_inner).run(inner, to, &scratch);
        for (int y = 0; y < to.height; ++y) {
            const float *middle = own.row(y + m_outer) + m_outer;
            for (int x = 0; x < to.width; ++x) {
                float value = std::max(to.row(y)[x], m_sign * middle[x]);
                if (margin > 0)
                    value += m_part * std::max(0.0F, wide.row(y)[x] - value);
                to.row(y)[x] = m_sign * value;
            }
        }
    }

    int m_inner;
    float m_part;
    int m_outer;
    float m_sign;
};

OssEvKernel kernelOf(const char *name, bool shrinks)
{
    const auto make = [shrinks](const OssEvKernelSetup &setup) {
        return std::make_shared<Grow>(setup.real("Radius") * setup.frame().width, shrinks);
    };
    OssEvKernel kernel = OssEvFilterKernel::describe(
        name, "Input", 0, {OssEvDescribe::real("Radius", 0.01, 0, 0.05)}, make);
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addMorphology(std::vector<OssEvKernel> *kernels)
{
    kernels->push_back(kernelOf("growBright", false));
    kernels->push_back(kernelOf("growDark", true));
}
