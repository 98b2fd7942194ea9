#include "OssRender/Surface/OssRdGeometry.h"

#include "OssEvaluation/Geometry/OssEvTangents.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <unordered_map>

namespace {

glm::vec3 toVector(const OssEvMesh::Vector3 &v)
{
    return {v[0], v[1], v[2]};
}

void measure(OssRdGeometry *geometry)
{
    if (geometry->vertices.empty())
        return;
    constexpr float Most = std::numeric_limits<float>::max();
    glm::vec3 low(Most);
    glm::vec3 high(-Most);
    const auto inWorld = [geometry](const OssRdGeometry::Vertex &vertex) {
        return glm::vec3(geometry->world * glm::vec4(vertex.position, 1.0F));
    };
    for (const OssRdGeometry::Vertex &vertex : geometry->vertices) {
        low = glm::min(low, inWorld(vertex));
        high = glm::max(high, inWorld(vertex));
    }
    geometry->centre = (low + high) / 2.0F;
    geometry->lowest = low.y;
    float radius = 0.0F;
    for (const OssRdGeometry::Vertex &vertex : geometry->vertices)
        radius = std::max(radius, glm::distance(inWorld(vertex), geometry->centre));
    geometry->radius = std::max(radius, 1e-6F);
}

/// Below it a mesh is drawn as quickly as a smaller one.
constexpr int FewTriangles = 20000;
/// Cells across the longest side of a mesh, and across a patch.
constexpr float Cells = 30.0F;
constexpr float CellsOfPatch = 20.0F;

/// Vertices that are near each other, face the same way and have nearly the same texture coordinates
/// become one (Rossignac and Borrel 1993): for each the one that stands for it.
std::vector<std::uint32_t> clustered(const std::vector<OssRdGeometry::Vertex> &vertices)
{
    constexpr float Most = std::numeric_limits<float>::max();
    glm::vec3 low(Most);
    glm::vec3 high(-Most);
    for (const OssRdGeometry::Vertex &vertex : vertices) {
        low = glm::min(low, vertex.position);
        high = glm::max(high, vertex.position);
    }
    const glm::vec3 size = high - low;
    const float scale = Cells / std::max({size.x, size.y, size.z, 1e-20F});
    std::unordered_map<std::uint64_t, std::uint32_t> known;
    std::vector<std::uint32_t> standsFor(vertices.size());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const OssRdGeometry::Vertex &vertex = vertices[i];
        const auto place = glm::uvec3((vertex.position - low) * scale);
        const auto uv = glm::uvec2(glm::ivec2(glm::floor(vertex.uv * CellsOfPatch))) & 0xFFFU;
        std::uint64_t key = place.x;
        key = key << 6 | place.y;
        key = key << 6 | place.z;
        key = key << 12 | uv.x;
        key = key << 12 | uv.y;
        for (int axis = 0; axis < 3; ++axis)
            key = key << 1 | std::uint64_t(vertex.normal[axis] > 0.0F);
        standsFor[i] = known.emplace(key, std::uint32_t(i)).first->second;
    }
    return standsFor;
}

void addCoarse(OssRdGeometry *geometry)
{
    geometry->coarseParts = geometry->parts;
    if (geometry->indices.size() / 3 <= std::size_t(FewTriangles))
        return;
    const std::vector<std::uint32_t> standsFor = clustered(geometry->vertices);
    for (OssRdGeometry::Part &part : geometry->coarseParts) {
        const int from = part.first;
        part.first = int(geometry->indices.size());
        for (int i = from; i < from + part.count; i += 3) {
            std::array<std::uint32_t, 3> corners{};
            for (std::size_t k = 0; k < 3; ++k)
                corners[k] = standsFor[geometry->indices[std::size_t(i) + k]];
            if (corners[0] != corners[1] && corners[1] != corners[2] && corners[2] != corners[0])
                geometry->indices.insert(geometry->indices.end(), corners.begin(), corners.end());
        }
        part.count = int(geometry->indices.size()) - part.first;
    }
}

void addParts(const OssEvMesh &mesh, const OssEvTangents &tangents, OssRdGeometry *geometry)
{
    std::vector<std::uint32_t> &indices = geometry->indices;
    for (const int patch : mesh.patches()) {
        std::map<int, std::vector<std::int32_t>> bySlot;
        for (const std::int32_t triangle : mesh.trianglesOf(patch))
            bySlot[mesh.materials[std::size_t(triangle)]].push_back(triangle);
        for (const auto &[slot, triangles] : bySlot) {
            OssRdGeometry::Part part{patch, slot, int(indices.size()), 0};
            for (const std::int32_t triangle : triangles) {
                const auto &corners = tangents.triangles[std::size_t(triangle)];
                indices.insert(indices.end(), corners.begin(), corners.end());
            }
            part.count = int(indices.size()) - part.first;
            geometry->parts.push_back(part);
        }
    }
}

} // namespace

void OssRdGeometry::finish()
{
    measure(this);
    addCoarse(this);
}

std::shared_ptr<const OssRdGeometry> OssRdGeometry::of(const OssEvMesh &mesh)
{
    auto geometry = std::make_shared<OssRdGeometry>();
    const OssEvTangents tangents = OssEvTangents::of(mesh);
    geometry->vertices.resize(tangents.sources.size());
    for (std::size_t i = 0; i < tangents.sources.size(); ++i) {
        const std::size_t source = tangents.sources[i];
        const OssEvTangents::Tangent &tangent = tangents.tangents[i];
        const OssEvMesh::Vector2 &uv = mesh.uvs[source];
        geometry->vertices[i] = {toVector(mesh.positions[source]),
                                 toVector(mesh.normals[source]),
                                 {tangent[0], tangent[1], tangent[2], tangent[3]},
                                 {uv[0], uv[1]}};
    }
    addParts(mesh, tangents, geometry.get());
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column)
            geometry->world[column][row] = mesh.world[std::size_t(row) * 4 + std::size_t(column)];
    }
    geometry->finish();
    return geometry;
}
