#include "OssNodeGraph/Gestures/OssNgRubberBandGesture.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Index/OssNgSceneIndex.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QApplication>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QPainter>
#include <QSet>

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

OssNgRubberBandGesture::OssNgRubberBandGesture(OssNgView *view, Qt::MouseButton button,
                                               const QPointF &start, bool extend)
    : OssNgGesture(view, button)
    , m_startScene(view->toScene(start))
    , m_current(start)
    , m_extend(extend)
{
}

int OssNgRubberBandGesture::state() const
{
    return OssNgView::RubberBand;
}

void OssNgRubberBandGesture::enter()
{
    m_before = view()->scene()->selectedItems();
    if (!m_extend)
        view()->scene()->clearSelection();
}

QRectF OssNgRubberBandGesture::band() const
{
    return QRectF(view()->fromScene(m_startScene), m_current).normalized();
}

void OssNgRubberBandGesture::repaintBand(const QRectF &old) const
{
    view()->viewport()->update((old | band()).toAlignedRect().adjusted(-2, -2, 2, 2));
}

void OssNgRubberBandGesture::move(QMouseEvent *event)
{
    const QRectF old = band();
    m_current = event->localPos();
    const QPointF way = m_current - view()->fromScene(m_startScene);
    if (!m_moved && way.manhattanLength() < QApplication::startDragDistance())
        return;
    m_moved = true;
    repaintBand(old);
    select(QRectF(m_startScene, view()->toScene(m_current)).normalized());
}

void OssNgRubberBandGesture::release(QMouseEvent *)
{
    repaintBand(band());
}

void OssNgRubberBandGesture::cancel()
{
    const QList<QGraphicsItem *> alive = view()->scene()->items();
    const QSet<QGraphicsItem *> known(alive.cbegin(), alive.cend());
    view()->scene()->clearSelection();
    for (QGraphicsItem *item : qAsConst(m_before)) {
        if (known.contains(item))
            item->setSelected(true);
    }
    repaintBand(band());
}

void OssNgRubberBandGesture::select(const QRectF &sceneBand)
{
    const OssNgSceneIndex *index = view()->sceneIndex();
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
    applySelection(view()->scene(), wanted);
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
