#pragma once

#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssNodeGraph/Items/OssNgExtendedNode.h"
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
class OssSnNodeGraphViewContext : public OssSnBaseContext
{
    Q_OBJECT
    Q_PROPERTY(int shapeType READ shapeType WRITE setShapeType)
    Q_PROPERTY(QString nodeColorTop READ nodeColorTop WRITE setNodeColorTop)
    Q_PROPERTY(QString nodeColorBottom READ nodeColorBottom WRITE setNodeColorBottom)
    Q_PROPERTY(int portListMode READ portListModeAsInt WRITE setPortListMode)
    Q_PROPERTY(QString pixmapPath READ pixmapPath WRITE setPixmapPath)
    Q_PROPERTY(QPoint pixmapOffset READ pixmapOffset WRITE setPixmapOffset)

public:
    using PortListMode = OssNgExtendedNode::PortListMode;
    /// Ends of an edge stub, relative to the middle of the node's side.
    using Stub = QPair<QPoint, QPoint>;
    using StubMap = QHash<QString, Stub>;
    using TextPositionMap = QHash<QString, float>;

    /// `node` is the business node, which owns the context. Without `withGui` there is no item.
    OssSnNodeGraphViewContext(QObject *node, bool withGui);
    ~OssSnNodeGraphViewContext() override;

    /// Category of a node in the graph: the first part of its path key, but for kinds that are told
    /// apart by a name of their own.
    static QString categoryOf(const QString &pathKey);

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
    /// Shows the port list as portListMode() says.
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

    /// Null for a context without an item.
    virtual OssNgNode *guiNode() const { return m_GuiNode.get(); }

    /// The user connected an input on the item.
    virtual void connectInputFromGui(OssSnBaseNode *source, const QString &inputName,
                                     const QString &outputPointName);
    /// Selects item and node, each only where it differs.
    virtual void applySelection(bool selected);

public Q_SLOTS:
    OssNgExtendedNode::PortListMode portListMode() const;

    int portListModeAsInt() const { return int(portListMode()); }

    void setPortListMode(OssNgExtendedNode::PortListMode mode);

    void setPortListMode(int mode) { setPortListMode(PortListMode(mode)); }

    void setPortListMode(OssSnNodeGraphViewContextManager::DefaultMCMCollapsedState state);

    void resetPortListMode() { setPortListMode(OssNgExtendedNode::Expanded); }

    QPointF nodePosition() const override;
    QSizeF nodeSize() const override;
    void gotoNode();
    void setNodePosition(QPointF position) override;
    void setNodePositionUndo(QPointF position) override;
    void setNodeSize(QSizeF size);
    void setNodeSizeUndo(QSizeF size) override;
    virtual void setText(QString text);

Q_SIGNALS:
    void portListModeChanged(OssNgExtendedNode::PortListMode mode);
    void hoveredChanged(bool Hovered);

protected Q_SLOTS:
    void updateGuiEdgesBypassStates();
    void cachedChanged();
    void setToolTip(QString text);
    virtual void onGuiNodeInputChange(OssNgNode *newInput, QString inputName,
                                      QString outputPointName);
    void onGuiNodePosChanged(QPointF position);
    void onDotableMarkerClicked(OssNgEdge *edge);

    void onParentNodeInputChange(QString inputName, OssSnBaseNode *source, QString outputPointName);
    void onParentNodeDetachOutput(QString outputPointName);
    void onParentNodeInputAdded(QString name);
    void onParentNodeInputListAdded(QStringList names);

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
    void onViewerAttachedToNode(int InputNumber = 1);
    void onViewerNodeCurrentEdgeChanged(int edge);
    void updateViewerNodeVirtualEdge();
    void onNewNodeAdded();
    void updateDescriptiveNames();
    void updateDescriptiveInputNames();
    void updateDescriptiveOutputNames();
    void onHoveredChanged(bool hovered);
    void onSetLayout(OssSnBaseNode::NodeLayoutType Type, OssSnBaseNode *ReferenceNode,
                     bool FreshCoordinates, bool PreventOverlap);
    void onNodePositionedManual(OssSnBaseNode *ReferenceNode, QPointF Offset);
    void onNodePositionedUnderneath(OssSnBaseNode *ReferenceNode, int Factor);
    void onNodePositionedNextTo(OssSnBaseNode *ReferenceNode);
    void onNodePositionedOnTopIdented(OssSnBaseNode *ReferenceNode);
    void onNodeSyncedUnderneathNode(OssSnBaseNode *ReferenceNode,
                                    bool IgnoreContainerOfPreviousNode);
    void onUniformariseContainers(QList<OssSnBaseNode *> LayerListNode);
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
    void updateViewerInputText(const QString &inputName, const OssSnBaseNode *source);
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
