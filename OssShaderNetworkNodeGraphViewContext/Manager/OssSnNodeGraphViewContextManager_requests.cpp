#include "OssSnNodeGraphViewContextManager.h"

#include "Manager/ImageNodeTypes.h"
#include "Manager/SelectionCommands.h"
#include "Manager/SoloLook.h"
#include "Manager/WireCommands.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssSnChannelInputNode.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnUINodeGraphViewContext.h"

#include <QAction>

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContextManager";
const QString PaletteKey = QStringLiteral("node_graph_palette");

OssSnBaseNode *resolved(const OssObjectReference &reference)
{
    return qobject_cast<OssSnBaseNode *>(
        OssObjectReferenceManager::instance()->getPointer(reference));
}

void setNodeDebug(const OssObjectReference &reference, bool on, const QColor &color)
{
    OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(resolved(reference));
    if (!guiNode)
        return;
    if (on)
        guiNode->setDebugColor(color);
    guiNode->setDebug(on);
}

void setInputDebug(const OssObjectReference &reference, const QString &input, bool on,
                   const QColor &color)
{
    const OssNgNode *guiNode = OssSnNodeGraphViewContextManager::guiNodeOf(resolved(reference));
    OssNgEdge *edge = guiNode ? guiNode->input(input) : nullptr;
    if (!edge)
        return;
    if (on)
        edge->setDebugColor(color);
    edge->setDebug(on);
}

} // namespace

// --- palettes and actions

void OssSnNodeGraphViewContextManager::createActions()
{
    createLayoutAction();
    createPortListActions();
    createImageActions();
    createShakeAction();
    new SoloLook(this); // owned
    new WireCommands(this);
}

void OssSnNodeGraphViewContextManager::createLayoutAction()
{
    const QString path = QStringLiteral("/Ossa/NodeGraph/Autoplace");
    QAction *action = OssCommandTable::makeAction(path, this);
    connect(action, &QAction::triggered, this, [this] {
        bool changed = false;
        const auto recording = connect(OssUndoManager::instance(), &OssUndoManager::recorded, this,
                                       [&changed] { changed = true; });
        beautifyNodesLayout();
        disconnect(recording);
        if (changed)
            OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
        else
            OssStatusManager::instance()->showMessage(
                tr("Autoplace: nothing stands elsewhere than it should"));
    });
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    if (!tree->hasAction(path))
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), action);
    OssShaderNetworkManager::instance()->registerGlobalContextMenuAction(action);
}

void OssSnNodeGraphViewContextManager::createPortListActions()
{
    struct ModeRow
    {
        DefaultMCMCollapsedState mode;
        const char *path;
    };

    for (const ModeRow &row :
         {ModeRow{Expanded, "/Ossa/NodeGraph/Switch to Expanded mode"},
          ModeRow{StreamCollapsed, "/Ossa/NodeGraph/Switch to Stream Collapsed mode"},
          ModeRow{ConnectedOnly, "/Ossa/NodeGraph/Switch to Connected Only mode"},
          ModeRow{Collapsed, "/Ossa/NodeGraph/Switch to Collapsed mode"}}) {
        QAction *action = OssCommandTable::makeAction(QString::fromLatin1(row.path), this);
        action->setProperty("Mode", int(row.mode));
        action->setToolTip(action->text());
        action->setWhatsThis(action->text());
        connect(action, &QAction::triggered, this,
                &OssSnNodeGraphViewContextManager::onNodeCollapsedModeChanged);
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph"), action);
    }
}

void OssSnNodeGraphViewContextManager::createImageActions()
{
    struct ImageRow
    {
        const char *path;
        QString pathKey;
        QString toolTip;
    };

    const ImageRow rows[] = {
        {"/Ossa/Images/As Tiled", ImageNodeTypes::Tiled, tr("Add to Nodegraph as Tiled")},
        {"/Ossa/Images/As TriPlanar", ImageNodeTypes::TriPlanar,
         tr("Add to Nodegraph as TriPlanar")}};
    for (const ImageRow &row : rows) {
        QAction *action = OssCommandTable::makeAction(QString::fromLatin1(row.path), this);
        action->setData(row.pathKey);
        action->setToolTip(row.toolTip);
        connect(action, &QAction::triggered, this, &OssSnNodeGraphViewContextManager::addImageAs);
        OssImageManager::instance()->registerGlobalContextMenuAction(
            action, tr("Add to Nodegraph"), OssIcon::getIconPath(QStringLiteral("NodeGraph.png")));
    }
}

void OssSnNodeGraphViewContextManager::createShakeAction()
{
    const QString path = QStringLiteral("/Ossa/NodeGraph/Shake To Extract");
    QAction *action = OssCommandTable::makeAction(path, this);
    action->setObjectName(OssActionTreeManager::nameOf(path));
    action->setToolTip(action->statusTip());
    action->setWhatsThis(action->statusTip());
    action->setCheckable(true);
    action->setChecked(shakeToExtractEnabled());
    connect(this, &OssSnNodeGraphViewContextManager::shakeToExtractEnabledChanged, action,
            &QAction::setChecked);
    connect(action, &QAction::triggered, this, [this] {
        toggleShakeToExtractEnabled();
        OssStatusManager::instance()->showMessage(
            shakeToExtractEnabled() ? tr("Shaking selected nodes takes them out of their streams")
                                    : tr("Shaking nodes only moves them"));
    });
    OssActionTreeManager::instance()->registerAction(QStringLiteral("Ossa/NodeGraph/"), action);
}

void OssSnNodeGraphViewContextManager::addImageAs()
{
    const auto *action = qobject_cast<QAction *>(sender());
    const QString key = action ? action->data().toString() : QString();
    OssShaderNetworkView *view = currentView();
    if (!action || key.isEmpty() || !view)
        return;
    const OssUndoManager::Gathering gathering(action->toolTip());
    const QList<OssImage *> images = OssImageManager::instance()->images();
    bool hasImage = false;
    for (OssImage *image : images) {
        if (!image->selected())
            continue;
        view->createNodeFromDropImage(image, key, QPointF(0.0, 0.0));
        hasImage = true;
    }
    if (!hasImage)
        OssStatusManager::instance()->showMessage(
            tr("%1: select a picture of the Images palette first").arg(action->text()));
}

void OssSnNodeGraphViewContextManager::initialiseNodeGraphPalette()
{
    auto *palette = new OssPalette; // the palette manager takes it
    m_nodeGraphWidget = new OssSnNodeGraphWidget(m_controlType, palette);
    connect(m_nodeGraphWidget, &QTabWidget::currentChanged, m_selectionCommands,
            &SelectionCommands::onChanged);
    palette->setBodyWidget(m_nodeGraphWidget);
    palette->setObjectName(tr("Node Graph"));
    palette->setWindowTitle(tr("Node Graph"));
    palette->setContextHelpKey(PaletteKey);
    OssPaletteManager::instance()->registerPalette(
        palette, true, OssResourceInfo::instance()->iconPath() + QStringLiteral("/NodeGraph.png"));
}

void OssSnNodeGraphViewContextManager::showNodeGraphPalette()
{
    if (OssPalette *palette = OssPaletteManager::instance()->find(PaletteKey, false))
        palette->showBySidebar();
}

// --- project

template <class Visit>
void OssSnNodeGraphViewContextManager::visitProjectNodes(OssProject *project, Visit visit) const
{
    if (!project)
        return;
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (OssShadingGroup *group : groups) {
        const OssShaderNetwork *network = OssShaderNetworkManager::instance()->getShaderNetwork(
            group);
        if (!network)
            continue;
        const QList<OssSnBaseNode *> nodes = network->getAllNodes();
        for (OssSnBaseNode *node : nodes) {
            if (OssSnNodeGraphViewContext *context = contextOf(node))
                visit(context);
        }
    }
}

void OssSnNodeGraphViewContextManager::updatePortVisibility()
{
    visitProjectNodes(OssProjectManager::instance()->currentProject(),
                      [](OssSnNodeGraphViewContext *context) { context->updatePortVisibility(); });
}

void OssSnNodeGraphViewContextManager::onProjectOpenCompleted()
{
    updatePortVisibility();
    if (!m_nodeGraphWidget)
        return;
    m_nodeGraphWidget->view()->frameNodes(true);
    m_nodeGraphWidget->refreshCurrentChanged();
}

void OssSnNodeGraphViewContextManager::onProjectMadeCurrentUpgradeOldBadBackdrops(
    OssProject *Project)
{
    visitProjectNodes(Project, [](OssSnNodeGraphViewContext *context) {
        if (auto *ui = qobject_cast<OssSnUINodeGraphViewContext *>(context))
            ui->upgradeOldBackdrop();
    });
}

// --- requests

void OssSnNodeGraphViewContextManager::focusOnNode(OssSnBaseNode *Node)
{
    showNodeGraphPalette();
    if (!Node || !m_nodeGraphWidget)
        return;
    m_nodeGraphWidget->selectTabForNetwork(Node->network());
    OssShaderNetworkView *view = currentView();
    if (!view || view->network() != Node->network() || !view->scene())
        return;
    view->scene()->clearSelection();
    Node->setSelected(true);
    view->frameSelectedNodes();
    view->flashNode(guiNodeOf(Node));
}

void OssSnNodeGraphViewContextManager::matchNodePosition(OssSnBaseNode *From, OssSnBaseNode *To)
{
    const OssNgNode *from = guiNodeOf(From);
    OssNgNode *to = guiNodeOf(To);
    if (!from || !to)
        return;
    to->savePosition();
    to->setPosition(from->pos());
    OssUndoManager::instance()->addUndo(std::make_unique<OssNgNodePositionChangeUndo>(to));
}

void OssSnNodeGraphViewContextManager::highlightCurrentImageSetNode(OssChannel *pImageSet)
{
    if (!pImageSet)
        return;
    OssShaderNetwork *pNetwork = OssShaderNetworkManager::instance()->currentShaderNetwork();
    if (!pNetwork) {
        OssDebug(Source, __LINE__, "pNetwork is NULL");
        return;
    }
    const OssShaderNetwork *pRootNetwork = pNetwork->rootNetwork();
    if (!pRootNetwork) {
        OssDebug(Source, __LINE__, "pRootNetwork is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = pRootNetwork->getAllNodes();
    for (OssSnBaseNode *node : nodes) {
        const auto *paint = qobject_cast<OssSnChannelInputNode *>(node);
        OssNgNode *guiNode = paint ? guiNodeOf(node) : nullptr;
        if (!guiNode)
            continue;
        const OssImageSet *set = paint->imageSet();
        guiNode->setHighlighted(set && set->channel() == pImageSet);
        guiNode->refresh();
    }
}

void OssSnNodeGraphViewContextManager::onDebugNodesChanged(
    OssShaderNetworkManager::DebugNodes rNewNodes, OssShaderNetworkManager::DebugInputs rNewInputs,
    OssShaderNetworkManager::DebugNodes rOldNodes, OssShaderNetworkManager::DebugInputs rOldInputs)
{
    const auto mark = [](const OssShaderNetworkManager::DebugNodes &nodes,
                         const OssShaderNetworkManager::DebugInputs &inputs, bool on) {
        for (auto node = nodes.cbegin(); node != nodes.cend(); ++node)
            setNodeDebug(node.key(), on, node.value());
        for (auto node = inputs.cbegin(); node != inputs.cend(); ++node) {
            for (auto input = node->cbegin(); input != node->cend(); ++input)
                setInputDebug(node.key(), input.key(), on, input.value());
        }
    };
    mark(rOldNodes, rOldInputs, false);
    mark(rNewNodes, rNewInputs, true);
}

void OssSnNodeGraphViewContextManager::onNodePropertiesHoverChanged(OssSnBaseNode *MouseOver,
                                                                    OssSnBaseNode *OldMouseOver)
{
    if (OssNgNode *guiNode = guiNodeOf(MouseOver))
        guiNode->setHovered(true);
    if (OssNgNode *guiNode = guiNodeOf(OldMouseOver))
        guiNode->setHovered(false);
}

void OssSnNodeGraphViewContextManager::onNodeCollapsedModeChanged()
{
    const auto missing = [](const void *object, const char *message) {
        if (!object)
            OssDebug(Source, __LINE__, "%s", message);
        return !object;
    };
    if (missing(sender(), "sender() is NULL"))
        return;
    const auto *action = qobject_cast<QAction *>(sender());
    if (missing(action, "Action is NULL"))
        return;
    const OssShaderNetworkView *view = viewOrComplain();
    if (!view || missing(view->network(), "Network is NULL"))
        return;
    const int mode = action->property("Mode").toInt();
    bool fits = false;
    const QList<OssSnBaseNode *> nodes = view->network()->selectedNodes();
    for (OssSnBaseNode *node : nodes) {
        const bool hasStreams = qobject_cast<OssSnMultiChannelGroupNode *>(node)
                                || node->hasTag(OssSnTags::shader());
        if (mode == StreamCollapsed && !hasStreams)
            continue;
        OssSnNodeGraphViewContext *context = contextOf(node);
        if (!context || !qobject_cast<OssNgExtendedNode *>(context->guiNode()))
            continue;
        context->setPortListMode(DefaultMCMCollapsedState(mode));
        fits = true;
    }
    if (!fits)
        OssStatusManager::instance()->showMessage(
            nodes.isEmpty() ? tr("%1: select a node first").arg(action->text())
                            : tr("%1: what is selected has no such ports").arg(action->text()));
}
