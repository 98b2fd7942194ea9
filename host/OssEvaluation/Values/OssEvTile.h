#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvBuffer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

/// 128 x 128 texels, the unit of cache, cancelling and progress. Immutable once it is shared.
///
/// Planar: one plane per channel, rows without gaps, planes 64-byte aligned and never a power of
/// two apart, so that the channels of a texel do not compete for one cache set. A tile of one value
/// everywhere stores that value only. Texels beyond the edge of the patch hold finite values that
/// nobody looks at.
class OSSEVALUATION_EXPORT OssEvTile
{
public:
    static constexpr int Size = 128;
    static constexpr int Texels = Size * Size;
    static constexpr int MaximumChannels = 4;

    /// Half for colours and masks; float for what is no picture: positions, normals, heights.
    enum class Format { Half, Float };

    /// Distance of two planes in values of the format.
    static constexpr std::size_t planeStride(Format format)
    {
        return format == Format::Half ? Texels + 64 : Texels + 32;
    }

    OssEvTile(int channels, Format format);
    OssEvTile(int channels, Format format, const std::array<float, 4> &value);

    int channels() const { return m_channels; }

    Format format() const { return m_format; }

    bool isConstant() const { return m_buffer.size() == 0; }

    /// Of a constant tile.
    const std::array<float, 4> &value() const { return m_value; }

    std::uint16_t *halfPlane(int channel) const
    {
        return m_buffer.as<std::uint16_t>() + std::size_t(channel) * planeStride(Format::Half);
    }

    float *floatPlane(int channel) const
    {
        return m_buffer.as<float>() + std::size_t(channel) * planeStride(Format::Float);
    }

    /// One value, for looking at; x and y count from the tile's first texel.
    float texel(int channel, int x, int y) const;

    /// What the tile costs in memory.
    std::size_t bytes() const { return sizeof(OssEvTile) + m_buffer.size(); }

private:
    int m_channels;
    Format m_format;
    std::array<float, 4> m_value{};
    OssEvBuffer m_buffer;
};

using OssEvTilePointer = std::shared_ptr<const OssEvTile>;

/// Tiles needed to cover so many texels.
constexpr int OssEvTilesAcross(int texels)
{
    return (texels + OssEvTile::Size - 1) / OssEvTile::Size;
}
