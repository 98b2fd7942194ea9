#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvRegion.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

class OssEvSurfaceMap;
class OssEvTileGrid;

/// What a kernel with set parameters does to texels. Immutable; used by several threads at once.
class OSSEVALUATION_EXPORT OssEvOperation
{
public:
    OssEvOperation() = default;
    OssEvOperation(const OssEvOperation &) = delete;
    OssEvOperation &operator=(const OssEvOperation &) = delete;
    virtual ~OssEvOperation();

    /// What an input that is not connected counts as.
    std::array<float, 4> inputDefault(std::size_t input) const
    {
        return input < defaults.size() ? defaults[input] : std::array<float, 4>{};
    }

    /// Whether the result depends on an input at all.
    bool readsInput(std::size_t input) const
    {
        return (onlyInput < 0 || onlyInput == int(input)) && ((ignored >> input) & 1U) == 0;
    }

    std::vector<std::array<float, 4>> defaults;
    /// The one input that is read; -1 for all of them.
    int onlyInput = -1;
    /// Inputs that are not read, a bit for each.
    std::uint32_t ignored = 0;
};

/// Texels of an input, in the number of channels that its port asks for.
struct OssEvStripInput
{
    std::array<const float *, 4> plane{};
    int channels = 0;
    bool connected = false;
};

/// Rows of one tile, worked on at once while they lie in the nearest cache. A strip always holds a
/// multiple of 64 texels and its planes are 64-byte aligned, so vector code needs no remainder.
struct OssEvStrip
{
    /// Of one operation.
    static constexpr std::size_t MaximumInputs = 12;

    OssEvFrame frame;
    /// First texel in the frame. May lie beyond its edge: tiles are computed whole.
    int x = 0;
    int y = 0;
    int width = 0;
    int rows = 0;
    const OssEvStripInput *inputs = nullptr;
    std::array<float *, 4> output{};
    int outputChannels = 0;
    /// Null where the request has no mesh, or the kernel did not ask for it.
    const OssEvSurfaceMap *surface = nullptr;
    const OssEvCancel *cancel = nullptr;

    std::size_t texels() const { return std::size_t(width) * std::size_t(rows); }
};

/// Result at a texel depends on the inputs at that texel only.
class OSSEVALUATION_EXPORT OssEvPointOperation : public OssEvOperation
{
public:
    virtual void run(const OssEvStrip &strip) const = 0;
};

/// Block of texels whose result depends on a surrounding of theirs.
struct OssEvBlock
{
    OssEvFrame frame;
    /// Whole tiles; may reach beyond the frame.
    OssEvRegion region;
    /// One for each tap.
    const OssEvTileGrid *inputs = nullptr;
    std::array<float *, 4> output{};
    /// Values from one row of the output to the next.
    int stride = 0;
    int outputChannels = 0;
    const OssEvSurfaceMap *surface = nullptr;
    const OssEvCancel *cancel = nullptr;
};

/// One look of an area operation at an input of its kernel.
struct OssEvTap
{
    std::size_t input = 0;
    /// How many times the input is halved before, with a filter that keeps it free of aliases.
    /// Texels of a wide surrounding are not worth looking at one by one.
    int reduction = 0;
};

class OSSEVALUATION_EXPORT OssEvAreaOperation : public OssEvOperation
{
public:
    /// The grids of a block come in this order.
    const std::vector<OssEvTap> &taps() const { return m_taps; }

    /// What a block needs of a tap, in texels of the reduced input. May reach beyond its edges.
    virtual OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const = 0;

    virtual void run(const OssEvBlock &block) const = 0;

    /// Whether what it gives in the region is what its only tap has there: nothing is computed then.
    virtual bool leavesAsItIs(const OssEvRegion &region, const OssEvSurfaceMap *surface) const;

protected:
    explicit OssEvAreaOperation(std::vector<OssEvTap> taps);

private:
    std::vector<OssEvTap> m_taps;
};

/// Stands for pixels that an image provider has.
class OSSEVALUATION_EXPORT OssEvImageOperation : public OssEvOperation
{
public:
    enum class ColorSpace { Automatic, Color, Data };

    std::string name;
    ColorSpace colorSpace = ColorSpace::Automatic;
    std::string space; ///< of what is not data; empty: as is told elsewhere
};
