#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Paint/OssEvBrush.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Values/OssEvRegion.h"

#include <glm/mat4x4.hpp>
#include <glm/vec2.hpp>
#include <glm/vec3.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

class OssEvMesh;

/// Triangles of a mesh that belong together.
struct OssEvPaintRegion
{
    std::shared_ptr<const std::vector<std::int32_t>> ofTriangle; ///< null: all triangles do
    std::int32_t wanted = -1;

    bool has(int triangle) const
    {
        return triangle >= 0 && (*ofTriangle)[std::size_t(triangle)] == wanted;
    }
};

/// The surface of an object as strokes see it: where in the world each texel of its patches lies. What
/// is known of texels is kept by tiles and made when a stroke first comes there, so it costs what is
/// painted on and not what there is.
///
/// Texels beside a chart, up to BleedAt4k of a patch of 4096 and in proportion for others, lie where the
/// nearest covered texel does: paint goes on beyond the seams, and none shows when a picture is made
/// smaller.
///
/// Any thread may ask. Making it takes long for large meshes and may be done on any thread.
class OSSEVALUATION_EXPORT OssEvPaintSurface
{
public:
    static constexpr int BleedAt4k = 32;
    /// Tiles beyond that are forgotten, the longest unused first.
    static constexpr std::size_t MostTiles = 1024;

    struct Tile
    {
        /// In the world; by texel.
        std::vector<float> x;
        std::vector<float> y;
        std::vector<float> z;
        /// Triangle of the mesh; -1 where none answers.
        std::vector<std::int32_t> faces;
    };

    struct Hit
    {
        glm::vec3 place;
        glm::vec3 normal;   ///< of the triangle, length 1
        glm::vec2 uv;       ///< in patches, v upwards
        float texel = 1.0F; ///< length of one there
        int triangle = -1;
    };

    /// `resolution`: texels across a patch. Throws std::bad_alloc.
    OssEvPaintSurface(std::shared_ptr<const OssEvMesh> mesh, int resolution);
    ~OssEvPaintSurface();

    const std::shared_ptr<const OssEvMesh> &mesh() const { return m_mesh; }

    int resolution() const { return m_resolution; }

    /// Object to world.
    const glm::mat4 &world() const { return m_world; }

    glm::vec3 position(std::uint32_t vertex) const { return m_positions[vertex]; }

    glm::vec3 normal(std::int32_t triangle) const;

    /// Lengths of the world for a texel, in the mean over the object.
    float texel() const { return m_texel; }

    /// The same where a patch is one texel.
    static double meanTexel(const OssEvMesh &mesh);

    /// What a ray meets first.
    std::optional<Hit> pick(const glm::vec3 &origin, const glm::vec3 &direction) const;

    /// Place in patches of what a ray meets in the plane of a triangle; none where it runs along it.
    std::optional<glm::vec2> uvAt(int triangle, const glm::vec3 &origin,
                                  const glm::vec3 &direction) const;

    /// The triangle at a place in patches, or nearest to it within the margin beside charts; -1: none.
    /// Throws std::bad_alloc.
    int triangleAt(const glm::vec2 &uv);

    /// What a brush may paint on that begins on a triangle: all where it says so, nothing where there is no
    /// triangle.
    OssEvPaintRegion region(OssEvBrush::Within within, int triangle) const;

    /// Whether triangles of a region may have texels on a tile.
    bool mayTouch(const OssEvPaintRegion &region, const OssEvPaintBuffer::Place &place) const;

    /// Throws std::bad_alloc.
    std::shared_ptr<const Tile> tile(const OssEvPaintBuffer::Place &place);

    /// In texels of their tile.
    using Parts = std::map<OssEvPaintBuffer::Place, OssEvRegion>;

    /// Where texels may lie in a ball.
    Parts partsIn(const glm::vec3 &centre, float radius) const;

private:
    struct Kept
    {
        std::shared_ptr<const Tile> tile;
        std::uint64_t used = 0;
    };

    /// The triangles of each tile of a patch with what it needs around it, one tile after the other.
    struct Bins
    {
        std::vector<std::uint32_t> first; ///< by tile, and one more
        std::vector<std::int32_t> triangles;
    };

    using Box = std::array<float, 4>; ///< left, top, right, bottom in texels

    void fillBins(int patch);
    void findIslands();
    float texelOf(std::uint32_t triangle) const;
    OssEvRegion tilesOf(const Box &texels, int margin) const;
    std::shared_ptr<const Tile> makeTile(const OssEvPaintBuffer::Place &place) const;
    void addPart(int column, int row, const Box &uv, Parts *parts) const;
    void addParts(std::uint32_t triangle, const glm::vec3 &low, const glm::vec3 &high,
                  Parts *parts) const;

    std::shared_ptr<const OssEvMesh> m_mesh;
    int m_resolution;
    int m_margin; ///< texels
    int m_across; ///< tiles
    glm::mat4 m_world;
    glm::mat4 m_toObject;
    float m_texel = 1.0F;
    std::vector<glm::vec3> m_positions;                         ///< in the world
    std::map<int, Bins> m_bins;                                 ///< by patch
    std::shared_ptr<const std::vector<std::int32_t>> m_islands; ///< by triangle
    std::mutex m_mutex;                                         ///< guards what follows
    std::map<OssEvPaintBuffer::Place, Kept> m_tiles;
    std::uint64_t m_clock = 0;
};
