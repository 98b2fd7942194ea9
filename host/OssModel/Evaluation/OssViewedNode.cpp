#include "OssModel/Evaluation/OssViewedNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"

namespace {

/// The viewer's current input.
OssSnWireEnd lookedThrough()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    const OssSnBaseNode *viewer = network ? network->viewerNode() : nullptr;
    if (!viewer)
        return {};
    return {viewer, QString::number(network->rootNetwork()->viewerNodeCurrentEdge())};
}

} // namespace

OssViewedNode::OssViewedNode()
{
    const OssUndoManager *history = OssUndoManager::instance();
    connect(history, &OssUndoManager::changed, this, &OssViewedNode::mark);
    connect(history, &OssUndoManager::changedWithoutStep, this, &OssViewedNode::mark);
    connect(OssSolo::instance(), &OssSolo::changed, this, &OssViewedNode::mark);
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::currentShaderNetworkChanged, this, &OssViewedNode::mark);
}

OssSnProducer OssViewedNode::now()
{
    const OssSolo *solo = OssSolo::instance();
    if (solo->node())
        return {solo->node(), solo->outputPoint()};
    const auto [viewer, input] = lookedThrough();
    if (!viewer || !viewer->isInputEnabled(input))
        return {};
    return {viewer->inputNode(input), viewer->inputOutputPoint(input)};
}

OssSnWireEnd OssViewedNode::off()
{
    const OssSolo *solo = OssSolo::instance();
    if (solo->node())
        return OssSnProducer::offBehind(solo->node(), solo->outputPoint());
    const OssSnWireEnd through = lookedThrough();
    return OssSnProducer::offAtInput(through.node, through.input);
}

void OssViewedNode::mark()
{
    auto *node = const_cast<OssSnBaseNode *>(now().node);
    if (node == m_marked)
        return;
    if (m_marked)
        m_marked->setGuiActive(false);
    m_marked = node;
    if (node)
        node->setGuiActive(true);
}
