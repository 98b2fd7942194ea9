#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <memory>
#include <vector>

/// Fills what lies beyond the charts of a patch, however far, with the nearest covered texels: the exact
/// distance transform of Felzenszwalb and Huttenlocher (2012), columns first, then rows.
class Padding
{
public:
    using Rows = std::vector<std::vector<OssEvTilePointer>>;

    /// Rasterises the mesh. False when that was cancelled.
    bool find(const std::shared_ptr<const OssEvMesh> &mesh, const OssEvFrame &frame,
              const OssEvCancel *cancel);

    /// A row of the image's tiles, filled. `rows` are all of them.
    std::vector<OssEvTilePointer> filled(const Rows &rows, int row) const;

private:
    struct Source
    {
        std::int16_t x;
        std::int16_t y;
    };

    void findInRow(int y);

    std::size_t index(int x, int y) const
    {
        return std::size_t(y) * std::size_t(m_frame.width) + std::size_t(x);
    }

    OssEvTilePointer filledTile(const Rows &rows, int column, int row) const;

    OssEvFrame m_frame;
    bool m_isEmpty = true;            ///< nothing is covered at all
    std::vector<std::int16_t> m_rows; ///< nearest covered one in the same column; -1 without one
    std::vector<Source> m_sources;
};
