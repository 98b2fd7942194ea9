#include "OssModel/Graph/OssShaderNetworkManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssNodeConversion.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnGroupNode.h"

// Nodes against the types that are installed, and what waits until inserted nodes stand there.

namespace {

constexpr const char *Source = "OssShaderNetworkManager";

void report(const QStringList &found, QStringList *lost)
{
    for (const QString &line : found)
        OssDebug(Source, __LINE__, "[ !! ] %s", qPrintable(line));
    if (lost)
        *lost += found;
}

} // namespace

QString OssShaderNetworkManager::pristineHash(const OssSnNodeTypeLibrary::TypePointer &type)
{
    if (!type)
        return {};
    QString &hash = m_pristineHashes[type];
    if (hash.isEmpty())
        hash = OssSnBaseNode::definitionOf(type).look->versionHashPresent();
    return hash;
}

QString OssShaderNetworkManager::hashStringForVersionUUID(const QString &versionUUID)
{
    return pristineHash(m_types.findByVersion(versionUUID));
}

QString OssShaderNetworkManager::versionDatePresent(const QString &versionUUID) const
{
    const auto type = m_types.findByVersion(versionUUID);
    return type ? type->date : QString();
}

bool OssShaderNetworkManager::upgradeNode(OssSnBaseNode *node, QStringList *lost)
{
    if (!node) {
        OssDebug(Source, __LINE__, "Node is NULL");
        return false;
    }
    QStringList found;
    const bool done = OssNodeConversion::upgrade(node, m_types.findByVersion(node->versionUUID()),
                                                 &found);
    report(found, lost);
    return done;
}

OssSnBaseNode *OssShaderNetworkManager::convertNodeToKeyPath(OssSnBaseNode *node,
                                                             const QString &pathKey,
                                                             QStringList *lost)
{
    if (!node) {
        OssDebug(Source, __LINE__, "Node is NULL");
        return nullptr;
    }
    QStringList found;
    OssSnBaseNode *converted = OssNodeConversion::convert(node, m_types.find(pathKey), &found);
    report(found, lost);
    return converted;
}

bool OssShaderNetworkManager::canConvertToKeyPath(const QString &pathKey) const
{
    const OssSnNodeTypeLibrary::TypePointer type = m_types.find(pathKey);
    return type && OssNodeConversion::canBecome(*type);
}

void OssShaderNetworkManager::upgradeNetworks(const QList<OssSnBaseNode *> &nodes,
                                              QStringList *lost)
{
    const OssUndoManager::AutoMacro macro(tr("Upgrade Nodes"));
    for (OssSnBaseNode *node : nodes) {
        if (!node)
            continue;
        const QString present = node->versionHashPresent();
        const QString installed = hashStringForVersionUUID(node->versionUUID());
        if (!installed.isEmpty() && present != installed && present == node->versionHashCreated()
            && OssSnBaseNode::versionDateLT(node->versionDate(),
                                            versionDatePresent(node->versionUUID())))
            upgradeNode(node, lost);
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node))
            upgradeNetworks(group->groupNetwork()->nodes(), lost);
    }
}

void OssShaderNetworkManager::createDelayedKnobs(const QList<OssSnBaseNode *> &nodes)
{
    for (OssSnBaseNode *node : nodes) {
        const QVector<OssSnBaseNode::DelayedKnob> knobs =
            node ? node->takeDelayedKnobs() : QVector<OssSnBaseNode::DelayedKnob>();
        OssSnGroupNode *group = node && node->network() ? node->network()->parentGroupNode()
                                                        : nullptr;
        if (!m_smartLinking || !group)
            continue;
        for (const OssSnBaseNode::DelayedKnob &knob : knobs) {
            if (group->path() == knob.groupPath)
                group->addKnobLink(knob.knob, node, knob.attribute);
        }
    }
}
