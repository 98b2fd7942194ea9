#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>
#include <QPointF>
#include <QStringList>

class OssShaderNetwork;
class OssSnBaseNode;

namespace Ossa {

class GeoEntity;
class Node;

/// A node graph for scripts: an OssShaderNetwork, the root of an object's shading or the inside of a
/// group.
class OSSSCRIPTOBJECTS_EXPORT NodeGraph : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "A node graph: the root graph of an object, or the inside of a group.")
    Q_PROPERTY(bool root READ isRoot)
    Q_CLASSINFO("root", "False for the inside of a group.")
    Q_CLASSINFO("rootGraph", "The outermost graph; itself for a root.")
    Q_CLASSINFO("parentNode", "The group whose inside this is; None for a root.")
    Q_CLASSINFO("object", "The object whose shading this is.")
    Q_CLASSINFO("nodes", "The nodes, without what is inside groups.")
    Q_CLASSINFO("allNodes", "The nodes, each followed by what is inside it.")
    Q_CLASSINFO("nodesOfType", "All nodes of a type, inside groups too.")
    Q_CLASSINFO("node", "By name, or by path from this graph; None when there is none.")
    Q_CLASSINFO("selectedNodes", "The selected nodes of this graph.")
    Q_CLASSINFO("select", "Selects these nodes and no others.")
    Q_CLASSINFO("createNode", "Makes a node of a type. Without a position it is placed freely.")
    Q_CLASSINFO("connect", "Wires a source to an input of a target; without an input, to the one "
                           "that a wire dropped on the node would go to.")
    Q_CLASSINFO("remove", "Removes nodes. What the graph cannot do without stays.")
    Q_CLASSINFO("extract", "Takes nodes out of their streams; what fed each feeds what it fed.")
    Q_CLASSINFO("group", "Puts nodes into a new group and returns it.")
    Q_CLASSINFO("ungroup", "Takes a group apart and returns what was inside.")
    Q_CLASSINFO("duplicate", "Copies of nodes, in their order, with the wires among them.")
    Q_CLASSINFO("toText", "Nodes as the text that the clipboard carries.")
    Q_CLASSINFO("fromText", "Adds the nodes of such a text.")
    Q_CLASSINFO("exportNodes", "Writes nodes into a node file (*.ong).")
    Q_CLASSINFO("importNodes", "Adds the nodes of a node file.")
    Q_CLASSINFO(
        "layout",
        "Arranges nodes and what feeds them, or the whole graph whatever is selected, in columns.")
    Q_CLASSINFO(
        "arrange",
        "Puts nodes in order, one of arrangements(): in line, at equal distances, "
        "each by the one before it in the list, or backdrops around what lies "
        "on them. Without one they are laid out in layers, so that few wires cross; without "
        "nodes the whole graph is.")
    Q_CLASSINFO("arrangements", "What arrange() can do, as \"align left\" or \"place below\".")
    Q_CLASSINFO("show", "Shows the graph in the Node Graph palette.")
    Q_CLASSINFO("viewer", "The viewer of the object; None when there is none.")
    Q_CLASSINFO("view", "Shows what a node gives in the Viewer.")

public:
    explicit NodeGraph(QObject *network);
    ~NodeGraph() override;

    bool isRoot() const;
    /// Null, and reported, when it is gone.
    OssShaderNetwork *network() const;

public Q_SLOTS:
    NodeGraph *rootGraph() const;
    Node *parentNode() const;
    GeoEntity *object() const;

    QList<Node *> nodes() const;
    QList<Node *> allNodes() const;
    QList<Node *> nodesOfType(const QString &type) const;
    Node *node(const QString &name) const;
    QList<Node *> selectedNodes() const;
    void select(const QList<Node *> &nodes);

    Node *createNode(const QString &type, const QString &name = QString());
    Node *createNode(const QString &type, const QString &name, const QPointF &position);
    void connect(Node *source, Node *target, const QString &input = QString(),
                 const QString &output = QString());
    void remove(const QList<Node *> &nodes);
    void extract(const QList<Node *> &nodes);
    Node *group(const QList<Node *> &nodes, const QString &name = QString());
    QList<Node *> ungroup(Node *group);
    QList<Node *> duplicate(const QList<Node *> &nodes);

    QString toText(const QList<Node *> &nodes) const;
    QList<Node *> fromText(const QString &text);
    void exportNodes(const QList<Node *> &nodes, const QString &path) const;
    QList<Node *> importNodes(const QString &path);

    void layout();
    void layout(const QList<Node *> &nodes);
    void arrange();
    void arrange(const QList<Node *> &nodes,
                 const QString &how = QStringLiteral("arrange in layers"));
    QStringList arrangements() const;
    void show();
    Node *viewer() const;
    void view(Node *node, int input = 1);

Q_SIGNALS:
    void nodesChanged();
    void selectionChanged();

private:
    /// False, and reported, when one is gone or not of this graph.
    bool ownNodes(const QList<Node *> &nodes, QList<OssSnBaseNode *> *own) const;
};

} // namespace Ossa
