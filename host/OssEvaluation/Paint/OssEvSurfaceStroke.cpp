#include "OssEvaluation/Paint/OssEvSurfaceStroke.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <glm/geometric.hpp>
#include <glm/matrix.hpp>

#include <algorithm>
#include <cmath>

namespace {

constexpr int Size = OssEvPaintTile::Size;
constexpr float LeastFacing = 0.02F; ///< cosine: what is turned away further is not seen
constexpr double PixelsBeside = 1.0; ///< a brush that is smaller reaches as far
// Where the surface runs away from the eye dabs lie farther apart on it than on the picture.
constexpr float FlattestStep = 0.2F; ///< cosine up to which steps are made smaller
constexpr float WidestGap = 0.5F;    ///< of the radius
constexpr float Jump = 8.0F;         ///< of the radius: no gap, but another part of the object
constexpr int MostBetween = 24;
constexpr int MostBehind = 64; ///< surfaces, one behind the other

enum Seen : std::uint8_t { NotKnown, Yes, No };

/// As long as 1 along the surface, as near to a direction as can be.
glm::vec3 alongSurface(const glm::vec3 &direction, const glm::vec3 &normal)
{
    const glm::vec3 along = direction - normal * glm::dot(normal, direction);
    const float length = glm::length(along);
    if (length > 1e-4F)
        return along / length;
    const glm::vec3 other = std::abs(normal.y) < 0.9F ? glm::vec3(0.0F, 1.0F, 0.0F)
                                                      : glm::vec3(1.0F, 0.0F, 0.0F);
    return glm::normalize(glm::cross(other, normal));
}

float radiusOf(const OssEvBrush &brush, float texel, float pixel)
{
    switch (brush.sizeIn) {
    case OssEvBrush::SizeIn::Pixels:
        return float(brush.radius) * pixel;
    case OssEvBrush::SizeIn::World:
        return float(brush.worldRadius);
    case OssEvBrush::SizeIn::Texels:
        break;
    }
    return float(brush.radius) * texel;
}

} // namespace

OssEvSurfaceStroke::OssEvSurfaceStroke(OssEvPaintBuffer *buffer, const OssEvBrush &brush,
                                       std::shared_ptr<OssEvPaintSurface> surface, ViewPointer view,
                                       OssEvPaintGround *ground)
    : OssEvStroke(buffer, brush, ground)
    , m_surface(std::move(surface))
    , m_view(std::move(view))
{
    addSides(brush.mirrors);
}

// One for each way to turn signs of the object's own coordinates.
void OssEvSurfaceStroke::addSides(const std::array<bool, 3> &mirrors)
{
    const glm::mat4 toObject = glm::inverse(m_surface->world());
    for (unsigned turned = 0; turned < 8; ++turned) {
        glm::mat4 flip(1.0F);
        bool wanted = true;
        for (unsigned axis = 0; axis < 3; ++axis) {
            const bool turns = ((turned >> axis) & 1U) != 0;
            wanted = wanted && (!turns || mirrors[axis]);
            if (turns)
                flip[int(axis)][int(axis)] = -1.0F;
        }
        if (!wanted)
            continue;
        Side side;
        side.mirror = m_surface->world() * flip * toObject;
        side.isOwn = turned == 0;
        side.view = side.isOwn ? m_view : m_view->mirrored(*m_surface, side.mirror);
        m_sides.push_back(std::move(side));
    }
}

std::unique_ptr<OssEvStroke> OssEvSurfaceStroke::twin() const
{
    auto made = std::make_unique<OssEvSurfaceStroke>(buffer(), brush(), m_surface, m_view,
                                                     ground());
    made->setRegion(region());
    return made;
}

bool OssEvSurfaceStroke::keepWithin(double x, double y)
{
    const auto hit = m_surface->pick(m_view->eye(), m_view->ray(x, y));
    if (!hit)
        return false;
    setRegion(m_surface->region(brush().within, hit->triangle));
    m_hasBegun = true;
    return true;
}

std::optional<OssEvSurfaceStroke::Touch> OssEvSurfaceStroke::touchAt(
    const OssEvPaintSurface &surface, const OssEvPaintView &view, const OssEvBrush &brush, double x,
    double y)
{
    glm::vec3 ray = view.ray(x, y);
    std::optional<OssEvPaintSurface::Hit> hit = surface.pick(view.eye(), ray);
    glm::vec3 aside(0.0F);
    if (!hit) {
        // What is seen nearest to it, if the brush reaches so far.
        const auto reach = [&](float depth) {
            return double(radiusOf(brush, surface.texel(), view.pixel(depth)) / view.pixel(depth));
        };
        const std::optional<glm::vec3> middle = view.project(surface.position(0));
        const double within = std::max(reach(middle ? middle->z : 1.0F), PixelsBeside);
        const std::optional<glm::vec3> beside = view.nearestSeen(x, y, within);
        if (!beside)
            return std::nullopt;
        ray = view.ray(double(beside->x), double(beside->y));
        hit = surface.pick(view.eye(), ray);
        if (!hit)
            return std::nullopt;
        aside = (view.ray(x, y) - ray) * beside->z;
    }
    const glm::vec3 towards = glm::normalize(view.eye() - hit->place);
    const float facing = glm::dot(hit->normal, towards);
    const glm::vec3 normal = facing < 0.0F ? -hit->normal : hit->normal;
    const float pixel = view.pixel(glm::length(hit->place - view.eye())
                                   / std::max(glm::length(ray), 1e-20F));
    Touch touch{};
    touch.centre = hit->place + aside;
    touch.right = alongSurface(view.right(), normal);
    touch.up = glm::cross(normal, touch.right);
    touch.texel = hit->texel;
    touch.pixel = pixel;
    touch.radius = radiusOf(brush, hit->texel, pixel);
    touch.facing = std::abs(facing);
    touch.triangle = hit->triangle;
    return touch;
}

double OssEvSurfaceStroke::dab(const OssEvStrokePath::Point &place, double heading,
                               std::uint32_t number)
{
    const std::optional<Touch> touch = touchAt(*m_surface, *m_view, brush(), place.x, place.y);
    if (!touch) {
        m_last.reset();
        return 1.0 / std::max(brush().spacing, 0.01); // it looks again at the next pixel
    }
    if (!m_hasBegun)
        setRegion(m_surface->region(brush().within, touch->triangle));
    m_hasBegun = true;
    const OssEvDabShape shape(brush(), double(touch->radius / touch->texel), place.pressure,
                              heading, number);
    if (m_last && brush().placeJitter <= 0.0) {
        const float gap = glm::length(touch->centre - m_last->centre) / touch->radius;
        const int parts = gap > WidestGap && gap < Jump
                              ? std::min(MostBetween, int(std::ceil(gap / WidestGap)))
                              : 1;
        for (int i = 1; i < parts; ++i) {
            const double t = double(i) / parts;
            if (const auto between = touchAt(*m_surface, *m_view, brush(),
                                             m_lastPlace.x + (place.x - m_lastPlace.x) * t,
                                             m_lastPlace.y + (place.y - m_lastPlace.y) * t))
                put(*between, shape);
        }
    }
    put(*touch, shape);
    if (brush().goesThrough)
        putBehind(*touch, shape);
    m_last = touch;
    m_lastPlace = place;
    return shape.radius()
           * double(touch->texel / touch->pixel * std::max(touch->facing, FlattestStep));
}

// On whatever else lies under the pointer.
void OssEvSurfaceStroke::putBehind(const Touch &touch, const OssEvDabShape &shape)
{
    const glm::vec3 along = glm::normalize(touch.centre - m_view->eye());
    Touch behind = touch;
    for (int i = 0; i < MostBehind; ++i) {
        const glm::vec3 from = behind.centre + along * (touch.texel * 0.5F);
        const auto hit = m_surface->pick(from, along);
        if (!hit)
            return;
        behind.centre = hit->place;
        behind.right = alongSurface(m_view->right(), hit->normal);
        behind.up = glm::cross(hit->normal, behind.right);
        put(behind, shape);
    }
}

// --- covering

void OssEvSurfaceStroke::put(const Touch &touch, const OssEvDabShape &shape)
{
    Touch moved = touch;
    moved.centre += (touch.right * float(shape.asideX()) - touch.up * float(shape.asideY()))
                    * touch.texel;
    const std::optional<glm::vec3> pixel = m_view->project(moved.centre);
    if (!pixel
        || !m_view->reaches(double(pixel->x), double(pixel->y),
                            shape.reach() * double(touch.texel / touch.pixel)))
        return; // what is painted is to be seen
    for (Side &side : m_sides)
        cover(&side, moved, shape);
}

void OssEvSurfaceStroke::cover(Side *side, const Touch &touch, const OssEvDabShape &shape)
{
    m_side = side;
    Touch mirrored = touch;
    if (!side->isOwn) {
        mirrored.centre = glm::vec3(side->mirror * glm::vec4(touch.centre, 1.0F));
        mirrored.right = glm::normalize(glm::vec3(side->mirror * glm::vec4(touch.right, 0.0F)));
        mirrored.up = glm::normalize(glm::vec3(side->mirror * glm::vec4(touch.up, 0.0F)));
    }
    const OssEvPaintSurface::Parts parts = m_surface->partsIn(mirrored.centre,
                                                              float(shape.reach()) * touch.texel);
    for (const auto &[place, part] : parts)
        coverTile(*side, &tileAt(side, place), part, mirrored, shape);
}

OssEvSurfaceStroke::Tile &OssEvSurfaceStroke::tileAt(Side *side,
                                                     const OssEvPaintBuffer::Place &place)
{
    Tile &tile = side->tiles[place];
    if (!tile.texels) {
        tile.place = place;
        tile.texels = m_surface->tile(place);
        tile.seen = side->view->noteOf(m_surface, place).data();
    }
    return tile;
}

void OssEvSurfaceStroke::coverTexel(Tile *tile, std::size_t index, float amount,
                                    const OssEvDabShape &shape)
{
    if (tile->touched == nullptr)
        tile->touched = &tiles().touch(tile->place);
    if (onlyCovers()) {
        float &covered = tile->touched->coverage[index];
        covered = shape.over(covered, amount);
    } else {
        mark(tile->place, tile->touched, int(index), amount, shape);
    }
}

void OssEvSurfaceStroke::coverTile(const Side &side, Tile *tile, const OssEvRegion &part,
                                   const Touch &touch, const OssEvDabShape &shape)
{
    const float reach = float(shape.reach()) * touch.texel;
    const float square = reach * reach;
    const double perTexel = 1.0 / double(touch.texel);
    int left = part.right();
    int right = part.x;
    int top = part.bottom();
    int bottom = part.y;
    for (int y = part.y; y < part.bottom(); ++y) {
        for (int x = part.x; x < part.right(); ++x) {
            const auto index = std::size_t(y) * Size + std::size_t(x);
            const glm::vec3 away(tile->texels->x[index] - touch.centre.x,
                                 tile->texels->y[index] - touch.centre.y,
                                 tile->texels->z[index] - touch.centre.z);
            const float far = glm::dot(away, away);
            if (!(far < square))
                continue;
            const float amount = shape.isRound()
                                     ? shape.atSquare(double(far) * perTexel * perTexel)
                                     : shape.at(double(glm::dot(away, touch.right)) * perTexel,
                                                -double(glm::dot(away, touch.up)) * perTexel);
            if (amount <= 0.0F || !isSeen(side, tile, index))
                continue;
            coverTexel(tile, index, amount, shape);
            left = std::min(left, x);
            right = std::max(right, x + 1);
            top = std::min(top, y);
            bottom = std::max(bottom, y + 1);
        }
    }
    if (tile->touched != nullptr && !brush().changesColors())
        tile->touched->stale = tile->touched->stale.united({left, top, right - left, bottom - top});
}

bool OssEvSurfaceStroke::isSeen(const Side &side, Tile *tile, std::size_t index) const
{
    if (brush().goesThrough)
        return true;
    std::uint8_t &seen = tile->seen[index];
    if (seen == NotKnown) {
        const glm::vec3 place(tile->texels->x[index], tile->texels->y[index],
                              tile->texels->z[index]);
        const glm::vec3 towards = glm::normalize(side.view->eye() - place);
        const bool faces = glm::dot(m_surface->normal(tile->texels->faces[index]), towards)
                           > LeastFacing;
        seen = faces && side.view->isSeen(*m_surface, place) ? Yes : No;
    }
    return seen == Yes;
}

// --- what of a texel matters to brushes that do more than cover

const OssEvPaintSurface::Tile &OssEvSurfaceStroke::texelsOf(const Place &place)
{
    if (!m_texels || !(place == m_texelsPlace)) {
        m_texels = m_surface->tile(place);
        m_texelsPlace = place;
    }
    return *m_texels;
}

// As it is seen on the picture, also from the other side of a mirror.
glm::vec2 OssEvSurfaceStroke::spotOf(const Place &place, int index)
{
    const OssEvPaintSurface::Tile &texels = texelsOf(place);
    const auto at = std::size_t(index);
    const glm::vec3 lies = glm::vec3(m_side->mirror
                                     * glm::vec4(texels.x[at], texels.y[at], texels.z[at], 1.0F));
    const std::optional<glm::vec3> pixel = m_view->project(lies);
    return pixel ? glm::vec2(*pixel) : glm::vec2(-1.0F);
}

std::optional<glm::vec2> OssEvSurfaceStroke::uvAt(const glm::vec2 &spot)
{
    return m_view->uvAt(*m_surface, double(spot.x), double(spot.y));
}

int OssEvSurfaceStroke::faceOf(const Place &place, int index)
{
    return texelsOf(place).faces[std::size_t(index)];
}

std::vector<OssEvPaintBuffer::Place> OssEvSurfaceStroke::fillPlaces(
    const OssEvPaintRegion &region) const
{
    std::vector<Place> places;
    for (const int patch : m_surface->mesh()->patches()) {
        for (const Place &place : tilesOf(patch)) {
            if (m_surface->mayTouch(region, place))
                places.push_back(place);
        }
    }
    return places;
}

// What lies on the screen reaches what is seen; a plain fill all there is.
bool OssEvSurfaceStroke::isOpen(const Place &place, int index)
{
    const Side &own = m_sides.front();
    m_side = &own;
    if (!m_open.texels || !(m_open.place == place)) {
        m_open = {place, m_surface->tile(place), nullptr, {}, nullptr};
        m_open.own.assign(OssEvPaintTile::Texels, NotKnown);
        m_open.seen = m_open.own.data();
    }
    if (m_open.texels->faces[std::size_t(index)] < 0)
        return false;
    const bool liesOnScreen = brush().tool == OssEvBrush::Tool::Gradient || brush().stencil
                              || (brush().picture
                                  && brush().pictureOn == OssEvBrush::PictureOn::Sheet);
    const auto at = std::size_t(index);
    return !liesOnScreen
           || (isSeen(own, &m_open, at)
               && m_view->isWithin(
                   {m_open.texels->x[at], m_open.texels->y[at], m_open.texels->z[at]}));
}
