#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/TestFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <random>
#include <set>

namespace {

using Vector3 = OssEvMesh::Vector3;

constexpr float None = std::numeric_limits<float>::quiet_NaN();
constexpr float Endless = std::numeric_limits<float>::infinity();

// --- meshes

TEST(Meshes, whatTheRestReliesOnIsChecked)
{
    const auto expectRefused = [](const char *reason, const auto &spoil) {
        auto mesh = square(0, 0, 1, 1);
        spoil(mesh.get());
        EXPECT_EQ(mesh->finish("a.obj").error(), std::string("Cannot use \"a.obj\": ") + reason);
    };
    using Mesh = OssEvMesh;
    expectRefused("it has no faces", [](Mesh *mesh) { mesh->triangles.clear(); });
    expectRefused("it has no faces", [](Mesh *mesh) { mesh->positions.clear(); });
    expectRefused("it has no texture coordinates", [](Mesh *mesh) { mesh->uvs.clear(); });
    const char *incomplete = "its vertices are not complete";
    expectRefused(incomplete, [](Mesh *mesh) { mesh->uvs.pop_back(); });
    expectRefused(incomplete, [](Mesh *mesh) { mesh->positions.pop_back(); });
    expectRefused(incomplete, [](Mesh *mesh) { mesh->normals.resize(3); });
    const char *none = "it has coordinates that are no numbers";
    expectRefused(none, [](Mesh *mesh) { mesh->positions[3][2] = None; });
    expectRefused(none, [](Mesh *mesh) { mesh->uvs[1][0] = None; });
    expectRefused(none, [](Mesh *mesh) { mesh->uvs[1][1] = -Endless; });
    expectRefused(none, [](Mesh *mesh) {
        mesh->normals.resize(4);
        mesh->normals[2][1] = None;
    });
    const char *nobody = "a face names a vertex that does not exist";
    expectRefused(nobody, [](Mesh *mesh) { mesh->triangles[0][0] = 4; });
    expectRefused(nobody, [](Mesh *mesh) { mesh->triangles[1][2] = 0xFFFFFFFFU; });
    for (const OssEvMesh::Vector2 &outside :
         {OssEvMesh::Vector2{-0.001F, 0}, {10.001F, 0}, {0, -0.001F}, {0, 900.01F}, {0, 1e30F}})
        expectRefused("its texture coordinates lie outside the UDIM patches",
                      [&outside](Mesh *mesh) { mesh->uvs[0] = outside; });
    auto edge = square(-5e-5F, -5e-5F, 10.00005F, 1.0F);
    EXPECT_TRUE(edge->finish("edge")) << "rounding of a tool that wrote it is no fault";
    EXPECT_EQ(edge->patches().size(), 10U);
}

TEST(Meshes, theKeyFollowsEverythingThatPixelsFollow)
{
    const auto keyOf = [](const std::function<void(OssEvMesh *)> &change) {
        auto mesh = square(0, 0, 1, 1);
        mesh->normals.assign(4, {0, 0, 1});
        change(mesh.get());
        EXPECT_TRUE(mesh->finish("mesh"));
        return mesh->key();
    };
    const std::function<void(OssEvMesh *)> changes[] = {
        [](OssEvMesh *) {},
        [](OssEvMesh *mesh) { mesh->positions[2][2] = 0.5F; },
        [](OssEvMesh *mesh) { mesh->normals[0][1] = 1.0F; },
        [](OssEvMesh *mesh) { mesh->uvs[2][0] = 0.5F; },
        [](OssEvMesh *mesh) { mesh->triangles.pop_back(); },
        [](OssEvMesh *mesh) { std::swap(mesh->triangles[0][1], mesh->triangles[0][2]); },
        [](OssEvMesh *mesh) { mesh->world[3] = 2.0F; },
        [](OssEvMesh *mesh) { mesh->world[11] = 2.0F; },
    };
    std::set<OssEvKey> keys;
    for (const auto &change : changes) {
        EXPECT_EQ(keyOf(change), keyOf(change));
        EXPECT_TRUE(keys.insert(keyOf(change)).second) << "change " << &change - changes;
    }
}

TEST(Meshes, facesBelongToThePatchesWhoseInsideTheyTouch)
{
    auto mesh = flat({{0.5F, 0.5F},
                      {1.7F, 0.5F},
                      {0.5F, 1.5F}, // over three borders
                      {2, 0},
                      {3, 0},
                      {3, 1}, // fills half of a patch
                      {9.5F, 899.5F},
                      {9.9F, 899.5F},
                      {9.9F, 899.9F}}, // beyond the last number
                     {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}});
    ASSERT_TRUE(mesh->finish("mesh"));
    EXPECT_EQ(mesh->patches(), (std::vector<int>{1001, 1002, 1003, 1011, 1012}));
    EXPECT_EQ(mesh->trianglesOf(1001), std::vector<std::int32_t>{0});
    EXPECT_EQ(mesh->trianglesOf(1003), std::vector<std::int32_t>{1});
    for (const int nobody : {1004, 0, 9999, 1000})
        EXPECT_TRUE(mesh->trianglesOf(nobody).empty()) << nobody;
    EXPECT_EQ(mesh->faces, (std::vector<std::int32_t>{0, 1, 2})) << "numbered where nobody did";
    // What lies beside the long edge is not touched, either way round.
    for (const bool turned : {false, true}) {
        auto corner = flat({{0.1F, 0.1F}, {1.7F, 0.1F}, {0.1F, 1.7F}},
                           {turned ? std::array<std::uint32_t, 3>{0, 2, 1}
                                   : std::array<std::uint32_t, 3>{0, 1, 2}});
        ASSERT_TRUE(corner->finish("corner"));
        EXPECT_EQ(corner->patches(), (std::vector<int>{1001, 1002, 1011}));
    }
}

TEST(Meshes, normalsThatAreMadeFollowTheLargerFace)
{
    // A large floor and a small wall share two corners.
    auto mesh = std::make_shared<OssEvMesh>();
    mesh->positions = {{0, 0, 0}, {0, 0, 10}, {10, 0, 0}, {0, 0.1F, 0}, {5, 5, 5}};
    mesh->uvs.assign(5, {0.5F, 0.5F});
    mesh->triangles = {{0, 1, 2}, {0, 3, 1}};
    ASSERT_TRUE(mesh->finish("mesh"));
    ASSERT_EQ(mesh->normals.size(), 5U);
    EXPECT_GT(mesh->normals[0][1], 0.99F);
    EXPECT_NEAR(std::hypot(mesh->normals[0][0], mesh->normals[0][1], mesh->normals[0][2]), 1.0F,
                1e-5F);
    EXPECT_EQ(mesh->normals[4], (Vector3{0, 0, 0})) << "of no face at all";
    auto given = square(0, 0, 1, 1);
    given->normals.assign(4, {1, 0, 0});
    ASSERT_TRUE(given->finish("given"));
    EXPECT_EQ(given->normals[0], (Vector3{1, 0, 0})) << "those of the file stay";
}

// --- rays

struct Ray
{
    Vector3 origin;
    Vector3 direction;
};

/// Distance at which a ray meets a triangle, in doubles; below 0 where it does not.
double meets(const Ray &ray, const OssEvMesh &mesh, const std::array<std::uint32_t, 3> &triangle)
{
    const auto corner = [&](std::size_t i) {
        return mesh.positions[triangle[i]];
    };
    // Cramer's rule for origin + t * direction = a + u * (b - a) + v * (c - a).
    std::array<double, 3> e1{};
    std::array<double, 3> e2{};
    std::array<double, 3> d{};
    std::array<double, 3> o{};
    for (std::size_t k = 0; k < 3; ++k) {
        e1[k] = double(corner(1)[k]) - corner(0)[k];
        e2[k] = double(corner(2)[k]) - corner(0)[k];
        d[k] = -double(ray.direction[k]);
        o[k] = double(ray.origin[k]) - corner(0)[k];
    }
    const auto determinant = [](const auto &a, const auto &b, const auto &c) {
        return a[0] * (b[1] * c[2] - b[2] * c[1]) - b[0] * (a[1] * c[2] - a[2] * c[1])
               + c[0] * (a[1] * b[2] - a[2] * b[1]);
    };
    const double whole = determinant(e1, e2, d);
    if (std::abs(whole) < 1e-9)
        return -1.0;
    const double u = determinant(o, e2, d) / whole;
    const double v = determinant(e1, o, d) / whole;
    const double t = determinant(e1, e2, o) / whole;
    // What is as near as this to an edge may go either way.
    constexpr double Edge = 1e-4;
    if (std::min({u, v, 1.0 - u - v}) > -Edge && std::min({u, v, 1.0 - u - v}) < Edge)
        return -2.0;
    return u > 0.0 && v > 0.0 && u + v < 1.0 ? t : -1.0;
}

TEST(Rays, meetWhatEveryTriangleByItselfWouldMeet)
{
    std::mt19937 random(17);
    std::uniform_real_distribution<float> place(-1.0F, 1.0F);
    const auto point = [&] {
        return Vector3{place(random), place(random), place(random)};
    };
    int hits = 0;
    int misses = 0;
    for (const int count : {1, 4, 5, 9, 200}) {
        auto mesh = std::make_shared<OssEvMesh>();
        for (int i = 0; i < count; ++i) {
            const Vector3 middle = point();
            for (int k = 0; k < 3; ++k) {
                const Vector3 offset = point();
                mesh->positions.push_back({middle[0] + 0.4F * offset[0],
                                           middle[1] + 0.4F * offset[1],
                                           middle[2] + 0.4F * offset[2]});
                mesh->uvs.push_back({0.5F, 0.5F});
            }
            const auto first = std::uint32_t(3 * i);
            mesh->triangles.push_back({first, first + 1, first + 2});
        }
        ASSERT_TRUE(mesh->finish("mesh"));
        for (int i = 0; i < 3000; ++i) {
            Ray ray{point(), point()};
            if (i % 4 == 0) { // along an axis
                ray.direction = {0, 0, 0};
                ray.direction[std::size_t(i / 4 % 3)] = i % 8 == 0 ? 1.0F : -1.0F;
            }
            const float length = std::hypot(ray.direction[0], ray.direction[1], ray.direction[2]);
            for (float &k : ray.direction)
                k /= length;
            const float distance = 0.2F + std::abs(2.0F * place(random));
            bool expected = false;
            bool unsure = false;
            for (const auto &triangle : mesh->triangles) {
                const double t = meets(ray, *mesh, triangle);
                unsure = unsure || t < -1.5 || std::abs(t) < 1e-4 || std::abs(t - distance) < 1e-4;
                expected = expected || (t > 0.0 && t < double(distance));
            }
            if (unsure)
                continue;
            ASSERT_EQ(mesh->rayTree().isHit(ray.origin, ray.direction, distance), expected)
                << count << " triangles, ray " << i;
            (expected ? hits : misses) += 1;
        }
    }
    EXPECT_GT(hits, 1000);
    EXPECT_GT(misses, 1000);
}

// --- files

class MeshReading : public testing::Test
{
protected:
    std::string error(const std::string &name, const std::string &content)
    {
        mesh = nullptr;
        return OssEvMeshFile::read(folder.write(name, content), &mesh).error();
    }

    TestFolder folder;
    std::shared_ptr<const OssEvMesh> mesh;
};

const char *const Corners = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
                            "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";

TEST_F(MeshReading, facesHaveTextureCoordinatesAndGetNormals)
{
    ASSERT_EQ(error("quad.obj", std::string(Corners) + "f 1/1 2/2 3/3 4/4\n"), "");
    EXPECT_EQ(mesh->triangles.size(), 2U);
    ASSERT_EQ(mesh->positions.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(mesh->positions[i][0], mesh->uvs[i][0]) << i;
        EXPECT_EQ(mesh->positions[i][1], mesh->uvs[i][1]) << "v grows upwards";
        EXPECT_NEAR(mesh->normals[i][2], 1.0F, 1e-5F) << "made where the file has none";
    }
}

TEST_F(MeshReading, keepsTheNormalsThatAFileHasAndMakesTheOthers)
{
    const std::string text = "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 0 5\nv 2 0 5\nv 2 2 5\n"
                             "vt 0 0\nvt 1 0\nvt 1 1\nvn 0 0.6 0.8\n"
                             "o given\nf 1/1/1 2/2/1 3/3/1\no none\nf 4/1 5/2 6/3\n";
    ASSERT_EQ(error("both.obj", text), "");
    ASSERT_EQ(mesh->positions.size(), 6U);
    for (std::size_t i = 0; i < mesh->positions.size(); ++i) {
        const bool given = mesh->positions[i][2] < 1.0F;
        EXPECT_NEAR(mesh->normals[i][1], given ? 0.6F : 0.0F, 1e-5F) << i;
        EXPECT_NEAR(mesh->normals[i][2], given ? 0.8F : 1.0F, 1e-5F) << i;
    }
}

TEST_F(MeshReading, allPartsOfAFileAreOneMesh)
{
    EXPECT_EQ(error("parts.obj", std::string(Corners)
                                     + "o Front\nf 1/1 2/2 3/3\no Back\nf 1/1 3/3 4/4\n"
                                       "o Line\nl 1 2\no Point\np 1\n"),
              "");
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->triangles.size(), 2U) << "lines and points are no faces";
    EXPECT_EQ(mesh->positions.size(), mesh->uvs.size());
    EXPECT_EQ(mesh->positions.size(), mesh->normals.size());
    std::set<std::uint32_t> used;
    for (const auto &triangle : mesh->triangles)
        used.insert(triangle.begin(), triangle.end());
    EXPECT_GE(used.size(), 4U) << "each part names vertices of its own";
}

TEST_F(MeshReading, polygonsOfAnySizeBecomeTriangles)
{
    std::string text;
    std::string face = "f";
    constexpr int Corner = 12;
    for (int i = 0; i < Corner; ++i) {
        const double angle = 6.2831853 * i / Corner;
        text += "v " + std::to_string(std::cos(angle)) + " " + std::to_string(std::sin(angle))
                + " 0\nvt " + std::to_string(0.5 + 0.4 * std::cos(angle)) + " "
                + std::to_string(0.5 + 0.4 * std::sin(angle)) + "\n";
        face += " " + std::to_string(i + 1) + "/" + std::to_string(i + 1);
    }
    ASSERT_EQ(error("disc.obj", text + face + "\n"), "");
    EXPECT_EQ(mesh->triangles.size(), std::size_t(Corner - 2));
}

TEST_F(MeshReading, filesThatAreOfNoUseAreRefusedWithNameAndReason)
{
    struct Case
    {
        const char *name;
        std::string content;
        const char *reason;
    };

    const Case cases[] = {
        {"bare.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\no Rock\nf 1 2 3\n", "no texture coordinates"},
        {"partly.obj", std::string(Corners) + "o A\nf 1/1 2/2 3/3\no B\nf 1 2 3\n",
         "no texture coordinates"},
        {"outside.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt -3 0\nvt 1 0\nvt 0 1\nf 1/1 2/2 3/3\n",
         "outside the UDIM patches"},
        {"line.obj", std::string(Corners) + "l 1 2 3\n", "line.obj"},
        {"empty.obj", "", "empty.obj"},
        {"text.obj", "hello", "text.obj"},
        {"text.xyz", "hello", "text.xyz"},
        {"half.obj", "v 0 0\nf 1 2 3\n", "half.obj"},
        {"nobody.obj", "f 9/9 8/8 7/7\n", "nobody.obj"},
        {"noise.fbx", std::string(5000, '\x7f'), "noise.fbx"},
        {"cut.glb", "glTF\2\0\0\0", "cut.glb"},
        {"cut.ply", "ply\nformat ascii 1.0\nelement vertex 99\n", "its header has no end"},
        {"short.ply",
         "ply\nformat ascii 1.0\nelement vertex 99\nproperty float x\nend_header\n1\n2\n",
         "short.ply"},
    };
    for (const Case &bad : cases) {
        const std::string told = error(bad.name, bad.content);
        EXPECT_NE(told.find(folder.path(bad.name)), std::string::npos) << bad.name << ": " << told;
        EXPECT_NE(told.find(bad.reason), std::string::npos) << told;
        EXPECT_EQ(mesh, nullptr);
    }
    std::filesystem::create_directory(folder.path("folder.obj"));
    for (const char *name : {"folder.obj", "missing.obj"})
        EXPECT_EQ(OssEvMeshFile::read(folder.path(name), &mesh).error(),
                  "Cannot read \"" + folder.path(name)
                      + "\": there is no such file; find it again, or choose another");
}

TEST_F(MeshReading, damagedFilesAreRefusedOrReadButNeverMore)
{
    const std::string whole = std::string(Corners) + "f 1/1 2/2 3/3 4/4\n";
    std::mt19937 random(3);
    int read = 0;
    for (int round = 0; round < 150; ++round) {
        std::string spoilt = whole;
        for (int i = 0; i < 3; ++i)
            spoilt[random() % spoilt.size()] = "0123456789 -./\nvtfe"[random() % 19];
        if (error("spoilt.obj", spoilt).empty()) {
            ++read;
            ASSERT_NE(mesh, nullptr);
            for (const auto &triangle : mesh->triangles) {
                for (const std::uint32_t index : triangle)
                    ASSERT_LT(index, mesh->positions.size());
            }
        }
    }
    EXPECT_GT(read, 0);
    EXPECT_LT(read, 150);
}

} // namespace
