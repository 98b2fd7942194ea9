#pragma once

#include "Manager/NodeGraphArranger.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"

#include <QGraphicsScene>
#include <QHash>
#include <QPointer>

class OssChannel;
class OssProject;
class OssSnNodeGraphViewContext;
class OssSnNodeGraphWidget;
class OssSnNodePropertiesWidget;
class SelectionCommands;

/// Ties the node graph to the host's networks: one scene for each network, the palette with its
/// tabs, the items of registered nodes in the right scene, answers to the host's requests, and the
/// node-graph preferences. One for the process, made on first use. A slot that lacks an object it
/// needs does nothing, most with a debug line. GUI thread.
class OssSnNodeGraphViewContextManager : public NodeGraphArranger
{
    Q_OBJECT
    // In the order in which they are read from the settings.
    Q_PROPERTY(QString controlType READ controlType WRITE setControlType RESET resetControlType
                   NOTIFY controlTypeChanged STORED false)
    Q_PROPERTY(QString defaultNodePortDisplayMode READ defaultNodePortDisplayMode WRITE
                   setDefaultNodePortDisplayMode RESET resetDefaultNodePortDisplayMode NOTIFY
                       defaultNodePortDisplayModeChanged STORED false)
    Q_PROPERTY(bool isAutoInsertOn READ isAutoInsertOn WRITE setIsAutoInsertOn RESET
                   resetIsAutoInsertOn NOTIFY isAutoInsertOnChanged STORED false)
    Q_PROPERTY(ZoomTo zoomTo READ zoomTo WRITE setZoomTo RESET resetZoomTo NOTIFY zoomToChanged
                   STORED false)
    Q_PROPERTY(DefaultMCMCollapsedState defaultMCMCollapsedState READ defaultMCMCollapsedState WRITE
                   setDefaultMCMCollapsedState RESET resetDefaultMCMCollapsedState NOTIFY
                       defaultMCMCollapsedStateChanged STORED false)
    Q_PROPERTY(QString autoUpdateUpstreamMergeNodeColorspaceEnabled READ
                   autoUpdateUpstreamMergeNodeColorspaceEnabled WRITE
                       setAutoUpdateUpstreamMergeNodeColorspaceEnabled RESET
                           resetAutoUpdateUpstreamMergeNodeColorspaceEnabled NOTIFY
                               autoUpdateUpstreamMergeNodeColorspaceEnabledChanged STORED false)
    Q_PROPERTY(
        bool shakeToExtractEnabled READ shakeToExtractEnabled WRITE setShakeToExtractEnabled RESET
            resetShakeToExtractEnabled NOTIFY shakeToExtractEnabledChanged STORED false)
    Q_PROPERTY(int shakeToExtractShakes READ shakeToExtractShakes WRITE setShakeToExtractShakes
                   RESET resetShakeToExtractShakes NOTIFY shakeToExtractShakesChanged STORED false)
    Q_PROPERTY(int shakeToExtractTime READ shakeToExtractTime WRITE setShakeToExtractTime RESET
                   resetShakeToExtractTime NOTIFY shakeToExtractTimeChanged STORED false)
    Q_PROPERTY(int numberOfLastUsedNodePathsToStore READ numberOfLastUsedNodePathsToStore WRITE
                   setNumberOfLastUsedNodePathsToStore RESET resetNumberOfLastUsedNodePathsToStore
                       NOTIFY numberOfLastUsedNodePathsToStoreChanged STORED false)

public:
    /// The point that stays where it is when the graph is zoomed.
    enum ZoomTo : int { Center = 0, Cursor = 1 };
    Q_ENUM(ZoomTo)

    /// How multi-channel nodes list their ports when they are made.
    enum DefaultMCMCollapsedState : int {
        Expanded = 0,
        StreamCollapsed = 1,
        ConnectedOnly = 2,
        Collapsed = 3
    };
    Q_ENUM(DefaultMCMCollapsedState)

    /// Index into the list of port displays.
    enum DefaultNodePortDisplayMode { ShowPortList = 0, HidePortList = 1 };

    static OssSnNodeGraphViewContextManager *instance();
    ~OssSnNodeGraphViewContextManager() override;

    /// The view the user works in; null when the widget is gone or its current page is none.
    OssShaderNetworkView *currentView() const;
    OssSnNodeGraphWidget *nodeGraphWidget() const;
    /// Body of the "Node Properties" palette; null when the palette is gone.
    OssSnNodePropertiesWidget *nodePropertiesWidget() const;
    /// The network's scene, made on first need and owned here. Null for a null network.
    QGraphicsScene *sceneForNetwork(OssShaderNetwork *network);
    /// Known until the project closes.
    void registerGroupNetwork(OssShaderNetwork *network, OssSnGroupNode *groupNode);
    /// The group whose inside the network is; null when its context registered none.
    OssSnGroupNode *groupOfNetwork(OssShaderNetwork *network) const;
    /// As the network was looked at before; framed the first time. Null leaves the view empty.
    void showNetworkInView(OssShaderNetwork *network, OssShaderNetworkView *view);

    /// A context has its item and its wiring.
    void onContextInitialised(OssSnNodeGraphViewContext *context);
    /// A node that stands for a port inside a group was moved: the group's ports take its order.
    void onGroupPortNodeMoved(OssShaderNetwork *network, bool input);

    /// The context of a node in the node graph, and its item; null when either step fails.
    static OssSnNodeGraphViewContext *contextOf(const OssSnBaseNode *node);
    static class OssNgNode *guiNodeOf(const OssSnBaseNode *node);

    QString prettyPropertyName(const QString &Name) const override;

public Q_SLOTS:
    // Networks and projects
    /// The root view shows it.
    void onCurrentShaderNetworkChanged(OssShaderNetwork *Network);
    /// Before its nodes are registered: whoever shows pixels is told to look anew.
    void onShaderNetworkAdded(OssShaderNetwork *Network);
    // The node's item and wires go into the network's scene, and out again; the context keeps them.
    void onNodeRegistered(OssShaderNetwork *Network, OssSnBaseNode *Node);
    void onNodeDeregistered(OssShaderNetwork *Network, OssSnBaseNode *Node);
    void onShaderNetworkDestroyed(QObject *Obj);
    /// Forgets where in it the user was.
    void onNetworkDestroyed(QObject *Obj);
    /// While networks and contexts still live: deletes all scenes and forgets the groups.
    void onProjectClosing();
    /// With the first network current: items take their port lists, and all of it is framed.
    void onProjectOpenCompleted();
    /// Shows the wires of a network that was read.
    void onAfterShaderNetworkEndCollection(OssShaderNetwork *Network);
    /// Every item of the open project takes the port list that its context holds.
    void updatePortVisibility();
    /// With all nodes registered: old backdrops without a path key get today's and its version.
    void onProjectMadeCurrentUpgradeOldBadBackdrops(OssProject *Project);

    // Requests
    /// Shows the node graph, and in it the node, selected. Without a node only the graph.
    void focusOnNode(OssSnBaseNode *Node);
    /// Moves To's item to where From's is, as one step; nothing when one has no item.
    void matchNodePosition(OssSnBaseNode *From, OssSnBaseNode *To);
    /// After, resp. before, the target's panel; `Undo` makes no difference.
    void showNodePropertiesAtPositionEnd(OssSnBaseNode *Node, OssSnBaseNode *Target, bool Undo);
    void showNodePropertiesAtPositionBegin(OssSnBaseNode *Node, OssSnBaseNode *Target, bool Undo);
    void showNodeProperties(OssSnBaseNode *Node);
    /// What was open of the one is open of the other.
    void replaceNodeProperties(OssSnBaseNode *old, OssSnBaseNode *replacement);
    void showPropertiesPalette();
    void showNodeGraphPalette();
    /// Marks the nodes of the current root network that read the channel, and no others.
    void highlightCurrentImageSetNode(OssChannel *pImageSet);
    /// The old marks go before the new ones come: what is in both stays marked.
    void onDebugNodesChanged(OssShaderNetworkManager::DebugNodes rNewNodes,
                             OssShaderNetworkManager::DebugInputs rNewInputs,
                             OssShaderNetworkManager::DebugNodes rOldNodes,
                             OssShaderNetworkManager::DebugInputs rOldInputs);
    /// The items of the panels' nodes light up and go out. Null for beside all panels.
    void onNodePropertiesHoverChanged(OssSnBaseNode *MouseOver, OssSnBaseNode *OldMouseOver);
    /// The selected nodes list their ports as the sending action says ("Mode").
    void onNodeCollapsedModeChanged();
    /// Makes a node of the sender's type of every selected image of the project.
    void addImageAs();

    // Preferences: see the table in the source.
    QString controlType() const { return m_controlType; }

    void setControlType(const QString &Value);

    void resetControlType() { setControlType(controlTypeDefault()); }

    QString controlTypeTooltip() const;
    QString controlTypeDefault() const;
    QStringList controlTypeList() const;

    QString defaultNodePortDisplayMode() const;

    int defaultNodePortDisplayModeAsEnum() const { return m_portDisplayIndex; }

    void setDefaultNodePortDisplayMode(const QString &Mode);
    void resetDefaultNodePortDisplayMode();
    QString defaultNodePortDisplayModeTooltip() const;
    QStringList defaultNodePortDisplayModeList() const;

    bool isAutoInsertOn() const { return m_isAutoInsertOn; }

    void setIsAutoInsertOn(bool Value);

    void resetIsAutoInsertOn() { setIsAutoInsertOn(true); }

    QString isAutoInsertOnTooltip() const;

    ZoomTo zoomTo() const { return ZoomTo(m_zoomTo); }

    int zoomToAsInt() const { return m_zoomTo; }

    void setZoomTo(ZoomTo Value) { setZoomTo(int(Value)); }

    void setZoomTo(int Value);

    void resetZoomTo() { setZoomTo(int(Cursor)); }

    QString zoomToTooltip() const;

    QString autoUpdateUpstreamMergeNodeColorspaceEnabled() const { return m_colorspaceUpdate; }

    void setAutoUpdateUpstreamMergeNodeColorspaceEnabled(const QString &Value);
    void resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
    QString autoUpdateUpstreamMergeNodeColorspaceEnabledTooltip() const;
    QString autoUpdateUpstreamMergeNodeColorspaceEnabledDefault() const;
    QStringList autoUpdateUpstreamMergeNodeColorspaceEnabledList() const;

    DefaultMCMCollapsedState defaultMCMCollapsedState() const
    {
        return DefaultMCMCollapsedState(m_collapsedState);
    }

    int defaultMCMCollapsedStateAsInt() const { return m_collapsedState; }

    void setDefaultMCMCollapsedState(DefaultMCMCollapsedState Value)
    {
        setDefaultMCMCollapsedState(int(Value));
    }

    void setDefaultMCMCollapsedState(int Value);

    void resetDefaultMCMCollapsedState() { setDefaultMCMCollapsedState(int(StreamCollapsed)); }

    QString defaultMCMCollapsedStateTooltip() const;

    bool shakeToExtractEnabled() const { return m_shakeEnabled; }

    void setShakeToExtractEnabled(bool Value);

    void resetShakeToExtractEnabled();
    void toggleShakeToExtractEnabled();
    QString shakeToExtractEnabledTooltip() const;

    bool shakeToExtractEnabledDefault() const { return true; }

    int shakeToExtractShakes() const { return m_shakes; }

    void setShakeToExtractShakes(int Value);

    void resetShakeToExtractShakes();
    QString shakeToExtractShakesTooltip() const;

    int shakeToExtractShakesDefault() const { return 4; }

    int shakeToExtractTime() const { return m_shakeTime; }

    void setShakeToExtractTime(int Value);

    void resetShakeToExtractTime();
    QString shakeToExtractTimeTooltip() const;

    int shakeToExtractTimeDefault() const { return 500; }

    int numberOfLastUsedNodePathsToStore() const { return m_recentCount; }

    void setNumberOfLastUsedNodePathsToStore(int Value);
    void resetNumberOfLastUsedNodePathsToStore();
    QString numberOfLastUsedNodePathsToStoreTooltip() const;

    int numberOfLastUsedNodePathsToStoreDefault() const { return 5; }

    void savePreferences();
    void loadPreferences();

Q_SIGNALS:
    void controlTypeChanged(QString ControlType);
    void defaultNodePortDisplayModeChanged(QString Mode);
    void isAutoInsertOnChanged(bool On);
    void zoomToChanged(ZoomTo Value);
    void zoomToChangedAsInt(int Value);
    void autoUpdateUpstreamMergeNodeColorspaceEnabledChanged(QString Value);
    void defaultMCMCollapsedStateChanged(DefaultMCMCollapsedState Value);
    void defaultMCMCollapsedStateChangedAsInt(int Value);
    void shakeToExtractEnabledChanged(bool Enabled);
    void shakeToExtractShakesChanged(int Shakes);
    void shakeToExtractTimeChanged(int Time);
    void numberOfLastUsedNodePathsToStoreChanged(int Count);

private:
    OssSnNodeGraphViewContextManager();
    OssShaderNetworkView *viewOrComplain() const override;
    void registerPreferences();
    void connectToHost();
    void createActions();
    void createLayoutAction();
    void createPortListActions();
    /// What the images' menu offers; not in the action tree.
    void createImageActions();
    void createShakeAction();
    void initialiseNodeGraphPalette();
    void initialiseNodePropertiesPalette();
    template <class Visit>
    void visitProjectNodes(OssProject *project, Visit visit) const;

    QHash<OssShaderNetwork *, QGraphicsScene *> m_scenes;
    QHash<OssShaderNetwork *, QPointer<OssSnGroupNode>> m_groupNodes;
    QHash<OssShaderNetwork *, QRectF> m_viewRects;
    QPointer<OssSnNodeGraphWidget> m_nodeGraphWidget;
    QPointer<OssSnNodePropertiesWidget> m_nodePropertiesWidget;
    SelectionCommands *m_selectionCommands;
    int m_portDisplayIndex = ShowPortList;
    bool m_isAutoInsertOn = true;
    int m_zoomTo = Cursor;
    QString m_controlType;
    QString m_colorspaceUpdate;
    int m_collapsedState = StreamCollapsed;
    bool m_shakeEnabled = true;
    int m_shakes = 4;
    int m_shakeTime = 500;
    int m_recentCount = 5;
};
