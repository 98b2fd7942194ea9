#include "OssEvaluation/Geometry/OssEvMeshCheck.h"

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

    void clear() { std::fill(m_owners.begin(), m_owners.end(), None); }

    /// Places count cells from the patch's corner on.
    void take(std::uint32_t triangle, std::array<std::array<double, 2>, 3> corners)
    {
        const auto side = [](const auto &a, const auto &b, double x, double y) {
            return (b[0] - a[0]) * (y - a[1]) - (x - a[0]) * (b[1] - a[1]);
        };
        if (side(corners[0], corners[1], corners[2][0], corners[2][1]) < 0.0)
            std::swap(corners[1], corners[2]);
        const auto [left, right] = span(corners, 0);
        const auto [bottom, top] = span(corners, 1);
        if (left > right || bottom > top)
            return;
        // Neighbours share an edge, and round it each in its own way.
        std::array<double, 3> margins{};
        for (std::size_t i = 0; i < 3; ++i) {
            const auto &from = corners[i];
            const auto &to = corners[(i + 1) % 3];
            const double dx = to[0] - from[0];
            const double dy = to[1] - from[1];
            margins[i] = 0.02 * std::sqrt(dx * dx + dy * dy);
        }
        for (int y = bottom; y <= top; ++y) {
            for (int x = left; x <= right; ++x) {
                bool isInside = true;
                for (std::size_t i = 0; i < 3 && isInside; ++i)
                    isInside = side(corners[i], corners[(i + 1) % 3], x + 0.5, y + 0.5)
                               > margins[i];
                if (isInside)
                    mark(triangle, std::size_t(y) * GridSize + std::size_t(x));
            }
        }
    }

private:
    static constexpr std::uint32_t None = std::numeric_limits<std::uint32_t>::max();

    static std::pair<int, int> span(const std::array<std::array<double, 2>, 3> &corners,
                                    std::size_t k)
    {
        const auto [low, high] = std::minmax({corners[0][k], corners[1][k], corners[2][k]});
        return {int(std::clamp(std::ceil(low - 0.5), 0.0, double(GridSize))),
                int(std::clamp(std::floor(high - 0.5), -1.0, double(GridSize - 1)))};
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
        const auto [left, right] = std::minmax({a[0], b[0], c[0]});
        const auto [bottom, top] = std::minmax({a[1], b[1], c[1]});
        isOutside = left < -Slack || right > OssEvPatch::PatchesPerRow + Slack || bottom < -Slack
                    || double(top) > OssEvPatch::row(OssEvPatch::Last) + 1.0 + Slack;
        firstColumn = isOutside ? 0 : int(std::floor(left + Slack));
        firstRow = isOutside ? 0 : int(std::floor(bottom + Slack));
        lastColumn = isOutside ? -1 : std::max(firstColumn, int(std::ceil(right - Slack)) - 1);
        lastRow = isOutside ? -1 : std::max(firstRow, int(std::ceil(top - Slack)) - 1);
    }

    bool isOutside = false;

    bool isAcross() const { return lastColumn > firstColumn || lastRow > firstRow; }
};

void addPatches(const Place &place, std::uint32_t triangle,
                std::vector<std::pair<int, std::uint32_t>> *places)
{
    for (int row = place.firstRow; row <= place.lastRow; ++row) {
        for (int column = place.firstColumn; column <= place.lastColumn; ++column) {
            if (OssEvPatch::number(column, row) != 0)
                places->emplace_back(OssEvPatch::number(column, row), triangle);
        }
    }
}

std::size_t countOverlapping(const OssEvMesh &mesh,
                             std::vector<std::pair<int, std::uint32_t>> places)
{
    if (!std::is_sorted(places.begin(), places.end()))
        std::sort(places.begin(), places.end());
    std::vector<bool> overlapping(mesh.triangles.size());
    Cells cells(&overlapping);
    int patch = 0;
    for (const auto &[here, triangle] : places) {
        if (here != patch)
            cells.clear();
        patch = here;
        std::array<std::array<double, 2>, 3> corners{};
        for (std::size_t i = 0; i < 3; ++i) {
            const Vector2 &uv = mesh.uvs[mesh.triangles[triangle][i]];
            corners[i] = {(double(uv[0]) - OssEvPatch::column(patch)) * GridSize,
                          (double(uv[1]) - OssEvPatch::row(patch)) * GridSize};
        }
        cells.take(triangle, corners);
    }
    return std::size_t(std::count(overlapping.begin(), overlapping.end(), true));
}

/// By kind.
using Faces = std::array<std::size_t, Rows.size()>;

/// What is wrong with each triangle by itself; the patches that triangles with an area lie in.
std::vector<std::pair<int, std::uint32_t>> countEach(const OssEvMesh &mesh, Faces *faces)
{
    const auto add = [faces](Kind kind, bool isTrue) {
        (*faces)[std::size_t(kind)] += isTrue ? 1 : 0;
    };
    const std::size_t count = mesh.triangles.size();
    const double enough = leastArea(mesh);
    std::vector<std::pair<int, std::uint32_t>> places;
    places.reserve(count);
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
        // Faces over very many patches, each of them, are a file that is not meant.
        if (!isCollapsed && places.size() < 4 * count + MostPlaces)
            addPatches(place, i, &places);
    }
    return places;
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
    Faces faces{};
    std::vector<std::pair<int, std::uint32_t>> places = countEach(mesh, &faces);
    faces[std::size_t(Kind::Overlapping)] = countOverlapping(mesh, std::move(places));
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
