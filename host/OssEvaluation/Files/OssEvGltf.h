#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <memory>
#include <string>
#include <vector>

/// Objects and their textures as one binary glTF file.
namespace OssEvGltf {

/// Paths of PNG files; empty for none.
struct Material
{
    std::string name;
    std::string baseColor;
    std::string occlusionRoughnessMetallic;
    std::string normal;
    std::string emissive;
    bool hasOcclusion = false; ///< red of the second says something
    bool blends = false;       ///< alpha of the first does
};

/// The faces of one patch with the material that is theirs there: the format has one image for all of a
/// surface, so each patch is a surface of its own, moved to where images lie.
struct Surface
{
    int patch = 1001;
    int material = 0; ///< index
};

struct Object
{
    std::string name;
    std::shared_ptr<const OssEvMesh> mesh;
    std::vector<Surface> surfaces;
};

struct Scene
{
    std::vector<Object> objects;
    std::vector<Material> materials;
};

/// Whole or not at all. Faces that lie in several patches go with the one of their middle.
OSSEVALUATION_EXPORT OssEvResult write(const Scene &scene, const std::string &path,
                                       const OssEvCancel *cancel = nullptr);

} // namespace OssEvGltf
