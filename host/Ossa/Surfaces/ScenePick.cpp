#include "Ossa/Surfaces/ScenePick.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssRender/Draw/OssRdScene.h"

#include <glm/gtc/type_ptr.hpp>

#include <array>
#include <limits>
#include <set>

namespace {

constexpr float none = std::numeric_limits<float>::max();

/// How far along the ray, in lengths of its direction; none where it misses (T. Möller, B. Trumbore,
/// "Fast, Minimum Storage Ray-Triangle Intersection", 1997).
float distance(const ScenePick::Ray &ray, const glm::vec3 &a, const glm::vec3 &b,
               const glm::vec3 &c)
{
    const glm::vec3 first = b - a;
    const glm::vec3 second = c - a;
    const glm::vec3 across = glm::cross(ray.direction, second);
    const float volume = glm::dot(first, across);
    if (volume == 0.0F)
        return none;
    const glm::vec3 way = ray.from - a;
    const float u = glm::dot(way, across) / volume;
    if (u < 0.0F || u > 1.0F)
        return none;
    const glm::vec3 beside = glm::cross(way, first);
    const float v = glm::dot(ray.direction, beside) / volume;
    const float along = glm::dot(second, beside) / volume;
    return v >= 0.0F && u + v <= 1.0F && along > 0.0F ? along : none;
}

/// In the space of what is looked at.
ScenePick::Ray within(const ScenePick::Ray &ray, const glm::mat4 &world)
{
    const glm::mat4 back = glm::inverse(world);
    return {glm::vec3(back * glm::vec4(ray.from, 1.0F)),
            glm::vec3(back * glm::vec4(ray.direction, 0.0F))};
}

std::optional<glm::vec3> placeAt(const ScenePick::Ray &ray, float nearest)
{
    return nearest == none ? std::nullopt : std::optional(ray.from + ray.direction * nearest);
}

struct Met
{
    float distance = none;
    const OssRdGeometry *geometry = nullptr;
};

Met nearestOf(const OssRdScene &scene, const ScenePick::Ray &ray)
{
    Met met;
    std::set<const OssRdGeometry *> seen; // one for each of its materials
    for (const OssRdScene::Object &object : scene.objects) {
        if (!object.geometry || !seen.insert(object.geometry.get()).second)
            continue;
        const OssRdGeometry &geometry = *object.geometry;
        const ScenePick::Ray own = within(ray, geometry.world);
        const auto corner = [&geometry](std::size_t i) {
            return geometry.vertices[geometry.indices[i]].position;
        };
        for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
            const float away = distance(own, corner(i), corner(i + 1), corner(i + 2));
            if (away < met.distance)
                met = {away, &geometry};
        }
    }
    return met;
}

} // namespace

std::optional<glm::vec3> ScenePick::firstOf(const OssRdScene &scene, const Ray &ray)
{
    return placeAt(ray, nearestOf(scene, ray).distance);
}

const OssRdGeometry *ScenePick::geometryAt(const OssRdScene &scene, const Ray &ray)
{
    return nearestOf(scene, ray).geometry;
}

glm::mat4 ScenePick::worldOf(const OssEvMesh &mesh)
{
    glm::mat4 world(1.0F);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column)
            world[column][row] = mesh.world[std::size_t(row) * 4 + std::size_t(column)];
    }
    return world;
}

std::optional<ScenePick::Hit> ScenePick::hitOf(const OssEvMesh &mesh, const Ray &ray)
{
    const Ray own = within(ray, worldOf(mesh));
    const auto corner = [&mesh](std::uint32_t vertex) {
        return glm::make_vec3(mesh.positions[vertex].data());
    };
    float nearest = none;
    const std::array<std::uint32_t, 3> *met = nullptr;
    for (const auto &triangle : mesh.triangles) {
        const float away = distance(own, corner(triangle[0]), corner(triangle[1]),
                                    corner(triangle[2]));
        if (away >= nearest)
            continue;
        nearest = away;
        met = &triangle;
    }
    if (!met)
        return std::nullopt;
    const glm::vec3 place = own.from + own.direction * nearest;
    // Parts of the triangle across from its corners weigh these.
    const auto part = [&](std::size_t a, std::size_t b) {
        return glm::length(glm::cross(corner((*met)[a]) - place, corner((*met)[b]) - place));
    };
    const auto normal = [&](std::size_t k) {
        return glm::make_vec3(mesh.normals[(*met)[k]].data());
    };
    const glm::vec3 mean = normal(0) * part(1, 2) + normal(1) * part(2, 0) + normal(2) * part(0, 1);
    const float length = glm::length(mean);
    return Hit{place, length > 0.0F ? mean / length : -glm::normalize(own.direction)};
}

std::optional<glm::vec3> ScenePick::firstOf(const OssEvMesh &mesh, const Ray &ray)
{
    const std::optional<Hit> hit = hitOf(mesh, ray);
    return hit ? std::optional(glm::vec3(worldOf(mesh) * glm::vec4(hit->place, 1.0F)))
               : std::nullopt;
}
