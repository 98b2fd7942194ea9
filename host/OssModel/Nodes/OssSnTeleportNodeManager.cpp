#include "OssModel/Nodes/OssSnTeleportNodeManager.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"

OssSnTeleportNodeManager::OssSnTeleportNodeManager()
{
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    connect(networks, &OssShaderNetworkManager::nodeRegistered, this,
            [this](OssShaderNetwork *, OssSnBaseNode *node) {
                const QList<OssSnBaseTeleportNode *> teleports = teleportsIn(node);
                for (OssSnBaseTeleportNode *teleport : teleports)
                    add(teleport);
                if (!teleports.isEmpty() || qobject_cast<OssSnGroupNode *>(node))
                    connect(node, &OssSnBaseNode::nameChanged, this,
                            &OssSnTeleportNodeManager::onNameChanged, Qt::UniqueConnection);
            });
    connect(networks, &OssShaderNetworkManager::nodeDeregistered, this,
            [this](OssShaderNetwork *, OssSnBaseNode *node) {
                const QList<OssSnBaseTeleportNode *> teleports = teleportsIn(node);
                for (OssSnBaseTeleportNode *teleport : teleports)
                    remove(teleport);
            });
}

QList<OssSnBaseTeleportNode *> OssSnTeleportNodeManager::teleportsIn(OssSnBaseNode *node)
{
    QList<OssSnBaseTeleportNode *> teleports;
    if (auto *teleport = qobject_cast<OssSnBaseTeleportNode *>(node))
        teleports.append(teleport);
    // What is inside comes and goes with its group.
    if (const auto *group = qobject_cast<const OssSnGroupNode *>(node)) {
        const QList<OssSnBaseNode *> inside = group->groupNetwork()->getAllNodes();
        for (OssSnBaseNode *inner : inside) {
            if (auto *teleport = qobject_cast<OssSnBaseTeleportNode *>(inner))
                teleports.append(teleport);
        }
    }
    return teleports;
}

OssSnTeleportNodeManager::Place OssSnTeleportNodeManager::placeAt(const OssShaderNetwork *network,
                                                                  const QString &channel)
{
    return {network ? network->rootNetwork() : nullptr, channel};
}

// --- who is where

void OssSnTeleportNodeManager::add(OssSnBaseTeleportNode *node)
{
    if (!m_places.contains(node))
        m_places.insert(node, {});
    follow(node);
}

void OssSnTeleportNodeManager::remove(OssSnBaseTeleportNode *node)
{
    if (!m_places.contains(node))
        return;
    const Place place = m_places.value(node);
    leave(node);
    m_places.remove(node);
    tell(place);
}

void OssSnTeleportNodeManager::follow(OssSnBaseTeleportNode *node)
{
    if (!m_places.contains(node))
        return;
    const Place before = m_places.value(node);
    const Place now = placeAt(node->network(), node->channelName());
    leave(node);
    m_places.insert(node, now);
    Channel &channel = m_channels[now];
    if (auto *broadcast = qobject_cast<OssSnBroadcastTeleportNode *>(node))
        channel.broadcasts.append(broadcast);
    else
        channel.receivers.append(node);
    if (before != now)
        tell(before);
    tell(now);
    Q_EMIT node->updateState();
}

// Of several that send the first by its path is heard.
void OssSnTeleportNodeManager::onNameChanged()
{
    const QList<OssSnBaseTeleportNode *> teleports = teleportsIn(
        qobject_cast<OssSnBaseNode *>(sender()));
    for (OssSnBaseTeleportNode *teleport : teleports)
        tell(m_places.value(teleport));
}

void OssSnTeleportNodeManager::leave(OssSnBaseTeleportNode *node)
{
    const auto channel = m_channels.find(m_places.value(node));
    if (channel == m_channels.end())
        return;
    channel->broadcasts.removeOne(qobject_cast<OssSnBroadcastTeleportNode *>(node));
    channel->receivers.removeOne(node);
}

void OssSnTeleportNodeManager::tell(const Place &place)
{
    const auto channel = m_channels.find(place);
    if (channel == m_channels.end())
        return;
    const OssSnBaseTeleportNode *heard = broadcastNode(place.first, place.second);
    const bool hasReceivers = !channel->receivers.isEmpty();
    const QList<OssSnBroadcastTeleportNode *> broadcasts = channel->broadcasts;
    const QList<OssSnBaseTeleportNode *> receivers = heard != channel->heard
                                                         ? channel->receivers
                                                         : QList<OssSnBaseTeleportNode *>();
    const bool isOther = heard != channel->heard || hasReceivers != channel->hadReceivers;
    channel->heard = heard;
    channel->hadReceivers = hasReceivers;
    if (broadcasts.isEmpty() && !hasReceivers)
        m_channels.erase(channel);
    if (!isOther)
        return;
    for (OssSnBroadcastTeleportNode *broadcast : broadcasts)
        Q_EMIT broadcast->updateState();
    for (OssSnBaseTeleportNode *receiver : receivers)
        Q_EMIT receiver->updateState();
}

// --- who hears whom

OssSnBroadcastTeleportNode *OssSnTeleportNodeManager::broadcastNode(const OssShaderNetwork *network,
                                                                    const QString &channel) const
{
    OssSnBroadcastTeleportNode *first = nullptr;
    const auto found = m_channels.constFind(placeAt(network, channel));
    if (channel.isEmpty() || found == m_channels.cend())
        return first;
    for (OssSnBroadcastTeleportNode *broadcast : found->broadcasts) {
        if (!first || broadcast->path() < first->path())
            first = broadcast;
    }
    return first;
}

bool OssSnTeleportNodeManager::hasReceivers(const OssShaderNetwork *network,
                                            const QString &channel) const
{
    const auto found = m_channels.constFind(placeAt(network, channel));
    return !channel.isEmpty() && found != m_channels.cend() && !found->receivers.isEmpty();
}

QList<OssSnBaseNode *> OssSnTeleportNodeManager::receiverNodes(const OssShaderNetwork *network,
                                                               const QString &channel) const
{
    QList<OssSnBaseNode *> nodes;
    const auto found = m_channels.constFind(placeAt(network, channel));
    if (channel.isEmpty() || found == m_channels.cend())
        return nodes;
    for (OssSnBaseTeleportNode *receiver : found->receivers)
        nodes.append(receiver);
    return nodes;
}
