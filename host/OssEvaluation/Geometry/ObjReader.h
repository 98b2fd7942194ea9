#pragma once

#include "OssEvaluation/Geometry/OssEvMeshFile.h"

/// Reads OBJ files line by line, with no more memory than the mesh and the file's own numbers need.
/// Understood are v (with colours), vt, vn, f, o, g and usemtl; material libraries are not looked into,
/// for only names of materials count.
namespace ObjReader {

/// Fills `reading` but for reports of parts, with meshes that finish() was not called for and that may be
/// without texture coordinates. Faces that name what the file does not have are left out, which `report`
/// then says. Fails with the line that is no OBJ. Throws std::bad_alloc.
OssEvResult read(const std::string &path, const OssEvMeshFile::Options &options,
                 std::vector<std::shared_ptr<OssEvMesh>> *meshes, OssEvMeshFile::Reading *reading,
                 OssEvMeshCheck::Report *report, const OssEvCancel *cancel,
                 const std::function<void(double)> &progress);

} // namespace ObjReader
