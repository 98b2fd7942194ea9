#include "Ossa/Surfaces/LitRenderer.h"
#include "Ossa/Surfaces/LitScene.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/OssModelServices.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssRender/Draw/OssRdRenderer.h"
#include "OssRender/Light/OssRdEnvironment.h"

#include <glm/gtc/constants.hpp>
#include <glm/gtc/matrix_transform.hpp>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

// What a picture in light costs: an object of 100,000 triangles with four maps of 1024 texels at
// 1280 x 720, as the Viewer draws it while it is turned, at rest, and at last; and as the Viewer's thread
// has it ready for the screen.

namespace {

constexpr int Rings = 224;
constexpr int MapSize = 1024;

std::shared_ptr<const OssEvMesh> ball()
{
    auto mesh = std::make_shared<OssEvMesh>();
    for (int i = 0; i <= Rings; ++i) {
        for (int j = 0; j <= Rings; ++j) {
            const glm::vec2 uv(float(j) / Rings, float(i) / Rings);
            const glm::vec3 at = OssRdEnvironment::direction(uv);
            mesh->positions.push_back({at.x, at.y, at.z});
            mesh->normals.push_back({at.x, at.y, at.z});
            mesh->uvs.push_back({uv.x, 1.0F - uv.y});
        }
    }
    for (int i = 0; i < Rings; ++i) {
        for (int j = 0; j < Rings; ++j) {
            const auto corner = std::uint32_t(i * (Rings + 1) + j);
            mesh->triangles.push_back({corner, corner + Rings + 1, corner + 1});
            mesh->triangles.push_back({corner + 1, corner + Rings + 1, corner + Rings + 2});
        }
    }
    return mesh->finish("ball").ok() ? mesh : nullptr;
}

OssRdMaterial material()
{
    OssRdMaterial made;
    for (OssRdMaterial::Channel4 &map : made.maps) {
        auto texels = std::make_shared<OssRdMaterial::Texels>();
        texels->size = MapSize;
        for (int i = 0; i < MapSize * MapSize * 4; ++i)
            texels->rgba.push_back(std::uint16_t(0x3800 + i % 7)); // about a half
        texels->isOpaque = true;
        map.texels = texels;
    }
    return made;
}

double cpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

double wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

struct Row
{
    const char *name;
    int width;
    int height;
    bool isSmooth;
    int samples;
    int frames;
};

glm::mat4 cameraOf(int frame)
{
    const float angle = glm::two_pi<float>() * float(frame) / 60.0F;
    const glm::vec3 eye(4.0F * std::sin(angle), 1.0F, 4.0F * std::cos(angle));
    return glm::lookAt(eye, glm::vec3(0.0F), {0.0F, 1.0F, 0.0F});
}

glm::mat4 projection()
{
    return glm::perspective(glm::radians(35.0F), 1280.0F / 720.0F, 0.1F, 20.0F);
}

/// Prints what each of so many frames takes; some before them do not count.
template <class Draw>
void measure(const char *name, int frames, Draw draw)
{
    constexpr int Warm = 4;
    for (int frame = -Warm; frame < 0; ++frame)
        draw(frame);
    const double cpu = cpuSeconds();
    const double wall = wallSeconds();
    for (int frame = 0; frame < frames; ++frame)
        draw(frame);
    std::printf("%-36s %8.1f ms CPU %8.1f ms\n", name, 1000.0 * (cpuSeconds() - cpu) / frames,
                1000.0 * (wallSeconds() - wall) / frames);
}

std::shared_ptr<const OssRdScene> makeScene()
{
    auto scene = std::make_shared<OssRdScene>();
    const std::shared_ptr<const OssEvMesh> mesh = ball();
    scene->objects.push_back({OssRdGeometry::of(*mesh), {{1001, material()}}});
    scene->surrounding = std::make_shared<const OssRdPicture>(OssRdEnvironment::make({}));
    const double cpu = cpuSeconds();
    scene->probe = std::make_shared<const OssRdLightProbe>(
        OssRdLightProbe::of(*scene->surrounding));
    std::printf("%-36s %8.1f ms CPU\n", "surroundings", 1000.0 * (cpuSeconds() - cpu));
    scene->keyLight = glm::vec3(0.7F);
    return scene;
}

void measureRenderer(OssRdRenderer *renderer, const OssRdScene &scene)
{
    const Row rows[] = {{"coarse, a third", 426, 240, false, 0, 24},
                        {"full size", 1280, 720, false, 0, 12},
                        {"at rest", 1280, 720, true, 0, 8},
                        {"at last", 1280, 720, true, 48, 1}};
    for (const Row &row : rows) {
        OssRdView view;
        view.width = row.width;
        view.height = row.height;
        view.isSmooth = row.isSmooth;
        view.isCoarse = row.height < 720;
        view.mirrorSamples = row.samples;
        view.projection = projection();
        measure(row.name, row.frames, [&](int frame) {
            view.camera = cameraOf(frame);
            renderer->render(scene, view);
        });
    }
}

/// From asking for a frame to its picture, which the Viewer only has to put on the screen.
void measureTurning(const std::shared_ptr<const OssRdScene> &scene)
{
    LitRenderer renderer;
    QEventLoop loop;
    QSize size;
    QObject::connect(&renderer, &LitRenderer::drawn, &loop, [&](const QImage &picture) {
        size = picture.size();
        loop.quit();
    });
    LitRenderer::Request request;
    request.scene = scene;
    request.screen.colors = OssEvColorSpaces::builtIn();
    request.isMoving = true;
    request.view.width = 1280;
    request.view.height = 720;
    request.view.projection = projection();
    measure("turned in the Viewer", 60, [&](int frame) {
        request.view.camera = cameraOf(frame);
        renderer.draw(request);
        loop.exec();
    });
    std::printf("%-36s %8d x %d\n", "of a size of", size.width(), size.height());
}

/// Of a new project, looked at.
OssSnBaseNode *openMaterial()
{
    auto *networks = OssShaderNetworkManager::instance();
    networks->loadNodeTypes(OssResourceInfo::instance()->nodeTypePath());
    const OssProject *project = OssProjectManager::instance()->newProject(QStringLiteral("Light"));
    OssShaderNetwork *network = project->shadingGroups().first()->network();
    network->geoEntity()->setGeometry(QStringLiteral("sphere"));
    networks->setCurrentShaderNetwork(network);
    OssSnBaseNode *shader = network->createNode(QStringLiteral("Shaders/Standard Surface"), {});
    network->viewerNode()->setInputNode(QStringLiteral("1"), shader,
                                        shader->prefferedOutputPoint());
    network->setViewerNodeCurrentEdge(1, true);
    return shader;
}

/// From a value under the user's hand to the first picture that shows it, coarse, while the exact one of
/// before is still being drawn.
void measureSlider(const std::shared_ptr<const OssRdScene> &light)
{
    OssSnBaseNode *shader = openMaterial();
    LitScene scene;
    LitRenderer renderer;
    QEventLoop loop;
    LitRenderer::Request request;
    request.screen.colors = OssEvColorSpaces::builtIn();
    request.view.width = 1280;
    request.view.height = 720;
    request.view.projection = projection();
    request.view.camera = cameraOf(0);
    float wanted = -1.0F;
    bool isAsked = false;
    QObject::connect(&scene, &LitScene::changed, &loop, [&] {
        auto seen = std::make_shared<OssRdScene>(*scene.scene());
        seen->probe = light->probe;
        request.scene = seen;
        renderer.draw(request);
        const bool has = seen->objects.size() == 1 && seen->objects[0].materials.count(1001) == 1;
        const float now =
            has ? seen->objects[0].materials.at(1001).maps[OssRdMaterial::Shape].value.a : -1.0F;
        isAsked = std::abs(now - wanted) < 1e-3F;
    });
    QObject::connect(&renderer, &LitRenderer::drawn, &loop, [&](const QImage &picture) {
        if (isAsked && !picture.isNull())
            loop.quit();
    });
    scene.setActive(true);
    double sum = 0.0;
    double longest = 0.0;
    constexpr int Warm = 5;
    constexpr int Steps = 20;
    for (int step = -Warm; step < Steps; ++step) {
        wanted = 0.5F + 0.02F * float(step);
        isAsked = false;
        const double start = wallSeconds();
        shader->setAttribute(QStringLiteral("Roughness"), double(wanted));
        scene.follow();
        loop.exec();
        const double spent = step < 0 ? 0.0 : wallSeconds() - start;
        sum += spent;
        longest = std::max(longest, spent);
        isAsked = false;
        QTimer::singleShot(700, &loop, &QEventLoop::quit);
        loop.exec();
    }
    std::printf("%-36s %20.1f ms, at most %.1f\n", "a slider's first picture", 1000.0 * sum / Steps,
                1000.0 * longest);
    OssProjectManager::instance()->closeProject();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const OssModelServices services;
    OssRdRenderer renderer;
    if (!renderer.problem().empty()) {
        std::printf("nothing can be drawn: %s\n", renderer.problem().c_str());
        return 1;
    }
    std::printf("%s\n", renderer.deviceName().c_str());
    const std::shared_ptr<const OssRdScene> scene = makeScene();
    measureTurning(scene);
    measureSlider(scene);
    measureRenderer(&renderer, *scene);
}
