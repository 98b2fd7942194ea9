#include "Ossa/Commands/GroupCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Dialogs/PublishDialog.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssNodeArchive.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Types/OssNodeSuffixes.h"

#include <QPointer>

namespace {

/// After a command that made them.
void selectMade(OssShaderNetwork *network, const QList<OssSnBaseNode *> &nodes)
{
    network->selectOnly(nodes);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

/// "A", "B" and so on; after five how many more there are.
QString listOf(const QList<OssSnBaseNode *> &nodes)
{
    QStringList names;
    for (const OssSnBaseNode *node : nodes.mid(0, 5))
        names.append(QStringLiteral("\"%1\"").arg(node->name()));
    const QString list = names.join(QStringLiteral(", "));
    const int more = nodes.size() - names.size();
    return more > 0 ? GroupCommands::tr("%1 and %n more", nullptr, more).arg(list) : list;
}

/// What is selected, and what lies on backdrops among that: a backdrop takes it along, as when it is
/// moved.
QList<OssSnBaseNode *> selectedWithMembers(const OssShaderNetwork *network)
{
    const QList<OssSnBaseNode *> selected = network->selectedNodes();
    QList<OssSnBaseNode *> result = selected;
    for (OssSnBaseNode *node : network->nodes()) {
        const OssSnBaseNode *around = node->container();
        while (around && !selected.contains(const_cast<OssSnBaseNode *>(around)))
            around = around->container();
        if (around && !selected.contains(node))
            result.append(node);
    }
    return result;
}

/// Whether the nodes can be grouped, if need be with those between them, as the user was asked.
bool mayBeGrouped(const OssShaderNetwork *network, const QList<OssSnBaseNode *> &nodes)
{
    const QList<OssSnBaseNode *> between = network->nodesBetween(nodes);
    if (between.isEmpty())
        return true;
    const QString question =
        GroupCommands::tr("The selected nodes are wired through nodes that are not selected: %1. "
                          "No wire can lead out of a group and back into it.\n\n"
                          "Take them into the group as well?")
            .arg(listOf(between));
    return OssMessageBox::question(nullptr, GroupCommands::tr("Group Selected Nodes"), question,
                                   QMessageBox::Yes | QMessageBox::Cancel)
           == QMessageBox::Yes;
}

} // namespace

GroupCommands::GroupCommands(QObject *parent)
    : QObject(parent)
{
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Group Selected Nodes"),
                   [] { groupSelected(); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Ungroup"), [] { ungroupSelected(); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Add Group Input"), [] { addPort(true); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Add Group Output"),
                   [] { addPort(false); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Order Ports by Position"), [] {
        orderPorts(&OssShaderNetworkManager::requestPortsInOrderOfPlaces,
                   tr("The ports are in the order of their nodes already"));
    });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Arrange Inputs by Order"), [] {
        orderPorts(&OssShaderNetworkManager::requestPlacesInOrderOfPorts,
                   tr("The nodes lie in the order of the inputs already"));
    });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Export as Gizmo"),
                   [] { exportAsGizmo(); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Publish as Node Type..."),
                   [] { publish(); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Export Material to Archive"),
                   [] { exportArchive(true); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Export as Custom Procedural"),
                   [] { exportArchive(false); });
}

OssShaderNetwork *GroupCommands::network()
{
    return OssShaderNetworkManager::instance()->currentViewNetwork();
}

OssSnGroupNode *GroupCommands::group()
{
    OssShaderNetwork *shown = network();
    const QList<OssSnBaseNode *> selected = shown ? shown->selectedNodes()
                                                  : QList<OssSnBaseNode *>();
    OssSnGroupNode *found = nullptr;
    int count = 0;
    for (OssSnBaseNode *node : selected) {
        if (auto *one = qobject_cast<OssSnGroupNode *>(node)) {
            found = one;
            ++count;
        }
    }
    if (count == 1)
        return found;
    return shown && count == 0 ? shown->parentGroupNode() : nullptr;
}

void GroupCommands::groupSelected()
{
    const QPointer<OssShaderNetwork> shown = network();
    if (!shown)
        return;
    if (shown->selectedNodes().isEmpty()) {
        OssStatusManager::instance()->showMessage(tr("Group Selected Nodes: select nodes first"));
        return;
    }
    if (!mayBeGrouped(shown, selectedWithMembers(shown)) || !shown)
        return;
    const QList<OssSnBaseNode *> selected = selectedWithMembers(shown); // after the question
    OssSnGroupNode *made = shown->groupNodes(selected + shown->nodesBetween(selected));
    if (made)
        selectMade(shown, {made});
}

void GroupCommands::ungroupSelected()
{
    OssShaderNetwork *shown = network();
    if (!shown)
        return;
    const QList<OssSnBaseNode *> selected = shown->selectedNodes();
    QList<OssSnBaseNode *> inside;
    bool hasGroup = false;
    const OssUndoManager::AutoMacro macro(tr("Ungroup"));
    for (OssSnBaseNode *node : selected) {
        auto *one = qobject_cast<OssSnGroupNode *>(node);
        hasGroup = hasGroup || one;
        if (one)
            inside.append(shown->ungroup(one));
    }
    if (!hasGroup)
        OssStatusManager::instance()->showMessage(tr("Ungroup: select a group first"));
    if (!inside.isEmpty())
        selectMade(shown, inside);
}

void GroupCommands::addPort(bool input)
{
    OssSnGroupNode *target = group();
    if (!target) {
        OssStatusManager::instance()->showMessage(tr("Select the group that is to have the port"));
        return;
    }
    const QString name = target->groupNetwork()->generateUniqueNodeName(input ? tr("Input")
                                                                              : tr("Output"));
    OssSnBaseNode *made = input ? target->createInput(name, OssSnDataKind::Color)
                                : target->createOutput(name, OssSnDataKind::Color);
    if (!made)
        return;
    if (target->groupNetwork() == network())
        target->groupNetwork()->selectOnly({made});
    OssShaderNetworkManager::instance()->requestSight(made);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

void GroupCommands::orderPorts(void (OssShaderNetworkManager::*request)(OssSnGroupNode *),
                               const QString &nothingToDo)
{
    OssSnGroupNode *target = group();
    if (!target) {
        OssStatusManager::instance()->showMessage(
            tr("Select the group whose ports are to be ordered"));
        return;
    }
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    bool changed = false;
    const auto listening = connect(OssUndoManager::instance(), &OssUndoManager::recorded,
                                   [&changed] { changed = true; });
    (networks->*request)(target);
    disconnect(listening);
    if (changed)
        networks->emitNodeGraphIsManuallyChanged();
    else
        OssStatusManager::instance()->showMessage(nothingToDo);
}

void GroupCommands::exportAsGizmo()
{
    OssSnGroupNode *target = group();
    const QString title = tr("Export as Gizmo");
    if (!target) {
        OssMessageBox::information(nullptr, title, tr("Select the group that is to be exported"));
        return;
    }
    OssSnBaseContext *context = target->viewContext();
    const OssResult exported = context ? context->exportNode() : OssResult();
    if (!exported && !exported.isCancelled())
        OssMessageBox::warning(nullptr, title, exported.error());
}

void GroupCommands::publish()
{
    const QPointer<OssSnGroupNode> target = group();
    const QString title = tr("Publish as Node Type");
    if (!target) {
        OssStatusManager::instance()->showMessage(
            tr("%1: select the group that is to be published").arg(title));
        return;
    }
    if (!OssApplication::popupsAllowed()) {
        OssStatusManager::instance()->showMessage(
            tr("%1: scripts call publish() of the group").arg(title));
        return;
    }
    PublishDialog dialog(target, OssApplication::mainWindow());
    if (dialog.exec() != QDialog::Accepted || !target)
        return;
    const OssResult published = OssNodeTypeWatch::instance()->publish(target, dialog.form());
    if (!published) {
        OssMessageBox::warning(nullptr, title, published.error());
        return;
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    OssStatusManager::instance()->showMessage(tr("Published %1").arg(dialog.form().pathKey()));
}

void GroupCommands::exportArchive(bool material)
{
    const QString title = material ? tr("Export Material to Archive")
                                   : tr("Export as Custom Procedural");
    OssSnGroupNode *target = group();
    const bool fits = target && (!material || qobject_cast<OssSnMaterialNode *>(target));
    if (!fits) {
        OssMessageBox::information(nullptr, title,
                                   material ? tr("Select the material that is to be exported")
                                            : tr("Select the group that is to be exported"));
        return;
    }
    const OssResourceInfo *resources = OssResourceInfo::instance();
    const QString path = OssFileDialog::getSaveFileName(
        title,
        OssNodeSuffixes::filter(material ? OssNodeSuffixes::Material
                                         : OssNodeSuffixes::CustomProcedural),
        material ? resources->defaultMaterialPathKey()
                 : resources->defaultCustomProceduralPathKey(),
        nullptr, target->name());
    if (path.isEmpty())
        return;
    const OssResult result = OssNodeArchive::write(
        target, material ? OssNodeArchive::Kind::Material : OssNodeArchive::Kind::CustomProcedural,
        path);
    if (!result)
        OssMessageBox::warning(nullptr, title, result.error());
}
