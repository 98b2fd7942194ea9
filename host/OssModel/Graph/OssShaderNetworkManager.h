#pragma once

#include "OssCore/Documents/OssObjectReferenceManager.h"
#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnNodeTypeLibrary.h"

#include <QColor>
#include <QList>
#include <QMap>
#include <QPointer>
#include <QVector>

#include <map>

class OssShaderNetwork;
class OssShaderNetworkContextLoader;
class OssShadingGroup;
class OssSnBaseNode;
class OssSnGroupNode;
class QAction;

/// What all shader networks of the process share: node types, context loaders, which network and
/// viewer are current, and the notices and requests that panels and plug-ins answer.
class OSSMODEL_EXPORT OssShaderNetworkManager
    : public OssSerializableObject
    , public OssService<OssShaderNetworkManager>
{
    Q_OBJECT

public:
    using DebugNodes = QMap<OssObjectReference, QColor>;
    using DebugInputs = QMap<OssObjectReference, QMap<QString, QColor>>;

    /// What can be done to the places of several nodes at once. See Arranger for how.
    enum Arrangement {
        AlignLeft,
        AlignCenter,
        AlignRight,
        AlignTop,
        AlignMiddle,
        AlignBottom,
        DistributeHorizontally,
        DistributeVertically,
        TidyBackdrops,
        BringToFront,
        SendToBack,
        ArrangeInLayers,
        ArrangeWithDots,
        StraightenChain,
        TidyOverlaps,
        // Each node by the one before it in the list; the first one stays.
        PlaceUnderneath,
        PlaceNextTo,
        PlaceOnTop,
        PlaceAtFreeSpot,
        PlaceBelow,
        PlaceFarBelow,
        PlaceLeftBelow,
        PlaceLeft,
        PlaceInTheMiddle,
        PlaceRight,
        PlaceFarRight,
        PlaceRightAtOwnHeight,
        PlaceRightAbove,
        PlaceAboveInStream
    };
    Q_ENUM(Arrangement)

    /// As scripts write it: "align left".
    static QString nameOf(Arrangement how);

    struct NamedLoader
    {
        QString name;
        QPointer<OssShaderNetworkContextLoader> loader;
    };

    OssShaderNetworkManager();
    ~OssShaderNetworkManager() override;

    // --- node types
    /// Reads the descriptions in a folder; faults are debug lines and returned.
    QStringList loadNodeTypes(const QString &folder);
    /// The same for the user's own types, which may have come, changed or gone since the last time. Nodes
    /// stay what they were made from. A fault that stays is one debug line.
    QStringList readUserNodeTypes(const QString &folder, OssSnNodeTypeLibrary::Changes *changes);
    bool registerNodeType(const OssSnNodeTypeLibrary::TypePointer &type);
    OssSnNodeTypeLibrary::TypePointer nodeType(const QString &pathKey) const;
    /// Every type that can be made in a node graph.
    QStringList nodeGraphPathKeys() const;
    QStringList nodePathKeys() const;
    /// Empty when the type is not offered.
    QString nodeMenuPath(const QString &pathKey) const;
    /// Empty for unknown keys.
    QString convertPathKeyToVersionUUID(const QString &pathKey) const;

    // --- versions
    /// Hash of an untouched node of the installed type; empty when none is installed.
    QString hashStringForVersionUUID(const QString &versionUUID);
    /// Date of the installed type; empty when none is installed or it has none.
    QString versionDatePresent(const QString &versionUUID) const;
    /// Hash of an untouched node of a type. Made once.
    QString pristineHash(const OssSnNodeTypeLibrary::TypePointer &type);
    /// Makes the node one of its type as it is installed now: values and wires stay by name. One
    /// undo step. What could not be kept is a debug line and is added to `lost`. False when it
    /// cannot be done; then nothing changes.
    bool upgradeNode(OssSnBaseNode *node, QStringList *lost = nullptr);
    /// Replaces the node by one of another type, in the same way and place. Null when refused.
    OssSnBaseNode *convertNodeToKeyPath(OssSnBaseNode *node, const QString &pathKey,
                                        QStringList *lost = nullptr);
    /// Whether there is such a type and nodes can be converted to it.
    bool canConvertToKeyPath(const QString &pathKey) const;
    /// Upgrades those of the nodes, and of what is inside them, that are older than what is
    /// installed and were not changed by hand. One undo step.
    void upgradeNetworks(const QList<OssSnBaseNode *> &nodes, QStringList *lost = nullptr);

    /// For nodes that were inserted and all stand there: with smart linking on, links their
    /// attributes to the knobs of the group around that those of the originals were linked to,
    /// where it is the same group.
    void createDelayedKnobs(const QList<OssSnBaseNode *> &nodes);

    // --- contexts and menus
    /// Kept for the process; not owned when it has a parent.
    void registerContextLoader(const QString &name, OssShaderNetworkContextLoader *loader);

    const QVector<NamedLoader> &contextLoaders() const { return m_loaders; }

    /// An action that the menu of every node graph offers. Not owned.
    void registerGlobalContextMenuAction(QObject *action);

    /// Those that still live, in the order of registration. The model knows no widgets, so what an
    /// action is made of is the caller's to know.
    template <class Action = QAction>
    QList<Action *> globalContextMenuActions() const
    {
        QList<Action *> actions;
        for (const QPointer<QObject> &entry : m_globalActions) {
            if (auto *action = qobject_cast<Action *>(entry.data()))
                actions.append(action);
        }
        return actions;
    }

    // --- current
    OssShaderNetwork *currentShaderNetwork() const;
    void setCurrentShaderNetwork(OssShaderNetwork *network);
    /// The network that the node graph shows: the current one or a group inside it.
    OssShaderNetwork *currentViewNetwork() const;
    void setCurrentViewNetwork(OssShaderNetwork *network);
    OssSnBaseNode *currentViewerNode() const;
    void setCurrentViewerNode(OssSnBaseNode *node);
    /// Null when the group has none.
    OssShaderNetwork *getShaderNetwork(OssShadingGroup *group) const;

    /// While on, attributes of nodes that are made are linked as those of the nodes they were copied
    /// from. Off at first.
    void setAttributeSmartLinkingEnabled(bool on) { m_smartLinking = on; }

    bool isAttributeSmartLinkingEnabled() const { return m_smartLinking; }

    /// Has everything that shows results of the network make them anew.
    void refreshGraph(OssShaderNetwork *network);
    /// After a command of the user changed a graph.
    void emitNodeGraphIsManuallyChanged();

    // --- for networks and their owners
    void addShaderNetwork(OssShaderNetwork *network);
    void registerNode(OssShaderNetwork *network, OssSnBaseNode *node);
    void deregisterNode(OssShaderNetwork *network, OssSnBaseNode *node);
    void endCollection(OssShaderNetwork *network);

    // Of edits: nothing is told while recording pauses.
    void tellMade(OssSnBaseNode *node);
    void tellInserted(OssSnBaseNode *node);
    void tellOfWiring(OssSnBaseNode *node);

    // --- requests: whoever can, answers
    void requestFocus(OssSnBaseNode *node) { Q_EMIT focusOnNodeRequest(node); }

    /// Brings the user to a node, wherever it stands: its object and the tab of its network come into
    /// view, and the node is selected, framed and flashes. False for a node that is in no network.
    bool goToNode(OssSnBaseNode *node);

    /// Wires the object's viewer to the node and looks at it, in one undo step. An input of 0: the one
    /// that is looked at now. False for a node that is in no network.
    bool requestViewer(OssSnBaseNode *node, int input = 0);

    /// Brings the node in sight where its network is shown now: for what a command made elsewhere than
    /// the user looked.
    void requestSight(OssSnBaseNode *node) { Q_EMIT sightRequest(node); }

    /// Moves `to` onto `from`, undoably.
    void requestSamePosition(OssSnBaseNode *from, OssSnBaseNode *to)
    {
        Q_EMIT matchNodePositionRequest(from, to);
    }

    /// Opens the node's panel at the top, resp. after or before that of another node.
    void requestProperties(OssSnBaseNode *node) { Q_EMIT showNodePropertiesRequest(node); }

    void requestPropertiesAfter(OssSnBaseNode *node, OssSnBaseNode *target)
    {
        Q_EMIT showNodePropertiesAtPositionEndRequest(node, target, false);
    }

    void requestPropertiesBefore(OssSnBaseNode *node, OssSnBaseNode *target)
    {
        Q_EMIT showNodePropertiesAtPositionBeginRequest(node, target, false);
    }

    /// Puts the group's ports into the order in which the nodes that stand for them lie inside, from
    /// the top. One undo step.
    void requestPortsInOrderOfPlaces(OssSnGroupNode *group);
    /// The other way round: the nodes that stand for inputs, or outputs, change places until they lie
    /// in the order of the ports. One undo step.
    void requestPlacesInOrderOfPorts(OssSnGroupNode *group);
    void requestPlacesInOrderOfOutputs(OssSnGroupNode *group);

    /// Of these nodes and what feeds them; of everything, whatever is selected, without any.
    void requestLayout(OssShaderNetwork *network, const QList<OssSnBaseNode *> &nodes);
    /// Of nodes of one network; one undo step. Fails, in words, where something is missing, and where
    /// nobody shows nodes.
    OssResult requestArrangement(const QList<OssSnBaseNode *> &nodes, Arrangement how);
    /// Marks nodes and wires in colours until the next call.
    void setDebugNodes(const DebugNodes &nodes, const DebugInputs &inputs);

Q_SIGNALS:
    void currentShaderNetworkChanged(OssShaderNetwork *network);
    void currentViewNetworkChanged(OssShaderNetwork *network);
    void shaderNetworkAdded(OssShaderNetwork *network);
    void focusOnNodeRequest(OssSnBaseNode *node);
    void sightRequest(OssSnBaseNode *node);
    void matchNodePositionRequest(OssSnBaseNode *from, OssSnBaseNode *to);
    void afterShaderNetworkEndCollection(OssShaderNetwork *network);
    void showNodePropertiesAtPositionEndRequest(OssSnBaseNode *node, OssSnBaseNode *target,
                                                bool undo);
    void showNodePropertiesAtPositionBeginRequest(OssSnBaseNode *node, OssSnBaseNode *target,
                                                  bool undo);
    void showNodePropertiesRequest(OssSnBaseNode *node);
    void beautifyNodesLayout(OssShaderNetwork *network);
    void beautifyNodesLayout(OssShaderNetwork *network, OssSnBaseNode *node);
    void beautifyNodesLayout(OssShaderNetwork *network, QList<OssSnBaseNode *> nodes);
    /// All of it, whatever is selected.
    void wholeLayoutRequested(OssShaderNetwork *network);
    void arrangementRequested(const QList<OssSnBaseNode *> &nodes,
                              OssShaderNetworkManager::Arrangement how, OssResult *result);
    void nodeRegistered(OssShaderNetwork *network, OssSnBaseNode *node);
    void nodeDeregistered(OssShaderNetwork *network, OssSnBaseNode *node);
    /// An edit made the node and goes on. This one and the next two: not for what is loaded, undone
    /// or redone.
    void nodeMade(OssSnBaseNode *node);
    /// An edit brought the node from elsewhere, with its wires.
    void nodeInserted(OssSnBaseNode *node);
    /// An input of the node is about to get another wire, or none.
    void aboutToWire(OssSnBaseNode *node);
    void reorderGroupInputsByPosRequested(OssSnGroupNode *group);
    void reorderGroupOutputsByPosRequested(OssSnGroupNode *group);
    void arrangeGroupInputNodesByOrderRequested(OssShaderNetwork *network, QStringList order);
    void arrangeGroupOutputNodesByOrderRequested(OssShaderNetwork *network, QStringList order);
    void debugNodesChanged(OssShaderNetworkManager::DebugNodes newNodes,
                           OssShaderNetworkManager::DebugInputs newInputs,
                           OssShaderNetworkManager::DebugNodes oldNodes,
                           OssShaderNetworkManager::DebugInputs oldInputs);
    /// While both exist: whoever shows the old one may show the new one instead. Undo and redo tell it
    /// as well, undo the other way round.
    void nodeReplaced(OssSnBaseNode *old, OssSnBaseNode *replacement);
    void registeredNodePopulationChanged();
    void nodeGraphIsManuallyChanged();
    void graphRefreshRequested(OssShaderNetwork *network);

private:
    OssSnNodeTypeLibrary m_types;
    QStringList m_typeFaults; ///< of the user's folder, when it was read last
    std::map<OssSnNodeTypeLibrary::TypePointer, QString> m_pristineHashes;
    QVector<NamedLoader> m_loaders;
    QVector<QPointer<QObject>> m_globalActions;
    QPointer<OssShaderNetwork> m_current;
    QPointer<OssShaderNetwork> m_currentView;
    QPointer<OssSnBaseNode> m_currentViewer;
    bool m_smartLinking = false;
    DebugNodes m_debugNodes;
    DebugInputs m_debugInputs;
};
