#include "OssCoreModules/Project/OssProject.h"

#include "OssCoreModules/Project/OssGeoEntity.h"
#include "OssCoreModules/Project/OssShadingGroup.h"

#include <QBuffer>
#include <QCryptographicHash>

namespace {

const QString EntitiesCollection = QStringLiteral("m_entities");

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
    entity->addShadingGroup(QStringLiteral("Shading"));
    return entity;
}

QList<OssShadingGroup *> OssProject::shadingGroups() const
{
    QList<OssShadingGroup *> groups;
    for (const auto &entity : m_entities)
        groups.append(entity->shadingGroups());
    return groups;
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
    serializer.beginCollection(EntitiesCollection, int(m_entities.size()), QStringLiteral("QList"),
                               QStringLiteral("OssGeoEntity"), {});
    bool saved = true;
    for (const auto &entity : m_entities)
        saved = entity->save(serializer, entity->name(), {}) && saved;
    serializer.endCollection();
    return saved;
}

bool OssProject::onLoadCollection(const QString &name, const QString &type,
                                  const QString &elementType, int count,
                                  const Attributes &attributes)
{
    return name == EntitiesCollection
           || OssEntity::onLoadCollection(name, type, elementType, count, attributes);
}

OssSerializableObject *OssProject::onLoadCollectionObject(OssDeserializer &, const QString &name,
                                                          const QString &, const Attributes &)
{
    m_entities.push_back(std::make_unique<OssGeoEntity>(name));
    return m_entities.back().get();
}
