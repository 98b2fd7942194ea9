#include "OssEvaluation/Geometry/OssEvMeshCheck.h"

#include "OssEvaluation/Geometry/Rounding.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

using Vector2 = OssEvMesh::Vector2;
using OssEvMeshCheck::Finding;
using OssEvMeshCheck::Help;
using OssEvMeshCheck::Kind;
using OssEvMeshCheck::Report;

constexpr int GridSize = 1024; // cells across a patch
constexpr double Slack = 1e-4; // of what tools round
constexpr double NoArea = 1e-12;
constexpr std::size_t MostPlaces = 1'000'000;

struct Row
{
    Kind kind = Kind::NoFaces;
    const char *ofAll = "";
    const char *ofOne = "";
    const char *ofSome = ""; ///< "%1" stands for the number of faces
    Help help;
};

// In the order of the kinds, which is that of their weight.
const std::array<Row, 9> Rows{{
    {Kind::NoFaces,
     "it has no faces",
     "it has no faces",
     "it has no faces",
     {false, false, true, "export polygons, not only curves, points or lights"}},
    {Kind::TooManyFaces,
     "it has more than 10 million faces",
     "it has more than 10 million faces",
     "it has %1 faces, and 10 million are the limit",
     {false, false, true, "split it into several objects or reduce it"}},
    {Kind::NoUvs,
     "it has no texture coordinates",
     "1 face has no texture coordinates",
     "%1 faces have no texture coordinates",
     {true, true, true, "unwrap it automatically or choose another UV set"}},
    {Kind::OutsidePatches,
     "its texture coordinates lie outside the UDIM patches",
     "1 face lies outside the UDIM patches with its texture coordinates",
     "%1 faces lie outside the UDIM patches with their texture coordinates",
     {true, true, true,
      "move them into the patches from 1001 on, choose another UV set or unwrap automatically"}},
    {Kind::Overlapping,
     "all faces overlap in the texture",
     "1 face overlaps another in the texture and shares its paint",
     "%1 faces overlap others in the texture and share their paint",
     {true, true, false, "lay them apart where they shall differ, or unwrap automatically"}},
    {Kind::Collapsed,
     "no face has an area in the texture",
     "1 face has no area in the texture and shows a single color",
     "%1 faces have no area in the texture and show a single color",
     {true, true, false, "unwrap these faces or unwrap automatically"}},
    {Kind::AcrossPatches,
     "all faces reach across the edge of a patch",
     "1 face reaches across the edge of a patch, where filters do not go on",
     "%1 faces reach across the edge of a patch, where filters do not go on",
     {true, true, false, "move their charts into one patch each"}},
    {Kind::Flipped,
     "all faces lie mirrored in the texture",
     "1 face lies mirrored in the texture: text and normal maps turn round on it",
     "%1 faces lie mirrored in the texture: text and normal maps turn round on them",
     {true, true, false, "flip their charts where that matters"}},
    {Kind::LeftOut,
     "faces name what the file does not have, and are left out",
     "1 face names what the file does not have, and is left out",
     "%1 faces name what the file does not have, and are left out",
     {false, false, false, "export the mesh again where it was made"}},
}};

const Row &rowOf(Kind kind)
{
    return *std::find_if(Rows.begin(), Rows.end(),
                         [kind](const Row &row) { return row.kind == kind; });
}

double area(const Vector2 &a, const Vector2 &b, const Vector2 &c)
{
    return (double(b[0]) - a[0]) * (double(c[1]) - a[1])
           - (double(c[0]) - a[0]) * (double(b[1]) - a[1]);
}

double areaInSpace(const OssEvMesh &mesh, const std::array<std::uint32_t, 3> &triangle)
{
    std::array<double, 3> first{};
    std::array<double, 3> second{};
    for (std::size_t k = 0; k < 3; ++k) {
        const double origin = mesh.positions[triangle[0]][k];
        first[k] = mesh.positions[triangle[1]][k] - origin;
        second[k] = mesh.positions[triangle[2]][k] - origin;
    }
    return std::hypot(first[1] * second[2] - first[2] * second[1],
                      first[2] * second[0] - first[0] * second[2],
                      first[0] * second[1] - first[1] * second[0]);
}

/// What is smaller is no area: points and slivers that rounding made, such as at a sphere's poles.
double leastArea(const OssEvMesh &mesh)
{
    constexpr double Share = 1e-9;
    double longest = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
        const auto [low, high] = std::minmax_element(
            mesh.positions.begin(), mesh.positions.end(),
            [k](const auto &a, const auto &b) { return a[k] < b[k]; });
        longest = std::max(longest, double((*high)[k]) - (*low)[k]);
    }
    return Share * longest * longest;
}

/// Cells of one patch, each taken by the first triangle that has its middle well inside.
class Cells
{
public:
    explicit Cells(std::vector<bool> *overlapping)
        : m_overlapping(overlapping)
        , m_owners(std::size_t(GridSize) * GridSize, None)
    {
    }

    void begin(int patch)
    {
        std::fill(m_owners.begin(), m_owners.end(), None);
        m_left = OssEvPatch::column(patch);
        m_bottom = OssEvPatch::row(patch);
    }

    void take(std::uint32_t triangle, const Vector2 &first, const Vector2 &second,
              const Vector2 &third)
    {
        // Count cells from the patch's corner on.
        std::array<Corner, 3> corners{within(first), within(second), within(third)};
        const auto [left, right] = span(corners[0].x, corners[1].x, corners[2].x);
        const auto [bottom, top] = span(corners[0].y, corners[1].y, corners[2].y);
        if (left > right || bottom > top)
            return;
        if (side(corners[0], corners[1], corners[2].x, corners[2].y) < 0.0)
            std::swap(corners[1], corners[2]);
        for (int y = bottom; y <= top; ++y) {
            for (int x = left; x <= right; ++x) {
                if (isWellInside(corners, x + 0.5, y + 0.5))
                    mark(triangle, std::size_t(y) * GridSize + std::size_t(x));
            }
        }
    }

private:
    static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

    struct Corner
    {
        double x;
        double y;
    };

    Corner within(const Vector2 &uv) const
    {
        return {(double(uv[0]) - m_left) * GridSize, (double(uv[1]) - m_bottom) * GridSize};
    }

    static double side(const Corner &a, const Corner &b, double x, double y)
    {
        return (b.x - a.x) * (y - a.y) - (x - a.x) * (b.y - a.y);
    }

    /// Neighbours share an edge, and round it each in its own way.
    static bool isWellInside(const std::array<Corner, 3> &corners, double x, double y)
    {
        constexpr double Margin = 0.02; // cells
        for (std::size_t i = 0; i < 3; ++i) {
            const Corner &from = corners[i];
            const Corner &to = corners[i == 2 ? 0 : i + 1];
            const double inside = side(from, to, x, y);
            const double dx = to.x - from.x;
            const double dy = to.y - from.y;
            if (inside <= 0.0 || inside * inside <= Margin * Margin * (dx * dx + dy * dy))
                return false;
        }
        return true;
    }

    /// Cells whose middles lie between the lowest and the highest.
    static std::pair<int, int> span(double a, double b, double c)
    {
        const double low = std::min(a, std::min(b, c));
        const double high = std::max(a, std::max(b, c));
        return {roundedUp(std::clamp(low - 0.5, 0.0, double(GridSize))),
                roundedDown(std::clamp(high - 0.5, -1.0, double(GridSize - 1)))};
    }

    void mark(std::uint32_t triangle, std::size_t cell)
    {
        std::uint32_t &owner = m_owners[cell];
        if (owner == None) {
            owner = triangle;
            return;
        }
        (*m_overlapping)[owner] = true;
        (*m_overlapping)[triangle] = true;
    }

    std::vector<bool> *m_overlapping;
    std::vector<std::uint32_t> m_owners;
    double m_left = 0.0;
    double m_bottom = 0.0;
};

/// Where a triangle lies among the patches.
struct Place
{
    int firstColumn;
    int lastColumn;
    int firstRow;
    int lastRow;

    Place(const OssEvMesh &mesh, const std::array<std::uint32_t, 3> &triangle)
    {
        const Vector2 &a = mesh.uvs[triangle[0]];
        const Vector2 &b = mesh.uvs[triangle[1]];
        const Vector2 &c = mesh.uvs[triangle[2]];
        const float left = std::min(a[0], std::min(b[0], c[0]));
        const float right = std::max(a[0], std::max(b[0], c[0]));
        const float bottom = std::min(a[1], std::min(b[1], c[1]));
        const float top = std::max(a[1], std::max(b[1], c[1]));
        isOutside = left < -Slack || right > OssEvPatch::PatchesPerRow + Slack || bottom < -Slack
                    || double(top) > OssEvPatch::row(OssEvPatch::Last) + 1.0 + Slack;
        firstColumn = isOutside ? 0 : roundedDown(left + Slack);
        firstRow = isOutside ? 0 : roundedDown(bottom + Slack);
        lastColumn = isOutside ? -1 : std::max(firstColumn, roundedUp(right - Slack) - 1);
        lastRow = isOutside ? -1 : std::max(firstRow, roundedUp(top - Slack) - 1);
    }

    bool isOutside = false;

    bool isAcross() const { return lastColumn > firstColumn || lastRow > firstRow; }
};

/// Finds triangles that lie over others: those of one patch as they come, and of others when all are known.
class Overlaps
{
public:
    explicit Overlaps(const OssEvMesh &mesh)
        : m_mesh(mesh)
        , m_overlapping(mesh.triangles.size())
        , m_cells(&m_overlapping)
    {
    }

    void add(const Place &place, std::uint32_t triangle)
    {
        // Faces over very many patches, each of them, are a file that is not meant.
        if (m_later.size() >= 4 * m_mesh.triangles.size() + MostPlaces)
            return;
        for (int row = place.firstRow; row <= place.lastRow; ++row) {
            for (int column = place.firstColumn; column <= place.lastColumn; ++column)
                addTo(OssEvPatch::number(column, row), triangle);
        }
    }

    std::size_t count()
    {
        if (!std::is_sorted(m_later.begin(), m_later.end()))
            std::sort(m_later.begin(), m_later.end());
        for (const auto &[patch, triangle] : m_later)
            take(patch, triangle);
        return std::size_t(std::count(m_overlapping.begin(), m_overlapping.end(), true));
    }

private:
    void addTo(int patch, std::uint32_t triangle)
    {
        if (patch == 0)
            return;
        if (m_patch == 0 || patch == m_patch)
            take(patch, triangle);
        else
            m_later.emplace_back(patch, triangle);
    }

    void take(int patch, std::uint32_t triangle)
    {
        if (patch != m_patch)
            m_cells.begin(patch);
        m_patch = patch;
        const auto &corners = m_mesh.triangles[triangle];
        m_cells.take(triangle, m_mesh.uvs[corners[0]], m_mesh.uvs[corners[1]],
                     m_mesh.uvs[corners[2]]);
    }

    const OssEvMesh &m_mesh;
    std::vector<bool> m_overlapping;
    Cells m_cells;
    int m_patch = 0; ///< that the cells are of
    std::vector<std::pair<int, std::uint32_t>> m_later;
};

/// By kind.
using Faces = std::array<std::size_t, Rows.size()>;

Faces count(const OssEvMesh &mesh)
{
    Faces faces{};
    const auto add = [&faces](Kind kind, bool isTrue) {
        faces[std::size_t(kind)] += isTrue ? 1 : 0;
    };
    const std::size_t count = mesh.triangles.size();
    const double enough = leastArea(mesh);
    Overlaps overlaps(mesh);
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto &triangle = mesh.triangles[i];
        const Place place(mesh, triangle);
        const double size = area(mesh.uvs[triangle[0]], mesh.uvs[triangle[1]],
                                 mesh.uvs[triangle[2]]);
        const bool isCollapsed = std::abs(size) < NoArea;
        add(Kind::OutsidePatches, place.isOutside);
        add(Kind::AcrossPatches, place.isAcross());
        add(Kind::Collapsed, isCollapsed && areaInSpace(mesh, triangle) > enough);
        add(Kind::Flipped, !isCollapsed && size < 0.0);
        if (!isCollapsed)
            overlaps.add(place, i);
    }
    faces[std::size_t(Kind::Overlapping)] = overlaps.count();
    return faces;
}

} // namespace

const Help &OssEvMeshCheck::help(Kind kind)
{
    return rowOf(kind).help;
}

Finding OssEvMeshCheck::finding(Kind kind, std::size_t faces, const std::string &text)
{
    if (!text.empty())
        return {kind, faces, text};
    const Row &row = rowOf(kind);
    std::string words = faces == 0 ? row.ofAll : faces == 1 ? row.ofOne : row.ofSome;
    const std::size_t number = words.find("%1");
    if (number != std::string::npos)
        words.replace(number, 2, std::to_string(faces));
    return {kind, faces, words};
}

Report OssEvMeshCheck::of(const OssEvMesh &mesh)
{
    const std::size_t count = mesh.triangles.size();
    if (count == 0)
        return {finding(Kind::NoFaces, 0)};
    if (count > MostFaces)
        return {finding(Kind::TooManyFaces, count)};
    if (mesh.uvs.empty())
        return {finding(Kind::NoUvs, 0)};
    const Faces faces = ::count(mesh);
    Report report;
    for (const Row &row : Rows) {
        const std::size_t found = faces[std::size_t(row.kind)];
        if (found > 0)
            report.push_back(finding(row.kind, found == count ? 0 : found));
    }
    return report;
}

bool OssEvMeshCheck::isUseless(const Report &report)
{
    return std::any_of(report.begin(), report.end(),
                       [](const Finding &found) { return help(found.kind).isNeeded; });
}

std::string OssEvMeshCheck::inWords(const Report &report)
{
    std::string words;
    for (const Finding &found : report)
        words += (words.empty() ? "" : "\n") + found.text + ": " + help(found.kind).advice;
    return words;
}
