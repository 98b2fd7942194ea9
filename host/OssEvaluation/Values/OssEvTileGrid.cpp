#include "OssEvaluation/Values/OssEvTileGrid.h"

#include "OssEvaluation/Values/Texels.h"

#include <algorithm>

namespace {

constexpr int Size = OssEvTile::Size;

struct alignas(64) Row
{
    std::array<float, Size> values;
};

int positiveModulo(int value, int divisor)
{
    const int rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

// A row of a tile as it is stored. Whole rows, since they are what is aligned.
const float *storedRow(const OssEvTile &tile, int channel, int y, float *scratch)
{
    const std::size_t offset = std::size_t(y) * Size;
    if (tile.isConstant()) {
        std::fill_n(scratch, Size, tile.value()[std::size_t(channel)]);
        return scratch;
    }
    if (tile.format() == OssEvTile::Format::Float)
        return tile.floatPlane(channel) + offset;
    OssEvTexels::halfToFloat(tile.halfPlane(channel) + offset, scratch, Size);
    return scratch;
}

} // namespace

OssEvTileGrid::OssEvTileGrid(const OssEvFrame &frame, const OssEvRegion &region, int channels,
                             const OssEvWorkingSpace::Weights &luminance)
    : m_frame(frame)
    , m_channels(channels)
    , m_constant(false)
    , m_luminance(luminance)
{
    OssEvRegion inside = region.intersected(frame.region());
    if (inside.isEmpty()) {
        // The nearest texel answers for everything beyond the edge.
        inside = {std::clamp(region.x, 0, frame.width - 1),
                  std::clamp(region.y, 0, frame.height - 1), 1, 1};
    }
    const int left = inside.x / Size;
    const int top = inside.y / Size;
    m_tiles = {left, top, (inside.right() - 1) / Size - left + 1,
               (inside.bottom() - 1) / Size - top + 1};
    m_pointers.resize(std::size_t(m_tiles.width) * std::size_t(m_tiles.height));
}

OssEvTileGrid::OssEvTileGrid(const OssEvFrame &frame, const std::array<float, 4> &value,
                             int channels)
    : m_frame(frame)
    , m_channels(channels)
    , m_value(value)
{
}

void OssEvTileGrid::assemble(int channel, const OssEvRegion &region, Border border, float *plane,
                             int stride) const
{
    for (int y = 0; y < region.height; ++y) {
        float *row = plane + std::ptrdiff_t(y) * stride;
        if (m_constant)
            std::fill_n(row, region.width, m_value[std::size_t(channel)]);
        else
            assembleRow(channel, region.y + y, region, border, row);
    }
}

void OssEvTileGrid::assembleRow(int channel, int y, const OssEvRegion &region, Border border,
                                float *row) const
{
    if ((y < 0 || y >= m_frame.height) && border == Border::Zero) {
        std::fill_n(row, region.width, 0.0F);
        return;
    }
    y = border == Border::Repeat ? positiveModulo(y, m_frame.height)
                                 : std::clamp(y, 0, m_frame.height - 1);
    int done = 0;
    while (done < region.width) {
        const int wanted = region.width - done;
        const int column = region.x + done;
        const int x = border == Border::Repeat ? positiveModulo(column, m_frame.width) : column;
        done += x >= 0 && x < m_frame.width ? copyInside(channel, x, y, wanted, row + done)
                                            : fillBeyond(channel, x, y, wanted, border, row + done);
    }
}

// As far as the tile goes; tells how far that is.
int OssEvTileGrid::copyInside(int channel, int x, int y, int wanted, float *to) const
{
    const int count = std::min({wanted, m_frame.width - x, Size - x % Size});
    copyRun(channel, x, y, count, to);
    return count;
}

// Up to the left edge of the image, or everything beyond the right one.
int OssEvTileGrid::fillBeyond(int channel, int x, int y, int wanted, Border border, float *to) const
{
    float beyond = 0.0F;
    if (border == Border::Clamp)
        copyRun(channel, x < 0 ? 0 : m_frame.width - 1, y, 1, &beyond);
    const int count = x < 0 ? std::min(wanted, -x) : wanted;
    std::fill_n(to, count, beyond);
    return count;
}

// All within one tile, or within a column of tiles that the grid does not have.
void OssEvTileGrid::copyRun(int channel, int x, int y, int count, float *to) const
{
    const int column = std::clamp(x / Size, m_tiles.x, m_tiles.right() - 1);
    const int line = std::clamp(y / Size, m_tiles.y, m_tiles.bottom() - 1);
    const int inTile = line == y / Size ? y % Size : (line < y / Size ? Size - 1 : 0);
    Row scratch; // NOLINT(cppcoreguidelines-pro-type-member-init): what is read was written
    const float *from = rowOf(*m_pointers[index(column, line)], channel, inTile,
                              scratch.values.data());
    if (column == x / Size)
        std::copy_n(from + x % Size, count, to);
    else
        std::fill_n(to, count, from[column < x / Size ? Size - 1 : 0]);
}

// A row in the channels that the grid is read in.
const float *OssEvTileGrid::rowOf(const OssEvTile &tile, int channel, int y, float *scratch) const
{
    const int stored = tile.channels();
    if (m_channels == 1 && stored > 1) {
        std::array<Row, 3> rows; // NOLINT(cppcoreguidelines-pro-type-member-init): as above
        std::array<const float *, 3> from{};
        for (int k = 0; k < 3; ++k)
            from[std::size_t(k)] = storedRow(tile, k, y, rows[std::size_t(k)].values.data());
        if (stored == 3)
            OssEvTexels::mean(from[0], from[1], from[2], scratch, Size);
        else
            OssEvTexels::luminance(from[0], from[1], from[2], m_luminance, scratch, Size);
        return scratch;
    }
    if (channel == 3 && stored < 4) {
        std::fill_n(scratch, Size, 1.0F);
        return scratch;
    }
    return storedRow(tile, stored == 1 ? 0 : channel, y, scratch);
}
