#include "OssEvaluation/Paint/OssEvPaintSurface.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvRayTree.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <tuple>

namespace {

constexpr int Size = OssEvPaintTile::Size;
constexpr float Nowhere = 1e30F;

/// A corner of a piece of a triangle.
struct Corner
{
    glm::vec3 place;
    float u;
    float v;
};

/// A triangle that planes cut gains a corner by each of six at most.
struct Piece
{
    std::array<Corner, 9> corners{};
    std::size_t count = 0;

    void add(const Corner &corner) { corners[count++] = corner; }
};

Corner between(const Corner &a, const Corner &b, float t)
{
    return {a.place + (b.place - a.place) * t, a.u + (b.u - a.u) * t, a.v + (b.v - a.v) * t};
}

/// What of a piece lies on one side of a plane (I. Sutherland, G. Hodgman, "Reentrant Polygon Clipping",
/// 1974): where sign * place[axis] is at most sign * limit.
Piece cut(const Piece &piece, int axis, float limit, float sign)
{
    Piece kept;
    for (std::size_t i = 0; i < piece.count; ++i) {
        const Corner &a = piece.corners[i];
        const Corner &b = piece.corners[(i + 1) % piece.count];
        const float beyondA = sign * (a.place[axis] - limit);
        const float beyondB = sign * (b.place[axis] - limit);
        if (beyondA <= 0.0F)
            kept.add(a);
        if ((beyondA < 0.0F && beyondB > 0.0F) || (beyondA > 0.0F && beyondB < 0.0F))
            kept.add(between(a, b, beyondA / (beyondA - beyondB)));
    }
    return kept;
}

glm::mat4 matrixOf(const std::array<float, 12> &rows)
{
    glm::mat4 matrix(1.0F);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column)
            matrix[column][row] = rows[4 * std::size_t(row) + std::size_t(column)];
    }
    return matrix;
}

glm::vec3 vectorOf(const OssEvMesh::Vector3 &vector)
{
    return {vector[0], vector[1], vector[2]};
}

/// Twice that of a triangle, in patches.
float textureArea(const OssEvMesh &mesh, const std::array<std::uint32_t, 3> &corners)
{
    const auto &p = mesh.uvs[corners[0]];
    const auto &q = mesh.uvs[corners[1]];
    const auto &r = mesh.uvs[corners[2]];
    return std::abs((q[0] - p[0]) * (r[1] - p[1]) - (r[0] - p[0]) * (q[1] - p[1]));
}

} // namespace

OssEvPaintSurface::OssEvPaintSurface(std::shared_ptr<const OssEvMesh> mesh, int resolution)
    : m_mesh(std::move(mesh))
    , m_resolution(resolution)
    , m_margin(OssEvSurfaceMap::margin(resolution, BleedAt4k))
    , m_across((resolution + Size - 1) / Size)
    , m_world(matrixOf(m_mesh->world))
    , m_toObject(glm::inverse(m_world))
{
    m_positions.reserve(m_mesh->positions.size());
    for (const OssEvMesh::Vector3 &position : m_mesh->positions)
        m_positions.emplace_back(m_world * glm::vec4(vectorOf(position), 1.0F));
    for (const int patch : m_mesh->patches())
        fillBins(patch);
    m_texel = float(meanTexel(*m_mesh) / m_resolution);
    findIslands();
    m_mesh->rayTree();
}

OssEvPaintSurface::~OssEvPaintSurface() = default;

// --- the object

double OssEvPaintSurface::meanTexel(const OssEvMesh &mesh)
{
    const glm::mat4 world = matrixOf(mesh.world);
    double surface = 0.0;
    double texture = 0.0;
    for (const auto &corners : mesh.triangles) {
        std::array<glm::vec3, 3> places{};
        for (std::size_t i = 0; i < 3; ++i)
            places[i] = glm::vec3(world * glm::vec4(vectorOf(mesh.positions[corners[i]]), 1.0F));
        surface += double(glm::length(glm::cross(places[1] - places[0], places[2] - places[0])));
        texture += double(textureArea(mesh, corners));
    }
    return texture > 0.0 && surface > 0.0 ? std::sqrt(surface / texture) : 1.0;
}

float OssEvPaintSurface::texelOf(std::uint32_t triangle) const
{
    const auto &corners = m_mesh->triangles[triangle];
    const glm::vec3 a = m_positions[corners[0]];
    const float surface = glm::length(
        glm::cross(m_positions[corners[1]] - a, m_positions[corners[2]] - a));
    const float texture = textureArea(*m_mesh, corners);
    return texture > 0.0F && surface > 0.0F ? std::sqrt(surface / texture) / float(m_resolution)
                                            : m_texel;
}

glm::vec3 OssEvPaintSurface::normal(std::int32_t triangle) const
{
    const auto &corners = m_mesh->triangles[std::size_t(triangle)];
    const glm::vec3 a = m_positions[corners[0]];
    const glm::vec3 normal = glm::cross(m_positions[corners[1]] - a, m_positions[corners[2]] - a);
    const float length = glm::length(normal);
    return length > 0.0F ? normal / length : glm::vec3(0.0F, 0.0F, 1.0F);
}

std::optional<OssEvPaintSurface::Hit> OssEvPaintSurface::pick(const glm::vec3 &origin,
                                                              const glm::vec3 &direction) const
{
    const glm::vec3 from(m_toObject * glm::vec4(origin, 1.0F));
    const glm::vec3 along(m_toObject * glm::vec4(direction, 0.0F));
    const std::optional<OssEvRayTree::Hit> hit = m_mesh->rayTree().firstHit(
        {from.x, from.y, from.z}, {along.x, along.y, along.z}, Nowhere);
    if (!hit)
        return std::nullopt;
    const auto &corners = m_mesh->triangles[hit->triangle];
    glm::vec2 uv(0.0F);
    const std::array<float, 3> weights{1.0F - hit->second - hit->third, hit->second, hit->third};
    for (std::size_t i = 0; i < 3; ++i)
        uv += glm::vec2(m_mesh->uvs[corners[i]][0], m_mesh->uvs[corners[i]][1]) * weights[i];
    return Hit{origin + direction * hit->distance, normal(std::int32_t(hit->triangle)), uv,
               texelOf(hit->triangle), int(hit->triangle)};
}

std::optional<glm::vec2> OssEvPaintSurface::uvAt(int triangle, const glm::vec3 &origin,
                                                 const glm::vec3 &direction) const
{
    const auto &corners = m_mesh->triangles[std::size_t(triangle)];
    const glm::vec3 a = m_positions[corners[0]];
    const glm::vec3 second = m_positions[corners[1]] - a;
    const glm::vec3 third = m_positions[corners[2]] - a;
    const glm::vec3 across = glm::cross(direction, third);
    const float area = glm::dot(second, across);
    if (area == 0.0F)
        return std::nullopt;
    const glm::vec3 away = origin - a;
    const float p = glm::dot(away, across) / area;
    const float q = glm::dot(direction, glm::cross(away, second)) / area;
    const auto uv = [&](std::size_t i) {
        return glm::vec2(m_mesh->uvs[corners[i]][0], m_mesh->uvs[corners[i]][1]);
    };
    return uv(0) * (1.0F - p - q) + uv(1) * p + uv(2) * q;
}

int OssEvPaintSurface::triangleAt(const glm::vec2 &uv)
{
    const int column = int(std::floor(uv.x));
    const int row = int(std::floor(uv.y));
    const int patch = OssEvPatch::number(column, row);
    const auto texel = [this](float part) {
        return std::clamp(int(part * float(m_resolution)), 0, m_resolution - 1);
    };
    const int x = texel(uv.x - float(column));
    const int y = texel(float(row) + 1.0F - uv.y);
    if (m_bins.count(patch) == 0)
        return -1;
    const int index = y % Size * Size + x % Size;
    return tile({patch, x / Size, y / Size})->faces[std::size_t(index)];
}

// --- parts

// Triangles of a patch that share corners, or the places and texture coordinates of corners, belong
// together.
void OssEvPaintSurface::findIslands()
{
    std::vector<std::uint32_t> same(m_positions.size());
    std::iota(same.begin(), same.end(), 0U);
    const auto root = [&same](std::uint32_t vertex) {
        while (same[vertex] != vertex)
            vertex = same[vertex] = same[same[vertex]];
        return vertex;
    };
    const auto corner = [this](std::uint32_t vertex) {
        return std::tie(m_mesh->uvs[vertex], m_mesh->positions[vertex]);
    };
    std::vector<std::uint32_t> order = same;
    std::sort(order.begin(), order.end(),
              [&](std::uint32_t a, std::uint32_t b) { return corner(a) < corner(b); });
    for (std::size_t i = 1; i < order.size(); ++i) {
        if (corner(order[i - 1]) == corner(order[i]))
            same[root(order[i])] = root(order[i - 1]);
    }
    for (const auto &corners : m_mesh->triangles) {
        same[root(corners[1])] = root(corners[0]);
        same[root(corners[2])] = root(corners[0]);
    }
    auto islands = std::make_shared<std::vector<std::int32_t>>();
    islands->reserve(m_mesh->triangles.size());
    std::map<std::tuple<std::uint32_t, int, int>, std::int32_t> numbers;
    for (const auto &corners : m_mesh->triangles) {
        glm::vec2 middle(0.0F);
        for (const std::uint32_t vertex : corners)
            middle += glm::vec2(m_mesh->uvs[vertex][0], m_mesh->uvs[vertex][1]) / 3.0F;
        const std::tuple key(root(corners[0]), int(std::floor(middle.x)),
                             int(std::floor(middle.y)));
        islands->push_back(numbers.emplace(key, std::int32_t(numbers.size())).first->second);
    }
    m_islands = std::move(islands);
}

OssEvPaintRegion OssEvPaintSurface::region(OssEvBrush::Within within, int triangle) const
{
    OssEvPaintRegion region;
    switch (within) {
    case OssEvBrush::Within::Island:
        region.ofTriangle = m_islands;
        break;
    case OssEvBrush::Within::Face:
        region.ofTriangle = {m_mesh, &m_mesh->faces};
        break;
    case OssEvBrush::Within::Material:
        region.ofTriangle = {m_mesh, &m_mesh->materials};
        break;
    case OssEvBrush::Within::Everywhere:
    case OssEvBrush::Within::Painted:
    case OssEvBrush::Within::Bare:
        return region;
    }
    if (triangle >= 0)
        region.wanted = (*region.ofTriangle)[std::size_t(triangle)];
    return region;
}

bool OssEvPaintSurface::mayTouch(const OssEvPaintRegion &region,
                                 const OssEvPaintBuffer::Place &place) const
{
    const auto bins = m_bins.find(place.patch);
    if (bins == m_bins.end())
        return false;
    const auto tile = std::size_t(place.y) * std::size_t(m_across) + std::size_t(place.x);
    const auto begin = bins->second.triangles.begin();
    return std::any_of(
        begin + bins->second.first[tile], begin + bins->second.first[tile + 1],
        [&](std::int32_t triangle) { return !region.ofTriangle || region.has(triangle); });
}

// --- tiles

OssEvRegion OssEvPaintSurface::tilesOf(const Box &texels, int margin) const
{
    const auto tile = [this](float texel, int by) {
        const float within = std::clamp(texel + float(by), -float(Size), float(m_resolution));
        return std::clamp(int(std::floor(within / Size)), -1, m_across);
    };
    const int left = std::max(0, tile(texels[0], -margin));
    const int top = std::max(0, tile(texels[1], -margin));
    const int right = std::min(m_across - 1, tile(texels[2], margin));
    const int bottom = std::min(m_across - 1, tile(texels[3], margin));
    return {left, top, right - left + 1, bottom - top + 1};
}

// Counted first, so that all lie in one piece of memory.
void OssEvPaintSurface::fillBins(int patch)
{
    const auto texels = [&](std::int32_t triangle) {
        Box box{Nowhere, Nowhere, -Nowhere, -Nowhere};
        for (const std::uint32_t corner : m_mesh->triangles[std::size_t(triangle)]) {
            const auto &uv = m_mesh->uvs[corner];
            const float x = (uv[0] - float(OssEvPatch::column(patch))) * float(m_resolution);
            const float y = (float(OssEvPatch::row(patch)) + 1.0F - uv[1]) * float(m_resolution);
            box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x),
                   std::max(box[3], y)};
        }
        return box;
    };
    const auto forEach = [&](const auto &act) {
        for (const std::int32_t triangle : m_mesh->trianglesOf(patch)) {
            const OssEvRegion tiles = tilesOf(texels(triangle), m_margin + 1);
            for (int y = tiles.y; y < tiles.bottom(); ++y) {
                for (int x = tiles.x; x < tiles.right(); ++x)
                    act(std::size_t(y) * std::size_t(m_across) + std::size_t(x), triangle);
            }
        }
    };
    Bins &bins = m_bins[patch];
    bins.first.assign(std::size_t(m_across) * std::size_t(m_across) + 1, 0);
    forEach([&](std::size_t tile, std::int32_t) { ++bins.first[tile + 1]; });
    for (std::size_t i = 1; i < bins.first.size(); ++i)
        bins.first[i] += bins.first[i - 1];
    bins.triangles.resize(bins.first.back());
    std::vector<std::uint32_t> next = bins.first;
    forEach(
        [&](std::size_t tile, std::int32_t triangle) { bins.triangles[next[tile]++] = triangle; });
}

std::shared_ptr<const OssEvPaintSurface::Tile> OssEvPaintSurface::tile(
    const OssEvPaintBuffer::Place &place)
{
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_tiles.find(place);
        if (found != m_tiles.end()) {
            found->second.used = ++m_clock;
            return found->second.tile;
        }
    }
    std::shared_ptr<const Tile> made = makeTile(place);
    const std::lock_guard lock(m_mutex);
    if (m_tiles.size() >= MostTiles)
        m_tiles.erase(
            std::min_element(m_tiles.begin(), m_tiles.end(), [](const auto &a, const auto &b) {
                return a.second.used < b.second.used;
            }));
    m_tiles[place] = {made, ++m_clock};
    return made;
}

std::shared_ptr<const OssEvPaintSurface::Tile> OssEvPaintSurface::makeTile(
    const OssEvPaintBuffer::Place &place) const
{
    auto tile = std::make_shared<Tile>();
    for (std::vector<float> *plane : {&tile->x, &tile->y, &tile->z})
        plane->assign(OssEvPaintTile::Texels, Nowhere);
    tile->faces.assign(OssEvPaintTile::Texels, -1);
    const auto bins = m_bins.find(place.patch);
    if (bins == m_bins.end())
        return tile;
    const std::size_t index = std::size_t(place.y) * std::size_t(m_across) + std::size_t(place.x);
    const auto begin = bins->second.triangles.begin();
    const std::vector<std::int32_t> triangles(begin + bins->second.first[index],
                                              begin + bins->second.first[index + 1]);
    const OssEvFrame frame{m_resolution, m_resolution, place.patch, 1.0};
    const OssEvRegion texels = OssEvRegion{place.x * Size, place.y * Size, Size, Size}.intersected(
        frame.region());
    const auto map = OssEvSurfaceMap::makePart(
        m_mesh, frame, texels.expanded(m_margin).intersected(frame.region()), triangles, BleedAt4k);
    for (int row = 0; row < texels.height; ++row) {
        const auto line = std::size_t(row) * Size;
        float *x = tile->x.data() + line;
        float *y = tile->y.data() + line;
        float *z = tile->z.data() + line;
        map->positions(texels.x, texels.y + row, texels.width, {x, y, z});
        for (int i = 0; i < texels.width; ++i) {
            const int face = map->face(texels.x + i, texels.y + row);
            tile->faces[line + std::size_t(i)] = face;
            const glm::vec3 lies = face < 0
                                       ? glm::vec3(Nowhere)
                                       : glm::vec3(m_world * glm::vec4(x[i], y[i], z[i], 1.0F));
            x[i] = lies.x;
            y[i] = lies.y;
            z[i] = lies.z;
        }
    }
    return tile;
}

// --- what lies in a ball

OssEvPaintSurface::Parts OssEvPaintSurface::partsIn(const glm::vec3 &centre, float radius) const
{
    // The box around the ball as the object's space has it.
    const glm::vec3 middle(m_toObject * glm::vec4(centre, 1.0F));
    glm::vec3 half;
    for (int k = 0; k < 3; ++k)
        half[k] = radius
                  * glm::length(glm::vec3(m_toObject[0][k], m_toObject[1][k], m_toObject[2][k]));
    const glm::vec3 low = middle - half;
    const glm::vec3 high = middle + half;
    std::vector<std::uint32_t> triangles;
    m_mesh->rayTree().trianglesIn({low.x, low.y, low.z}, {high.x, high.y, high.z}, &triangles);
    Parts parts;
    for (const std::uint32_t triangle : triangles)
        addParts(triangle, centre - radius, centre + radius, &parts);
    return parts;
}

void OssEvPaintSurface::addParts(std::uint32_t triangle, const glm::vec3 &low,
                                 const glm::vec3 &high, Parts *parts) const
{
    Piece piece;
    for (const std::uint32_t corner : m_mesh->triangles[triangle])
        piece.add({m_positions[corner], m_mesh->uvs[corner][0], m_mesh->uvs[corner][1]});
    for (int axis = 0; axis < 3; ++axis) {
        piece = cut(piece, axis, high[axis], 1.0F);
        piece = cut(piece, axis, low[axis], -1.0F);
    }
    if (piece.count == 0)
        return;
    Box uv{Nowhere, Nowhere, -Nowhere, -Nowhere};
    for (std::size_t i = 0; i < piece.count; ++i) {
        const Corner &corner = piece.corners[i];
        uv = {std::min(uv[0], corner.u), std::min(uv[1], corner.v), std::max(uv[2], corner.u),
              std::max(uv[3], corner.v)};
    }
    for (int row = std::max(0, int(uv[1])); row <= int(uv[3]); ++row) {
        for (int column = std::max(0, int(uv[0])); column <= int(uv[2]); ++column)
            addPart(column, row, uv, parts);
    }
}

// Of the patch at a place, what lies in a box of texture coordinates.
void OssEvPaintSurface::addPart(int column, int row, const Box &uv, Parts *parts) const
{
    const int patch = OssEvPatch::number(column, row);
    if (m_bins.count(patch) == 0)
        return;
    const auto size = float(m_resolution);
    const int margin = m_margin + 1;
    const Box box{(uv[0] - float(column)) * size, (float(row) + 1.0F - uv[3]) * size,
                  (uv[2] - float(column)) * size, (float(row) + 1.0F - uv[1]) * size};
    const int left = int(std::floor(std::max(box[0], 0.0F))) - margin;
    const int top = int(std::floor(std::max(box[1], 0.0F))) - margin;
    const OssEvRegion texels = OssEvRegion{left, top,
                                           int(std::ceil(std::min(box[2], size))) + margin - left,
                                           int(std::ceil(std::min(box[3], size))) + margin - top}
                                   .intersected({0, 0, m_resolution, m_resolution});
    const OssEvRegion tiles = tilesOf(box, margin);
    for (int y = tiles.y; y < tiles.bottom(); ++y) {
        for (int x = tiles.x; x < tiles.right(); ++x) {
            OssEvRegion part = texels.intersected({x * Size, y * Size, Size, Size});
            if (part.isEmpty())
                continue;
            part.x -= x * Size;
            part.y -= y * Size;
            OssEvRegion &known = (*parts)[{patch, x, y}];
            known = known.united(part);
        }
    }
}
