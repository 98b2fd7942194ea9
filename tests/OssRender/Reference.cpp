#include "Reference.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace {

constexpr double Pi = 3.14159265358979323846;

glm::dvec3 fresnel(const glm::dvec3 &reflectivity, double cosine)
{
    return reflectivity + (1.0 - reflectivity) * std::pow(1.0 - cosine, 5.0);
}

/// Smith's masking of one direction for GGX.
double lambda(double cosine, double alpha)
{
    const double tangent = std::sqrt(std::max(0.0, 1.0 - cosine * cosine)) / cosine;
    return 0.5 * (std::sqrt(1.0 + alpha * alpha * tangent * tangent) - 1.0);
}

/// Microfacets without Fresnel, from cosines.
double facets(double eye, double light, double half, double alpha)
{
    const double d = alpha * alpha
                     / (Pi * std::pow(half * half * (alpha * alpha - 1.0) + 1.0, 2.0));
    const double g = 1.0 / (1.0 + lambda(eye, alpha) + lambda(light, alpha));
    return d * g / (4.0 * eye * light);
}

/// Calls with facets' normals around z and the weight of each, so that they sum over all reflected
/// directions of an eye.
template <class Use>
void overFacets(double alpha, int steps, Use use)
{
    for (int i = 0; i < steps; ++i) {
        const double part = (i + 0.5) / steps;
        const double cosine = std::sqrt((1.0 - part) / (1.0 + (alpha * alpha - 1.0) * part));
        const double sine = std::sqrt(1.0 - cosine * cosine);
        for (int j = 0; j < 2 * steps; ++j) {
            const double angle = Pi * (j + 0.5) / steps;
            use(glm::dvec3(sine * std::cos(angle), sine * std::sin(angle), cosine),
                1.0 / (2.0 * steps * steps));
        }
    }
}

/// Part of even light from all around that is reflected, for a reflectivity of 1 and of 0.
std::pair<double, double> albedo(double eye, double roughness)
{
    const double alpha = roughness * roughness;
    const glm::dvec3 toEye(std::sqrt(1.0 - eye * eye), 0.0, eye);
    double one = 0.0;
    double none = 0.0;
    overFacets(alpha, 48, [&](const glm::dvec3 &half, double weight) {
        const double toHalf = glm::dot(toEye, half);
        const glm::dvec3 light = 2.0 * toHalf * half - toEye;
        if (light.z <= 0.0 || toHalf <= 0.0)
            return;
        const double density = alpha * alpha * half.z
                               / (Pi * std::pow(half.z * half.z * (alpha * alpha - 1.0) + 1.0, 2.0))
                               / (4.0 * toHalf);
        const double sent = facets(eye, light.z, half.z, alpha) * light.z / density * weight;
        one += sent;
        none += sent * std::pow(1.0 - toHalf, 5.0);
    });
    return {one, none};
}

struct Terms
{
    glm::dvec3 reflectivity;
    glm::dvec3 bounces; ///< factor for what bounces between facets
    glm::dvec3 diffuse; ///< colour of what is not reflected
};

Terms termsOf(const Reference::Surface &surface, double eye)
{
    Terms terms;
    terms.reflectivity = glm::mix(glm::dvec3(0.04), surface.base, surface.metallic);
    const auto [one, none] = albedo(eye, surface.roughness);
    terms.bounces = 1.0 + terms.reflectivity * (1.0 / one - 1.0);
    const glm::dvec3 reflected = (terms.reflectivity * (one - none) + none) * terms.bounces;
    terms.diffuse = surface.base * (1.0 - surface.metallic) * (1.0 - reflected);
    return terms;
}

} // namespace

glm::dvec3 Reference::direct(const Surface &surface, const glm::dvec3 &normal,
                             const glm::dvec3 &toEye, const glm::dvec3 &toLight)
{
    const double eye = glm::dot(normal, toEye);
    const double light = glm::dot(normal, toLight);
    if (eye <= 0.0 || light <= 0.0)
        return glm::dvec3(0.0);
    const Terms terms = termsOf(surface, eye);
    const glm::dvec3 half = glm::normalize(toEye + toLight);
    const double alpha = surface.roughness * surface.roughness;
    const glm::dvec3 mirrored = terms.bounces * fresnel(terms.reflectivity, glm::dot(toEye, half))
                                * facets(eye, light, glm::dot(normal, half), alpha);
    return (mirrored + terms.diffuse / Pi) * light * Pi;
}

glm::dvec3 Reference::around(const Surface &surface, const glm::dvec3 &normal,
                             const glm::dvec3 &toEye, const Light &light)
{
    const double eye = std::max(glm::dot(normal, toEye), 1e-3);
    const Terms terms = termsOf(surface, eye);
    const glm::dvec3 up = std::abs(normal.y) < 0.9 ? glm::dvec3(0, 1, 0) : glm::dvec3(1, 0, 0);
    const glm::dvec3 x = glm::normalize(glm::cross(up, normal));
    const glm::dvec3 y = glm::cross(normal, x);
    const auto toWorld = [&](const glm::dvec3 &v) {
        return x * v.x + y * v.y + normal * v.z;
    };
    const glm::dvec3 own(glm::dot(toEye, x), glm::dot(toEye, y), eye);
    const double alpha = surface.roughness * surface.roughness;
    glm::dvec3 sum(0.0);
    // Small bright lights are found by looking everywhere, narrow reflections by looking where they go.
    const bool isNarrow = surface.roughness < 0.35;
    if (isNarrow) {
        overFacets(alpha, 64, [&](const glm::dvec3 &half, double weight) {
            const double toHalf = glm::dot(own, half);
            const glm::dvec3 to = 2.0 * toHalf * half - own;
            if (to.z <= 0.0 || toHalf <= 0.0)
                return;
            const double density = alpha * alpha * half.z
                                   / (Pi
                                      * std::pow(half.z * half.z * (alpha * alpha - 1.0) + 1.0,
                                                 2.0))
                                   / (4.0 * toHalf);
            sum += terms.bounces * fresnel(terms.reflectivity, toHalf)
                   * facets(eye, to.z, half.z, alpha) * to.z / density * weight
                   * light(toWorld(to));
        });
    }
    constexpr int Rows = 128;
    for (int row = 0; row < Rows; ++row) {
        const double down = Pi * (row + 0.5) / Rows;
        const double part = std::sin(down) * Pi * Pi / (Rows * Rows); // of the sphere
        for (int column = 0; column < 2 * Rows; ++column) {
            const double angle = Pi * (column + 0.5) / Rows;
            const glm::dvec3 to(std::sin(down) * std::sin(angle), std::cos(down),
                                -std::sin(down) * std::cos(angle));
            const double cosine = glm::dot(to, normal);
            if (cosine <= 0.0)
                continue;
            glm::dvec3 sent = terms.diffuse / Pi;
            if (!isNarrow) {
                const glm::dvec3 half = glm::normalize(to + toEye);
                sent += terms.bounces * fresnel(terms.reflectivity, glm::dot(toEye, half))
                        * facets(eye, cosine, glm::dot(normal, half), alpha);
            }
            sum += sent * cosine * part * light(to);
        }
    }
    return sum;
}
