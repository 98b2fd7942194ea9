#pragma once

#include "OssModel/Graph/OssSnNodeDefinition.h"
#include "OssModel/Graph/OssSnNodeState.h"

#include <QList>
#include <QPointer>
#include <QPointF>
#include <QVector>

#include <memory>

class OssGeoImageSet;
class OssImageSet;
class OssShaderNetwork;
class OssSnBaseContext;

/// A node of a shader network: name, ports, connections, tags, attributes, contexts.
///
/// Owned by its network; a deleted node is kept by the undo step of its deletion, with its contexts
/// and under the same UUID. Every operation that changes the document records its own undo step and
/// emits its signals on undo and redo too. GUI thread.
class OSSMODEL_EXPORT OssSnBaseNode : public OssSnNodeState
{
    Q_OBJECT

public:
    using InputPort = OssSnInputPort;
    using OutputPoint = OssSnOutputPoint;
    using OutgoingConnection = OssSnOutgoingConnection;
    using PendingConnection = OssSnPendingConnection;
    using DelayedKnob = OssSnDelayedKnob;
    using Definition = OssSnNodeDefinition;

    /// For a type that is not known `type` is null; the node is then a placeholder that keeps what
    /// it does not understand.
    explicit OssSnBaseNode(std::shared_ptr<const OssSnNodeType> type);
    ~OssSnBaseNode() override;

    // --- identity
    /// A blank name or one with "/" is made usable, a taken one unique. Records "Rename ...".
    void setName(const QString &name);

    QString path() const override;

    QString pathKey() const { return m_pathKey; }

    /// No undo: part of making or upgrading a node.
    void setPathKey(const QString &pathKey) { m_pathKey = pathKey; }

    /// Null for placeholders.
    const OssSnNodeType *nodeType() const { return m_type.get(); }

    virtual bool isPlaceholder() const { return !m_type; }

    /// Null while the node is in none: before it is added and after it is deleted.
    OssShaderNetwork *network() const { return m_network; }

    bool hasTag(const QString &tag) const;
    void addTag(const QString &tag);
    QStringList tags() const;

    /// Backdrop of its network that holds the node, or null. Saved; set undoably, without moving what
    /// is shown. One that lies in the node itself, or elsewhere, is refused.
    OssSnBaseNode *container() const;
    void setContainer(OssSnBaseNode *container);

    QString lockOf(const QString &attribute) const override;

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
    /// Makes the contexts of all registered loaders, from the type's description unless another is
    /// given. Called by the network when the node stands in it with its ports.
    void createContexts(const QString &description = {});
    /// Initialises them and reports the user attributes. Called once, after saved state was loaded.
    void initializeContexts();

    // --- ports
    const QVector<InputPort> &inputPorts() const { return m_inputs; }

    const QVector<OutputPoint> &outputPoints() const { return m_outputs; }

    QStringList inputNames() const;
    QStringList outputPointNames() const;

    int outputPointCount() const { return m_outputs.size(); }

    bool hasInput(const QString &name) const;
    bool hasOutputPoint(const QString &name) const;
    QStringList prettyInputNameList() const;
    QStringList prettyOutputNameList() const;
    /// Also for tags that a context added.
    bool hasInputTag(const QString &input, const QString &tag) const;
    bool isInputEnabled(const QString &input) const;
    QStringList sharedInputNames() const;
    /// The first one, which is what commands connect; empty when there is none. (The spelling is
    /// what scripts and files know.)
    virtual QString prefferedOutputPoint() const;
    /// For a wire dropped on the body: the first free preferred one, else followed one; or empty.
    QString preferredInput() const;

    /// Whether outputs are drawn apart from the body's edge, as results that nothing follows.
    virtual bool hasDetachedOutputs() const { return false; }

    void addInput(const InputPort &port, int index = -1);
    void addInputs(const QVector<InputPort> &ports, int index = -1);
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
    /// Nodes that it takes from, resp. that take from it, by other ways than a wire.
    virtual QList<OssSnBaseNode *> unwiredSources() const;
    virtual QList<OssSnBaseNode *> unwiredTargets() const;

    // --- pixels
    /// Computes an output for every patch of the object into the set, at the set's resolution.
    /// Waits, with progress, without blocking the interface. One undo step; nothing changes when it
    /// fails or is stopped.
    OssResult bake(OssImageSet *set, const QString &outputPoint) const;
    /// The same for a geo-channel, which takes `set` once it is baked. Null: into the images it has.
    OssResult exportToGeoChannel(OssGeoImageSet *channel, const QString &outputPoint,
                                 OssImageSet *set = nullptr) const;
    /// Width and height of a patch in pixels: the largest of what the node takes from, so that
    /// nothing is lost.
    int queryMaximumRequiredTextureResolutions() const;

    QString dumpNodeInfo() const;

    /// A user's command made the node and it stands in its network: kinds that are more than their
    /// type says complete themselves, within the command's undo step.
    virtual void onMadeFresh() {}

    /// Whether it carries several streams side by side, with an output of its name for each.
    virtual bool hasStreams() const { return false; }

    /// Before the node enters a network: which streams it is to have, by the id of a shader model.
    virtual void chooseStreams(const QString & /*shaderModelId*/) {}

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
    void addPlaceholderOutput(const QString &name);
    void addDelayedKnob(const DelayedKnob &knob);
    QVector<DelayedKnob> takeDelayedKnobs();
    QVector<PendingConnection> takePendingConnections();
    /// Without checks, undo or signals: for files that have been checked whole.
    void connectSilently(const QString &input, OssSnBaseNode *source, const QString &outputPoint);
    /// The same for all its wires: for a node of a file that is not kept.
    void cutLoadedWires();

protected:
    int inputIndex(const QString &name) const;
    int outputIndex(const QString &name) const;
    bool canBeBypassed() const override;
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
    void applyInsertInputs(const QVector<InputPort> &ports, int index);
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

    QString m_pathKey;
    QString m_versionUUID;
    QString m_versionHashCreated;
    QString m_versionDate;
    std::shared_ptr<const OssSnNodeType> m_type;
    const quint64 m_serial; ///< rises with each that is made: the order of a network's nodes
    OssShaderNetwork *m_network = nullptr;
    OssSnContainer m_container;
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
    bool m_portsFromFile = false;
    bool m_contextsReady = false;
};

Q_DECLARE_METATYPE(OssSnBaseNode *)
