#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvBrush.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Values/OssEvRegion.h"

#include <map>
#include <memory>
#include <vector>

/// The tiles that a stroke touches: how much of each texel its dabs covered, and the buffer as that
/// leaves it. The stroke's opacity is put over what was there before it, so it does not add up where a
/// stroke crosses itself.
class OSSEVALUATION_EXPORT OssEvStrokeTiles
{
public:
    struct Tile
    {
        OssEvPaintTilePointer before;         ///< null: nothing was painted there
        std::shared_ptr<OssEvPaintTile> tile; ///< the buffer's, and nobody else's yet
        std::vector<float> coverage;          ///< by texel; set it, and say so in `stale`
        std::vector<float> blended;           ///< the coverage that the tile shows
        OssEvRegion stale;                    ///< coverage may have grown here; within the tile
    };

    struct Change
    {
        OssEvPaintBuffer::Place place;
        OssEvPaintTilePointer before; ///< null: nothing was painted there
        OssEvPaintTilePointer after;
    };

    /// What became different, in texels from the top, by patch.
    using Areas = std::map<int, OssEvRegion>;

    /// The buffer must outlive the tiles.
    OssEvStrokeTiles(OssEvPaintBuffer *buffer, const OssEvBrush &brush);

    const OssEvPaintBuffer &buffer() const { return *m_buffer; }

    /// Throws std::bad_alloc.
    Tile &touch(const OssEvPaintBuffer::Place &place);

    /// Brings the buffer up to date with what the texels are covered.
    Areas update();

    std::vector<Change> changes() const;

private:
    void blend(Tile *touched) const;

    OssEvPaintBuffer *m_buffer;
    float m_opacity;
    OssEvPaintTile::Texel m_source{}; ///< what a texel is that is covered fully
    std::map<OssEvPaintBuffer::Place, Tile> m_touched;
};
