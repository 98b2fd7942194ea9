#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>
#include <QStringList>

class OssCustomAttribute;
class OssSnBaseNode;

/// The files that attributes of nodes name.
namespace OssNodeFiles {

/// As the attribute has them, patterns of patches too; an empty text for an image that is not known.
OSSMODEL_EXPORT QStringList of(const OssCustomAttribute &attribute);

/// What "Automatic" in an attribute of an image node comes to for its file: a colour space, or "Data".
/// Empty for other attributes, and where there is no such file. Looks at the disk.
OSSMODEL_EXPORT QString automaticSpace(const OssSnBaseNode *node, const QString &attribute);

} // namespace OssNodeFiles
