#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvTile.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

/// How much of a brush the places of patches let through: what is bright lets all through, what is dark
/// nothing, and patches that it does not know neither. Immutable once it is shared; until then different
/// threads may put different tiles in.
class OSSEVALUATION_EXPORT OssEvPaintMask
{
public:
    using Pointer = std::shared_ptr<const OssEvPaintMask>;

    /// `resolution`: texels across a patch. `inverted`: what is dark lets through. Throws std::bad_alloc.
    OssEvPaintMask(const std::vector<int> &patches, int resolution, bool inverted = false);

    int resolution() const { return m_resolution; }

    bool isInverted() const { return m_isInverted; }

    /// Colours count as bright as they are, by their alpha.
    void setTile(int patch, int column, int row, const OssEvTile &tile,
                 const OssEvWorkingSpace::Weights &luminance);

    /// The same the other way round. Throws std::bad_alloc.
    std::shared_ptr<OssEvPaintMask> turned() const;

    /// 0 to 1, between texels; x and y are parts of the patch from its top left corner.
    float at(int patch, double x, double y) const;

private:
    using Values = std::vector<std::uint16_t>;

    int m_resolution;
    bool m_isInverted;
    std::map<int, Values> m_patches;
};
