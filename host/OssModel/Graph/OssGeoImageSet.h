#pragma once

#include "OssModel/Objects/OssImageSetReference.h"

class OssGeoEntity;

/// A geo-channel: images that belong to an object as a whole, by which its shading groups and bake
/// points hand results to each other. Owned by the object.
class OSSMODEL_EXPORT OssGeoImageSet : public OssSerializableObject
{
    Q_OBJECT

public:
    OssGeoImageSet(const QString &name, OssGeoEntity *entity);
    ~OssGeoImageSet() override;

    /// Unique within the object.
    QString name() const { return m_name; }

    OssGeoEntity *geoEntity() const;
    /// Null while nothing was put into it.
    OssImageSet *imageSet() const;
    /// Undoable by itself.
    void setImageSet(OssImageSet *set);

    /// Whether there are images that can be read.
    bool isValid() const { return imageSet() != nullptr; }

    bool saveObjects(OssSerializer &serializer) override;
    bool onLoadElement(OssDeserializer &deserializer, const QString &name,
                       const Attributes &attributes) override;

Q_SIGNALS:
    void imageSetChanged();

private:
    QString m_name;
    QPointer<QObject> m_entity;
    OssImageSetReference m_images;
};
