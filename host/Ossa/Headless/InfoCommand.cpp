#include "Ossa/Headless/InfoCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QMap>

#include <algorithm>
#include <cstdio>

namespace {

struct Count
{
    int nodes = 0;
    int wires = 0;
    int groups = 0;
    int placeholders = 0;
    QMap<QString, int> types;
};

Count countNodes(const OssShaderNetwork *network)
{
    Count count;
    const QList<OssSnBaseNode *> nodes = network->getAllNodes();
    for (const OssSnBaseNode *node : nodes) {
        ++count.nodes;
        count.wires += node->outgoingConnections().size();
        count.groups += qobject_cast<const OssSnGroupNode *>(node) ? 1 : 0;
        count.placeholders += node->isPlaceholder() ? 1 : 0;
        ++count.types[node->pathKey()];
    }
    return count;
}

void printMesh(const OssGeoEntity *entity)
{
    const OssMeshes::Look look = OssMeshes::instance()->waitFor(entity->source());
    if (!look.mesh) {
        std::printf("  missing\n");
        return;
    }
    const std::vector<int> &patches = look.mesh->patches(); // one at least, or it were no mesh
    std::printf("  %s%zu triangles, ",
                look.problem.isEmpty() ? "" : "missing, kept: ", look.mesh->triangles.size());
    if (patches.size() == 1)
        std::printf("patch %d\n", patches.front());
    else
        std::printf("%zu patches from %d on\n", patches.size(), patches.front());
    for (const OssEvMeshCheck::Finding &found : look.report)
        std::printf("  %s\n", found.text.c_str());
}

void printEntity(const OssGeoEntity *entity)
{
    std::printf("\n%s (%s)\n", qPrintable(entity->name()), qPrintable(entity->source().title()));
    printMesh(entity);
    const QList<OssShadingGroup *> groups = entity->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const Count count = countNodes(group->network());
        std::printf("  %s: %d nodes, %d wires, %d groups\n", qPrintable(group->name()), count.nodes,
                    count.wires, count.groups);
        if (count.placeholders > 0)
            std::printf("  %d nodes of types that are not known here\n", count.placeholders);
        for (auto type = count.types.cbegin(); type != count.types.cend(); ++type)
            std::printf("  %6d  %s\n", type.value(), qPrintable(type.key()));
    }
}

} // namespace

int runInfoCommand(const QString &project, bool withState)
{
    OssProjectManager *projects = OssProjectManager::instance();
    const OssResult opened = projects->openProject(project);
    if (!opened) {
        std::fprintf(stderr, "ossa: %s\n", qPrintable(opened.error()));
        return ExitCode::Failure;
    }
    OssProject *open = projects->currentProject();
    std::printf("%s\n%s\n", qPrintable(open->name()), qPrintable(open->path()));
    if (open->isReadOnly())
        std::printf("written by a newer version\n");
    if (withState)
        std::printf("state %s\n", open->stateHash().constData());
    std::printf("colors: %s, working in %s\n",
                qPrintable(OssColorSettings::configTitle(open->colorConfig())),
                OssColorManagement::spaces()->working().c_str());
    const QList<OssGeoEntity *> entities = open->entities();
    for (const OssGeoEntity *entity : entities)
        printEntity(entity);
    return ExitCode::Success;
}
