#include "Ossa/Viewer/ViewerPictures.h"

#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssEvaluation/Values/OssEvPatch.h"

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
        entry.tiles.clear();
        entry.coarse.clear();
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
    if (resolution == m_resolution) {
        found->tiles.insert(at, tile);
        const int across = OssEvTilesAcross(m_resolution);
        if (found->tiles.size() == across * across)
            found->coarse.clear();
    } else {
        found->coarseResolution = resolution;
        found->coarse.insert(at, tile);
    }
    const QRect pixels = area.toAlignedRect() & found->picture.rect();
    if (m_paint && !m_paint->isEmpty())
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

void ViewerPictures::compose(int number, Patch *patch, const QRect &area, Rows rows)
{
    const int count = area.width();
    std::vector<OssEvPaintTile::Texel> paint(static_cast<std::size_t>(count));
    std::vector<float> rgba(paint.size() * 4);
    std::vector<QRgb> line(paint.size());
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const bool isPainted = m_paint
                               && m_paint->readRow(number, m_resolution, area.left(), y, count,
                                                   paint.data());
        if (!isPainted && rows == PaintedRows)
            continue;
        bool isColor = true;
        readBeneath(*patch, area.left(), y, count, rgba.data(), &isColor);
        for (std::size_t i = 0; isPainted && i < paint.size(); ++i)
            cover(paint[i], &rgba[4 * i]);
        ViewerPixels::show(rgba.data(), count, isColor, m_look, line.data());
        auto *pixels = reinterpret_cast<QRgb *>(patch->picture.scanLine(y)) + area.left();
        std::transform(line.cbegin(), line.cend(), pixels, [](QRgb c) { return qPremultiply(c); });
    }
}

void ViewerPictures::cover(const OssEvPaintTile::Texel &paint, float *rgba) const
{
    const float keep = m_showsOwnImages ? paint[OssEvPaintTile::Keep] : 1.0F - paint[3];
    for (std::size_t c = 0; c < 4; ++c)
        rgba[c] = paint[c] + keep * rgba[c];
}

void ViewerPictures::readBeneath(const Patch &patch, int x, int y, int count, float *rgba,
                                 bool *isColor) const
{
    for (int i = 0; i < count;) {
        // Up to where the next tile begins.
        const int run = std::min(count - i, tileSize - (x + i) % tileSize);
        float *to = rgba + std::ptrdiff_t(4) * i;
        const OssEvTilePointer fine = patch.tiles.value({(x + i) / tileSize, y / tileSize});
        if (fine) {
            ViewerPixels::read(*fine, (x + i) % tileSize, y % tileSize, run, to);
            *isColor = fine->channels() > 1;
        }
        for (int k = 0; !fine && k < run; ++k) {
            const int cx = (x + i + k) * patch.coarseResolution / m_resolution;
            const int cy = y * patch.coarseResolution / m_resolution;
            const OssEvTilePointer coarse = patch.coarse.value({cx / tileSize, cy / tileSize});
            std::fill_n(to + std::ptrdiff_t(4) * k, 4, 0.0F);
            if (coarse) {
                ViewerPixels::read(*coarse, cx % tileSize, cy % tileSize, 1,
                                   to + std::ptrdiff_t(4) * k);
                *isColor = coarse->channels() > 1;
            }
        }
        i += run;
    }
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
    const OssEvTilePointer tile = found == m_patches.cend()
                                      ? nullptr
                                      : found->tiles.value(
                                          {pixel.x() / tileSize, pixel.y() / tileSize});
    if (!tile)
        return false;
    channels->resize(tile->channels());
    for (int c = 0; c < tile->channels(); ++c)
        (*channels)[c] = tile->texel(c, pixel.x() % tileSize, pixel.y() % tileSize);
    OssEvPaintTile::Texel paint;
    if (!m_paint || !m_paint->readRow(patch, m_resolution, pixel.x(), pixel.y(), 1, &paint))
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
