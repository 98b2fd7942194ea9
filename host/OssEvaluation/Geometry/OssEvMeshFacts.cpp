#include "OssEvaluation/Geometry/OssEvMeshFacts.h"

#include "OssEvaluation/Geometry/EqualVertices.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace {

using Vector3 = OssEvMeshFacts::Vector3;
using Matrix = OssEvMeshFacts::Matrix;

/// Sets that grow together, by the first member of each (R. E. Tarjan, "Efficiency of a Good But Not Linear
/// Set Union Algorithm", 1975).
class Union
{
public:
    explicit Union(std::vector<std::uint32_t> firsts)
        : m_parents(std::move(firsts))
    {
    }

    std::uint32_t find(std::uint32_t member)
    {
        while (m_parents[member] != member) {
            m_parents[member] = m_parents[m_parents[member]];
            member = m_parents[member];
        }
        return member;
    }

    void join(std::uint32_t a, std::uint32_t b)
    {
        const auto [low, high] = std::minmax(find(a), find(b));
        m_parents[high] = low;
    }

private:
    std::vector<std::uint32_t> m_parents;
};

/// `firsts`: for each vertex the first one that it is the same as.
OssEvMeshFacts::Islands islandsOf(const OssEvMesh &mesh, std::vector<std::uint32_t> firsts)
{
    const std::size_t vertices = firsts.size();
    Union sets(std::move(firsts));
    for (const auto &triangle : mesh.triangles) {
        sets.join(triangle[0], triangle[1]);
        sets.join(triangle[0], triangle[2]);
    }
    OssEvMeshFacts::Islands islands;
    islands.ofTriangle.reserve(mesh.triangles.size());
    std::vector<std::int32_t> numbers(vertices, -1);
    for (const auto &triangle : mesh.triangles) {
        std::int32_t &number = numbers[sets.find(triangle[0])];
        if (number < 0)
            number = islands.count++;
        islands.ofTriangle.push_back(number);
    }
    return islands;
}

template <class PointOf>
OssEvMeshFacts::Box boxOf(const OssEvMesh &mesh, const PointOf &pointOf)
{
    OssEvMeshFacts::Box box{pointOf(mesh.positions[0]), pointOf(mesh.positions[0])};
    for (const Vector3 &position : mesh.positions) {
        const Vector3 point = pointOf(position);
        for (std::size_t k = 0; k < 3; ++k) {
            box.low[k] = std::min(box.low[k], point[k]);
            box.high[k] = std::max(box.high[k], point[k]);
        }
    }
    return box;
}

Vector3 toWorld(const OssEvMesh &mesh, const Vector3 &p)
{
    const std::array<float, 12> &m = mesh.world;
    Vector3 moved{};
    for (std::size_t k = 0; k < 3; ++k)
        moved[k] = m[4 * k] * p[0] + m[4 * k + 1] * p[1] + m[4 * k + 2] * p[2] + m[4 * k + 3];
    return moved;
}

/// The inverse of the part of `world` that turns; as if it did nothing where there is none.
Matrix inverseOf(const std::array<float, 12> &world)
{
    const auto at = [&world](std::size_t row, std::size_t column) {
        return double(world[4 * (row % 3) + column % 3]);
    };
    std::array<double, 9> cofactors{};
    double determinant = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            cofactors[3 * k + i] = at(i + 1, k + 1) * at(i + 2, k + 2)
                                   - at(i + 1, k + 2) * at(i + 2, k + 1);
        }
        determinant += at(0, i) * cofactors[3 * i];
    }
    if (!(std::abs(determinant) > 1e-30))
        return {1, 0, 0, 0, 1, 0, 0, 0, 1};
    Matrix inverse{};
    for (std::size_t i = 0; i < 9; ++i)
        inverse[i] = float(cofactors[i] / determinant);
    return inverse;
}

double densityOf(const OssEvMesh &mesh)
{
    double inSpace = 0.0;
    double inPatches = 0.0;
    for (const auto &triangle : mesh.triangles) {
        std::array<std::array<double, 3>, 2> edges{};
        std::array<std::array<double, 2>, 2> flat{};
        for (std::size_t i = 0; i < 2; ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                edges[i][k] = double(mesh.positions[triangle[i + 1]][k])
                              - mesh.positions[triangle[0]][k];
            }
            for (std::size_t k = 0; k < 2; ++k)
                flat[i][k] = double(mesh.uvs[triangle[i + 1]][k]) - mesh.uvs[triangle[0]][k];
        }
        double square = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t m = (k + 1) % 3;
            const std::size_t n = (k + 2) % 3;
            const double side = edges[0][m] * edges[1][n] - edges[0][n] * edges[1][m];
            square += side * side;
        }
        inSpace += std::sqrt(square);
        inPatches += std::abs(flat[0][0] * flat[1][1] - flat[0][1] * flat[1][0]);
    }
    return inSpace > 0.0 ? std::sqrt(inPatches / inSpace) : 0.0;
}

} // namespace

float OssEvMeshFacts::Box::diagonal() const
{
    return std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
}

OssEvMeshFacts::OssEvMeshFacts(const OssEvMesh &mesh)
    : m_box(boxOf(mesh, [](const Vector3 &point) { return point; }))
    , m_worldBox(boxOf(mesh, [&mesh](const Vector3 &point) { return toWorld(mesh, point); }))
    , m_density(densityOf(mesh))
    , m_toObject(inverseOf(mesh.world))
{
    const std::size_t count = mesh.positions.size();
    m_charts = islandsOf(
        mesh, firstOfEqual(count, [&mesh](std::uint32_t i) {
            const Vector3 &p = mesh.positions[i];
            return std::array<float, 5>{p[0], p[1], p[2], mesh.uvs[i][0], mesh.uvs[i][1]};
        }));
    m_parts = islandsOf(
        mesh, firstOfEqual(count, [&mesh](std::uint32_t i) { return mesh.positions[i]; }));
}

// By the inverse's transpose.
OssEvMeshFacts::Vector3 OssEvMeshFacts::normalToWorld(const Vector3 &normal) const
{
    Vector3 turned{};
    for (std::size_t k = 0; k < 3; ++k) {
        for (std::size_t i = 0; i < 3; ++i)
            turned[k] += m_toObject[3 * i + k] * normal[i];
    }
    return turned;
}

OssEvMeshFacts::Vector3 OssEvMeshFacts::directionToObject(const Vector3 &direction) const
{
    Vector3 turned{};
    for (std::size_t k = 0; k < 3; ++k) {
        for (std::size_t i = 0; i < 3; ++i)
            turned[k] += m_toObject[3 * k + i] * direction[i];
    }
    return turned;
}
