#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvPaintSurface.h"
#include "OssEvaluation/Paint/OssEvStrokePath.h"
#include "OssEvaluation/Paint/OssEvStrokeTiles.h"

#include <glm/vec2.hpp>

#include <functional>
#include <memory>
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

    /// The buffer may be copied now: the copy stays as it is while the stroke goes on.
    void share() { m_tiles.share(); }

    /// Whether another stroke of the same shape and place covers just what this one does, whatever their colours
    /// are: then it may follow() instead of going on by itself.
    bool isFollowedBy(const OssEvStroke &other) const;
    /// Covers what another stroke did in areas that moveTo() or finish() gave. Throws std::bad_alloc.
    Areas follow(const OssEvStroke &leader, const Areas &areas);

    /// A straight line in the stroke's own coordinates.
    struct Line
    {
        glm::vec2 from; ///< where all is as the brush has it
        glm::vec2 to;   ///< where nothing is covered any more, or all has the second colour
    };

    /// Called for each tile, by any thread, with the part that is done; false stops.
    using GoesOn = std::function<bool(double part)>;

    /// Covers at once all that the brush may paint on, as Fill and Gradient do; with a line along that.
    /// `followers`, which isFollowedBy() holds for, cover the same. False when it was stopped: then nothing is
    /// covered. On the threads of the pool, and always the same. Throws std::bad_alloc.
    bool fill(const std::optional<Line> &line, const GoesOn &goesOn,
              const std::vector<OssEvStroke *> &followers = {});

protected:
    using Place = OssEvPaintBuffer::Place;
    using Color = OssEvStrokeTiles::Color;

    /// Buffer and ground must outlive the stroke; null ground: there is nothing beneath the paint.
    /// `scale`: lengths of the path for one of the coordinates.
    OssEvStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush, OssEvPaintGround *ground,
                double scale = 1.0);

    /// One of the same brush, buffer and region that has painted nothing yet, for another thread: surface and
    /// ground are shared.
    virtual std::unique_ptr<OssEvStroke> twin() const = 0;

    const OssEvBrush &brush() const { return m_brush; }

    OssEvPaintBuffer *buffer() const { return m_buffer; }

    OssEvPaintGround *ground() const { return m_ground; }

    const OssEvPaintRegion &region() const { return m_region; }

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
    class Filler;
    bool coverTile(const Place &place, const std::optional<Line> &line,
                   OssEvStrokeTiles::Tile *made);
    glm::vec2 onSheet(const glm::vec2 &spot) const;
    float limitOf(const Place &place, int index);
    Color sourceOf(const Place &place, int index);
    Color pictureAt(const Place &place, int index);
    class Looks;
    /// `radius` of the dab in lengths of the path, and what it is in texels.
    void changeColors(const glm::vec2 &way, double radius, double texels);
    std::optional<Color> blurred(const glm::vec2 &spot, double radius);

    OssEvBrush m_brush;
    OssEvPaintBuffer *m_buffer;
    OssEvPaintGround *m_ground;
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
    std::unique_ptr<OssEvStroke> twin() const override;
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
