#pragma once

#include "OssModel/OssModel_export.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

/// Removes files of pixels and kept meshes that no document names any more: what was baked and baked
/// again, or undone and never saved. Documents are a project's own, its generations, and copies of
/// unsaved work. A history that lives only in a running session may name others, so files are left
/// alone for KeptDays after they were made. Any thread.
namespace OssPixelCleanup {

constexpr int KeptDays = 14;

/// Those of the folder that none of the documents names and that are older than `before`. Nothing
/// when a document cannot be read. The number of files removed.
OSSMODEL_EXPORT int removeForgotten(const QString &folder, const QStringList &documents,
                                    const QDateTime &before);

/// In the project's "images/" and "meshes/".
OSSMODEL_EXPORT int cleanProject(const QString &projectFolder);
/// In "pixels/" of the configuration folder.
OSSMODEL_EXPORT int cleanNewPixels();

} // namespace OssPixelCleanup
