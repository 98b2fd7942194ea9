#include "OssRender/Surface/OssRdBrdf.h"

#include <glm/gtc/constants.hpp>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned Samples = 1024;
constexpr float Least = 1e-6F;

/// Schlick's weight of full reflection.
float schlick(float cosine)
{
    const float left = std::clamp(1.0F - cosine, 0.0F, 1.0F);
    return left * left * left * left * left;
}

/// Masking over 4 cos cos.
float visibility(float eye, float light, float alpha)
{
    const float square = alpha * alpha;
    const float ofEye = light * std::sqrt(eye * eye * (1.0F - square) + square);
    const float ofLight = eye * std::sqrt(light * light * (1.0F - square) + square);
    return 0.5F / std::max(ofEye + ofLight, Least);
}

glm::vec2 integrate(float cosine, float roughness)
{
    const glm::vec3 eye(std::sqrt(std::max(0.0F, 1.0F - cosine * cosine)), 0.0F, cosine);
    const float alpha = roughness * roughness;
    glm::dvec2 sum(0.0);
    for (unsigned i = 0; i < Samples; ++i) {
        const glm::vec3 half = OssRdBrdf::facet(OssRdBrdf::evenPoint(i, Samples), roughness);
        const glm::vec3 light = 2.0F * glm::dot(eye, half) * half - eye;
        if (light.z <= 0.0F)
            continue;
        const float toEye = std::max(glm::dot(eye, half), 0.0F);
        const float weight = 4.0F * visibility(cosine, light.z, alpha) * light.z * toEye
                             / std::max(half.z, Least);
        const float fresnel = schlick(toEye);
        sum += glm::dvec2((1.0F - fresnel) * weight, fresnel * weight);
    }
    return glm::vec2(sum / double(Samples));
}

OssRdBrdf::AlbedoTable makeTable()
{
    OssRdBrdf::AlbedoTable table(OssRdBrdf::TableSize, OssRdBrdf::TableSize);
    constexpr auto Last = float(OssRdBrdf::TableSize - 1);
    tbb::parallel_for(0, table.height, [&table](int y) {
        for (int x = 0; x < table.width; ++x)
            table.at(x, y) = integrate(std::max(float(x) / Last, 1e-3F),
                                       std::max(float(y) / Last, 1e-2F));
    });
    return table;
}

} // namespace

const OssRdBrdf::AlbedoTable &OssRdBrdf::albedoTable()
{
    static const AlbedoTable table = makeTable();
    return table;
}

glm::vec3 OssRdBrdf::facet(const glm::vec2 &random, float roughness)
{
    const float alpha = roughness * roughness;
    const float cosine = std::sqrt((1.0F - random.y) / (1.0F + (alpha * alpha - 1.0F) * random.y));
    const float sine = std::sqrt(std::max(0.0F, 1.0F - cosine * cosine));
    const float around = glm::two_pi<float>() * random.x;
    return {sine * std::cos(around), sine * std::sin(around), cosine};
}

glm::vec2 OssRdBrdf::evenPoint(unsigned i, unsigned count)
{
    unsigned bits = i;
    bits = (bits << 16) | (bits >> 16);
    bits = ((bits & 0x55555555U) << 1) | ((bits & 0xAAAAAAAAU) >> 1);
    bits = ((bits & 0x33333333U) << 2) | ((bits & 0xCCCCCCCCU) >> 2);
    bits = ((bits & 0x0F0F0F0FU) << 4) | ((bits & 0xF0F0F0F0U) >> 4);
    bits = ((bits & 0x00FF00FFU) << 8) | ((bits & 0xFF00FF00U) >> 8);
    return {(float(i) + 0.5F) / float(count), float(bits) * 2.3283064365386963e-10F};
}
