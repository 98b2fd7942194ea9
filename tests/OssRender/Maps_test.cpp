#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssRender/Draw/OssRdRenderer.h"
#include "OssRender/Light/OssRdEnvironment.h"

#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>
#include <OpenImageIO/imageio.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

std::shared_ptr<const OssRdMaterial::Texels> texels(const std::array<glm::vec4, 4> &quarters)
{
    auto made = std::make_shared<OssRdMaterial::Texels>();
    made->size = 64;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const glm::vec4 &value = quarters[std::size_t(2 * (y / 32) + x / 32)];
            for (int channel = 0; channel < 4; ++channel)
                made->rgba.push_back(OssEvHalf::fromFloat(value[channel]));
        }
    }
    return made;
}

/// From the front, the unit square just within the picture.
OssRdView front(OssRdView::Shows shows)
{
    OssRdView view;
    view.width = 40;
    view.height = 40;
    view.shows = shows;
    view.camera = glm::lookAt(glm::vec3(0.5F, 0.5F, 2.0F), glm::vec3(0.5F, 0.5F, 0.0F), {0, 1, 0});
    view.projection = glm::ortho(-0.5F, 0.5F, -0.5F, 0.5F, 0.1F, 4.0F);
    return view;
}

OssRdView frontOf(const OssRdGeometry &geometry, OssRdView::Shows shows)
{
    OssRdView view = front(shows);
    view.camera = glm::lookAt(geometry.centre + glm::vec3(0, 0, 2), geometry.centre, {0, 1, 0});
    return view;
}

constexpr glm::vec4 Red{1, 0, 0, 1};
constexpr glm::vec4 Green{0, 1, 0, 1};
constexpr glm::vec4 Blue{0, 0, 1, 1};
constexpr glm::vec4 Grey{0.25F, 0.25F, 0.25F, 1};

TEST(Maps, aPicturesTopIsWhereVIsOne)
{
    OssRdRenderer renderer;
    ASSERT_EQ(renderer.problem(), "");
    OssRdScene scene;
    const auto plane = OssRdGeometry::of(*OssEvShapes::plane());
    OssRdMaterial material;
    material.maps[OssRdMaterial::Color].texels = texels({Red, Green, Blue, Grey});
    scene.objects.push_back({plane, {{1001, material}}});
    const OssRdImage image = renderer.render(scene, frontOf(*plane, OssRdView::Shows::BaseColor));
    ASSERT_FALSE(image.isEmpty());
    EXPECT_EQ(image.at(8, 8), Red);
    EXPECT_EQ(image.at(32, 8), Green);
    EXPECT_EQ(image.at(8, 32), Blue);
    EXPECT_EQ(image.at(32, 32), Grey);

    // What comes in its place is seen with the next picture.
    scene.objects[0].materials[1001].maps[OssRdMaterial::Color].texels = texels(
        {Grey, Grey, Grey, Red});
    EXPECT_EQ(renderer.render(scene, frontOf(*plane, OssRdView::Shows::BaseColor)).at(32, 32), Red);
    // So is what is laid over it, and what that lay over when it is taken away.
    OssRdMaterial::Channel4 &color = scene.objects[0].materials[1001].maps[OssRdMaterial::Color];
    auto change = std::make_shared<OssRdMaterial::Change>();
    change->parts = {{{0, 32, 32, 32}, texels({Blue, Blue, Blue, Blue})->rgba}};
    change->parts.front().rgba.resize(std::size_t(32) * 32 * 4);
    change->isOpaque = true;
    color.changes = {change};
    const auto seen = [&](int x, int y) {
        return renderer.render(scene, frontOf(*plane, OssRdView::Shows::BaseColor)).at(x, y);
    };
    EXPECT_EQ(seen(8, 32), Blue);
    EXPECT_EQ(seen(32, 32), Red);
    color.changes.clear();
    EXPECT_EQ(seen(8, 32), Grey);
    // Nothing of a patch that the mesh does not have.
    scene.objects[0].materials = {{1002, material}};
    EXPECT_EQ(renderer.render(scene, frontOf(*plane, OssRdView::Shows::BaseColor)).at(8, 8),
              glm::vec4(0.5F, 0.5F, 0.5F, 1.0F));
}

TEST(Maps, aNormalMapLeansAsItSays)
{
    OssRdRenderer renderer;
    const auto plane = OssRdGeometry::of(*OssEvShapes::plane());
    OssRdMaterial material;
    material.maps[OssRdMaterial::Shape].texels = texels({glm::vec4(0.5, 0.5, 0, 1), // straight
                                                         glm::vec4(0.8, 0.5, 0, 1), // to the right
                                                         glm::vec4(0.5, 0.8, 0, 1), // up
                                                         glm::vec4(0.2, 0.2, 0, 1)}); // left, down
    OssRdScene scene;
    scene.objects.push_back({plane, {{1001, material}}});
    const OssRdImage image = renderer.render(scene, frontOf(*plane, OssRdView::Shows::Normal));
    const auto leans = [&image](int x, int y) {
        return glm::vec3(image.at(x, y)) * 2.0F - 1.0F;
    };
    const auto near = [](const glm::vec3 &a, const glm::vec3 &b) {
        return glm::distance(a, b) < 0.01F;
    };
    EXPECT_TRUE(near(leans(8, 8), {0, 0, 1}));
    EXPECT_TRUE(near(leans(32, 8), {0.6F, 0, 0.8F}));
    EXPECT_TRUE(near(leans(8, 32), {0, 0.6F, 0.8F}));
    EXPECT_TRUE(near(leans(32, 32), {-0.6F, -0.6F, std::sqrt(0.28F)}));
}

TEST(Maps, aHeightMapBendsLightAtItsSlopesAlone)
{
    OssRdRenderer renderer;
    const auto plane = OssRdGeometry::of(*OssEvShapes::plane());
    // A slope that rises to the right, from the middle on.
    auto slope = std::make_shared<OssRdMaterial::Texels>();
    slope->size = 64;
    for (int i = 0; i < 64 * 64; ++i) {
        const float x = (float(i % 64) + 0.5F) / 64.0F;
        for (const float value : {0.0F, 0.0F, std::max(x - 0.5F, 0.0F), 0.0F})
            slope->rgba.push_back(OssEvHalf::fromFloat(value));
    }
    OssRdMaterial material;
    material.maps[OssRdMaterial::Coat].texels = slope;
    material.reach = 1.0F;
    OssRdScene scene;
    scene.objects.push_back({plane, {{1001, material}}});
    const OssRdImage image = renderer.render(scene, frontOf(*plane, OssRdView::Shows::Normal));
    EXPECT_NEAR(image.at(8, 20).x, 0.5F, 0.01F);
    // 45 degrees: it looks back to where it rises from.
    EXPECT_NEAR(image.at(32, 20).x, 0.5F - std::sqrt(0.125F), 0.03F);
    EXPECT_NEAR(image.at(32, 20).y, 0.5F, 0.02F);
}

TEST(Maps, nothingShowsThroughWherePatchesMeet)
{
    OssRdRenderer renderer;
    const auto cube = OssRdGeometry::of(*OssEvShapes::cube());
    OssRdMaterial material;
    material.maps[OssRdMaterial::Color].value = Blue;
    OssRdScene scene;
    scene.objects.push_back({cube, {}});
    for (int patch = 1001; patch <= 1006; ++patch)
        scene.objects[0].materials[patch] = material;
    OssRdView view = front(OssRdView::Shows::BaseColor);
    view.width = view.height = 150;
    view.camera = glm::lookAt(cube->centre + glm::vec3(2.1F, 1.3F, 1.6F) * cube->radius,
                              cube->centre, {0, 1, 0});
    view.projection = glm::perspective(0.7F, 1.0F, 0.1F, 20.0F);
    view.hidesBackFaces = true;
    view.ground = Red;
    const OssRdImage image = renderer.render(scene, view);
    int seen = 0;
    for (int y = 0; y < 150; ++y) {
        int first = 0;
        int last = 149;
        while (first < last && image.at(first, y).z < 1.0F)
            ++first;
        while (last > first && image.at(last, y).z < 1.0F)
            --last;
        for (int x = first; x < last; ++x, ++seen)
            ASSERT_EQ(image.at(x, y), Blue) << x << ", " << y;
    }
    EXPECT_GT(seen, 3000);
}

TEST(Maps, anotherSceneIsSeenBesideAndPartsHaveTheirOwnMaterials)
{
    OssRdRenderer renderer;
    const auto plane = OssRdGeometry::of(*OssEvShapes::plane());
    const auto sceneOf = [&plane](const glm::vec4 &color) {
        OssRdMaterial material;
        material.maps[OssRdMaterial::Color].value = color;
        OssRdScene scene;
        scene.objects.push_back({plane, {{1001, material}}});
        return scene;
    };
    OssRdView view = frontOf(*plane, OssRdView::Shows::BaseColor);
    view.isSmooth = false;
    const OssRdImage image = renderer.renderBeside(sceneOf(Red), 10, sceneOf(Blue), view);
    ASSERT_FALSE(image.isEmpty());
    EXPECT_EQ(image.at(9, 20), Red);
    EXPECT_EQ(image.at(10, 20), Blue);
    EXPECT_EQ(renderer.renderBeside(sceneOf(Red), 400, sceneOf(Blue), view).at(39, 20), Red);

    // A ball on a foot, each with a material slot.
    const auto ball = OssRdGeometry::of(*OssEvShapes::shaderBall());
    OssRdScene scene = sceneOf(Red);
    scene.objects[0].geometry = ball;
    scene.objects[0].slots = {0};
    scene.objects.push_back(sceneOf(Green).objects[0]);
    scene.objects[1].geometry = ball;
    scene.objects[1].slots = {1};
    OssRdView whole = frontOf(*ball, OssRdView::Shows::BaseColor);
    whole.projection = glm::ortho(-ball->radius, ball->radius, -ball->radius, ball->radius, -9.0F,
                                  9.0F);
    const OssRdImage both = renderer.render(scene, whole);
    int red = 0;
    int green = 0;
    for (const glm::vec4 &texel : both.texels) {
        red += texel == Red;
        green += texel == Green;
    }
    EXPECT_GT(red, 100);
    EXPECT_GT(green, 20);
}

TEST(Maps, whatIsNotThereShowsWhatIsBehind)
{
    OssRdRenderer renderer;
    const auto plane = OssRdGeometry::of(*OssEvShapes::plane());
    OssRdMaterial material;
    material.maps[OssRdMaterial::Color].value = {1.0F, 1.0F, 1.0F, 0.25F};
    material.maps[OssRdMaterial::Glow].value = {1.0F, 0.0F, 0.0F, 1.0F};
    OssRdScene scene;
    scene.objects.push_back({plane, {{1001, material}}});
    OssRdView view = frontOf(*plane, OssRdView::Shows::Lit);
    view.ground = {0.0F, 0.0F, 0.5F, 1.0F};
    const OssRdImage image = renderer.render(scene, view);
    EXPECT_NEAR(image.at(20, 20).r, 0.25F, 0.01F);
    EXPECT_NEAR(image.at(20, 20).b, 0.375F, 0.01F);
    view.hidesBackFaces = true;
    view.camera = glm::lookAt(plane->centre - glm::vec3(0, 0, 2), plane->centre, {0, 1, 0});
    EXPECT_EQ(renderer.render(scene, view).at(20, 20), view.ground) << "seen from behind";
}

TEST(Environment, filesAreReadOrRefusedInWords)
{
    const std::string folder = std::filesystem::temp_directory_path() / "OssRender_tests";
    std::filesystem::create_directories(folder);
    const auto write = [&folder](const char *name, int width, int height, int channels,
                                 float value) {
        const std::string path = folder + "/" + name;
        const auto out = OIIO::ImageOutput::create(path);
        out->open(path, OIIO::ImageSpec(width, height, channels, OIIO::TypeDesc::FLOAT));
        const std::vector<float> pixels(std::size_t(width * height * channels), value);
        out->write_image(OIIO::TypeDesc::FLOAT, pixels.data());
        out->close();
        return path;
    };
    OssRdPicture picture;
    ASSERT_TRUE(OssRdEnvironment::read(write("sky.exr", 64, 32, 3, 2.5F), &picture).ok());
    EXPECT_EQ(picture.width, 64);
    EXPECT_EQ(picture.at(5, 5), glm::vec3(2.5F));
    ASSERT_TRUE(OssRdEnvironment::read(write("sky.hdr", 4096, 2048, 3, 1.0F), &picture).ok());
    EXPECT_EQ(picture.width, OssRdEnvironment::MostWidth);
    const auto reason = [&picture](const std::string &path) {
        return OssRdEnvironment::read(path, &picture).error();
    };
    EXPECT_NE(reason(write("square.exr", 32, 32, 3, 1.0F)).find("32 x 32"), std::string::npos);
    EXPECT_NE(reason(write("mask.exr", 64, 32, 1, 1.0F)).find("no colours"), std::string::npos);
    EXPECT_NE(reason(write("nan.exr", 64, 32, 3, NAN)).find("no number"), std::string::npos);
    // What a head promises is neither believed nor made room for.
    const auto promise = [&folder](const char *size) {
        std::ofstream(folder + "/head.hdr") << "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n"
                                            << size << "\nx";
        return folder + "/head.hdr";
    };
    EXPECT_NE(reason(promise("-Y 400000 +X 800000")).find("too large"), std::string::npos);
    EXPECT_NE(reason(promise("-Y 30000 +X 60000")).find("head.hdr"), std::string::npos);
    EXPECT_NE(reason(folder + "/none.exr").find("none.exr"), std::string::npos);
    EXPECT_EQ(picture.width, OssRdEnvironment::MostWidth) << "refused, it stays as it was";
    std::filesystem::remove_all(folder);
}

TEST(Environment, eachIsAsBrightAsTheOthersAndPlacesGoBothWays)
{
    for (const glm::vec3 to :
         {glm::vec3(0.3F, 0.5F, -0.8F), glm::vec3(-1, 0.1F, 0.2F), glm::vec3(0.2F, -0.9F, 0.7F)}) {
        const glm::vec3 back = OssRdEnvironment::direction(OssRdEnvironment::place(to));
        EXPECT_LT(glm::distance(back, glm::normalize(to)), 1e-4F);
    }
    for (const std::string &name : OssRdEnvironment::names()) {
        const OssRdLightProbe probe = OssRdLightProbe::of(OssRdEnvironment::make(name));
        double sum = 0.0;
        for (const OssRdPicture &face : probe.dull) {
            for (const glm::vec3 &texel : face.texels)
                sum += double(texel.r + texel.g + texel.b) / 3.0 / double(6 * face.texels.size());
        }
        EXPECT_NEAR(sum, double(OssRdEnvironment::Brightness), 0.06) << name;
    }
}

} // namespace
