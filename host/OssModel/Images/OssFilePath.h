#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>
#include <QVariant>

class OssCustomAttribute;

/// Paths of files that attributes hold. One that is not absolute counts from the folder in which the
/// open project lies, so that a project can be moved along with what stands beside it. GUI thread.
namespace OssFilePath {

/// The folder that relative paths count from; empty before the project was ever saved.
OSSMODEL_EXPORT QString base();
/// Where the file is: absolute, unless there is no base yet. Empty for an empty path.
OSSMODEL_EXPORT QString resolved(const QString &path);
/// The shortest that leads there: relative for what is below the folder.
OSSMODEL_EXPORT QString shortened(const QString &path, const QString &folder = base());
/// Whether it is an attribute that holds a path.
OSSMODEL_EXPORT bool isHeldBy(const OssCustomAttribute &attribute);
/// Of an attribute that holds a path, the path resolved; any other value as it is.
OSSMODEL_EXPORT QVariant valueOf(const OssCustomAttribute &attribute);

} // namespace OssFilePath
