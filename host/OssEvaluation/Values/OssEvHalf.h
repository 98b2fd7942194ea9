#pragma once

#include <cstdint>
#include <cstring>

/// Half floats as 16 bits, one at a time. Rows are converted by OssEvTexels.
namespace OssEvHalf {

inline float toFloat(std::uint16_t half)
{
    const std::uint32_t sign = std::uint32_t(half & 0x8000U) << 16;
    std::uint32_t exponent = (half >> 10) & 0x1FU;
    std::uint32_t mantissa = half & 0x3FFU;
    std::uint32_t bits = sign;
    if (exponent == 31) {
        bits |= 0x7F800000U | (mantissa << 13);
    } else if (exponent != 0) {
        bits |= ((exponent + 112) << 23) | (mantissa << 13);
    } else if (mantissa != 0) {
        exponent = 113;
        while ((mantissa & 0x400U) == 0) {
            mantissa <<= 1;
            --exponent;
        }
        bits |= (exponent << 23) | ((mantissa & 0x3FFU) << 13);
    }
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Rounds to nearest even; what is too large becomes infinity.
inline std::uint16_t fromFloat(float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const auto sign = std::uint16_t((bits >> 16) & 0x8000U);
    bits &= 0x7FFFFFFFU;
    if (bits > 0x7F800000U)
        return std::uint16_t(sign | 0x7E00U);
    if (bits >= 0x47800000U)
        return std::uint16_t(sign | 0x7C00U);
    if (bits < 0x33000000U)
        return sign;
    if (bits < 0x38800000U) {
        const std::uint32_t shift = 126 - (bits >> 23);
        const std::uint32_t mantissa = (bits & 0x7FFFFFU) | 0x800000U;
        const std::uint32_t half = mantissa >> shift;
        const std::uint32_t rest = mantissa & ((1U << shift) - 1U);
        const std::uint32_t middle = 1U << (shift - 1);
        const bool up = rest > middle || (rest == middle && (half & 1U) != 0);
        return std::uint16_t(sign | (half + (up ? 1U : 0U)));
    }
    const std::uint32_t rounded = bits + 0xFFFU + ((bits >> 13) & 1U);
    return std::uint16_t(sign | ((rounded - 0x38000000U) >> 13));
}

} // namespace OssEvHalf
