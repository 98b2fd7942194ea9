#include "OssRender/Surface/OssRdGeometry.h"

#include "OssEvaluation/Geometry/OssEvTangents.h"

#include <algorithm>
#include <limits>

namespace {

glm::vec3 toVector(const OssEvMesh::Vector3 &v)
{
    return {v[0], v[1], v[2]};
}

void measure(OssRdGeometry *geometry)
{
    if (geometry->vertices.empty())
        return;
    constexpr float most = std::numeric_limits<float>::max();
    glm::vec3 low(most);
    glm::vec3 high(-most);
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

} // namespace

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
    for (const int patch : mesh.patches()) {
        Part part{patch, int(geometry->indices.size()), 0};
        for (const std::int32_t triangle : mesh.trianglesOf(patch)) {
            const auto &corners = tangents.triangles[std::size_t(triangle)];
            geometry->indices.insert(geometry->indices.end(), corners.begin(), corners.end());
        }
        part.count = int(geometry->indices.size()) - part.first;
        geometry->parts.push_back(part);
    }
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column)
            geometry->world[column][row] = mesh.world[std::size_t(4 * row + column)];
    }
    measure(geometry.get());
    return geometry;
}
