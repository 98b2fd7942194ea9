#include "OssModel/Graph/OssSnBaseNode.h"

#include "OssCore/Documents/OssSerializer.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkContextLoader.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <atomic>

namespace {

quint64 nextSerial()
{
    static std::atomic<quint64> last{0};
    return ++last;
}

} // namespace

OssSnBaseNode::OssSnBaseNode(std::shared_ptr<const OssSnNodeType> type)
    : m_type(std::move(type))
    , m_serial(nextSerial())
{
    connect(this, &OssSerializableObject::selectedChanged, this, [this] {
        if (m_network)
            Q_EMIT m_network->selectionChanged();
    });
    if (!m_type)
        return;
    m_pathKey = m_type->pathKey;
    m_versionUUID = m_type->versionUUID;
    m_versionDate = m_type->date;
    m_name = m_type->baseName();
    for (const OssSnNodeType::Port &port : m_type->inputs) {
        InputPort input;
        input.name = port.name;
        input.label = port.label;
        input.kind = port.kind;
        input.preferred = port.preferred;
        input.setAtLoad = port.setAtLoad;
        input.tags = port.tags;
        m_inputs.append(input);
    }
    for (const OssSnNodeType::Port &port : m_type->outputs)
        m_outputs.append({port.name, port.label, port.kind});
    initUserAttributes(m_type->attributes);
}

OssSnBaseNode::~OssSnBaseNode()
{
    deleteContexts();
}

void OssSnBaseNode::deleteContexts()
{
    // They call back into the node, so they must not be left to ~QObject.
    while (!m_contexts.isEmpty())
        delete m_contexts.takeLast().context;
}

// --- identity

void OssSnBaseNode::setName(const QString &name)
{
    QString after = OssSerializer::withoutUnwritable(name.simplified());
    after.replace(QLatin1Char('/'), QLatin1Char('_'));
    if (after.isEmpty() || after == m_name)
        return;
    if (m_network)
        after = m_network->generateUniqueNodeName(after);
    const QString before = m_name;
    applyName(after);
    if (m_network) {
        OssUndoManager::instance()->record(
            tr("Rename %1").arg(before), [this, before] { applyName(before); },
            [this, after] { applyName(after); }, this);
    }
}

void OssSnBaseNode::applyName(const QString &name)
{
    const QString before = m_name;
    m_name = name;
    setObjectName(name);
    if (m_network)
        m_network->nodeWasRenamed(this, before);
    Q_EMIT nameChanged(m_name);
    for (const OutgoingConnection &wire : qAsConst(m_outgoing)) {
        if (wire.target->hasTag(OssSnTags::viewer()))
            Q_EMIT wire.target
                ->viewerNodeRequestUpdateVirtualEdge(); // which is named after the node
    }
}

QString OssSnBaseNode::path() const
{
    const OssSnBaseNode *group = m_network ? m_network->parentGroupNode() : nullptr;
    return (group ? group->path() : QString()) + QLatin1Char('/') + m_name;
}

QString OssSnBaseNode::lockOf(const QString &attribute) const
{
    const OssSnBaseNode *locked = OssLinkedCustomAttributeManager::instance()->lockedNode(
        this, attribute);
    return locked ? tr("the properties of \"%1\" are locked").arg(locked->name()) : QString();
}

bool OssSnBaseNode::canBeBypassed() const
{
    return !hasTag(OssSnTags::viewer());
}

bool OssSnBaseNode::hasTag(const QString &tag) const
{
    return (m_type && m_type->tags.contains(tag)) || m_tags.contains(tag);
}

void OssSnBaseNode::addTag(const QString &tag)
{
    m_tags.insert(tag);
    if (tag == OssSnTags::systemShader())
        emitSystemShaderStatus();
}

QStringList OssSnBaseNode::tags() const
{
    QSet<QString> all = m_tags;
    if (m_type)
        all.unite(m_type->tags);
    QStringList list = all.values();
    list.sort();
    return list;
}

// --- contexts

OssSnBaseContext *OssSnBaseNode::context(const QString &name) const
{
    for (const NamedContext &named : m_contexts) {
        if (named.name == name)
            return named.context;
    }
    return nullptr;
}

OssSnBaseContext *OssSnBaseNode::viewContext() const
{
    return context(QStringLiteral("NodeGraphView"));
}

void OssSnBaseNode::createContexts(const QString &description)
{
    const QString own = m_type ? m_type->contextsDescription : QStringLiteral("<NodeType/>");
    const auto loaders = OssShaderNetworkManager::instance()->contextLoaders();
    for (const auto &entry : loaders) {
        if (!entry.loader || context(entry.name))
            continue;
        const QList<OssSnBaseContext *> made = entry.loader->load(
            description.isEmpty() ? own : description, this);
        for (OssSnBaseContext *context : made) {
            if (context)
                m_contexts.append({entry.name, context});
        }
    }
}

void OssSnBaseNode::initializeContexts()
{
    m_contextsReady = true;
    for (const NamedContext &named : qAsConst(m_contexts)) {
        named.context->initializeGui();
        const QVector<OssCustomAttribute> attributes = userAttributes();
        for (const OssCustomAttribute &attribute : attributes)
            named.context->onUserAttributeChanged(attribute, this);
    }
}

// --- attributes

void OssSnBaseNode::onUserAttributeSet(const OssCustomAttribute &attribute, bool added)
{
    if (!m_contextsReady)
        return;
    for (const NamedContext &named : qAsConst(m_contexts))
        named.context->onUserAttributeChanged(attribute, this);
    if (added)
        Q_EMIT nodeAttributeCreated(attribute.name());
}

void OssSnBaseNode::onUserAttributeGone(const OssCustomAttribute &attribute)
{
    for (const NamedContext &named : qAsConst(m_contexts))
        named.context->onUserAttributeRemoved(attribute, this);
    if (attribute.isVisible())
        Q_EMIT visibleNodeAttributeRemoved(attribute.name());
}

QString OssSnBaseNode::dumpNodeInfo() const
{
    QString text = tr("Node %1\n Type %2, version %3\n Tags %4\n")
                       .arg(path(), m_pathKey, m_versionUUID, tags().join(QLatin1String(", ")));
    for (const InputPort &port : m_inputs) {
        text += QStringLiteral(" Input %1").arg(port.name);
        if (port.source)
            text += QStringLiteral(" <- %1.%2").arg(port.source->name(), port.sourceOutput);
        text += QLatin1Char('\n');
    }
    for (const OutgoingConnection &out : m_outgoing)
        text += QStringLiteral(" Output %1 -> %2.%3\n")
                    .arg(out.outputPoint, out.target->name(), out.input);
    for (const OssCustomAttribute &attribute : userAttributes())
        text += QStringLiteral(" %1 = %2\n").arg(attribute.name(), attribute.value().toString());
    return text;
}
