#include "OssModel/Images/OssLivePaint.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>

namespace {

constexpr std::size_t KeptLonger = 8;

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

using Tiles = OssEvPaintBuffer::Tiles;

/// Whether a patch has the same tiles, not only such as look the same.
bool isSame(const Tiles &one, const Tiles &other, int patch)
{
    const auto end = [patch](const Tiles &tiles) {
        return tiles.lower_bound({patch + 1, 0, 0});
    };
    const auto first = [patch](const Tiles &tiles) {
        return tiles.lower_bound({patch, 0, 0});
    };
    return std::equal(first(one), end(one), first(other), end(other));
}

} // namespace

OssLivePaint::OssLivePaint(std::uint64_t id, const OssEvPaintBuffer &paint,
                           const OssLivePaint *before)
    : m_id(id)
    , m_paint(paint)
{
    const bool isKnown = before && before->paint().resolution() == paint.resolution();
    for (const int patch : paint.patches()) {
        const bool stays = isKnown && isSame(paint.tiles(), before->paint().tiles(), patch);
        m_revisions[patch] = stays ? before->revision(patch) : id;
    }
}

OssLivePaint::Pointer OssLivePaint::publish(const OssEvPaintBuffer &paint, const Pointer &before)
{
    Register &known = published();
    const std::lock_guard lock(known.mutex);
    for (auto entry = known.all.begin(); entry != known.all.end();)
        entry = entry->second.expired() ? known.all.erase(entry) : std::next(entry);
    const Pointer made(new OssLivePaint(++known.last, paint, before.get()));
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

std::uint64_t OssLivePaint::revision(int patch) const
{
    const auto known = m_revisions.find(patch);
    return known == m_revisions.end() ? 0 : known->second;
}
