#include "OssScriptObjects/OssaNodeGraph.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssScriptObjects/OssaNode.h"

#include <QMetaEnum>

// Putting nodes in order.

namespace Ossa {

QStringList NodeGraph::arrangements() const
{
    if (!network())
        return {};
    const auto values = QMetaEnum::fromType<OssShaderNetworkManager::Arrangement>();
    QStringList names;
    for (int i = 0; i < values.keyCount(); ++i)
        names.append(
            OssShaderNetworkManager::nameOf(OssShaderNetworkManager::Arrangement(values.value(i))));
    return names;
}

void NodeGraph::arrange()
{
    const OssShaderNetwork *own = network();
    if (!own || own->nodes().isEmpty())
        return;
    const OssResult done = OssShaderNetworkManager::instance()->requestArrangement(
        own->nodes(), OssShaderNetworkManager::ArrangeInLayers);
    if (!done)
        fail(OssScriptException::WrongState, done.error());
}

void NodeGraph::arrange(const QList<Node *> &nodes, const QString &how)
{
    QList<OssSnBaseNode *> wanted;
    if (!ownNodes(nodes, &wanted))
        return;
    const int index = arrangements().indexOf(how.toLower());
    if (index < 0) {
        fail(OssScriptException::UnknownName,
             QStringLiteral("There is no arrangement \"%1\"; there are %2")
                 .arg(how, arrangements().join(QStringLiteral(", "))));
        return;
    }
    const auto values = QMetaEnum::fromType<OssShaderNetworkManager::Arrangement>();
    const OssResult done = OssShaderNetworkManager::instance()->requestArrangement(
        wanted, OssShaderNetworkManager::Arrangement(values.value(index)));
    if (!done)
        fail(OssScriptException::WrongState, done.error());
}

} // namespace Ossa
