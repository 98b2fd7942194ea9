#include "OssScriptObjects/OssaNode.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssScriptObjects.h"

#include <cmath>

namespace Ossa {

namespace {

constexpr double Farthest = 1e6; // what a scene finds its nodes within
constexpr double Largest = 1e5;

} // namespace

Node::Node(QObject *node)
{
    initAs<OssSnBaseNode>(node);
    if (isNull())
        return;
    const auto *wrappedNode = static_cast<OssSnBaseNode *>(node);
    connect(wrappedNode, &OssSnBaseNode::nameChanged, this, &Node::renamed);
    connect(wrappedNode, &OssSerializableObject::userAttributeChanged, this,
            &Node::attributeChanged);
    connect(wrappedNode, &OssSnBaseNode::inputNodeChanged, this, &Node::inputChanged);
}

Node::~Node() = default;

OssSnBaseNode *Node::node() const
{
    auto *node = wrapped<OssSnBaseNode>();
    if (!node || node->network())
        return node;
    fail(OssScriptException::InternalObjectGone,
         QStringLiteral("The node \"%1\" was removed").arg(node->name()));
    return nullptr;
}

OssSnBaseNode *Node::nodeWithInput(const QString &input) const
{
    OssSnBaseNode *own = node();
    if (!own || own->hasInput(input))
        return own;
    fail(OssScriptException::UnknownName,
         QStringLiteral("The node \"%1\" has no input \"%2\"; it has %3")
             .arg(own->name(), input, own->inputNames().join(QStringLiteral(", "))));
    return nullptr;
}

OssSnBaseContext *Node::view() const
{
    const OssSnBaseNode *own = node();
    if (!own)
        return nullptr;
    OssSnBaseContext *context = own->viewContext();
    if (!context)
        fail(OssScriptException::ObjectUnavailable,
             QStringLiteral("The node \"%1\" is shown in no node graph").arg(own->name()));
    return context;
}

// --- properties

QString Node::name() const
{
    const OssSnBaseNode *own = node();
    return own ? own->name() : QString();
}

void Node::setName(const QString &name)
{
    if (OssSnBaseNode *own = node())
        own->setName(name);
}

QString Node::path() const
{
    const OssSnBaseNode *own = node();
    return own ? own->path() : QString();
}

QString Node::type() const
{
    const OssSnBaseNode *own = node();
    return own ? own->pathKey() : QString();
}

QString Node::description() const
{
    const OssSnBaseNode *own = node();
    return own ? own->description() : QString();
}

void Node::setDescription(const QString &description)
{
    if (OssSnBaseNode *own = node())
        own->setDescription(description);
}

bool Node::isEnabled() const
{
    const OssSnBaseNode *own = node();
    return own && own->enabledAsBool();
}

void Node::setEnabled(bool enabled)
{
    OssSnBaseNode *own = node();
    if (own && !enabled && own->hasTag(OssSnTags::viewer()))
        fail(OssScriptException::NotAllowed, QStringLiteral("The viewer is never disabled"));
    else if (own)
        own->setEnabled(enabled ? 1 : 0);
}

bool Node::isBypassed() const
{
    const OssSnBaseNode *own = node();
    return own && own->isBypassed();
}

void Node::setBypassed(bool bypassed)
{
    OssSnBaseNode *own = node();
    if (own && bypassed && own->hasTag(OssSnTags::viewer()))
        fail(OssScriptException::NotAllowed, QStringLiteral("The viewer is never bypassed"));
    else if (own)
        own->setBypassed(bypassed);
}

bool Node::isLocked() const
{
    const OssSnBaseNode *own = node();
    return own && own->isLocked();
}

void Node::setLocked(bool locked)
{
    if (OssSnBaseNode *own = node())
        own->setLocked(locked);
}

bool Node::isSelected() const
{
    const OssSnBaseNode *own = node();
    return own && own->selected();
}

void Node::setSelected(bool selected)
{
    if (OssSnBaseNode *own = node())
        own->setSelected(selected);
}

QPointF Node::position() const
{
    const OssSnBaseContext *context = view();
    return context ? context->nodePosition() : QPointF();
}

void Node::setPosition(const QPointF &position)
{
    OssSnBaseContext *context = view();
    if (!context)
        return;
    // Written so that what is no number is refused, too.
    if (!(std::abs(position.x()) <= Farthest && std::abs(position.y()) <= Farthest))
        fail(OssScriptException::OutOfRange,
             QStringLiteral("Places of a graph are at most a million from its middle"));
    else if (!context->setNodePositionUndo(position))
        fail(OssScriptException::WrongState, QStringLiteral("The node is not shown"));
}

QSizeF Node::size() const
{
    const OssSnBaseContext *context = view();
    return context ? context->nodeSize() : QSizeF();
}

void Node::setSize(const QSizeF &size)
{
    OssSnBaseContext *context = view();
    if (!context)
        return;
    if (!(size.width() <= Largest && size.height() <= Largest))
        fail(OssScriptException::OutOfRange,
             QStringLiteral("A node is at most %1 wide and high").arg(int(Largest)));
    else if (!context->setNodeSizeUndo(size))
        fail(OssScriptException::WrongState, QStringLiteral("The node has no size of its own"));
}

QString Node::error() const
{
    const OssSnBaseNode *own = node();
    return own ? own->errorText() : QString();
}

QStringList Node::inputs() const
{
    const OssSnBaseNode *own = node();
    return own ? own->inputNames() : QStringList();
}

QStringList Node::outputs() const
{
    const OssSnBaseNode *own = node();
    return own ? own->outputPointNames() : QStringList();
}

// --- place in the graph

NodeGraph *Node::graph() const
{
    const OssSnBaseNode *own = node();
    return own ? OssScriptObject<NodeGraph>(own->network()) : nullptr;
}

NodeGraph *Node::inside() const
{
    const auto *group = qobject_cast<OssSnGroupNode *>(node());
    return group ? OssScriptObject<NodeGraph>(group->groupNetwork()) : nullptr;
}

void Node::showInside() const
{
    OssSnBaseNode *own = node();
    if (!own)
        return;
    if (auto *group = qobject_cast<OssSnGroupNode *>(own))
        group->requestOpen();
    else
        fail(OssScriptException::NotSupported,
             QStringLiteral("The node \"%1\" is no group").arg(own->name()));
}

void Node::remove()
{
    OssSnBaseNode *own = node();
    if (!own)
        return;
    if (OssShaderNetwork::isRemovable(own))
        own->network()->removeNodes({own});
    else
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The node \"%1\" cannot be removed").arg(own->name()));
}

// --- wires

Node *Node::inputNode(const QString &input) const
{
    const OssSnBaseNode *own = nodeWithInput(input);
    return own ? OssScriptObject<Node>(own->inputNode(input)) : nullptr;
}

QString Node::inputOutput(const QString &input) const
{
    const OssSnBaseNode *own = nodeWithInput(input);
    return own ? own->inputOutputPoint(input) : QString();
}

void Node::connectInput(const QString &input, Node *source, const QString &output)
{
    OssSnBaseNode *own = nodeWithInput(input);
    if (!own)
        return;
    if (!source) {
        disconnectInput(input);
        return;
    }
    OssSnBaseNode *from = source->node();
    if (!from)
        return;
    const QString point = output.isEmpty() ? from->prefferedOutputPoint() : output;
    const OssResult possible = own->canConnect(input, from, point);
    if (!possible)
        fail(OssScriptException::NotAllowed, possible.error());
    else if (!OssShaderNetworkUtils::setInputNodeBatchConnectable(own, input, from, point, true,
                                                                  true, true, false))
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" cannot be wired to \"%2\"").arg(from->name(), own->name()));
}

void Node::disconnectInput(const QString &input)
{
    if (OssSnBaseNode *own = nodeWithInput(input))
        OssShaderNetworkUtils::setInputNodeBatchConnectable(own, input, nullptr, QString(), true,
                                                            true, true, false);
}

QList<Node *> Node::outputNodes() const
{
    const OssSnBaseNode *own = node();
    return own ? OssScriptObjectList<Node>(own->outputNodes()) : QList<Node *>();
}

QList<Node *> Node::upstreamNodes() const
{
    OssSnBaseNode *own = node();
    if (!own)
        return {};
    return OssScriptObjectList<Node>(
        OssShaderNetworkUtils::getUpstreamNodes(own, false, true, false));
}

QList<Node *> Node::downstreamNodes() const
{
    OssSnBaseNode *own = node();
    if (!own)
        return {};
    return OssScriptObjectList<Node>(OssShaderNetworkUtils::getDownstreamNodes(own, false, true));
}

} // namespace Ossa
