#include "OssModel/Graph/OssNodeWalker.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

#include <QSet>

namespace {

OssSnGroupNode *groupAround(const OssSnBaseNode *node, const QString &portTag)
{
    return node->hasTag(portTag) && node->network() ? node->network()->parentGroupNode() : nullptr;
}

} // namespace

namespace OssShaderNetworkUtils {

void OssNodeWalker::spread(QList<OssSnBaseNode *> open)
{
    QSet<OssSnBaseNode *> seen(open.cbegin(), open.cend());
    for (int i = 0; i < open.size(); ++i) {
        visit(open.at(i));
        const QList<OssSnBaseNode *> neighbours = next(open.at(i));
        for (OssSnBaseNode *neighbour : neighbours) {
            if (neighbour && !seen.contains(neighbour)) {
                seen.insert(neighbour);
                open.append(neighbour);
            }
        }
    }
}

QList<OssSnBaseNode *> OssNodeWalker::withInside(const QList<OssSnBaseNode *> &starts) const
{
    QList<OssSnBaseNode *> all = starts;
    for (const OssSnBaseNode *start : starts)
        all.append(insideOf(start));
    return all;
}

void OssNodeWalker::walk(OssSnBaseNode *start)
{
    if (start)
        spread(withInside({start}));
}

void OssNodeWalker::walkBeyond(const QList<OssSnBaseNode *> &starts)
{
    QSet<OssSnBaseNode *> seen{nullptr};
    QList<OssSnBaseNode *> beyond;
    const QList<OssSnBaseNode *> all = withInside(starts);
    for (const OssSnBaseNode *start : all) {
        const QList<OssSnBaseNode *> neighbours = next(start);
        for (OssSnBaseNode *neighbour : neighbours) {
            if (!seen.contains(neighbour)) {
                seen.insert(neighbour);
                beyond.append(neighbour);
            }
        }
    }
    spread(beyond);
}

QList<OssSnBaseNode *> OssNodeWalkerUpstream::next(const OssSnBaseNode *node) const
{
    QList<OssSnBaseNode *> sources;
    const auto follow = [&](const OssSnBaseNode *target, const OssSnBaseNode::InputPort &port) {
        if (!port.source || !enters(target, port.name))
            return;
        sources.append(port.source);
        const auto *group = throughGroups() ? qobject_cast<OssSnGroupNode *>(port.source) : nullptr;
        if (group)
            sources.append(group->outputNodeInside(port.sourceOutput));
    };
    for (const OssSnBaseNode::InputPort &port : node->inputPorts())
        follow(node, port);
    if (throughGroups()) {
        sources.append(node->unwiredSources());
        if (const OssSnGroupNode *around = groupAround(node, OssSnTags::input())) {
            for (const OssSnBaseNode::InputPort &port : around->inputPorts()) {
                if (port.name == node->name())
                    follow(around, port);
            }
        }
    }
    return sources;
}

QList<OssSnBaseNode *> OssNodeWalkerUpstream::insideOf(const OssSnBaseNode *node) const
{
    const auto *group = throughGroups() ? qobject_cast<const OssSnGroupNode *>(node) : nullptr;
    return group ? group->outputNodesInside() : QList<OssSnBaseNode *>();
}

QList<OssSnBaseNode *> OssNodeWalkerDownstream::next(const OssSnBaseNode *node) const
{
    QList<OssSnBaseNode *> targets;
    const auto follow = [&](const OssSnBaseNode *from, const QString &only) {
        for (const OssSnBaseNode::OutgoingConnection &wire : from->outgoingConnections()) {
            if ((!only.isEmpty() && wire.outputPoint != only) || !leaves(from, wire.outputPoint)
                || !enters(wire.target, wire.input))
                continue;
            targets.append(wire.target);
            const auto *group = throughGroups() ? qobject_cast<OssSnGroupNode *>(wire.target)
                                                : nullptr;
            if (group)
                targets.append(group->inputNodeInside(wire.input));
        }
    };
    follow(node, {});
    if (throughGroups()) {
        targets.append(node->unwiredTargets());
        if (const OssSnGroupNode *around = groupAround(node, OssSnTags::output()))
            follow(around, node->name());
    }
    return targets;
}

} // namespace OssShaderNetworkUtils
