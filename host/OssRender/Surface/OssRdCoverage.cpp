#include "OssRender/Surface/OssRdCoverage.h"

#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::uint8_t Whole = 255;

std::vector<std::uint8_t> halved(const std::vector<std::uint8_t> &fine, int size)
{
    const auto half = std::size_t(size) / 2;
    std::vector<std::uint8_t> coarse(half * half);
    for (std::size_t y = 0; y < half; ++y) {
        const std::uint8_t *above = fine.data() + 2 * y * std::size_t(size);
        const std::uint8_t *below = above + size;
        for (std::size_t x = 0; x < half; ++x) {
            const int sum = above[2 * x] + above[2 * x + 1] + below[2 * x] + below[2 * x + 1];
            // What is covered at all stays so, however little it is.
            coarse[y * half + x] = std::uint8_t((sum + 3) / 4);
        }
    }
    return coarse;
}

} // namespace

OssRdCoverage::Pointer OssRdCoverage::make(const std::shared_ptr<const OssEvMesh> &mesh, int patch)
{
    try {
        const auto map = OssEvSurfaceMap::make(mesh, {patch, Size, Size}, nullptr, 0);
        if (!map)
            return nullptr;
        auto coverage = std::make_shared<OssRdCoverage>();
        std::vector<std::uint8_t> finest(std::size_t(Size) * Size);
        for (int y = 0; y < Size; ++y) {
            for (int x = 0; x < Size; ++x)
                finest[std::size_t(y) * Size + std::size_t(x)] = map->isCovered(x, y) ? Whole : 0;
        }
        coverage->m_levels.push_back(std::move(finest));
        for (int size = Size; size > 1; size /= 2)
            coverage->m_levels.push_back(halved(coverage->m_levels.back(), size));
        return coverage;
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

const std::uint8_t *OssRdCoverage::weights(int size) const
{
    int across = Size;
    for (const std::vector<std::uint8_t> &level : m_levels) {
        if (across == size)
            return level.data();
        across /= 2;
    }
    return nullptr;
}

OssRdCoverageStore *OssRdCoverageStore::instance()
{
    static OssRdCoverageStore store;
    return &store;
}

OssRdCoverage::Pointer OssRdCoverageStore::find(const std::shared_ptr<const OssEvMesh> &mesh,
                                                int patch)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.remove_if([](const Entry &entry) { return entry.mesh.expired(); });
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &entry) {
        return entry.patch == patch && entry.mesh.lock() == mesh;
    });
    if (found == m_entries.end())
        return nullptr;
    m_entries.splice(m_entries.begin(), m_entries, found);
    return found->coverage;
}

OssRdCoverage::Pointer OssRdCoverageStore::get(const std::shared_ptr<const OssEvMesh> &mesh,
                                               int patch)
{
    if (!mesh)
        return nullptr;
    if (OssRdCoverage::Pointer known = find(mesh, patch))
        return known;
    OssRdCoverage::Pointer made = OssRdCoverage::make(mesh, patch);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.push_front({mesh, patch, made});
    if (m_entries.size() > MostKept)
        m_entries.pop_back();
    return made;
}
