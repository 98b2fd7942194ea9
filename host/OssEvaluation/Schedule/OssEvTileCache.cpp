#include "OssEvaluation/Schedule/OssEvTileCache.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <unistd.h>

OssEvTileCache::OssEvTileCache(std::size_t budget)
    : m_budget(budget)
{
}

std::size_t OssEvTileCache::defaultBudget()
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long size = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || size <= 0)
        return std::size_t(1) << 30;
    return std::size_t(pages) / 5 * 2 * std::size_t(size);
}

OssEvTilePointer OssEvTileCache::find(const OssEvTileKey &key)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_entries.find(key);
    if (found == m_entries.end())
        return nullptr;
    m_order.erase({found->second.rank, found->second.use, &found->first});
    rank(found->first, &found->second);
    return found->second.tile;
}

void OssEvTileCache::insert(const OssEvTileKey &key, OssEvTilePointer tile, double cost)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::size_t bytes = tile->bytes();
    if (bytes > m_budget || m_entries.count(key) != 0)
        return;
    shrinkTo(m_budget - bytes);
    const auto added = m_entries.emplace(key, Entry{std::move(tile), cost}).first;
    rank(added->first, &added->second);
    m_bytes += bytes;
}

void OssEvTileCache::clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_order.clear();
    m_entries.clear();
    m_bytes = 0;
}

std::size_t OssEvTileCache::budget() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_budget;
}

void OssEvTileCache::setBudget(std::size_t bytes)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_budget = bytes;
    shrinkTo(bytes);
}

std::size_t OssEvTileCache::bytes() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_bytes;
}

std::size_t OssEvTileCache::count() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_entries.size();
}

std::size_t OssEvTileCache::evictions() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_evictions;
}

void OssEvTileCache::shrinkTo(std::size_t bytes)
{
    while (m_bytes > bytes && !m_order.empty()) {
        const Ranked first = *m_order.begin();
        m_order.erase(m_order.begin());
        m_floor = std::max(m_floor, first.rank);
        const auto found = m_entries.find(*first.key);
        m_bytes -= found->second.tile->bytes();
        m_entries.erase(found);
        ++m_evictions;
    }
}

void OssEvTileCache::rank(const OssEvTileKey &key, Entry *entry)
{
    entry->rank = m_floor + entry->cost / double(entry->tile->bytes());
    entry->use = ++m_uses;
    m_order.insert({entry->rank, entry->use, &key});
}
