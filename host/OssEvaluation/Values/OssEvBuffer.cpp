#include "OssEvaluation/Values/OssEvBuffer.h"

#include <cstdlib>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

// What may lie idle: a few bands of tiles.
constexpr std::size_t MaximumKept = std::size_t(48) << 20;
constexpr std::size_t SmallestKept = std::size_t(16) << 10;
constexpr std::size_t LargestKept = std::size_t(512) << 10;

struct Kept
{
    std::mutex mutex;
    std::unordered_map<std::size_t, std::vector<void *>> blocks;
    std::size_t bytes = 0;

    static bool suits(std::size_t size) { return size >= SmallestKept && size <= LargestKept; }

    void *take(std::size_t size)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = blocks.find(size);
        if (found == blocks.end() || found->second.empty())
            return nullptr;
        void *block = found->second.back();
        found->second.pop_back();
        bytes -= size;
        return block;
    }

    bool keep(void *block, std::size_t size)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (bytes + size > MaximumKept)
            return false;
        blocks[size].push_back(block);
        bytes += size;
        return true;
    }

    void release()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        for (const auto &[size, list] : blocks) {
            for (void *block : list)
                std::free(block);
        }
        blocks.clear();
        bytes = 0;
    }
};

// Never destroyed: tiles may outlive every other static object.
Kept &kept()
{
    static auto *const blocks = new Kept;
    return *blocks;
}

} // namespace

OssEvBuffer::OssEvBuffer(std::size_t bytes)
    : m_size((bytes + Alignment - 1) / Alignment * Alignment)
{
    if (m_size == 0)
        return;
    m_data = Kept::suits(m_size) ? kept().take(m_size) : nullptr;
    if (m_data == nullptr)
        m_data = std::aligned_alloc(Alignment, m_size);
    if (m_data == nullptr)
        throw std::bad_alloc();
}

OssEvBuffer::OssEvBuffer(OssEvBuffer &&other) noexcept
    : m_data(std::exchange(other.m_data, nullptr))
    , m_size(std::exchange(other.m_size, 0))
{
}

OssEvBuffer &OssEvBuffer::operator=(OssEvBuffer &&other) noexcept
{
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    return *this;
}

OssEvBuffer::~OssEvBuffer()
{
    if (m_data == nullptr || (Kept::suits(m_size) && kept().keep(m_data, m_size)))
        return;
    std::free(m_data);
}

void OssEvBuffer::reserve(std::size_t bytes)
{
    if (bytes > m_size)
        *this = OssEvBuffer(bytes);
}

void OssEvBuffer::releaseKept()
{
    kept().release();
}
