#include "Ossa/Viewer/UvView.h"

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintMarks.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/ViewerPictures.h"

#include <QMouseEvent>
#include <QPainter>

// The 2-D view as a canvas.

namespace {

constexpr int outlineMargin = 3;

} // namespace

void UvView::setPainting(bool on)
{
    if (on == m_isPainting)
        return;
    m_session->end();
    m_gradientFrom.reset();
    m_isPainting = on;
    m_everyMove.setWanted(on);
    showPointer();
    if (on)
        setFocus(); // so that the brush's keys act
    update();
}

void UvView::handleBakeBehavior(OssImageSet *images)
{
    m_session->handleBakeBehavior(images);
}

OssResult UvView::bakePaint()
{
    return m_session->bake();
}

// --- input

PaintStart UvView::startAt(const QPointF &uv)
{
    PaintStart start(uv, m_hand.pressure());
    const double resolution = m_session->texelsAcross();
    start.pixel = resolution / m_scale;
    const double scale = m_scale / resolution;
    const QTransform toWidget(scale, 0.0, 0.0, -scale, m_origin.x(), m_origin.y());
    start.toSheet = toWidget * Brushes::instance()->sheet().fromView(size());
    if (!m_cloneWay && m_cloneSource)
        m_cloneWay = *m_cloneSource - uv;
    if (m_cloneWay)
        start.cloneFrom = *m_cloneWay * resolution;
    return start;
}

void UvView::paintPress(const QMouseEvent &event)
{
    const QPointF pointer = toUv(event.localPos());
    const OssEvBrush::Tool tool = Brushes::instance()->brush().tool;
    if (event.modifiers() & Qt::ControlModifier) {
        if (tool == OssEvBrush::Tool::Clone) {
            m_cloneSource = pointer;
            m_cloneWay.reset();
            update();
        } else {
            Brushes::instance()->takeColor(m_pictures->colorAt(pointer));
        }
        return;
    }
    if (tool == OssEvBrush::Tool::Fill) {
        m_session->fill(startAt(pointer));
        return;
    }
    if (tool == OssEvBrush::Tool::Gradient) {
        m_gradientFrom = event.localPos();
        return;
    }
    const QPointF place = toUv(m_hand.begin(event.localPos()));
    const std::optional<QPointF> last = m_session->lastPlace();
    if (!(event.modifiers() & Qt::ShiftModifier) || !last)
        m_session->begin(startAt(place));
    else if (m_session->begin(startAt(*last)))
        m_session->moveTo(place, m_hand.pressure());
}

void UvView::paintRelease(const QPointF &place)
{
    m_session->end();
    if (!m_gradientFrom)
        return;
    const QPointF from = *m_gradientFrom;
    m_gradientFrom.reset();
    update();
    if (from != place && Brushes::instance()->brush().tool == OssEvBrush::Tool::Gradient)
        m_session->fill(startAt(toUv(from)), toUv(place));
}

void UvView::tabletEvent(QTabletEvent *event)
{
    // Left to Qt, which makes a mouse event of it: the gestures are the same.
    m_hand.note(*event);
    event->ignore();
}

void UvView::focusOutEvent(QFocusEvent *event)
{
    m_session->end();
    m_gradientFrom.reset();
    QWidget::focusOutEvent(event);
}

QVariant UvView::sceneColorAt(const QPoint &place) const
{
    const std::optional<OssColor> color = m_pictures->colorAt(toUv(place));
    return color ? QVariant::fromValue(*color) : QVariant();
}

// --- the brush's outline

double UvView::brushRadius() const
{
    const double pixel = m_session->texelsAcross() / m_scale;
    return m_session->flatRadius(pixel) / pixel;
}

QRect UvView::outlineRect() const
{
    const double reach = brushRadius() + outlineMargin;
    return QRectF(m_pointer.x() - reach, m_pointer.y() - reach, 2.0 * reach, 2.0 * reach)
        .toAlignedRect();
}

void UvView::moveOutline(const QPointF &place)
{
    if (!m_isPainting)
        return;
    // Marks beside the brush may be anywhere.
    const bool hasMarks = m_gradientFrom
                          || Brushes::instance()->brush().tool == OssEvBrush::Tool::Clone;
    update(hasMarks ? rect() : outlineRect());
    m_pointer = place;
    m_isPointed = true;
    update(outlineRect());
}

void UvView::drawOutline(QPainter *painter) const
{
    if (!m_isPainting)
        return;
    SheetHand::draw(painter, size());
    if (m_gradientFrom)
        PaintMarks::drawLine(painter, *m_gradientFrom, m_pointer);
    if (!m_isPointed || PaintMarks::hasNoOutline())
        return;
    if (Brushes::instance()->brush().tool == OssEvBrush::Tool::Clone && m_cloneSource) {
        const QPointF source = m_cloneWay ? toUv(m_pointer) + *m_cloneWay : *m_cloneSource;
        PaintMarks::drawSource(painter, fromUv(source));
    }
    const double radius = brushRadius();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    // Dark and light, so that it is seen on any picture.
    painter->setPen(QPen(QColor(0, 0, 0, 160), 2.5));
    painter->drawEllipse(m_pointer, radius, radius);
    painter->setPen(QPen(Qt::white, 1.0));
    painter->drawEllipse(m_pointer, radius, radius);
    const double core = radius * Brushes::instance()->brush().hardness;
    if (core < 4.0 || core > radius - 2.0)
        return;
    painter->setPen(QPen(QColor(255, 255, 255, 110), 1.0, Qt::DotLine));
    painter->drawEllipse(m_pointer, core, core);
}
