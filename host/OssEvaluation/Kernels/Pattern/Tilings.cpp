// Tiles that are no rectangles: hexagons, triangles, cobbles, tiles of roofs.

#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Pattern/PatternRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "OssEvaluation/Kernels/Pattern/Tilings.cpp"
#include <hwy/foreach_target.h>
// The order matters: the line above includes this file once for each instruction set.
#include "OssEvaluation/Kernels/Pattern/PatternStrip-inl.h"

#ifndef OSSEV_TILINGS_VALUES
#define OSSEV_TILINGS_VALUES

namespace OssEvPattern {

struct Plain
{};

struct Stones
{
    float jitter;
    float rounding;
    float dome;
};

struct Slates
{
    enum Shape { Flat, Round, Pointed };

    int shape;
    float depth; ///< of the lower edge, in rows
};

} // namespace OssEvPattern
#endif

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

using namespace OssEvPattern;

/// Two lattices of rectangles, one shifted by half; a hexagon is what is nearer to one of its middles.
/// There is an even number of rows, so that sides meet: hexagons are as regular as that allows.
struct Hexagons
{
    static HWY_INLINE Tile at(const TilesOf<Plain> &t, V u, V v)
    {
        constexpr float Slope = 0.8660254F;
        const V x = u * t.columns;
        const V y = v * t.rows; // rows are Slope apart
        const V i = hn::Floor(x);
        const V j = hn::Round(y * 0.5F) * 2.0F;
        const V k = hn::MulAdd(hn::Floor(y * 0.5F), splat(2.0F), splat(1.0F));
        const V ax = hn::Sub(x, i) - 0.5F;
        const V ay = hn::Sub(y, j) * Slope;
        const V c = hn::Round(x);
        const V bx = hn::Sub(x, c);
        const V by = hn::Sub(y, k) * Slope;
        const auto first = hn::Lt(hn::MulAdd(ax, ax, hn::Mul(ay, ay)),
                                  hn::MulAdd(bx, bx, hn::Mul(by, by)));
        const V dx = hn::IfThenElse(first, ax, bx);
        const V dy = hn::IfThenElse(first, ay, by);
        const V far = hn::Max(hn::Abs(dx),
                              hn::MulAdd(hn::Abs(dx), splat(0.5F), hn::Abs(dy) * Slope));
        const VW bits = chanceOf(around(hn::IfThenElse(first, i, c), t.columns),
                                 around(hn::IfThenElse(first, j, k), t.rows), t.seed);
        return plainTile((0.5F - far) * (1.0F / t.columns), splat(1.0F / t.columns), bits,
                         dx + 0.5F, dy * Slope + 0.5F);
    }
};

struct Triangles
{
    static HWY_INLINE Tile at(const TilesOf<Plain> &t, V u, V v)
    {
        const V y = v * t.rows;
        const V row = hn::Floor(y);
        const V up = hn::Sub(y, row);
        const V x = hn::NegMulAdd(oddness(row), splat(0.5F), u * t.columns);
        const V column = hn::Floor(x);
        const V side = hn::Sub(x, column) - 0.5F;
        // What lies above both slopes belongs to a triangle that hangs between two standing ones.
        const V room = hn::Sub(1.0F - up, hn::Abs(side) * 2.0F);
        const auto standing = hn::Ge(room, zero());
        const V half = hn::IfThenElse(hn::Lt(side, zero()), splat(-0.5F), splat(0.5F));
        const V index = hn::IfThenElse(standing, column, hn::Add(column, half) - 0.25F);
        const V height = splat(1.0F / t.rows);
        const float slope = 1.0F / std::sqrt(t.rows * t.rows + 4.0F * t.columns * t.columns);
        const V level = hn::IfThenElse(standing, up, 1.0F - up);
        const V inside = hn::Min(hn::Mul(level, height), hn::Abs(room) * slope);
        const V across = hn::IfThenElse(standing, side, hn::Sub(side, half));
        // Standing ones have even numbers, hanging ones odd ones.
        const V number = around(hn::Floor(hn::MulAdd(index, splat(2.0F), splat(0.75F))),
                                2.0F * t.columns);
        const VW bits = chanceOf(number, around(row, t.rows), t.seed);
        return plainTile(inside, height * 0.66F, bits, across + 0.5F, level);
    }
};

struct NearestStone
{
    V *distance;
    Place *to;
    V *bits;

    HWY_INLINE void at(VW own, const Place &point) const
    {
        const V far = dot(point, point);
        const auto nearer = hn::Lt(far, *distance);
        *distance = hn::Min(far, *distance);
        to->x = hn::IfThenElse(nearer, point.x, to->x);
        to->y = hn::IfThenElse(nearer, point.y, to->y);
        *bits = hn::IfThenElse(nearer, hn::BitCast(Floats(), own), *bits);
    }
};

/// The borders to all others, the nearest of them; corners are rounded by a smooth minimum.
struct StoneBorder
{
    Place nearest;
    float rounding;
    V *best;

    HWY_INLINE void at(VW /*bits*/, const Place &to) const
    {
        const Place across = to - nearest;
        const V square = dot(across, across);
        const V far = hn::Div(dot(to + nearest, across) * 0.5F,
                              hn::Sqrt(hn::Max(square, splat(1e-12F))));
        const V border = hn::IfThenElse(hn::Gt(square, splat(1e-6F)), hn::Min(far, splat(4.0F)),
                                        splat(4.0F));
        const V t = saturate(hn::Sub(*best, border) * (0.5F / rounding) + 0.5F);
        *best = hn::Sub(mix(*best, border, t), hn::Mul(t, 1.0F - t) * rounding);
    }
};

struct Cobbles
{
    static HWY_INLINE Tile at(const TilesOf<Stones> &t, V u, V v)
    {
        const Spot s{{u * t.columns, v * t.columns, zero()}, int(t.columns), zero()};
        V distance = splat(1e30F);
        Place to{zero(), zero(), zero()};
        V bits = zero();
        aroundSpot<true>(s, t.own.jitter, t.seed, 1, NearestStone{&distance, &to, &bits});
        V border = splat(4.0F);
        aroundSpot<true>(s, t.own.jitter, t.seed, 2,
                         StoneBorder{to, std::max(t.own.rounding * 0.3F, 1e-3F), &border});
        Tile tile = plainTile(border * (1.0F / t.columns), splat(1.0F / t.columns),
                              hn::BitCast(Words(), bits), 0.5F - to.x, 0.5F - to.y);
        const V low = saturate(distance * 1.3F);
        tile.profile = 1.0F - hn::Mul(low, splat(t.own.dome));
        return tile;
    }
};

/// Each row lies on the one below, so a place shows the tile of its row or, beyond that one's lower edge,
/// the tile of the row below.
struct RoofTiles
{
    static HWY_INLINE V edgeAt(const Slates &own, V side)
    {
        const V x = hn::Abs(side);
        if (own.shape == Slates::Pointed)
            return x * own.depth;
        const V level = hn::Sqrt(hn::Max(hn::NegMulAdd(x, x, splat(1.0F)), zero()));
        return own.shape == Slates::Round ? (1.0F - level) * own.depth : zero();
    }

    static HWY_INLINE Tile at(const TilesOf<Slates> &t, V u, V v)
    {
        const V y = v * t.rows;
        const V above = hn::Floor(y);
        V row = above;
        V up = hn::Sub(y, above);
        V x = hn::MulAdd(oddness(row), splat(0.5F), u * t.columns);
        V column = hn::Floor(x);
        V side = hn::Sub(x, column) * 2.0F - 1.0F;
        V edge = edgeAt(t.own, side);
        const auto below = hn::Lt(up, edge);
        // The upper row shades what it lies on.
        const V shadow = hn::IfThenElse(below, saturate(hn::Sub(edge, up) * 4.0F), splat(1.0F));
        row = hn::IfThenElse(below, row - 1.0F, row);
        up = hn::IfThenElse(below, up + 1.0F, up);
        x = hn::MulAdd(oddness(row), splat(0.5F), u * t.columns);
        column = hn::Floor(x);
        side = hn::Sub(x, column) * 2.0F - 1.0F;
        const V own = edgeAt(t.own, side);
        const V beside = (1.0F - hn::Abs(side)) * (0.5F / t.columns);
        const V lower = hn::Sub(up, own) * (1.0F / t.rows);
        const V covered = hn::IfThenElse(below, hn::Sub(edge, up) + 1.0F, splat(1.0F))
                          * (1.0F / t.rows);
        Tile tile = plainTile(hn::Min(hn::Min(beside, lower), covered),
                              splat(1.0F / std::max(t.rows, t.columns)),
                              chanceOf(around(column, t.columns), around(row, t.rows), t.seed),
                              side * 0.5F + 0.5F, up * (1.0F / (1.0F + t.own.depth)));
        tile.profile = 1.0F - up * (0.7F / (1.0F + t.own.depth));
        tile.shade = shadow * 0.5F + 0.5F;
        return tile;
    }
};

void hexagons(const OssEvStrip &strip, const TilesOf<Plain> &t)
{
    tilesOver<Hexagons>(strip, t);
}

void triangles(const OssEvStrip &strip, const TilesOf<Plain> &t)
{
    tilesOver<Triangles>(strip, t);
}

void cobbles(const OssEvStrip &strip, const TilesOf<Stones> &t)
{
    tilesOver<Cobbles>(strip, t);
}

void roofTiles(const OssEvStrip &strip, const TilesOf<Slates> &t)
{
    tilesOver<RoofTiles>(strip, t);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace OssEvSimd {
HWY_EXPORT(hexagons);
HWY_EXPORT(triangles);
HWY_EXPORT(cobbles);
HWY_EXPORT(roofTiles);
} // namespace OssEvSimd

namespace {

using namespace OssEvPattern;

/// Rows of tiles of this height, in widths: an even number, so that sides meet.
float evenRows(const OssEvKernelSetup &setup, double height)
{
    return float(2.0 * std::max(1.0, std::round(setup.integer("Columns") / height / 2.0)));
}

} // namespace

void OssEvFamilies::addTilings(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvSimd;
    using namespace OssEvDescribe;
    using Setup = OssEvKernelSetup;
    const OssEvColor stone{0.3F, 0.28F, 0.25F, 1};
    const OssEvColor dark{0.04F, 0.036F, 0.03F, 1};
    add(kernels, {"hexagons", 8, 0, 0.06, 0.25, {0.55F, 0.53F, 0.5F, 1}, dark}, [](const Setup &s) {
        return makeTiles(&HWY_DYNAMIC_DISPATCH(hexagons), s, Plain{}, evenRows(s, 0.8660254));
    });
    add(kernels, {"triangles", 8, 0, 0.06, 0.25, {0.12F, 0.3F, 0.38F, 1}, dark},
        [](const Setup &s) {
            return makeTiles(&HWY_DYNAMIC_DISPATCH(triangles), s, Plain{}, evenRows(s, 0.8660254));
        });
    add(kernels,
        {"cobbles",
         8,
         0,
         0.12,
         0.45,
         stone,
         dark,
         {real("Jitter", 0.6, 0, 1), real("Rounding", 0.5, 0, 1), real("Dome", 0.4, 0, 1)}},
        [](const Setup &s) {
            const Stones own{float(s.real("Jitter")), float(s.real("Rounding")),
                             float(s.real("Dome"))};
            return makeTiles(&HWY_DYNAMIC_DISPATCH(cobbles), s, own, float(s.integer("Columns")));
        });
    add(kernels,
        {"roofTiles",
         8,
         10,
         0.04,
         0.12,
         {0.33F, 0.09F, 0.04F, 1},
         dark,
         {choice("Shape", {"Flat", "Round", "Pointed"}, Slates::Round),
          real("EdgeDepth", 0.5, 0, 0.95)}},
        [](const Setup &s) {
            const Slates own{s.integer("Shape"), float(s.real("EdgeDepth"))};
            return makeTiles(&HWY_DYNAMIC_DISPATCH(roofTiles), s, own, float(s.integer("Rows")));
        });
}
#endif
