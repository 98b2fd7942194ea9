#include "OssSnNodeGraphViewContext.h"

#include "Manager/NodeIcons.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"
#include "OssShaderNetworkView.h"
#include "OssShaderNetworkWidget.h"
#include "ZelGL/ZelTextureToken.h"

#include <QPixmapCache>

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContext";
const ZelTextureToken TextureToken;

QColor colorOf(const QString &text)
{
    QColor color;
    if (!text.isEmpty()) {
        bool good = false;
        const OssColor parsed = OssColor::fromString(text, &good);
        if (good)
            color = parsed.toQColor();
        else
            OssDebug(Source, __LINE__, "[ !! ] '%s' is no color", qPrintable(text));
    }
    return color;
}

} // namespace

QColor OssSnNodeGraphViewContext::categoryColor(const QString &pathKey)
{
    return OssNgStyle::instance()->categoryColor(categoryOf(pathKey));
}

QString OssSnNodeGraphViewContext::categoryOf(const QString &pathKey)
{
    const QString first = pathKey.section(QLatin1Char('/'), 0, 0);
    if (first == QLatin1String("Channel Input"))
        return QStringLiteral("Paint");
    if (first == QLatin1String("Teleport Broadcast"))
        return QStringLiteral("TeleportBroadcast");
    if (first == QLatin1String("Teleport Receiver"))
        return QStringLiteral("TeleportReceiver");
    return first;
}

OssSnNodeGraphViewContext::OssSnNodeGraphViewContext(QObject *node, bool withGui)
    : OssSnBaseContext(node)
{
    if (withGui)
        createGuiNode();
    const OssSnNodeGraphViewContextManager *manager = OssSnNodeGraphViewContextManager::instance();
    if (manager->defaultNodePortDisplayModeAsEnum()
        == OssSnNodeGraphViewContextManager::HidePortList)
        m_portListMode = OssNgExtendedNode::NoPortList;
}

OssSnNodeGraphViewContext::~OssSnNodeGraphViewContext()
{
    if (!m_GuiNode)
        return;
    m_GuiNode->setBusinessNode(nullptr);
    m_GuiNode->setHelp(nullptr);
    m_GuiNode->dispose();
}

// --- the item

void OssSnNodeGraphViewContext::createGuiNode()
{
    const OssSnBaseNode *node = parentNode();
    QGraphicsScene *scene = node ? OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(
                                node->network())
                                 : nullptr;
    if (scene)
        adoptGuiNode(std::make_shared<OssNgExtendedNode>());
}

void OssSnNodeGraphViewContext::adoptGuiNode(std::shared_ptr<OssNgNode> guiNode)
{
    OssSnBaseNode *node = parentNode();
    QGraphicsScene *scene = node ? OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(
                                node->network())
                                 : nullptr;
    if (!scene)
        return;
    m_GuiNode = std::move(guiNode);
    m_GuiNode->setBusinessNode(node);
    m_GuiNode->setHelp(this);
    applyNodeState();
    m_GuiNode->setBaked(false);
    m_GuiNode->setStale(false);
    scene->addItem(m_GuiNode.get());
}

void OssSnNodeGraphViewContext::applyNodeState()
{
    const OssSnBaseNode *node = parentNode();
    m_GuiNode->setText(node->name());
    m_GuiNode->setToolTip(node->description());
    m_GuiNode->setSystemShader(OssLayerShaderManager::instance()->isSystemShaderNode(node, true));
    m_GuiNode->setBypassed(node->isBypassed());
    m_GuiNode->setCached(node->cacheActive() == CacheActive);
    m_GuiNode->setDisabled(!node->enabledAsBool());
    m_GuiNode->setPlaceholder(node->isPlaceholder());
    updateErrorText();
}

void OssSnNodeGraphViewContext::updateErrorText()
{
    const OssSnBaseNode *node = parentNode();
    const OssProblems *problems = OssProblems::instance();
    const QString reason = problems ? problems->reason(node) : QString();
    if (m_GuiNode)
        m_GuiNode->setErrorText(reason.isEmpty() ? node->errorText() : reason);
}

OssNgExtendedNode *OssSnNodeGraphViewContext::extendedNode() const
{
    return qobject_cast<OssNgExtendedNode *>(m_GuiNode.get());
}

bool OssSnNodeGraphViewContext::isViewer() const
{
    const OssSnBaseNode *node = parentNode();
    return node && node->hasTag(OssSnTags::viewer());
}

OssShaderNetworkView *OssSnNodeGraphViewContext::viewOrComplain() const
{
    OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    if (!view)
        OssDebug(Source, __LINE__, "[ !! ] Fatal error -> no view!");
    return view;
}

// --- initialisation

void OssSnNodeGraphViewContext::initializeGui()
{
    OssSnBaseNode *node = parentNode();
    if (!m_GuiNode || !node)
        return;
    connect(node, &OssSnBaseNode::selectedChanged, this, &OssSnNodeGraphViewContext::selectGuiNode);
    applySelection(node->selected());
    connect(node, &OssSnBaseNode::viewerNodeCurrentEdgeChanged, this,
            &OssSnNodeGraphViewContext::onViewerNodeCurrentEdgeChanged);
    {
        const OssNgNode::LayoutPause pause(m_GuiNode.get());
        applyLook();
        createPorts();
    }
    connectNodePorts();
    connectNodeState();
    connectNodePlacement();
    connectGui();

    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (OssNgEdge *edge = m_GuiNode->input(port.name)) {
            edge->setBypassed(!port.enabled);
            edge->setShared(port.shared);
        }
    }
    m_GuiNode->refresh();
    if (isViewer() && node->network() && node->network()->rootNetwork())
        onViewerNodeCurrentEdgeChanged(node->network()->rootNetwork()->viewerNodeCurrentEdge());
    connect(m_GuiNode.get(), &OssNgNode::hoveredChanged, this,
            [this](bool hovered) { onHoveredChanged(hovered); });
    OssSnNodeGraphViewContextManager::instance()->onContextInitialised(this);
}

void OssSnNodeGraphViewContext::applyLook()
{
    const OssSnBaseNode *node = parentNode();
    m_GuiNode->setShapeType(m_shapeType);
    m_GuiNode->updateShape();
    applyColors();
    m_GuiNode->setCategory(categoryOf(node->pathKey()));
    // Again: a node that comes from a file learns its state after its item was made.
    applyNodeState();
    const QString file = m_pixmapPath.isEmpty() ? NodeIcons::fileOf(node->pathKey()) : m_pixmapPath;
    if (file.isEmpty())
        return;
    const QString path = OssResourceInfo::instance()->iconPath() + QLatin1Char('/') + file;
    QPixmap pixmap;
    if (!QPixmapCache::find(path, &pixmap)) {
        pixmap = QPixmap(path);
        QPixmapCache::insert(path, pixmap);
    }
    if (!pixmap.isNull())
        m_GuiNode->setPixmap(pixmap, m_pixmapOffset);
}

void OssSnNodeGraphViewContext::applyColors()
{
    m_GuiNode->setNodeColor(colorOf(m_nodeColorTop), colorOf(m_nodeColorBottom));
}

void OssSnNodeGraphViewContext::createPorts()
{
    updateDescriptiveNames();
    updateStubs();
    applyPortKinds();
    addInputPorts();
    addOutputPorts();
    if (OssNgExtendedNode *extended = extendedNode())
        extended->setPortListMode(m_portListMode);
}

// --- selection

void OssSnNodeGraphViewContext::selectGuiNode(bool selected)
{
    applySelection(selected);
}

void OssSnNodeGraphViewContext::applySelection(bool selected)
{
    OssSnBaseNode *node = parentNode();
    if (m_GuiNode && m_GuiNode->isSelected() != selected)
        m_GuiNode->setSelected(selected);
    if (!node)
        return;
    if (node->selected() != selected)
        node->setSelected(selected);
    if (!selected || !isViewer())
        return;
    OssShaderNetwork *network = node->network();
    if (!network) {
        OssDebug(Source, __LINE__, "Network is NULL");
        return;
    }
    OssShaderNetwork *root = network->rootNetwork();
    if (!root) {
        OssDebug(Source, __LINE__, "RootNetwork is NULL");
        return;
    }
    activateViewerEdge(root->viewerNodeCurrentEdge());
    Q_EMIT root->nodeSelectionChanged();
}

// --- place and size

QPointF OssSnNodeGraphViewContext::nodePosition() const
{
    return m_GuiNode ? m_GuiNode->pos() : QPointF();
}

QSizeF OssSnNodeGraphViewContext::nodeSize() const
{
    return m_GuiNode ? m_GuiNode->boundingRect().size() : QSizeF();
}

bool OssSnNodeGraphViewContext::setNodePosition(QPointF position)
{
    if (!m_GuiNode)
        return false;
    if (m_GuiNode->isAt(position))
        return true;
    m_GuiNode->setPosition(position);
    // By itself it is no step; in a macro it is part of what made the node.
    if (!OssUndoManager::instance()->isMacroOpen())
        OssUndoManager::instance()->resetClean();
    return true;
}

bool OssSnNodeGraphViewContext::setNodePositionUndo(QPointF position)
{
    if (!m_GuiNode)
        return false;
    const OssUndoManager::Gathering step(tr("Move node")); // with the order of a group's ports
    m_GuiNode->savePosition();
    m_GuiNode->setPosition(position);
    OssUndoManager::instance()->addUndo(
        std::make_unique<OssNgNodePositionChangeUndo>(m_GuiNode.get()));
    onGuiNodePosChanged(position);
    return true;
}

void OssSnNodeGraphViewContext::setNodeSize(QSizeF size)
{
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(m_GuiNode.get());
    if (!backdrop)
        return;
    backdrop->saveBoundingRect();
    backdrop->setRect({QPointF(), size});
}

bool OssSnNodeGraphViewContext::setNodeSizeUndo(QSizeF size)
{
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(m_GuiNode.get());
    if (!backdrop)
        return false;
    const OssUndoManager::Gathering step(tr("Resize backdrop")); // with what it holds now
    setNodeSize(size);
    OssUndoManager::instance()->addUndo(
        std::make_unique<OssNgBackdropNodeRectChangeUndo>(backdrop));
    if (OssSnBaseNode *node = parentNode())
        OssShaderNetworkView::refreshMembership(node);
    return true;
}

void OssSnNodeGraphViewContext::takePlaceOf(const OssSnBaseContext *other)
{
    const auto *view = qobject_cast<const OssSnNodeGraphViewContext *>(other);
    if (!view || !m_GuiNode || !view->m_GuiNode)
        return;
    setPortListMode(view->portListMode());
    m_GuiNode->setLabelsVisible(view->m_GuiNode->labelsVisible());
    if (qobject_cast<const OssNgBackdropNode *>(view->m_GuiNode.get()))
        setNodeSize(view->nodeSize());
}

void OssSnNodeGraphViewContext::onGuiNodePosChanged(QPointF)
{
    OssSnBaseNode *node = parentNode();
    OssShaderNetwork *network = node ? node->network() : nullptr;
    if (!network)
        return;
    OssShaderNetworkView::refreshMembership(node);
    if (!network->parentGroupNode())
        return;
    const bool input = node->hasTag(OssSnTags::input());
    if (input || node->hasTag(OssSnTags::output()))
        OssSnNodeGraphViewContextManager::instance()->onGroupPortNodeMoved(network, input);
}

void OssSnNodeGraphViewContext::gotoNode()
{
    const OssSnBaseNode *node = parentNode();
    const OssShaderNetwork *network = node ? node->network() : nullptr;
    const OssShaderNetwork *root = network ? network->rootNetwork() : nullptr;
    OssSnNodeGraphWidget *widget = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    if (!root || !root->geoEntity() || !widget)
        return;
    const auto *firstView = qobject_cast<OssShaderNetworkView *>(widget->widget(0));
    if (!firstView || firstView->network() != root)
        return;
    if (const OssSnGroupNode *group = network->parentGroupNode())
        widget->showGroupNodeSubgraph(group);
    else
        widget->setCurrentIndex(0);
    OssShaderNetworkView *view = widget->currentView();
    if (m_GuiNode && m_GuiNode->isVisible() && view && view->network() == network)
        view->centerViewOn(m_GuiNode->boundingRect().translated(m_GuiNode->pos()).center(), true);
}

// --- state that others copy

bool OssSnNodeGraphViewContext::attributeIsStub(const QString &name, bool flag) const
{
    return OssSnBaseContext::attributeIsStub(name, flag);
}

void OssSnNodeGraphViewContext::copyGuiStateFrom(OssSnBaseContext *other)
{
    const auto *view = qobject_cast<OssSnNodeGraphViewContext *>(other);
    if (!view)
        return;
    OssSnBaseContext::copyGuiStateFrom(other);
    m_inputNodeInitialPos = view->m_inputNodeInitialPos;
    m_outputNodeInitialPos = view->m_outputNodeInitialPos;
    m_shapeType = view->m_shapeType;
    m_nodeColorTop = view->m_nodeColorTop;
    m_nodeColorBottom = view->m_nodeColorBottom;
    if (m_GuiNode)
        applyLook();
    onParentNodeInputsOutputsRefreshed();
}

void OssSnNodeGraphViewContext::copyGuiNodeStateFrom(OssSnBaseContext *other)
{
    const auto *otherView = qobject_cast<OssSnNodeGraphViewContext *>(other);
    if (!otherView) {
        OssDebug(Source, __LINE__, "OtherView is NULL");
        return;
    }
    if (m_GuiNode && otherView->m_GuiNode)
        m_GuiNode->copyStateFrom(otherView->m_GuiNode.get());
}
