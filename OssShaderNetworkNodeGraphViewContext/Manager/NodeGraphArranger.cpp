#include "Manager/NodeGraphArranger.h"

#include "Layout/ColumnLayout.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <algorithm>

// Automatic layout, and the order of a group's ports by where their nodes stand.

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContextManager";

OssNgNode *visibleItem(const OssSnBaseNode *node)
{
    OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    return item && item->isVisible() ? item : nullptr;
}

bool isViewer(const OssSnBaseNode *node)
{
    return node->hasTag(OssSnTags::viewer());
}

bool isFollowed(const OssSnBaseNode *node, const QString &input)
{
    return !(isViewer(node) && input == QLatin1String("ToView"))
           && !node->hasInputTag(input, OssSnTags::hidden());
}

/// Nothing follows it but viewers.
bool isLeaf(const OssSnBaseNode *node)
{
    const QList<OssSnBaseNode *> followers = node->outputNodes();
    return !isViewer(node) && std::all_of(followers.begin(), followers.end(), isViewer);
}

struct Container
{
    QPointer<OssNgBackdropNode> backdrop;
    QList<OssSnBaseNode *> members;
};

/// Smallest first: a backdrop on another one is refitted before that one.
QVector<Container> containersOf(const QList<OssSnBaseNode *> &nodes)
{
    QVector<Container> containers;
    for (const OssSnBaseNode *node : nodes) {
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(visibleItem(node));
        if (!backdrop)
            continue;
        Container container{backdrop, {}};
        const QList<OssNgNode *> inside = backdrop->nodesInside();
        for (const OssNgNode *item : inside) {
            auto *member = qobject_cast<OssSnBaseNode *>(item->businessNode());
            if (member && item->isVisible())
                container.members.append(member);
        }
        containers.append(container);
    }
    const auto area = [](const Container &container) {
        return container.backdrop->rect().width() * container.backdrop->rect().height();
    };
    std::stable_sort(containers.begin(), containers.end(),
                     [&](const Container &a, const Container &b) { return area(a) < area(b); });
    return containers;
}

/// The nodes of a network as values, and what links the two.
class Picture
{
public:
    explicit Picture(const QList<OssSnBaseNode *> &nodes)
        : m_nodes(nodes)
    {
        for (int i = 0; i < nodes.size(); ++i)
            m_indexes.insert(nodes.at(i), i);
    }

    int indexOf(const OssSnBaseNode *node) const { return m_indexes.value(node, -1); }

    OssSnBaseNode *node(int index) const { return m_nodes.at(index); }

    std::vector<ColumnLayout::Node> values() const
    {
        std::vector<ColumnLayout::Node> values;
        values.reserve(std::size_t(m_nodes.size()));
        for (const OssSnBaseNode *node : m_nodes)
            values.push_back(value(node));
        return values;
    }

private:
    ColumnLayout::Node value(const OssSnBaseNode *node) const
    {
        ColumnLayout::Node value;
        const OssNgNode *item = visibleItem(node);
        value.hasItem = item != nullptr;
        value.merge = OssLayerStreamUtils::isMergeNode(node);
        if (item) {
            value.position = item->scenePos();
            value.size = item->sceneBoundingRect().size();
        }
        for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
            ColumnLayout::Input input;
            if (port.source && isFollowed(node, port.name))
                input.source = indexOf(port.source);
            if (value.merge)
                input.base = OssLayerStreamUtils::isBaseInput(node, port.name);
            if (item && value.merge && !input.base)
                input.portY = item->inputPortScenePos(port.name).y() - item->scenePos().y();
            value.inputs.append(input);
        }
        return value;
    }

    QList<OssSnBaseNode *> m_nodes;
    QHash<const OssSnBaseNode *, int> m_indexes;
};

void applyMoves(const ColumnLayout &layout, const Picture &picture,
                OssUndoManager::AutoMacro *macro)
{
    QVector<OssNgNode *> items; // a shift moves some of them once more
    for (const ColumnLayout::Move &move : layout.moves()) {
        OssNgNode *item = visibleItem(picture.node(move.node));
        if (!item)
            continue;
        if (!move.shift) {
            item->savePosition();
            items.append(item);
        }
        item->setPosition(move.position);
    }
    for (OssNgNode *item : qAsConst(items)) {
        if (!item->isAt(item->savedPosition()))
            macro->addUndo(new OssNgNodePositionChangeUndo(item)); // the history takes it
    }
}

void refit(const Container &container, OssUndoManager::AutoMacro *macro)
{
    OssNgBackdropNode *backdrop = container.backdrop;
    QRectF bounds;
    for (const OssSnBaseNode *member : container.members) {
        if (const OssNgNode *item = visibleItem(member))
            bounds |= item->sceneBoundingRect();
    }
    if (!backdrop || bounds.isEmpty())
        return;
    const qreal margin = backdrop->titleBarHeight();
    bounds.adjust(-margin, -2.0 * margin, margin, margin);
    backdrop->savePosition();
    backdrop->saveBoundingRect();
    backdrop->setPosition(bounds.topLeft());
    if (!backdrop->isAt(backdrop->savedPosition()))
        macro->addUndo(new OssNgNodePositionChangeUndo(backdrop));
    backdrop->setRect({0.0, 0.0, bounds.width(), bounds.height()});
    const QRectF before = backdrop->savedBoundingRect();
    const QRectF now = backdrop->rect();
    if (now.width() != before.width() || now.height() != before.height())
        macro->addUndo(new OssNgBackdropNodeRectChangeUndo(backdrop));
}

/// The start nodes as indexes. A backdrop stands for what lies on it, but for the viewer: that one
/// only looks.
QVector<int> startIndexes(const QList<OssSnBaseNode *> &startNodes, const Picture &picture,
                          const QVector<Container> &containers)
{
    QVector<int> starts;
    const auto add = [&](const OssSnBaseNode *node) {
        const int index = picture.indexOf(node);
        if (index >= 0 && visibleItem(node)
            && !qobject_cast<OssNgBackdropNode *>(visibleItem(node)))
            starts.append(index);
    };
    for (const OssSnBaseNode *node : startNodes) {
        add(node);
        for (const Container &container : containers) {
            if (container.backdrop != visibleItem(node))
                continue;
            for (const OssSnBaseNode *member : container.members) {
                if (!isViewer(member))
                    add(member);
            }
        }
    }
    return starts;
}

} // namespace

void NodeGraphArranger::beautifyNodesLayout()
{
    if (const OssShaderNetworkView *view = viewOrComplain())
        beautifyNodesLayout(view->network());
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network)
{
    if (!Network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    beautifyNodesLayout(Network, Network->selectedNodes(), true);
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network, OssSnBaseNode *Node)
{
    if (!Network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    if (!Node) {
        OssDebug(Source, __LINE__, "Node is NULL");
        return;
    }
    beautifyNodesLayout(Network, QList<OssSnBaseNode *>{Node}, false);
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes)
{
    beautifyNodesLayout(Network, Nodes, false);
}

void NodeGraphArranger::beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes,
                                            bool ArrangeFromLeavesIfEmpty)
{
    if (!Network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    Nodes.removeAll(nullptr);
    autoLayoutNodes(Network, Nodes, ArrangeFromLeavesIfEmpty);
}

void NodeGraphArranger::autoLayoutNodes(OssShaderNetwork *StartNetwork,
                                        QList<OssSnBaseNode *> StartNodes,
                                        bool ArrangeFromLeavesIfEmpty)
{
    if (!StartNetwork || (StartNodes.isEmpty() && !ArrangeFromLeavesIfEmpty))
        return;
    // First: what is in the user's hand is put down before places are read.
    OssUndoManager::AutoMacro macro(tr("Layout Nodes"));
    const QList<OssSnBaseNode *> all = StartNetwork->nodes();
    const QVector<Container> containers = containersOf(all);
    if (StartNodes.isEmpty())
        std::copy_if(all.begin(), all.end(), std::back_inserter(StartNodes), isLeaf);
    const Picture picture(all);
    const QVector<int> starts = startIndexes(StartNodes, picture, containers);
    if (starts.isEmpty()) {
        OssDebug(Source, __LINE__, "[ !! ] Nothing to autoplace.");
        return;
    }
    QVector<int> backdrops;
    for (int i = 0; i < all.size(); ++i) {
        if (qobject_cast<OssNgBackdropNode *>(visibleItem(all.at(i))))
            backdrops.append(i);
    }
    ColumnLayout layout(picture.values());
    layout.layOut(starts, backdrops);
    applyMoves(layout, picture, &macro);
    for (const Container &container : containers)
        refit(container, &macro);
    if (OssSnGroupNode *group = StartNetwork->parentGroupNode()) {
        reorderGroupInputsByPos(group);
        reorderGroupOutputsByPos(group);
    }
}

// --- ports of groups

namespace {

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
    if (!GroupNetwork) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    // The places stay, the nodes change them: a layout made by hand keeps its shape.
    QVector<OssNgNode *> items;
    QVector<QPointF> places;
    for (const QString &name : qAsConst(InputOrder)) {
        const OssSnBaseNode *node = GroupNetwork->node(name);
        OssNgNode *item = node && node->hasTag(OssSnTags::input())
                              ? OssSnNodeGraphViewContextManager::guiNodeOf(node)
                              : nullptr;
        if (!item || items.contains(item))
            continue;
        items.append(item);
        places.append(item->pos());
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    OssUndoManager::AutoMacro macro(tr("Arrange Inputs"));
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i)->isAt(places.at(i)))
            continue;
        items.at(i)->savePosition();
        items.at(i)->setPosition(places.at(i));
        macro.addUndo(new OssNgNodePositionChangeUndo(items.at(i)));
    }
}
