#include "OssEvaluation/EngineFixture.h"
#include "OssEvaluation/Files/OssEvBake.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/TestFolder.h"

#include <cmath>

namespace {

/// Kernels that look at the surface they paint on.
class Surfaces : public EngineFixture
{
protected:
    OssEvTarget onMesh(const char *kernel, const OssEvParameters &parameters,
                       std::shared_ptr<const OssEvMesh> mesh, int size = 256) const
    {
        OssEvTarget result = target(nodeOf(kernel, parameters), "Node", size);
        result.mesh = std::move(mesh);
        return result;
    }

    /// A mesh that fills the middle of the patch, and an image "paint" with colour just there.
    std::shared_ptr<const OssEvMesh> paintedSquare(float alpha) const
    {
        images->add("paint", 512, 512, [alpha](int x, int y) {
            const bool inside = x >= 128 && x < 384 && y >= 128 && y < 384;
            return inside ? TestImages::Texel{0.25F, 0.5F, 0.125F, alpha} : TestImages::Texel{};
        });
        auto mesh = square(0.25F, 0.25F, 0.75F, 0.75F);
        EXPECT_TRUE(mesh->finish("square"));
        return mesh;
    }
};

TEST_F(Surfaces, positionAndNormalOfASphereAgreeAlsoWithinOneGraph)
{
    const auto sphere = OssEvShapes::sphere();
    const Collected positions = evaluate(onMesh("position", {}, sphere));
    const Collected normals = evaluate(onMesh("normal", {}, sphere));
    OssEvTarget both = target(
        graphOf({{"Position", "position"},
                 {"Normal", "normal"},
                 {"Sum", "vectorMath", {}, {{"A", "Position"}, {"B", "Normal"}}}}),
        "Sum", 256);
    both.mesh = sphere;
    const Collected sums = evaluate(both);
    ASSERT_TRUE(positions.outcome.ok()) << positions.outcome.error;
    for (int i = 8; i < 248; i += 16) {
        for (int k = 0; k < 3; ++k) {
            EXPECT_NEAR(positions.texel(k, i, i), normals.texel(k, i, i), 2e-3);
            EXPECT_NEAR(positions.texel(k, i, i) * 2, sums.texel(k, i, i), 4e-3);
        }
    }
    EXPECT_EQ(positions.tiles.begin()->second->format(), OssEvTile::Format::Float)
        << "positions are no colors";
}

TEST_F(Surfaces, colorsOfVerticesAndMaterialsCanBeRead)
{
    auto mesh = square(0.0F, 0.0F, 1.0F, 1.0F);
    mesh->colors = {{0, 0.5F, 0, 1}, {1, 0.5F, 0, 1}, {1, 0.5F, 0, 0.5F}, {0, 0.5F, 0, 0.5F}};
    mesh->materialNames = {"Below", "Above"};
    mesh->materials = {0, 1}; // beside and above the diagonal
    ASSERT_TRUE(mesh->finish("mesh"));
    const Collected colors = evaluate(onMesh("vertexColor", {}, mesh));
    ASSERT_TRUE(colors.outcome.ok()) << colors.outcome.error;
    for (const int at : {20, 128, 250}) {
        const double u = (at + 0.5) / 256;
        const double alpha = 1.0 - 0.5 * (1.0 - u); // rows go down
        EXPECT_NEAR(colors.texel(0, at, at), u * alpha, 2e-3) << at;
        EXPECT_NEAR(colors.texel(1, at, at), 0.5 * alpha, 2e-3);
        EXPECT_NEAR(colors.texel(3, at, at), alpha, 2e-3);
    }
    const Collected picked = evaluate(
        onMesh("vertexColor", {{"Space", std::string("sRGB")}}, mesh));
    EXPECT_NEAR(picked.texel(1, 100, 255), 0.2140, 2e-3);
    OssEvColorSpaces::Pointer film;
    ASSERT_TRUE(OssEvColorSpaces::builtIn()->withWorking("ACEScg", &film));
    OssEvTarget inFilm = onMesh("vertexColor", {{"Space", std::string("sRGB")}}, mesh);
    OssEvGraphBuilder builder(*inFilm.graph);
    builder.setWorking(film->workingSpace());
    inFilm.graph = builder.finish();
    const Collected converted = evaluate(inFilm);
    std::array<float, 4> wanted{0.0F, 0.5F, 0.0F, 1.0F};
    ASSERT_TRUE(film->toWorking("sRGB", wanted.data(), 1));
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(converted.texel(k, 0, 255), wanted[std::size_t(k)], 2e-3) << k;
    const Collected plain = evaluate(onMesh("vertexColor", {}, OssEvShapes::plane()));
    EXPECT_NEAR(plain.texel(2, 100, 100), 1.0, 1e-3) << "white where the mesh has none";

    const auto maskOf = [&](const OssEvParameters &parameters) {
        OssEvTarget mask = onMesh("materialId", parameters, mesh);
        mask.output = 2;
        return evaluate(mask);
    };
    const Collected first = maskOf({});
    EXPECT_EQ(first.texel(0, 200, 200), 1.0F);
    EXPECT_EQ(first.texel(0, 20, 20), 0.0F);
    const Collected named = maskOf({{"Material", std::string("Above")}});
    EXPECT_EQ(named.texel(0, 200, 200), 0.0F);
    EXPECT_EQ(named.texel(0, 20, 20), 1.0F);
    OssEvTarget id = onMesh("materialId", {}, mesh);
    id.output = 1;
    EXPECT_EQ(evaluate(id).texel(0, 20, 20), 2.0F);
    const Collected shown = evaluate(onMesh("materialId", {}, mesh));
    double difference = 0.0;
    for (int k = 0; k < 3; ++k)
        difference += std::abs(shown.texel(k, 20, 20) - shown.texel(k, 200, 200));
    EXPECT_GT(difference, 0.5) << "slots are told apart";
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
    OssEvTarget wanted = target(graphOf({{"Paint", "image", file("paint")},
                                         {"Dilate", "dilate", {}, {{"Input", "Paint"}}}}),
                                "Dilate");
    wanted.mesh = paintedSquare(0.0F);
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
    OssEvBake::Job job;
    job.target = onMesh("image", file("paint"), paintedSquare(1.0F), 512);
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

} // namespace
