#include "OssEvaluation/Paint/OssEvStrokeTiles.h"

namespace {

constexpr int Size = OssEvPaintTile::Size;

} // namespace

OssEvStrokeTiles::OssEvStrokeTiles(OssEvPaintBuffer *buffer, const OssEvBrush &brush)
    : m_buffer(buffer)
    , m_opacity(float(brush.opacity))
{
    if (!brush.erases)
        m_source = {brush.color[0], brush.color[1], brush.color[2], 1.0F, 0.0F};
}

OssEvStrokeTiles::Tile &OssEvStrokeTiles::touch(const OssEvPaintBuffer::Place &place)
{
    const auto found = m_touched.find(place);
    if (found != m_touched.end())
        return found->second;
    Tile touched;
    touched.before = m_buffer->tile(place);
    touched.tile = touched.before ? std::make_shared<OssEvPaintTile>(*touched.before)
                                  : std::make_shared<OssEvPaintTile>();
    touched.coverage.resize(OssEvPaintTile::Texels);
    touched.blended.resize(OssEvPaintTile::Texels);
    m_buffer->setTile(place, touched.tile);
    return m_touched.emplace(place, std::move(touched)).first->second;
}

OssEvStrokeTiles::Areas OssEvStrokeTiles::update()
{
    Areas areas;
    for (auto &[place, touched] : m_touched) {
        if (touched.stale.isEmpty())
            continue;
        blend(&touched);
        OssEvRegion area = touched.stale;
        area.x += place.x * Size;
        area.y += place.y * Size;
        areas[place.patch] = areas[place.patch].united(area);
        touched.stale = {};
    }
    return areas;
}

void OssEvStrokeTiles::blend(Tile *touched) const
{
    const OssEvRegion &area = touched->stale;
    OssEvPaintTile::Texel bare{};
    bare[OssEvPaintTile::Keep] = 1.0F;
    for (int y = area.y; y < area.bottom(); ++y) {
        for (int index = y * Size + area.x; index < y * Size + area.right(); ++index) {
            const float coverage = touched->coverage[std::size_t(index)];
            float &blended = touched->blended[std::size_t(index)];
            if (coverage == blended)
                continue;
            blended = coverage;
            const float alpha = m_opacity * coverage;
            OssEvPaintTile::Texel texel = touched->before ? touched->before->texel(index) : bare;
            for (std::size_t plane = 0; plane < texel.size(); ++plane)
                texel[plane] = alpha * m_source[plane] + (1.0F - alpha) * texel[plane];
            touched->tile->setTexel(index, texel);
        }
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
