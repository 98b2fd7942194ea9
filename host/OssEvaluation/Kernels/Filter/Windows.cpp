// Filters over a window of texels: blurs along a line, median, bilateral, Kuwahara, emboss.

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Filter/Window.h"
#include "OssEvaluation/Kernels/FilterKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Filter/Windows.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#ifndef OSSEV_WINDOW_VALUES
#define OSSEV_WINDOW_VALUES

namespace OssEvWindows {

/// What the filters of this file are told. Not all read all of it.
struct Values
{
    float a = 0.0F;
    float b = 0.0F;
    bool over = false;
    OssEvWorkingSpace::Weights luminance{};
    /// Of each offset, how much it counts in each of eight directions.
    std::vector<std::array<float, 8>> sectors{};
};

} // namespace OssEvWindows
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using OssEvWindows::Values;

/// Reads what lies around the texels from (x, y) on.
class Look
{
public:
    Look(const OssEvWindowField &field, int x, int y)
        : m_field(field)
        , m_x(x + field.window.radius)
        , m_y(y + field.window.radius)
    {
    }

    HWY_INLINE V at(std::size_t channel, const OssEvOffset &offset) const
    {
        const V value = loadAt(m_field.around[channel], offset);
        if (m_field.cover == nullptr)
            return value;
        const V middle = loadAt(m_field.around[channel], {});
        return hn::IfThenElse(hn::Gt(loadAt(*m_field.cover, offset), zero()), value, middle);
    }

private:
    HWY_INLINE V loadAt(const OssEvPlane &plane, const OssEvOffset &offset) const
    {
        return hn::LoadU(Floats(), plane.row(m_y + offset.y) + m_x + offset.x);
    }

    const OssEvWindowField &m_field;
    int m_x;
    int m_y;
};

// Calls `change` for each vector of texels of the block, row by row, until it is cancelled.
template <class Change>
void forVectors(const OssEvWindowField &field, const Change &change)
{
    const OssEvBlock &block = field.block;
    for (int y = 0; y < block.region.height; ++y) {
        if (block.cancel != nullptr && block.cancel->isCancelled())
            return;
        for (int x = 0; x < block.region.width; x += int(hn::Lanes(Floats())))
            change(x, y, std::ptrdiff_t(y) * block.stride + x);
    }
}

void sum(const OssEvWindowField &field, const Values & /*values*/)
{
    forVectors(field, [&field](int x, int y, std::ptrdiff_t to) {
        const Look look(field, x, y);
        for (std::size_t k = 0; k < field.around.size(); ++k) {
            V total = zero();
            for (const OssEvOffset &offset : field.window.offsets)
                total = hn::MulAdd(splat(offset.weight), look.at(k, offset), total);
            hn::StoreU(total, Floats(), field.block.output[k] + to);
        }
    });
}

// The value below which a part of the window lies, found by halving the range in which it is and then
// taking the nearest value that is there.
void median(const OssEvWindowField &field, const Values &values)
{
    constexpr int Halvings = 14;
    const auto count = float(field.window.offsets.size());
    const V wanted = splat(std::min(std::floor(values.a * count), count - 1.0F) + 0.5F);
    forVectors(field, [&](int x, int y, std::ptrdiff_t to) {
        const Look look(field, x, y);
        for (std::size_t k = 0; k < field.around.size(); ++k) {
            V low = look.at(k, {});
            V high = low;
            for (const OssEvOffset &offset : field.window.offsets) {
                low = hn::Min(low, look.at(k, offset));
                high = hn::Max(high, look.at(k, offset));
            }
            // At most `wanted` values are below or at `low` from here on.
            const V lowest = low;
            const V highest = high;
            low = hn::Sub(low, splat(1e-6F));
            for (int i = 0; i < Halvings; ++i) {
                const V middle = hn::Mul(hn::Add(low, high), splat(0.5F));
                V below = zero();
                for (const OssEvOffset &offset : field.window.offsets) {
                    const auto less = hn::Le(look.at(k, offset), middle);
                    below = hn::Add(below, hn::IfThenElseZero(less, splat(1.0F)));
                }
                const auto enough = hn::Gt(below, wanted);
                high = hn::IfThenElse(enough, middle, high);
                low = hn::IfThenElse(enough, low, middle);
            }
            V found = highest;
            for (const OssEvOffset &offset : field.window.offsets) {
                const V value = look.at(k, offset);
                found = hn::IfThenElse(hn::Gt(value, low), hn::Min(found, value), found);
            }
            hn::StoreU(hn::Max(found, lowest), Floats(), field.block.output[k] + to);
        }
    });
}

// C. Tomasi, R. Manduchi, "Bilateral Filtering for Gray and Color Images", 1998.
void bilateral(const OssEvWindowField &field, const Values &values)
{
    const Floats d;
    const std::size_t channels = field.around.size();
    forVectors(field, [&](int x, int y, std::ptrdiff_t to) {
        const Look look(field, x, y);
        V here[4];
        V total[4];
        for (std::size_t k = 0; k < channels; ++k) {
            here[k] = hn::LoadU(d, field.here[k].row(y) + x);
            total[k] = zero();
        }
        V weights = zero();
        for (const OssEvOffset &offset : field.window.offsets) {
            V squares = zero();
            V there[4];
            for (std::size_t k = 0; k < channels; ++k) {
                there[k] = look.at(k, offset);
                const V away = hn::Sub(there[k], here[k]);
                squares = hn::MulAdd(away, away, squares);
            }
            const V far = hn::Max(hn::Mul(squares, splat(values.a)), splat(-80.0F));
            const V weight = hn::Mul(splat(offset.weight), hn::Exp(d, far));
            weights = hn::Add(weights, weight);
            for (std::size_t k = 0; k < channels; ++k)
                total[k] = hn::MulAdd(weight, there[k], total[k]);
        }
        const auto some = hn::Gt(weights, splat(1e-9F));
        const V safe = hn::IfThenElse(some, weights, splat(1.0F));
        for (std::size_t k = 0; k < channels; ++k) {
            hn::StoreU(hn::IfThenElse(some, hn::Div(total[k], safe), here[k]), d,
                       field.block.output[k] + to);
        }
    });
}

struct Sector
{
    V mean[4];
    V spread; ///< summed over the channels
};

Sector sectorOf(const OssEvWindowField &field, const Look &look, const Values &values,
                std::size_t number)
{
    const std::size_t channels = field.around.size();
    Sector sector;
    std::fill_n(sector.mean, 4, zero());
    V squares = zero();
    float count = 0.0F;
    for (std::size_t i = 0; i < field.window.offsets.size(); ++i) {
        const float weight = values.sectors[i][number];
        if (weight <= 0.0F)
            continue;
        count += weight;
        for (std::size_t k = 0; k < channels; ++k) {
            const V value = look.at(k, field.window.offsets[i]);
            const V part = hn::Mul(splat(weight), value);
            sector.mean[k] = hn::Add(sector.mean[k], part);
            squares = hn::MulAdd(part, value, squares);
        }
    }
    const V share = splat(1.0F / std::max(count, 1e-6F));
    sector.spread = hn::Mul(squares, share);
    for (std::size_t k = 0; k < channels; ++k) {
        sector.mean[k] = hn::Mul(sector.mean[k], share);
        sector.spread = hn::NegMulAdd(sector.mean[k], sector.mean[k], sector.spread);
    }
    return sector;
}

// Means of eight sectors, the more even the more they count: G. Papari et al., "Artistic Edge and Corner
// Enhancing Smoothing", 2007.
void kuwahara(const OssEvWindowField &field, const Values &values)
{
    const Floats d;
    const std::size_t channels = field.around.size();
    forVectors(field, [&](int x, int y, std::ptrdiff_t to) {
        const Look look(field, x, y);
        V total[4];
        std::fill_n(total, 4, zero());
        V weights = zero();
        for (std::size_t number = 0; number < 8; ++number) {
            const Sector sector = sectorOf(field, look, values, number);
            const V uneven = hn::Add(hn::Max(sector.spread, zero()), splat(1e-5F));
            const V weight = hn::Exp(d, hn::Mul(splat(-values.a), hn::Log(d, uneven)));
            weights = hn::Add(weights, weight);
            for (std::size_t k = 0; k < channels; ++k)
                total[k] = hn::MulAdd(weight, sector.mean[k], total[k]);
        }
        for (std::size_t k = 0; k < channels; ++k)
            hn::StoreU(hn::Div(total[k], weights), d, field.block.output[k] + to);
    });
}

// The slope of the luminance in one direction; offsets have the weights of its filter.
HWY_INLINE V slopeAt(const OssEvWindowField &field, const Look &look, const Values &values)
{
    const std::size_t colors = std::min<std::size_t>(field.around.size(), 3);
    V slope = zero();
    for (std::size_t k = 0; k < colors; ++k) {
        V part = zero();
        for (const OssEvOffset &offset : field.window.offsets)
            part = hn::MulAdd(splat(offset.weight), look.at(k, offset), part);
        slope = hn::MulAdd(splat(colors == 1 ? 1.0F : values.luminance[k]), part, slope);
    }
    return slope;
}

void emboss(const OssEvWindowField &field, const Values &values)
{
    const Floats d;
    const std::size_t channels = field.around.size();
    forVectors(field, [&](int x, int y, std::ptrdiff_t to) {
        const V relief = hn::Mul(slopeAt(field, Look(field, x, y), values), splat(values.a));
        const V alpha = channels == 4 ? hn::LoadU(d, field.here[3].row(y) + x) : splat(1.0F);
        const V grey = hn::Mul(clamp(hn::Add(relief, splat(0.5F)), zero(), splat(1.0F)), alpha);
        const V factor = hn::Max(hn::Add(relief, splat(1.0F)), zero());
        for (std::size_t k = 0; k < channels; ++k) {
            const V here = hn::LoadU(d, field.here[k].row(y) + x);
            const V lit = values.over ? hn::Mul(here, factor) : grey;
            hn::StoreU(k == 3 ? here : lit, d, field.block.output[k] + to);
        }
    });
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(sum);
HWY_EXPORT(median);
HWY_EXPORT(bilateral);
HWY_EXPORT(kuwahara);
HWY_EXPORT(emboss);
} // namespace OssEvSimd

namespace {

using OssEvWindows::Values;
using namespace OssEvSimd;
using Operation = std::shared_ptr<const OssEvOperation>;

constexpr double Turn = 6.283185307179586;

class WindowFilter : public OssEvWindowOperation
{
public:
    using Function = void (*)(const OssEvWindowField &field, const Values &values);

    WindowFilter(OssEvWindow window, Function function, Values values)
        : OssEvWindowOperation(std::move(window))
        , m_function(function)
        , m_values(std::move(values))
    {
    }

protected:
    void filter(const OssEvWindowField &field) const override { m_function(field, m_values); }

private:
    Function m_function;
    Values m_values;
};

/// A length that is given in widths of the patch.
double texels(const OssEvKernelSetup &setup, const char *name)
{
    return setup.real(name) * setup.frame().width;
}

Operation makeDirectional(const OssEvKernelSetup &setup)
{
    return std::make_shared<WindowFilter>(OssEvWindow::stripe(texels(setup, "Length"), 0.0,
                                                              setup.real("Angle") / 360.0 * Turn,
                                                              setup.integer("Profile") == 1),
                                          &HWY_DYNAMIC_DISPATCH(sum), Values());
}

Operation makeAnisotropic(const OssEvKernelSetup &setup)
{
    const double length = texels(setup, "Length");
    return std::make_shared<WindowFilter>(
        OssEvWindow::stripe(length, length * (1.0 - setup.real("Anisotropy")),
                            setup.real("Angle") / 360.0 * Turn, true),
        &HWY_DYNAMIC_DISPATCH(sum), Values());
}

Operation makeMedian(const OssEvKernelSetup &setup)
{
    constexpr int Most = 61;
    Values values;
    values.a = float(setup.real("Percentile"));
    return std::make_shared<WindowFilter>(OssEvWindow::disc(texels(setup, "Radius"), Most),
                                          &HWY_DYNAMIC_DISPATCH(median), values);
}

Operation makeBilateral(const OssEvKernelSetup &setup)
{
    constexpr int Most = 81;
    const double radius = texels(setup, "Radius");
    OssEvWindow window = OssEvWindow::disc(radius, Most);
    // The rim is two deviations away.
    const double scale = -2.0 / std::max(radius * radius, 0.25);
    for (OssEvOffset &offset : window.offsets)
        offset.weight = float(
            std::exp(scale * (double(offset.x) * offset.x + double(offset.y) * offset.y)));
    const double tolerance = std::max(setup.real("Tolerance"), 1e-3);
    Values values;
    values.a = float(-0.5 / (tolerance * tolerance));
    return std::make_shared<WindowFilter>(std::move(window), &HWY_DYNAMIC_DISPATCH(bilateral),
                                          values);
}

Operation makeKuwahara(const OssEvKernelSetup &setup)
{
    constexpr int Most = 81;
    const double radius = texels(setup, "Radius");
    OssEvWindow window = OssEvWindow::disc(radius, Most);
    Values values;
    values.a = float(0.5 + 3.5 * setup.real("Sharpness"));
    values.sectors.reserve(window.offsets.size());
    for (const OssEvOffset &offset : window.offsets) {
        std::array<float, 8> weights{};
        const double away = std::hypot(offset.x, offset.y);
        const double angle = std::atan2(offset.y, offset.x);
        for (std::size_t sector = 0; sector < 8; ++sector) {
            const double turned = angle - double(sector) * Turn / 8.0;
            const double apart = std::abs(std::remainder(turned, Turn)) / (Turn / 8.0);
            const double fall = std::exp(-away * away / std::max(radius * radius, 0.25));
            weights[sector] = away == 0.0 ? 0.25F : float(fall * std::max(0.0, 1.0 - apart));
        }
        values.sectors.push_back(weights);
    }
    return std::make_shared<WindowFilter>(std::move(window), &HWY_DYNAMIC_DISPATCH(kuwahara),
                                          std::move(values));
}

Operation makeEmboss(const OssEvKernelSetup &setup)
{
    constexpr int Most = 61;
    const double width = std::max(texels(setup, "Width"), 1.0);
    OssEvWindow window = OssEvWindow::disc(2.0 * width, Most);
    const double angle = setup.real("Angle") / 360.0 * Turn;
    // Texture coordinates grow upwards, lines downwards.
    const double x = std::cos(angle);
    const double y = -std::sin(angle);
    double moment = 0.0;
    for (OssEvOffset &offset : window.offsets) {
        const double along = offset.x * x + offset.y * y;
        const double away = (double(offset.x) * offset.x + double(offset.y) * offset.y)
                            / (width * width);
        offset.weight = float(-along * std::exp(-0.5 * away));
        moment += std::abs(double(offset.weight));
    }
    for (OssEvOffset &offset : window.offsets)
        offset.weight = float(double(offset.weight) / std::max(moment, 1e-9));
    Values values;
    values.a = float(setup.real("Strength"));
    values.over = setup.integer("Mode") == 1;
    values.luminance = setup.working().luminance;
    return std::make_shared<WindowFilter>(std::move(window), &HWY_DYNAMIC_DISPATCH(emboss), values);
}

OssEvKernel kernelOf(const char *name, std::vector<OssEvParameterDescription> parameters,
                     const OssEvFilterKernel::Make &make)
{
    OssEvKernel kernel = OssEvFilterKernel::describe(name, "Input", 0, std::move(parameters), make);
    kernel.usesSurface = true;
    return kernel;
}

} // namespace

void OssEvFamilies::addWindows(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    const auto angle = real("Angle", 0, -360, 360);
    kernels->push_back(
        kernelOf("directionalBlur",
                 {angle, real("Length", 0.08, 0, 0.5), choice("Profile", {"Even", "Soft"}, 1)},
                 makeDirectional));
    kernels->push_back(kernelOf(
        "anisotropicBlur", {angle, real("Length", 0.12, 0, 0.5), real("Anisotropy", 0.9, 0, 1)},
        makeAnisotropic));
    kernels->push_back(kernelOf(
        "median", {real("Radius", 0.008, 0, 0.1), real("Percentile", 0.5, 0, 1)}, makeMedian));
    kernels->push_back(kernelOf("bilateral",
                                {real("Radius", 0.015, 0, 0.1), real("Tolerance", 0.1, 0.001, 2)},
                                makeBilateral));
    kernels->push_back(kernelOf(
        "kuwahara", {real("Radius", 0.012, 0, 0.1), real("Sharpness", 0.5, 0, 1)}, makeKuwahara));
    kernels->push_back(
        kernelOf("emboss",
                 {real("Angle", 135, -360, 360), real("Strength", 3, 0, 20),
                  real("Width", 0.004, 0, 0.05), choice("Mode", {"Relief", "Over Colors"})},
                 makeEmboss));
}
#endif
