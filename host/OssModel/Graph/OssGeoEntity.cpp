#include "OssModel/Graph/OssGeoEntity.h"

#include "OssCore/Documents/OssObjectCollection.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssMeshes.h"

#include <algorithm>
#include <cmath>

namespace {

const QString GeoChannelsCollection = QStringLiteral("m_geoImageSets");
const QString GroupsCollection = QStringLiteral("m_shadingGroups");
const QString KeptElement = QStringLiteral("keptMesh");

} // namespace

OssGeoEntity::OssGeoEntity(const QString &name, QObject *parent)
    : OssEntity(name, parent)
{
}

OssGeoEntity::~OssGeoEntity() = default;

void OssGeoEntity::changeName(const QString &name)
{
    if (name.trimmed().isEmpty() || name == OssEntity::name())
        return;
    const QString before = OssEntity::name();
    setName(name);
    OssUndoManager::instance()->record(
        tr("Rename Object"), [this, before] { setName(before); }, [this, name] { setName(name); });
}

// --- where its shape comes from

void OssGeoEntity::setGeometry(const QString &geometry)
{
    m_source.shape = geometry;
    Q_EMIT sourceChanged();
}

void OssGeoEntity::setSource(const OssGeometrySource &source)
{
    m_source = source;
    Q_EMIT sourceChanged();
}

void OssGeoEntity::changeSource(const OssGeometrySource &source, const QString &title)
{
    if (source == m_source)
        return;
    OssGeometrySource before = m_source;
    // What is kept now is what undoing needs when its file has gone meanwhile.
    before.kept = OssMeshes::instance()->keptFile(m_source);
    setSource(source);
    OssUndoManager::instance()->record(
        title, [this, before] { setSource(before); }, [this, source] { setSource(source); });
}

// Files may hold anything; what means nothing is as if it were not there.

void OssGeoEntity::setSplit(int split)
{
    using Split = OssEvMeshFile::Options::Split;
    if (split >= int(Split::One) && split <= int(Split::Materials))
        m_source.options.split = Split(split);
}

void OssGeoEntity::setUp(int up)
{
    using Up = OssEvMeshFile::Options::Up;
    if (up >= int(Up::FromFile) && up <= int(Up::Z))
        m_source.options.up = Up(up);
}

void OssGeoEntity::setScale(double scale)
{
    if (scale > 0.0 && std::isfinite(scale))
        m_source.options.scale = scale;
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
    // The same state may keep it or not, as the disk has allowed.
    const QString kept = serializer.isCanonical() ? QString()
                                                  : OssMeshes::instance()->keptFile(m_source);
    if (!kept.isEmpty())
        serializer.writeElement(KeptElement, {{QStringLiteral("file"), kept}});
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

bool OssGeoEntity::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                 const Attributes &attributes)
{
    if (name != KeptElement)
        return OssEntity::onLoadElement(deserializer, name, attributes);
    const QString file = attributes.value(QStringLiteral("file"));
    if (!OssPixelStore::isMeshName(file)) {
        deserializer.raiseError(tr("\"%1\" cannot be a kept mesh").arg(file));
        return false;
    }
    m_source.kept = file;
    return true;
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
