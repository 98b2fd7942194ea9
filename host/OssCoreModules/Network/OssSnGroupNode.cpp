#include "OssCoreModules/Network/OssSnGroupNode.h"

#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"

namespace {

const QString InputKey = QStringLiteral("_System/Group Input");
const QString OutputKey = QStringLiteral("_System/Group Output");
const QString NetworkObject = QStringLiteral("m_groupNetwork");

} // namespace

OssSnGroupNode::OssSnGroupNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnBaseNode(std::move(type))
    , m_groupNetwork(std::make_unique<OssShaderNetwork>(this))
{
}

OssSnGroupNode::~OssSnGroupNode()
{
    deleteContexts();
    m_groupNetwork.reset();
}

OssSnBaseNode *OssSnGroupNode::createInside(const QString &pathKey, const QString &name)
{
    return m_groupNetwork->createNode(pathKey, name);
}

OssSnBaseNode *OssSnGroupNode::createInput(const QString &name, OssSnDataKind kind)
{
    if (name.trimmed().isEmpty() || hasInput(name) || m_groupNetwork->node(name))
        return nullptr;
    OssUndoManager::AutoMacro macro(tr("Add Group Input %1").arg(name));
    OssSnBaseNode *inside = createInside(InputKey, name);
    if (!inside)
        return nullptr;
    InputPort port;
    port.name = inside->name();
    port.kind = kind;
    port.preferred = inputPorts().isEmpty();
    addInput(port);
    Q_EMIT newGroupNodeInputOutputCreated();
    return inside;
}

OssSnBaseNode *OssSnGroupNode::createOutput(const QString &name, OssSnDataKind kind)
{
    if (name.trimmed().isEmpty() || hasOutputPoint(name) || m_groupNetwork->node(name))
        return nullptr;
    OssUndoManager::AutoMacro macro(tr("Add Group Output %1").arg(name));
    OssSnBaseNode *inside = createInside(OutputKey, name);
    if (!inside)
        return nullptr;
    addOutputPoint({inside->name(), {}, kind});
    Q_EMIT newGroupNodeInputOutputCreated();
    return inside;
}

OssSnBaseNode *OssSnGroupNode::inputNodeInside(const QString &input) const
{
    OssSnBaseNode *node = m_groupNetwork->node(input);
    return node && node->hasTag(QStringLiteral("_input")) ? node : nullptr;
}

OssSnBaseNode *OssSnGroupNode::outputNodeInside(const QString &outputPoint) const
{
    OssSnBaseNode *node = m_groupNetwork->node(outputPoint);
    return node && node->hasTag(QStringLiteral("_output")) ? node : nullptr;
}

QList<OssSnBaseNode *> OssSnGroupNode::inputNodesInside() const
{
    QList<OssSnBaseNode *> nodes;
    const QStringList names = inputNames();
    for (const QString &name : names) {
        if (OssSnBaseNode *node = inputNodeInside(name))
            nodes.append(node);
    }
    return nodes;
}

QList<OssSnBaseNode *> OssSnGroupNode::outputNodesInside() const
{
    QList<OssSnBaseNode *> nodes;
    const QStringList names = outputPointNames();
    for (const QString &name : names) {
        if (OssSnBaseNode *node = outputNodeInside(name))
            nodes.append(node);
    }
    return nodes;
}

bool OssSnGroupNode::saveObjects(OssSerializer &serializer)
{
    const bool saved = OssSnBaseNode::saveObjects(serializer);
    return m_groupNetwork->save(serializer, NetworkObject, {}) && saved;
}

OssSerializableObject *OssSnGroupNode::onLoadSubObject(OssDeserializer &deserializer,
                                                       const QString &name, const QString &type)
{
    if (name == NetworkObject)
        return m_groupNetwork.get();
    return OssSnBaseNode::onLoadSubObject(deserializer, name, type);
}
