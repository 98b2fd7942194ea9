#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <array>
#include <cstdint>
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
    };

    void build(std::vector<std::uint32_t> *order, const std::vector<Vector3> &centres,
               const OssEvMesh &mesh);

    std::vector<Node> m_nodes;
    std::vector<Triangle> m_triangles;
};
