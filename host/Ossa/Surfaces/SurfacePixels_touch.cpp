#include "Ossa/Surfaces/SurfacePixels.h"

#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssRender/Surface/OssRdMips.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <mutex>
#include <utility>

// Parts of maps that are computed anew while the rest stays.

namespace {

constexpr int touchPriority = 3;
/// What lies beside charts follows them, so far in parts of a patch.
constexpr double beyond = 1.0 / 64.0;

using Texels = OssRdMaterial::Texels;
using Change = OssRdMaterial::Change;

std::vector<std::uint16_t> textureOf(const OssEvTile &tile, int width, int height)
{
    std::vector<std::uint16_t> rgba(std::size_t(width) * std::size_t(height) * 4);
    for (int channel = 0; channel < 4; ++channel) {
        const std::uint16_t even = tile.isConstant()
                                       ? OssEvHalf::fromFloat(tile.value()[std::size_t(channel)])
                                       : 0;
        std::uint16_t *to = rgba.data() + channel;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x, to += 4) {
                const int index = y * OssEvTile::Size + x;
                if (tile.isConstant())
                    *to = even;
                else if (tile.format() == OssEvTile::Format::Half)
                    *to = tile.halfPlane(channel)[index];
                else
                    *to = OssEvHalf::fromFloat(tile.floatPlane(channel)[index]);
            }
        }
    }
    return rgba;
}

std::shared_ptr<const Texels> evenTexels(const glm::vec4 &value, int size)
{
    auto texels = std::make_shared<Texels>();
    texels->size = size;
    texels->isOpaque = value.a >= 1.0F;
    const auto fill = [&value](int across) {
        std::vector<std::uint16_t> rgba(std::size_t(across) * std::size_t(across) * 4);
        for (std::size_t i = 0; i < rgba.size(); ++i)
            rgba[i] = i < 4 ? OssEvHalf::fromFloat(value[int(i)]) : rgba[i - 4];
        return rgba;
    };
    texels->rgba = fill(size);
    for (int across = size / 2; across >= 1 && (size & (size - 1)) == 0; across /= 2)
        texels->smaller.push_back(fill(across));
    return texels;
}

bool isEven(const std::vector<std::uint16_t> &rgba, const glm::vec4 &value)
{
    std::array<std::uint16_t, 4> wanted{};
    for (int c = 0; c < 4; ++c)
        wanted[std::size_t(c)] = OssEvHalf::fromFloat(value[c]);
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        if (rgba[i] != wanted[i % 4])
            return false;
    }
    return true;
}

/// Whether texels are these in an area.
bool has(const Texels &texels, const OssEvRegion &area, const std::vector<std::uint16_t> &rgba)
{
    const auto width = std::ptrdiff_t(area.width) * 4;
    for (int y = 0; y < area.height; ++y) {
        const auto own = rgba.cbegin() + y * width;
        const auto row = (std::ptrdiff_t(area.y + y) * texels.size + area.x) * 4;
        if (!std::equal(own, own + width, texels.rgba.cbegin() + row))
            return false;
    }
    return true;
}

bool isOpaque(const std::vector<std::uint16_t> &rgba)
{
    for (std::size_t i = 3; i < rgba.size(); i += 4) {
        if (OssEvHalf::toFloat(rgba[i]) < 1.0F)
            return false;
    }
    return true;
}

} // namespace

/// Of the maps that were touched; used by one touch at a time.
struct SurfacePixels::Layers
{
    struct Layer
    {
        std::shared_ptr<const Texels> texels;
        std::unique_ptr<OssRdMips<std::uint16_t>> mips; ///< null where whoever draws makes them
    };

    std::map<Place, Layer> all;
};

/// What is computed at once. Its jobs are made before it begins; each is then one thread's at a time.
class SurfacePixels::Touch
{
public:
    struct Job
    {
        Place place;
        int resolution = 0;
        OssEvRegion region;
        OssEvKey seenKey;
        OssRdMaterial::Channel4 shown;
        OssSurfaceMaps::Map map = OssSurfaceMaps::Color;
        bool isGood = false; ///< all of it came
        std::vector<std::pair<OssEvArrival, OssEvRegion>> tiles = {};
        // What comes of it:
        std::shared_ptr<const Texels> texels = nullptr; ///< over which changes lie
        OssRdMaterial::Changes changes = {};
    };

    int number = 0;
    OssSurfaceMaps maps;
    OssEvEngine *engine = nullptr;
    std::shared_ptr<Layers> layers;
    std::vector<Job> jobs;
    std::atomic<int> left{1}; ///< of the jobs, and one until all are begun
    std::mutex mutex;         ///< guards tiles of jobs
    std::function<void()> done;

    /// On any thread; has all computed that has become another.
    static void begin(const std::shared_ptr<Touch> &touch)
    {
        for (Job &job : touch->jobs) {
            OssEvKey key;
            const bool isPlanned = touch->maps.key(job.map, job.place.first, job.resolution, &key)
                                       .ok();
            if (isPlanned && !(key == job.seenKey && job.shown.changes.empty()))
                start(touch, &job);
        }
        touch->finishOne();
    }

private:
    static void start(const std::shared_ptr<Touch> &touch, Job *job)
    {
        OssEvRequest request;
        request.target = touch->maps.target(job->map, job->place.first, job->resolution);
        request.region = job->region;
        request.priority = touchPriority;
        request.onTile = [touch, job](const OssEvArrival &arrival) {
            OssEvRegion area{arrival.x * OssEvTile::Size, arrival.y * OssEvTile::Size,
                             OssEvTile::Size, OssEvTile::Size};
            area = area.intersected({0, 0, job->resolution, job->resolution});
            const std::lock_guard<std::mutex> lock(touch->mutex);
            job->tiles.emplace_back(arrival, area);
        };
        request.onFinished = [touch, job](const OssEvOutcome &outcome) {
            job->isGood = outcome.ok();
            touch->finishOne();
        };
        ++touch->left;
        touch->engine->start(std::move(request));
    }

    void finishOne()
    {
        if (--left > 0)
            return;
        for (Job &job : jobs) {
            if (job.isGood)
                compose(&job);
        }
        done();
    }

    void compose(Job *job)
    {
        job->texels = job->shown.texels;
        for (const auto &[arrival, area] : job->tiles) {
            std::vector<std::uint16_t> rgba = textureOf(*arrival.tile, area.width, area.height);
            if (isAsShown(*job, area, rgba))
                continue;
            if (!job->texels)
                job->texels = evenTexels(job->shown.value, job->resolution);
            job->changes.push_back(changeOf(*job, area, std::move(rgba)));
        }
        job->tiles.clear();
    }

    static bool isAsShown(const Job &job, const OssEvRegion &area,
                          const std::vector<std::uint16_t> &rgba)
    {
        for (const auto &change : job.shown.changes) {
            if (change->area() == area)
                return change->parts.front().rgba == rgba;
        }
        return job.shown.texels ? has(*job.shown.texels, area, rgba)
                                : isEven(rgba, job.shown.value);
    }

    std::shared_ptr<const Change> changeOf(const Job &job, const OssEvRegion &area,
                                           std::vector<std::uint16_t> rgba)
    {
        const std::shared_ptr<const Texels> &texels = job.texels;
        Layers::Layer &layer = layers->all[job.place];
        if (layer.texels != texels) {
            layer.texels = texels;
            layer.mips.reset();
            if (!texels->smaller.empty())
                layer.mips = std::make_unique<OssRdMips<std::uint16_t>>(
                    texels->size, OssRdCoverageStore::instance()->get(maps.mesh(), job.place.first),
                    texels->smaller);
        }
        auto change = std::make_shared<Change>();
        change->isOpaque = isOpaque(rgba);
        change->parts.push_back({area, std::move(rgba)});
        if (!layer.mips)
            return change;
        const std::vector<std::uint16_t> &own = change->parts.front().rgba;
        const std::vector<OssEvRegion> changed = layer.mips->update(area, [&](int y) {
            return &own[std::size_t(y - area.y) * std::size_t(area.width) * 4];
        });
        for (std::size_t level = 0; level < changed.size(); ++level)
            change->parts.push_back(
                {changed[level], layer.mips->texels(int(level), changed[level])});
        return change;
    }
};

namespace {

/// With what follows it beside charts.
OssEvRegion texelsOf(const QRectF &area, int resolution)
{
    const QRectF wide = area.adjusted(-beyond, -beyond, beyond, beyond);
    const int left = int(std::floor(wide.left() * resolution));
    const int top = int(std::floor(wide.top() * resolution));
    const OssEvRegion region{left, top, int(std::ceil(wide.right() * resolution)) - left,
                             int(std::ceil(wide.bottom() * resolution)) - top};
    return region.intersected({0, 0, resolution, resolution});
}

} // namespace

void SurfacePixels::touch(const OssSurfaceMaps &maps, const Areas &areas)
{
    ++m_touches;
    if (!maps.problem().isEmpty())
        return;
    auto touch = std::make_shared<Touch>();
    for (const auto &[place, known] : m_known) {
        const auto area = areas.find(place.first);
        const auto material = m_materials.find(place.first);
        if (area == areas.end() || material == m_materials.end() || known.seenSize == 0)
            continue;
        const OssEvRegion region = texelsOf(area->second, known.seenSize);
        if (!region.isEmpty())
            touch->jobs.push_back({place, known.seenSize, region, known.seenKey,
                                   material->second.maps[std::size_t(place.second)],
                                   OssSurfaceMaps::Map(place.second)});
    }
    if (touch->jobs.empty())
        return;
    if (!m_layers)
        m_layers = std::make_shared<Layers>();
    touch->number = m_touches;
    touch->maps = maps;
    touch->engine = OssEvaluationService::instance()->engine();
    touch->layers = m_layers;
    // It is kept by its own callbacks until the last of them has come.
    touch->done = [self = QPointer<SurfacePixels>(this), weak = std::weak_ptr<Touch>(touch)] {
        const auto use = [self, touch = weak.lock()] {
            if (self && touch)
                self->lay(touch);
        };
        QMetaObject::invokeMethod(qApp, use, Qt::QueuedConnection);
    };
    m_touch = touch;
    m_toucher.start([touch] { Touch::begin(touch); });
}

void SurfacePixels::lay(const std::shared_ptr<Touch> &touch)
{
    if (touch != m_touch)
        return;
    m_touch.reset();
    bool isOther = false;
    for (const Touch::Job &job : touch->jobs) {
        const auto material = m_materials.find(job.place.first);
        const bool fits = material != m_materials.end() && !job.changes.empty()
                          && m_known[job.place].seenSize == job.resolution;
        if (!fits)
            continue;
        OssRdMaterial::Channel4 &channels = material->second.maps[std::size_t(job.place.second)];
        if (!channels.texels)
            channels.texels = job.texels;
        std::vector<Laid> &laid = m_laid[job.place];
        for (const auto &change : job.changes) {
            const auto isThere = [&change](const Laid &one) {
                return one.change->area() == change->area();
            };
            laid.erase(std::remove_if(laid.begin(), laid.end(), isThere), laid.end());
            laid.push_back({change, touch->number});
        }
        channels.changes = changesOf(job.place);
        isOther = true;
    }
    if (isOther)
        Q_EMIT changed();
    Q_EMIT touched();
}

void SurfacePixels::dropChanges(const Place &place, int size)
{
    const auto laid = m_laid.find(place);
    if (laid == m_laid.end())
        return;
    const bool isOther = size != m_known[place].seenSize;
    bool isBared = false;
    const auto isGone = [&](const Laid &one) {
        isBared = isBared || (isOther && one.number > m_shownAt);
        return isOther || one.number <= m_shownAt;
    };
    laid->second.erase(std::remove_if(laid->second.begin(), laid->second.end(), isGone),
                       laid->second.end());
    if (laid->second.empty())
        m_laid.erase(laid);
    if (isBared)
        Q_EMIT bared();
}

OssRdMaterial::Changes SurfacePixels::changesOf(const Place &place) const
{
    OssRdMaterial::Changes changes;
    const auto laid = m_laid.find(place);
    for (std::size_t i = 0; laid != m_laid.end() && i < laid->second.size(); ++i)
        changes.push_back(laid->second[i].change);
    return changes;
}
