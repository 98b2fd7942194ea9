#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <memory>
#include <set>
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
    std::string clearCoat;     ///< red: how much, green: how rough
    bool hasOcclusion = false; ///< red of the second says something
    bool blends = false;       ///< alpha of the first does
};

/// The faces of one patch with the material that is theirs there: the format has one image for all of a
/// surface, so each patch is a surface of its own, moved to where images lie.
struct Surface
{
    int patch = 1001;
    int material = 0;       ///< index
    std::vector<int> slots; ///< material slots of its faces; none: of whatever slot
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

/// Patches in which faces of these slots are written; of whatever slot where there are none.
OSSEVALUATION_EXPORT std::set<int> patchesOf(const OssEvMesh &mesh, const std::vector<int> &slots);

/// Whole or not at all. Surfaces with normals have tangents. Faces that lie in several patches go with the one of their middle.
OSSEVALUATION_EXPORT OssEvResult write(const Scene &scene, const std::string &path,
                                       const OssEvCancel *cancel = nullptr);

} // namespace OssEvGltf
