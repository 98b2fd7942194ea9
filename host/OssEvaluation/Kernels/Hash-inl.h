// Chance from places on a lattice, the same on every machine. Compiled once for each instruction
// set, like Simd-inl.h.
#if defined(OSSEV_HASH_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef OSSEV_HASH_INL_H_
#undef OSSEV_HASH_INL_H_
#else
#define OSSEV_HASH_INL_H_
#endif

#include "OssEvaluation/Kernels/Simd-inl.h"

HWY_BEFORE_NAMESPACE();

namespace OssEvSimd::HWY_NAMESPACE {
namespace {

/// 32 well mixed bits of a lattice point. The multipliers are primes near the golden ratio, the
/// mixing is that of C. Wellons' search for good 32-bit hash functions ("triple32", two rounds).
HWY_INLINE VW hash(VI x, VI y, VI z, std::uint32_t seed)
{
    const Words d;
    const VW a = hn::Mul(hn::BitCast(d, x), hn::Set(d, 0x9E3779B1U));
    const VW b = hn::Mul(hn::BitCast(d, y), hn::Set(d, 0x85EBCA77U));
    const VW c = hn::Mul(hn::BitCast(d, z), hn::Set(d, 0xC2B2AE3DU));
    VW h = hn::Xor(hn::Xor(a, b), hn::Xor(c, hn::Set(d, seed * 0x27D4EB2FU)));
    h = hn::Mul(hn::Xor(h, hn::ShiftRight<15>(h)), hn::Set(d, 0x2C1B3C6DU));
    h = hn::Mul(hn::Xor(h, hn::ShiftRight<12>(h)), hn::Set(d, 0x297A2D39U));
    return hn::Xor(h, hn::ShiftRight<15>(h));
}

/// 0 to 1 from the upper bits.
HWY_INLINE V unit(VW bits)
{
    const Ints di;
    const VI upper = hn::BitCast(di, hn::ShiftRight<8>(bits));
    return hn::Mul(hn::ConvertTo(Floats(), upper), splat(1.0F / 16777216.0F));
}

} // namespace
} // namespace OssEvSimd::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#endif
