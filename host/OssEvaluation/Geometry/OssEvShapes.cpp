#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <cmath>

namespace {

constexpr float Pi = 3.14159265F;

using Vector3 = OssEvMesh::Vector3;

void addQuad(OssEvMesh *mesh, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    const auto face = mesh->faces.empty() ? 0 : mesh->faces.back() + 1;
    mesh->triangles.push_back({a, b, c});
    mesh->triangles.push_back({a, c, d});
    mesh->faces.insert(mesh->faces.end(), 2, face);
}

// A square with its corner at `corner`; its normal is right x up.
void addSide(OssEvMesh *mesh, const Vector3 &corner, const Vector3 &right, const Vector3 &up,
             float column)
{
    const auto first = std::uint32_t(mesh->positions.size());
    const Vector3 normal{right[1] * up[2] - right[2] * up[1], right[2] * up[0] - right[0] * up[2],
                         right[0] * up[1] - right[1] * up[0]};
    for (int i = 0; i < 4; ++i) {
        const float u = i == 1 || i == 2 ? 1.0F : 0.0F;
        const float v = i >= 2 ? 1.0F : 0.0F;
        Vector3 position{};
        for (std::size_t k = 0; k < 3; ++k)
            position[k] = corner[k] + right[k] * u + up[k] * v;
        mesh->positions.push_back(position);
        mesh->normals.push_back(normal);
        mesh->uvs.push_back({column + u, v});
    }
    addQuad(mesh, first, first + 1, first + 2, first + 3);
}

std::shared_ptr<const OssEvMesh> finished(const std::shared_ptr<OssEvMesh> &mesh, const char *name)
{
    return mesh->finish(name) ? mesh : nullptr;
}

} // namespace

std::shared_ptr<const OssEvMesh> OssEvShapes::plane()
{
    auto mesh = std::make_shared<OssEvMesh>();
    addSide(mesh.get(), {-0.5F, -0.5F, 0.0F}, {1, 0, 0}, {0, 1, 0}, 0.0F);
    return finished(mesh, "Plane");
}

std::shared_ptr<const OssEvMesh> OssEvShapes::sphere()
{
    constexpr std::uint32_t Columns = 128;
    constexpr std::uint32_t Rows = 64;
    auto mesh = std::make_shared<OssEvMesh>();
    for (std::uint32_t row = 0; row <= Rows; ++row) {
        const float v = float(row) / Rows;
        const float latitude = (v - 0.5F) * Pi;
        for (std::uint32_t column = 0; column <= Columns; ++column) {
            const float u = float(column) / Columns;
            const float longitude = (2.0F * u - 1.0F) * Pi;
            const Vector3 place{std::cos(latitude) * std::cos(longitude), std::sin(latitude),
                                -std::cos(latitude) * std::sin(longitude)};
            mesh->positions.push_back(place);
            mesh->normals.push_back(place);
            mesh->uvs.push_back({u, v});
        }
    }
    for (std::uint32_t row = 0; row < Rows; ++row) {
        for (std::uint32_t column = 0; column < Columns; ++column) {
            const std::uint32_t first = row * (Columns + 1) + column;
            addQuad(mesh.get(), first, first + 1, first + Columns + 2, first + Columns + 1);
        }
    }
    return finished(mesh, "Sphere");
}

std::shared_ptr<const OssEvMesh> OssEvShapes::cube()
{
    auto mesh = std::make_shared<OssEvMesh>();
    const float h = 0.5F;
    addSide(mesh.get(), {-h, -h, h}, {1, 0, 0}, {0, 1, 0}, 0.0F);
    addSide(mesh.get(), {h, -h, h}, {0, 0, -1}, {0, 1, 0}, 1.0F);
    addSide(mesh.get(), {h, -h, -h}, {-1, 0, 0}, {0, 1, 0}, 2.0F);
    addSide(mesh.get(), {-h, -h, -h}, {0, 0, 1}, {0, 1, 0}, 3.0F);
    addSide(mesh.get(), {-h, h, h}, {1, 0, 0}, {0, 0, -1}, 4.0F);
    addSide(mesh.get(), {-h, -h, -h}, {1, 0, 0}, {0, 0, 1}, 5.0F);
    return finished(mesh, "Cube");
}
