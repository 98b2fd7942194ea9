// What kernels tell of the mesh, on shapes whose answers are known, and from patch to patch.

#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshFacts.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/KernelBench.h"

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <variant>

namespace {

constexpr int Size = 128;

using Mesh = std::shared_ptr<const OssEvMesh>;
using Vector = std::array<float, 3>;

std::shared_ptr<const OssEvSurfaceMap> mapOf(const Mesh &mesh, int patch = 1001, int size = Size)
{
    return OssEvSurfaceMap::make(mesh, {size, size, patch, 1.0}, nullptr);
}

Picture run(const char *kernel, const OssEvParameters &parameters, const Mesh &mesh,
            const char *output = nullptr, int patch = 1001, int size = Size)
{
    KernelBench bench(kernel, parameters);
    if (output != nullptr)
        bench.output(output);
    return bench.surface(mapOf(mesh, patch, size)).patch(patch).run(size, size);
}

/// Squares of edge 1 in space, each with half of the patch's width: over x and y, at (x, y, z), facing z, or
/// lying down towards y.
struct Square
{
    Vector corner;
    Vector right;
    Vector up;
};

Mesh squares(const std::vector<Square> &list)
{
    auto mesh = std::make_shared<OssEvMesh>();
    const float width = 1.0F / float(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        const auto begin = std::uint32_t(mesh->positions.size());
        for (const auto &[s, t] : {std::pair{0.0F, 0.0F}, std::pair{1.0F, 0.0F},
                                   std::pair{1.0F, 1.0F}, std::pair{0.0F, 1.0F}}) {
            Vector place = list[i].corner;
            Vector normal{};
            for (std::size_t k = 0; k < 3; ++k) {
                const std::size_t m = (k + 1) % 3;
                const std::size_t n = (k + 2) % 3;
                place[k] += s * list[i].right[k] + t * list[i].up[k];
                normal[k] = list[i].right[m] * list[i].up[n] - list[i].right[n] * list[i].up[m];
            }
            mesh->positions.push_back(place);
            mesh->normals.push_back(normal);
            mesh->uvs.push_back({width * (float(i) + s), t});
        }
        mesh->triangles.push_back({begin, begin + 1, begin + 2});
        mesh->triangles.push_back({begin, begin + 2, begin + 3});
    }
    EXPECT_TRUE(mesh->finish("squares"));
    return mesh;
}

/// A wall at z = 0 and a floor before it, which meet at y = 0.
Mesh corner()
{
    return squares({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 0, 1}, {1, 0, 0}, {0, 0, -1}}});
}

/// Turned by a quarter about z, twice as large, moved up: x becomes y.
Mesh turnedSphere()
{
    auto mesh = std::make_shared<OssEvMesh>(*OssEvShapes::sphere());
    mesh->world = {0, -2, 0, 0, 2, 0, 0, 5, 0, 0, 2, 0};
    EXPECT_TRUE(mesh->finish("turned"));
    return mesh;
}

TEST(MeshKernels, directionsAreThoseOfTheWorld)
{
    const auto map = mapOf(OssEvShapes::sphere());
    const auto masks = [&](const Mesh &mesh, const char *space, std::size_t axis) {
        const OssEvParameters parameters{{"Space", std::string(space)}, {"Width", 90.0}};
        expectPicture(run("directionMask", parameters, mesh), [&](int x, int y) {
            Vector n{};
            map->normals(x, y, 1, {&n[0], &n[1], &n[2]});
            const double angle = std::acos(std::min(std::max(double(n[axis]), -1.0), 1.0))
                                 * 57.29577951;
            const double t = std::min(std::max((90.0 - angle) / 63.0, 0.0), 1.0);
            return Texel{t * t * (3.0 - 2.0 * t)};
        });
    };
    masks(OssEvShapes::sphere(), "World", 1);
    masks(turnedSphere(), "Object", 1);
    masks(turnedSphere(), "World", 0);
}

TEST(MeshKernels, heightsGoFromEndToEndOfTheObject)
{
    const auto map = mapOf(OssEvShapes::sphere());
    const auto along = [&](const Mesh &mesh, const OssEvParameters &parameters, std::size_t axis,
                           double factor, double offset) {
        expectPicture(run("heightGradient", parameters, mesh), [&](int x, int y) {
            Vector p{};
            map->positions(x, y, 1, {&p[0], &p[1], &p[2]});
            return Texel{std::min(std::max(double(p[axis]) * factor + offset, 0.0), 1.0)};
        });
    };
    along(OssEvShapes::sphere(), {}, 1, 0.5, 0.5);
    along(turnedSphere(), {}, 0, 0.5, 0.5);
    along(turnedSphere(), {{"Space", std::string("Object")}, {"From", 0.5}}, 1, 1.0, 0.0);
    // 4 to 6 in the world is -0.5 to 0.5 of the sphere.
    along(turnedSphere(), {{"Range", std::string("Own")}, {"From", 6.0}, {"To", 4.0}}, 0, -1.0,
          0.5);
}

TEST(MeshKernels, raysTellHollowsEdgesAndThickness)
{
    const OssEvParameters radius{
        {"Radius", 0.2}, {"Unit", std::string("Units")}, {"Rays", std::int64_t(64)}};
    const Picture edges = run("concavity", radius, OssEvShapes::cube(), "Edges");
    EXPECT_EQ(edges.at(0, 64, 64), 0.0);
    EXPECT_GT(edges.at(0, 0, 64), 0.6);
    EXPECT_GT(edges.at(0, 12, 64), 0.05);
    EXPECT_GT(edges.at(0, 12, 64), edges.at(0, 20, 64));
    EXPECT_GT(edges.at(0, 0, 0), edges.at(0, 0, 64)) << "at a corner two edges meet";
    const Picture none = run("concavity", radius, OssEvShapes::cube());
    EXPECT_EQ(none.at(0, 0, 0), 0.0);
    const Picture hollow = run("concavity", radius, corner());
    EXPECT_GT(hollow.at(0, 32, 127), 0.6) << "the foot of the wall";
    EXPECT_EQ(hollow.at(0, 32, 64), 0.0);
    EXPECT_GT(hollow.at(0, 96, 0), 0.6) << "the back of the floor";
    EXPECT_EQ(hollow.at(0, 96, 100), 0.0);

    // Two squares 0.2 apart with their backs to each other: of straight rays, 0.2 of a distance of 0.8.
    const Mesh plate = squares(
        {{{0, 0, 0.2F}, {1, 0, 0}, {0, 1, 0}}, {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}}});
    const OssEvParameters straight{
        {"Distance", 0.8}, {"Unit", std::string("Units")}, {"Spread", 0.0}};
    expectPicture(run("thickness", straight, plate), [](int, int) { return Texel{0.25}; });
    const Picture bent = run("bentNormal", {{"Unit", std::string("Units")}, {"Distance", 1.0}},
                             corner());
    EXPECT_GT(bent.at(2, 96, 1), 0.3) << "the floor's points lean away from the wall";
    EXPECT_GT(bent.at(1, 96, 1), 0.5);
    EXPECT_NEAR(std::hypot(bent.at(0, 96, 1), bent.at(1, 96, 1), bent.at(2, 96, 1)), 1.0, 1e-4);
}

TEST(MeshKernels, proximityKnowsPartsFromTheOwnSurface)
{
    const Mesh apart = squares(
        {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0.5F, 0, 0.1F}, {1, 0, 0}, {0, 1, 0}}});
    const OssEvParameters parameters{{"Unit", std::string("Units")}, {"Distance", 0.4}};
    expectPicture(run("proximity", parameters, apart, "Distance"), [](int x, int) {
        const double u = (x % 64 + 0.5) / 64.0;
        const double aside = x < 64 ? std::max(0.5 - u, 0.0) : std::max(u - 0.5, 0.0);
        return Texel{std::min(std::hypot(aside, 0.1), 0.4)};
    });
    OssEvParameters own = parameters;
    own["To"] = std::string("Own Surface");
    const Picture before = run("proximity", own, apart);
    EXPECT_NEAR(before.at(0, 50, 64), 0.75, 0.02) << "there is another square before it";
    EXPECT_EQ(before.at(0, 100, 64), 0.0);
    EXPECT_EQ(run("proximity", parameters, OssEvShapes::cube()).at(0, 5, 5), 0.0) << "one part";
}

// Against all triangles, point by point, in double precision.
TEST(MeshKernels, theNearestTriangleIsFound)
{
    const Mesh mesh = OssEvShapes::shaderBall();
    std::mt19937 random(3);
    std::uniform_real_distribution<float> place(-1.5F, 1.5F);
    for (int round = 0; round < 40; ++round) {
        const Vector from{place(random), place(random), place(random)};
        const auto counts = [round](std::uint32_t triangle) {
            return triangle % 3 == std::uint32_t(round) % 3;
        };
        double best = 1e9;
        for (std::uint32_t i = 0; i < mesh->triangles.size(); ++i) {
            if (!counts(i))
                continue;
            for (int s = 0; s <= 8; ++s) {
                for (int t = 0; s + t <= 8; ++t) {
                    double square = 0.0;
                    for (std::size_t k = 0; k < 3; ++k) {
                        const double a = mesh->positions[mesh->triangles[i][0]][k];
                        const double b = mesh->positions[mesh->triangles[i][1]][k];
                        const double c = mesh->positions[mesh->triangles[i][2]][k];
                        const double away = a + (b - a) * s / 8 + (c - a) * t / 8 - double(from[k]);
                        square += away * away;
                    }
                    best = std::min(best, square);
                }
            }
        }
        const double found = double(mesh->rayTree().nearest(from, 10.0F, counts));
        EXPECT_LE(found, std::sqrt(best) + 1e-5);
        EXPECT_GE(found, std::sqrt(best) - 0.02);
    }
    EXPECT_EQ(mesh->rayTree().nearest({9, 9, 9}, 0.5F, [](std::uint32_t) { return true; }), 0.5F);
}

TEST(MeshKernels, islandsAreChartsOrParts)
{
    const Mesh cube = OssEvShapes::cube();
    // Four sides go round and share their edges in the texture space, too.
    EXPECT_EQ(cube->facts().charts().count, 3);
    EXPECT_EQ(cube->facts().parts().count, 1);
    for (int patch = 1001; patch <= 1006; ++patch)
        EXPECT_EQ(run("island", {}, cube, "Id", patch).at(0, 50, 50), std::max(patch - 1003, 1));
    const OssEvParameters parts{{"Of", std::string("Parts")}, {"Number", std::int64_t(2)}};
    EXPECT_EQ(run("island", parts, cube, "Id", 1004).at(0, 50, 50), 1.0);
    EXPECT_EQ(run("island", parts, corner(), "Mask").at(0, 20, 20), 0.0);
    EXPECT_EQ(run("island", {{"Number", std::int64_t(2)}}, corner(), "Mask").at(0, 100, 20), 1.0);
    EXPECT_NE(run("island", {}, cube, "Random", 1001).at(0, 5, 5),
              run("island", {}, cube, "Random", 1005).at(0, 5, 5));
    EXPECT_EQ(OssEvShapes::sphere()->facts().charts().count, 1);
}

TEST(MeshKernels, densityIsThatOfThePatch)
{
    // The squares lie in a half of the patch each: half as wide there as high.
    const Mesh mesh = corner();
    EXPECT_NEAR(mesh->facts().density(), std::sqrt(0.5), 1e-6);
    expectPicture(run("uvDensity", {}, mesh, "Density"),
                  [](int, int) { return Texel{std::sqrt(0.5)}; });
    expectPicture(run("uvDensity", {}, mesh), [](int, int) { return Texel{0.5}; });
    expectPicture(run("uvDensity", {}, mesh, "Stretch"), [](int, int) { return Texel{0.5}; });
}

TEST(MeshKernels, waterRunsDown)
{
    const Mesh mesh = corner();
    const Picture way = run("surfaceFlow", {}, mesh);
    const Picture onPatch = run("surfaceFlow", {}, mesh, "UV");
    const Picture steep = run("surfaceFlow", {}, mesh, "Steepness");
    EXPECT_NEAR(way.at(1, 30, 64), -1.0, 1e-5);
    EXPECT_NEAR(onPatch.at(1, 30, 64), -1.0, 1e-5) << "down the wall is down its chart";
    EXPECT_NEAR(steep.at(0, 30, 64), 1.0, 1e-5);
    EXPECT_NEAR(steep.at(0, 96, 64), 0.0, 1e-3) << "the floor is level";
    const Picture turned = run("surfaceFlow", {}, turnedSphere());
    EXPECT_NEAR(turned.at(0, 96, 64), -1.0, 0.05)
        << "down in the world is towards -x of the object";
}

TEST(MeshKernels, lightComesFromTheSunAndTheSky)
{
    const OssEvParameters sun{{"Azimuth", 0.0}, {"Elevation", 30.0}, {"Softness", 0.0}};
    const Picture direct = run("bakedLight", sun, corner(), "Direct");
    EXPECT_NEAR(direct.at(0, 30, 64), std::cos(0.5235988), 1e-4);
    EXPECT_NEAR(direct.at(0, 96, 64), 0.5, 1e-4) << "the floor";
    const OssEvParameters behind{{"Azimuth", 180.0}, {"Elevation", 45.0}, {"Softness", 0.0}};
    const Picture shade = run("bakedLight", behind, corner(), "Direct");
    EXPECT_EQ(shade.at(0, 30, 64), 0.0) << "faces away";
    EXPECT_EQ(shade.at(0, 96, 20), 0.0) << "in the wall's shadow";
    OssEvParameters through = behind;
    through["Shadows"] = false;
    EXPECT_NEAR(run("bakedLight", through, corner(), "Direct").at(0, 96, 20), std::sqrt(0.5), 1e-4);
    const Picture colored = run("bakedLight", behind, corner());
    EXPECT_NEAR(colored.at(2, 96, 20), 0.3, 1e-4) << "only the sky's blue";
    EXPECT_EQ(colored.at(3, 96, 20), 1.0);
}

// The decal is where it was put whichever patch a place is in, and reads the image by the place in space.
TEST(MeshKernels, aDecalRunsOnOverPatches)
{
    const Picture image = pictureOf(Size, Size, 4, [](int channel, int x, int y) {
        return channel == 3 ? 1.0 : channel == 0 ? (x + 0.5) / Size : 1.0 - (y + 0.5) / Size;
    });
    // Along x + z of the cube, over the edge between two sides.
    const OssEvParameters place{{"PositionX", 0.5}, {"PositionZ", 0.5}, {"RotationY", 45.0},
                                {"Width", 0.8},     {"Height", 0.5},    {"Fade", 0.0}};
    const double half = std::sqrt(0.5);
    int hit = 0;
    for (int patch = 1001; patch <= 1006; ++patch) {
        const auto map = mapOf(OssEvShapes::cube(), patch);
        KernelBench bench("decal", place);
        const Picture decal = bench.input("Image", image).surface(map).patch(patch).run(Size, Size);
        expectPicture(
            decal,
            [&](int x, int y) {
                Vector p{};
                Vector n{};
                map->positions(x, y, 1, {&p[0], &p[1], &p[2]});
                map->normals(x, y, 1, {&n[0], &n[1], &n[2]});
                const double u = ((double(p[0]) - 0.5) * half - (double(p[2]) - 0.5) * half) / 0.8
                                 + 0.5;
                const double v = double(p[1]) / 0.5 + 0.5;
                const bool faces = double(n[0]) * half + double(n[2]) * half > 0.1;
                if (!faces || u < 0.0 || u >= 1.0 || v < 0.0 || v >= 1.0)
                    return Texel{};
                ++hit;
                return Texel{u, v, v, 1.0};
            },
            2e-3);
    }
    EXPECT_GT(hit, 5000);
}

TEST(MeshKernels, colorsMarkMaterials)
{
    const Picture map = pictureOf(Size, Size, 4, [](int channel, int x, int) {
        const double alpha = x < 96 ? 1.0 : 0.5;
        return channel == 3 ? alpha : channel == (x < 64 ? 0 : 1) ? alpha : 0.02 * alpha;
    });
    KernelBench bench("colorIdMask", {{"Tolerance", 0.2}, {"Color", OssEvColor{0, 1, 0, 1}}});
    expectPicture(bench.input("Input", map).run(Size, Size), [](int x, int) {
        return Texel{x < 64 ? 0.0 : x < 96 ? 1.0 : 0.5};
    });
}

class MeshGraphs : public EngineFixture
{
protected:
    Collected onCube(const std::vector<TestNode> &nodes, int patch = 1001)
    {
        OssEvTarget wanted = target(graphOf(nodes), "Node", 256);
        wanted.mesh = OssEvShapes::cube();
        wanted.patch = patch;
        return evaluate(wanted);
    }
};

// What stands in for a wire is computed as if it were wired, and once for all that can share it.
TEST_F(MeshGraphs, whatStandsInForAnInputIsWhatItNames)
{
    const OssEvParameters wide{{"Radius", 0.1}, {"Rays", std::int64_t(8)}};
    OssEvParameters worn = wide;
    const auto wear = [&](const OssEvParameters &parameters) {
        return onCube({{"Node", "edgeWear", parameters}});
    };
    const Collected alone = wear(worn);
    ASSERT_TRUE(alone.outcome.ok()) << alone.outcome.error;
    const Collected wired = onCube(
        {{"Edges", "concavity", wide}, {"Node", "edgeWear", worn, {{"Edges", "Edges.Edges"}}}});
    expectNear(alone, wired, 256, 0.0);
    EXPECT_EQ(alone.texel(0, 128, 128), 0.0F);
    EXPECT_GT(alone.texel(0, 0, 128), 0.5F);
    engine->resetStatistics();
    worn["Amount"] = 0.9;
    worn["Scale"] = 60.0;
    wear(worn);
    EXPECT_EQ(engine->statistics().callsOf("concavity"), 0U) << "the rays are not sent again";
    worn["Radius"] = 0.2;
    wear(worn);
    EXPECT_GT(engine->statistics().callsOf("concavity"), 0U);
}

const char *const OnMeshes[] = {"directionMask", "heightGradient", "thickness", "bentNormal",
                                "concavity",     "edgeWear",       "dirt",      "bakedLight",
                                "proximity",     "island",         "uvDensity", "surfaceFlow",
                                "decal",         "colorIdMask"};

// At both ends of every attribute, on a mesh and without one; an empty patch of it, too.
TEST(MeshKernels, theEndsOfAttributesBringNumbers)
{
    const auto ball = mapOf(OssEvShapes::shaderBall(), 1001);
    const auto empty = mapOf(OssEvShapes::shaderBall(), 1002);
    const Picture image = randomPicture(Size, 16, 4, 5);
    for (const char *name : OnMeshes) {
        const OssEvKernel &kernel = *OssEvKernelLibrary::find(name);
        std::vector<OssEvParameters> cases{{}};
        for (const OssEvParameterDescription &parameter : kernel.parameters) {
            if (!(parameter.minimum < parameter.maximum) || parameter.name == "Rays")
                continue;
            cases.push_back({{parameter.name, parameter.minimum}});
            cases.push_back({{parameter.name, parameter.maximum}});
        }
        for (OssEvParameters parameters : cases) {
            const std::string what = std::string(name) + " "
                                     + (parameters.empty() ? "" : parameters.begin()->first);
            parameters["Rays"] = std::int64_t(4);
            for (const auto &map : {ball, empty, std::shared_ptr<const OssEvSurfaceMap>()}) {
                for (const OssEvKernelOutput &output : kernel.outputs) {
                    KernelBench bench(name, parameters);
                    bench.output(output.name).surface(map);
                    if (kernel.inputIndex("Image") >= 0)
                        bench.input("Image", image);
                    const Picture picture = bench.run(Size, 16);
                    for (const auto &plane : picture.planes) {
                        for (const float value : plane)
                            ASSERT_TRUE(std::isfinite(value)) << what;
                    }
                }
            }
        }
    }
}

} // namespace
