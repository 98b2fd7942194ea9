#pragma once

#include "OssRender/OssRender_export.h"
#include "OssRender/Surface/OssRdGeometry.h"
#include "OssRender/Surface/OssRdMaterial.h"

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

/// Surfaces that really stand out: a mesh is divided and its vertices are moved along their normals. What
/// is at one place stays at one place, whatever patches and materials meet there, so that nothing gapes.
/// Normals stay those of the mesh: the map bends light as it does without.
namespace OssRdDisplacement {

/// What lies on the faces of material slots; none: on all.
struct Skin
{
    std::map<int, OssRdMaterial> materials; ///< by patch
    std::vector<int> slots;
};

constexpr int MostLevels = 8;

/// How often each triangle can be divided by four: at most `wanted` times, and as a quarter of the memory
/// that is free holds the result.
OSSRENDER_EXPORT int levelsFor(const OssRdGeometry &geometry, int wanted);

/// Null where nothing stands out. Any thread. Throws std::bad_alloc.
OSSRENDER_EXPORT std::shared_ptr<const OssRdGeometry> of(const OssRdGeometry &geometry,
                                                         const std::vector<Skin> &skins,
                                                         int levels);

} // namespace OssRdDisplacement
