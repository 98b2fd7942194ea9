#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Paint/OssEvSurfaceStroke.h"
#include "OssEvaluation/PaintTexels.h"

#include <glm/geometric.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int Resolution = 256;
constexpr int Width = 640;
constexpr int Height = 480;
using MeshPointer = std::shared_ptr<const OssEvMesh>;

/// Strokes on an object that is looked at from somewhere.
class SurfaceStrokes : public testing::Test
{
protected:
    SurfaceStrokes()
    {
        m_brush.hardness = 1.0;
        m_brush.sizeIn = OssEvBrush::SizeIn::World;
    }

    void look(const MeshPointer &mesh, const glm::vec3 &eye, const glm::vec3 &up = {0, 1, 0})
    {
        m_surface = std::make_shared<OssEvPaintSurface>(mesh, Resolution);
        const glm::mat4 clip = glm::perspective(0.6F, float(Width) / Height, 0.1F, 100.0F)
                               * glm::lookAt(eye, glm::vec3(0.0F), up);
        m_view = std::make_shared<OssEvPaintView>(m_surface.get(), clip, Width, Height);
    }

    /// Where a place of the world is on the picture.
    glm::vec2 pixelOf(const glm::vec3 &place) const { return glm::vec2(*m_view->project(place)); }

    void stroke(std::initializer_list<glm::vec3> places)
    {
        OssEvSurfaceStroke stroke(&m_buffer, m_brush, m_surface, m_view);
        for (const glm::vec3 &place : places) {
            const glm::vec2 pixel = pixelOf(place);
            stroke.moveTo(double(pixel.x), double(pixel.y));
        }
        stroke.finish();
    }

    float at(int patch, int x, int y) const { return texelOf(m_buffer, patch, x, y)[3]; }

    /// Whether each texel that lies on the surface is painted as `wants` says of its place: 1 yes, 0 no,
    /// -1 either.
    template <class Wants>
    void expectPainted(const Wants &wants)
    {
        int wrong = 0;
        int painted = 0;
        for (const int patch : m_surface->mesh()->patches()) {
            for (int index = 0; index < Resolution * Resolution; ++index) {
                const int x = index % Resolution;
                const int y = index / Resolution;
                const auto tile = m_surface->tile(
                    {patch, x / OssEvPaintTile::Size, y / OssEvPaintTile::Size});
                const auto within = std::size_t(y % OssEvPaintTile::Size) * OssEvPaintTile::Size
                                    + std::size_t(x % OssEvPaintTile::Size);
                if (tile->faces[within] < 0)
                    continue;
                const int wanted = wants(
                    glm::vec3(tile->x[within], tile->y[within], tile->z[within]));
                const float is = at(patch, x, y);
                painted += is > 0.5F ? 1 : 0;
                if (wanted >= 0 && std::abs(is - float(wanted)) > 0.01F && ++wrong <= 5)
                    ADD_FAILURE() << "patch " << patch << ", texel " << x << ", " << y << ": "
                                  << is;
            }
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_GT(painted, 0);
    }

    OssEvPaintBuffer m_buffer{Resolution};
    OssEvBrush m_brush;
    std::shared_ptr<OssEvPaintSurface> m_surface;
    std::shared_ptr<const OssEvPaintView> m_view;
};

/// Inside by more than a texel's width, outside by more than that, or between.
int within(float distance, float radius, float texel)
{
    if (distance < radius - 1.5F * texel)
        return 1;
    return distance > radius + 1.5F * texel ? 0 : -1;
}

TEST_F(SurfaceStrokes, aDabCoversWhatLiesAroundItAlsoAcrossSeamsAndPatches)
{
    // On the corner of a cube: three patches.
    look(OssEvShapes::cube(), {2.0F, 2.0F, 2.0F});
    m_brush.worldRadius = 0.3;
    const glm::vec3 corner(0.5F);
    stroke({corner});
    EXPECT_EQ(m_buffer.patches().size(), 3U);
    const auto around = [&](const glm::vec3 &place) {
        return within(glm::length(place - corner), 0.3F, 1.0F / Resolution);
    };
    expectPainted(around);
    // On the seam of a ball, where u is 0 and 1.
    m_buffer.clear();
    look(OssEvShapes::sphere(), {-4.0F, 0.5F, 0.0F});
    const glm::vec3 seam(-1.0F, 0.0F, 0.0F);
    stroke({seam});
    EXPECT_EQ(at(1001, 0, Resolution / 2), 1.0F);
    EXPECT_EQ(at(1001, Resolution - 1, Resolution / 2), 1.0F);
    expectPainted(
        [&](const glm::vec3 &place) { return within(glm::length(place - seam), 0.3F, 0.03F); });
}

TEST_F(SurfaceStrokes, nothingIsPaintedThatIsTurnedAwayUnlessItIsAskedFor)
{
    look(OssEvShapes::sphere(), {0.0F, 0.0F, 4.0F});
    m_brush.worldRadius = 3.0; // the whole ball lies in it
    const auto facing = [&](const glm::vec3 &place) {
        const float cosine = glm::dot(glm::normalize(m_view->eye() - place), place);
        return cosine > 0.1F ? 1 : cosine < -0.05F ? 0 : -1;
    };
    stroke({{0.0F, 0.0F, 1.0F}});
    expectPainted(facing);
    m_buffer.clear();
    m_brush.goesThrough = true;
    m_brush.worldRadius = 0.3;
    stroke({{0.0F, 0.0F, 1.0F}});
    expectPainted([](const glm::vec3 &place) {
        const float near = std::min(glm::length(place - glm::vec3(0, 0, 1)),
                                    glm::length(place - glm::vec3(0, 0, -1)));
        return within(near, 0.3F, 0.03F);
    });
}

/// Two squares of edge 1 that face z, each with its own half of a patch: one at z = 0, one 0.1 before
/// the left half of it.
MeshPointer twoSquares()
{
    auto mesh = std::make_shared<OssEvMesh>();
    const auto add = [&](float left, float z, float u) {
        const auto first = std::uint32_t(mesh->positions.size());
        for (const auto &[x, y] :
             {std::pair(0.0F, 0.0F), {1.0F, 0.0F}, {1.0F, 1.0F}, {0.0F, 1.0F}}) {
            mesh->positions.push_back({left + x - 0.5F, y - 0.5F, z});
            mesh->uvs.push_back({u + x * 0.4F, 0.1F + y * 0.4F});
        }
        mesh->triangles.push_back({first, first + 1, first + 2});
        mesh->triangles.push_back({first, first + 2, first + 3});
        mesh->faces.push_back(int(first) / 4);
        mesh->faces.push_back(int(first) / 4);
    };
    add(0.0F, 0.0F, 0.05F);
    add(-0.5F, 0.1F, 0.55F);
    EXPECT_TRUE(mesh->finish("two squares").ok());
    return mesh;
}

TEST_F(SurfaceStrokes, whatLiesBeforeASurfaceKeepsPaintFromIt)
{
    look(twoSquares(), {0.0F, 0.0F, 4.0F});
    m_brush.worldRadius = 0.3;
    // Beside the front square's edge: it gets some, the other only where it is seen.
    stroke({{0.1F, 0.0F, 0.0F}});
    const glm::vec3 centre(0.1F, 0.0F, 0.0F);
    expectPainted([&](const glm::vec3 &place) {
        const int near = within(glm::length(place - centre), 0.3F, 1.0F / Resolution / 0.4F);
        if (place.z > 0.05F)
            return near;
        // What the eye sees of z = 0 past an edge at x = 0, z = 0.1.
        const float pixel = 4.0F * 2.0F * std::tan(0.3F) / Height;
        return std::abs(place.x) < 3.0F * pixel ? -1 : place.x < 0.0F ? 0 : near;
    });
}

TEST_F(SurfaceStrokes, paintGoesOnBeyondTheSeams)
{
    look(twoSquares(), {1.0F, 0.0F, 4.0F});
    m_brush.worldRadius = 0.2;
    stroke({{0.5F, 0.0F, 0.0F}}); // on the right edge of the square behind, u = 0.45
    const int edge = int(0.45F * Resolution);
    const int middle = int(0.7F * Resolution);
    const int margin = OssEvPaintSurface::BleedAt4k * Resolution / 4096;
    ASSERT_GE(margin, 2);
    for (int x = edge - 3; x <= edge + margin - 1; ++x)
        EXPECT_EQ(at(1001, x, middle), 1.0F) << x;
    EXPECT_EQ(at(1001, edge + margin + 2, middle), 0.0F);
}

TEST_F(SurfaceStrokes, strokesHaveNoGapsWhereTheSurfaceRunsAway)
{
    // A square seen from almost its own plane, from near to far.
    look(OssEvShapes::plane(), {0.0F, -3.0F, 0.25F}, {0, 0, 1});
    m_brush.sizeIn = OssEvBrush::SizeIn::World;
    m_brush.worldRadius = 0.02;
    stroke({{0.0F, -0.45F, 0.0F}, {0.0F, 0.45F, 0.0F}});
    for (int y = int(0.06 * Resolution); y < int(0.94 * Resolution); ++y)
        EXPECT_EQ(at(1001, Resolution / 2, y), 1.0F) << y;
}

TEST_F(SurfaceStrokes, sizesAreTexelsPixelsOrLengths)
{
    look(OssEvShapes::plane(), {0.0F, 0.0F, 4.0F});
    const auto across = [&] {
        stroke({{0.0F, 0.0F, 0.0F}});
        int count = 0;
        for (int x = 0; x < Resolution; ++x)
            count += at(1001, x, Resolution / 2) > 0.5F ? 1 : 0;
        m_buffer.clear();
        return count;
    };
    m_brush.worldRadius = 0.25;
    EXPECT_NEAR(across(), Resolution / 2, 1);
    m_brush.sizeIn = OssEvBrush::SizeIn::Texels;
    m_brush.radius = 30.0;
    EXPECT_NEAR(across(), 60, 1);
    m_brush.sizeIn = OssEvBrush::SizeIn::Pixels;
    const double pixel = 4.0 * 2.0 * std::tan(0.3) / Height; // length of one there
    EXPECT_NEAR(across(), 60.0 * pixel * Resolution, 1.5);
    // The same brush farther away is as large on the picture.
    look(OssEvShapes::plane(), {0.0F, 0.0F, 8.0F});
    EXPECT_NEAR(across(), 120.0 * pixel * Resolution, 2.5);
}

TEST_F(SurfaceStrokes, aBrushBesideTheObjectPaintsWhatItReaches)
{
    look(OssEvShapes::plane(), {0.0F, 0.0F, 4.0F});
    m_brush.worldRadius = 0.2;
    stroke({{0.6F, 0.0F, 0.0F}}); // the square ends at 0.5
    expectPainted([](const glm::vec3 &place) {
        return within(glm::length(place - glm::vec3(0.6F, 0.0F, 0.0F)), 0.2F, 1.0F / Resolution);
    });
    m_buffer.clear();
    stroke({{0.9F, 0.0F, 0.0F}});
    EXPECT_TRUE(m_buffer.isEmpty());
}

TEST_F(SurfaceStrokes, aDabOnTheBorderOfThePictureIsWholeAndOneBeyondItIsNone)
{
    look(OssEvShapes::plane(), {0.0F, 0.0F, 1.0F});
    m_brush.worldRadius = 0.2;
    const float border = std::tan(0.3F) * float(Width) / Height;
    const glm::vec3 centre(border - 0.05F, 0.0F, 0.0F);
    stroke({centre});
    expectPainted([&](const glm::vec3 &place) {
        return within(glm::length(place - centre), 0.2F, 1.0F / Resolution);
    });
    m_buffer.clear();
    m_brush.worldRadius = 0.05;
    stroke({{border + 0.06F, 0.0F, 0.0F}});
    EXPECT_TRUE(m_buffer.isEmpty());
}

TEST_F(SurfaceStrokes, whatLiesBeforeTheOtherSideOfAMirrorKeepsPaintFromIt)
{
    // A large square, and one before its left half.
    auto mesh = std::make_shared<OssEvMesh>();
    const auto addSquare = [&mesh](float middle, float half, float z, float patch) {
        const auto first = std::uint32_t(mesh->positions.size());
        for (const auto &[x, y] :
             {std::pair(-1.0F, -1.0F), {1.0F, -1.0F}, {1.0F, 1.0F}, {-1.0F, 1.0F}}) {
            mesh->positions.push_back({middle + half * x, half * y, z});
            mesh->uvs.push_back({patch + 0.5F + 0.499F * x, 0.5F + 0.499F * y});
        }
        mesh->triangles.push_back({first, first + 1, first + 2});
        mesh->triangles.push_back({first, first + 2, first + 3});
        mesh->faces.insert(mesh->faces.end(), 2, std::int32_t(patch));
    };
    addSquare(0.0F, 0.5F, 0.0F, 0.0F);
    addSquare(-0.3F, 0.15F, 0.2F, 1.0F);
    ASSERT_TRUE(mesh->finish("two squares").ok());
    look(mesh, {0.0F, 0.0F, 3.0F});
    m_brush.worldRadius = 0.05;
    m_brush.mirrors = {true, false, false};
    stroke({{0.3F, 0.0F, 0.0F}});
    EXPECT_EQ(m_buffer.patches(), std::vector<int>{1001});
    EXPECT_GT(at(1001, int(0.8F * Resolution), Resolution / 2), 0.9F);
    EXPECT_EQ(at(1001, int(0.2F * Resolution), Resolution / 2), 0.0F) << "it is hidden there";
}

TEST_F(SurfaceStrokes, copiesOfTheBufferStayAsTheyAreWhileAStrokeGoesOn)
{
    look(OssEvShapes::plane(), {0.0F, 0.0F, 4.0F});
    m_brush.worldRadius = 0.1;
    OssEvSurfaceStroke stroke(&m_buffer, m_brush, m_surface, m_view);
    const auto to = [&](float x) {
        const glm::vec2 pixel = pixelOf({x, 0.0F, 0.0F});
        stroke.moveTo(double(pixel.x), double(pixel.y));
    };
    to(-0.2F);
    to(-0.1F);
    stroke.share();
    const OssEvPaintBuffer copy = m_buffer;
    to(0.2F);
    to(0.3F);
    stroke.finish();
    const auto alpha = [](const OssEvPaintBuffer &buffer, float x) {
        return texelOf(buffer, 1001, int((x + 0.5F) * Resolution), Resolution / 2)[3];
    };
    EXPECT_EQ(alpha(copy, -0.2F), 1.0F);
    EXPECT_EQ(alpha(copy, 0.2F), 0.0F);
    EXPECT_EQ(alpha(m_buffer, -0.2F), 1.0F);
    EXPECT_EQ(alpha(m_buffer, 0.2F), 1.0F);
    for (const OssEvStroke::Change &change : stroke.changes())
        EXPECT_EQ(change.after, m_buffer.tile(change.place)) << "the history has what is there";
}

TEST_F(SurfaceStrokes, mirrorsPaintTheOtherSidesToo)
{
    look(OssEvShapes::sphere(), {2.0F, 1.5F, 3.0F});
    m_brush.worldRadius = 0.15;
    m_brush.mirrors = {true, false, true};
    const glm::vec3 centre = glm::normalize(glm::vec3(0.5F, 0.3F, 0.6F));
    stroke({centre});
    expectPainted([&](const glm::vec3 &place) {
        float near = 1e9F;
        for (const glm::vec3 &side :
             {glm::vec3(1, 1, 1), glm::vec3(-1, 1, 1), glm::vec3(1, 1, -1), glm::vec3(-1, 1, -1)})
            near = std::min(near, glm::length(place - centre * side));
        return within(near, 0.15F, 0.03F);
    });
}

TEST_F(SurfaceStrokes, objectsThatAreMovedAndScaledArePaintedWhereTheyStand)
{
    auto mesh = std::make_shared<OssEvMesh>(*OssEvShapes::plane());
    mesh->world = {3, 0, 0, 0.2F, 0, 0.5F, 0, -0.1F, 0, 0, 2, 0.3F};
    ASSERT_TRUE(mesh->finish("moved").ok());
    look(mesh, {0.0F, 0.0F, 5.0F});
    m_brush.worldRadius = 0.2;
    const glm::vec3 centre(0.5F, 0.0F, 0.3F);
    stroke({centre});
    expectPainted([&](const glm::vec3 &place) {
        return within(glm::length(place - centre), 0.2F, 3.0F / Resolution);
    });
}

} // namespace
