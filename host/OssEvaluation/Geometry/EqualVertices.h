#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

/// For each of so many vertices the first one of the very same numbers: `numbersOf` gives an array of
/// floats for each. 0 and -0 are the same.
template <class Numbers>
std::vector<std::uint32_t> firstOfEqual(std::size_t count, const Numbers &numbersOf)
{
    constexpr std::uint32_t None = 0xFFFFFFFFU;
    std::size_t size = 16;
    while (size < count * 3 / 2)
        size *= 2;
    std::vector<std::uint32_t> table(size, None);
    std::vector<std::uint32_t> firsts(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto numbers = numbersOf(i);
        std::uint64_t hash = 0;
        for (const float number : numbers) {
            const float plain = number + 0.0F;
            std::uint32_t word = 0;
            std::memcpy(&word, &plain, sizeof(word));
            hash = (hash ^ word) * 0xFF51AFD7ED558CCDULL;
            hash ^= hash >> 32;
        }
        std::size_t slot = std::size_t(hash) & (size - 1);
        while (table[slot] != None && numbersOf(table[slot]) != numbers)
            slot = (slot + 1) & (size - 1);
        if (table[slot] == None)
            table[slot] = i;
        firsts[i] = table[slot];
    }
    return firsts;
}
