#pragma once

#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include <memory>

struct aiScene;

/// A scene as the reading library hands it over, made into meshes of ours.
namespace OssEvMeshScene {

/// Fills `reading` but for reports, with meshes that finish() was not called for and that may be
/// without texture coordinates. `name` is for the parts of files that name nothing. Takes the scene
/// apart as it goes, so that both are never in memory as a whole. Throws std::bad_alloc.
OssEvResult convert(std::unique_ptr<aiScene> scene, const OssEvMeshFile::Options &options,
                    const std::string &name, std::vector<std::shared_ptr<OssEvMesh>> *meshes,
                    OssEvMeshFile::Reading *reading, const OssEvCancel *cancel);

} // namespace OssEvMeshScene
