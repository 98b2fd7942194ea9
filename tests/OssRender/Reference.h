#pragma once

#include <glm/glm.hpp>

#include <functional>

/// What a surface sends to the eye, by summing light over the hemisphere in double precision, from
/// the definitions alone: no tables, no prefiltered light, no code of the renderer's.
namespace Reference {

struct Surface
{
    glm::dvec3 base{0.5};
    double metallic = 0.0;
    double roughness = 0.5;
};

/// Radiance from a direction in the world.
using Light = std::function<glm::dvec3(const glm::dvec3 &direction)>;

/// Directions of length 1; `toLight` has an irradiance of pi on what faces it.
glm::dvec3 direct(const Surface &surface, const glm::dvec3 &normal, const glm::dvec3 &toEye,
                  const glm::dvec3 &toLight);

glm::dvec3 around(const Surface &surface, const glm::dvec3 &normal, const glm::dvec3 &toEye,
                  const Light &light);

} // namespace Reference
