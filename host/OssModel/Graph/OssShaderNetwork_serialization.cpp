#include "OssModel/Graph/OssShaderNetwork.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssNodeTypeTable.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Graph/OssSnNodeFactory.h"
#include "OssModel/Types/OssSnTags.h"

#include <utility>

namespace {

const QString NodesCollection = QStringLiteral("m_nodes");

} // namespace

bool OssShaderNetwork::saveObjects(OssSerializer &serializer)
{
    if (!parentGroupNode())
        OssNodeTypeTable::write(serializer, nodes());
    QList<OssSnBaseNode *> written = nodes();
    if (serializer.isExcerpt())
        written.removeOne(viewerNode());
    serializer.beginCollection(NodesCollection, written.size(), QStringLiteral("QList"),
                               QStringLiteral("OssSnBaseNode"), {});
    bool saved = true;
    for (OssSnBaseNode *node : qAsConst(written))
        saved = node->save(serializer, node->name(), node->identityAttributes()) && saved;
    serializer.endCollection();
    if (!parentGroupNode())
        serializer.writeElement(QStringLiteral("viewer"),
                                {{QStringLiteral("edge"), QString::number(m_viewerEdge)}});
    return saved;
}

bool OssShaderNetwork::onLoadCollection(const QString &name, const QString &type,
                                        const QString &elementType, int count,
                                        const Attributes &attributes)
{
    return name == NodesCollection
           || OssSerializableObject::onLoadCollection(name, type, elementType, count, attributes);
}

OssSerializableObject *OssShaderNetwork::onLoadCollectionObject(OssDeserializer &deserializer,
                                                                const QString &name,
                                                                const QString &type,
                                                                const Attributes &attributes)
{
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || m_byName.contains(name)) {
        deserializer.raiseError(tr("\"%1\" is no name for a node, or is there twice").arg(name));
        return nullptr;
    }
    const QString key = attributes.value(QStringLiteral("key"));
    const OssShaderNetwork *root = rootNetwork();
    const QString definition = attributes.value(QStringLiteral("definition"));
    const OssNodeTypeTable::Entry fileType = root->m_fileTypes
                                                 ? root->m_fileTypes->find(key, definition)
                                                 : OssNodeTypeTable().find(key, definition);
    NodePointer made = OssSnNodeFactory::make(fileType.type);
    if (made->isPlaceholder()) {
        made->setForeignType(fileType.description);
        OssDebug("OssShaderNetwork", __LINE__,
                 "[ !! ] Node '%s' has the unknown type '%s' (%s) and is kept as a placeholder",
                 qPrintable(name), qPrintable(key), qPrintable(type));
        made->setErrorText(tr("The node type \"%1\" is not known here").arg(key));
    }
    made->loadIdentity(attributes);
    OssSnBaseNode *node = insertNode(std::move(made));
    node->createContexts();
    return node;
}

void OssShaderNetwork::onEndCollection(OssDeserializer &, const QString &) {}

bool OssShaderNetwork::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                     const Attributes &attributes)
{
    if (name == QLatin1String("nodeType")) {
        if (!m_fileTypes)
            m_fileTypes = std::make_unique<OssNodeTypeTable>();
        m_fileTypes->read(deserializer, attributes);
        return true;
    }
    if (name == QLatin1String("knobLink")) {
        if (OssSnBaseNode *node = this->node(attributes.value(QStringLiteral("node"))))
            node->addDelayedKnob({attributes.value(QStringLiteral("group")),
                                  attributes.value(QStringLiteral("knob")),
                                  attributes.value(QStringLiteral("attribute"))});
        return true;
    }
    if (name != QLatin1String("viewer"))
        return OssSerializableObject::onLoadElement(deserializer, name, attributes);
    setViewerNodeCurrentEdge(attributes.value(QStringLiteral("edge")).toInt(), false);
    return true;
}

// --- after reading

QStringList OssShaderNetwork::finishLoading()
{
    QStringList faults;
    m_fileTypes.reset();
    wireLoadedNodes(&faults);
    cutLoadedCycles(&faults);
    finishNodes();
    for (const QString &fault : qAsConst(faults))
        OssDebug("OssShaderNetwork", __LINE__, "[ !! ] %s", qPrintable(fault));
    return faults;
}

void OssShaderNetwork::wireLoadedNodes(QStringList *faults)
{
    const OssUndoManager::Pause pause;
    const OssShaderNetwork *root = rootNetwork();
    for (const NodePointer &node : m_nodes) {
        node->setContainer(this->node(std::exchange(node->m_container.savedName, {})));
        const QVector<OssSnBaseNode::PendingConnection> pending = node->takePendingConnections();
        for (const OssSnBaseNode::PendingConnection &wire : pending) {
            OssSnBaseNode *source = wire.source.startsWith(QLatin1Char('/'))
                                        ? root->nodeByPath(wire.source)
                                        : this->node(wire.source);
            if (source && source->isPlaceholder() && !source->hasOutputPoint(wire.outputPoint))
                source->addPlaceholderOutput(wire.outputPoint);
            const bool foreign = source && source->network() != this
                                 && !node->hasTag(OssSnTags::viewer());
            if (!source || foreign || !node->hasInput(wire.input)
                || !source->hasOutputPoint(wire.outputPoint)) {
                faults->append(
                    tr("Input \"%1\" of node \"%2\" cannot be fed from \"%3\" of \"%4\": "
                       "there is no such thing")
                        .arg(wire.input, node->path(), wire.outputPoint, wire.source));
                continue;
            }
            node->connectSilently(wire.input, source, wire.outputPoint);
        }
        if (auto *group = qobject_cast<OssSnGroupNode *>(node.get()))
            group->groupNetwork()->wireLoadedNodes(faults);
    }
}

void OssShaderNetwork::cutLoadedCycles(QStringList *faults)
{
    // Depth-first over all wires at once: a wire to a node that is still open closes a loop.
    enum State { Open = 1, Done = 2 };

    QHash<OssSnBaseNode *, State> states;

    struct Frame
    {
        OssSnBaseNode *node;
        int next;
    };

    for (const NodePointer &start : m_nodes) {
        if (auto *group = qobject_cast<OssSnGroupNode *>(start.get()))
            group->groupNetwork()->cutLoadedCycles(faults);
        if (states.contains(start.get()))
            continue;
        QVector<Frame> stack{{start.get(), 0}};
        states.insert(start.get(), Open);
        while (!stack.isEmpty()) {
            Frame &frame = stack.last();
            OssSnBaseNode *node = frame.node;
            if (frame.next >= node->inputPorts().size()) {
                states.insert(node, Done);
                stack.removeLast();
                continue;
            }
            const OssSnBaseNode::InputPort port = node->inputPorts().at(frame.next++);
            if (!port.source || states.value(port.source) == Done)
                continue;
            if (states.value(port.source) == Open) {
                faults->append(tr("Input \"%1\" of node \"%2\" is not fed from \"%3\": the "
                                  "connection would close a loop")
                                   .arg(port.name, node->path(), port.source->path()));
                node->connectSilently(port.name, nullptr, {});
                continue;
            }
            states.insert(port.source, Open);
            stack.append({port.source, 0});
        }
    }
}

void OssShaderNetwork::finishNodes()
{
    for (const NodePointer &node : m_nodes) {
        if (auto *group = qobject_cast<OssSnGroupNode *>(node.get()))
            group->groupNetwork()->finishNodes();
        node->initializeContexts();
        OssShaderNetworkManager::instance()->registerNode(this, node.get());
    }
    OssShaderNetworkManager::instance()->endCollection(this);
    Q_EMIT nodesChanged();
}
