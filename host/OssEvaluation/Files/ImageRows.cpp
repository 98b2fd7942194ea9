// Tiles on their way into files: rows of texels, encoded as the file wants them.
#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvColorSpaces.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int Size = OssEvTile::Size;

// RGBA floats of one row of the image.
void readRow(const std::vector<OssEvTilePointer> &tiles, int channels, int width, int y, float *row)
{
    for (int x = 0; x < width; ++x) {
        const OssEvTile &tile = *tiles[std::size_t(x / Size)];
        float *texel = row + std::size_t(x) * 4;
        texel[3] = 1.0F;
        for (int k = 0; k < channels; ++k)
            texel[k] = tile.texel(k, x % Size, y);
        for (int k = channels; k < 3; ++k)
            texel[k] = texel[0];
    }
}

void divideByAlpha(float *row, std::size_t texels)
{
    for (float *texel = row; texel != row + texels * 4; texel += 4) {
        for (std::size_t k = 0; k < 3; ++k)
            texel[k] = texel[3] > 0.0F ? texel[k] / texel[3] : texel[k];
    }
}

void multiplyByAlpha(float *row, std::size_t texels)
{
    for (float *texel = row; texel != row + texels * 4; texel += 4) {
        for (std::size_t k = 0; k < 3; ++k)
            texel[k] *= texel[3];
    }
}

// Between -0.5 and 0.5, without a pattern that the eye finds: a hash of the place.
float noise(std::uint32_t x, std::uint32_t y, std::uint32_t channel)
{
    std::uint32_t h = x * 0x9E3779B1U ^ y * 0x85EBCA77U ^ channel * 0xC2B2AE3DU;
    h = (h ^ (h >> 15U)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12U)) * 0x297A2D39U;
    h ^= h >> 15U;
    // A little less than half, or what needs no rounding might get some.
    return (float(h >> 8U) / 16777216.0F - 0.5F) * 0.998F;
}

} // namespace

std::string OssEvWriters::spaceOf(const Description &description, bool isWholeNumbers)
{
    // A single channel is a mask or a measure, never a colour.
    if (description.isData || description.channels == 1)
        return OssEvColorSpaces::Data;
    if (!description.form.space.empty())
        return description.form.space;
    return isWholeNumbers ? OssEvColorSpaces::Screen : description.form.spaces().working();
}

int OssEvWriters::rowsLeft(const Description &description, int written)
{
    return std::min(Size, description.height - written);
}

OssEvResult OssEvWriters::encode(const std::vector<OssEvTilePointer> &tiles,
                                 const Description &description, Alpha alpha, int y,
                                 std::vector<float> *row)
{
    const auto width = std::size_t(description.width);
    row->resize(width * 4);
    readRow(tiles, description.channels, description.width, y, row->data());
    const bool hasAlpha = description.channels == 4;
    const bool isWhole = alpha == Alpha::Straight;
    const std::string space = spaceOf(description, isWhole);
    const bool converts = !description.form.spaces().isWorking(space);
    bool isStraight = !hasAlpha || description.form.isStraight;
    if (!isStraight && (isWhole || converts)) {
        divideByAlpha(row->data(), width);
        isStraight = true;
    }
    if (converts) {
        OssEvResult result = description.form.spaces().fromWorking(space, row->data(), width);
        if (!result)
            return result;
    }
    if (hasAlpha && isStraight && !isWhole && !description.form.isStraight)
        multiplyByAlpha(row->data(), width);
    return {};
}

OssEvResult OssEvWriters::toIntegers(const std::vector<OssEvTilePointer> &tiles,
                                     const Description &description, int firstRow, int rows,
                                     std::vector<unsigned char> *values)
{
    const auto channels = std::size_t(description.channels);
    const auto width = std::size_t(description.width);
    const bool isByte = description.form.depth == OssEvDepth::Byte;
    const float largest = isByte ? 255.0F : 65535.0F;
    values->resize(width * std::size_t(rows) * channels * (isByte ? 1 : 2));
    std::vector<float> row;
    unsigned char *to = values->data();
    for (int y = 0; y < rows; ++y) {
        OssEvResult result = encode(tiles, description, Alpha::Straight, y, &row);
        if (!result)
            return result;
        for (std::size_t i = 0; i < width * channels; ++i) {
            const std::size_t x = i / channels;
            const std::size_t k = i % channels;
            float value = std::clamp(row[4 * x + k], 0.0F, 1.0F) * largest;
            if (isByte && description.form.dithers)
                value += noise(std::uint32_t(x), std::uint32_t(firstRow + y), std::uint32_t(k));
            const auto whole = std::uint16_t(std::clamp(std::lround(value), 0L, long(largest)));
            if (isByte)
                *to = static_cast<unsigned char>(whole);
            else
                std::memcpy(to, &whole, sizeof whole);
            to += isByte ? 1 : sizeof whole;
        }
    }
    return {};
}
