#include "OssEvaluation/Paint/OssEvStroke.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <glm/geometric.hpp>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <atomic>

// Covering all at once, with the threads of the pool: each tile is what it was before and what the brush makes of
// it, whoever is at it and whenever.

namespace {

using Tile = OssEvStrokeTiles::Tile;

} // namespace

/// A stroke and those that follow it, as one thread has them.
class OssEvStroke::Filler
{
public:
    Filler(const OssEvStroke &leader, const std::vector<OssEvStroke *> &followers,
           const std::optional<Line> &line)
        : m_leader(leader.twin())
        , m_line(line)
    {
        for (const OssEvStroke *follower : followers)
            m_followers.push_back(follower->twin());
    }

    /// Of the leader and each follower; none where the brush reaches nothing.
    std::vector<Tile> fill(const Place &place)
    {
        std::vector<Tile> tiles{m_leader->m_tiles.make(place)};
        if (!m_leader->coverTile(place, m_line, &tiles.front()))
            return {};
        for (const auto &follower : m_followers) {
            tiles.push_back(follower->m_tiles.make(place));
            tiles.back().coverage = tiles.front().coverage;
            if (!tiles.back().second.empty())
                tiles.back().second = tiles.front().second;
        }
        m_leader->m_tiles.settle(place, &tiles.front());
        for (std::size_t i = 0; i < m_followers.size(); ++i)
            m_followers[i]->m_tiles.settle(place, &tiles[i + 1]);
        return tiles;
    }

private:
    std::unique_ptr<OssEvStroke> m_leader;
    std::vector<std::unique_ptr<OssEvStroke>> m_followers;
    std::optional<Line> m_line;
};

std::vector<OssEvPaintBuffer::Place> OssEvStroke::tilesOf(int patch) const
{
    std::vector<Place> places;
    const int across = OssEvTilesAcross(m_tiles.buffer().resolution());
    for (int y = 0; y < across; ++y) {
        for (int x = 0; x < across; ++x)
            places.push_back({patch, x, y});
    }
    return places;
}

// One after the other, whoever is free takes the next: images beneath are read from the top.
bool OssEvStroke::fill(const std::optional<Line> &line, const GoesOn &goesOn,
                       const std::vector<OssEvStroke *> &followers)
{
    const std::vector<Place> places = fillPlaces(m_region);
    std::vector<std::vector<Tile>> filled(places.size());
    std::atomic<std::size_t> next{0};
    std::atomic<bool> isWanted{true};
    tbb::parallel_for(0, tbb::this_task_arena::max_concurrency(), [&](int) {
        Filler filler(*this, followers, line);
        for (std::size_t i = next++; i < places.size() && isWanted; i = next++) {
            if (!goesOn(double(i) / double(places.size())))
                isWanted = false;
            else
                filled[i] = filler.fill(places[i]);
        }
    });
    if (!isWanted)
        return false;
    for (std::size_t i = 0; i < places.size(); ++i) {
        for (std::size_t k = 0; k < filled[i].size(); ++k) {
            OssEvStroke *stroke = k == 0 ? this : followers[k - 1];
            if (filled[i][k].isChanged)
                stroke->m_tiles.adopt(places[i], std::move(filled[i][k]));
        }
    }
    return true;
}

/// False where it reaches nothing of the tile.
bool OssEvStroke::coverTile(const Place &place, const std::optional<Line> &line, Tile *made)
{
    const glm::vec2 from = line ? line->from * float(m_scale) : glm::vec2(0.0F);
    const glm::vec2 along = line ? line->to * float(m_scale) - from : glm::vec2(0.0F);
    const float square = std::max(glm::dot(along, along), 1e-12F);
    bool reaches = false;
    for (int index = 0; index < OssEvPaintTile::Texels; ++index) {
        if (!isOpen(place, index))
            continue;
        float part = 0.0F;
        if (line)
            part = std::clamp(glm::dot(spotOf(place, index) - from, along) / square, 0.0F, 1.0F);
        const float amount = made->second.empty() ? 1.0F - part : 1.0F;
        if (amount <= 0.0F)
            continue;
        if (!made->second.empty())
            made->second[std::size_t(index)] = part;
        const float covered = amount * readyFor(place, made, index);
        made->coverage[std::size_t(index)] = covered;
        reaches = reaches || covered > 0.0F;
    }
    return reaches;
}
