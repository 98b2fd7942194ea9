#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

/// Texture coordinates for meshes that have none.
namespace OssEvUnwrap {

/// Gives every face a place of its own in patch 1001, in the same scale all over: neighbouring faces
/// that look into about the same direction become a chart, flattened along it. Where a chart would lie
/// on itself, each of its faces is one. Vertices on the borders of charts are doubled. For a mesh that
/// finish() was not called for; vertices that no face names are left out. The same mesh always gets the
/// same coordinates. Throws std::bad_alloc.
OSSEVALUATION_EXPORT void unwrap(OssEvMesh *mesh);

} // namespace OssEvUnwrap
