#include "OssModel/Graph/OssShadingGroup.h"

#include "OssModel/Graph/OssShaderNetwork.h"

namespace {

const QString NetworkObject = QStringLiteral("m_network");

} // namespace

OssShadingGroup::OssShadingGroup(const QString &name, OssGeoEntity *entity)
    : OssShadingContext(name, entity)
    , m_network(std::make_unique<OssShaderNetwork>())
{
    m_network->setShadingContext(this);
}

OssShadingGroup::~OssShadingGroup() = default;

bool OssShadingGroup::saveObjects(OssSerializer &serializer)
{
    const bool saved = OssShadingContext::saveObjects(serializer);
    return m_network->save(serializer, NetworkObject, {}) && saved;
}

OssSerializableObject *OssShadingGroup::onLoadSubObject(OssDeserializer &deserializer,
                                                        const QString &name, const QString &type)
{
    if (name == NetworkObject)
        return m_network.get();
    return OssShadingContext::onLoadSubObject(deserializer, name, type);
}
