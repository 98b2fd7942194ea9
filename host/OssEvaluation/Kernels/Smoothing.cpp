#include "OssEvaluation/Kernels/Smoothing.h"

#include "OssEvaluation/Kernels/Convolve.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

// Filters wider than this see a halved input, so that a block needs a bounded surrounding.
constexpr double WidestOutside = 16.0;
// Inside a block halving goes on while the filter stays wide enough to hide it.
constexpr double WidestInside = 5.5;
constexpr double WidestBox = 32.0;
constexpr int MaximumReduction = 5;
// Doubling reads one texel around what it makes.
constexpr int Margin = 2;

// What halving and doubling `steps` times adds to a variance, in texels before them.
double addedVariance(int steps)
{
    return (std::pow(4.0, steps) - 1.0) / 2.0;
}

} // namespace

OssEvSmoothing::OssEvSmoothing(Shape shape, double size)
{
    const double widest = shape == Shape::Gaussian ? WidestOutside : WidestBox;
    while (m_before < MaximumReduction && size / (1 << m_before) > widest)
        ++m_before;
    if (shape == Shape::Box) {
        // The box covers 2 * size + 1 texels at any scale.
        const double radius = ((2.0 * size + 1.0) / (1 << m_before) - 1.0) / 2.0;
        m_weights = OssEvConvolve::box(std::max(0.0, radius));
        return;
    }
    while (m_before + m_inside < MaximumReduction + 2
           && size / (1 << (m_before + m_inside)) > WidestInside)
        ++m_inside;
    const int steps = m_before + m_inside;
    const double variance = (size * size - addedVariance(steps)) / std::pow(4.0, steps);
    m_weights = OssEvConvolve::gaussian(std::sqrt(std::max(0.0, variance)));
}

// Texels that doubling needs at a scale, the block's own texels among them.
OssEvRegion OssEvSmoothing::atScale(const OssEvRegion &block, int scale) const
{
    const int size = 1 << scale;
    const OssEvRegion region{block.x / size, block.y / size, (block.width + size - 1) / size,
                             (block.height + size - 1) / size};
    return scale == 0 ? region : region.expanded(Margin);
}

OssEvRegion OssEvSmoothing::needed(const OssEvRegion &block) const
{
    OssEvRegion region = atScale(block, m_before + m_inside).expanded(int(m_weights.size()) - 1);
    for (int i = 0; i < m_inside; ++i)
        region = {2 * region.x - 1, 2 * region.y - 1, 2 * region.width + 2, 2 * region.height + 2};
    return region;
}

void OssEvSmoothing::run(const Source &source, const OssEvRegion &block, const OssEvPlane &to) const
{
    OssEvScratch scratch;
    const OssEvRegion input = needed(block);
    OssEvPlane plane(&scratch, input.width, input.height);
    source.read(input, plane);
    for (int i = 0; i < m_inside; ++i) {
        const OssEvPlane half(&scratch, plane.width / 2 - 1, plane.height / 2 - 1);
        const OssEvPlane between(&scratch, plane.width, half.height);
        OssEvConvolve::halve(plane, between, half);
        plane = half;
    }
    const int radius = int(m_weights.size()) - 1;
    const OssEvPlane tall(&scratch, plane.width, plane.height - 2 * radius);
    OssEvConvolve::columns(plane, m_weights, tall);
    int scale = m_before + m_inside;
    if (scale == 0) {
        OssEvConvolve::rows(tall, m_weights, to);
        return;
    }
    plane = OssEvPlane(&scratch, tall.width - 2 * radius, tall.height);
    OssEvConvolve::rows(tall, m_weights, plane);
    while (scale > 0) {
        const OssEvRegion from = atScale(block, scale);
        const OssEvRegion next = atScale(block, --scale);
        // The part of the plane that the next scale is made from, one texel around it included.
        const int left = (next.x >> 1) - 1 - from.x;
        const int top = (next.y >> 1) - 1 - from.y;
        const OssEvPlane part(plane.row(top) + left, next.width / 2 + 2, next.height / 2 + 2,
                              plane.stride);
        const OssEvPlane result = scale == 0 ? to : OssEvPlane(&scratch, next.width, next.height);
        const OssEvPlane between(&scratch, part.width, next.height);
        OssEvConvolve::doubleSize(part, between, result);
        plane = result;
    }
}
