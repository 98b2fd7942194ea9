// What heights tell: slopes, curvature, cavities, occlusion; heights from normals; sharper normals.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Coverage.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Filter/Window.h"
#include "OssEvaluation/Kernels/FilterKernel.h"
#include "OssEvaluation/Kernels/Sampler.h"
#include "OssEvaluation/Kernels/Smoothing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr auto Clamp = OssEvTileGrid::Border::Clamp;
constexpr double Turn = 6.283185307179586;
/// A height of 1 is this part of the patch's width at a strength of 1, as where normals are made of
/// heights.
constexpr double Depth = 1.0 / 32.0;

using Operation = std::shared_ptr<const OssEvOperation>;

/// How steep the height is, smoothed over a radius: from one angle to another.
class Slope : public OssEvWindowOperation
{
public:
    explicit Slope(const OssEvKernelSetup &setup)
        : OssEvWindowOperation(windowOf(setup))
        , m_strength(setup.real("Strength") * Depth * setup.frame().width)
        , m_low(std::min(setup.real("Low"), setup.real("High")) / 360.0 * Turn)
        , m_range(std::max(std::abs(setup.real("High") - setup.real("Low")), 0.01) / 360.0 * Turn)
    {
        // How much a height that rises by 1 for each texel brings, so that it is one.
        for (const OssEvOffset &offset : window().offsets)
            m_moment += double(offset.weight) * offset.x * offset.x;
    }

protected:
    void filter(const OssEvWindowField &field) const override
    {
        const OssEvBlock &block = field.block;
        for (int y = 0; y < block.region.height; ++y) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            float *to = block.output[0] + std::ptrdiff_t(y) * block.stride;
            for (int x = 0; x < block.region.width; ++x)
                to[x] = steepness(field, x + window().radius, y + window().radius);
        }
    }

private:
    static OssEvWindow windowOf(const OssEvKernelSetup &setup)
    {
        constexpr int Most = 61;
        const double deviation = std::max(setup.real("Radius") * setup.frame().width, 0.7);
        OssEvWindow window = OssEvWindow::disc(2.0 * deviation, Most);
        for (OssEvOffset &offset : window.offsets) {
            const double square = double(offset.x) * offset.x + double(offset.y) * offset.y;
            offset.weight = float(std::exp(-0.5 * square / (deviation * deviation)));
        }
        return window;
    }

    float steepness(const OssEvWindowField &field, int x, int y) const
    {
        const OssEvPlane &heights = field.around[0];
        const float middle = heights.row(y)[x];
        double across = 0.0;
        double down = 0.0;
        for (const OssEvOffset &offset : window().offsets) {
            const bool counts = field.cover == nullptr
                                || field.cover->row(y + offset.y)[x + offset.x] > 0.0F;
            const double rise = counts ? double(heights.row(y + offset.y)[x + offset.x] - middle)
                                       : 0.0;
            across += double(offset.weight) * offset.x * rise;
            down += double(offset.weight) * offset.y * rise;
        }
        const double slope = std::hypot(across, down) / std::max(m_moment, 1e-9) * m_strength;
        return float(std::clamp((std::atan(slope) - m_low) / m_range, 0.0, 1.0));
    }

    double m_strength;
    double m_low;
    double m_range;
    double m_moment = 0.0;
};

/// How far a height lies above, or below, what is around it.
class Relief : public OssEvAreaOperation
{
public:
    enum class Show { Signed, Above, Below, NotBelow };

    Relief(const OssEvSmoothing &smoothing, double contrast, Show show)
        : OssEvAreaOperation({{0, 0}, {0, smoothing.reduction()}})
        , m_smoothing(smoothing)
        , m_contrast(float(contrast))
        , m_show(show)
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return tap == 0 ? block : m_smoothing.needed(block);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const OssEvPlane to(block.output[0], block.region.width, block.region.height, block.stride);
        block.inputs[0].assemble(0, block.region, Clamp, to.data, to.stride);
        const OssEvPlane soft(&scratch, to.width, to.height);
        OssEvSmoothCovered(m_smoothing, block, block.inputs[1], 0, soft);
        for (int y = 0; y < to.height; ++y) {
            for (int x = 0; x < to.width; ++x)
                to.row(y)[x] = shown(m_contrast * (to.row(y)[x] - soft.row(y)[x]));
        }
    }

private:
    float shown(float above) const
    {
        switch (m_show) {
        case Show::Above:
            return std::clamp(above, 0.0F, 1.0F);
        case Show::Below:
            return std::clamp(-above, 0.0F, 1.0F);
        case Show::NotBelow:
            return std::clamp(1.0F + above, 0.0F, 1.0F);
        default:
            return std::clamp(0.5F + 0.5F * above, 0.0F, 1.0F);
        }
    }

    OssEvSmoothing m_smoothing;
    float m_contrast;
    Show m_show;
};

/// How much of the sky is seen between the horizons in sixteen directions: after L. Bavoil, M. Sainz,
/// R. Dimitrov, "Image-Space Horizon-Based Ambient Occlusion", 2008.
class Occlusion : public OssEvWindowOperation
{
public:
    explicit Occlusion(const OssEvKernelSetup &setup)
        : OssEvWindowOperation(windowOf(setup))
        , m_strength(float(setup.real("Strength") * Depth * setup.frame().width))
        , m_contrast(float(setup.real("Contrast")))
    {
    }

protected:
    void filter(const OssEvWindowField &field) const override
    {
        const OssEvBlock &block = field.block;
        const int width = block.region.width;
        OssEvScratch scratch;
        const OssEvPlane horizon(&scratch, width, 1);
        const OssEvPlane open(&scratch, width, 1);
        for (int y = 0; y < block.region.height; ++y) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            std::fill_n(open.row(0), width, 0.0F);
            for (int i = 0; i < Directions; ++i)
                look(field, y, i, horizon.row(0), open.row(0));
            float *to = block.output[0] + std::ptrdiff_t(y) * block.stride;
            for (int x = 0; x < width; ++x)
                to[x] = std::clamp(1.0F - m_contrast * (1.0F - open.row(0)[x] / float(Directions)),
                                   0.0F, 1.0F);
        }
    }

private:
    static constexpr int Directions = 16;
    static constexpr int Steps = 6;

    // The first place is the middle; those of a direction stand together, the near ones closer.
    static OssEvWindow windowOf(const OssEvKernelSetup &setup)
    {
        const double radius = std::max(setup.real("Radius") * setup.frame().width, 1.0);
        OssEvWindow window;
        window.offsets.reserve(std::size_t(Directions) * Steps + 1);
        window.offsets.push_back({});
        for (int i = 0; i < Directions * Steps; ++i) {
            const int direction = i / Steps;
            const double angle = (direction + 0.5) / Directions * Turn;
            // Places of neighbouring directions lie in each other's gaps, or there would be rings.
            const double shift = std::fmod(0.618034 * direction, 1.0);
            const double part = (i % Steps + 0.2 + 0.8 * shift) / Steps;
            const double away = std::max(radius * part * part, 1.0);
            window.offsets.push_back({int(std::lround(away * std::cos(angle))),
                                      int(std::lround(away * std::sin(angle)))});
        }
        window.radius = int(std::ceil(radius));
        window.reduction = std::clamp(int(std::floor(std::log2(radius / 32.0))), 0, 6);
        return window;
    }

    void look(const OssEvWindowField &field, int y, int direction, float *horizon,
              float *open) const
    {
        const int width = field.block.region.width;
        const int radius = window().radius;
        std::fill_n(horizon, width, 0.0F);
        const float *middle = field.around[0].row(y + radius) + radius;
        for (int step = 0; step < Steps; ++step) {
            const OssEvOffset &offset =
                window().offsets[std::size_t(direction) * Steps + std::size_t(step) + 1];
            const auto away = float(std::hypot(offset.x, offset.y));
            // What is far away fades, or there would be a rim where it ends.
            const float fade = 1.0F - away * away / float((radius + 1) * (radius + 1));
            const float scale = fade * m_strength / away;
            const std::ptrdiff_t shift = radius + offset.x;
            const float *row = field.around[0].row(y + radius + offset.y) + shift;
            const float *cover = field.cover == nullptr
                                     ? nullptr
                                     : field.cover->row(y + radius + offset.y) + shift;
            for (int x = 0; x < width; ++x) {
                const float rise = cover == nullptr || cover[x] > 0.0F ? row[x] - middle[x] : 0.0F;
                horizon[x] = std::max(horizon[x], scale * rise);
            }
        }
        // The sine of the horizon's angle, whose tangent is known.
        for (int x = 0; x < width; ++x)
            open[x] += 1.0F - horizon[x] / std::sqrt(1.0F + horizon[x] * horizon[x]);
    }

    float m_strength;
    float m_contrast;
};

/// Heights whose slopes are those of normals. What differs between one smoothing and the next wider one is
/// found from the slopes around alone, -ln 2 G * (o . g) for an octave of widths; the sum of all octaves up to
/// the size of the patch is the height.
class NormalToHeight : public OssEvAreaOperation
{
public:
    NormalToHeight(const OssEvKernelSetup &setup, int levels)
        : OssEvAreaOperation(tapsOf(levels))
        , m_scale(1.0 / (std::max(setup.real("Strength"), 1e-3) * Depth))
        , m_sign(setup.flag("Flip") ? -1.0 : 1.0)
        , m_frame(setup.frame())
    {
        for (int i = 0; i < Size * Size; ++i) {
            const double x = double(i % Size) - Reach;
            const int line = i / Size;
            const double y = double(line) - Reach;
            double weight = 0.0;
            // Two widths stand for the octave from 0.7 to 1.4 texels.
            for (const double width : {0.841, 1.189}) {
                const double square = width * width;
                weight += std::exp(-0.5 * (x * x + y * y) / square) / (Turn * square);
            }
            m_weights.at(std::size_t(i)) = -0.5 * std::log(2.0) * weight;
        }
    }

    /// So that the widest octave is about a quarter of the patch.
    static int levelsFor(const OssEvFrame &frame)
    {
        const int size = std::min(frame.width, frame.height);
        return std::clamp(int(std::floor(std::log2(std::max(size, 8)))) - 1, 1, 12);
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return OssEvUnder(block, int(tap)).expanded(Reach);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const OssEvPlane to(block.output[0], block.region.width, block.region.height, block.stride);
        const OssEvPlane part(&scratch, to.width, to.height);
        for (int y = 0; y < to.height; ++y)
            std::fill_n(to.row(y), to.width, 0.5F);
        for (int level = 0; level < int(taps().size()); ++level) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            addOctave(block, level, part, to);
        }
    }

private:
    static constexpr int Reach = 3;
    static constexpr int Size = 2 * Reach + 1;

    static std::vector<OssEvTap> tapsOf(int levels)
    {
        std::vector<OssEvTap> taps;
        taps.reserve(std::size_t(levels));
        for (int level = 0; level < levels; ++level)
            taps.push_back({0, level});
        return taps;
    }

    void addOctave(const OssEvBlock &block, int level, const OssEvPlane &part,
                   const OssEvPlane &to) const
    {
        OssEvScratch scratch;
        const OssEvRegion region = needed(std::size_t(level), block.region);
        const OssEvRegion inner = OssEvUnder(block.region, level);
        std::vector<OssEvPlane> normal;
        normal.reserve(3);
        for (int k = 0; k < 3; ++k) {
            normal.emplace_back(&scratch, region.width, region.height);
            block.inputs[level].assemble(k, region, Clamp, normal.back().data,
                                         normal.back().stride);
        }
        toSlopes(normal, level);
        const OssEvPlane heights(&scratch, inner.width, inner.height);
        for (int y = 0; y < inner.height; ++y) {
            for (int x = 0; x < inner.width; ++x) {
                double sum = 0.0;
                for (int i = 0; i < Size * Size; ++i) {
                    const int dx = i % Size;
                    const int dy = i / Size;
                    sum += m_weights.at(std::size_t(i))
                           * ((dx - Reach) * double(normal[0].row(y + dy)[x + dx])
                              + (dy - Reach) * double(normal[1].row(y + dy)[x + dx]));
                }
                heights.row(y)[x] = float(sum);
            }
        }
        OssEvEnlarge(heights, inner.x, inner.y, block.region, level, part);
        for (int y = 0; y < to.height; ++y) {
            for (int x = 0; x < to.width; ++x)
                to.row(y)[x] += part.row(y)[x];
        }
    }

    // In heights per texel of the level: to the right, and downwards.
    void toSlopes(const std::vector<OssEvPlane> &normal, int level) const
    {
        constexpr double Steepest = 20.0;
        const double unit = 1 << level;
        for (int y = 0; y < normal[0].height; ++y) {
            for (int x = 0; x < normal[0].width; ++x) {
                const double depth = std::max(2.0 * double(normal[2].row(y)[x]) - 1.0, 0.02);
                const auto slope = [&](std::size_t k) {
                    const double value = (2.0 * double(normal[k].row(y)[x]) - 1.0) / depth;
                    return std::clamp(value, -Steepest, Steepest) * m_scale * unit;
                };
                const double across = -slope(0) / m_frame.width;
                const double down = m_sign * slope(1) / m_frame.height;
                normal[0].row(y)[x] = float(across);
                normal[1].row(y)[x] = float(down);
            }
        }
    }

    double m_scale;
    double m_sign;
    OssEvFrame m_frame;
    std::array<double, std::size_t(Size) * Size> m_weights{};
};

/// Adds to normals what a blur takes from them.
class SharpenNormal : public OssEvAreaOperation
{
public:
    SharpenNormal(const OssEvSmoothing &smoothing, double amount)
        : OssEvAreaOperation({{0, 0}, {0, smoothing.reduction()}})
        , m_smoothing(smoothing)
        , m_amount(float(amount))
    {
    }

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override
    {
        return tap == 0 ? block : m_smoothing.needed(block);
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const int width = block.region.width;
        const int height = block.region.height;
        const OssEvPlane soft(&scratch, width, height);
        for (int k = 0; k < 3; ++k) {
            const OssEvPlane to(block.output[std::size_t(k)], width, height, block.stride);
            block.inputs[0].assemble(k, block.region, Clamp, to.data, to.stride);
            OssEvSmoothCovered(m_smoothing, block, block.inputs[1], k, soft);
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    float &value = to.row(y)[x];
                    value = 2.0F * value - 1.0F + 2.0F * m_amount * (value - soft.row(y)[x]);
                }
            }
        }
        for (int y = 0; y < height; ++y) {
            const std::ptrdiff_t row = std::ptrdiff_t(y) * block.stride;
            for (int x = 0; x < width; ++x) {
                float *n[3] = {block.output[0] + row + x, block.output[1] + row + x,
                               block.output[2] + row + x};
                // Never away from the surface.
                *n[2] = std::max(*n[2], 0.05F);
                const float length = std::sqrt(*n[0] * *n[0] + *n[1] * *n[1] + *n[2] * *n[2]);
                for (float *component : n)
                    *component = 0.5F + 0.5F * *component / length;
            }
        }
    }

private:
    OssEvSmoothing m_smoothing;
    float m_amount;
};

OssEvSmoothing smoothingOf(const OssEvKernelSetup &setup)
{
    return {OssEvSmoothing::Shape::Gaussian, setup.real("Radius") * setup.frame().width};
}

OssEvKernel kernelOf(const char *name, std::vector<OssEvParameterDescription> parameters,
                     const OssEvFilterKernel::Make &make)
{
    OssEvKernel kernel = OssEvFilterKernel::describe(name, "Height", 1, std::move(parameters),
                                                     make);
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addFromHeight(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    kernels->push_back(kernelOf("slopeFromHeight",
                                {real("Strength", 4, 0, 20), real("Radius", 0.003, 0, 0.05),
                                 real("Low", 0, 0, 90), real("High", 60, 0, 90)},
                                OssEvFilterKernel::make<Slope>));
    OssEvKernel bends = kernelOf(
        "curvatureFromHeight", {real("Radius", 0.01, 0, 0.25), real("Contrast", 8, 0, 50)},
        [](const OssEvKernelSetup &setup) -> Operation {
            return std::make_shared<Relief>(smoothingOf(setup), setup.real("Contrast"),
                                            Relief::Show(setup.output()));
        });
    bends.outputs = {{"Output", 1}, {"Edges", 1}, {"Hollows", 1}};
    kernels->push_back(bends);
    kernels->push_back(
        kernelOf("cavity", {real("Radius", 0.005, 0, 0.25), real("Contrast", 16, 0, 50)},
                 [](const OssEvKernelSetup &setup) -> Operation {
                     return std::make_shared<Relief>(smoothingOf(setup), setup.real("Contrast"),
                                                     Relief::Show::NotBelow);
                 }));
    kernels->push_back(kernelOf(
        "occlusionFromHeight",
        {real("Strength", 2, 0, 20), real("Radius", 0.05, 0, 0.1), real("Contrast", 1, 0, 5)},
        OssEvFilterKernel::make<Occlusion>));
    OssEvKernel heights = kernelOf("normalToHeight",
                                   {real("Strength", 1, 0, 20), flag("Flip", false)},
                                   [](const OssEvKernelSetup &setup) -> Operation {
                                       return std::make_shared<NormalToHeight>(
                                           setup, NormalToHeight::levelsFor(setup.frame()));
                                   });
    heights.inputs = {{"Normal", 3, true}};
    heights.outputs = {{"Output", 1, true}};
    heights.usesSurface = false;
    kernels->push_back(heights);
    OssEvKernel sharper = kernelOf(
        "sharpenNormal", {real("Amount", 1, 0, 10), real("Radius", 0.004, 0, 0.05)},
        [](const OssEvKernelSetup &setup) -> Operation {
            return std::make_shared<SharpenNormal>(smoothingOf(setup), setup.real("Amount"));
        });
    sharper.inputs = {{"Normal", 3, true}};
    sharper.outputs = {{"Output", 3, true}};
    kernels->push_back(sharper);
}
