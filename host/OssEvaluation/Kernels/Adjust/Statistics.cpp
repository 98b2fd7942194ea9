#include "OssEvaluation/Kernels/Adjust/Statistics.h"

#include "OssEvaluation/Kernels/Coverage.h"
#include "OssEvaluation/Kernels/Sampler.h"
#include "OssEvaluation/Kernels/Scratch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

constexpr std::size_t Bins = 4096;
/// Less cover than this has no colour that counts.
constexpr float Faintest = 0.02F;

int reductionOf(OssEvFrame frame)
{
    int times = 0;
    while (std::max(frame.width, frame.height) > OssEvMeasuredOperation::MeasuredSize) {
        frame = OssEvReduced(frame, 1);
        ++times;
    }
    return times;
}

std::vector<OssEvTap> tapsOf(const OssEvFrame &frame, const std::vector<std::size_t> &measured,
                             std::size_t mask)
{
    std::vector<OssEvTap> taps{{0, 0}, {mask, 0}};
    taps.reserve(taps.size() + measured.size());
    for (const std::size_t input : measured)
        taps.push_back({input, reductionOf(frame)});
    return taps;
}

// 1 everywhere without a surface.
void readCover(const OssEvSurfaceMap *surface, int reduction, const OssEvRegion &whole,
               const OssEvPlane &to)
{
    for (int y = 0; y < whole.height; ++y)
        std::fill_n(to.row(y), whole.width, 1.0F);
    if (surface != nullptr)
        OssEvCoverageSource(*surface, reduction).read(whole, to);
}

} // namespace

OssEvDistribution::OssEvDistribution(const std::vector<float> &values)
{
    if (values.empty())
        return;
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    m_low = *low;
    m_high = *high;
    const auto count = double(values.size());
    for (const float value : values)
        m_mean += double(value) / count;
    std::vector<double> bins(Bins, 0.0);
    const double scale = m_high > m_low ? Bins / (m_high - m_low) : 0.0;
    double squares = 0.0;
    for (const float value : values) {
        const double away = double(value) - m_mean;
        squares += away * away / count;
        bins[std::min(Bins - 1, std::size_t((double(value) - m_low) * scale))] += 1.0 / count;
    }
    m_spread = std::sqrt(squares);
    m_below.reserve(Bins + 1);
    m_below.push_back(0.0);
    for (const double part : bins)
        m_below.push_back(std::min(1.0, m_below.back() + part));
}

double OssEvDistribution::valueAt(double part) const
{
    if (m_below.empty() || part >= 1.0)
        return m_high;
    if (part <= 0.0)
        return m_low;
    const auto above = std::upper_bound(m_below.begin() + 1, m_below.end() - 1, part);
    const double inBin = *above > *(above - 1) ? (part - *(above - 1)) / (*above - *(above - 1))
                                               : 0.0;
    const double place = (double(above - m_below.begin() - 1) + inBin) / double(Bins);
    return m_low + (m_high - m_low) * std::clamp(place, 0.0, 1.0);
}

double OssEvDistribution::partBelow(double value) const
{
    if (m_below.empty() || value <= m_low)
        return 0.0;
    if (value >= m_high)
        return 1.0;
    const double place = (value - m_low) / (m_high - m_low) * double(Bins);
    const auto bin = std::min(std::size_t(place), Bins - 1);
    return m_below[bin] + (m_below[bin + 1] - m_below[bin]) * (place - double(bin));
}

OssEvMeasuredOperation::OssEvMeasuredOperation(const OssEvFrame &frame,
                                               const std::vector<std::size_t> &measured,
                                               std::size_t mask,
                                               const OssEvWorkingSpace::Weights &luminance,
                                               Make make)
    : OssEvAreaOperation(tapsOf(frame, measured, mask))
    , m_reduced(OssEvReduced(frame, reductionOf(frame)))
    , m_luminance(luminance)
    , m_make(std::move(make))
{
}

OssEvRegion OssEvMeasuredOperation::needed(std::size_t tap, const OssEvRegion &block) const
{
    return tap < 2 ? block : m_reduced.region();
}

OssEvPictureStatistics OssEvMeasuredOperation::measure(const OssEvBlock &block,
                                                       std::size_t tap) const
{
    constexpr auto Clamp = OssEvTileGrid::Border::Clamp;
    const OssEvTileGrid &grid = block.inputs[tap];
    const OssEvRegion whole = m_reduced.region();
    const int colors = std::min(grid.channels(), 3);
    OssEvScratch scratch;
    const OssEvPlane cover(&scratch, whole.width, whole.height);
    readCover(block.surface, taps()[tap].reduction, whole, cover);
    const OssEvPlane alpha(&scratch, whole.width, whole.height);
    const bool hasAlpha = grid.channels() == 4;
    if (hasAlpha)
        grid.assemble(3, whole, Clamp, alpha.data, alpha.stride);
    std::vector<std::vector<float>> values(std::size_t(colors) + 1);
    std::vector<OssEvPlane> planes;
    planes.reserve(std::size_t(colors));
    for (int k = 0; k < colors; ++k) {
        planes.emplace_back(&scratch, whole.width, whole.height);
        grid.assemble(k, whole, Clamp, planes.back().data, planes.back().stride);
    }
    for (int y = 0; y < whole.height; ++y) {
        for (int x = 0; x < whole.width; ++x) {
            const float there = hasAlpha ? alpha.row(y)[x] : 1.0F;
            if (cover.row(y)[x] < 0.5F || !(there >= Faintest))
                continue;
            float light = 0.0F;
            for (std::size_t k = 0; k < std::size_t(colors); ++k) {
                const float value = planes[k].row(y)[x] / there;
                values[k].push_back(value);
                light += colors == 1 ? value : value * m_luminance[k];
            }
            values.back().push_back(light);
        }
    }
    OssEvPictureStatistics statistics;
    statistics.channels.reserve(std::size_t(colors));
    for (std::size_t k = 0; k < std::size_t(colors); ++k)
        statistics.channels.emplace_back(values[k]);
    statistics.luminance = OssEvDistribution(values.back());
    return statistics;
}

void OssEvMeasuredOperation::run(const OssEvBlock &block) const
{
    std::vector<OssEvPictureStatistics> statistics;
    statistics.reserve(taps().size());
    for (std::size_t tap = 2; tap < taps().size(); ++tap)
        statistics.push_back(measure(block, tap));
    const auto operation = m_make(statistics);
    // A strip for each row of the block: what changes texels takes strips.
    OssEvScratch scratch;
    constexpr auto Clamp = OssEvTileGrid::Border::Clamp;
    const OssEvPlane mask(&scratch, block.region.width, block.region.height);
    block.inputs[1].assemble(0, block.region, Clamp, mask.data, mask.stride);
    std::vector<OssEvPlane> planes;
    planes.reserve(std::size_t(block.outputChannels));
    for (int k = 0; k < block.outputChannels; ++k) {
        planes.emplace_back(&scratch, block.region.width, block.region.height);
        block.inputs[0].assemble(k, block.region, Clamp, planes.back().data, planes.back().stride);
    }
    std::array<OssEvStripInput, 2> inputs;
    inputs[0].connected = true;
    inputs[0].channels = block.outputChannels;
    inputs[1].connected = isMasked;
    inputs[1].channels = 1;
    OssEvStrip strip;
    strip.frame = block.frame;
    strip.x = block.region.x;
    strip.width = block.region.width;
    strip.rows = 1;
    strip.inputs = inputs.data();
    strip.outputChannels = block.outputChannels;
    strip.cancel = block.cancel;
    for (int y = 0; y < block.region.height; ++y) {
        strip.y = block.region.y + y;
        inputs[1].plane[0] = mask.row(y);
        for (std::size_t k = 0; k < planes.size(); ++k) {
            inputs[0].plane[k] = planes[k].row(y);
            strip.output[k] = block.output[k] + std::ptrdiff_t(y) * block.stride;
        }
        operation->run(strip);
    }
}
