#include "Ossa/Headless/ProjectTroubles.h"

#include "Ossa/Headless/CommandLine.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <cstdio>

int withProjectTroubles(int exitCode)
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (exitCode != ExitCode::Success || !project)
        return exitCode;
    const QString colors = OssColorManagement::instance()->problem();
    if (!colors.isEmpty()) {
        exitCode = ExitCode::Failure;
        std::fprintf(stderr, "ossa: %s\n", qPrintable(colors));
    }
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
