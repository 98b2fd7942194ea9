#pragma once

#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssRender/Surface/OssRdCoverage.h"

#include <functional>
#include <vector>

/// Smaller copies of a square picture of a patch with four channels, each half the size of the one before,
/// in which what no face covers has no say, and goes on as the nearest covered texels are: so no seam of
/// the texture shows however small an object is. Where no coverage is known they are plain means.
///
/// `Value`: std::uint8_t, or half floats as std::uint16_t.
template <class Value>
class OssRdMips
{
public:
    /// A row of the picture from the area's first texel on.
    using Rows = std::function<const Value *(int y)>;

    /// `size` is a power of two.
    OssRdMips(int size, OssRdCoverage::Pointer coverage);
    /// With the copies of another, so that these only have to follow.
    OssRdMips(int size, OssRdCoverage::Pointer coverage, std::vector<std::vector<Value>> levels);

    /// The first is half the size of the picture.
    int levels() const { return int(m_levels.size()); }

    int size(int level) const { return m_size >> (level + 1); }

    const std::vector<Value> &texels(int level) const { return m_levels[std::size_t(level)]; }

    /// Of a part alone, row by row.
    std::vector<Value> texels(int level, const OssEvRegion &part) const;

    std::vector<std::vector<Value>> take() { return std::move(m_levels); }

    /// Has the copies follow an area of the picture, whose edges are even. Gives what may have changed in
    /// each of them.
    std::vector<OssEvRegion> update(const OssEvRegion &area, const Rows &rows);

private:
    std::size_t place(int level, int x, int y) const
    {
        return (std::size_t(y) * std::size_t(size(level)) + std::size_t(x)) * 4;
    }

    void halve(int level, const OssEvRegion &row, const Value *above, const Value *below);
    OssEvRegion goOn(int level, const OssEvRegion &area);

    int m_size;
    OssRdCoverage::Pointer m_coverage;
    std::vector<std::vector<Value>> m_levels;
};

extern template class OSSRENDER_EXPORT OssRdMips<std::uint8_t>;
extern template class OSSRENDER_EXPORT OssRdMips<std::uint16_t>;
