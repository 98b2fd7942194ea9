#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvBuffer.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvRegion.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

/// Where the texels of a patch lie on a mesh: one face for each texel, rasterised once for each
/// patch and size. Positions and normals follow from the face, since both change evenly across it.
///
/// A texel is covered when its centre lies in a face. Texels within a margin around the covered
/// ones know the nearest covered texel: it answers for them, so that what is painted over an edge
/// of a chart continues what lies inside.
///
/// Immutable; may be read from several threads.
class OSSEVALUATION_EXPORT OssEvSurfaceMap
{
public:
    /// Texels of margin in a patch of 4096, in proportion for other sizes.
    static constexpr int MarginAt4k = 16;

    /// Null when cancelled. Throws std::bad_alloc. `bleed` is the margin in a patch of 4096.
    static std::shared_ptr<const OssEvSurfaceMap> make(std::shared_ptr<const OssEvMesh> mesh,
                                                       const OssEvFrame &frame,
                                                       const OssEvCancel *cancel,
                                                       int bleed = MarginAt4k);

    /// Of a part of the patch alone, which the given triangles touch. What is asked about must lie in it.
    /// Only a covered texel of the part answers for others, so of texels nearer to its edge than the
    /// margin the nearest one may be missed.
    static std::shared_ptr<const OssEvSurfaceMap> makePart(
        std::shared_ptr<const OssEvMesh> mesh, const OssEvFrame &frame, const OssEvRegion &part,
        const std::vector<std::int32_t> &triangles, int bleed = MarginAt4k);

    const OssEvFrame &frame() const { return m_frame; }

    const OssEvMesh &mesh() const { return *m_mesh; }

    /// Margin in texels for a patch of this width.
    static int margin(int width, int bleed = MarginAt4k);

    bool isCovered(int x, int y) const
    {
        const Offset offset = offsets()[index(x, y)];
        return offset.x == 0 && offset.y == 0;
    }

    /// Triangle of the mesh that answers for a texel; -1 where none is near.
    int face(int x, int y) const;

    /// Texel that answers for one: itself, the nearest covered one, or itself again if none is near.
    void nearestCovered(int x, int y, int *coveredX, int *coveredY) const;

    /// Of `width` texels from (x, y) on, in object space. Texels that no face answers for lie at the
    /// origin; those beyond the frame are its outermost ones.
    void positions(int x, int y, int width, const std::array<float *, 3> &to) const;

    /// Unit vectors in object space; (0, 0, 1) where no face answers.
    void normals(int x, int y, int width, const std::array<float *, 3> &to) const;

    /// Of the vertices, not premultiplied; white where the mesh has none, transparent black where no
    /// face answers.
    void colors(int x, int y, int width, const std::array<float *, 4> &to) const;

    /// How position changes with u and v in the face that answers for a texel; zero without one.
    void derivatives(int x, int y, std::array<double, 3> *alongU,
                     std::array<double, 3> *alongV) const;

    /// Whether each texel of a region within the frame answers for itself.
    bool isItself(const OssEvRegion &region) const;

    std::size_t bytes() const;

private:
    /// From a texel to the covered one that answers for it; (NotCovered, 0) without one.
    struct Offset
    {
        std::int8_t x;
        std::int8_t y;
    };

    OssEvSurfaceMap(std::shared_ptr<const OssEvMesh> mesh, const OssEvFrame &frame,
                    const OssEvRegion &part, int margin);

    std::size_t index(int x, int y) const
    {
        return std::size_t(y - m_part.y) * std::size_t(m_part.width) + std::size_t(x - m_part.x);
    }

    std::size_t texels() const { return std::size_t(m_part.width) * std::size_t(m_part.height); }

    int nearestColumn(int x) const { return std::clamp(x, m_part.x, m_part.right() - 1); }

    int nearestRow(int y) const { return std::clamp(y, m_part.y, m_part.bottom() - 1); }

    std::int32_t *faces() const { return m_faces.as<std::int32_t>(); }

    Offset *offsets() const { return m_offsets.as<Offset>(); }

    bool clear(const OssEvCancel *cancel);
    bool rasterise(const std::vector<std::int32_t> &triangles, const OssEvCancel *cancel);
    void rasteriseTriangle(int triangle, const OssEvCancel *cancel);
    bool dilate(const OssEvCancel *cancel);
    void sweepRow(int y, int from, std::int16_t *vertical) const;
    void findNearest(int x, int y, const std::int16_t *vertical);
    template <std::size_t N>
    void interpolate(int x, int y, int width, const std::vector<std::array<float, N>> &values,
                     const std::array<float, N> &fallback, const std::array<float *, N> &to) const;

    std::shared_ptr<const OssEvMesh> m_mesh;
    OssEvFrame m_frame;
    OssEvRegion m_part; ///< of the frame, which is known
    int m_margin;
    /// Of covered texels; -1 for the others.
    OssEvBuffer m_faces;
    OssEvBuffer m_offsets;
    std::vector<int> m_bare; ///< texels of each row that are not covered
};
