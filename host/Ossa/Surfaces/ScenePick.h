#pragma once

#include <glm/glm.hpp>

#include <optional>

class OssEvMesh;
struct OssRdGeometry;
struct OssRdScene;

/// What is met first by who looks along a ray, which begins at an eye; the direction has any length. In the
/// world. Looks at every triangle, which for a million takes some 10 ms.
namespace ScenePick {

struct Ray
{
    glm::vec3 from{0.0F};
    glm::vec3 direction{0.0F};
};

std::optional<glm::vec3> firstOf(const OssRdScene &scene, const Ray &ray);
std::optional<glm::vec3> firstOf(const OssEvMesh &mesh, const Ray &ray);

/// What is met of a mesh, in its own space.
struct Hit
{
    glm::vec3 place{0.0F};
    glm::vec3 normal{0.0F}; ///< as the mesh's vertices have it between them, of length 1
};

/// The ray is one of the world.
std::optional<Hit> hitOf(const OssEvMesh &mesh, const Ray &ray);
/// From the mesh's own space.
glm::mat4 worldOf(const OssEvMesh &mesh);
/// Whose it is; null where nothing is met.
const OssRdGeometry *geometryAt(const OssRdScene &scene, const Ray &ray);

} // namespace ScenePick
