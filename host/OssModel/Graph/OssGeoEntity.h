#pragma once

#include "OssModel/Objects/OssEntity.h"

#include <memory>
#include <vector>

class OssGeoImageSet;
class OssImageSet;
class OssShadingGroup;

/// An object of the project: what is textured. Has its shape and one or more shading groups.
class OSSMODEL_EXPORT OssGeoEntity : public OssEntity
{
    Q_OBJECT
    /// "plane", "sphere", "cube", or the file that the shape is read from.
    Q_PROPERTY(QString geometry READ geometry WRITE setGeometry)

public:
    explicit OssGeoEntity(const QString &name = {}, QObject *parent = nullptr);
    ~OssGeoEntity() override;

    QString geometry() const { return m_geometry; }

    void setGeometry(const QString &geometry) { m_geometry = geometry; }

    /// What objects have as long as nobody gives them another.
    static QString usualGeometry() { return QStringLiteral("plane"); }

    /// Whether the geometry is that of a file.
    static bool isFile(const QString &geometry);

    QList<OssShadingGroup *> shadingGroups() const;
    /// Owned by the entity.
    OssShadingGroup *addShadingGroup(const QString &name);

    /// Geo-channels in the order of their making.
    QList<OssGeoImageSet *> geoImageSets() const;
    /// Null when there is none of that name.
    OssGeoImageSet *geoImageSet(const QString &name) const;
    /// Owned by the entity. Null when the name is empty or taken. Undoable.
    OssGeoImageSet *addGeoImageSet(const QString &name);
    /// Among all image sets of the object's shading; null when there is none of that name.
    OssImageSet *findImageSet(const QString &name) const;

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;
    OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                  const QString &name, const QString &type,
                                                  const Attributes &attributes) override;

Q_SIGNALS:
    /// One came or went, or has other images.
    void geoImageSetsChanged();

private:
    OssGeoImageSet *makeGeoImageSet(const QString &name);

    QString m_geometry;
    std::vector<std::shared_ptr<OssGeoImageSet>> m_geoImageSets;
    std::vector<std::unique_ptr<OssShadingGroup>> m_groups;
};
