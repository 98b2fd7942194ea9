#include "OssRender/Draw/OssRdRenderer.h"

#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssRender/Draw/Device.h"
#include "OssRender/Draw/DeviceCopies.h"
#include "OssRender/Draw/Shaders.h"
#include "OssRender/Surface/OssRdBrdf.h"

#include <glm/gtc/matrix_inverse.hpp>
#include <glm/gtc/matrix_transform.hpp>

#include <algorithm>
#include <cmath>

namespace {

constexpr int SamplesOfPixel = 4;
constexpr int ShadowSize = 1536;
constexpr int SmoothBand = 240;
constexpr int ExactBand = 60;
/// How far the ground's shadow is drawn, in radii of all objects.
constexpr float GroundReach = 3.0F;

// Units of textures.
enum Unit {
    ColorUnit,
    ShapeUnit,
    GlowUnit,
    CoatUnit,
    MirrorUnit,
    TableUnit,
    ShadowUnit,
    SkyUnit,
    SharpUnit,
    DullUnit
};

glm::mat3 turned(float angle)
{
    return glm::mat3(glm::rotate(glm::mat4(1.0F), -angle, glm::vec3(0.0F, 1.0F, 0.0F)));
}

/// Of the mesh that is bound.
void drawPart(const OssRdGeometry::Part &part)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL takes the offset into its buffer so.
    const auto *first = reinterpret_cast<const void *>(std::size_t(part.first)
                                                       * sizeof(std::uint32_t));
    glDrawElements(GL_TRIANGLES, part.count, GL_UNSIGNED_INT, first);
}

/// A ball around all objects.
struct Extent
{
    glm::vec3 centre{0.0F};
    float radius = 1.0F;
    float lowest = 0.0F;

    explicit Extent(const OssRdScene &scene)
    {
        bool isFirst = true;
        for (const OssRdScene::Object &object : scene.objects) {
            if (!object.geometry)
                continue;
            add(*object.geometry, isFirst);
            isFirst = false;
        }
    }

    void add(const OssRdGeometry &geometry, bool isFirst)
    {
        lowest = isFirst ? geometry.lowest : std::min(lowest, geometry.lowest);
        const float apart = glm::distance(centre, geometry.centre);
        if (isFirst || apart + radius <= geometry.radius) {
            centre = geometry.centre;
            radius = geometry.radius;
        } else if (apart + geometry.radius > radius) {
            const float whole = (apart + radius + geometry.radius) / 2.0F;
            centre += (geometry.centre - centre) / apart * (whole - radius);
            radius = whole;
        }
    }
};

} // namespace

struct OssRdRenderer::Private
{
    std::string problem;
    std::string deviceName;
    std::unique_ptr<Device> device;

    GlProgram surface;
    GlProgram background;
    GlProgram depth;
    GlProgram ground;
    GlTarget target;
    GlTexture table;
    GlTexture shadow;
    GlFramebuffer shadowFrame;
    GlArray nothing; ///< for what needs no vertices
    DeviceCopies copies;
    glm::mat4 toShadow{1.0F};
    float shadowBias = 0.0F;
    float shadowStep = 0.0F;
    /// What the shadow map was drawn of.
    glm::vec3 shadowFrom{0.0F};
    std::vector<std::shared_ptr<const OssRdGeometry>> shadowOf;

    bool start();
    bool build();
    void makeTable();
    void makeShadowMap();
    void drawShadow(const OssRdScene &scene, const Extent &extent);
    void drawBehind(const OssRdScene &scene, const OssRdView &view);
    void drawGround(const OssRdScene &scene, const OssRdView &view, const Extent &extent);
    void prepare(const OssRdScene &scene, const OssRdView &view);
    void drawObject(const OssRdScene::Object &object, bool isCoarse);
    void bindMaterial(const OssRdMaterial &material);
    void drawObjects(const OssRdScene &scene, const OssRdView &view);
    bool draw(const OssRdScene &scene, const OssRdView &view, const OssEvCancel *cancel);
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
    makeTable();
    makeShadowMap();
    nothing = makeArray();
    glEnable(GL_TEXTURE_CUBE_MAP_SEAMLESS);
    return true;
}

bool OssRdRenderer::Private::build()
{
    using namespace OssRdShaders;
    std::string said;
    const bool built = surface.build(SurfaceVertex, std::string(Brdf) + SurfaceFragment, &said)
                       && background.build(BackgroundVertex, BackgroundFragment, &said)
                       && depth.build(DepthVertex, DepthFragment, &said)
                       && ground.build(GroundVertex, GroundFragment, &said);
    if (!built)
        problem = "OpenGL refuses the shaders: " + said;
    return built;
}

void OssRdRenderer::Private::makeTable()
{
    const OssRdBrdf::AlbedoTable &values = OssRdBrdf::albedoTable();
    table = makeTexture();
    glBindTexture(GL_TEXTURE_2D, table.get());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RG32F, values.width, values.height, 0, GL_RG, GL_FLOAT,
                 values.texels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void OssRdRenderer::Private::makeShadowMap()
{
    shadow = makeTexture();
    glBindTexture(GL_TEXTURE_2D, shadow.get());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT24, ShadowSize, ShadowSize, 0,
                 GL_DEPTH_COMPONENT, GL_FLOAT, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER);
    const float far[] = {1.0F, 1.0F, 1.0F, 1.0F};
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, far);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
    GLuint name = 0;
    glGenFramebuffers(1, &name);
    shadowFrame = GlFramebuffer(name);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, shadow.get(), 0);
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);
}

// --- passes

void OssRdRenderer::Private::drawShadow(const OssRdScene &scene, const Extent &extent)
{
    std::vector<std::shared_ptr<const OssRdGeometry>> meshes;
    for (const OssRdScene::Object &object : scene.objects) {
        if (object.geometry && !object.geometry->parts.empty())
            meshes.push_back(object.geometry);
    }
    if (meshes == shadowOf && scene.toKeyLight == shadowFrom)
        return;
    shadowOf = meshes;
    shadowFrom = scene.toKeyLight;
    const glm::vec3 to = glm::normalize(scene.toKeyLight);
    const glm::vec3 up = std::abs(to.y) > 0.99F ? glm::vec3(0, 0, 1) : glm::vec3(0, 1, 0);
    const float radius = extent.radius * 1.02F;
    const glm::mat4 from = glm::lookAt(extent.centre + to * 2.0F * radius, extent.centre, up);
    toShadow = glm::ortho(-radius, radius, -radius, radius, radius, 3.0F * radius) * from;
    shadowBias = 1.0F / float(ShadowSize);
    shadowStep = 3.0F * 2.0F * radius / float(ShadowSize); // three texels
    glBindFramebuffer(GL_FRAMEBUFFER, shadowFrame.get());
    glViewport(0, 0, ShadowSize, ShadowSize);
    glDepthMask(GL_TRUE);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(2.0F, 2.0F);
    depth.use();
    depth.set("viewProjection", toShadow);
    for (const std::shared_ptr<const OssRdGeometry> &mesh : meshes) {
        depth.set("world", mesh->world);
        copies.mesh(mesh);
        drawPart(
            {0, mesh->parts.front().first, mesh->parts.back().first + mesh->parts.back().count});
    }
    glDisable(GL_POLYGON_OFFSET_FILL);
}

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
    background.set("toSurrounding", turned(scene.turn));
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
    ground.set("toShadow", toShadow);
    ground.set("shadowBias", shadowBias);
    ground.set("shadowMap", int(ShadowUnit));
    glBindVertexArray(nothing.get());
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
}

void OssRdRenderer::Private::prepare(const OssRdScene &scene, const OssRdView &view)
{
    surface.use();
    const char *const maps[] = {"colorMap", "shapeMap", "glowMap", "coatMap"};
    for (int unit = ColorUnit; unit <= CoatUnit; ++unit)
        surface.set(maps[unit], unit);
    surface.set("mirrored", int(MirrorUnit));
    surface.set("albedoTable", int(TableUnit));
    surface.set("shadowMap", int(ShadowUnit));
    surface.set("viewProjection", view.projection * view.camera);
    surface.set("eye", glm::vec3(glm::inverse(view.camera)[3]));
    surface.set("shows", int(view.shows));
    surface.set("hasProbe", int(scene.probe != nullptr));
    if (scene.probe) {
        copies.probe(scene.probe, DeviceCopies::Light::Mirrored, MirrorUnit);
        copies.probe(scene.probe, DeviceCopies::Light::Sharp, SharpUnit);
        copies.probe(scene.probe, DeviceCopies::Light::Dull, DullUnit);
    }
    surface.set("sharp", int(SharpUnit));
    surface.set("dull", int(DullUnit));
    surface.set("mirrorSamples", view.mirrorSamples);
    surface.set("mirrorLevels", OssRdLightProbe::Levels);
    surface.set("toSurrounding", turned(scene.turn));
    surface.set("intensity", scene.intensity);
    surface.set("toKeyLight", glm::normalize(scene.toKeyLight));
    surface.set("keyLight", scene.keyLight);
    surface.set("toShadow", toShadow);
    surface.set("shadowBias", shadowBias);
    surface.set("shadowStep", shadowStep);
}

void OssRdRenderer::Private::bindMaterial(const OssRdMaterial &material)
{
    glm::bvec4 has(false);
    glm::vec4 values[OssRdMaterial::Maps];
    for (int map = 0; map < OssRdMaterial::Maps; ++map) {
        const OssRdMaterial::Channel4 &channels = material.maps[std::size_t(map)];
        values[map] = channels.value;
        has[map] = channels.texels != nullptr;
        if (has[map])
            copies.texels(channels.texels, map);
    }
    surface.set("values", values, OssRdMaterial::Maps);
    surface.set("hasTexels", has);
    surface.set("reach", material.reach);
}

void OssRdRenderer::Private::drawObject(const OssRdScene::Object &object, bool isCoarse)
{
    static const OssRdMaterial usual;
    const OssRdGeometry &geometry = *object.geometry;
    surface.set("world", geometry.world);
    surface.set("normals", glm::inverseTranspose(glm::mat3(geometry.world)));
    copies.mesh(object.geometry);
    for (const OssRdGeometry::Part &part : isCoarse ? geometry.coarseParts : geometry.parts) {
        const auto material = object.materials.find(part.patch);
        bindMaterial(material == object.materials.end() ? usual : material->second);
        surface.set("patchOrigin", glm::vec2(float(OssEvPatch::column(part.patch)),
                                             float(OssEvPatch::row(part.patch))));
        drawPart(part);
    }
}

void OssRdRenderer::Private::drawObjects(const OssRdScene &scene, const OssRdView &view)
{
    prepare(scene, view);
    const auto drawAll = [&] {
        for (const OssRdScene::Object &object : scene.objects) {
            if (object.geometry)
                drawObject(object, view.isCoarse);
        }
    };
    const bool lets = std::any_of(scene.objects.cbegin(), scene.objects.cend(), [](const auto &o) {
        return std::any_of(o.materials.cbegin(), o.materials.cend(), [](const auto &material) {
            const OssRdMaterial::Channel4 &color = material.second.maps[OssRdMaterial::Color];
            return color.texels ? !color.texels->isOpaque : color.value.a < 1.0F;
        });
    });
    surface.set("isWire", 0);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    // Of what lets light through the far side is drawn first.
    if (lets) {
        glEnable(GL_BLEND);
        glEnable(GL_CULL_FACE);
        glCullFace(GL_FRONT);
        if (!view.hidesBackFaces)
            drawAll();
        glCullFace(GL_BACK);
        drawAll();
        glDisable(GL_BLEND);
    } else {
        (view.hidesBackFaces ? glEnable : glDisable)(GL_CULL_FACE);
        glCullFace(GL_BACK);
        drawAll();
    }
    if (view.hasWires) {
        surface.set("isWire", 1);
        glEnable(GL_BLEND);
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        glEnable(GL_POLYGON_OFFSET_LINE);
        glPolygonOffset(-1.0F, -2.0F);
        drawAll();
        glDisable(GL_POLYGON_OFFSET_LINE);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        glDisable(GL_BLEND);
    }
    glDisable(GL_CULL_FACE);
}

bool OssRdRenderer::Private::draw(const OssRdScene &scene, const OssRdView &view,
                                  const OssEvCancel *cancel)
{
    const Extent extent(scene);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    copies.beginFrame();
    if (!target.resize(view.width, view.height, view.isSmooth ? SamplesOfPixel : 1)) {
        problem = "OpenGL has no memory for a picture of " + std::to_string(view.width) + " x "
                  + std::to_string(view.height);
        return false;
    }
    glActiveTexture(GL_TEXTURE0 + TableUnit);
    glBindTexture(GL_TEXTURE_2D, table.get());
    glActiveTexture(GL_TEXTURE0 + ShadowUnit);
    glBindTexture(GL_TEXTURE_2D, 0);
    if (view.shows == OssRdView::Shows::Lit)
        drawShadow(scene, extent);
    glBindTexture(GL_TEXTURE_2D, shadow.get());
    target.begin();
    // Band by band what takes long, so that it can be given up for what the user wants next.
    const int band = view.mirrorSamples > 0 ? ExactBand : view.isSmooth ? SmoothBand : view.height;
    bool isWanted = true;
    glEnable(GL_SCISSOR_TEST);
    for (int y = 0; y < view.height && isWanted; y += band) {
        glScissor(0, y, view.width, band);
        drawBehind(scene, view);
        drawObjects(scene, view);
        drawGround(scene, view, extent);
        if (cancel)
            glFinish();
        isWanted = !cancel || !cancel->isCancelled();
    }
    glDisable(GL_SCISSOR_TEST);
    copies.endFrame();
    return isWanted;
}

OssRdImage OssRdRenderer::render(const OssRdScene &scene, const OssRdView &view,
                                 const OssEvCancel *cancel)
{
    if (!d->device || view.width <= 0 || view.height <= 0)
        return {};
    const Device::Use use(*d->device);
    if (!use.ok() || !d->draw(scene, view, cancel))
        return {};
    OssRdImage image(view.width, view.height);
    d->target.read(&image.texels.front().x);
    for (int y = 0; y < image.height / 2; ++y)
        std::swap_ranges(&image.at(0, y), &image.at(0, y) + image.width,
                         &image.at(0, image.height - 1 - y));
    return image;
}
