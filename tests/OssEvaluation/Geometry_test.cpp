#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Files/OssEvBake.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/TestFolder.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

namespace {

using Vector3 = OssEvMesh::Vector3;

std::shared_ptr<OssEvMesh> quad(float left, float bottom, float right, float top)
{
    auto mesh = std::make_shared<OssEvMesh>();
    mesh->positions = {{left, bottom, 0}, {right, bottom, 0}, {right, top, 0}, {left, top, 0}};
    mesh->uvs = {{left, bottom}, {right, bottom}, {right, top}, {left, top}};
    mesh->triangles = {{0, 1, 2}, {0, 2, 3}};
    return mesh;
}

std::shared_ptr<const OssEvSurfaceMap> mapOf(const std::shared_ptr<const OssEvMesh> &mesh,
                                             int patch, int size)
{
    return OssEvSurfaceMap::make(mesh, {size, size, patch, 1.0}, nullptr);
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

TEST(Geometry, builtInShapesCoverTheirPatchesAndFaceOutwards)
{
    EXPECT_EQ(OssEvShapes::plane()->patches(), std::vector<int>{1001});
    EXPECT_EQ(OssEvShapes::sphere()->patches(), std::vector<int>{1001});
    const auto cube = OssEvShapes::cube();
    EXPECT_EQ(cube->patches(), (std::vector<int>{1001, 1002, 1003, 1004, 1005, 1006}));
    for (const auto &mesh : {OssEvShapes::sphere(), cube}) {
        for (const int patch : mesh->patches()) {
            const auto map = mapOf(mesh, patch, 64);
            EXPECT_EQ(coveredTexels(*map), 64 * 64);
            for (int i = 1; i < 64; i += 7) {
                const Vector3 position = positionAt(*map, i, i);
                Vector3 normal{};
                map->normals(i, i, 1, {&normal[0], &normal[1], &normal[2]});
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

TEST(Geometry, facesThatStraddlePatchesAreClippedIntoEach)
{
    auto mesh = quad(0.5F, 0.5F, 1.5F, 1.75F);
    ASSERT_TRUE(mesh->finish("quad"));
    EXPECT_EQ(mesh->patches(), (std::vector<int>{1001, 1002, 1011, 1012}));
    const int size = 128;
    EXPECT_EQ(coveredTexels(*mapOf(mesh, 1001, size)), 64 * 64);
    EXPECT_EQ(coveredTexels(*mapOf(mesh, 1002, size)), 64 * 64);
    EXPECT_EQ(coveredTexels(*mapOf(mesh, 1011, size)), 64 * 96);
    const auto map = mapOf(mesh, 1012, size);
    EXPECT_EQ(coveredTexels(*map), 64 * 96);
    // Positions are texture coordinates here: texel (10, 100) of patch 1012.
    const Vector3 position = positionAt(*map, 10, 100);
    EXPECT_NEAR(position[0], 1.0 + 10.5 / 128.0, 1e-5);
    EXPECT_NEAR(position[1], 2.0 - 100.5 / 128.0, 1e-5);
    EXPECT_FALSE(map->isCovered(100, 100));
}

TEST(Geometry, aFaceThatOnlyBordersOnAPatchIsNotInIt)
{
    auto mesh = quad(0.0F, 0.0F, 1.0F, 1.0F);
    ASSERT_TRUE(mesh->finish("quad"));
    EXPECT_EQ(mesh->patches(), std::vector<int>{1001});
    EXPECT_EQ(coveredTexels(*mapOf(mesh, 1001, 100)), 10000);
}

TEST(Geometry, theMarginTakesTheNearestCoveredTexel)
{
    auto mesh = quad(0.25F, 0.25F, 0.75F, 0.75F);
    ASSERT_TRUE(mesh->finish("quad"));
    const int size = 1024;
    const auto map = mapOf(mesh, 1001, size);
    const int margin = OssEvSurfaceMap::margin(size);
    EXPECT_EQ(margin, 4);
    EXPECT_EQ(OssEvSurfaceMap::margin(4096), 16);
    const auto distance = [&](int x, int y) {
        const int nearX = std::clamp(x, 256, 767);
        const int nearY = std::clamp(y, 256, 767);
        return std::hypot(x - nearX, y - nearY);
    };
    for (int y = 240; y < 300; ++y) {
        for (int x = 740; x < 784; ++x) {
            int nearX = 0;
            int nearY = 0;
            map->nearestCovered(x, y, &nearX, &nearY);
            const bool inReach = distance(x, y) <= margin;
            EXPECT_EQ(map->face(x, y) >= 0, inReach) << x << ", " << y;
            if (inReach) {
                EXPECT_TRUE(map->isCovered(nearX, nearY));
                EXPECT_DOUBLE_EQ(std::hypot(nearX - x, nearY - y), distance(x, y));
            }
        }
    }
    // What lies in the margin continues what lies inside.
    EXPECT_EQ(positionAt(*map, 770, 500), positionAt(*map, 767, 500));
}

TEST(Geometry, hostileMeshesAreRefusedInWords)
{
    const auto refusal = [](const std::function<void(OssEvMesh *)> &spoil) {
        auto mesh = quad(0.0F, 0.0F, 1.0F, 1.0F);
        spoil(mesh.get());
        return mesh->finish("bad.obj").error();
    };
    EXPECT_EQ(refusal([](OssEvMesh *mesh) { mesh->uvs.clear(); }),
              "Cannot use \"bad.obj\": it has no texture coordinates");
    EXPECT_EQ(refusal([](OssEvMesh *mesh) { mesh->triangles.clear(); }),
              "Cannot use \"bad.obj\": it has no faces");
    EXPECT_EQ(refusal([](OssEvMesh *mesh) { mesh->triangles[1][2] = 4; }),
              "Cannot use \"bad.obj\": a face names a vertex that does not exist");
    EXPECT_NE(refusal([](OssEvMesh *mesh) {
                  mesh->positions[0][1] = std::numeric_limits<float>::quiet_NaN();
              }),
              "");
    EXPECT_NE(refusal([](OssEvMesh *mesh) { mesh->uvs[2] = {-3.0F, 0.5F}; }), "");
    EXPECT_NE(refusal([](OssEvMesh *mesh) { mesh->uvs[2] = {3.0F, 1e30F}; }), "");
    EXPECT_NE(refusal([](OssEvMesh *mesh) { mesh->normals.resize(2); }), "");
    // A face without area is of no use, but no fault.
    auto flat = quad(0.5F, 0.0F, 0.5F, 1.0F);
    ASSERT_TRUE(flat->finish("flat"));
    EXPECT_NE(mapOf(flat, 1001, 64), nullptr);
}

class MeshFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "mesh-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
    }

    void TearDown() override { std::filesystem::remove_all(m_folder); }

    std::string write(const std::string &name, const std::string &text) const
    {
        const std::string path = m_folder + "/" + name;
        std::ofstream(path) << text;
        return path;
    }

    std::string m_folder;
};

TEST_F(MeshFiles, readsPolygonsWithTextureCoordinates)
{
    const std::string path = write("quad.obj", "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\n"
                                               "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                                               "f 1/1 2/2 3/3 4/4\n");
    std::shared_ptr<const OssEvMesh> mesh;
    const OssEvResult result = OssEvMeshFile::read(path, &mesh);
    ASSERT_TRUE(result) << result.error();
    EXPECT_EQ(mesh->triangles.size(), 2U);
    const auto map = mapOf(mesh, 1001, 64);
    EXPECT_EQ(coveredTexels(*map), 64 * 64);
    const Vector3 position = positionAt(*map, 16, 16);
    EXPECT_NEAR(position[0], 2.0 * 16.5 / 64.0, 1e-5);
    EXPECT_NEAR(position[1], 2.0 - 2.0 * 16.5 / 64.0, 1e-5) << "v grows upwards";
    Vector3 normal{};
    map->normals(5, 5, 1, {&normal[0], &normal[1], &normal[2]});
    EXPECT_NEAR(normal[2], 1.0F, 1e-5F) << "normals are made where the file has none";
}

TEST_F(MeshFiles, keepsTheNormalsThatAFileHasAndMakesTheOthers)
{
    const std::string text = "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 0 5\nv 2 0 5\nv 2 2 5\n"
                             "vt 0 0\nvt 1 0\nvt 1 1\nvn 0 0.6 0.8\n"
                             "o given\nf 1/1/1 2/2/1 3/3/1\no none\nf 4/1 5/2 6/3\n";
    std::shared_ptr<const OssEvMesh> mesh;
    const OssEvResult result = OssEvMeshFile::read(write("both.obj", text), &mesh);
    ASSERT_TRUE(result) << result.error();
    ASSERT_EQ(mesh->positions.size(), 6U);
    for (std::size_t i = 0; i < mesh->positions.size(); ++i) {
        const bool given = mesh->positions[i][2] < 1.0F;
        EXPECT_NEAR(mesh->normals[i][1], given ? 0.6F : 0.0F, 1e-5F) << i;
        EXPECT_NEAR(mesh->normals[i][2], given ? 0.8F : 1.0F, 1e-5F) << i;
    }
}

TEST_F(MeshFiles, namesFileAndReasonOfWhatItRefuses)
{
    std::shared_ptr<const OssEvMesh> mesh;
    const auto error = [&mesh](const std::string &path) {
        return OssEvMeshFile::read(path, &mesh).error();
    };
    const std::string missing = m_folder + "/missing.obj";
    EXPECT_EQ(error(missing), "Cannot read \"" + missing + "\": there is no such file");
    EXPECT_NE(error(m_folder), "");
    const std::string bare = write("bare.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    EXPECT_NE(error(bare).find("has no texture coordinates"), std::string::npos) << error(bare);
    for (const char *text : {"", "hello", "v 0 0\nf 1 2 3\n", "f 9/9 8/8 7/7\n"}) {
        const std::string path = write("broken.obj", text);
        EXPECT_NE(error(path).find(path), std::string::npos) << text;
    }
    EXPECT_NE(error(write("noise.fbx", std::string(5000, '\x7f'))), "");
    EXPECT_EQ(mesh, nullptr);
}

TEST(Geometry, raysHitWhatLiesInTheirWay)
{
    const auto sphere = OssEvShapes::sphere();
    const OssEvRayTree &tree = sphere->rayTree();
    EXPECT_TRUE(tree.isHit({0, 0, 5}, {0, 0, -1}, 4.1F));
    EXPECT_FALSE(tree.isHit({0, 0, 5}, {0, 0, -1}, 3.9F)) << "too short";
    EXPECT_FALSE(tree.isHit({0, 0, 5}, {0, 0, 1}, 100.0F)) << "away";
    EXPECT_FALSE(tree.isHit({0, 1.5F, 5}, {0, 0, -1}, 100.0F)) << "past";
    for (int i = 0; i < 100; ++i) {
        const float angle = 0.0628F * float(i);
        EXPECT_TRUE(tree.isHit(
            {0, 0, 0}, {std::cos(angle), std::sin(angle) * 0.6F, std::sin(angle) * 0.8F}, 1.1F));
    }
}

class Surfaces : public EngineFixture
{
protected:
    OssEvTarget onMesh(const char *kernel, const OssEvParameters &parameters,
                       std::shared_ptr<const OssEvMesh> mesh, int size = 256) const
    {
        OssEvGraphBuilder builder;
        builder.addNode("Node", kernel, parameters);
        OssEvTarget result = target(builder.finish(), "Node", size);
        result.mesh = std::move(mesh);
        return result;
    }
};

TEST_F(Surfaces, positionAndNormalOfASphereAgree)
{
    const auto sphere = OssEvShapes::sphere();
    const Collected positions = evaluate(onMesh("position", {}, sphere));
    const Collected normals = evaluate(onMesh("normal", {}, sphere));
    ASSERT_TRUE(positions.outcome.ok()) << positions.outcome.error;
    for (int i = 8; i < 248; i += 16) {
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(positions.texel(k, i, i), normals.texel(k, i, i), 2e-3);
    }
    EXPECT_EQ(positions.tiles.begin()->second->format(), OssEvTile::Format::Float)
        << "positions are no colors";
}

TEST_F(Surfaces, occlusionIsOpenOnASphereAndDarkInACorner)
{
    const Collected open = evaluate(
        onMesh("ambientOcclusion", {{"Rays", 32.0}}, OssEvShapes::sphere(), 128));
    ASSERT_TRUE(open.outcome.ok()) << open.outcome.error;
    for (int i = 10; i < 118; i += 9)
        EXPECT_GT(open.texel(0, i, i), 0.97F);

    // A floor (left half of the patch) that meets a wall (right half).
    auto corner = std::make_shared<OssEvMesh>();
    corner->positions = {{0, 0, 0}, {2, 0, 0}, {2, 0, 2}, {0, 0, 2},
                         {2, 0, 0}, {2, 4, 0}, {2, 4, 2}, {2, 0, 2}};
    corner->normals = {{0, 1, 0},  {0, 1, 0},  {0, 1, 0},  {0, 1, 0},
                       {-1, 0, 0}, {-1, 0, 0}, {-1, 0, 0}, {-1, 0, 0}};
    corner->uvs = {{0, 0}, {0.5F, 0}, {0.5F, 1}, {0, 1}, {0.5F, 0}, {1, 0}, {1, 1}, {0.5F, 1}};
    corner->triangles = {{0, 1, 2}, {0, 2, 3}, {4, 5, 6}, {4, 6, 7}};
    ASSERT_TRUE(corner->finish("corner"));
    const Collected dark = evaluate(onMesh(
        "ambientOcclusion", {{"Rays", 128.0}, {"Distance", 1.0}, {"Spread", 1.0}}, corner, 128));
    EXPECT_NEAR(dark.texel(0, 62, 64), 0.5F, 0.08F) << "half the sky behind the wall";
    EXPECT_GT(dark.texel(0, 10, 64), 0.97F) << "farther away than the rays reach";
}

TEST_F(Surfaces, curvatureTellsEdgesFromHollows)
{
    const Collected sphere = evaluate(
        onMesh("curvature", {{"Radius", 0.1}, {"Contrast", 2.0}}, OssEvShapes::sphere()));
    const Collected plane = evaluate(onMesh("curvature", {{"Radius", 0.1}}, OssEvShapes::plane()));
    // A sphere of radius 1 bends by its radius: 0.1 * 2 / 1.
    EXPECT_NEAR(sphere.texel(0, 128, 128), 0.5F + 0.5F * 0.2F, 0.02F);
    EXPECT_NEAR(plane.texel(0, 128, 128), 0.5F, 1e-3F);
}

TEST_F(Surfaces, dilationCarriesColorsAndNeverDarkensThem)
{
    auto mesh = quad(0.25F, 0.25F, 0.75F, 0.75F);
    ASSERT_TRUE(mesh->finish("quad"));
    images->add("paint", 512, 512, [](int x, int y) {
        const bool inside = x >= 128 && x < 384 && y >= 128 && y < 384;
        return inside ? TestImages::Texel{0.25F, 0.5F, 0.125F, 0.0F} : TestImages::Texel{};
    });
    OssEvGraphBuilder builder;
    const int image = builder.addNode("Paint", "image", {{"File", std::string("paint")}});
    const int dilate = builder.addNode("Dilate", "dilate");
    builder.connect(image, "", dilate, "Input");
    OssEvTarget wanted = target(builder.finish(), "Dilate");
    wanted.mesh = mesh;
    const Collected result = evaluate(wanted);
    const int margin = OssEvSurfaceMap::margin(512);
    ASSERT_EQ(margin, 2);
    for (int i = 130; i < 380; i += 50) {
        EXPECT_EQ(result.texel(1, 128 - margin, i), 0.5F) << "whole color, whatever the alpha";
        EXPECT_EQ(result.texel(1, i, 383 + margin), 0.5F);
        EXPECT_EQ(result.texel(1, 127 - margin, i), 0.0F);
    }
}

TEST_F(Surfaces, aBakeFillsTheMarginUnlessItIsToldNotTo)
{
    auto mesh = quad(0.25F, 0.25F, 0.75F, 0.75F);
    ASSERT_TRUE(mesh->finish("quad"));
    images->add("paint", 512, 512, [](int x, int y) {
        const bool inside = x >= 128 && x < 384 && y >= 128 && y < 384;
        return inside ? TestImages::Texel{0.25F, 0.5F, 0.125F, 1.0F} : TestImages::Texel{};
    });
    OssEvGraphBuilder builder;
    builder.addNode("Paint", "image", {{"File", std::string("paint")}});
    OssEvBake::Job job;
    job.target = target(builder.finish(), "Paint");
    job.target.mesh = mesh;
    const TestFolder folder;
    for (const bool dilate : {true, false}) {
        job.path = folder.path(dilate ? "dilated.exr" : "plain.exr");
        job.dilate = dilate;
        ASSERT_EQ(OssEvBake::run(engine.get(), job).error(), "");
        OssEvImageFiles files;
        float beside = -1.0F;
        float inside = -1.0F;
        ASSERT_TRUE(files.read({job.path}, 0, 2, {}, [&](int x, int, const OssEvTilePointer &tile) {
            if (x == 0)
                beside = tile->texel(1, 127, 0);
            if (x == 1)
                inside = tile->texel(1, 0, 0);
        }));
        EXPECT_EQ(inside, 0.5F);
        EXPECT_EQ(beside, dilate ? 0.5F : 0.0F);
    }
}

TEST_F(Surfaces, oneMapServesEveryNodeOfAPatch)
{
    OssEvGraphBuilder builder;
    const int position = builder.addNode("Position", "position");
    const int normal = builder.addNode("Normal", "normal");
    const int sum = builder.addNode("Sum", "vectorMath");
    builder.connect(position, "", sum, "A");
    builder.connect(normal, "", sum, "B");
    OssEvTarget wanted = target(builder.finish(), "Sum");
    wanted.mesh = OssEvShapes::sphere();
    const Collected result = evaluate(wanted);
    ASSERT_TRUE(result.outcome.ok()) << result.outcome.error;
    EXPECT_EQ(result.tiles.size(), 16U);
    const float x = result.texel(0, 200, 256);
    const float z = result.texel(2, 200, 256);
    EXPECT_NEAR(std::hypot(x, z), 2.0F, 5e-3F) << "on the equator";
}

} // namespace
