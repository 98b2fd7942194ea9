#include "OssRender/Draw/SurfacePass.h"

#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssRender/Draw/Shaders.h"
#include "OssRender/Surface/OssRdBrdf.h"

#include <glm/gtc/matrix_inverse.hpp>
#include <glm/gtc/matrix_transform.hpp>

#include <algorithm>

glm::mat3 turnedBack(float angle)
{
    return glm::mat3(glm::rotate(glm::mat4(1.0F), -angle, glm::vec3(0.0F, 1.0F, 0.0F)));
}

namespace {

bool letsLightThrough(const OssRdMaterial &material)
{
    const OssRdMaterial::Channel4 &color = material.maps[OssRdMaterial::Color];
    if (!color.texels)
        return color.value.a < 1.0F;
    return !color.texels->isOpaque
           || std::any_of(color.changes.cbegin(), color.changes.cend(),
                          [](const auto &change) { return !change->isOpaque; });
}

bool hasCoat(const OssRdMaterial &material)
{
    const OssRdMaterial::Channel4 &coat = material.maps[OssRdMaterial::Coat];
    return coat.texels || coat.value.r > 0.0F;
}

/// Whether it holds for any material of the scene.
template <class Holds>
bool any(const OssRdScene &scene, Holds holds)
{
    return std::any_of(scene.objects.cbegin(), scene.objects.cend(), [&](const auto &object) {
        return std::any_of(object.materials.cbegin(), object.materials.cend(),
                           [&](const auto &material) { return holds(material.second); });
    });
}

} // namespace

bool SurfacePass::build(std::string *problem)
{
    makeTable();
    GLuint name = 0;
    glGenSamplers(1, &name);
    m_coarseTexels = GlSampler(name);
    glSamplerParameteri(name, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
    glSamplerParameteri(name, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glSamplerParameteri(name, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glSamplerParameteri(name, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    // The others differ by what they leave out.
    return program(Lit | Sampled | Bumps | Coated, problem) != nullptr;
}

void SurfacePass::makeTable()
{
    const OssRdBrdf::AlbedoTable &values = OssRdBrdf::albedoTable();
    m_table = makeTexture();
    glBindTexture(GL_TEXTURE_2D, m_table.get());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RG32F, values.width, values.height, 0, GL_RG, GL_FLOAT,
                 values.texels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

int SurfacePass::wayOf(const OssRdScene &scene, const OssRdView &view)
{
    int way = 0;
    if (view.shows == OssRdView::Shows::Lit)
        way |= view.mirrorSamples > 0 ? Lit | Sampled : Lit;
    if (view.isCoarse)
        way |= Coarse;
    if (any(scene, [](const OssRdMaterial &material) { return material.reach != 0.0F; }))
        way |= Bumps;
    if (any(scene, hasCoat))
        way |= Coated;
    return way;
}

GlProgram *SurfacePass::program(int way, std::string *problem)
{
    using namespace OssRdShaders;
    const auto [made, isNew] = m_programs.try_emplace(way);
    if (!isNew)
        return &made->second;
    std::string defines;
    const auto define = [&defines, way](Way part, const char *name) {
        if (way & part)
            defines += std::string("#define ") + name + '\n';
    };
    define(Lit, "LIT");
    define(Sampled, "SAMPLED");
    define(Coarse, "COARSE");
    define(Bumps, "BUMPS");
    define(Coated, "COATED");
    define(Wires, "WIRES");
    if (made->second.build(SurfaceVertex, defines + Brdf + SurfaceFragment, problem))
        return &made->second;
    m_programs.erase(made);
    return nullptr;
}

void SurfacePass::prepare(GlProgram *program, const OssRdScene &scene, const OssRdView &view,
                          const ShadowMap &shadow, DeviceCopies *copies) const
{
    program->use();
    const char *const maps[] = {"colorMap", "shapeMap", "glowMap", "coatMap"};
    for (int unit = ColorUnit; unit <= CoatUnit; ++unit) {
        program->set(maps[unit], unit);
        glBindSampler(GLuint(unit), view.isCoarse ? m_coarseTexels.get() : 0);
    }
    glActiveTexture(GL_TEXTURE0 + TableUnit);
    glBindTexture(GL_TEXTURE_2D, m_table.get());
    program->set("albedoTable", int(TableUnit));
    program->set("viewProjection", view.projection * view.camera);
    program->set("eye", glm::vec3(glm::inverse(view.camera)[3]));
    program->set("shows", int(view.shows));
    program->set("hasProbe", int(scene.probe != nullptr));
    if (scene.probe) {
        copies->probe(scene.probe, DeviceCopies::Light::Mirrored, MirrorUnit);
        copies->probe(scene.probe, DeviceCopies::Light::Sharp, SharpUnit);
        copies->probe(scene.probe, DeviceCopies::Light::Dull, DullUnit);
    }
    program->set("mirrored", int(MirrorUnit));
    program->set("sharp", int(SharpUnit));
    program->set("dull", int(DullUnit));
    program->set("mirrorSamples", view.mirrorSamples);
    program->set("mirrorLevels", OssRdLightProbe::Levels);
    program->set("toSurrounding", turnedBack(scene.turn));
    program->set("intensity", scene.intensity);
    program->set("toKeyLight", glm::normalize(scene.toKeyLight));
    program->set("keyLight", scene.keyLight);
    shadow.set(program, ShadowUnit);
}

void SurfacePass::bindMaterial(GlProgram *program, const OssRdMaterial &material,
                               DeviceCopies *copies)
{
    glm::bvec4 has(false);
    glm::vec4 values[OssRdMaterial::Maps];
    for (int map = 0; map < OssRdMaterial::Maps; ++map) {
        const OssRdMaterial::Channel4 &channels = material.maps[std::size_t(map)];
        values[map] = channels.value;
        has[map] = channels.texels != nullptr;
        if (has[map])
            copies->texels(channels, map);
    }
    program->set("values", values, OssRdMaterial::Maps);
    program->set("hasTexels", has);
    program->set("reach", material.reach);
}

void SurfacePass::drawObject(GlProgram *program, const OssRdScene::Object &object, bool isCoarse,
                             DeviceCopies *copies)
{
    static const OssRdMaterial usual;
    const OssRdGeometry &geometry = *object.geometry;
    program->set("world", geometry.world);
    program->set("normals", glm::inverseTranspose(glm::mat3(geometry.world)));
    copies->mesh(object.geometry);
    for (const OssRdGeometry::Part &part : isCoarse ? geometry.coarseParts : geometry.parts) {
        if (!object.covers(part.slot))
            continue;
        const auto material = object.materials.find(part.patch);
        bindMaterial(program, material == object.materials.end() ? usual : material->second,
                     copies);
        program->set("patchOrigin", glm::vec2(float(OssEvPatch::column(part.patch)),
                                              float(OssEvPatch::row(part.patch))));
        DeviceCopies::draw(part);
    }
}

void SurfacePass::drawAll(GlProgram *program, const OssRdScene &scene, const OssRdView &view,
                          DeviceCopies *copies)
{
    for (const OssRdScene::Object &object : scene.objects) {
        if (object.geometry)
            drawObject(program, object, view.isCoarse, copies);
    }
}

void SurfacePass::draw(const OssRdScene &scene, const OssRdView &view, const ShadowMap &shadow,
                       DeviceCopies *copies)
{
    std::string said;
    GlProgram *surface = program(wayOf(scene, view), &said);
    if (!surface)
        return;
    prepare(surface, scene, view, shadow, copies);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glCullFace(GL_BACK);
    // Of what lets light through the far side is drawn first.
    if (any(scene, letsLightThrough)) {
        glEnable(GL_BLEND);
        glEnable(GL_CULL_FACE);
        glCullFace(GL_FRONT);
        if (!view.hidesBackFaces)
            drawAll(surface, scene, view, copies);
        glCullFace(GL_BACK);
        drawAll(surface, scene, view, copies);
        glDisable(GL_BLEND);
    } else {
        (view.hidesBackFaces ? glEnable : glDisable)(GL_CULL_FACE);
        drawAll(surface, scene, view, copies);
    }
    if (view.hasWires)
        drawWires(scene, view, shadow, copies);
    glDisable(GL_CULL_FACE);
    for (int unit = ColorUnit; unit <= CoatUnit; ++unit)
        glBindSampler(GLuint(unit), 0);
}

void SurfacePass::drawWires(const OssRdScene &scene, const OssRdView &view, const ShadowMap &shadow,
                            DeviceCopies *copies)
{
    std::string said;
    GlProgram *wires = program(Wires, &said);
    if (!wires)
        return;
    prepare(wires, scene, view, shadow, copies);
    glEnable(GL_BLEND);
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glEnable(GL_POLYGON_OFFSET_LINE);
    glPolygonOffset(-1.0F, -2.0F);
    drawAll(wires, scene, view, copies);
    glDisable(GL_POLYGON_OFFSET_LINE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_BLEND);
}
