#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <memory>
#include <vector>

/// Flat; places are texture coordinates.
inline std::shared_ptr<OssEvMesh> flat(const std::vector<OssEvMesh::Vector2> &corners,
                                       const std::vector<std::array<std::uint32_t, 3>> &triangles)
{
    auto mesh = std::make_shared<OssEvMesh>();
    for (const OssEvMesh::Vector2 &corner : corners)
        mesh->positions.push_back({corner[0], corner[1], 0.0F});
    mesh->uvs = corners;
    mesh->triangles = triangles;
    return mesh;
}

inline std::shared_ptr<OssEvMesh> square(float left, float bottom, float right, float top)
{
    return flat({{left, bottom}, {right, bottom}, {right, top}, {left, top}},
                {{0, 1, 2}, {0, 2, 3}});
}
