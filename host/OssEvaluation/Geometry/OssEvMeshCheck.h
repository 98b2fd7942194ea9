#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <cstddef>
#include <string>
#include <vector>

/// What is wrong with a mesh for being textured, and what helps against it.
namespace OssEvMeshCheck {

constexpr std::size_t MostFaces = 10'000'000;

enum class Kind {
    NoFaces,
    TooManyFaces,
    NoUvs,
    OutsidePatches, ///< beyond what UDIM numbers can name
    AcrossPatches,  ///< faces that lie in several patches
    Overlapping,
    Collapsed, ///< faces without an area among the texture coordinates
    Flipped,   ///< faces that show their back there
    LeftOut    ///< faces that name what the file does not have
};

/// What can be offered.
struct Help
{
    bool unwraps = false;    ///< making texture coordinates anew
    bool otherUvSet = false; ///< taking another set of the file
    bool isNeeded = false;   ///< without it the mesh cannot be used
    const char *advice = ""; ///< what to do, in words
};

/// One for each kind.
OSSEVALUATION_EXPORT const Help &help(Kind kind);

struct Finding
{
    Kind kind;
    std::size_t faces = 0; ///< triangles it is true of; 0 where it is of all
    std::string text;      ///< what is wrong, in words
};

using Report = std::vector<Finding>;

/// Looks at texture coordinates, whether finish() was called or not; what finish() would refuse for
/// other reasons than Kind names must not be handed in. Overlaps are found where they are about a
/// thousandth of a patch wide or more. Worst first, each kind once. Throws std::bad_alloc.
OSSEVALUATION_EXPORT Report of(const OssEvMesh &mesh);

/// Of a kind that is known without looking.
OSSEVALUATION_EXPORT Finding finding(Kind kind, std::size_t faces, const std::string &text = {});

/// Whether any finding makes the mesh useless.
OSSEVALUATION_EXPORT bool isUseless(const Report &report);

/// All texts with what to do, a line each.
OSSEVALUATION_EXPORT std::string inWords(const Report &report);

} // namespace OssEvMeshCheck
