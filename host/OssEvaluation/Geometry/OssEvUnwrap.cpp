#include "OssEvaluation/Geometry/OssEvUnwrap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

using Vector = std::array<double, 3>;
using Vector2 = OssEvMesh::Vector2;

/// Faces whose normals differ by no more from the chart's first belong to it: 50 degrees.
constexpr double LeastAlike = 0.642;
constexpr double Gap = 0.004;         // between charts: 16 texels of 4096
constexpr std::size_t SurelyFlat = 5; // so few faces do not lie on each other

Vector cross(const Vector &a, const Vector &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Vector &a, const Vector &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector normalised(const Vector &vector)
{
    const double length = std::sqrt(dot(vector, vector));
    return length > 0.0 ? Vector{vector[0] / length, vector[1] / length, vector[2] / length}
                        : Vector{0.0, 0.0, 1.0};
}

struct Chart
{
    std::vector<std::uint32_t> triangles;
    Vector right{};
    Vector up{};
    std::array<double, 2> low{};
    std::array<double, 2> size{};
    std::array<double, 2> place{};
};

class Unwrapping
{
public:
    explicit Unwrapping(OssEvMesh *mesh)
        : m_mesh(*mesh)
    {
    }

    void run()
    {
        findPlaces();
        findNeighbours();
        findCharts();
        splitOverlapping();
        pack();
        apply();
    }

private:
    static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

    Vector position(std::uint32_t vertex) const
    {
        const OssEvMesh::Vector3 &from = m_mesh.positions[vertex];
        return {from[0], from[1], from[2]};
    }

    /// One number for all vertices of a place.
    void findPlaces()
    {
        std::vector<std::uint32_t> order(m_mesh.positions.size());
        std::iota(order.begin(), order.end(), 0U);
        const auto &places = m_mesh.positions;
        std::sort(order.begin(), order.end(), [&places](std::uint32_t a, std::uint32_t b) {
            return places[a] != places[b] ? places[a] < places[b] : a < b;
        });
        m_placeOf.resize(order.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            const bool isSame = i > 0 && places[order[i]] == places[order[i - 1]];
            m_placeOf[order[i]] = isSame ? m_placeOf[order[i - 1]] : order[i];
        }
    }

    void findNeighbours()
    {
        struct Edge
        {
            std::uint32_t low;
            std::uint32_t high;
            std::uint32_t side; ///< three for each triangle
        };

        std::vector<Edge> edges;
        edges.reserve(m_mesh.triangles.size() * 3);
        for (std::uint32_t i = 0; i < m_mesh.triangles.size(); ++i) {
            const auto &corners = m_mesh.triangles[i];
            const Vector a = position(corners[0]);
            Vector first = position(corners[1]);
            Vector second = position(corners[2]);
            for (std::size_t k = 0; k < 3; ++k) {
                first[k] -= a[k];
                second[k] -= a[k];
                const auto [low, high] = std::minmax(m_placeOf[corners[k]],
                                                     m_placeOf[corners[(k + 1) % 3]]);
                edges.push_back({low, high, 3 * i + std::uint32_t(k)});
            }
            m_normals.push_back(normalised(cross(first, second)));
        }
        std::sort(edges.begin(), edges.end(), [](const Edge &a, const Edge &b) {
            return std::tie(a.low, a.high, a.side) < std::tie(b.low, b.high, b.side);
        });
        m_across.assign(edges.size(), None);
        for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
            const Edge &a = edges[i];
            const Edge &b = edges[i + 1];
            if (a.low != b.low || a.high != b.high)
                continue;
            m_across[a.side] = b.side / 3;
            m_across[b.side] = a.side / 3;
            ++i; // further faces at this edge begin other charts
        }
    }

    void findCharts()
    {
        std::vector<bool> isTaken(m_mesh.triangles.size());
        std::vector<std::uint32_t> next;
        for (std::uint32_t seed = 0; seed < isTaken.size(); ++seed) {
            if (isTaken[seed])
                continue;
            Chart chart;
            isTaken[seed] = true;
            next.assign(1, seed);
            while (!next.empty()) {
                const std::uint32_t triangle = next.back();
                next.pop_back();
                chart.triangles.push_back(triangle);
                for (std::uint32_t side = 3 * triangle; side < 3 * triangle + 3; ++side) {
                    const std::uint32_t other = m_across[side];
                    if (other == None || isTaken[other]
                        || dot(m_normals[seed], m_normals[other]) < LeastAlike)
                        continue;
                    isTaken[other] = true;
                    next.push_back(other);
                }
            }
            flatten(m_normals[seed], &chart);
            m_charts.push_back(std::move(chart));
        }
    }

    std::array<double, 2> flat(const Chart &chart, std::uint32_t vertex) const
    {
        const Vector place = position(vertex);
        return {dot(place, chart.right) - chart.low[0], dot(place, chart.up) - chart.low[1]};
    }

    /// Upwards on the object is upwards in the texture, as far as there is such a thing.
    void flatten(const Vector &normal, Chart *chart) const
    {
        const Vector up = std::abs(normal[1]) < 0.9 ? Vector{0.0, 1.0, 0.0}
                                                    : Vector{0.0, 0.0, -1.0};
        chart->right = normalised(cross(up, normal));
        chart->up = cross(normal, chart->right);
        chart->low = {};
        std::array<double, 2> low{1e300, 1e300};
        std::array<double, 2> high{-1e300, -1e300};
        for (const std::uint32_t triangle : chart->triangles) {
            for (const std::uint32_t vertex : m_mesh.triangles[triangle]) {
                const std::array<double, 2> place = flat(*chart, vertex);
                for (std::size_t k = 0; k < 2; ++k) {
                    low[k] = std::min(low[k], place[k]);
                    high[k] = std::max(high[k], place[k]);
                }
            }
        }
        chart->low = low;
        chart->size = {high[0] - low[0], high[1] - low[1]};
    }

    /// Cells finer than the faces, each taken by the first that has its middle well inside.
    bool liesOnItself(const Chart &chart) const
    {
        if (chart.triangles.size() <= SurelyFlat)
            return false;
        const int count = std::clamp(int(4.0 * std::sqrt(double(chart.triangles.size()))), 32,
                                     2048);
        const double longest = std::max(chart.size[0], chart.size[1]);
        if (!(longest > 0.0))
            return false;
        const double scale = count / longest;
        std::vector<bool> isTaken(std::size_t(count) * std::size_t(count));
        for (const std::uint32_t triangle : chart.triangles) {
            std::array<std::array<double, 2>, 3> corners{};
            for (std::size_t i = 0; i < 3; ++i) {
                corners[i] = flat(chart, m_mesh.triangles[triangle][i]);
                corners[i] = {corners[i][0] * scale, corners[i][1] * scale};
            }
            if (!take(corners, count, &isTaken))
                return true;
        }
        return false;
    }

    static bool take(const std::array<std::array<double, 2>, 3> &corners, int count,
                     std::vector<bool> *isTaken)
    {
        const auto span = [&](std::size_t k) {
            const auto [low, high] = std::minmax({corners[0][k], corners[1][k], corners[2][k]});
            return std::make_pair(std::max(int(std::ceil(low - 0.5)), 0),
                                  std::min(int(std::floor(high - 0.5)), count - 1));
        };
        const auto [left, right] = span(0);
        const auto [bottom, top] = span(1);
        for (int y = bottom; y <= top; ++y) {
            for (int x = left; x <= right; ++x) {
                bool isInside = true;
                for (std::size_t i = 0; i < 3 && isInside; ++i) {
                    const auto &from = corners[i];
                    const auto &to = corners[(i + 1) % 3];
                    const double dx = to[0] - from[0];
                    const double dy = to[1] - from[1];
                    isInside = dx * (y + 0.5 - from[1]) - dy * (x + 0.5 - from[0])
                               > 0.01 * std::hypot(dx, dy);
                }
                if (!isInside)
                    continue;
                const std::size_t cell = std::size_t(y) * std::size_t(count) + std::size_t(x);
                if ((*isTaken)[cell])
                    return false;
                (*isTaken)[cell] = true;
            }
        }
        return true;
    }

    void splitOverlapping()
    {
        std::vector<Chart> charts;
        for (Chart &chart : m_charts) {
            if (!liesOnItself(chart)) {
                charts.push_back(std::move(chart));
                continue;
            }
            for (const std::uint32_t triangle : chart.triangles) {
                Chart single;
                single.triangles = {triangle};
                flatten(m_normals[triangle], &single);
                charts.push_back(std::move(single));
            }
        }
        m_charts = std::move(charts);
    }

    /// In rows from the highest chart on; the height that is needed.
    double packInto(double width, double gap, const std::vector<std::size_t> &order)
    {
        double x = gap;
        double y = gap;
        double row = 0.0;
        for (const std::size_t i : order) {
            Chart &chart = m_charts[i];
            if (x > gap && x + chart.size[0] + gap > width) {
                x = gap;
                y += row + gap;
                row = 0.0;
            }
            chart.place = {x, y};
            x += chart.size[0] + gap;
            row = std::max(row, chart.size[1]);
        }
        return y + row + gap;
    }

    void pack()
    {
        double area = 0.0;
        double widest = 0.0;
        std::vector<std::size_t> order(m_charts.size());
        std::iota(order.begin(), order.end(), std::size_t(0));
        for (const Chart &chart : m_charts) {
            area += chart.size[0] * chart.size[1];
            widest = std::max({widest, chart.size[0], chart.size[1]});
        }
        std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
            return m_charts[a].size[1] > m_charts[b].size[1];
        });
        const double share = std::min(Gap, 0.25 / std::sqrt(double(m_charts.size()) + 1.0));
        m_width = std::max(std::sqrt(area), widest) / (1.0 - 2.0 * share);
        while (m_width > 0.0 && packInto(m_width, share * m_width, order) > m_width)
            m_width *= 1.03;
    }

    void apply()
    {
        OssEvMesh made;
        const double scale = m_width > 0.0 ? 1.0 / m_width : 0.0;
        std::vector<std::uint32_t> newOf(m_mesh.positions.size(), None);
        for (const Chart &chart : m_charts) {
            std::vector<std::uint32_t> used;
            for (const std::uint32_t triangle : chart.triangles) {
                for (std::uint32_t &vertex : m_mesh.triangles[triangle]) {
                    if (newOf[vertex] == None) {
                        newOf[vertex] = std::uint32_t(made.positions.size());
                        used.push_back(vertex);
                        const std::array<double, 2> place = flat(chart, vertex);
                        made.uvs.push_back({float((place[0] + chart.place[0]) * scale),
                                            float((place[1] + chart.place[1]) * scale)});
                        made.positions.push_back(m_mesh.positions[vertex]);
                        if (!m_mesh.normals.empty())
                            made.normals.push_back(m_mesh.normals[vertex]);
                        if (!m_mesh.colors.empty())
                            made.colors.push_back(m_mesh.colors[vertex]);
                    }
                    vertex = newOf[vertex];
                }
            }
            for (const std::uint32_t vertex : used)
                newOf[vertex] = None;
        }
        m_mesh.positions = std::move(made.positions);
        m_mesh.normals = std::move(made.normals);
        m_mesh.colors = std::move(made.colors);
        m_mesh.uvs = std::move(made.uvs);
    }

    OssEvMesh &m_mesh;
    std::vector<std::uint32_t> m_placeOf;
    std::vector<std::uint32_t> m_across; ///< triangle at the other side of each edge
    std::vector<Vector> m_normals;       ///< of triangles
    std::vector<Chart> m_charts;
    double m_width = 0.0;
};

} // namespace

void OssEvUnwrap::unwrap(OssEvMesh *mesh)
{
    Unwrapping(mesh).run();
}
