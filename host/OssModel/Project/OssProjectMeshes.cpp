#include "OssModel/Project/OssProjectMeshes.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssEvaluation/Geometry/OssEvMeshChange.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssUdimPath.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Objects/OssMeshReader.h"
#include "OssModel/Project/OssProject.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>

namespace {

using OssProjectMeshes::MissingFile;

constexpr int MostSearched = 200'000; ///< files below a folder

QString tr(const char *text)
{
    return QCoreApplication::translate("OssProjectMeshes", text);
}

QString textOf(const OssEvMeshCheck::Report &report)
{
    return QString::fromStdString(OssEvMeshCheck::inWords(report));
}

QString unusable(const OssMeshReader &read)
{
    QStringList reasons;
    for (const OssEvMeshFile::Part &part : read.reading().parts) {
        if (!part.mesh)
            reasons.append(textOf(part.report));
    }
    reasons.removeDuplicates();
    return tr("Cannot use \"%1\": %2")
        .arg(read.source().path(), reasons.join(QStringLiteral("; ")));
}

bool isThere(const QString &path)
{
    return OssUdimPath::isPattern(path) ? !OssUdimPath::patches(path).isEmpty()
                                        : QFileInfo(path).isFile();
}

void addMissing(MissingFile::Kind kind, const QString &path, const QString &user,
                QList<MissingFile> *files)
{
    const auto known = std::find_if(files->begin(), files->end(), [&](const MissingFile &file) {
        return file.kind == kind && file.path == path;
    });
    if (known == files->end())
        files->append({kind, path, {user}});
    else if (!known->users.contains(user))
        known->users.append(user);
}

/// All attributes of the project's nodes that hold a path.
template <class Visitor>
void visitPaths(const OssProject *project, const Visitor &visitor)
{
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const QList<OssSnBaseNode *> nodes = group->network()->getAllNodes();
        for (OssSnBaseNode *node : nodes) {
            const QVector<OssCustomAttribute> attributes = node->userAttributes();
            for (const OssCustomAttribute &attribute : attributes) {
                const QString path = attribute.value().toString();
                if (OssFilePath::isHeldBy(attribute) && !path.isEmpty())
                    visitor(node, attribute, OssFilePath::resolved(path));
            }
        }
    }
}

} // namespace

OssGeometrySource OssProjectMeshes::shortened(const OssGeometrySource &source)
{
    OssGeometrySource result = source;
    if (source.isFile())
        result.shape = OssFilePath::shortened(QFileInfo(source.path()).absoluteFilePath());
    return result;
}

OssEvMeshFile::Options::Split OssProjectMeshes::splitOf(const QString &word)
{
    using Split = OssEvMeshFile::Options::Split;
    if (word == QLatin1String("objects"))
        return Split::Objects;
    return word == QLatin1String("materials") ? Split::Materials : Split::One;
}

QString OssProjectMeshes::nameFor(const OssGeometrySource &source)
{
    if (!source.isFile())
        return OssGeometrySource::shapeTitle(source.shape);
    return source.part.isEmpty() ? QFileInfo(source.shape).completeBaseName() : source.part;
}

OssResult OssProjectMeshes::add(OssProject *project, const OssMeshReader &read,
                                OssGeoEntity *replaces, QList<OssGeoEntity *> *made)
{
    if (!read.problem().isEmpty())
        return OssResult::failure(read.problem());
    const OssGeometrySource whole = shortened(read.source());
    const auto &parts = read.reading().parts;
    if (std::none_of(parts.begin(), parts.end(), [](const auto &part) { return part.mesh; }))
        return OssResult::failure(unusable(read));
    OssMeshes::instance()->take(whole, read.reading(), read.content());
    OssUndoManager::AutoMacro macro(tr("Import %1").arg(QFileInfo(whole.shape).fileName()));
    for (const OssEvMeshFile::Part &part : parts) {
        if (!part.mesh)
            continue;
        OssGeometrySource source = whole;
        source.part = QString::fromStdString(part.name);
        OssGeoEntity *entity = std::exchange(replaces, nullptr);
        if (entity)
            entity->changeSource(source, {});
        else
            entity = project->createEntity(project->freeEntityName(nameFor(source)), source);
        if (made)
            made->append(entity);
    }
    return {};
}

OssResult OssProjectMeshes::replace(OssGeoEntity *entity, const OssGeometrySource &source,
                                    const QString &title, QString *changes)
{
    const QPointer<OssGeoEntity> kept = entity;
    const OssGeometrySource wanted = shortened(source);
    const OssMeshes::Look now = OssMeshes::instance()->waitFor(wanted);
    if (!kept)
        return OssResult::failure(tr("The project was closed"));
    if (now.state != OssMeshes::State::Ready)
        return OssResult::failure(now.problem.isEmpty() ? tr("The mesh was not read")
                                                        : now.problem);
    const OssMeshes::Look before = OssMeshes::instance()->look(entity->source());
    if (changes && before.mesh)
        *changes = QString::fromStdString(OssEvMeshChange::inWords(*before.mesh, *now.mesh));
    entity->changeSource(wanted, title);
    return {};
}

// --- missing files

QList<MissingFile> OssProjectMeshes::missing(const OssProject *project)
{
    QList<MissingFile> files;
    const QList<OssGeoEntity *> entities = project->entities();
    for (const OssGeoEntity *entity : entities) {
        if (!entity->hasFile())
            continue;
        const OssMeshes::Look look = OssMeshes::instance()->look(entity->source());
        if (!look.problem.isEmpty() || !isThere(entity->source().path()))
            addMissing(MissingFile::Mesh, entity->source().path(), entity->name(), &files);
    }
    const QList<OssImage *> images = project->images();
    for (const OssImage *image : images) {
        if (!isThere(image->path()))
            addMissing(MissingFile::Image, image->path(), image->name(), &files);
    }
    visitPaths(project,
               [&](const OssSnBaseNode *node, const OssCustomAttribute &, const QString &path) {
                   if (!isThere(path))
                       addMissing(MissingFile::Image, path, node->name(), &files);
               });
    return files;
}

QMap<QString, QString> OssProjectMeshes::findIn(const QList<MissingFile> &files,
                                                const QString &folder)
{
    QMultiMap<QString, QString> wanted; // by file name; of patterns that of any patch
    for (const MissingFile &file : files)
        wanted.insert(QFileInfo(OssUdimPath::pattern(file.path)).fileName(), file.path);
    QMap<QString, QString> found;
    QDirIterator search(folder, QDir::Files, QDirIterator::Subdirectories);
    for (int i = 0; i < MostSearched && search.hasNext(); ++i) {
        const QString path = search.next();
        for (const QString &candidate : {path, OssUdimPath::pattern(path)}) {
            const QStringList lost = wanted.values(QFileInfo(candidate).fileName());
            for (const QString &old : lost) {
                if (!found.contains(old))
                    found.insert(old, candidate);
            }
        }
    }
    return found;
}

int OssProjectMeshes::relink(OssProject *project, const QMap<QString, QString> &paths)
{
    int count = 0;
    OssUndoManager::AutoMacro macro(tr("Relink Files"));
    const QList<OssGeoEntity *> entities = project->entities();
    for (OssGeoEntity *entity : entities) {
        OssGeometrySource source = entity->source();
        const auto found = paths.constFind(source.path());
        if (!source.isFile() || found == paths.cend())
            continue;
        source.kept = OssMeshes::instance()->keptFile(source);
        source.shape = *found;
        const OssGeometrySource wanted = shortened(source);
        if (wanted == entity->source())
            OssMeshes::instance()->reload(wanted);
        entity->changeSource(wanted, {});
        ++count;
    }
    const QList<OssImage *> images = project->images();
    for (OssImage *image : images) {
        const QString before = image->path();
        const auto found = paths.constFind(before);
        if (found == paths.cend())
            continue;
        image->setPath(*found);
        OssUndoManager::instance()->record(
            {}, [image, before] { image->setPath(before); },
            [image, now = *found] { image->setPath(now); });
        ++count;
    }
    visitPaths(project,
               [&](OssSnBaseNode *node, OssCustomAttribute attribute, const QString &path) {
                   const auto found = paths.constFind(path);
                   if (found == paths.cend())
                       return;
                   attribute.setValue(OssFilePath::shortened(*found));
                   node->setUserAttribute(attribute, true); // a lock is none against this
                   ++count;
               });
    return count;
}

QList<OssProjectMeshes::Trouble> OssProjectMeshes::troubles(const OssProject *project)
{
    QList<Trouble> list;
    const QList<OssGeoEntity *> entities = project ? project->entities() : QList<OssGeoEntity *>();
    for (OssGeoEntity *entity : entities) {
        const OssMeshes::Look look = OssMeshes::instance()->look(entity->source());
        if (look.state == OssMeshes::State::Kept)
            list.append(
                {entity, true,
                 tr("Its mesh is missing, the last good state is shown. %1").arg(look.problem)});
        else if (look.state == OssMeshes::State::Missing)
            list.append({entity, true, tr("Its mesh is missing. %1").arg(look.problem)});
        else if (!look.report.empty())
            list.append({entity, false, textOf(look.report)});
    }
    return list;
}
