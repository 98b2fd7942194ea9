#include "View/PlacingView.h"

#include "Layout/ContainerPlacement.h"
#include "Layout/NodePlacement.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"

#include <algorithm>

// Backdrops as containers of nodes.

namespace {

constexpr const char *Source = "OssShaderNetworkView";

} // namespace

void PlacingView::resizeBackdrop(OssNgBackdropNode *backdrop, const QSizeF &size)
{
    if (size == backdrop->rect().size())
        return;
    backdrop->saveBoundingRect();
    backdrop->setRect({QPointF(), size});
    OssUndoManager::instance()->addUndo(
        std::make_unique<OssNgBackdropNodeRectChangeUndo>(backdrop));
}

void PlacingView::positionNodeNextTo(OssSnBaseNode *node, OssSnBaseNode *reference)
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

void PlacingView::stretchContainer(OssNgBackdropNode *backdrop, const QRectF &sceneRect)
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

void PlacingView::syncNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *container,
                                     OssSnBaseNode *reference, OssSnBaseNode *referenceContainer)
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

void PlacingView::uniformariseContainers(const QList<OssSnBaseNode *> &containers)
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
        Widest &kind = container->hasTag(OssSnTags::maskStack()) ? masks : adjustments;
        if (there.width() > kind.width)
            kind = {container->name(), there.width()};
    }
    OssDebug(Source, __LINE__,
             "[ -- ] WidestMaskStackNode : '%s', WidestAdjustmentStackNode : '%s', FurthestX : %f",
             qPrintable(masks.name), qPrintable(adjustments.name), furthest);
    for (OssNgBackdropNode *backdrop : qAsConst(backdrops)) {
        resizeBackdrop(backdrop, {furthest - backdrop->x(), backdrop->rect().height()});
    }
}

OssNgBackdropNode *PlacingView::backdropOf(const OssSnBaseNode *container)
{
    OssNgNode *item = itemOf(container);
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(item);
    if (item && !backdrop)
        OssDebug(Source, __LINE__, "[ !! ] Invalid container gui node found for node '%s'",
                 qPrintable(container->name()));
    return backdrop;
}

void PlacingView::moveContainer(OssNgBackdropNode *backdrop, const QPointF &way)
{
    const auto *node = qobject_cast<const OssSnBaseNode *>(backdrop->businessNode());
    const QList<OssSnBaseNode *> carried = node ? Backdrops::carriedBy(node)
                                                : QList<OssSnBaseNode *>();
    moveNode(backdrop, backdrop->pos() + way);
    for (const OssSnBaseNode *other : carried)
        moveNode(itemOf(other), itemOf(other)->pos() + way);
}

void PlacingView::holdInContainer(OssSnBaseNode *container, const QList<OssSnBaseNode *> &members,
                                  bool exactly)
{
    OssNgBackdropNode *backdrop = backdropOf(container);
    if (!backdrop)
        return;
    QRectF content;
    for (const OssSnBaseNode *member : members) {
        if (const OssNgNode *item = itemOf(member))
            content |= occupied(item);
    }
    if (content.isEmpty())
        return;
    const OssUndoManager::AutoMacro macro(tr("Refresh Container"));
    if (exactly) {
        const QRectF area = ContainerPlacement::around(content, backdrop->titleBarHeight());
        moveNode(backdrop, area.topLeft());
        resizeBackdrop(backdrop, area.size());
    } else {
        stretchContainer(backdrop, content);
    }
    backdrop->refreshChildrenList();
}

void PlacingView::stretchContainerBy(OssSnBaseNode *container, OssSnBaseNode *reference)
{
    OssNgBackdropNode *backdrop = backdropOf(container);
    const OssNgNode *item = itemOf(reference);
    if (!backdrop || !item)
        return;
    const OssUndoManager::AutoMacro macro(tr("Stretch Container"));
    stretchContainer(backdrop, occupied(item));
}

void PlacingView::stretchPeers(const QList<OssSnBaseNode *> &containers)
{
    QList<OssNgBackdropNode *> backdrops;
    qreal width = 0.0;
    for (const OssSnBaseNode *container : containers) {
        OssNgBackdropNode *backdrop = backdropOf(container);
        if (!backdrop)
            continue;
        backdrops.append(backdrop);
        width = std::max(width, backdrop->rect().width());
    }
    const OssUndoManager::AutoMacro macro(tr("Stretch Containers"));
    for (OssNgBackdropNode *backdrop : qAsConst(backdrops))
        resizeBackdrop(backdrop, {width, backdrop->rect().height()});
}

void PlacingView::respaceContainer(OssSnBaseNode *container, OssSnBaseNode *reference)
{
    OssNgBackdropNode *backdrop = backdropOf(container);
    const OssNgNode *item = itemOf(reference);
    if (!backdrop || !item)
        return;
    // What lies on another backdrop goes where that goes.
    QList<OssNgNode *> members = backdrop->nodesInside();
    const QList<OssNgNode *> all = members;
    for (OssNgNode *inner : all) {
        const auto *holder = qobject_cast<const OssNgBackdropNode *>(inner);
        const QList<OssNgNode *> held = holder ? holder->nodesInside() : QList<OssNgNode *>();
        for (OssNgNode *node : held) {
            if (node != backdrop && !node->sceneBoundingRect().contains(inner->sceneBoundingRect()))
                members.removeOne(node);
        }
    }
    QVector<QRectF> rects;
    for (const OssNgNode *member : qAsConst(members))
        rects.append(occupied(member));
    const QVector<qreal> shifts = ContainerPlacement::respaced(rects, occupied(item));
    const OssUndoManager::AutoMacro macro(tr("Respace Container"));
    QRectF content = occupied(item);
    for (int i = 0; i < members.size(); ++i) {
        const QPointF way(0.0, shifts.at(i));
        if (auto *inner = qobject_cast<OssNgBackdropNode *>(members.at(i)))
            moveContainer(inner, way);
        else
            moveNode(members.at(i), members.at(i)->pos() + way);
        content |= occupied(members.at(i));
    }
    stretchContainer(backdrop, content);
}

void PlacingView::refreshMembership(OssSnBaseNode *node)
{
    Backdrops::refreshMembership(node);
}

void PlacingView::moveContainerDown(OssSnBaseNode *container, OssSnBaseNode *reference)
{
    OssNgBackdropNode *backdrop = backdropOf(container);
    const OssNgNode *item = itemOf(reference);
    if (!backdrop || !item)
        return;
    const OssUndoManager::AutoMacro macro(tr("Move Container"));
    moveContainer(backdrop,
                  {0.0, ContainerPlacement::belowShift(occupied(backdrop), occupied(item))});
}

void PlacingView::moveContainerToFreshLocation(OssSnBaseNode *container, bool preserveY)
{
    OssNgBackdropNode *backdrop = backdropOf(container);
    if (!backdrop || !backdrop->scene())
        return;
    const QList<OssNgNode *> members = backdrop->nodesInside();
    QRectF everything;
    for (const auto &entry : OssNgSceneIndex::of(backdrop->scene())->nodeEntries()) {
        if (entry.node && entry.visible && entry.node != backdrop && !members.contains(entry.node))
            everything |= occupied(entry.node);
    }
    const QPointF place = ContainerPlacement::freshLocation(occupied(backdrop), everything,
                                                            preserveY);
    const OssUndoManager::AutoMacro macro(tr("Move Container"));
    moveContainer(backdrop, place - backdrop->pos());
}
