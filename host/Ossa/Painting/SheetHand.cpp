#include "Ossa/Painting/SheetHand.h"

#include "Ossa/Painting/Brushes.h"

#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int pictureSize = 256;
constexpr double step = 1.1; ///< of the wheel
constexpr double clickAngle = 120.0;
constexpr int shade = 150; ///< of what a stencil covers, of 255
constexpr double pictureOpacity = 0.45;

bool isForSheet(Qt::KeyboardModifiers modifiers)
{
    const Qt::KeyboardModifiers both = Qt::ControlModifier | Qt::ShiftModifier;
    return (modifiers & both) == both && Brushes::instance()->hasSheet();
}

double angleOf(const QPointF &way)
{
    return std::atan2(way.y(), way.x()) * 180.0 / 3.14159265358979323846;
}

/// What is covered is dark.
QImage pictureOf(const OssEvStamp &stencil)
{
    QImage image(pictureSize, pictureSize, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < pictureSize; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < pictureSize; ++x) {
            const float open = stencil.coverage((x + 0.5) / pictureSize * 2.0 - 1.0,
                                                (y + 0.5) / pictureSize * 2.0 - 1.0, pictureSize);
            line[x] = qPremultiply(qRgba(20, 22, 26, int(shade * (1.0F - open))));
        }
    }
    return image;
}

QImage pictureOf(const OssEvPaintPicture &picture)
{
    QImage image(pictureSize, pictureSize, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < pictureSize; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < pictureSize; ++x) {
            const OssEvPaintPicture::Color color = picture.at((x + 0.5) / pictureSize,
                                                              (y + 0.5) / pictureSize, pictureSize);
            const auto level = [&](std::size_t c) {
                const double linear = std::clamp(double(color[c]), 0.0, 1.0);
                return int(std::lround(255.0 * std::pow(linear, 1.0 / 2.2)));
            };
            line[x] = qRgba(level(0), level(1), level(2), 255);
        }
    }
    return image;
}

} // namespace

bool SheetHand::press(const QMouseEvent &event)
{
    if (!isForSheet(event.modifiers()))
        return false;
    m_last = event.localPos();
    if (event.button() == Qt::LeftButton)
        m_does = Moves;
    else if (event.button() == Qt::RightButton)
        m_does = Turns;
    return m_does != Nothing;
}

bool SheetHand::move(const QMouseEvent &event, const QSize &view)
{
    if (m_does == Nothing)
        return false;
    PaintSheet sheet = Brushes::instance()->sheet();
    const QPointF middle = sheet.place + QPointF(view.width() / 2.0, view.height() / 2.0);
    if (m_does == Moves)
        sheet.place += event.localPos() - m_last;
    else
        sheet.angle += angleOf(event.localPos() - middle) - angleOf(m_last - middle);
    m_last = event.localPos();
    Brushes::instance()->setSheet(sheet);
    return true;
}

bool SheetHand::wheel(const QWheelEvent &event)
{
    if (!isForSheet(event.modifiers()))
        return false;
    PaintSheet sheet = Brushes::instance()->sheet();
    // Some keys turn a wheel's direction.
    const QPoint turn = event.angleDelta();
    sheet.half *= std::pow(step, (turn.y() != 0 ? turn.y() : turn.x()) / clickAngle);
    Brushes::instance()->setSheet(sheet);
    return true;
}

void SheetHand::draw(QPainter *painter, const QSize &view)
{
    const Brushes *brushes = Brushes::instance();
    if (!brushes->hasSheet())
        return;
    static std::shared_ptr<const void> drawnOf;
    static QImage drawn;
    const OssEvBrush &brush = brushes->brush();
    std::shared_ptr<const void> wanted = brush.picture;
    if (brush.stencil)
        wanted = brush.stencil;
    if (wanted != drawnOf) {
        drawn = brush.stencil ? pictureOf(*brush.stencil) : pictureOf(*brush.picture);
        drawnOf = wanted;
    }
    painter->save();
    painter->setRenderHints(QPainter::SmoothPixmapTransform | QPainter::Antialiasing);
    painter->setTransform(brushes->sheet().fromView(view).inverted(), true);
    painter->setOpacity(brush.stencil ? 1.0 : pictureOpacity);
    const QRectF whole(-1.0, -1.0, 2.0, 2.0);
    painter->drawImage(whole, drawn);
    QPen edge(QColor(255, 255, 255, 170), 1.0);
    edge.setCosmetic(true);
    painter->setOpacity(1.0);
    painter->setPen(edge);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(whole);
    painter->restore();
}
