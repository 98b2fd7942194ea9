#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class OssEvMesh;

/// Boxes around boxes around triangles, so that a ray looks at few of them (split at the median
/// along the longest side of their middles, after I. Wald, S. Boulos, P. Shirley, "Ray Tracing Deformable Scenes Using
/// Dynamic Bounding Volume Hierarchies", 2007).
class OSSEVALUATION_EXPORT OssEvRayTree
{
public:
    using Vector3 = std::array<float, 3>;

    explicit OssEvRayTree(const OssEvMesh &mesh);

    /// Whether anything lies on the ray nearer than `distance`. The direction has length 1.
    bool isHit(const Vector3 &origin, const Vector3 &direction, float distance) const;

    /// Where a ray meets the surface.
    struct Hit
    {
        std::uint32_t triangle = 0; ///< of the mesh
        float distance = 0.0F;      ///< in lengths of the direction
        float second = 0.0F;        ///< weights of the triangle's second and third corner
        float third = 0.0F;
    };

    /// The first one from the origin on; none beyond `distance`.
    std::optional<Hit> firstHit(const Vector3 &origin, const Vector3 &direction,
                                float distance) const;

    /// How far the nearest surface is from a place, of triangles that `counts` tells true of; `distance` where
    /// none is nearer.
    float nearest(const Vector3 &place, float distance,
                  const std::function<bool(std::uint32_t triangle)> &counts) const;

    /// Triangles of the mesh of which a part may lie in a box.
    void trianglesIn(const Vector3 &low, const Vector3 &high,
                     std::vector<std::uint32_t> *triangles) const;

private:
    struct Box
    {
        Vector3 low{1e30F, 1e30F, 1e30F};
        Vector3 high{-1e30F, -1e30F, -1e30F};

        void add(const Vector3 &point);
    };

    struct Node
    {
        Box box;
        /// First triangle of a leaf; else the second child, the first one being the next node.
        std::uint32_t next = 0;
        /// Triangles of a leaf, 0 for an inner node.
        std::uint32_t count = 0;
    };

    /// One corner and the edges from it.
    struct Triangle
    {
        Vector3 corner;
        Vector3 first;
        Vector3 second;

        /// Its number in the mesh is not told.
        bool isHitBy(const Vector3 &origin, const Vector3 &direction, Hit *hit) const;
        float squareFrom(const Vector3 &place) const;
    };

    /// Calls `visit(node)` for leaves of boxes that `enters(box)` does not refuse, near each other in the
    /// mesh one after the other, until it gives false.
    template <class Enters, class Visit>
    void walk(const Enters &enters, const Visit &visit) const;
    static bool isMissed(const Box &box, const Vector3 &origin, const Vector3 &inverse,
                         float distance);

    void build(std::vector<std::uint32_t> *order, const std::vector<Vector3> &centres,
               const OssEvMesh &mesh);

    std::vector<Node> m_nodes;
    std::vector<Triangle> m_triangles;
    std::vector<std::uint32_t> m_order; ///< of m_triangles, in the mesh
};
