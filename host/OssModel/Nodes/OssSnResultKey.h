#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>

class OssSnBaseNode;

/// What the pixels of an output depend on, as a short text: equal keys mean equal pictures.
namespace OssSnResultKey {

/// A hash over the types, attributes and states of the node and of everything it takes from, and
/// over how they are wired. Groups count by what is inside them, files by their bytes, and so do the
/// object's shape and the colour spaces. Where nodes stand and how they are called changes nothing. `isKnown` becomes false
/// when there are files that nobody has looked at yet: the key is another as soon as they are known.
OSSMODEL_EXPORT QString of(const OssSnBaseNode *node, const QString &outputPoint,
                           bool *isKnown = nullptr);

} // namespace OssSnResultKey
