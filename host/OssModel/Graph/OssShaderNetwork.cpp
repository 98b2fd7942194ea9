#include "OssModel/Graph/OssShaderNetwork.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssNodeTypeTable.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Objects/OssShadingContext.h"
#include "OssModel/Types/OssSnTags.h"

#include <algorithm>

namespace {

/// "Blur 7" is the seventh of the row of "Blur"; a name without a number has the number 0.
struct Numbered
{
    QString stem;
    unsigned number = 0;
};

Numbered numbered(const QString &name)
{
    const int blank = name.lastIndexOf(QLatin1Char(' '));
    bool isNumber = false;
    const unsigned number = blank > 0 ? name.midRef(blank + 1).toUInt(&isNumber) : 0;
    return isNumber ? Numbered{name.left(blank), number} : Numbered{name, 0};
}

} // namespace

OssShaderNetwork::OssShaderNetwork(QObject *parent)
    : OssSerializableObject(parent)
{
}

OssShaderNetwork::~OssShaderNetwork()
{
    // Nodes hold wires to each other; no one may follow one to a node that is gone.
    for (const NodePointer &node : m_nodes) {
        OssShaderNetworkManager::instance()->deregisterNode(this, node.get());
        node->setNetwork(nullptr);
    }
    m_byName.clear();
    while (!m_nodes.empty())
        m_nodes.pop_back();
}

OssSnGroupNode *OssShaderNetwork::parentGroupNode() const
{
    return qobject_cast<OssSnGroupNode *>(parent());
}

OssShaderNetwork *OssShaderNetwork::rootNetwork() const
{
    const OssShaderNetwork *network = this;
    while (const OssSnGroupNode *group = network->parentGroupNode()) {
        if (!group->network())
            break;
        network = group->network();
    }
    return const_cast<OssShaderNetwork *>(network);
}

void OssShaderNetwork::setShadingContext(OssShadingContext *context)
{
    m_shadingContext = context;
}

OssShadingContext *OssShaderNetwork::shadingContext() const
{
    return rootNetwork()->m_shadingContext;
}

OssGeoEntity *OssShaderNetwork::geoEntity() const
{
    const OssShadingContext *context = shadingContext();
    return context ? context->geoEntity() : nullptr;
}

// --- nodes

QList<OssSnBaseNode *> OssShaderNetwork::nodes() const
{
    QList<OssSnBaseNode *> list;
    list.reserve(nodeCount());
    for (const NodePointer &node : m_nodes)
        list.append(node.get());
    return list;
}

QList<OssSnBaseNode *> OssShaderNetwork::getAllNodes() const
{
    QList<OssSnBaseNode *> list;
    for (const NodePointer &node : m_nodes) {
        list.append(node.get());
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node.get()))
            list.append(group->groupNetwork()->getAllNodes());
    }
    return list;
}

QList<OssSnBaseNode *> OssShaderNetwork::selectedNodes() const
{
    QList<OssSnBaseNode *> list;
    for (const NodePointer &node : m_nodes) {
        if (node->selected())
            list.append(node.get());
    }
    return list;
}

void OssShaderNetwork::selectOnly(const QList<OssSnBaseNode *> &nodes)
{
    const QList<OssSnBaseNode *> before = selectedNodes();
    for (OssSnBaseNode *node : before)
        node->setSelected(false);
    for (OssSnBaseNode *node : nodes)
        node->setSelected(true);
}

OssSnBaseNode *OssShaderNetwork::nodeByPath(const QString &path) const
{
    const OssShaderNetwork *network = this;
    OssSnBaseNode *found = nullptr;
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        found = network ? network->node(part) : nullptr;
        const auto *group = qobject_cast<const OssSnGroupNode *>(found);
        network = group ? group->groupNetwork() : nullptr;
    }
    return found;
}

QString OssShaderNetwork::generateUniqueNodeName(const QString &base) const
{
    if (!m_byName.contains(base))
        return base;
    const Numbered wanted = numbered(base);
    unsigned &number = m_freeNumbers.insert(wanted.stem, m_freeNumbers.value(wanted.stem, 2))
                           .value();
    for (;; ++number) {
        const QString name = wanted.stem + QLatin1Char(' ') + QString::number(number);
        if (!m_byName.contains(name))
            return name;
    }
}

void OssShaderNetwork::releaseName(const QString &name)
{
    m_byName.remove(name);
    const Numbered released = numbered(name);
    const auto found = m_freeNumbers.find(released.stem);
    if (found != m_freeNumbers.end() && released.number >= 2)
        *found = std::min(*found, released.number);
}

void OssShaderNetwork::nodeWasRenamed(OssSnBaseNode *node, const QString &oldName)
{
    if (m_byName.value(oldName) == node)
        releaseName(oldName);
    m_byName.insert(node->name(), node);
    if (OssSnGroupNode *group = parentGroupNode())
        group->onNodeRenamedInside(node, oldName);
}

OssSnBaseNode *OssShaderNetwork::insertNode(NodePointer node)
{
    OssSnBaseNode *inserted = node.get();
    // One that comes back may find its name taken: the moving of a viewer is no step.
    if (m_byName.contains(inserted->name()))
        inserted->applyName(generateUniqueNodeName(inserted->name()));
    inserted->setNetwork(this);
    inserted->setObjectName(inserted->name());
    auto at = m_nodes.end();
    while (at != m_nodes.begin() && (*std::prev(at))->m_serial > inserted->m_serial)
        --at;
    m_nodes.insert(at, std::move(node));
    m_byName.insert(inserted->name(), inserted);
    return inserted;
}

OssShaderNetwork::NodePointer OssShaderNetwork::takeNode(OssSnBaseNode *node)
{
    const auto found = std::find_if(m_nodes.begin(), m_nodes.end(),
                                    [node](const NodePointer &own) { return own.get() == node; });
    if (found == m_nodes.end())
        return nullptr;
    OssShaderNetworkManager::instance()->deregisterNode(this, node);
    node->emitRemovedFromNetwork();
    // What is inside leaves the document with its group.
    if (const auto *group = qobject_cast<const OssSnGroupNode *>(node)) {
        const QList<OssSnBaseNode *> inside = group->groupNetwork()->getAllNodes();
        for (OssSnBaseNode *inner : inside)
            inner->emitRemovedFromNetwork();
    }
    NodePointer taken = std::move(*found);
    m_nodes.erase(found);
    releaseName(node->name());
    node->setNetwork(nullptr);
    return taken;
}

void OssShaderNetwork::registerNode(OssSnBaseNode *node)
{
    OssShaderNetworkManager::instance()->registerNode(this, node);
    node->emitSystemShaderStatus();
    if (const auto *group = qobject_cast<const OssSnGroupNode *>(node)) {
        const QList<OssSnBaseNode *> inside = group->groupNetwork()->getAllNodes();
        for (OssSnBaseNode *inner : inside)
            inner->emitSystemShaderStatus();
    }
    Q_EMIT nodesChanged();
}

// --- view state

OssShaderNetwork::ViewUpdateLock::ViewUpdateLock(OssShaderNetwork *network)
    : m_network(network)
{
    if (m_network)
        m_network->lockViewUpdates(true);
}

OssShaderNetwork::ViewUpdateLock::~ViewUpdateLock()
{
    if (m_network)
        m_network->lockViewUpdates(false);
}

void OssShaderNetwork::lockViewUpdates(bool lock)
{
    const bool before = allowViewUpdate();
    m_viewLocks += lock ? 1 : -1;
    if (before != allowViewUpdate())
        Q_EMIT allowViewUpdateChanged(allowViewUpdate());
}

void OssShaderNetwork::setViewerNodeCurrentEdge(int edge, bool notify)
{
    if (edge < 0 || edge > 9)
        return;
    const auto apply = [this](int wanted) {
        m_viewerEdge = wanted;
        if (OssSnBaseNode *viewer = viewerNode())
            Q_EMIT viewer->viewerNodeCurrentEdgeChanged(wanted);
    };
    const int before = m_viewerEdge;
    m_viewerEdge = edge;
    if (notify)
        apply(edge);
    if (edge == before)
        return;
    OssUndoManager *undo = OssUndoManager::instance();
    if (undo->isMacroOpen())
        undo->record(
            {}, [apply, before] { apply(before); }, [apply, edge] { apply(edge); });
    else
        undo->resetClean();
}

OssSnBaseNode *OssShaderNetwork::viewerNode() const
{
    const OssShaderNetwork *root = rootNetwork();
    QPointer<OssSnBaseNode> &last = root->m_lastViewer;
    if (last && last->network() && last->network()->rootNetwork() == root)
        return last;
    const QList<OssSnBaseNode *> all = root->getAllNodes();
    const auto found = std::find_if(all.cbegin(), all.cend(), [](const OssSnBaseNode *node) {
        return node->hasTag(OssSnTags::viewer());
    });
    last = found == all.cend() ? nullptr : *found;
    return last;
}
