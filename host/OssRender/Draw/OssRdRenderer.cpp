#include "OssRender/Draw/OssRdRenderer.h"

#include "OssRender/Draw/Device.h"
#include "OssRender/Draw/DeviceCopies.h"
#include "OssRender/Draw/Shaders.h"
#include "OssRender/Draw/ShadowMap.h"
#include "OssRender/Draw/SurfacePass.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace {

constexpr int SamplesOfPixel = 4;
/// What can be given up is drawn in bands that take about so long, in seconds.
constexpr double BandTime = 0.015;
constexpr int FirstBand = 16; ///< rows
constexpr int LeastBand = 4;
/// How far the ground's shadow is drawn, in radii of all objects.
constexpr float GroundReach = 3.0F;

/// A scene in columns of a picture.
struct Side
{
    const OssRdScene *scene;
    int from;
    int to;
};

} // namespace

struct OssRdRenderer::Private
{
    std::string problem;
    std::string deviceName;
    std::unique_ptr<Device> device;

    SurfacePass surfaces;
    ShadowMap shadow;
    GlProgram background;
    GlProgram ground;
    GlTarget target;
    GlArray nothing; ///< for what needs no vertices
    DeviceCopies copies;

    bool start();
    bool build();
    void drawBehind(const OssRdScene &scene, const OssRdView &view);
    void drawGround(const OssRdScene &scene, const OssRdView &view, const Extent &extent);
    bool drawSide(const Side &side, const OssRdView &view, const OssEvCancel *cancel);
    OssRdImage draw(const std::vector<Side> &sides, const OssRdView &view,
                    const OssEvCancel *cancel);
    bool drawAll(const std::vector<Side> &sides, const OssRdView &view, const OssEvCancel *cancel);
};

// --- start

OssRdRenderer::OssRdRenderer()
    : d(std::make_unique<Private>())
{
    if (!d->start())
        d->device.reset();
}

OssRdRenderer::~OssRdRenderer()
{
    if (!d->device)
        return;
    // What OpenGL gave out goes while its device is current, and the device last.
    std::unique_ptr<Device> device = std::move(d->device);
    const Device::Use use(*device);
    d.reset();
}

const std::string &OssRdRenderer::problem() const
{
    return d->problem;
}

const std::string &OssRdRenderer::deviceName() const
{
    return d->deviceName;
}

bool OssRdRenderer::Private::start()
{
    device = Device::make(&problem);
    if (!device)
        return false;
    const Device::Use use(*device);
    deviceName = reinterpret_cast<const char *>(glGetString(GL_RENDERER));
    if (!build())
        return false;
    nothing = makeArray();
    glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
    return true;
}

bool OssRdRenderer::Private::build()
{
    using namespace OssRdShaders;
    std::string said;
    const bool built = surfaces.build(&said) && shadow.build(&said)
                       && background.build(BackgroundVertex, BackgroundFragment, &said)
                       && ground.build(GroundVertex, GroundFragment, &said);
    if (!built)
        problem = "OpenGL refuses the shaders: " + said;
    return built;
}

// --- passes

void OssRdRenderer::Private::drawBehind(const OssRdScene &scene, const OssRdView &view)
{
    const bool isPlain = view.behind == OssRdView::Behind::Plain || !scene.surrounding
                         || !scene.probe;
    const glm::vec4 clear = isPlain ? view.ground : glm::vec4(0.0F);
    glClearColor(clear.r, clear.g, clear.b, clear.a);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (isPlain)
        return;
    glDisable(GL_DEPTH_TEST);
    copies.picture(scene.surrounding, SkyUnit);
    copies.probe(scene.probe, DeviceCopies::Light::Mirrored, MirrorUnit);
    background.use();
    background.set("surrounding", int(SkyUnit));
    background.set("mirrored", int(MirrorUnit));
    background.set("isBlurred", int(view.behind == OssRdView::Behind::Blurred));
    background.set("toSurrounding", turnedBack(scene.turn));
    background.set("intensity", scene.intensity);
    background.set("fromClip", glm::inverse(view.projection * view.camera));
    glBindVertexArray(nothing.get());
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

void OssRdRenderer::Private::drawGround(const OssRdScene &scene, const OssRdView &view,
                                        const Extent &extent)
{
    const bool hasShadow = view.hasGroundShadow && view.shows == OssRdView::Shows::Lit
                           && scene.toKeyLight.y > 0.05F && !scene.objects.empty();
    if (!hasShadow)
        return;
    glEnable(GL_BLEND);
    glDepthMask(GL_FALSE);
    ground.use();
    ground.set("viewProjection", view.projection * view.camera);
    ground.set("centre", glm::vec3(extent.centre.x, extent.lowest, extent.centre.z));
    ground.set("reach", extent.radius * GroundReach);
    shadow.set(&ground, ShadowUnit);
    glBindVertexArray(nothing.get());
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
}

bool OssRdRenderer::Private::drawSide(const Side &side, const OssRdView &view,
                                      const OssEvCancel *cancel)
{
    const OssRdScene &scene = *side.scene;
    const Extent extent(scene);
    glDisable(GL_SCISSOR_TEST);
    glActiveTexture(GL_TEXTURE0 + ShadowUnit);
    glBindTexture(GL_TEXTURE_2D, 0); // not while it is drawn into
    if (view.shows == OssRdView::Shows::Lit)
        shadow.draw(scene, extent, &copies);
    target.begin();
    glEnable(GL_SCISSOR_TEST);
    int band = cancel ? FirstBand : view.height;
    bool isWanted = true;
    for (int y = 0; y < view.height && isWanted;) {
        const auto start = std::chrono::steady_clock::now();
        glScissor(side.from, y, side.to - side.from, band);
        drawBehind(scene, view);
        surfaces.draw(scene, view, shadow, &copies);
        drawGround(scene, view, extent);
        y += band;
        if (!cancel)
            continue;
        glFinish();
        isWanted = !cancel->isCancelled();
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        const double fitting = band * BandTime / std::max(spent.count(), 1e-6);
        band = std::clamp(int(fitting), LeastBand, 2 * band);
    }
    glDisable(GL_SCISSOR_TEST);
    return isWanted;
}

bool OssRdRenderer::Private::drawAll(const std::vector<Side> &sides, const OssRdView &view,
                                     const OssEvCancel *cancel)
{
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    if (!target.resize(view.width, view.height, view.isSmooth ? SamplesOfPixel : 1)) {
        problem = "OpenGL has no memory for a picture of " + std::to_string(view.width) + " x "
                  + std::to_string(view.height);
        return false;
    }
    copies.beginFrame();
    const bool drawn = std::all_of(sides.cbegin(), sides.cend(), [&](const Side &side) {
        return side.from >= side.to || drawSide(side, view, cancel);
    });
    if (drawn) // what was given up may not have used them yet
        copies.endFrame();
    return drawn;
}

OssRdImage OssRdRenderer::Private::draw(const std::vector<Side> &sides, const OssRdView &view,
                                        const OssEvCancel *cancel)
{
    if (!device || view.width <= 0 || view.height <= 0)
        return {};
    const Device::Use use(*device);
    if (!use.ok() || !drawAll(sides, view, cancel))
        return {};
    OssRdImage image(view.width, view.height);
    target.read(&image.texels.front().x);
    for (int y = 0; y < image.height / 2; ++y)
        std::swap_ranges(&image.at(0, y), &image.at(0, y) + image.width,
                         &image.at(0, image.height - 1 - y));
    return image;
}

OssRdImage OssRdRenderer::render(const OssRdScene &scene, const OssRdView &view,
                                 const OssEvCancel *cancel)
{
    return d->draw({{&scene, 0, view.width}}, view, cancel);
}

OssRdImage OssRdRenderer::renderBeside(const OssRdScene &left, int border, const OssRdScene &scene,
                                       const OssRdView &view, const OssEvCancel *cancel)
{
    const int middle = std::clamp(border, 0, std::max(0, view.width));
    return d->draw({{&left, 0, middle}, {&scene, middle, view.width}}, view, cancel);
}
