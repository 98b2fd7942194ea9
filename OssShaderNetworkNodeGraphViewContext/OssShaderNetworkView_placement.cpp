#include "OssShaderNetworkView.h"

#include "NodePlacement.h"
#include "OssCore/OssDebug.h"
#include "OssCore/OssUndoManager.h"
#include "OssNodeGraph/OssNgBackdropNode.h"
#include "OssNodeGraph/OssNgBackdropNodeRectChangeUndo.h"
#include "OssNodeGraph/OssNgNode.h"
#include "OssNodeGraph/OssNgNodePositionChangeUndo.h"
#include "OssNodeGraph/OssNgSceneIndex.h"
#include "OssNodeGraph/OssNgStyle.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

namespace {

constexpr const char *Source = "OssShaderNetworkView";
constexpr int MaximumRelocations = 1000;

OssNgNode *itemOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContextManager::guiNodeOf(node);
}

QRectF occupied(const OssNgNode *item)
{
    return item->boundingRect().translated(item->pos());
}

/// The topmost node that collides with the item; backdrops do not count. Asks the scene's own
/// index: that of Qt looks at every item of the scene until the event loop has run.
OssNgNode *overlapped(const OssNgNode *guiNode, QGraphicsScene *scene)
{
    const QVector<OssNgNode *> near = OssNgSceneIndex::of(scene)->nodesIn(
        guiNode->sceneBoundingRect());
    for (auto other = near.crbegin(); other != near.crend(); ++other) {
        if (*other != guiNode && !qobject_cast<OssNgBackdropNode *>(*other)
            && guiNode->collidesWithItem(*other, Qt::IntersectsItemShape))
            return *other;
    }
    return nullptr;
}

} // namespace

void OssShaderNetworkView::placeNode(OssSnBaseNode *node)
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    OssNgNode *guiNode = itemOf(node);
    if (!guiNode)
        return;
    int relocations = 0;
    while (relocations < MaximumRelocations) {
        const OssNgNode *other = overlapped(guiNode, scene());
        if (!other)
            break;
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

void OssShaderNetworkView::moveNode(OssNgNode *guiNode, const QPointF &position)
{
    if (guiNode->pos() == position)
        return;
    guiNode->savePosition();
    guiNode->setPosition(position);
    OssUndoManager::instance()->addUndo(std::make_unique<OssNgNodePositionChangeUndo>(guiNode));
}

void OssShaderNetworkView::relocateNodeBeside(OssNgNode *guiNode, const OssNgNode *other)
{
    if (guiNode && other)
        moveNode(guiNode, NodePlacement::beside(occupied(other)));
}

void OssShaderNetworkView::positionNodeManual(OssSnBaseNode *node, OssSnBaseNode *reference,
                                              const QPointF &offset)
{
    OssNgNode *item = itemOf(node);
    const OssNgNode *other = itemOf(reference);
    if (item && other)
        moveNode(item, other->pos() + offset);
}

void OssShaderNetworkView::positionNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *reference,
                                                  int factor)
{
    OssNgNode *item = itemOf(node);
    const OssNgNode *other = itemOf(reference);
    if (item && other)
        moveNode(item,
                 NodePlacement::underneath(occupied(other), item->boundingRect().center(), factor));
}

QPointF OssShaderNetworkView::freeSpot() const
{
    const OssNgStyle *style = OssNgStyle::instance();
    return NodePlacement::freeSpot(scene() ? scene()->itemsBoundingRect() : QRectF(),
                                   style->verticalSpacing(), style->extraVerticalSpacing());
}

void OssShaderNetworkView::positionNodeAtFreeSpot(OssSnBaseNode *node)
{
    if (OssNgNode *item = itemOf(node))
        moveNode(item, freeSpot());
}

void OssShaderNetworkView::positionNodeOnGrid(OssSnBaseNode *node, OssSnBaseNode *reference,
                                              int column, int row, bool freshCoordinates)
{
    OssNgNode *item = itemOf(node);
    if (!item)
        return;
    const QSizeF own = item->boundingRect().size();
    const OssNgNode *other = itemOf(reference);
    const QRectF from = other ? occupied(other) : QRectF(freeSpot(), own);
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

void OssShaderNetworkView::positionNodeBesideReference(OssSnBaseNode *node,
                                                       OssSnBaseNode *reference)
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

// --- containers

void OssShaderNetworkView::positionNodeNextTo(OssSnBaseNode *node, OssSnBaseNode *reference)
{
    if (!scene()) {
        OssDebug(Source, __LINE__, "scene() is NULL");
        return;
    }
    OssNgNode *item = itemOf(node);
    if (!item)
        return;
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(item);
    if (!backdrop) {
        OssDebug(Source, __LINE__, "[ !! ] Invalid container gui node found for node '%s'",
                 qPrintable(node->name()));
        return;
    }
    const OssNgNode *other = itemOf(reference);
    if (!other)
        return;
    const QRectF there = occupied(other);
    if (qobject_cast<const OssNgBackdropNode *>(other)) {
        moveNode(backdrop, {there.x() + there.width() + NodePlacement::Gap, there.y()});
        return;
    }
    const qreal x = NodePlacement::besideForContainer(there,
                                                      OssNgStyle::instance()->horizontalSpacing());
    moveNode(backdrop, {x, backdrop->y()});
}

void OssShaderNetworkView::stretchContainer(OssNgBackdropNode *backdrop, const QRectF &sceneRect)
{
    const QRectF before = backdrop->rect().translated(backdrop->pos());
    const qreal margin = backdrop->titleBarHeight();
    const QRectF wanted = before.united(sceneRect.adjusted(-margin, -2.0 * margin, margin, margin));
    if (wanted == before)
        return;
    OssDebug(Source, __LINE__, "* Stretch out container node '%s'",
             qPrintable(backdrop->titleText()));
    moveNode(backdrop, wanted.topLeft());
    backdrop->saveBoundingRect();
    backdrop->setRect({QPointF(), wanted.size()});
    OssUndoManager::instance()->addUndo(
        std::make_unique<OssNgBackdropNodeRectChangeUndo>(backdrop));
}

void OssShaderNetworkView::syncNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *container,
                                              OssSnBaseNode *reference,
                                              OssSnBaseNode *referenceContainer)
{
    const OssNgNode *item = itemOf(node);
    if (!item || !itemOf(reference))
        return;
    positionNodeUnderneath(node, reference, 1);
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(container));
    if (!backdrop)
        return;
    QRectF content = occupied(item);
    const OssNgNode *inner = itemOf(referenceContainer);
    if (inner && inner != backdrop
        && backdrop->nodesInside().contains(const_cast<OssNgNode *>(inner)))
        content |= occupied(inner);
    stretchContainer(backdrop, content);
}

void OssShaderNetworkView::uniformariseContainers(const QList<OssSnBaseNode *> &containers)
{
    struct Widest
    {
        QString name;
        qreal width = 0.0;
    };

    Widest masks;
    Widest adjustments;
    qreal furthest = 0.0;
    QList<OssNgBackdropNode *> backdrops;
    for (const OssSnBaseNode *container : containers) {
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(container));
        if (!backdrop)
            continue;
        const QRectF there = occupied(backdrop);
        furthest = backdrops.isEmpty() ? there.right() : std::max(furthest, there.right());
        backdrops.append(backdrop);
        Widest &kind = container->hasTag(QStringLiteral("_maskStack")) ? masks : adjustments;
        if (there.width() > kind.width)
            kind = {container->name(), there.width()};
    }
    OssDebug(Source, __LINE__,
             "[ -- ] WidestMaskStackNode : '%s', WidestAdjustmentStackNode : '%s', FurthestX : %f",
             qPrintable(masks.name), qPrintable(adjustments.name), furthest);
    for (OssNgBackdropNode *backdrop : qAsConst(backdrops)) {
        const QSizeF size(furthest - backdrop->x(), backdrop->rect().height());
        if (size == backdrop->rect().size())
            continue;
        backdrop->saveBoundingRect();
        backdrop->setRect({QPointF(), size});
        OssUndoManager::instance()->addUndo(
            std::make_unique<OssNgBackdropNodeRectChangeUndo>(backdrop));
    }
}
