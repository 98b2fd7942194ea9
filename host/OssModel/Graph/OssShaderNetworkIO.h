#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QByteArray>
#include <QList>
#include <QString>

class OssNodeImages;
class OssShaderNetwork;
class OssSnBaseNode;
class QMimeData;

/// Nodes outside a network: as text, in node files (*.ong) and on the clipboard.
///
/// The text is an XML document without ids: the nodes with attributes, contexts and what is inside
/// groups, the wires among them, and the image sets that they work with, of which copies get ones of
/// their own. Wires from and to other nodes stay behind. Reading gives new
/// nodes with free names, all or none, in one undo step; where they stand is what the text says.
/// Viewers are neither written nor read, ports of groups only inside a group.
namespace OssShaderNetworkIO {

/// `note` is a remark for whoever reads the text; it may be empty. With `asType` the nodes come
/// back as nodes of that type, which must be able to hold what they are. Without `bringsTypes` nodes are
/// what is installed where they are read.
OSSMODEL_EXPORT QByteArray nodesToText(const QList<OssSnBaseNode *> &nodes,
                                       const QString &note = {}, const QString &asType = {},
                                       bool bringsTypes = true);
/// `source` names the origin in messages. On failure the network is as it was and the list empty.
OSSMODEL_EXPORT OssResult nodesFromText(OssShaderNetwork *network, const QByteArray &text,
                                        const QString &source, QList<OssSnBaseNode *> *inserted);

/// Reads the nodes into a network of their own, for which nothing is recorded.
OSSMODEL_EXPORT OssResult readNodes(OssShaderNetwork *read, const QByteArray &text,
                                    const QString &source, OssNodeImages *images);

/// The copies, in the order of the originals. With `select` they are the selected nodes afterwards.
OSSMODEL_EXPORT QList<OssSnBaseNode *> duplicateNodes(OssShaderNetwork *network,
                                                      const QList<OssSnBaseNode *> &nodes,
                                                      bool select);
/// Puts the nodes onto the system's clipboard, as text, so that they can be pasted anywhere.
OSSMODEL_EXPORT void copyNodesToClipboard(const QList<OssSnBaseNode *> &nodes, const QString &note);
/// Empty, with the reason in the log, when the clipboard holds no nodes.
OSSMODEL_EXPORT QList<OssSnBaseNode *> pasteNodesFromClipboard(OssShaderNetwork *network,
                                                               bool select);
/// The text of nodes that were copied, as it lies on the clipboard or is dragged; empty when there
/// is none in it.
OSSMODEL_EXPORT QByteArray nodesTextOf(const QMimeData *data);

OSSMODEL_EXPORT OssResult saveNodesToXmlFile(const QList<OssSnBaseNode *> &nodes,
                                             const QString &path);
OSSMODEL_EXPORT OssResult loadNodesFromXmlFile(OssShaderNetwork *network, const QString &path,
                                               QList<OssSnBaseNode *> *inserted);

} // namespace OssShaderNetworkIO
