#include "OssSnGroupNodeGraphViewContext.h"

#include "Layout/GroupPortPlacement.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"

#include <algorithm>

// The group's ports: their clusters on the item, and the nodes inside that stand for them.

namespace {

constexpr const char *Source = "OssSnGroupNodeGraphViewContext";

OssNgNode *itemOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContextManager::guiNodeOf(node);
}

void place(OssNgNode *item, const QPointF &position)
{
    if (item->isAt(position))
        return;
    item->savePosition();
    item->setPosition(position);
    OssUndoManager::instance()->addUndo(std::make_unique<OssNgNodePositionChangeUndo>(item));
}

QRectF occupied(const OssNgNode *item)
{
    return item->boundingRect().translated(item->pos());
}

const OssNgNode *feederOf(const OssNgNode *output)
{
    const QList<OssNgEdge *> wires = output->inputs();
    return wires.isEmpty() ? nullptr : wires.first()->source();
}

QVector<QRectF> framesOf(const QList<OssSnBaseNode *> &nodes)
{
    QVector<QRectF> frames;
    for (const OssSnBaseNode *node : nodes) {
        if (const auto *backdrop = qobject_cast<const OssNgBackdropNode *>(itemOf(node)))
            frames.append(occupied(backdrop));
    }
    return frames;
}

/// Beside what feeds the output; without that, below the others or right of everything.
void placeOutput(const OssSnBaseNode *node, const QVector<const OssNgNode *> &others,
                 const QVector<QRectF> &frames, QVector<QRectF> *taken)
{
    OssNgNode *item = itemOf(node);
    if (item->inputs().size() != 1) {
        OssDebugAbout(node->path());
        OssDebug(Source, __LINE__, "Output node should have only one input into the node");
    }
    const OssNgNode *feeder = feederOf(item);
    const auto reachesLess = [](const OssNgNode *a, const OssNgNode *b) {
        return occupied(a).right() < occupied(b).right();
    };
    if (!feeder && taken->isEmpty() && !others.isEmpty())
        feeder = *std::max_element(others.cbegin(), others.cend(), reachesLess);
    QRectF rect(item->pos(), item->boundingRect().size());
    if (feeder)
        rect.moveTopLeft(
            GroupPortPlacement::outputPosition(feeder->pos(), feeder->boundingRect().width()));
    else if (!taken->isEmpty())
        rect.moveTopLeft(taken->first().topLeft());
    // One node may feed several outputs.
    GroupPortPlacement::moveClear(&rect, *taken, frames, GroupPortPlacement::Side::Right);
    taken->append(rect);
    place(item, rect.topLeft());
}

void placeInputs(const QList<OssSnBaseNode *> &nodes, const QVector<QRectF> &others,
                 const QVector<QRectF> &frames)
{
    QVector<OssNgNode *> items;
    QVector<GroupPortPlacement::Input> inputs;
    QVector<const OssNgNode *> fedItems;
    QVector<QRectF> fed;
    for (const OssSnBaseNode *node : nodes) {
        OssNgNode *item = itemOf(node);
        if (!item)
            continue;
        GroupPortPlacement::Input input{item->boundingRect().size(), -1};
        const QList<OssNgEdge *> wires = item->outputs();
        const OssNgNode *target = wires.isEmpty() ? nullptr : wires.first()->destination();
        if (target && !fedItems.contains(target)) {
            fedItems.append(target);
            fed.append(occupied(target));
        }
        input.fed = fedItems.indexOf(target);
        items.append(item);
        inputs.append(input);
    }
    if (fed.isEmpty() && !items.isEmpty()) {
        // Nothing to stand beside yet: below the first of them.
        const QPointF first = items.first()->pos();
        fed.append(
            {first
                 + QPointF(GroupPortPlacement::StreamGap + items.first()->boundingRect().width(),
                           0.0),
             QSizeF(1.0, 1.0)});
    }
    const QVector<QPointF> positions = GroupPortPlacement::inputPositions(inputs, fed, others,
                                                                          frames);
    for (int i = 0; i < items.size(); ++i)
        place(items.at(i), positions.at(i));
}

} // namespace

void OssSnGroupNodeGraphViewContext::adjustInputOutputPos()
{
    const OssSnGroupNode *group = groupNode();
    if (!group) {
        OssDebug(Source, __LINE__, "g is NULL");
        return;
    }
    const OssUndoManager::AutoMacro macro(tr("Arrange Ports"));
    QList<OssSnBaseNode *> outputs = group->outputNodesInside();
    QList<OssSnBaseNode *> inputs = group->inputNodesInside();
    QVector<QRectF> taken;
    for (OssSnBaseNode *node : qAsConst(outputs)) {
        if (OssNgNode *item = itemOf(node))
            item->setSelected(false);
        node->setSelected(false);
        if (isPlacedByHand(node))
            taken.append(occupied(itemOf(node)));
    }
    const auto stays = [this](const OssSnBaseNode *node) {
        return !itemOf(node) || isPlacedByHand(node);
    };
    outputs.erase(std::remove_if(outputs.begin(), outputs.end(), stays), outputs.end());
    inputs.erase(std::remove_if(inputs.begin(), inputs.end(), stays), inputs.end());
    std::stable_partition(outputs.begin(), outputs.end(),
                          [](const OssSnBaseNode *node) { return feederOf(itemOf(node)); });
    QVector<const OssNgNode *> between;
    const QList<OssSnBaseNode *> nodes = group->groupNetwork()->nodes();
    for (OssSnBaseNode *node : nodes) {
        const OssNgNode *item = itemOf(node);
        if (item && !item->isBackground() && !inputs.contains(node) && !outputs.contains(node))
            between.append(item);
    }
    const QVector<QRectF> frames = framesOf(nodes);
    for (const OssSnBaseNode *node : qAsConst(outputs))
        placeOutput(node, between, frames, &taken);
    QVector<QRectF> others;
    for (const OssNgNode *item : qAsConst(between))
        others.append(occupied(item));
    for (const OssSnBaseNode *node : qAsConst(outputs))
        others.append(occupied(itemOf(node)));
    placeInputs(inputs, others, frames);
    for (OssSnBaseNode *node : outputs + inputs)
        rememberPlace(node, itemOf(node)->pos());
}

bool OssSnGroupNodeGraphViewContext::isPlacedByHand(const OssSnBaseNode *port) const
{
    const OssNgNode *item = itemOf(port);
    const auto known = std::find_if(m_portPlaces.cbegin(), m_portPlaces.cend(),
                                    [port](const PortPlace &place) { return place.port == port; });
    return item && known != m_portPlaces.cend() && !item->isAt(known->position);
}

void OssSnGroupNodeGraphViewContext::rememberPlace(OssSnBaseNode *port, const QPointF &position)
{
    m_portPlaces.erase(std::remove_if(m_portPlaces.begin(), m_portPlaces.end(),
                                      [port](const PortPlace &place) {
                                          return !place.port || place.port == port;
                                      }),
                       m_portPlaces.end());
    m_portPlaces.append({port, position});
}

// --- clusters

void OssSnGroupNodeGraphViewContext::clearPortClusters()
{
    if (auto *item = qobject_cast<OssNgExtendedNode *>(guiNode()))
        item->clearPortClusters();
}

void OssSnGroupNodeGraphViewContext::updatePortClusters()
{
    clearPortClusters();
    setupPortClusters();
}

// Streams are what clusters gather: what lies below as "Base", what is laid over it as "Over". A
// group without such pairs gathers all its inputs. A port that belongs to all streams, as a mask,
// stays by itself. Plain groups have ports of their own meaning each, and no clusters.
void OssSnGroupNodeGraphViewContext::setupPortClusters()
{
    auto *item = qobject_cast<OssNgExtendedNode *>(guiNode());
    const OssSnGroupNode *group = groupNode();
    if (!item || !group)
        return;
    if (!qobject_cast<const OssSnMultiChannelGroupNode *>(group)
        && !group->hasTag(OssSnTags::shader()))
        return;
    const QString baseName = OssLayerStreamUtils::baseInputName({});
    const QString overName = OssLayerStreamUtils::overInputName({});
    QStringList base;
    QStringList over;
    QStringList rest;
    const QStringList names = group->inputNames();
    for (const QString &name : names) {
        if (name == QLatin1String("Mask"))
            continue;
        if (name.endsWith(QLatin1Char(' ') + baseName))
            base.append(name);
        else if (name.endsWith(QLatin1Char(' ') + overName))
            over.append(name);
        else
            rest.append(name);
    }
    if (!base.isEmpty())
        item->setPortCluster(baseName, base);
    if (!over.isEmpty())
        item->setPortCluster(overName, over);
    if (rest.size() > 1)
        item->setPortCluster(QStringLiteral("Input"), rest);
    const QStringList outputs = group->outputPointNames();
    if (outputs.size() > 1)
        item->setPortCluster(QStringLiteral("Output"), {}, outputs);
}
