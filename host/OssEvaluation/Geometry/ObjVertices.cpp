#include "OssEvaluation/Geometry/ObjVertices.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t None = ObjNumbers::None;

} // namespace

ObjVertices::ObjVertices(const ObjNumbers &numbers, const aiMatrix4x4 &matrix, bool takesUvs)
    : m_numbers(numbers)
    , m_matrix(matrix)
    , m_forNormals(matrix)
    , m_takesUvs(takesUvs)
    , m_table(std::size_t(1) << 10, None)
{
    m_forNormals.Inverse().Transpose();
}

std::uint32_t ObjVertices::of(const Corner &corner, OssEvMesh *mesh)
{
    if (3 * m_firsts.size() > 2 * m_table.size())
        grow();
    const std::size_t mask = m_table.size() - 1;
    std::size_t slot = hash(corner) & mask;
    while (m_table[slot] != None && !isSame(m_firsts[m_table[slot]].first, corner))
        slot = (slot + 1) & mask;
    if (m_table[slot] == None) {
        m_table[slot] = std::uint32_t(m_firsts.size());
        m_firsts.emplace_back(corner, add(corner, mesh));
    }
    return m_firsts[m_table[slot]].second;
}

template <class Visitor>
void ObjVertices::visit(const Corner &corner, const Visitor &visitor) const
{
    visitor(m_numbers.places[corner[0]]);
    if (m_takesUvs && corner[1] != None)
        visitor(m_numbers.uvs[corner[1]]);
    if (corner[2] != None)
        visitor(m_numbers.normals[corner[2]]);
}

std::size_t ObjVertices::hash(const Corner &corner) const
{
    std::uint64_t sum = 0x9E3779B97F4A7C15ULL;
    visit(corner, [&sum](const auto &numbers) {
        for (const float number : numbers) {
            std::uint32_t word = 0;
            std::memcpy(&word, &number, sizeof(word));
            sum = (sum ^ word) * 0xFF51AFD7ED558CCDULL;
            sum ^= sum >> 32;
        }
    });
    return std::size_t(sum);
}

bool ObjVertices::isSame(const Corner &a, const Corner &b) const
{
    if (a == b)
        return true;
    const auto equal = [](const auto &list, std::uint32_t one, std::uint32_t other) {
        if (one == None || other == None)
            return one == other;
        return one == other || std::memcmp(&list[one], &list[other], sizeof(list[one])) == 0;
    };
    const auto hasSameColor = [this, &a, &b] {
        const bool areThere = std::max(a[0], b[0]) < m_numbers.colors.size();
        return !areThere || m_numbers.colors[a[0]] == m_numbers.colors[b[0]];
    };
    return equal(m_numbers.places, a[0], b[0]) && (!m_takesUvs || equal(m_numbers.uvs, a[1], b[1]))
           && equal(m_numbers.normals, a[2], b[2]) && hasSameColor();
}

std::uint32_t ObjVertices::add(const Corner &corner, OssEvMesh *mesh) const
{
    const OssEvMesh::Vector3 &from = m_numbers.places[corner[0]];
    const aiVector3D place = m_matrix * aiVector3D(from[0], from[1], from[2]);
    aiVector3D normal;
    if (corner[2] != None) {
        const OssEvMesh::Vector3 &given = m_numbers.normals[corner[2]];
        normal = (m_forNormals * aiVector3D(given[0], given[1], given[2])).NormalizeSafe();
    }
    if (corner[0] < m_numbers.colors.size() || !mesh->colors.empty()) {
        const std::array<float, 4> white{1.0F, 1.0F, 1.0F, 1.0F};
        mesh->colors.resize(mesh->positions.size(), white);
        mesh->colors.push_back(corner[0] < m_numbers.colors.size() ? m_numbers.colors[corner[0]]
                                                                   : white);
    }
    mesh->positions.push_back({place.x, place.y, place.z});
    mesh->normals.push_back({normal.x, normal.y, normal.z});
    mesh->uvs.push_back(m_takesUvs && corner[1] != None ? m_numbers.uvs[corner[1]]
                                                        : OssEvMesh::Vector2{});
    return std::uint32_t(mesh->positions.size() - 1);
}

void ObjVertices::grow()
{
    std::vector<std::uint32_t> larger(2 * m_table.size(), None);
    const std::size_t mask = larger.size() - 1;
    for (std::uint32_t i = 0; i < m_firsts.size(); ++i) {
        std::size_t slot = hash(m_firsts[i].first) & mask;
        while (larger[slot] != None)
            slot = (slot + 1) & mask;
        larger[slot] = i;
    }
    m_table.swap(larger);
}
