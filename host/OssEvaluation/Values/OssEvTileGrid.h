#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssEvaluation/Values/OssEvTile.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <array>
#include <vector>

/// Tiles of an image that cover a region of it, or one value that stands for an image.
class OSSEVALUATION_EXPORT OssEvTileGrid
{
public:
    /// What lies beyond the image's edges.
    enum class Border { Clamp, Repeat, Zero };

    OssEvTileGrid() = default;
    /// Room for the tiles that cover `region`, cut to the image; `channels` is how its texels are
    /// read, whatever the tiles hold. Colours that are read as one channel are their luminance.
    OssEvTileGrid(const OssEvFrame &frame, const OssEvRegion &region, int channels,
                  const OssEvWorkingSpace::Weights &luminance = OssEvWorkingSpace::Bt709Luminance);
    OssEvTileGrid(const OssEvFrame &frame, const std::array<float, 4> &value, int channels);

    const OssEvFrame &frame() const { return m_frame; }

    int channels() const { return m_channels; }

    bool isConstant() const { return m_constant; }

    const std::array<float, 4> &value() const { return m_value; }

    /// First tile and number of tiles; x and y count tiles.
    const OssEvRegion &tiles() const { return m_tiles; }

    OssEvTilePointer tile(int x, int y) const { return m_pointers[index(x, y)]; }

    void setTile(int x, int y, OssEvTilePointer tile) { m_pointers[index(x, y)] = std::move(tile); }

    /// One channel of the texels of `region` as floats; `stride` values from row to row. Where the
    /// grid has no tile, the nearest texel that it has stands in.
    void assemble(int channel, const OssEvRegion &region, Border border, float *plane,
                  int stride) const;

private:
    std::size_t index(int x, int y) const
    {
        return std::size_t(y - m_tiles.y) * std::size_t(m_tiles.width) + std::size_t(x - m_tiles.x);
    }

    void assembleRow(int channel, int y, const OssEvRegion &region, Border border,
                     float *row) const;
    int copyInside(int channel, int x, int y, int wanted, float *to) const;
    int fillBeyond(int channel, int x, int y, int wanted, Border border, float *to) const;
    void copyRun(int channel, int x, int y, int count, float *to) const;
    const float *rowOf(const OssEvTile &tile, int channel, int y, float *scratch) const;

    OssEvFrame m_frame;
    int m_channels = 1;
    bool m_constant = true;
    std::array<float, 4> m_value{};
    OssEvWorkingSpace::Weights m_luminance = OssEvWorkingSpace::Bt709Luminance;
    OssEvRegion m_tiles;
    std::vector<OssEvTilePointer> m_pointers;
};
