#include "OssModel/Nodes/OssSnBaseTeleportNode.h"

#include "OssModel/Nodes/OssSnTeleportNodeManager.h"

namespace {

const QString ChannelAttribute = QStringLiteral("channel");

} // namespace

OssSnBaseTeleportNode::OssSnBaseTeleportNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnBaseNode(std::move(type))
{
    OssSnTeleportNodeManager::instance(); // to hear of nodes from the first one on
}

OssSnBaseTeleportNode::~OssSnBaseTeleportNode()
{
    deleteContexts();
}

QString OssSnBaseTeleportNode::channelName() const
{
    return attribute(ChannelAttribute).toString();
}

void OssSnBaseTeleportNode::onUserAttributeSet(const OssCustomAttribute &attribute, bool added)
{
    OssSnBaseNode::onUserAttributeSet(attribute, added);
    if (attribute.name() != ChannelAttribute)
        return;
    Q_EMIT channelNameChanged(channelName());
    OssSnTeleportNodeManager::instance()->follow(this);
}

QList<OssSnBaseNode *> OssSnBroadcastTeleportNode::unwiredTargets() const
{
    const OssSnTeleportNodeManager *teleports = OssSnTeleportNodeManager::instance();
    return teleports->broadcastNode(network(), channelName()) == this
               ? teleports->receiverNodes(network(), channelName())
               : QList<OssSnBaseNode *>();
}

QList<OssSnBaseNode *> OssSnReceiverTeleportNode::unwiredSources() const
{
    OssSnBaseNode *heard = OssSnTeleportNodeManager::instance()->broadcastNode(network(),
                                                                               channelName());
    return heard ? QList<OssSnBaseNode *>{heard} : QList<OssSnBaseNode *>();
}
