#pragma once

#include <cstdint>

/// Numbers that look as if drawn by chance, from 0 to 1: the same for the same numbers on every machine. `use`
/// tells several draws for one thing apart. The mixing is that of C. Wellons' search for good 32-bit hash
/// functions ("lowbias32", improved constants).
inline double OssEvChance(std::uint32_t number, std::uint32_t seed, std::uint32_t use = 0)
{
    std::uint32_t bits = number * 0x9E3779B1U ^ seed * 0x27D4EB2FU ^ use * 0xC2B2AE3DU;
    bits = (bits ^ (bits >> 16)) * 0x21F0AAADU;
    bits = (bits ^ (bits >> 15)) * 0x735A2D97U;
    return double((bits ^ (bits >> 15)) >> 8) / 16777216.0;
}
