#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <algorithm>
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

/// A place of a profile that goes round the y axis.
struct Turned
{
    float radius;
    float height;
};

// Around the y axis, from below upwards; it takes the whole width of the patch, and a part of its
// height. Normals are the mesh's to make.
void addTurned(OssEvMesh *mesh, const std::vector<Turned> &profile, float lowV, float highV)
{
    constexpr std::uint32_t Columns = 128;
    std::vector<float> lengths{0.0F};
    for (std::size_t i = 1; i < profile.size(); ++i)
        lengths.push_back(lengths.back()
                          + std::hypot(profile[i].radius - profile[i - 1].radius,
                                       profile[i].height - profile[i - 1].height));
    const auto first = std::uint32_t(mesh->positions.size());
    for (std::size_t row = 0; row < profile.size(); ++row) {
        const float v = lowV + (highV - lowV) * lengths[row] / lengths.back();
        for (std::uint32_t column = 0; column <= Columns; ++column) {
            const float u = float(column) / Columns;
            // The seam's two sides are the very same place.
            const float longitude = column == Columns ? -Pi : (2.0F * u - 1.0F) * Pi;
            mesh->positions.push_back({profile[row].radius * std::cos(longitude),
                                       profile[row].height,
                                       -profile[row].radius * std::sin(longitude)});
            mesh->uvs.push_back({u, v});
        }
    }
    for (std::uint32_t row = 0; row + 1 < profile.size(); ++row) {
        for (std::uint32_t column = 0; column < Columns; ++column) {
            const std::uint32_t corner = first + row * (Columns + 1) + column;
            addQuad(mesh, corner, corner + 1, corner + Columns + 2, corner + Columns + 1);
        }
    }
}

// A disc around the y axis, facing up or down.
void addEnd(OssEvMesh *mesh, float radius, float height, bool isUp, float middleU, float middleV,
            float radiusUv)
{
    constexpr std::uint32_t Columns = 128;
    const auto first = std::uint32_t(mesh->positions.size());
    const float turn = isUp ? 1.0F : -1.0F;
    for (std::uint32_t i = 0; i <= Columns; ++i) {
        const float angle = 2.0F * Pi * float(i) / Columns;
        const float far = i == Columns ? 0.0F : 1.0F;
        mesh->positions.push_back(
            {far * radius * std::cos(angle), height, -turn * far * radius * std::sin(angle)});
        mesh->normals.push_back({0.0F, turn, 0.0F});
        mesh->uvs.push_back({middleU + far * radiusUv * std::cos(angle),
                             middleV + far * radiusUv * std::sin(angle)});
    }
    const auto face = mesh->faces.empty() ? 0 : mesh->faces.back() + 1;
    for (std::uint32_t i = 0; i < Columns; ++i)
        mesh->triangles.push_back({first + Columns, first + i, first + (i + 1) % Columns});
    mesh->faces.insert(mesh->faces.end(), Columns, face);
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

std::shared_ptr<const OssEvMesh> OssEvShapes::cylinder()
{
    auto mesh = std::make_shared<OssEvMesh>();
    addTurned(mesh.get(), {{0.5F, -0.5F}, {0.5F, 0.0F}, {0.5F, 0.5F}}, 0.01F, 0.49F);
    // Made here, for the ends would bend those that the mesh makes.
    for (const Vector3 &place : mesh->positions)
        mesh->normals.push_back({place[0] * 2.0F, 0.0F, place[2] * 2.0F});
    addEnd(mesh.get(), 0.5F, 0.5F, true, 0.25F, 0.75F, 0.23F);
    addEnd(mesh.get(), 0.5F, -0.5F, false, 0.75F, 0.75F, 0.23F);
    return finished(mesh, "Cylinder");
}

std::shared_ptr<const OssEvMesh> OssEvShapes::shaderBall()
{
    constexpr int Steps = 96;
    constexpr float Groove = 0.12F; // half of its height, as an angle
    auto mesh = std::make_shared<OssEvMesh>();
    mesh->materialNames = {"Ball", "Foot"};
    std::vector<Turned> ball;
    for (int i = 0; i <= Steps; ++i) {
        const float latitude = (float(i) / Steps - 0.5F) * Pi;
        const float inward = std::max(0.0F, 1.0F - std::abs(latitude - 0.35F) / Groove);
        const float radius = 0.75F - 0.08F * inward * inward * (3.0F - 2.0F * inward);
        const bool isPole = i == 0 || i == Steps;
        ball.push_back(
            {isPole ? 0.0F : radius * std::cos(latitude), 0.25F + radius * std::sin(latitude)});
    }
    addTurned(mesh.get(), ball, 0.36F, 0.99F);
    mesh->materials.assign(mesh->triangles.size(), 0);
    const std::vector<Turned> foot{{0.0F, -1.0F},   {0.66F, -1.0F},  {0.70F, -0.98F},
                                   {0.70F, -0.90F}, {0.66F, -0.86F}, {0.40F, -0.78F},
                                   {0.30F, -0.66F}, {0.30F, -0.40F}};
    addTurned(mesh.get(), foot, 0.01F, 0.34F);
    mesh->materials.resize(mesh->triangles.size(), 1);
    return finished(mesh, "Shader Ball");
}
