#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvBrush.h"
#include "OssEvaluation/Paint/OssEvPaintGround.h"
#include "OssEvaluation/Values/OssEvRegion.h"

#include <map>
#include <memory>
#include <vector>

/// The tiles that a stroke touches: how much of each texel its dabs covered, and the buffer as that
/// leaves it. The stroke's opacity is put over what was there before it, so it does not add up where a
/// stroke crosses itself.
///
/// Where a stroke depends on the colours that are there it leaves colours through which nothing is seen of
/// what lies beneath.
class OSSEVALUATION_EXPORT OssEvStrokeTiles
{
public:
    using Color = OssEvPaintGround::Color;

    struct Tile
    {
        OssEvPaintTilePointer before;         ///< null: nothing was painted there
        std::shared_ptr<OssEvPaintTile> tile; ///< the buffer's, and nobody else's yet
        std::vector<float> coverage;          ///< by texel; set it, and say so in `stale`
        std::vector<float> blended;           ///< the coverage that the tile shows
        /// By texel, how much of what dabs cover is let through; below 0: nobody has looked. Empty where
        /// all is.
        std::vector<float> limit;
        /// By texel, what is painted with, premultiplied; its alpha below 0: nobody has looked. Empty
        /// where that is the brush's colour.
        std::vector<Color> source;
        OssEvRegion stale;      ///< coverage may have grown here; within the tile
        bool isChanged = false; ///< it is another than before
    };

    struct Change
    {
        OssEvPaintBuffer::Place place;
        OssEvPaintTilePointer before; ///< null: nothing was painted there
        OssEvPaintTilePointer after;
    };

    /// What became different, in texels from the top, by patch.
    using Areas = std::map<int, OssEvRegion>;

    /// Buffer and ground must outlive the tiles; null ground: there is nothing beneath.
    OssEvStrokeTiles(OssEvPaintBuffer *buffer, const OssEvBrush &brush, OssEvPaintGround *ground);
    OssEvStrokeTiles(const OssEvStrokeTiles &) = delete;
    OssEvStrokeTiles &operator=(const OssEvStrokeTiles &) = delete;
    ~OssEvStrokeTiles() = default;

    const OssEvPaintBuffer &buffer() const { return *m_buffer; }

    /// Whether texels have limits, and whether each has a source of its own.
    bool isLimited() const { return m_isLimited; }

    bool hasSources() const { return m_hasSources; }

    /// The colours before the stroke, and as they are.
    OssEvPaintReader &before() { return m_before; }

    OssEvPaintReader &now() { return m_now; }

    /// Throws std::bad_alloc.
    Tile &touch(const OssEvPaintBuffer::Place &place);

    /// Sets the colour of a texel at once.
    static void setColor(Tile *touched, int index, const Color &color);

    /// Brings the buffer up to date with what the texels are covered.
    Areas update();

    /// Covers texels in areas as others cover them, of a buffer of the same size. Throws std::bad_alloc.
    void follow(const OssEvStrokeTiles &others, const Areas &areas);

    /// Lets go of tiles that were touched in vain.
    void tidy();

    /// Forgets how a tile came to be: it is not covered any further.
    static void settle(Tile *touched);

    std::vector<Change> changes() const;

private:
    struct Batch;

    void blend(const OssEvPaintBuffer::Place &place, Tile *touched);
    void blendPlainly(Tile *touched, int index, float alpha) const;
    void blendBatch(const OssEvPaintBuffer::Place &place, Tile *touched, Batch *batch);

    OssEvPaintBuffer *m_buffer;
    OssEvPaintBuffer m_start; ///< as it was before the stroke
    OssEvPaintReader m_before;
    OssEvPaintReader m_now;
    bool m_isLimited;
    bool m_hasSources;
    int m_mode;
    OssEvWorkingSpace::Weights m_luminance;
    float m_opacity;
    Color m_source{}; ///< what a texel is that is covered fully
    std::map<OssEvPaintBuffer::Place, Tile> m_touched;
};
