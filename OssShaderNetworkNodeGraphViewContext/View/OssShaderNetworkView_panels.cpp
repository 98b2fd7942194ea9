#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssGroupNodeKnobWidget.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssShaderNetworkUpgradeView.h"

// Commands that open panels: properties, knobs, versions.

namespace {

constexpr const char *Source = "OssShaderNetworkView";

/// A line for each.
QString pathsOf(const QList<OssSnBaseNode *> &nodes)
{
    QStringList paths;
    for (const OssSnBaseNode *node : nodes)
        paths.append(node->path());
    return paths.join(QLatin1Char('\n'));
}

} // namespace

void OssShaderNetworkView::openNodeProperties()
{
    const QList<OssSnBaseNode *> nodes = selectedBusinessNodes();
    for (OssSnBaseNode *node : nodes)
        Q_EMIT nodeDoubleClicked(node);
}

void OssShaderNetworkView::manageUserKnobs()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> nodes = selectedNodes();
    for (OssSnBaseNode *node : nodes) {
        auto *group = qobject_cast<OssSnGroupNode *>(node);
        if (!group)
            continue;
        OssGroupNodeKnobDialog dialog(group);
        dialog.resize(600, 400);
        dialog.exec();
        return;
    }
    // Inside a group its own knobs are meant.
    if (OssSnGroupNode *around = m_network->parentGroupNode()) {
        OssGroupNodeKnobDialog dialog(around);
        dialog.resize(600, 400);
        dialog.exec();
    }
}

void OssShaderNetworkView::exposeNodeProperties()
{
    if (!hasNetwork())
        return;
    OssSnGroupNode *group = m_network->parentGroupNode();
    if (!group)
        return;
    const OssUndoManager::AutoMacro macro(tr("Expose Node Properties"));
    const QList<OssSnBaseNode *> nodes = selectedNodes();
    for (OssSnBaseNode *node : nodes) {
        if (!OssSnGroupNode::offersKnobs(node))
            continue;
        const QStringList names = node->userAttributeNames();
        for (const QString &name : names) {
            if (!name.startsWith(QLatin1Char('_')))
                group->createKnob(node, name);
        }
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

void OssShaderNetworkView::upgradeSelectedNodeInfo()
{
    if (!hasNetwork())
        return;
    QList<OssSnBaseNode *> selected;
    const QList<OssSnBaseNode *> nodes = m_network->getAllNodes();
    for (OssSnBaseNode *node : nodes) {
        if (node->selected())
            selected.append(node);
    }
    OssDebugTitle(Source, __LINE__, "Upgrade Selected Shader Node Info", "%s",
                  qPrintable(pathsOf(selected)));
    upgradeNodeInfo(selected);
}

void OssShaderNetworkView::upgradeAllNodeInfo()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> nodes = m_network->getAllNodes();
    OssDebugTitle(Source, __LINE__, "Upgrade All Shader Node Info", "%s",
                  qPrintable(pathsOf(nodes)));
    upgradeNodeInfo(nodes);
}

void OssShaderNetworkView::upgradeNodeInfo(QList<OssSnBaseNode *> Nodes)
{
    OssShaderNetworkUpgradeView dialog(this);
    dialog.populateNodes(Nodes);
    dialog.exec();
}
