#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Values/OssEvRegion.h"

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>

/// A round brush. Lengths in texels of the paint buffer.
struct OSSEVALUATION_EXPORT OssEvBrush
{
    std::array<float, 3> color{1.0F, 1.0F, 1.0F}; ///< scene-linear
    double radius = 32.0;
    double hardness = 0.5; ///< part of the radius that is covered fully, 0 to 1
    double opacity = 1.0;  ///< of a whole stroke, however often it goes over a place
    bool erases = false;

    /// How much a texel is covered whose centre lies so far from the brush's: falls smoothly from
    /// 1 to 0, over a texel at least.
    float coverage(double distance) const;
    /// Up to this distance texels are covered fully.
    double core() const;

    /// Texels beyond it are not covered.
    double reach() const { return radius + 0.5; }
};

/// One stroke, from press to release, painted into a buffer: dabs at small distances along a smooth
/// curve through the places, which depends on them alone and not on when they came.
/// A place is covered as much as the dab that covers it most, so a stroke has no joints and its
/// opacity does not add up where it crosses itself.
class OSSEVALUATION_EXPORT OssEvStroke
{
public:
    /// Of the radius, from dab to dab.
    static constexpr double Spacing = 0.125;

    struct Change
    {
        OssEvPaintBuffer::Place place;
        OssEvPaintTilePointer before; ///< null: nothing was painted there
        OssEvPaintTilePointer after;
    };

    /// What became different, in texels from the top, by patch.
    using Areas = std::map<int, OssEvRegion>;

    /// The buffer must outlive the stroke. `patches`: where there is something to paint on.
    OssEvStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush, std::vector<int> patches);

    /// Goes on to a place, in patches, v upwards. `pressure` of 0 to 1 makes the brush smaller. The
    /// curve is painted up to the place before it, as where it leads shapes how it gets there.
    /// Throws std::bad_alloc.
    Areas moveTo(double u, double v, double pressure = 1.0);
    /// The rest of the curve, when there will be no further place. Throws std::bad_alloc.
    Areas finish();

    std::vector<Change> changes() const;

private:
    /// A tile that the stroke touched.
    struct Touched
    {
        OssEvPaintTilePointer before;
        std::shared_ptr<OssEvPaintTile> tile; ///< the buffer's, and nobody else's yet
        std::vector<float> coverage;          ///< the most that a dab covered
        std::vector<float> blended;           ///< the coverage that the tile shows
        OssEvRegion stale;                    ///< coverage grew here; within the tile
    };

    struct Point
    {
        double u;
        double v;
        double radius;
    };

    /// As far on from `end` as `start` lies before it.
    static Point beyond(const Point &start, const Point &end)
    {
        return {2.0 * end.u - start.u, 2.0 * end.v - start.v, end.radius};
    }

    void curveTo(const Point &before, const Point &from, const Point &to, const Point &after);
    void lineTo(const Point &to);
    Areas blendStale();
    double distance(const Point &a, const Point &b) const;
    void dab(const Point &point);
    void dabPatch(int patch, double x, double y, const OssEvBrush &brush);
    Touched &touch(const OssEvPaintBuffer::Place &place);
    void blend(Touched *touched) const;

    OssEvPaintBuffer *m_buffer;
    OssEvBrush m_brush;
    std::vector<int> m_patches;
    std::map<OssEvPaintBuffer::Place, Touched> m_touched;
    std::vector<Point> m_recent; ///< the last places, three at most
    std::optional<Point> m_last; ///< up to where the curve is painted
    double m_toNext = 0.0;       ///< texels to go before the next dab
};
