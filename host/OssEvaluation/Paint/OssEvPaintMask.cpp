#include "OssEvaluation/Paint/OssEvPaintMask.h"

#include "OssEvaluation/Paint/OssEvBetween.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float Whole = 65535.0F;

float brightness(const OssEvTile &tile, int x, int y, const OssEvWorkingSpace::Weights &luminance)
{
    const int channels = tile.channels();
    if (channels < 3)
        return tile.texel(0, x, y);
    float sum = 0.0F; // premultiplied, so alpha is in it
    for (int c = 0; c < 3; ++c)
        sum += luminance[std::size_t(c)] * tile.texel(c, x, y);
    return sum;
}

} // namespace

OssEvPaintMask::OssEvPaintMask(const std::vector<int> &patches, int resolution, bool inverted)
    : m_resolution(resolution)
    , m_isInverted(inverted)
{
    for (const int patch : patches)
        m_patches[patch].resize(std::size_t(resolution) * std::size_t(resolution));
}

void OssEvPaintMask::setTile(int patch, int column, int row, const OssEvTile &tile,
                             const OssEvWorkingSpace::Weights &luminance)
{
    const auto found = m_patches.find(patch);
    if (found == m_patches.end())
        return;
    const int left = column * OssEvTile::Size;
    const int top = row * OssEvTile::Size;
    const int width = std::min(OssEvTile::Size, m_resolution - left);
    const int height = std::min(OssEvTile::Size, m_resolution - top);
    for (int y = 0; y < height; ++y) {
        std::uint16_t *to =
            &found->second[std::size_t(top + y) * std::size_t(m_resolution) + std::size_t(left)];
        for (int x = 0; x < width; ++x) {
            const float value = brightness(tile, x, y, luminance);
            to[x] = std::uint16_t(
                std::lround(Whole * (value > 0.0F ? std::min(value, 1.0F) : 0.0F)));
        }
    }
}

std::shared_ptr<OssEvPaintMask> OssEvPaintMask::turned() const
{
    auto other = std::make_shared<OssEvPaintMask>(*this);
    other->m_isInverted = !m_isInverted;
    return other;
}

float OssEvPaintMask::at(int patch, double x, double y) const
{
    const auto found = m_patches.find(patch);
    if (found == m_patches.end())
        return 0.0F;
    const auto texel = [&](int column, int line) -> std::array<float, 4> {
        const auto across = std::size_t(m_resolution);
        const auto place = std::size_t(std::clamp(line, 0, m_resolution - 1)) * across
                           + std::size_t(std::clamp(column, 0, m_resolution - 1));
        return {float(found->second[place])};
    };
    const float value = OssEvBetween(x * m_resolution - 0.5, y * m_resolution - 0.5, texel)[0]
                        / Whole;
    return m_isInverted ? 1.0F - value : value;
}
