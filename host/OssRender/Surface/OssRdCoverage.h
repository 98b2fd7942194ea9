#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssRender/OssRender_export.h"

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

/// How much of each texel of a patch the faces of a mesh cover, for pictures of any size up to Size.
/// Immutable.
class OSSRENDER_EXPORT OssRdCoverage
{
public:
    using Pointer = std::shared_ptr<const OssRdCoverage>;

    /// Texels across the finest; larger pictures are taken as covered everywhere.
    static constexpr int Size = 512;

    /// Null when there is no memory for it.
    static Pointer make(const std::shared_ptr<const OssEvMesh> &mesh, int patch);

    /// Of a picture that many texels across, row by row from the top, 0 to 255; null where nothing is
    /// known: it is larger, or its size no power of two.
    const std::uint8_t *weights(int size) const;

private:
    std::vector<std::vector<std::uint8_t>> m_levels; ///< each half the size of the one before
};

/// Coverage that was asked for lately. Any thread.
class OSSRENDER_EXPORT OssRdCoverageStore
{
public:
    static OssRdCoverageStore *instance();

    /// Null where it was not made yet.
    OssRdCoverage::Pointer find(const std::shared_ptr<const OssEvMesh> &mesh, int patch);
    /// Makes it where it is not there: takes some milliseconds, more for meshes with many faces.
    OssRdCoverage::Pointer get(const std::shared_ptr<const OssEvMesh> &mesh, int patch);

private:
    static constexpr std::size_t MostKept = 256;

    struct Entry
    {
        std::weak_ptr<const OssEvMesh> mesh;
        int patch;
        OssRdCoverage::Pointer coverage;
    };

    std::mutex m_mutex;
    std::list<Entry> m_entries; ///< those last asked for come first
};
