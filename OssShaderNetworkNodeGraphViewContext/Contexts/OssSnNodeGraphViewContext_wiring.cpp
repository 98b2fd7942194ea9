#include "OssSnNodeGraphViewContext.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Layers/OssLayerShaderManager.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssShaderNetworkView.h"

#include <QMetaEnum>

namespace {

constexpr const char *Source = "OssSnNodeGraphViewContext";

} // namespace

void OssSnNodeGraphViewContext::connectNodePorts()
{
    using Node = OssSnBaseNode;
    using Context = OssSnNodeGraphViewContext;
    Node *node = parentNode();
    connect(node, &Node::inputNodeChanged, this, &Context::onParentNodeInputChange);
    connect(node, &Node::outputNodeDetached, this, &Context::onParentNodeDetachOutput);
    connect(node, &Node::inputAdded, this, &Context::onParentNodeInputAdded);
    connect(node, &Node::inputListAdded, this, &Context::onParentNodeInputListAdded);
    connect(node, &Node::inputsRefreshed, this, qOverload<>(&Context::onParentNodeInputsRefreshed));
    connect(node, &Node::outputsRefreshed, this,
            qOverload<>(&Context::onParentNodeOutputsRefreshed));
    // The item takes a list of names it knows as their new order.
    connect(node, &Node::inputOrderChanged, this, &Context::onParentNodeInputListAdded);
    connect(node, &Node::nodeInputRenamed, this, &Context::onParentNodeInputRenamed);
    connect(node, &Node::inputRemoved, this, &Context::onParentNodeInputRemoved);
    connect(node, &Node::inputEnabledChanged, this, &Context::onInputEnabledChanged);
    connect(node, &Node::outputPointAdded, this, &Context::onParentNodeOutputPointAdded);
    connect(node, &Node::outputPointRemoved, this, &Context::onParentNodeOutputPointRemoved);
    connect(node, &Node::outputPointUsed, this, &Context::onParentNodeOutputPointUsed);
    connect(node, &Node::outputPointFreed, this, &Context::onParentNodeOutputPointFreed);
    connect(node, &Node::outputPointRenamed, this, &Context::onParentNodeOutputPointRenamed);
    connect(node, &Node::shaderModelChanged, this, &Context::updateDescriptiveNames);
    connect(node, &Node::inputConnectionIsShared, this, &Context::onParentInputIsShared);
    connect(OssNgStyle::instance(), &OssNgStyle::colorsUpdated, this,
            &Context::onParentNodeInputsOutputsRefreshed);
}

void OssSnNodeGraphViewContext::connectNodeState()
{
    using Node = OssSnBaseNode;
    using Context = OssSnNodeGraphViewContext;
    Node *node = parentNode();
    connect(node, &Node::nameChanged, this, &Context::setText);
    connect(node, &Node::descriptionChanged, this, &Context::setToolTip);
    connect(node, &Node::enabledChanged, this, &Context::updateGuiEdgesBypassStates);
    connect(node, &Node::bypassedChanged, this, &Context::updateGuiEdgesBypassStates);
    connect(node, &Node::cacheActiveChanged, this, &Context::cachedChanged);
    connect(node, &Node::errorTextChanged, this, &Context::updateErrorText);
    connect(node, &Node::guiActiveChanged, this, &Context::onParentNodeGuiActiveChanged);
    connect(node, &Node::systemShaderStatusSync, this, &Context::onUpdateSystemShaderStatus);
    connect(node, &Node::attachViewerToNode, this, &Context::onViewerAttachedToNode);
    connect(node, &Node::viewerNodeRequestUpdateVirtualEdge, this,
            &Context::updateViewerNodeVirtualEdge);
    connect(node, &Node::gotoNode, this, &Context::gotoNode);
}

void OssSnNodeGraphViewContext::connectGui()
{
    using Context = OssSnNodeGraphViewContext;
    if (const OssNgExtendedNode *extended = extendedNode())
        connect(extended, &OssNgExtendedNode::nodePortListModeChanged, this,
                qOverload<int>(&Context::setPortListMode));
    const OssNgNode *gui = m_GuiNode.get();
    connect(gui, &OssNgNode::inputSourceChanged, this, &Context::onGuiNodeInputChange);
    connect(gui, &OssNgNode::posChanged, this, &Context::onGuiNodePosChanged);
    connect(gui, &OssNgNode::clickedOnDotableMarkerOnEdge, this, &Context::onDotableMarkerClicked);
}

// --- state of the node

void OssSnNodeGraphViewContext::setText(QString text)
{
    if (!m_GuiNode)
        return;
    m_GuiNode->setText(text);
    onParentNodeInputsOutputsRefreshed();
}

void OssSnNodeGraphViewContext::setToolTip(QString text)
{
    if (m_GuiNode)
        m_GuiNode->setToolTip(text);
}

void OssSnNodeGraphViewContext::cachedChanged()
{
    const OssSnBaseNode *node = parentNode();
    if (m_GuiNode && node)
        m_GuiNode->setCached(node->cacheActive() == CacheActive);
}

void OssSnNodeGraphViewContext::onParentNodeGuiActiveChanged(bool active)
{
    if (m_GuiNode)
        m_GuiNode->setGuiActive(active);
}

void OssSnNodeGraphViewContext::onUpdateSystemShaderStatus()
{
    if (m_GuiNode)
        m_GuiNode->setSystemShader(
            OssLayerShaderManager::instance()->isSystemShaderNode(parentNode(), true));
}

void OssSnNodeGraphViewContext::onHoveredChanged(bool hovered)
{
    if (OssSnBaseNode *node = parentNode())
        node->emitNodeStateRefreshed();
    Q_EMIT hoveredChanged(hovered);
}

void OssSnNodeGraphViewContext::onNewNodeAdded()
{
    if (qobject_cast<OssSnMultiChannelGroupNode *>(parentNode()))
        setPortListMode(OssSnNodeGraphViewContextManager::instance()->defaultMCMCollapsedState());
}

// --- port list mode

OssNgExtendedNode::PortListMode OssSnNodeGraphViewContext::portListMode() const
{
    const OssNgExtendedNode *extended = extendedNode();
    return extended ? extended->portListMode() : m_portListMode;
}

void OssSnNodeGraphViewContext::setPortListMode(OssNgExtendedNode::PortListMode mode)
{
    // A click on the item changes the item first and tells of it; then only the stored mode is old.
    OssNgExtendedNode *extended = extendedNode();
    const bool itemDiffers = extended && extended->portListMode() != mode;
    if (!itemDiffers && m_portListMode == mode)
        return;
    m_portListMode = mode;
    if (mode == OssNgExtendedNode::NoPortList)
        updateStubs();
    if (itemDiffers)
        extended->setPortListMode(mode);
    OssUndoManager::instance()->resetClean(); // it is saved, and no step
    Q_EMIT portListModeChanged(mode);
}

void OssSnNodeGraphViewContext::setPortListMode(int mode)
{
    if (QMetaEnum::fromType<OssNgExtendedNode::PortListMode>().valueToKey(mode))
        setPortListMode(PortListMode(mode));
    else
        OssDebug(Source, __LINE__, "[ !! ] %d is no way to list ports", mode);
}

void OssSnNodeGraphViewContext::setPortListMode(
    OssSnNodeGraphViewContextManager::DefaultMCMCollapsedState state)
{
    switch (state) {
    case OssSnNodeGraphViewContextManager::Expanded:
        setPortListMode(OssNgExtendedNode::Expanded);
        break;
    case OssSnNodeGraphViewContextManager::ConnectedOnly:
        setPortListMode(OssNgExtendedNode::ConnectedOnly);
        break;
    case OssSnNodeGraphViewContextManager::Collapsed:
        setPortListMode(OssNgExtendedNode::Collapsed);
        break;
    default:
        setPortListMode(OssNgExtendedNode::StreamCollapsed);
        break;
    }
}

void OssSnNodeGraphViewContext::updatePortVisibility()
{
    OssNgExtendedNode *extended = extendedNode();
    if (!extended)
        return;
    extended->setPortListMode(m_portListMode);
    extended->setLabelsVisible(m_portListMode != OssNgExtendedNode::NoPortList);
}

// --- what the user does on the item

void OssSnNodeGraphViewContext::onGuiNodeInputChange(OssNgNode *newInput, QString inputName,
                                                     QString outputPointName)
{
    auto *source = newInput ? qobject_cast<OssSnBaseNode *>(newInput->businessNode()) : nullptr;
    if (source) {
        connectInputFromGui(source, inputName, outputPointName);
    } else if (!newInput) {
        OssShaderNetworkUtils::setInputNodeBatchConnectable(parentNode(), inputName, nullptr, {},
                                                            true, true, true, false);
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    }
}

void OssSnNodeGraphViewContext::connectInputFromGui(OssSnBaseNode *source, const QString &inputName,
                                                    const QString &outputPointName)
{
    OssSnBaseNode *node = parentNode();
    if (!node || !source)
        return;
    if (outputPointName.isEmpty()) {
        OssDebug(Source, __LINE__, "output point name cannot be empty : %s",
                 qPrintable(node->name()));
        return;
    }
    if (inputName.isEmpty()) {
        OssDebug(Source, __LINE__, "input name cannot be empty : %s", qPrintable(source->name()));
        return;
    }
    const OssUndoManager::AutoMacro macro(tr("Connect %1").arg(node->name()));
    const bool connected = OssShaderNetworkUtils::setInputNodeBatchConnectable(
        node, inputName, source, outputPointName, true, true, true, false);
    if (!connected)
        return;
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

void OssSnNodeGraphViewContext::onDotableMarkerClicked(OssNgEdge *edge)
{
    OssShaderNetworkView *view = viewOrComplain();
    if (!view || !edge)
        return;
    OssUndoManager::AutoMacro macro(tr("Add dot node in edge"));
    view->createUnconnectedDotNode(edge);
    view->viewport()->update();
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

// --- the viewer

void OssSnNodeGraphViewContext::onViewerAttachedToNode(int InputNumber)
{
    OssShaderNetworkView *view = viewOrComplain();
    if (!view)
        return;
    OssUndoManager::AutoMacro macro(tr("Attach viewer to node"));
    view->connectNodeToViewer(parentNode(), InputNumber);
}

void OssSnNodeGraphViewContext::onViewerNodeCurrentEdgeChanged(int edge)
{
    if (m_GuiNode && isViewer())
        activateViewerEdge(edge);
}

void OssSnNodeGraphViewContext::activateViewerEdge(int edge)
{
    if (!m_GuiNode)
        return;
    const QString current = QString::number(edge);
    const QList<OssNgEdge *> edges = m_GuiNode->inputs();
    for (OssNgEdge *wire : edges)
        wire->setActivated(wire->destinationInput() == current);
}

void OssSnNodeGraphViewContext::updateViewerNodeVirtualEdge()
{
    if (!m_GuiNode || !isViewer())
        return;
    const QString input = QStringLiteral("0");
    m_GuiNode->setVirtualInput(input, true);
    m_GuiNode->updateVirtualInputEdge();
    m_GuiNode->setInputPortText(input, viewerInputText());
}
