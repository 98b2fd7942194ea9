#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <unordered_map>

/// Tiles by key, within a number of bytes. What goes first is cheap to compute again, large, or
/// long not asked for: GreedyDual-Size (P. Cao, S. Irani, "Cost-Aware WWW Proxy Caching
/// Algorithms", 1997). Safe to use from any thread: each function takes the cache's own lock, and
/// calls nothing of others within it.
class OSSEVALUATION_EXPORT OssEvTileCache
{
public:
    explicit OssEvTileCache(std::size_t budget);

    /// Two fifths of the machine's memory; 1 GiB where it does not say how much it has.
    static std::size_t defaultBudget();

    /// Null when the tile is not there.
    OssEvTilePointer find(const OssEvTileKey &key);

    /// `cost` is how many nanoseconds the tile took. A tile larger than the budget is not kept.
    void insert(const OssEvTileKey &key, OssEvTilePointer tile, double cost);

    void clear();

    std::size_t budget() const;
    void setBudget(std::size_t bytes);

    /// Never more than the budget. Tiles that others still hold live on beside it.
    std::size_t bytes() const;
    std::size_t count() const;
    std::size_t evictions() const;

private:
    struct Entry
    {
        OssEvTilePointer tile;
        double cost = 0.0;
        double rank = 0.0;
        std::uint64_t use = 0; ///< number of the last use
    };

    /// Of equal rank, what was used longest ago goes first.
    struct Ranked
    {
        double rank;
        std::uint64_t use;
        const OssEvTileKey *key;

        bool operator<(const Ranked &other) const
        {
            return rank != other.rank ? rank < other.rank : use < other.use;
        }
    };

    // With the lock held.

    void shrinkTo(std::size_t bytes);
    /// The entry was just used.
    void rank(const OssEvTileKey &key, Entry *entry);

    mutable std::mutex m_mutex;
    std::unordered_map<OssEvTileKey, Entry> m_entries;
    std::set<Ranked> m_order;
    std::size_t m_budget;
    std::size_t m_bytes = 0;
    std::size_t m_evictions = 0;
    std::uint64_t m_uses = 0;
    /// Rank of what was evicted last: what comes or is asked for now starts from there.
    double m_floor = 0.0;
};
