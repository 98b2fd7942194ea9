#include "OssEvaluation/Paint/OssEvStroke.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <cmath>

namespace {

constexpr int Size = OssEvPaintTile::Size;

} // namespace

OssEvStroke::OssEvStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush, double scale)
    : m_brush(brush)
    , m_tiles(buffer, brush)
    , m_scale(scale)
    , m_path([this](const OssEvStrokePath::Point &place) { return putDab(place); })
{
}

OssEvStroke::~OssEvStroke() = default;

OssEvStroke::Areas OssEvStroke::moveTo(double x, double y, double pressure)
{
    m_path.moveTo({x * m_scale, y * m_scale, pressure});
    return m_tiles.update();
}

OssEvStroke::Areas OssEvStroke::finish()
{
    m_path.finish();
    return m_tiles.update();
}

double OssEvStroke::putDab(const OssEvStrokePath::Point &place)
{
    if (m_lastDab && (place.x != m_lastDab->x || place.y != m_lastDab->y))
        m_heading = std::atan2(place.y - m_lastDab->y, place.x - m_lastDab->x);
    m_lastDab = place;
    return m_brush.spacing * dab(place, m_heading, m_count++);
}

OssEvFlatStroke::OssEvFlatStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush,
                                 std::vector<int> patches)
    : OssEvStroke(buffer, brush, buffer->resolution())
    , m_patches(std::move(patches))
{
}

double OssEvFlatStroke::dab(const OssEvStrokePath::Point &place, double heading,
                            std::uint32_t number)
{
    const OssEvDabShape shape(brush(), brush().radius, place.pressure, heading, number);
    const int resolution = tiles().buffer().resolution();
    const double reach = shape.reach();
    for (const int patch : m_patches) {
        const double x = place.x - OssEvPatch::column(patch) * resolution + shape.asideX();
        const double y = (OssEvPatch::row(patch) + 1) * resolution - place.y + shape.asideY();
        if (x > -reach && x < resolution + reach && y > -reach && y < resolution + reach)
            dabPatch(patch, x, y, shape);
    }
    return shape.radius();
}

void OssEvFlatStroke::dabPatch(int patch, double x, double y, const OssEvDabShape &shape)
{
    const double reach = shape.reach();
    const int resolution = tiles().buffer().resolution();
    const int left = int(std::floor(x - reach));
    const int top = int(std::floor(y - reach));
    const OssEvRegion bounds = OssEvRegion{left, top, int(std::ceil(x + reach)) - left,
                                           int(std::ceil(y + reach)) - top}
                                   .intersected({0, 0, resolution, resolution});
    if (bounds.isEmpty())
        return;
    const auto cover = [&](float *covered, double dx, double dy) {
        if (*covered >= 1.0F)
            return;
        const float amount = shape.isRound() ? shape.atSquare(dx * dx + dy * dy) : shape.at(dx, dy);
        if (amount > 0.0F)
            *covered = shape.over(*covered, amount);
    };
    for (int row = bounds.y / Size; row <= (bounds.bottom() - 1) / Size; ++row) {
        for (int column = bounds.x / Size; column <= (bounds.right() - 1) / Size; ++column) {
            const OssEvRegion part = bounds.intersected({column * Size, row * Size, Size, Size});
            OssEvStrokeTiles::Tile &touched = tiles().touch({patch, column, row});
            for (int py = part.y; py < part.bottom(); ++py) {
                float *line = touched.coverage.data() + std::ptrdiff_t(py - row * Size) * Size;
                for (int px = part.x; px < part.right(); ++px)
                    cover(&line[px - column * Size], px + 0.5 - x, py + 0.5 - y);
            }
            touched.stale = touched.stale.united(
                {part.x - column * Size, part.y - row * Size, part.width, part.height});
        }
    }
}
