#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <cstdint>
#include <vector>

/// Polygons into triangles.
namespace OssEvPolygons {

/// Adds triangles that cover the polygon with the given corners (indices of `positions`): two less than
/// it has corners, whatever its shape, so that no hole is left beside its neighbours. A polygon that is
/// flat and does not cut itself is covered exactly, also where it is hollow. Nothing for less than
/// three corners.
OSSEVALUATION_EXPORT void addTriangles(const std::vector<OssEvMesh::Vector3> &positions,
                                       const std::vector<std::uint32_t> &corners,
                                       std::vector<std::array<std::uint32_t, 3>> *triangles);

} // namespace OssEvPolygons
