#include "OssScriptObjects/OssaNodeGraph.h"

#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssScriptObjects.h"

namespace Ossa {

NodeGraph::NodeGraph(QObject *network)
{
    initAs<OssShaderNetwork>(network);
    if (isNull())
        return;
    const auto *wrappedNetwork = static_cast<OssShaderNetwork *>(network);
    QObject::connect(wrappedNetwork, &OssShaderNetwork::nodesChanged, this,
                     &NodeGraph::nodesChanged);
    QObject::connect(wrappedNetwork, &OssShaderNetwork::nodeSelectionChanged, this,
                     &NodeGraph::selectionChanged);
}

NodeGraph::~NodeGraph() = default;

OssShaderNetwork *NodeGraph::network() const
{
    return wrapped<OssShaderNetwork>();
}

bool NodeGraph::isRoot() const
{
    const OssShaderNetwork *own = network();
    return own && own->rootNetwork() == own;
}

NodeGraph *NodeGraph::rootGraph() const
{
    const OssShaderNetwork *own = network();
    return own ? OssScriptObject<NodeGraph>(own->rootNetwork()) : nullptr;
}

Node *NodeGraph::parentNode() const
{
    const OssShaderNetwork *own = network();
    return own ? OssScriptObject<Node>(own->parentGroupNode()) : nullptr;
}

GeoEntity *NodeGraph::object() const
{
    const OssShaderNetwork *own = network();
    return own ? OssScriptObject<GeoEntity>(own->geoEntity()) : nullptr;
}

// --- finding

QList<Node *> NodeGraph::nodes() const
{
    const OssShaderNetwork *own = network();
    return own ? OssScriptObjectList<Node>(own->nodes()) : QList<Node *>();
}

QList<Node *> NodeGraph::allNodes() const
{
    const OssShaderNetwork *own = network();
    return own ? OssScriptObjectList<Node>(own->getAllNodes()) : QList<Node *>();
}

QList<Node *> NodeGraph::nodesOfType(const QString &type) const
{
    QList<Node *> found;
    const OssShaderNetwork *own = network();
    if (!own)
        return found;
    const QList<OssSnBaseNode *> all = own->getAllNodes();
    for (OssSnBaseNode *node : all) {
        if (node->pathKey() == type)
            found.append(OssScriptObject<Node>(node));
    }
    return found;
}

Node *NodeGraph::node(const QString &name) const
{
    const OssShaderNetwork *own = network();
    if (!own)
        return nullptr;
    OssSnBaseNode *found = own->node(name);
    return OssScriptObject<Node>(found ? found : own->nodeByPath(name));
}

QList<Node *> NodeGraph::selectedNodes() const
{
    const OssShaderNetwork *own = network();
    return own ? OssScriptObjectList<Node>(own->selectedNodes()) : QList<Node *>();
}

bool NodeGraph::ownNodes(const QList<Node *> &nodes, QList<OssSnBaseNode *> *own) const
{
    const OssShaderNetwork *graph = network();
    if (!graph)
        return false;
    for (const Node *entry : nodes) {
        if (!entry)
            fail(OssScriptException::WrongType, QStringLiteral("None is no node"));
        OssSnBaseNode *node = entry ? entry->node() : nullptr;
        if (!node)
            return false;
        if (node->network() != graph) {
            fail(OssScriptException::NotAllowed,
                 QStringLiteral("The node \"%1\" is not in this graph").arg(node->path()));
            return false;
        }
        if (!own->contains(node))
            own->append(node);
    }
    return true;
}

void NodeGraph::select(const QList<Node *> &nodes)
{
    QList<OssSnBaseNode *> wanted;
    if (!ownNodes(nodes, &wanted))
        return;
    const QList<OssSnBaseNode *> all = network()->nodes();
    for (OssSnBaseNode *node : all)
        node->setSelected(wanted.contains(node));
}

// --- showing

void NodeGraph::layout()
{
    if (OssShaderNetwork *own = network())
        OssShaderNetworkManager::instance()->requestLayout(own, {});
}

void NodeGraph::layout(const QList<Node *> &nodes)
{
    QList<OssSnBaseNode *> wanted;
    // An empty list would mean everything.
    if (ownNodes(nodes, &wanted) && !wanted.isEmpty())
        OssShaderNetworkManager::instance()->requestLayout(network(), wanted);
}

void NodeGraph::show()
{
    OssShaderNetwork *own = network();
    if (!own)
        return;
    OssShaderNetworkManager::instance()->setCurrentShaderNetwork(own->rootNetwork());
    if (OssSnGroupNode *group = own->parentGroupNode())
        group->requestOpen();
}

Node *NodeGraph::viewer() const
{
    const OssShaderNetwork *own = network();
    return own ? OssScriptObject<Node>(own->viewerNode()) : nullptr;
}

void NodeGraph::view(Node *node, int input)
{
    QList<OssSnBaseNode *> shown;
    if (!ownNodes({node}, &shown))
        return;
    OssSnBaseNode *source = shown.first();
    const QString point = source->prefferedOutputPoint();
    // Nothing is moved for what is refused.
    OssSnBaseNode *viewer = network()->viewerNode();
    if (!viewer && source->hasOutputPoint(point))
        viewer = network()->moveCurrentViewerNodeToNetwork();
    if (viewer && !viewer->hasInput(QString::number(input))) {
        fail(OssScriptException::OutOfRange,
             QStringLiteral("The viewer has no input %1").arg(input));
        return;
    }
    const OssResult possible =
        viewer ? viewer->canConnect(QString::number(input), source, point)
               : OssResult::failure(
                   QStringLiteral("\"%1\" has nothing to look at").arg(source->name()));
    if (!possible) {
        fail(OssScriptException::NotAllowed, possible.error());
        return;
    }
    viewer = network()->moveCurrentViewerNodeToNetwork();
    viewer->setInputNode(QString::number(input), source, point);
    network()->rootNetwork()->setViewerNodeCurrentEdge(input, true);
}

} // namespace Ossa
