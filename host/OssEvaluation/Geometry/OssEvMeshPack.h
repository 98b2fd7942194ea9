#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <memory>
#include <string>

/// Finished meshes as files of ours, for keeping: what is read back has the same key. Any thread.
namespace OssEvMeshPack {

/// Writes the file in place. Fails with file and reason.
OSSEVALUATION_EXPORT OssEvResult write(const std::string &path, const OssEvMesh &mesh);

/// Refuses what is damaged, cut off or of another version, with file and reason.
OSSEVALUATION_EXPORT OssEvResult read(const std::string &path,
                                      std::shared_ptr<const OssEvMesh> *mesh);

} // namespace OssEvMeshPack
