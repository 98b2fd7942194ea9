#pragma once

#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgExtendedNode.h"
#include "OssNodeGraph/Items/OssNgNodeHelp.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QHash>
#include <QPoint>
#include <QPointer>
#include <QSizeF>
#include <QVector>

#include <memory>

class OssNgEdge;
class OssShaderNetworkView;

/// Binds a node of a network to its item in the network's scene and keeps the two in step for the
/// node's whole life: the item is made and filled from the node, every later change of the node is
/// shown, and what the user does to the item is done to the node.
///
/// The node owns the context, and the context the item. Places are scene coordinates of the item's
/// upper left corner, sizes scene units. A context without an item, or whose node is gone, does
/// nothing and answers with nothing. GUI thread.
class OssSnNodeGraphViewContext
    : public OssSnBaseContext
    , public OssNgNodeHelp
{
    Q_OBJECT
    Q_PROPERTY(int shapeType READ shapeType WRITE setShapeType)
    Q_PROPERTY(QString nodeColorTop READ nodeColorTop WRITE setNodeColorTop)
    Q_PROPERTY(QString nodeColorBottom READ nodeColorBottom WRITE setNodeColorBottom)
    Q_PROPERTY(
        int portListMode READ portListModeAsInt WRITE setPortListMode RESET resetPortListMode)
    Q_PROPERTY(QString pixmapPath READ pixmapPath WRITE setPixmapPath)
    Q_PROPERTY(QPoint pixmapOffset READ pixmapOffset WRITE setPixmapOffset)

public:
    using PortListMode = OssNgExtendedNode::PortListMode;
    /// Ends of an edge stub, relative to the middle of the node's side.
    using Stub = QPair<QPoint, QPoint>;
    using StubMap = QHash<QString, Stub>;
    using TextPositionMap = QHash<QString, float>;

    /// `node` is the business node. Without `withGui` there is no item, nor while the node is in
    /// no network.
    OssSnNodeGraphViewContext(QObject *node, bool withGui);
    ~OssSnNodeGraphViewContext() override;

    /// Category of a node in the graph: the first part of its path key, but for kinds that are told
    /// apart by a name of their own.
    static QString categoryOf(const QString &pathKey);
    /// That nodes of the type bear in the graph.
    static QColor categoryColor(const QString &pathKey);
    /// Shows what is wrong with the node, or what it says of itself.
    void updateErrorText();

    // What the type's description or a saved state sets before initializeGui().
    int shapeType() const { return m_shapeType; }

    void setShapeType(int type) { m_shapeType = type; }

    /// OssColor texts; empty: the style's colour.
    QString nodeColorTop() const { return m_nodeColorTop; }

    void setNodeColorTop(const QString &color) { m_nodeColorTop = color; }

    QString nodeColorBottom() const { return m_nodeColorBottom; }

    void setNodeColorBottom(const QString &color) { m_nodeColorBottom = color; }

    /// File in the host's icon folder.
    QString pixmapPath() const { return m_pixmapPath; }

    void setPixmapPath(const QString &path) { m_pixmapPath = path; }

    QPoint pixmapOffset() const { return m_pixmapOffset; }

    void setPixmapOffset(const QPoint &offset) { m_pixmapOffset = offset; }

    void setInputNodeInitialPos(const QString &input, const Stub &stub);
    void setOutputNodeInitialPos(const QString &outputPoint, const Stub &stub);

    const StubMap &inputNodeInitialPos() const { return m_inputNodeInitialPos; }

    const StubMap &outputNodeInitialPos() const { return m_outputNodeInitialPos; }

    /// Shows the wires that the model has: after loading, and whenever the two may differ.
    void updateGuiEdges();
    /// Gives the item the mode that this context keeps, and its labels but for NoPortList.
    void updatePortVisibility();

    // Virtual operations of the host's contexts.
    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;
    OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                  const QString &name, const QString &type,
                                                  const Attributes &attributes) override;
    void onEndCollection(OssDeserializer &deserializer, const QString &name) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;
    void initializeGui() override;
    bool attributeIsStub(const QString &name, bool flag) const override;
    QString versionHashSource() const override;

    bool hasVersionHash() const override { return true; }

    void copyGuiStateFrom(OssSnBaseContext *other) override;
    void copyGuiNodeStateFrom(OssSnBaseContext *other) override;

    QString nodeHelp() const override;
    QString portHelp(const QString &port, bool isInput) const override;

    /// Null for a context without an item.
    virtual OssNgNode *guiNode() const { return m_GuiNode.get(); }

    /// The user connected an input on the item: the node is, in one undo step, and merges upstream
    /// get the colour space that this needs. A debug line when a name is empty.
    virtual void connectInputFromGui(OssSnBaseNode *source, const QString &inputName,
                                     const QString &outputPointName);
    /// Selects item and node, each only where it differs.
    virtual void applySelection(bool selected);

public Q_SLOTS:
    /// Of the item; the one it will be given where there is none that lists ports.
    OssNgExtendedNode::PortListMode portListMode() const;

    int portListModeAsInt() const { return int(portListMode()); }

    /// Announced where anything changes. No undo step: it is how the user looks at the node.
    void setPortListMode(OssNgExtendedNode::PortListMode mode);

    /// What is no mode leaves a line, and ports listed as they are.
    void setPortListMode(int mode);

    void setPortListMode(OssSnNodeGraphViewContextManager::DefaultMCMCollapsedState state);

    void resetPortListMode() { setPortListMode(0); }

    QPointF nodePosition() const override;
    QSizeF nodeSize() const override;
    /// Opens the tab of the node's network and brings the item into the middle of the view. Nothing
    /// when the node graph shows another root network.
    void gotoNode();
    bool setNodePosition(QPointF position) override;
    /// Records a step, which joins the open macro.
    bool setNodePositionUndo(QPointF position) override;
    /// Only backdrops have a size of their own; what is not one stays.
    void setNodeSize(QSizeF size);
    bool setNodeSizeUndo(QSizeF size) override;
    void takePlaceOf(const OssSnBaseContext *other) override;
    /// The item's title; its ports are read from the node anew.
    virtual void setText(QString text);

Q_SIGNALS:
    void portListModeChanged(OssNgExtendedNode::PortListMode mode);
    /// Of the item.
    void hoveredChanged(bool Hovered);

protected Q_SLOTS:
    /// Whether node and inputs are off, and which wires carry on nothing because of it.
    void updateGuiEdgesBypassStates();
    void cachedChanged();
    void setToolTip(QString text);

    // What the user did on the item, done to the node

    /// Null disconnects. Nothing for an item that stands for no node.
    virtual void onGuiNodeInputChange(OssNgNode *newInput, QString inputName,
                                      QString outputPointName);
    /// A node that stands for a port of the group around: the group's ports take the new order.
    void onGuiNodePosChanged(QPointF position);
    /// Puts a dot node into the wire, in one undo step. Needs a current view.
    void onDotableMarkerClicked(OssNgEdge *edge);

    // Changes of the node, shown on the item. Names that it does not have are passed over.

    void onParentNodeInputChange(QString inputName, OssSnBaseNode *source, QString outputPointName);
    void onParentNodeDetachOutput(QString outputPointName);
    void onParentNodeInputAdded(QString name);
    /// Also for a new order of ports that are there.
    void onParentNodeInputListAdded(QStringList names);

    /// Makes the ports anew; the stubs too with `Adjust`. Wires stay.
    void onParentNodeInputsRefreshed() { onParentNodeInputsRefreshed(true); }

    void onParentNodeInputsRefreshed(bool Adjust);

    void onParentNodeOutputsRefreshed() { onParentNodeOutputsRefreshed(true); }

    void onParentNodeOutputsRefreshed(bool Adjust);
    void onParentNodeInputsOutputsRefreshed();
    void onParentNodeInputRenamed(QString oldName, QString newName);
    void onParentNodeInputRemoved(QString name);
    void onParentNodeOutputPointAdded(QString name);
    void onParentNodeOutputPointRemoved(QString name);
    void onParentNodeOutputPointUsed(QString name);
    void onParentNodeOutputPointFreed(QString name);
    void onParentNodeOutputPointRenamed(QString oldName, QString newName);
    void onParentNodeGuiActiveChanged(bool active);
    void onParentInputIsShared(QString name);
    void onInputEnabledChanged(QString name, bool enabled);
    /// The node was selected or not.
    virtual void selectGuiNode(bool selected);

    /// Appends the symmetrical multipliers of Count stubs, [-1, 0, 1] for 3 and [-2, -1, 1, 2] for
    /// 4, and lowers MinMultiplier to the smallest absolute value among them.
    void calculateEdgeMultipliers(QVector<int> &MultiplierList, int &MinMultiplier, int Count);
    /// Spreads the stubs of the named ports symmetrically about the node's centre line; ports with
    /// an initial position keep it. A text position is the least length of a stub.
    void calculateEdgesUI(QStringList Edges, bool OutputEdge, const StubMap &InitialPositionMap,
                          const TextPositionMap &InitialTextPositionMap, StubMap &PositionMap,
                          int Factor = 1);
    void onUpdateSystemShaderStatus();
    /// Has the viewer look at the node, in one undo step. Needs a current view.
    void onViewerAttachedToNode(int InputNumber = 1);
    /// Only for a viewer: lights the wire that is looked at.
    void onViewerNodeCurrentEdgeChanged(int edge);
    /// Only for a viewer: the wire at its input 0 is the application's, and the input bears the name of
    /// what is looked at.
    void updateViewerNodeVirtualEdge();
    /// Fresh multi-channel nodes list their ports as the preference says.
    void onNewNodeAdded();
    /// Pretty names of all nodes, descriptive ones of multi-channel nodes; of both sides, whichever
    /// is called.
    void updateDescriptiveNames();
    void updateDescriptiveInputNames();
    void updateDescriptiveOutputNames();
    void onHoveredChanged(bool hovered);

    // The node asks for a place: the current view moves the item, see PlacingView. Without a
    // current view a debug line and nothing else.

    void onSetLayout(OssSnBaseNode::NodeLayoutType Type, OssSnBaseNode *ReferenceNode,
                     bool FreshCoordinates, bool PreventOverlap);
    void onNodePositionedManual(OssSnBaseNode *ReferenceNode, QPointF Offset);
    void onNodePositionedUnderneath(OssSnBaseNode *ReferenceNode, int Factor);
    void onNodePositionedNextTo(OssSnBaseNode *ReferenceNode);
    void onNodePositionedOnTopIdented(OssSnBaseNode *ReferenceNode);
    void onNodeSyncedUnderneathNode(OssSnBaseNode *ReferenceNode,
                                    bool IgnoreContainerOfPreviousNode);
    void onUniformariseContainers(QList<OssSnBaseNode *> LayerListNode);
    /// Moves the item until it lies on no other node.
    void placeNode() override;

protected:
    /// Gives the context its item and shows what every kind of node has.
    void adoptGuiNode(std::shared_ptr<OssNgNode> guiNode);

    bool hasGuiNode() const { return m_GuiNode != nullptr; }

    OssNgExtendedNode *extendedNode() const;
    bool isViewer() const;
    /// The current view; without one the line every placement slot writes.
    OssShaderNetworkView *viewOrComplain() const;

private:
    void createGuiNode();
    void applyNodeState();
    void applyLook();
    void applyColors();
    void createPorts();
    void addInputPorts();
    void addOutputPorts();
    void applyPortKinds();
    void updateStubs();
    void connectNodePorts();
    void connectNodeState();
    void connectNodePlacement();
    void connectGui();
    void attachInputEdge(const OssSnBaseNode::InputPort &port);
    QString viewerInputText() const;
    void activateViewerEdge(int edge);

    std::shared_ptr<OssNgNode> m_GuiNode;
    StubMap m_inputNodeInitialPos;
    StubMap m_outputNodeInitialPos;
    StubMap m_inputPositions;
    StubMap m_outputPositions;
    TextPositionMap m_inputTextPositions;
    TextPositionMap m_outputTextPositions;
    int m_shapeType = 0;
    QString m_nodeColorTop;
    QString m_nodeColorBottom;
    PortListMode m_portListMode = OssNgExtendedNode::Expanded;
    QString m_pixmapPath;
    QPoint m_pixmapOffset;
};
