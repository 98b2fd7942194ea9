#include "OssEvaluation/Geometry/OssEvMeshChange.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace {

using OssEvMeshChange::Change;

/// Of texture coordinates that count as the same.
constexpr double Rounding = 100'000.0;

/// The patch's triangles by their corners, in an order that does not follow the file's.
std::vector<std::array<long, 6>> placesOf(const OssEvMesh &mesh, int patch)
{
    std::vector<std::array<long, 6>> places;
    for (const std::int32_t triangle : mesh.trianglesOf(patch)) {
        std::array<std::array<long, 2>, 3> corners{};
        for (std::size_t i = 0; i < 3; ++i) {
            const auto &uv = mesh.uvs[mesh.triangles[std::size_t(triangle)][i]];
            corners[i] = {std::lround(uv[0] * Rounding), std::lround(uv[1] * Rounding)};
        }
        std::sort(corners.begin(), corners.end());
        places.push_back({corners[0][0], corners[0][1], corners[1][0], corners[1][1], corners[2][0],
                          corners[2][1]});
    }
    std::sort(places.begin(), places.end());
    return places;
}

std::string list(const std::vector<int> &patches)
{
    constexpr std::size_t Most = 8;
    std::string words;
    for (std::size_t i = 0; i < std::min(Most, patches.size()); ++i)
        words += (i == 0 ? "" : ", ") + std::to_string(patches[i]);
    return patches.size() > Most ? words + " and " + std::to_string(patches.size() - Most) + " more"
                                 : words;
}

} // namespace

Change OssEvMeshChange::of(const OssEvMesh &before, const OssEvMesh &now)
{
    Change change;
    const std::vector<int> &old = before.patches();
    const std::vector<int> &fresh = now.patches();
    std::set_difference(old.begin(), old.end(), fresh.begin(), fresh.end(),
                        std::back_inserter(change.patchesGone));
    std::set_difference(fresh.begin(), fresh.end(), old.begin(), old.end(),
                        std::back_inserter(change.patchesNew));
    for (const int patch : fresh) {
        if (std::binary_search(old.begin(), old.end(), patch)
            && placesOf(before, patch) != placesOf(now, patch))
            change.patchesMoved.push_back(patch);
    }
    change.facesBefore = before.triangles.size();
    change.facesNow = now.triangles.size();
    change.isShapeOther = before.positions != now.positions;
    return change;
}

std::string OssEvMeshChange::inWords(const OssEvMesh &before, const OssEvMesh &now)
{
    const Change change = of(before, now);
    std::string words;
    const auto add = [&words](const std::string &part) {
        words += (words.empty() ? "" : "; ") + part;
    };
    if (change.facesBefore != change.facesNow)
        add(std::to_string(change.facesBefore) + " faces became "
            + std::to_string(change.facesNow));
    if (change.isShapeOther)
        add("the shape is another");
    if (change.areUvsSame())
        add("texture coordinates are the same, so paint and bakes stay where they are");
    if (!change.patchesMoved.empty())
        add("texture coordinates are others in " + list(change.patchesMoved)
            + ", where paint may sit elsewhere");
    if (!change.patchesNew.empty())
        add("new: " + list(change.patchesNew));
    if (!change.patchesGone.empty())
        add("gone: " + list(change.patchesGone) + ", whose paint is kept");
    return words;
}
