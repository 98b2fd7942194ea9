#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <array>
#include <cstdint>
#include <vector>

/// Tangents of a surface as MikkTSpace defines them, which is what normal maps are made for: each
/// corner's is the mean of those of the faces around it, weighed by their angles, as far as they have the
/// vertex, its normal and texture coordinates in common and are neither mirrored against nor opposed to
/// each other. As a vertex where such groups meet has several tangents, the surface's vertices with
/// tangents are more than the mesh's. In the object's own space, as the mesh is.
struct OSSEVALUATION_EXPORT OssEvTangents
{
    /// x, y and z: length 1, at a right angle to the normal, where u grows. w is 1 or -1: v grows along
    /// w * cross(normal, xyz).
    using Tangent = std::array<float, 4>;

    /// For each vertex the one of the mesh that it is, and its tangent.
    std::vector<std::uint32_t> sources;
    std::vector<Tangent> tangents;
    /// In the order of the mesh's, of vertices of the above.
    std::vector<std::array<std::uint32_t, 3>> triangles;

    /// Of a finished mesh. Faces without extent have the tangents of those around them; where no texture
    /// coordinates tell a direction, there is some. Any thread; throws std::bad_alloc.
    static OssEvTangents of(const OssEvMesh &mesh);
};
