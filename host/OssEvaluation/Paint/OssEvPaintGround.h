#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Paint/OssEvPatchImage.h"

#include <glm/vec2.hpp>

#include <array>
#include <map>
#include <mutex>
#include <optional>
#include <string>

/// The images that paint lies over, by the paint's tiles: for strokes that depend on the colours that
/// are there. Read when they are asked for, and kept for a while. Any thread.
class OSSEVALUATION_EXPORT OssEvPaintGround
{
public:
    using Color = OssEvPatchImage::Color;

    /// Files by patch; patches without one are transparent.
    struct Images
    {
        std::map<int, std::string> files;
        int resolution = 0; ///< of the paint
        bool isData = false;
        OssEvColorSpaces::Pointer colors = {};

        friend bool operator==(const Images &a, const Images &b)
        {
            return a.files == b.files && a.resolution == b.resolution && a.isData == b.isData
                   && a.colors == b.colors;
        }
    };

    explicit OssEvPaintGround(Images images);
    ~OssEvPaintGround();

    const Images &images() const { return m_images; }

    /// Four channels; null where there is nothing. Throws std::bad_alloc.
    OssEvTilePointer tile(const OssEvPaintBuffer::Place &place);

    /// Why an image could not be read; what lies there counts as transparent, and nothing is to be made
    /// of it.
    OssEvResult state() const;

private:
    /// Tiles beyond that are forgotten.
    static constexpr std::size_t MostTiles = 512;

    OssEvPatchImage *open(int patch);

    Images m_images;
    mutable std::mutex m_mutex; ///< guards what follows
    OssEvResult m_state;
    std::map<int, std::unique_ptr<OssEvPatchImage>> m_open;
    std::map<OssEvPaintBuffer::Place, OssEvTilePointer> m_tiles;
};

/// The colours that are seen of paint and what it lies over. One thread at a time.
class OSSEVALUATION_EXPORT OssEvPaintReader
{
public:
    using Color = OssEvPaintGround::Color;

    /// Both must outlive it; null ground: there is nothing beneath.
    OssEvPaintReader(const OssEvPaintBuffer *paint, OssEvPaintGround *ground);

    /// Premultiplied; of a texel of a tile.
    Color texel(const OssEvPaintBuffer::Place &place, int index);
    /// Between the texels around a place in patches, v upwards; these are of one patch.
    Color at(const glm::vec2 &uv);

    /// The paint may have other tiles now.
    void look() { m_recent.fill({}); }

private:
    struct Tile
    {
        OssEvPaintBuffer::Place place;
        bool isKnown = false;
        OssEvPaintTilePointer paint;
        OssEvTilePointer beneath;
    };

    const Tile &find(const OssEvPaintBuffer::Place &place);

    const OssEvPaintBuffer *m_paint;
    OssEvPaintGround *m_ground;
    std::array<Tile, 64> m_recent; ///< those of a neighbourhood do not share a place
};
