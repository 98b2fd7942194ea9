#pragma once

#include "OssModel/Objects/OssEntity.h"
#include "OssModel/OssModel_export.h"

#include <QPointer>

class OssGeoEntity;
class OssImageSet;

/// What the shading of an object works on: its image sets and which of them is current.
class OSSMODEL_EXPORT OssShadingContext : public OssEntity
{
    Q_OBJECT

public:
    OssShadingContext(const QString &name, OssGeoEntity *entity);
    ~OssShadingContext() override;

    /// Null when the shading belongs to no object.
    OssGeoEntity *geoEntity() const { return m_entity; }

    OssImageSet *currentImageSet() const;
    /// What is painted on; may be null. Images without a channel get one of this context, that has
    /// their depth.
    void setCurrentImageSet(OssImageSet *set);
    /// Null when there is none of that name.
    OssImageSet *findImageSet(const QString &name) const;
    QList<OssImageSet *> imageSets() const;
    /// Takes ownership. Undoable; what was undone stays owned here.
    void addImageSet(OssImageSet *set);
    /// Undoable; for images that no node has any more.
    void removeImageSet(OssImageSet *set);
    /// `base` when it is free, else with the lowest free number.
    QString freeImageSetName(const QString &base) const;

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;
    OssSerializableObject *onLoadCollectionObject(OssDeserializer &deserializer,
                                                  const QString &name, const QString &type,
                                                  const Attributes &attributes) override;

private:
    OssGeoEntity *m_entity;
    QPointer<QObject> m_currentImageSet;
    QList<OssImageSet *> m_imageSets;
};
