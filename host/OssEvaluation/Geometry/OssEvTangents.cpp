#include "OssEvaluation/Geometry/OssEvTangents.h"

#include "OssEvaluation/Geometry/EqualVertices.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Vector3 = OssEvMesh::Vector3;
using Triangle = std::array<std::uint32_t, 3>;

constexpr std::uint32_t None = 0xFFFFFFFFU;
/// Cosine from which directions count as opposed.
constexpr float Opposed = -1.0F + 1e-6F;
/// Of faces around a vertex that are compared with each other.
constexpr std::size_t MostCompared = 64;

Vector3 minus(const Vector3 &a, const Vector3 &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

float dot(const Vector3 &a, const Vector3 &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

bool isSomething(float number)
{
    return std::abs(number) > std::numeric_limits<float>::min();
}

Vector3 unit(const Vector3 &vector)
{
    const float length = std::sqrt(dot(vector, vector));
    return isSomething(length) ? Vector3{vector[0] / length, vector[1] / length, vector[2] / length}
                               : Vector3{};
}

/// Length 1, in the plane of a normal.
Vector3 inPlane(const Vector3 &vector, const Vector3 &normal)
{
    const float height = dot(normal, vector);
    return unit({vector[0] - normal[0] * height, vector[1] - normal[1] * height,
                 vector[2] - normal[2] * height});
}

/// A direction where none is told.
Vector3 anyTangent(const Vector3 &normal)
{
    const bool isAlongX = std::abs(normal[0]) > 0.9F;
    return inPlane(isAlongX ? Vector3{0.0F, 1.0F, 0.0F} : Vector3{1.0F, 0.0F, 0.0F}, normal);
}

struct Face
{
    Vector3 along{};         ///< where u grows, length 1
    Vector3 across{};        ///< where v grows, length 1
    bool isEmpty = false;    ///< two corners are in one place
    bool suitsAny = true;    ///< its texture coordinates have no extent
    bool isMirrored = false; ///< v grows to the right of u
    /// Across the edge from each corner to the next.
    std::array<std::uint32_t, 3> neighbours{None, None, None};
    std::array<std::uint32_t, 3> groups{None, None, None}; ///< of its corners
};

/// Corners that share a tangent.
struct Group
{
    std::uint32_t vertex; ///< of the welded
    bool isMirrored;
    Vector3 sum{};
};

/// A face of the group that is being made.
struct Member
{
    std::uint32_t face;
    std::size_t corner;
    float angle;
    Vector3 along; ///< this and the next in the plane of the vertex's normal
    Vector3 across;

    bool isOpposed(const Member &other) const
    {
        return dot(along, other.along) <= Opposed || dot(across, other.across) <= Opposed;
    }
};

class Tangents
{
public:
    explicit Tangents(const OssEvMesh &mesh)
        : m_mesh(mesh)
        , m_faces(mesh.triangles.size())
        , m_triangles(mesh.triangles)
        , m_welded(firstOfEqual(mesh.positions.size(), [&mesh](std::uint32_t i) {
            const Vector3 &place = mesh.positions[i];
            const Vector3 &normal = mesh.normals[i];
            return std::array<float, 8>{place[0],  place[1],  place[2],       normal[0],
                                        normal[1], normal[2], mesh.uvs[i][0], mesh.uvs[i][1]};
        }))
    {
        for (Triangle &triangle : m_triangles) {
            for (std::uint32_t &vertex : triangle)
                vertex = m_welded[vertex];
        }
        for (std::size_t i = 0; i < m_faces.size(); ++i)
            lookAt(m_triangles[i], &m_faces[i]);
        findNeighbours();
        for (std::uint32_t i = 0; i < m_faces.size(); ++i)
            makeGroups(i);
    }

    OssEvTangents result()
    {
        joinEmptyFaces();
        OssEvTangents made;
        made.triangles.resize(m_triangles.size());
        // The vertices made of each of the mesh's, as a list: the first, and the next for each.
        std::vector<std::uint32_t> first(m_mesh.positions.size(), None);
        std::vector<std::uint32_t> next;
        std::vector<std::uint32_t> groupOf;
        for (std::size_t i = 0; i < m_triangles.size(); ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                const std::uint32_t vertex = m_mesh.triangles[i][k];
                const std::uint32_t group = m_faces[i].groups[k];
                std::uint32_t place = first[vertex];
                while (place != None && groupOf[place] != group)
                    place = next[place];
                if (place == None) {
                    place = std::uint32_t(groupOf.size());
                    groupOf.push_back(group);
                    next.push_back(first[vertex]);
                    first[vertex] = place;
                    made.sources.push_back(vertex);
                    made.tangents.push_back(tangent(group, vertex));
                }
                made.triangles[i][k] = place;
            }
        }
        return made;
    }

private:
    void lookAt(const Triangle &triangle, Face *face) const
    {
        const auto &[a, b, c] = triangle;
        const Vector3 &from = m_mesh.positions[a];
        face->isEmpty = from == m_mesh.positions[b] || from == m_mesh.positions[c]
                        || m_mesh.positions[b] == m_mesh.positions[c];
        const Vector3 first = minus(m_mesh.positions[b], from);
        const Vector3 second = minus(m_mesh.positions[c], from);
        const auto uv = [this, start = a](std::uint32_t vertex, std::size_t k) {
            return m_mesh.uvs[vertex][k] - m_mesh.uvs[start][k];
        };
        const float area = uv(b, 0) * uv(c, 1) - uv(b, 1) * uv(c, 0);
        face->isMirrored = area <= 0.0F;
        if (!isSomething(area))
            return;
        for (std::size_t k = 0; k < 3; ++k) {
            face->along[k] = uv(c, 1) * first[k] - uv(b, 1) * second[k];
            face->across[k] = uv(b, 0) * second[k] - uv(c, 0) * first[k];
        }
        const float size = std::abs(area);
        face->suitsAny = !isSomething(std::sqrt(dot(face->along, face->along)) / size)
                         || !isSomething(std::sqrt(dot(face->across, face->across)) / size);
        for (Vector3 *direction : {&face->along, &face->across}) {
            *direction = unit(*direction);
            for (float &number : *direction)
                number = face->isMirrored ? -number : number;
        }
    }

    /// Faces share an edge when they have it in opposite directions; where more than two do, the first
    /// two that may.
    void findNeighbours()
    {
        struct Edge
        {
            std::uint32_t high, face, corner;
            bool isUp;
        };

        std::vector<std::uint32_t> starts(m_mesh.positions.size() + 1);
        const auto forAll = [this](const auto &visit) {
            for (std::uint32_t i = 0; i < m_faces.size(); ++i) {
                for (std::uint32_t k = 0; k < 3 && !m_faces[i].isEmpty; ++k)
                    visit(i, k, m_triangles[i][k], m_triangles[i][(k + 1) % 3]);
            }
        };
        forAll([&starts](std::uint32_t, std::uint32_t, std::uint32_t a, std::uint32_t b) {
            ++starts[std::min(a, b) + 1];
        });
        for (std::size_t i = 1; i < starts.size(); ++i)
            starts[i] += starts[i - 1];
        std::vector<Edge> edges(starts.back());
        std::vector<std::uint32_t> ends(starts.begin(), starts.end() - 1);
        forAll([&](std::uint32_t face, std::uint32_t corner, std::uint32_t a, std::uint32_t b) {
            edges[ends[std::min(a, b)]++] = {std::max(a, b), face, corner, a < b};
        });
        for (std::size_t vertex = 0; vertex + 1 < starts.size(); ++vertex) {
            const auto begin = edges.begin() + starts[vertex];
            const auto end = edges.begin() + starts[vertex + 1];
            std::stable_sort(begin, end,
                             [](const Edge &a, const Edge &b) { return a.high < b.high; });
            for (auto edge = begin; edge != end; ++edge) {
                std::uint32_t &mine = m_faces[edge->face].neighbours[edge->corner];
                for (auto other = edge + 1;
                     mine == None && other != end && other->high == edge->high; ++other) {
                    std::uint32_t &its = m_faces[other->face].neighbours[other->corner];
                    if (its != None || other->isUp == edge->isUp)
                        continue;
                    mine = other->face;
                    its = edge->face;
                }
            }
        }
    }

    void makeGroups(std::uint32_t index)
    {
        const Face &face = m_faces[index];
        for (std::size_t k = 0; k < 3 && !face.isEmpty && !face.suitsAny; ++k) {
            if (face.groups[k] != None)
                continue;
            m_groups.push_back({m_triangles[index][k], face.isMirrored, {}});
            m_members.clear();
            std::vector<std::uint32_t> waiting{index};
            while (!waiting.empty()) {
                const std::uint32_t next = waiting.back();
                waiting.pop_back();
                join(next, &waiting);
            }
            addUp(std::uint32_t(m_groups.size()) - 1);
        }
    }

    /// The corner of a face that is the last group's vertex, if it may; what lies beyond it is next.
    void join(std::uint32_t index, std::vector<std::uint32_t> *waiting)
    {
        Face *face = &m_faces[index];
        Group *group = &m_groups.back();
        std::size_t corner = 0;
        while (corner < 2 && m_triangles[index][corner] != group->vertex)
            ++corner;
        if (face->groups[corner] != None)
            return;
        const bool isFree = face->groups == std::array<std::uint32_t, 3>{None, None, None};
        if (face->suitsAny && isFree)
            face->isMirrored = group->isMirrored;
        if (face->isMirrored != group->isMirrored)
            return;
        face->groups[corner] = std::uint32_t(m_groups.size()) - 1;
        if (!face->suitsAny)
            m_members.push_back(member(index, corner));
        const std::size_t before = (corner + 2) % 3;
        for (const std::uint32_t neighbour : {face->neighbours[before], face->neighbours[corner]}) {
            if (neighbour != None)
                waiting->push_back(neighbour);
        }
    }

    Member member(std::uint32_t index, std::size_t corner) const
    {
        const Triangle &triangle = m_triangles[index];
        const Vector3 &normal = m_mesh.normals[triangle[corner]];
        const auto edgeTo = [&](std::size_t other) {
            return inPlane(
                minus(m_mesh.positions[triangle[other % 3]], m_mesh.positions[triangle[corner]]),
                normal);
        };
        const float cosine = dot(edgeTo(corner + 1), edgeTo(corner + 2));
        return {index, corner, std::acos(std::clamp(cosine, -1.0F, 1.0F)),
                inPlane(m_faces[index].along, normal), inPlane(m_faces[index].across, normal)};
    }

    Vector3 sumFor(const Member *member) const
    {
        Vector3 sum{};
        for (const Member &other : m_members) {
            if (member != nullptr && member->isOpposed(other))
                continue;
            for (std::size_t k = 0; k < 3; ++k)
                sum[k] += other.angle * other.along[k];
        }
        return sum;
    }

    /// Of faces that are opposed to each other, each leaves the other out, in a group of its own.
    void addUp(std::uint32_t group)
    {
        m_groups[group].sum = sumFor(nullptr);
        if (m_members.size() > MostCompared)
            return;
        for (const Member &member : m_members) {
            const auto isOpposed = [&member](const Member &other) {
                return member.isOpposed(other);
            };
            if (std::none_of(m_members.begin(), m_members.end(), isOpposed))
                continue;
            m_faces[member.face].groups[member.corner] = std::uint32_t(m_groups.size());
            m_groups.push_back(
                {m_groups[group].vertex, m_groups[group].isMirrored, sumFor(&member)});
        }
    }

    /// Their corners get what others at the same vertex have.
    void joinEmptyFaces()
    {
        std::vector<std::uint32_t> groupAt(m_mesh.positions.size(), None);
        for (std::size_t i = 0; i < m_faces.size(); ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                std::uint32_t &known = groupAt[m_triangles[i][k]];
                if (known == None)
                    known = m_faces[i].groups[k];
            }
        }
        for (std::size_t i = 0; i < m_faces.size(); ++i) {
            for (std::size_t k = 0; k < 3 && m_faces[i].isEmpty; ++k)
                m_faces[i].groups[k] = groupAt[m_triangles[i][k]];
        }
    }

    OssEvTangents::Tangent tangent(std::uint32_t group, std::uint32_t vertex) const
    {
        const Vector3 &normal = m_mesh.normals[vertex];
        const Vector3 sum = group != None ? unit(m_groups[group].sum) : Vector3{};
        const Vector3 along = sum != Vector3{} ? sum : anyTangent(normal);
        const bool isMirrored = group != None && m_groups[group].isMirrored;
        return {along[0], along[1], along[2], isMirrored ? -1.0F : 1.0F};
    }

    const OssEvMesh &m_mesh;
    std::vector<Face> m_faces;
    std::vector<Triangle> m_triangles; ///< of welded vertices
    std::vector<std::uint32_t> m_welded;
    std::vector<Group> m_groups;
    std::vector<Member> m_members; ///< of the last group
};

} // namespace

OssEvTangents OssEvTangents::of(const OssEvMesh &mesh)
{
    return Tangents(mesh).result();
}
