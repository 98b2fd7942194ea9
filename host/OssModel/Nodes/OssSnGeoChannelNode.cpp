#include "OssModel/Nodes/OssSnGeoChannelNode.h"

#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"

namespace {

const QString NameAttribute = QStringLiteral("geoChannel");

} // namespace

OssSnGeoChannelNode::OssSnGeoChannelNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnBaseNode(std::move(type))
{
    connect(OssShaderNetworkManager::instance(), &OssShaderNetworkManager::nodeRegistered, this,
            [this](OssShaderNetwork *, const OssSnBaseNode *node) {
                if (node == this)
                    follow();
            });
}

QString OssSnGeoChannelNode::geoChannelName() const
{
    return attribute(NameAttribute).toString();
}

OssGeoImageSet *OssSnGeoChannelNode::geoImageSet() const
{
    const OssGeoEntity *entity = network() ? network()->geoEntity() : nullptr;
    return entity ? entity->geoImageSet(geoChannelName()) : nullptr;
}

void OssSnGeoChannelNode::follow()
{
    OssGeoEntity *entity = network() ? network()->geoEntity() : nullptr;
    if (entity && m_followed != entity) {
        m_followed = entity;
        connect(entity, &OssGeoEntity::geoImageSetsChanged, this, &OssSnGeoChannelNode::check);
    }
    check();
}

void OssSnGeoChannelNode::check()
{
    const OssGeoImageSet *channel = geoImageSet();
    const bool valid = channel && channel->isValid();
    if (valid == m_valid)
        return;
    m_valid = valid;
    Q_EMIT geoChannelImageSetValidChanged(valid);
}

void OssSnGeoChannelNode::onUserAttributeSet(const OssCustomAttribute &attribute, bool added)
{
    OssSnBaseNode::onUserAttributeSet(attribute, added);
    if (attribute.name() != NameAttribute)
        return;
    Q_EMIT geoChannelNameChanged(geoChannelName());
    check();
}
