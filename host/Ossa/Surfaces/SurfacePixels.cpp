#include "Ossa/Surfaces/SurfacePixels.h"

#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssRender/Surface/OssRdMips.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace {

constexpr int coarsePriority = 2;
constexpr int firstPriority = 1;
constexpr int behindPriority = -1;
/// Milliseconds: as long as the first picture of small maps takes, so that nothing delays it. Under a moving
/// hand large ones are not begun for nothing.
constexpr int lookTime = 40;
// Of the work for a map.
constexpr int coarseParts = 1;
constexpr int fineParts = 9;

} // namespace

/// Filled by the engine's threads, each tile by one of them.
struct SurfacePixels::Picture
{
    explicit Picture(int resolution)
        : texels(std::make_shared<OssRdMaterial::Texels>())
    {
        texels->size = resolution;
        texels->rgba.resize(std::size_t(resolution) * std::size_t(resolution) * 4);
    }

    void take(const OssEvArrival &arrival)
    {
        const OssEvTile &tile = *arrival.tile;
        const int left = arrival.x * OssEvTile::Size;
        const int top = arrival.y * OssEvTile::Size;
        const int width = std::min(OssEvTile::Size, texels->size - left);
        const int height = std::min(OssEvTile::Size, texels->size - top);
        for (int y = 0; y < height; ++y) {
            std::uint16_t *to = texels->rgba.data()
                                + (std::size_t(top + y) * std::size_t(texels->size)
                                   + std::size_t(left))
                                      * 4;
            for (int x = 0; x < width; ++x, to += 4) {
                for (int channel = 0; channel < 4; ++channel)
                    to[channel] = half(tile, channel, x, y);
            }
        }
    }

    static std::uint16_t half(const OssEvTile &tile, int channel, int x, int y)
    {
        if (tile.isConstant())
            return OssEvHalf::fromFloat(tile.value()[std::size_t(channel)]);
        if (tile.format() == OssEvTile::Format::Half)
            return tile.halfPlane(channel)[y * OssEvTile::Size + x];
        return OssEvHalf::fromFloat(tile.floatPlane(channel)[y * OssEvTile::Size + x]);
    }

    /// Whether all texels are the first one.
    bool isEven() const
    {
        const std::vector<std::uint16_t> &all = texels->rgba;
        for (std::size_t i = 4; i < all.size(); i += 4) {
            if (!std::equal(all.begin(), all.begin() + 4, all.begin() + std::ptrdiff_t(i)))
                return false;
        }
        return true;
    }

    bool isOpaque() const
    {
        const std::uint16_t one = OssEvHalf::fromFloat(1.0F);
        constexpr std::uint16_t negative = 0x7FFF; // all above have the sign
        for (std::size_t i = 3; i < texels->rgba.size(); i += 4) {
            if (texels->rgba[i] < one || texels->rgba[i] > negative)
                return false;
        }
        return true;
    }

    /// When all tiles are there. Takes a while.
    void finish(const std::shared_ptr<const OssEvMesh> &mesh, int patch)
    {
        isOneValue = isEven();
        const int size = texels->size;
        if (isOneValue)
            return;
        texels->isOpaque = isOpaque();
        if ((size & (size - 1)) != 0)
            return;
        OssRdMips<std::uint16_t> mips(size, OssRdCoverageStore::instance()->get(mesh, patch));
        mips.update({0, 0, size, size}, [this, size](int y) {
            return &texels->rgba[std::size_t(y) * std::size_t(size) * 4];
        });
        texels->smaller = mips.take();
    }

    void fill(OssRdMaterial::Channel4 *channels) const
    {
        if (!isOneValue || !channels->changes.empty()) {
            channels->texels = texels;
            return;
        }
        channels->texels.reset();
        for (int channel = 0; channel < 4; ++channel)
            channels->value[channel] = OssEvHalf::toFloat(texels->rgba[std::size_t(channel)]);
    }

    std::shared_ptr<OssRdMaterial::Texels> texels;
    bool isOneValue = false;
};

SurfacePixels::SurfacePixels(QObject *parent)
    : QObject(parent)
{
    m_planner.setMaxThreadCount(1);
    m_finisher.setMaxThreadCount(1);
    m_toucher.setMaxThreadCount(1);
    m_look.setSingleShot(true);
    m_look.setInterval(lookTime);
    connect(&m_look, &QTimer::timeout, this, &SurfacePixels::startWaiting);
}

SurfacePixels::~SurfacePixels()
{
    stop();
}

void SurfacePixels::stop()
{
    ++m_generation;
    for (const Running &running : m_running)
        OssEvaluationService::instance()->engine()->cancel(running.id);
    m_running.clear();
    m_waiting.clear();
    m_look.stop();
    m_isPlanning = false;
}

bool SurfacePixels::stopRefining()
{
    const bool isSeen = !m_known.empty()
                        && std::all_of(m_known.cbegin(), m_known.cend(),
                                       [](const auto &known) { return known.second.seenSize > 0; });
    if (isSeen)
        stop();
    return isSeen;
}

void SurfacePixels::clear()
{
    stop();
    m_materials.clear();
    m_known.clear();
    m_laid.clear();
    m_maps = {};
    m_problem.clear();
}

void SurfacePixels::show(const OssSurfaceMaps &maps, const QList<int> &patches, int resolution)
{
    stop();
    m_shownAt = m_touches;
    m_keepsFine = std::exchange(m_expectsSame, false);
    if (!m_keepsFine) { // what is on its way may be of another surface
        m_touch.reset();
        m_layers.reset();
    }
    m_maps = maps;
    m_resolution = resolution;
    m_problem = maps.problem();
    m_toDo = 0;
    m_done = 0;
    for (auto material = m_materials.begin(); material != m_materials.end();) {
        const bool stays = m_problem.isEmpty() && patches.contains(material->first);
        material = stays ? std::next(material) : m_materials.erase(material);
    }
    for (auto &material : m_materials) {
        material.second.reach = maps.reach();
        material.second.height = maps.height();
    }
    for (auto known = m_known.begin(); known != m_known.end();)
        known = m_materials.count(known->first.first) ? std::next(known) : m_known.erase(known);
    if (m_problem.isEmpty())
        plan(patches);
    Q_EMIT changed();
    if (!m_isPlanning)
        Q_EMIT finished();
}

void SurfacePixels::plan(const QList<int> &patches)
{
    m_isPlanning = true;
    m_planner.start([self = QPointer<SurfacePixels>(this), maps = m_maps, patches,
                     resolution = m_resolution, generation = m_generation] {
        std::vector<Planned> all;
        for (const int patch : patches) {
            for (int map = 0; map < OssSurfaceMaps::Maps; ++map) {
                Planned one;
                one.place = {patch, map};
                one.isPlanned = maps.key(OssSurfaceMaps::Map(map), patch, resolution, &one.key)
                                    .ok();
                all.push_back(one);
            }
        }
        const auto use = [self, generation, all] {
            if (self && generation == self->m_generation)
                self->begin(all);
        };
        QMetaObject::invokeMethod(qApp, use, Qt::QueuedConnection);
    });
}

void SurfacePixels::begin(const std::vector<Planned> &all)
{
    m_isPlanning = false;
    for (const Planned &one : all) {
        Known &known = m_known[one.place];
        const bool isSame = known.isKnown && one.isPlanned && known.key == one.key;
        if (isSame && known.resolution >= m_resolution)
            continue;
        const bool isEnough = isSame || (m_keepsFine && known.seenSize >= m_resolution);
        known = {one.key, isSame ? known.resolution : 0, one.isPlanned, known.seenKey,
                 known.seenSize};
        m_toDo += fineParts + (isEnough ? 0 : coarseParts);
        if (isEnough)
            m_waiting.push_back(one.place);
        else
            start(one.place, std::min(coarse, m_resolution));
    }
    if (m_running.empty())
        startWaiting();
    Q_EMIT changed();
    if (isWhole())
        Q_EMIT finished();
}

void SurfacePixels::startWaiting()
{
    for (const Place &place : std::exchange(m_waiting, {}))
        start(place, m_resolution);
}

void SurfacePixels::start(const Place &place, int resolution)
{
    OssEvRequest request;
    request.target = m_maps.target(OssSurfaceMaps::Map(place.second), place.first, resolution);
    request.priority = m_isBehind             ? behindPriority
                       : resolution <= coarse ? coarsePriority
                       : m_isFirst            ? firstPriority
                                              : 0;
    request.focusX = resolution / 2.0;
    request.focusY = resolution / 2.0;
    auto picture = std::make_shared<Picture>(resolution);
    request.onTile = [picture](const OssEvArrival &arrival) {
        picture->take(arrival);
    };
    request.onFinished = [self = QPointer<SurfacePixels>(this), generation = m_generation, place,
                          picture](const OssEvOutcome &outcome) {
        const auto use = [=] {
            if (!self || generation != self->m_generation)
                return;
            if (outcome.ok())
                self->finish(place, picture);
            else
                self->fail(outcome.error);
        };
        QMetaObject::invokeMethod(qApp, use, Qt::QueuedConnection);
    };
    m_running.push_back(
        {OssEvaluationService::instance()->engine()->start(std::move(request)), place});
}

void SurfacePixels::fail(const std::string &reason)
{
    m_problem = QString::fromStdString(reason);
    stop(); // the others have the same fault, or wait in vain
    m_known.clear();
    Q_EMIT changed();
    Q_EMIT finished();
}

void SurfacePixels::finish(const Place &place, const std::shared_ptr<Picture> &picture)
{
    m_finisher.start([self = QPointer<SurfacePixels>(this), generation = m_generation, place,
                      picture, mesh = m_maps.mesh()] {
        picture->finish(mesh, place.first);
        const auto use = [=] {
            if (self && generation == self->m_generation)
                self->take(place, *picture);
        };
        QMetaObject::invokeMethod(qApp, use, Qt::QueuedConnection);
    });
}

void SurfacePixels::take(const Place &place, const Picture &picture)
{
    const auto isDone = [&place](const Running &running) {
        return running.place == place;
    };
    m_running.erase(std::remove_if(m_running.begin(), m_running.end(), isDone), m_running.end());
    OssRdMaterial &material = m_materials[place.first];
    material.reach = m_maps.reach();
    material.height = m_maps.height();
    const int size = picture.texels->size;
    dropChanges(place, size);
    OssRdMaterial::Channel4 &channels = material.maps[std::size_t(place.second)];
    channels.changes = changesOf(place);
    picture.fill(&channels);
    Known &known = m_known[place];
    known.resolution = size;
    known.seenKey = known.key;
    known.seenSize = size;
    // A small map that is one value everywhere may be so by chance.
    if (size < m_resolution) {
        m_done += coarseParts;
        m_waiting.push_back(place);
    } else {
        m_done += fineParts + (m_resolution <= coarse ? coarseParts : 0);
    }
    if (m_running.empty() && !m_waiting.empty())
        m_look.start();
    Q_EMIT changed();
    if (isWhole())
        Q_EMIT finished();
}

int SurfacePixels::progress() const
{
    if (isWhole())
        return 1000;
    return m_toDo == 0 ? 0 : std::min(999, 1000 * m_done / m_toDo);
}
