#include "ZelGL/ZelTextureToken.h"

#include <atomic>

namespace {

unsigned nextId() noexcept
{
    // Constant-initialised, so it is good before any dynamic initialiser runs.
    static std::atomic<unsigned> last{0};
    return ++last;
}

} // namespace

ZelTextureToken::ZelTextureToken() noexcept
    : m_id(nextId())
{
}
