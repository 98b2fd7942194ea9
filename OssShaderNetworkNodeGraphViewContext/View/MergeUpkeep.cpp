#include "View/MergeUpkeep.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "View/MergeColorSpace.h"

#include <utility>

namespace {

QList<OssSnBaseNode *> withInside(OssSnBaseNode *node)
{
    QList<OssSnBaseNode *> all{node};
    if (const auto *group = qobject_cast<const OssSnGroupNode *>(node))
        all += group->groupNetwork()->getAllNodes();
    return all;
}

} // namespace

MergeUpkeep::MergeUpkeep(QObject *parent)
    : QObject(parent)
{
    using Networks = OssShaderNetworkManager;
    connect(Networks::instance(), &Networks::nodeMade, this, &MergeUpkeep::noteMade);
    connect(Networks::instance(), &Networks::nodeInserted, this, &MergeUpkeep::noteInserted);
    connect(Networks::instance(), &Networks::aboutToWire, this, &MergeUpkeep::noteWiring);
    connect(OssUndoManager::instance(), &OssUndoManager::editEnding, this, &MergeUpkeep::finish);
}

/// The merges inside a new group are those that it is made with: what the same edit moves into it has
/// been set before.
void MergeUpkeep::noteMade(OssSnBaseNode *node)
{
    const QList<OssSnBaseNode *> all = withInside(node);
    for (OssSnBaseNode *one : all) {
        if (OssLayerStreamUtils::isMergeNode(one))
            m_made.append(Made{one, MergeColorSpace::isOff(one)});
    }
    m_ends.append(End{node, {}});
    m_noted.insert(node);
}

void MergeUpkeep::noteInserted(OssSnBaseNode *node)
{
    const QList<OssSnBaseNode *> all = withInside(node);
    for (OssSnBaseNode *one : all) {
        m_ends.append(End{one, {}});
        m_noted.insert(one);
    }
}

void MergeUpkeep::noteWiring(OssSnBaseNode *node)
{
    if (m_noted.contains(node))
        return;
    m_noted.insert(node);
    m_ends.append(End{node, MergeColorSpace::holdsByteColor(node)
                                ? MergeColorSpace::mergesAbove(node)
                                : QSet<OssSnBaseNode *>()});
}

void MergeUpkeep::finish(bool kept)
{
    const QVector<Made> made = std::exchange(m_made, {});
    const QVector<End> ends = std::exchange(m_ends, {});
    m_noted.clear();
    if (!kept)
        return;
    for (const Made &one : made) {
        // What the edit set itself stays.
        if (one.merge && one.merge->network() && MergeColorSpace::isOff(one.merge) == one.isOff)
            MergeColorSpace::setBlendingColorspaceOnMergeNodeCreation(one.merge);
    }
    for (const End &end : ends) {
        if (end.node && end.node->network())
            MergeColorSpace::update(end.node, end.known);
    }
}
