#include "OssEvaluation/Paint/OssEvStrokeTiles.h"

#include "OssEvaluation/Kernels/MergeRows.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int Size = OssEvPaintTile::Size;
constexpr OssEvPaintTile::Texel Bare{0.0F, 0.0F, 0.0F, 0.0F, 1.0F};
constexpr OssEvStrokeTiles::Color NotKnown{0.0F, 0.0F, 0.0F, -1.0F};

OssEvPaintTile::Texel opaque(const OssEvStrokeTiles::Color &color)
{
    return {color[0], color[1], color[2], color[3], 0.0F};
}

} // namespace

/// Texels that are merged at once.
struct OssEvStrokeTiles::Batch
{
    OssEvMergeRows::Row row;
    std::array<int, OssEvMergeRows::Most> indices{};
    std::size_t count = 0;
};

OssEvStrokeTiles::OssEvStrokeTiles(OssEvPaintBuffer *buffer, const OssEvBrush &brush,
                                   OssEvPaintGround *ground)
    : m_buffer(buffer)
    , m_start(*buffer)
    , m_before(&m_start, ground)
    , m_now(buffer, ground)
    , m_isLimited(brush.within != OssEvBrush::Within::Everywhere || brush.stencil || brush.mask)
    , m_hasSources(brush.tool == OssEvBrush::Tool::Clone
                   || (brush.picture && !brush.erases() && !brush.changesColors()))
    , m_hasSecond(brush.hasSecondColor())
    , m_mode(brush.erases() || brush.changesColors() ? OssEvMergeRows::Normal : brush.blend)
    , m_luminance(brush.luminance)
    , m_opacity(float(brush.opacity))
{
    if (!brush.erases())
        m_source = {brush.color[0], brush.color[1], brush.color[2], 1.0F};
    m_second = {brush.secondColor[0], brush.secondColor[1], brush.secondColor[2], 1.0F};
}

OssEvStrokeTiles::Tile &OssEvStrokeTiles::touch(const OssEvPaintBuffer::Place &place)
{
    const auto found = m_touched.find(place);
    if (found != m_touched.end()) {
        makeOwn(place, &found->second);
        return found->second;
    }
    Tile touched = make(place);
    m_buffer->setTile(place, touched.tile);
    m_now.look();
    return m_touched.emplace(place, std::move(touched)).first->second;
}

OssEvStrokeTiles::Tile OssEvStrokeTiles::make(const OssEvPaintBuffer::Place &place) const
{
    Tile touched;
    touched.before = m_buffer->tile(place);
    touched.tile = touched.before ? std::make_shared<OssEvPaintTile>(*touched.before)
                                  : std::make_shared<OssEvPaintTile>();
    touched.coverage.resize(OssEvPaintTile::Texels);
    touched.blended.resize(OssEvPaintTile::Texels);
    if (m_isLimited)
        touched.limit.assign(OssEvPaintTile::Texels, -1.0F);
    if (m_hasSources)
        touched.source.assign(OssEvPaintTile::Texels, NotKnown);
    if (m_hasSecond)
        touched.second.resize(OssEvPaintTile::Texels);
    return touched;
}

void OssEvStrokeTiles::settle(const OssEvPaintBuffer::Place &place, Tile *made)
{
    made->stale = {0, 0, Size, Size};
    blend(place, made);
    made->stale = {};
    for (std::vector<float> *plane : {&made->coverage, &made->blended, &made->limit, &made->second})
        *plane = {};
    made->source = {};
}

void OssEvStrokeTiles::adopt(const OssEvPaintBuffer::Place &place, Tile made)
{
    m_buffer->setTile(place, made.tile);
    m_now.look();
    m_touched.emplace(place, std::move(made));
}

void OssEvStrokeTiles::share()
{
    for (auto &entry : m_touched)
        entry.second.isShared = true;
}

void OssEvStrokeTiles::makeOwn(const OssEvPaintBuffer::Place &place, Tile *touched)
{
    if (!touched->isShared)
        return;
    touched->tile = std::make_shared<OssEvPaintTile>(*touched->tile);
    touched->isShared = false;
    m_buffer->setTile(place, touched->tile);
    m_now.look();
}

void OssEvStrokeTiles::setColor(Tile *touched, int index, const Color &color)
{
    touched->tile->setTexel(index, opaque(color));
    touched->isChanged = true;
    touched->stale = touched->stale.united({index % Size, index / Size, 1, 1});
}

OssEvStrokeTiles::Areas OssEvStrokeTiles::update()
{
    Areas areas;
    for (auto &[place, touched] : m_touched) {
        if (touched.stale.isEmpty())
            continue;
        makeOwn(place, &touched);
        blend(place, &touched);
        OssEvRegion area = touched.stale;
        area.x += place.x * Size;
        area.y += place.y * Size;
        areas[place.patch] = areas[place.patch].united(area);
        touched.stale = {};
    }
    return areas;
}

void OssEvStrokeTiles::blend(const OssEvPaintBuffer::Place &place, Tile *touched)
{
    const OssEvRegion &area = touched->stale;
    Batch batch;
    for (int y = area.y; y < area.bottom(); ++y) {
        for (int index = y * Size + area.x; index < y * Size + area.right(); ++index) {
            const float coverage = touched->coverage[std::size_t(index)];
            float &blended = touched->blended[std::size_t(index)];
            if (coverage == blended)
                continue;
            blended = coverage;
            touched->isChanged = true;
            if (m_mode == OssEvMergeRows::Normal) {
                blendPlainly(touched, index, m_opacity * coverage);
                continue;
            }
            batch.row.mask[batch.count] = m_opacity * coverage;
            batch.indices[batch.count++] = index;
            if (batch.count == batch.indices.size())
                blendBatch(place, touched, &batch);
        }
    }
    if (batch.count > 0)
        blendBatch(place, touched, &batch);
}

/// What covers a texel fully.
OssEvStrokeTiles::Color OssEvStrokeTiles::sourceOf(const Tile &touched, int index) const
{
    const auto at = std::size_t(index);
    Color source = touched.source.empty() ? m_source : touched.source[at];
    const float part = touched.second.empty() ? 0.0F : touched.second[at];
    for (std::size_t c = 0; part > 0.0F && c < source.size(); ++c)
        source[c] += (m_second[c] - source[c]) * part;
    return source;
}

// What is painted with lies over what was there, and may be seen through itself.
void OssEvStrokeTiles::blendPlainly(Tile *touched, int index, float alpha) const
{
    const Color source = sourceOf(*touched, index);
    const float hides = touched->source.empty() ? alpha : alpha * source[3];
    OssEvPaintTile::Texel texel = touched->before ? touched->before->texel(index) : Bare;
    for (std::size_t c = 0; c < source.size(); ++c)
        texel[c] = alpha * source[c] + (1.0F - hides) * texel[c];
    texel[OssEvPaintTile::Keep] *= 1.0F - hides;
    touched->tile->setTexel(index, texel);
}

void OssEvStrokeTiles::blendBatch(const OssEvPaintBuffer::Place &place, Tile *touched, Batch *batch)
{
    OssEvMergeRows::Row &row = batch->row;
    for (std::size_t i = 0; i < batch->count; ++i) {
        const int index = batch->indices[i];
        const Color base = m_before.texel(place, index);
        const Color over = sourceOf(*touched, index);
        for (std::size_t c = 0; c < 4; ++c) {
            row.base[c][i] = base[c];
            row.over[c][i] = over[c];
        }
    }
    OssEvMergeRows::run(m_mode, m_luminance, &row);
    for (std::size_t i = 0; i < batch->count; ++i)
        touched->tile->setTexel(batch->indices[i], opaque({row.result[0][i], row.result[1][i],
                                                           row.result[2][i], row.result[3][i]}));
    batch->count = 0;
}

void OssEvStrokeTiles::follow(const OssEvStrokeTiles &others, const Areas &areas)
{
    for (const auto &[place, theirs] : others.m_touched) {
        const auto area = areas.find(place.patch);
        if (area == areas.end() || theirs.coverage.empty())
            continue;
        const OssEvRegion tile{place.x * Size, place.y * Size, Size, Size};
        OssEvRegion part = area->second.intersected(tile);
        if (part.isEmpty())
            continue;
        part.x -= tile.x;
        part.y -= tile.y;
        Tile &own = touch(place);
        for (int y = part.y; y < part.bottom(); ++y)
            std::copy_n(theirs.coverage.begin() + std::ptrdiff_t(y) * Size + part.x, part.width,
                        own.coverage.begin() + std::ptrdiff_t(y) * Size + part.x);
        own.stale = own.stale.united(part);
    }
}

void OssEvStrokeTiles::tidy()
{
    for (auto entry = m_touched.begin(); entry != m_touched.end();) {
        if (entry->second.isChanged) {
            ++entry;
            continue;
        }
        m_buffer->setTile(entry->first, entry->second.before);
        entry = m_touched.erase(entry);
    }
}

std::vector<OssEvStrokeTiles::Change> OssEvStrokeTiles::changes() const
{
    std::vector<Change> changes;
    changes.reserve(m_touched.size());
    for (const auto &[place, touched] : m_touched)
        changes.push_back({place, touched.before, touched.tile});
    return changes;
}
