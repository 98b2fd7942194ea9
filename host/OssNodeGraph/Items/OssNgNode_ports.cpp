#include "OssNodeGraph/Items/OssNgNode.h"

#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNodeExtras.h"

#include <algorithm>

QVector<OssNgPort> &OssNgNode::ports(Side side)
{
    return side == Side::Input ? m_inputPorts : m_outputPorts;
}

const QVector<OssNgPort> &OssNgNode::ports(Side side) const
{
    return side == Side::Input ? m_inputPorts : m_outputPorts;
}

int OssNgNode::portIndex(Side side, const QString &name, int hint) const
{
    const QVector<OssNgPort> &all = ports(side);
    if (hint >= 0 && hint < all.size() && all[hint].name == name)
        return hint;
    for (int i = 0; i < all.size(); ++i) {
        if (all[i].name == name)
            return i;
    }
    return -1;
}

void OssNgNode::applyKind(OssNgPort &port, Side side) const
{
    if (!m_extras)
        return;
    const QHash<QString, int> &kinds = side == Side::Input ? m_extras->inputKinds
                                                           : m_extras->outputKinds;
    const int kind = kinds.value(port.name, int(OssNgPortKind::Color));
    port.kind = OssNgPortKind(std::clamp(kind, 0, int(OssNgPortKind::Data)));
}

void OssNgNode::addInputPort(const QString &name, bool preferred, const QSet<QString> &tags)
{
    int index = portIndex(Side::Input, name);
    if (index < 0) {
        index = m_inputPorts.size();
        OssNgPort port;
        port.name = name;
        applyKind(port, Side::Input);
        m_inputPorts.append(port);
    }
    m_inputPorts[index].preferred = preferred;
    m_inputPorts[index].tags = tags;
    refresh();
}

void OssNgNode::addInputPorts(const QStringList &names)
{
    orderPorts(Side::Input, names);
}

void OssNgNode::addOutputPort(const QString &name, bool flag)
{
    int index = portIndex(Side::Output, name);
    if (index < 0) {
        index = m_outputPorts.size();
        OssNgPort port;
        port.name = name;
        applyKind(port, Side::Output);
        for (const OssNgEdge *edge : qAsConst(m_outputEdges))
            port.used = port.used || edge->sourceOutput() == name;
        m_outputPorts.append(port);
    }
    m_outputPorts[index].flag = flag;
    refresh();
}

void OssNgNode::addOutputPorts(const QStringList &names)
{
    orderPorts(Side::Output, names);
}

void OssNgNode::orderPorts(Side side, const QStringList &names)
{
    QHash<QString, int> places;
    for (const QString &name : names)
        places.insert(name, places.size());
    QVector<OssNgPort> &all = ports(side);
    for (const QString &name : names) {
        if (portIndex(side, name) >= 0)
            continue;
        OssNgPort port;
        port.name = name;
        applyKind(port, side);
        all.append(port);
    }
    // Listed ports change places among themselves; others stay where they are.
    QVector<int> slotsOfListed;
    QVector<OssNgPort> listed;
    for (int i = 0; i < all.size(); ++i) {
        if (!places.contains(all[i].name))
            continue;
        slotsOfListed.append(i);
        listed.append(all[i]);
    }
    std::stable_sort(listed.begin(), listed.end(),
                     [&places](const OssNgPort &a, const OssNgPort &b) {
                         return places.value(a.name) < places.value(b.name);
                     });
    for (int i = 0; i < listed.size(); ++i)
        all[slotsOfListed[i]] = listed[i];
    refresh();
}

void OssNgNode::removePort(Side side, const QString &name)
{
    const int index = portIndex(side, name);
    if (index < 0)
        return;
    ports(side).removeAt(index);
    refresh();
}

void OssNgNode::removeInputPort(const QString &name)
{
    delete input(name);
    removePort(Side::Input, name);
}

void OssNgNode::removeOutputPort(const QString &name)
{
    const QList<OssNgEdge *> edges = m_outputEdges;
    for (OssNgEdge *edge : edges) {
        if (edge->sourceOutput() == name)
            delete edge;
    }
    removePort(Side::Output, name);
}

void OssNgNode::renamePort(Side side, const QString &oldName, const QString &newName)
{
    const int index = portIndex(side, oldName);
    if (index < 0 || portIndex(side, newName) >= 0)
        return;
    ports(side)[index].name = newName;
    const QList<OssNgEdge *> edges = side == Side::Input ? m_inputEdges : m_outputEdges;
    for (OssNgEdge *edge : edges) {
        QString &name = side == Side::Input ? edge->m_input : edge->m_output;
        if (name == oldName)
            name = newName;
    }
    if (m_extras) {
        QHash<QString, int> &kinds = side == Side::Input ? m_extras->inputKinds
                                                         : m_extras->outputKinds;
        if (kinds.contains(oldName))
            kinds.insert(newName, kinds.take(oldName));
    }
    refresh();
}

void OssNgNode::renameInputPort(const QString &oldName, const QString &newName)
{
    renamePort(Side::Input, oldName, newName);
}

void OssNgNode::renameOutputPort(const QString &oldName, const QString &newName)
{
    renamePort(Side::Output, oldName, newName);
}

void OssNgNode::clearInputPorts()
{
    m_inputPorts.clear();
    refresh();
}

void OssNgNode::clearOutputPorts()
{
    m_outputPorts.clear();
    refresh();
}

QStringList OssNgNode::inputPortNames() const
{
    QStringList names;
    for (const OssNgPort &port : m_inputPorts)
        names.append(port.name);
    return names;
}

QStringList OssNgNode::outputPortNames() const
{
    QStringList names;
    for (const OssNgPort &port : m_outputPorts)
        names.append(port.name);
    return names;
}

const OssNgPort *OssNgNode::inputPort(const QString &name) const
{
    const int index = portIndex(Side::Input, name);
    return index < 0 ? nullptr : &m_inputPorts[index];
}

const OssNgPort *OssNgNode::outputPort(const QString &name) const
{
    const int index = portIndex(Side::Output, name);
    return index < 0 ? nullptr : &m_outputPorts[index];
}

QString OssNgNode::portLabel(int index, Side side) const
{
    const OssNgPort &port = ports(side)[index];
    if (!port.text.isEmpty())
        return port.text;
    const QString row = portRow(port, side);
    if (!row.isEmpty())
        return row;
    if (m_extras) {
        const bool input = side == Side::Input;
        const QStringList &descriptive = input ? m_extras->inputDescriptiveNames
                                               : m_extras->outputDescriptiveNames;
        if (!descriptive.value(index).isEmpty())
            return descriptive.value(index);
        const QStringList &pretty = input ? m_extras->inputPrettyNames
                                          : m_extras->outputPrettyNames;
        if (!pretty.value(index).isEmpty())
            return pretty.value(index);
    }
    return port.name;
}

void OssNgNode::setInputPortText(const QString &name, const QString &text)
{
    const int index = portIndex(Side::Input, name);
    if (index < 0 || m_inputPorts[index].text == text)
        return;
    m_inputPorts[index].text = text;
    refresh();
}

QString OssNgNode::inputPortText(const QString &name) const
{
    const int index = portIndex(Side::Input, name);
    return index < 0 ? QString() : portLabel(index, Side::Input);
}

QString OssNgNode::outputPortText(const QString &name) const
{
    const int index = portIndex(Side::Output, name);
    return index < 0 ? QString() : portLabel(index, Side::Output);
}

void OssNgNode::setOutputUsed(const QString &name, bool used)
{
    const int index = portIndex(Side::Output, name);
    if (index < 0 || m_outputPorts[index].used == used)
        return;
    m_outputPorts[index].used = used;
    refresh();
}

void OssNgNode::setLabelsVisible(bool visible)
{
    if (m_labelsVisible == visible)
        return;
    m_labelsVisible = visible;
    refresh();
}

void OssNgNode::setConnectionDescriptiveNames(const QStringList &inputs, const QStringList &outputs)
{
    extras().inputDescriptiveNames = inputs;
    extras().outputDescriptiveNames = outputs;
    refresh();
}

void OssNgNode::setConnectionPrettyNames(const QStringList &inputs, const QStringList &outputs)
{
    extras().inputPrettyNames = inputs;
    extras().outputPrettyNames = outputs;
    refresh();
}

QString OssNgNode::outputPointDescriptiveName(const QString &name) const
{
    const int index = portIndex(Side::Output, name);
    const QString given = m_extras ? m_extras->outputDescriptiveNames.value(index) : QString();
    return given.isEmpty() ? name : given;
}

QString OssNgNode::inputDescriptiveName(const QString &name) const
{
    const int index = portIndex(Side::Input, name);
    const QString given = m_extras ? m_extras->inputDescriptiveNames.value(index) : QString();
    return given.isEmpty() ? name : given;
}

void OssNgNode::setConnectionTextPositions(const QHash<QString, float> &inputs,
                                           const QHash<QString, float> &outputs)
{
    if (!m_extras && inputs.isEmpty() && outputs.isEmpty())
        return;
    extras().inputTextPositions = inputs;
    extras().outputTextPositions = outputs;
    refresh();
}

void OssNgNode::setConnectionPositions(const StubPositions &inputs, const StubPositions &outputs)
{
    if (!m_extras && inputs.isEmpty() && outputs.isEmpty())
        return;
    extras().inputStubs = inputs;
    extras().outputStubs = outputs;
    refresh();
}

void OssNgNode::setPortKinds(const QHash<QString, int> &inputs, const QHash<QString, int> &outputs)
{
    extras().inputKinds = inputs;
    extras().outputKinds = outputs;
    for (OssNgPort &port : m_inputPorts)
        applyKind(port, Side::Input);
    for (OssNgPort &port : m_outputPorts)
        applyKind(port, Side::Output);
    refresh();
}

const OssNgPort *OssNgNode::portAt(Side side, const QPointF &local, qreal reach) const
{
    const OssNgPort *best = nullptr;
    qreal nearest = reach * reach;
    for (const OssNgPort &port : ports(side)) {
        if (!port.listed)
            continue;
        const QPointF away = port.position - local;
        const qreal squared = QPointF::dotProduct(away, away);
        if (squared > nearest)
            continue;
        nearest = squared;
        best = &port;
    }
    return best;
}

const OssNgPort *OssNgNode::inputPortAt(const QPointF &local, qreal reach) const
{
    return portAt(Side::Input, local, reach);
}

const OssNgPort *OssNgNode::outputPortAt(const QPointF &local, qreal reach) const
{
    return portAt(Side::Output, local, reach);
}

void OssNgNode::setLitPort(const QString &name, bool input)
{
    if (name.isEmpty() && (!m_extras || m_extras->litPort.isEmpty()))
        return;
    extras().litPort = name;
    extras().litSide = input ? Side::Input : Side::Output;
    appearanceChanged();
}
