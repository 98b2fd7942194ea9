#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

/// For each of so many vertices the first one that is equal: `placeOf` gives three floats by which equal ones
/// are near each other in the table, `areEqual` compares two. 0 and -0 are the same place.
template <class Place, class Equal>
std::vector<std::uint32_t> firstOfEqual(std::size_t count, const Place &placeOf,
                                        const Equal &areEqual)
{
    constexpr std::uint32_t None = 0xFFFFFFFFU;
    constexpr std::size_t Ahead = 32; // slots that are fetched while others are looked at
    std::size_t size = 16;
    while (size < count * 3 / 2)
        size *= 2;
    std::vector<std::uint32_t> table(size, None);
    std::vector<std::uint32_t> firsts(count);
    const auto slotOf = [&placeOf, size](std::uint32_t i) {
        std::array<std::uint32_t, 3> words{};
        const std::array<float, 3> place = placeOf(i);
        for (std::size_t k = 0; k < 3; ++k) {
            const float plain = place[k] + 0.0F;
            std::memcpy(&words[k], &plain, sizeof(plain));
        }
        std::uint64_t hash = words[0] * 0x9E3779B97F4A7C15ULL;
        hash ^= (words[1] * 0xFF51AFD7ED558CCDULL) >> 7;
        hash += words[2] * 0xC4CEB9FE1A85EC53ULL;
        hash = (hash ^ (hash >> 29)) * 0xBF58476D1CE4E5B9ULL;
        return std::size_t(hash >> 32) & (size - 1);
    };
    std::array<std::size_t, Ahead> slots{};
    for (std::size_t begin = 0; begin < count; begin += Ahead) {
        const std::size_t end = std::min(begin + Ahead, count);
        for (std::size_t i = begin; i < end; ++i) {
            slots[i - begin] = slotOf(std::uint32_t(i));
            __builtin_prefetch(&table[slots[i - begin]], 1);
        }
        for (std::size_t i = begin; i < end; ++i) {
            std::size_t slot = slots[i - begin];
            while (table[slot] != None && !areEqual(table[slot], std::uint32_t(i)))
                slot = (slot + 1) & (size - 1);
            if (table[slot] == None)
                table[slot] = std::uint32_t(i);
            firsts[i] = table[slot];
        }
    }
    return firsts;
}

/// The same of vertices that are equal when all their numbers are: `numbersOf` gives an array of floats for
/// each, which begins with its place.
template <class Numbers>
std::vector<std::uint32_t> firstOfEqual(std::size_t count, const Numbers &numbersOf)
{
    return firstOfEqual(
        count,
        [&numbersOf](std::uint32_t i) {
            const auto numbers = numbersOf(i);
            return std::array<float, 3>{numbers[0], numbers[1], numbers[2]};
        },
        [&numbersOf](std::uint32_t a, std::uint32_t b) { return numbersOf(a) == numbersOf(b); });
}
