#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/// Hash of everything that decides some pixels: two equal keys mean equal pixels, on any day.
struct OssEvKey
{
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    bool isNull() const { return high == 0 && low == 0; }

    bool operator==(const OssEvKey &other) const { return high == other.high && low == other.low; }

    bool operator!=(const OssEvKey &other) const { return !(*this == other); }

    bool operator<(const OssEvKey &other) const
    {
        return high != other.high ? high < other.high : low < other.low;
    }
};

/// One tile of what a key stands for; x and y count tiles.
struct OssEvTileKey
{
    OssEvKey key;
    int x = 0;
    int y = 0;

    bool operator==(const OssEvTileKey &other) const
    {
        return key == other.key && x == other.x && y == other.y;
    }
};

template <>
struct std::hash<OssEvKey>
{
    std::size_t operator()(const OssEvKey &key) const noexcept { return std::size_t(key.low); }
};

template <>
struct std::hash<OssEvTileKey>
{
    std::size_t operator()(const OssEvTileKey &key) const noexcept
    {
        const std::uint64_t place = (std::uint64_t(std::uint32_t(key.y)) << 32)
                                    | std::uint32_t(key.x);
        return std::size_t(key.key.low ^ (place * 0x9E3779B97F4A7C15ULL));
    }
};

/// Collects what a key is made of, in an unambiguous form, and hashes it with XXH3-128.
class OSSEVALUATION_EXPORT OssEvKeyBuilder
{
public:
    OssEvKeyBuilder &add(std::string_view text);
    OssEvKeyBuilder &add(std::int64_t number);

    OssEvKeyBuilder &add(int number) { return add(std::int64_t(number)); }

    /// Equal numbers give equal keys: minus zero counts as zero.
    OssEvKeyBuilder &add(double number);
    OssEvKeyBuilder &add(const OssEvKey &key);
    /// A large block, hashed where it lies.
    OssEvKeyBuilder &addBytes(const void *data, std::size_t size);

    OssEvKey key() const;

private:
    void append(char tag, const void *data, std::size_t size);

    std::string m_text;
};
