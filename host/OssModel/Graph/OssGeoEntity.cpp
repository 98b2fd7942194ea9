#include "OssModel/Graph/OssGeoEntity.h"

#include "OssCore/Documents/OssObjectCollection.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShadingGroup.h"

#include <algorithm>

namespace {

const QString GeoChannelsCollection = QStringLiteral("m_geoImageSets");
const QString GroupsCollection = QStringLiteral("m_shadingGroups");

} // namespace

OssGeoEntity::OssGeoEntity(const QString &name, QObject *parent)
    : OssEntity(name, parent)
    , m_geometry(usualGeometry())
{
}

OssGeoEntity::~OssGeoEntity() = default;

bool OssGeoEntity::isFile(const QString &geometry)
{
    static const QStringList shapes{usualGeometry(), QStringLiteral("sphere"),
                                    QStringLiteral("cube")};
    return !geometry.isEmpty() && !shapes.contains(geometry);
}

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
    const bool saved = OssObjectCollection::save(serializer, GroupsCollection,
                                                 QStringLiteral("OssShadingGroup"), m_groups);
    if (m_geoImageSets.empty())
        return saved;
    return OssObjectCollection::save(serializer, GeoChannelsCollection,
                                     QStringLiteral("OssGeoImageSet"), m_geoImageSets)
           && saved;
}

bool OssGeoEntity::onLoadCollection(const QString &name, const QString &type,
                                    const QString &elementType, int count,
                                    const Attributes &attributes)
{
    return name == GroupsCollection || name == GeoChannelsCollection
           || OssEntity::onLoadCollection(name, type, elementType, count, attributes);
}

OssSerializableObject *OssGeoEntity::onLoadCollectionObject(OssDeserializer &deserializer,
                                                            const QString &name,
                                                            const QString &type, const Attributes &)
{
    if (type != QLatin1String("OssGeoImageSet"))
        return addShadingGroup(name);
    if (name.isEmpty() || geoImageSet(name)) {
        deserializer.raiseError(
            tr("\"%1\" is no name for a geo-channel, or is there twice").arg(name));
        return nullptr;
    }
    return makeGeoImageSet(name);
}

// --- geo-channels

QList<OssGeoImageSet *> OssGeoEntity::geoImageSets() const
{
    QList<OssGeoImageSet *> channels;
    for (const auto &channel : m_geoImageSets)
        channels.append(channel.get());
    return channels;
}

OssGeoImageSet *OssGeoEntity::geoImageSet(const QString &name) const
{
    for (const auto &channel : m_geoImageSets) {
        if (channel->name() == name)
            return channel.get();
    }
    return nullptr;
}

OssGeoImageSet *OssGeoEntity::makeGeoImageSet(const QString &name)
{
    m_geoImageSets.push_back(std::make_shared<OssGeoImageSet>(name, this));
    OssGeoImageSet *channel = m_geoImageSets.back().get();
    connect(channel, &OssGeoImageSet::imageSetChanged, this, &OssGeoEntity::geoImageSetsChanged);
    return channel;
}

OssGeoImageSet *OssGeoEntity::addGeoImageSet(const QString &name)
{
    if (name.trimmed().isEmpty() || geoImageSet(name))
        return nullptr;
    OssGeoImageSet *made = makeGeoImageSet(name);
    const std::shared_ptr<OssGeoImageSet> kept = m_geoImageSets.back();
    Q_EMIT geoImageSetsChanged();
    OssUndoManager::instance()->record(
        tr("Add Geo-Channel %1").arg(name),
        [this, kept] {
            m_geoImageSets.erase(std::find(m_geoImageSets.begin(), m_geoImageSets.end(), kept));
            Q_EMIT geoImageSetsChanged();
        },
        [this, kept] {
            m_geoImageSets.push_back(kept);
            Q_EMIT geoImageSetsChanged();
        });
    return made;
}

OssImageSet *OssGeoEntity::findImageSet(const QString &name) const
{
    for (const auto &group : m_groups) {
        if (OssImageSet *set = group->findImageSet(name))
            return set;
    }
    return nullptr;
}
