#include "OssModel/Graph/OssShaderNetwork.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssNodeImages.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Graph/OssSnNodeFactory.h"
#include "OssModel/Types/OssSnTags.h"

#include <algorithm>

namespace {

constexpr const char *Source = "OssShaderNetwork";

} // namespace

/// Nodes that are out of the network for as long as a step is done or undone.
struct OssShaderNetwork::Removed
{
    struct Entry
    {
        OssSnBaseNode *node;
        NodePointer holder; ///< empty while the node stands in the network
    };

    std::vector<Entry> entries;

    void takeFrom(OssShaderNetwork *network)
    {
        for (const Entry &entry : entries)
            network->keepViewer(entry.node);
        for (Entry &entry : entries) {
            // A viewer is moved between networks without a step that tells of it.
            OssShaderNetwork *home = entry.node->network();
            entry.holder = (home ? home : network)->takeNode(entry.node);
        }
        Q_EMIT network->nodesChanged();
    }

    void putBack(OssShaderNetwork *network)
    {
        for (Entry &entry : entries)
            network->insertNode(std::move(entry.holder));
        for (const Entry &entry : entries)
            network->registerNode(entry.node);
    }
};

void OssShaderNetwork::keepViewer(const OssSnBaseNode *leaving)
{
    const auto *group = qobject_cast<const OssSnGroupNode *>(leaving);
    if (!group)
        return;
    const QList<OssSnBaseNode *> inside = group->groupNetwork()->getAllNodes();
    const auto viewer = std::find_if(inside.cbegin(), inside.cend(), [](const OssSnBaseNode *node) {
        return node->hasTag(OssSnTags::viewer());
    });
    if (viewer == inside.cend())
        return;
    const OssUndoManager::Pause pause;
    moveNodeHere(*viewer);
}

OssShaderNetwork::NodePointer OssShaderNetwork::makeNode(
    const std::shared_ptr<const OssSnNodeType> &type, const OssShaderNetwork *target)
{
    if (!type || type->content.isEmpty())
        return OssSnNodeFactory::make(type);
    OssShaderNetwork read;
    OssNodeImages images;
    const OssResult result = OssShaderNetworkIO::readNodes(&read, type->content.toUtf8(),
                                                           type->pathKey, &images);
    if (!result || read.m_nodes.size() != 1) {
        OssDebug(Source, __LINE__, "[ !! ] The content of node type '%s' cannot be used: %s",
                 qPrintable(type->pathKey), qPrintable(result.error()));
        return OssSnNodeFactory::make(nullptr);
    }
    QStringList faults;
    read.wireLoadedNodes(&faults);
    read.cutLoadedCycles(&faults);
    read.dropLoadedViewers();
    if (target)
        images.give(&read, target);
    NodePointer made = std::move(read.m_nodes.front());
    read.m_nodes.clear();
    read.m_byName.clear();
    made->m_network = nullptr;
    made->m_name = type->baseName();
    return made;
}

OssSnBaseNode *OssShaderNetwork::createNode(const QString &pathKey, const QString &name,
                                            const QString &shaderModelId)
{
    const auto type = OssShaderNetworkManager::instance()->nodeType(pathKey);
    const QString wanted = name.isEmpty() && type ? type->baseName() : name;
    const OssUndoManager::AutoMacro macro(
        tr("Create Node : %1").arg(generateUniqueNodeName(wanted)));
    NodePointer made = makeNode(type, this);
    if (made->isPlaceholder()) {
        OssDebug(Source, __LINE__, "[ !! ] There is no node type '%s'", qPrintable(pathKey));
        return nullptr;
    }
    if (made->hasTag(OssSnTags::viewer()) && viewerNode()) {
        OssDebug(Source, __LINE__, "[ !! ] An object has one viewer, and this one has it");
        return nullptr;
    }
    if (!name.isEmpty())
        made->setName(name);
    OssSnBaseNode *node = nullptr;
    {
        // What listeners do to a new node is part of its making.
        const OssUndoManager::Pause pause;
        if (!shaderModelId.isEmpty())
            made->chooseStreams(shaderModelId);
        node = addNode(std::move(made), true);
    }
    auto removed = std::make_shared<Removed>();
    removed->entries.push_back({node, nullptr});
    OssUndoManager::instance()->record(
        {}, [this, removed] { removed->takeFrom(this); },
        [this, removed] { removed->putBack(this); }, node);
    if (OssSnGroupNode *group = parentGroupNode())
        group->onNodesAddedInside({node});
    node->onMadeFresh();
    OssShaderNetworkManager::instance()->tellMade(node);
    return node;
}

QList<OssSnBaseNode *> OssShaderNetwork::createNodesFromNodePathKey(const QString &pathKey, bool)
{
    OssSnBaseNode *node = createNode(pathKey);
    return node ? QList<OssSnBaseNode *>{node} : QList<OssSnBaseNode *>{};
}

QList<OssSnBaseNode *> OssShaderNetwork::createNodes(const QString &pathKey)
{
    return createNodesFromNodePathKey(pathKey, true);
}

OssSnBaseNode *OssShaderNetwork::addNode(NodePointer node, bool fresh)
{
    node->m_name = generateUniqueNodeName(node->name());
    OssSnBaseNode *added = insertNode(std::move(node));
    added->createContexts();
    if (auto *group = qobject_cast<OssSnGroupNode *>(added);
        group && group->groupNetwork()->nodeCount() > 0)
        group->groupNetwork()->finishNodes(); // it was published with them
    added->initializeContexts();
    registerNode(added);
    if (fresh)
        Q_EMIT added->newNodeAdded();
    return added;
}

// --- nodes from elsewhere

bool OssShaderNetwork::belongsHere(const OssSnBaseNode *node) const
{
    const bool port = node->hasTag(OssSnTags::input()) || node->hasTag(OssSnTags::output());
    return !node->hasTag(OssSnTags::viewer()) && (!port || parentGroupNode());
}

void OssShaderNetwork::dropLoadedViewers()
{
    for (auto node = m_nodes.begin(); node != m_nodes.end();) {
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node->get()))
            group->groupNetwork()->dropLoadedViewers();
        if (!(*node)->hasTag(OssSnTags::viewer())) {
            ++node;
            continue;
        }
        (*node)->cutLoadedWires();
        releaseName((*node)->name());
        node = m_nodes.erase(node);
    }
}

QList<OssSnBaseNode *> OssShaderNetwork::takeOverNodes(OssShaderNetwork *read)
{
    QStringList faults; // wires from nodes that were not taken along
    read->wireLoadedNodes(&faults);
    read->cutLoadedCycles(&faults);
    OssUndoManager::AutoMacro macro(tr("Insert Nodes"));
    auto removed = std::make_shared<Removed>();
    QList<OssSnBaseNode *> inserted;
    {
        const OssUndoManager::Pause pause;
        const ViewUpdateLock lock(this);
        read->dropLoadedViewers();
        std::vector<NodePointer> nodes;
        nodes.swap(read->m_nodes);
        read->m_byName.clear();
        for (const NodePointer &node : nodes) {
            if (!belongsHere(node.get()))
                node->cutLoadedWires();
        }
        for (NodePointer &node : nodes) {
            if (belongsHere(node.get()))
                inserted.append(insertNode(std::move(node)));
        }
        for (OssSnBaseNode *node : qAsConst(inserted)) {
            if (auto *group = qobject_cast<OssSnGroupNode *>(node))
                group->groupNetwork()->finishNodes();
            node->initializeContexts();
            registerNode(node);
            removed->entries.push_back({node, nullptr});
        }
        for (OssSnBaseNode *node : qAsConst(inserted)) {
            for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
                if (port.source)
                    Q_EMIT node->inputNodeChanged(port.name, port.source, port.sourceOutput);
            }
        }
    }
    if (!inserted.isEmpty())
        OssUndoManager::instance()->record(
            {}, [this, removed] { removed->takeFrom(this); },
            [this, removed] { removed->putBack(this); }, inserted.first());
    if (OssSnGroupNode *group = parentGroupNode())
        group->onNodesAddedInside(inserted);
    for (OssSnBaseNode *node : qAsConst(inserted))
        OssShaderNetworkManager::instance()->tellInserted(node);
    return inserted;
}

// --- removal

bool OssShaderNetwork::isRemovable(const OssSnBaseNode *node)
{
    return !node->hasTag(OssSnTags::graphLayerInput());
}

/// A viewer may look into a group from outside of it.
void OssShaderNetwork::cutWiresOut(const OssSnBaseNode *leaving)
{
    const auto *group = qobject_cast<const OssSnGroupNode *>(leaving);
    const QList<OssSnBaseNode *> inside = group ? group->groupNetwork()->getAllNodes()
                                                : QList<OssSnBaseNode *>();
    for (const OssSnBaseNode *node : inside) {
        const QVector<OssSnBaseNode::OutgoingConnection> wires = node->outgoingConnections();
        for (const OssSnBaseNode::OutgoingConnection &wire : wires) {
            if (!inside.contains(wire.target))
                wire.target->setInputNode(wire.input, nullptr, {});
        }
    }
}

void OssShaderNetwork::removeUnchecked(const QList<OssSnBaseNode *> &nodes, const QString &title)
{
    OssUndoManager::AutoMacro macro(title);
    const ViewUpdateLock lock(this);
    for (OssSnBaseNode *node : nodes) {
        node->setSelected(false);
        if (OssSnGroupNode *group = parentGroupNode())
            group->onNodeRemovedInside(node);
        node->disconnectAll();
        keepViewer(node);
        cutWiresOut(node);
    }
    auto removed = std::make_shared<Removed>();
    const QSet<OssSnBaseNode *> wanted(nodes.cbegin(), nodes.cend());
    for (const NodePointer &node : m_nodes) {
        if (wanted.contains(node.get()))
            removed->entries.push_back({node.get(), nullptr});
    }
    removed->takeFrom(this);
    OssUndoManager::instance()->record(
        {}, [this, removed] { removed->putBack(this); },
        [this, removed] { removed->takeFrom(this); });
}

void OssShaderNetwork::removeNodes(const QSet<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> removable;
    for (const NodePointer &own : m_nodes) {
        OssSnBaseNode *node = own.get();
        if (!nodes.contains(node))
            continue;
        if (isRemovable(node))
            removable.append(node);
        else
            OssDebug(Source, __LINE__, "[ !! ] Node '%s' is protected and stays",
                     qPrintable(node->path()));
    }
    // Whoever selects everything does not mean what everything is looked at with.
    const auto viewers = std::stable_partition(
        removable.begin(), removable.end(),
        [](const auto *node) { return !node->hasTag(OssSnTags::viewer()); });
    if (viewers != removable.begin())
        removable.erase(viewers, removable.end());
    if (!removable.isEmpty())
        removeUnchecked(removable, tr("Remove Nodes"));
}

void OssShaderNetwork::removeNode(OssSnBaseNode *node, bool, bool)
{
    if (node && node->network() == this && !node->hasTag(OssSnTags::viewer()))
        removeNodes({node});
}

void OssShaderNetwork::extractNodes(const QList<OssSnBaseNode *> &nodes, bool)
{
    OssUndoManager::AutoMacro macro(tr("Extract Nodes"));
    for (OssSnBaseNode *node : nodes) {
        if (node && node->network() == this)
            extractNode(node);
    }
}

void OssShaderNetwork::extractNode(OssSnBaseNode *node)
{
    struct Bridge
    {
        OssSnBaseNode::OutgoingConnection wire;
        OssSnBaseNode *source;
        QString outputPoint;
    };

    QVector<Bridge> bridges;
    for (const OssSnBaseNode::OutgoingConnection &wire : node->outgoingConnections()) {
        const QString input = OssShaderNetworkUtils::streamInput(node, wire.outputPoint);
        bridges.append({wire, node->inputNode(input), node->inputOutputPoint(input)});
    }
    node->disconnectAll();
    for (const Bridge &bridge : qAsConst(bridges)) {
        if (bridge.source)
            bridge.wire.target->setInputNode(bridge.wire.input, bridge.source, bridge.outputPoint);
    }
}

// --- viewer

OssSnBaseNode *OssShaderNetwork::moveCurrentViewerNodeToNetwork()
{
    OssSnBaseNode *viewer = viewerNode();
    // The making is a step, or undoing the removal of the last viewer would bring back a second.
    if (!viewer)
        return createNode(QStringLiteral("_System/Viewer"));
    if (viewer->network() == this)
        return viewer;
    {
        const OssUndoManager::Pause pause;
        moveNodeHere(viewer);
    }
    OssUndoManager::instance()->resetClean(); // it is saved, and no step
    return viewer;
}

void OssShaderNetwork::moveNodeHere(OssSnBaseNode *node)
{
    NodePointer taken = node->network()->takeNode(node);
    taken->m_name = generateUniqueNodeName(taken->name());
    insertNode(std::move(taken));
    registerNode(node);
}

void OssShaderNetwork::moveNodeHereUndo(OssSnBaseNode *node)
{
    OssShaderNetwork *home = node->network();
    const QString name = node->name();
    moveNodeHere(node);
    OssUndoManager::instance()->record(
        tr("Move %1").arg(name),
        [home, node, name] {
            NodePointer taken = node->network()->takeNode(node);
            taken->m_name = name;
            home->insertNode(std::move(taken));
            home->registerNode(node);
        },
        [this, node] { moveNodeHere(node); }, node);
}
