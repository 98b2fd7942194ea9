#include "OssEvaluation/Schedule/OssEvRun.h"

#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/Texels.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

constexpr int Size = OssEvTile::Size;
// A strip of a colour takes 16 KB: a few of them stay in the nearest cache.
constexpr int StripRows = 8;
constexpr std::size_t StripTexels = std::size_t(Size) * StripRows;

// Of each tile, one strip's steps are timed: the clock must not cost what it measures.
constexpr int TimedRow = Size / 2;
constexpr double StripsOfATile = double(Size) / StripRows;

using Planes = std::array<const float *, 4>;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

OssEvRegion unite(const OssEvRegion &a, const OssEvRegion &b)
{
    if (a.isEmpty())
        return b;
    const int x = std::min(a.x, b.x);
    const int y = std::min(a.y, b.y);
    return {x, y, std::max(a.right(), b.right()) - x, std::max(a.bottom(), b.bottom()) - y};
}

OssEvRegion texelsOf(const OssEvRegion &tiles)
{
    return {tiles.x * Size, tiles.y * Size, tiles.width * Size, tiles.height * Size};
}

/// Strips of one value everywhere, made when first asked for.
class Constants
{
public:
    explicit Constants(OssEvScratch *scratch)
        : m_scratch(scratch)
    {
    }

    const float *plane(float value)
    {
        for (const auto &[known, strip] : m_planes) {
            // Not a number equals nothing and gets a strip of its own each time.
            if (known == value && std::signbit(known) == std::signbit(value))
                return strip;
        }
        float *strip = m_scratch->floats(StripTexels);
        std::fill_n(strip, StripTexels, value);
        m_planes.emplace_back(value, strip);
        return strip;
    }

private:
    OssEvScratch *m_scratch;
    std::vector<std::pair<float, const float *>> m_planes;
};

/// The head's result for a unit.
struct Head
{
    std::array<float *, 4> planes{};
    int stride = 0;
    OssEvRegion region;
};

/// Runs a stage's steps over one tile, strip by strip.
class TileRun
{
public:
    TileRun(const OssEvUnitPlace &place, const std::vector<OssEvWindow> &windows, const Head &head,
            const OssEvSurfaceMap *surface, const OssEvCancel &cancel, OssEvRunTimes *times)
        : m_stage(place.description())
        , m_luminance(place.plan->target().graph->working().luminance)
        , m_windows(windows)
        , m_head(head)
        , m_surface(surface)
        , m_cancel(cancel)
        , m_times(times)
        , m_constants(&m_scratch)
        , m_inputStrips(windows.size(), nullptr)
    {
        for (int i = 0; i < m_stage.buffers; ++i)
            m_buffers.push_back(m_scratch.floats(StripTexels * 4));
    }

    OssEvTilePointer run(int tileX, int tileY)
    {
        m_tileX = tileX;
        m_tileY = tileY;
        if (m_stage.result.kind == OssEvPlanSource::Kind::Constant) {
            return std::make_shared<OssEvTile>(m_stage.channels, m_stage.format,
                                               m_stage.result.constant);
        }
        auto tile = std::make_shared<OssEvTile>(m_stage.channels, m_stage.format);
        std::array<float, 4> first{};
        bool uniform = true;
        for (m_row = 0; m_row < Size && !m_cancel.isCancelled(); m_row += StripRows) {
            std::fill(m_read.begin(), m_read.end(), false);
            m_read.resize(m_windows.size(), false);
            m_headRead = false;
            if (m_row == TimedRow)
                runStepsTimed();
            else
                for (const OssEvPlanStep &step : m_stage.steps)
                    runStep(step);
            const Planes planes = planesOf(m_stage.result, nullptr);
            for (std::size_t k = 0; k < std::size_t(m_stage.channels); ++k) {
                if (m_row == 0)
                    first[k] = planes[k][0];
                uniform = uniform && planes[k][0] == first[k]
                          && OssEvTexels::isUniform(planes[k], StripTexels);
                write(planes[k], tile.get(), int(k));
            }
        }
        return uniform ? constant(first) : OssEvTilePointer(std::move(tile));
    }

private:
    OssEvTilePointer constant(std::array<float, 4> value) const
    {
        // As a stored tile would hold it.
        alignas(64) std::array<float, 16> texels{};
        std::copy(value.begin(), value.end(), texels.begin());
        if (m_stage.format == OssEvTile::Format::Half) {
            alignas(64) std::array<std::uint16_t, 16> halves{};
            OssEvTexels::floatToHalf(texels.data(), halves.data(), texels.size());
            OssEvTexels::halfToFloat(halves.data(), texels.data(), texels.size());
        }
        std::copy_n(texels.begin(), 4, value.begin());
        return std::make_shared<OssEvTile>(m_stage.channels, m_stage.format, value);
    }

    void write(const float *strip, OssEvTile *tile, int channel) const
    {
        const std::size_t offset = std::size_t(m_row) * Size;
        if (m_stage.format == OssEvTile::Format::Half) {
            OssEvTexels::floatToHalf(strip, tile->halfPlane(channel) + offset, StripTexels);
        } else {
            float *to = tile->floatPlane(channel) + offset;
            std::copy_n(strip, StripTexels, to);
            OssEvTexels::makeFinite(to, StripTexels);
        }
    }

    void runStepsTimed()
    {
        for (std::size_t i = 0; i < m_stage.steps.size(); ++i) {
            const Clock::time_point start = Clock::now();
            runStep(m_stage.steps[i]);
            m_times->steps[i] += secondsSince(start) * StripsOfATile;
        }
    }

    void runStep(const OssEvPlanStep &step)
    {
        std::array<OssEvStripInput, OssEvStrip::MaximumInputs> inputs;
        for (std::size_t i = 0; i < step.inputs.size(); ++i) {
            const OssEvPlanSource &source = step.inputs[i];
            inputs[i].plane = planesOf(source, &i);
            inputs[i].channels = source.wanted;
            inputs[i].connected = source.connected;
        }
        OssEvStrip strip;
        strip.frame = m_stage.frame;
        strip.x = m_tileX * Size;
        strip.y = m_tileY * Size + m_row;
        strip.width = Size;
        strip.rows = StripRows;
        strip.inputs = inputs.data();
        strip.outputChannels = step.channels;
        float *buffer = m_buffers[std::size_t(step.buffer)];
        for (std::size_t k = 0; k < 4; ++k)
            strip.output[k] = buffer + k * StripTexels;
        strip.surface = step.usesSurface ? m_surface : nullptr;
        strip.cancel = &m_cancel;
        step.operation->run(strip);
    }

    // Planes of a source in the channels that are wanted of it. `input` tells apart what is
    // converted for several inputs of one step.
    Planes planesOf(const OssEvPlanSource &source, const std::size_t *input)
    {
        Planes planes{};
        bool isConstant = source.kind == OssEvPlanSource::Kind::Constant;
        std::array<float, 4> value = source.constant;
        if (source.kind == OssEvPlanSource::Kind::Step) {
            planes = planesFrom(
                m_buffers[std::size_t(m_stage.steps[std::size_t(source.index)].buffer)]);
        } else if (source.kind == OssEvPlanSource::Kind::Head) {
            planes = headPlanes();
        } else if (source.kind == OssEvPlanSource::Kind::Input) {
            const OssEvTile &tile = *m_windows[std::size_t(source.index)].at(m_tileX, m_tileY);
            isConstant = tile.isConstant();
            value = tile.value();
            if (!isConstant)
                planes = tilePlanes(tile, std::size_t(source.index));
        }
        if (isConstant) {
            value = OssEvTexels::convert(value, source.channels, source.wanted, m_luminance);
            for (std::size_t k = 0; k < std::size_t(source.wanted); ++k)
                planes[k] = m_constants.plane(value[k]);
            return planes;
        }
        return converted(planes, source, input);
    }

    Planes converted(Planes planes, const OssEvPlanSource &source, const std::size_t *input)
    {
        const int from = source.channels;
        const int to = source.wanted;
        if (from == to || input == nullptr)
            return planes;
        if (to == 1) {
            float *single = conversionStrip(*input);
            if (from == 3)
                OssEvTexels::mean(planes[0], planes[1], planes[2], single, StripTexels);
            else
                OssEvTexels::luminance(planes[0], planes[1], planes[2], m_luminance, single,
                                       StripTexels);
            planes[0] = single;
            return planes;
        }
        if (from == 1)
            planes = {planes[0], planes[0], planes[0], nullptr};
        if (to == 4)
            planes[3] = m_constants.plane(1.0F);
        return planes;
    }

    static Planes planesFrom(const float *buffer)
    {
        return {buffer, buffer + StripTexels, buffer + 2 * StripTexels, buffer + 3 * StripTexels};
    }

    // Converted once for each strip, whoever reads it.
    Planes tilePlanes(const OssEvTile &tile, std::size_t input)
    {
        Planes planes{};
        const std::size_t offset = std::size_t(m_row) * Size;
        if (tile.format() == OssEvTile::Format::Float) {
            for (int k = 0; k < tile.channels(); ++k)
                planes[std::size_t(k)] = tile.floatPlane(k) + offset;
            return planes;
        }
        float *&strip = m_inputStrips[input];
        if (strip == nullptr)
            strip = m_scratch.floats(StripTexels * 4);
        if (!m_read[input]) {
            m_read[input] = true;
            for (int k = 0; k < tile.channels(); ++k) {
                OssEvTexels::halfToFloat(tile.halfPlane(k) + offset,
                                         strip + std::size_t(k) * StripTexels, StripTexels);
            }
        }
        return planesFrom(strip);
    }

    Planes headPlanes()
    {
        if (m_headStrip == nullptr)
            m_headStrip = m_scratch.floats(StripTexels * 4);
        if (!m_headRead) {
            m_headRead = true;
            const std::ptrdiff_t column = std::ptrdiff_t(m_tileX) * Size - m_head.region.x;
            const std::ptrdiff_t line = std::ptrdiff_t(m_tileY) * Size + m_row - m_head.region.y;
            for (std::size_t k = 0; k < std::size_t(m_stage.headChannels); ++k) {
                for (int y = 0; y < StripRows; ++y) {
                    std::copy_n(m_head.planes[k] + (line + y) * m_head.stride + column, Size,
                                m_headStrip + k * StripTexels + std::size_t(y) * Size);
                }
            }
        }
        return planesFrom(m_headStrip);
    }

    float *conversionStrip(std::size_t input)
    {
        if (m_conversions.size() <= input)
            m_conversions.resize(input + 1, nullptr);
        if (m_conversions[input] == nullptr)
            m_conversions[input] = m_scratch.floats(StripTexels);
        return m_conversions[input];
    }

    const OssEvPlanStage &m_stage;
    const OssEvWorkingSpace::Weights m_luminance;
    const std::vector<OssEvWindow> &m_windows;
    const Head &m_head;
    const OssEvSurfaceMap *m_surface;
    const OssEvCancel &m_cancel;
    OssEvRunTimes *m_times;
    OssEvScratch m_scratch;
    Constants m_constants;
    std::vector<float *> m_buffers;
    std::vector<float *> m_inputStrips;
    std::vector<bool> m_read;
    std::vector<float *> m_conversions;
    float *m_headStrip = nullptr;
    bool m_headRead = false;
    int m_tileX = 0;
    int m_tileY = 0;
    int m_row = 0;
};

OssEvTileGrid gridOf(const OssEvPlanSource &source, const OssEvUnitPlace &place,
                     const std::vector<OssEvWindow> &windows, const OssEvRegion &needed)
{
    const OssEvWorkingSpace::Weights &luminance = place.plan->target().graph->working().luminance;
    if (source.kind == OssEvPlanSource::Kind::Constant) {
        return {place.description().frame,
                OssEvTexels::convert(source.constant, source.channels, source.wanted, luminance),
                source.wanted};
    }
    const OssEvPlanStage &stage = place.description();
    const int input = stage.inputs[std::size_t(source.index)];
    const OssEvFrame &frame = place.plan->stages()[std::size_t(input)].frame;
    OssEvTileGrid grid(frame, needed, source.wanted, luminance);
    const OssEvWindow &window = windows[std::size_t(source.index)];
    for (int y = grid.tiles().y; y < grid.tiles().bottom(); ++y) {
        for (int x = grid.tiles().x; x < grid.tiles().right(); ++x)
            grid.setTile(x, y, window.at(x, y));
    }
    return grid;
}

void runHead(const OssEvUnitPlace &place, const std::vector<OssEvWindow> &windows,
             const OssEvSurfaceMap *surface, const OssEvCancel &cancel, OssEvScratch *scratch,
             Head *head)
{
    const OssEvPlanStage &stage = place.description();
    head->region = texelsOf(place.tiles());
    for (std::size_t k = 0; k < std::size_t(stage.headChannels); ++k) {
        const OssEvPlane plane(scratch, head->region.width, head->region.height);
        head->planes[k] = plane.data;
        head->stride = plane.stride;
    }
    std::vector<OssEvTileGrid> grids;
    for (std::size_t tap = 0; tap < stage.headInputs.size(); ++tap) {
        grids.push_back(
            gridOf(stage.headInputs[tap], place, windows, stage.head->needed(tap, head->region)));
    }
    OssEvBlock block;
    block.frame = stage.frame;
    block.region = head->region;
    block.inputs = grids.data();
    block.output = head->planes;
    block.stride = head->stride;
    block.outputChannels = stage.headChannels;
    block.surface = stage.headUsesSurface ? surface : nullptr;
    block.cancel = &cancel;
    stage.head->run(block);
}

/// The tile of the head's input that is the unit's own, untouched; null where it has to be computed.
OssEvTilePointer tileAsItIs(const OssEvUnitPlace &place, const std::vector<OssEvWindow> &windows,
                            const OssEvSurfaceMap *surface, int x, int y)
{
    const OssEvPlanStage &stage = place.description();
    if (stage.head == nullptr || !stage.steps.empty() || stage.headInputs.size() != 1
        || stage.result.kind != OssEvPlanSource::Kind::Head)
        return nullptr;
    const OssEvPlanSource &source = stage.headInputs.front();
    if (source.kind != OssEvPlanSource::Kind::Input)
        return nullptr;
    const OssEvPlanStage &from =
        place.plan->stages()[std::size_t(stage.inputs[std::size_t(source.index)])];
    const bool isSame = from.channels == stage.channels && from.format == stage.format
                        && from.frame.width == stage.frame.width
                        && from.frame.height == stage.frame.height;
    if (!isSame
        || !stage.head->leavesAsItIs(texelsOf({x, y, 1, 1}),
                                     stage.headUsesSurface ? surface : nullptr))
        return nullptr;
    return windows[std::size_t(source.index)].at(x, y);
}

/// The tiles that only have to be handed on; null for the others.
std::vector<OssEvTilePointer> tilesAsTheyAre(const OssEvUnitPlace &place,
                                             const std::vector<OssEvWindow> &windows,
                                             const OssEvSurfaceMap *surface)
{
    std::vector<OssEvTilePointer> found;
    const OssEvRegion tiles = place.tiles();
    for (int y = tiles.y; y < tiles.bottom(); ++y) {
        for (int x = tiles.x; x < tiles.right(); ++x)
            found.push_back(tileAsItIs(place, windows, surface, x, y));
    }
    return found;
}

} // namespace

OssEvRegion OssEvUnitPlace::tiles() const
{
    const OssEvPlanStage &own = description();
    const int size = own.unitTiles();
    const OssEvRegion all{0, 0, OssEvTilesAcross(own.frame.width),
                          OssEvTilesAcross(own.frame.height)};
    return OssEvRegion{x * size, y * size, size, size}.intersected(all);
}

std::vector<OssEvWindow> OssEvUnitPlace::windows() const
{
    const OssEvPlanStage &own = description();
    std::vector<OssEvWindow> windows(own.inputs.size());
    const OssEvRegion ownTiles = tiles();
    for (std::size_t tap = 0; tap < own.headInputs.size(); ++tap) {
        const OssEvPlanSource &source = own.headInputs[tap];
        if (source.kind != OssEvPlanSource::Kind::Input)
            continue;
        const int input = own.inputs[std::size_t(source.index)];
        const OssEvTileGrid grid(plan->stages()[std::size_t(input)].frame,
                                 own.head->needed(tap, texelsOf(ownTiles)), 1);
        OssEvRegion &window = windows[std::size_t(source.index)].tiles;
        window = unite(window, grid.tiles());
    }
    for (const OssEvPlanStep &step : own.steps) {
        for (const OssEvPlanSource &source : step.inputs) {
            if (source.kind == OssEvPlanSource::Kind::Input) {
                OssEvRegion &window = windows[std::size_t(source.index)].tiles;
                window = unite(window, ownTiles);
            }
        }
    }
    for (std::size_t i = 0; i < windows.size(); ++i) {
        OssEvWindow &window = windows[i];
        window.key = plan->stages()[std::size_t(own.inputs[i])].key;
        window.pointers.resize(std::size_t(window.tiles.width) * std::size_t(window.tiles.height));
    }
    return windows;
}

std::vector<OssEvUnitTile> OssEvRunUnit(const OssEvUnitPlace &place,
                                        const std::vector<OssEvWindow> &windows,
                                        const OssEvSurfaceMap *surface, const OssEvCancel &cancel,
                                        OssEvRunTimes *times)
{
    OssEvScratch scratch;
    Head head;
    const Clock::time_point start = Clock::now();
    const std::vector<OssEvTilePointer> handedOn = tilesAsTheyAre(place, windows, surface);
    const bool isComputed = std::find(handedOn.begin(), handedOn.end(), nullptr) != handedOn.end();
    if (isComputed && place.description().head != nullptr)
        runHead(place, windows, surface, cancel, &scratch, &head);
    times->head = secondsSince(start);
    times->steps.assign(place.description().steps.size(), 0.0);
    TileRun run(place, windows, head, surface, cancel, times);
    std::vector<OssEvUnitTile> result;
    const OssEvRegion tiles = place.tiles();
    for (int y = tiles.y; y < tiles.bottom(); ++y) {
        for (int x = tiles.x; x < tiles.right() && !cancel.isCancelled(); ++x) {
            const OssEvTilePointer &asItIs =
                handedOn[std::size_t((y - tiles.y) * tiles.width + x - tiles.x)];
            result.push_back({x, y, asItIs != nullptr ? asItIs : run.run(x, y)});
        }
    }
    return result;
}
