#pragma once

#include "OssCoreModules/Network/OssSnBaseNode.h"

class OssShaderNetwork;

/// A node with a network of its own inside. Its input nodes (tag "_input") and output nodes (tag
/// "_output") stand for the group's ports and bear their names.
class OSSCOREMODULES_EXPORT OssSnGroupNode : public OssSnBaseNode
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

    /// Saves the group as a node file, from which it comes back whole. Nothing happens for an empty
    /// path; a failure is shown to the user.
    bool exportAsGizmo(const QString &path);

    // For the network around: the places that nodes had among its others before they were grouped,
    // so that ungrouping gives the same document. Not saved.
    void rememberPlaces(const QList<OssSnBaseNode *> &members,
                        const QList<OssSnBaseNode *> &around);
    /// Empty when any of them is not known.
    QVector<int> rememberedPlaces(const QList<OssSnBaseNode *> &members) const;

    // For the network inside: what happens to a node that stands for a port happens to the port.
    void onNodeAddedInside(OssSnBaseNode *node);
    void onNodeRemovedInside(const OssSnBaseNode *node);
    void onNodeRenamedInside(const OssSnBaseNode *node, const QString &oldName);

    /// Asks whoever shows networks to show this one's inside.
    void requestOpen() { Q_EMIT openNodeGraph(); }

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;

Q_SIGNALS:
    void openNodeGraph();
    void newGroupNodeInputOutputCreated();
    void clearPortClusters();
    void updatePortClusters();

private:
    OssSnBaseNode *createInside(const QString &pathKey, const QString &name, OssSnDataKind kind);

    bool renameInside(OssSnBaseNode *inside, const QString &newName);

    std::unique_ptr<OssShaderNetwork> m_groupNetwork;
    QHash<const OssSnBaseNode *, int> m_places; ///< keys may be dead; never followed
    OssSnDataKind m_newPortKind = OssSnDataKind::Color;
};
