#include "OssScriptObjects/OssaGeoEntity.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Objects/OssImageSet.h"
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
    const QPointer<OssGeoEntity> entity = own;
    const QString old = own->name();
    const auto apply = [entity](const QString &text) {
        if (entity)
            entity->setName(text);
    };
    apply(name);
    OssUndoManager::instance()->record(
        QStringLiteral("Rename Object"), [apply, old] { apply(old); },
        [apply, name] { apply(name); });
}

QString GeoEntity::geometry() const
{
    const auto *own = wrapped<OssGeoEntity>();
    return own ? own->geometry() : QString();
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
