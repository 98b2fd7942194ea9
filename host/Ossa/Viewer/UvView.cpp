#include "Ossa/Viewer/UvView.h"

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssModel/Objects/OssCanvasManager.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallestScale = 8.0;
constexpr double largestScale = 40000.0;
constexpr double inset = 24.0;
constexpr int checkSize = 10;
constexpr double plateMargin = 4.0;
constexpr double platePadding = 4.0;

/// At the lower left within the patch, as far as that is in view, on a plate that can be read on any
/// picture. Nothing where there is no room for it.
void drawNumber(QPainter *painter, const QRectF &patch, const QString &number)
{
    const QFontMetricsF metrics(painter->font());
    const QSizeF size(metrics.horizontalAdvance(number) + 2.0 * platePadding,
                      metrics.height() + platePadding);
    const QRectF room = patch.intersected(painter->viewport());
    if (size.width() + 2.0 * plateMargin > patch.width()
        || size.height() + 2.0 * plateMargin > patch.height()
        || size.width() + 2.0 * plateMargin > room.width()
        || size.height() + 2.0 * plateMargin > room.height())
        return;
    const QRectF plate(room.bottomLeft() + QPointF(plateMargin, -plateMargin - size.height()),
                       size);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0x14, 0x15, 0x18, 200));
    painter->drawRoundedRect(plate, 4.0, 4.0);
    painter->setPen(QColor(0xe4, 0xe7, 0xec));
    painter->drawText(plate, Qt::AlignCenter, number);
    painter->restore();
}

QBrush checks()
{
    QImage image(2 * checkSize, 2 * checkSize, QImage::Format_RGB32);
    image.fill(QColor(0x2a, 0x2c, 0x30));
    QPainter painter(&image);
    painter.fillRect(0, 0, checkSize, checkSize, QColor(0x34, 0x37, 0x3c));
    painter.fillRect(checkSize, checkSize, checkSize, checkSize, QColor(0x34, 0x37, 0x3c));
    return QBrush(image);
}

} // namespace

UvView::UvView(const ViewerPictures *pictures, PaintSession *session, QWidget *parent)
    : QWidget(parent)
    , m_pictures(pictures)
    , m_session(session)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Texture patches"));
    setMinimumSize(120, 100);
    connect(pictures, &ViewerPictures::began, this, &UvView::showBegin);
    connect(pictures, &ViewerPictures::changed, this, &UvView::showChange);
    connect(Brushes::instance(), &Brushes::changed, this, [this] { update(); });
    connect(OssUndoManager::instance(), &OssUndoManager::takingBack, this,
            [this](bool *taken) { *taken = takeStrokeBack() || *taken; });
    OssCanvasManager::instance()->setCurrentCanvas(this);
}

UvView::~UvView() = default;

void UvView::showBegin()
{
    if (m_fitted)
        frameAll();
    update();
}

void UvView::showChange(int patch, const QRect &area)
{
    const QRectF rect = rectOf(patch);
    const double pixel = rect.width() / m_pictures->resolution();
    update(QRectF(rect.topLeft() + QPointF(area.topLeft()) * pixel, QSizeF(area.size()) * pixel)
               .toAlignedRect()
               .adjusted(-1, -1, 1, 1));
    if (underMouse())
        Q_EMIT pointed(valuesAt(m_last));
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

QPointF UvView::fromUv(const QPointF &uv) const
{
    return m_origin + QPointF(uv.x(), -uv.y()) * m_scale;
}

void UvView::frameAll()
{
    QRectF all;
    const QList<int> patches = m_pictures->patches();
    for (const int patch : patches)
        all |= rectOf(patch);
    if (all.isEmpty())
        return;
    const QSizeF room(width() - 2 * inset, height() - 2 * inset);
    const double factor = std::min(room.width() / all.width(), room.height() / all.height());
    const QPointF centre = QRectF(rect()).center();
    m_origin = centre + (m_origin - all.center()) * factor;
    m_scale *= factor;
    m_fitted = true;
    tellFocus();
    update();
}

QColor UvView::groundColor()
{
    return {0x1b, 0x1d, 0x20};
}

void UvView::drawPatch(QPainter *painter, int patch, const QImage &picture) const
{
    static const QBrush ground = checks();
    const QRectF area = rectOf(patch);
    if (!area.intersects(rect()))
        return;
    painter->fillRect(area, ground);
    painter->setRenderHint(QPainter::SmoothPixmapTransform, m_scale < picture.width());
    painter->drawImage(area, picture);
    painter->setPen(QColor(0x4a, 0x4e, 0x55));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(area);
    drawNumber(painter, area, QString::number(patch));
}

void UvView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), groundColor());
    const QList<int> patches = m_pictures->patches();
    for (const int patch : patches)
        drawPatch(&painter, patch, m_pictures->picture(patch));
    drawComparison(&painter);
    drawOutline(&painter);
    if (m_pictures->problem().isEmpty())
        return;
    painter.setPen(QColor(0xd0, 0x9a, 0x8c));
    painter.drawText(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                     Qt::AlignCenter | Qt::TextWordWrap, m_pictures->problem());
}

void UvView::tellFocus()
{
    Q_EMIT focusMoved(toUv(QRectF(rect()).center()));
}

void UvView::wheelEvent(QWheelEvent *event)
{
    if (m_isPainting && (SheetHand::wheel(*event) || m_gradientFrom))
        return;
    const double wanted = m_scale * std::pow(1.25, event->angleDelta().y() / 120.0);
    const double factor = std::clamp(wanted, smallestScale, largestScale) / m_scale;
    m_origin = event->position() + (m_origin - event->position()) * factor;
    m_scale *= factor;
    m_fitted = false;
    tellFocus();
    update();
}

void UvView::mousePressEvent(QMouseEvent *event)
{
    m_last = event->pos();
    if (m_isPainting && m_sheetHand.press(*event))
        return;
    if (event->button() == Qt::LeftButton && isAtWipe(event->localPos())) {
        m_isWiping = true;
        return;
    }
    if (m_isPainting && !isKeptAt(event->localPos()) && event->button() == Qt::LeftButton
        && !(event->modifiers() & Qt::AltModifier))
        paintPress(*event);
}

void UvView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_sheetHand.move(*event, size())) {
        m_last = event->pos();
        return;
    }
    if (m_isWiping) {
        moveWipe(event->localPos());
    } else if (m_session->isPainting()) {
        m_session->follow(toUv(m_hand.follow(event->localPos(), Brushes::instance()->steadiness())),
                          m_hand.pressure());
    } else if ((event->buttons() & Qt::MiddleButton)
               || ((event->buttons() & Qt::LeftButton)
                   && (!m_isPainting || (event->modifiers() & Qt::AltModifier)))) {
        m_origin += event->pos() - m_last;
        m_fitted = false;
        tellFocus();
        update();
    }
    m_last = event->pos();
    showPointer();
    moveOutline(event->localPos());
    Q_EMIT pointed(valuesAt(event->localPos()));
}

void UvView::mouseReleaseEvent(QMouseEvent *event)
{
    m_sheetHand.release();
    if (event->button() != Qt::LeftButton)
        return;
    m_isWiping = false;
    paintRelease(event->localPos());
}

void UvView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape || !takeStrokeBack())
        QWidget::keyPressEvent(event);
}

bool UvView::takeStrokeBack()
{
    if (!m_session->isPainting() && !m_gradientFrom)
        return false;
    m_session->cancel();
    m_gradientFrom.reset();
    update();
    return true;
}

void UvView::resizeEvent(QResizeEvent *)
{
    if (m_fitted)
        frameAll();
}

void UvView::enterEvent(QEvent *)
{
    Q_EMIT entered();
}

void UvView::leaveEvent(QEvent *)
{
    m_isPointed = false;
    update(outlineRect());
    Q_EMIT pointed({});
}

QString UvView::valuesAt(const QPointF &place) const
{
    const QPointF uv = toUv(place);
    const int patch = OssEvPatch::number(int(std::floor(uv.x())), int(std::floor(uv.y())));
    if (!m_pictures->has(patch) || isKeptAt(place))
        return {};
    const int resolution = m_pictures->resolution();
    const QPointF texel = (place - rectOf(patch).topLeft()) / m_scale * resolution;
    const QPoint pixel(std::clamp(int(texel.x()), 0, resolution - 1),
                       std::clamp(int(texel.y()), 0, resolution - 1));
    QString text = QStringLiteral("%1  %2, %3").arg(patch).arg(pixel.x()).arg(pixel.y());
    QVector<float> values;
    if (m_pictures->values(patch, pixel, &values)) {
        for (const float value : qAsConst(values))
            text += QStringLiteral("  %1").arg(double(value), 0, 'f', 4);
    }
    return text;
}
