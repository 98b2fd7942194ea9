#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QList>
#include <QString>

class OssImageSet;
struct OssBakeReport;
class OssSnBakePointNode;
class OssSnBaseNode;
class OssSnImageSetNodeBase;

/// Questions and operations over several nodes of a network.
namespace OssShaderNetworkUtils {

/// What a wire dropped by hand does: connects, replacing what fed the input; a null source
/// disconnects. One undo step. False, with the reason in the log, when it cannot be.
OSSMODEL_EXPORT bool setInputNodeBatchConnectable(OssSnBaseNode *node, const QString &input,
                                                  OssSnBaseNode *source, const QString &outputPoint,
                                                  bool record, bool notify, bool acrossNetworks,
                                                  bool batch);

/// The node as one with images of its own; null when it has none.
OSSMODEL_EXPORT OssSnImageSetNodeBase *asTrueImageSetNode(OssSnBaseNode *node);

/// The node as a bake point; null for others, multi-channel ones included.
OSSMODEL_EXPORT OssSnBakePointNode *asTrueBakePointNode(OssSnBaseNode *node);

/// The images that the node reads, its own or those of its geo-channel; null when there are none.
OSSMODEL_EXPORT OssImageSet *imageSetOf(const OssSnBaseNode *node);
/// Whether they have pixels, so that nothing that feeds the node matters.
OSSMODEL_EXPORT bool readsPixels(const OssSnBaseNode *node);

/// Bakes what feeds each of the bake points into its images: of those that have a result, the ones
/// that are out of date when `updateOutOfDate`, of the others all when `bakeEmpty`. Sources first,
/// with progress; one undo step. One that cannot be baked keeps no other from it: the reasons are told
/// together at the end. Stopped by the user it is cancelled, and what was baked until then stays.
/// `report` may be null. Waits without blocking the interface.
OSSMODEL_EXPORT OssResult bakeBakePoints(const QList<OssSnBakePointNode *> &nodes,
                                         bool updateOutOfDate, bool bakeEmpty,
                                         OssBakeReport *report = nullptr);

/// The same for all of them, whether they are out of date or not.
OSSMODEL_EXPORT OssResult bakeAgain(const QList<OssSnBakePointNode *> &nodes,
                                    OssBakeReport *report = nullptr);

/// The bake points among the nodes, and of multi-channel ones those whose stream is fed; each once.
OSSMODEL_EXPORT QList<OssSnBakePointNode *> bakePointsAmong(const QList<OssSnBaseNode *> &nodes);

/// Bake points that the nodes take from, resp. feed, through groups too; each once.
OSSMODEL_EXPORT QList<OssSnBakePointNode *> getUpstreamBakePointNodes(
    const QList<OssSnBaseNode *> &nodes);
OSSMODEL_EXPORT QList<OssSnBakePointNode *> getDownstreamBakePointNodes(
    const QList<OssSnBaseNode *> &nodes);

/// Wires every output of the source to the free input of the target that bears its name. One undo
/// step; false when none does.
OSSMODEL_EXPORT bool batchConnect(OssSnBaseNode *source, OssSnBaseNode *target);

/// The input that carries on the stream of a node: the base of a merge, else the first connected
/// preferred one, else the first connected one. Empty when there is none.
OSSMODEL_EXPORT QString streamInput(const OssSnBaseNode *node);
/// The same for one output of a node: each output of a multi-channel node has a stream of its own.
OSSMODEL_EXPORT QString streamInput(const OssSnBaseNode *node, const QString &outputPoint);

/// Everything the node takes from, resp. feeds; each once, nearest first. `wholeGraph` follows all
/// wires, otherwise only the one stream that runs through the node. With `throughGroups` the walk
/// goes on inside groups and in the network around, and from one end of a teleport to the other.
OSSMODEL_EXPORT QList<OssSnBaseNode *> getUpstreamNodes(OssSnBaseNode *node, bool throughGroups,
                                                        bool wholeGraph, bool includeStart);
OSSMODEL_EXPORT QList<OssSnBaseNode *> getDownstreamNodes(OssSnBaseNode *node, bool throughGroups,
                                                          bool wholeGraph);
/// Of all the nodes together, in one walk; one of them where another takes from it, resp. feeds it.
OSSMODEL_EXPORT QList<OssSnBaseNode *> getUpstreamNodes(const QList<OssSnBaseNode *> &nodes,
                                                        bool throughGroups, bool wholeGraph);
OSSMODEL_EXPORT QList<OssSnBaseNode *> getDownstreamNodes(const QList<OssSnBaseNode *> &nodes,
                                                          bool throughGroups, bool wholeGraph);

/// Nodes that feed the same node are siblings, in the order of its inputs; where nothing follows,
/// those fed by the same one, in the order in which they were wired. Null at either end.
OSSMODEL_EXPORT OssSnBaseNode *nextSibling(const OssSnBaseNode *node);
OSSMODEL_EXPORT OssSnBaseNode *prevSibling(const OssSnBaseNode *node);

/// What lies on any way from one of the nodes to another one, without them.
OSSMODEL_EXPORT QList<OssSnBaseNode *> nodesBetween(const QList<OssSnBaseNode *> &nodes);

} // namespace OssShaderNetworkUtils
