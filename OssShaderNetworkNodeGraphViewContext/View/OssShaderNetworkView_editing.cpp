#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssInterface/Popups/OssPopupDialog.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssLayerRefreshSuspensionManager.h"
#include "OssModel/Nodes/OssLayerShaderModelManager.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgExtendedNode.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"

#include <QGraphicsScene>
#include <QHBoxLayout>
#include <QLineEdit>

#include <algorithm>

namespace {

constexpr const char *Source = "OssShaderNetworkView";

void tellOfChange()
{
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

/// A wire by its end, which outlives it.
struct WireEnd
{
    QPointer<OssNgNode> destination;
    QString input;
};

/// Those that a user can take away.
QVector<WireEnd> selectedWires(const QGraphicsScene *scene)
{
    QVector<WireEnd> ends;
    const QList<QGraphicsItem *> items = scene ? scene->selectedItems() : QList<QGraphicsItem *>();
    for (QGraphicsItem *item : items) {
        const auto *wire = dynamic_cast<const OssNgEdge *>(item);
        if (wire && wire->isFullConnected() && !wire->isVirtual())
            ends.append({wire->destination(), wire->destinationInput()});
    }
    return ends;
}

} // namespace

bool OssShaderNetworkView::hasNetwork() const
{
    if (!m_network)
        OssDebug(Source, __LINE__, "m_network is NULL");
    return m_network;
}

QList<OssSnBaseNode *> OssShaderNetworkView::selectedNodes() const
{
    return hasNetwork() ? m_network->selectedNodes() : QList<OssSnBaseNode *>();
}

void OssShaderNetworkView::deleteSelectedNodes()
{
    if (!hasNetwork())
        return;
    QSet<OssSnBaseNode *> nodes;
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    for (OssSnBaseNode *node : selected) {
        if (node->hasTag(OssSnTags::graphLayerInput())) {
            tellUser(tr("%1 is what a layer stands on and stays").arg(node->name()));
            OssDebug(Source, __LINE__,
                     "[ -- ] Node '%s' cannot be removed by the user, it's a protected graph layer "
                     "node",
                     qPrintable(node->name()));
        } else {
            nodes.insert(node);
        }
    }
    const QVector<WireEnd> wires = selectedWires(scene());
    if (selected.isEmpty() && wires.isEmpty())
        tellUser(scene() && !scene()->selectedItems().isEmpty()
                     ? tr("A dashed wire shows what follows from the nodes and cannot be deleted")
                     : tr("Delete: select a node or a wire first"));
    const OssUndoManager::AutoMacro macro(
        nodes.isEmpty() && !wires.isEmpty() ? tr("Cut connections") : tr("Remove Selected Nodes"));
    const OssLayerRefreshSuspensionManager::RefreshStateSuspender suspender;
    m_network->removeNodes(nodes);
    tellOfRemoval(nodes.values());
    for (const WireEnd &wire : wires) {
        if (wire.destination && wire.destination->input(wire.input))
            Q_EMIT wire.destination->inputSourceChanged(nullptr, wire.input, QString());
    }
    tellOfChange();
}

void OssShaderNetworkView::deleteAllNodes()
{
    if (!hasNetwork())
        return;
    const OssUndoManager::AutoMacro macro(tr("Remove All Nodes"));
    const QList<OssSnBaseNode *> nodes = m_network->nodes();
    for (OssSnBaseNode *node : nodes)
        node->network()->removeNode(node, true, true);
    tellOfRemoval(nodes);
    tellOfChange();
}

void OssShaderNetworkView::tellOfRemoval(const QList<OssSnBaseNode *> &nodes)
{
    for (OssSnBaseNode *node : nodes) {
        if (!node->network())
            Q_EMIT nodeRemoved(node);
    }
}

void OssShaderNetworkView::extractSelectedNode()
{
    const QList<OssSnBaseNode *> selected = selectedNodes();
    if (selected.isEmpty())
        return;
    const bool wired = std::any_of(selected.cbegin(), selected.cend(), [](OssSnBaseNode *node) {
        const QList<OssSnBaseNode *> inputs = node->inputNodes();
        return inputs.count(nullptr) < inputs.size() || !node->outgoingConnections().isEmpty();
    });
    selected.first()->network()->extractNodes(selected, true);
    if (!wired)
        tellUser(tr("What is selected has no wires"));
}

void OssShaderNetworkView::disableSelectedNodes()
{
    if (!hasNetwork())
        return;
    QList<OssSnBaseNode *> nodes;
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    for (OssSnBaseNode *node : selected) {
        if (!node->hasTag(OssSnTags::viewer()))
            nodes.append(node);
    }
    QString title = tr("Toggle Selected Nodes");
    if (nodes.size() == 1)
        title = (nodes.first()->enabledAsBool() ? tr("Disable ") : tr("Enable "))
                + nodes.first()->name();
    const OssUndoManager::AutoMacro macro(title);
    if (nodes.isEmpty() && !selected.isEmpty())
        tellUser(tr("The viewer is never disabled"));
    for (OssSnBaseNode *node : qAsConst(nodes))
        node->toggleDisable();
    tellOfChange();
}

void OssShaderNetworkView::bypassSelectedNode()
{
    const QList<OssSnBaseNode *> selected = selectedNodes();
    for (OssSnBaseNode *node : selected) {
        node->toggleBypass();
        tellOfChange();
    }
}

// --- renaming

void OssShaderNetworkView::popupRenameWindow()
{
    const QList<OssSnBaseNode *> selected = selectedNodes();
    if (selected.isEmpty())
        return;
    if (selected.size() > 1) {
        OssDebug(Source, __LINE__, "More than one node selected for renaming");
        OssMessageBox::warning(this, tr("Rename node"),
                               tr("Only one node must be selected for renaming"));
        return;
    }
    popupRenameWindow(OssSnNodeGraphViewContextManager::guiNodeOf(selected.first()));
}

void OssShaderNetworkView::popupRenameWindow(OssNgNode *NodeToRename)
{
    if (!NodeToRename) {
        OssDebug(Source, __LINE__, "NodeToRename is NULL");
        return;
    }
    const QPointer<OssSnBaseNode> node = qobject_cast<OssSnBaseNode *>(
        NodeToRename->businessNode());
    if (!node) {
        OssDebug(Source, __LINE__, "BusinessNode is NULL");
        return;
    }
    OssPopupDialog dialog;
    dialog.setMaximumWidth(151);
    auto *layout = new QHBoxLayout(&dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *edit = new QLineEdit(node->name()); // the layout gives it to the dialog
    edit->setFixedWidth(150);
    edit->setAccessibleName(tr("Name of the node"));
    edit->selectAll();
    layout->addWidget(edit);
    connect(edit, &QLineEdit::returnPressed, &dialog, &QDialog::accept);
    dialog.move(viewport()->mapToGlobal(mapFromScene(NodeToRename->scenePos())));
    edit->setFocus();
    if (dialog.exec() == QDialog::Accepted && node)
        node->setName(edit->text());
}

// --- places

namespace {

/// Where a node stands, and what of it an arrangement may change besides.
struct Stand
{
    QRectF rect;
    int order;
    const OssSnBaseNode *container;

    bool operator==(const Stand &other) const
    {
        return rect == other.rect && order == other.order && container == other.container;
    }
};

QVector<Stand> standsIn(const OssShaderNetwork *network)
{
    QVector<Stand> stands;
    const QList<OssSnBaseNode *> nodes = network ? network->nodes() : QList<OssSnBaseNode *>();
    for (const OssSnBaseNode *node : nodes) {
        const auto *backdrop = qobject_cast<OssNgBackdropNode *>(
            OssSnNodeGraphViewContextManager::guiNodeOf(node));
        stands.append(
            Stand{Backdrops::rectOf(node), backdrop ? backdrop->zOrder() : 0, node->container()});
    }
    return stands;
}

} // namespace

void OssShaderNetworkView::arrange(OssShaderNetworkManager::Arrangement how)
{
    QList<OssSnBaseNode *> nodes;
    const QList<QGraphicsItem *> items = sortedSelection();
    for (QGraphicsItem *item : items) {
        const auto *guiNode = dynamic_cast<OssNgNode *>(item);
        if (auto *node = guiNode ? qobject_cast<OssSnBaseNode *>(guiNode->businessNode()) : nullptr)
            nodes.append(node);
    }
    using Networks = OssShaderNetworkManager;
    const bool whole = nodes.isEmpty()
                       && (how == Networks::ArrangeInLayers || how == Networks::ArrangeWithDots
                           || how == Networks::TidyOverlaps);
    if (whole && m_network)
        nodes = m_network->nodes();
    const QVector<Stand> before = standsIn(m_network);
    const OssResult result = OssShaderNetworkManager::instance()->requestArrangement(nodes, how);
    if (!result)
        tellUser(result.error());
    else if (standsIn(m_network) == before)
        tellUser(whole ? tr("The graph stands like that already")
                       : tr("What is selected stands like that already"));
}

// --- swapping inputs

void OssShaderNetworkView::swapInputs()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    if (selected.size() != 1) {
        OssDebug(Source, __LINE__, "More than one node selected for swap inputs.");
        OssMessageBox::warning(this, tr("Swap Inputs"),
                               tr("Only one node must be selected for swapping inputs."));
        return;
    }
    OssSnBaseNode *node = selected.first();
    const QStringList names = node->inputNames();
    if (names.size() < 2) {
        OssDebug(Source, __LINE__, "Need at least two inputs to swap inputs.");
        OssMessageBox::warning(this, tr("Swap Inputs"),
                               tr("The selected node has fewer than two inputs to swap."));
        return;
    }
    if (auto *merge = qobject_cast<OssSnMultiChannelMergeNode *>(node)) {
        batchSwapInputs(merge);
        return;
    }
    OssSnBaseNode *first = node->inputNode(names.at(0));
    OssSnBaseNode *second = node->inputNode(names.at(1));
    const QString output = QStringLiteral("Output");
    OssUndoManager::AutoMacro macro(tr("Swap Inputs"));
    const bool swapped = node->connectInput(names.at(0), second, output, true, false, false, false)
                         && node->connectInput(names.at(1), first, output, true, false, false,
                                               false);
    if (!swapped) {
        macro.cancel(); // half a swap would lose a wire
        tellUser(tr("The inputs of %1 cannot be swapped: not all that feeds them has an \"Output\"")
                     .arg(node->name()));
    }
}

namespace {

/// What feeds the input, when it carries the same streams. `side` names it in debug lines.
OssSnMultiChannelGroupNode *matchingSource(OssSnMultiChannelGroupNode *target, const QString &input,
                                           const char *side)
{
    OssSnBaseNode *source = target->inputNode(input);
    if (!qobject_cast<OssSnMultiChannelGroupNode *>(source)) {
        OssDebug(Source, __LINE__, "%s input node is not a Multi-Channel-Group node", side);
        return nullptr;
    }
    auto *matching =
        OssLayerShaderModelManager::instance()->matchingShaderModelNodePair(target, source).second;
    if (!matching)
        OssDebug(Source, __LINE__,
                 "The Shader Models of target node and %s input node do not match.", side);
    return matching;
}

} // namespace

void OssShaderNetworkView::batchSwapInputs(OssSnMultiChannelGroupNode *merge)
{
    const OssLayerShaderModel *model = merge->shaderModel();
    if (!model) {
        OssDebug(Source, __LINE__, "ShaderModel is NULL");
        return;
    }
    const QStringList inputs = model->inputList();
    if (inputs.isEmpty()) {
        OssDebug(Source, __LINE__, "ShaderModel has empty input list");
        return;
    }
    const QString first = model->input(inputs.first())->streamName();
    OssSnMultiChannelGroupNode *base = matchingSource(
        merge, OssLayerStreamUtils::baseInputName(first), "Base");
    OssSnMultiChannelGroupNode *over = base ? matchingSource(
                                           merge, OssLayerStreamUtils::overInputName(first), "Over")
                                            : nullptr;
    if (!base || !over)
        return;
    const bool allMatch = std::all_of(inputs.cbegin(), inputs.cend(), [&](const QString &input) {
        const QString stream = model->input(input)->streamName();
        return merge->inputNode(OssLayerStreamUtils::baseInputName(stream)) == base
               && merge->inputNode(OssLayerStreamUtils::overInputName(stream)) == over;
    });
    if (!allMatch) {
        OssDebug(Source, __LINE__,
                 "Not batch swapping the inputs for Multi-Channel Merge Node because not all the "
                 "input ports match up between two source Multi-Channel nodes.");
        return;
    }
    const OssUndoManager::AutoMacro macro(tr("Batch Swap Inputs"));
    merge->batchConnectInputNode(OssLayerStreamUtils::baseInputName({}), over);
    merge->batchConnectInputNode(OssLayerStreamUtils::overInputName({}), base);
}

// --- groups and port lists

namespace {

QList<OssSnGroupNodeGraphViewContext *> groupsAmong(const QList<QGraphicsItem *> &items)
{
    QList<OssSnGroupNodeGraphViewContext *> groups;
    for (QGraphicsItem *item : items) {
        const auto *guiNode = dynamic_cast<OssNgNode *>(item);
        const auto *group = guiNode ? qobject_cast<OssSnGroupNode *>(guiNode->businessNode())
                                    : nullptr;
        if (auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
                OssSnNodeGraphViewContextManager::contextOf(group)))
            groups.append(context);
    }
    return groups;
}

} // namespace

void OssShaderNetworkView::openGroupNodeSubgraph()
{
    const auto groups = groupsAmong(sortedSelection());
    if (!groups.isEmpty())
        groups.first()->showGroupNodeTab();
    else if (!sortedSelection().isEmpty())
        tellUser(tr("No group is selected"));
}

void OssShaderNetworkView::openGroupsBehind()
{
    const auto groups = groupsAmong(sortedSelection());
    for (OssSnGroupNodeGraphViewContext *group : groups)
        group->showGroupNodeTabBehind();
    if (groups.isEmpty() && !sortedSelection().isEmpty())
        tellUser(tr("No group is selected"));
}

template <class Change>
void OssShaderNetworkView::changePortLists(const char *missingContext, Change change)
{
    bool hasPorts = false;
    const QList<OssSnBaseNode *> selected = selectedNodes();
    for (const OssSnBaseNode *node : selected) {
        const OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContextManager::contextOf(
            node);
        if (!context) {
            OssDebug(Source, __LINE__, "%s", missingContext);
            continue;
        }
        if (auto *extended = qobject_cast<OssNgExtendedNode *>(context->guiNode())) {
            change(extended);
            hasPorts = true;
        }
    }
    if (!hasPorts && !selected.isEmpty())
        tellUser(tr("What is selected has no ports"));
}

void OssShaderNetworkView::togglePortVisibility()
{
    changePortLists("OssShaderNetworkView::togglePortVisibility NULL NodeGraphView context while "
                    "obtaining selected nodes",
                    [](OssNgExtendedNode *item) { item->togglePortVisibility(); });
}

void OssShaderNetworkView::cyclePortListMode()
{
    changePortLists("OssShaderNetworkView::cyclePortListMode NULL NodeGraphView context while "
                    "obtaining selected nodes",
                    [](OssNgExtendedNode *item) { item->cyclePortListMode(); });
}
