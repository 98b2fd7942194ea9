// The loops of tiles and figures: where texels lie in the patch, and what becomes of distances. Compiled
// once for each instruction set, like Simd-inl.h.
#if defined(OSSEV_PATTERN_STRIP_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_PATTERN_STRIP_INL_H_
#undef OSSEV_PATTERN_STRIP_INL_H_
#else
#define OSSEV_PATTERN_STRIP_INL_H_
#endif

#include "OssEvaluation/Kernels/Noise/Feature-inl.h"
#include "OssEvaluation/Kernels/Pattern/PatternRow.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

/// Calls `work.at(i, u, v)` for the texels of a strip: what is connected to the input `input`, else
/// texture coordinates within the patch.
template <class Work>
HWY_INLINE void eachUv(const OssEvStrip &strip, std::size_t input, const Work &work)
{
    const Floats d;
    const int lanes = int(hn::Lanes(d));
    const OssEvStripInput &given = strip.inputs[input];
    const V farthest = splat(1e5F);
    for (int row = 0; row < strip.rows; ++row) {
        const float v = 1.0F - (float(strip.y + row) + 0.5F) / float(strip.frame.height);
        for (int x = 0; x < strip.width; x += lanes) {
            const std::size_t i = std::size_t(row) * std::size_t(strip.width) + std::size_t(x);
            if (given.connected) {
                work.at(i, clamp(load(given.plane[0] + i), hn::Neg(farthest), farthest),
                        clamp(load(given.plane[1] + i), hn::Neg(farthest), farthest));
                continue;
            }
            const V column = hn::Add(hn::Iota(d, float(strip.x + x)), splat(0.5F));
            work.at(i, column * (1.0F / float(strip.frame.width)), splat(v));
        }
    }
}

/// A count of cells that repeats after so many.
HWY_INLINE V around(V index, float count)
{
    return hn::NegMulAdd(hn::Floor((index + 0.5F) * (1.0F / count)), splat(count), index);
}

HWY_INLINE VW chanceOf(V column, V row, std::uint32_t seed)
{
    const Ints di;
    return hash(hn::ConvertTo(di, hn::Round(column)), hn::ConvertTo(di, hn::Round(row)),
                hn::Zero(di), seed);
}

/// 0 or 1: whether a whole number is odd.
HWY_INLINE V oddness(V whole)
{
    return fraction(whole * 0.5F) * 2.0F;
}

/// What a kind of tiles knows of a place. Lengths are in heights of the patch.
struct Tile
{
    V inside; ///< to the outline, before the gap
    V size;   ///< of the tile across
    VW bits;
    V u; ///< within the tile
    V v;
    V profile; ///< how high it stands there
    V shade;   ///< how bright it is there
    V other;   ///< how much of a second color it has
};

/// One that is level and of one color.
HWY_INLINE Tile plainTile(V inside, V size, VW bits, V u, V v)
{
    return {inside, size, bits, u, v, splat(1.0F), splat(1.0F), zero()};
}

template <class Kind, class Values>
struct TilesWork
{
    const OssEvStrip &strip;
    const Values &t;
    const std::array<float, 4> *second;

    HWY_INLINE void at(std::size_t i, V u, V v) const
    {
        using OssEvPattern::Tiles;
        const Tile tile = Kind::at(t, u, v);
        const V inside = hn::NegMulAdd(tile.size, splat(0.5F * t.gap), tile.inside);
        const V mask = saturate(inside * float(strip.frame.height) + 0.5F);
        const V chance = unit(otherBits(tile.bits, 1));
        if (t.output == Tiles::Mask) {
            store(mask, strip.output[0] + i);
        } else if (t.output == Tiles::Height) {
            const V width = tile.size * (0.5F * t.bevel);
            const V edge = t.bevel > 0.0F ? saturate(hn::Div(inside, width)) : mask;
            const V round = hn::Mul(hn::Mul(edge, edge), 3.0F - edge * 2.0F);
            const V level = 1.0F - unit(otherBits(tile.bits, 2)) * t.heightVariation;
            store(saturate(hn::Mul(hn::Mul(round, level), tile.profile)), strip.output[0] + i);
        } else if (t.output == Tiles::Random) {
            store(hn::Mul(chance, mask), strip.output[0] + i);
        } else if (t.output == Tiles::Place) {
            store(saturate(tile.u), strip.output[0] + i);
            store(saturate(tile.v), strip.output[1] + i);
            store(zero(), strip.output[2] + i);
        } else {
            const V light = hn::Mul(
                hn::MulAdd(chance * 2.0F - 1.0F, splat(t.variation), splat(1.0F)), tile.shade);
            for (std::size_t k = 0; k < 4; ++k) {
                V own = load(strip.inputs[0].plane[k] + i);
                if (second != nullptr)
                    own = mix(own, splat((*second)[k]), tile.other);
                store(mix(load(strip.inputs[1].plane[k] + i), k < 3 ? hn::Mul(own, light) : own,
                          mask),
                      strip.output[k] + i);
            }
        }
    }
};

template <class Kind, class Values>
HWY_INLINE void tilesOver(const OssEvStrip &strip, const Values &t,
                          const std::array<float, 4> *second = nullptr)
{
    eachUv(strip, 2, TilesWork<Kind, Values>{strip, t, second});
}

/// What becomes of the distance to an outline in heights of the patch, positive inside.
HWY_INLINE void finishFigure(const OssEvStrip &strip, const OssEvPattern::Figure &f, std::size_t i,
                             V inside)
{
    using OssEvPattern::Figure;
    if (f.output == Figure::Distance) {
        store(clamp(hn::Neg(inside), splat(-1e4F), splat(1e4F)), strip.output[0] + i);
        return;
    }
    const float width = std::max(f.softness, 1.0F / float(strip.frame.height));
    const V mask = saturate(inside * (1.0F / width) + 0.5F);
    if (f.output == Figure::Mask) {
        store(mask, strip.output[0] + i);
        return;
    }
    for (std::size_t k = 0; k < 4; ++k) {
        store(mix(load(strip.inputs[1].plane[k] + i), load(strip.inputs[0].plane[k] + i), mask),
              strip.output[k] + i);
    }
}

/// Of a kind with `static V at(const Values &, V u, V v)`, which is such a distance.
template <class Kind, class Values>
struct FigureWork
{
    const OssEvStrip &strip;
    const Values &f;

    HWY_INLINE void at(std::size_t i, V u, V v) const
    {
        finishFigure(strip, f, i, Kind::at(f, u, v));
    }
};

template <class Kind, class Values>
HWY_INLINE void figureOver(const OssEvStrip &strip, const Values &f)
{
    eachUv(strip, 2, FigureWork<Kind, Values>{strip, f});
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
