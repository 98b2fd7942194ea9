// Points scattered over cells, one in each, and what lies around them; after S. Worley, "A Cellular
// Texture Basis Function" (1996). Compiled once for each instruction set, like Simd-inl.h.
#if defined(OSSEV_FEATURE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_FEATURE_INL_H_
#undef OSSEV_FEATURE_INL_H_
#else
#define OSSEV_FEATURE_INL_H_
#endif

#include "OssEvaluation/Kernels/Noise/Fractal-inl.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

/// Ten bits of the word from `Shift` on, as 0 to 1.
template <int Shift>
HWY_INLINE V tenBits(VW bits)
{
    const VW low = hn::And(hn::ShiftRight<Shift>(bits), hn::Set(Words(), 0x3FFU));
    return hn::ConvertTo(Floats(), hn::BitCast(Ints(), low)) * (1.0F / 1023.0F);
}

/// Other bits than those that were given, from the same cell.
HWY_INLINE VW otherBits(VW bits, std::uint32_t salt)
{
    const Words d;
    VW h = hn::Mul(hn::Xor(bits, hn::Set(d, salt * 0x9E3779B1U)), hn::Set(d, 0x2C1B3C6DU));
    h = hn::Mul(hn::Xor(h, hn::ShiftRight<15>(h)), hn::Set(d, 0x297A2D39U));
    return hn::Xor(h, hn::ShiftRight<16>(h));
}

/// Calls `visit(bits, offset)` for the cells around a spot: the offset of the cell's point from it.
/// Points lie up to half a `jitter` from the middles of their cells.
template <bool Flat, class Visit>
HWY_INLINE void aroundSpot(const Spot &s, float jitter, std::uint32_t seed, int reach,
                           const Visit &visit)
{
    const Ints di;
    const V floors[3] = {hn::Floor(s.p.x), hn::Floor(s.p.y), Flat ? zero() : hn::Floor(s.p.z)};
    const VI base[3] = {hn::ConvertTo(di, floors[0]), hn::ConvertTo(di, floors[1]),
                        hn::ConvertTo(di, floors[2])};
    const Place in{hn::Sub(s.p.x, floors[0]), hn::Sub(s.p.y, floors[1]),
                   Flat ? zero() : hn::Sub(s.p.z, floors[2])};
    const float middle = 0.5F - 0.5F * jitter;
    const int depth = Flat ? 0 : reach;
    const int rows = s.rows > 0 ? s.rows : s.period;
    for (int z = -depth; z <= depth; ++z) {
        for (int y = -reach; y <= reach; ++y) {
            const VI row = wrapped(hn::Add(base[1], hn::Set(di, y)), rows);
            for (int x = -reach; x <= reach; ++x) {
                const VI column = wrapped(hn::Add(base[0], hn::Set(di, x)), s.period);
                const VW bits = hash(column, row, hn::Add(base[2], hn::Set(di, z)), seed);
                const Place point{tenBits<0>(bits) * jitter + (middle + float(x)),
                                  tenBits<10>(bits) * jitter + (middle + float(y)),
                                  Flat ? zero() : tenBits<20>(bits) * jitter + (middle + float(z))};
                visit.at(bits, point - in);
            }
        }
    }
}

/// A unit vector by chance; in the plane where flat.
template <bool Flat>
HWY_INLINE Place chanceDirection(VW bits)
{
    const V turns = tenBits<0>(bits);
    if (Flat)
        return {cosineOfTurns(turns), sineOfTurns(turns), zero()};
    const V z = tenBits<10>(bits) * 2.0F - 1.0F;
    const V r = hn::Sqrt(hn::Max(hn::NegMulAdd(z, z, splat(1.0F)), zero()));
    return {hn::Mul(cosineOfTurns(turns), r), hn::Mul(sineOfTurns(turns), r), z};
}

HWY_INLINE Place towards(Place a, Place b, float t)
{
    const Place mixed = a * (1.0F - t) + b * t;
    const V length = hn::Sqrt(hn::Max(dot(mixed, mixed), splat(1e-12F)));
    const V inverse = hn::Div(splat(1.0F), length);
    return {hn::Mul(mixed.x, inverse), hn::Mul(mixed.y, inverse), hn::Mul(mixed.z, inverse)};
}

/// How much of a texel lies within half a width of a middle line; one that is thinner than the texel
/// covers a part of it, so that small pictures look as large ones.
HWY_INLINE V lineCover(V distance, V halfWidth, V texel)
{
    const V least = texel * 0.5F;
    const V wide = hn::Max(halfWidth, least);
    const V cover = saturate(hn::Div(hn::Sub(wide, distance), texel) + 0.5F);
    return hn::Mul(cover, hn::Min(hn::Div(halfWidth, least), splat(1.0F)));
}

/// How much of a texel lies inside an edge that is so far away.
HWY_INLINE V edgeCover(V inside, V texel)
{
    return saturate(hn::Div(inside, texel) + 0.5F);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
