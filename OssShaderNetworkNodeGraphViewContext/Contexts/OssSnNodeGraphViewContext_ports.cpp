#include "OssSnNodeGraphViewContext.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssNodeGraph/Drawing/OssNgPortKind.h"
#include "OssNodeGraph/Items/OssNgEdge.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int StubSpacing = 22; // scene units between the stubs of neighbouring ports
constexpr int StubLength = 24;

} // namespace

// --- making ports

void OssSnNodeGraphViewContext::addInputPorts()
{
    const QVector<Input> ports = inputs();
    for (const Input &port : ports)
        m_GuiNode->addInputPort(port.name, port.preferred && port.setAtLoad, port.tags);
}

void OssSnNodeGraphViewContext::addOutputPorts()
{
    const OssSnBaseNode *node = parentNode();
    const QStringList names = outputPointNames();
    for (const QString &name : names) {
        m_GuiNode->addOutputPort(name, !node->hasDetachedOutputs());
        if (node->isOutputUsed(name))
            m_GuiNode->setOutputUsed(name, true);
    }
}

void OssSnNodeGraphViewContext::applyPortKinds()
{
    // Colour is what a port shows that is told nothing.
    const OssSnBaseNode *node = parentNode();
    QHash<QString, int> inputKinds;
    QHash<QString, int> outputKinds;
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (port.kind != OssSnDataKind::Color)
            inputKinds.insert(port.name, int(port.kind));
    }
    for (const OssSnBaseNode::OutputPoint &point : node->outputPoints()) {
        if (point.kind != OssSnDataKind::Color)
            outputKinds.insert(point.name, int(point.kind));
    }
    if (!inputKinds.isEmpty() || !outputKinds.isEmpty())
        m_GuiNode->setPortKinds(inputKinds, outputKinds);
}

void OssSnNodeGraphViewContext::updateDescriptiveNames()
{
    updateDescriptiveInputNames();
    updateDescriptiveOutputNames();
}

void OssSnNodeGraphViewContext::updateDescriptiveInputNames()
{
    const OssSnBaseNode *node = parentNode();
    if (!m_GuiNode || !node)
        return;
    if (const auto *group = qobject_cast<const OssSnMultiChannelGroupNode *>(node))
        m_GuiNode->setConnectionDescriptiveNames(group->descriptiveInputNameList(),
                                                 group->descriptiveOutputNameList());
    m_GuiNode->setConnectionPrettyNames(node->prettyInputNameList(), node->prettyOutputNameList());
}

void OssSnNodeGraphViewContext::updateDescriptiveOutputNames()
{
    // Names are given to the item for both sides at once.
    updateDescriptiveInputNames();
}

// --- stubs

void OssSnNodeGraphViewContext::setInputNodeInitialPos(const QString &input, const Stub &stub)
{
    m_inputNodeInitialPos.insert(input, stub);
}

void OssSnNodeGraphViewContext::setOutputNodeInitialPos(const QString &outputPoint,
                                                        const Stub &stub)
{
    m_outputNodeInitialPos.insert(outputPoint, stub);
}

void OssSnNodeGraphViewContext::calculateEdgeMultipliers(QVector<int> &MultiplierList,
                                                         int &MinMultiplier, int Count)
{
    if (Count <= 0)
        return;
    const int first = MultiplierList.size();
    MultiplierList.resize(first + Count);
    const int half = Count / 2;
    int left = 0;
    int right = Count - 1;
    for (; left < right; ++left, --right) {
        MultiplierList[first + left] = left - half;
        MultiplierList[first + right] = half - left;
    }
    for (const int multiplier : qAsConst(MultiplierList))
        MinMultiplier = std::min(MinMultiplier, std::abs(multiplier));
}

void OssSnNodeGraphViewContext::calculateEdgesUI(QStringList Edges, bool OutputEdge,
                                                 const StubMap &InitialPositionMap,
                                                 const TextPositionMap &InitialTextPositionMap,
                                                 StubMap &PositionMap, int Factor)
{
    QVector<int> multipliers;
    int smallest = Edges.size();
    calculateEdgeMultipliers(multipliers, smallest, Edges.size());
    PositionMap.clear();
    for (int i = 0; i < Edges.size(); ++i) {
        const QString &name = Edges.at(i);
        const auto initial = InitialPositionMap.constFind(name);
        if (initial != InitialPositionMap.cend()) {
            PositionMap.insert(name, *initial);
            continue;
        }
        const int x = multipliers.at(i) * StubSpacing * Factor;
        const int length = std::max(StubLength, int(InitialTextPositionMap.value(name)));
        PositionMap.insert(name, {QPoint(x, 0), QPoint(x, OutputEdge ? length : -length)});
    }
}

void OssSnNodeGraphViewContext::updateStubs()
{
    // Only ports along the node's edges have stubs; most nodes list their ports in rows.
    const OssSnBaseNode *node = parentNode();
    const bool wanted = m_portListMode == OssNgExtendedNode::NoPortList
                        || !m_inputNodeInitialPos.isEmpty() || !m_outputNodeInitialPos.isEmpty();
    if (!m_GuiNode || !node || !wanted)
        return;
    calculateEdgesUI(node->inputNames(), false, m_inputNodeInitialPos, m_inputTextPositions,
                     m_inputPositions);
    calculateEdgesUI(node->outputPointNames(), true, m_outputNodeInitialPos, m_outputTextPositions,
                     m_outputPositions);
    m_GuiNode->setConnectionTextPositions(m_inputTextPositions, m_outputTextPositions);
    m_GuiNode->setConnectionPositions(m_inputPositions, m_outputPositions);
}

// --- changes of the node's ports

void OssSnNodeGraphViewContext::onParentNodeInputAdded(QString name)
{
    onParentNodeInputListAdded({name});
}

void OssSnNodeGraphViewContext::onParentNodeInputListAdded(QStringList names)
{
    if (!m_GuiNode || !parentNode())
        return;
    updateDescriptiveNames();
    applyPortKinds();
    const QVector<Input> ports = inputs();
    for (const Input &port : ports) {
        if (names.contains(port.name))
            m_GuiNode->addInputPort(port.name, port.preferred && port.setAtLoad, port.tags);
    }
    if (names.size() > 1)
        m_GuiNode->addInputPorts(names);
    updateStubs();
    updateGuiEdges();
}

void OssSnNodeGraphViewContext::onParentNodeInputsRefreshed(bool Adjust)
{
    if (!m_GuiNode || !parentNode())
        return;
    {
        const OssNgNode::LayoutPause pause(m_GuiNode.get());
        m_GuiNode->clearInputPorts();
        updateDescriptiveNames();
        if (Adjust)
            updateStubs();
        applyPortKinds();
        addInputPorts();
    }
    updateGuiEdges();
}

void OssSnNodeGraphViewContext::onParentNodeOutputsRefreshed(bool Adjust)
{
    if (!m_GuiNode || !parentNode())
        return;
    {
        const OssNgNode::LayoutPause pause(m_GuiNode.get());
        m_GuiNode->clearOutputPorts();
        updateDescriptiveNames();
        if (Adjust)
            updateStubs();
        applyPortKinds();
        addOutputPorts();
    }
    m_GuiNode->updateEdges();
}

void OssSnNodeGraphViewContext::onParentNodeInputsOutputsRefreshed()
{
    onParentNodeInputsRefreshed(true);
    onParentNodeOutputsRefreshed(true);
    if (m_GuiNode)
        m_GuiNode->refresh();
}

void OssSnNodeGraphViewContext::onParentNodeInputRenamed(QString oldName, QString newName)
{
    if (!m_GuiNode)
        return;
    m_GuiNode->renameInputPort(oldName, newName);
    updateDescriptiveNames();
    updateStubs();
}

void OssSnNodeGraphViewContext::onParentNodeInputRemoved(QString name)
{
    if (!m_GuiNode)
        return;
    m_GuiNode->removeInputPort(name);
    updateStubs();
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointAdded(QString name)
{
    const OssSnBaseNode *node = parentNode();
    if (!m_GuiNode || !node)
        return;
    updateDescriptiveNames();
    applyPortKinds();
    m_GuiNode->addOutputPort(name, !node->hasDetachedOutputs());
    updateStubs();
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointRemoved(QString name)
{
    if (!m_GuiNode)
        return;
    m_GuiNode->removeOutputPort(name);
    updateStubs();
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointUsed(QString name)
{
    if (m_GuiNode)
        m_GuiNode->setOutputUsed(name, true);
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointFreed(QString name)
{
    if (m_GuiNode)
        m_GuiNode->setOutputUsed(name, false);
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointRenamed(QString oldName, QString newName)
{
    if (!m_GuiNode)
        return;
    m_GuiNode->renameOutputPort(oldName, newName);
    updateDescriptiveNames();
    updateStubs();
}

// --- wires

void OssSnNodeGraphViewContext::attachInputEdge(const OssSnBaseNode::InputPort &port)
{
    OssNgNode *sourceGui = OssSnNodeGraphViewContextManager::guiNodeOf(port.source);
    if (!sourceGui) {
        m_GuiNode->detachInput(port.name);
        return;
    }
    const OssNgEdge *shown = m_GuiNode->input(port.name);
    const bool same = shown && shown->source() == sourceGui
                      && shown->sourceOutput() == port.sourceOutput;
    if (!same)
        m_GuiNode->attachInput(port.name, sourceGui, port.sourceOutput);
    OssNgEdge *edge = m_GuiNode->input(port.name);
    if (edge && m_GuiNode->scene() && !edge->scene())
        m_GuiNode->scene()->addItem(edge);
}

void OssSnNodeGraphViewContext::updateGuiEdges()
{
    const OssSnBaseNode *node = parentNode();
    if (!m_GuiNode || !node)
        return;
    bool connected = false;
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        attachInputEdge(port);
        connected = connected || port.source;
        if (isViewer() && port.name == QLatin1String("0"))
            updateViewerNodeVirtualEdge();
    }
    for (const OssSnBaseNode::OutputPoint &point : node->outputPoints())
        m_GuiNode->setOutputUsed(point.name, node->isOutputUsed(point.name));
    if (connected)
        updateGuiEdgesBypassStates();
    if (isViewer() && node->network())
        activateViewerEdge(node->network()->rootNetwork()->viewerNodeCurrentEdge());
}

void OssSnNodeGraphViewContext::onParentNodeInputChange(QString inputName, OssSnBaseNode *, QString)
{
    const OssSnBaseNode *node = parentNode();
    if (!m_GuiNode || !node)
        return;
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (port.name == inputName)
            attachInputEdge(port);
    }
    updateGuiEdgesBypassStates();
    updatePortVisibility();
    OssNgExtendedNode *extended = extendedNode();
    if (extended && extended->isInputInCluster(inputName))
        extended->refreshCluster(inputName);
    if (isViewer()) {
        if (inputName == QLatin1String("0"))
            updateViewerNodeVirtualEdge();
        if (node->network())
            activateViewerEdge(node->network()->rootNetwork()->viewerNodeCurrentEdge());
    }
}

QString OssSnNodeGraphViewContext::viewerInputText() const
{
    const QString input = QStringLiteral("0");
    const OssSnBaseNode *source = parentNode()->inputNode(input);
    if (!source)
        return input;
    return source->hasTag(OssSnTags::currentMaterialProxy())
               ? QStringLiteral("0:Current Material")
               : QStringLiteral("0:%1").arg(source->name());
}

void OssSnNodeGraphViewContext::onParentNodeDetachOutput(QString outputPointName)
{
    if (!m_GuiNode)
        return;
    const OssSnBaseNode *node = parentNode();
    const QList<OssNgEdge *> edges = m_GuiNode->outputs();
    for (const OssNgEdge *edge : edges) {
        if (edge->sourceOutput() != outputPointName || !edge->destination())
            continue;
        const QString input = edge->destinationInput();
        const auto *target = qobject_cast<OssSnBaseNode *>(edge->destination()->businessNode());
        if (!target || target->inputNode(input) != node)
            edge->destination()->detachInput(input);
    }
}

void OssSnNodeGraphViewContext::updateGuiEdgesBypassStates()
{
    const OssSnBaseNode *node = parentNode();
    if (!m_GuiNode || !node)
        return;
    m_GuiNode->setDisabled(!node->enabledAsBool());
    m_GuiNode->setBypassed(node->isBypassed());
    // A node that is off passes its stream on, or each of its streams; the others lead nowhere.
    const bool passes = !node->enabledAsBool() || node->isBypassed();
    QSet<QString> passed;
    for (const OssSnBaseNode::OutputPoint &point : node->outputPoints())
        passed.insert(OssShaderNetworkUtils::streamInput(node, point.name));
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        OssNgEdge *edge = port.source ? m_GuiNode->input(port.name) : nullptr;
        if (!edge)
            continue;
        edge->setBypassed(!port.enabled || (passes && !passed.contains(port.name)));
        edge->setShared(port.shared);
    }
}

void OssSnNodeGraphViewContext::onParentInputIsShared(QString name)
{
    const OssSnBaseNode *node = parentNode();
    OssNgEdge *edge = m_GuiNode ? m_GuiNode->input(name) : nullptr;
    if (edge && node)
        edge->setShared(node->sharedInputNames().contains(name));
}

void OssSnNodeGraphViewContext::onInputEnabledChanged(QString name, bool enabled)
{
    OssNgEdge *edge = m_GuiNode ? m_GuiNode->input(name) : nullptr;
    if (edge)
        edge->setBypassed(!enabled);
}
