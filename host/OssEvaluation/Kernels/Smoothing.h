#pragma once

#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <vector>

/// Smooths one channel of a block. Wide filters work on a reduced image, since what they leave has
/// no detail that would need more (P. J. Burt, E. H. Adelson, "The Laplacian Pyramid as a Compact
/// Image Code", 1983); the widening of the filters that halve and double is taken off the filter
/// in between. Beyond the edges of the patch the nearest texel counts.
class OssEvSmoothing
{
public:
    enum class Shape { Gaussian, Box };

    /// `size` is the standard deviation, or half the edge of the box without the middle texel, in
    /// texels of the frame; 0 leaves everything as it is.
    OssEvSmoothing(Shape shape, double size);

    /// In texels of the frame, a length that a user gives in those of a patch which is 1024 wide: so it shows the
    /// same at every resolution.
    static double lengthOf(double texels, const OssEvFrame &frame)
    {
        constexpr double Wide = 1024.0;
        return texels * frame.width / Wide;
    }

    /// How often the input must be halved beforehand.
    int reduction() const { return m_before; }

    /// Of the reduced input.
    OssEvRegion needed(const OssEvRegion &block) const;

    /// What stands between the input and the filter, texel by texel of the reduced input.
    class Source
    {
    public:
        Source() = default;
        Source(const Source &) = delete;
        Source &operator=(const Source &) = delete;
        virtual ~Source() = default;
        virtual void read(const OssEvRegion &region, const OssEvPlane &to) const = 0;
    };

    /// `to` has the size of the block, whose corner must lie on a multiple of 128.
    void run(const Source &source, const OssEvRegion &block, const OssEvPlane &to) const;

private:
    OssEvRegion atScale(const OssEvRegion &block, int scale) const;

    /// Halvings before the operation, and in it.
    int m_before = 0;
    int m_inside = 0;
    std::vector<float> m_weights;
};

/// A channel of a grid as it is.
class OssEvGridSource : public OssEvSmoothing::Source
{
public:
    OssEvGridSource(const OssEvTileGrid &grid, int channel,
                    OssEvTileGrid::Border border = OssEvTileGrid::Border::Clamp)
        : m_grid(grid)
        , m_channel(channel)
        , m_border(border)
    {
    }

    void read(const OssEvRegion &region, const OssEvPlane &to) const override
    {
        m_grid.assemble(m_channel, region, m_border, to.data, to.stride);
    }

private:
    const OssEvTileGrid &m_grid;
    int m_channel;
    OssEvTileGrid::Border m_border;
};
