#include "OssScriptObjects/OssaProject.h"

#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Objects/OssMeshReader.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Project/OssProjectMeshes.h"
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
    OssGeometrySource source;
    source.shape = geometry;
    return OssScriptObject<GeoEntity>(own->createEntity(name, OssProjectMeshes::shortened(source)));
}

void Project::removeObject(GeoEntity *object)
{
    auto *own = wrapped<OssProject>();
    auto *entity = object ? own ? own->entity(object->name()) : nullptr : nullptr;
    if (own && (!entity || !own->removeEntity(entity)))
        fail(OssScriptException::NotAllowed,
             QStringLiteral("This object cannot be removed: a project has at least one"));
}

QList<GeoEntity *> Project::importMesh(const QString &path, const QString &split, bool unwrap)
{
    auto *own = wrapped<OssProject>();
    if (!own)
        return {};
    OssGeometrySource source;
    source.shape = path;
    source.options.split = OssProjectMeshes::splitOf(split);
    source.options.unwraps = unwrap;
    OssMeshReader reader;
    reader.start(source);
    reader.wait();
    QList<OssGeoEntity *> made;
    own = wrapped<OssProject>(); // it may be gone by now
    const OssResult added = own ? OssProjectMeshes::add(own, reader, nullptr, &made)
                                : OssResult::failure(QStringLiteral("The project was closed"));
    if (!added)
        fail(OssScriptException::FileInvalid, added.error());
    return OssScriptObjectList<GeoEntity>(made);
}

QStringList Project::missingFiles() const
{
    QStringList paths;
    if (const auto *own = wrapped<OssProject>()) {
        // What is being read is known soon.
        const QList<OssGeoEntity *> entities = own->entities();
        for (const OssGeoEntity *entity : entities)
            OssMeshes::instance()->waitFor(entity->source());
        const auto files = OssProjectMeshes::missing(own);
        for (const OssProjectMeshes::MissingFile &file : files)
            paths.append(file.path);
    }
    return paths;
}

int Project::relink(const QString &oldPath, const QString &newPath)
{
    auto *own = wrapped<OssProject>();
    return own ? OssProjectMeshes::relink(own, {{oldPath, newPath}}) : 0;
}

int Project::relinkFolder(const QString &folder)
{
    auto *own = wrapped<OssProject>();
    return own ? OssProjectMeshes::relink(
               own, OssProjectMeshes::findIn(OssProjectMeshes::missing(own), folder))
               : 0;
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
