#include "OssRender/Surface/OssRdDisplacement.h"

#include "OssEvaluation/Geometry/EqualVertices.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <glm/gtc/matrix_inverse.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <unordered_map>

#include <unistd.h>

namespace {

constexpr int HeightChannel = 2; // of the coat map
constexpr float Past = 0.0001F;  // beyond a patch

/// Heights of a patch, no finer than its triangles are.
class Heights
{
public:
    Heights(const OssRdMaterial &material, int triangles)
        : m_height(material.height)
    {
        const OssRdMaterial::Channel4 &map = material.maps[OssRdMaterial::Coat];
        m_values.assign(1, map.value[HeightChannel]);
        if (!map.texels)
            return;
        m_size = map.texels->size;
        m_values.resize(std::size_t(m_size) * std::size_t(m_size));
        for (std::size_t i = 0; i < m_values.size(); ++i)
            m_values[i] = OssEvHalf::toFloat(map.texels->rgba[4 * i + HeightChannel]);
        const int enough = 2 * int(std::sqrt(double(triangles)));
        while (m_size % 2 == 0 && m_size / 2 >= enough)
            halve();
    }

    /// In the world's lengths; coordinates within the patch.
    float at(const glm::vec2 &place) const
    {
        const glm::vec2 texel = glm::vec2(place.x, 1.0F - place.y) * float(m_size) - 0.5F;
        const glm::vec2 corner = glm::floor(texel);
        const glm::vec2 part = texel - corner;
        const int x = int(corner.x);
        const int y = int(corner.y);
        const float upper = glm::mix(value(x, y), value(x + 1, y), part.x);
        const float lower = glm::mix(value(x, y + 1), value(x + 1, y + 1), part.x);
        return m_height * glm::mix(upper, lower, part.y);
    }

private:
    float value(int x, int y) const
    {
        const int column = std::clamp(x, 0, m_size - 1);
        const int row = std::clamp(y, 0, m_size - 1);
        return m_values[std::size_t(row) * std::size_t(m_size) + std::size_t(column)];
    }

    void halve()
    {
        const int half = m_size / 2;
        std::vector<float> smaller(std::size_t(half) * std::size_t(half));
        for (int y = 0; y < half; ++y) {
            for (int x = 0; x < half; ++x)
                smaller[std::size_t(y) * std::size_t(half) + std::size_t(x)] =
                    (value(2 * x, 2 * y) + value(2 * x + 1, 2 * y) + value(2 * x, 2 * y + 1)
                     + value(2 * x + 1, 2 * y + 1))
                    / 4.0F;
        }
        m_values = std::move(smaller);
        m_size = half;
    }

    float m_height;
    int m_size = 1;
    std::vector<float> m_values;
};

OssRdGeometry::Vertex between(const OssRdGeometry::Vertex &a, const OssRdGeometry::Vertex &b)
{
    const auto direction = [](const glm::vec3 &sum, const glm::vec3 &other) {
        const float length = glm::length(sum);
        return length > 1e-6F ? sum / length : other;
    };
    return {(a.position + b.position) / 2.0F, direction(a.normal + b.normal, a.normal),
            glm::vec4(direction(glm::vec3(a.tangent) + glm::vec3(b.tangent), glm::vec3(a.tangent)),
                      a.tangent.w),
            (a.uv + b.uv) / 2.0F};
}

/// Each triangle becomes four.
void divide(OssRdGeometry *geometry)
{
    std::unordered_map<std::uint64_t, std::uint32_t> middles;
    std::vector<std::uint32_t> indices;
    indices.reserve(geometry->indices.size() * 4);
    const auto middle = [&](std::uint32_t a, std::uint32_t b) {
        const std::uint64_t edge = std::uint64_t(std::min(a, b)) << 32U | std::max(a, b);
        const auto [found, isNew] = middles.emplace(edge, geometry->vertices.size());
        if (isNew)
            geometry->vertices.push_back(
                between(geometry->vertices[std::min(a, b)], geometry->vertices[std::max(a, b)]));
        return found->second;
    };
    for (OssRdGeometry::Part &part : geometry->parts) {
        const int first = int(indices.size());
        for (int i = part.first; i < part.first + part.count; i += 3) {
            const std::uint32_t *corner = &geometry->indices[std::size_t(i)];
            const std::uint32_t ab = middle(corner[0], corner[1]);
            const std::uint32_t bc = middle(corner[1], corner[2]);
            const std::uint32_t ca = middle(corner[2], corner[0]);
            for (const std::uint32_t index :
                 {corner[0], ab, ca, ab, corner[1], bc, ca, bc, corner[2], ab, bc, ca})
                indices.push_back(index);
        }
        part.first = first;
        part.count = int(indices.size()) - first;
    }
    geometry->indices = std::move(indices);
}

/// Vertices that are nearly at one place, as rounding leaves them at seams, come to be at it.
void weld(OssRdGeometry *geometry)
{
    constexpr float Most = std::numeric_limits<float>::max();
    glm::vec3 low(Most);
    glm::vec3 high(-Most);
    for (const OssRdGeometry::Vertex &vertex : geometry->vertices) {
        low = glm::min(low, vertex.position);
        high = glm::max(high, vertex.position);
    }
    const glm::vec3 size = high - low;
    const float near = std::max({size.x, size.y, size.z, 1e-20F}) * 2e-6F;
    std::unordered_map<std::uint64_t, glm::vec3> known; // by cell
    const auto cellOf = [&](const glm::vec3 &at) {
        const auto cell = glm::u64vec3((at - low) / (4.0F * near) + 1.0F);
        return cell.x << 42U | cell.y << 21U | cell.z;
    };
    for (OssRdGeometry::Vertex &vertex : geometry->vertices) {
        const glm::vec3 at = vertex.position;
        bool isKnown = false;
        for (int corner = 0; corner < 8 && !isKnown; ++corner) {
            const glm::vec3 way(corner & 1, corner >> 1 & 1, corner >> 2 & 1);
            const auto found = known.find(cellOf(at + (way * 2.0F - 1.0F) * near));
            isKnown = found != known.end() && glm::distance(found->second, at) <= near;
            if (isKnown)
                vertex.position = found->second;
        }
        if (!isKnown)
            known.emplace(cellOf(at), at);
    }
}

/// What is known of a place in space, where several vertices may be.
struct Place
{
    glm::vec3 normal{0.0F}; ///< in the world; a sum
    float height = 0.0F;    ///< a sum
    int count = 0;
};

const OssRdMaterial *materialOf(const std::vector<OssRdDisplacement::Skin> &skins,
                                const OssRdGeometry::Part &part)
{
    for (const OssRdDisplacement::Skin &skin : skins) {
        const bool covers = skin.slots.empty()
                            || std::count(skin.slots.cbegin(), skin.slots.cend(), part.slot) > 0;
        const auto found = skin.materials.find(part.patch);
        if (covers && found != skin.materials.end())
            return &found->second;
    }
    return nullptr;
}

void sumHeights(const OssRdGeometry &geometry, const OssRdGeometry::Part &part,
                const OssRdMaterial &material, const std::vector<std::uint32_t> &places,
                std::vector<Place> *sums)
{
    const Heights heights(material, part.count / 3);
    const glm::vec2 origin(float(OssEvPatch::column(part.patch)),
                           float(OssEvPatch::row(part.patch)));
    std::vector<bool> isDone(geometry.vertices.size());
    for (int i = part.first; i < part.first + part.count; ++i) {
        const std::uint32_t index = geometry.indices[std::size_t(i)];
        const glm::vec2 place = geometry.vertices[index].uv - origin;
        const bool isInside = std::min(place.x, place.y) >= -Past
                              && std::max(place.x, place.y) <= 1.0F + Past;
        if (isDone[index] || !isInside)
            continue;
        isDone[index] = true;
        (*sums)[places[index]].height += heights.at(place);
        ++(*sums)[places[index]].count;
    }
}

void move(OssRdGeometry *geometry, const std::vector<OssRdDisplacement::Skin> &skins)
{
    std::vector<OssRdGeometry::Vertex> &vertices = geometry->vertices;
    const std::vector<std::uint32_t> places = firstOfEqual(
        vertices.size(), [&vertices](std::uint32_t i) {
            const glm::vec3 &at = vertices[i].position;
            return std::array<float, 3>{at.x, at.y, at.z};
        });
    std::vector<Place> sums(vertices.size());
    const glm::mat3 toWorld = glm::inverseTranspose(glm::mat3(geometry->world));
    for (std::size_t i = 0; i < vertices.size(); ++i)
        sums[places[i]].normal += glm::normalize(toWorld * vertices[i].normal);
    for (const OssRdGeometry::Part &part : geometry->parts) {
        const OssRdMaterial *material = materialOf(skins, part);
        static const OssRdMaterial flat;
        sumHeights(*geometry, part, material ? *material : flat, places, &sums);
    }
    const glm::mat3 fromWorld = glm::inverse(glm::mat3(geometry->world));
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const Place &sum = sums[places[i]];
        const float length = glm::length(sum.normal);
        if (sum.count > 0 && length > 1e-6F)
            vertices[i].position += fromWorld * sum.normal
                                    * (sum.height / float(sum.count) / length);
    }
}

bool standsOut(const OssRdDisplacement::Skin &skin)
{
    return std::any_of(skin.materials.cbegin(), skin.materials.cend(), [](const auto &material) {
        const OssRdMaterial::Channel4 &map = material.second.maps[OssRdMaterial::Coat];
        return material.second.height != 0.0F && (map.texels || map.value[HeightChannel] != 0.0F);
    });
}

} // namespace

int OssRdDisplacement::levelsFor(const OssRdGeometry &geometry, int wanted)
{
    const double free = double(sysconf(_SC_AVPHYS_PAGES)) * double(sysconf(_SC_PAGESIZE));
    // Divided, there is a vertex for every other triangle, and as much again while it is made.
    double bytes = 2.0 * double(geometry.indices.size()) / 3.0
                   * (3.0 * sizeof(std::uint32_t) + sizeof(OssRdGeometry::Vertex));
    int levels = 0;
    while (levels < std::min(wanted, MostLevels) && 4.0 * bytes <= free / 4.0) {
        bytes *= 4.0;
        ++levels;
    }
    return levels;
}

std::shared_ptr<const OssRdGeometry> OssRdDisplacement::of(const OssRdGeometry &geometry,
                                                           const std::vector<Skin> &skins,
                                                           int levels)
{
    if (std::none_of(skins.cbegin(), skins.cend(), standsOut))
        return nullptr;
    auto made = std::make_shared<OssRdGeometry>();
    made->vertices = geometry.vertices;
    made->parts = geometry.parts;
    made->world = geometry.world;
    if (!geometry.parts.empty())
        made->indices.assign(geometry.indices.begin(), geometry.indices.begin()
                                                           + geometry.parts.back().first
                                                           + geometry.parts.back().count);
    weld(made.get());
    for (int level = 0; level < levels; ++level)
        divide(made.get());
    move(made.get(), skins);
    made->finish();
    return made;
}
