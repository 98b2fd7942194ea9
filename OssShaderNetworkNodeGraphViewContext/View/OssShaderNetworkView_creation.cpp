#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Layers/OssMaterialPaintManager.h"
#include "OssModel/Nodes/OssLayerShaderModelManager.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Nodes/OssSnMultiChannelBakePointNode.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"

#include <QAction>

// Making nodes at a point of the viewport.

namespace {

constexpr const char *Source = "OssShaderNetworkView";
const QString PaintKey = QStringLiteral("Misc/Channel Input");
const QString BakePointKey = QStringLiteral("Misc/Bake Point");
const QString MergeKey = QStringLiteral("Layer/Merge");
const QString BackdropKey = QStringLiteral("Misc/Backdrop");
const QString MaterialKey = QStringLiteral("_System/Material");
const QString MultiChannelBakePointKey = QStringLiteral("_System/MultiChannelBakePoint");
const QString ReconfigureAttribute = QStringLiteral("_reconfigureBakepoints");

void tellOfChange()
{
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

/// The input to which the next selected node is wired: a preferred one first, then in order; hidden
/// ones never. Empty when none is left.
QString nextFreeInput(const OssSnBaseNode *node)
{
    QString first;
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (port.source || node->hasInputTag(port.name, OssSnTags::hidden()))
            continue;
        if (port.preferred)
            return port.name;
        if (first.isEmpty())
            first = port.name;
    }
    return first;
}

} // namespace

QPoint OssShaderNetworkView::creationPoint() const
{
    if (m_menuPoint)
        return *m_menuPoint;
    const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
    const QRect visible = viewport()->rect();
    return visible.contains(pointer) ? pointer : visible.center();
}

void OssShaderNetworkView::createNodeFromAction(QAction *Action)
{
    const QString key = Action ? Action->data().toString() : QString();
    if (key.isEmpty())
        return;
    const QPoint position = creationPoint();
    if (key == MergeKey)
        createMergeNode(position);
    else
        createChosenNode(key, position);
}

void OssShaderNetworkView::createChosenNode(const QString &pathKey, const QPoint &viewPos)
{
    if (pathKey == PaintKey)
        createPaintableNode(viewPos);
    else if (pathKey == BakePointKey)
        createBakePointNode(viewPos);
    else
        createNodeAt(pathKey, viewPos);
}

OssSnBaseNode *OssShaderNetworkView::createNodeAt(const QString &pathKey, const QPoint &viewPos)
{
    if (!hasNetwork())
        return nullptr;
    OssUndoManager::AutoMacro macro(
        tr("Create Node : %1").arg(pathKey.section(QLatin1Char('/'), -1)));
    const QList<OssSnBaseNode *> sources = selectedBusinessNodesInOrder();
    const QRectF bounds = pathKey == BackdropKey && selectionCount() > 0 ? selectionBounds()
                                                                         : QRectF();
    const QList<OssSnBaseNode *> made = m_network->createNodes(pathKey);
    if (made.size() != 1) {
        macro.cancel();
        tellUser(tr("There is no kind of node \"%1\"").arg(pathKey));
        return nullptr;
    }
    OssSnBaseNode *node = made.first();
    placeNewNode(node, viewPos);
    Q_EMIT nodeAdded(node);
    completeNewNode(node, bounds);
    autoConnect(node, sources);
    Backdrops::settleNew(node);
    tellOfChange();
    return node;
}

void OssShaderNetworkView::placeNewNode(OssSnBaseNode *node, const QPoint &viewPos)
{
    if (OssNgNode *item = itemOf(node)) {
        item->setPosition(mapToScene(viewPos));
        // A backdrop lies behind others: where it was wanted, or around what was selected.
        if (node->pathKey() != BackdropKey)
            placeNodeInSight(node);
    }
    if (m_network->node(node->name()) != node)
        node->setName(m_network->generateUniqueNodeName(node->name()));
    if (scene())
        scene()->clearSelection();
    node->setSelected(true);
}

void OssShaderNetworkView::completeNewNode(OssSnBaseNode *node, const QRectF &selection)
{
    const QString key = node->pathKey();
    if (key == MaterialKey && node->hasTag(OssSnTags::shader())) {
        if (auto *material = qobject_cast<OssSnMaterialNode *>(node))
            material->connectPreviewShaderNetwork();
    } else if (key == BackdropKey) {
        completeNewBackdrop(node, selection);
    } else if (key == MultiChannelBakePointKey && node->exists(ReconfigureAttribute)) {
        if (auto *bakes = qobject_cast<OssSnMultiChannelBakePointNode *>(node))
            bakes->configureBakepoints();
        node->removeUserAttribute(ReconfigureAttribute);
    }
}

void OssShaderNetworkView::completeNewBackdrop(OssSnBaseNode *node, const QRectF &selection)
{
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(node));
    if (!backdrop)
        return;
    // As an attribute, so that it is saved; the item follows.
    node->setAttribute(QStringLiteral("TitleText"), node->name());
    backdrop->setTitleText(node->name());
    if (!selection.isEmpty())
        backdrop->wrapAroundSelection(selection);
    backdrop->refreshChildrenList();
}

// --- wiring to what was selected

QList<OssSnBaseNode *> OssShaderNetworkView::selectedBusinessNodesInOrder() const
{
    QList<OssSnBaseNode *> nodes;
    const QList<QGraphicsItem *> items = sortedSelection();
    for (QGraphicsItem *item : items) {
        const auto *guiNode = dynamic_cast<OssNgNode *>(item);
        auto *node = guiNode ? qobject_cast<OssSnBaseNode *>(guiNode->businessNode()) : nullptr;
        if (node && !node->hasTag(OssSnTags::viewer()))
            nodes.append(node);
    }
    return nodes;
}

bool OssShaderNetworkView::connectStreams(OssSnBaseNode *source, OssSnBaseNode *node)
{
    const auto pair = OssLayerShaderModelManager::instance()->matchingShaderModelNodePair(source,
                                                                                          node);
    if (!pair.first)
        return false;
    const QStringList streams = pair.second->shaderModel()->inputList();
    const auto isFree = [&](const QString &input) {
        return node->hasInput(input) && !node->inputNode(input);
    };
    for (const bool over : {false, true}) {
        const QString role = over ? OssLayerStreamUtils::overInputName({})
                                  : OssLayerStreamUtils::baseInputName({});
        const QString first = over ? OssLayerStreamUtils::overInputName(streams.first())
                                   : OssLayerStreamUtils::baseInputName(streams.first());
        if (isFree(first) && pair.second->batchConnectInputNode(role, pair.first))
            return true;
    }
    bool connected = false;
    for (const QString &stream : streams) {
        const QString input = OssLayerStreamUtils::inputName(stream);
        if (isFree(input) && source->hasOutputPoint(stream))
            connected = node->setInputNode(input, source, stream) || connected;
    }
    return connected;
}

bool OssShaderNetworkView::connectNext(OssSnBaseNode *source, OssSnBaseNode *node)
{
    if (connectStreams(source, node))
        return true;
    if (OssLayerStreamUtils::isMergeNode(node))
        return OssMaterialPaintManager::instance()->autoconnectMergeNode(source, node);
    if (node->hasTag(OssSnTags::shader()) && OssShaderNetworkUtils::batchConnect(source, node))
        return true;
    return node->setInputNode(nextFreeInput(node), source, source->prefferedOutputPoint());
}

void OssShaderNetworkView::autoConnect(OssSnBaseNode *node, const QList<OssSnBaseNode *> &sources)
{
    if (node->inputPorts().isEmpty() && node->outputPoints().isEmpty())
        return; // backdrops and notes
    for (OssSnBaseNode *source : sources) {
        if (source->prefferedOutputPoint().isEmpty()) {
            OssDebug(Source, __LINE__,
                     "[ -- ] Selected node '%s' has no output, skipping autoconnecting to it",
                     qPrintable(source->name()));
            continue;
        }
        if (nextFreeInput(node).isEmpty()) {
            OssDebug(Source, __LINE__, "* No more inputs to connect to, stop autoconnect.");
            return;
        }
        const QList<OssSnBaseNode *> before = node->inputNodes();
        connectNext(source, node);
        const QList<OssSnBaseNode *> now = node->inputNodes();
        for (int input = 0; input < now.size(); ++input) {
            if (now.at(input) == before.at(input))
                continue;
            OssDebug(Source, __LINE__,
                     "[ -- ] Autoconnect selected node ['%s', outputCount:'%s'] to new node['%s', "
                     "input(%d):'%s']",
                     qPrintable(source->name()),
                     qPrintable(QString::number(source->outputPointCount())),
                     qPrintable(node->name()), input, qPrintable(node->inputNames().at(input)));
        }
    }
}

// --- kinds with commands of their own

void OssShaderNetworkView::createPaintableNode()
{
    createPaintableNode(creationPoint());
}

void OssShaderNetworkView::createPaintableNode(QPoint NodeViewPos)
{
    if (!hasNetwork())
        return;
    const OssUndoManager::AutoMacro macro(tr("Add Paint Node"));
    OssSnBaseNode *node = m_network->createPaintableNode(mapToScene(NodeViewPos));
    if (node) {
        placeNewNode(node, NodeViewPos);
        Backdrops::settleNew(node);
    }
    tellOfChange();
}

void OssShaderNetworkView::createBakePointNode()
{
    createBakePointNode(creationPoint());
}

void OssShaderNetworkView::createBakePointNode(QPoint NodeViewPos)
{
    if (!hasNetwork())
        return;
    const OssUndoManager::AutoMacro outer(tr("Add Bake Point Node"));
    const QList<OssSnBaseNode *> sources = selectedBusinessNodesInOrder();
    OssUndoManager::AutoMacro macro(tr("Add Bake Point"));
    OssSnBaseNode *node = m_network->createPaintableNode(mapToScene(NodeViewPos), BakePointKey);
    if (!node) {
        macro.cancel();
        return;
    }
    // What is not baked is transparent, so that it can lie over anything.
    node->setAttribute(QStringLiteral("limitBakeBackground"),
                       QVariant::fromValue(OssColor(0.0, 0.0, 0.0, 0.0)));
    placeNewNode(node, NodeViewPos);
    Q_EMIT nodeAdded(node);
    autoConnect(node, sources);
    Backdrops::settleNew(node);
    tellOfChange();
}

void OssShaderNetworkView::createMergeNode()
{
    createMergeNode(creationPoint());
}

void OssShaderNetworkView::createMergeNode(QPoint NodeViewPos)
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> sources = selectedBusinessNodesInOrder();
    const auto *first = qobject_cast<OssSnMultiChannelGroupNode *>(sources.value(0));
    const OssLayerShaderModel *model = first ? first->shaderModel() : nullptr;
    if (!model) {
        createNodeAt(MergeKey, NodeViewPos);
        return;
    }
    OssUndoManager::AutoMacro macro(tr("Create Multi-Channel Merge"));
    OssSnMultiChannelMergeNode *node = m_network->createMultiChannelMergeNode(model);
    if (!node) {
        macro.cancel();
        return;
    }
    placeNewNode(node, NodeViewPos);
    Q_EMIT nodeAdded(node);
    autoConnect(node, sources);
    Backdrops::settleNew(node);
    tellOfChange();
}
