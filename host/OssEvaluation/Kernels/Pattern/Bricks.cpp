// Bricks in their bonds, and planks.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Pattern/PatternRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Pattern/Bricks.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Pattern/PatternStrip-inl.h"

#ifndef OSSEV_BRICKS_VALUES
#define OSSEV_BRICKS_VALUES

namespace OssEvPattern {

struct Bond
{
    enum Kind { Running, Stack, English, Flemish, Herringbone, Basket };

    int kind;
    float offset;
    /// How many bricks' widths make a length.
    float ratio;
    bool diagonal;
};

struct Boards
{
    float grain;
};

} // namespace OssEvPattern
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvPattern;

/// A tile in a rectangle: where a place lies in it, from 0 to 1, and how large it is.
HWY_INLINE Tile rectangle(V u, V v, V width, V height, VW bits)
{
    const V across = hn::Mul(hn::Min(u, 1.0F - u), width);
    const V up = hn::Mul(hn::Min(v, 1.0F - v), height);
    return plainTile(hn::Min(across, up), hn::Min(width, height), bits, u, v);
}

/// Bonds of straight rows.
HWY_INLINE Tile inRows(const TilesOf<Bond> &t, V u, V v)
{
    const V down = v * t.rows;
    const V row = hn::Floor(down);
    const V odd = oddness(row);
    V count = splat(t.columns);
    V shift = odd * t.own.offset;
    if (t.own.kind == Bond::English) {
        count = hn::MulAdd(odd, count, count);
        shift = odd * 0.5F;
    }
    const V along = hn::MulAdd(u, count, shift);
    const V column = hn::Floor(along);
    V index = column;
    V from = hn::Sub(along, column);
    V width = hn::Div(splat(1.0F), count);
    if (t.own.kind == Bond::Flemish) {
        const auto header = hn::Ge(from, splat(2.0F / 3.0F));
        index = hn::MulAdd(column, splat(2.0F), hn::IfThenElseZero(header, splat(1.0F)));
        from = hn::IfThenElse(header, (from - 2.0F / 3.0F) * 3.0F, from * 1.5F);
        width = hn::Mul(width, hn::IfThenElse(header, splat(1.0F / 3.0F), splat(2.0F / 3.0F)));
        count = count * 2.0F;
    }
    const V turns = hn::Floor(hn::Div(index + 0.5F, count));
    const VW bits = chanceOf(hn::NegMulAdd(turns, count, index), around(row, t.rows), t.seed);
    return rectangle(from, hn::Sub(down, row), width, splat(1.0F / t.rows), bits);
}

HWY_INLINE Tile herringbone(const TilesOf<Bond> &t, V u, V v)
{
    const float n = t.own.ratio;
    const bool turned = t.own.diagonal;
    // Along the diagonals a patch holds as many widths as make its sides meet.
    const float count = t.columns * (turned ? n : 2.0F * n);
    const V x = (turned ? hn::Add(u, v) : u) * count;
    const V y = (turned ? hn::Sub(v, u) : v) * count;
    const V i = hn::Floor(x);
    const V j = hn::Floor(y);
    const V step = around(hn::Sub(i, j), 2.0F * n);
    const auto lying = hn::Lt(step, splat(n - 0.5F));
    const V up = (2.0F * n - 1.0F) - step;
    const V fromX = hn::Sub(x, i);
    const V fromY = hn::Sub(y, j);
    const V along = hn::IfThenElse(lying, hn::Add(step, fromX), hn::Add(up, fromY)) * (1.0F / n);
    const V across = hn::IfThenElse(lying, fromY, fromX);
    const V startX = hn::IfThenElse(lying, hn::Sub(i, step), i);
    const V startY = hn::IfThenElse(lying, j, hn::Sub(j, up));
    const VW bits = turned ? chanceOf(around(hn::Sub(startX, startY), 2.0F * count),
                                      around(hn::Add(startX, startY), 2.0F * count), t.seed)
                           : chanceOf(around(startX, count), around(startY, count), t.seed);
    const float size = 1.0F / (turned ? count * 1.41421356F : count);
    return rectangle(along, across, splat(size * n), splat(size), bits);
}

HWY_INLINE Tile basket(const TilesOf<Bond> &t, V u, V v)
{
    const float n = t.own.ratio;
    const float count = 2.0F * std::ceil(t.columns * 0.5F);
    const V x = u * count;
    const V y = v * count;
    const V i = hn::Floor(x);
    const V j = hn::Floor(y);
    const auto lying = hn::Lt(oddness(hn::Add(i, j)), splat(0.5F));
    const V fromX = hn::Sub(x, i);
    const V fromY = hn::Sub(y, j);
    const V along = hn::IfThenElse(lying, fromX, fromY);
    const V layers = hn::IfThenElse(lying, fromY, fromX) * n;
    const V layer = hn::Min(hn::Floor(layers), splat(n - 1.0F));
    const VW bits = chanceOf(hn::MulAdd(around(i, count), splat(n), layer), around(j, count),
                             t.seed);
    return rectangle(along, hn::Sub(layers, layer), splat(1.0F / count), splat(1.0F / (count * n)),
                     bits);
}

struct Bricks
{
    static HWY_INLINE Tile at(const TilesOf<Bond> &t, V u, V v)
    {
        if (t.own.kind == Bond::Herringbone)
            return herringbone(t, u, v);
        return t.own.kind == Bond::Basket ? basket(t, u, v) : inRows(t, u, v);
    }
};

struct Planks
{
    static HWY_INLINE Tile at(const TilesOf<Boards> &t, V u, V v)
    {
        const V down = v * t.rows;
        const V row = hn::Floor(down);
        const V wrappedRow = around(row, t.rows);
        const V shift = unit(chanceOf(wrappedRow, splat(77.0F), t.seed));
        const V along = hn::MulAdd(u, splat(t.columns), shift);
        const V column = hn::Floor(along);
        const VW bits = chanceOf(around(column, t.columns), wrappedRow, t.seed);
        Tile tile = rectangle(hn::Sub(along, column), hn::Sub(down, row), splat(1.0F / t.columns),
                              splat(1.0F / t.rows), bits);
        // Wood: rings that a saw has cut lengthwise, and fine fibres.
        const V start = tenBits<0>(otherBits(bits, 3)) * 97.0F;
        const V bend = gradientAt<true>(
            {hn::MulAdd(tile.u, splat(2.0F), start), tile.v * 1.5F, zero()}, t.seed + 5U);
        const V rings = fraction(
            hn::MulAdd(tile.v, splat(3.0F), hn::MulAdd(bend, splat(2.5F), start)));
        const V fibre = gradientAt<true>(
            {hn::MulAdd(tile.u, splat(7.0F), start), tile.v * 40.0F, zero()}, t.seed + 6U);
        const V late = hn::Mul(rings, rings);
        const V dark = hn::MulAdd(fibre, splat(0.3F), late * 0.5F);
        tile.shade = 1.0F - dark * t.own.grain;
        tile.profile = 1.0F - saturate(dark) * (0.15F * t.own.grain);
        return tile;
    }
};

void bricks(const OssEvStrip &strip, const TilesOf<Bond> &t)
{
    tilesOver<Bricks>(strip, t);
}

void planks(const OssEvStrip &strip, const TilesOf<Boards> &t)
{
    tilesOver<Planks>(strip, t);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(bricks);
HWY_EXPORT(planks);
} // namespace OssEvSimd

namespace {

using namespace OssEvPattern;
using namespace OssEvSimd;

std::shared_ptr<const OssEvOperation> makeBond(const OssEvKernelSetup &setup, const Bond &bond)
{
    const bool rows = bond.kind < Bond::Herringbone;
    return makeTiles(HWY_DYNAMIC_DISPATCH(bricks), setup, bond,
                     float(setup.integer(rows ? "Rows" : "Columns")));
}

} // namespace

void OssEvFamilies::addBricks(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    const OssEvColor red{0.34F, 0.06F, 0.025F, 1};
    const OssEvColor stone{0.42F, 0.37F, 0.31F, 1};
    const OssEvColor mortar{0.4F, 0.38F, 0.35F, 1};
    const OssEvColor dark{0.05F, 0.045F, 0.04F, 1};
    add(kernels, {"runningBond", 4, 12, 0.12, 0.3, red, mortar, {real("Offset", 0.5, 0, 1)}},
        [](const Setup &s) {
            return makeBond(s, {Bond::Running, float(s.real("Offset")), 2.0F, false});
        });
    add(kernels, {"stackBond", 4, 12, 0.12, 0.3, red, mortar}, [](const Setup &s) {
        return makeBond(s, {Bond::Stack, 0.0F, 2.0F, false});
    });
    add(kernels, {"englishBond", 4, 12, 0.12, 0.3, red, mortar}, [](const Setup &s) {
        return makeBond(s, {Bond::English, 0.0F, 2.0F, false});
    });
    add(kernels, {"flemishBond", 3, 12, 0.12, 0.3, red, mortar}, [](const Setup &s) {
        return makeBond(s, {Bond::Flemish, 0.5F, 2.0F, false});
    });
    add(kernels,
        {"herringbone",
         3,
         0,
         0.08,
         0.3,
         stone,
         dark,
         {integer("Ratio", 3, 2, 8), flag("Diagonal", true)}},
        [](const Setup &s) {
            return makeBond(
                s, {Bond::Herringbone, 0.0F, float(s.integer("Ratio")), s.flag("Diagonal")});
        });
    add(kernels, {"basketWeaveBond", 6, 0, 0.1, 0.3, red, mortar, {integer("Ratio", 2, 1, 8)}},
        [](const Setup &s) {
            return makeBond(s, {Bond::Basket, 0.0F, float(s.integer("Ratio")), false});
        });
    add(kernels,
        {"planks",
         2,
         8,
         0.03,
         0.12,
         {0.32F, 0.17F, 0.075F, 1},
         {0.01F, 0.008F, 0.005F, 1},
         {real("Grain", 0.6, 0, 1)}},
        [](const Setup &s) {
            return makeTiles(HWY_DYNAMIC_DISPATCH(planks), s, Boards{float(s.real("Grain"))},
                             float(s.integer("Rows")));
        });
}
#endif
