#include "OssNodeGraph/Items/OssNgEdge.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int Samples = 24;
constexpr qreal PickWidth = 5.0;
constexpr qreal MarkerRadius = 6.0;
constexpr qreal BoundsMargin = 8.0; ///< holds the marker and the widest pen

QPointF onCurve(const QPointF points[4], qreal t)
{
    const qreal s = 1.0 - t;
    return s * s * s * points[0] + 3.0 * s * s * t * points[1] + 3.0 * s * t * t * points[2]
           + t * t * t * points[3];
}

qreal squaredDistanceToSegment(const QPointF &point, const QPointF &a, const QPointF &b)
{
    const QPointF along = b - a;
    const qreal length = QPointF::dotProduct(along, along);
    const qreal t = length > 0.0
                        ? std::clamp(QPointF::dotProduct(point - a, along) / length, 0.0, 1.0)
                        : 0.0;
    const QPointF away = point - (a + t * along);
    return QPointF::dotProduct(away, away);
}

/// How far the curve runs straight out of a port before it turns.
qreal reachOf(const QPointF &start, const QPointF &end)
{
    const QPointF span = end - start;
    const qreal distance = std::hypot(span.x(), span.y());
    if (span.x() >= 0.0)
        return std::max(span.x() / 2.0, std::min(50.0, distance / 2.0));
    return std::min(50.0 - span.x() / 4.0, std::max(distance / 2.0, 30.0)) + 10.0;
}

} // namespace

OssNgEdge::OssNgEdge(OssNgNode *source, const QString &output, OssNgNode *destination,
                     const QString &input)
    : m_source(source)
    , m_destination(destination)
    , m_output(output)
    , m_input(input)
{
    setFlags(ItemHasNoContents | ItemIsSelectable);
    setZValue(-1.0);
    updateGeometry();
}

OssNgEdge::~OssNgEdge()
{
    light({});
    if (m_source)
        m_source->forgetEdge(this);
    if (m_destination)
        m_destination->forgetEdge(this);
    if (scene())
        scene()->removeItem(this);
    if (m_index)
        m_index->removeEdge(this);
}

void OssNgEdge::setMark(Mark mark, bool on)
{
    const auto marks = quint8(on ? m_marks | mark : m_marks & ~mark);
    if (marks == m_marks)
        return;
    m_marks = marks;
    if (m_index)
        m_index->updateEdge(this);
    repaintScene();
}

void OssNgEdge::setDebugColor(const QColor &color)
{
    m_debugColor = color;
    if (m_index)
        m_index->updateEdge(this);
    repaintScene();
}

void OssNgEdge::setHovered(bool hovered)
{
    if (m_hovered == hovered)
        return;
    m_hovered = hovered;
    repaintScene();
}

void OssNgEdge::switchToDotableMode(bool on)
{
    setMark(Dotable, on && isFullConnected() && !isVirtual());
}

QPointF OssNgEdge::markerPosition() const
{
    QPointF points[4];
    controlPoints(points);
    return onCurve(points, 0.5);
}

bool OssNgEdge::isOnMarker(const QPointF &scenePos) const
{
    const QPointF away = scenePos - markerPosition();
    return isDotable()
           && QPointF::dotProduct(away, away) <= (MarkerRadius + 2) * (MarkerRadius + 2);
}

void OssNgEdge::clickMarker()
{
    if (isDotable() && m_destination)
        Q_EMIT m_destination->clickedOnDotableMarkerOnEdge(this);
}

void OssNgEdge::controlPoints(QPointF points[4]) const
{
    const qreal reach = reachOf(m_start, m_end);
    const auto lead = [reach](const QPointF &direction) {
        const qreal length = std::hypot(direction.x(), direction.y());
        return direction * (std::max(reach, length) / length);
    };
    const QPointF out = m_source && m_dragEnd != DragEnd::Source
                            ? m_source->outputPortDirection(m_output)
                            : QPointF(1.0, 0.0);
    const QPointF in = m_destination && m_dragEnd != DragEnd::Destination
                           ? m_destination->inputPortDirection(m_input)
                           : QPointF(-1.0, 0.0);
    points[0] = m_start;
    points[1] = m_start + lead(out);
    points[2] = m_end + lead(in);
    points[3] = m_end;
}

QPainterPath OssNgEdge::path() const
{
    QPainterPath result;
    if (m_bounds.isEmpty())
        return result;
    QPointF points[4];
    controlPoints(points);
    result.moveTo(points[0]);
    result.cubicTo(points[1], points[2], points[3]);
    return result;
}

qreal OssNgEdge::distanceTo(const QPointF &scenePos) const
{
    if (m_bounds.isEmpty())
        return std::numeric_limits<qreal>::max();
    QPointF points[4];
    controlPoints(points);
    qreal nearest = std::numeric_limits<qreal>::max();
    QPointF previous = points[0];
    for (int i = 1; i <= Samples; ++i) {
        const QPointF next = onCurve(points, qreal(i) / Samples);
        nearest = std::min(nearest, squaredDistanceToSegment(scenePos, previous, next));
        previous = next;
    }
    return std::sqrt(nearest);
}

QColor OssNgEdge::color() const
{
    const OssNgStyle *style = OssNgStyle::instance();
    if (hasMark(Debug) && m_debugColor.isValid())
        return m_debugColor;
    if (isSelected())
        return style->color(OssNgStyle::Role::Accent);
    const OssNgPort *port = nullptr;
    if (m_source) {
        m_outputHint = m_source->list(OssNgNode::Side::Output).indexOf(m_output, m_outputHint);
        port = m_outputHint < 0 ? nullptr : &m_source->outputPorts()[m_outputHint];
    } else if (m_destination) {
        port = m_destination->inputPort(m_input);
    }
    return style->portColor(port ? port->kind : OssNgPortKind::Color);
}

void OssNgEdge::updateGeometry()
{
    if (m_source && m_dragEnd != DragEnd::Source)
        m_start = m_source->pos()
                  + m_source->portPosition(OssNgNode::Side::Output, m_output, &m_outputHint);
    if (m_destination && m_dragEnd != DragEnd::Destination)
        m_end = m_destination->pos()
                + m_destination->portPosition(OssNgNode::Side::Input, m_input, &m_inputHint);
    QRectF bounds;
    if (isFullConnected() || m_dragEnd != DragEnd::None) {
        QPointF points[4];
        controlPoints(points);
        // A curve lies within the hull of its control points.
        qreal left = points[0].x();
        qreal right = left;
        qreal top = points[0].y();
        qreal bottom = top;
        for (int i = 1; i < 4; ++i) {
            left = std::min(left, points[i].x());
            right = std::max(right, points[i].x());
            top = std::min(top, points[i].y());
            bottom = std::max(bottom, points[i].y());
        }
        bounds = QRectF(QPointF(left, top), QPointF(right, bottom))
                     .adjusted(-BoundsMargin, -BoundsMargin, BoundsMargin, BoundsMargin);
    }
    repaintScene();
    if (bounds != m_bounds) {
        prepareGeometryChange();
        m_bounds = bounds;
    }
    if (m_index)
        m_index->updateEdge(this);
    repaintScene();
}

void OssNgEdge::updateVisibility()
{
    setVisible((!m_source || m_source->isVisible())
               && (!m_destination || m_destination->isVisible()));
}

void OssNgEdge::repaintScene() const
{
    if (scene() && !m_bounds.isEmpty())
        scene()->update(m_bounds);
}

QPainterPath OssNgEdge::shape() const
{
    QPainterPath band;
    if (m_bounds.isEmpty())
        return band;
    QPointF points[4];
    controlPoints(points);
    constexpr int Steps = 12;
    QPolygonF outline;
    QPolygonF back;
    QPointF previous = points[0];
    for (int i = 1; i <= Steps; ++i) {
        const QPointF next = onCurve(points, qreal(i) / Steps);
        const QPointF along = next - previous;
        const qreal length = std::max(1e-6, std::hypot(along.x(), along.y()));
        const QPointF normal(-along.y() / length * PickWidth, along.x() / length * PickWidth);
        if (i == 1) {
            outline.append(previous + normal);
            back.append(previous - normal);
        }
        outline.append(next + normal);
        back.append(next - normal);
        previous = next;
    }
    std::reverse(back.begin(), back.end());
    band.setFillRule(Qt::WindingFill);
    band.addPolygon(outline + back);
    band.closeSubpath();
    return band;
}

QVariant OssNgEdge::itemChange(GraphicsItemChange change, const QVariant &value)
{
    switch (change) {
    case ItemSceneChange:
        repaintScene();
        if (m_index)
            m_index->removeEdge(this);
        break;
    case ItemSceneHasChanged:
        if (OssNgSceneIndex *index = OssNgSceneIndex::of(scene()))
            index->addEdge(this);
        repaintScene();
        break;
    case ItemSelectedHasChanged:
    case ItemVisibleHasChanged:
        if (m_index)
            m_index->updateEdge(this);
        repaintScene();
        break;
    default:
        break;
    }
    return QGraphicsItem::itemChange(change, value);
}

/// What takes a click is selected when it ends. The scene knows no order between wires and nodes.
void OssNgEdge::takeUnlessHidden(QGraphicsSceneMouseEvent *event) const
{
    const OssNgNode *above = m_index ? m_index->nodeAt(event->scenePos()) : nullptr;
    event->setAccepted(!above || above->isBackground());
}

void OssNgEdge::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    takeUnlessHidden(event);
}

void OssNgEdge::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    takeUnlessHidden(event);
}
