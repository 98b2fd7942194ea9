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
        /// By texel, how much of what is painted with is the brush's second colour; empty where none is.
        std::vector<float> second;
        OssEvRegion stale;      ///< coverage may have grown here; within the tile
        bool isChanged = false; ///< it is another than before
        bool isShared = false;  ///< whoever copied the buffer has it too
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

    /// A tile that is none of these yet, to be covered apart from them. Throws std::bad_alloc.
    Tile make(const OssEvPaintBuffer::Place &place) const;
    /// Brings it up to date with what its texels are covered, which is forgotten.
    void settle(const OssEvPaintBuffer::Place &place, Tile *made);
    /// Makes it one of these, which did not touch its place.
    void adopt(const OssEvPaintBuffer::Place &place, Tile made);

    /// Covers texels in areas as others cover them, of a buffer of the same size. Throws std::bad_alloc.
    void follow(const OssEvStrokeTiles &others, const Areas &areas);

    /// Copies of the buffer stay as they are now: what changes further is copied first.
    void share();

    /// Lets go of tiles that were touched in vain.
    void tidy();

    std::vector<Change> changes() const;

private:
    struct Batch;

    void makeOwn(const OssEvPaintBuffer::Place &place, Tile *touched);
    void blend(const OssEvPaintBuffer::Place &place, Tile *touched);
    Color sourceOf(const Tile &touched, int index) const;
    void blendPlainly(Tile *touched, int index, float alpha) const;
    void blendBatch(const OssEvPaintBuffer::Place &place, Tile *touched, Batch *batch);

    OssEvPaintBuffer *m_buffer;
    OssEvPaintBuffer m_start; ///< as it was before the stroke
    OssEvPaintReader m_before;
    OssEvPaintReader m_now;
    bool m_isLimited;
    bool m_hasSources;
    bool m_hasSecond;
    int m_mode;
    OssEvWorkingSpace::Weights m_luminance;
    float m_opacity;
    Color m_source{}; ///< what a texel is that is covered fully
    Color m_second{};
    std::map<OssEvPaintBuffer::Place, Tile> m_touched;
};
