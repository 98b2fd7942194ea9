#include "OssModel/Evaluation/OssSolo.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"

namespace {

/// The network at the top of those around the node; null when the node, or a group around it, is out
/// of the graph.
const OssShaderNetwork *topOf(const OssSnBaseNode *node)
{
    const OssShaderNetwork *network = node ? node->network() : nullptr;
    while (network && network->parentGroupNode())
        network = network->parentGroupNode()->network();
    return network;
}

} // namespace

OssSolo::OssSolo()
{
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &OssSolo::endIfGone);
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::currentShaderNetworkChanged, this, &OssSolo::endIfGone);
    connect(OssStatusManager::instance(), &OssStatusManager::stopAsked, this, &OssSolo::end);
}

QString OssSolo::pictureOutput(const OssSnBaseNode *node)
{
    const QString output = node && node->network() ? node->prefferedOutputPoint() : QString();
    if (output.isEmpty() || node->hasDetachedOutputs())
        return {};
    for (const OssSnBaseNode::OutputPoint &point : node->outputPoints()) {
        if (point.name == output && point.kind != OssSnDataKind::Material
            && point.kind != OssSnDataKind::Data)
            return output;
    }
    return {};
}

const OssSnBaseNode *OssSolo::node() const
{
    return m_node;
}

bool OssSolo::look(const OssSnBaseNode *node)
{
    const QString output = pictureOutput(node);
    if (output.isEmpty())
        return false;
    if (node == m_node && output == m_outputPoint)
        return true;
    m_node = node;
    m_outputPoint = output;
    Q_EMIT changed();
    return true;
}

void OssSolo::end()
{
    if (m_outputPoint.isEmpty())
        return;
    m_node.clear();
    m_outputPoint.clear();
    Q_EMIT changed();
}

void OssSolo::endIfGone()
{
    if (m_outputPoint.isEmpty())
        return;
    const OssShaderNetwork *shown = OssShaderNetworkManager::instance()->currentShaderNetwork();
    if (!shown || shown->rootNetwork() != topOf(m_node) || pictureOutput(m_node) != m_outputPoint)
        end();
}
