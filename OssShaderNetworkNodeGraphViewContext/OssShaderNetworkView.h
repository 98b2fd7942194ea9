#pragma once

#include "OssModel/Evaluation/OssBakeManager.h"
#include "OssModel/Graph/OssShaderNetworkHolder.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "View/Drops.h"
#include "View/DropWire.h"
#include "View/PlacingView.h"

#include <QMap>
#include <QPointer>
#include <QPointF>

#include <optional>

class OssGeoEntity;
class OssGeoImageSet;
class OssImage;
class OssSnBakePointNode;
class OssSnBaseNode;
class OssSnMultiChannelGroupNode;
class QAction;

/// The editor of one shader network: a graphics view on the scene with the items of its nodes, and
/// the commands that act on them. Made by the tab widget (root) and by group contexts. A slot looks
/// whether it can act, asks the host, and is done; what it changes is one undo step.
class OssShaderNetworkView
    : public PlacingView
    , public OssShaderNetworkHolder
{
    Q_OBJECT

public:
    explicit OssShaderNetworkView(QWidget *parent);
    ~OssShaderNetworkView() override;

    /// Null also when the network has died.
    OssShaderNetwork *network() const override;

    void setNetwork(OssShaderNetwork *network) override;

    bool isAutoInsertOn() const override;

    /// Connects the node's preferred output to an input of the viewer and looks at it.
    void connectNodeToViewer(OssSnBaseNode *node, int input);
    /// Makes a node with its corner at a point of the viewport. Null when the type is unknown.
    OssSnBaseNode *createNodeAt(const QString &pathKey, const QPoint &viewPos);
    /// Where a new node goes: where the menu was asked for while it is open, else under the
    /// pointer, or the viewport's middle when that is elsewhere.
    QPoint creationPoint() const;

public Q_SLOTS:
    // Framing
    void frameNodes(bool EntireScene);
    void frameNodes();
    void frameSelectedNodes();
    void fitToViewAction();
    void ensureIsVisibleAction();

    // Followers of host and preferences
    void onZoomToChanged();
    void allowViewUpdateChanged(bool AllowViewUpdate);
    void onProjectClosed();
    void setNavigationControlType(QString ControlType);
    void onShakeToExtractEnabledChanged(bool Enabled);
    void onShakeToExtractShakesChanged(int Shakes);
    void onShakeToExtractTimeChanged(int Time);
    void onShakeToExtractTriggered();

    // Pointer and keyboard
    void highlightDotableEdges();
    void deactivateDotableMode();
    void dropGrabbedEdge();
    void toggleEdgeSeverAction();
    void createUnconnectedDotNode(OssNgEdge *CandidateEdge);

    // Editing
    void deleteSelectedNodes();
    void deleteAllNodes();
    void extractSelectedNode();
    void disableSelectedNodes();
    void bypassSelectedNode();
    void popupRenameWindow();
    void popupRenameWindow(OssNgNode *NodeToRename);
    void swapInputs();
    /// The selected nodes, in the order in which they read; without any, what lays out graphs does so with all.
    void arrange(OssShaderNetworkManager::Arrangement how);
    void openGroupNodeSubgraph();
    void openGroupsBehind();
    void togglePortVisibility();
    void cyclePortListMode();
    void duplicateSelectedNodes();
    void cutNodesAction();
    void copyNodesAction();
    void pasteNodesAction();

    // Looking at nodes
    /// Shows the node, or the only selected one, at the viewer's input; at 0 materials and
    /// multi-channel nodes alone. Without any, the viewer turns to that input.
    void connectSelectedNodeToViewer(OssSnBaseNode *Node, int Num);
    void connectSelectedNodeToViewer(OssSnBaseNode *Node);
    void connectSelectedNodeToViewer();
    void onOutputPointSelected(QAction *action);
    void moveViewerToMouse();

    // Selecting along the graph
    void selectAllUpstream();
    void selectAllDownstream();
    void selectStreamUpstream();
    void selectStreamDownstream();
    void selectUpstream();
    void selectDownstream();
    void addSelectUpstream();
    void addSelectDownstream();
    void selectNextSibling();
    void selectPrevSibling();
    void addSelectNextSibling();
    void addSelectPrevSibling();
    void selectBetween();
    void selectContents();
    void selectAll();

    // Creation
    void createNodeFromAction(QAction *Action);
    void createPaintableNode();
    void createPaintableNode(QPoint NodeViewPos);
    void createBakePointNode();
    void createBakePointNode(QPoint NodeViewPos);
    /// Of the selection's shader model, when it has one.
    void createMergeNode();
    void createMergeNode(QPoint NodeViewPos);
    void quickCreate();
    /// The user chooses among the types that can take the wire that was pulled from the port, and
    /// the new node is wired.
    void createAtWireEnd(OssNgNode *item, const QString &port, bool fromOutput,
                         const QPointF &scenePos);
    /// A null position means the middle of the viewport. Nodes that can hold no image get none.
    void createNodeFromDropImage(OssImage *Image, QString NodeType, QPointF NodeScenePos);
    void createNodeFromDropImage(OssImage *Image, QString NodeType);
    /// Asks, as the preference says, whether merges above 8-bit paint are to blend in a colour
    /// space that keeps precision.
    static void autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(OssSnBaseNode *EndPointNode);

    // Baking: goes on beside other work, or is waited for without a user; can be stopped; one undo step
    // for each node
    /// All of the network, in groups too.
    void bakeEmptyAndUpdateOutOfDateBakePoints();
    void bakeSelectedBakePoints();
    void updateSelectedBakePoints();
    /// Whether they are out of date or not.
    void bakeSelectedBakePointsAgain();
    void updateUpstreamBakePoints();
    void updateDownstreamBakePoints();
    /// What follows the selected node follows a new paint node with its pixels instead.
    void bakeToPaintableNode();
    /// Puts the selected node's pixels into a geo-channel of its object. Asks for what is missing.
    void exportToGeoChannel(OssGeoImageSet *pGeoImageSet, QString OutputPointName);
    void exportToGeoChannel(OssGeoImageSet *pGeoImageSet);
    void exportToGeoChannel();
    /// Writes "MaterialPreview.png" of the selected material into the current folder.
    void generateMaterialPreview();
    /// Asks for the name of images and gives them to the selected nodes that can have some.
    void setImageSetByNameAction();

    // Finding, files, telling
    void searchNodesAction();
    void exportNodes();
    void importNodes();
    // What is in several archives comes in whole or not at all; errors are told together.
    void importMaterial();
    void importMaterial(QStringList PathList, QPoint NodeViewPos);
    void importCustomProcedural();
    void importCustomProcedural(QStringList PathList, QPoint NodeViewPos);
    void printNodeInfo();
    void dumpSelectedNodeInfo();
    void dumpNodeUIAction();

    // Panels
    void openNodeProperties();
    /// Of the first selected group, or of the group whose inside this is.
    void manageUserKnobs();
    /// Makes the selected nodes' attributes knobs of the group around.
    void exposeNodeProperties();
    void upgradeSelectedNodeInfo();
    void upgradeAllNodeInfo();
    void upgradeNodeInfo(QList<OssSnBaseNode *> Nodes);

Q_SIGNALS:
    void nodeDoubleClicked(OssSnBaseNode *node);
    // By a command of the view
    void nodeAdded(OssSnBaseNode *Node);
    void nodeRemoved(OssSnBaseNode *Node);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

protected Q_SLOTS:
    /// Paint that is not in the node's images yet goes there.
    void bakePaintBufferToNode(const OssSnBaseNode *Node);
    void deferredConnectToViewContextManager();

private:
    // With a debug line when there is none.
    bool hasNetwork() const;
    bool hasScene() const;
    void tellOfRemoval(const QList<OssSnBaseNode *> &nodes);
    /// Empty, and told, when there is none.
    QList<OssSnBaseNode *> selectionToBakeAround() const;
    /// One line for the status bar, where nothing in the graph shows what a command did or why it
    /// did nothing.
    static void tellUser(const QString &text);
    static void bake(const QList<OssSnBakePointNode *> &nodes, OssBakeManager::Which how,
                     const char *messageForNone);
    /// False when the user was asked and chose none.
    bool chooseOutputPoint(const OssSnBaseNode *node, const QString &title, const QString &label,
                           QString *outputPoint);
    void showInsteadOf(OssSnBaseNode *source, OssSnBaseNode *paint);
    /// Null without a user, or when there is none or none was chosen.
    OssGeoImageSet *chooseGeoChannel(const OssGeoEntity *entity);
    void exportNode(OssSnBaseNode *node, OssGeoImageSet *channel, const QString &outputPointName);
    /// Of the network; none, with that line, without one.
    QList<OssSnBaseNode *> selectedNodes() const;
    QList<OssSnBaseNode *> selectionWithoutViewer() const;
    /// The selected items' nodes, without those that belong to the application.
    QList<OssSnBaseNode *> selectedBusinessNodes() const;
    /// Selects them and moves them, as they stand to each other, to the place of the import.
    void placeInsertedNodes(const QList<OssSnBaseNode *> &nodes, NodeImport *import);
    /// In the order in which the selection reads, without the viewer.
    QList<OssSnBaseNode *> selectedBusinessNodesInOrder() const;
    /// Where the menu opens: at the pointer, or at the selection when a key asked for it.
    QPoint menuPoint(const QContextMenuEvent *event) const;
    /// The command of the type where it has one, the generic creation otherwise.
    void createChosenNode(const QString &pathKey, const QPoint &viewPos);
    void placeNewNode(OssSnBaseNode *node, const QPoint &viewPos);
    /// `selection`: the area that was selected when the node was made; may be empty.
    void completeNewNode(OssSnBaseNode *node, const QRectF &selection);
    void completeNewBackdrop(OssSnBaseNode *node, const QRectF &selection);
    void autoConnect(OssSnBaseNode *node, const QList<OssSnBaseNode *> &sources);
    /// To the next free input; to several where both have streams of the same names.
    static bool connectNext(OssSnBaseNode *source, OssSnBaseNode *node);
    static bool connectStreams(OssSnBaseNode *source, OssSnBaseNode *node);

    /// Side by side, and selected. None of them comes in when one cannot be read.
    void importFiles(const QStringList &paths, const NodeFileKind &kind, NodeImport *import);
    void importAndTell(const QStringList &paths, const QPoint &viewPos, const NodeFileKind &kind);
    /// Of a note, or of a backdrop whose title was hit; nothing for other items.
    void editTextInPlace(OssNgNode *item, const QPointF &scenePos);
    /// "Wall > Dirt > Noise" inside a group; empty in a root network.
    QString placeText() const;
    void endOffer();
    bool dropObjects(const QDropEvent *event, const DropWire &lit);
    void dropText(const QByteArray &nodes, NodeImport *import);
    QList<OssSnBaseNode *> dropImages(const QDropEvent *event, const QPointF &place);
    /// Null when the type is unknown or there is no network.
    OssSnBaseNode *makeDropNode(const OssImage *image, const QString &nodeType,
                                const QPointF &scenePos);
    /// False when the user was asked and chose none, or cannot be asked.
    bool chooseOutputPoint(OssSnBaseNode *node, OssSnBaseNode *viewer, int num);
    void batchSwapInputs(OssSnMultiChannelGroupNode *merge);
    template <class Change>
    void changePortLists(const char *missingContext, Change change);
    void showSeverMode();
    int selectionCount() const;
    QRectF selectionBounds() const;
    QRectF selectionOrAllBounds() const;
    void capZoom();
    OssNgNode *nodeForDoubleClick(const QMouseEvent *event) const;

    struct StartPosition
    {
        QPointer<OssNgNode> node; ///< once it is null, the key is but an address
        QPointF position;
        QPointer<OssSnBaseNode> container; ///< the backdrop that it belonged to
    };

    void recordStartPosition(OssNgNode *node);
    /// The recorded nodes that still stand in the scene, in the order of the keys.
    QList<OssNgNode *> recordedNodes() const;
    static QString moveTitle(const QList<OssNgNode *> &nodes);

    QPointer<OssShaderNetwork> m_network;
    QMap<OssNgNode *, StartPosition> m_nodeStartPositions;
    QString m_dragKey;                 ///< of the steps that one press brings: they are one
    std::optional<QPoint> m_menuPoint; ///< of the viewport: where the open menu or a drop is
    DropContents m_offer;              ///< what is held over the graph
    DropWire m_dropWire;               ///< and where it would go in
};
