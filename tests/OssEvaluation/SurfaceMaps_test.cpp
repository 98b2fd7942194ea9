#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <random>
#include <thread>

namespace {

using Vector2 = OssEvMesh::Vector2;
using Vector3 = OssEvMesh::Vector3;

std::shared_ptr<const OssEvSurfaceMap> mapOf(const std::shared_ptr<OssEvMesh> &mesh, int width,
                                             int height, int patch = 1001)
{
    EXPECT_TRUE(mesh->finish("mesh"));
    return OssEvSurfaceMap::make(mesh, {width, height, patch, 1.0}, nullptr);
}

int coveredTexels(const OssEvSurfaceMap &map)
{
    int count = 0;
    for (int y = 0; y < map.frame().height; ++y) {
        for (int x = 0; x < map.frame().width; ++x)
            count += map.isCovered(x, y) ? 1 : 0;
    }
    return count;
}

Vector3 positionAt(const OssEvSurfaceMap &map, int x, int y)
{
    Vector3 result{};
    map.positions(x, y, 1, {&result[0], &result[1], &result[2]});
    return result;
}

Vector3 normalAt(const OssEvSurfaceMap &map, int x, int y)
{
    Vector3 result{};
    map.normals(x, y, 1, {&result[0], &result[1], &result[2]});
    return result;
}

TEST(SurfaceMaps, builtInShapesCoverTheirPatchesAndFaceOutwards)
{
    EXPECT_EQ(OssEvShapes::plane()->patches(), std::vector<int>{1001});
    EXPECT_EQ(OssEvShapes::sphere()->patches(), std::vector<int>{1001});
    const auto cube = OssEvShapes::cube();
    EXPECT_EQ(cube->patches(), (std::vector<int>{1001, 1002, 1003, 1004, 1005, 1006}));
    for (const auto &mesh : {OssEvShapes::sphere(), cube}) {
        for (const int patch : mesh->patches()) {
            const auto map = OssEvSurfaceMap::make(mesh, {64, 64, patch, 1.0}, nullptr);
            EXPECT_EQ(coveredTexels(*map), 64 * 64);
            for (int i = 1; i < 64; i += 7) {
                const Vector3 position = positionAt(*map, i, i);
                const Vector3 normal = normalAt(*map, i, i);
                const float out = position[0] * normal[0] + position[1] * normal[1]
                                  + position[2] * normal[2];
                EXPECT_GT(out, 0.4F);
                // The triangles turn the same way as the normals.
                const auto &corners = mesh->triangles[std::size_t(map->face(i, i))];
                const Vector3 &a = mesh->positions[corners[0]];
                const Vector3 &b = mesh->positions[corners[1]];
                const Vector3 &c = mesh->positions[corners[2]];
                const float volume = a[0] * (b[1] * c[2] - b[2] * c[1])
                                     - a[1] * (b[0] * c[2] - b[2] * c[0])
                                     + a[2] * (b[0] * c[1] - b[1] * c[0]);
                EXPECT_GT(volume, 0.0F);
            }
        }
    }
}

TEST(SurfaceMaps, facesThatStraddlePatchesAreClippedIntoEach)
{
    const auto mesh = square(0.5F, 0.5F, 1.5F, 1.75F);
    for (const auto &rows : {std::pair(1001, 64), {1002, 64}, {1011, 96}, {1012, 96}})
        EXPECT_EQ(coveredTexels(*mapOf(mesh, 128, 128, rows.first)), 64 * rows.second);
    EXPECT_EQ(mesh->patches(), (std::vector<int>{1001, 1002, 1011, 1012}));
    const auto map = mapOf(mesh, 128, 128, 1012);
    // Positions are texture coordinates here: texel (10, 100) of patch 1012.
    const Vector3 position = positionAt(*map, 10, 100);
    EXPECT_NEAR(position[0], 1.0 + 10.5 / 128.0, 1e-5);
    EXPECT_NEAR(position[1], 2.0 - 100.5 / 128.0, 1e-5);
    EXPECT_FALSE(map->isCovered(100, 100));
}

TEST(SurfaceMaps, facesThatMeetLeaveNoGapsAndNoHoles)
{
    // Fans around a point off the grid, filling the patch.
    std::mt19937 random(23);
    std::uniform_real_distribution<float> inside(0.2F, 0.8F);
    for (int round = 0; round < 20; ++round) {
        std::vector<Vector2> corners{{inside(random), inside(random)}};
        const int sides = 3 + round;
        for (int i = 0; i < 4 * sides; ++i) {
            const float along = float(i % sides) / float(sides);
            const Vector2 edges[] = {{along, 0}, {1, along}, {1 - along, 1}, {0, 1 - along}};
            corners.push_back(edges[i / sides]);
        }
        std::vector<std::array<std::uint32_t, 3>> triangles;
        for (std::uint32_t i = 0; i < std::uint32_t(4 * sides); ++i)
            triangles.push_back({0, 1 + i, 1 + (i + 1) % std::uint32_t(4 * sides)});
        const auto map = mapOf(flat(corners, triangles), 200, 130);
        for (int y = 0; y < 130; ++y) {
            for (int x = 0; x < 200; ++x) {
                ASSERT_TRUE(map->isCovered(x, y)) << x << ", " << y;
                // Places are texture coordinates here.
                const Vector3 position = positionAt(*map, x, y);
                ASSERT_NEAR(position[0], (x + 0.5) / 200.0, 1e-4);
                ASSERT_NEAR(position[1], 1.0 - (y + 0.5) / 130.0, 1e-4);
            }
        }
    }
}

TEST(SurfaceMaps, whereFacesOverlapTheFirstAnswers)
{
    auto mesh = square(0, 0, 1, 1);
    mesh->positions.insert(mesh->positions.end(), {{0, 0, 9}, {1, 0, 9}, {1, 1, 9}});
    mesh->uvs.insert(mesh->uvs.end(), {{0, 0}, {1, 0}, {1, 1}});
    mesh->triangles.push_back({4, 5, 6});
    const auto map = mapOf(mesh, 64, 64);
    for (int i = 0; i < 64; ++i)
        EXPECT_LT(map->face(63 - i / 2, 40), 2);
}

TEST(SurfaceMaps, everyTexelInReachTakesTheNearestCoveredOne)
{
    // A slanted sliver and a speck, at a size whose margin is 2, and at one whose margin is 4.
    auto mesh = flat(
        {{0.2F, 0.15F}, {0.9F, 0.6F}, {0.3F, 0.3F}, {0.7F, 0.2F}, {0.73F, 0.2F}, {0.7F, 0.24F}},
        {{0, 1, 2}, {3, 4, 5}});
    for (const auto &size : {std::pair(150, 150), {1000, 60}, {130, 300}}) {
        const auto map = mapOf(mesh, size.first, size.second);
        const int reach = OssEvSurfaceMap::margin(size.first);
        int near = 0;
        for (int y = 0; y < size.second; ++y) {
            for (int x = 0; x < size.first; ++x) {
                int best = reach * reach + 1;
                for (int dy = -reach; dy <= reach; ++dy) {
                    for (int dx = -reach; dx <= reach; ++dx) {
                        const bool inFrame = map->frame().region().contains(x + dx, y + dy);
                        if (inFrame && map->isCovered(x + dx, y + dy))
                            best = std::min(best, dx * dx + dy * dy);
                    }
                }
                int nearX = -1;
                int nearY = -1;
                map->nearestCovered(x, y, &nearX, &nearY);
                const int found = (nearX - x) * (nearX - x) + (nearY - y) * (nearY - y);
                if (best > reach * reach) {
                    ASSERT_EQ(found, 0) << "itself where none is near";
                    ASSERT_EQ(map->face(x, y), -1);
                } else {
                    ASSERT_EQ(found, best) << x << ", " << y;
                    ASSERT_TRUE(map->isCovered(nearX, nearY));
                    ASSERT_GE(map->face(x, y), 0);
                    ASSERT_EQ(positionAt(*map, x, y), positionAt(*map, nearX, nearY));
                    near += found > 0 ? 1 : 0;
                }
            }
        }
        EXPECT_GT(near, 50);
    }
}

TEST(SurfaceMaps, marginsGrowWithTheSizeWithinLimits)
{
    for (const auto &margin : {std::pair(1, 2),
                               {512, 2},
                               {1024, 4},
                               {2048, 8},
                               {4096, 16},
                               {8192, 32},
                               {16384, 64},
                               {32768, 64}})
        EXPECT_EQ(OssEvSurfaceMap::margin(margin.first), margin.second) << margin.first;
}

TEST(SurfaceMaps, whatNoFaceAnswersForIsPlain)
{
    const auto map = mapOf(square(0.25F, 0.25F, 0.5F, 0.5F), 128, 128);
    std::array<float, 8> x{};
    std::array<float, 8> y{};
    std::array<float, 8> z{};
    map->positions(2, 2, 8, {x.data(), y.data(), z.data()});
    EXPECT_EQ(x, (std::array<float, 8>{}));
    EXPECT_EQ(z, (std::array<float, 8>{}));
    map->normals(2, 2, 8, {x.data(), y.data(), z.data()});
    EXPECT_EQ(x, (std::array<float, 8>{}));
    EXPECT_EQ(z, (std::array<float, 8>{1, 1, 1, 1, 1, 1, 1, 1}));
    std::array<double, 3> alongU{1, 1, 1};
    std::array<double, 3> alongV{1, 1, 1};
    map->derivatives(2, 2, &alongU, &alongV);
    EXPECT_EQ(alongU, (std::array<double, 3>{}));
    EXPECT_EQ(alongV, (std::array<double, 3>{}));
    map->derivatives(40, 80, &alongU, &alongV);
    EXPECT_NEAR(alongU[0], 1.0, 1e-6);
    EXPECT_NEAR(alongU[1], 0.0, 1e-6);
    EXPECT_NEAR(alongV[1], 1.0, 1e-6);
}

TEST(SurfaceMaps, normalsThatCancelOutAreStillUnitVectors)
{
    auto mesh = square(0, 0, 1, 1);
    mesh->normals = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
    const auto none = mapOf(mesh, 64, 64);
    mesh = square(0, 0, 1, 1);
    mesh->normals = {{1, 0, 0}, {-1, 0, 0}, {1, 0, 0}, {-1, 0, 0}};
    const auto opposite = mapOf(mesh, 63, 63);
    for (const auto &map : {none, opposite}) {
        for (int y = 0; y < map->frame().height; ++y) {
            for (int x = 0; x < map->frame().width; ++x) {
                const Vector3 normal = normalAt(*map, x, y);
                ASSERT_NEAR(std::hypot(normal[0], normal[1], normal[2]), 1.0F, 1e-4F)
                    << x << ", " << y;
            }
        }
    }
}

TEST(SurfaceMaps, rowsMayReachBeyondTheFrame)
{
    const auto map = mapOf(square(0, 0, 1, 1), 64, 64);
    std::array<float, 70> x{};
    std::array<float, 70> y{};
    std::array<float, 70> z{};
    map->positions(-3, -5, 70, {x.data(), y.data(), z.data()});
    for (int i = 0; i < 70; ++i) {
        EXPECT_NEAR(x[std::size_t(i)], (std::clamp(i - 3, 0, 63) + 0.5) / 64.0, 1e-5);
        EXPECT_NEAR(y[std::size_t(i)], 1.0 - 0.5 / 64.0, 1e-5);
    }
}

TEST(SurfaceMaps, sliversAndFacesWithoutAreaDoNoHarm)
{
    auto mesh = flat({{0.1F, 0.1F},
                      {0.9F, 0.1F},
                      {0.5F, 0.1F}, // a line
                      {0.3F, 0.3F},
                      {0.3F, 0.3F},
                      {0.3F, 0.3F}, // a point
                      {0.1F, 0.5F},
                      {0.9F, 0.5F},
                      {0.9F, 0.502F}},
                     {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}});
    const auto map = mapOf(mesh, 256, 256);
    for (int y = 0; y < 256; ++y) {
        std::array<float, 256> rows[3];
        map->positions(0, y, 256, {rows[0].data(), rows[1].data(), rows[2].data()});
        for (const auto &row : rows) {
            for (const float value : row)
                ASSERT_TRUE(std::isfinite(value));
        }
    }
}

TEST(SurfaceMaps, aCancelledOneIsNone)
{
    auto mesh = square(0, 0, 1, 1);
    ASSERT_TRUE(mesh->finish("mesh"));
    OssEvCancel cancel;
    EXPECT_NE(OssEvSurfaceMap::make(mesh, {64, 64, 1001, 1.0}, &cancel), nullptr);
    cancel.cancel();
    EXPECT_EQ(OssEvSurfaceMap::make(mesh, {64, 64, 1001, 1.0}, &cancel), nullptr);
    // At any moment: either whole or none.
    for (int round = 0; round < 12; ++round) {
        OssEvCancel later;
        std::thread other([&later, round] {
            for (int i = 0; i < round * 20000; ++i)
                std::atomic_signal_fence(std::memory_order_seq_cst);
            later.cancel();
        });
        const auto map = OssEvSurfaceMap::make(mesh, {700, 700, 1001, 1.0}, &later);
        other.join();
        for (int i = 0; map != nullptr && i < 700; ++i)
            ASSERT_TRUE(map->isCovered(i, 699 - i));
    }
}

} // namespace
