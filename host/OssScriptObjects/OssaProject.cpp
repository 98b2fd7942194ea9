#include "OssScriptObjects/OssaProject.h"

#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaImage.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssScriptObjects.h"

namespace Ossa {

Project::Project(QObject *project)
{
    initAs<OssProject>(project);
}

Project::~Project() = default;

QString Project::name() const
{
    const auto *own = wrapped<OssProject>();
    return own ? own->name() : QString();
}

QString Project::path() const
{
    const auto *own = wrapped<OssProject>();
    return own ? own->path() : QString();
}

bool Project::isModified() const
{
    return wrapped<OssProject>() && OssProjectManager::instance()->isModified();
}

bool Project::isReadOnly() const
{
    const auto *own = wrapped<OssProject>();
    return own && own->isReadOnly();
}

int Project::newResolution() const
{
    const auto *own = wrapped<OssProject>();
    return own ? own->newResolution() : 0;
}

void Project::setNewResolution(int resolution)
{
    auto *own = wrapped<OssProject>();
    if (own && !OssProject::newResolutions().contains(resolution))
        fail(OssScriptException::OutOfRange,
             QStringLiteral("New images cannot be %1 pixels wide").arg(resolution));
    else if (own)
        own->setNewResolution(resolution);
}

QList<GeoEntity *> Project::objects() const
{
    const auto *own = wrapped<OssProject>();
    return own ? OssScriptObjectList<GeoEntity>(own->entities()) : QList<GeoEntity *>();
}

GeoEntity *Project::object(const QString &name) const
{
    const auto *own = wrapped<OssProject>();
    if (!own)
        return nullptr;
    const QList<OssGeoEntity *> entities = own->entities();
    for (OssGeoEntity *entity : entities) {
        if (entity->name() == name)
            return OssScriptObject<GeoEntity>(entity);
    }
    return nullptr;
}

GeoEntity *Project::createObject(const QString &name, const QString &geometry)
{
    auto *own = wrapped<OssProject>();
    if (!own)
        return nullptr;
    if (name.trimmed().isEmpty() || object(name)) {
        fail(OssScriptException::NotAllowed,
             QStringLiteral("An object cannot be named \"%1\" here").arg(name));
        return nullptr;
    }
    OssGeoEntity *entity = own->addEntity(name);
    entity->setGeometry(geometry);
    return OssScriptObject<GeoEntity>(entity);
}

QList<NodeGraph *> Project::graphs() const
{
    QList<OssShaderNetwork *> networks;
    if (const auto *own = wrapped<OssProject>()) {
        const QList<OssShadingGroup *> groups = own->shadingGroups();
        for (const OssShadingGroup *group : groups)
            networks.append(group->network());
    }
    return OssScriptObjectList<NodeGraph>(networks);
}

QList<Image *> Project::images() const
{
    const auto *own = wrapped<OssProject>();
    return own ? OssScriptObjectList<Image>(own->images()) : QList<Image *>();
}

Image *Project::addImage(const QString &path)
{
    if (!wrapped<OssProject>())
        return nullptr;
    const OssResult checked = OssImageManager::check(path);
    const QList<OssImageManager::ImageLayer> layers = checked
                                                          ? OssImageManager::instance()->open(
                                                              path, OssImageManager::GatherPatches,
                                                              OssImageManager::defaultCategory())
                                                          : QList<OssImageManager::ImageLayer>();
    if (layers.isEmpty()) {
        fail(OssScriptException::FileInvalid,
             checked ? QStringLiteral("%1 is no picture").arg(path) : checked.error());
        return nullptr;
    }
    return OssScriptObject<Image>(layers.first().image);
}

void Project::save()
{
    if (!wrapped<OssProject>())
        return;
    const OssScriptUndo::Interruption interruption;
    const OssResult saved = OssProjectManager::instance()->saveProject();
    if (!saved)
        fail(OssScriptException::FileNotAccessible, saved.error());
}

void Project::saveAs(const QString &path)
{
    if (!wrapped<OssProject>())
        return;
    const OssScriptUndo::Interruption interruption;
    const OssResult saved = OssProjectManager::instance()->saveProjectAs(path);
    if (!saved)
        fail(OssScriptException::FileNotAccessible, saved.error());
}

void Project::close()
{
    if (!wrapped<OssProject>())
        return;
    if (OssScriptManager::instance()->undo().isInOwnMacro()) {
        fail(OssScriptException::WrongState,
             QStringLiteral("A project cannot be closed inside an undo macro"));
        return;
    }
    const OssScriptUndo::Interruption interruption;
    OssProjectManager::instance()->closeProject();
}

QString Project::stateHash() const
{
    auto *own = wrapped<OssProject>();
    return own ? QString::fromLatin1(own->stateHash()) : QString();
}

} // namespace Ossa
