#include "OssEvaluation/Paint/OssEvStroke.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int Size = OssEvPaintTile::Size;
constexpr double BlurReach = 0.15; ///< of the radius: how far colours come from
constexpr double LeastBlur = 1.0;
constexpr double WidestBlur = 16.0; ///< texels: from farther colours would be seen as rings
constexpr int RingParts = 8;
constexpr double LookStep = 0.25; ///< of that reach, from look to look
constexpr double FullTurn = 6.283185307179586;
constexpr double Pi = FullTurn / 2.0;

} // namespace

OssEvStroke::OssEvStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush,
                         OssEvPaintGround *ground, double scale)
    : m_brush(brush)
    , m_buffer(buffer)
    , m_ground(ground)
    , m_tiles(buffer, brush, ground)
    , m_onlyCovers(!m_tiles.isLimited() && !m_tiles.hasSources() && !brush.changesColors())
    , m_scale(scale)
    , m_path([this](const OssEvStrokePath::Point &place) { return putDab(place); })
{
}

OssEvStroke::~OssEvStroke() = default;

OssEvStroke::Areas OssEvStroke::moveTo(double x, double y, double pressure)
{
    coverTo(x, y, pressure);
    return update();
}

void OssEvStroke::coverTo(double x, double y, double pressure)
{
    m_path.moveTo({x * m_scale, y * m_scale, pressure});
}

OssEvStroke::Areas OssEvStroke::finish()
{
    m_path.finish();
    Areas areas = m_tiles.update();
    m_tiles.tidy();
    return areas;
}

bool OssEvStroke::isFollowedBy(const OssEvStroke &other) const
{
    using Brush = OssEvBrush;
    const Brush::Within within = m_brush.within;
    const bool looksBeneath = m_brush.changesColors() || m_brush.tool == Brush::Tool::Clone
                              || within == Brush::Within::Painted || within == Brush::Within::Bare;
    return !looksBeneath && m_brush.tool == other.m_brush.tool
           && m_tiles.buffer().resolution() == other.m_tiles.buffer().resolution();
}

OssEvStroke::Areas OssEvStroke::follow(const OssEvStroke &leader, const Areas &areas)
{
    m_tiles.follow(leader.m_tiles, areas);
    return m_tiles.update();
}

double OssEvStroke::putDab(const OssEvStrokePath::Point &place)
{
    glm::vec2 way(0.0F);
    if (m_lastDab && (place.x != m_lastDab->x || place.y != m_lastDab->y)) {
        m_heading = std::atan2(place.y - m_lastDab->y, place.x - m_lastDab->x);
        way = {float(place.x - m_lastDab->x), float(place.y - m_lastDab->y)};
    }
    m_lastDab = place;
    const double radius = dab(place, m_heading, m_count++);
    if (!m_marked.empty())
        changeColors(way, radius, std::sqrt(double(m_marked.size()) / Pi));
    return m_brush.spacing * radius;
}

// --- what a texel gets

/// How much of what covers a texel is let through; what it is painted with is known afterwards.
float OssEvStroke::readyFor(const Place &place, OssEvStrokeTiles::Tile *touched, int index)
{
    const auto at = std::size_t(index);
    float limit = 1.0F;
    if (!touched->limit.empty()) {
        float &known = touched->limit[at];
        if (known < 0.0F)
            known = limitOf(place, index);
        limit = known;
    }
    if (limit > 0.0F && !touched->source.empty() && touched->source[at][3] < 0.0F)
        touched->source[at] = sourceOf(place, index);
    return limit;
}

void OssEvStroke::mark(const Place &place, OssEvStrokeTiles::Tile *touched, int index, float amount,
                       const OssEvDabShape &shape)
{
    amount *= readyFor(place, touched, index);
    if (amount <= 0.0F)
        return;
    if (m_brush.changesColors()) {
        m_marked.push_back({place, index, shape.over(0.0F, amount), spotOf(place, index), {}});
        return;
    }
    float &covered = touched->coverage[std::size_t(index)];
    covered = shape.over(covered, amount);
}

glm::vec2 OssEvStroke::onSheet(const glm::vec2 &spot) const
{
    const std::array<double, 6> &s = m_brush.toSheet;
    return {float(s[0] * double(spot.x) + s[1] * double(spot.y) + s[2]),
            float(s[3] * double(spot.x) + s[4] * double(spot.y) + s[5])};
}

float OssEvStroke::limitOf(const Place &place, int index)
{
    float limit = 1.0F;
    if (m_region.ofTriangle && !m_region.has(faceOf(place, index)))
        return 0.0F;
    if (m_brush.within == OssEvBrush::Within::Painted)
        limit = m_tiles.before().texel(place, index)[3];
    else if (m_brush.within == OssEvBrush::Within::Bare)
        limit = 1.0F - m_tiles.before().texel(place, index)[3];
    if (m_brush.mask) {
        const double across = m_tiles.buffer().resolution();
        const int x = place.x * Size + index % Size;
        const int y = place.y * Size + index / Size;
        limit *= m_brush.mask->at(place.patch, (x + 0.5) / across, (y + 0.5) / across);
    }
    if (!m_brush.stencil)
        return std::clamp(limit, 0.0F, 1.0F);
    const glm::vec2 spot = onSheet(spotOf(place, index));
    const double across = 2.0 / std::max(1e-9, std::hypot(m_brush.toSheet[0], m_brush.toSheet[1]));
    return std::clamp(limit, 0.0F, 1.0F)
           * m_brush.stencil->coverage(double(spot.x), double(spot.y), across);
}

OssEvStroke::Color OssEvStroke::sourceOf(const Place &place, int index)
{
    if (m_brush.tool != OssEvBrush::Tool::Clone)
        return pictureAt(place, index);
    const glm::vec2 from(float(m_brush.cloneFrom[0]), float(m_brush.cloneFrom[1]));
    const std::optional<glm::vec2> uv = uvAt(spotOf(place, index) + from);
    Color color = uv ? m_tiles.before().at(*uv) : Color{};
    color[3] = std::max(color[3], 0.0F);
    return color;
}

OssEvStroke::Color OssEvStroke::pictureAt(const Place &place, int index)
{
    const OssEvPaintPicture &picture = *m_brush.picture;
    Color color{};
    if (m_brush.pictureOn == OssEvBrush::PictureOn::Sheet) {
        const glm::vec2 at = onSheet(spotOf(place, index));
        const double across = 2.0
                              / std::max(1e-9, std::hypot(m_brush.toSheet[0], m_brush.toSheet[1]));
        if (std::abs(at.x) < 1.0F && std::abs(at.y) < 1.0F)
            color = picture.at((double(at.x) + 1.0) / 2.0, (double(at.y) + 1.0) / 2.0, across);
    } else {
        const int resolution = m_tiles.buffer().resolution();
        const double across = resolution / m_brush.pictureRepeats;
        const double down = across * picture.height() / picture.width();
        const int x = place.x * Size + index % Size;
        const int y = place.y * Size + index / Size;
        color = picture.at((x + 0.5) / across, (y + 0.5) / down, across);
    }
    color[3] = std::clamp(color[3], 0.0F, 1.0F);
    return color;
}

// --- changing colours

/// What blurring makes of places that lie together is nearly the same: it is asked for at the corners of a grid over
/// the dab, where they are fewer than texels, and taken from between them.
class OssEvStroke::Looks
{
public:
    /// One texel at least; `step` from corner to corner, as the spots are.
    Looks(const std::vector<Marked> &marked, double step)
        : m_low(marked.front().spot)
        , m_step(float(step))
    {
        glm::vec2 high = m_low;
        for (const Marked &each : marked) {
            m_low = glm::min(m_low, each.spot);
            high = glm::max(high, each.spot);
        }
        const glm::vec2 across = (high - m_low) / m_step + 2.0F;
        if (double(across.x) * double(across.y) >= double(marked.size()))
            return;
        m_width = std::size_t(across.x);
        m_known.resize(m_width * std::size_t(across.y));
    }

    template <class Ask>
    std::optional<Color> at(const glm::vec2 &spot, const Ask &ask)
    {
        if (m_known.empty())
            return ask(spot);
        const glm::vec2 place = (spot - m_low) / m_step;
        const glm::vec2 corner = glm::floor(place);
        const glm::vec2 part = place - corner;
        Color sum{};
        float weights = 0.0F;
        for (int i = 0; i < 4; ++i) {
            const bool right = i % 2 == 1;
            const bool above = i > 1;
            const glm::vec2 aside(right ? 1.0F : 0.0F, above ? 1.0F : 0.0F);
            const float weight = (right ? part.x : 1.0F - part.x)
                                 * (above ? part.y : 1.0F - part.y);
            const std::optional<Color> *color = weight > 0.0F ? &look(corner + aside, ask)
                                                              : nullptr;
            if (color == nullptr || !*color)
                continue;
            for (std::size_t c = 0; c < sum.size(); ++c)
                sum[c] += weight * (**color)[c];
            weights += weight;
        }
        if (weights <= 0.0F)
            return ask(spot);
        for (float &channel : sum)
            channel /= weights;
        return sum;
    }

private:
    template <class Ask>
    const std::optional<Color> &look(const glm::vec2 &corner, const Ask &ask)
    {
        std::optional<std::optional<Color>> &known =
            m_known[std::size_t(corner.y) * m_width + std::size_t(corner.x)];
        if (!known)
            known = ask(m_low + corner * m_step);
        return *known;
    }

    glm::vec2 m_low;
    float m_step;
    std::size_t m_width = 0;
    std::vector<std::optional<std::optional<Color>>> m_known;
};

// All are looked at before any is set: a dab does not feed on itself.
void OssEvStroke::changeColors(const glm::vec2 &way, double radius, double texels)
{
    if (m_marked.empty())
        return;
    m_tiles.now().look();
    const double part = std::min(BlurReach, WidestBlur / std::max(texels, 1.0));
    const double reach = std::max(LeastBlur, part * radius);
    Looks looks(m_marked, LookStep * reach);
    for (Marked &marked : m_marked) {
        std::optional<Color> wanted;
        if (m_brush.tool == OssEvBrush::Tool::Blur)
            wanted = looks.at(marked.spot,
                              [&](const glm::vec2 &spot) { return blurred(spot, reach); });
        else if (const auto uv = uvAt(marked.spot - way))
            wanted = m_tiles.now().at(*uv);
        marked.color = m_tiles.now().texel(marked.place, marked.index);
        const float amount = wanted ? marked.amount * float(m_brush.opacity) : 0.0F;
        for (std::size_t c = 0; wanted && c < 4; ++c)
            marked.color[c] += ((*wanted)[c] - marked.color[c]) * amount;
    }
    Place place{};
    OssEvStrokeTiles::Tile *touched = nullptr;
    for (const Marked &marked : m_marked) {
        if (touched == nullptr || !(marked.place == place))
            touched = &m_tiles.touch(marked.place);
        place = marked.place;
        OssEvStrokeTiles::setColor(touched, marked.index, marked.color);
    }
    m_marked.clear();
}

std::optional<OssEvStroke::Color> OssEvStroke::blurred(const glm::vec2 &spot, double radius)
{
    Color sum{};
    int count = 0;
    const auto add = [&](const glm::vec2 &from) {
        const std::optional<glm::vec2> uv = uvAt(from);
        if (!uv)
            return;
        const Color color = m_tiles.now().at(*uv);
        for (std::size_t c = 0; c < 4; ++c)
            sum[c] += color[c];
        ++count;
    };
    add(spot);
    // Two rings, turned against each other.
    for (int i = 0; i < RingParts; ++i) {
        const double angle = FullTurn * (i + 0.5 * (i % 2)) / RingParts;
        const double reach = i % 2 == 0 ? radius : 0.5 * radius;
        add(spot + glm::vec2(float(reach * std::cos(angle)), float(reach * std::sin(angle))));
    }
    if (count == 0)
        return std::nullopt;
    for (float &channel : sum)
        channel /= float(count);
    return sum;
}

// --- flat

OssEvFlatStroke::OssEvFlatStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush,
                                 std::vector<int> patches, OssEvPaintGround *ground)
    : OssEvStroke(buffer, brush, ground, buffer->resolution())
    , m_patches(std::move(patches))
{
}

std::unique_ptr<OssEvStroke> OssEvFlatStroke::twin() const
{
    auto made = std::make_unique<OssEvFlatStroke>(buffer(), brush(), m_patches, ground());
    made->m_surface = m_surface;
    made->setRegion(region());
    return made;
}

void OssEvFlatStroke::keepWithin(const std::shared_ptr<OssEvPaintSurface> &surface, double x,
                                 double y)
{
    m_surface = surface;
    setRegion(surface->region(brush().within, surface->triangleAt({float(x), float(y)})));
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
    for (int row = bounds.y / Size; row <= (bounds.bottom() - 1) / Size; ++row) {
        for (int column = bounds.x / Size; column <= (bounds.right() - 1) / Size; ++column)
            dabTile({patch, column, row},
                    bounds.intersected({column * Size, row * Size, Size, Size}), x, y, shape);
    }
}

void OssEvFlatStroke::dabTile(const Place &place, const OssEvRegion &part, double x, double y,
                              const OssEvDabShape &shape)
{
    OssEvStrokeTiles::Tile &touched = tiles().touch(place);
    const int left = place.x * Size;
    const int top = place.y * Size;
    const auto amountAt = [&](int px, int py) {
        const double dx = px + 0.5 - x;
        const double dy = py + 0.5 - y;
        return shape.isRound() ? shape.atSquare(dx * dx + dy * dy) : shape.at(dx, dy);
    };
    for (int py = part.y; py < part.bottom(); ++py) {
        const int line = (py - top) * Size;
        for (int px = part.x; px < part.right(); ++px) {
            const int index = line + px - left;
            float &covered = touched.coverage[std::size_t(index)];
            if (covered >= 1.0F)
                continue;
            const float amount = amountAt(px, py);
            if (amount <= 0.0F)
                continue;
            if (onlyCovers())
                covered = shape.over(covered, amount);
            else
                mark(place, &touched, index, amount, shape);
        }
    }
    if (!brush().changesColors())
        touched.stale = touched.stale.united(
            {part.x - left, part.y - top, part.width, part.height});
}

glm::vec2 OssEvFlatStroke::spotOf(const Place &place, int index)
{
    const int resolution = tiles().buffer().resolution();
    const int x = OssEvPatch::column(place.patch) * resolution + place.x * Size + index % Size;
    const int below = place.y * Size + index / Size;
    const int y = (OssEvPatch::row(place.patch) + 1) * resolution - below;
    return {float(x) + 0.5F, float(y) - 0.5F};
}

std::optional<glm::vec2> OssEvFlatStroke::uvAt(const glm::vec2 &spot)
{
    const glm::vec2 uv = spot / float(tiles().buffer().resolution());
    const int patch = OssEvPatch::number(int(std::floor(uv.x)), int(std::floor(uv.y)));
    if (std::find(m_patches.cbegin(), m_patches.cend(), patch) == m_patches.cend())
        return std::nullopt;
    return uv;
}

int OssEvFlatStroke::faceOf(const Place &place, int index)
{
    return m_surface ? m_surface->tile(place)->faces[std::size_t(index)] : -1;
}

std::vector<OssEvPaintBuffer::Place> OssEvFlatStroke::fillPlaces(
    const OssEvPaintRegion &region) const
{
    std::vector<Place> places;
    for (const int patch : m_patches) {
        for (const Place &place : tilesOf(patch)) {
            if (!region.ofTriangle || m_surface->mayTouch(region, place))
                places.push_back(place);
        }
    }
    return places;
}

bool OssEvFlatStroke::isOpen(const Place &place, int index)
{
    const int resolution = tiles().buffer().resolution();
    return place.x * Size + index % Size < resolution && place.y * Size + index / Size < resolution;
}
