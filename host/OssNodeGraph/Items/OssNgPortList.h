#pragma once

#include "OssNodeGraph/Items/OssNgPort.h"
#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QHash>
#include <QPair>
#include <QPoint>
#include <QStringList>
#include <QVector>

#include <memory>

/// The ports at one side of a node, in their order, and what was given for them: names in the order
/// of the ports, all else by the ports' names, whether they are there yet or not. Knows nothing of
/// wires, and draws nothing. Node coordinates.
class OSSNODEGRAPH_EXPORT OssNgPortList
{
public:
    /// See OssNgNodePorts::setConnectionPositions().
    using Stub = QPair<QPoint, QPoint>;
    using Stubs = QHash<QString, Stub>;

    OssNgPortList();
    ~OssNgPortList();

    const QVector<OssNgPort> &ports() const { return m_ports; }

    QVector<OssNgPort> &ports() { return m_ports; }

    /// -1: there is none. The hint is where it was found before.
    int indexOf(const QString &name, int hint = -1) const;
    const OssNgPort *find(const QString &name) const;
    QStringList names() const;
    /// The listed port nearest to the point, within `reach`. Null: none.
    const OssNgPort *nearest(const QPointF &local, qreal reach) const;

    /// The port of the name, made at the end when there is none.
    OssNgPort &add(const QString &name);
    /// Adds what is missing and brings the ports that are named into the order of the names; others
    /// stay where they are.
    void arrange(const QStringList &names);
    /// Whether there was one.
    bool remove(const QString &name);
    /// False when there is none, or another one has the new name.
    bool rename(const QString &oldName, const QString &newName);

    /// What the port is called: the first that there is of its descriptive name, its pretty name
    /// and its own.
    QString calledName(int index) const;
    /// What stands beside the port: the text set for it, else the label of the row that it shares
    /// with others, else what it is called.
    QString label(int index, const QString &row) const;

    void setDescriptiveNames(const QStringList &names) { given().descriptiveNames = names; }

    void setPrettyNames(const QStringList &names) { given().prettyNames = names; }

    /// Values are OssNgPortKind; what is none is taken for the nearest.
    void setKinds(const QHash<QString, int> &kinds);
    void setTextPositions(const QHash<QString, float> &positions);
    void setStubs(const Stubs &stubs);
    void setLit(const QString &name);

    /// 0 where none was given.
    qreal textPosition(const QString &name) const;
    /// Null where none was given.
    const Stub *stub(const QString &name) const;
    /// Empty: none is lit.
    QString lit() const;

private:
    /// Many lists have nothing of it.
    struct Given
    {
        QStringList descriptiveNames;
        QStringList prettyNames;
        QHash<QString, int> kinds;
        QHash<QString, float> textPositions;
        Stubs stubs;
        QString lit;
    };

    Given &given();
    void applyKind(OssNgPort &port) const;

    QVector<OssNgPort> m_ports;
    std::unique_ptr<Given> m_given;
};
