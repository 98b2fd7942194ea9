#pragma once

#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Reads STL files, binary or not, with no more memory than the mesh needs. Corners that have the same place and
/// normal, and come near each other in the file, are one vertex. What it does not know (coloured facets, files that
/// are not as they should be) it leaves to the library that reads everything, which also finds the words for what is
/// wrong.
namespace StlReader {

/// Fills `reading` but for reports of parts, with meshes that finish() was not called for. `isUnderstood` tells
/// whether it is the result that counts; otherwise nothing was changed. Throws std::bad_alloc.
OssEvResult read(const std::string &path, const OssEvMeshFile::Options &options,
                 std::vector<std::shared_ptr<OssEvMesh>> *meshes, OssEvMeshFile::Reading *reading,
                 const OssEvCancel *cancel, const std::function<void(double)> &progress,
                 bool *isUnderstood);

} // namespace StlReader
