#include "OssNodeGraph/OssNgNodeDragGesture.h"

#include "OssNodeGraph/OssNgBackdropNode.h"
#include "OssNodeGraph/OssNgEdge.h"
#include "OssNodeGraph/OssNgStyle.h"
#include "OssNodeGraph/OssNgView.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal ShakeWay = 12.0; ///< pixels in one direction that count as a movement

} // namespace

OssNgNodeDragGesture::OssNgNodeDragGesture(OssNgView *view, Qt::MouseButton button,
                                           const QPointF &start, OssNgNode *pressed,
                                           bool wasSelected)
    : OssNgGesture(view, button)
    , m_startScene(view->toScene(start))
    , m_pressed(pressed)
    , m_deselectOthersOnClick(wasSelected)
    , m_turn(start.x())
{
}

int OssNgNodeDragGesture::state() const
{
    return OssNgView::Idle;
}

void OssNgNodeDragGesture::enter()
{
    m_clock.start();
    collect();
}

void OssNgNodeDragGesture::collect()
{
    QSet<OssNgNode *> seen;
    const auto take = [&](OssNgNode *node) {
        if (!node || seen.contains(node))
            return;
        seen.insert(node);
        m_moved.append({node, node->pos()});
    };
    const QList<QGraphicsItem *> selected = view()->scene()->selectedItems();
    for (QGraphicsItem *item : selected) {
        auto *node = dynamic_cast<OssNgNode *>(item);
        take(node);
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(node)) {
            backdrop->refreshChildrenList();
            for (const QPointer<OssNgNode> &child : backdrop->childrenList())
                take(child);
        }
    }
}

QPointF OssNgNodeDragGesture::snapped(const QPointF &offset) const
{
    if (!view()->isSnapToGridOn() || !m_pressed)
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
    const QPointF offset = view()->toScene(event->localPos()) - m_startScene;
    if (!m_dragging) {
        if ((offset * view()->zoom()).manhattanLength() < QApplication::startDragDistance())
            return;
        m_dragging = true;
        if (view()->m_shakeToExtractEnabled
            && view()->cursorTrackingMode() == OssNgView::NormalTracking)
            view()->setCursorTrackingMode(OssNgView::ShakeTracking);
    }
    moveBy(snapped(offset));
    previewInsertion();
    watchShake(event->localPos());
}

void OssNgNodeDragGesture::previewInsertion()
{
    OssNgEdge *candidate = nullptr;
    if (m_pressed && m_moved.size() == 1)
        candidate = m_pressed->autoinsertCandidate();
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

void OssNgNodeDragGesture::watchShake(const QPointF &position)
{
    if (!view()->m_shakeToExtractEnabled
        || view()->cursorTrackingMode() != OssNgView::ShakeTracking)
        return;
    const qreal way = position.x() - m_turn;
    const int direction = way > 0.0 ? 1 : -1;
    if (direction == m_direction) {
        m_turn = position.x(); // still on; the turn is wherever it stops
        return;
    }
    if (std::abs(way) < ShakeWay)
        return;
    const bool reversed = m_direction != 0;
    m_direction = direction;
    m_turn = position.x();
    if (!reversed)
        return;
    const qint64 now = m_clock.elapsed();
    m_reversals.append(now);
    while (!m_reversals.isEmpty() && now - m_reversals.first() > view()->m_shakeToExtractTime)
        m_reversals.removeFirst();
    if (m_reversals.size() < std::max(1, view()->m_shakeToExtractShakes))
        return;
    m_reversals.clear();
    Q_EMIT view()->shakeToExtractTriggered();
}

void OssNgNodeDragGesture::endTracking()
{
    endPreview();
    if (view()->cursorTrackingMode() == OssNgView::ShakeTracking)
        view()->setCursorTrackingMode(OssNgView::NormalTracking);
}

void OssNgNodeDragGesture::release(QMouseEvent *event)
{
    endTracking();
    if (!m_dragging) {
        // A click on one of several selected nodes means that one.
        const bool plain = !(event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier));
        if (plain && m_deselectOthersOnClick && m_pressed
            && view()->scene()->selectedItems().size() > 1) {
            view()->scene()->clearSelection();
            m_pressed->setSelected(true);
        }
        return;
    }
    for (const Moved &moved : qAsConst(m_moved)) {
        if (moved.node && moved.node->pos() != moved.start)
            Q_EMIT moved.node->posChanged(moved.node->pos());
    }
}

void OssNgNodeDragGesture::cancel()
{
    endTracking();
    moveBy({});
}
