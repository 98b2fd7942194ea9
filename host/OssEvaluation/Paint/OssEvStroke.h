#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvPaintSurface.h"
#include "OssEvaluation/Paint/OssEvStrokePath.h"
#include "OssEvaluation/Paint/OssEvStrokeTiles.h"

#include <glm/vec2.hpp>

#include <functional>
#include <optional>
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
    /// The same without blending: update() makes up for it, once for many places. Throws std::bad_alloc.
    void coverTo(double x, double y, double pressure = 1.0);

    Areas update() { return m_tiles.update(); }

    /// Nothing but changes() may be asked afterwards. Throws std::bad_alloc.
    Areas finish();

    std::vector<Change> changes() const { return m_tiles.changes(); }

    /// Whether another stroke of the same shape and place covers just what this one does, whatever their colours
    /// are: then it may follow() instead of going on by itself.
    bool isFollowedBy(const OssEvStroke &other) const;
    /// Covers what another stroke did in areas that moveTo() or finish() gave. Throws std::bad_alloc.
    Areas follow(const OssEvStroke &leader, const Areas &areas);

    /// A straight line in the stroke's own coordinates.
    struct Line
    {
        glm::vec2 from; ///< where all is covered
        glm::vec2 to;   ///< where nothing is any more
    };

    /// Called for each tile, with the part that is done; false stops.
    using GoesOn = std::function<bool(double part)>;

    /// Covers at once all that the brush may paint on, as Fill and Gradient do; with a line along that.
    /// False when it was stopped. Throws std::bad_alloc.
    bool fill(const std::optional<Line> &line, const GoesOn &goesOn);

protected:
    using Place = OssEvPaintBuffer::Place;
    using Color = OssEvStrokeTiles::Color;

    /// Buffer and ground must outlive the stroke; null ground: there is nothing beneath the paint.
    /// `scale`: lengths of the path for one of the coordinates.
    OssEvStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush, OssEvPaintGround *ground,
                double scale = 1.0);

    const OssEvBrush &brush() const { return m_brush; }

    OssEvStrokeTiles &tiles() { return m_tiles; }

    /// The only part of the mesh that may be painted on; none: all of it.
    void setRegion(const OssEvPaintRegion &region) { m_region = region; }

    /// Puts a dab down, in lengths of the path; gives its radius there. `heading` as OssEvDabShape takes
    /// it, `number` counts dabs from 0.
    virtual double dab(const OssEvStrokePath::Point &place, double heading,
                       std::uint32_t number) = 0;

    /// Whether dabs do no more than cover: coverage may be set without mark().
    bool onlyCovers() const { return m_onlyCovers; }

    /// A dab covers a texel so much; `touched` is its tile.
    void mark(const Place &place, OssEvStrokeTiles::Tile *touched, int index, float amount,
              const OssEvDabShape &shape);

    /// Where a texel lies, in lengths of the path.
    virtual glm::vec2 spotOf(const Place &place, int index) = 0;
    /// Place in patches, v upwards; none where there is nothing.
    virtual std::optional<glm::vec2> uvAt(const glm::vec2 &spot) = 0;
    /// Triangle of the mesh; -1 where none answers.
    virtual int faceOf(const Place &place, int index) = 0;
    /// Tiles that a fill may reach.
    virtual std::vector<Place> fillPlaces(const OssEvPaintRegion &region) const = 0;
    /// Whether a fill reaches a texel of them.
    virtual bool isOpen(const Place &place, int index) = 0;

    /// All tiles of a patch.
    std::vector<Place> tilesOf(int patch) const;

private:
    /// A texel whose colour a dab changes.
    struct Marked
    {
        Place place;
        int index;
        float amount;
        glm::vec2 spot;
        Color color;
    };

    double putDab(const OssEvStrokePath::Point &place);
    float readyFor(const Place &place, OssEvStrokeTiles::Tile *touched, int index);
    void fillTile(const Place &place, const std::optional<Line> &line);
    glm::vec2 onSheet(const glm::vec2 &spot) const;
    float limitOf(const Place &place, int index);
    Color sourceOf(const Place &place, int index);
    Color pictureAt(const Place &place, int index);
    class Squares;
    /// `radius` of the dab in lengths of the path, and what it is in texels.
    void changeColors(const glm::vec2 &way, double radius, double texels);
    std::optional<Color> blurred(const glm::vec2 &spot, double radius);

    OssEvBrush m_brush;
    OssEvStrokeTiles m_tiles;
    OssEvPaintRegion m_region;
    bool m_onlyCovers;
    double m_scale;
    OssEvStrokePath m_path;
    std::optional<OssEvStrokePath::Point> m_lastDab;
    double m_heading = 0.0;
    std::uint32_t m_count = 0;
    std::vector<Marked> m_marked; ///< by the dab in hand
};

/// A stroke over patches that lie flat. Its places are in patches, v upwards; lengths of its path are
/// texels.
class OSSEVALUATION_EXPORT OssEvFlatStroke final : public OssEvStroke
{
public:
    /// `patches`: where there is something to paint on. The brush's radius is in texels.
    OssEvFlatStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush, std::vector<int> patches,
                    OssEvPaintGround *ground = nullptr);

    /// Paints only on what the brush says of where the stroke begins.
    void keepWithin(const std::shared_ptr<OssEvPaintSurface> &surface, double x, double y);

protected:
    double dab(const OssEvStrokePath::Point &place, double heading, std::uint32_t number) override;
    glm::vec2 spotOf(const Place &place, int index) override;
    std::optional<glm::vec2> uvAt(const glm::vec2 &spot) override;
    int faceOf(const Place &place, int index) override;
    std::vector<Place> fillPlaces(const OssEvPaintRegion &region) const override;
    bool isOpen(const Place &place, int index) override;

private:
    void dabPatch(int patch, double x, double y, const OssEvDabShape &shape);
    void dabTile(const Place &place, const OssEvRegion &part, double x, double y,
                 const OssEvDabShape &shape);

    std::vector<int> m_patches;
    std::shared_ptr<OssEvPaintSurface> m_surface; ///< null where it does not matter
};
