#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshCheck.h"
#include "OssEvaluation/Values/OssEvCancel.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Reads meshes of all common formats.
namespace OssEvMeshFile {

/// How a file is to be understood.
struct Options
{
    enum class Split {
        One,      ///< everything together
        Objects,  ///< each object of the file by itself
        Materials ///< each material slot by itself
    };
    enum class Up {
        FromFile, ///< as the file says; y where it says nothing
        Y,
        Z ///< turned so that the file's z points along y
    };

    Split split = Split::One;
    Up up = Up::FromFile;
    double scale = 1.0;   ///< applied to what the file says; FBX is taken to metres first
    std::string uvSet;    ///< by name; empty: the first
    bool unwraps = false; ///< texture coordinates are made, whatever the file has

    bool operator==(const Options &other) const
    {
        return split == other.split && up == other.up && scale == other.scale
               && uvSet == other.uvSet && unwraps == other.unwraps;
    }
};

/// What becomes an object of the project.
struct Part
{
    std::string name;                      ///< of object or material slot, unique within the file
    std::shared_ptr<const OssEvMesh> mesh; ///< null where it cannot be used: the report says why
    OssEvMeshCheck::Report report;
};

struct Reading
{
    std::vector<Part> parts; ///< at least one, in the order of the file
    std::vector<std::string> objects;
    std::vector<std::string> materials;
    /// Those that every object has come first. Sets without a name are "UV 1", "UV 2" by their place.
    std::vector<std::string> uvSets;
    std::size_t faces = 0; ///< triangles of all parts
};

/// Reads a file. Transformations of its scene are applied; polygons become triangles, lines and points
/// are left out. Fails for files that are none, are damaged or too large to be meant, have no faces,
/// more than OssEvMeshCheck::MostFaces, or numbers that are none; where parts cannot be used for want
/// of texture coordinates it succeeds, and their reports say so. Any thread; gives up soon when
/// cancelled, with a failure. `progress` is told shares of the whole, on this thread.
OSSEVALUATION_EXPORT OssEvResult read(const std::string &path, const Options &options,
                                      Reading *reading, const OssEvCancel *cancel = nullptr,
                                      const std::function<void(double)> &progress = {});

/// All of a file as one, which fails where the mesh cannot be used.
OSSEVALUATION_EXPORT OssEvResult read(const std::string &path,
                                      std::shared_ptr<const OssEvMesh> *mesh);

/// Suffixes of files that are offered, lower case and without a dot, and whether a path has one.
OSSEVALUATION_EXPORT const std::vector<std::string> &suffixes();
OSSEVALUATION_EXPORT bool isMeshFile(const std::string &path);

} // namespace OssEvMeshFile
