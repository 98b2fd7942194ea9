#include "WatchedPlugin.h"

#include "../OssShaderNetworkNodeGraphViewContext/DocumentInvariants.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QCoreApplication>

void watchedPluginBroken(QStringList *broken)
{
    static auto *const invariants = [] {
        auto *made = new DocumentInvariants;
        made->setParent(QCoreApplication::instance());
        return made;
    }();
    *broken += invariants->broken();
}

void watchedPluginSettleViewer()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QList<OssShadingGroup *> groups = project ? project->shadingGroups()
                                                    : QList<OssShadingGroup *>();
    for (const OssShadingGroup *group : groups) {
        OssShaderNetwork *network = group->network();
        const OssSnBaseNode *viewer = network->moveCurrentViewerNodeToNetwork();
        if (auto *context = OssSnNodeGraphViewContextManager::contextOf(viewer))
            context->setNodePosition({});
        network->setViewerNodeCurrentEdge(1, true);
    }
    OssUndoManager::instance()->resetClean();
}
