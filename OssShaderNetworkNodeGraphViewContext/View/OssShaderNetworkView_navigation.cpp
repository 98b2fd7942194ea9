#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnUINodeGraphViewContext.h"

#include <QGraphicsScene>

// Selecting along the graph. Selection is no part of the document: nothing here is undone.

namespace {

constexpr const char *Source = "OssShaderNetworkView";

using Nodes = QList<OssSnBaseNode *>;

bool isSystemNode(const OssSnBaseNode *node)
{
    return OssLayerShaderManager::instance()->isSystemShaderNode(node, true);
}

void select(const Nodes &nodes, bool selected)
{
    for (OssSnBaseNode *node : nodes) {
        if (node)
            node->setSelected(selected);
    }
}

template <class Gather>
Nodes gatherFromAll(const Nodes &starts, Gather gather)
{
    Nodes found;
    for (OssSnBaseNode *start : starts)
        found.append(gather(start));
    found.removeAll(nullptr);
    return found;
}

/// At the end of the graph the selection stays rather than fall to nothing. Whether something was
/// found is returned, also where nothing was asked for.
template <class Gather>
bool goOn(const Nodes &starts, Gather gather, bool add)
{
    const Nodes found = gatherFromAll(starts, gather);
    if (found.isEmpty())
        return starts.isEmpty();
    if (!add)
        select(starts, false);
    select(found, true);
    return true;
}

/// Walks may leave the network; what is selected does not. All starts stand in the same one. Whether
/// there was something to add is returned, also where nothing was asked for.
bool addWithinNetwork(const Nodes &starts, const Nodes &found)
{
    bool added = starts.isEmpty();
    for (OssSnBaseNode *node : found) {
        if (node->network() != starts.first()->network())
            continue;
        added = added || !node->selected();
        node->setSelected(true);
    }
    return added;
}

Nodes sources(OssSnBaseNode *node)
{
    return node->inputNodes();
}

Nodes followers(OssSnBaseNode *node)
{
    return node->outputNodes();
}

Nodes nextOf(OssSnBaseNode *node)
{
    return {OssShaderNetworkUtils::nextSibling(node)};
}

Nodes previousOf(OssSnBaseNode *node)
{
    return {OssShaderNetworkUtils::prevSibling(node)};
}

} // namespace

QList<OssSnBaseNode *> OssShaderNetworkView::selectedBusinessNodes() const
{
    Nodes nodes;
    const QList<QGraphicsItem *> items = scene() ? scene()->selectedItems()
                                                 : QList<QGraphicsItem *>();
    for (QGraphicsItem *item : items) {
        const auto *guiNode = dynamic_cast<OssNgNode *>(item);
        auto *node = guiNode ? qobject_cast<OssSnBaseNode *>(guiNode->businessNode()) : nullptr;
        if (node && !isSystemNode(node))
            nodes.append(node);
    }
    return nodes;
}

void OssShaderNetworkView::selectAllUpstream()
{
    const Nodes starts = selectedBusinessNodes();
    if (!addWithinNetwork(starts, OssShaderNetworkUtils::getUpstreamNodes(starts, true, true)))
        tellUser(tr("Nothing more goes into what is selected"));
}

void OssShaderNetworkView::selectAllDownstream()
{
    const Nodes starts = selectedBusinessNodes();
    if (!addWithinNetwork(starts, OssShaderNetworkUtils::getDownstreamNodes(starts, true, true)))
        tellUser(tr("Nothing more follows what is selected"));
}

void OssShaderNetworkView::selectStreamUpstream()
{
    const Nodes starts = selectedBusinessNodes();
    if (!addWithinNetwork(starts, OssShaderNetworkUtils::getUpstreamNodes(starts, true, false)))
        tellUser(tr("Nothing more goes into what is selected"));
}

void OssShaderNetworkView::selectStreamDownstream()
{
    const Nodes starts = selectedBusinessNodes();
    if (!addWithinNetwork(starts, OssShaderNetworkUtils::getDownstreamNodes(starts, true, false)))
        tellUser(tr("Nothing more follows what is selected"));
}

void OssShaderNetworkView::selectUpstream()
{
    if (!goOn(selectedBusinessNodes(), sources, false))
        tellUser(tr("Nothing goes into what is selected"));
}

void OssShaderNetworkView::selectDownstream()
{
    if (!goOn(selectedBusinessNodes(), followers, false))
        tellUser(tr("Nothing follows what is selected"));
}

void OssShaderNetworkView::addSelectUpstream()
{
    if (!goOn(selectedBusinessNodes(), sources, true))
        tellUser(tr("Nothing goes into what is selected"));
}

void OssShaderNetworkView::addSelectDownstream()
{
    if (!goOn(selectedBusinessNodes(), followers, true))
        tellUser(tr("Nothing follows what is selected"));
}

void OssShaderNetworkView::selectNextSibling()
{
    if (!goOn(selectedBusinessNodes(), nextOf, false))
        tellUser(tr("Nothing stands beside what is selected"));
}

void OssShaderNetworkView::selectPrevSibling()
{
    if (!goOn(selectedBusinessNodes(), previousOf, false))
        tellUser(tr("Nothing stands beside what is selected"));
}

void OssShaderNetworkView::addSelectNextSibling()
{
    if (!goOn(selectedBusinessNodes(), nextOf, true))
        tellUser(tr("Nothing stands beside what is selected"));
}

void OssShaderNetworkView::addSelectPrevSibling()
{
    if (!goOn(selectedBusinessNodes(), previousOf, true))
        tellUser(tr("Nothing stands beside what is selected"));
}

void OssShaderNetworkView::selectBetween()
{
    const Nodes starts = selectedBusinessNodes();
    if (starts.size() < 2) {
        tellUser(tr("Select two nodes or more to find what is between them"));
        return;
    }
    const Nodes between = OssShaderNetworkUtils::nodesBetween(starts);
    if (between.isEmpty())
        tellUser(tr("Nothing is between the selected nodes"));
    select(between, true);
}

void OssShaderNetworkView::selectContents()
{
    Nodes contents;
    for (const OssSnBaseNode *start : selectedBusinessNodes()) {
        const auto *context = qobject_cast<const OssSnUINodeGraphViewContext *>(
            start->viewContext());
        contents.append(context ? context->childrenNodes() : Nodes());
    }
    if (contents.isEmpty())
        tellUser(tr("Select a backdrop with nodes on it"));
    select(contents, true);
}

void OssShaderNetworkView::selectAll()
{
    if (!m_network) {
        OssDebug(Source, __LINE__, "m_network is NULL");
        return;
    }
    const Nodes nodes = m_network->nodes();
    for (OssSnBaseNode *node : nodes) {
        if (!isSystemNode(node))
            node->setSelected(true);
    }
}
