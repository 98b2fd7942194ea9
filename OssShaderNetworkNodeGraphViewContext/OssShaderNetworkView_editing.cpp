#include "OssShaderNetworkView.h"

#include "OssCore/OssDebug.h"
#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Layers/OssLayerShaderManager.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"
#include "OssNodeGraph/OssNgExtendedNode.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

namespace {

constexpr const char *Source = "OssShaderNetworkView";

void tellOfChange()
{
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
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
        if (node->hasTag(QStringLiteral("_GraphLayerInput")))
            OssDebug(Source, __LINE__,
                     "[ -- ] Node '%s' cannot be removed by the user, it's a protected graph layer "
                     "node",
                     qPrintable(node->name()));
        else
            nodes.insert(node);
    }
    const OssUndoManager::AutoMacro macro(tr("Remove Selected Nodes"));
    m_network->removeNodes(nodes);
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
}

void OssShaderNetworkView::extractSelectedNode()
{
    const QList<OssSnBaseNode *> selected = selectedNodes();
    if (!selected.isEmpty())
        selected.first()->network()->extractNodes(selected, true);
}

void OssShaderNetworkView::disableSelectedNodes()
{
    if (!hasNetwork())
        return;
    QList<OssSnBaseNode *> nodes;
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    for (OssSnBaseNode *node : selected) {
        if (!node->hasTag(QStringLiteral("_viewer")))
            nodes.append(node);
    }
    QString title = tr("Toggle Selected Nodes");
    if (nodes.size() == 1)
        title = (nodes.first()->enabledAsBool() ? tr("Disable ") : tr("Enable "))
                + nodes.first()->name();
    const OssUndoManager::AutoMacro macro(title);
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

void OssShaderNetworkView::selectAll()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> nodes = m_network->nodes();
    for (OssSnBaseNode *node : nodes) {
        if (!OssLayerShaderManager::instance()->isSystemShaderNode(node, true))
            node->setSelected(true);
    }
}

void OssShaderNetworkView::openGroupNodeSubgraph()
{
    const QList<QGraphicsItem *> selected = sortedSelection();
    for (QGraphicsItem *item : selected) {
        const auto *guiNode = dynamic_cast<OssNgNode *>(item);
        const auto *group = guiNode ? qobject_cast<OssSnGroupNode *>(guiNode->businessNode())
                                    : nullptr;
        auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
            OssSnNodeGraphViewContextManager::contextOf(group));
        if (context) {
            context->showGroupNodeTab();
            return;
        }
    }
}

template <class Change>
void OssShaderNetworkView::changePortLists(const char *missingContext, Change change)
{
    const QList<OssSnBaseNode *> selected = selectedNodes();
    for (const OssSnBaseNode *node : selected) {
        const OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContextManager::contextOf(
            node);
        if (!context) {
            OssDebug(Source, __LINE__, "%s", missingContext);
            continue;
        }
        if (auto *extended = qobject_cast<OssNgExtendedNode *>(context->guiNode()))
            change(extended);
    }
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
