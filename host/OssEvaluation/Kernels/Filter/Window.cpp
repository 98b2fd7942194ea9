#include "OssEvaluation/Kernels/Filter/Window.h"

#include "OssEvaluation/Kernels/Coverage.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;
constexpr double Pi = 3.14159265358979324;
constexpr int MostHalvings = 8;

// Halvings after which places so far apart are neighbours.
int reductionFor(double distance)
{
    return std::clamp(int(std::floor(std::log2(std::max(distance, 1.0)) + 1e-9)), 0, MostHalvings);
}

void finish(OssEvWindow *window)
{
    for (const OssEvOffset &offset : window->offsets)
        window->radius = std::max({window->radius, std::abs(offset.x), std::abs(offset.y)});
}

int floorDivide(int value, int divisor)
{
    return int(std::floor(double(value) / divisor));
}

} // namespace

OssEvWindow OssEvWindow::disc(double radius, int most)
{
    OssEvWindow window;
    window.offsets.push_back({0, 0});
    const int reach = int(std::floor(radius));
    const double square = (radius + 0.25) * (radius + 0.25);
    if (Pi * square <= most) {
        for (int y = -reach; y <= reach; ++y) {
            for (int x = -reach; x <= reach; ++x) {
                if ((x != 0 || y != 0) && double(x) * x + double(y) * y <= square)
                    window.offsets.push_back({x, y});
            }
        }
        finish(&window);
        return window;
    }
    constexpr double Golden = 2.39996322972865332;
    window.offsets.reserve(std::size_t(most));
    for (int i = 1; i < most; ++i) {
        const double away = radius * std::sqrt(double(i) / (most - 1));
        window.offsets.push_back({int(std::lround(away * std::cos(i * Golden))),
                                  int(std::lround(away * std::sin(i * Golden)))});
    }
    window.reduction = reductionFor(radius * std::sqrt(Pi / most) * 0.75);
    finish(&window);
    return window;
}

OssEvWindow OssEvWindow::stripe(double length, double width, double angle, bool gaussian)
{
    constexpr int MostAlong = 48;
    constexpr int MostAcross = 5;
    const auto count = [](double size, int most) {
        return std::min(most, 2 * int(std::ceil(size / 2.0)) + 1);
    };
    const int along = count(length, MostAlong + 1);
    const int across = count(width, MostAcross);
    OssEvWindow window;
    double sum = 0.0;
    window.offsets.reserve(std::size_t(along) * std::size_t(across));
    for (int i = 0; i < along * across; ++i) {
        const int line = i / along;
        const double s = along == 1 ? 0.0 : double(i % along) / (along - 1) - 0.5;
        const double t = across == 1 ? 0.0 : double(line) / (across - 1) - 0.5;
        const double x = s * length * std::cos(angle) + t * width * std::sin(angle);
        const double y = -s * length * std::sin(angle) + t * width * std::cos(angle);
        constexpr double Narrow = 18.0; // the ends are three deviations away
        const double weight = gaussian ? std::exp(-Narrow * (s * s + t * t)) : 1.0;
        window.offsets.push_back({int(std::lround(x)), int(std::lround(y)), float(weight)});
        sum += weight;
    }
    for (OssEvOffset &offset : window.offsets)
        offset.weight = float(double(offset.weight) / sum);
    window.reduction = reductionFor(
        std::max(along > 1 ? length / (along - 1) : 0.0, across > 1 ? width / (across - 1) : 0.0)
        * 0.75);
    finish(&window);
    return window;
}

OssEvWindowOperation::OssEvWindowOperation(OssEvWindow window)
    : OssEvAreaOperation({{0, 0}, {0, window.reduction}})
    , m_window(std::move(window))
{
}

OssEvRegion OssEvWindowOperation::needed(std::size_t tap, const OssEvRegion &block) const
{
    return tap == 0 ? block : OssEvUnder(block.expanded(m_window.radius), m_window.reduction);
}

void OssEvWindowOperation::run(const OssEvBlock &block) const
{
    OssEvScratch scratch;
    const OssEvRegion region = block.region.expanded(m_window.radius);
    const int channels = std::max(block.inputs[0].channels(), 1);
    OssEvWindowField field{block, m_window, {}, {}};
    field.here.reserve(std::size_t(channels));
    field.around.reserve(std::size_t(channels));
    for (int k = 0; k < channels; ++k) {
        if (block.cancel != nullptr && block.cancel->isCancelled())
            return;
        field.here.emplace_back(&scratch, block.region.width, block.region.height);
        block.inputs[0].assemble(k, block.region, Clamp, field.here.back().data,
                                 field.here.back().stride);
        field.around.emplace_back(&scratch, region.width, region.height);
        OssEvEnlarge(block.inputs[1], k, region, m_window.reduction, field.around.back());
    }
    if (block.surface == nullptr) {
        filter(field);
        return;
    }
    const OssEvCoverageSource coverage(*block.surface, 0);
    const OssEvPlane cover(&scratch, region.width, region.height);
    if (!coverage.isWhole(region)) {
        coverage.read(region, cover);
        field.cover = &cover;
    }
    filter(field);
}

OssEvRegion OssEvUnder(const OssEvRegion &region, int reduction)
{
    if (reduction == 0)
        return region;
    const int unit = 1 << reduction;
    const int x = floorDivide(region.x, unit) - 1;
    const int y = floorDivide(region.y, unit) - 1;
    return {x, y, floorDivide(region.right() - 1, unit) + 3 - x,
            floorDivide(region.bottom() - 1, unit) + 3 - y};
}

void OssEvEnlarge(const OssEvTileGrid &grid, int channel, const OssEvRegion &region, int reduction,
                  const OssEvPlane &to)
{
    if (reduction == 0) {
        grid.assemble(channel, region, Clamp, to.data, to.stride);
        return;
    }
    OssEvScratch scratch;
    const OssEvRegion under = OssEvUnder(region, reduction);
    const OssEvPlane small(&scratch, under.width, under.height);
    grid.assemble(channel, under, Clamp, small.data, small.stride);
    OssEvEnlarge(small, under.x, under.y, region, reduction, to);
}

void OssEvEnlarge(const OssEvPlane &from, int x, int y, const OssEvRegion &region, int reduction,
                  const OssEvPlane &to)
{
    const double unit = 1 << reduction;
    std::vector<int> columns(std::size_t(region.width));
    std::vector<float> parts(std::size_t(region.width));
    for (int i = 0; i < region.width; ++i) {
        const double place = (region.x + i + 0.5) / unit - 0.5 - x;
        const int left = std::clamp(int(std::floor(place)), 0, std::max(from.width - 2, 0));
        columns[std::size_t(i)] = left;
        parts[std::size_t(i)] = float(std::clamp(place - left, 0.0, 1.0));
    }
    OssEvScratch scratch;
    const OssEvPlane between(&scratch, from.width, 1);
    for (int j = 0; j < region.height; ++j) {
        const double place = (region.y + j + 0.5) / unit - 0.5 - y;
        const int top = std::clamp(int(std::floor(place)), 0, std::max(from.height - 2, 0));
        const auto part = float(std::clamp(place - top, 0.0, 1.0));
        const float *upper = from.row(top);
        const float *lower = from.row(std::min(top + 1, from.height - 1));
        float *mixed = between.row(0);
        for (int i = 0; i < from.width; ++i)
            mixed[i] = upper[i] + (lower[i] - upper[i]) * part;
        float *target = to.row(j);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const int left = columns[i];
            const float *pair = mixed + left;
            const float next = left + 1 < from.width ? pair[1] : pair[0];
            target[i] = pair[0] + (next - pair[0]) * parts[i];
        }
    }
}
