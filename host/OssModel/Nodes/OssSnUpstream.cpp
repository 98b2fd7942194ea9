#include "OssModel/Nodes/OssSnUpstream.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QHash>

#include <algorithm>

namespace {

using Input = OssSnUpstream::Input;

QVector<Input> inputsOf(const OssSnBaseNode *node)
{
    QVector<Input> inputs;
    // What has pixels of its own does not look at what feeds it.
    if (OssShaderNetworkUtils::readsPixels(node))
        return inputs;
    for (const OssSnBaseNode::InputPort &port : node->inputPorts())
        inputs.append({port.name, OssSnProducer::ofInput(node, port.name)});
    return inputs;
}

} // namespace

void OssSnUpstream::walk(const OssSnBaseNode *producer, const Visit &visit)
{
    struct State
    {
        QVector<Input> inputs;
        bool isVisited = false;
    };

    QHash<const OssSnBaseNode *, State> states;
    QVector<const OssSnBaseNode *> open{producer};
    while (!open.isEmpty()) {
        const OssSnBaseNode *node = open.last();
        const bool waited = states.contains(node);
        State &state = states[node];
        if (!waited) {
            state.inputs = inputsOf(node);
            const int before = open.size();
            for (const Input &input : qAsConst(state.inputs)) {
                if (input.source.node && !states.contains(input.source.node))
                    open.append(input.source.node);
            }
            if (open.size() > before)
                continue;
        }
        if (!state.isVisited) {
            state.isVisited = true;
            visit(node, state.inputs);
        }
        open.removeLast();
    }
}

bool OssSnUpstream::readsAttributeAround(const OssSnBaseNode *node)
{
    return node->nodeType() && node->nodeType()->kernel == QLatin1String("groupAttribute");
}

OssCustomAttribute OssSnUpstream::attributeAround(const OssSnBaseNode *node)
{
    if (!readsAttributeAround(node))
        return {};
    const QString wanted = node->attribute(QStringLiteral("Attribute")).toString().trimmed();
    const OssShaderNetwork *network = node->network();
    while (network && network->parentGroupNode() && !wanted.isEmpty()) {
        const OssSnGroupNode *group = network->parentGroupNode();
        const OssCustomAttribute named = group->userAttribute(wanted);
        if (named.isValid())
            return named;
        const QVector<OssCustomAttribute> all = group->userAttributes();
        const auto *shown = std::find_if(
            all.cbegin(), all.cend(),
            [&wanted](const auto &attribute) { return attribute.prettyName() == wanted; });
        if (shown != all.cend())
            return *shown;
        network = group->network();
    }
    return {};
}
