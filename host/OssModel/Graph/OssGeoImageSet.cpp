#include "OssModel/Graph/OssGeoImageSet.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"

OssGeoImageSet::OssGeoImageSet(const QString &name, OssGeoEntity *entity)
    : m_name(name)
    , m_entity(entity)
{
}

OssGeoImageSet::~OssGeoImageSet() = default;

OssGeoEntity *OssGeoImageSet::geoEntity() const
{
    return qobject_cast<OssGeoEntity *>(m_entity.data());
}

OssImageSet *OssGeoImageSet::imageSet() const
{
    return m_images.find(geoEntity());
}

void OssGeoImageSet::setImageSet(OssImageSet *set)
{
    const QPointer<OssImageSet> before = imageSet();
    if (before == set)
        return;
    const auto apply = [this](OssImageSet *value) {
        m_images.set(value);
        Q_EMIT imageSetChanged();
    };
    const QPointer<OssImageSet> after(set);
    apply(set);
    OssUndoManager::instance()->record(
        tr("Set Images of Geo-Channel %1").arg(m_name), [apply, before] { apply(before); },
        [apply, after] { apply(after); });
}

bool OssGeoImageSet::saveObjects(OssSerializer &serializer)
{
    m_images.save(serializer);
    return OssSerializableObject::saveObjects(serializer);
}

bool OssGeoImageSet::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                   const Attributes &attributes)
{
    return m_images.load(name, attributes)
           || OssSerializableObject::onLoadElement(deserializer, name, attributes);
}
