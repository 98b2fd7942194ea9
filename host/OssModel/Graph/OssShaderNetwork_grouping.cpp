#include "OssModel/Graph/OssShaderNetwork.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QRectF>
#include <QSizeF>

#include <algorithm>
#include <cmath>

// Grouping and ungrouping.

namespace {

/// One stream that crosses the border of a group.
struct Stream
{
    OssSnBaseNode *source;
    QString outputPoint;
    OssSnDataKind kind;
    QVector<QPair<OssSnBaseNode *, QString>> targets;
};

Stream &streamOf(QVector<Stream> *streams, OssSnBaseNode *source, const QString &outputPoint)
{
    for (Stream &stream : *streams) {
        if (stream.source == source && stream.outputPoint == outputPoint)
            return stream;
    }
    OssSnDataKind kind = OssSnDataKind::Color;
    for (const OssSnBaseNode::OutputPoint &point : source->outputPoints()) {
        if (point.name == outputPoint)
            kind = point.kind;
    }
    streams->append({source, outputPoint, kind, {}});
    return streams->last();
}

/// What comes in, in the order of the nodes and their inputs, and what goes out.
void findStreams(const QList<OssSnBaseNode *> &nodes, QVector<Stream> *in, QVector<Stream> *out)
{
    const QSet<OssSnBaseNode *> inside(nodes.cbegin(), nodes.cend());
    for (OssSnBaseNode *node : nodes) {
        for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
            if (port.source && !inside.contains(port.source))
                streamOf(in, port.source, port.sourceOutput).targets.append({node, port.name});
        }
        for (const OssSnBaseNode::OutgoingConnection &wire : node->outgoingConnections()) {
            if (!inside.contains(wire.target))
                streamOf(out, node, wire.outputPoint).targets.append({wire.target, wire.input});
        }
    }
}

// Places are known by the context that shows the node, which need not exist.

QRectF areaOf(const OssSnBaseNode *node)
{
    const OssSnBaseContext *context = node->viewContext();
    return context ? QRectF(context->nodePosition(), context->nodeSize()) : QRectF();
}

QRectF areaOf(const QList<OssSnBaseNode *> &nodes)
{
    QRectF area;
    for (const OssSnBaseNode *node : nodes)
        area |= areaOf(node);
    return area;
}

void moveTo(const OssSnBaseNode *node, const QPointF &position)
{
    if (OssSnBaseContext *context = node->viewContext())
        context->setNodePositionUndo(position);
}

bool isViewer(const OssSnBaseNode *node)
{
    return node->hasTag(OssSnTags::viewer());
}

bool isPort(const OssSnBaseNode *node)
{
    return node->hasTag(OssSnTags::input()) || node->hasTag(OssSnTags::output());
}

bool canBeGrouped(const OssSnBaseNode *node)
{
    return OssShaderNetwork::isRemovable(node) && !isPort(node) && !isViewer(node);
}

QString freePortName(const OssSnGroupNode *group, const QString &wanted)
{
    return group->groupNetwork()->generateUniqueNodeName(wanted);
}

/// By how much the nodes inside move when they come out of a group.
QPointF wayOut(const OssSnGroupNode *group, const QList<OssSnBaseNode *> &inside)
{
    const QRectF area = areaOf(group);
    if (const std::optional<QPointF> first = group->rememberedPosition())
        return area.topLeft() - *first;
    return area.center() - areaOf(inside).center();
}

/// The wires that take the place of a group's: what feeds a port from outside feeds what the port fed
/// inside, and the other way round.
QVector<Stream> wiresWithout(const OssSnGroupNode *group)
{
    const QList<OssSnBaseNode *> inputs = group->inputNodesInside();
    QVector<Stream> rewired;
    for (OssSnBaseNode *port : inputs) {
        OssSnBaseNode *source = group->inputNode(port->name());
        const QString point = group->inputOutputPoint(port->name());
        const QVector<OssSnBaseNode::OutgoingConnection> wires = port->outgoingConnections();
        for (const OssSnBaseNode::OutgoingConnection &wire : wires) {
            if (source && !isPort(wire.target))
                rewired.append({source, point, {}, {{wire.target, wire.input}}});
        }
    }
    const QVector<OssSnBaseNode::OutgoingConnection> wires = group->outgoingConnections();
    for (const OssSnBaseNode::OutgoingConnection &wire : wires) {
        const OssSnBaseNode *port = group->outputNodeInside(wire.outputPoint);
        const QString input = port ? port->inputNames().first() : QString();
        OssSnBaseNode *source = port ? port->inputNode(input) : nullptr;
        QString point = port ? port->inputOutputPoint(input) : QString();
        if (source && source->hasTag(OssSnTags::input())) {
            point = group->inputOutputPoint(source->name());
            source = group->inputNode(source->name());
        }
        if (source)
            rewired.append({source, point, {}, {{wire.target, wire.input}}});
    }
    return rewired;
}

} // namespace

/// Nodes on their way between two networks, with the wires among them.
struct OssShaderNetwork::Relocated
{
    struct Entry
    {
        OssSnBaseNode *node;
        QString name;
    };

    QVector<Entry> entries; ///< in the order of the network they come from
    OssShaderNetwork *from = nullptr;
    OssShaderNetwork *to = nullptr;

    void go()
    {
        std::vector<NodePointer> taken;
        for (const Entry &entry : qAsConst(entries))
            taken.push_back(from->takeNode(entry.node));
        for (NodePointer &node : taken)
            to->insertNode(std::move(node));
        arrive(to);
        Q_EMIT from->nodesChanged();
    }

    void comeBack()
    {
        for (const Entry &entry : qAsConst(entries)) {
            NodePointer node = to->takeNode(entry.node);
            node->applyName(entry.name);
            from->insertNode(std::move(node));
        }
        arrive(from);
        Q_EMIT to->nodesChanged();
    }

    void arrive(OssShaderNetwork *network) const
    {
        for (const Entry &entry : entries)
            network->registerNode(entry.node);
    }
};

void OssShaderNetwork::relocate(const QList<OssSnBaseNode *> &nodes, OssShaderNetwork *target)
{
    auto relocated = std::make_shared<Relocated>();
    relocated->from = this;
    relocated->to = target;
    const QSet<OssSnBaseNode *> wanted(nodes.cbegin(), nodes.cend());
    for (const NodePointer &node : m_nodes) {
        if (!wanted.contains(node.get()))
            continue;
        node->setSelected(false);
        relocated->entries.append({node.get(), node->name()});
    }
    relocated->go();
    OssUndoManager::instance()->record(
        {}, [relocated] { relocated->comeBack(); }, [relocated] { relocated->go(); });
}

QList<OssSnBaseNode *> OssShaderNetwork::nodesBetween(const QList<OssSnBaseNode *> &members) const
{
    QList<OssSnBaseNode *> own;
    std::copy_if(members.cbegin(), members.cend(), std::back_inserter(own),
                 [&](const auto *node) { return node->network() == this && canBeGrouped(node); });
    const QList<OssSnBaseNode *> everywhere = OssShaderNetworkUtils::nodesBetween(own);
    const QSet<OssSnBaseNode *> found(everywhere.cbegin(), everywhere.cend());
    QList<OssSnBaseNode *> between;
    for (const NodePointer &node : m_nodes) {
        if (found.contains(node.get()))
            between.append(node.get());
    }
    return between;
}

OssSnGroupNode *OssShaderNetwork::groupNodes(const QList<OssSnBaseNode *> &members)
{
    const QSet<OssSnBaseNode *> wanted(members.cbegin(), members.cend());
    QList<OssSnBaseNode *> own;
    for (const NodePointer &node : m_nodes) {
        if (wanted.contains(node.get()) && canBeGrouped(node.get()))
            own.append(node.get());
    }
    if (own.isEmpty() || !nodesBetween(own).isEmpty())
        return nullptr;
    const OssUndoManager::AutoMacro macro(tr("Group Nodes"));
    const ViewUpdateLock lock(this);
    const QRectF area = areaOf(own);
    QVector<Stream> in;
    QVector<Stream> out;
    findStreams(own, &in, &out);
    auto *group = qobject_cast<OssSnGroupNode *>(createNode(QStringLiteral("Misc/Group")));
    if (!group)
        return nullptr;
    for (const Stream &stream : qAsConst(in)) {
        for (const auto &target : stream.targets)
            target.first->setInputNode(target.second, nullptr, {});
    }
    for (const Stream &stream : qAsConst(out)) {
        for (const auto &target : stream.targets)
            target.first->setInputNode(target.second, nullptr, {});
    }
    relocate(own, group->groupNetwork());
    for (const Stream &stream : qAsConst(in)) {
        const QString name = freePortName(group, stream.targets.first().second);
        OssSnBaseNode *port = group->createInput(name, stream.kind);
        for (const auto &target : stream.targets)
            target.first->setInputNode(target.second, port, port->prefferedOutputPoint());
        group->setInputNode(port->name(), stream.source, stream.outputPoint);
    }
    for (const Stream &stream : qAsConst(out)) {
        OssSnBaseNode *port = group->createOutput(freePortName(group, stream.outputPoint),
                                                  stream.kind);
        port->setInputNode(port->inputNames().first(), stream.source, stream.outputPoint);
        for (const auto &target : stream.targets)
            target.first->setInputNode(target.second, group, port->name());
    }
    Q_EMIT group->newGroupNodeInputOutputCreated(); // now that they are wired
    // Its ports have given it the size that it keeps.
    const QRectF made = areaOf(group);
    moveTo(group, area.center() - QPointF(made.width() / 2.0, made.height() / 2.0));
    group->rememberPosition(areaOf(group).topLeft());
    return group;
}

QList<OssSnBaseNode *> OssShaderNetwork::ungroup(OssSnGroupNode *group)
{
    if (!group || group->network() != this)
        return {};
    const OssUndoManager::AutoMacro macro(tr("Ungroup %1").arg(group->name()));
    const ViewUpdateLock lock(this);
    const QVector<Stream> rewired = wiresWithout(group);
    for (const Stream &wire : rewired)
        OssShaderNetworkManager::instance()->tellOfWiring(wire.targets.first().first);
    QList<OssSnBaseNode *> inside;
    const QList<OssSnBaseNode *> all = group->groupNetwork()->nodes();
    for (OssSnBaseNode *node : all) {
        if (isPort(node))
            node->disconnectAll();
        else if (!isViewer(node))
            inside.append(node);
    }
    const QPointF way = wayOut(group, inside);
    // Where the viewer stands is no part of a step.
    const OssSnBaseNode *viewer = viewerNode();
    if (viewer && viewer->network() == group->groupNetwork()) {
        moveCurrentViewerNodeToNetwork();
        if (OssSnBaseContext *context = viewer->viewContext())
            context->setNodePosition(context->nodePosition() + way);
    }
    group->groupNetwork()->relocate(inside, this);
    group->handKnobsOver();
    removeUnchecked({group}, {});
    // A group that was not moved gives its nodes back where they were, to the last bit.
    if (std::abs(way.x()) > 0.5 || std::abs(way.y()) > 0.5) {
        for (const OssSnBaseNode *node : qAsConst(inside))
            moveTo(node, areaOf(node).topLeft() + way);
    }
    for (const Stream &wire : rewired) {
        const auto &target = wire.targets.first();
        target.first->setInputNode(target.second, wire.source, wire.outputPoint);
    }
    return inside;
}
