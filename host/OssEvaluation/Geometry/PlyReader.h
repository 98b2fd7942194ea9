#pragma once

#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Reads PLY files, binary or not, straight into the mesh. What it does not know (strips, texture coordinates of
/// corners, materials, files that are not as they should be) it leaves to the library that reads everything, which
/// also finds the words for what is wrong.
namespace PlyReader {

/// As OssEvMeshScene::convert(), of which it gives the very same. `isUnderstood` tells whether it is the result that
/// counts; otherwise nothing was changed. Throws std::bad_alloc.
OssEvResult read(const std::string &path, const OssEvMeshFile::Options &options,
                 std::vector<std::shared_ptr<OssEvMesh>> *meshes, OssEvMeshFile::Reading *reading,
                 const OssEvCancel *cancel, const std::function<void(double)> &progress,
                 bool *isUnderstood);

} // namespace PlyReader
