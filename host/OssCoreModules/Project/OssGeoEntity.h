#pragma once

#include "OssCoreModules/Project/OssEntity.h"

#include <memory>
#include <vector>

class OssShadingGroup;

/// An object of the project: what is textured. Has its shape and one or more shading groups.
class OSSCOREMODULES_EXPORT OssGeoEntity : public OssEntity
{
    Q_OBJECT
    /// "plane", "sphere", "cube", or the file that the shape is read from.
    Q_PROPERTY(QString geometry READ geometry WRITE setGeometry)

public:
    explicit OssGeoEntity(const QString &name = {}, QObject *parent = nullptr);
    ~OssGeoEntity() override;

    QString geometry() const { return m_geometry; }

    void setGeometry(const QString &geometry) { m_geometry = geometry; }

    QList<OssShadingGroup *> shadingGroups() const;
    /// Owned by the entity.
    OssShadingGroup *addShadingGroup(const QString &name);

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;
    OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                  const QString &name, const QString &type,
                                                  const Attributes &attributes) override;

private:
    QString m_geometry;
    std::vector<std::unique_ptr<OssShadingGroup>> m_groups;
};
