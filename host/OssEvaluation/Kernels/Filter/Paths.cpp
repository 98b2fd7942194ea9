// Filters that follow a way through the picture at each texel: blurs around a center, down a slope; and
// those that see it in coarse pieces.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Filter/Pyramid.h"
#include "OssEvaluation/Kernels/Filter/Window.h"
#include "OssEvaluation/Kernels/FilterKernel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;
constexpr double Turn = 6.283185307179586;
using Texel = OssEvSampler::Texel;
using Operation = std::shared_ptr<const OssEvOperation>;

bool isCancelled(const OssEvBlock &block)
{
    return block.cancel != nullptr && block.cancel->isCancelled();
}

void put(const OssEvBlock &block, int x, int y, const Texel &texel)
{
    const std::ptrdiff_t offset = std::ptrdiff_t(y) * block.stride + x;
    for (int k = 0; k < block.outputChannels; ++k)
        block.output[std::size_t(k)][offset] = texel[std::size_t(k)];
}

/// The mean along the arc, or along the ray, that a texel would leave behind while the picture turns,
/// or comes nearer.
class RadialBlur : public OssEvAreaOperation
{
public:
    explicit RadialBlur(const OssEvKernelSetup &setup)
        : OssEvAreaOperation(OssEvPyramid::taps(0, Levels))
        , m_frame(setup.frame())
        , m_spins(setup.integer("Mode") == 0)
        , m_amount(setup.real("Amount"))
        , m_center(setup.vector("Center"))
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion & /*block*/) const override
    {
        return OssEvReduced(m_frame, int(tap)).region();
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        OssEvPyramid pyramid(block, 0, Levels, Clamp, &scratch);
        for (int y = 0; y < block.region.height && !isCancelled(block); ++y) {
            for (int x = 0; x < block.region.width; ++x)
                put(block, x, y,
                    mean(&pyramid, block.region.x + x + 0.5, block.region.y + y + 0.5));
        }
    }

private:
    static constexpr int Levels = 6;
    static constexpr int Most = 24;

    Texel mean(OssEvPyramid *pyramid, double x, double y) const
    {
        const double centerX = m_center[0] * m_frame.width;
        const double centerY = (1.0 - m_center[1]) * m_frame.height;
        const double dx = x - centerX;
        const double dy = y - centerY;
        const double length = std::hypot(dx, dy) * m_amount * (m_spins ? Turn : 1.0);
        const int count = std::clamp(int(std::ceil(length)), 1, Most);
        const double level = std::log2(std::max(length / count, 1.0));
        Texel sum{};
        for (int i = 0; i < count; ++i) {
            const double t = ((i + 0.5) / count - 0.5) * m_amount;
            double fromX = centerX + dx * (1.0 + t);
            double fromY = centerY + dy * (1.0 + t);
            if (m_spins) {
                const double c = std::cos(t * Turn);
                const double s = std::sin(t * Turn);
                fromX = centerX + c * dx - s * dy;
                fromY = centerY + s * dx + c * dy;
            }
            const Texel texel = pyramid->at(fromX, fromY, level);
            for (std::size_t k = 0; k < 4; ++k)
                sum[k] += texel[k] / float(count);
        }
        return sum;
    }

    OssEvFrame m_frame;
    bool m_spins;
    double m_amount;
    OssEvVector2 m_center;
};

/// Walks down the slopes of a map and takes the mean, the brightest or the darkest of what is there.
class SlopeBlur : public OssEvAreaOperation
{
public:
    explicit SlopeBlur(const OssEvKernelSetup &setup)
        : OssEvAreaOperation(tapsOf())
        , m_frame(setup.frame())
        , m_length(std::abs(setup.real("Length")) * setup.frame().width)
        , m_sign(setup.real("Length") < 0.0 ? -1.0 : 1.0)
        , m_mode(setup.integer("Mode"))
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        if (tap == 0)
            return region(block);
        const OssEvRegion wide = block.expanded(int(std::ceil(m_length)) + 2);
        const int unit = 1 << (tap - 1);
        return OssEvRegion{wide.x / unit, wide.y / unit, wide.width / unit, wide.height / unit}
            .expanded(3);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        OssEvPyramid pyramid(block, 1, Levels, Clamp, &scratch);
        const OssEvRegion around = region(block.region);
        const OssEvPlane heights(&scratch, around.width, around.height);
        block.inputs[0].assemble(0, around, Clamp, heights.data, heights.stride);
        for (int y = 0; y < block.region.height && !isCancelled(block); ++y) {
            for (int x = 0; x < block.region.width; ++x)
                put(block, x, y,
                    walk(&pyramid, heights, around, block.region.x + x + 0.5,
                         block.region.y + y + 0.5));
        }
    }

private:
    static constexpr int Levels = 4;
    static constexpr int Steps = 16;

    enum Mode { Mean, Brightest, Darkest };

    static std::vector<OssEvTap> tapsOf()
    {
        std::vector<OssEvTap> taps{{1, 0}};
        const std::vector<OssEvTap> levels = OssEvPyramid::taps(0, Levels);
        taps.insert(taps.end(), levels.begin(), levels.end());
        return taps;
    }

    OssEvRegion region(const OssEvRegion &block) const
    {
        return block.expanded(int(std::ceil(m_length)) + 4 + reach());
    }

    // Slopes are those of the hundredth part of a patch, at any size.
    int reach() const { return std::max(1, m_frame.width / 256); }

    Texel walk(OssEvPyramid *pyramid, const OssEvPlane &heights, const OssEvRegion &around,
               double x, double y) const
    {
        const int steps = std::clamp(int(std::ceil(m_length)), 1, Steps);
        const double step = m_length / steps;
        const double level = std::log2(std::max(step, 1.0));
        Texel sum = pyramid->at(x, y, 0.0);
        for (int i = 0; i < steps && m_length > 0.0; ++i) {
            const auto [across, down] = slope(heights, int(std::floor(x)) - around.x,
                                              int(std::floor(y)) - around.y);
            x -= across * step;
            y -= down * step;
            add(pyramid->at(x, y, level), &sum);
        }
        if (m_mode == Mean && m_length > 0.0) {
            for (float &value : sum)
                value /= float(steps + 1);
        }
        return sum;
    }

    void add(const Texel &texel, Texel *sum) const
    {
        for (std::size_t k = 0; k < 4; ++k) {
            float &value = (*sum)[k];
            if (m_mode == Mean)
                value += texel[k];
            else
                value = m_mode == Brightest ? std::max(value, texel[k]) : std::min(value, texel[k]);
        }
    }

    // Which way is up, no longer than 1: the steeper the farther.
    std::array<double, 2> slope(const OssEvPlane &heights, int x, int y) const
    {
        const int away = reach();
        x = std::clamp(x, away, heights.width - 1 - away);
        y = std::clamp(y, away, heights.height - 1 - away);
        // A map that rises by this much across the patch is as steep as counts.
        constexpr double Steep = 4.0;
        const double scale = m_sign * m_frame.width / (2.0 * away * Steep);
        const double across = scale * double(heights.row(y)[x + away] - heights.row(y)[x - away]);
        const double down = scale * double(heights.row(y + away)[x] - heights.row(y - away)[x]);
        const double length = std::hypot(across, down);
        if (!(length > 1.0))
            return {std::isfinite(across) ? across : 0.0, std::isfinite(down) ? down : 0.0};
        return {across / length, down / length};
    }

    OssEvFrame m_frame;
    double m_length;
    double m_sign;
    int m_mode;
};

/// One colour for each cell: the mean of what lies in it.
class Pixelate : public OssEvAreaOperation
{
public:
    explicit Pixelate(const OssEvKernelSetup &setup)
        : OssEvAreaOperation(OssEvPyramid::taps(0, Levels))
        , m_frame(setup.frame())
        , m_size(double(setup.frame().width) / setup.integer("Columns"))
        , m_isHexagon(setup.integer("Shape") == 1)
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        const int unit = 1 << tap;
        const OssEvRegion wide = block.expanded(int(std::ceil(2.0 * m_size)) + 2);
        return OssEvRegion{wide.x / unit, wide.y / unit, wide.width / unit, wide.height / unit}
            .expanded(3);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        OssEvPyramid pyramid(block, 0, Levels, Clamp, &scratch);
        for (int y = 0; y < block.region.height && !isCancelled(block); ++y) {
            std::array<double, 2> last{-1e9, -1e9};
            Texel texel{};
            for (int x = 0; x < block.region.width; ++x) {
                const auto middle = middleOf(block.region.x + x + 0.5, block.region.y + y + 0.5);
                if (middle != last)
                    texel = mean(&pyramid, middle);
                last = middle;
                put(block, x, y, texel);
            }
        }
    }

private:
    static constexpr int Levels = 8;

    std::array<double, 2> middleOf(double x, double y) const
    {
        const double height = m_frame.height - y; // from below
        if (!m_isHexagon) {
            return {(std::floor(x / m_size) + 0.5) * m_size,
                    m_frame.height - (std::floor(height / m_size) + 0.5) * m_size};
        }
        // The nearer one of the middles of two grids that lie in each other's gaps.
        const double row = m_size * std::sqrt(3.0);
        const auto nearest = [&](double shift) {
            return std::array<double, 2>{(std::round(x / m_size - shift) + shift) * m_size,
                                         (std::round(height / row - shift) + shift) * row};
        };
        const auto a = nearest(0.0);
        const auto b = nearest(0.5);
        const bool first = std::hypot(x - a[0], height - a[1])
                           <= std::hypot(x - b[0], height - b[1]);
        const auto &middle = first ? a : b;
        return {middle[0], m_frame.height - middle[1]};
    }

    Texel mean(OssEvPyramid *pyramid, const std::array<double, 2> &middle) const
    {
        constexpr int Across = 4;
        const double level = std::log2(std::max(m_size / Across, 1.0));
        Texel sum{};
        for (int i = 0; i < Across * Across; ++i) {
            const int row = i / Across;
            const double x = middle[0] + ((i % Across + 0.5) / Across - 0.5) * m_size;
            const double y = middle[1] + ((row + 0.5) / Across - 0.5) * m_size;
            const Texel texel = pyramid->at(x, y, level);
            for (std::size_t k = 0; k < 4; ++k)
                sum[k] += texel[k] / float(Across * Across);
        }
        return sum;
    }

    OssEvFrame m_frame;
    double m_size;
    bool m_isHexagon;
};

/// Takes a coarse picture apart by the direction of its edges: H. Takeda et al., "Kernel Regression for
/// Image Processing and Reconstruction", 2007.
class Upscale : public OssEvAreaOperation
{
public:
    explicit Upscale(const OssEvKernelSetup &setup)
        : OssEvAreaOperation({{0, 1 + setup.integer("Factor")}})
        , m_reduction(1 + setup.integer("Factor"))
        , m_edges(setup.real("Edges"))
        , m_luminance(setup.working().luminance)
    {
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return OssEvUnder(block, m_reduction).expanded(Margin);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const OssEvRegion region = needed(0, block.region);
        std::vector<OssEvPlane> planes;
        planes.reserve(std::size_t(block.outputChannels));
        for (int k = 0; k < block.outputChannels; ++k) {
            planes.emplace_back(&scratch, region.width, region.height);
            block.inputs[0].assemble(k, region, Clamp, planes.back().data, planes.back().stride);
        }
        const std::array<OssEvPlane, 3> tensor{OssEvPlane(&scratch, region.width, region.height),
                                               OssEvPlane(&scratch, region.width, region.height),
                                               OssEvPlane(&scratch, region.width, region.height)};
        findEdges(planes, tensor, &scratch);
        const double unit = 1 << m_reduction;
        for (int y = 0; y < block.region.height && !isCancelled(block); ++y) {
            for (int x = 0; x < block.region.width; ++x) {
                put(block, x, y,
                    steered(planes, tensor, (block.region.x + x + 0.5) / unit - region.x,
                            (block.region.y + y + 0.5) / unit - region.y));
            }
        }
    }

private:
    static constexpr int Margin = 4;

    // Squares and product of the slopes, in the mean over three texels.
    void findEdges(const std::vector<OssEvPlane> &planes, const std::array<OssEvPlane, 3> &tensor,
                   OssEvScratch *scratch) const
    {
        const int width = planes[0].width;
        const int height = planes[0].height;
        const OssEvPlane light(scratch, width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                float value = planes[0].row(y)[x];
                if (planes.size() >= 3) {
                    value = 0.0F;
                    for (std::size_t k = 0; k < 3; ++k)
                        value += m_luminance[k] * planes[k].row(y)[x];
                }
                light.row(y)[x] = value;
            }
        }
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                std::array<float, 3> sum{};
                for (int i = 0; i < 9; ++i) {
                    const int column = std::clamp(x + i % 3 - 1, 1, width - 2);
                    const int line = std::clamp(y + i / 3 - 1, 1, height - 2);
                    const float *row = light.row(line) + column;
                    const float across = 0.5F * (row[1] - row[-1]);
                    const float down = 0.5F
                                       * (light.row(line + 1)[column]
                                          - light.row(line - 1)[column]);
                    sum[0] += across * across;
                    sum[1] += across * down;
                    sum[2] += down * down;
                }
                for (std::size_t k = 0; k < 3; ++k)
                    tensor[k].row(y)[x] = sum[k] / 9.0F;
            }
        }
    }

    Texel steered(const std::vector<OssEvPlane> &planes, const std::array<OssEvPlane, 3> &tensor,
                  double x, double y) const
    {
        const int column = std::clamp(int(std::floor(x)), 2, planes[0].width - 3);
        const int line = std::clamp(int(std::floor(y)), 2, planes[0].height - 3);
        const double xx = tensor[0].row(line)[column];
        const double xy = tensor[1].row(line)[column];
        const double yy = tensor[2].row(line)[column];
        const double root = std::sqrt((xx - yy) * (xx - yy) + 4.0 * xy * xy);
        // How much more it changes across an edge than along it, from 0 to 1.
        const double edge = m_edges * root / (xx + yy + 1e-4);
        const double angle = 0.5 * std::atan2(2.0 * xy, xx - yy);
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double across = 1.0 / (0.3 + 0.3 * (1.0 - edge));
        const double along = 1.0 / (0.6 + 1.2 * edge);
        Texel sum{};
        double total = 0.0;
        for (int i = 0; i < 25; ++i) {
            const int fromX = column + i % 5 - 2;
            const int fromY = line + i / 5 - 2;
            const double dx = fromX + 0.5 - x;
            const double dy = fromY + 0.5 - y;
            const double a = (c * dx + s * dy) * across;
            const double b = (c * dy - s * dx) * along;
            const double weight = std::exp(-0.5 * (a * a + b * b));
            total += weight;
            for (std::size_t k = 0; k < planes.size(); ++k)
                sum[k] += float(weight) * planes[k].row(fromY)[fromX];
        }
        for (float &value : sum)
            value /= float(total);
        return sum;
    }

    int m_reduction;
    double m_edges;
    OssEvWorkingSpace::Weights m_luminance;
};

} // namespace

void OssEvFamilies::addPaths(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    kernels->push_back(
        OssEvFilterKernel::describe("radialBlur", "Input", 0,
                                    {choice("Mode", {"Spin", "Zoom"}), real("Amount", 0.08, 0, 1),
                                     vector("Center", {0.5, 0.5})},
                                    OssEvFilterKernel::make<RadialBlur>));
    OssEvKernel slope = OssEvFilterKernel::describe(
        "slopeBlur", "Input", 0,
        {real("Length", 0.05, -0.2, 0.2), choice("Mode", {"Average", "Brightest", "Darkest"})},
        OssEvFilterKernel::make<SlopeBlur>);
    slope.inputs.push_back({"Slope", 1});
    kernels->push_back(slope);
    kernels->push_back(OssEvFilterKernel::describe(
        "pixelate", "Input", 0,
        {integer("Columns", 32, 1, 1024), choice("Shape", {"Square", "Hexagon"})},
        OssEvFilterKernel::make<Pixelate>));
    kernels->push_back(OssEvFilterKernel::describe(
        "upscale", "Input", 0, {choice("Factor", {"2", "4", "8", "16"}, 1), real("Edges", 1, 0, 1)},
        OssEvFilterKernel::make<Upscale>));
}
