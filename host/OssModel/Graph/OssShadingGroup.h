#pragma once

#include "OssModel/Objects/OssShadingContext.h"

#include <memory>

class OssShaderNetwork;

/// A part of an object that is shaded by one root shader network, which it owns.
class OSSMODEL_EXPORT OssShadingGroup : public OssShadingContext
{
    Q_OBJECT

public:
    OssShadingGroup(const QString &name, OssGeoEntity *entity);
    ~OssShadingGroup() override;

    OssShaderNetwork *network() const { return m_network.get(); }

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;

private:
    std::unique_ptr<OssShaderNetwork> m_network;
};
