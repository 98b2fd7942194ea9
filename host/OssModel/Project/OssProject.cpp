#include "OssModel/Project/OssProject.h"

#include "OssCore/Documents/OssObjectCollection.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QBuffer>
#include <QCryptographicHash>

#include <algorithm>

namespace {

const QString EntitiesCollection = QStringLiteral("m_entities");
const QString ImagesCollection = QStringLiteral("m_images");

} // namespace

OssProject::OssProject(const QString &name)
    : OssEntity(name)
{
}

OssProject::~OssProject() = default;

QList<OssGeoEntity *> OssProject::entities() const
{
    QList<OssGeoEntity *> list;
    for (const auto &entity : m_entities)
        list.append(entity.get());
    return list;
}

OssGeoEntity *OssProject::addEntity(const QString &name)
{
    m_entities.push_back(std::make_unique<OssGeoEntity>(name));
    OssGeoEntity *entity = m_entities.back().get();
    OssShadingGroup *shading = entity->addShadingGroup(QStringLiteral("Shading"));
    // What a project has when it is opened, its manager tells of.
    if (OssProjectManager::instance()->currentProject() == this)
        OssShaderNetworkManager::instance()->addShaderNetwork(shading->network());
    return entity;
}

QList<OssShadingGroup *> OssProject::shadingGroups() const
{
    QList<OssShadingGroup *> groups;
    for (const auto &entity : m_entities)
        groups.append(entity->shadingGroups());
    return groups;
}

QStringList OssProject::pixelFiles() const
{
    QStringList files;
    const QList<OssShadingGroup *> groups = shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const QList<OssImageSet *> sets = group->imageSets();
        for (const OssImageSet *set : sets)
            files += set->pixels().values();
    }
    files.sort();
    files.removeDuplicates();
    return files;
}

QByteArray OssProject::stateHash()
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer, false);
    serializer.setCanonical(true);
    save(serializer, name(), {});
    return QCryptographicHash::hash(buffer.data(), QCryptographicHash::Sha256).toHex();
}

bool OssProject::saveObjects(OssSerializer &serializer)
{
    const bool saved = OssObjectCollection::save(serializer, EntitiesCollection,
                                                 QStringLiteral("OssGeoEntity"), m_entities);
    if (m_images.empty())
        return saved;
    return OssObjectCollection::save(
               serializer, ImagesCollection, QStringLiteral("OssImage"), m_images,
               [](const OssImage &image) { return image.uniqueId().toString(); })
           && saved;
}

bool OssProject::onLoadCollection(const QString &name, const QString &type,
                                  const QString &elementType, int count,
                                  const Attributes &attributes)
{
    return name == EntitiesCollection || name == ImagesCollection
           || OssEntity::onLoadCollection(name, type, elementType, count, attributes);
}

OssSerializableObject *OssProject::onLoadCollectionObject(OssDeserializer &deserializer,
                                                          const QString &name, const QString &type,
                                                          const Attributes &)
{
    if (type != QLatin1String("OssImage")) {
        m_entities.push_back(std::make_unique<OssGeoEntity>(name));
        return m_entities.back().get();
    }
    const OssImageUniqueId id = OssImageUniqueId::fromString(name);
    if (id.isNull()) {
        deserializer.raiseError(tr("\"%1\" is no id of an image").arg(name));
        return nullptr;
    }
    m_images.push_back(std::make_shared<OssImage>(id));
    return m_images.back().get();
}

// --- images

QList<OssImage *> OssProject::images() const
{
    QList<OssImage *> list;
    for (const auto &image : m_images)
        list.append(image.get());
    return list;
}

QList<int> OssProject::newResolutions()
{
    return {256, 512, 1024, 2048, 4096, 8192, 16384};
}

void OssProject::setNewResolution(int resolution)
{
    if (resolution == m_newResolution || !newResolutions().contains(resolution))
        return;
    const int before = std::exchange(m_newResolution, resolution);
    OssUndoManager::instance()->record(
        tr("Size of New Images"), [this, before] { m_newResolution = before; },
        [this, resolution] { m_newResolution = resolution; });
}

OssImage *OssProject::addImage(const QString &path, const QString &category)
{
    const auto image = std::make_shared<OssImage>(OssImageUniqueId::create());
    image->setPath(path);
    image->setCategory(category);
    m_images.push_back(image);
    OssUndoManager::instance()->record(
        tr("Add Image %1").arg(image->name()),
        [this, image] { m_images.erase(std::find(m_images.begin(), m_images.end(), image)); },
        [this, image] { m_images.push_back(image); });
    return image.get();
}
