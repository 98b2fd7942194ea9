#pragma once

#include "OssModel/Graph/OssSnBaseNode.h"

/// One end of a wire that is not drawn: what is broadcast on a channel comes out at the receivers
/// of that channel, anywhere in the same object's networks.
class OSSMODEL_EXPORT OssSnBaseTeleportNode : public OssSnBaseNode
{
    Q_OBJECT

public:
    explicit OssSnBaseTeleportNode(std::shared_ptr<const OssSnNodeType> type);
    ~OssSnBaseTeleportNode() override;

    QString channelName() const;

    virtual bool isBroadcast() const = 0;

Q_SIGNALS:
    void channelNameChanged(QString name);
    /// The node came or has another channel, or who is heard there, or whether anybody hears, changed.
    void updateState();

protected:
    void onUserAttributeSet(const OssCustomAttribute &attribute, bool added) override;
};

/// Sends what feeds it. Of several on one channel the first in the order of paths is heard.
class OSSMODEL_EXPORT OssSnBroadcastTeleportNode : public OssSnBaseTeleportNode
{
    Q_OBJECT

public:
    using OssSnBaseTeleportNode::OssSnBaseTeleportNode;

    bool isBroadcast() const override { return true; }

    QList<OssSnBaseNode *> unwiredTargets() const override;
};

class OSSMODEL_EXPORT OssSnReceiverTeleportNode : public OssSnBaseTeleportNode
{
    Q_OBJECT

public:
    using OssSnBaseTeleportNode::OssSnBaseTeleportNode;

    bool isBroadcast() const override { return false; }

    QList<OssSnBaseNode *> unwiredSources() const override;
};
