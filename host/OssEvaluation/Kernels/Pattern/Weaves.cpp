// Cloth: threads that cross each other, and stitches.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Pattern/PatternRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Pattern/Weaves.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Pattern/PatternStrip-inl.h"

#ifndef OSSEV_WEAVES_VALUES
#define OSSEV_WEAVES_VALUES

namespace OssEvPattern {

struct Threads
{
    /// The upright thread lies on top in the first `over` of `cycle` crossings of its column; each column
    /// begins `step` crossings higher than the one before.
    float over;
    float cycle;
    float step;
    float twist;
    float depth;
    std::array<float, 4> weft; ///< the color of the level threads
};

struct Stitches
{
    float slant;
    float twist;
};

} // namespace OssEvPattern
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvPattern;

/// 1 where the upright thread lies on top of a crossing, else -1.
HWY_INLINE V topAt(const Threads &w, V column, V row)
{
    const V place = around(hn::NegMulAdd(column, splat(w.step), row), w.cycle);
    return hn::IfThenElse(hn::Lt(place, splat(w.over - 0.5F)), splat(1.0F), splat(-1.0F));
}

/// Between the levels at the middle of a crossing and of the next one.
HWY_INLINE V levelBetween(V here, V next, V far)
{
    return mix(here, next, hn::Mul(hn::Mul(far, far), 3.0F - far * 2.0F));
}

/// Lines that wind around a thread.
HWY_INLINE V windings(V along, V across, float twist)
{
    return 1.0F
           - (sineOfTurns(hn::MulAdd(along, splat(3.0F), across * 0.8F)) * 0.5F + 0.5F)
                 * (0.45F * twist);
}

struct Weave
{
    static HWY_INLINE Tile at(const TilesOf<Threads> &t, V u, V v)
    {
        const Threads &w = t.own;
        const V x = u * t.columns;
        const V y = v * t.rows;
        const V i = hn::Floor(x);
        const V j = hn::Floor(y);
        const V cx = hn::Sub(x, i) - 0.5F;
        const V cy = hn::Sub(y, j) - 0.5F;
        const V here = topAt(w, i, j);
        const V one = splat(1.0F);
        const V beyondX = hn::Add(i, hn::CopySign(one, cx));
        const V beyondY = hn::Add(j, hn::CopySign(one, cy));
        const V upright = levelBetween(here, topAt(w, i, beyondY), hn::Abs(cy));
        const V level = hn::Neg(levelBetween(here, topAt(w, beyondX, j), hn::Abs(cx)));
        // Threads are round: they end in the gap between them, and the one on top hides the other.
        const float half = 0.5F * (1.0F - t.gap) + 1e-3F;
        const V acrossUp = hn::Abs(cx) * (1.0F / half);
        const V acrossLevel = hn::Abs(cy) * (1.0F / half);
        const V roundUp = hn::Sqrt(saturate(hn::NegMulAdd(acrossUp, acrossUp, one)));
        const V roundLevel = hn::Sqrt(saturate(hn::NegMulAdd(acrossLevel, acrossLevel, one)));
        const auto isUp = hn::Gt(acrossUp, one);
        const auto isLevel = hn::Gt(acrossLevel, one);
        const V heightUp = hn::IfThenElse(isUp, splat(-9.0F),
                                          hn::MulAdd(roundUp, splat(0.8F), upright));
        const V heightLevel = hn::IfThenElse(isLevel, splat(-9.0F),
                                             hn::MulAdd(roundLevel, splat(0.8F), level));
        const auto up = hn::Ge(heightUp, heightLevel);
        const V height = hn::Max(hn::IfThenElse(up, heightUp, heightLevel), splat(-1.0F));
        const V ends = hn::Max(0.5F - hn::Abs(cx), 0.5F - hn::Abs(cy));
        const V along = hn::IfThenElse(up, cy, cx);
        const V across = hn::IfThenElse(up, cx, cy);
        const V number = hn::IfThenElse(up, around(i, t.columns), around(j, t.rows) + 4096.0F);
        Tile tile = plainTile(ends * (1.0F / t.columns), splat(1.0F / t.columns),
                              chanceOf(number, hn::IfThenElseZero(up, one), t.seed), across + 0.5F,
                              along + 0.5F);
        tile.profile = mix(splat(1.0F), (height + 1.0F) * (1.0F / 2.8F), splat(w.depth));
        const V wound = windings(along, across, w.twist);
        const V top = hn::IfThenElse(up, upright, level);
        const V lit = hn::Mul(hn::IfThenElse(up, roundUp, roundLevel) * 0.7F + 0.3F,
                              top * 0.25F + 0.75F);
        tile.shade = hn::Mul(wound, mix(one, lit, splat(w.depth)));
        tile.other = hn::IfThenElse(up, zero(), one);
        return tile;
    }
};

/// Stitches are columns of letters V: two slanted strands that meet in the middle of a column.
struct Knit
{
    static HWY_INLINE Tile at(const TilesOf<Stitches> &t, V u, V v)
    {
        const V x = u * t.columns;
        const V column = hn::Floor(x);
        const V side = hn::Sub(x, column) - 0.5F;
        const V out = hn::Abs(side) * 2.0F;
        // Strands rise towards the sides, and bend where they meet others.
        const V rise = hn::Mul(out, 2.0F - out) * (t.own.slant * 1.2F);
        const V y = hn::Sub(v * t.rows, rise);
        const V row = hn::Floor(y);
        const V across = (hn::Sub(y, row) - 0.5F) * 2.0F;
        const V far = out * 2.0F - 1.0F;
        const V thick = hn::Sqrt(saturate(hn::NegMulAdd(far, far * 0.75F, splat(1.0F))));
        const V edge = hn::Sub(thick, hn::Abs(across));
        const V relative = saturate(hn::Div(hn::Abs(across), hn::Max(thick, splat(0.05F))));
        const V round = hn::Sqrt(saturate(hn::NegMulAdd(relative, relative, splat(1.0F))));
        const float slanted = 1.0F / std::sqrt(1.0F + 4.0F * t.own.slant * t.own.slant);
        Tile tile = plainTile(edge * (0.5F * slanted / t.rows), splat(slanted / t.rows),
                              chanceOf(around(column, t.columns), around(row, t.rows), t.seed),
                              side + 0.5F, across * 0.5F + 0.5F);
        const V sunk = hn::NegMulAdd(hn::Mul(far, far), splat(0.35F), splat(1.0F));
        tile.profile = hn::Mul(round, sunk);
        const V lines = sineOfTurns(hn::MulAdd(out, splat(2.5F), across * 0.6F)) * 0.5F + 0.5F;
        tile.shade = hn::Mul(hn::Mul(round, sunk) * 0.75F + 0.25F,
                             1.0F - lines * (0.35F * t.own.twist));
        return tile;
    }
};

void weave(const OssEvStrip &strip, const TilesOf<Threads> &t)
{
    tilesOver<Weave>(strip, t, &t.own.weft);
}

void knit(const OssEvStrip &strip, const TilesOf<Stitches> &t)
{
    tilesOver<Knit>(strip, t);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(weave);
HWY_EXPORT(knit);
} // namespace OssEvSimd

namespace {

using namespace OssEvPattern;
using namespace OssEvSimd;

/// Threads of a weave that repeats after so many: as many as make whole repeats.
std::shared_ptr<const OssEvOperation> makeWeave(const OssEvKernelSetup &setup, float over,
                                                float cycle, float step)
{
    const Threads own{over,
                      cycle,
                      step,
                      float(setup.real("Twist")),
                      float(setup.real("Depth")),
                      setup.premultiplied("WeftColor")};
    const auto whole = [cycle](int count) {
        return cycle * float(std::max(1.0, std::round(count / double(cycle))));
    };
    auto values = OssEvPattern::TilesOf<Threads>{Tiles::of(setup), own};
    values.columns = whole(setup.integer("Columns"));
    values.rows = whole(setup.integer("Rows"));
    return OssEvMakePoint(HWY_DYNAMIC_DISPATCH(weave), values,
                          {setup.premultiplied("Color"), setup.premultiplied("GapColor")});
}

Parameters threads()
{
    using namespace OssEvDescribe;
    return {color("WeftColor", {0.62F, 0.58F, 0.5F, 1}), real("Depth", 0.8, 0, 1),
            real("Twist", 0.4, 0, 1)};
}

} // namespace

void OssEvFamilies::addWeaves(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    const OssEvColor linen{0.62F, 0.58F, 0.5F, 1};
    const OssEvColor indigo{0.03F, 0.06F, 0.16F, 1};
    const OssEvColor wool{0.42F, 0.05F, 0.06F, 1};
    const OssEvColor dark{0.02F, 0.018F, 0.015F, 1};
    add(kernels, {"plainWeave", 20, 20, 0.12, 0, linen, dark, threads()},
        [](const Setup &s) { return makeWeave(s, 1.0F, 2.0F, 1.0F); });
    Parameters twill = threads();
    const Parameters rule{integer("Over", 2, 1, 6), integer("Under", 2, 1, 6)};
    twill.insert(twill.begin(), rule.begin(), rule.end());
    add(kernels, {"twillWeave", 24, 24, 0.06, 0, indigo, dark, twill}, [](const Setup &s) {
        const int over = s.integer("Over");
        return makeWeave(s, float(over), float(over + s.integer("Under")), 1.0F);
    });
    add(kernels,
        {"knit",
         12,
         16,
         0.02,
         0,
         wool,
         dark,
         {real("Slant", 0.7, 0.1, 2), real("Twist", 0.5, 0, 1)}},
        [](const Setup &s) {
            const Stitches own{float(s.real("Slant")), float(s.real("Twist"))};
            return makeTiles(HWY_DYNAMIC_DISPATCH(knit), s, own, float(s.integer("Rows")));
        });
}
#endif
