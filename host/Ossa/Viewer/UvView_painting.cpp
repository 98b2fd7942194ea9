#include "Ossa/Viewer/UvView.h"

#include "Ossa/Viewer/PaintSession.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Values/OssEvPatch.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

// The 2-D view as a canvas.

namespace {

constexpr double smallestPressure = 0.02;
constexpr int outlineMargin = 3;

} // namespace

void UvView::setPainting(bool on)
{
    if (on == m_isPainting)
        return;
    m_session->end();
    m_isPainting = on;
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

void UvView::paintPress(const QMouseEvent &event)
{
    if (event.modifiers() & Qt::ControlModifier) {
        pickColor(event.localPos());
        return;
    }
    const QPointF place = toUv(event.localPos());
    const std::optional<QPointF> last = m_session->lastPlace();
    if (!(event.modifiers() & Qt::ShiftModifier) || !last)
        m_session->begin(place, m_pressure);
    else if (m_session->begin(*last, m_pressure))
        m_session->moveTo(place, m_pressure);
}

void UvView::tabletEvent(QTabletEvent *event)
{
    // Left to Qt, which makes a mouse event of it: the gestures are the same.
    const bool isUp = event->type() == QEvent::TabletRelease;
    m_pressure = isUp ? 1.0 : std::max(smallestPressure, event->pressure());
    event->ignore();
}

void UvView::focusOutEvent(QFocusEvent *event)
{
    m_session->end();
    QWidget::focusOutEvent(event);
}

QVariant UvView::sceneColorAt(const QPoint &place) const
{
    const QPointF uv = toUv(place);
    const int patch = OssEvPatch::number(int(std::floor(uv.x())), int(std::floor(uv.y())));
    const QPointF pixel = (place - rectOf(patch).topLeft()) / m_scale * m_pictures->resolution();
    QVector<float> values;
    if (!m_pictures->values(patch, QPoint(int(pixel.x()), int(pixel.y())), &values))
        return {};
    const float alpha = values.size() > 3 && values.at(3) > 0.0F ? values.at(3) : 1.0F;
    double color[3] = {};
    for (int c = 0; c < 3; ++c)
        color[c] = double(values.at(values.size() < 3 ? 0 : c) / alpha);
    return QVariant::fromValue(OssColor(color[0], color[1], color[2]));
}

void UvView::pickColor(const QPointF &place)
{
    const QVariant found = sceneColorAt(place.toPoint());
    if (!found.isValid())
        return;
    const auto color = found.value<OssColor>();
    OssEvBrush brush = m_session->brush();
    brush.color[0] = float(color.red());
    brush.color[1] = float(color.green());
    brush.color[2] = float(color.blue());
    brush.erases = false;
    m_session->setBrush(brush);
}

// --- the brush's outline

double UvView::brushRadius() const
{
    return m_session->brush().radius / m_session->texelsAcross() * m_scale;
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
    update(outlineRect());
    m_pointer = place;
    m_isPointed = true;
    update(outlineRect());
}

void UvView::drawOutline(QPainter *painter) const
{
    if (!m_isPainting || !m_isPointed)
        return;
    const double radius = brushRadius();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    // Dark and light, so that it is seen on any picture.
    painter->setPen(QPen(QColor(0, 0, 0, 160), 2.5));
    painter->drawEllipse(m_pointer, radius, radius);
    painter->setPen(QPen(Qt::white, 1.0));
    painter->drawEllipse(m_pointer, radius, radius);
    const double core = radius * m_session->brush().hardness;
    if (core < 4.0 || core > radius - 2.0)
        return;
    painter->setPen(QPen(QColor(255, 255, 255, 110), 1.0, Qt::DotLine));
    painter->drawEllipse(m_pointer, core, core);
}
