#include "OssCoreModules/Project/OssGeoEntity.h"

#include "OssCoreModules/Project/OssShadingGroup.h"

namespace {

const QString GroupsCollection = QStringLiteral("m_shadingGroups");

} // namespace

OssGeoEntity::OssGeoEntity(const QString &name, QObject *parent)
    : OssEntity(name, parent)
    , m_geometry(QStringLiteral("plane"))
{
}

OssGeoEntity::~OssGeoEntity() = default;

QList<OssShadingGroup *> OssGeoEntity::shadingGroups() const
{
    QList<OssShadingGroup *> groups;
    for (const auto &group : m_groups)
        groups.append(group.get());
    return groups;
}

OssShadingGroup *OssGeoEntity::addShadingGroup(const QString &name)
{
    m_groups.push_back(std::make_unique<OssShadingGroup>(name, this));
    return m_groups.back().get();
}

bool OssGeoEntity::saveObjects(OssSerializer &serializer)
{
    serializer.beginCollection(GroupsCollection, int(m_groups.size()), QStringLiteral("QList"),
                               QStringLiteral("OssShadingGroup"), {});
    bool saved = true;
    for (const auto &group : m_groups)
        saved = group->save(serializer, group->name(), {}) && saved;
    serializer.endCollection();
    return saved;
}

bool OssGeoEntity::onLoadCollection(const QString &name, const QString &type,
                                    const QString &elementType, int count,
                                    const Attributes &attributes)
{
    return name == GroupsCollection
           || OssEntity::onLoadCollection(name, type, elementType, count, attributes);
}

OssSerializableObject *OssGeoEntity::onLoadCollectionObject(OssDeserializer &, const QString &name,
                                                            const QString &, const Attributes &)
{
    return addShadingGroup(name);
}
