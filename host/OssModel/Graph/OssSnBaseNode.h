#pragma once

#include "OssCore/OssSerializableObject.h"
#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QList>
#include <QPointer>
#include <QPointF>
#include <QVector>

#include <memory>
#include <utility>

class OssGeoImageSet;
class OssImageSet;
class OssShaderNetwork;
class OssSnBaseContext;

/// How far the "keep the result" state of a node is.
enum OssSnBaseNodeCacheActiveState { CacheOff = 0, CachePending = 1, CacheActive = 2 };

/// A node of a shader network: name, ports, connections, tags, attributes, contexts.
///
/// Owned by its network; a deleted node is kept by the undo step of its deletion, with its contexts
/// and under the same UUID. Every operation that changes the document records its own undo step and
/// emits its signals on undo and redo too. GUI thread.
class OSSMODEL_EXPORT OssSnBaseNode : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString description READ description WRITE setDescription STORED hasDescription)
    Q_PROPERTY(int enabled READ enabled WRITE setEnabled STORED isNotEnabled)
    Q_PROPERTY(bool bypassed READ isBypassed WRITE setBypassed STORED isBypassed)
    Q_PROPERTY(int cacheActive READ cacheActive WRITE setCacheActive STORED isCacheSet)

public:
    /// Where a node goes relative to another, in grid steps.
    enum NodeLayoutType {
        LayoutFreeSpot = 0,
        LayoutBelow = 1,
        LayoutTwoRight = 2,
        LayoutLeftBelow = 3,
        LayoutRightAbove = 4,
        LayoutTwoBelow = 5,
        LayoutThreeRight = 6,
        LayoutTwoRightLoose = 7,
        LayoutLeft = 8,
        LayoutBeside = 9,
        LayoutSame = 10,
        LayoutRightAboveUneven = 11
    };
    Q_ENUM(NodeLayoutType)

    struct InputPort
    {
        QString name;
        QString label; ///< empty: the name
        OssSnDataKind kind = OssSnDataKind::Color;
        bool preferred = false;
        bool setAtLoad = false;
        bool enabled = true;
        bool shared = false;
        QStringList tags;
        OssSnBaseNode *source = nullptr; ///< null: nothing connected
        QString sourceOutput;
    };

    struct OutputPoint
    {
        QString name;
        QString label;
        OssSnDataKind kind = OssSnDataKind::Color;
    };

    /// A wire as its source sees it.
    struct OutgoingConnection
    {
        QString outputPoint;
        OssSnBaseNode *target;
        QString input;
    };

    /// For a type that is not known `type` is null; the node is then a placeholder that keeps what
    /// it does not understand.
    explicit OssSnBaseNode(std::shared_ptr<const OssSnNodeType> type);
    ~OssSnBaseNode() override;

    // --- identity
    QString name() const { return m_name; }

    /// A blank name or one with "/" is made usable, a taken one unique. Records "Rename ...".
    void setName(const QString &name);

    QString description() const { return m_description; }

    bool hasDescription() const { return !m_description.isEmpty(); }

    void setDescription(const QString &description);
    /// "/Group/Node" within the root network.
    QString path() const;

    QString pathKey() const { return m_pathKey; }

    /// No undo: part of making or upgrading a node.
    void setPathKey(const QString &pathKey) { m_pathKey = pathKey; }

    /// Null for placeholders.
    const OssSnNodeType *nodeType() const { return m_type.get(); }

    virtual bool isPlaceholder() const { return !m_type; }

    /// Null while the node is in none: before it is added and after it is deleted.
    OssShaderNetwork *network() const { return m_network; }

    bool hasTag(const QString &tag) const;

    void addTag(const QString &tag) { m_tags.insert(tag); }

    QStringList tags() const;

    /// Backdrop that holds the node, null when there is none.
    OssSnBaseNode *container() const { return m_container; }

    void setContainer(OssSnBaseNode *container) { m_container = container; }

    // --- versions: a node stays what it was made from until it is upgraded, also in a file that is
    // opened when the types have changed.
    QString versionUUID() const { return m_versionUUID; }

    void setVersionUUID(const QString &uuid, const QString &createdHash = {});
    /// Of an untouched node of what this one was made from.
    QString versionHashCreated() const;

    QString versionDate() const { return m_versionDate; }

    /// Of the node as it is now: its type's definition, the names of its ports, its contexts.
    QString versionHashPresent() const;
    /// The text that the hash is made of.
    QString versionHashSourcePresentDump() const;
    /// Whether the one is earlier; a text that is no date (ISO 8601) is earlier than any.
    static bool versionDateLT(const QString &a, const QString &b);

    /// What a node has from its type, with the wires that its ports had.
    struct Definition
    {
        std::shared_ptr<const OssSnNodeType> type;
        QString pathKey;
        QString versionUUID;
        QString versionHashCreated;
        QString versionDate;
        QVector<InputPort> inputs;
        QVector<OutputPoint> outputs;
        QVector<OssCustomAttribute> attributes;
        std::shared_ptr<OssSnBaseNode> look; ///< its contexts hold what the contexts' look was
    };

    Definition definition() const;
    /// Of an untouched node of the type.
    static Definition definitionOf(const std::shared_ptr<const OssSnNodeType> &type);
    /// Makes the node one of that definition, with its signals. No undo; ports that the definition
    /// does not have must be free of wires.
    void applyDefinition(const Definition &definition);

    /// Of a placeholder that came with a description of its type: what the file said, and under
    /// which id. Otherwise empty.
    QString foreignType() const { return m_foreignType; }

    QString definitionId() const;

    void setForeignType(const QString &description) { m_foreignType = description; }

    // --- contexts
    /// Null when there is none of that name.
    OssSnBaseContext *context(const QString &name) const;
    /// The one that shows the node in the node graph; null when nothing does.
    OssSnBaseContext *viewContext() const;
    /// Makes the contexts of all registered loaders. Called once, by the network, when the node
    /// stands in it with its ports.
    void createContexts();
    /// Initialises them and reports the user attributes. Called once, after saved state was loaded.
    void initializeContexts();

    // --- ports
    const QVector<InputPort> &inputPorts() const { return m_inputs; }

    const QVector<OutputPoint> &outputPoints() const { return m_outputs; }

    QStringList inputNames() const;
    QStringList outputPointNames() const;

    int outputPointCount() const { return m_outputs.size(); }

    bool hasInput(const QString &name) const { return inputIndex(name) >= 0; }

    bool hasOutputPoint(const QString &name) const { return outputIndex(name) >= 0; }

    QStringList prettyInputNameList() const;
    QStringList prettyOutputNameList() const;
    /// Also for tags that a context added.
    bool hasInputTag(const QString &input, const QString &tag) const;
    bool isInputEnabled(const QString &input) const;
    QStringList sharedInputNames() const;
    /// The first one, which is what commands connect; empty when there is none. (The spelling is
    /// what scripts and files know.)
    virtual QString prefferedOutputPoint() const;
    /// The input that a wire dropped on the body goes to: the first free preferred one, else the
    /// first free one that is followed; empty when there is none.
    QString preferredInput() const;

    /// Whether outputs are drawn apart from the body's edge, as results that nothing follows.
    virtual bool hasDetachedOutputs() const { return false; }

    void addInput(const InputPort &port, int index = -1);
    void addInputs(const QVector<InputPort> &ports);
    virtual bool removeInput(const QString &name);
    virtual bool renameInput(const QString &oldName, const QString &newName);
    /// All names, in the new order; anything else is refused.
    bool reorderInputs(const QStringList &names);
    bool reorderOutputs(const QStringList &names);
    void setInputEnabled(const QString &name, bool enabled);
    void setInputShared(const QString &name, bool shared);
    void addOutputPoint(const OutputPoint &point, int index = -1);
    virtual bool removeOutputPoint(const QString &name);
    /// All ports carry this kind of data from now on. No undo: part of making a node.
    void setPortKinds(OssSnDataKind kind);
    virtual bool renameOutputPoint(const QString &oldName, const QString &newName);

    // --- connections
    /// Null when nothing is connected or the input is unknown.
    OssSnBaseNode *inputNode(const QString &input) const;

    OssSnBaseNode *inputConnection(const QString &input) const { return inputNode(input); }

    QString inputOutputPoint(const QString &input) const;
    /// One entry per input, null for free ones.
    QList<OssSnBaseNode *> inputNodes() const;
    /// Each once, in the order in which they were connected.
    QList<OssSnBaseNode *> outputNodes() const;

    const QVector<OutgoingConnection> &outgoingConnections() const { return m_outgoing; }

    bool isOutputUsed(const QString &outputPoint) const;
    /// Why the connection cannot be made: unknown ports, another network, or a cycle, named.
    OssResult canConnect(const QString &input, const OssSnBaseNode *source,
                         const QString &outputPoint) const;
    /// Connects, replaces or (null source) disconnects. What cannot be connected is a debug line
    /// with the reason; then nothing changes and the answer is false.
    bool setInputNode(const QString &input, OssSnBaseNode *source, const QString &outputPoint);
    /// The form that node kinds with inputs of their own override. Unless `acrossNetworks`, the
    /// source has to stand in the node's own network, also where the node could look into others.
    virtual bool connectInput(const QString &input, OssSnBaseNode *source,
                              const QString &outputPoint, bool record, bool notify,
                              bool acrossNetworks, bool batch);
    /// Undoably, every wire at the node.
    void disconnectAll();

    // --- state
    /// 0 is off; other numbers are on.
    int enabled() const { return m_enabled; }

    bool enabledAsBool() const { return m_enabled != 0; }

    bool isNotEnabled() const { return m_enabled != 1; }

    void setEnabled(int enabled);
    void toggleDisable();

    bool isBypassed() const { return m_bypassed; }

    void setBypassed(bool bypassed);
    void toggleBypass();

    int cacheActive() const { return m_cacheActive; }

    bool isCacheSet() const { return m_cacheActive != CacheOff; }

    void setCacheActive(int state);

    bool isGuiActive() const { return m_guiActive; }

    /// View state, not part of the document.
    void setGuiActive(bool active);

    /// Why the node gives no result, in words; empty when it is well.
    QString errorText() const { return m_errorText; }

    void setErrorText(const QString &text);

    // --- attributes
    /// "Group/Name", or "Name" where there is no group, in order.
    QStringList nodeAttributes() const;
    /// The same in another order; anything else is refused. One undo step.
    void setNodeAttributesUndo(const QStringList &nodeAttributes);
    QString nodeAttributeNameAsUserAttributeName(const QString &nodeAttribute) const;
    /// Sets the value of an attribute; one that is not the attribute's type is converted where that
    /// is possible, refused otherwise.
    bool setAttribute(const QString &name, const QVariant &value, bool notify = true);

    QVariant attribute(const QString &name) const { return userAttribute(name).value(); }

    // --- pixels
    /// Computes an output for every patch of the object into the set, at the set's resolution.
    /// Waits, with progress, without blocking the interface. One undo step; nothing changes when it
    /// fails or is stopped.
    OssResult bake(OssImageSet *set, const QString &outputPoint) const;
    /// The same into the images that the geo-channel has.
    OssResult exportToGeoChannel(OssGeoImageSet *channel, const QString &outputPoint) const;
    /// Width and height of a patch in pixels: the largest of what the node takes from, so that
    /// nothing is lost.
    int queryMaximumRequiredTextureResolutions() const;

    /// Asks the contexts to place the node above the reference, moved aside.
    void positionNodeOnTopIndented(OssSnBaseNode *reference)
    {
        Q_EMIT nodePositionedOnTopIdented(reference);
    }

    QString dumpNodeInfo() const;

    /// A user's command made the node and it stands in its network: kinds that are more than their
    /// type says complete themselves, within the command's undo step.
    virtual void onMadeFresh() {}

    /// Whether it carries several streams side by side, with an output of its name for each.
    virtual bool hasStreams() const { return false; }

    /// Before the node enters a network: which streams it is to have, by the id of a shader model.
    virtual void chooseStreams(const QString & /*shaderModelId*/) {}

    /// Tells whoever shows the node that it left its network.
    void emitRemovedFromNetwork();

    void emitNodeStateRefreshed() { Q_EMIT nodeStateRefreshed(); }

    // --- files
    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;
    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;
    void onEndLoad() override;
    /// Attributes of the node's element in a file.
    Attributes identityAttributes() const;
    void loadIdentity(const Attributes &attributes);

    /// Of a placeholder: a wire of the file told of it.
    void addPlaceholderOutput(const QString &name)
    {
        m_outputs.append({name, {}, OssSnDataKind::Color});
    }

    /// A connection as it stood in a file, until all nodes are there.
    struct PendingConnection
    {
        QString input;
        QString source; ///< a name of the same network, or a path from the root
        QString outputPoint;
    };

    /// A knob that an attribute of the node's original was linked to.
    struct DelayedKnob
    {
        QString groupPath;
        QString knob;
        QString attribute;
    };

    void addDelayedKnob(const DelayedKnob &knob) { m_delayedKnobs.append(knob); }

    QVector<DelayedKnob> takeDelayedKnobs() { return std::exchange(m_delayedKnobs, {}); }

    QVector<PendingConnection> takePendingConnections();
    /// Without checks, undo or signals: for files that have been checked whole.
    void connectSilently(const QString &input, OssSnBaseNode *source, const QString &outputPoint);
    /// The same for all its wires: for a node of a file that is not kept.
    void cutLoadedWires();

Q_SIGNALS:
    void nameChanged(QString name);
    void descriptionChanged(QString description);
    void enabledChanged(int enabled);
    void bypassedChanged(bool bypassed);
    void cacheActiveChanged(OssSnBaseNodeCacheActiveState state);
    void errorTextChanged(QString text);
    void inputNodeChanged(QString input, OssSnBaseNode *source, QString outputPoint);
    void outputNodeDetached(QString outputPoint);
    void inputAdded(QString name);
    void inputListAdded(QStringList names);
    void inputRemoved(QString name);
    void inputsRefreshed();
    void outputsRefreshed();
    void inputOrderChanged(QStringList names);
    void nodeInputRenamed(QString oldName, QString newName);
    void inputEnabledChanged(QString name, bool enabled);
    void outputPointAdded(QString name);
    void outputPointRemoved(QString name);
    /// At the first connection, resp. when the last one is gone.
    void outputPointUsed(QString name);
    void outputPointFreed(QString name);
    void outputPointRenamed(QString oldName, QString newName);
    void guiActiveChanged(bool active);
    void shaderModelChanged();
    void emitSetLayout(NodeLayoutType type, OssSnBaseNode *reference, bool freshCoordinates,
                       bool preventOverlap);
    void nodePositionedManual(OssSnBaseNode *reference, QPointF offset);
    void nodePositionedUnderneath(OssSnBaseNode *reference, int factor);
    void nodePositionedNextTo(OssSnBaseNode *reference);
    void nodeSyncedUnderneathNode(OssSnBaseNode *reference, bool ignoreContainerOfPreviousNode);
    void nodePositionedOnTopIdented(OssSnBaseNode *reference);
    void uniformariseContainers(QList<OssSnBaseNode *> nodes);
    void newNodeAdded();
    void inputConnectionIsShared(QString input);
    void systemShaderStatusSync();
    void attachViewerToNode(int input);
    void viewerNodeCurrentEdgeChanged(int edge);
    void viewerNodeRequestUpdateVirtualEdge();
    void gotoNode();
    void containerChildrenRefreshed(QList<OssSnBaseNode *> members, bool refreshed);
    void containerStretchedBy(OssSnBaseNode *reference);
    void containerPeersStretched(QList<OssSnBaseNode *> containers);
    void containerRespacedWrt(OssSnBaseNode *reference);
    void containerMovedDown(OssSnBaseNode *reference);
    void containerMovedToFreshLocation(bool preserveY);
    void zOrderChanged(int zOrder);
    void nodeRemovedFromNetwork();
    void nodeRefreshed();
    void visibleNodeAttributeRemoved(QString name);
    void nodeAttributesSet();
    void nodeStateRefreshed();
    void nodeAttributeCreated(QString name);
    void nodeAttributePrettyNameChanged(QString name);
    void nodeAttributeRenamed(QString oldName, QString newName);

protected:
    int inputIndex(const QString &name) const;
    int outputIndex(const QString &name) const;
    bool attributeNeedsSaving(const OssCustomAttribute &attribute) const override;
    void onUserAttributeSet(const OssCustomAttribute &attribute, bool added) override;
    void onUserAttributeGone(const OssCustomAttribute &attribute) override;
    QString serializedType() const override;
    /// Before contexts are destroyed: kinds that contexts call back into do it in their own
    /// destructor.
    void deleteContexts();

private:
    friend class OssShaderNetwork;

    struct NamedContext
    {
        QString name;
        OssSnBaseContext *context; ///< owned; deleted before the node's other parts
    };

    void setNetwork(OssShaderNetwork *network) { m_network = network; }

    void applyName(const QString &name);
    /// The change itself with its signals; no checks, no undo.
    void applyConnection(int index, OssSnBaseNode *source, const QString &outputPoint);
    void linkOutgoing(const QString &outputPoint, OssSnBaseNode *target, const QString &input);
    void unlinkOutgoing(const QString &outputPoint, OssSnBaseNode *target, const QString &input);
    bool dependsOn(const OssSnBaseNode *other) const;
    void applyInsertInput(const InputPort &port, int index);
    void applyRemoveInput(int index);
    void applyRenameInput(const QString &oldName, const QString &newName);
    void applyInputOrder(const QStringList &names);
    void applyOutputOrder(const QStringList &names);
    void applyInsertOutput(const OutputPoint &point, int index);
    void applyRemoveOutput(int index);
    void applyRenameOutput(const QString &oldName, const QString &newName);
    bool portsDifferFromType() const;
    bool hasPortsOfType() const;
    static void takeLook(const OssSnBaseNode &from, OssSnBaseNode *to);
    /// Those of the type first; what a file need not tell.
    QStringList typicalAttributeOrder() const;
    void savePorts(OssSerializer &serializer) const;
    void loadPort(bool input, const Attributes &attributes);

    QString m_name;
    QString m_description;
    QString m_pathKey;
    QString m_versionUUID;
    QString m_versionHashCreated;
    QString m_versionDate;
    QString m_errorText;
    std::shared_ptr<const OssSnNodeType> m_type;
    OssShaderNetwork *m_network = nullptr;
    QPointer<OssSnBaseNode> m_container;
    QSet<QString> m_tags; ///< beyond those of the type
    QVector<InputPort> m_inputs;
    QVector<OutputPoint> m_outputs;
    QVector<OutgoingConnection> m_outgoing;
    QVector<NamedContext> m_contexts;
    QVector<PendingConnection> m_pending;
    QVector<DelayedKnob> m_delayedKnobs;
    QString m_savedClass; ///< of a placeholder: what the file called it
    QString m_foreignType;
    QString m_foreignId;
    QStringList m_loadedOrder; ///< of attributes, until all are there
    int m_enabled = 1;
    int m_cacheActive = CacheOff;
    bool m_bypassed = false;
    bool m_guiActive = false;
    bool m_portsFromFile = false;
    bool m_contextsReady = false;
};

Q_DECLARE_METATYPE(OssSnBaseNode *)
