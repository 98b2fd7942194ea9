#include "OssModel/Objects/OssShadingContext.h"

#include "OssCore/Documents/OssObjectCollection.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"

namespace {

const QString ImageSetsCollection = QStringLiteral("m_imageSets");

} // namespace

OssShadingContext::OssShadingContext(const QString &name, OssGeoEntity *entity)
    : OssEntity(name)
    , m_entity(entity)
{
}

OssShadingContext::~OssShadingContext() = default;

OssImageSet *OssShadingContext::currentImageSet() const
{
    return qobject_cast<OssImageSet *>(m_currentImageSet.data());
}

void OssShadingContext::setCurrentImageSet(OssImageSet *set)
{
    m_currentImageSet = set;
    if (!set || set->channel())
        return;
    auto *channel = new OssChannel(set->name(), this); // owned as a child
    channel->setType(set->depth());
    set->setChannel(channel);
}

OssImageSet *OssShadingContext::findImageSet(const QString &name) const
{
    for (OssImageSet *set : m_imageSets) {
        if (set->name() == name)
            return set;
    }
    return nullptr;
}

QList<OssImageSet *> OssShadingContext::imageSets() const
{
    return m_imageSets;
}

void OssShadingContext::addImageSet(OssImageSet *set)
{
    if (!set || m_imageSets.contains(set))
        return;
    set->setParent(this);
    m_imageSets.append(set);
    OssUndoManager::instance()->record(
        tr("Add Images %1").arg(set->name()), [this, set] { m_imageSets.removeOne(set); },
        [this, set] { m_imageSets.append(set); });
}

void OssShadingContext::removeImageSet(OssImageSet *set)
{
    const int place = m_imageSets.indexOf(set);
    if (place < 0)
        return;
    m_imageSets.removeAt(place);
    OssUndoManager::instance()->record(
        tr("Remove Images %1").arg(set->name()),
        [this, set, place] { m_imageSets.insert(place, set); },
        [this, set] { m_imageSets.removeOne(set); });
}

QString OssShadingContext::freeImageSetName(const QString &base) const
{
    QString name = base;
    for (int number = 2; findImageSet(name); ++number)
        name = base + QLatin1Char(' ') + QString::number(number);
    return name;
}

// --- files

bool OssShadingContext::saveObjects(OssSerializer &serializer)
{
    return m_imageSets.isEmpty()
           || OssObjectCollection::save(serializer, ImageSetsCollection,
                                        QStringLiteral("OssImageSet"), m_imageSets);
}

bool OssShadingContext::onLoadCollection(const QString &name, const QString &type,
                                         const QString &elementType, int count,
                                         const Attributes &attributes)
{
    return name == ImageSetsCollection
           || OssEntity::onLoadCollection(name, type, elementType, count, attributes);
}

OssSerializableObject *OssShadingContext::onLoadCollectionObject(OssDeserializer &deserializer,
                                                                 const QString &name,
                                                                 const QString &,
                                                                 const Attributes &)
{
    if (name.isEmpty() || findImageSet(name)) {
        deserializer.raiseError(tr("\"%1\" is no name for images, or is there twice").arg(name));
        return nullptr;
    }
    m_imageSets.append(new OssImageSet(name, this)); // owned as a child
    return m_imageSets.last();
}
