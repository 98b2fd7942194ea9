#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

#include <QList>
#include <QString>

class OssSnBaseNode;
class OssSnImageSetNodeBase;

/// Questions and operations over several nodes of a network.
namespace OssShaderNetworkUtils {

/// What a wire dropped by hand does: connects, replacing what fed the input; a null source
/// disconnects. One undo step. False, with the reason in the log, when it cannot be.
OSSCOREMODULES_EXPORT bool setInputNodeBatchConnectable(OssSnBaseNode *node, const QString &input,
                                                        OssSnBaseNode *source,
                                                        const QString &outputPoint, bool record,
                                                        bool notify, bool replace, bool batch);

/// The node as one with images of its own; null when it has none.
OSSCOREMODULES_EXPORT OssSnImageSetNodeBase *asTrueImageSetNode(OssSnBaseNode *node);

/// Everything the node takes from, resp. feeds, without the node; each once, nearest first.
OSSCOREMODULES_EXPORT QList<OssSnBaseNode *> getUpstreamNodes(OssSnBaseNode *node);
OSSCOREMODULES_EXPORT QList<OssSnBaseNode *> getDownstreamNodes(OssSnBaseNode *node);

} // namespace OssShaderNetworkUtils
