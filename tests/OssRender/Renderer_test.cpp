#include "OssRender/Draw/OssRdRenderer.h"
#include "OssRender/Light/OssRdEnvironment.h"
#include "Reference.h"

#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int PictureSize = 40;

class Rendered : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        renderer = std::make_unique<OssRdRenderer>();
        sphere = OssRdGeometry::of(*OssEvShapes::sphere());
        plane = OssRdGeometry::of(*OssEvShapes::plane());
    }

    static void TearDownTestSuite()
    {
        renderer.reset();
        sphere.reset();
        plane.reset();
    }

    void SetUp() override { ASSERT_EQ(renderer->problem(), ""); }

    static OssRdMaterial material(const Reference::Surface &surface)
    {
        OssRdMaterial made;
        made.maps[OssRdMaterial::Color].value = glm::vec4(surface.base, 1.0);
        made.maps[OssRdMaterial::Shape].value = {0.5F, 0.5F, surface.metallic, surface.roughness};
        return made;
    }

    static OssRdScene sceneOf(const std::shared_ptr<const OssRdGeometry> &geometry,
                              const OssRdMaterial &material)
    {
        OssRdScene scene;
        scene.objects.push_back({geometry, {{1001, material}}});
        return scene;
    }

    OssRdView view(float apart = 3.0F)
    {
        OssRdView view;
        view.width = PictureSize;
        view.height = PictureSize;
        view.isSmooth = false;
        view.camera = glm::lookAt(m_eye = glm::vec3(0, 0, apart), glm::vec3(0), {0, 1, 0});
        view.projection = glm::perspective(glm::radians(44.0F), 1.0F, 0.1F, 10.0F);
        view.hasGroundShadow = false;
        m_fromClip = glm::inverse(view.projection * view.camera);
        return view;
    }

    /// Through the middle of a pixel; of length 1.
    glm::dvec3 ray(int x, int y) const
    {
        const glm::vec4 far = m_fromClip
                              * glm::vec4((float(x) + 0.5F) / PictureSize * 2.0F - 1.0F,
                                          1.0F - (float(y) + 0.5F) / PictureSize * 2.0F, 1.0F,
                                          1.0F);
        return glm::normalize(glm::dvec3(glm::vec3(far) / far.w - m_eye));
    }

    /// Where the ball is seen at a pixel, well away from its outline; false where it is not.
    bool onBall(int x, int y, glm::dvec3 *place) const
    {
        const glm::dvec3 to = ray(x, y);
        const double along = -glm::dot(glm::dvec3(m_eye), to);
        const double apart = glm::dot(glm::dvec3(m_eye), glm::dvec3(m_eye)) - 1.0;
        const double root = along * along - apart;
        if (root <= 0.0)
            return false;
        *place = glm::dvec3(m_eye) + to * (along - std::sqrt(root));
        return glm::dot(*place, -to) > 0.15;
    }

    /// Mean difference of the ball's pixels from what they should be, by the mean of that.
    template <class Wanted>
    double meanError(const OssRdImage &image, int step, Wanted wanted) const
    {
        double error = 0.0;
        double all = 0.0;
        for (int y = 0; y < image.height; y += step) {
            for (int x = 0; x < image.width; x += step) {
                glm::dvec3 place;
                if (!onBall(x, y, &place))
                    continue;
                const glm::dvec3 right = wanted(place, -ray(x, y));
                const glm::dvec3 off = glm::abs(glm::dvec3(image.at(x, y)) - right);
                error += off.x + off.y + off.z;
                all += right.x + right.y + right.z;
            }
        }
        EXPECT_GT(all, 0.0);
        return error / all;
    }

    static std::unique_ptr<OssRdRenderer> renderer;
    static std::shared_ptr<const OssRdGeometry> sphere;
    static std::shared_ptr<const OssRdGeometry> plane;
    glm::vec3 m_eye{0.0F};
    glm::mat4 m_fromClip{1.0F};
};

std::unique_ptr<OssRdRenderer> Rendered::renderer;
std::shared_ptr<const OssRdGeometry> Rendered::sphere;
std::shared_ptr<const OssRdGeometry> Rendered::plane;

const Reference::Surface Surfaces[] = {{{0.7, 0.4, 0.2}, 0.0, 0.25}, {{0.7, 0.4, 0.2}, 0.0, 0.8},
                                       {{0.9, 0.6, 0.3}, 1.0, 0.2},  {{0.9, 0.6, 0.3}, 1.0, 0.5},
                                       {{0.9, 0.6, 0.3}, 1.0, 1.0},  {{0.5, 0.6, 0.7}, 0.4, 0.4}};

// In a white room everything that keeps no light to itself is white, and cannot be told from it.
TEST_F(Rendered, aWhiteSurfaceVanishesInAWhiteRoom)
{
    OssRdPicture white(64, 32);
    std::fill(white.texels.begin(), white.texels.end(), glm::vec3(1.0F));
    const auto probe = std::make_shared<const OssRdLightProbe>(OssRdLightProbe::of(white));
    for (int step = 0; step <= 10; ++step) {
        for (const float metallic : {0.0F, 1.0F}) {
            for (const float coat : {0.0F, 1.0F}) {
                OssRdMaterial made = material({glm::dvec3(1.0), metallic, step / 10.0});
                made.maps[OssRdMaterial::Coat].value = {coat, 0.3F, 0.0F, 0.0F};
                OssRdScene scene = sceneOf(sphere, made);
                scene.probe = probe;
                const OssRdImage image = renderer->render(scene, view());
                const double error = meanError(
                    image, 1,
                    [](const glm::dvec3 &, const glm::dvec3 &) { return glm::dvec3(1.0); });
                EXPECT_LT(error, 0.01) << step / 10.0 << ", " << metallic << ", " << coat;
            }
        }
    }
}

TEST_F(Rendered, directLightIsWhatTheReferenceSums)
{
    const glm::dvec3 toLight = glm::normalize(glm::dvec3(0.5, 0.7, 0.6));
    for (const Reference::Surface &surface : Surfaces) {
        OssRdScene scene = sceneOf(sphere, material(surface));
        scene.toKeyLight = toLight;
        scene.keyLight = glm::vec3(1.0F);
        const OssRdImage image = renderer->render(scene, view());
        const double error = meanError(image, 2, [&](const glm::dvec3 &n, const glm::dvec3 &toEye) {
            return Reference::direct(surface, n, toEye, toLight);
        });
        EXPECT_LT(error, 0.01) << surface.metallic << ", " << surface.roughness;
    }
}

TEST_F(Rendered, lightFromAllAroundIsWhatTheReferenceSums)
{
    for (const std::string &name : OssRdEnvironment::names()) {
        const auto picture = std::make_shared<const OssRdPicture>(OssRdEnvironment::make(name));
        const auto probe = std::make_shared<const OssRdLightProbe>(OssRdLightProbe::of(*picture));
        for (const Reference::Surface &surface : Surfaces) {
            OssRdScene scene = sceneOf(sphere, material(surface));
            scene.probe = probe;
            OssRdView looking = view();
            looking.mirrorSamples = 256;
            const OssRdImage image = renderer->render(scene, looking);
            const auto light = [&picture](const glm::dvec3 &to) {
                return glm::dvec3(OssRdEnvironment::radiance(*picture, glm::vec3(to)));
            };
            const double error = meanError(image, 4,
                                           [&](const glm::dvec3 &n, const glm::dvec3 &toEye) {
                                               return Reference::around(surface, n, toEye, light);
                                           });
            EXPECT_LT(error, 0.05) << name << ", " << surface.metallic << ", " << surface.roughness;
        }
    }
}

} // namespace
