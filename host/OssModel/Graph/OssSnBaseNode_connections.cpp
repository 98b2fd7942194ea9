#include "OssModel/Graph/OssSnBaseNode.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Types/OssSnTags.h"

#include <algorithm>

OssSnBaseNode *OssSnBaseNode::inputNode(const QString &input) const
{
    const int index = inputIndex(input);
    return index < 0 ? nullptr : m_inputs.at(index).source;
}

QString OssSnBaseNode::inputOutputPoint(const QString &input) const
{
    const int index = inputIndex(input);
    return index < 0 ? QString() : m_inputs.at(index).sourceOutput;
}

QList<OssSnBaseNode *> OssSnBaseNode::inputNodes() const
{
    QList<OssSnBaseNode *> nodes;
    nodes.reserve(m_inputs.size());
    for (const InputPort &port : m_inputs)
        nodes.append(port.source);
    return nodes;
}

QList<OssSnBaseNode *> OssSnBaseNode::outputNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (const OutgoingConnection &out : m_outgoing) {
        if (!nodes.contains(out.target))
            nodes.append(out.target);
    }
    return nodes;
}

bool OssSnBaseNode::isOutputUsed(const QString &outputPoint) const
{
    return std::any_of(m_outgoing.cbegin(), m_outgoing.cend(), [&](const OutgoingConnection &out) {
        return out.outputPoint == outputPoint;
    });
}

bool OssSnBaseNode::dependsOn(const OssSnBaseNode *other) const
{
    if (this != other && other->m_outgoing.isEmpty())
        return false; // as with every node that was just made
    QSet<const OssSnBaseNode *> seen{this};
    QVector<const OssSnBaseNode *> open{this};
    while (!open.isEmpty()) {
        const OssSnBaseNode *node = open.takeLast();
        if (node == other)
            return true;
        for (const InputPort &port : node->m_inputs) {
            if (port.source && !seen.contains(port.source)) {
                seen.insert(port.source);
                open.append(port.source);
            }
        }
    }
    return false;
}

OssResult OssSnBaseNode::canConnect(const QString &input, const OssSnBaseNode *source,
                                    const QString &outputPoint) const
{
    if (!hasInput(input))
        return OssResult::failure(tr("\"%1\" has no input \"%2\"").arg(m_name, input));
    if (!source)
        return {};
    if (!source->hasOutputPoint(outputPoint))
        return OssResult::failure(
            tr("\"%1\" has no output \"%2\"").arg(source->name(), outputPoint));
    // The viewer looks into every network of its object.
    const bool viewer = hasTag(OssSnTags::viewer());
    if (source->network() != m_network && !viewer)
        return OssResult::failure(
            tr("\"%1\" and \"%2\" are in different networks").arg(source->name(), m_name));
    if (source->dependsOn(this))
        return OssResult::failure(
            tr("\"%1\" already takes its input from \"%2\": the connection would close a loop")
                .arg(source->name(), m_name));
    return {};
}

bool OssSnBaseNode::setInputNode(const QString &input, OssSnBaseNode *source,
                                 const QString &outputPoint)
{
    return connectInput(input, source, outputPoint, true, true, true, false);
}

bool OssSnBaseNode::connectInput(const QString &input, OssSnBaseNode *source,
                                 const QString &outputPoint, bool record, bool, bool acrossNetworks,
                                 bool)
{
    OssResult possible = canConnect(input, source, outputPoint);
    if (possible && source && !acrossNetworks && source->network() != m_network)
        possible = OssResult::failure(
            tr("\"%1\" and \"%2\" are in different networks").arg(source->name(), m_name));
    if (!possible) {
        OssDebug("OssSnBaseNode", __LINE__, "[ !! ] Cannot connect: %s",
                 qPrintable(possible.error()));
        return false;
    }
    const int index = inputIndex(input);
    const InputPort before = m_inputs.at(index);
    const QString point = source ? outputPoint : QString();
    if (before.source == source && before.sourceOutput == point)
        return true;
    if (record)
        OssShaderNetworkManager::instance()->tellOfWiring(this);
    applyConnection(index, source, point);
    if (record) {
        OssUndoManager::instance()->record(
            source ? tr("Connect %1").arg(m_name) : tr("Disconnect %1").arg(m_name),
            [this, input, before] {
                applyConnection(inputIndex(input), before.source, before.sourceOutput);
            },
            [this, input, source, point] { applyConnection(inputIndex(input), source, point); },
            this);
    }
    return true;
}

void OssSnBaseNode::applyConnection(int index, OssSnBaseNode *source, const QString &outputPoint)
{
    if (index < 0)
        return;
    const QString name = m_inputs.at(index).name;
    OssSnBaseNode *oldSource = m_inputs.at(index).source;
    const QString oldPoint = m_inputs.at(index).sourceOutput;
    if (oldSource)
        oldSource->unlinkOutgoing(oldPoint, this, name);
    m_inputs[index].source = source;
    m_inputs[index].sourceOutput = outputPoint;
    const bool first = source && !source->isOutputUsed(outputPoint);
    if (source)
        source->linkOutgoing(outputPoint, this, name);

    if (oldSource && oldSource != source)
        Q_EMIT oldSource->outputNodeDetached(oldPoint);
    if (oldSource && !oldSource->isOutputUsed(oldPoint))
        Q_EMIT oldSource->outputPointFreed(oldPoint);
    if (first)
        Q_EMIT source->outputPointUsed(outputPoint);
    Q_EMIT inputNodeChanged(name, source, outputPoint);
}

void OssSnBaseNode::connectSilently(const QString &input, OssSnBaseNode *source,
                                    const QString &outputPoint)
{
    InputPort &port = m_inputs[inputIndex(input)];
    if (port.source)
        port.source->unlinkOutgoing(port.sourceOutput, this, input);
    port.source = source;
    port.sourceOutput = outputPoint;
    if (source)
        source->linkOutgoing(outputPoint, this, input);
}

void OssSnBaseNode::cutLoadedWires()
{
    for (const InputPort &port : qAsConst(m_inputs)) {
        if (port.source)
            connectSilently(port.name, nullptr, {});
    }
    const QVector<OutgoingConnection> wires = m_outgoing;
    for (const OutgoingConnection &wire : wires)
        wire.target->connectSilently(wire.input, nullptr, {});
}

void OssSnBaseNode::linkOutgoing(const QString &outputPoint, OssSnBaseNode *target,
                                 const QString &input)
{
    m_outgoing.append({outputPoint, target, input});
}

void OssSnBaseNode::unlinkOutgoing(const QString &outputPoint, OssSnBaseNode *target,
                                   const QString &input)
{
    for (int i = 0; i < m_outgoing.size(); ++i) {
        const OutgoingConnection &out = m_outgoing.at(i);
        if (out.target == target && out.input == input && out.outputPoint == outputPoint) {
            m_outgoing.remove(i);
            return;
        }
    }
}

void OssSnBaseNode::disconnectAll()
{
    OssUndoManager::AutoMacro macro(tr("Disconnect %1").arg(m_name));
    const QStringList names = inputNames();
    for (const QString &name : names)
        setInputNode(name, nullptr, {});
    const QVector<OutgoingConnection> wires = m_outgoing;
    for (const OutgoingConnection &wire : wires)
        wire.target->setInputNode(wire.input, nullptr, {});
}

QList<OssSnBaseNode *> OssSnBaseNode::unwiredSources() const
{
    return {};
}

QList<OssSnBaseNode *> OssSnBaseNode::unwiredTargets() const
{
    return {};
}
