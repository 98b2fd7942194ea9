#include "OssNodeGraph/Gestures/OssNgRubberBandGesture.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Gestures/OssNgGestureHost.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPainter>
#include <QSet>
#include <QWidget>

namespace {

/// Leaves alone what is selected already, so that only changes are heard of.
void applySelection(QGraphicsScene *scene, const QSet<QGraphicsItem *> &wanted)
{
    const QList<QGraphicsItem *> selected = scene->selectedItems();
    for (QGraphicsItem *item : selected) {
        if (!wanted.contains(item))
            item->setSelected(false);
    }
    for (QGraphicsItem *item : wanted) {
        if (!item->isSelected() && item->scene() == scene)
            item->setSelected(true);
    }
}

} // namespace

OssNgRubberBandGesture::OssNgRubberBandGesture(OssNgGestureHost *host, Qt::MouseButton button,
                                               const QPointF &start, bool extend)
    : OssNgGesture(host, button)
    , m_startScene(host->toScene(start))
    , m_current(start)
    , m_extend(extend)
{
}

int OssNgRubberBandGesture::state() const
{
    return OssNgGestureHost::RubberBand;
}

void OssNgRubberBandGesture::enter()
{
    m_before = host()->graphScene()->selectedItems();
    if (!m_extend)
        host()->graphScene()->clearSelection();
}

QRectF OssNgRubberBandGesture::band() const
{
    return QRectF(host()->fromScene(m_startScene), m_current).normalized();
}

void OssNgRubberBandGesture::repaintBand(const QRectF &old) const
{
    host()->canvas()->update((old | band()).toAlignedRect().adjusted(-2, -2, 2, 2));
}

void OssNgRubberBandGesture::move(QMouseEvent *event)
{
    const QRectF old = band();
    m_current = event->localPos();
    const QPointF way = m_current - host()->fromScene(m_startScene);
    if (!m_moved && way.manhattanLength() < QApplication::startDragDistance())
        return;
    m_moved = true;
    repaintBand(old);
    select(QRectF(m_startScene, host()->toScene(m_current)).normalized());
}

void OssNgRubberBandGesture::release(QMouseEvent *)
{
    repaintBand(band());
}

void OssNgRubberBandGesture::cancel()
{
    const QList<QGraphicsItem *> alive = host()->graphScene()->items();
    const QSet<QGraphicsItem *> known(alive.cbegin(), alive.cend());
    host()->graphScene()->clearSelection();
    for (QGraphicsItem *item : qAsConst(m_before)) {
        if (known.contains(item))
            item->setSelected(true);
    }
    repaintBand(band());
}

void OssNgRubberBandGesture::select(const QRectF &sceneBand)
{
    const OssNgSceneIndex *index = OssNgSceneIndex::of(host()->graphScene());
    QSet<QGraphicsItem *> wanted;
    const QVector<OssNgNode *> nodes = index->nodesIn(sceneBand);
    for (OssNgNode *node : nodes) {
        // A backdrop is meant when it lies inside whole; bands are drawn on backdrops all the time.
        if (!node->isBackground() || sceneBand.contains(node->sceneBoundingRect()))
            wanted.insert(node);
    }
    if (wanted.isEmpty()) {
        // Wires only where no node is meant: selected wires count as items of the selection.
        const QVector<OssNgEdge *> edges = index->edgesIn(sceneBand);
        for (OssNgEdge *edge : edges) {
            if (edge->isFullConnected() && edge->path().intersects(sceneBand))
                wanted.insert(edge);
        }
    }
    if (m_extend) {
        for (QGraphicsItem *item : qAsConst(m_before))
            wanted.insert(item);
    }
    applySelection(host()->graphScene(), wanted);
}

void OssNgRubberBandGesture::paint(QPainter *painter) const
{
    if (!m_moved)
        return;
    QColor color = OssNgStyle::instance()->color(OssNgStyle::Role::Accent);
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setPen(QPen(color, 1.0));
    color.setAlphaF(0.12);
    painter->setBrush(color);
    painter->drawRect(band().toAlignedRect());
}
