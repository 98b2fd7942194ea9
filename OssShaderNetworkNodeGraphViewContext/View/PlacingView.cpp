#include "View/PlacingView.h"

#include "Layout/NodePlacement.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QLineF>

#include <algorithm>

namespace {

constexpr const char *Source = "OssShaderNetworkView";
constexpr int MaximumRelocations = 1000;

/// The topmost node that collides with the item; backdrops do not count. Asks the scene's own
/// index: that of Qt looks at every item of the scene until the event loop has run.
OssNgNode *overlapped(const OssNgNode *guiNode)
{
    const QVector<OssNgNode *> near = OssNgSceneIndex::of(guiNode->scene())
                                          ->nodesIn(guiNode->sceneBoundingRect());
    for (auto other = near.crbegin(); other != near.crend(); ++other) {
        if (*other != guiNode && !qobject_cast<OssNgBackdropNode *>(*other)
            && guiNode->collidesWithItem(*other, Qt::IntersectsItemShape))
            return *other;
    }
    return nullptr;
}

} // namespace

void PlacingView::placeNode(OssSnBaseNode *node)
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    OssNgNode *guiNode = itemOf(node);
    if (!guiNode || !guiNode->scene())
        return;
    int relocations = 0;
    while (relocations < MaximumRelocations) {
        const OssNgNode *other = overlapped(guiNode);
        if (!other)
            break;
        OssDebugName(other, other->text());
        OssDebugName(guiNode, guiNode->text());
        OssDebug(Source, __LINE__,
                 "[ -- ] Found overlapping node %p, '%s', will relocate THIS node (%p, '%s') ",
                 static_cast<const void *>(other), qPrintable(other->text()),
                 static_cast<void *>(guiNode), qPrintable(guiNode->text()));
        relocateNodeBeside(guiNode, other);
        ++relocations;
    }
    if (relocations > 0)
        Q_EMIT guiNode->posChanged(guiNode->pos());
}

void PlacingView::placeNodeInSight(OssSnBaseNode *node)
{
    OssNgNode *item = itemOf(node);
    if (!item || !item->scene())
        return;
    const QPointF wanted = item->pos();
    placeNode(node);
    const QRectF seen = viewportInSceneCoords();
    const qreal far = std::min(seen.width(), seen.height()) / 2.0;
    const QRectF map = minimapInScene();
    const bool isNear = QLineF(wanted, item->pos()).length() <= far && isInSight(item);
    if (item->isAt(wanted) || isNear)
        return;
    QVector<QRectF> obstacles{map};
    const QVector<OssNgNode *> around = OssNgSceneIndex::of(item->scene())->nodesIn(seen);
    for (const OssNgNode *other : around) {
        if (other != item && !qobject_cast<const OssNgBackdropNode *>(other))
            obstacles.append(occupied(other));
    }
    const QRectF own = item->boundingRect();
    const auto place = NodePlacement::nearestFree(wanted + own.topLeft(), own.size(), obstacles,
                                                  seen);
    if (place) {
        moveNode(item, *place - own.topLeft());
        Q_EMIT item->posChanged(item->pos());
    } else {
        ensureVisible(item, 0, 0);
    }
}

void PlacingView::bringInSight(const OssSnBaseNode *node)
{
    const OssNgNode *item = itemOf(node);
    if (item && item->scene() == scene() && !isInSight(item))
        centerViewOn(occupied(item).center(), true);
}

QRectF PlacingView::minimapInScene() const
{
    return isMinimapVisible()
               ? QRectF(toScene(minimapRect().topLeft()), toScene(minimapRect().bottomRight()))
               : QRectF();
}

bool PlacingView::isInSight(const OssNgNode *item) const
{
    return viewportInSceneCoords().contains(occupied(item))
           && !minimapInScene().intersects(occupied(item));
}

OssNgNode *PlacingView::itemOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContextManager::guiNodeOf(node);
}

QRectF PlacingView::occupied(const OssNgNode *item)
{
    return item->boundingRect().translated(item->pos());
}

void PlacingView::moveNode(OssNgNode *guiNode, const QPointF &position)
{
    if (guiNode->isAt(position))
        return;
    guiNode->savePosition();
    guiNode->setPosition(position);
    OssUndoManager::instance()->addUndo(std::make_unique<OssNgNodePositionChangeUndo>(guiNode));
}

void PlacingView::relocateNodeBeside(OssNgNode *guiNode, const OssNgNode *other)
{
    if (guiNode && other)
        moveNode(guiNode, NodePlacement::beside(occupied(other)));
}

void PlacingView::positionNodeManual(OssSnBaseNode *node, OssSnBaseNode *reference,
                                     const QPointF &offset)
{
    OssNgNode *item = itemOf(node);
    const OssNgNode *other = itemOf(reference);
    if (item && other)
        moveNode(item, other->pos() + offset);
}

void PlacingView::positionNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *reference, int factor)
{
    OssNgNode *item = itemOf(node);
    const OssNgNode *other = itemOf(reference);
    if (item && other)
        moveNode(item,
                 NodePlacement::underneath(occupied(other), item->boundingRect().center(), factor));
}

QPointF PlacingView::freeSpotFor(const OssNgNode *item)
{
    const OssNgStyle *style = OssNgStyle::instance();
    return NodePlacement::freeSpot(item->scene() ? item->scene()->itemsBoundingRect() : QRectF(),
                                   style->verticalSpacing(), style->extraVerticalSpacing());
}

void PlacingView::positionNodeAtFreeSpot(OssSnBaseNode *node)
{
    if (OssNgNode *item = itemOf(node))
        moveNode(item, freeSpotFor(item));
}

void PlacingView::positionNodeOnGrid(OssSnBaseNode *node, OssSnBaseNode *reference, int column,
                                     int row, bool freshCoordinates)
{
    OssNgNode *item = itemOf(node);
    if (!item)
        return;
    const QSizeF own = item->boundingRect().size();
    const OssNgNode *other = itemOf(reference);
    const QRectF from = other ? occupied(other) : QRectF(freeSpotFor(item), own);
    const OssNgStyle *style = OssNgStyle::instance();
    QPointF position = NodePlacement::onGrid(
        from, own, {column, row},
        {style->horizontalSpacing(), style->verticalSpacing() + style->extraVerticalSpacing()});
    if (!freshCoordinates && column == 0 && row != 0)
        position.setX(item->x());
    if (!freshCoordinates && row == 0 && column != 0)
        position.setY(item->y());
    moveNode(item, position);
}

void PlacingView::positionNodeBesideReference(OssSnBaseNode *node, OssSnBaseNode *reference)
{
    OssNgNode *item = itemOf(node);
    const OssNgNode *other = itemOf(reference);
    if (!item || !other)
        return;
    const bool flipped = OssSnNodeGraphViewContextManager::contextOf(node)->portListMode()
                         == OssNgExtendedNode::NoPortList;
    moveNode(item,
             NodePlacement::nextInStream(occupied(other), item->boundingRect().size(), flipped));
}
