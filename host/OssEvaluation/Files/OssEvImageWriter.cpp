#include "OssEvaluation/Files/OssEvImageWriter.h"

#include "OssEvaluation/Files/ImageWriters.h"
#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"

#include <algorithm>
#include <cmath>
#include <exception>

namespace {

constexpr int Size = OssEvTile::Size;

// RGBA floats of one row of the image.
void readRow(const std::vector<OssEvTilePointer> &tiles, int channels, int width, int y,
             std::vector<float> *row)
{
    for (int x = 0; x < width; ++x) {
        const OssEvTile &tile = *tiles[std::size_t(x / Size)];
        float *texel = row->data() + std::size_t(x) * 4;
        texel[3] = 1.0F;
        for (int k = 0; k < channels; ++k)
            texel[k] = tile.texel(k, x % Size, y);
        for (int k = channels; k < 3; ++k)
            texel[k] = texel[0];
    }
}

void divideByAlpha(std::vector<float> *row)
{
    for (std::size_t i = 0; i < row->size(); i += 4) {
        const float alpha = (*row)[i + 3];
        for (std::size_t k = 0; k < 3; ++k)
            (*row)[i + k] = alpha > 0.0F ? (*row)[i + k] / alpha : (*row)[i + k];
    }
}

} // namespace

OssEvImageWriter::~OssEvImageWriter() = default;

OssEvResult OssEvImageWriter::open(const std::string &path, const Description &description,
                                   std::unique_ptr<OssEvImageWriter> *writer)
{
    if (description.width <= 0 || description.height <= 0)
        return OssEvResult::failure("Cannot write \"" + path + "\": it has no texels");
    const OssEvImageFormat *format = OssEvImageFormat::ofFile(path);
    if (format == nullptr || format->writer == nullptr)
        return OssEvResult::failure("Cannot write \"" + path + "\": images are written as "
                                    + OssEvImageFormat::writtenInWords("."));
    try {
        *writer = format->writer(path, description);
        return {};
    } catch (const std::exception &fault) {
        const std::string reason = fault.what();
        const bool complete = reason.rfind("Cannot write", 0) == 0;
        return OssEvResult::failure(complete ? reason : "Cannot write \"" + path + "\": " + reason);
    }
}

int OssEvWriters::rowsLeft(const Description &description, int written)
{
    return std::min(Size, description.height - written);
}

OssEvResult OssEvWriters::toIntegers(const std::vector<OssEvTilePointer> &tiles,
                                     const Description &description, int rows,
                                     std::vector<std::uint16_t> *values)
{
    const auto channels = std::size_t(description.channels);
    const auto width = std::size_t(description.width);
    values->resize(width * std::size_t(rows) * channels);
    std::vector<float> row(width * 4);
    // A single channel is a mask or a measure, never a colour.
    const bool isColor = !description.isData && channels > 1;
    for (int y = 0; y < rows; ++y) {
        readRow(tiles, description.channels, description.width, y, &row);
        if (channels == 4)
            divideByAlpha(&row);
        if (isColor) {
            OssEvResult result = OssEvColorSpaces::builtIn()->fromScene(OssEvColorSpaces::Screen,
                                                                        row.data(), width);
            if (!result)
                return result;
        }
        std::uint16_t *to = values->data() + std::size_t(y) * width * channels;
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t k = 0; k < channels; ++k) {
                const float value = std::clamp(row[4 * x + k], 0.0F, 1.0F);
                to[x * channels + k] = std::uint16_t(std::lround(value * 65535.0F));
            }
        }
    }
    return {};
}
