#include "OssSnGeoChannelNodeGraphViewContext.h"

#include "OssCore/Program/OssDebug.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnBaseTeleportNode.h"
#include "OssModel/Nodes/OssSnGeoChannelNode.h"
#include "OssModel/Nodes/OssSnTeleportNodeManager.h"
#include "OssNodeGraph/Items/OssNgExtendedNode.h"
#include "ZelGL/ZelTextureToken.h"

namespace {

constexpr const char *Source = "OssSnGeoChannelNodeGraphViewContext";
const ZelTextureToken TextureToken;

QString withRemark(const QString &name, const QString &remark)
{
    return remark.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, remark);
}

OssNgExtendedNode *extended(OssNgNode *item)
{
    return qobject_cast<OssNgExtendedNode *>(item);
}

} // namespace

// --- bake points

OssSnBakePointNodeGraphViewContext::OssSnBakePointNodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, true)
{
}

OssSnBakePointNodeGraphViewContext::~OssSnBakePointNodeGraphViewContext() = default;

OssSnBakePointNode *OssSnBakePointNodeGraphViewContext::bakePoint() const
{
    return OssShaderNetworkUtils::asTrueBakePointNode(parentNode());
}

void OssSnBakePointNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContext::initializeGui();
    OssSnBakePointNode *node = bakePoint();
    OssNgExtendedNode *item = extended(guiNode());
    if (!node || !item)
        return;
    using Node = OssSnBakePointNode;
    using Context = OssSnBakePointNodeGraphViewContext;
    m_geoChannelIcon = item->addIcon(QStringLiteral("GeoChannel"));
    m_patchRangeIcon = item->addIcon(QStringLiteral("ActivePatchRange"));
    m_filteredIcon = item->addIcon(QStringLiteral("BakePointFiltered"));
    connect(node, &Node::geoChannelNameChanged, this, &Context::onGeoChannelChanged);
    connect(node, &Node::syncGeoChannelChanged, this, &Context::onGeoChannelChanged);
    connect(node, &Node::bakedStateChanged, this, &Context::onBakedStateChanged);
    connect(node, &Node::limitBakeChanged, this, &Context::onLimitBakeChanged);
    connect(node, &Node::filterCollectionEnabledChanged, this, &Context::onFilteredChanged);
    connect(node, &Node::filterCollectionTextChanged, this, &Context::onFilteredChanged);
    node->checkBakedState(); // so that it tells when it is another than what is shown now
    onBakedStateChanged();
    onGeoChannelChanged();
    onLimitBakeChanged();
    onFilteredChanged();
}

bool OssSnBakePointNodeGraphViewContext::attributeIsStub(const QString &name, bool flag) const
{
    if (name == QLatin1String("limitBakeBackground") && !flag)
        return false;
    return OssSnNodeGraphViewContext::attributeIsStub(name, flag);
}

void OssSnBakePointNodeGraphViewContext::setIconVisible(int icon, bool visible)
{
    if (OssNgExtendedNode *item = extended(guiNode()))
        item->setIconVisible(icon, visible);
}

void OssSnBakePointNodeGraphViewContext::onBakedStateChanged()
{
    OssSnBakePointNode *node = bakePoint();
    if (!node || !guiNode())
        return;
    guiNode()->setBaked(node->hasBakedResult());
    guiNode()->setStale(!node->isBakedResultUpToDate(false));
    node->emitNodeStateRefreshed();
}

void OssSnBakePointNodeGraphViewContext::onGeoChannelChanged()
{
    const OssSnBakePointNode *node = bakePoint();
    if (!node)
        return;
    setIconVisible(m_geoChannelIcon, node->syncGeoChannel() && !node->geoChannelName().isEmpty());
    updateGUIText();
}

void OssSnBakePointNodeGraphViewContext::onLimitBakeChanged()
{
    if (const OssSnBakePointNode *node = bakePoint())
        setIconVisible(m_patchRangeIcon, node->limitBake() && !node->limitBakeRange().isEmpty());
}

void OssSnBakePointNodeGraphViewContext::onFilteredChanged()
{
    if (const OssSnBakePointNode *node = bakePoint())
        setIconVisible(m_filteredIcon,
                       node->filterCollectionEnabled() && !node->filterCollectionText().isEmpty());
}

void OssSnBakePointNodeGraphViewContext::updateGUIText()
{
    const OssSnBakePointNode *node = bakePoint();
    if (!node)
        return;
    OssSnNodeGraphViewContext::setText(
        withRemark(node->name(), node->syncGeoChannel() ? node->geoChannelName() : QString()));
}

void OssSnBakePointNodeGraphViewContext::setText(QString text)
{
    if (bakePoint())
        updateGUIText();
    else
        OssSnNodeGraphViewContext::setText(text);
}

// --- geo-channels

OssSnGeoChannelNodeGraphViewContext::OssSnGeoChannelNodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, true)
{
}

OssSnGeoChannelNodeGraphViewContext::~OssSnGeoChannelNodeGraphViewContext() = default;

void OssSnGeoChannelNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContext::initializeGui();
    const auto *node = qobject_cast<OssSnGeoChannelNode *>(parentNode());
    OssNgExtendedNode *item = extended(guiNode());
    if (!node || !item)
        return;
    item->addIcon(QStringLiteral("GeoChannel"));
    connect(node, &OssSnGeoChannelNode::geoChannelImageSetValidChanged, this,
            &OssSnGeoChannelNodeGraphViewContext::onGeoChannelImageSetValidChanged);
    connect(node, &OssSnGeoChannelNode::geoChannelNameChanged, this,
            &OssSnGeoChannelNodeGraphViewContext::updateGUIText);
    onGeoChannelImageSetValidChanged(node->isGeoChannelImageSetValid());
    updateGUIText();
}

void OssSnGeoChannelNodeGraphViewContext::onGeoChannelImageSetValidChanged(bool Valid)
{
    if (OssNgExtendedNode *item = extended(guiNode()))
        item->setIconVisible(0, Valid);
}

void OssSnGeoChannelNodeGraphViewContext::updateGUIText()
{
    const auto *node = qobject_cast<OssSnGeoChannelNode *>(parentNode());
    if (!node) {
        OssDebug(Source, __LINE__, "ParentNode is NULL");
        return;
    }
    OssSnNodeGraphViewContext::setText(withRemark(node->name(), node->geoChannelName()));
}

void OssSnGeoChannelNodeGraphViewContext::setText(QString)
{
    updateGUIText();
}

// --- teleports

OssSnBaseTeleportNodeGraphViewContext::OssSnBaseTeleportNodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, true)
{
}

OssSnBaseTeleportNodeGraphViewContext::~OssSnBaseTeleportNodeGraphViewContext() = default;

void OssSnBaseTeleportNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContext::initializeGui();
    const auto *node = qobject_cast<OssSnBaseTeleportNode *>(parentNode());
    OssNgExtendedNode *item = extended(guiNode());
    if (!node || !item)
        return;
    connect(node, &OssSnBaseTeleportNode::channelNameChanged, this,
            &OssSnBaseTeleportNodeGraphViewContext::updateNodeState);
    connect(node, &OssSnBaseTeleportNode::updateState, this,
            &OssSnBaseTeleportNodeGraphViewContext::updateNodeState);
    const bool broadcast = qobject_cast<const OssSnBroadcastTeleportNode *>(node);
    item->addIcon(broadcast ? QStringLiteral("BroadcastNodeSilent")
                            : QStringLiteral("ReceiverNodeSilent"));
    item->addIcon(broadcast ? QStringLiteral("BroadcastNodeSignal")
                            : QStringLiteral("ReceiverNodeSignal"));
    item->setIconVisible(0, true);
}

void OssSnBaseTeleportNodeGraphViewContext::updateNodeState()
{
    const auto *node = qobject_cast<OssSnBaseTeleportNode *>(parentNode());
    OssNgExtendedNode *item = extended(guiNode());
    if (!node || !item)
        return;
    const QString channel = node->channelName();
    OssSnNodeGraphViewContext::setText(
        channel.isEmpty() ? node->name() : tr("%1 (%2)").arg(node->name(), channel));
    const OssSnTeleportNodeManager *teleports = OssSnTeleportNodeManager::instance();
    const OssSnBroadcastTeleportNode *heard = teleports->broadcastNode(node->network(), channel);
    const bool signal = node->isBroadcast()
                            ? heard == node && teleports->hasReceivers(node->network(), channel)
                            : heard != nullptr;
    item->setIconVisible(0, !signal);
    item->setIconVisible(1, signal);
}

void OssSnBaseTeleportNodeGraphViewContext::setText(QString)
{
    updateNodeState();
}
