#include "OssNodeGraph/Items/OssNgNodePorts.h"

OssNgNodePorts::OssNgNodePorts() = default;
OssNgNodePorts::~OssNgNodePorts() = default;

void OssNgNodePorts::addInputPort(const QString &name, bool preferred, const QSet<QString> &tags)
{
    OssNgPort &port = m_inputs.add(name);
    port.preferred = preferred;
    port.tags = tags;
    portsChanged();
}

void OssNgNodePorts::addInputPorts(const QStringList &names)
{
    m_inputs.arrange(names);
    portsChanged();
}

void OssNgNodePorts::addOutputPort(const QString &name, bool flag)
{
    const bool known = m_outputs.find(name);
    OssNgPort &port = m_outputs.add(name);
    port.flag = flag;
    if (!known)
        port.used = hasConsumer(name);
    portsChanged();
}

void OssNgNodePorts::clearInputPorts()
{
    m_inputs.ports().clear();
    portsChanged();
}

void OssNgNodePorts::clearOutputPorts()
{
    m_outputs.ports().clear();
    portsChanged();
}

void OssNgNodePorts::setOutputUsed(const QString &name, bool used)
{
    const int index = m_outputs.indexOf(name);
    if (index < 0 || m_outputs.ports().at(index).used == used)
        return;
    m_outputs.ports()[index].used = used;
    portsChanged();
}

// --- names

void OssNgNodePorts::setConnectionDescriptiveNames(const QStringList &inputs,
                                                   const QStringList &outputs)
{
    m_inputs.setDescriptiveNames(inputs);
    m_outputs.setDescriptiveNames(outputs);
    portsChanged();
}

void OssNgNodePorts::setConnectionPrettyNames(const QStringList &inputs, const QStringList &outputs)
{
    m_inputs.setPrettyNames(inputs);
    m_outputs.setPrettyNames(outputs);
    portsChanged();
}

QString OssNgNodePorts::calledName(Side side, const QString &name) const
{
    const int index = list(side).indexOf(name);
    return index < 0 ? name : list(side).calledName(index);
}

QString OssNgNodePorts::outputPointDescriptiveName(const QString &name) const
{
    return calledName(Side::Output, name);
}

QString OssNgNodePorts::inputDescriptiveName(const QString &name) const
{
    return calledName(Side::Input, name);
}

QString OssNgNodePorts::portLabel(int index, Side side) const
{
    return list(side).label(index, portRow(ports(side)[index], side));
}

void OssNgNodePorts::setInputPortText(const QString &name, const QString &text)
{
    const int index = m_inputs.indexOf(name);
    if (index < 0 || m_inputs.ports().at(index).text == text)
        return;
    m_inputs.ports()[index].text = text;
    portsChanged();
}

QString OssNgNodePorts::inputPortText(const QString &name) const
{
    const int index = m_inputs.indexOf(name);
    return index < 0 ? QString() : portLabel(index, Side::Input);
}

void OssNgNodePorts::setLabelsVisible(bool visible)
{
    if (m_labelsVisible == visible)
        return;
    m_labelsVisible = visible;
    portsChanged();
}

// --- looks and places

void OssNgNodePorts::setPortKinds(const QHash<QString, int> &inputs,
                                  const QHash<QString, int> &outputs)
{
    m_inputs.setKinds(inputs);
    m_outputs.setKinds(outputs);
    portsChanged();
}

void OssNgNodePorts::setConnectionTextPositions(const QHash<QString, float> &inputs,
                                                const QHash<QString, float> &outputs)
{
    m_inputs.setTextPositions(inputs);
    m_outputs.setTextPositions(outputs);
    portsChanged();
}

void OssNgNodePorts::setConnectionPositions(const StubPositions &inputs,
                                            const StubPositions &outputs)
{
    m_inputs.setStubs(inputs);
    m_outputs.setStubs(outputs);
    portsChanged();
}

const OssNgPort *OssNgNodePorts::inputPortAt(const QPointF &local, qreal reach) const
{
    return m_inputs.nearest(local, reach);
}

const OssNgPort *OssNgNodePorts::outputPortAt(const QPointF &local, qreal reach) const
{
    return m_outputs.nearest(local, reach);
}

void OssNgNodePorts::setLitPort(const QString &name, bool input)
{
    if (name.isEmpty() && m_inputs.lit().isEmpty() && m_outputs.lit().isEmpty())
        return;
    m_inputs.setLit(input ? name : QString());
    m_outputs.setLit(input ? QString() : name);
    portsRepainted();
}

QPointF OssNgNodePorts::portDirection(Side side, const QString &name) const
{
    const OssNgPortList::Stub *stub = portsAlongEdges() ? list(side).stub(name) : nullptr;
    if (stub && stub->first != stub->second)
        return stub->second - stub->first;
    const qreal sign = side == Side::Input ? -1.0 : 1.0;
    return portsAlongEdges() ? QPointF(0.0, sign) : QPointF(sign, 0.0);
}

QPointF OssNgNodePorts::inputPortDirection(const QString &name) const
{
    return portDirection(Side::Input, name);
}

QPointF OssNgNodePorts::outputPortDirection(const QString &name) const
{
    return portDirection(Side::Output, name);
}
