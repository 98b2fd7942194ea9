#pragma once

#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QPointF>

#include <optional>

class OssShaderNetwork;

/// A node with a network of its own inside. Its input nodes (tag "_input") and output nodes (tag
/// "_output") stand for the group's ports and bear their names.
class OSSMODEL_EXPORT OssSnGroupNode : public OssSnBaseNode
{
    Q_OBJECT

public:
    explicit OssSnGroupNode(std::shared_ptr<const OssSnNodeType> type);
    ~OssSnGroupNode() override;

    /// Never null; owned.
    OssShaderNetwork *groupNetwork() const { return m_groupNetwork.get(); }

    /// Makes a port together with the node inside that stands for it; null when the name is taken
    /// or blank. One undo step.
    OssSnBaseNode *createInput(const QString &name, OssSnDataKind kind);
    OssSnBaseNode *createOutput(const QString &name, OssSnDataKind kind);
    /// The node inside that stands for a port; null when there is none.
    OssSnBaseNode *inputNodeInside(const QString &input) const;
    OssSnBaseNode *outputNodeInside(const QString &outputPoint) const;
    /// In the order of the group's ports.
    QList<OssSnBaseNode *> inputNodesInside() const;
    QList<OssSnBaseNode *> outputNodesInside() const;

    // With the node that stands for the port.
    bool renameInput(const QString &oldName, const QString &newName) override;
    bool renameOutputPoint(const QString &oldName, const QString &newName) override;
    bool removeInput(const QString &name) override;
    bool removeOutputPoint(const QString &name) override;

    // --- knobs: attributes of the group that stand for attributes of nodes inside, at any depth.
    // Each operation is one undo step.

    /// Makes an attribute of a node inside a knob, in a section named after the node. The knob's
    /// name: that of the one there is already where the attribute has one; empty when refused.
    QString createKnob(OssSnBaseNode *node, const QString &attribute);
    /// Makes one knob of several of one type, with all they stand for, in the place of the first
    /// and with its value. False when the name is taken or they cannot be linked.
    bool linkKnobs(const QString &name, const QStringList &knobs);
    /// Why not: their types or, of choices, their lists differ, or one is locked.
    OssResult canLinkKnobs(const QStringList &knobs) const;
    /// Has the knob stand for one more attribute, which takes its value.
    bool addKnobLink(const QString &knob, OssSnBaseNode *node, const QString &attribute);
    /// Gives a knob another name to show; the attribute keeps its own.
    void renameKnobName(const QString &knob, const QString &oldName, const QString &newName);
    /// Gives a knob another name, which is also what is shown, in its place and with its links. Knobs
    /// of groups around that stand for it follow. The name that it got: made usable and free; empty
    /// when there is no such knob or the name is blank. The attribute's old name is gone for scripts.
    QString renameKnob(const QString &knob, const QString &wanted);
    /// Gives a knob another section, help, range and default: all of a definition but for what it is
    /// called and how it is edited. False when there is no such knob.
    bool describeKnob(const QString &knob, const OssCustomAttribute::Definition &described);
    /// Knobs only: what the group's type gave it stays.
    bool deleteAttribute(const QString &name);
    /// "Blur" of "Blur/Radius"; empty for an attribute in no section.
    static QString getAttributeGroupName(const QString &nodeAttribute);
    bool isKnob(const QString &name) const;
    int brokenLinkCount(const QString &knob) const;
    /// Also the knobs that stand for nothing then. The number of links removed.
    int removeBrokenLinks();
    /// Whether attributes of the node may become knobs of the group around it.
    static bool offersKnobs(const OssSnBaseNode *node);
    /// The group is about to be taken apart: knobs of groups around it that stand for its own take
    /// over what those stand for. Part of the caller's step.
    void handKnobsOver();
    /// Knobs that stand for attributes of the node stand for those of the other from now on. Part
    /// of the caller's step.
    static void replaceInKnobs(const OssSnBaseNode *node, OssSnBaseNode *replacement);

    /// Saves the group as a node file, from which it comes back whole. Nothing happens, and nothing
    /// fails, for an empty path: the user thought better of it.
    OssResult exportAsGizmo(const QString &path);

    // For the network around: where the group was put when it was made of nodes, in scene
    // coordinates. As far as it was moved since, they go when they come out.
    void rememberPosition(const QPointF &position) { m_firstPosition = position; }

    std::optional<QPointF> rememberedPosition() const { return m_firstPosition; }

    // For the network inside: what happens to a node that stands for a port happens to the port.
    void onNodesAddedInside(const QList<OssSnBaseNode *> &nodes);
    void onNodeRemovedInside(const OssSnBaseNode *node);
    void onNodeRenamedInside(const OssSnBaseNode *node, const QString &oldName);

    /// Asks whoever shows networks to show this one's inside.
    void requestOpen() { Q_EMIT openNodeGraph(); }

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;
    bool onLoadUserAttribute(const QString &name, const Attributes &attributes) override;
    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;
    void onEndLoad() override;

Q_SIGNALS:
    void openNodeGraph();
    void newGroupNodeInputOutputCreated();
    void clearPortClusters();
    void updatePortClusters();

private:
    struct LoadedKnobLink
    {
        QString knob;
        QString node;
        QString attribute;
    };

    void loadKnobLink(const Attributes &attributes);
    QString freeKnobName(const QString &wanted) const;
    void applyKnobName(const QString &oldName, const QString &newName, const QString &prettyName);
    void setKnobLinks(const QString &knob,
                      const QVector<OssLinkedCustomAttributeManager::Link> &links);
    void saveKnobLinks(OssSerializer &serializer) const;
    OssSnBaseNode *createInside(const QString &pathKey, const QString &name, OssSnDataKind kind);

    bool renameInside(OssSnBaseNode *inside, const QString &newName);

    std::unique_ptr<OssShaderNetwork> m_groupNetwork;
    std::optional<QPointF> m_firstPosition;
    QVector<LoadedKnobLink> m_loadedKnobLinks;
    std::optional<OssSnDataKind> m_newPortKind; ///< of the port that is being made
};
