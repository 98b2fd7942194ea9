#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

#include <QString>

class OssSnBaseNode;

/// How streams run through nodes. A node without streams has the stream "": its inputs are "Base"
/// and "Over", or "Input"; those of a multi-channel node bear the stream's name before that,
/// "Roughness Base". Outputs bear the stream's name alone.
namespace OssLayerStreamUtils {

OSSCOREMODULES_EXPORT bool isMergeNode(const OssSnBaseNode *node);
/// Whether the input of a merge node carries what the others are laid over.
OSSCOREMODULES_EXPORT bool isBaseInput(const OssSnBaseNode *node, const QString &input);
OSSCOREMODULES_EXPORT QString baseInputName(const QString &stream);
OSSCOREMODULES_EXPORT QString overInputName(const QString &stream);

/// Of nodes that do not lay one over another.
OSSCOREMODULES_EXPORT QString inputName(const QString &stream);

} // namespace OssLayerStreamUtils
