#include "OssEvaluation/Geometry/OssEvRayTree.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using Vector3 = OssEvRayTree::Vector3;

constexpr std::uint32_t LeafSize = 4;

Vector3 minus(const Vector3 &a, const Vector3 &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vector3 cross(const Vector3 &a, const Vector3 &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

float dot(const Vector3 &a, const Vector3 &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

} // namespace

void OssEvRayTree::Box::add(const Vector3 &point)
{
    for (std::size_t k = 0; k < 3; ++k) {
        low[k] = std::min(low[k], point[k]);
        high[k] = std::max(high[k], point[k]);
    }
}

OssEvRayTree::OssEvRayTree(const OssEvMesh &mesh)
{
    std::vector<Vector3> centres;
    centres.reserve(mesh.triangles.size());
    for (const auto &triangle : mesh.triangles) {
        Vector3 centre{};
        for (const std::uint32_t vertex : triangle) {
            for (std::size_t k = 0; k < 3; ++k)
                centre[k] += mesh.positions[vertex][k] / 3.0F;
        }
        centres.push_back(centre);
    }
    std::vector<std::uint32_t> order(mesh.triangles.size());
    std::iota(order.begin(), order.end(), 0U);
    build(&order, centres, mesh);
    m_triangles.reserve(order.size());
    for (const std::uint32_t index : order) {
        const auto &triangle = mesh.triangles[index];
        const Vector3 &corner = mesh.positions[triangle[0]];
        m_triangles.push_back({corner, minus(mesh.positions[triangle[1]], corner),
                               minus(mesh.positions[triangle[2]], corner)});
    }
    m_order = std::move(order);
}

// Without recursion, in the order in which a ray walks.
void OssEvRayTree::build(std::vector<std::uint32_t> *order, const std::vector<Vector3> &centres,
                         const OssEvMesh &mesh)
{
    struct Job
    {
        std::uint32_t first;
        std::uint32_t last;
        /// Inner node whose second child this is, if it is one.
        std::uint32_t parent;
        bool second;
    };

    std::vector<Job> jobs{{0, std::uint32_t(order->size()), 0, false}};
    while (!jobs.empty()) {
        const Job job = jobs.back();
        jobs.pop_back();
        const auto index = std::uint32_t(m_nodes.size());
        if (job.second)
            m_nodes[job.parent].next = index;
        Node node;
        Box middles;
        for (std::uint32_t i = job.first; i < job.last; ++i) {
            const std::uint32_t triangle = (*order)[i];
            for (const std::uint32_t vertex : mesh.triangles[triangle])
                node.box.add(mesh.positions[vertex]);
            middles.add(centres[triangle]);
        }
        if (job.last - job.first <= LeafSize) {
            node.next = job.first;
            node.count = job.last - job.first;
            m_nodes.push_back(node);
            continue;
        }
        m_nodes.push_back(node);
        const Vector3 size = minus(middles.high, middles.low);
        const auto axis = std::size_t(std::max_element(size.begin(), size.end()) - size.begin());
        const std::uint32_t half = job.first + (job.last - job.first) / 2;
        std::nth_element(order->begin() + job.first, order->begin() + half,
                         order->begin() + job.last,
                         [&centres, axis](std::uint32_t a, std::uint32_t b) {
                             return centres[a][axis] < centres[b][axis];
                         });
        jobs.push_back({half, job.last, index, true});
        jobs.push_back({job.first, half, index, false});
    }
}

// The test of T. Moeller and B. Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection", 1997.
bool OssEvRayTree::Triangle::isHitBy(const Vector3 &origin, const Vector3 &direction,
                                     Hit *hit) const
{
    const Vector3 p = cross(direction, second);
    const float determinant = dot(first, p);
    if (std::abs(determinant) < 1e-12F)
        return false;
    const float factor = 1.0F / determinant;
    const Vector3 offset = minus(origin, corner);
    hit->second = dot(offset, p) * factor;
    const Vector3 q = cross(offset, first);
    hit->third = dot(direction, q) * factor;
    hit->distance = dot(second, q) * factor;
    return hit->second >= 0.0F && hit->third >= 0.0F && hit->second + hit->third <= 1.0F
           && hit->distance > 0.0F;
}

bool OssEvRayTree::isMissed(const Box &box, const Vector3 &origin, const Vector3 &inverse,
                            float distance)
{
    float near = 0.0F;
    float far = distance;
    for (std::size_t k = 0; k < 3; ++k) {
        const float a = (box.low[k] - origin[k]) * inverse[k];
        const float b = (box.high[k] - origin[k]) * inverse[k];
        near = std::max(near, std::min(a, b));
        far = std::min(far, std::max(a, b));
    }
    return near > far;
}

template <class Enters, class Visit>
void OssEvRayTree::walk(const Enters &enters, const Visit &visit) const
{
    if (m_triangles.empty())
        return;
    // Halves are at most one apart in size: the tree is never deeper than this.
    std::array<std::uint32_t, 64> open{};
    std::size_t count = 1;
    while (count > 0) {
        const std::uint32_t index = open[--count];
        const Node &node = m_nodes[index];
        if (!enters(node.box))
            continue;
        if (node.count == 0) {
            open[count++] = node.next;
            open[count++] = index + 1;
        } else if (!visit(node)) {
            return;
        }
    }
}

bool OssEvRayTree::isHit(const Vector3 &origin, const Vector3 &direction, float distance) const
{
    const Vector3 inverse{1.0F / direction[0], 1.0F / direction[1], 1.0F / direction[2]};
    bool found = false;
    walk([&](const Box &box) { return !isMissed(box, origin, inverse, distance); },
         [&](const Node &node) {
             Hit hit;
             for (std::uint32_t i = 0; i < node.count && !found; ++i)
                 found = m_triangles[node.next + i].isHitBy(origin, direction, &hit)
                         && hit.distance < distance;
             return !found;
         });
    return found;
}

std::optional<OssEvRayTree::Hit> OssEvRayTree::firstHit(const Vector3 &origin,
                                                        const Vector3 &direction,
                                                        float distance) const
{
    const Vector3 inverse{1.0F / direction[0], 1.0F / direction[1], 1.0F / direction[2]};
    std::optional<Hit> first;
    walk([&](const Box &box) { return !isMissed(box, origin, inverse, distance); },
         [&](const Node &node) {
             Hit hit;
             for (std::uint32_t i = node.next; i < node.next + node.count; ++i) {
                 if (!m_triangles[i].isHitBy(origin, direction, &hit) || hit.distance >= distance)
                     continue;
                 distance = hit.distance; // nothing behind it is looked at any more
                 hit.triangle = m_order[i];
                 first = hit;
             }
             return true;
         });
    return first;
}

// The square of the distance from the nearest point of the triangle (C. Ericson, "Real-Time Collision
// Detection", 2005, 5.1.5): weights of the corners within their ranges, edge by edge.
float OssEvRayTree::Triangle::squareFrom(const Vector3 &place) const
{
    const Vector3 to = minus(place, corner);
    const float d11 = dot(first, first);
    const float d12 = dot(first, second);
    const float d22 = dot(second, second);
    const float d1 = dot(to, first);
    const float d2 = dot(to, second);
    const auto squareAt = [&](float s, float t) {
        float sum = 0.0F;
        for (std::size_t k = 0; k < 3; ++k) {
            const float away = to[k] - s * first[k] - t * second[k];
            sum += away * away;
        }
        return sum;
    };
    const auto part = [](float upper, float lower) {
        return lower > 0.0F ? std::clamp(upper / lower, 0.0F, 1.0F) : 0.0F;
    };
    const float determinant = d11 * d22 - d12 * d12;
    if (determinant > 0.0F) {
        const float s = (d1 * d22 - d2 * d12) / determinant;
        const float t = (d2 * d11 - d1 * d12) / determinant;
        if (s >= 0.0F && t >= 0.0F && s + t <= 1.0F)
            return squareAt(s, t);
    }
    const float along = part(d11 - d12 - d1 + d2, d11 - 2.0F * d12 + d22);
    return std::min({squareAt(part(d1, d11), 0.0F), squareAt(0.0F, part(d2, d22)),
                     squareAt(1.0F - along, along)});
}

float OssEvRayTree::nearest(const Vector3 &place, float distance,
                            const std::function<bool(std::uint32_t triangle)> &counts) const
{
    float best = distance * distance;
    const auto isNearer = [&](const Box &box) {
        float square = 0.0F;
        for (std::size_t k = 0; k < 3; ++k) {
            const float away = std::max({box.low[k] - place[k], place[k] - box.high[k], 0.0F});
            square += away * away;
        }
        return square < best;
    };
    walk(isNearer, [&](const Node &node) {
        for (std::uint32_t i = node.next; i < node.next + node.count; ++i) {
            if (counts(m_order[i]))
                best = std::min(best, m_triangles[i].squareFrom(place));
        }
        return true;
    });
    return std::sqrt(best);
}

void OssEvRayTree::trianglesIn(const Vector3 &low, const Vector3 &high,
                               std::vector<std::uint32_t> *triangles) const
{
    const auto touches = [&](const Box &box) {
        bool touching = true;
        for (std::size_t k = 0; k < 3; ++k)
            touching = touching && box.low[k] <= high[k] && box.high[k] >= low[k];
        return touching;
    };
    walk(touches, [&](const Node &node) {
        triangles->insert(triangles->end(), m_order.begin() + node.next,
                          m_order.begin() + node.next + node.count);
        return true;
    });
}
