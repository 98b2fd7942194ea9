#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <memory>
#include <string>

/// Reads meshes of all common formats.
namespace OssEvMeshFile {

/// All meshes of a file as one, with the transformations of its scene applied; polygons become
/// triangles, lines and points are left out. Refuses files without faces or texture coordinates,
/// with numbers that are none, and such as are too large to be meant.
OSSEVALUATION_EXPORT OssEvResult read(const std::string &path,
                                      std::shared_ptr<const OssEvMesh> *mesh);

} // namespace OssEvMeshFile
