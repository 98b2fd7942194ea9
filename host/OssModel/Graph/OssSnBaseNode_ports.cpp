#include "OssModel/Graph/OssSnBaseNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Types/OssSnTags.h"

#include <algorithm>

namespace {

bool isPermutation(QStringList a, QStringList b)
{
    a.sort();
    b.sort();
    return a == b;
}

/// Of a type's ports: labels, and names where there are none.
template <typename Port>
QStringList prettyNames(const QVector<Port> &ports)
{
    QStringList names;
    names.reserve(ports.size());
    for (const Port &port : ports)
        names.append(port.label.isEmpty() ? port.name : port.label);
    return names;
}

} // namespace

int OssSnBaseNode::inputIndex(const QString &name) const
{
    for (int i = 0; i < m_inputs.size(); ++i) {
        if (m_inputs.at(i).name == name)
            return i;
    }
    return -1;
}

int OssSnBaseNode::outputIndex(const QString &name) const
{
    for (int i = 0; i < m_outputs.size(); ++i) {
        if (m_outputs.at(i).name == name)
            return i;
    }
    return -1;
}

bool OssSnBaseNode::hasInput(const QString &name) const
{
    return inputIndex(name) >= 0;
}

bool OssSnBaseNode::hasOutputPoint(const QString &name) const
{
    return outputIndex(name) >= 0;
}

void OssSnBaseNode::addPlaceholderOutput(const QString &name)
{
    m_outputs.append({name, {}, OssSnDataKind::Color});
}

QStringList OssSnBaseNode::inputNames() const
{
    QStringList names;
    names.reserve(m_inputs.size());
    for (const InputPort &port : m_inputs)
        names.append(port.name);
    return names;
}

QStringList OssSnBaseNode::outputPointNames() const
{
    QStringList names;
    names.reserve(m_outputs.size());
    for (const OutputPoint &point : m_outputs)
        names.append(point.name);
    return names;
}

QStringList OssSnBaseNode::prettyInputNameList() const
{
    return prettyNames(m_inputs);
}

QStringList OssSnBaseNode::prettyOutputNameList() const
{
    return prettyNames(m_outputs);
}

bool OssSnBaseNode::hasInputTag(const QString &input, const QString &tag) const
{
    const int index = inputIndex(input);
    if (index < 0)
        return false;
    if (m_inputs.at(index).tags.contains(tag))
        return true;
    return std::any_of(m_contexts.cbegin(), m_contexts.cend(), [&](const NamedContext &named) {
        return named.context->hasInputTag(input, tag);
    });
}

bool OssSnBaseNode::isInputEnabled(const QString &input) const
{
    const int index = inputIndex(input);
    return index >= 0 && m_inputs.at(index).enabled;
}

QStringList OssSnBaseNode::sharedInputNames() const
{
    QStringList names;
    for (const InputPort &port : m_inputs) {
        if (port.shared)
            names.append(port.name);
    }
    return names;
}

QString OssSnBaseNode::prefferedOutputPoint() const
{
    return m_outputs.isEmpty() ? QString() : m_outputs.first().name;
}

QString OssSnBaseNode::preferredInput() const
{
    QString firstFree;
    for (const InputPort &port : m_inputs) {
        if (port.source || hasInputTag(port.name, OssSnTags::hidden()))
            continue;
        if (port.preferred)
            return port.name;
        if (firstFree.isEmpty())
            firstFree = port.name;
    }
    return firstFree;
}

// --- inputs

void OssSnBaseNode::addInput(const InputPort &port, int index)
{
    addInputs({port}, index);
}

void OssSnBaseNode::addInputs(const QVector<InputPort> &ports, int index)
{
    QVector<InputPort> added;
    QStringList names;
    for (InputPort port : ports) {
        if (port.name.isEmpty() || hasInput(port.name) || names.contains(port.name))
            continue;
        port.source = nullptr;
        port.sourceOutput.clear();
        names.append(port.name);
        added.append(port);
    }
    if (added.isEmpty())
        return;
    const int at = index < 0 || index > m_inputs.size() ? m_inputs.size() : index;
    applyInsertInputs(added, at);
    OssUndoManager::instance()->record(
        tr("Add Input %1 to %2").arg(names.join(QStringLiteral(", ")), name()),
        [this, names] {
            for (const QString &name : names)
                applyRemoveInput(inputIndex(name));
        },
        [this, added, at] { applyInsertInputs(added, at); }, this);
}

bool OssSnBaseNode::removeInput(const QString &name)
{
    const int index = inputIndex(name);
    if (index < 0)
        return false;
    OssUndoManager::AutoMacro macro(tr("Remove Input %1 of %2").arg(name, this->name()));
    setInputNode(name, nullptr, {});
    const InputPort removed = m_inputs.at(index);
    applyRemoveInput(index);
    OssUndoManager::instance()->record(
        {}, [this, removed, index] { applyInsertInputs({removed}, index); },
        [this, name] { applyRemoveInput(inputIndex(name)); }, this);
    return true;
}

void OssSnBaseNode::applyInsertInputs(const QVector<InputPort> &ports, int index)
{
    const bool atEnd = index >= m_inputs.size();
    int at = std::min(index, m_inputs.size());
    QStringList names;
    for (const InputPort &port : ports) {
        m_inputs.insert(at++, port);
        names.append(port.name);
    }
    if (names.size() == 1)
        Q_EMIT inputAdded(names.first());
    else
        Q_EMIT inputListAdded(names);
    if (!atEnd)
        Q_EMIT inputOrderChanged(inputNames());
}

void OssSnBaseNode::applyRemoveInput(int index)
{
    if (index < 0)
        return;
    const QString name = m_inputs.at(index).name;
    m_inputs.remove(index);
    Q_EMIT inputRemoved(name);
}

bool OssSnBaseNode::renameInput(const QString &oldName, const QString &newName)
{
    if (newName.isEmpty() || !hasInput(oldName) || hasInput(newName))
        return false;
    applyRenameInput(oldName, newName);
    OssUndoManager::instance()->record(
        tr("Rename Input %1 of %2").arg(oldName, name()),
        [this, oldName, newName] { applyRenameInput(newName, oldName); },
        [this, oldName, newName] { applyRenameInput(oldName, newName); }, this);
    return true;
}

void OssSnBaseNode::applyRenameInput(const QString &oldName, const QString &newName)
{
    InputPort &port = m_inputs[inputIndex(oldName)];
    port.name = newName;
    if (port.source) {
        for (OutgoingConnection &out : port.source->m_outgoing) {
            if (out.target == this && out.input == oldName)
                out.input = newName;
        }
    }
    Q_EMIT nodeInputRenamed(oldName, newName);
}

bool OssSnBaseNode::reorderInputs(const QStringList &names)
{
    const QStringList before = inputNames();
    if (!isPermutation(before, names))
        return false;
    if (before == names)
        return true;
    applyInputOrder(names);
    OssUndoManager::instance()->record(
        tr("Reorder Inputs of %1").arg(name()), [this, before] { applyInputOrder(before); },
        [this, names] { applyInputOrder(names); }, this);
    return true;
}

bool OssSnBaseNode::reorderOutputs(const QStringList &names)
{
    const QStringList before = outputPointNames();
    if (!isPermutation(before, names))
        return false;
    if (before == names)
        return true;
    applyOutputOrder(names);
    OssUndoManager::instance()->record(
        tr("Reorder Outputs of %1").arg(name()), [this, before] { applyOutputOrder(before); },
        [this, names] { applyOutputOrder(names); }, this);
    return true;
}

void OssSnBaseNode::applyOutputOrder(const QStringList &names)
{
    QVector<OutputPoint> ordered;
    ordered.reserve(m_outputs.size());
    for (const QString &name : names)
        ordered.append(m_outputs.at(outputIndex(name)));
    m_outputs = ordered;
    Q_EMIT outputsRefreshed();
}

void OssSnBaseNode::applyInputOrder(const QStringList &names)
{
    QVector<InputPort> ordered;
    ordered.reserve(m_inputs.size());
    for (const QString &name : names)
        ordered.append(m_inputs.at(inputIndex(name)));
    m_inputs = ordered;
    Q_EMIT inputOrderChanged(names);
}

void OssSnBaseNode::setInputEnabled(const QString &name, bool enabled)
{
    const int index = inputIndex(name);
    if (index < 0 || m_inputs.at(index).enabled == enabled)
        return;
    const auto apply = [this, name](bool value) {
        m_inputs[inputIndex(name)].enabled = value;
        Q_EMIT inputEnabledChanged(name, value);
    };
    apply(enabled);
    OssUndoManager::instance()->record(
        (enabled ? tr("Enable Input %1 of %2") : tr("Disable Input %1 of %2"))
            .arg(name, this->name()),
        [apply, enabled] { apply(!enabled); }, [apply, enabled] { apply(enabled); }, this);
}

void OssSnBaseNode::setInputShared(const QString &name, bool shared)
{
    const int index = inputIndex(name);
    if (index < 0 || m_inputs.at(index).shared == shared)
        return;
    m_inputs[index].shared = shared;
    Q_EMIT inputConnectionIsShared(name);
}

// --- outputs

void OssSnBaseNode::addOutputPoint(const OutputPoint &point, int index)
{
    if (point.name.isEmpty() || hasOutputPoint(point.name))
        return;
    const int at = index < 0 || index > m_outputs.size() ? m_outputs.size() : index;
    applyInsertOutput(point, at);
    OssUndoManager::instance()->record(
        tr("Add Output %1 to %2").arg(point.name, name()),
        [this, name = point.name] { applyRemoveOutput(outputIndex(name)); },
        [this, point, at] { applyInsertOutput(point, at); }, this);
}

bool OssSnBaseNode::removeOutputPoint(const QString &name)
{
    const int index = outputIndex(name);
    if (index < 0)
        return false;
    OssUndoManager::AutoMacro macro(tr("Remove Output %1 of %2").arg(name, this->name()));
    const QVector<OutgoingConnection> wires = m_outgoing;
    for (const OutgoingConnection &wire : wires) {
        if (wire.outputPoint == name)
            wire.target->setInputNode(wire.input, nullptr, {});
    }
    const OutputPoint removed = m_outputs.at(index);
    applyRemoveOutput(index);
    OssUndoManager::instance()->record(
        {}, [this, removed, index] { applyInsertOutput(removed, index); },
        [this, name] { applyRemoveOutput(outputIndex(name)); }, this);
    return true;
}

void OssSnBaseNode::applyInsertOutput(const OutputPoint &point, int index)
{
    const bool atEnd = index >= m_outputs.size();
    m_outputs.insert(std::min(index, m_outputs.size()), point);
    Q_EMIT outputPointAdded(point.name);
    if (!atEnd)
        Q_EMIT outputsRefreshed();
}

void OssSnBaseNode::applyRemoveOutput(int index)
{
    if (index < 0)
        return;
    const QString name = m_outputs.at(index).name;
    m_outputs.remove(index);
    Q_EMIT outputPointRemoved(name);
}

bool OssSnBaseNode::renameOutputPoint(const QString &oldName, const QString &newName)
{
    if (newName.isEmpty() || !hasOutputPoint(oldName) || hasOutputPoint(newName))
        return false;
    applyRenameOutput(oldName, newName);
    OssUndoManager::instance()->record(
        tr("Rename Output %1 of %2").arg(oldName, name()),
        [this, oldName, newName] { applyRenameOutput(newName, oldName); },
        [this, oldName, newName] { applyRenameOutput(oldName, newName); }, this);
    return true;
}

void OssSnBaseNode::applyRenameOutput(const QString &oldName, const QString &newName)
{
    m_outputs[outputIndex(oldName)].name = newName;
    for (OutgoingConnection &out : m_outgoing) {
        if (out.outputPoint != oldName)
            continue;
        out.outputPoint = newName;
        out.target->m_inputs[out.target->inputIndex(out.input)].sourceOutput = newName;
    }
    Q_EMIT outputPointRenamed(oldName, newName);
}

void OssSnBaseNode::setPortKinds(OssSnDataKind kind)
{
    for (InputPort &port : m_inputs)
        port.kind = kind;
    for (OutputPoint &point : m_outputs)
        point.kind = kind;
    Q_EMIT inputsRefreshed();
    Q_EMIT outputsRefreshed();
}
