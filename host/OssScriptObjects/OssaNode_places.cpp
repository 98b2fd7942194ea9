#include "OssScriptObjects/OssaNode.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssScriptObjects/OssScriptObjects.h"

// Where a node stands by others, and in which backdrop.

namespace Ossa {

namespace {

const QString BackdropKey = QStringLiteral("Misc/Backdrop");

} // namespace

Node *Node::container() const
{
    const OssSnBaseNode *own = node();
    return own ? OssScriptObject<Node>(own->container()) : nullptr;
}

void Node::setContainer(Node *backdrop)
{
    OssSnBaseNode *own = node();
    OssSnBaseNode *holder = backdrop ? backdrop->node() : nullptr;
    if (!own || (backdrop && !holder))
        return;
    if (holder && holder->pathKey() != BackdropKey) {
        fail(OssScriptException::NotSupported,
             QStringLiteral("The node \"%1\" is no backdrop").arg(holder->name()));
        return;
    }
    if (holder && !view())
        return;
    own->setContainer(holder);
    if (own->container() != holder)
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" cannot lie in \"%2\"").arg(own->name(), holder->name()));
    else if (holder)
        Q_EMIT holder->containerStretchedBy(own);
}

void Node::place(const Node *reference, OssShaderNetworkManager::Arrangement how)
{
    OssSnBaseNode *own = node();
    OssSnBaseNode *other = own && reference ? reference->node() : nullptr;
    if (!own || (reference && !other))
        return;
    if (!other || other == own || other->network() != own->network())
        fail(OssScriptException::WrongState,
             QStringLiteral("Nodes are placed by another one of their graph"));
    else if (const OssResult done = OssShaderNetworkManager::instance()->requestArrangement(
                 {other, own}, how);
             !done)
        fail(OssScriptException::WrongState, done.error());
}

void Node::placeUnderneath(Node *reference)
{
    place(reference, OssShaderNetworkManager::PlaceUnderneath);
}

void Node::placeNextTo(Node *reference)
{
    place(reference, OssShaderNetworkManager::PlaceNextTo);
}

void Node::placeOnTop(Node *reference)
{
    place(reference, OssShaderNetworkManager::PlaceOnTop);
}

} // namespace Ossa
