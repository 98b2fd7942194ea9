// Kernels that make colours from the place in the patch alone.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Sources.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Hash-inl.h"
#include "OssEvaluation/Kernels/Simd-inl.h"

#include <algorithm>
#include <cmath>

#ifndef OSSEV_SOURCES_VALUES
#define OSSEV_SOURCES_VALUES

namespace OssEvSources {

struct ConstantValues
{
    std::array<float, 4> color;
};

struct CheckerValues
{
    float scale;
};

struct GradientValues
{
    int direction;
};

struct GridValues
{
    float columns;
    float rows;
    float halfWidth;
    std::array<float, 4> background;
};

struct BrickValues
{
    int output;
    float rows;
    float perRow;
    float offset;
    float bevel;
    float variation;
    std::array<float, 4> brick;
    std::array<float, 4> mortar;
    std::uint32_t seed;
};

} // namespace OssEvSources
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvSources;

// Calls `work(i, u, v)` for the texels of a strip, in texture coordinates of the patch.
template <class Work>
HWY_INLINE void forPlaces(const OssEvStrip &strip, const Work &work)
{
    const Floats d;
    const int lanes = int(hn::Lanes(d));
    const float stepU = 1.0F / float(strip.frame.width);
    for (int row = 0; row < strip.rows; ++row) {
        const float v = 1.0F - (float(strip.y + row) + 0.5F) / float(strip.frame.height);
        for (int x = 0; x < strip.width; x += lanes) {
            const V column = hn::Add(hn::Iota(d, float(strip.x + x)), splat(0.5F));
            work.at(std::size_t(row) * std::size_t(strip.width) + std::size_t(x),
                    hn::Mul(column, splat(stepU)), splat(v));
        }
    }
}

void constant(const OssEvStrip &strip, const ConstantValues &values)
{
    for (int k = 0; k < strip.outputChannels; ++k)
        std::fill_n(strip.output[std::size_t(k)], strip.texels(), values.color[std::size_t(k)]);
}

// Between the colours of two inputs.
HWY_INLINE void mixInputs(const OssEvStrip &strip, std::size_t i, V t)
{
    for (std::size_t k = 0; k < 4; ++k) {
        store(mix(load(strip.inputs[0].plane[k] + i), load(strip.inputs[1].plane[k] + i), t),
              strip.output[k] + i);
    }
}

struct CheckerWork
{
    const OssEvStrip &strip;
    float scale;

    HWY_INLINE void at(std::size_t i, V u, V v) const
    {
        const V sum = hn::Add(hn::Floor(hn::Mul(u, splat(scale))),
                              hn::Floor(hn::Mul(v, splat(scale))));
        const V half = hn::Mul(sum, splat(0.5F));
        const V odd = hn::Mul(hn::Sub(half, hn::Floor(half)), splat(2.0F));
        mixInputs(strip, i, odd);
    }
};

void checker(const OssEvStrip &strip, const CheckerValues &values)
{
    forPlaces(strip, CheckerWork{strip, values.scale});
}

struct GradientWork
{
    const OssEvStrip &strip;
    int direction;

    HWY_INLINE void at(std::size_t i, V u, V v) const
    {
        V t = direction == 0 ? u : v;
        if (direction == 2) {
            const V x = hn::Sub(u, splat(0.5F));
            const V y = hn::Sub(v, splat(0.5F));
            t = hn::Mul(hn::Sqrt(hn::MulAdd(x, x, hn::Mul(y, y))), splat(2.0F));
        }
        mixInputs(strip, i, clamp(t, zero(), splat(1.0F)));
    }
};

void gradient(const OssEvStrip &strip, const GradientValues &values)
{
    forPlaces(strip, GradientWork{strip, values.direction});
}

struct GridWork
{
    const OssEvStrip &strip;
    const GridValues &g;

    // How much of a texel a line covers, across one direction.
    HWY_INLINE static V line(V place, float count, float halfWidth, int texels)
    {
        const V x = hn::MulAdd(place, splat(count), splat(0.5F));
        const V distance = hn::Abs(hn::Sub(hn::Sub(x, hn::Floor(x)), splat(0.5F)));
        const V edge = hn::MulAdd(hn::Sub(splat(halfWidth), distance), splat(float(texels) / count),
                                  splat(0.5F));
        return clamp(edge, zero(), splat(1.0F));
    }

    HWY_INLINE void at(std::size_t i, V u, V v) const
    {
        const V t = g.halfWidth > 0.0F ? hn::Max(line(u, g.columns, g.halfWidth, strip.frame.width),
                                                 line(v, g.rows, g.halfWidth, strip.frame.height))
                                       : zero();
        for (std::size_t k = 0; k < 4; ++k) {
            store(mix(splat(g.background[k]), load(strip.inputs[0].plane[k] + i), t),
                  strip.output[k] + i);
        }
    }
};

void grid(const OssEvStrip &strip, const GridValues &values)
{
    forPlaces(strip, GridWork{strip, values});
}

struct BrickWork
{
    const OssEvStrip &strip;
    const BrickValues &b;

    HWY_INLINE static V part(V value) { return hn::Sub(value, hn::Floor(value)); }

    HWY_INLINE void at(std::size_t i, V u, V v) const
    {
        const Ints di;
        const V size = hn::Max(load(strip.inputs[0].plane[0] + i), splat(1e-3F));
        const V mortar = load(strip.inputs[1].plane[0] + i);
        const V rows = hn::Div(splat(b.rows), size);
        const V perRow = hn::Div(splat(b.perRow), size);
        const V down = hn::Mul(v, rows);
        const V row = hn::Floor(down);
        const V half = hn::Mul(row, splat(0.5F));
        const V odd = hn::Mul(part(half), splat(2.0F));
        const V along = hn::MulAdd(u, perRow, hn::Mul(odd, splat(b.offset)));
        const V column = hn::Floor(along);
        // Distances to the nearest edge of the brick, in heights of a brick.
        const V fu = hn::Sub(along, column);
        const V fv = hn::Sub(down, row);
        const V dx = hn::Mul(hn::Min(fu, hn::Sub(splat(1.0F), fu)), hn::Div(rows, perRow));
        const V dy = hn::Min(fv, hn::Sub(splat(1.0F), fv));
        const V inside = hn::NegMulAdd(mortar, splat(0.5F), hn::Min(dx, dy));
        const V texels = hn::Div(splat(float(strip.frame.height)), rows);
        const V mask = clamp(hn::MulAdd(inside, texels, splat(0.5F)), zero(), splat(1.0F));
        if (b.output == 1) {
            store(mask, strip.output[0] + i);
        } else if (b.output == 2) {
            const V edge = b.bevel > 0.0F ? hn::Mul(inside, splat(2.0F / b.bevel)) : mask;
            const V t = clamp(edge, zero(), splat(1.0F));
            store(hn::Mul(hn::Mul(t, t), hn::NegMulAdd(splat(2.0F), t, splat(3.0F))),
                  strip.output[0] + i);
        } else {
            // The brick that an offset row starts with is the one it ends with.
            const V turns = hn::Floor(hn::Div(column, perRow));
            const V wrapped = hn::NegMulAdd(turns, perRow, column);
            const V chance = unit(hash(hn::ConvertTo(di, hn::Round(wrapped)),
                                       hn::ConvertTo(di, row), hn::Zero(di), b.seed));
            const V light = hn::MulAdd(hn::MulSub(chance, splat(2.0F), splat(1.0F)),
                                       splat(b.variation), splat(1.0F));
            for (std::size_t k = 0; k < 4; ++k) {
                const V brick = k < 3 ? hn::Mul(splat(b.brick[k]), light) : splat(b.brick[k]);
                store(mix(splat(b.mortar[k]), brick, mask), strip.output[k] + i);
            }
        }
    }
};

void brick(const OssEvStrip &strip, const BrickValues &values)
{
    forPlaces(strip, BrickWork{strip, values});
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(constant);
HWY_EXPORT(checker);
HWY_EXPORT(gradient);
HWY_EXPORT(grid);
HWY_EXPORT(brick);
} // namespace OssEvSimd

namespace {

using namespace OssEvSources;
using namespace OssEvSimd;
using Operation = std::shared_ptr<const OssEvOperation>;

bool isScalarConstant(const OssEvKernelSetup &setup)
{
    return !std::isnan(setup.real("Value"));
}

Operation makeConstant(const OssEvKernelSetup &setup)
{
    const double value = setup.real("Value");
    const ConstantValues values{isScalarConstant(setup) ? OssEvScalar(value)
                                                        : setup.premultiplied("Color")};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(constant), values);
}

Operation makeChecker(const OssEvKernelSetup &setup)
{
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(checker), CheckerValues{float(setup.real("Scale"))},
                          {setup.premultiplied("ColorA"), setup.premultiplied("ColorB")});
}

Operation makeGradient(const OssEvKernelSetup &setup)
{
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(gradient),
                          GradientValues{setup.integer("Direction")},
                          {setup.premultiplied("StartColor"), setup.premultiplied("EndColor")});
}

Operation makeGrid(const OssEvKernelSetup &setup)
{
    const GridValues values{float(setup.integer("Columns")), float(setup.integer("Rows")),
                            float(setup.real("LineWidth") / 2.0),
                            setup.premultiplied("Background")};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(grid), values, {setup.premultiplied("LineColor")});
}

Operation makeBrick(const OssEvKernelSetup &setup)
{
    const BrickValues values{setup.output(),
                             float(setup.integer("Rows")),
                             float(setup.integer("BricksPerRow")),
                             float(setup.real("Offset")),
                             float(setup.real("Bevel")),
                             float(setup.real("Variation")),
                             setup.premultiplied("BrickColor"),
                             setup.premultiplied("MortarColor"),
                             std::uint32_t(setup.integer("Seed"))};
    return OssEvMakePoint(&HWY_DYNAMIC_DISPATCH(brick), values,
                          {OssEvScalar(1.0), OssEvScalar(setup.real("MortarWidth"))});
}

OssEvKernel constantKernel()
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "constant";
    kernel.outputs = {{"Output", 4, true}};
    kernel.parameters = {color("Color", {0.5F, 0.5F, 0.5F, 1.0F}),
                         real("Value", std::numeric_limits<double>::quiet_NaN())};
    kernel.uniform = true;
    kernel.make = makeConstant;
    // A node type with a value is a scalar, one with a colour a colour.
    kernel.outputChannels = [](const OssEvKernelSetup &setup) {
        return isScalarConstant(setup) ? 1 : 4;
    };
    return kernel;
}

} // namespace

void OssEvFamilies::addConstants(std::vector<OssEvKernel> *kernels)
{
    kernels->push_back(constantKernel());
}

void OssEvFamilies::addPatterns(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel checker;
    checker.name = "checker";
    checker.inputs = {{"Color A", 4}, {"Color B", 4}};
    checker.outputs = {{"Output", 4}};
    checker.parameters = {color("ColorA", {1, 1, 1, 1}), color("ColorB", {0, 0, 0, 1}),
                          real("Scale", 8, 0.1, 200)};
    checker.make = makeChecker;
    kernels->push_back(checker);

    OssEvKernel gradient;
    gradient.name = "gradient";
    gradient.inputs = {{"Start", 4}, {"End", 4}};
    gradient.outputs = {{"Output", 4}};
    gradient.parameters = {color("StartColor", {0, 0, 0, 1}), color("EndColor", {1, 1, 1, 1}),
                           choice("Direction", {"Horizontal", "Vertical", "Radial"})};
    gradient.make = makeGradient;
    kernels->push_back(gradient);

    OssEvKernel grid;
    grid.name = "grid";
    grid.inputs = {{"Line Color", 4}};
    grid.outputs = {{"Output", 4}};
    grid.parameters = {integer("Columns", 10, 1, 500), integer("Rows", 10, 1, 500),
                       real("LineWidth", 0.02, 0, 0.5), color("LineColor", {1, 1, 1, 1}),
                       color("Background", {0, 0, 0, 1})};
    grid.make = makeGrid;
    kernels->push_back(grid);

    OssEvKernel brick;
    brick.name = "brick";
    brick.inputs = {{"Size", 1}, {"Mortar", 1}};
    brick.outputs = {{"Output", 4}, {"Mask", 1}, {"Height", 1, true}};
    brick.parameters = {integer("Rows", 12, 1, 200),
                        integer("BricksPerRow", 4, 1, 100),
                        real("Offset", 0.5, 0, 1),
                        real("MortarWidth", 0.06, 0, 0.5),
                        color("BrickColor", {0.34F, 0.037F, 0.014F, 1}),
                        color("MortarColor", {0.4F, 0.38F, 0.35F, 1}),
                        real("Variation", 0.3, 0, 1),
                        real("Bevel", 0.31, 0, 1),
                        integer("Seed", 1, 0, 9999)};
    brick.make = makeBrick;
    kernels->push_back(brick);
}
#endif
