#include "OssRender/Surface/OssRdMips.h"

#include "OssEvaluation/Values/OssEvHalf.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace {

constexpr int Channels = 4;
using Sum = std::array<float, Channels>;

float toNumber(std::uint8_t value)
{
    return float(value);
}

float toNumber(std::uint16_t half)
{
    return OssEvHalf::toFloat(half);
}

void put(float number, std::uint8_t *value)
{
    *value = std::uint8_t(std::lround(number));
}

void put(float number, std::uint16_t *half)
{
    *half = OssEvHalf::fromFloat(number);
}

/// A mean of texels, each with its weight.
class Mean
{
public:
    template <class Value>
    void add(const Value *texel, float weight)
    {
        for (std::size_t c = 0; c < Channels; ++c)
            m_sum[c] += toNumber(texel[c]) * weight;
        m_weights += weight;
    }

    bool isEmpty() const { return m_weights <= 0.0F; }

    template <class Value>
    void write(Value *texel) const
    {
        for (std::size_t c = 0; c < Channels; ++c)
            put(m_sum[c] / m_weights, &texel[c]);
    }

private:
    Sum m_sum{};
    float m_weights = 0.0F;
};

} // namespace

template <class Value>
OssRdMips<Value>::OssRdMips(int size, OssRdCoverage::Pointer coverage)
    : m_size(size)
    , m_coverage(std::move(coverage))
{
    for (int across = size / 2; across >= 1; across /= 2)
        m_levels.emplace_back(std::size_t(across) * std::size_t(across) * Channels);
}

template <class Value>
OssRdMips<Value>::OssRdMips(int size, OssRdCoverage::Pointer coverage,
                            std::vector<std::vector<Value>> levels)
    : m_size(size)
    , m_coverage(std::move(coverage))
    , m_levels(std::move(levels))
{
}

template <class Value>
std::vector<Value> OssRdMips<Value>::texels(int level, const OssEvRegion &part) const
{
    std::vector<Value> found;
    const auto width = std::ptrdiff_t(part.width) * Channels;
    found.reserve(std::size_t(width) * std::size_t(part.height));
    for (int y = part.y; y < part.bottom(); ++y) {
        const auto from = texels(level).begin() + std::ptrdiff_t(place(level, part.x, y));
        found.insert(found.end(), from, from + width);
    }
    return found;
}

/// A row of a copy of the two rows above it, which begin where it does.
template <class Value>
void OssRdMips<Value>::halve(int level, const OssEvRegion &row, const Value *above,
                             const Value *below)
{
    const int across = size(level);
    const std::uint8_t *weights = m_coverage ? m_coverage->weights(2 * across) : nullptr;
    Value *to = &m_levels[std::size_t(level)][place(level, row.x, row.y)];
    for (int x = 0; x < row.width; ++x, to += Channels) {
        const std::array<const Value *, 4> fine{above, above + Channels, below, below + Channels};
        Mean mean;
        for (std::size_t i = 0; i < fine.size() && weights; ++i) {
            const std::size_t column = 2 * std::size_t(row.x + x) + i % 2;
            const std::size_t line = 2 * std::size_t(row.y) + i / 2;
            mean.add(fine[i], float(weights[line * 2 * std::size_t(across) + column]));
        }
        const bool isOpen = mean.isEmpty();
        for (std::size_t i = 0; i < fine.size() && isOpen; ++i)
            mean.add(fine[i], 1.0F);
        mean.write(to);
        above += std::ptrdiff_t(2) * Channels;
        below += std::ptrdiff_t(2) * Channels;
    }
}

/// Texels beside covered ones become as these are.
template <class Value>
OssEvRegion OssRdMips<Value>::goOn(int level, const OssEvRegion &area)
{
    const int across = size(level);
    const std::uint8_t *weights = m_coverage ? m_coverage->weights(across) : nullptr;
    if (!weights)
        return area;
    const OssEvRegion whole{0, 0, across, across};
    const OssEvRegion wide = OssEvRegion{area.x - 1, area.y - 1, area.width + 2, area.height + 2}
                                 .intersected(whole);
    std::vector<Value> &texels = m_levels[std::size_t(level)];
    const auto weightAt = [&](int x, int y) {
        return weights[std::size_t(y) * std::size_t(across) + std::size_t(x)];
    };
    for (int y = wide.y; y < wide.bottom(); ++y) {
        for (int x = wide.x; x < wide.right(); ++x) {
            if (weightAt(x, y) > 0)
                continue;
            Mean mean;
            for (int below = std::max(y - 1, 0); below <= std::min(y + 1, across - 1); ++below) {
                for (int beside = std::max(x - 1, 0); beside <= std::min(x + 1, across - 1);
                     ++beside)
                    mean.add(&texels[place(level, beside, below)], float(weightAt(beside, below)));
            }
            if (!mean.isEmpty())
                mean.write(&texels[place(level, x, y)]);
        }
    }
    return wide;
}

template <class Value>
std::vector<OssEvRegion> OssRdMips<Value>::update(const OssEvRegion &area, const Rows &rows)
{
    std::vector<OssEvRegion> changed;
    OssEvRegion fine = area;
    for (int level = 0; level < levels(); ++level) {
        const OssEvRegion part{fine.x / 2, fine.y / 2, (fine.right() + 1) / 2 - fine.x / 2,
                               (fine.bottom() + 1) / 2 - fine.y / 2};
        for (int y = part.y; y < part.bottom(); ++y) {
            const OssEvRegion row{part.x, y, part.width, 1};
            if (level == 0) {
                halve(level, row, rows(2 * y), rows(2 * y + 1));
                continue;
            }
            const std::vector<Value> &finer = texels(level - 1);
            halve(level, row, &finer[place(level - 1, 2 * part.x, 2 * y)],
                  &finer[place(level - 1, 2 * part.x, 2 * y + 1)]);
        }
        changed.push_back(goOn(level, part));
        fine = part;
    }
    return changed;
}

template class OssRdMips<std::uint8_t>;
template class OssRdMips<std::uint16_t>;
