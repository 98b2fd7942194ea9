#include "OssEvaluation/Paint/OssEvPaintGround.h"

#include "OssEvaluation/Paint/OssEvBetween.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = OssEvPaintTile::Size;

} // namespace

OssEvPaintGround::OssEvPaintGround(Images images)
    : m_images(std::move(images))
{
}

OssEvPaintGround::~OssEvPaintGround() = default;

OssEvResult OssEvPaintGround::state() const
{
    const std::lock_guard lock(m_mutex);
    return m_state;
}

OssEvPatchImage *OssEvPaintGround::open(int patch)
{
    const auto file = m_images.files.find(patch);
    if (file == m_images.files.end())
        return nullptr;
    std::unique_ptr<OssEvPatchImage> &image = m_open[patch];
    if (!image) {
        image = std::make_unique<OssEvPatchImage>(m_images.resolution, m_images.isData,
                                                  m_images.colors);
        const OssEvResult opened = image->open(file->second);
        if (!opened)
            m_state = opened;
    }
    return image->isEmpty() ? nullptr : image.get();
}

OssEvTilePointer OssEvPaintGround::tile(const OssEvPaintBuffer::Place &place)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_tiles.find(place);
    if (found != m_tiles.end())
        return found->second;
    OssEvPatchImage *image = open(place.patch);
    if (image == nullptr)
        return nullptr;
    const OssEvResult read = image->need(place.y);
    if (!read) {
        m_state = read;
        return nullptr;
    }
    OssEvTilePointer made = image->tile(place.x, place.y);
    if (m_tiles.size() >= MostTiles)
        m_tiles.clear();
    m_tiles[place] = made;
    return made;
}

// --- with paint

OssEvPaintReader::OssEvPaintReader(const OssEvPaintBuffer *paint, OssEvPaintGround *ground)
    : m_paint(paint)
    , m_ground(ground)
{
}

const OssEvPaintReader::Tile &OssEvPaintReader::find(const OssEvPaintBuffer::Place &place)
{
    const auto slot = unsigned(place.x) % 8U
                      + 8U * ((unsigned(place.y) + unsigned(place.patch)) % 8U);
    Tile &tile = m_recent[slot];
    if (!tile.isKnown || !(tile.place == place))
        tile = {place, true, m_paint->tile(place),
                m_ground != nullptr ? m_ground->tile(place) : nullptr};
    return tile;
}

OssEvPaintReader::Color OssEvPaintReader::texel(const OssEvPaintBuffer::Place &place, int index)
{
    const Tile &tile = find(place);
    Color color{};
    if (tile.beneath) {
        for (int c = 0; c < 4; ++c)
            color[std::size_t(c)] = tile.beneath->texel(c, index % Size, index / Size);
    }
    if (!tile.paint)
        return color;
    const OssEvPaintTile::Texel paint = tile.paint->texel(index);
    for (std::size_t c = 0; c < 4; ++c)
        color[c] = paint[c] + paint[OssEvPaintTile::Keep] * color[c];
    return color;
}

OssEvPaintReader::Color OssEvPaintReader::at(const glm::vec2 &uv)
{
    const int column = int(std::floor(uv.x));
    const int row = int(std::floor(uv.y));
    const int patch = OssEvPatch::number(column, row);
    const int resolution = m_paint->resolution();
    const double x = (double(uv.x) - column) * resolution - 0.5;
    const double y = (row + 1.0 - double(uv.y)) * resolution - 0.5;
    const auto near = [&](int px, int py) {
        px = std::clamp(px, 0, resolution - 1);
        py = std::clamp(py, 0, resolution - 1);
        return texel({patch, px / Size, py / Size}, py % Size * Size + px % Size);
    };
    return OssEvBetween(x, y, near);
}
