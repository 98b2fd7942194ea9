#include "Ossa/UvView.h"

#include "OssEvaluation/Values/OssEvPatch.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double SmallestScale = 8.0;
constexpr double LargestScale = 40000.0;
constexpr double Inset = 24.0;
constexpr int CheckSize = 10;

QBrush checks()
{
    QImage image(2 * CheckSize, 2 * CheckSize, QImage::Format_RGB32);
    image.fill(QColor(0x2a, 0x2c, 0x30));
    QPainter painter(&image);
    painter.fillRect(0, 0, CheckSize, CheckSize, QColor(0x34, 0x37, 0x3c));
    painter.fillRect(CheckSize, CheckSize, CheckSize, CheckSize, QColor(0x34, 0x37, 0x3c));
    return QBrush(image);
}

} // namespace

UvView::UvView(QWidget *parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Texture patches"));
    setMinimumSize(120, 100);
}

void UvView::begin(const QList<int> &patches, int resolution, const QString &problem)
{
    m_problem = problem;
    if (resolution != m_resolution)
        m_patches.clear();
    m_resolution = resolution;
    for (auto patch = m_patches.begin(); patch != m_patches.end();) {
        if (patches.contains(patch.key()))
            ++patch;
        else
            patch = m_patches.erase(patch);
    }
    for (const int patch : patches) {
        Patch &entry = m_patches[patch];
        entry.tiles.clear();
        if (!entry.picture.isNull())
            continue;
        entry.picture = QImage(resolution, resolution, QImage::Format_ARGB32_Premultiplied);
        entry.picture.fill(Qt::transparent);
    }
    if (!m_framed && !patches.isEmpty())
        frameAll();
    update();
}

void UvView::setTile(int patch, int resolution, const QPoint &place, const QImage &picture,
                     const OssEvTilePointer &tile)
{
    const auto found = m_patches.find(patch);
    if (found == m_patches.end())
        return;
    const double enlarged = double(m_resolution) / resolution;
    const QRectF area(QPointF(place) * enlarged, QSizeF(picture.size()) * enlarged);
    QPainter painter(&found->picture);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(area, picture);
    painter.end();
    if (resolution == m_resolution)
        found->tiles.insert({place.x() / OssEvTile::Size, place.y() / OssEvTile::Size}, tile);
    const QRectF rect = rectOf(patch);
    const double texel = rect.width() / m_resolution;
    update(QRectF(rect.topLeft() + area.topLeft() * texel, area.size() * texel)
               .toAlignedRect()
               .adjusted(-1, -1, 1, 1));
}

QRectF UvView::rectOf(int patch) const
{
    return {m_origin + QPointF(OssEvPatch::column(patch), -OssEvPatch::row(patch) - 1) * m_scale,
            QSizeF(m_scale, m_scale)};
}

QPointF UvView::toUv(const QPointF &place) const
{
    const QPointF way = (place - m_origin) / m_scale;
    return {way.x(), -way.y()};
}

void UvView::frameAll()
{
    QRectF all;
    for (auto patch = m_patches.cbegin(); patch != m_patches.cend(); ++patch)
        all |= rectOf(patch.key());
    if (all.isEmpty())
        return;
    const QSizeF room(std::max(1.0, width() - 2 * Inset), std::max(1.0, height() - 2 * Inset));
    const double factor = std::min(room.width() / all.width(), room.height() / all.height());
    const QPointF centre = QRectF(rect()).center();
    m_origin = centre + (m_origin - all.center()) * factor;
    m_scale *= factor;
    m_framed = true;
    tellFocus();
    update();
}

void UvView::paintEvent(QPaintEvent *)
{
    static const QBrush ground = checks();
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x1b, 0x1d, 0x20));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_scale < m_resolution);
    QFont font = painter.font();
    for (auto patch = m_patches.cbegin(); patch != m_patches.cend(); ++patch) {
        const QRectF area = rectOf(patch.key());
        if (!area.intersects(rect()))
            continue;
        painter.fillRect(area, ground);
        painter.drawImage(area, patch->picture);
        painter.setPen(QColor(0x4a, 0x4e, 0x55));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(area);
        painter.setPen(QColor(0xa8, 0xae, 0xb8));
        painter.drawText(area.bottomLeft() + QPointF(4.0, 16.0), QString::number(patch.key()));
    }
    if (m_problem.isEmpty())
        return;
    painter.setPen(QColor(0xd0, 0x9a, 0x8c));
    painter.drawText(QRectF(rect()).adjusted(Inset, Inset, -Inset, -Inset),
                     Qt::AlignCenter | Qt::TextWordWrap, m_problem);
}

void UvView::tellFocus()
{
    Q_EMIT focusMoved(toUv(QRectF(rect()).center()));
}

void UvView::wheelEvent(QWheelEvent *event)
{
    const double wanted = m_scale * std::pow(1.25, event->angleDelta().y() / 120.0);
    const double factor = std::clamp(wanted, SmallestScale, LargestScale) / m_scale;
    m_origin = event->position() + (m_origin - event->position()) * factor;
    m_scale *= factor;
    tellFocus();
    update();
}

void UvView::mousePressEvent(QMouseEvent *event)
{
    m_last = event->pos();
}

void UvView::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & (Qt::MiddleButton | Qt::LeftButton)) {
        m_origin += event->pos() - m_last;
        m_last = event->pos();
        tellFocus();
        update();
    }
    Q_EMIT pointed(valuesAt(event->localPos()));
}

void UvView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F || event->key() == Qt::Key_A)
        frameAll();
    else
        QWidget::keyPressEvent(event);
}

void UvView::resizeEvent(QResizeEvent *)
{
    if (!m_patches.isEmpty())
        frameAll();
}

void UvView::leaveEvent(QEvent *)
{
    Q_EMIT pointed({});
}

QString UvView::valuesAt(const QPointF &place) const
{
    const QPointF uv = toUv(place);
    const int patch = OssEvPatch::number(int(std::floor(uv.x())), int(std::floor(uv.y())));
    const auto found = m_patches.constFind(patch);
    if (found == m_patches.cend())
        return {};
    const QPointF texel = (place - rectOf(patch).topLeft()) / m_scale * m_resolution;
    const int x = std::clamp(int(texel.x()), 0, m_resolution - 1);
    const int y = std::clamp(int(texel.y()), 0, m_resolution - 1);
    const OssEvTilePointer tile = found->tiles.value({x / OssEvTile::Size, y / OssEvTile::Size});
    QString text = QStringLiteral("%1  %2, %3").arg(patch).arg(x).arg(y);
    if (!tile)
        return text;
    for (int c = 0; c < tile->channels(); ++c)
        text += QStringLiteral("  %1").arg(
            double(tile->texel(c, x % OssEvTile::Size, y % OssEvTile::Size)), 0, 'f', 4);
    return text;
}
