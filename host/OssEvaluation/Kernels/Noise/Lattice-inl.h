// Noise on lattices: gradient noise after K. Perlin, "Improving Noise" (2002); value noise; simplex
// noise after S. Gustavson, "Simplex noise demystified" (2005), in the plane on the lattice of S. Gustavson
// and I. McEwan, "Tiling simplex noise and flow noise" (2022), which repeats. Compiled once for each
// instruction set, like Simd-inl.h.
#if defined(OSSEV_LATTICE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_LATTICE_INL_H_
#undef OSSEV_LATTICE_INL_H_
#else
#define OSSEV_LATTICE_INL_H_
#endif

#include "OssEvaluation/Kernels/Hash-inl.h"
#include "OssEvaluation/Kernels/Noise/Place-inl.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

/// Lattice coordinates that repeat after a period; 0 is none. Exact for up to 2^24.
HWY_INLINE VI wrapped(VI i, int period)
{
    if (period == 0)
        return i;
    const V count = splat(float(period));
    const V at = hn::ConvertTo(Floats(), i);
    const V turns = hn::Floor((at + 0.5F) * (1.0F / float(period)));
    return hn::ConvertTo(Ints(), hn::NegMulAdd(turns, count, at));
}

// 6t^5 - 15t^4 + 10t^3
HWY_INLINE V fade(V t)
{
    const V inner = hn::MulAdd(t, hn::MulSub(t, splat(6.0F), splat(15.0F)), splat(10.0F));
    return hn::Mul(hn::Mul(hn::Mul(t, t), t), inner);
}

template <int Bit>
HWY_INLINE hn::Mask<Floats> hasBit(VW bits)
{
    const Floats d;
    return hn::MaskFromVec(
        hn::BitCast(d, hn::BroadcastSignBit(hn::BitCast(Ints(), hn::ShiftLeft<31 - Bit>(bits)))));
}

template <int Bit>
HWY_INLINE V withSign(V value, VW bits)
{
    const Words d;
    const VW sign = hn::And(hn::ShiftLeft<31 - Bit>(bits), hn::Set(d, 0x80000000U));
    return hn::BitCast(Floats(), hn::Xor(hn::BitCast(d, value), sign));
}

// Product of the offset with one of the twelve directions to the edges of a cube.
HWY_INLINE V slope(VW bits, V x, V y, V z)
{
    const auto high = hasBit<3>(bits);
    const auto low = hasBit<2>(bits);
    const V first = hn::IfThenElse(high, y, x);
    const V other = hn::IfThenElse(hn::And(high, low), x, z);
    const V second = hn::IfThenElse(hn::Or(high, low), other, y);
    return hn::Add(withSign<0>(first, bits), withSign<1>(second, bits));
}

/// The lattice cell of a place: its corners, and where the place lies in it.
struct LatticeCell
{
    VI low[3];
    VI high[3];
    V in[3];
};

template <bool Flat>
HWY_INLINE LatticeCell latticeCell(const Place &p, int period)
{
    const Ints di;
    const VI one = hn::Set(di, 1);
    const V floors[3] = {hn::Floor(p.x), hn::Floor(p.y), Flat ? zero() : hn::Floor(p.z)};
    const VI x = hn::ConvertTo(di, floors[0]);
    const VI y = hn::ConvertTo(di, floors[1]);
    const VI z = hn::ConvertTo(di, floors[2]);
    return {{wrapped(x, period), wrapped(y, period), z},
            {wrapped(hn::Add(x, one), period), wrapped(hn::Add(y, one), period), hn::Add(z, one)},
            {hn::Sub(p.x, floors[0]), hn::Sub(p.y, floors[1]),
             Flat ? zero() : hn::Sub(p.z, floors[2])}};
}

/// -1 to 1, 0 at lattice points. `Flat` is the same in the plane z = 0, at half the cost; there the
/// lattice may repeat.
template <bool Flat>
HWY_INLINE V gradientNoise(const Place &p, std::uint32_t seed, int period = 0)
{
    const LatticeCell c = latticeCell<Flat>(p, period);
    const V x1 = hn::Sub(c.in[0], splat(1.0F));
    const V y1 = hn::Sub(c.in[1], splat(1.0F));
    const V tx = fade(c.in[0]);
    const V ty = fade(c.in[1]);
    V layers[2] = {zero(), zero()};
    for (int k = 0; k < (Flat ? 1 : 2); ++k) {
        const V dz = k == 0 ? c.in[2] : hn::Sub(c.in[2], splat(1.0F));
        const VI kz = k == 0 ? c.low[2] : c.high[2];
        const V a = mix(slope(hash(c.low[0], c.low[1], kz, seed), c.in[0], c.in[1], dz),
                        slope(hash(c.high[0], c.low[1], kz, seed), x1, c.in[1], dz), tx);
        const V b = mix(slope(hash(c.low[0], c.high[1], kz, seed), c.in[0], y1, dz),
                        slope(hash(c.high[0], c.high[1], kz, seed), x1, y1, dz), tx);
        layers[k] = mix(a, b, ty);
    }
    return Flat ? layers[0] : mix(layers[0], layers[1], fade(c.in[2]));
}

/// The same, as a call: for kinds that ask more than once, each copy of it would be long.
template <bool Flat>
HWY_NOINLINE V gradientAt(const Place &p, std::uint32_t seed, int period = 0)
{
    return gradientNoise<Flat>(p, seed, period);
}

/// -1 to 1: chances of lattice points, smooth between them.
template <bool Flat>
HWY_INLINE V valueNoise(const Place &p, std::uint32_t seed, int period)
{
    const LatticeCell c = latticeCell<Flat>(p, period);
    const V tx = fade(c.in[0]);
    const V ty = fade(c.in[1]);
    V layers[2] = {zero(), zero()};
    for (int k = 0; k < (Flat ? 1 : 2); ++k) {
        const VI kz = k == 0 ? c.low[2] : c.high[2];
        const V a = mix(unit(hash(c.low[0], c.low[1], kz, seed)),
                        unit(hash(c.high[0], c.low[1], kz, seed)), tx);
        const V b = mix(unit(hash(c.low[0], c.high[1], kz, seed)),
                        unit(hash(c.high[0], c.high[1], kz, seed)), tx);
        layers[k] = mix(a, b, ty);
    }
    const V value = Flat ? layers[0] : mix(layers[0], layers[1], fade(c.in[2]));
    return value * 2.0F - 1.0F;
}

// The share of one corner that lies `to` away, within a reach whose square is given.
HWY_INLINE V simplexCorner(VW bits, const Place &to, float reach)
{
    const V near = hn::Max(reach - dot(to, to), zero());
    const V square = hn::Mul(near, near);
    return hn::Mul(hn::Mul(square, square), slope(bits, to.x, to.y, to.z));
}

// The period must be even: every other row of the lattice is shifted by a half.
HWY_INLINE V simplexInPlane(const Place &p, std::uint32_t seed, int period)
{
    const Ints di;
    const V one = splat(1.0F);
    const V u = hn::MulAdd(p.y, splat(0.5F), p.x);
    const V i = hn::Floor(u);
    const V j = hn::Floor(p.y);
    const auto right = hn::Ge(hn::Sub(u, i), hn::Sub(p.y, j));
    const V columns[3] = {i, hn::IfThenElse(right, i + 1.0F, i), i + 1.0F};
    const V rows[3] = {j, hn::IfThenElse(right, j, j + 1.0F), j + 1.0F};
    V sum = zero();
    for (int k = 0; k < 3; ++k) {
        const Place to{hn::Sub(p.x, hn::NegMulAdd(rows[k], splat(0.5F), columns[k])),
                       hn::Sub(p.y, rows[k]), zero()};
        V column = columns[k];
        V row = rows[k];
        if (period > 0) {
            const V turns = hn::Floor((row + 0.5F) * (1.0F / float(period)));
            row = hn::NegMulAdd(turns, splat(float(period)), row);
            column = hn::NegMulAdd(turns, splat(0.5F * float(period)), column);
        }
        const VI x = wrapped(hn::ConvertTo(di, column), period);
        sum = hn::Add(sum,
                      simplexCorner(hash(x, hn::ConvertTo(di, row), hn::Zero(di), seed), to, 0.8F));
    }
    return clamp(sum * 8.0F, hn::Neg(one), one);
}

HWY_INLINE V simplexInSpace(const Place &p, std::uint32_t seed)
{
    const Ints di;
    const V one = splat(1.0F);
    const V skew = hn::Add(hn::Add(p.x, p.y), p.z) * (1.0F / 3.0F);
    const V i = hn::Floor(hn::Add(p.x, skew));
    const V j = hn::Floor(hn::Add(p.y, skew));
    const V k = hn::Floor(hn::Add(p.z, skew));
    const V back = hn::Add(hn::Add(i, j), k) * (1.0F / 6.0F);
    const Place in{hn::Add(hn::Sub(p.x, i), back), hn::Add(hn::Sub(p.y, j), back),
                   hn::Add(hn::Sub(p.z, k), back)};
    // How many of the other two an axis is ahead of tells when the path steps along it.
    const V xy = hn::IfThenElseZero(hn::Ge(in.x, in.y), one);
    const V yz = hn::IfThenElseZero(hn::Ge(in.y, in.z), one);
    const V xz = hn::IfThenElseZero(hn::Ge(in.x, in.z), one);
    const V rank[3] = {hn::Add(xy, xz), hn::Add(1.0F - xy, yz), hn::Add(1.0F - xz, 1.0F - yz)};
    V sum = zero();
    for (int corner = 0; corner < 4; ++corner) {
        const V limit = splat(2.5F - float(corner));
        V step[3];
        for (int axis = 0; axis < 3; ++axis)
            step[axis] = hn::IfThenElseZero(hn::Gt(rank[axis], limit), one);
        const float shift = float(corner) / 6.0F;
        const Place to{hn::Sub(in.x, step[0]) + shift, hn::Sub(in.y, step[1]) + shift,
                       hn::Sub(in.z, step[2]) + shift};
        const VW bits = hash(hn::ConvertTo(di, hn::Add(i, step[0])),
                             hn::ConvertTo(di, hn::Add(j, step[1])),
                             hn::ConvertTo(di, hn::Add(k, step[2])), seed);
        sum = hn::Add(sum, simplexCorner(bits, to, 0.6F));
    }
    return clamp(sum * 32.0F, hn::Neg(one), one);
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
