#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QList>
#include <QObject>

class OssShaderNetwork;
class OssSnBaseNode;
class OssSnBaseTeleportNode;
class OssSnBroadcastTeleportNode;

/// Knows which teleports stand in networks and who hears whom. Channels are an object's own: a
/// `network` may be any of the object's.
class OSSMODEL_EXPORT OssSnTeleportNodeManager
    : public QObject
    , public OssService<OssSnTeleportNodeManager>
{
    Q_OBJECT

public:
    OssSnTeleportNodeManager();

    /// The one that is heard; null when there is none, or for an empty channel.
    OssSnBroadcastTeleportNode *broadcastNode(const OssShaderNetwork *network,
                                              const QString &channel) const;
    bool hasReceivers(const OssShaderNetwork *network, const QString &channel) const;

    /// Has all teleports of the node's object look at their state again.
    void announce(const OssSnBaseTeleportNode *node);

private:
    void add(OssSnBaseNode *node);
    void remove(OssSnBaseNode *node);
    QList<OssSnBaseTeleportNode *> ofObject(const OssShaderNetwork *network) const;

    QList<OssSnBaseTeleportNode *> m_nodes; ///< those that stand in a network
};
