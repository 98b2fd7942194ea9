#include "OssModel/Graph/OssGeoImageSet.h"

#include "OssCore/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Objects/OssImageSet.h"

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
    if (!m_imageSet && !m_savedImageSet.isEmpty() && geoEntity())
        const_cast<OssGeoImageSet *>(this)->m_imageSet = geoEntity()->findImageSet(m_savedImageSet);
    return qobject_cast<OssImageSet *>(m_imageSet.data());
}

void OssGeoImageSet::setImageSet(OssImageSet *set)
{
    const QPointer<QObject> before = imageSet();
    if (before == set)
        return;
    const auto apply = [this](QObject *value) {
        m_imageSet = value;
        m_savedImageSet.clear();
        Q_EMIT imageSetChanged();
    };
    const QPointer<QObject> after(set);
    apply(set);
    OssUndoManager::instance()->record(
        tr("Set Images of Geo-Channel %1").arg(m_name), [apply, before] { apply(before); },
        [apply, after] { apply(after); });
}

bool OssGeoImageSet::saveObjects(OssSerializer &serializer)
{
    const OssImageSet *set = imageSet();
    const QString name = set ? set->name() : m_savedImageSet;
    if (!name.isEmpty())
        serializer.writeElement(QStringLiteral("images"), {{QStringLiteral("set"), name}});
    return OssSerializableObject::saveObjects(serializer);
}

bool OssGeoImageSet::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                   const Attributes &attributes)
{
    if (name != QLatin1String("images"))
        return OssSerializableObject::onLoadElement(deserializer, name, attributes);
    m_savedImageSet = attributes.value(QStringLiteral("set"));
    return true;
}
