#pragma once

#include "OssNodeGraph/Items/OssNgPortList.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QPointF>

/// The ports of a node: which there are, what they are called and where they are. Base of OssNgNode,
/// which has the wires and does the painting.
///
/// Names, kinds and positions may be given before the ports. Points are node coordinates. Setters
/// announce nothing.
class OSSNODEGRAPH_EXPORT OssNgNodePorts
{
public:
    OssNgNodePorts(const OssNgNodePorts &) = delete;
    OssNgNodePorts &operator=(const OssNgNodePorts &) = delete;

    using StubPositions = OssNgPortList::Stubs;

    /// A known name keeps its place, and takes the new flags.
    void addInputPort(const QString &name, bool preferred = false, const QSet<QString> &tags = {});
    /// Adds what is missing and brings the listed ports into the order of the list.
    void addInputPorts(const QStringList &names);
    void addOutputPort(const QString &name, bool flag = false);
    /// Wires stay and find their port again when one of its name is added.
    void clearInputPorts();
    void clearOutputPorts();

    QStringList inputPortNames() const { return m_inputs.names(); }

    QStringList outputPortNames() const { return m_outputs.names(); }

    const QVector<OssNgPort> &inputPorts() const { return m_inputs.ports(); }

    const QVector<OssNgPort> &outputPorts() const { return m_outputs.ports(); }

    const OssNgPort *inputPort(const QString &name) const { return m_inputs.find(name); }

    const OssNgPort *outputPort(const QString &name) const { return m_outputs.find(name); }

    void setOutputUsed(const QString &name, bool used);

    // What ports are called: OssNgPortList::calledName() and label() say which name wins.

    /// Lists in the order of the ports.
    void setConnectionDescriptiveNames(const QStringList &inputs, const QStringList &outputs);
    void setConnectionPrettyNames(const QStringList &inputs, const QStringList &outputs);
    /// What the port is called, whatever stands beside it. The name itself when there is no such
    /// port.
    QString outputPointDescriptiveName(const QString &name) const;
    QString inputDescriptiveName(const QString &name) const;
    /// Empty: no text of its own, what it is called stands there. Needs the port.
    void setInputPortText(const QString &name, const QString &text);
    /// What stands beside the port. Empty when there is no such port.
    QString inputPortText(const QString &name) const;
    void setLabelsVisible(bool visible);

    bool labelsVisible() const { return m_labelsVisible; }

    // How they look and where they are

    /// Values are OssNgPortKind. Ports that are not named show colour.
    void setPortKinds(const QHash<QString, int> &inputs, const QHash<QString, int> &outputs);
    /// Extra distance of a label from its port.
    void setConnectionTextPositions(const QHash<QString, float> &inputs,
                                    const QHash<QString, float> &outputs);
    /// Where ports have no rows: the x of the first point places a port beside the node's centre
    /// line, from the first point to the second runs the stub that a wire follows at first.
    void setConnectionPositions(const StubPositions &inputs, const StubPositions &outputs);
    /// Direction in which a wire leaves the port; its length is the stub's when one was given.
    QPointF inputPortDirection(const QString &name) const;
    QPointF outputPortDirection(const QString &name) const;
    /// The listed port nearest to the point, within `reach` units. Null: none.
    const OssNgPort *inputPortAt(const QPointF &local, qreal reach) const;
    const OssNgPort *outputPortAt(const QPointF &local, qreal reach) const;
    /// The port that lights up as the target of a wire; empty for none.
    void setLitPort(const QString &name, bool input);

protected:
    enum class Side : quint8 { Input, Output };

    OssNgNodePorts();
    ~OssNgNodePorts();

    /// What is to be laid out changed.
    virtual void portsChanged() = 0;
    /// What is painted changed, the layout did not.
    virtual void portsRepainted() = 0;
    virtual bool hasConsumer(const QString &output) const = 0;

    /// Whether the port has a place of its own.
    virtual bool isPortListed(const OssNgPort &port, Side side) const;
    /// Ports that share a row have the same non-empty key, which is the row's label.
    virtual QString portRow(const OssNgPort &port, Side side) const;

    /// Inputs along the upper edge, outputs along the lower one, no rows.
    virtual bool portsAlongEdges() const { return false; }

    OssNgPortList &list(Side side) { return side == Side::Input ? m_inputs : m_outputs; }

    const OssNgPortList &list(Side side) const
    {
        return side == Side::Input ? m_inputs : m_outputs;
    }

    QVector<OssNgPort> &ports(Side side) { return list(side).ports(); }

    const QVector<OssNgPort> &ports(Side side) const { return list(side).ports(); }

    QString portLabel(int index, Side side) const;

    // Layout. Afterwards the x of outputs in rows, the y of those along the edge and the middle of
    // the node are still to be added: they are known when the body's size is.

    void placePortsInRows();
    void placePortsAlongEdges();
    /// How many rows the listed ports need.
    int rowCount() const;
    /// What the labels need, from edge to edge of the body.
    qreal rowsWidth() const;

private:
    QString calledName(Side side, const QString &name) const;
    QPointF portDirection(Side side, const QString &name) const;

    OssNgPortList m_inputs;
    OssNgPortList m_outputs;
    bool m_labelsVisible = true;
};
