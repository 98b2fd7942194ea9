#include "Ossa/Viewer/ViewerPictures.h"

#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssModel/Images/OssLivePaint.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int tileSize = OssEvTile::Size;

} // namespace

void ViewerPictures::begin(const QList<int> &patches, int resolution, const QString &problem)
{
    m_problem = problem;
    ++m_generation;
    if (resolution != m_resolution)
        m_patches.clear();
    m_resolution = resolution;
    m_hidesCoarse = m_expectsSame;
    m_expectsSame = false;
    for (auto patch = m_patches.begin(); patch != m_patches.end();) {
        if (patches.contains(patch.key()))
            ++patch;
        else
            patch = m_patches.erase(patch);
    }
    for (const int patch : patches) {
        Patch &entry = m_patches[patch];
        if (!entry.picture.isNull())
            continue;
        entry.picture = QImage(resolution, resolution, QImage::Format_ARGB32_Premultiplied);
        entry.picture.fill(Qt::transparent);
    }
    Q_EMIT began();
}

void ViewerPictures::setTile(int patch, int resolution, const QPoint &place, const QImage &picture,
                             const OssEvTilePointer &tile)
{
    const auto found = m_patches.find(patch);
    if (found == m_patches.end())
        return;
    if (m_hidesCoarse && resolution < m_resolution)
        return;
    const double enlarged = double(m_resolution) / resolution;
    const QRectF area(QPointF(place) * enlarged, QSizeF(picture.size()) * enlarged);
    QPainter painter(&found->picture);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(area, picture);
    painter.end();
    const QPair<int, int> at(place.x() / tileSize, place.y() / tileSize);
    const Tile arrived{tile, m_included, m_paint, m_generation};
    const QRect pixels = area.toAlignedRect() & found->picture.rect();
    if (resolution == m_resolution) {
        found->tiles.insert(at, arrived);
        const int across = OssEvTilesAcross(m_resolution);
        if (found->tiles.size() == across * across)
            found->coarse.clear();
    } else {
        found->coarseResolution = resolution;
        found->coarse.insert(at, arrived);
        dropOlder(&*found, pixels, m_generation);
    }
    const bool hasMore = m_paint
                         && (!m_included ? !m_paint->isEmpty()
                                         : m_paint->tiles() != m_included->paint().tiles());
    if (hasMore)
        compose(patch, &*found, pixels, PaintedRows);
    Q_EMIT changed(patch, pixels);
}

void ViewerPictures::showPaint(int patch, const QRectF &area)
{
    const auto found = m_patches.find(patch);
    if (found == m_patches.end())
        return;
    const QRectF scaled(area.topLeft() * m_resolution, area.size() * m_resolution);
    const QRect pixels = scaled.toAlignedRect() & found->picture.rect();
    compose(patch, &*found, pixels, AllRows);
    Q_EMIT changed(patch, pixels);
}

// Where a coarser picture has come nothing older is known any more.
void ViewerPictures::dropOlder(Patch *patch, const QRect &area, int generation)
{
    for (int y = area.top() / tileSize; y <= area.bottom() / tileSize; ++y) {
        for (int x = area.left() / tileSize; x <= area.right() / tileSize; ++x) {
            const auto known = patch->tiles.find({x, y});
            if (known != patch->tiles.end() && known->generation != generation)
                patch->tiles.erase(known);
        }
    }
}

void ViewerPictures::compose(int number, Patch *patch, const QRect &area, Rows rows)
{
    for (int y = area.top(); y <= area.bottom(); y += tileSize - y % tileSize) {
        for (int x = area.left(); x <= area.right(); x += tileSize - x % tileSize) {
            const QRect tile(x - x % tileSize, y - y % tileSize, tileSize, tileSize);
            composeTile(number, patch, tile & area, rows);
        }
    }
}

namespace {

constexpr float leastKeep = 0.004F; ///< below it is not known what lies beneath
constexpr float mostBared = 8.0F;   ///< times what was seen of it: of less only noise is known
constexpr OssEvPaintTile::Texel bareTexel{0.0F, 0.0F, 0.0F, 0.0F, 1.0F};

void cover(const OssEvPaintTile::Texel &paint, float *rgba)
{
    for (std::size_t c = 0; c < 4; ++c)
        rgba[c] = paint[c] + paint[OssEvPaintTile::Keep] * rgba[c];
}

/// What makes of a texel with one paint on it the one with another, as far as that is known.
OssEvPaintTile::Texel since(const OssEvPaintTile::Texel &before, const OssEvPaintTile::Texel &now)
{
    if (before == now)
        return bareTexel;
    const float kept = before[OssEvPaintTile::Keep];
    const float keeps = now[OssEvPaintTile::Keep];
    if (kept < leastKeep)
        return keeps < leastKeep ? now : bareTexel;
    if (keeps > mostBared * kept)
        return bareTexel;
    OssEvPaintTile::Texel change;
    change[OssEvPaintTile::Keep] = keeps / kept;
    for (std::size_t c = 0; c < 4; ++c)
        change[c] = now[c] - change[OssEvPaintTile::Keep] * before[c];
    return change;
}

} // namespace

// What is shown of many texels at once takes less time than row by row.
void ViewerPictures::composeTile(int number, Patch *patch, const QRect &area, Rows rows)
{
    const int width = area.width();
    const auto rowSize = std::size_t(width) * 4;
    std::vector<OssEvPaintTile::Texel> paint(tileSize);
    std::vector<float> rgba(rowSize * std::size_t(area.height()));
    std::vector<int> lines; ///< that are made anew
    bool isColor = true;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        float *row = &rgba[rowSize * lines.size()];
        const Run run = readBeneath(*patch, area.left(), y, width, row, &isColor);
        const bool isPainted = readPaint(number, area.left(), y, run, paint.data());
        for (int i = 0; isPainted && i < run.count; ++i)
            cover(paint[std::size_t(i)], &row[4 * std::size_t(i)]);
        if (isPainted || rows == AllRows)
            lines.push_back(y);
    }
    std::vector<QRgb> shown(std::size_t(width) * lines.size());
    if (lines.empty())
        return;
    ViewerPixels::show(rgba.data(), int(shown.size()), isColor, m_look, shown.data());
    auto from = shown.cbegin();
    for (const int y : lines) {
        auto *pixels = reinterpret_cast<QRgb *>(patch->picture.scanLine(y)) + area.left();
        std::transform(from, from + width, pixels, [](QRgb c) { return qPremultiply(c); });
        from += width;
    }
}

/// What of the paint the values of a run do not have.
bool ViewerPictures::readPaint(int number, int x, int y, const Run &run,
                               OssEvPaintTile::Texel *paint) const
{
    if (!m_paint)
        return false;
    const bool isKnown = run.tile && run.tile->over == m_paint;
    const OssLivePaint *had = isKnown ? run.tile->paint.get() : nullptr;
    const bool isPainted = readRow(*m_paint, number, x, y, run.count, paint);
    if (!had)
        return isPainted;
    std::vector<OssEvPaintTile::Texel> before(std::size_t(run.count));
    const bool wasPainted = readRow(had->paint(), number, x, y, run.count, before.data());
    if (!wasPainted)
        return isPainted;
    for (int i = 0; i < run.count; ++i)
        paint[i] = since(before[std::size_t(i)], isPainted ? paint[i] : bareTexel);
    return true;
}

bool ViewerPictures::readRow(const OssEvPaintBuffer &paint, int number, int x, int y, int count,
                             OssEvPaintTile::Texel *texels) const
{
    const bool isPainted = paint.readRow(number, m_resolution, x, y, count, texels);
    if (m_showsOwnImages || !isPainted)
        return isPainted;
    for (int i = 0; i < count; ++i)
        texels[i][OssEvPaintTile::Keep] = 1.0F - std::clamp(texels[i][3], 0.0F, 1.0F);
    return true;
}

ViewerPictures::Run ViewerPictures::readBeneath(const Patch &patch, int x, int y, int count,
                                                float *rgba, bool *isColor) const
{
    // Up to where the next tile begins.
    Run run;
    run.count = std::min(count, tileSize - x % tileSize);
    const auto fine = patch.tiles.constFind({x / tileSize, y / tileSize});
    if (fine != patch.tiles.cend()) {
        run.tile = &*fine;
        ViewerPixels::read(*fine->values, x % tileSize, y % tileSize, run.count, rgba);
        *isColor = fine->values->channels() > 1;
        return run;
    }
    std::fill_n(rgba, std::ptrdiff_t(4) * run.count, 0.0F);
    for (int k = 0; k < run.count; ++k) {
        const int cx = (x + k) * patch.coarseResolution / m_resolution;
        const int cy = y * patch.coarseResolution / m_resolution;
        const auto coarse = patch.coarse.constFind({cx / tileSize, cy / tileSize});
        if (coarse == patch.coarse.cend())
            continue;
        run.tile = &*coarse;
        ViewerPixels::read(*coarse->values, cx % tileSize, cy % tileSize, 1,
                           rgba + std::ptrdiff_t(4) * k);
        *isColor = coarse->values->channels() > 1;
    }
    return run;
}

QList<int> ViewerPictures::patches() const
{
    QList<int> patches = m_patches.keys();
    std::sort(patches.begin(), patches.end());
    return patches;
}

QImage ViewerPictures::picture(int patch) const
{
    return m_patches.value(patch).picture;
}

bool ViewerPictures::values(int patch, const QPoint &pixel, QVector<float> *channels) const
{
    const auto found = m_patches.constFind(patch);
    if (found == m_patches.cend())
        return false;
    const Tile known = found->tiles.value({pixel.x() / tileSize, pixel.y() / tileSize});
    const OssEvTilePointer &tile = known.values;
    if (!tile || known.generation != m_generation)
        return false;
    channels->resize(tile->channels());
    for (int c = 0; c < tile->channels(); ++c)
        (*channels)[c] = tile->texel(c, pixel.x() % tileSize, pixel.y() % tileSize);
    OssEvPaintTile::Texel paint;
    if (!readPaint(patch, pixel.x(), pixel.y(), {1, &known}, &paint))
        return true;
    float rgba[4];
    ViewerPixels::read(*tile, pixel.x() % tileSize, pixel.y() % tileSize, 1, rgba);
    cover(paint, rgba);
    channels->resize(4);
    std::copy_n(rgba, 4, channels->begin());
    return true;
}

std::optional<OssColor> ViewerPictures::colorAt(const QPointF &uv) const
{
    const int column = int(std::floor(uv.x()));
    const int row = int(std::floor(uv.y()));
    const QPointF pixel = QPointF(uv.x() - column, row + 1.0 - uv.y()) * m_resolution;
    QVector<float> found;
    if (!values(OssEvPatch::number(column, row), QPoint(int(pixel.x()), int(pixel.y())), &found))
        return std::nullopt;
    const float alpha = found.size() > 3 && found.at(3) > 0.0F ? found.at(3) : 1.0F;
    const auto channel = [&](int c) {
        return double(found.at(found.size() < 3 ? 0 : c) / alpha);
    };
    return OssColor(channel(0), channel(1), channel(2));
}
