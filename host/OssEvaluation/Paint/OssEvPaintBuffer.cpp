#include "OssEvaluation/Paint/OssEvPaintBuffer.h"

#include "OssEvaluation/Values/OssEvHalf.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int Size = OssEvPaintTile::Size;
constexpr OssEvPaintTile::Texel Bare{0.0F, 0.0F, 0.0F, 0.0F, 1.0F};

} // namespace

OssEvPaintTile::OssEvPaintTile()
    : m_buffer(Bytes)
{
    std::fill_n(values(), Keep * Texels, std::uint16_t(0));
    std::fill_n(values() + std::ptrdiff_t(Keep) * Texels, Texels, OssEvHalf::fromFloat(1.0F));
}

OssEvPaintTile::OssEvPaintTile(const OssEvPaintTile &other)
    : m_buffer(Bytes)
{
    std::memcpy(values(), other.values(), Bytes);
}

OssEvPaintTile::Texel OssEvPaintTile::texel(int index) const
{
    Texel texel;
    for (int plane = 0; plane < Planes; ++plane)
        texel[std::size_t(plane)] = OssEvHalf::toFloat(values()[plane * Texels + index]);
    return texel;
}

void OssEvPaintTile::setTexel(int index, const Texel &texel)
{
    for (int plane = 0; plane < Planes; ++plane)
        values()[plane * Texels + index] = OssEvHalf::fromFloat(texel[std::size_t(plane)]);
}

OssEvPaintBuffer::OssEvPaintBuffer(int resolution)
    : m_resolution(resolution)
{
}

OssEvPaintTilePointer OssEvPaintBuffer::tile(const Place &place) const
{
    const auto found = m_tiles.find(place);
    return found == m_tiles.end() ? nullptr : found->second;
}

void OssEvPaintBuffer::setTile(const Place &place, OssEvPaintTilePointer tile)
{
    if (tile)
        m_tiles[place] = std::move(tile);
    else
        m_tiles.erase(place);
}

std::vector<int> OssEvPaintBuffer::patches() const
{
    std::vector<int> patches;
    for (const auto &entry : m_tiles) {
        if (patches.empty() || patches.back() != entry.first.patch)
            patches.push_back(entry.first.patch);
    }
    return patches;
}

OssEvPaintTile::Texel OssEvPaintBuffer::mean(int patch, int x, int y, int size) const
{
    OssEvPaintTile::Texel sum{};
    const int right = std::min(x + size, m_resolution);
    const int bottom = std::min(y + size, m_resolution);
    const OssEvPaintTile *tile = nullptr;
    for (int row = y; row < bottom; ++row) {
        for (int column = x; column < right; ++column) {
            if (column == x || column % Size == 0) {
                const auto found = m_tiles.find({patch, column / Size, row / Size});
                tile = found == m_tiles.end() ? nullptr : found->second.get();
            }
            const OssEvPaintTile::Texel texel = tile
                                                    ? tile->texel(row % Size * Size + column % Size)
                                                    : Bare;
            for (std::size_t plane = 0; plane < sum.size(); ++plane)
                sum[plane] += texel[plane];
        }
    }
    const auto count = float((right - x) * (bottom - y));
    for (float &value : sum)
        value /= count;
    return sum;
}

bool OssEvPaintBuffer::readRow(int patch, int resolution, int x, int y, int count,
                               OssEvPaintTile::Texel *texels) const
{
    const int size = std::max(1, m_resolution / resolution);
    const auto place = [&](int at) {
        return std::min(int(std::int64_t(at) * m_resolution / resolution), m_resolution - 1);
    };
    const int top = place(y);
    bool painted = false;
    for (int row = top / Size; row <= (std::min(top + size, m_resolution) - 1) / Size && !painted;
         ++row) {
        const auto first = m_tiles.lower_bound({patch, place(x) / Size, row});
        painted = first != m_tiles.end() && first->first.patch == patch && first->first.y == row
                  && first->first.x <= place(x + count - 1) / Size;
    }
    if (!painted)
        return false;
    for (int i = 0; i < count; ++i)
        texels[i] = mean(patch, place(x + i), top, size);
    return true;
}
