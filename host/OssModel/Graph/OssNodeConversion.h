#pragma once

#include "OssModel/Types/OssSnNodeType.h"

#include <QStringList>

#include <memory>

class OssSnBaseNode;

/// Turns nodes into nodes of another definition: of their own type, or of another type. Values and
/// wires are kept by name, with the picture they give: a value that was the old definition's default
/// stays what it is. Each is one undo step. `lost` gets a line for users for everything that could
/// not be kept, and the reason when nothing was done.
namespace OssNodeConversion {

/// In place: the node stays the same object. False when the type is null or of another class, and
/// for placeholders.
bool upgrade(OssSnBaseNode *node, const std::shared_ptr<const OssSnNodeType> &type,
             QStringList *lost);
/// Whether nodes can be converted to the type: those that belong to the network itself are not made.
bool canBecome(const OssSnNodeType &type);
/// By a new node with the name and the place of the old one. Where a wire's port has no namesake,
/// the main input and the main output stand in. Null when the node or the type belongs to the
/// network itself: viewers, ports of groups, protected nodes.
OssSnBaseNode *convert(OssSnBaseNode *node, const std::shared_ptr<const OssSnNodeType> &type,
                       QStringList *lost);

} // namespace OssNodeConversion
