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
    OssSnBaseNode *createInside(const QString &pathKey, const QString &name);

    std::unique_ptr<OssShaderNetwork> m_groupNetwork;
};
