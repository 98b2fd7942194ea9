#pragma once

#include <cstddef>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

/// A binary file from its beginning to its end, of which a piece at a time is in memory.
class FileBytes
{
public:
    explicit FileBytes(const std::string &path)
        : m_file(path, std::ios::binary)
        , m_buffer(Piece)
    {
    }

    /// So many bytes on from where the last ones ended, good until the next; null where there are less.
    const char *next(std::size_t count)
    {
        if (m_end - m_begin < count && !fill(count))
            return nullptr;
        const char *bytes = m_buffer.data() + m_begin;
        m_begin += count;
        return bytes;
    }

private:
    static constexpr std::size_t Piece = std::size_t(1) << 18;

    bool fill(std::size_t count)
    {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_end -= m_begin;
        m_begin = 0;
        // Only as much as there is: what says how much comes may be wrong.
        while (m_end < count) {
            if (m_end == m_buffer.size())
                m_buffer.resize(2 * m_buffer.size());
            m_file.read(m_buffer.data() + m_end, std::streamsize(m_buffer.size() - m_end));
            if (m_file.gcount() == 0)
                return false;
            m_end += std::size_t(m_file.gcount());
        }
        return true;
    }

    std::ifstream m_file;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};
