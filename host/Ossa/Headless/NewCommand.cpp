#include "Ossa/Headless/NewCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Objects/OssMeshReader.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Project/OssProjectMeshes.h"

#include <QFileInfo>

#include <cstdio>

namespace {

OssGeometrySource sourceOf(const NewOptions &options, const QString &mesh)
{
    using Mesh = OssEvMeshFile::Options;
    OssGeometrySource source;
    source.shape = QFileInfo(mesh).absoluteFilePath();
    source.options.split = OssProjectMeshes::splitOf(options.split);
    source.options.uvSet = options.uvSet.toStdString();
    source.options.scale = options.scale;
    source.options.unwraps = options.unwraps;
    if (options.up == QLatin1String("y"))
        source.options.up = Mesh::Up::Y;
    else if (options.up == QLatin1String("z"))
        source.options.up = Mesh::Up::Z;
    return source;
}

OssResult setColors(OssProject *project, const NewOptions &options)
{
    OssColorSettings colors = project->colors();
    colors.config = options.config;
    if (!colors.config.isEmpty() && colors.config != OssColorSettings::Environment)
        colors.config = QFileInfo(colors.config).absoluteFilePath();
    colors.working = options.workingSpace;
    OssEvColorSpaces::Pointer spaces;
    OssResult found = OssColorManagement::find(colors, &spaces);
    if (found)
        project->setColors(colors);
    return found;
}

void tellFaults(const QList<OssGeoEntity *> &entities)
{
    for (const OssGeoEntity *entity : entities) {
        const OssMeshes::Look look = OssMeshes::instance()->look(entity->source());
        for (const OssEvMeshCheck::Finding &found : look.report)
            std::fprintf(stderr, "ossa: %s: %s: %s\n", qPrintable(entity->name()),
                         found.text.c_str(), OssEvMeshCheck::help(found.kind).advice);
        if (look.mesh)
            std::printf("%s: %zu triangle%s\n", qPrintable(entity->name()),
                        look.mesh->triangles.size(), look.mesh->triangles.size() == 1 ? "" : "s");
    }
}

} // namespace

int runNewCommand(const NewOptions &options)
{
    if (QFileInfo::exists(options.project))
        return failCommand(OssProjectManager::tr("\"%1\" is there already").arg(options.project));
    OssProjectManager *projects = OssProjectManager::instance();
    OssProject *project = projects->newProject(QFileInfo(options.project).completeBaseName());
    project->setNewResolution(options.resolution);
    const OssResult colored = setColors(project, options);
    if (!colored)
        return failCommand(colored.error());
    OssGeoEntity *first = project->entities().first();
    first->setGeometry(options.shape);
    for (const QString &mesh : options.meshes) {
        OssMeshReader reader;
        reader.start(sourceOf(options, mesh));
        reader.wait();
        const OssResult added = OssProjectMeshes::add(project, reader, first);
        if (!added)
            return failCommand(added.error());
        if (first)
            first->setName(OssProjectMeshes::nameFor(first->source()));
        first = nullptr;
    }
    const OssResult saved = projects->saveProjectAs(options.project);
    if (!saved)
        return failCommand(saved.error());
    tellFaults(project->entities());
    std::printf("%s\n", qPrintable(project->path()));
    return ExitCode::Success;
}
