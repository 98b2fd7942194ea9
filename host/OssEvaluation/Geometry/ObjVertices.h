#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <assimp/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

/// The numbers of an OBJ file.
struct ObjNumbers
{
    /// Places among v, vt and vn; None where it names none.
    using Corner = std::array<std::uint32_t, 3>;
    static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

    std::vector<OssEvMesh::Vector3> places;
    std::vector<OssEvMesh::Vector2> uvs;
    std::vector<OssEvMesh::Vector3> normals;
    std::vector<std::array<float, 4>> colors; ///< none, or one for each place

    std::size_t count(std::size_t of) const
    {
        return of == 0 ? places.size() : of == 1 ? uvs.size() : normals.size();
    }
};

/// Vertices of one object and material slot, in which those of the same numbers are one.
class ObjVertices
{
public:
    using Corner = ObjNumbers::Corner;

    /// The numbers must outlive it, and may become more.
    ObjVertices(const ObjNumbers &numbers, const aiMatrix4x4 &matrix, bool takesUvs);

    /// The mesh's vertex, which is added where it is new.
    std::uint32_t of(const Corner &corner, OssEvMesh *mesh);

private:
    template <class Visitor>
    void visit(const Corner &corner, const Visitor &visitor) const;
    std::size_t hash(const Corner &corner) const;
    bool isSame(const Corner &a, const Corner &b) const;
    std::uint32_t add(const Corner &corner, OssEvMesh *mesh) const;
    void grow();

    const ObjNumbers &m_numbers;
    const aiMatrix4x4 m_matrix;
    aiMatrix3x3 m_forNormals;
    bool m_takesUvs;
    std::vector<std::uint32_t> m_table;
    std::vector<std::pair<Corner, std::uint32_t>> m_firsts; ///< with the mesh's vertex
};
