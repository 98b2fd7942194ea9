#include "OssEvaluation/PlainExr.h"

#include "OssEvaluation/Values/OssEvHalf.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

template <class T>
std::string raw(T value)
{
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

std::string word(const std::string &text)
{
    return text + '\0';
}

std::string attribute(const std::string &name, const std::string &type, const std::string &value)
{
    return word(name) + word(type) + raw(std::int32_t(value.size())) + value;
}

std::string box(int left, int top, int width, int height)
{
    return raw(std::int32_t(left)) + raw(std::int32_t(top)) + raw(std::int32_t(left + width - 1))
           + raw(std::int32_t(top + height - 1));
}

} // namespace

std::string PlainExr::header() const
{
    std::string list;
    for (const std::string &channel : channels)
        list += word(channel) + raw(std::int32_t(isHalf ? 1 : 2)) + raw(std::int32_t(0))
                + raw(std::int32_t(1)) + raw(std::int32_t(1));
    const std::uint32_t flags = (tileWidth > 0 ? 0x200U : 0U) | (isDeep ? 0x800U : 0U);
    std::string text = raw(std::uint32_t(0x01312f76)) + raw(std::uint32_t(2U | flags));
    text += attribute("channels", "chlist", word(list));
    text += attribute("compression", "compression", std::string(1, '\0'));
    text += attribute("dataWindow", "box2i", box(left, top, width, height));
    text += attribute("displayWindow", "box2i", box(0, 0, width, height));
    text += attribute("lineOrder", "lineOrder", std::string(1, '\0'));
    text += attribute("pixelAspectRatio", "float", raw(1.0F));
    text += attribute("screenWindowCenter", "v2f", raw(0.0F) + raw(0.0F));
    text += attribute("screenWindowWidth", "float", raw(1.0F));
    if (tileWidth > 0) {
        text += attribute("tiles", "tiledesc",
                          raw(std::uint32_t(tileWidth)) + raw(std::uint32_t(tileHeight))
                              + std::string(1, '\0'));
    }
    if (isDeep) {
        text += attribute("name", "string", "deep");
        text += attribute("type", "string", "deepscanline");
        text += attribute("version", "int", raw(std::int32_t(1)));
        text += attribute("maxSamplesPerPixel", "int", raw(std::int32_t(1)));
        text += attribute("chunkCount", "int", raw(std::int32_t(height)));
    }
    return text + '\0';
}

// Row by row, within a row channel by channel.
std::string PlainExr::block(int x, int y, int columns, int rows) const
{
    std::string text;
    for (int row = y; row < y + rows; ++row) {
        for (const std::string &channel : channels) {
            for (int column = x; column < x + columns; ++column) {
                const float number = value(channel, column, row);
                text += isHalf ? raw(OssEvHalf::fromFloat(number)) : raw(number);
            }
        }
    }
    return text;
}

std::string PlainExr::bytes() const
{
    std::vector<std::string> chunks;
    for (int y = 0; y < height && !isDeep; y += tileWidth > 0 ? tileHeight : 1) {
        if (tileWidth == 0) {
            const std::string data = block(0, y, width, 1);
            chunks.push_back(raw(std::int32_t(top + y)) + raw(std::int32_t(data.size())) + data);
            continue;
        }
        for (int x = 0; x < width; x += tileWidth) {
            const std::string data = block(x, y, std::min(tileWidth, width - x),
                                           std::min(tileHeight, height - y));
            chunks.push_back(raw(std::int32_t(x / tileWidth)) + raw(std::int32_t(y / tileHeight))
                             + raw(std::int32_t(0)) + raw(std::int32_t(0))
                             + raw(std::int32_t(data.size())) + data);
        }
    }
    std::string text = header();
    std::uint64_t place = text.size() + 8 * (isDeep ? std::size_t(height) : chunks.size());
    for (const std::string &chunk : chunks) {
        text += raw(place);
        place += chunk.size();
    }
    if (isDeep)
        text += std::string(8 * std::size_t(height), '\0');
    for (const std::string &chunk : chunks)
        text += chunk;
    return text;
}
