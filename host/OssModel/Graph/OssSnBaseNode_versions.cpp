#include "OssModel/Graph/OssSnBaseNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssNodeTypeTable.h"
#include "OssModel/Graph/OssPublishedGroup.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Graph/OssSnNodeFactory.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <algorithm>

// What a node was made from, and how it comes to be of another definition of its type.

void OssSnBaseNode::setVersionUUID(const QString &uuid, const QString &createdHash)
{
    m_versionUUID = uuid;
    m_versionHashCreated = createdHash;
}

QString OssSnBaseNode::definitionId() const
{
    return m_type ? OssNodeTypeTable::idOf(*m_type) : m_foreignId;
}

QString OssSnBaseNode::versionHashCreated() const
{
    if (!m_versionHashCreated.isEmpty() || !m_type)
        return m_versionHashCreated;
    return OssShaderNetworkManager::instance()->pristineHash(m_type);
}

QString OssSnBaseNode::versionHashSourcePresentDump() const
{
    QString text = m_type ? QString::fromUtf8(m_type->definition) : m_pathKey + QLatin1Char('\n');
    // A group's ports are its user's; elsewhere they are what the type says.
    if (m_type && !qobject_cast<const OssSnGroupNode *>(this) && !hasPortsOfType())
        text += QStringLiteral("ports %1 > %2\n")
                    .arg(inputNames().join(QLatin1Char(',')),
                         outputPointNames().join(QLatin1Char(',')));
    const auto *group = qobject_cast<const OssSnGroupNode *>(this);
    if (group && m_type && m_type->isPublishedGroup())
        text += OssPublishedGroup::inside(group).join(QLatin1Char('\n')) + QLatin1Char('\n');
    for (const NamedContext &named : m_contexts) {
        if (named.context->hasVersionHash())
            text += named.name + QLatin1Char('\n') + named.context->versionHashSource();
    }
    return text;
}

QString OssSnBaseNode::versionHashPresent() const
{
    // Contexts tell of tables without an order.
    QList<QByteArray> lines = versionHashSourcePresentDump().toUtf8().split('\n');
    std::sort(lines.begin(), lines.end());
    return QString::fromLatin1(
        QCryptographicHash::hash(lines.join('\n'), QCryptographicHash::Sha1).toHex());
}

bool OssSnBaseNode::versionDateLT(const QString &a, const QString &b)
{
    const QDateTime first = QDateTime::fromString(a, Qt::ISODate);
    const QDateTime second = QDateTime::fromString(b, Qt::ISODate);
    // What has no date is older than what has one.
    return first.isValid() && second.isValid() ? first < second
                                               : !first.isValid() && second.isValid();
}

bool OssSnBaseNode::hasPortsOfType() const
{
    const auto sameInput = [](const OssSnNodeType::Port &a, const InputPort &b) {
        return a.name == b.name;
    };
    const auto sameOutput = [](const OssSnNodeType::Port &a, const OutputPoint &b) {
        return a.name == b.name;
    };
    return std::equal(m_type->inputs.cbegin(), m_type->inputs.cend(), m_inputs.cbegin(),
                      m_inputs.cend(), sameInput)
           && std::equal(m_type->outputs.cbegin(), m_type->outputs.cend(), m_outputs.cbegin(),
                         m_outputs.cend(), sameOutput);
}

// --- another definition

OssSnBaseNode::Definition OssSnBaseNode::definition() const
{
    Definition own{m_type,        m_pathKey, m_versionUUID, m_versionHashCreated,
                   m_versionDate, m_inputs,  m_outputs,     userAttributes(),
                   nullptr};
    if (m_type) {
        own.look = OssSnNodeFactory::make(m_type);
        own.look->createContexts();
        takeLook(*this, own.look.get());
    }
    return own;
}

OssSnBaseNode::Definition OssSnBaseNode::definitionOf(
    const std::shared_ptr<const OssSnNodeType> &type)
{
    std::shared_ptr<OssSnBaseNode> pristine = OssShaderNetwork::makeNode(type);
    pristine->createContexts();
    return {type,
            pristine->m_pathKey,
            pristine->m_versionUUID,
            {},
            pristine->m_versionDate,
            pristine->m_inputs,
            pristine->m_outputs,
            pristine->userAttributes(),
            pristine};
}

void OssSnBaseNode::takeLook(const OssSnBaseNode &from, OssSnBaseNode *to)
{
    for (const NamedContext &named : qAsConst(to->m_contexts)) {
        if (OssSnBaseContext *other = from.context(named.name))
            named.context->copyGuiStateFrom(other);
    }
}

void OssSnBaseNode::applyDefinition(const Definition &definition)
{
    m_type = definition.type;
    m_pathKey = definition.pathKey;
    m_versionUUID = definition.versionUUID;
    m_versionHashCreated = definition.versionHashCreated;
    m_versionDate = definition.versionDate;
    // Wires are what they are now; a port that has one is in both definitions.
    QVector<InputPort> inputs = definition.inputs;
    for (InputPort &port : inputs) {
        const int index = inputIndex(port.name);
        port.source = index < 0 ? nullptr : m_inputs.at(index).source;
        port.sourceOutput = index < 0 ? QString() : m_inputs.at(index).sourceOutput;
    }
    m_inputs = inputs;
    m_outputs = definition.outputs;
    initUserAttributes(definition.attributes);
    Q_EMIT inputsRefreshed();
    Q_EMIT outputsRefreshed();
    if (definition.look)
        takeLook(*definition.look, this);
    for (const OssCustomAttribute &attribute : definition.attributes) {
        onUserAttributeSet(attribute, false);
        Q_EMIT userAttributeChanged(attribute.name());
    }
    emitSystemShaderStatus(); // tags are the type's
    Q_EMIT nodeRefreshed();
    Q_EMIT nodeStateRefreshed();
}

// --- order of attributes

QStringList OssSnBaseNode::typicalAttributeOrder() const
{
    QStringList order;
    if (m_type) {
        for (const OssCustomAttribute &attribute : m_type->attributes)
            order.append(attribute.name());
    }
    const QStringList own = userAttributeNames();
    for (const QString &name : own) {
        if (!order.contains(name))
            order.append(name);
    }
    return order;
}
