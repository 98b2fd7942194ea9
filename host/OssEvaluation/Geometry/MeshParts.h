#pragma once

#include "OssEvaluation/Geometry/OssEvMeshFile.h"

#include <assimp/types.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// The parts of a reading while a file is read: one mesh for each, which objects and material slots go
/// into as the options say.
class MeshParts
{
public:
    /// Where the faces of one object and material slot go.
    struct Goal
    {
        std::size_t part = 0;
        OssEvMesh *mesh = nullptr;
        std::int32_t slot = 0;
    };

    MeshParts(const OssEvMeshFile::Options &options, OssEvMeshFile::Reading *reading);

    Goal goal(const std::string &object, const std::string &material);
    /// Faces of the object have no texture coordinates that are wanted.
    void tellWithoutUvs(const std::string &object, std::size_t part);
    /// As the parts of the reading.
    std::vector<std::shared_ptr<OssEvMesh>> meshes() const;

    /// How all of a file is placed: `scale` comes before what the options say; z is turned upright.
    static aiMatrix4x4 placing(double scale, bool isZUp, const OssEvMeshFile::Options &options);

    /// A polygon of vertices that the mesh has.
    static void addFace(const Goal &goal, const std::vector<std::uint32_t> &corners);

    /// Makes one vertex of those that are the same, from one on. Gives the numbers of all of them; none where no two
    /// have the same place.
    static std::vector<std::uint32_t> weld(OssEvMesh *mesh, std::size_t before);

    /// Why a file cannot be read, in words.
    static const char *const NoSuchVertex;

    /// No more than is needed for the first of several, and no new room for each of many.
    template <class Value>
    static void makeRoom(std::size_t count, std::vector<Value> *values)
    {
        if (values->capacity() < count)
            values->reserve(std::max(count, 2 * values->capacity()));
    }

    static void addOnce(const std::string &name, std::vector<std::string> *list);

private:
    struct Target
    {
        std::shared_ptr<OssEvMesh> mesh = std::make_shared<OssEvMesh>();
        std::map<std::string, std::int32_t> materials;
    };

    const OssEvMeshFile::Options &m_options;
    OssEvMeshFile::Reading *m_reading;
    std::map<std::string, std::size_t> m_places; ///< of targets, by name
    std::vector<Target> m_targets;
};
