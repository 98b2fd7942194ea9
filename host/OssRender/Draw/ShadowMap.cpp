#include "OssRender/Draw/ShadowMap.h"

#include "OssRender/Draw/Shaders.h"

#include <glm/gtc/matrix_transform.hpp>

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = 1536;

} // namespace

Extent::Extent(const OssRdScene &scene)
{
    bool isFirst = true;
    for (const OssRdScene::Object &object : scene.objects) {
        if (!object.geometry)
            continue;
        add(*object.geometry, isFirst);
        isFirst = false;
    }
}

void Extent::add(const OssRdGeometry &geometry, bool isFirst)
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

bool ShadowMap::build(std::string *problem)
{
    if (!m_depth.build(OssRdShaders::DepthVertex, OssRdShaders::DepthFragment, problem))
        return false;
    m_texture = makeTexture();
    glBindTexture(GL_TEXTURE_2D, m_texture.get());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT24, Size, Size, 0, GL_DEPTH_COMPONENT,
                 GL_FLOAT, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER);
    const float far[] = {1.0F, 1.0F, 1.0F, 1.0F};
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, far);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
    GLuint name = 0;
    glGenFramebuffers(1, &name);
    m_frame = GlFramebuffer(name);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, m_texture.get(), 0);
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);
    return true;
}

void ShadowMap::draw(const OssRdScene &scene, const Extent &extent, DeviceCopies *copies)
{
    std::vector<std::shared_ptr<const OssRdGeometry>> meshes;
    for (const OssRdScene::Object &object : scene.objects) {
        if (object.geometry && !object.geometry->parts.empty()
            && std::find(meshes.cbegin(), meshes.cend(), object.geometry) == meshes.cend())
            meshes.push_back(object.geometry);
    }
    if (meshes == m_of && scene.toKeyLight == m_from)
        return;
    m_of = meshes;
    m_from = scene.toKeyLight;
    const glm::vec3 to = glm::normalize(scene.toKeyLight);
    const glm::vec3 up = std::abs(to.y) > 0.99F ? glm::vec3(0, 0, 1) : glm::vec3(0, 1, 0);
    const float radius = extent.radius * 1.02F;
    const glm::mat4 from = glm::lookAt(extent.centre + to * 2.0F * radius, extent.centre, up);
    m_toShadow = glm::ortho(-radius, radius, -radius, radius, radius, 3.0F * radius) * from;
    m_step = 3.0F * 2.0F * radius / float(Size);
    glBindFramebuffer(GL_FRAMEBUFFER, m_frame.get());
    glViewport(0, 0, Size, Size);
    glDepthMask(GL_TRUE);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(2.0F, 2.0F);
    m_depth.use();
    m_depth.set("viewProjection", m_toShadow);
    for (const std::shared_ptr<const OssRdGeometry> &mesh : meshes) {
        m_depth.set("world", mesh->world);
        copies->mesh(mesh);
        DeviceCopies::draw(
            {0, 0, mesh->parts.front().first, mesh->parts.back().first + mesh->parts.back().count});
    }
    glDisable(GL_POLYGON_OFFSET_FILL);
}

void ShadowMap::set(GlProgram *program, int unit) const
{
    glActiveTexture(GL_TEXTURE0 + GLenum(unit));
    glBindTexture(GL_TEXTURE_2D, m_texture.get());
    program->set("shadowMap", unit);
    program->set("toShadow", m_toShadow);
    program->set("shadowBias", 1.0F / float(Size));
    program->set("shadowStep", m_step);
}
