#include "OssScriptObjects/OssaNodeGraph.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssScriptObjects.h"

#include <algorithm>

namespace Ossa {

namespace {

QSet<OssSnBaseNode *> asSet(const QList<OssSnBaseNode *> &nodes)
{
    return {nodes.cbegin(), nodes.cend()};
}

} // namespace

Node *NodeGraph::createNode(const QString &type, const QString &name)
{
    OssShaderNetwork *own = network();
    if (!own)
        return nullptr;
    if (!OssShaderNetworkManager::instance()->nodePathKeys().contains(type)) {
        fail(OssScriptException::UnknownName,
             QStringLiteral("There is no node type \"%1\"").arg(type));
        return nullptr;
    }
    OssSnBaseNode *made = own->createNode(type, name);
    if (!made)
        fail(OssScriptException::NotAllowed,
             QStringLiteral("A node of type \"%1\" cannot be made here").arg(type));
    return OssScriptObject<Node>(made);
}

Node *NodeGraph::createNode(const QString &type, const QString &name, const QPointF &position)
{
    Node *made = createNode(type, name);
    if (made)
        made->setPosition(position);
    return made;
}

void NodeGraph::connect(Node *source, Node *target, const QString &input, const QString &output)
{
    QList<OssSnBaseNode *> both;
    if (!ownNodes({source, target}, &both))
        return;
    const OssSnBaseNode *to = both.last();
    const QString port = input.isEmpty() ? to->preferredInput() : input;
    if (port.isEmpty())
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The node \"%1\" has no free input").arg(to->name()));
    else
        target->connectInput(port, source, output);
}

void NodeGraph::remove(const QList<Node *> &nodes)
{
    QList<OssSnBaseNode *> own;
    if (ownNodes(nodes, &own))
        network()->removeNodes(asSet(own));
}

void NodeGraph::extract(const QList<Node *> &nodes)
{
    QList<OssSnBaseNode *> own;
    if (ownNodes(nodes, &own))
        network()->extractNodes(own, true);
}

Node *NodeGraph::group(const QList<Node *> &nodes, const QString &name)
{
    QList<OssSnBaseNode *> own;
    if (!ownNodes(nodes, &own))
        return nullptr;
    const OssUndoManager::AutoMacro macro(QStringLiteral("Group"));
    const QList<OssSnBaseNode *> between = network()->nodesBetween(own);
    OssSnGroupNode *group = between.isEmpty() ? network()->groupNodes(own) : nullptr;
    if (!between.isEmpty())
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The nodes are wired through \"%1\", which would stay outside; a group "
                            "cannot feed itself")
                 .arg(between.first()->name()));
    else if (!group)
        fail(OssScriptException::NotAllowed,
             QStringLiteral("There is nothing to group among these nodes"));
    else if (!name.isEmpty())
        group->setName(name);
    return OssScriptObject<Node>(group);
}

QList<Node *> NodeGraph::ungroup(Node *group)
{
    QList<OssSnBaseNode *> own;
    if (!ownNodes({group}, &own))
        return {};
    auto *node = qobject_cast<OssSnGroupNode *>(own.first());
    if (!node) {
        fail(OssScriptException::NotSupported,
             QStringLiteral("The node \"%1\" is no group").arg(own.first()->name()));
        return {};
    }
    return OssScriptObjectList<Node>(network()->ungroup(node));
}

QList<Node *> NodeGraph::duplicate(const QList<Node *> &nodes)
{
    QList<OssSnBaseNode *> own;
    if (!ownNodes(nodes, &own) || own.isEmpty())
        return {};
    return OssScriptObjectList<Node>(OssShaderNetworkIO::duplicateNodes(network(), own, false));
}

// --- text and files

QString NodeGraph::toText(const QList<Node *> &nodes) const
{
    QList<OssSnBaseNode *> own;
    if (!ownNodes(nodes, &own))
        return {};
    return QString::fromUtf8(OssShaderNetworkIO::nodesToText(own));
}

QList<Node *> NodeGraph::fromText(const QString &text)
{
    OssShaderNetwork *own = network();
    if (!own)
        return {};
    QList<OssSnBaseNode *> inserted;
    const OssResult read = OssShaderNetworkIO::nodesFromText(own, text.toUtf8(),
                                                             QStringLiteral("The text"), &inserted);
    if (!read)
        fail(OssScriptException::FileInvalid, read.error());
    return OssScriptObjectList<Node>(inserted);
}

void NodeGraph::exportNodes(const QList<Node *> &nodes, const QString &path) const
{
    QList<OssSnBaseNode *> own;
    if (!ownNodes(nodes, &own))
        return;
    own.erase(std::remove_if(own.begin(), own.end(),
                             [](const auto *node) { return node->hasTag(OssSnTags::viewer()); }),
              own.end());
    if (own.isEmpty() && !nodes.isEmpty()) {
        fail(OssScriptException::NotAllowed, QStringLiteral("The viewer is never exported"));
        return;
    }
    const OssResult saved = OssShaderNetworkIO::saveNodesToXmlFile(own, path);
    if (!saved)
        fail(OssScriptException::FileNotAccessible, saved.error());
}

QList<Node *> NodeGraph::importNodes(const QString &path)
{
    OssShaderNetwork *own = network();
    if (!own)
        return {};
    QList<OssSnBaseNode *> inserted;
    const OssResult loaded = OssShaderNetworkIO::loadNodesFromXmlFile(own, path, &inserted);
    if (!loaded)
        fail(OssScriptException::FileInvalid, loaded.error());
    return OssScriptObjectList<Node>(inserted);
}

} // namespace Ossa
