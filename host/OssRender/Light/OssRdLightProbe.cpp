#include "OssRender/Light/OssRdLightProbe.h"

#include "OssRender/Light/OssRdEnvironment.h"
#include "OssRender/Surface/OssRdBrdf.h"

#include <glm/gtc/constants.hpp>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using Faces = std::array<OssRdPicture, 6>;
constexpr unsigned Samples = 96;

OssRdPicture halved(const OssRdPicture &picture)
{
    OssRdPicture small(picture.width / 2, picture.height / 2);
    for (int y = 0; y < small.height; ++y) {
        for (int x = 0; x < small.width; ++x)
            small.at(x, y) = (picture.at(2 * x, 2 * y) + picture.at(2 * x + 1, 2 * y)
                              + picture.at(2 * x, 2 * y + 1) + picture.at(2 * x + 1, 2 * y + 1))
                             / 4.0F;
    }
    return small;
}

/// A texel of a face sees this part of the sphere.
float solidAngle(int x, int y, int size)
{
    const float step = 2.0F / float(size);
    const glm::vec2 at((float(x) + 0.5F) * step - 1.0F, (float(y) + 0.5F) * step - 1.0F);
    const float square = 1.0F + glm::dot(at, at);
    return step * step / (square * std::sqrt(square));
}

/// Light from each texel of the faces, summed over the half of the sphere that a normal faces.
Faces dullLight(const Faces &faces)
{
    struct Ray
    {
        glm::vec3 to;
        glm::vec3 light; ///< times its part of the sphere, over pi
    };

    std::vector<Ray> rays;
    for (int face = 0; face < 6; ++face) {
        const OssRdPicture &picture = faces[std::size_t(face)];
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x)
                rays.push_back(
                    {glm::normalize(OssRdLightProbe::direction(face, x, y, picture.width)),
                     picture.at(x, y) * solidAngle(x, y, picture.width) / glm::pi<float>()});
        }
    }
    Faces dull;
    for (int face = 0; face < 6; ++face) {
        const int size = OssRdLightProbe::DullSize;
        OssRdPicture &picture = dull[std::size_t(face)];
        picture = OssRdPicture(size, size);
        tbb::parallel_for(0, size, [&, face](int y) {
            for (int x = 0; x < size; ++x) {
                const glm::vec3 n = glm::normalize(OssRdLightProbe::direction(face, x, y, size));
                glm::vec3 sum(0.0F);
                for (const Ray &ray : rays)
                    sum += ray.light * std::max(glm::dot(ray.to, n), 0.0F);
                picture.at(x, y) = sum;
            }
        });
    }
    return dull;
}

/// Which face a direction is in, and where on it from -1 to 1, as OpenGL has it.
int faceOf(const glm::vec3 &d, glm::vec2 *at)
{
    const glm::vec3 size = glm::abs(d);
    if (size.x >= size.y && size.x >= size.z) {
        *at = glm::vec2(d.x > 0 ? -d.z : d.z, -d.y) / size.x;
        return d.x > 0 ? 0 : 1;
    }
    if (size.y >= size.z) {
        *at = glm::vec2(d.x, d.y > 0 ? d.z : -d.z) / size.y;
        return d.y > 0 ? 2 : 3;
    }
    *at = glm::vec2(d.z > 0 ? d.x : -d.x, -d.y) / size.z;
    return d.z > 0 ? 4 : 5;
}

/// The surrounding in ever smaller faces.
struct Pyramid
{
    std::vector<Faces> levels;

    glm::vec3 sample(const glm::vec3 &direction, float level) const
    {
        const float exact = std::clamp(level, 0.0F, float(levels.size() - 1));
        const auto low = std::size_t(exact);
        const std::size_t high = std::min(low + 1, levels.size() - 1);
        glm::vec2 at;
        const auto face = std::size_t(faceOf(direction, &at));
        return glm::mix(smooth(levels[low][face], at), smooth(levels[high][face], at),
                        exact - float(low));
    }

    static glm::vec3 smooth(const OssRdPicture &face, const glm::vec2 &at)
    {
        const auto last = float(face.width - 1);
        const float x = std::clamp((at.x + 1.0F) / 2.0F * float(face.width) - 0.5F, 0.0F, last);
        const float y = std::clamp((at.y + 1.0F) / 2.0F * float(face.width) - 0.5F, 0.0F, last);
        const int i = std::min(int(x), std::max(face.width - 2, 0));
        const int j = std::min(int(y), std::max(face.width - 2, 0));
        const int right = std::min(i + 1, face.width - 1);
        const int below = std::min(j + 1, face.width - 1);
        return glm::mix(glm::mix(face.at(i, j), face.at(right, j), x - float(i)),
                        glm::mix(face.at(i, below), face.at(right, below), x - float(i)),
                        y - float(j));
    }
};

Pyramid pyramidOf(const OssRdPicture &surrounding)
{
    Pyramid pyramid;
    Faces faces;
    // As many points within a texel as keep a small bright light from being missed.
    const int within = std::max(1, surrounding.width / (4 * OssRdLightProbe::FaceSize));
    for (int face = 0; face < 6; ++face) {
        OssRdPicture &picture = faces[std::size_t(face)];
        const int size = OssRdLightProbe::FaceSize;
        picture = OssRdPicture(size, size);
        const int fine = size * within;
        tbb::parallel_for(0, size, [&, face](int y) {
            for (int x = 0; x < size; ++x) {
                glm::vec3 sum(0.0F);
                for (int i = 0; i < within * within; ++i)
                    sum += OssRdEnvironment::radiance(
                        surrounding, OssRdLightProbe::direction(face, x * within + i % within,
                                                                y * within + i / within, fine));
                picture.at(x, y) = sum / float(within * within);
            }
        });
    }
    pyramid.levels.push_back(std::move(faces));
    while (pyramid.levels.back()[0].width > 1) {
        Faces small;
        for (std::size_t face = 0; face < 6; ++face)
            small[face] = halved(pyramid.levels.back()[face]);
        pyramid.levels.push_back(std::move(small));
    }
    return pyramid;
}

/// A direction from which light comes into a mirror, whose normal is z.
struct Ray
{
    glm::vec3 light;
    float level; ///< of the pyramid
};

/// The viewer stands where the mirror's normal points, as whoever reads the cube pretends (Karis
/// 2013). Few Samples do, for each takes a level that covers as much as it stands for (Krivanek and
/// Colbert 2008).
std::vector<Ray> raysOf(float roughness)
{
    const float alpha = roughness * roughness;
    const float texel = 4.0F * glm::pi<float>()
                        / (6.0F * OssRdLightProbe::FaceSize * OssRdLightProbe::FaceSize);
    std::vector<Ray> rays;
    rays.reserve(Samples);
    for (unsigned i = 0; i < Samples; ++i) {
        const glm::vec3 half = OssRdBrdf::facet(OssRdBrdf::evenPoint(i, Samples), roughness);
        const glm::vec3 light(2.0F * half.z * half.x, 2.0F * half.z * half.y,
                              2.0F * half.z * half.z - 1.0F);
        if (light.z <= 0.0F)
            continue;
        const float d = half.z * half.z * (alpha * alpha - 1.0F) + 1.0F;
        const float density = alpha * alpha / (4.0F * glm::pi<float>() * d * d);
        const float covers = 1.0F / (float(Samples) * density);
        rays.push_back({light, 0.5F * std::log2(covers / texel) + 0.5F});
    }
    return rays;
}

glm::vec3 mirrored(const Pyramid &pyramid, const glm::vec3 &normal, const std::vector<Ray> &rays)
{
    const glm::vec3 up = std::abs(normal.y) < 0.99F ? glm::vec3(0, 1, 0) : glm::vec3(1, 0, 0);
    const glm::vec3 x = glm::normalize(glm::cross(up, normal));
    const glm::vec3 y = glm::cross(normal, x);
    glm::vec3 sum(0.0F);
    float weight = 0.0F;
    for (const Ray &ray : rays) {
        const glm::vec3 from = x * ray.light.x + y * ray.light.y + normal * ray.light.z;
        sum += pyramid.sample(from, ray.level) * ray.light.z;
        weight += ray.light.z;
    }
    return weight > 0.0F ? sum / weight : glm::vec3(0.0F);
}

} // namespace

glm::vec3 OssRdLightProbe::direction(int face, int x, int y, int size)
{
    const float s = 2.0F * (float(x) + 0.5F) / float(size) - 1.0F;
    const float t = 2.0F * (float(y) + 0.5F) / float(size) - 1.0F;
    switch (face) {
    case 0:
        return {1.0F, -t, -s};
    case 1:
        return {-1.0F, -t, s};
    case 2:
        return {s, 1.0F, t};
    case 3:
        return {s, -1.0F, -t};
    case 4:
        return {s, -t, 1.0F};
    default:
        return {-s, -t, -1.0F};
    }
}

OssRdLightProbe OssRdLightProbe::of(const OssRdPicture &surrounding)
{
    OssRdLightProbe probe;
    const Pyramid pyramid = pyramidOf(surrounding);
    probe.dull = dullLight(pyramid.levels[3]);
    probe.faces[0] = pyramid.levels[0];
    for (int level = 1; level < Levels; ++level) {
        const int size = FaceSize >> level;
        const std::vector<Ray> rays = raysOf(float(level) / float(Levels - 1));
        for (int face = 0; face < 6; ++face) {
            OssRdPicture &picture = probe.faces[std::size_t(level)][std::size_t(face)];
            picture = OssRdPicture(size, size);
            tbb::parallel_for(0, size, [&, face](int y) {
                for (int x = 0; x < size; ++x)
                    picture.at(x, y) = mirrored(pyramid,
                                                glm::normalize(direction(face, x, y, size)), rays);
            });
        }
    }
    return probe;
}
