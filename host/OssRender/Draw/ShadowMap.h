#pragma once

#include "OssRender/Draw/DeviceCopies.h"
#include "OssRender/Draw/GlObjects.h"
#include "OssRender/Draw/OssRdScene.h"

#include <memory>
#include <string>
#include <vector>

/// A ball around all objects of a scene, and how far down they reach.
struct Extent
{
    glm::vec3 centre{0.0F};
    float radius = 1.0F;
    float lowest = 0.0F;

    explicit Extent(const OssRdScene &scene);

private:
    void add(const OssRdGeometry &geometry, bool isFirst);
};

/// What the key light sees, drawn again only when that is something else. The device must be current.
class ShadowMap
{
public:
    /// `problem` gets what the compiler says.
    bool build(std::string *problem);
    void draw(const OssRdScene &scene, const Extent &extent, DeviceCopies *copies);
    /// For a program that asks it: binds it to a unit, or nothing.
    void set(GlProgram *program, int unit) const;

private:
    GlProgram m_depth;
    GlTexture m_texture;
    GlFramebuffer m_frame;
    glm::mat4 m_toShadow{1.0F};
    float m_step = 0.0F; ///< of three texels, in the world
    /// What it was drawn of.
    glm::vec3 m_from{0.0F};
    std::vector<std::shared_ptr<const OssRdGeometry>> m_of;
};
