#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Dialogs/OssNodeInfoDialog.h"
#include "OssInterface/Dialogs/OssSearchNodeDialog.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssNodeSuffixes.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

// Finding what to look at, node files, and telling about nodes.

namespace {

constexpr const char *Source = "OssShaderNetworkView";

} // namespace

void OssShaderNetworkView::searchNodesAction()
{
    if (!hasNetwork() || !hasScene())
        return;
    const QList<OssSnBaseNode *> nodes = m_network->getAllNodes();
    OssDebug(Source, __LINE__, "[ !! ] Found %d nodes in the network", nodes.size());
    OssSearchNodeDialog dialog(nodes, viewport());
    dialog.setColors(OssSnNodeGraphViewContext::categoryColor);
    dialog.placeAt(viewport(), creationPoint());
    OssSnBaseNode *node = dialog.exec() == QDialog::Accepted ? dialog.chosenNode() : nullptr;
    if (!node)
        return;
    const OssUndoManager::AutoMacro macro(tr("Focus on %1").arg(node->name()));
    if (dialog.wantsProperties())
        OssShaderNetworkManager::instance()->requestProperties(node);
    if (node->network() != m_network) {
        OssShaderNetworkManager::instance()->goToNode(node); // it is in a group
        return;
    }
    scene()->clearSelection();
    OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
    if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(item))
        backdrop->setSelected(true);
    else
        node->setSelected(true);
    frameSelectedNodes();
    flashNode(item);
}

// --- files

void OssShaderNetworkView::exportNodes()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (nodes.isEmpty()) {
        tellUser(tr("Select the nodes to export first"));
        return;
    }
    const QString path = OssFileDialog::getSaveFileName(
        tr("Export Nodes to File"), OssNodeSuffixes::filter(OssNodeSuffixes::Nodes),
        OssResourceInfo::instance()->defaultExportNodeGraphPathKey(), this, nodes.first()->name());
    if (path.isEmpty())
        return;
    const OssResult result = OssShaderNetworkIO::saveNodesToXmlFile(nodes, path);
    if (!result)
        OssMessageBox::warning(this, tr("Export Nodes to File"), result.error());
}

void OssShaderNetworkView::importNodes()
{
    if (!hasNetwork() || !hasScene())
        return;
    const QPoint cursor = creationPoint();
    const QString path = OssFileDialog::getOpenFileName(
        tr("Import Nodes from File"), OssNodeSuffixes::filter(OssNodeSuffixes::Nodes),
        OssResourceInfo::instance()->defaultImportNodeGraphPathKey(), this);
    if (path.isEmpty())
        return;
    importAndTell({path}, cursor, NodeFileKind::nodes());
}

void OssShaderNetworkView::importFiles(const QStringList &paths, const NodeFileKind &kind,
                                       NodeImport *import)
{
    if (!hasNetwork() || !hasScene() || paths.isEmpty())
        return;
    OssUndoManager::AutoMacro macro(kind.macroTitle);
    QList<QList<OssSnBaseNode *>> files;
    QList<OssSnBaseNode *> all;
    QStringList errors;
    for (const QString &path : paths) {
        QList<OssSnBaseNode *> nodes;
        const OssResult result = kind.import(m_network, path, &nodes);
        if (!result)
            errors.append(result.error());
        files.append(nodes);
        all.append(nodes);
    }
    if (!errors.isEmpty()) {
        macro.cancel();
        import->refuse(kind.errorTitle, errors);
        return;
    }
    OssShaderNetworkManager::instance()->upgradeNetworks(all);
    for (const QList<OssSnBaseNode *> &nodes : qAsConst(files))
        placeInsertedNodes(nodes, import);
    m_network->selectOnly(import->nodes);
}

void OssShaderNetworkView::importAndTell(const QStringList &paths, const QPoint &viewPos,
                                         const NodeFileKind &kind)
{
    NodeImport import{mapToScene(viewPos), {}, {}, {}};
    importFiles(paths, kind, &import);
    import.tellErrors();
}

void OssShaderNetworkView::importMaterial()
{
    if (!hasNetwork() || !hasScene())
        return;
    const QPoint cursor = creationPoint();
    importMaterial(OssFileDialog::getOpenFileNames(
                       tr("Import Material from Archive"),
                       OssNodeSuffixes::filter(OssNodeSuffixes::Material),
                       OssResourceInfo::instance()->defaultMaterialPathKey(), this),
                   cursor);
}

void OssShaderNetworkView::importMaterial(QStringList PathList, QPoint NodeViewPos)
{
    importAndTell(PathList, NodeViewPos, NodeFileKind::material());
}

void OssShaderNetworkView::importCustomProcedural()
{
    if (!hasNetwork() || !hasScene())
        return;
    const QPoint cursor = creationPoint();
    importCustomProcedural(OssFileDialog::getOpenFileNames(
                               tr("Import Custom Procedural from Archive"),
                               OssNodeSuffixes::filter(OssNodeSuffixes::CustomProcedural),
                               OssResourceInfo::instance()->defaultCustomProceduralPathKey(), this),
                           cursor);
}

void OssShaderNetworkView::importCustomProcedural(QStringList PathList, QPoint NodeViewPos)
{
    importAndTell(PathList, NodeViewPos, NodeFileKind::customProcedural());
}

// --- telling

void OssShaderNetworkView::printNodeInfo()
{
    if (!hasNetwork() || !hasScene())
        return;
    OssNodeInfoDialog dialog(m_network->selectedNodes(), this);
    dialog.exec();
}

void OssShaderNetworkView::dumpSelectedNodeInfo()
{
    if (!hasNetwork())
        return;
    QStringList dumps;
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    for (const OssSnBaseNode *node : nodes)
        dumps.append(node->dumpNodeInfo());
    tellUser(nodes.isEmpty() ? tr("Dump Selected Node Info: select a node first")
                             : tr("The log tells what the selected nodes are made of"));
    OssDebugTitle(Source, __LINE__, "Dump Selected Shader Node Info", "%s",
                  qPrintable(dumps.join(QLatin1Char('\n'))));
}

void OssShaderNetworkView::dumpNodeUIAction()
{
    if (!scene())
        return;
    const QRectF all = scene()->itemsBoundingRect();
    const QRectF whole = scene()->sceneRect();
    const QList<QGraphicsItem *> items = scene()->selectedItems();
    for (QGraphicsItem *item : items) {
        const auto *node = dynamic_cast<OssNgNode *>(item);
        const QRectF own = item->sceneBoundingRect();
        const auto text = [](const QRectF &rect) {
            return QString::asprintf("lt(%f, %f), rb(%f, %f), c(%f, %f), h(%f), w(%f)", rect.left(),
                                     rect.top(), rect.right(), rect.bottom(), rect.center().x(),
                                     rect.center().y(), rect.height(), rect.width());
        };
        OssDebug(Source, __LINE__, "[ !! ] --%s, p(%f, %f), sp(%f, %f), sbr[%s], ibr[%s], sr[%s]",
                 node ? qPrintable(node->objectName()) : "", item->pos().x(), item->pos().y(),
                 item->scenePos().x(), item->scenePos().y(), qPrintable(text(own)),
                 qPrintable(text(all)), qPrintable(text(whole)));
    }
}
