#include "OssEvaluation/Kernels/Sampler.h"

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = OssEvTile::Size;
constexpr int MaximumReduction = 8;
constexpr double Farthest = 1e8;

int positiveModulo(int value, int divisor)
{
    const int rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

int whole(double value)
{
    // Not a number ends up at the lower bound.
    return int(std::floor(std::max(-Farthest, std::min(Farthest, value))));
}

/// Whether a texel and those right of and below it are in one tile that is there.
bool areOfOneTile(const OssEvTileGrid &grid, int x, int y)
{
    const OssEvFrame &frame = grid.frame();
    return x >= 0 && y >= 0 && x + 1 < frame.width && y + 1 < frame.height && x % Size != Size - 1
           && y % Size != Size - 1 && grid.tiles().contains(x / Size, y / Size);
}

} // namespace

OssEvFrame OssEvReduced(OssEvFrame frame, int times)
{
    for (int i = 0; i < times; ++i) {
        frame.width = (frame.width + 1) / 2;
        frame.height = (frame.height + 1) / 2;
        frame.scale *= 2.0;
    }
    return frame;
}

int OssEvReductionFor(double factor)
{
    if (!(factor >= 2.0))
        return 0;
    return std::min(MaximumReduction, int(std::floor(std::log2(factor) + 1e-9)));
}

OssEvSampler::OssEvSampler(const OssEvTileGrid &grid, OssEvTileGrid::Border border,
                           OssEvScratch *scratch)
    : m_grid(grid)
    , m_border(border)
    , m_scratch(scratch)
    , m_planes(grid.isConstant()
                   ? 0
                   : std::size_t(grid.tiles().width) * std::size_t(grid.tiles().height),
               nullptr)
{
}

OssEvSampler::Texel OssEvSampler::at(double x, double y)
{
    if (m_grid.isConstant())
        return m_grid.value();
    const int left = whole(x - 0.5);
    const int top = whole(y - 0.5);
    const auto s = float(x - 0.5 - left);
    const auto t = float(y - 0.5 - top);
    Texel result{};
    if (areOfOneTile(m_grid, left, top)) {
        const float *corner = plane(left / Size, top / Size) + std::ptrdiff_t(top % Size) * Size
                              + left % Size;
        for (int k = 0; k < m_grid.channels(); ++k, corner += OssEvTile::Texels) {
            const float upper = corner[0] + (corner[1] - corner[0]) * s;
            const float lower = corner[Size] + (corner[Size + 1] - corner[Size]) * s;
            result[std::size_t(k)] = upper + (lower - upper) * t;
        }
        return result;
    }
    const Texel a = texel(left, top);
    const Texel b = texel(left + 1, top);
    const Texel c = texel(left, top + 1);
    const Texel d = texel(left + 1, top + 1);
    for (std::size_t k = 0; k < 4; ++k) {
        const float upper = a[k] + (b[k] - a[k]) * s;
        const float lower = c[k] + (d[k] - c[k]) * s;
        result[k] = upper + (lower - upper) * t;
    }
    return result;
}

OssEvSampler::Texel OssEvSampler::covered(double x, double y, const OssEvSurfaceMap &surface)
{
    if (m_grid.isConstant())
        return m_grid.value();
    const OssEvFrame &frame = surface.frame();
    const int left = whole(x - 0.5);
    const int top = whole(y - 0.5);
    const double s = x - 0.5 - left;
    const double t = y - 0.5 - top;
    Texel result{};
    double sum = 0.0;
    for (int i = 0; i < 4; ++i) {
        const int column = std::clamp(left + (i & 1), 0, frame.width - 1);
        const int line = std::clamp(top + (i >> 1), 0, frame.height - 1);
        const double weight = ((i & 1) != 0 ? s : 1.0 - s) * ((i >> 1) != 0 ? t : 1.0 - t);
        if (weight <= 0.0 || !surface.isCovered(column, line))
            continue;
        const Texel found = texel(column, line);
        for (std::size_t k = 0; k < 4; ++k)
            result[k] += float(weight) * found[k];
        sum += weight;
    }
    if (sum > 1e-6) {
        for (float &value : result)
            value /= float(sum);
        return result;
    }
    int nearX = std::clamp(whole(x), 0, frame.width - 1);
    int nearY = std::clamp(whole(y), 0, frame.height - 1);
    surface.nearestCovered(nearX, nearY, &nearX, &nearY);
    return texel(nearX, nearY);
}

OssEvSampler::Texel OssEvSampler::texel(int x, int y)
{
    const OssEvFrame &frame = m_grid.frame();
    if (m_border == OssEvTileGrid::Border::Repeat) {
        x = positiveModulo(x, frame.width);
        y = positiveModulo(y, frame.height);
    } else if (!frame.region().contains(x, y)) {
        if (m_border == OssEvTileGrid::Border::Zero)
            return {};
        x = std::clamp(x, 0, frame.width - 1);
        y = std::clamp(y, 0, frame.height - 1);
    }
    const OssEvRegion &tiles = m_grid.tiles();
    x = std::clamp(x, tiles.x * Size, tiles.right() * Size - 1);
    y = std::clamp(y, tiles.y * Size, tiles.bottom() * Size - 1);
    const float *values = plane(x / Size, y / Size) + std::ptrdiff_t(y % Size) * Size + x % Size;
    Texel result{};
    for (int k = 0; k < m_grid.channels(); ++k)
        result[std::size_t(k)] = values[std::ptrdiff_t(k) * OssEvTile::Texels];
    return result;
}

const float *OssEvSampler::plane(int tileX, int tileY)
{
    const OssEvRegion &tiles = m_grid.tiles();
    const float *&planes = m_planes[std::size_t(tileY - tiles.y) * std::size_t(tiles.width)
                                    + std::size_t(tileX - tiles.x)];
    if (planes == nullptr) {
        float *made = m_scratch->floats(std::size_t(m_grid.channels()) * OssEvTile::Texels);
        const OssEvRegion region{tileX * Size, tileY * Size, Size, Size};
        for (int channel = 0; channel < m_grid.channels(); ++channel) {
            m_grid.assemble(channel, region, OssEvTileGrid::Border::Clamp,
                            made + std::ptrdiff_t(channel) * OssEvTile::Texels, Size);
        }
        planes = made;
    }
    return planes;
}
