#include "OssEvaluation/Geometry/OssEvMesh.h"

#include "OssEvaluation/Geometry/EqualVertices.h"
#include "OssEvaluation/Geometry/OssEvMeshFacts.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Geometry/Rounding.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <numeric>

namespace {

template <class Vector>
bool allFinite(const std::vector<Vector> &vectors)
{
    constexpr std::uint32_t Exponent = 0x7F800000; // all of it, where a float is no number
    bool isNone = false;
    for (const Vector &vector : vectors) {
        for (const float number : vector) {
            std::uint32_t bits = 0;
            std::memcpy(&bits, &number, sizeof(bits));
            isNone |= (bits & Exponent) == Exponent;
        }
    }
    return !isNone;
}

OssEvMesh::Vector3 cross(const OssEvMesh::Vector3 &a, const OssEvMesh::Vector3 &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

OssEvMesh::Vector3 minus(const OssEvMesh::Vector3 &a, const OssEvMesh::Vector3 &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

void add(const OssEvMesh::Vector3 &vector, OssEvMesh::Vector3 *sum)
{
    for (std::size_t k = 0; k < 3; ++k)
        (*sum)[k] += vector[k];
}

/// Nothing where there is no length.
OssEvMesh::Vector3 unit(const OssEvMesh::Vector3 &vector)
{
    const float length = std::sqrt(vector[0] * vector[0] + vector[1] * vector[1]
                                   + vector[2] * vector[2]);
    OssEvMesh::Vector3 found{};
    for (std::size_t k = 0; k < 3; ++k)
        found[k] = length > 0.0F ? vector[k] / length : 0.0F;
    return found;
}

template <class Vector>
void addVectors(OssEvKeyBuilder *key, const std::vector<Vector> &vectors)
{
    key->addBytes(vectors.data(), vectors.size() * sizeof(Vector));
}

constexpr float Border = 1e-5F;

using Corners = std::array<OssEvMesh::Vector2, 3>;

/// Where texture coordinates of a triangle lie.
struct Bounds
{
    OssEvMesh::Vector2 low{1e9F, 1e9F};
    OssEvMesh::Vector2 high{-1e9F, -1e9F};
};

Bounds boundsOf(const Corners &corners)
{
    Bounds bounds;
    for (const OssEvMesh::Vector2 &corner : corners) {
        for (std::size_t k = 0; k < 2; ++k) {
            bounds.low[k] = std::min(bounds.low[k], corner[k]);
            bounds.high[k] = std::max(bounds.high[k], corner[k]);
        }
    }
    return bounds;
}

/// Whether a triangle touches the inside of the patch and of no other.
bool isWithin(const Bounds &bounds, int patch)
{
    const OssEvMesh::Vector2 start{float(OssEvPatch::column(patch)), float(OssEvPatch::row(patch))};
    for (std::size_t k = 0; k < 2; ++k) {
        const float low = bounds.low[k] - start[k];
        const float high = bounds.high[k] - start[k];
        if (low < 0.0F || low >= 1.0F - Border || high > 1.0F || high <= Border)
            return false;
    }
    return true;
}

/// Whether the triangle, whose bounding box does, touches the inside of the patch. It does not when
/// the whole patch lies outside of one of its edges.
bool touches(const Corners &corners, int column, int row)
{
    // Most lie inside with all corners.
    const auto isInside = [column, row](const OssEvMesh::Vector2 &corner) {
        return corner[0] >= float(column) && corner[0] <= float(column + 1)
               && corner[1] >= float(row) && corner[1] <= float(row + 1);
    };
    if (std::all_of(corners.begin(), corners.end(), isInside))
        return true;
    const auto side = [](const OssEvMesh::Vector2 &from, const OssEvMesh::Vector2 &to, float x,
                         float y) {
        return (to[0] - from[0]) * (y - from[1]) - (to[1] - from[1]) * (x - from[0]);
    };
    const float area = side(corners[0], corners[1], corners[2][0], corners[2][1]);
    if (std::abs(area) < Border * Border)
        return true; // no inside to tell by
    const float turn = area < 0.0F ? -1.0F : 1.0F;
    for (std::size_t i = 0; i < 3; ++i) {
        const OssEvMesh::Vector2 &from = corners[i];
        const OssEvMesh::Vector2 &to = corners[(i + 1) % 3];
        float most = -1.0F;
        for (const int x : {column, column + 1}) {
            for (const int y : {row, row + 1})
                most = std::max(most, turn * side(from, to, float(x), float(y)));
        }
        if (most <= Border * std::hypot(to[0] - from[0], to[1] - from[1]))
            return false;
    }
    return true;
}

} // namespace

bool OssEvMesh::isFinite() const
{
    return allFinite(positions) && allFinite(uvs) && allFinite(normals) && allFinite(colors);
}

OssEvResult OssEvMesh::finish(const std::string &name)
{
    const OssEvResult result = check(name);
    if (!result)
        return result;
    makeNormals();
    if (faces.size() != triangles.size()) {
        faces.resize(triangles.size());
        for (std::size_t i = 0; i < faces.size(); ++i)
            faces[i] = std::int32_t(i);
    }
    if (materialNames.empty())
        materialNames.emplace_back();
    materials.resize(triangles.size());
    findPatches();
    m_rayTree = std::make_shared<Lazy<OssEvRayTree>>();
    m_facts = std::make_shared<Lazy<OssEvMeshFacts>>();
    OssEvKeyBuilder key;
    addVectors(&key, positions);
    addVectors(&key, normals);
    addVectors(&key, uvs);
    addVectors(&key, colors);
    addVectors(&key, triangles);
    key.addBytes(faces.data(), faces.size() * sizeof(std::int32_t));
    key.addBytes(materials.data(), materials.size() * sizeof(std::int32_t));
    for (const std::string &material : materialNames)
        key.add(material);
    for (const float number : world)
        key.add(double(number));
    m_key = key.key();
    return {};
}

OssEvResult OssEvMesh::check(const std::string &name) const
{
    const auto refused = [&name](const char *reason) {
        return OssEvResult::failure("Cannot use \"" + name + "\": " + reason);
    };
    if (triangles.empty() || positions.empty())
        return refused("it has no faces");
    if (uvs.empty())
        return refused("it has no texture coordinates");
    const auto isIncomplete = [this](std::size_t count) {
        return count != 0 && count != positions.size();
    };
    if (isIncomplete(uvs.size()) || isIncomplete(normals.size()) || isIncomplete(colors.size()))
        return refused("its vertices are not complete");
    if (!isFinite() || !std::all_of(world.begin(), world.end(), [](float value) {
            return std::isfinite(value);
        }))
        return refused("it has coordinates that are no numbers");
    const auto count = std::uint32_t(positions.size());
    for (const auto &triangle : triangles) {
        if (std::any_of(triangle.begin(), triangle.end(),
                        [count](std::uint32_t index) { return index >= count; }))
            return refused("a face names a vertex that does not exist");
    }
    const auto slots = std::int32_t(std::max<std::size_t>(materialNames.size(), 1));
    if (materials.size() > triangles.size()
        || std::any_of(materials.begin(), materials.end(),
                       [slots](std::int32_t slot) { return slot < 0 || slot >= slots; }))
        return refused("a face names a material that does not exist");
    const auto outside = [](const Vector2 &uv) {
        constexpr float Slack = 1e-4F;
        const int lastRow = OssEvPatch::row(OssEvPatch::Last);
        return uv[0] < -Slack || uv[0] > OssEvPatch::PatchesPerRow + Slack || uv[1] < -Slack
               || uv[1] > float(lastRow) + 1.0F + Slack;
    };
    if (std::any_of(uvs.begin(), uvs.end(), outside))
        return refused("its texture coordinates lie outside the UDIM patches");
    return {};
}

// Weighed by area, so that slivers do not tilt what they touch. Vertices of one place share a normal:
// what parts them are texture coordinates, where a surface does not break.
void OssEvMesh::makeNormals()
{
    normals.resize(positions.size());
    const auto isMissing = [this](std::uint32_t vertex) {
        return normals[vertex] == Vector3{};
    };
    std::vector<std::uint32_t> missing;
    for (std::uint32_t i = 0; i < normals.size(); ++i) {
        if (isMissing(i))
            missing.push_back(i);
    }
    if (missing.empty())
        return;
    std::vector<std::uint32_t> firstOf(positions.size());
    if (hasSeparatePlaces)
        std::iota(firstOf.begin(), firstOf.end(), 0U);
    else
        firstOf = firstOfEqual(positions.size(), [this](std::uint32_t i) { return positions[i]; });
    std::vector<Vector3> sums(positions.size());
    const bool areAllMissing = missing.size() == normals.size();
    for (const auto &triangle : triangles) {
        const Vector3 &a = positions[triangle[0]];
        const Vector3 normal = cross(minus(positions[triangle[1]], a),
                                     minus(positions[triangle[2]], a));
        for (const std::uint32_t vertex : triangle) {
            if (!areAllMissing && !isMissing(vertex))
                continue;
            add(normal, &sums[firstOf[vertex]]);
        }
    }
    for (const std::uint32_t vertex : missing)
        normals[vertex] = unit(sums[firstOf[vertex]]);
}

const OssEvRayTree &OssEvMesh::rayTree() const
{
    return m_rayTree->of(*this);
}

const OssEvMeshFacts &OssEvMesh::facts() const
{
    return m_facts->of(*this);
}

// A face belongs to every patch whose inside it touches, not to those that it only borders on.
void OssEvMesh::findPatches()
{
    std::map<int, std::vector<std::int32_t>> byPatch;
    int lastPatch = 0;
    std::vector<std::int32_t> *same =
        nullptr; // of the last patch, which is mostly the next one's, too
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        const Corners corners{uvs[triangles[i][0]], uvs[triangles[i][1]], uvs[triangles[i][2]]};
        const Bounds bounds = boundsOf(corners);
        const auto &[low, high] = bounds;
        if (same != nullptr && isWithin(bounds, lastPatch)) {
            same->push_back(std::int32_t(i));
            continue;
        }
        const int lastColumn = roundedUp(high[0] - Border) - 1;
        const int lastRow = roundedUp(high[1] - Border) - 1;
        for (int row = roundedDown(low[1] + Border); row <= lastRow; ++row) {
            for (int column = roundedDown(low[0] + Border); column <= lastColumn; ++column) {
                const int patch = OssEvPatch::number(column, row);
                if (patch == 0 || !touches(corners, column, row))
                    continue;
                if (patch != lastPatch)
                    same = &byPatch[patch];
                lastPatch = patch;
                same->push_back(std::int32_t(i));
            }
        }
    }
    m_patches.clear();
    m_patchTriangles.clear();
    for (auto &[patch, list] : byPatch) {
        m_patches.push_back(patch);
        m_patchTriangles.push_back(std::move(list));
    }
}

const std::vector<std::int32_t> &OssEvMesh::trianglesOf(int patch) const
{
    static const std::vector<std::int32_t> none;
    const auto found = std::lower_bound(m_patches.begin(), m_patches.end(), patch);
    if (found == m_patches.end() || *found != patch)
        return none;
    return m_patchTriangles[std::size_t(found - m_patches.begin())];
}
