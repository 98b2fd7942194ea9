#include "OssModel/Evaluation/PaintedImages.h"

#include "OssEvaluation/Values/OssEvHalf.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr int Size = OssEvTile::Size;
using Texel = OssEvPaintTile::Texel;

/// The texels of a row of a tile with paint on them.
void cover(const OssEvTilePointer &beneath, int row, const std::vector<Texel> &paint,
           OssEvTile *tile)
{
    for (int x = 0; x < Size; ++x) {
        const Texel &texel = paint[std::size_t(x)];
        for (int c = 0; c < 4; ++c) {
            float below = 0.0F;
            if (beneath && c < beneath->channels())
                below = beneath->texel(c, x, row);
            else if (beneath)
                below = c == 3 ? 1.0F : beneath->texel(0, x, row);
            const float value = texel[std::size_t(c)] + texel[OssEvPaintTile::Keep] * below;
            const auto index = std::ptrdiff_t(row) * Size + x;
            if (tile->format() == OssEvTile::Format::Half)
                tile->halfPlane(c)[index] = OssEvHalf::fromFloat(value);
            else
                tile->floatPlane(c)[index] = value;
        }
    }
}

} // namespace

int PaintedImages::across(const OssLivePaint &live, int reduction)
{
    int size = live.paint().resolution();
    for (int i = 0; i < reduction; ++i)
        size = (size + 1) / 2;
    return size;
}

OssEvImageInfo PaintedImages::describe(const OssLivePaint &live, int patch,
                                       const OssEvImageInfo &beneath)
{
    OssEvImageInfo info;
    info.width = live.paint().resolution();
    info.height = info.width;
    info.channels = 4;
    info.format = beneath.width > 0 ? beneath.format : OssEvTile::Format::Half;
    OssEvKeyBuilder key;
    key.add(std::string_view("live paint"));
    key.add(std::to_string(live.revision(patch)) + ' ' + std::to_string(patch));
    key.add(beneath.content);
    info.content = key.key();
    return info;
}

OssEvTilePointer PaintedImages::tile(const OssLivePaint &live, int patch, int reduction, int x,
                                     int y, const OssEvTilePointer &beneath)
{
    const int size = across(live, reduction);
    const auto format = beneath ? beneath->format() : OssEvTile::Format::Half;
    auto tile = std::make_shared<OssEvTile>(4, format);
    constexpr Texel Bare{0.0F, 0.0F, 0.0F, 0.0F, 1.0F};
    std::vector<Texel> paint(Size);
    for (int row = 0; row < Size; ++row) {
        std::fill(paint.begin(), paint.end(), Bare);
        const int count = std::min(Size, size - x * Size);
        if (y * Size + row < size && count > 0
            && !live.paint().readRow(patch, size, x * Size, y * Size + row, count, paint.data()))
            std::fill(paint.begin(), paint.end(), Bare);
        cover(beneath, row, paint, tile.get());
    }
    return tile;
}
