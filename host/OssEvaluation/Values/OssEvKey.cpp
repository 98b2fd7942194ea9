#include "OssEvaluation/Values/OssEvKey.h"

#include <xxhash.h>

OssEvKeyBuilder &OssEvKeyBuilder::add(std::string_view text)
{
    add(std::int64_t(text.size()));
    append('t', text.data(), text.size());
    return *this;
}

OssEvKeyBuilder &OssEvKeyBuilder::add(std::int64_t number)
{
    append('i', &number, sizeof number);
    return *this;
}

OssEvKeyBuilder &OssEvKeyBuilder::add(double number)
{
    const double plain = number == 0.0 ? 0.0 : number;
    append('d', &plain, sizeof plain);
    return *this;
}

OssEvKeyBuilder &OssEvKeyBuilder::add(const OssEvKey &key)
{
    append('k', &key.high, sizeof key.high);
    append('k', &key.low, sizeof key.low);
    return *this;
}

OssEvKeyBuilder &OssEvKeyBuilder::addBytes(const void *data, std::size_t size)
{
    const XXH128_hash_t hash = XXH3_128bits(data, size);
    return add(OssEvKey{hash.high64, hash.low64});
}

OssEvKey OssEvKeyBuilder::key() const
{
    const XXH128_hash_t hash = XXH3_128bits(m_text.data(), m_text.size());
    return {hash.high64, hash.low64};
}

void OssEvKeyBuilder::append(char tag, const void *data, std::size_t size)
{
    m_text.push_back(tag);
    m_text.append(static_cast<const char *>(data), size);
}
