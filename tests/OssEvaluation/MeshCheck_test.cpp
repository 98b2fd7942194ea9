// What is found wrong with meshes, and texture coordinates that are made.

#include "OssEvaluation/FlatMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshCheck.h"
#include "OssEvaluation/Geometry/OssEvUnwrap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using OssEvMeshCheck::Kind;
using OssEvMeshCheck::Report;

std::vector<std::pair<Kind, std::size_t>> found(const OssEvMesh &mesh)
{
    std::vector<std::pair<Kind, std::size_t>> list;
    for (const OssEvMeshCheck::Finding &one : OssEvMeshCheck::of(mesh))
        list.emplace_back(one.kind, one.faces);
    return list;
}

using Found = std::vector<std::pair<Kind, std::size_t>>;

/// Two squares side by side, as one may move.
std::shared_ptr<OssEvMesh> twoSquares(float secondLeft, float secondBottom)
{
    auto mesh = square(0.1F, 0.1F, 0.4F, 0.4F);
    const auto other = square(secondLeft, secondBottom, secondLeft + 0.3F, secondBottom + 0.3F);
    mesh->positions.insert(mesh->positions.end(), other->positions.begin(), other->positions.end());
    mesh->uvs.insert(mesh->uvs.end(), other->uvs.begin(), other->uvs.end());
    mesh->triangles.push_back({4, 5, 6});
    mesh->triangles.push_back({4, 6, 7});
    return mesh;
}

TEST(MeshCheck, nothingIsWrongWithOurOwnShapes)
{
    for (const auto &mesh : {OssEvShapes::plane(), OssEvShapes::sphere(), OssEvShapes::cube(),
                             OssEvShapes::cylinder(), OssEvShapes::shaderBall()}) {
        ASSERT_NE(mesh, nullptr);
        EXPECT_EQ(OssEvMeshCheck::inWords(OssEvMeshCheck::of(*mesh)), "");
        // Seen from outside, faces go round against the clock, and normals point there.
        for (const auto &triangle : mesh->triangles) {
            std::array<std::array<double, 3>, 2> edges{};
            double length = 0.0;
            for (std::size_t k = 0; k < 3; ++k) {
                edges[0][k] = double(mesh->positions[triangle[1]][k])
                              - mesh->positions[triangle[0]][k];
                edges[1][k] = double(mesh->positions[triangle[2]][k])
                              - mesh->positions[triangle[0]][k];
            }
            double alike = 0.0;
            for (std::size_t k = 0; k < 3; ++k) {
                const double across = edges[0][(k + 1) % 3] * edges[1][(k + 2) % 3]
                                      - edges[0][(k + 2) % 3] * edges[1][(k + 1) % 3];
                length += across * across;
                for (const std::uint32_t vertex : triangle)
                    alike += across * mesh->normals[vertex][k];
            }
            if (length > 1e-14)
                ASSERT_GT(alike, 0.0);
        }
    }
    EXPECT_EQ(OssEvShapes::shaderBall()->materialNames.size(), 2U);
}

TEST(MeshCheck, eachFaultIsFoundAndCounted)
{
    OssEvMesh empty;
    EXPECT_EQ(found(empty), (Found{{Kind::NoFaces, 0}}));
    auto bare = square(0, 0, 1, 1);
    bare->uvs.clear();
    EXPECT_EQ(found(*bare), (Found{{Kind::NoUvs, 0}}));
    EXPECT_EQ(found(*twoSquares(0.4F, 0.1F)), Found{}) << "sharing an edge is no overlap";
    EXPECT_EQ(found(*twoSquares(1.1F, 0.1F)), Found{});
    auto doubled = twoSquares(0.6F, 0.6F);
    doubled->triangles.push_back({0, 1, 2});
    EXPECT_EQ(found(*doubled), (Found{{Kind::Overlapping, 2}}));
    EXPECT_EQ(found(*twoSquares(0.1F, 0.1F)), (Found{{Kind::Overlapping, 0}})) << "all of them";
    EXPECT_EQ(found(*twoSquares(0.9F, 0.1F)), (Found{{Kind::AcrossPatches, 2}}));
    EXPECT_EQ(found(*twoSquares(-0.5F, 0.1F)), (Found{{Kind::OutsidePatches, 2}}));
    EXPECT_EQ(found(*twoSquares(10.1F, 0.1F)), (Found{{Kind::OutsidePatches, 2}}));
    auto flipped = twoSquares(0.6F, 0.6F);
    for (std::size_t i = 4; i < 8; ++i)
        flipped->uvs[i][0] = 1.5F - flipped->uvs[i][0];
    EXPECT_EQ(found(*flipped), (Found{{Kind::Flipped, 2}}));
    auto collapsed = twoSquares(0.6F, 0.6F);
    for (std::size_t i = 4; i < 8; ++i)
        collapsed->uvs[i] = {0.6F, 0.6F};
    EXPECT_EQ(found(*collapsed), (Found{{Kind::Collapsed, 2}}));
}

TEST(MeshCheck, moreFacesThanTheLimitAreRefusedBeforeAnyIsLookedAt)
{
    auto mesh = square(0, 0, 1, 1);
    mesh->triangles.resize(OssEvMeshCheck::MostFaces + 1);
    const Report report = OssEvMeshCheck::of(*mesh);
    ASSERT_EQ(report.size(), 1U);
    EXPECT_EQ(report[0].kind, Kind::TooManyFaces);
    EXPECT_TRUE(OssEvMeshCheck::isUseless(report));
    EXPECT_NE(OssEvMeshCheck::inWords(report).find("10000001 faces"), std::string::npos);
}

TEST(MeshCheck, saysWhatToDo)
{
    const Report report = OssEvMeshCheck::of(*twoSquares(-0.5F, 0.1F));
    EXPECT_TRUE(OssEvMeshCheck::isUseless(report));
    EXPECT_TRUE(OssEvMeshCheck::help(report[0].kind).unwraps);
    const std::string words = OssEvMeshCheck::inWords(report);
    EXPECT_NE(words.find("2 faces lie outside the UDIM patches"), std::string::npos) << words;
    EXPECT_NE(words.find("unwrap automatically"), std::string::npos) << words;
    EXPECT_FALSE(OssEvMeshCheck::isUseless(OssEvMeshCheck::of(*twoSquares(0.3F, 0.1F))));
    for (int kind = int(Kind::NoUvs); kind <= int(Kind::Flipped); ++kind) {
        const std::string one = OssEvMeshCheck::finding(Kind(kind), 1).text;
        EXPECT_EQ(one.rfind("1 face ", 0), 0U) << one;
    }
}

void expectUnwrapped(const std::shared_ptr<OssEvMesh> &mesh, const char *what)
{
    const std::size_t triangles = mesh->triangles.size();
    OssEvUnwrap::unwrap(mesh.get());
    EXPECT_EQ(OssEvMeshCheck::inWords(OssEvMeshCheck::of(*mesh)), "") << what;
    EXPECT_EQ(mesh->triangles.size(), triangles);
    ASSERT_TRUE(mesh->finish(what)) << what;
    EXPECT_EQ(mesh->patches(), (std::vector<int>{1001})) << what;
    // The same scale all over, as far as flattening leaves it.
    double least = 1e9;
    double most = 0.0;
    for (const auto &triangle : mesh->triangles) {
        const auto length = [&](std::size_t i, std::size_t k) {
            const auto &a = mesh->positions[triangle[i]];
            const auto &b = mesh->positions[triangle[k]];
            return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
        };
        const auto flatLength = [&](std::size_t i, std::size_t k) {
            const auto &a = mesh->uvs[triangle[i]];
            const auto &b = mesh->uvs[triangle[k]];
            return std::hypot(a[0] - b[0], a[1] - b[1]);
        };
        const double sum = length(0, 1) + length(1, 2) + length(2, 0);
        if (sum < 1e-3)
            continue;
        const double scale = (flatLength(0, 1) + flatLength(1, 2) + flatLength(2, 0)) / sum;
        least = std::min(least, scale);
        most = std::max(most, scale);
    }
    EXPECT_GT(least, 0.55 * most) << what;
}

TEST(MeshUnwrap, givesEveryFaceAPlaceOfItsOwn)
{
    for (const auto &shape :
         {OssEvShapes::cube(), OssEvShapes::sphere(), OssEvShapes::cylinder()}) {
        auto mesh = std::make_shared<OssEvMesh>();
        mesh->positions = shape->positions;
        mesh->triangles = shape->triangles;
        mesh->colors.assign(mesh->positions.size(), {1, 0, 0, 1});
        expectUnwrapped(mesh, "shape");
        EXPECT_EQ(mesh->colors.size(), mesh->positions.size());
    }
    // A flat spiral ramp lies over itself, seen from above.
    auto ramp = std::make_shared<OssEvMesh>();
    for (int i = 0; i <= 120; ++i) {
        const float angle = 0.2F * float(i);
        for (const float radius : {1.0F, 2.0F})
            ramp->positions.push_back(
                {radius * std::cos(angle), 0.02F * float(i), -radius * std::sin(angle)});
        if (i == 0)
            continue;
        const auto last = std::uint32_t(ramp->positions.size());
        ramp->triangles.push_back({last - 4, last - 3, last - 1});
        ramp->triangles.push_back({last - 4, last - 1, last - 2});
    }
    expectUnwrapped(ramp, "ramp");
    // Loose triangles anywhere.
    std::mt19937 random(5);
    std::uniform_real_distribution<float> place(-1.0F, 1.0F);
    auto loose = std::make_shared<OssEvMesh>();
    for (std::uint32_t i = 0; i < 300; ++i) {
        if (i % 3 == 0)
            loose->triangles.push_back({i, i + 1, i + 2});
        loose->positions.push_back({place(random), place(random), place(random)});
    }
    expectUnwrapped(loose, "loose");
}

} // namespace
