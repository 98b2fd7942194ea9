#include "OssNodeGraph/Gestures/OssNgRoomGesture.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgGestureHost.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"

#include <QCoreApplication>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <limits>

OssNgRoomGesture::OssNgRoomGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                   const QPointF &start)
    : OssNgGesture(host, button)
    , m_start(host->toScene(start))
{
    host->canvas()->setCursor(Qt::SizeAllCursor);
}

namespace {

QRectF areaOf(const OssNgNode *node)
{
    const auto *backdrop = qobject_cast<const OssNgBackdropNode *>(node);
    return (backdrop ? backdrop->rect() : node->boundingRect()).translated(node->pos());
}

void save(OssNgNode *node)
{
    node->savePosition();
    if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(node))
        backdrop->saveBoundingRect();
}

} // namespace

int OssNgRoomGesture::state() const
{
    return OssNgGestureHost::MakingRoom;
}

/// What moves or grows when there is room made at the line; a node that only reaches across stays.
std::optional<OssNgRoomGesture::Part> OssNgRoomGesture::partOf(OssNgNode *node, qreal line) const
{
    const bool isBackdrop = qobject_cast<OssNgBackdropNode *>(node) != nullptr;
    const QRectF area = areaOf(node);
    const bool isAcross = startOf(area) < line;
    if (isAcross && (!isBackdrop || endOf(area) <= line))
        return {};
    return Part{node, area, isAcross};
}

void OssNgRoomGesture::begin(bool down)
{
    m_hasBegun = true;
    m_isDown = down;
    host()->canvas()->setCursor(down ? Qt::SplitVCursor : Qt::SplitHCursor);
    const qreal line = down ? m_start.y() : m_start.x();
    constexpr qreal Far = std::numeric_limits<qreal>::max();
    qreal nearest = Far;   // of what moves
    qreal furthest = line; // of what stays but reaches across
    const QList<QGraphicsItem *> items = host()->graphScene()->items();
    for (QGraphicsItem *item : items) {
        auto *node = dynamic_cast<OssNgNode *>(item);
        if (!node || !node->isVisible())
            continue;
        const std::optional<Part> part = partOf(node, line);
        if (part) {
            save(node);
            m_parts.append(*part);
            nearest = std::min(nearest, part->isAcross ? endOf(part->area) : startOf(part->area));
        } else if (!qobject_cast<OssNgBackdropNode *>(node)) {
            furthest = std::max(furthest, endOf(areaOf(node)));
        }
    }
    m_least = nearest < Far ? std::min(0.0, furthest - nearest) : 0.0;
}

void OssNgRoomGesture::spread(qreal by)
{
    m_by = by;
    const QPointF way = m_isDown ? QPointF(0.0, by) : QPointF(by, 0.0);
    for (const Part &part : qAsConst(m_parts)) {
        if (!part.node)
            continue;
        if (!part.isAcross) {
            part.node->setPosition(part.area.topLeft() + way);
        } else if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(part.node)) {
            const QSizeF size = part.area.size() + QSizeF(way.x(), way.y());
            backdrop->setRect({QPointF(), size});
        }
    }
}

void OssNgRoomGesture::move(QMouseEvent *event)
{
    const QPointF way = host()->toScene(event->localPos()) - m_start;
    if (!m_hasBegun
        && std::max(std::abs(way.x()), std::abs(way.y())) >= OssNgGestureHost::LeastMove)
        begin(std::abs(way.y()) > std::abs(way.x()));
    if (!m_hasBegun)
        return;
    qreal by = m_isDown ? way.y() : way.x();
    if (host()->isSnapToGridOn())
        by = std::round(by / OssNgStyle::GridStep) * OssNgStyle::GridStep;
    spread(std::max(by, m_least));
    host()->canvas()->update();
}

void OssNgRoomGesture::release(QMouseEvent *)
{
    host()->canvas()->update();
    if (m_by == 0.0)
        return;
    OssUndoManager::AutoMacro macro(QCoreApplication::translate("OssNgView", "Make Room"));
    for (const Part &part : qAsConst(m_parts)) {
        if (!part.node)
            continue;
        if (part.isAcross)
            macro.addUndo(
                new OssNgBackdropNodeRectChangeUndo(qobject_cast<OssNgBackdropNode *>(part.node)));
        else
            macro.addUndo(new OssNgNodePositionChangeUndo(part.node)); // the history takes it
    }
    for (const Part &part : qAsConst(m_parts)) {
        if (part.node)
            Q_EMIT part.node->posChanged(part.node->pos());
    }
}

void OssNgRoomGesture::cancel()
{
    if (m_hasBegun)
        spread(0.0);
    host()->canvas()->update();
}

void OssNgRoomGesture::paint(QPainter *painter) const
{
    const QPointF start = host()->fromScene(m_start);
    const QSizeF size = host()->canvas()->size();
    const qreal width = m_by * host()->zoom();
    const QRectF room = m_isDown ? QRectF(0.0, start.y(), size.width(), width)
                                 : QRectF(start.x(), 0.0, width, size.height());
    QColor color = OssNgStyle::instance()->color(OssNgStyle::Role::Accent);
    painter->setPen(QPen(color, 1.2, Qt::DashLine));
    if (m_isDown)
        painter->drawLine(QPointF(0.0, start.y()), QPointF(size.width(), start.y()));
    else
        painter->drawLine(QPointF(start.x(), 0.0), QPointF(start.x(), size.height()));
    color.setAlphaF(0.12);
    painter->fillRect(room.normalized(), color);
}
