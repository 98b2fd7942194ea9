#include "Manager/NodeGraphArranger.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QVector>

#include <algorithm>

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContextManager";

/// Names of a group's ports, by the height of the nodes that stand for them inside.
QStringList namesFromTopToBottom(QList<OssSnBaseNode *> nodes)
{
    const auto y = [](const OssSnBaseNode *node) {
        const OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        return item ? item->scenePos().y() : 0.0;
    };
    std::stable_sort(nodes.begin(), nodes.end(),
                     [&](const OssSnBaseNode *a, const OssSnBaseNode *b) { return y(a) < y(b); });
    QStringList names;
    for (const OssSnBaseNode *node : qAsConst(nodes))
        names.append(node->name());
    return names;
}

/// The nodes' ports in the order of `sorted`; ports that no node stands for keep their places.
QStringList merged(const QStringList &present, const QStringList &sorted)
{
    QStringList names = present;
    int next = 0;
    for (QString &name : names) {
        if (sorted.contains(name) && next < sorted.size())
            name = sorted.at(next++);
    }
    return names;
}

/// The places stay, the nodes change them: a layout made by hand keeps its shape.
void arrangePorts(const OssShaderNetwork *network, const QStringList &order, const QString &tag,
                  const QString &title)
{
    if (!network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    QVector<OssNgNode *> items;
    QVector<QPointF> places;
    for (const QString &name : order) {
        const OssSnBaseNode *node = network->node(name);
        OssNgNode *item = node && node->hasTag(tag)
                              ? OssSnNodeGraphViewContextManager::guiNodeOf(node)
                              : nullptr;
        if (!item || items.contains(item))
            continue;
        items.append(item);
        places.append(item->pos());
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    OssUndoManager::AutoMacro macro(title);
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i)->isAt(places.at(i)))
            continue;
        items.at(i)->savePosition();
        items.at(i)->setPosition(places.at(i));
        macro.addUndo(new OssNgNodePositionChangeUndo(items.at(i)));
    }
}

} // namespace

void NodeGraphArranger::reorderGroupInputsByPos(OssSnGroupNode *GroupNode)
{
    if (!GroupNode) {
        OssDebug(Source, __LINE__, "GroupNode is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = GroupNode->inputNodesInside();
    if (nodes.size() >= 2)
        GroupNode->reorderInputs(merged(GroupNode->inputNames(), namesFromTopToBottom(nodes)));
}

void NodeGraphArranger::reorderGroupOutputsByPos(OssSnGroupNode *GroupNode)
{
    if (!GroupNode) {
        OssDebug(Source, __LINE__, "GroupNode is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = GroupNode->outputNodesInside();
    if (nodes.size() >= 2)
        GroupNode->reorderOutputs(
            merged(GroupNode->outputPointNames(), namesFromTopToBottom(nodes)));
}

void NodeGraphArranger::arrangeGroupInputNodesByOrder(OssShaderNetwork *GroupNetwork,
                                                      QStringList InputOrder)
{
    arrangePorts(GroupNetwork, InputOrder, OssSnTags::input(), tr("Arrange Inputs"));
}

void NodeGraphArranger::arrangeGroupOutputNodesByOrder(OssShaderNetwork *GroupNetwork,
                                                       QStringList OutputOrder)
{
    arrangePorts(GroupNetwork, OutputOrder, OssSnTags::output(), tr("Arrange Outputs"));
}
