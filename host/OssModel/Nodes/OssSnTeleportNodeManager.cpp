#include "OssModel/Nodes/OssSnTeleportNodeManager.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"

OssSnTeleportNodeManager::OssSnTeleportNodeManager()
{
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    connect(networks, &OssShaderNetworkManager::nodeRegistered, this,
            [this](OssShaderNetwork *, OssSnBaseNode *node) { add(node); });
    connect(networks, &OssShaderNetworkManager::nodeDeregistered, this,
            [this](OssShaderNetwork *, OssSnBaseNode *node) { remove(node); });
}

void OssSnTeleportNodeManager::add(OssSnBaseNode *node)
{
    auto *teleport = qobject_cast<OssSnBaseTeleportNode *>(node);
    if (!teleport || m_nodes.contains(teleport))
        return;
    m_nodes.append(teleport);
    announce(teleport);
}

void OssSnTeleportNodeManager::remove(OssSnBaseNode *node)
{
    auto *teleport = qobject_cast<OssSnBaseTeleportNode *>(node);
    if (!teleport)
        return;
    const QList<OssSnBaseTeleportNode *> others = ofObject(teleport->network());
    m_nodes.removeAll(teleport);
    for (OssSnBaseTeleportNode *other : others) {
        if (other != teleport)
            Q_EMIT other->updateState();
    }
}

QList<OssSnBaseTeleportNode *> OssSnTeleportNodeManager::ofObject(
    const OssShaderNetwork *network) const
{
    QList<OssSnBaseTeleportNode *> nodes;
    for (OssSnBaseTeleportNode *node : m_nodes) {
        if (network && node->network() && node->network()->rootNetwork() == network->rootNetwork())
            nodes.append(node);
    }
    return nodes;
}

OssSnBroadcastTeleportNode *OssSnTeleportNodeManager::broadcastNode(const OssShaderNetwork *network,
                                                                    const QString &channel) const
{
    OssSnBroadcastTeleportNode *first = nullptr;
    if (channel.isEmpty())
        return first;
    const QList<OssSnBaseTeleportNode *> nodes = ofObject(network);
    for (OssSnBaseTeleportNode *node : nodes) {
        auto *broadcast = qobject_cast<OssSnBroadcastTeleportNode *>(node);
        if (broadcast && broadcast->channelName() == channel
            && (!first || broadcast->path() < first->path()))
            first = broadcast;
    }
    return first;
}

bool OssSnTeleportNodeManager::hasReceivers(const OssShaderNetwork *network,
                                            const QString &channel) const
{
    const QList<OssSnBaseTeleportNode *> nodes = ofObject(network);
    for (const OssSnBaseTeleportNode *node : nodes) {
        if (!node->isBroadcast() && !channel.isEmpty() && node->channelName() == channel)
            return true;
    }
    return false;
}

void OssSnTeleportNodeManager::announce(const OssSnBaseTeleportNode *node)
{
    const QList<OssSnBaseTeleportNode *> nodes = ofObject(node->network());
    for (OssSnBaseTeleportNode *other : nodes)
        Q_EMIT other->updateState();
}
