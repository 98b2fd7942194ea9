#include "OssEvaluation/Paint/OssEvPaintView.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Paint/OssEvPaintSurface.h"

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>
#include <glm/vec4.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Of the depth: what lies so little behind what is seen is taken for the same surface.
constexpr float Slack = 5e-4F;
/// Parts of a triangle behind it are cut off; in depth, by that of the mesh.
constexpr float NearestDepth = 1e-6F;

glm::vec3 seen(const glm::vec4 &clip, int width, int height)
{
    return {(clip.x / clip.w * 0.5F + 0.5F) * float(width),
            (clip.y / clip.w * 0.5F + 0.5F) * float(height), 1.0F / clip.w};
}

} // namespace

OssEvPaintView::OssEvPaintView(const OssEvPaintSurface *surface, const glm::mat4 &toClip, int width,
                               int height)
    : m_toClip(toClip)
    , m_width(std::max(1, width))
    , m_height(std::max(1, height))
{
    const glm::mat4 toWorld = glm::inverse(toClip);
    // All rays meet where x, y and w of clip space are 0.
    const glm::vec4 eye = toWorld * glm::vec4(0.0F, 0.0F, 1.0F, 0.0F);
    m_eye = glm::vec3(eye) / eye.w;
    const auto rayTo = [&](float x, float y) {
        const glm::vec4 clip = toWorld * glm::vec4(x, y, 1.0F, 1.0F);
        const glm::vec3 place = glm::vec3(clip) / clip.w;
        return (place - m_eye) / (toClip * glm::vec4(place, 1.0F)).w;
    };
    m_corner = rayTo(-1.0F, -1.0F);
    m_alongX = (rayTo(1.0F, -1.0F) - m_corner) / float(m_width);
    m_alongY = (rayTo(-1.0F, 1.0F) - m_corner) / float(m_height);
    m_right = glm::normalize(m_alongX);
    m_pixel = std::sqrt(glm::length(m_alongX) * glm::length(m_alongY));
    if (surface != nullptr)
        draw(*surface);
}

glm::vec3 OssEvPaintView::ray(double x, double y) const
{
    return m_corner + m_alongX * float(x) + m_alongY * float(y);
}

std::optional<glm::vec3> OssEvPaintView::project(const glm::vec3 &place) const
{
    const glm::vec4 clip = m_toClip * glm::vec4(place, 1.0F);
    if (clip.w <= 0.0F)
        return std::nullopt;
    const glm::vec3 pixel = seen(clip, m_width, m_height);
    return glm::vec3(pixel.x, pixel.y, clip.w);
}

// --- depth

void OssEvPaintView::draw(const OssEvPaintSurface &surface)
{
    const OssEvMesh &mesh = *surface.mesh();
    m_nearness.assign(std::size_t(m_width) * std::size_t(m_height), 0.0F);
    m_triangles.assign(m_nearness.size(), -1);
    std::vector<glm::vec4> corners;
    corners.reserve(mesh.positions.size());
    float farthest = 0.0F;
    for (std::uint32_t i = 0; i < mesh.positions.size(); ++i) {
        corners.push_back(m_toClip * glm::vec4(surface.position(i), 1.0F));
        farthest = std::max(farthest, corners.back().w);
    }
    const float near = NearestDepth * farthest;
    for (std::size_t number = 0; number < mesh.triangles.size(); ++number) {
        const auto &triangle = mesh.triangles[number];
        // What is left in front of the eye: up to four corners.
        std::array<glm::vec3, 4> front{};
        std::size_t count = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const glm::vec4 &a = corners[triangle[i]];
            const glm::vec4 &b = corners[triangle[(i + 1) % 3]];
            if (a.w > near)
                front[count++] = seen(a, m_width, m_height);
            if ((a.w > near) != (b.w > near))
                front[count++] = seen(a + (b - a) * ((near - a.w) / (b.w - a.w)), m_width,
                                      m_height);
        }
        for (std::size_t i = 2; i < count; ++i)
            drawTriangle(front[0], front[i - 1], front[i], std::int32_t(number));
    }
}

// Row by row, the pixels whose middles lie between the edges.
void OssEvPaintView::drawTriangle(const glm::vec3 &a, const glm::vec3 &b, const glm::vec3 &c,
                                  std::int32_t number)
{
    const float area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (area == 0.0F || !std::isfinite(area))
        return;
    const auto first = [](float low) {
        return int(std::ceil(std::max(low - 0.5F, 0.0F)));
    };
    const auto last = [](float high, int size) {
        return int(std::floor(std::min(high - 0.5F, float(size) - 1.0F)));
    };
    const int left = first(std::min({a.x, b.x, c.x}));
    const int right = last(std::max({a.x, b.x, c.x}), m_width);
    const int bottom = first(std::min({a.y, b.y, c.y}));
    const int top = last(std::max({a.y, b.y, c.y}), m_height);
    for (int y = bottom; y <= top; ++y) {
        float *row = m_nearness.data() + std::ptrdiff_t(y) * m_width;
        std::int32_t *triangles = m_triangles.data() + std::ptrdiff_t(y) * m_width;
        const float dy = float(y) + 0.5F - a.y;
        for (int x = left; x <= right; ++x) {
            const float dx = float(x) + 0.5F - a.x;
            const float second = (dx * (c.y - a.y) - (c.x - a.x) * dy) / area;
            const float third = ((b.x - a.x) * dy - dx * (b.y - a.y)) / area;
            if (second < 0.0F || third < 0.0F || second + third > 1.0F)
                continue;
            const float nearness = a.z + second * (b.z - a.z) + third * (c.z - a.z);
            if (nearness <= row[x])
                continue;
            row[x] = nearness;
            triangles[x] = number;
        }
    }
}

float OssEvPaintView::at(int x, int y) const
{
    return m_nearness[std::size_t(y) * std::size_t(m_width) + std::size_t(x)];
}

// Where the pixels around do not agree, a ray decides: there something ends before something else.
bool OssEvPaintView::isSeen(const OssEvPaintSurface &surface, const glm::vec3 &place) const
{
    const std::optional<glm::vec3> pixel = project(place);
    if (!pixel)
        return false;
    if (m_nearness.empty())
        return true;
    if (!isOnPicture(double(pixel->x), double(pixel->y)))
        return isMetFirst(surface, place);
    const int x = int(pixel->x);
    const int y = int(pixel->y);
    float farthest = at(x, y);
    float nearest = farthest;
    for (int row = std::max(0, y - 1); row <= std::min(m_height - 1, y + 1); ++row) {
        for (int column = std::max(0, x - 1); column <= std::min(m_width - 1, x + 1); ++column) {
            farthest = std::min(farthest, at(column, row));
            nearest = std::max(nearest, at(column, row));
        }
    }
    // Steep surfaces would hide themselves, were they measured by the nearest.
    if (1.0F < farthest * pixel->z * (1.0F - Slack))
        return false;
    if (1.0F >= nearest * pixel->z * (1.0F - Slack))
        return true;
    return isMetFirst(surface, place);
}

bool OssEvPaintView::isMetFirst(const OssEvPaintSurface &surface, const glm::vec3 &place) const
{
    const auto hit = surface.pick(m_eye, place - m_eye);
    const float distance = hit ? glm::length(hit->place - m_eye) : 0.0F;
    return !hit || distance >= glm::length(place - m_eye) * (1.0F - Slack);
}

bool OssEvPaintView::isOnPicture(double x, double y) const
{
    return x >= 0.0 && y >= 0.0 && x < m_width && y < m_height;
}

bool OssEvPaintView::isWithin(const glm::vec3 &place) const
{
    const std::optional<glm::vec3> pixel = project(place);
    return pixel && isOnPicture(double(pixel->x), double(pixel->y));
}

bool OssEvPaintView::reaches(double x, double y, double radius) const
{
    const double dx = x - std::clamp(x, 0.0, double(m_width));
    const double dy = y - std::clamp(y, 0.0, double(m_height));
    return dx * dx + dy * dy <= radius * radius;
}

std::shared_ptr<const OssEvPaintView> OssEvPaintView::mirrored(const OssEvPaintSurface &surface,
                                                               const glm::mat4 &mirror) const
{
    for (const auto &[known, view] : m_mirrored) {
        if (known == mirror)
            return view;
    }
    auto made = std::make_shared<OssEvPaintView>(m_nearness.empty() ? nullptr : &surface,
                                                 m_toClip * mirror, m_width, m_height);
    m_mirrored.emplace_back(mirror, made);
    return made;
}

std::vector<std::uint8_t> &OssEvPaintView::noteOf(
    const std::shared_ptr<const OssEvPaintSurface> &surface,
    const OssEvPaintBuffer::Place &tile) const
{
    std::vector<std::uint8_t> &note = m_notes[surface][tile];
    note.resize(OssEvPaintTile::Texels);
    return note;
}

std::optional<glm::vec2> OssEvPaintView::uvAt(const OssEvPaintSurface &surface, double x,
                                              double y) const
{
    if (m_triangles.empty() || !std::isfinite(x) || !std::isfinite(y))
        return std::nullopt;
    if (!isOnPicture(x, y)) {
        const auto hit = surface.pick(m_eye, ray(x, y));
        return hit ? std::optional(hit->uv) : std::nullopt;
    }
    const auto triangle = m_triangles[std::size_t(y) * std::size_t(m_width) + std::size_t(x)];
    return triangle < 0 ? std::nullopt : surface.uvAt(triangle, m_eye, ray(x, y));
}

std::optional<glm::vec3> OssEvPaintView::nearestSeen(double x, double y, double within) const
{
    const auto clamped = [](double value, int size) {
        return int(std::clamp(std::floor(value), 0.0, double(size - 1)));
    };
    double best = within * within;
    std::optional<glm::vec3> found;
    if (m_nearness.empty())
        return found;
    for (int row = clamped(y - within, m_height); row <= clamped(y + within, m_height); ++row) {
        for (int column = clamped(x - within, m_width); column <= clamped(x + within, m_width);
             ++column) {
            const double dx = column + 0.5 - x;
            const double dy = row + 0.5 - y;
            if (dx * dx + dy * dy >= best || at(column, row) <= 0.0F)
                continue;
            best = dx * dx + dy * dy;
            found = glm::vec3(float(column) + 0.5F, float(row) + 0.5F, 1.0F / at(column, row));
        }
    }
    return found;
}
