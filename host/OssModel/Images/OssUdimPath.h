#pragma once

#include "OssModel/OssModel_export.h"

#include <QList>
#include <QString>

/// Paths of images that have a file for each patch: OssEvUdim for those who have Qt's strings.
namespace OssUdimPath {

/// Whether a placeholder stands for the number of the patch.
OSSMODEL_EXPORT bool isPattern(const QString &path);
/// The path with the placeholder for the number of a patch; the path itself where it has none.
OSSMODEL_EXPORT QString pattern(const QString &path);
/// The file of a patch.
OSSMODEL_EXPORT QString file(const QString &pattern, int patch);
/// Patches whose files exist, ascending; none when it is no pattern.
OSSMODEL_EXPORT QList<int> patches(const QString &pattern);

} // namespace OssUdimPath
