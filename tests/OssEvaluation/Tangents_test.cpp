#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvTangents.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Tangent = OssEvTangents::Tangent;
using Vector3 = OssEvMesh::Vector3;

/// Flat, with texture coordinates of their own.
std::shared_ptr<OssEvMesh> sheet(const std::vector<OssEvMesh::Vector2> &places,
                                 const std::vector<OssEvMesh::Vector2> &uvs,
                                 const std::vector<std::array<std::uint32_t, 3>> &triangles)
{
    auto mesh = flat(places, triangles);
    mesh->uvs = uvs;
    EXPECT_TRUE(mesh->finish("sheet"));
    return mesh;
}

/// Of a triangle's corner.
Tangent at(const OssEvTangents &tangents, std::size_t triangle, std::size_t corner)
{
    return tangents.tangents[tangents.triangles[triangle][corner]];
}

void expectTangent(const Tangent &is, const Tangent &wanted)
{
    for (std::size_t k = 0; k < 4; ++k)
        EXPECT_NEAR(is[k], wanted[k], 1e-6F) << "number " << k;
}

TEST(Tangents, pointWhereUGrowsAndTellWhereVGrows)
{
    const OssEvTangents upright = OssEvTangents::of(*OssEvShapes::plane());
    ASSERT_EQ(upright.tangents.size(), 4U) << "no vertex has several";
    for (const Tangent &tangent : upright.tangents)
        expectTangent(tangent, {1, 0, 0, 1});

    const auto turned = sheet({{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {{1, 0}, {1, 1}, {0, 1}, {0, 0}},
                              {{0, 1, 2}, {0, 2, 3}});
    for (const Tangent &tangent : OssEvTangents::of(*turned).tangents)
        expectTangent(tangent, {0, -1, 0, 1});

    const auto mirrored = sheet({{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {{1, 0}, {0, 0}, {0, 1}, {1, 1}},
                                {{0, 1, 2}, {0, 2, 3}});
    for (const Tangent &tangent : OssEvTangents::of(*mirrored).tangents)
        expectTangent(tangent, {-1, 0, 0, -1});
}

TEST(Tangents, weighFacesByTheirAngles)
{
    // u grows to the right on the first face, and to the lower right on the second.
    const auto mesh = sheet({{0, 0}, {1, 0}, {0, 1}, {-1, 1}}, {{1, 0}, {2, 0}, {1, 1}, {0, 0}},
                            {{0, 1, 2}, {0, 2, 3}});
    const OssEvTangents tangents = OssEvTangents::of(*mesh);
    const auto mean = [](float first, float second) {
        const float x = first + second * std::sqrt(0.5F);
        const float y = -second * std::sqrt(0.5F);
        const float length = std::hypot(x, y);
        return Tangent{x / length, y / length, 0, 1};
    };
    expectTangent(at(tangents, 0, 0), mean(90, 45));
    expectTangent(at(tangents, 1, 0), mean(90, 45));
    expectTangent(at(tangents, 0, 2), mean(45, 90));
    expectTangent(at(tangents, 0, 1), {1, 0, 0, 1});
    expectTangent(at(tangents, 1, 2), mean(0, 1));
    EXPECT_EQ(tangents.tangents.size(), 4U);
}

TEST(Tangents, partAVertexWhereMirroredHalvesMeet)
{
    const auto mesh = sheet({{-1, 0}, {0, 0}, {1, 0}, {1, 1}, {0, 1}, {-1, 1}},
                            {{1, 0}, {0, 0}, {1, 0}, {1, 1}, {0, 1}, {1, 1}},
                            {{0, 1, 4}, {0, 4, 5}, {1, 2, 3}, {1, 3, 4}});
    const OssEvTangents tangents = OssEvTangents::of(*mesh);
    EXPECT_EQ(tangents.tangents.size(), 8U) << "two of the six are in both halves";
    for (std::size_t corner = 0; corner < 3; ++corner) {
        expectTangent(at(tangents, 0, corner), {-1, 0, 0, -1});
        expectTangent(at(tangents, 1, corner), {-1, 0, 0, -1});
        expectTangent(at(tangents, 2, corner), {1, 0, 0, 1});
        expectTangent(at(tangents, 3, corner), {1, 0, 0, 1});
    }
    for (std::size_t i = 0; i < mesh->triangles.size(); ++i) {
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_EQ(tangents.sources[tangents.triangles[i][k]], mesh->triangles[i][k]);
    }
}

TEST(Tangents, ofOpposedFacesDoNotCancelEachOther)
{
    // The second face lies folded over the first, with the same normals.
    const auto mesh = flat({{0, 0}, {1, 0}, {0, 1}, {1, 1}}, {{0, 1, 2}, {0, 2, 3}});
    mesh->uvs = {{1, 0}, {2, 0}, {1, 1}, {0, 1}};
    mesh->normals.assign(4, {0, 0, 1});
    ASSERT_TRUE(mesh->finish("folded"));
    const OssEvTangents tangents = OssEvTangents::of(*mesh);
    for (std::size_t corner = 0; corner < 3; ++corner) {
        expectTangent(at(tangents, 0, corner), {1, 0, 0, 1});
        expectTangent(at(tangents, 1, corner), {-1, 0, 0, 1});
    }
}

TEST(Tangents, joinVerticesThatDifferInColorAlone)
{
    const auto mesh = sheet({{0, 0}, {1, 0}, {0, 1}, {0, 0}, {0, 1}, {-1, 1}},
                            {{1, 0}, {2, 0}, {1, 1}, {1, 0}, {1, 1}, {0, 0}},
                            {{0, 1, 2}, {3, 4, 5}});
    const OssEvTangents tangents = OssEvTangents::of(*mesh);
    EXPECT_EQ(tangents.tangents.size(), 6U);
    EXPECT_EQ(at(tangents, 0, 0), at(tangents, 1, 0));
    EXPECT_EQ(at(tangents, 0, 2), at(tangents, 1, 1));
    EXPECT_NE(at(tangents, 0, 1), at(tangents, 0, 0));
}

TEST(Tangents, areThereWhereNothingTellsThem)
{
    // The second face has no extent in texture coordinates, the third none at all, the last none that
    // anything else could tell.
    const auto mesh = sheet({{0, 0}, {1, 0}, {0, 1}, {0, 1}, {5, 5}, {6, 5}, {6, 6}},
                            {{0, 0}, {1, 0}, {0, 1}, {0, 1}, {0, 0}, {0, 0}, {0, 0}},
                            {{0, 1, 2}, {2, 1, 3}, {0, 2, 3}, {4, 5, 6}});
    const OssEvTangents tangents = OssEvTangents::of(*mesh);
    for (std::size_t triangle = 0; triangle < 3; ++triangle) {
        for (std::size_t corner = 0; corner < 3; ++corner)
            expectTangent(at(tangents, triangle, corner), {1, 0, 0, 1});
    }
    for (const Tangent &tangent : tangents.tangents)
        EXPECT_NEAR(std::hypot(tangent[0], tangent[1], tangent[2]), 1.0F, 1e-6F);
}

TEST(Tangents, ofAClosedSurfaceLieInIt)
{
    for (const auto &mesh : {OssEvShapes::sphere(), OssEvShapes::shaderBall()}) {
        const OssEvTangents tangents = OssEvTangents::of(*mesh);
        ASSERT_EQ(tangents.triangles.size(), mesh->triangles.size());
        for (std::size_t i = 0; i < tangents.tangents.size(); ++i) {
            const Tangent &tangent = tangents.tangents[i];
            const Vector3 &normal = mesh->normals[tangents.sources[i]];
            ASSERT_NEAR(std::hypot(tangent[0], tangent[1], tangent[2]), 1.0F, 1e-5F);
            ASSERT_NEAR(tangent[0] * normal[0] + tangent[1] * normal[1] + tangent[2] * normal[2],
                        0.0F, 1e-5F);
            ASSERT_EQ(tangent[3], 1.0F) << "nothing is mirrored";
        }
    }
}

} // namespace
