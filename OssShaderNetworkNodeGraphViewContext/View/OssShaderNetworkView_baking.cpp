#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Dialogs/OssBakeDialog.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Evaluation/OssNodeBake.h"
#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssShadingContext.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QDir>
#include <QInputDialog>

#include <algorithm>

// Pixels into images: bake points, paint nodes, geo-channels.

namespace {

constexpr const char *Source = "OssShaderNetworkView";

/// A bake that did not come about is told to who asked for it; who stopped it needs no box.
void tell(const QString &title, const OssResult &result)
{
    if (result.isCancelled())
        OssStatusManager::instance()->showMessage(result.error());
    else if (!result)
        OssMessageBox::warning(nullptr, title, result.error());
}

/// With a user the work goes on beside others; scripts and commands wait for it.
void start(OssNodeBake bake, const QString &title)
{
    if (OssApplication::popupsAllowed())
        OssBakeManager::instance()->start(std::move(bake));
    else
        tell(title, bake.run());
}

/// A new paint node from which takes what took from the output. Null where there can be none.
OssSnImageSetNodeBase *paintNodeInsteadOf(OssSnBaseNode *source, const QString &outputPoint)
{
    OssShaderNetwork *network = source ? source->network() : nullptr;
    OssShadingContext *shading = network ? network->shadingContext() : nullptr;
    auto *paint = shading ? qobject_cast<OssSnImageSetNodeBase *>(network->createPaintableNode({}))
                          : nullptr;
    OssImageSet *empty = paint ? paint->imageSet() : nullptr;
    if (!empty)
        return nullptr;
    OssImageSet *set = empty->duplicate(
        shading->freeImageSetName(QStringLiteral("Node_Bake_") + empty->name()));
    shading->addImageSet(set); // takes it
    paint->setImageSet(set, true);
    shading->removeImageSet(empty);
    // A copy: wires leave the list while they are moved.
    const QVector<OssSnBaseNode::OutgoingConnection> edges = source->outgoingConnections();
    for (const OssSnBaseNode::OutgoingConnection &edge : edges) {
        if (edge.outputPoint == outputPoint)
            edge.target->setInputNode(edge.input, paint, paint->prefferedOutputPoint());
    }
    paint->positionNodeOnTopIndented(source);
    return paint;
}

} // namespace

// --- bake points

void OssShaderNetworkView::bake(const QList<OssSnBakePointNode *> &nodes, OssBakeManager::Which how,
                                const char *messageForNone)
{
    if (nodes.isEmpty()) {
        OssDebug(Source, __LINE__, "[ !! ] %s", messageForNone);
        tellUser(tr(messageForNone));
        return;
    }
    // With a user the work goes on beside others; scripts and commands wait for it.
    if (OssApplication::popupsAllowed()) {
        if (how == OssBakeManager::OutOfDate || OssBakeDialog::ask(nodes))
            OssBakeManager::instance()->start(nodes, how);
        return;
    }
    OssBakeReport report;
    const OssResult baked = how == OssBakeManager::Again
                                ? OssShaderNetworkUtils::bakeAgain(nodes, &report)
                                : OssShaderNetworkUtils::bakeBakePoints(
                                    nodes, true, how == OssBakeManager::EmptyAndOutOfDate, &report);
    tell(tr("Bake"), baked);
    tellUser(report.inWords());
}

void OssShaderNetworkView::bakeEmptyAndUpdateOutOfDateBakePoints()
{
    if (hasNetwork())
        bake(OssShaderNetworkUtils::bakePointsAmong(m_network->getAllNodes()),
             OssBakeManager::EmptyAndOutOfDate, QT_TR_NOOP("No Bake Point nodes found"));
}

void OssShaderNetworkView::bakeSelectedBakePoints()
{
    if (hasNetwork())
        bake(OssShaderNetworkUtils::bakePointsAmong(m_network->selectedNodes()),
             OssBakeManager::EmptyAndOutOfDate, QT_TR_NOOP("No Bake Point nodes are selected"));
}

void OssShaderNetworkView::updateSelectedBakePoints()
{
    if (hasNetwork())
        bake(OssShaderNetworkUtils::bakePointsAmong(m_network->selectedNodes()),
             OssBakeManager::OutOfDate, QT_TR_NOOP("No Bake Point nodes are selected"));
}

void OssShaderNetworkView::bakeSelectedBakePointsAgain()
{
    if (hasNetwork())
        bake(OssShaderNetworkUtils::bakePointsAmong(m_network->selectedNodes()),
             OssBakeManager::Again, QT_TR_NOOP("No Bake Point nodes are selected"));
}

QList<OssSnBaseNode *> OssShaderNetworkView::selectionToBakeAround() const
{
    if (!hasNetwork())
        return {};
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    if (nodes.isEmpty()) {
        OssDebug(Source, __LINE__, "[ !! ] No nodes are selected");
        tellUser(tr("No nodes are selected"));
    }
    return nodes;
}

void OssShaderNetworkView::updateUpstreamBakePoints()
{
    const QList<OssSnBaseNode *> nodes = selectionToBakeAround();
    if (!nodes.isEmpty())
        bake(OssShaderNetworkUtils::getUpstreamBakePointNodes(nodes),
             OssBakeManager::EmptyAndOutOfDate, QT_TR_NOOP("No upstream Bake Point nodes found"));
}

void OssShaderNetworkView::updateDownstreamBakePoints()
{
    const QList<OssSnBaseNode *> nodes = selectionToBakeAround();
    if (!nodes.isEmpty())
        bake(OssShaderNetworkUtils::getDownstreamBakePointNodes(nodes),
             OssBakeManager::EmptyAndOutOfDate, QT_TR_NOOP("No downstream Bake Point nodes found"));
}

// --- paint nodes

void OssShaderNetworkView::bakePaintBufferToNode(const OssSnBaseNode *Node)
{
    const auto *images = qobject_cast<const OssSnImageSetNodeBase *>(Node);
    const OssImageSet *set = images ? images->imageSet() : nullptr;
    const OssChannel *channel = set ? set->channel() : nullptr;
    const OssShadingContext *context = channel ? channel->shadingContext() : nullptr;
    OssCanvasWidget *canvas = OssCanvasManager::instance()->currentCanvas();
    if (context && context->currentImageSet() && canvas)
        canvas->handleBakeBehavior(context->currentImageSet());
}

bool OssShaderNetworkView::chooseOutputPoint(const OssSnBaseNode *node, const QString &title,
                                             const QString &label, QString *outputPoint)
{
    *outputPoint = node->prefferedOutputPoint();
    const QStringList names = node->outputPointNames();
    if (!OssApplication::popupsAllowed() || names.size() < 2)
        return true;
    bool chosen = false;
    const QString name = QInputDialog::getItem(this, title, label, names,
                                               names.indexOf(*outputPoint), false, &chosen);
    if (chosen)
        *outputPoint = name;
    return chosen;
}

void OssShaderNetworkView::bakeToPaintableNode()
{
    if (!hasNetwork())
        return;
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    if (nodes.size() != 1) {
        OssMessageBox::warning(this, tr("Bake to Paintable Node"),
                               tr("Only one node must be selected for baking to a paintable node"));
        return;
    }
    const QPointer<OssSnBaseNode> source = nodes.first();
    OssNodeBake bake;
    if (!m_network->shadingContext()
        || !chooseOutputPoint(source, tr("Bake to Paintable"),
                              tr("Select the output port to bake at:"), &bake.outputPoint))
        return;
    bakePaintBufferToNode(source);
    const int resolution = OssImageManager::instance()->newResolution();
    auto like = std::make_shared<OssImageSet>(QString());
    like->setResolution(resolution);
    bake.title = tr("Bake to Paintable");
    bake.node = source;
    bake.like = like;
    bake.makeImages = [view = QPointer<OssShaderNetworkView>(this), source, resolution,
                       outputPoint = bake.outputPoint]() -> OssImageSet * {
        OssSnImageSetNodeBase *paint = paintNodeInsteadOf(source, outputPoint);
        if (!paint)
            return nullptr;
        paint->imageSet()->setResolution(resolution);
        if (view && view->network() == paint->network())
            view->showInsteadOf(source, paint);
        return paint->imageSet();
    };
    bake.message = tr("%1 is baked to a paint node").arg(source->name());
    start(std::move(bake), tr("Bake to Paintable Node"));
}

void OssShaderNetworkView::showInsteadOf(OssSnBaseNode *source, OssSnBaseNode *paint)
{
    placeNode(paint);
    // Who has gone on to other nodes meanwhile keeps those.
    OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(paint);
    if (item && scene() && m_network->selectedNodes() == QList<OssSnBaseNode *>{source}) {
        scene()->clearSelection();
        item->setSelected(true);
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

void OssShaderNetworkView::setImageSetByNameAction()
{
    if (!hasNetwork())
        return;
    const QString name = QInputDialog::getText(this, tr("Image Set Name"), tr("Image Set Name :"));
    const OssShadingContext *shading = m_network->shadingContext();
    OssImageSet *set = shading && !name.isEmpty() ? shading->findImageSet(name) : nullptr;
    if (!set) {
        if (!name.isEmpty())
            OssDebug(Source, __LINE__, "[ !! ] There are no images '%s'", qPrintable(name));
        return;
    }
    const OssUndoManager::AutoMacro macro(tr("Set Images %1").arg(name));
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    for (OssSnBaseNode *node : nodes) {
        if (OssSnImageSetNodeBase *images = OssShaderNetworkUtils::asTrueImageSetNode(node))
            images->setImageSet(set, true);
    }
}

// --- materials

void OssShaderNetworkView::generateMaterialPreview()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    const QList<OssSnBaseNode *> nodes = network ? network->selectedNodes()
                                                 : QList<OssSnBaseNode *>();
    const auto *material = nodes.size() == 1 ? qobject_cast<OssSnMaterialNode *>(nodes.first())
                                             : nullptr;
    if (!material) {
        OssDebug(Source, __LINE__,
                 "Only one nodes needs to be selected for material preview creation");
        return;
    }
    tell(tr("Thumbnail Generation Error"),
         material->generateMaterialThumbnail(
             QDir::current().filePath(QStringLiteral("MaterialPreview.png"))));
}

// --- geo-channels

void OssShaderNetworkView::exportToGeoChannel()
{
    exportToGeoChannel(nullptr);
}

void OssShaderNetworkView::exportToGeoChannel(OssGeoImageSet *pGeoImageSet)
{
    exportToGeoChannel(pGeoImageSet, {});
}

void OssShaderNetworkView::exportToGeoChannel(OssGeoImageSet *pGeoImageSet, QString OutputPointName)
{
    if (!hasNetwork())
        return;
    const QString title = tr("Export to Geo-Channel");
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    if (nodes.size() != 1) {
        OssMessageBox::warning(
            this, title, tr("Only one node must be selected for exporting to a geo-channel."));
        return;
    }
    const OssGeoEntity *entity = m_network->geoEntity();
    if (!entity) {
        OssDebug(Source, __LINE__, "pGeoEntity is NULL");
        return;
    }
    if (pGeoImageSet && pGeoImageSet->geoEntity() != entity) {
        OssMessageBox::warning(this, title,
                               tr("Node and geo-channel must belong to the same object."));
        return;
    }
    OssGeoImageSet *channel = pGeoImageSet ? pGeoImageSet : chooseGeoChannel(entity);
    if (channel)
        exportNode(nodes.first(), channel, OutputPointName);
}

OssGeoImageSet *OssShaderNetworkView::chooseGeoChannel(const OssGeoEntity *entity)
{
    const QString title = tr("Export to Geo-Channel");
    if (!OssApplication::popupsAllowed()) {
        OssDebug(Source, __LINE__, "[ !! ] Unable to request geo-channel from user");
        return nullptr;
    }
    QStringList names;
    const QList<OssGeoImageSet *> channels = entity->geoImageSets();
    for (const OssGeoImageSet *channel : channels)
        names.append(channel->name());
    if (names.isEmpty()) {
        OssMessageBox::warning(this, title,
                               tr("No geo-channels are available to export into. Please add one."));
        return nullptr;
    }
    bool chosen = false;
    const QString name = QInputDialog::getItem(
        this, title, tr("Select the geo-channel to export to:"), names, 0, false, &chosen);
    OssGeoImageSet *channel = chosen ? entity->geoImageSet(name) : nullptr;
    if (!channel)
        OssDebug(Source, __LINE__, "pGeoImageSet is NULL");
    return channel;
}

void OssShaderNetworkView::exportNode(OssSnBaseNode *node, OssGeoImageSet *channel,
                                      const QString &outputPointName)
{
    OssShadingContext *shading = m_network->shadingContext();
    if (!shading) {
        OssDebug(Source, __LINE__, "There is no shading to make images for");
        return;
    }
    const QString name = QStringLiteral("Node_To_GeoChannel_") + channel->name();
    const OssSnBakePointNode *bakePoint = OssShaderNetworkUtils::asTrueBakePointNode(node);
    const OssSnImageSetNodeBase *images = OssShaderNetworkUtils::asTrueImageSetNode(node);
    // With a limit, other patches hold what the node does not show.
    if (bakePoint && bakePoint->hasBakedResult() && !bakePoint->limitBake()
        && bakePoint->arePixelsUpToDate() && images && images->imageSet()) {
        const OssUndoManager::AutoMacro macro(tr("Export to Geo-Channel"));
        OssImageSet *copy = images->imageSet()->duplicate(shading->freeImageSetName(name));
        shading->addImageSet(copy); // takes it
        channel->setImageSet(copy);
        tellUser(tr("%1 is in the geo-channel %2").arg(node->name(), channel->name()));
        return;
    }
    OssNodeBake bake;
    bake.outputPoint = outputPointName;
    if (bake.outputPoint.isEmpty()
        && !chooseOutputPoint(node, tr("Export to Geo-Channel"),
                              tr("Select the output port to export:"), &bake.outputPoint))
        return;
    bakePaintBufferToNode(node);
    bake.title = tr("Export to Geo-Channel");
    bake.node = node;
    bake.like = OssShaderNetwork::imagesLike(QString(), channel->imageSet(),
                                             node->queryMaximumRequiredTextureResolutions());
    bake.makeImages = [network = QPointer<OssShaderNetwork>(m_network),
                       goal = QPointer<OssGeoImageSet>(channel), name, like = bake.like] {
        OssImageSet *set = network && goal
                               ? network->createImageSet(name, like.get(), like->resolution())
                               : nullptr;
        if (set)
            goal->setImageSet(set);
        return set;
    };
    bake.message = tr("%1 is in the geo-channel %2").arg(node->name(), channel->name());
    start(std::move(bake), tr("Export to Geo-Channel"));
}
