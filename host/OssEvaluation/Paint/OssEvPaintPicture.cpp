#include "OssEvaluation/Paint/OssEvPaintPicture.h"

#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Files/OssEvUdim.h"
#include "OssEvaluation/Paint/OssEvBetween.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssEvaluation/Values/OssEvRegion.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr int Size = OssEvTile::Size;

int wrapped(int at, int size)
{
    const int rest = at % size;
    return rest < 0 ? rest + size : rest;
}

/// A file of several patches is the picture of its own.
int patchOf(const std::string &path)
{
    const std::string pattern = OssEvUdim::pattern(path);
    if (pattern == path)
        return OssEvPatch::First;
    for (const int patch : OssEvUdim::patches(pattern)) {
        if (OssEvUdim::file(pattern, patch) == path)
            return patch;
    }
    return OssEvPatch::First;
}

/// Puts a tile into the pixels of a picture whose size is that of `at`, at its place.
void take(const OssEvTile &tile, const OssEvRegion &at,
          std::vector<OssEvPaintPicture::Color> *pixels)
{
    for (int y = 0; y < std::min(Size, at.height - at.y); ++y) {
        for (int x = 0; x < std::min(Size, at.width - at.x); ++x) {
            const auto index = std::size_t(at.y + y) * std::size_t(at.width)
                               + std::size_t(at.x + x);
            OssEvPaintPicture::Color &color = (*pixels)[index];
            color[3] = 1.0F;
            for (int c = 0; c < tile.channels(); ++c)
                color[std::size_t(c)] = tile.texel(c, x, y);
            if (tile.channels() == 1)
                color[1] = color[2] = color[0];
        }
    }
}

} // namespace

OssEvResult OssEvPaintPicture::read(const std::string &path,
                                    const OssEvColorSpaces::Pointer &colors, Pointer *picture)
{
    try {
        OssEvImageFiles files{OssEvFileColors(colors)};
        OssEvImageProvider::Image image;
        image.name = path;
        image.patch = patchOf(path);
        OssEvImageInfo info;
        const OssEvResult described = files.describe(image, &info);
        if (!described)
            return described;
        if (info.width <= 0 || info.height <= 0)
            return OssEvResult::failure("Cannot paint with \"" + path
                                        + "\": there is no such file");
        int reduction = 0;
        while ((std::max(info.width, info.height) >> reduction) > LargestSize)
            ++reduction;
        const int width = std::max(1, info.width >> reduction);
        const int height = std::max(1, info.height >> reduction);
        std::vector<Color> pixels(std::size_t(width) * std::size_t(height));
        const auto keep = [&](int column, int row, const OssEvTilePointer &tile) {
            take(*tile, {column * Size, row * Size, width, height}, &pixels);
        };
        const int rows = info.isSequential ? 1 : OssEvTilesAcross(height);
        for (int row = 0; row < rows; ++row) {
            const OssEvResult read = files.read(image, reduction, row, OssEvCancel(), keep);
            if (!read)
                return read;
        }
        *picture = std::make_shared<const OssEvPaintPicture>(width, height, pixels, path);
        return {};
    } catch (const std::bad_alloc &) {
        return OssEvResult::failure("Cannot paint with \"" + path + "\": there is no memory left");
    }
}

OssEvPaintPicture::OssEvPaintPicture(int width, int height, const std::vector<Color> &pixels,
                                     std::string name)
    : m_name(std::move(name))
{
    Level level{width, height, {}};
    level.pixels.reserve(pixels.size());
    for (const Color &pixel : pixels) {
        std::array<std::uint16_t, 4> halves{};
        for (std::size_t c = 0; c < 4; ++c)
            halves[c] = OssEvHalf::fromFloat(std::isfinite(pixel[c]) ? pixel[c] : 0.0F);
        level.pixels.push_back(halves);
    }
    m_levels.push_back(std::move(level));
    while (std::max(m_levels.back().width, m_levels.back().height) > 1)
        m_levels.push_back(halved(m_levels.back()));
}

OssEvPaintPicture::Level OssEvPaintPicture::halved(const Level &fine) const
{
    Level half{std::max(1, fine.width / 2), std::max(1, fine.height / 2), {}};
    half.pixels.reserve(std::size_t(half.width) * std::size_t(half.height));
    for (int y = 0; y < half.height; ++y) {
        for (int x = 0; x < half.width; ++x) {
            Color sum{};
            for (const auto &[dx, dy] : {std::pair(0, 0), {1, 0}, {0, 1}, {1, 1}}) {
                const Color pixel = fine.pixel(std::min(2 * x + dx, fine.width - 1),
                                               std::min(2 * y + dy, fine.height - 1));
                for (std::size_t c = 0; c < 4; ++c)
                    sum[c] += pixel[c] / 4.0F;
            }
            std::array<std::uint16_t, 4> halves{};
            for (std::size_t c = 0; c < 4; ++c)
                halves[c] = OssEvHalf::fromFloat(sum[c]);
            half.pixels.push_back(halves);
        }
    }
    return half;
}

OssEvPaintPicture::Color OssEvPaintPicture::Level::pixel(int x, int y) const
{
    const auto &halves = pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)];
    Color color;
    for (std::size_t c = 0; c < 4; ++c)
        color[c] = OssEvHalf::toFloat(halves[c]);
    return color;
}

OssEvPaintPicture::Color OssEvPaintPicture::Level::between(double x, double y) const
{
    return OssEvBetween(x * width - 0.5, y * height - 0.5, [this](int column, int row) {
        return pixel(wrapped(column, width), wrapped(row, height));
    });
}

OssEvPaintPicture::Color OssEvPaintPicture::at(double x, double y, double across) const
{
    std::size_t level = 0;
    while (level + 1 < m_levels.size() && m_levels[level].width > 1.5 * across)
        ++level;
    return m_levels[level].between(x - std::floor(x), y - std::floor(y));
}
