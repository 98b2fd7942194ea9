#include "OssEvaluation/Values/OssEvTile.h"

#include "OssEvaluation/Values/OssEvHalf.h"

OssEvTile::OssEvTile(int channels, Format format)
    : m_channels(channels)
    , m_format(format)
    , m_buffer(std::size_t(channels) * planeStride(format) * (format == Format::Half ? 2 : 4))
{
}

OssEvTile::OssEvTile(int channels, Format format, const std::array<float, 4> &value)
    : m_channels(channels)
    , m_format(format)
    , m_value(value)
{
}

float OssEvTile::texel(int channel, int x, int y) const
{
    if (isConstant())
        return m_value[std::size_t(channel)];
    const std::size_t index = std::size_t(y) * Size + std::size_t(x);
    return m_format == Format::Half ? OssEvHalf::toFloat(halfPlane(channel)[index])
                                    : floatPlane(channel)[index];
}
