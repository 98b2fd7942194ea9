#include "OssModel/Images/OssLivePaint.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>

namespace {

constexpr std::size_t KeptLonger = 4;

struct Register
{
    std::mutex mutex; ///< guards what follows
    std::uint64_t last = 0;
    std::map<std::uint64_t, std::weak_ptr<const OssLivePaint>> all;
    std::deque<OssLivePaint::Pointer> recent;
};

Register &published()
{
    static Register all;
    return all;
}

} // namespace

OssLivePaint::OssLivePaint(std::uint64_t id, const OssEvPaintBuffer &paint)
    : m_id(id)
    , m_paint(paint)
{
}

OssLivePaint::Pointer OssLivePaint::publish(const OssEvPaintBuffer &paint)
{
    Register &known = published();
    const std::lock_guard lock(known.mutex);
    for (auto entry = known.all.begin(); entry != known.all.end();)
        entry = entry->second.expired() ? known.all.erase(entry) : std::next(entry);
    const Pointer made(new OssLivePaint(++known.last, paint));
    known.all[made->id()] = made;
    known.recent.push_back(made);
    if (known.recent.size() > KeptLonger)
        known.recent.pop_front();
    return made;
}

OssLivePaint::Pointer OssLivePaint::find(std::uint64_t id)
{
    Register &known = published();
    const std::lock_guard lock(known.mutex);
    const auto found = known.all.find(id);
    return found == known.all.end() ? nullptr : found->second.lock();
}

bool OssLivePaint::has(int patch) const
{
    const auto first = m_paint.tiles().lower_bound({patch, 0, 0});
    return first != m_paint.tiles().end() && first->first.patch == patch;
}
