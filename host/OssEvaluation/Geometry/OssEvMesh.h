#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class OssEvMeshFacts;
class OssEvRayTree;

/// Triangles with texture coordinates. Immutable once shared.
class OSSEVALUATION_EXPORT OssEvMesh
{
public:
    using Vector3 = std::array<float, 3>;
    using Vector2 = std::array<float, 2>;

    /// One value each per vertex. Positions in the object's own space.
    std::vector<Vector3> positions;
    std::vector<Vector3> normals;
    /// v grows upwards. The integer parts name the UDIM patch.
    std::vector<Vector2> uvs;
    /// Red, green, blue and alpha as the file has them, not premultiplied; none at all where it has
    /// none.
    std::vector<std::array<float, 4>> colors;
    /// Three vertices each.
    std::vector<std::array<std::uint32_t, 3>> triangles;
    /// Face as the file counts them, for each triangle.
    std::vector<std::int32_t> faces;
    /// Material slot of each triangle, by its place in materialNames. Missing ones are the first.
    std::vector<std::int32_t> materials;
    std::vector<std::string> materialNames;
    /// No two vertices have the same place. Whoever knows saves finish() a look; nothing else follows.
    bool hasSeparatePlaces = false;
    /// Object to world, three rows of four.
    std::array<float, 12> world{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};

    /// Whether all coordinates are numbers, as files need not have them.
    bool isFinite() const;

    /// Checks what the rest relies on: equal counts, indices in range, finite numbers, texture
    /// coordinates within what UDIM numbers can name. Makes normals that are missing or 0 and fixes
    /// the key. Must succeed before the mesh is used; `name` is for messages.
    OssEvResult finish(const std::string &name);

    /// Hash of all of the above.
    const OssEvKey &key() const { return m_key; }

    /// UDIM numbers of patches that a face lies in, ascending.
    const std::vector<int> &patches() const { return m_patches; }

    /// Triangles that touch the inside of a patch.
    const std::vector<std::int32_t> &trianglesOf(int patch) const;

    /// For rays against the surface. Made when it is first asked for, on any thread; throws
    /// std::bad_alloc.
    const OssEvRayTree &rayTree() const;

    /// Likewise made when it is first asked for.
    const OssEvMeshFacts &facts() const;

private:
    template <class Value>
    struct Lazy
    {
        std::once_flag once;
        std::unique_ptr<const Value> value;

        const Value &of(const OssEvMesh &mesh)
        {
            std::call_once(once, [&] { value = std::make_unique<Value>(mesh); });
            return *value;
        }
    };

    OssEvResult check(const std::string &name) const;
    void makeNormals();
    void findPatches();

    OssEvKey m_key;
    std::shared_ptr<Lazy<OssEvRayTree>> m_rayTree;
    std::shared_ptr<Lazy<OssEvMeshFacts>> m_facts;
    std::vector<int> m_patches;
    std::vector<std::vector<std::int32_t>> m_patchTriangles;
};

/// Meshes that need no file.
namespace OssEvShapes {

/// Unit square in the xy plane, facing z, filling patch 1001.
OSSEVALUATION_EXPORT std::shared_ptr<const OssEvMesh> plane();

/// Radius 1 around the origin, poles on y, one patch with the seam where x is negative and z is 0.
OSSEVALUATION_EXPORT std::shared_ptr<const OssEvMesh> sphere();

/// Edges of length 1 around the origin; each side fills a patch, 1001 to 1006.
OSSEVALUATION_EXPORT std::shared_ptr<const OssEvMesh> cube();

/// Radius 0.5 and height 1 around the origin, along y, in one patch: the side below, the ends above.
OSSEVALUATION_EXPORT std::shared_ptr<const OssEvMesh> cylinder();

/// A ball with a groove on a foot, for looking at materials, in one patch. Two material slots, "Ball"
/// and "Foot".
OSSEVALUATION_EXPORT std::shared_ptr<const OssEvMesh> shaderBall();

} // namespace OssEvShapes
