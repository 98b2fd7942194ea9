#include "OssModel/Graph/OssSnGroupNode.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssValueText.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Types/OssSnTags.h"

namespace {

const QString InputKey = QStringLiteral("_System/Group Input");
const QString OutputKey = QStringLiteral("_System/Group Output");
const QString NetworkObject = QStringLiteral("m_groupNetwork");
const QString FirstPosition = QStringLiteral("grouped");
const QString At = QStringLiteral("at");

} // namespace

OssSnGroupNode::OssSnGroupNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnBaseNode(std::move(type))
    , m_groupNetwork(std::make_unique<OssShaderNetwork>(this))
{
}

OssSnGroupNode::~OssSnGroupNode()
{
    deleteContexts();
    OssLinkedCustomAttributeManager::instance()->forget(this);
    m_groupNetwork.reset();
}

// --- ports

OssSnBaseNode *OssSnGroupNode::createInside(const QString &pathKey, const QString &name,
                                            OssSnDataKind kind)
{
    m_newPortKind = kind;
    OssSnBaseNode *inside = m_groupNetwork->createNode(pathKey, name);
    m_newPortKind.reset();
    if (inside)
        inside->setPortKinds(kind);
    return inside;
}

OssSnBaseNode *OssSnGroupNode::createInput(const QString &name, OssSnDataKind kind)
{
    if (name.trimmed().isEmpty() || hasInput(name) || m_groupNetwork->node(name))
        return nullptr;
    OssUndoManager::AutoMacro macro(tr("Add Group Input %1").arg(name));
    return createInside(InputKey, name, kind);
}

OssSnBaseNode *OssSnGroupNode::createOutput(const QString &name, OssSnDataKind kind)
{
    if (name.trimmed().isEmpty() || hasOutputPoint(name) || m_groupNetwork->node(name))
        return nullptr;
    OssUndoManager::AutoMacro macro(tr("Add Group Output %1").arg(name));
    return createInside(OutputKey, name, kind);
}

void OssSnGroupNode::onNodesAddedInside(const QList<OssSnBaseNode *> &nodes)
{
    QVector<InputPort> inputs;
    bool isNew = false;
    for (const OssSnBaseNode *node : nodes) {
        const QString name = node->name();
        if (node->hasTag(OssSnTags::input()) && !hasInput(name)) {
            InputPort port;
            port.name = name;
            port.kind = m_newPortKind.value_or(node->outputPoints().value(0).kind);
            port.preferred = inputPorts().isEmpty() && inputs.isEmpty();
            inputs.append(port);
        } else if (node->hasTag(OssSnTags::output()) && !hasOutputPoint(name)) {
            addOutputPoint({name, {}, m_newPortKind.value_or(node->inputPorts().value(0).kind)});
            isNew = true;
        }
    }
    addInputs(inputs);
    if (isNew || !inputs.isEmpty())
        Q_EMIT newGroupNodeInputOutputCreated();
}

void OssSnGroupNode::onNodeRemovedInside(const OssSnBaseNode *node)
{
    if (node->hasTag(OssSnTags::input()))
        OssSnBaseNode::removeInput(node->name());
    else if (node->hasTag(OssSnTags::output()))
        OssSnBaseNode::removeOutputPoint(node->name());
}

void OssSnGroupNode::onNodeRenamedInside(const OssSnBaseNode *node, const QString &oldName)
{
    // The step of the node's renaming brings the port along in both directions.
    const OssUndoManager::Pause pause;
    if (node->hasTag(OssSnTags::input()))
        OssSnBaseNode::renameInput(oldName, node->name());
    else if (node->hasTag(OssSnTags::output()))
        OssSnBaseNode::renameOutputPoint(oldName, node->name());
}

bool OssSnGroupNode::renameInside(OssSnBaseNode *inside, const QString &newName)
{
    if (newName.simplified().isEmpty() || m_groupNetwork->node(newName))
        return false;
    inside->setName(newName);
    return true;
}

bool OssSnGroupNode::renameInput(const QString &oldName, const QString &newName)
{
    OssSnBaseNode *inside = inputNodeInside(oldName);
    return inside ? renameInside(inside, newName) : OssSnBaseNode::renameInput(oldName, newName);
}

bool OssSnGroupNode::renameOutputPoint(const QString &oldName, const QString &newName)
{
    OssSnBaseNode *inside = outputNodeInside(oldName);
    return inside ? renameInside(inside, newName)
                  : OssSnBaseNode::renameOutputPoint(oldName, newName);
}

bool OssSnGroupNode::removeInput(const QString &name)
{
    OssSnBaseNode *inside = inputNodeInside(name);
    if (!inside)
        return OssSnBaseNode::removeInput(name);
    m_groupNetwork->removeNodes({inside});
    return true;
}

bool OssSnGroupNode::removeOutputPoint(const QString &name)
{
    OssSnBaseNode *inside = outputNodeInside(name);
    if (!inside)
        return OssSnBaseNode::removeOutputPoint(name);
    m_groupNetwork->removeNodes({inside});
    return true;
}

OssSnBaseNode *OssSnGroupNode::inputNodeInside(const QString &input) const
{
    OssSnBaseNode *node = m_groupNetwork->node(input);
    return node && node->hasTag(OssSnTags::input()) ? node : nullptr;
}

OssSnBaseNode *OssSnGroupNode::outputNodeInside(const QString &outputPoint) const
{
    OssSnBaseNode *node = m_groupNetwork->node(outputPoint);
    return node && node->hasTag(OssSnTags::output()) ? node : nullptr;
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

// --- files

OssResult OssSnGroupNode::exportAsGizmo(const QString &path)
{
    return path.isEmpty() ? OssResult() : OssShaderNetworkIO::saveNodesToXmlFile({this}, path);
}

bool OssSnGroupNode::saveObjects(OssSerializer &serializer)
{
    const bool saved = OssSnBaseNode::saveObjects(serializer);
    saveKnobLinks(serializer);
    if (m_firstPosition)
        serializer.writeElement(FirstPosition, {{At, OssValueText::toText(*m_firstPosition)}});
    return m_groupNetwork->save(serializer, NetworkObject, {}) && saved;
}

bool OssSnGroupNode::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                   const Attributes &attributes)
{
    if (name == QLatin1String("knobLink")) {
        loadKnobLink(attributes);
        return true;
    }
    if (name != FirstPosition)
        return OssSnBaseNode::onLoadElement(deserializer, name, attributes);
    const QVariant at = OssValueText::fromText(attributes.value(At), QMetaType::QPointF);
    if (at.isValid())
        m_firstPosition = at.toPointF();
    else
        OssDebug("OssSnGroupNode", __LINE__, "[ !! ] '%s' was grouped at no place: '%s'",
                 qPrintable(this->name()), qPrintable(attributes.value(At)));
    return true;
}

OssSerializableObject *OssSnGroupNode::onLoadSubObject(OssDeserializer &deserializer,
                                                       const QString &name, const QString &type)
{
    if (name == NetworkObject)
        return m_groupNetwork.get();
    return OssSnBaseNode::onLoadSubObject(deserializer, name, type);
}
