#include "OssEvaluation/Geometry/ObjLines.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>

namespace {

constexpr std::size_t Piece = std::size_t(1) << 20;

bool isBlank(char letter)
{
    return letter == ' ' || letter == '\t' || letter == '\r';
}

std::string_view withoutBlanks(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace

ObjLines::ObjLines(const std::string &path)
    : m_file(path, std::ios::binary)
    , m_buffer(Piece)
{
    std::error_code fault;
    m_size = std::max(1.0, double(std::filesystem::file_size(path, fault)));
}

double ObjLines::share() const
{
    return std::min(1.0, (m_read - double(m_end - m_begin)) / m_size);
}

/// More of the file behind what is there, which moves to the front.
bool ObjLines::fill()
{
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    if (m_end == m_buffer.size())
        m_buffer.resize(2 * m_buffer.size());
    m_file.read(m_buffer.data() + m_end, std::streamsize(m_buffer.size() - m_end));
    const auto count = std::size_t(m_file.gcount());
    m_end += count;
    m_read += double(count);
    return count > 0;
}

bool ObjLines::piece(std::string_view *line)
{
    std::size_t looked = 0;
    for (;;) {
        const char *begin = m_buffer.data() + m_begin;
        const std::size_t there = m_end - m_begin;
        const void *end = there > looked ? std::memchr(begin + looked, '\n', there - looked)
                                         : nullptr;
        if (end != nullptr) {
            *line = {begin, std::size_t(static_cast<const char *>(end) - begin)};
            m_begin += line->size() + 1;
            break;
        }
        looked = there;
        if (!fill()) {
            *line = {m_buffer.data() + m_begin, m_end - m_begin};
            m_begin = m_end;
            if (line->empty())
                return false;
            break;
        }
    }
    ++m_number;
    if (!line->empty() && line->back() == '\r')
        line->remove_suffix(1);
    return true;
}

bool ObjLines::next(std::string_view *line)
{
    if (!piece(line))
        return false;
    if (line->empty() || line->back() != '\\')
        return true;
    m_joined.clear();
    while (!line->empty() && line->back() == '\\') {
        line->remove_suffix(1);
        m_joined.append(*line).append(1, ' ');
        if (!piece(line))
            *line = {};
    }
    m_joined.append(*line);
    *line = m_joined;
    return true;
}

std::string_view ObjWords::next()
{
    while (!m_rest.empty() && isBlank(m_rest.front()))
        m_rest.remove_prefix(1);
    if (!m_rest.empty() && m_rest.front() == '#')
        m_rest = {};
    std::size_t length = 0;
    while (length < m_rest.size() && !isBlank(m_rest[length]))
        ++length;
    const std::string_view word = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    return word;
}

std::string_view ObjWords::rest() const
{
    return withoutBlanks(m_rest);
}

bool ObjWords::number(float *value, bool *isThere)
{
    std::string_view word = next();
    *isThere = !word.empty();
    if (word.empty())
        return true;
    if (word.front() == '+')
        word.remove_prefix(1);
    const char *end = word.data() + word.size();
    auto read = std::from_chars(word.data(), end, *value);
    if (read.ec == std::errc::result_out_of_range) {
        double wide = 0.0; // too large, or too close to nothing
        read = std::from_chars(word.data(), end, wide);
        *value = read.ec == std::errc() ? float(wide) : 0.0F;
        return read.ptr == end;
    }
    return read.ec == std::errc() && read.ptr == end;
}

bool ObjWords::index(std::string_view *text, long long *value)
{
    const char *end = text->data() + text->size();
    if (!text->empty() && text->front() == '+')
        text->remove_prefix(1);
    const auto read = std::from_chars(text->data(), end, *value);
    if (read.ec != std::errc())
        return false;
    text->remove_prefix(std::size_t(read.ptr - text->data()));
    return true;
}
