#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr int NotCovered = 127;
constexpr int LargestMargin = 64;

struct Point
{
    double x;
    double y;
};

/// A value of the vertices as it changes across a triangle's texture coordinates.
template <std::size_t N>
struct Slope
{
    std::array<double, N> origin{};
    std::array<double, N> alongU{};
    std::array<double, N> alongV{};

    Slope(const OssEvMesh &mesh, const std::vector<std::array<float, N>> &values, int triangle)
    {
        const auto &corners = mesh.triangles[std::size_t(triangle)];
        const OssEvMesh::Vector2 &a = mesh.uvs[corners[0]];
        const OssEvMesh::Vector2 &b = mesh.uvs[corners[1]];
        const OssEvMesh::Vector2 &c = mesh.uvs[corners[2]];
        const double u1 = double(b[0]) - a[0];
        const double v1 = double(b[1]) - a[1];
        const double u2 = double(c[0]) - a[0];
        const double v2 = double(c[1]) - a[1];
        const double area = u1 * v2 - u2 * v1;
        const double factor = area != 0.0 ? 1.0 / area : 0.0;
        for (std::size_t k = 0; k < N; ++k) {
            const double first = values[corners[0]][k];
            const double d1 = values[corners[1]][k] - first;
            const double d2 = values[corners[2]][k] - first;
            alongU[k] = (d1 * v2 - d2 * v1) * factor;
            alongV[k] = (d2 * u1 - d1 * u2) * factor;
            origin[k] = first - alongU[k] * a[0] - alongV[k] * a[1];
        }
    }

    double at(std::size_t k, double u, double v) const
    {
        return origin[k] + alongU[k] * u + alongV[k] * v;
    }
};

bool isCancelled(const OssEvCancel *cancel)
{
    return cancel != nullptr && cancel->isCancelled();
}

} // namespace

std::shared_ptr<const OssEvSurfaceMap> OssEvSurfaceMap::make(std::shared_ptr<const OssEvMesh> mesh,
                                                             const OssEvFrame &frame,
                                                             const OssEvCancel *cancel, int bleed)
{
    std::shared_ptr<OssEvSurfaceMap> map(
        new OssEvSurfaceMap(std::move(mesh), frame, frame.region(), margin(frame.width, bleed)));
    const bool complete = map->clear(cancel)
                          && map->rasterise(map->m_mesh->trianglesOf(frame.patch), cancel)
                          && map->dilate(cancel);
    return complete ? map : nullptr;
}

std::shared_ptr<const OssEvSurfaceMap> OssEvSurfaceMap::makePart(
    std::shared_ptr<const OssEvMesh> mesh, const OssEvFrame &frame, const OssEvRegion &part,
    const std::vector<std::int32_t> &triangles, int bleed)
{
    std::shared_ptr<OssEvSurfaceMap> map(
        new OssEvSurfaceMap(std::move(mesh), frame, part, margin(frame.width, bleed)));
    map->clear(nullptr);
    map->rasterise(triangles, nullptr);
    map->dilate(nullptr);
    return map;
}

OssEvSurfaceMap::OssEvSurfaceMap(std::shared_ptr<const OssEvMesh> mesh, const OssEvFrame &frame,
                                 const OssEvRegion &part, int margin)
    : m_mesh(std::move(mesh))
    , m_frame(frame)
    , m_part(part)
    , m_margin(margin)
    , m_faces(texels() * sizeof(std::int32_t))
    , m_offsets(texels() * sizeof(Offset))
    , m_bare(std::size_t(part.height), part.width)
{
}

int OssEvSurfaceMap::margin(int width, int bleed)
{
    return bleed <= 0 ? 0
                      : int(std::clamp((std::int64_t(width) * bleed + 2048) / 4096, std::int64_t(2),
                                       std::int64_t(LargestMargin)));
}

// Touching fresh memory takes its time: it is done in rows that can be given up.
bool OssEvSurfaceMap::clear(const OssEvCancel *cancel)
{
    for (int y = m_part.y; y < m_part.bottom() && !isCancelled(cancel); ++y) {
        std::fill_n(faces() + index(m_part.x, y), m_part.width, -1);
        std::fill_n(offsets() + index(m_part.x, y), m_part.width,
                    Offset{std::int8_t(NotCovered), 0});
    }
    return !isCancelled(cancel);
}

bool OssEvSurfaceMap::rasterise(const std::vector<std::int32_t> &triangles,
                                const OssEvCancel *cancel)
{
    for (const std::int32_t triangle : triangles) {
        if (isCancelled(cancel))
            return false;
        rasteriseTriangle(triangle, cancel);
    }
    return !isCancelled(cancel);
}

// Row by row, the texels whose centres lie between the triangle's edges. Cutting the rows at the
// patch's edges clips faces that reach into other patches. Where faces overlap the first one stays.
void OssEvSurfaceMap::rasteriseTriangle(int triangle, const OssEvCancel *cancel)
{
    constexpr double Slack = 1e-6;
    std::array<Point, 3> corners{};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto &uv = m_mesh->uvs[m_mesh->triangles[std::size_t(triangle)][i]];
        corners[i] = {(double(uv[0]) - OssEvPatch::column(m_frame.patch)) * m_frame.width - 0.5,
                      (1.0 - (double(uv[1]) - OssEvPatch::row(m_frame.patch))) * m_frame.height
                          - 0.5};
    }
    const auto [low, high] = std::minmax({corners[0].y, corners[1].y, corners[2].y});
    const int first = std::max(m_part.y, int(std::ceil(std::max(low - Slack, -1.0))));
    const int last = std::min(m_part.bottom() - 1,
                              int(std::floor(std::min(high + Slack, m_frame.height + 1.0))));
    for (int y = first; y <= last && !isCancelled(cancel); ++y) {
        double left = 1e30;
        double right = -1e30;
        for (std::size_t i = 0; i < 3; ++i) {
            const Point &a = corners[i];
            const Point &b = corners[(i + 1) % 3];
            if (std::min(a.y, b.y) > y + Slack || std::max(a.y, b.y) < y - Slack)
                continue;
            if (std::abs(b.y - a.y) < Slack) {
                left = std::min({left, a.x, b.x});
                right = std::max({right, a.x, b.x});
                continue;
            }
            const double t = std::clamp((y - a.y) / (b.y - a.y), 0.0, 1.0);
            const double x = a.x + (b.x - a.x) * t;
            left = std::min(left, x);
            right = std::max(right, x);
        }
        const int begin = std::max(m_part.x, int(std::ceil(std::max(left - Slack, -1.0))));
        const int end = std::min(m_part.right() - 1,
                                 int(std::floor(std::min(right + Slack, m_frame.width + 1.0))));
        int &bare = m_bare[std::size_t(y - m_part.y)];
        for (int x = begin; x <= end; ++x) {
            if (faces()[index(x, y)] < 0) {
                faces()[index(x, y)] = triangle;
                offsets()[index(x, y)] = {0, 0};
                --bare;
            }
        }
    }
}

// Exact distances in two passes: first along columns, then the best column for each texel.
bool OssEvSurfaceMap::dilate(const OssEvCancel *cancel)
{
    const OssEvBuffer buffer(texels() * sizeof(std::int16_t));
    auto *vertical = buffer.as<std::int16_t>();
    for (int y = m_part.y; y < m_part.bottom() && !isCancelled(cancel); ++y) {
        std::fill_n(vertical + index(m_part.x, y), m_part.width, std::int16_t(NotCovered));
        sweepRow(y, y - 1, vertical);
    }
    for (int y = m_part.bottom() - 1; y >= m_part.y && !isCancelled(cancel); --y)
        sweepRow(y, y + 1, vertical);
    for (int y = m_part.y; y < m_part.bottom(); ++y) {
        if (isCancelled(cancel))
            return false;
        for (int x = m_part.x; x < m_part.right() && m_bare[std::size_t(y - m_part.y)] > 0; ++x) {
            if (faces()[index(x, y)] < 0)
                findNearest(x, y, vertical);
        }
    }
    return true;
}

// Takes over from the row beside it how far the nearest covered texel of the same column is.
void OssEvSurfaceMap::sweepRow(int y, int from, std::int16_t *vertical) const
{
    const int reach = m_margin;
    if (m_bare[std::size_t(y - m_part.y)] == 0) {
        std::fill_n(vertical + index(m_part.x, y), m_part.width, std::int16_t(0));
        return;
    }
    for (int x = m_part.x; x < m_part.right(); ++x) {
        std::int16_t &own = vertical[index(x, y)];
        if (faces()[index(x, y)] >= 0) {
            own = 0;
        } else if (from >= m_part.y && from < m_part.bottom()) {
            const int next = vertical[index(x, from)];
            const int candidate = next + (from - y);
            const bool nearer = own == NotCovered || std::abs(candidate) < std::abs(int(own));
            if (next != NotCovered && std::abs(candidate) <= reach && nearer)
                own = std::int16_t(candidate);
        }
    }
}

void OssEvSurfaceMap::findNearest(int x, int y, const std::int16_t *vertical)
{
    const int reach = m_margin;
    int best = reach * reach + 1;
    const int end = nearestColumn(x + reach);
    for (int column = nearestColumn(x - reach); column <= end; ++column) {
        const int down = vertical[index(column, y)];
        const int distance = (column - x) * (column - x) + down * down;
        if (down != NotCovered && distance < best) {
            best = distance;
            offsets()[index(x, y)] = {std::int8_t(column - x), std::int8_t(down)};
        }
    }
}

int OssEvSurfaceMap::face(int x, int y) const
{
    int coveredX = 0;
    int coveredY = 0;
    nearestCovered(x, y, &coveredX, &coveredY);
    return faces()[index(coveredX, coveredY)];
}

void OssEvSurfaceMap::nearestCovered(int x, int y, int *coveredX, int *coveredY) const
{
    const Offset offset = offsets()[index(x, y)];
    *coveredX = offset.x == NotCovered ? x : x + offset.x;
    *coveredY = offset.x == NotCovered ? y : y + offset.y;
}

bool OssEvSurfaceMap::isItself(const OssEvRegion &region) const
{
    for (int y = region.y; y < region.bottom(); ++y) {
        const Offset *row = offsets() + index(region.x, y);
        // Without a branch, so that many are looked at in one go.
        unsigned moved = 0;
        for (int x = 0; x < region.width; ++x)
            moved |= unsigned(row[x].x) | unsigned(row[x].y);
        if (moved != 0)
            return false;
    }
    return true;
}

template <std::size_t N>
void OssEvSurfaceMap::interpolate(int x, int y, int width,
                                  const std::vector<std::array<float, N>> &values,
                                  const std::array<float, N> &fallback,
                                  const std::array<float *, N> &to) const
{
    const int row = nearestRow(y);
    const double columnOffset = OssEvPatch::column(m_frame.patch);
    const double rowOffset = OssEvPatch::row(m_frame.patch);
    int current = -1;
    std::optional<Slope<N>> slope;
    for (int i = 0; i < width; ++i) {
        int coveredX = 0;
        int coveredY = 0;
        nearestCovered(nearestColumn(x + i), row, &coveredX, &coveredY);
        const int triangle = faces()[index(coveredX, coveredY)];
        if (triangle < 0) {
            for (std::size_t k = 0; k < N; ++k)
                to[k][i] = fallback[k];
            continue;
        }
        if (triangle != current) {
            slope.emplace(*m_mesh, values, triangle);
            current = triangle;
        }
        const double u = (coveredX + 0.5) / m_frame.width + columnOffset;
        const double v = 1.0 - (coveredY + 0.5) / m_frame.height + rowOffset;
        for (std::size_t k = 0; k < N; ++k)
            to[k][i] = float(slope->at(k, u, v));
    }
}

void OssEvSurfaceMap::positions(int x, int y, int width, const std::array<float *, 3> &to) const
{
    interpolate(x, y, width, m_mesh->positions, {}, to);
}

void OssEvSurfaceMap::colors(int x, int y, int width, const std::array<float *, 4> &to) const
{
    if (!m_mesh->colors.empty()) {
        interpolate(x, y, width, m_mesh->colors, {}, to);
        return;
    }
    const int row = nearestRow(y);
    for (int i = 0; i < width; ++i) {
        const bool isAnswered = face(nearestColumn(x + i), row) >= 0;
        for (float *plane : to)
            plane[i] = isAnswered ? 1.0F : 0.0F;
    }
}

void OssEvSurfaceMap::normals(int x, int y, int width, const std::array<float *, 3> &to) const
{
    interpolate(x, y, width, m_mesh->normals, {0.0F, 0.0F, 1.0F}, to);
    for (int i = 0; i < width; ++i) {
        const float length = std::sqrt(to[0][i] * to[0][i] + to[1][i] * to[1][i]
                                       + to[2][i] * to[2][i]);
        const float factor = length > 0.0F ? 1.0F / length : 0.0F;
        to[0][i] *= factor;
        to[1][i] *= factor;
        to[2][i] = length > 0.0F ? to[2][i] * factor : 1.0F;
    }
}

void OssEvSurfaceMap::derivatives(int x, int y, std::array<double, 3> *alongU,
                                  std::array<double, 3> *alongV) const
{
    *alongU = {};
    *alongV = {};
    const int triangle = face(nearestColumn(x), nearestRow(y));
    if (triangle < 0)
        return;
    const Slope<3> slope(*m_mesh, m_mesh->positions, triangle);
    *alongU = slope.alongU;
    *alongV = slope.alongV;
}

std::size_t OssEvSurfaceMap::bytes() const
{
    return m_faces.size() + m_offsets.size();
}
