#pragma once

#include "OssModel/OssModel_export.h"

#include <QStringList>

class OssCustomAttribute;

/// The files that attributes of nodes name.
namespace OssNodeFiles {

/// As the attribute has them, patterns of patches too; an empty text for an image that is not known.
OSSMODEL_EXPORT QStringList of(const OssCustomAttribute &attribute);

} // namespace OssNodeFiles
