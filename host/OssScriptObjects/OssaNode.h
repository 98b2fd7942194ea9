#pragma once

#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QPointF>
#include <QSizeF>
#include <QStringList>
#include <QVariant>

class OssSnBaseContext;
class OssSnBaseNode;
class OssSnGroupNode;

namespace Ossa {

class ImageSet;
class NodeGraph;

/// A node of a node graph for scripts. A node that was removed counts as gone until undo brings it
/// back.
class OSSSCRIPTOBJECTS_EXPORT Node : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "A node of a node graph.")
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_CLASSINFO("name", "Unique in its graph; a taken name gets a number.")
    Q_PROPERTY(QString path READ path)
    Q_CLASSINFO("path", "Names from the root graph, as \"/Group/Node\".")
    Q_PROPERTY(QString type READ type)
    Q_CLASSINFO("type", "As in nodeTypes(), for example \"Filter/Blur\".")
    Q_PROPERTY(QString description READ description WRITE setDescription)
    Q_PROPERTY(bool enabled READ isEnabled WRITE setEnabled)
    Q_PROPERTY(bool bypassed READ isBypassed WRITE setBypassed)
    Q_PROPERTY(bool locked READ isLocked WRITE setLocked)
    Q_CLASSINFO("locked", "Whether the attributes are kept from edits, those of scripts too.")
    Q_PROPERTY(bool selected READ isSelected WRITE setSelected)
    Q_PROPERTY(QPointF position READ position WRITE setPosition)
    Q_CLASSINFO("position", "Upper left corner in the graph's scene.")
    Q_PROPERTY(QSizeF size READ size WRITE setSize)
    Q_CLASSINFO("size", "Width and height in the scene. Only backdrops can be given one.")
    Q_PROPERTY(Ossa::Node *container READ container WRITE setContainer)
    Q_CLASSINFO("container", "The backdrop that the node belongs to; None when there is none. A "
                             "backdrop that it is put into grows around it.")
    Q_PROPERTY(QString error READ error)
    Q_CLASSINFO("error", "Why the node gives no picture; empty when it is well.")
    Q_PROPERTY(QStringList inputs READ inputs)
    Q_PROPERTY(QStringList outputs READ outputs)
    Q_PROPERTY(QStringList attributes READ attributes)
    Q_CLASSINFO("graph", "The graph that the node stands in.")
    Q_CLASSINFO("inside", "The graph inside a group; None for other nodes.")
    Q_CLASSINFO("showInside", "Shows the inside of a group in the Node Graph palette.")
    Q_CLASSINFO("remove", "Removes the node from its graph.")
    Q_CLASSINFO("placeUnderneath",
                "Stacks the node underneath another one; in that one's backdrop, "
                "if it is in any, where others make room.")
    Q_CLASSINFO("placeNextTo", "Puts the node to the right of another one.")
    Q_CLASSINFO("placeOnTop", "Puts the node beside the corner of another one.")
    Q_CLASSINFO("inputNode", "What feeds an input; None when it is free.")
    Q_CLASSINFO("inputOutput", "The output that feeds an input; empty when it is free.")
    Q_CLASSINFO("connectInput", "Wires an input to another node's first output, or the named one.")
    Q_CLASSINFO("disconnectInput", "Frees an input.")
    Q_CLASSINFO("outputNodes", "The nodes that this one feeds.")
    Q_CLASSINFO("upstreamNodes", "Everything that feeds the node, nearest first.")
    Q_CLASSINFO("downstreamNodes", "Everything that the node feeds, nearest first.")
    Q_CLASSINFO("attribute", "Value of an attribute; of a menu, the chosen text.")
    Q_CLASSINFO("setAttribute", "Sets an attribute; a menu by its text or number.")
    Q_CLASSINFO("resetAttribute", "Gives an attribute its default again.")
    Q_CLASSINFO("attributeInfo",
                "What a panel knows of an attribute: its kind, label, default, range "
                "and, of a menu, the choices.")
    Q_CLASSINFO("createInput", "Gives a group an input of a kind (color, scalar, vector, material, "
                               "data) and returns the node inside that stands for it.")
    Q_CLASSINFO("createOutput", "Gives a group an output and returns the node inside for it.")
    Q_CLASSINFO("createKnob", "Makes an attribute of a node inside a group a knob of the group.")
    Q_CLASSINFO("imageSet", "The images that the node reads; None when it has none.")
    Q_CLASSINFO("bake", "Writes a file for each patch and returns their paths. \"<UDIM>\" in the "
                        "path stands for the patch; without patches all are written.")
    Q_CLASSINFO("bakeImageSet", "Bakes what feeds a bake point into its images.")
    Q_CLASSINFO("goTo",
                "Brings the user to the node: its graph is shown, the node selected and framed.")
    Q_CLASSINFO("showProperties",
                "Opens the node's panel; below that of another node, or above it.")
    Q_CLASSINFO("lookAt", "Wires the viewer to the node, at an input or the one that is looked at.")
    Q_CLASSINFO("matchPosition", "Moves the node onto another one.")
    Q_CLASSINFO("isInputEnabled", "Whether what comes to an input is used.")
    Q_CLASSINFO("setInputEnabled", "Has what comes to an input be used or not; the wire stays.")
    Q_CLASSINFO("isInputShared",
                "Whether an input of a multi-channel node belongs to all its streams.")
    Q_CLASSINFO("markDependencies",
                "Marks in the graph what computes the node, the dearer the redder, "
                "and returns it with milliseconds for a patch of 2048.")
    Q_CLASSINFO("renameKnob", "Gives a knob of a group another name and returns the one it got.")
    Q_CLASSINFO("setKnobInfo",
                "Gives a knob another toolTip, section, default, minimum or maximum, as "
                "attributeInfo() names them; what is not named stays.")
    Q_CLASSINFO("linkKnob",
                "Has a knob stand for an attribute of one more node inside, which takes its value.")
    Q_CLASSINFO("reorderInputs", "Puts the inputs into another order; all of them must be named.")
    Q_CLASSINFO("reorderOutputs", "Puts the outputs into another order; all of them must be named.")
    Q_CLASSINFO("orderPortsByPosition", "Orders a group's ports as their nodes lie inside.")
    Q_CLASSINFO("arrangeInputsByOrder",
                "Arranges the nodes inside a group as its inputs are ordered.")
    Q_CLASSINFO("publish",
                "Publishes a group as a type of the user's own, under a category and a name, "
                "and returns its key. Publishing again gives it a new version.")
    Q_CLASSINFO(
        "writeType",
        "Writes a group as the description of a type that is part of the program, with words "
        "by which people look for it, into a file, and returns its key.")
    Q_CLASSINFO("upgrade", "Makes the node one of its type as it is installed now. What could not "
                           "be kept is returned.")

public:
    explicit Node(QObject *node);
    ~Node() override;

    QString name() const;
    void setName(const QString &name);
    QString path() const;
    QString type() const;
    QString description() const;
    void setDescription(const QString &description);
    bool isEnabled() const;
    void setEnabled(bool enabled);
    bool isBypassed() const;
    void setBypassed(bool bypassed);
    bool isLocked() const;
    void setLocked(bool locked);
    bool isSelected() const;
    void setSelected(bool selected);
    QPointF position() const;
    void setPosition(const QPointF &position);
    QSizeF size() const;
    void setSize(const QSizeF &size);
    Node *container() const;
    void setContainer(Node *backdrop);
    QString error() const;
    QStringList inputs() const;
    QStringList outputs() const;
    QStringList attributes() const;

    /// The wrapped node; null, and reported, when it is gone or removed.
    OssSnBaseNode *node() const;

public Q_SLOTS:
    NodeGraph *graph() const;
    NodeGraph *inside() const;
    void showInside() const;
    void remove();

    void placeUnderneath(Node *reference);
    void placeNextTo(Node *reference);
    void placeOnTop(Node *reference);

    Node *inputNode(const QString &input) const;
    QString inputOutput(const QString &input) const;
    void connectInput(const QString &input, Node *source, const QString &output = QString());
    void disconnectInput(const QString &input);
    QList<Node *> outputNodes() const;
    QList<Node *> upstreamNodes() const;
    QList<Node *> downstreamNodes() const;

    QVariant attribute(const QString &name) const;
    void setAttribute(const QString &name, const QVariant &value);
    void resetAttribute(const QString &name);
    QVariantMap attributeInfo(const QString &name) const;

    Node *createInput(const QString &name, const QString &kind = QStringLiteral("color"));
    Node *createOutput(const QString &name, const QString &kind = QStringLiteral("color"));
    QString createKnob(Node *inner, const QString &attribute);

    ImageSet *imageSet() const;
    QStringList bake(const QString &path, int resolution = 2048,
                     const QList<int> &patches = QList<int>()) const;
    void bakeImageSet();
    QStringList upgrade();
    QString publish(const QString &category, const QString &name, const QString &toolTip = {},
                    const QStringList &aliases = {});

    QString writeType(const QString &path, const QString &category, const QString &name,
                      const QString &toolTip, const QStringList &aliases = {});

    void goTo() const;
    void showProperties(Node *after = nullptr, Node *before = nullptr) const;
    void lookAt(int input = 0) const;
    void matchPosition(Node *other) const;
    bool isInputEnabled(const QString &input) const;
    void setInputEnabled(const QString &input, bool enabled);
    bool isInputShared(const QString &input) const;
    QVariantMap markDependencies() const;
    QString renameKnob(const QString &knob, const QString &name);
    void setKnobInfo(const QString &knob, const QVariantMap &info);
    void linkKnob(const QString &knob, Node *inner, const QString &attribute);
    void reorderInputs(const QStringList &names);
    void reorderOutputs(const QStringList &names);
    void orderPortsByPosition();
    void arrangeInputsByOrder();

Q_SIGNALS:
    void renamed(const QString &name);
    void attributeChanged(const QString &name);
    void inputChanged(const QString &input);

private:
    /// Null, and reported, when the node has no such input.
    OssSnBaseNode *nodeWithInput(const QString &input) const;
    OssSnBaseNode *nodeWithAttribute(const QString &name) const;
    /// The same for who changes it: null, and reported, when the attribute is locked.
    OssSnBaseNode *nodeToEdit(const QString &name) const;
    OssSnBaseContext *view() const;
    /// Null, and reported, when the node is no group.
    OssSnGroupNode *group() const;
    void place(const Node *reference, OssShaderNetworkManager::Arrangement how);
};

} // namespace Ossa
