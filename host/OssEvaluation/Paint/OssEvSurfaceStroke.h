#pragma once

#include "OssEvaluation/Paint/OssEvPaintSurface.h"
#include "OssEvaluation/Paint/OssEvPaintView.h"
#include "OssEvaluation/Paint/OssEvStroke.h"

#include <cstdint>

/// A stroke on an object as it is looked at. Its places are pixels of the view, from its lower left
/// corner.
///
/// A dab is a ball around the place of the surface that lies under the pointer, or beside it where the
/// pointer has left the object: it covers what of the surface lies in the ball and is seen. So dabs
/// follow the surface and go over the seams of its texture and from patch to patch.
class OSSEVALUATION_EXPORT OssEvSurfaceStroke final : public OssEvStroke
{
public:
    using ViewPointer = std::shared_ptr<const OssEvPaintView>;

    /// Buffer and surface are of one resolution; the buffer must outlive the stroke.
    OssEvSurfaceStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush,
                       std::shared_ptr<OssEvPaintSurface> surface, ViewPointer view,
                       OssEvPaintGround *ground = nullptr);

    /// Paints only on what the brush says of a place that is seen; false where there is nothing. Dabs do so
    /// where the first of them lies.
    bool keepWithin(double x, double y);

    /// Where a brush touches the surface.
    struct Touch
    {
        glm::vec3 centre;
        glm::vec3 right; ///< lie on the surface; length 1
        glm::vec3 up;
        float texel;  ///< length of one
        float pixel;  ///< the same
        float radius; ///< of the brush, by its size alone
        float facing; ///< cosine between what looks and the surface
        int triangle; ///< that is touched
    };

    /// None where the brush lies beside the object.
    static std::optional<Touch> touchAt(const OssEvPaintSurface &surface,
                                        const OssEvPaintView &view, const OssEvBrush &brush,
                                        double x, double y);

protected:
    std::unique_ptr<OssEvStroke> twin() const override;
    double dab(const OssEvStrokePath::Point &place, double heading, std::uint32_t number) override;
    glm::vec2 spotOf(const Place &place, int index) override;
    std::optional<glm::vec2> uvAt(const glm::vec2 &spot) override;
    int faceOf(const Place &place, int index) override;
    std::vector<Place> fillPlaces(const OssEvPaintRegion &region) const override;
    bool isOpen(const Place &place, int index) override;

private:
    struct Tile
    {
        OssEvPaintBuffer::Place place;
        std::shared_ptr<const OssEvPaintSurface::Tile> texels;
        OssEvStrokeTiles::Tile *touched = nullptr;
        std::vector<std::uint8_t> own; ///< of a fill, which looks at each texel once
        std::uint8_t *seen = nullptr;  ///< by texel: not known yet, seen, hidden
    };

    /// One side of the object's mirrors.
    struct Side
    {
        glm::mat4 mirror{1.0F}; ///< in the world
        ViewPointer view;       ///< from its side
        bool isOwn = true;      ///< the one that is looked at
        std::map<OssEvPaintBuffer::Place, Tile> tiles;
    };

    void addSides(const std::array<bool, 3> &mirrors);
    void put(const Touch &touch, const OssEvDabShape &shape);
    void putBehind(const Touch &touch, const OssEvDabShape &shape);
    void cover(Side *side, const Touch &touch, const OssEvDabShape &shape);
    void coverTile(const Side &side, Tile *tile, const OssEvRegion &part, const Touch &touch,
                   const OssEvDabShape &shape);
    void coverTexel(Tile *tile, std::size_t index, float amount, const OssEvDabShape &shape);
    bool isSeen(const Side &side, Tile *tile, std::size_t index) const;
    Tile &tileAt(Side *side, const OssEvPaintBuffer::Place &place);
    const OssEvPaintSurface::Tile &texelsOf(const Place &place);

    std::shared_ptr<OssEvPaintSurface> m_surface;
    ViewPointer m_view;
    std::vector<Side> m_sides;
    const Side *m_side = nullptr; ///< that is being covered
    Place m_texelsPlace{};
    std::shared_ptr<const OssEvPaintSurface::Tile> m_texels; ///< asked for last
    Tile m_open;                                             ///< that a fill is at
    bool m_hasBegun = false;
    std::optional<Touch> m_last;
    OssEvStrokePath::Point m_lastPlace{};
};
