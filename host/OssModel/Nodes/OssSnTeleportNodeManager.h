#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPair>

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
    /// Those of the channel; none for an empty one.
    QList<OssSnBaseNode *> receiverNodes(const OssShaderNetwork *network,
                                         const QString &channel) const;

    /// The node may have another channel. Nothing for one that stands in no network.
    void follow(OssSnBaseTeleportNode *node);

private:
    /// The object's outermost network and the name.
    using Place = QPair<const OssShaderNetwork *, QString>;

    struct Channel
    {
        QList<OssSnBroadcastTeleportNode *> broadcasts;
        QList<OssSnBaseTeleportNode *> receivers;
        const OssSnBaseTeleportNode *heard = nullptr; ///< as it was last told
        bool hadReceivers = false;
    };

    static Place placeAt(const OssShaderNetwork *network, const QString &channel);
    /// The node and, of a group, those inside.
    static QList<OssSnBaseTeleportNode *> teleportsIn(OssSnBaseNode *node);

    void add(OssSnBaseTeleportNode *node);
    void remove(OssSnBaseTeleportNode *node);
    void onNameChanged();
    void leave(OssSnBaseTeleportNode *node);
    /// Tells those whose state is another than it was last told.
    void tell(const Place &place);

    QHash<OssSnBaseTeleportNode *, Place> m_places; ///< of those that stand in a network
    QHash<Place, Channel> m_channels;
};
