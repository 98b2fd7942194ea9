#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QHash>
#include <QList>
#include <QPointer>
#include <QPointF>
#include <QSet>

#include <memory>
#include <vector>

class OssImageSet;
class OssGeoEntity;
class OssShadingContext;
class OssSnBaseNode;
class OssLayerShaderModel;
class OssSnGroupNode;
class OssSnMultiChannelMergeNode;
class OssNodeTypeTable;
class OssSnNodeType;

/// A shader network: the root of an object's shading group, or the inside of a group node. Owns its
/// nodes. What changes the document records its own undo step. GUI thread.
class OSSMODEL_EXPORT OssShaderNetwork : public OssSerializableObject
{
    Q_OBJECT

public:
    /// For the inside of a group the parent is the group node.
    explicit OssShaderNetwork(QObject *parent = nullptr);
    ~OssShaderNetwork() override;

    /// Null for a root network.
    OssSnGroupNode *parentGroupNode() const;
    /// The outermost network; itself for a root.
    OssShaderNetwork *rootNetwork() const;
    /// The object whose shading this is, also asked inside groups. Null for a network that belongs
    /// to no object.
    OssGeoEntity *geoEntity() const;
    /// Of a root network; whoever owns it sets it.
    void setShadingContext(OssShadingContext *context);
    OssShadingContext *shadingContext() const;

    // --- nodes
    /// Own nodes in the order of their making.
    QList<OssSnBaseNode *> nodes() const;
    /// Own nodes, each followed by what is inside it.
    QList<OssSnBaseNode *> getAllNodes() const;
    QList<OssSnBaseNode *> selectedNodes() const;
    void selectOnly(const QList<OssSnBaseNode *> &nodes);

    int nodeCount() const { return int(m_nodes.size()); }

    /// Null when there is none of that name.
    OssSnBaseNode *node(const QString &name) const { return m_byName.value(name); }

    /// By path from this network: "/Group/Node".
    OssSnBaseNode *nodeByPath(const QString &path) const;
    /// `base` when it is free, else with the lowest free number: "Blur", "Blur 2", "Blur 3".
    QString generateUniqueNodeName(const QString &base) const;

    /// Makes a node of a known type, with a free name, and emits its newNodeAdded(). Records
    /// "Create Node : NAME". Null and a debug line when there is no such type. A multi-channel node
    /// gets the streams of the model, or of the first one that is known.
    OssSnBaseNode *createNode(const QString &pathKey, const QString &name = {},
                              const QString &shaderModelId = {});
    /// A node of the type, in no network yet; a published group with what the type has inside it, with
    /// images in the shading of the network for which it is made. Never null: what cannot be made is a
    /// placeholder.
    static std::unique_ptr<OssSnBaseNode> makeNode(const std::shared_ptr<const OssSnNodeType> &type,
                                                   const OssShaderNetwork *target = nullptr);
    /// The same, as commands of the graph want them.
    QList<OssSnBaseNode *> createNodes(const QString &pathKey);
    /// A node with images of its own at a scene point. Without a key: what the brush writes to.
    OssSnBaseNode *createPaintableNode(const QPointF &scenePos, const QString &pathKey = {});
    /// Empty images with the settings of `like`, which may be null, under a name that is free.
    /// Owned by the shading context; null where there is none. Undoable.
    OssImageSet *createImageSet(const QString &name, const OssImageSet *like, int resolution);
    /// The same in no document.
    static std::unique_ptr<OssImageSet> imagesLike(const QString &name, const OssImageSet *like,
                                                   int resolution);
    /// Null without a model.
    OssSnMultiChannelMergeNode *createMultiChannelMergeNode(const OssLayerShaderModel *model);
    /// The same as lists, as commands want them; with `unique` names are made free.
    QList<OssSnBaseNode *> createNodesFromNodePathKey(const QString &pathKey, bool unique);
    /// Takes over a node that stands in no network: connections, contexts, registration.
    OssSnBaseNode *addNode(std::unique_ptr<OssSnBaseNode> node, bool fresh);

    /// Moves all nodes of a network that was just read, and was neither finished nor shown, into
    /// this one: with free names and their wires. One undo step.
    QList<OssSnBaseNode *> takeOverNodes(OssShaderNetwork *read);

    /// What may not be removed is a debug line and stays; a viewer goes only by itself. One undo
    /// step.
    void removeNodes(const QSet<OssSnBaseNode *> &nodes);
    /// One of many that are removed: a viewer stays.
    void removeNode(OssSnBaseNode *node, bool record, bool notify);
    /// Graph layer inputs are what a layer stands on.
    static bool isRemovable(const OssSnBaseNode *node);
    /// Puts nodes into a new group of this network, with a port for each stream that goes in or
    /// out. What belongs to the network itself (viewer, ports) stays. Null when nothing is left, or
    /// when nodes stand between. One undo step, as is ungroup(), which gives back what groupNodes()
    /// took.
    OssSnGroupNode *groupNodes(const QList<OssSnBaseNode *> &members);
    /// The nodes that a way from one member to another leads through and that are no members, in
    /// the order of the network: a group without them would have to feed itself.
    QList<OssSnBaseNode *> nodesBetween(const QList<OssSnBaseNode *> &members) const;
    /// The nodes that were inside.
    QList<OssSnBaseNode *> ungroup(OssSnGroupNode *group);
    /// Takes nodes out of their streams; what fed each one feeds what it fed. One undo step.
    void extractNodes(const QList<OssSnBaseNode *> &nodes, bool keepSelected);

    // --- view state
    bool allowViewUpdate() const { return m_viewLocks == 0; }

    /// Scope in which views of this network do not repaint.
    class OSSMODEL_EXPORT ViewUpdateLock
    {
    public:
        explicit ViewUpdateLock(OssShaderNetwork *network);
        ViewUpdateLock(const ViewUpdateLock &) = delete;
        ViewUpdateLock &operator=(const ViewUpdateLock &) = delete;
        ~ViewUpdateLock();

    private:
        QPointer<OssShaderNetwork> m_network;
    };

    /// Of a root network: which input of its viewer is looked at. Part of the step that is being
    /// made; by itself no step, but the project counts as modified.
    int viewerNodeCurrentEdge() const { return m_viewerEdge; }

    void setViewerNodeCurrentEdge(int edge, bool notify);
    /// The viewer of the object, wherever it stands; null when there is none.
    OssSnBaseNode *viewerNode() const;
    /// Brings the object's viewer here, with its connections, which is not undoable; makes one when
    /// there is none, which is.
    OssSnBaseNode *moveCurrentViewerNodeToNetwork();
    /// Takes a node over from another network of the object, with its connections.
    void moveNodeHereUndo(OssSnBaseNode *node);

    // --- files
    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;
    OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                  const QString &name, const QString &type,
                                                  const Attributes &attributes) override;
    void onEndCollection(OssDeserializer &deserializer, const QString &name) override;
    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;
    /// Wires what the files told, networks inside first, initialises contexts and registers the
    /// nodes. Connections that cannot be made are reported and left out.
    QStringList finishLoading();

    // --- for the node classes
    void nodeWasRenamed(OssSnBaseNode *node, const QString &oldName);

Q_SIGNALS:
    void allowViewUpdateChanged(bool allow);
    void nodeSelectionChanged();
    /// One of its nodes was selected or is no more.
    void selectionChanged();
    void nodesChanged();

private:
    using NodePointer = std::unique_ptr<OssSnBaseNode>;
    struct Removed;
    struct Relocated;

    /// Where it belongs by age: what comes back finds its old place, whoever came and went meanwhile.
    OssSnBaseNode *insertNode(NodePointer node);
    NodePointer takeNode(OssSnBaseNode *node);
    void registerNode(OssSnBaseNode *node);
    void moveNodeHere(OssSnBaseNode *node);
    /// Brings the viewer here when it is inside a group that is about to leave.
    void keepViewer(const OssSnBaseNode *leaving);
    static void cutWiresOut(const OssSnBaseNode *leaving);
    void releaseName(const QString &name);
    void relocate(const QList<OssSnBaseNode *> &nodes, OssShaderNetwork *target);
    /// Of a network that was read for another one, which has a viewer of its own.
    void dropLoadedViewers();
    bool belongsHere(const OssSnBaseNode *node) const;
    void removeUnchecked(const QList<OssSnBaseNode *> &nodes, const QString &title);
    void extractNode(OssSnBaseNode *node);
    void wireLoadedNodes(QStringList *faults);
    void cutLoadedCycles(QStringList *faults);
    void finishNodes();
    void lockViewUpdates(bool lock);

    std::vector<NodePointer> m_nodes;
    std::unique_ptr<OssNodeTypeTable> m_fileTypes; ///< of a root network while it is being read
    QHash<QString, OssSnBaseNode *> m_byName;
    /// For each row of numbered names, a number below which none is free.
    mutable QHash<QString, unsigned> m_freeNumbers;
    QPointer<OssShadingContext> m_shadingContext;
    int m_viewerEdge = 1;
    mutable QPointer<OssSnBaseNode> m_lastViewer; ///< of a root: that was found last
    int m_viewLocks = 0;
};

Q_DECLARE_METATYPE(OssShaderNetwork *)
