#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>

class OssSnBaseNode;

/// How streams run through nodes. A node without streams has the stream "": its inputs are "Base"
/// and "Over", or "Input"; those of a multi-channel node bear the stream's name before that,
/// "Roughness Base". Outputs bear the stream's name alone.
namespace OssLayerStreamUtils {

OSSMODEL_EXPORT bool isMergeNode(const OssSnBaseNode *node);
/// Whether the input of a merge node carries what the others are laid over.
OSSMODEL_EXPORT bool isBaseInput(const OssSnBaseNode *node, const QString &input);
OSSMODEL_EXPORT QString baseInputName(const QString &stream);
OSSMODEL_EXPORT QString overInputName(const QString &stream);

/// Of nodes that do not lay one over another.
OSSMODEL_EXPORT QString inputName(const QString &stream);

} // namespace OssLayerStreamUtils
