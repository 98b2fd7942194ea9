#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class OssEvPaintSurface;

/// Where an object is looked at from while it is painted on, and how deep what is seen lies: so that
/// paint reaches nothing that is hidden. Places in pixels from the lower left corner.
///
/// Immutable, but for what strokes note and have mirrored. Measuring depths takes some 50 ns for each triangle.
class OSSEVALUATION_EXPORT OssEvPaintView
{
public:
    /// World to clip space, of OpenGL's kind, and pixels of the picture. Without a surface no depths are
    /// known, and all of it is taken as seen. Throws std::bad_alloc.
    OssEvPaintView(const OssEvPaintSurface *surface, const glm::mat4 &toClip, int width,
                   int height);

    const glm::vec3 &eye() const { return m_eye; }

    /// To the right on the picture; length 1.
    const glm::vec3 &right() const { return m_right; }

    /// From the eye through a place, as long as that is far from it in depth 1.
    glm::vec3 ray(double x, double y) const;

    /// Pixel and, as z, how far it is from the eye in depth; none behind it.
    std::optional<glm::vec3> project(const glm::vec3 &place) const;

    /// Length in the world that a pixel takes at a depth.
    float pixel(float depth) const { return m_pixel * depth; }

    /// Whether a circle reaches into the picture.
    bool reaches(double x, double y, double radius) const;

    /// Whether a place lies within the borders of the picture.
    bool isWithin(const glm::vec3 &place) const;

    /// From the other side of a mirror, with the same surface if this has one; kept. One thread at a time. Throws
    /// std::bad_alloc.
    std::shared_ptr<const OssEvPaintView> mirrored(const OssEvPaintSurface &surface,
                                                   const glm::mat4 &mirror) const;

    /// Whether nothing lies before a place of the surface that was drawn, also beyond the borders of the picture.
    bool isSeen(const OssEvPaintSurface &surface, const glm::vec3 &place) const;

    /// What strokes from here found out of the texels of one of the surface's tiles, 0 where they found nothing yet:
    /// the next ones need not look again. One thread at a time. Throws std::bad_alloc.
    std::vector<std::uint8_t> &noteOf(const std::shared_ptr<const OssEvPaintSurface> &surface,
                                      const OssEvPaintBuffer::Place &tile) const;

    /// Place in patches of what is seen, with the surface that was drawn; none beside it. Beyond the borders, too.
    std::optional<glm::vec2> uvAt(const OssEvPaintSurface &surface, double x, double y) const;

    /// The pixel nearest to a place on which the surface is seen, and its depth as z.
    std::optional<glm::vec3> nearestSeen(double x, double y, double within) const;

private:
    void draw(const OssEvPaintSurface &surface);
    void drawTriangle(const glm::vec3 &a, const glm::vec3 &b, const glm::vec3 &c,
                      std::int32_t number);
    float at(int x, int y) const;
    bool isOnPicture(double x, double y) const;
    bool isMetFirst(const OssEvPaintSurface &surface, const glm::vec3 &place) const;

    using Notes = std::map<OssEvPaintBuffer::Place, std::vector<std::uint8_t>>;

    glm::mat4 m_toClip;
    int m_width;
    int m_height;
    glm::vec3 m_eye{};
    glm::vec3 m_right{};
    glm::vec3 m_corner{}; ///< ray of the lower left corner
    glm::vec3 m_alongX{}; ///< change of the ray by pixel
    glm::vec3 m_alongY{};
    float m_pixel = 0.0F;
    std::vector<float> m_nearness; ///< 1 by depth; 0 where nothing is seen
    mutable std::map<std::weak_ptr<const OssEvPaintSurface>, Notes, std::owner_less<>> m_notes;
    std::vector<std::int32_t> m_triangles; ///< the one that is seen; -1: none
    mutable std::vector<std::pair<glm::mat4, std::shared_ptr<const OssEvPaintView>>> m_mirrored;
};
