#include "Ossa/Headless/MeshTroubles.h"

#include "Ossa/Headless/CommandLine.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <cstdio>

int withMeshTroubles(int exitCode)
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (exitCode != ExitCode::Success || !project)
        return exitCode;
    const QList<OssGeoEntity *> entities = project->entities();
    for (const OssGeoEntity *entity : entities) {
        const OssMeshes::Look look = OssMeshes::instance()->waitFor(entity->source());
        if (look.problem.isEmpty())
            continue;
        exitCode = ExitCode::Failure;
        std::fprintf(stderr, "ossa: %s: %s%s\n", qPrintable(entity->name()),
                     qPrintable(look.problem),
                     look.mesh ? "; the mesh that the project keeps was used" : "");
    }
    return exitCode;
}
