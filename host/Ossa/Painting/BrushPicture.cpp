#include "Ossa/Painting/BrushPicture.h"

#include "OssEvaluation/Paint/OssEvStroke.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr int places = 24;
constexpr double margin = 0.12; ///< of the width
constexpr double wave = 0.22;   ///< of the height
constexpr double fullTurn = 6.283185307179586;
constexpr int light = 225;
constexpr int stripes = 9; ///< beneath brushes that need something there
constexpr float bright = 0.9F;

void draw(OssEvStroke *stroke, const QSize &size)
{
    const double across = std::max(size.width(), size.height());
    for (int i = 0; i <= places; ++i) {
        const double t = double(i) / places;
        const double x = (margin + (1.0 - 2.0 * margin) * t) * size.width();
        const double y = (0.5 - wave * std::sin(fullTurn * t)) * size.height();
        // A pen that comes down and is lifted.
        stroke->moveTo(x / across, 1.0 - y / across, 0.35 + 0.65 * std::sin(fullTurn * t / 2.0));
    }
    stroke->finish();
}

/// For brushes that move the colours that are there.
void drawStripes(OssEvPaintBuffer *buffer, const QSize &size)
{
    OssEvBrush pen;
    pen.color = {bright, bright, bright};
    pen.radius = double(size.width()) / stripes / 4.0;
    pen.pressureSizes = false;
    for (int i = 0; i < stripes; ++i) {
        OssEvFlatStroke stripe(buffer, pen, {1001});
        const double across = std::max(size.width(), size.height());
        const double x = (i + 0.5) / stripes * size.width() / across;
        stripe.moveTo(x, 1.0);
        stripe.moveTo(x, 1.0 - size.height() / across);
        stripe.finish();
    }
}

/// How bright a texel is on a dark ground.
QRgb shown(const OssEvPaintTile::Texel &texel, bool isColor)
{
    const double alpha = std::clamp(double(texel[3]), 0.0, 1.0);
    const double value = isColor ? std::clamp(double(texel[0]), 0.0, alpha) : alpha;
    return qPremultiply(qRgba(light, light, light, int(std::lround(255.0 * value))));
}

} // namespace

QImage BrushPicture::make(const Brush &brush, const QSize &size)
{
    try {
        OssEvBrush paint = brush.paint;
        paint.radius = std::clamp(paint.radius, 0.06 * size.height(), 0.2 * size.height());
        paint.placeJitter = std::min(paint.placeJitter, 1.0);
        // What depends on what is there is shown by its shape, but for what changes it.
        const bool changes = paint.changesColors() || paint.tool == OssEvBrush::Tool::Clone;
        if (!changes)
            paint.tool = OssEvBrush::Tool::Brush;
        paint.blend = 0;
        paint.within = OssEvBrush::Within::Everywhere;
        paint.stencil.reset();
        paint.mask.reset();
        paint.pictureOn = OssEvBrush::PictureOn::Patches;
        OssEvPaintBuffer buffer(std::max(size.width(), size.height()));
        if (changes)
            drawStripes(&buffer, size);
        paint.cloneFrom = {double(size.width()) / stripes / 2.0, 0.0};
        OssEvFlatStroke stroke(&buffer, paint, {1001});
        draw(&stroke, size);
        QImage picture(size, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        std::vector<OssEvPaintTile::Texel> row(std::size_t(size.width()));
        for (int y = 0; y < size.height(); ++y) {
            if (!buffer.readRow(1001, buffer.resolution(), 0, y, size.width(), row.data()))
                continue;
            auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
            std::transform(row.cbegin(), row.cend(), line,
                           [changes](const auto &texel) { return shown(texel, changes); });
        }
        return picture;
    } catch (const std::bad_alloc &) {
        return {};
    }
}
