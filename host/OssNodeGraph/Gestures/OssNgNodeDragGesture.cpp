#include "OssNodeGraph/Gestures/OssNgNodeDragGesture.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgGestureHost.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgMovedNodes.h"
#include "OssNodeGraph/Items/OssNgNode.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QLineF>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace {

constexpr QPointF CounterOffset(18.0, -22.0); ///< of the shakes shown, from the pointer
constexpr qreal CounterStep = 11.0;

} // namespace

OssNgNodeDragGesture::OssNgNodeDragGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                           const QPointF &start, OssNgNode *pressed,
                                           bool wasSelected)
    : OssNgGesture(host, button)
    , m_startScene(host->toScene(start))
    , m_pressed(pressed)
    , m_deselectOthersOnClick(wasSelected)
    , m_pointer(start)
    , m_shakes(start)
{
}

int OssNgNodeDragGesture::state() const
{
    return OssNgGestureHost::Idle;
}

void OssNgNodeDragGesture::enter()
{
    m_clock.start();
    collect();
}

void OssNgNodeDragGesture::collect()
{
    const QVector<OssNgNode *> nodes = nodesMovedWithSelection(host()->graphScene());
    for (OssNgNode *node : nodes) {
        m_moved.append({node, node->pos()});
        node->keepOutOfWires(false);
    }
}

QPointF OssNgNodeDragGesture::snapped(const QPointF &offset) const
{
    if (!host()->isSnapToGridOn() || !m_pressed)
        return offset;
    for (const Moved &moved : m_moved) {
        if (moved.node != m_pressed)
            continue;
        const auto round = [](qreal value) {
            return std::round(value / OssNgStyle::GridStep) * OssNgStyle::GridStep;
        };
        const QPointF wanted = moved.start + offset;
        return QPointF(round(wanted.x()), round(wanted.y())) - moved.start;
    }
    return offset;
}

void OssNgNodeDragGesture::moveBy(const QPointF &offset)
{
    for (const Moved &moved : qAsConst(m_moved)) {
        if (moved.node)
            moved.node->setPosition(moved.start + offset);
    }
}

void OssNgNodeDragGesture::move(QMouseEvent *event)
{
    const QPointF offset = host()->toScene(event->localPos()) - m_startScene;
    if (!m_dragging) {
        if ((offset * host()->zoom()).manhattanLength() < QApplication::startDragDistance())
            return;
        m_dragging = true;
        if (host()->shakeRule().enabled
            && host()->cursorTrackingMode() == OssNgGestureHost::NormalTracking)
            host()->setCursorTrackingMode(OssNgGestureHost::ShakeTracking);
    }
    moveBy(snapped(offset));
    previewInsertion();
    previewBackdrops();
    watchShake(event->localPos());
}

OssNgEdge *OssNgNodeDragGesture::insertionTarget() const
{
    if (!m_pressed || m_moved.size() != 1)
        return nullptr;
    // Shaken and brought back it was not moved.
    const QLineF way(m_moved.first().start, m_pressed->pos());
    OssNgEdge *edge = way.length() < OssNgGestureHost::LeastMove ? nullptr
                                                                 : m_pressed->autoinsertCandidate();
    if (!edge)
        return nullptr;
    const bool cameFrom = m_shakenFrom.contains({edge->destination(), edge->destinationInput()});
    return cameFrom ? nullptr : edge;
}

void OssNgNodeDragGesture::rememberConsumers()
{
    for (const Moved &moved : qAsConst(m_moved)) {
        const QList<OssNgEdge *> outputs = moved.node ? moved.node->outputs()
                                                      : QList<OssNgEdge *>();
        for (const OssNgEdge *edge : outputs)
            m_shakenFrom.append({edge->destination(), edge->destinationInput()});
    }
}

void OssNgNodeDragGesture::previewInsertion()
{
    OssNgEdge *candidate = insertionTarget();
    OssNgEdge *shown = m_previewedDestination ? m_previewedDestination->input(m_previewedInput)
                                              : nullptr;
    if (shown == candidate)
        return;
    endPreview();
    if (!candidate)
        return;
    candidate->setMark(OssNgEdge::Inviting, true);
    m_previewedDestination = candidate->destination();
    m_previewedInput = candidate->destinationInput();
}

void OssNgNodeDragGesture::endPreview()
{
    OssNgEdge *shown = m_previewedDestination ? m_previewedDestination->input(m_previewedInput)
                                              : nullptr;
    if (shown)
        shown->setMark(OssNgEdge::Inviting, false);
    m_previewedDestination = nullptr;
}

/// Along with a backdrop that is moved.
bool OssNgNodeDragGesture::isCarried(const OssNgNode *node) const
{
    return std::any_of(m_moved.cbegin(), m_moved.cend(), [node](const Moved &moved) {
        const auto *backdrop = qobject_cast<const OssNgBackdropNode *>(moved.node.data());
        return backdrop && backdrop != node
               && backdrop->sceneBoundingRect().contains(node->sceneBoundingRect());
    });
}

void OssNgNodeDragGesture::previewBackdrops()
{
    QVector<QPointer<OssNgBackdropNode>> inviting;
    for (const Moved &moved : qAsConst(m_moved)) {
        if (!moved.node || isCarried(moved.node))
            continue;
        const QPointer<OssNgBackdropNode> backdrop = OssNgBackdropNode::under(moved.node);
        if (backdrop && !inviting.contains(backdrop))
            inviting.append(backdrop);
    }
    if (inviting == m_inviting)
        return;
    endInvitations();
    m_inviting = inviting;
    for (OssNgBackdropNode *backdrop : qAsConst(m_inviting))
        backdrop->setInviting(true);
}

void OssNgNodeDragGesture::endInvitations()
{
    for (OssNgBackdropNode *backdrop : qAsConst(m_inviting)) {
        if (backdrop && backdrop->isInviting())
            backdrop->setInviting(false);
    }
    m_inviting.clear();
}

bool OssNgNodeDragGesture::isWatchingShakes() const
{
    return m_dragging && host()->shakeRule().enabled
           && host()->cursorTrackingMode() == OssNgGestureHost::ShakeTracking;
}

QRectF OssNgNodeDragGesture::shakeCounterRect() const
{
    const QSizeF size(CounterStep * std::max(1, host()->shakeRule().reversals), CounterStep);
    return QRectF(m_pointer + CounterOffset, size).adjusted(-2.0, -2.0, 2.0, 2.0);
}

void OssNgNodeDragGesture::watchShake(const QPointF &position)
{
    const QRectF before = shakeCounterRect();
    const int countBefore = m_shakes.count();
    m_pointer = position;
    if (!isWatchingShakes())
        return;
    const int count = m_shakes.move(position, m_clock.elapsed(), host()->shakeRule().time);
    if (count > 0 || countBefore > 0)
        host()->canvas()->update((before | shakeCounterRect()).toAlignedRect());
    if (count < std::max(1, host()->shakeRule().reversals))
        return;
    m_shakes.reset();
    rememberConsumers();
    host()->announceShake();
}

void OssNgNodeDragGesture::paint(QPainter *painter) const
{
    if (!isWatchingShakes() || m_shakes.count() == 0)
        return;
    const QColor accent = OssNgStyle::instance()->color(OssNgStyle::Role::Accent);
    const QRectF place = shakeCounterRect();
    painter->setPen(QPen(accent, 1.2));
    for (int i = 0; i < std::max(1, host()->shakeRule().reversals); ++i) {
        painter->setBrush(i < m_shakes.count() ? QBrush(accent) : QBrush(Qt::NoBrush));
        const QPointF centre(place.left() + 2.0 + CounterStep * (i + 0.5), place.center().y());
        painter->drawEllipse(centre, 3.5, 3.5);
    }
}

void OssNgNodeDragGesture::endTracking()
{
    endPreview();
    endInvitations();
    host()->canvas()->update(shakeCounterRect().toAlignedRect());
    if (host()->cursorTrackingMode() == OssNgGestureHost::ShakeTracking)
        host()->setCursorTrackingMode(OssNgGestureHost::NormalTracking);
}

void OssNgNodeDragGesture::release(QMouseEvent *event)
{
    endTracking();
    if (!m_dragging) {
        // A click on one of several selected nodes means that one.
        const bool plain = !(event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier));
        if (plain && m_deselectOthersOnClick && m_pressed
            && host()->graphScene()->selectedItems().size() > 1) {
            host()->graphScene()->clearSelection();
            m_pressed->setSelected(true);
        }
        return;
    }
    const bool inserts = insertionTarget() != nullptr;
    for (const Moved &moved : qAsConst(m_moved)) {
        if (moved.node)
            moved.node->keepOutOfWires(!inserts);
    }
    for (const Moved &moved : qAsConst(m_moved)) {
        if (moved.node && !moved.node->isAt(moved.start))
            Q_EMIT moved.node->posChanged(moved.node->pos());
    }
}

void OssNgNodeDragGesture::cancel()
{
    endTracking();
    moveBy({});
}
