#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvStrokePath.h"
#include "OssEvaluation/Paint/OssEvStrokeTiles.h"

#include <vector>

/// One stroke, from press to release, painted into a buffer. Where dabs cover fully, a place is covered
/// as much as the dab that covers it most, so a stroke has no joints.
class OSSEVALUATION_EXPORT OssEvStroke
{
public:
    using Areas = OssEvStrokeTiles::Areas;
    using Change = OssEvStrokeTiles::Change;

    OssEvStroke(const OssEvStroke &) = delete;
    OssEvStroke &operator=(const OssEvStroke &) = delete;
    virtual ~OssEvStroke();

    /// Goes on to a place, in the stroke's own coordinates; see OssEvStrokePath. `pressure` of 0 to 1
    /// does what the brush says. Throws std::bad_alloc.
    Areas moveTo(double x, double y, double pressure = 1.0);
    /// Throws std::bad_alloc.
    Areas finish();

    std::vector<Change> changes() const { return m_tiles.changes(); }

protected:
    /// The buffer must outlive the stroke. `scale`: lengths of the path for one of the coordinates.
    OssEvStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush, double scale = 1.0);

    const OssEvBrush &brush() const { return m_brush; }

    OssEvStrokeTiles &tiles() { return m_tiles; }

    /// Puts a dab down, in lengths of the path; gives its radius there. `heading` as OssEvDabShape takes
    /// it, `number` counts dabs from 0.
    virtual double dab(const OssEvStrokePath::Point &place, double heading,
                       std::uint32_t number) = 0;

private:
    double putDab(const OssEvStrokePath::Point &place);

    OssEvBrush m_brush;
    OssEvStrokeTiles m_tiles;
    double m_scale;
    OssEvStrokePath m_path;
    std::optional<OssEvStrokePath::Point> m_lastDab;
    double m_heading = 0.0;
    std::uint32_t m_count = 0;
};

/// A stroke over patches that lie flat. Its places are in patches, v upwards.
class OSSEVALUATION_EXPORT OssEvFlatStroke final : public OssEvStroke
{
public:
    /// `patches`: where there is something to paint on. The brush's radius is in texels.
    OssEvFlatStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush, std::vector<int> patches);

protected:
    double dab(const OssEvStrokePath::Point &place, double heading, std::uint32_t number) override;

private:
    void dabPatch(int patch, double x, double y, const OssEvDabShape &shape);

    std::vector<int> m_patches;
};
