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
    OssSnTeleportNodeManager::instance()->announce(this);
}
