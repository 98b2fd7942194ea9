#include "OssScriptObjects/OssaGeoEntity.h"

#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProjectMeshes.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssScriptObjects.h"

namespace Ossa {

GeoEntity::GeoEntity(QObject *entity)
{
    initAs<OssGeoEntity>(entity);
}

GeoEntity::~GeoEntity() = default;

QString GeoEntity::name() const
{
    const auto *own = wrapped<OssGeoEntity>();
    return own ? own->name() : QString();
}

void GeoEntity::setName(const QString &name)
{
    auto *own = wrapped<OssGeoEntity>();
    if (!own || own->name() == name)
        return;
    if (name.trimmed().isEmpty()) {
        fail(OssScriptException::NotAllowed, QStringLiteral("An object must have a name"));
        return;
    }
    own->changeName(name);
}

QString GeoEntity::geometry() const
{
    const auto *own = wrapped<OssGeoEntity>();
    return own ? own->geometry() : QString();
}

QString GeoEntity::meshState() const
{
    const auto *own = wrapped<OssGeoEntity>();
    if (!own)
        return {};
    switch (OssMeshes::instance()->waitFor(own->source()).state) {
    case OssMeshes::State::Ready:
        return QStringLiteral("ready");
    case OssMeshes::State::Kept:
        return QStringLiteral("kept");
    default:
        return QStringLiteral("missing");
    }
}

QString GeoEntity::meshProblem() const
{
    const auto *own = wrapped<OssGeoEntity>();
    if (!own)
        return {};
    const OssMeshes::Look look = OssMeshes::instance()->waitFor(own->source());
    return look.problem.isEmpty() ? QString::fromStdString(OssEvMeshCheck::inWords(look.report))
                                  : look.problem;
}

QString GeoEntity::uvSet() const
{
    const auto *own = wrapped<OssGeoEntity>();
    return own ? QString::fromStdString(own->source().options.uvSet) : QString();
}

void GeoEntity::setUvSet(const QString &name)
{
    if (const auto *own = wrapped<OssGeoEntity>()) {
        OssGeometrySource source = own->source();
        source.options.uvSet = name.toStdString();
        change(source, QStringLiteral("Mesh Settings"));
    }
}

bool GeoEntity::unwraps() const
{
    const auto *own = wrapped<OssGeoEntity>();
    return own && own->source().options.unwraps;
}

void GeoEntity::setUnwraps(bool on)
{
    if (const auto *own = wrapped<OssGeoEntity>()) {
        OssGeometrySource source = own->source();
        source.options.unwraps = on;
        change(source, QStringLiteral("Mesh Settings"));
    }
}

QString GeoEntity::replaceMesh(const QString &geometry)
{
    OssGeometrySource source;
    source.shape = geometry;
    return change(source, QStringLiteral("Replace Mesh"));
}

QString GeoEntity::change(const OssGeometrySource &source, const QString &title)
{
    QString changes;
    if (auto *own = wrapped<OssGeoEntity>()) {
        const OssResult changed = OssProjectMeshes::replace(own, source, title, &changes);
        if (!changed)
            fail(OssScriptException::FileInvalid, changed.error());
    }
    return changes;
}

void GeoEntity::reloadMesh()
{
    if (const auto *own = wrapped<OssGeoEntity>()) {
        OssMeshes::instance()->reload(own->source());
        OssMeshes::instance()->waitFor(own->source());
    }
}

QStringList GeoEntity::geoChannels() const
{
    QStringList names;
    if (const auto *own = wrapped<OssGeoEntity>()) {
        const QList<OssGeoImageSet *> channels = own->geoImageSets();
        for (const OssGeoImageSet *channel : channels)
            names.append(channel->name());
    }
    return names;
}

void GeoEntity::addGeoChannel(const QString &name)
{
    auto *own = wrapped<OssGeoEntity>();
    if (own && !own->addGeoImageSet(name.trimmed()))
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" is no name for a geo-channel, or is there already").arg(name));
}

QList<int> GeoEntity::patches() const
{
    const auto *own = wrapped<OssGeoEntity>();
    return own ? OssEvaluationService::instance()->patches(own) : QList<int>();
}

QList<NodeGraph *> GeoEntity::graphs() const
{
    QList<OssShaderNetwork *> networks;
    if (const auto *own = wrapped<OssGeoEntity>()) {
        const QList<OssShadingGroup *> groups = own->shadingGroups();
        for (const OssShadingGroup *group : groups)
            networks.append(group->network());
    }
    return OssScriptObjectList<NodeGraph>(networks);
}

QList<ImageSet *> GeoEntity::imageSets() const
{
    QList<OssImageSet *> sets;
    if (const auto *own = wrapped<OssGeoEntity>()) {
        const QList<OssShadingGroup *> groups = own->shadingGroups();
        for (const OssShadingGroup *group : groups)
            sets.append(group->imageSets());
    }
    return OssScriptObjectList<ImageSet>(sets);
}

ImageSet *GeoEntity::imageSet(const QString &name) const
{
    const auto *own = wrapped<OssGeoEntity>();
    return own ? OssScriptObject<ImageSet>(own->findImageSet(name)) : nullptr;
}

} // namespace Ossa
