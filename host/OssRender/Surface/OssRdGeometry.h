#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssRender/OssRender_export.h"

#include <glm/glm.hpp>

#include <cstdint>
#include <memory>
#include <vector>

/// A mesh as it is drawn. Immutable; made on any thread.
struct OSSRENDER_EXPORT OssRdGeometry
{
    struct Vertex
    {
        glm::vec3 position;
        glm::vec3 normal;
        glm::vec4 tangent; ///< w: which side the third axis is on
        glm::vec2 uv;
    };

    /// Triangles of a material slot that touch a patch, in `indices`.
    struct Part
    {
        int patch = 0;
        int slot = 0;
        int first = 0;
        int count = 0;
    };

    std::vector<Vertex> vertices; ///< in the object's own space
    std::vector<std::uint32_t> indices;
    std::vector<Part> parts;
    /// The same with fewer triangles, for what moves; as `parts` where there are few.
    std::vector<Part> coarseParts;
    glm::mat4 world{1.0F};
    /// In the world: the middle and radius of a ball around it, and how far down it reaches.
    glm::vec3 centre{0.0F};
    float radius = 1.0F;
    float lowest = 0.0F;

    /// Whoever made the rest has what follows from it made: the ball around it and the coarse parts.
    void finish();

    /// Of a finished mesh. Throws std::bad_alloc.
    static std::shared_ptr<const OssRdGeometry> of(const OssEvMesh &mesh);
};
