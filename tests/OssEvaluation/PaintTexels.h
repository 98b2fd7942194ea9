#pragma once

#include "OssEvaluation/Paint/OssEvPaintBuffer.h"

/// A texel without paint.
inline const OssEvPaintTile::Texel Bare{0.0F, 0.0F, 0.0F, 0.0F, 1.0F};

inline OssEvPaintTile::Texel texelOf(const OssEvPaintBuffer &buffer, int patch, int x, int y)
{
    constexpr int Size = OssEvPaintTile::Size;
    const OssEvPaintTilePointer tile = buffer.tile({patch, x / Size, y / Size});
    return tile ? tile->texel(y % Size * Size + x % Size) : Bare;
}
