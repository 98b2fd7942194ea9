#include "Ossa/GroupCommands.h"

#include "Ossa/Commands.h"
#include "OssCore/OssStatusManager.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssShaderNetworkManager.h"
#include "OssCoreModules/Network/OssSnBaseContext.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"

#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("GroupCommands", text);
}

/// Null unless exactly one node is selected and it is a group.
OssSnGroupNode *selectedGroup()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentViewNetwork();
    const QList<OssSnBaseNode *> selected = network ? network->selectedNodes()
                                                    : QList<OssSnBaseNode *>();
    return selected.size() == 1 ? qobject_cast<OssSnGroupNode *>(selected.first()) : nullptr;
}

void exportAsGizmo()
{
    OssSnGroupNode *group = selectedGroup();
    QObject *context = group ? group->context(QStringLiteral("NodeGraphView")) : nullptr;
    // By name: the context is the plug-in's.
    if (!context
        || !QMetaObject::invokeMethod(context, "onExportAsGizmo", Qt::DirectConnection,
                                      Q_ARG(OssSnGroupNode *, group)))
        OssStatusManager::instance()->showMessage(tr("Select one group node to export it"));
}

} // namespace

void GroupCommands::file(QObject *owner)
{
    Commands::file(owner, QStringLiteral("/Ossa/NodeGraph/"), tr("Export as Gizmo"), exportAsGizmo,
                   tr("Write the selected group to a file that can be imported as a node"));
}
