#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssRender/Draw/OssRdRenderer.h"
#include "OssRender/Surface/OssRdDisplacement.h"

#include <glm/gtc/constants.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>

namespace {

constexpr int MapSize = 256;
constexpr float Height = 0.2F;

/// A material whose displacement is a function of texture coordinates.
template <class Displacement>
OssRdMaterial standingOut(Displacement displacement)
{
    auto texels = std::make_shared<OssRdMaterial::Texels>();
    texels->size = MapSize;
    for (int y = 0; y < MapSize; ++y) {
        for (int x = 0; x < MapSize; ++x) {
            const float value = displacement((float(x) + 0.5F) / MapSize,
                                             1.0F - (float(y) + 0.5F) / MapSize);
            for (const float channel : {0.0F, 0.0F, value, 0.0F})
                texels->rgba.push_back(OssEvHalf::fromFloat(channel));
        }
    }
    OssRdMaterial material;
    material.maps[OssRdMaterial::Coat].texels = texels;
    material.reach = Height;
    material.height = Height;
    return material;
}

using Corner = std::tuple<float, float, float>;

Corner cornerOf(const glm::vec3 &at)
{
    return {at.x, at.y, at.z};
}

/// Edges by their ends in space, with how many faces have them, less those that have them the other way.
std::map<std::pair<Corner, Corner>, int> openEdges(const OssRdGeometry &geometry)
{
    std::map<std::pair<Corner, Corner>, int> edges;
    const auto &last = geometry.parts.back();
    for (int i = 0; i < last.first + last.count; i += 3) {
        for (int k = 0; k < 3; ++k) {
            const auto at = [&](int corner) {
                const std::uint32_t index = geometry.indices[std::size_t(i + corner % 3)];
                return cornerOf(geometry.vertices[index].position);
            };
            const Corner a = at(k);
            const Corner b = at(k + 1);
            if (a == b)
                continue;
            edges[std::minmax(a, b)] += a < b ? 1 : -1;
        }
    }
    for (auto edge = edges.begin(); edge != edges.end();)
        edge = edge->second == 0 ? edges.erase(edge) : std::next(edge);
    return edges;
}

TEST(Displacement, nothingGapesWherePatchesOfOtherHeightsMeet)
{
    const auto cube = OssRdGeometry::of(*OssEvShapes::cube());
    ASSERT_TRUE(openEdges(*cube).empty());
    OssRdDisplacement::Skin skin;
    for (int side = 0; side < 6; ++side)
        skin.materials[1001 + side] = standingOut([side](float u, float v) {
            return float(side) / 6.0F + std::sin(9.0F * u + v) / 3.0F;
        });
    const auto moved = OssRdDisplacement::of(*cube, {skin}, 4);
    ASSERT_NE(moved, nullptr);
    EXPECT_GE(moved->indices.size() / 3, 12U * 256U);
    EXPECT_TRUE(openEdges(*moved).empty());
    // A ball's seam, and its poles, where many corners are one.
    const auto ball = OssRdGeometry::of(*OssEvShapes::sphere());
    OssRdDisplacement::Skin ofBall;
    ofBall.materials[1001] = standingOut([](float u, float v) { return u * 0.7F + v * 0.3F; });
    EXPECT_TRUE(openEdges(*OssRdDisplacement::of(*ball, {ofBall}, 1)).empty());
    EXPECT_EQ(OssRdDisplacement::of(*ball, {{{{1001, OssRdMaterial()}}, {}}}, 1), nullptr);
}

TEST(Displacement, aSurfaceIsWhereItsMapSaysAndBendsLightAsItsSlope)
{
    const auto wave = [](float u, float) {
        return 0.5F + 0.25F * std::sin(glm::two_pi<float>() * u);
    };
    const auto plane = OssRdGeometry::of(*OssEvShapes::plane());
    const OssRdMaterial material = standingOut(wave);
    const auto moved = OssRdDisplacement::of(*plane, {{{{1001, material}}, {}}}, 6);
    ASSERT_NE(moved, nullptr);
    for (const OssRdGeometry::Vertex &vertex : moved->vertices)
        EXPECT_NEAR(vertex.position.z, Height * wave(vertex.uv.x, 0.0F), 0.002F) << vertex.uv.x;

    OssRdRenderer renderer;
    OssRdScene scene;
    scene.objects.push_back({moved, {{1001, material}}});
    OssRdView view;
    view.width = 64;
    view.height = 64;
    view.isSmooth = false;
    view.shows = OssRdView::Shows::Normal;
    view.camera = glm::lookAt(plane->centre + glm::vec3(0, 0, 2), plane->centre, {0, 1, 0});
    view.projection = glm::ortho(-0.5F, 0.5F, -0.5F, 0.5F, 0.1F, 4.0F);
    const OssRdImage image = renderer.render(scene, view);
    ASSERT_FALSE(image.isEmpty());
    double error = 0.0;
    for (int x = 2; x < 62; ++x) {
        const float u = (float(x) + 0.5F) / 64.0F;
        const float slope = Height * 0.25F * glm::two_pi<float>()
                            * std::cos(glm::two_pi<float>() * u);
        const glm::vec3 normal = glm::normalize(glm::vec3(-slope, 0.0F, 1.0F));
        error += double(glm::distance(glm::vec3(image.at(x, 30)) * 2.0F - 1.0F, normal)) / 60.0;
    }
    EXPECT_LT(error, 0.015);
}

TEST(Displacement, asOftenAsMemoryAllowsAndNoOftener)
{
    const auto plane = OssRdGeometry::of(*OssEvShapes::plane());
    EXPECT_EQ(OssRdDisplacement::levelsFor(*plane, 3), 3);
    EXPECT_EQ(OssRdDisplacement::levelsFor(*plane, 99), OssRdDisplacement::MostLevels);
    OssRdGeometry huge;
    huge.indices.resize(std::size_t(30) << 20U);
    EXPECT_LT(OssRdDisplacement::levelsFor(huge, 8), 5);
}

} // namespace
