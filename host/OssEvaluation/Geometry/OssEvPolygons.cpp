#include "OssEvaluation/Geometry/OssEvPolygons.h"

#include <algorithm>
#include <cmath>

namespace {

/// Cutting ears may take time by the cube of the corners; what has more is a fan.
constexpr std::size_t MostEars = 500;

using Vector3 = OssEvMesh::Vector3;

struct Corner
{
    double x;
    double y;
    std::uint32_t vertex;
};

double turn(const Corner &a, const Corner &b, const Corner &c)
{
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

/// The corners as seen along the polygon's normal, so that it goes round against the clock.
std::vector<Corner> flattened(const std::vector<Vector3> &positions,
                              const std::vector<std::uint32_t> &corners)
{
    std::array<double, 3> normal{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Vector3 &a = positions[corners[i]];
        const Vector3 &b = positions[corners[(i + 1) % corners.size()]];
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t l = (k + 1) % 3;
            const std::size_t m = (k + 2) % 3;
            normal[k] += (double(a[l]) - b[l]) * (double(a[m]) + b[m]);
        }
    }
    std::size_t axis = 0;
    for (std::size_t k = 1; k < 3; ++k) {
        if (std::abs(normal[k]) > std::abs(normal[axis]))
            axis = k;
    }
    const std::size_t right = (axis + 1) % 3;
    const std::size_t up = (axis + 2) % 3;
    const double side = normal[axis] < 0.0 ? -1.0 : 1.0;
    std::vector<Corner> flat;
    flat.reserve(corners.size());
    for (const std::uint32_t vertex : corners) {
        const Vector3 &place = positions[vertex];
        flat.push_back({side * place[right], double(place[up]), vertex});
    }
    return flat;
}

bool isEar(const std::vector<Corner> &corners, std::size_t middle)
{
    const std::size_t count = corners.size();
    const std::size_t before = (middle + count - 1) % count;
    const std::size_t after = (middle + 1) % count;
    const Corner &a = corners[before];
    const Corner &b = corners[middle];
    const Corner &c = corners[after];
    if (turn(a, b, c) <= 0.0)
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        const Corner &p = corners[i];
        const bool isOwn = i == before || i == middle || i == after || p.vertex == a.vertex
                           || p.vertex == b.vertex || p.vertex == c.vertex;
        if (!isOwn && turn(a, b, p) >= 0.0 && turn(b, c, p) >= 0.0 && turn(c, a, p) >= 0.0)
            return false;
    }
    return true;
}

/// Where no corner is an ear, the one that turns most.
std::size_t nextEar(const std::vector<Corner> &corners)
{
    std::size_t best = 0;
    double most = 0.0;
    const std::size_t count = corners.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (isEar(corners, i))
            return i;
        const double here = turn(corners[(i + count - 1) % count], corners[i],
                                 corners[(i + 1) % count]);
        if (here > most) {
            most = here;
            best = i;
        }
    }
    return best;
}

double distance(const Vector3 &a, const Vector3 &b)
{
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

void addFan(const std::vector<std::uint32_t> &corners, std::size_t first,
            std::vector<std::array<std::uint32_t, 3>> *triangles)
{
    const std::size_t count = corners.size();
    for (std::size_t i = 1; i + 1 < count; ++i)
        triangles->push_back(
            {corners[first], corners[(first + i) % count], corners[(first + i + 1) % count]});
}

/// Along the shorter diagonal, unless it lies outside.
void addQuad(const std::vector<Vector3> &positions, const std::vector<std::uint32_t> &corners,
             std::vector<std::array<std::uint32_t, 3>> *triangles)
{
    const std::vector<Corner> f = flattened(positions, corners);
    const double along02 = std::min(turn(f[0], f[1], f[2]), turn(f[0], f[2], f[3]));
    const double along13 = std::min(turn(f[1], f[2], f[3]), turn(f[1], f[3], f[0]));
    const bool isConvex = along02 > 0.0 && along13 > 0.0;
    const bool isShorter = distance(positions[corners[0]], positions[corners[2]])
                           <= distance(positions[corners[1]], positions[corners[3]]);
    addFan(corners, (isConvex ? isShorter : along02 >= along13) ? 0 : 1, triangles);
}

} // namespace

void OssEvPolygons::addTriangles(const std::vector<Vector3> &positions,
                                 const std::vector<std::uint32_t> &corners,
                                 std::vector<std::array<std::uint32_t, 3>> *triangles)
{
    if (corners.size() < 3)
        return;
    if (corners.size() == 4) {
        addQuad(positions, corners, triangles);
        return;
    }
    if (corners.size() == 3 || corners.size() > MostEars) {
        addFan(corners, 0, triangles);
        return;
    }
    std::vector<Corner> left = flattened(positions, corners);
    while (left.size() > 3) {
        const std::size_t ear = nextEar(left);
        const std::size_t count = left.size();
        triangles->push_back({left[(ear + count - 1) % count].vertex, left[ear].vertex,
                              left[(ear + 1) % count].vertex});
        left.erase(left.begin() + std::ptrdiff_t(ear));
    }
    triangles->push_back({left[0].vertex, left[1].vertex, left[2].vertex});
}
