#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>

/// Node types that make a whole material: those in the folders below "Materials", installed or the user's
/// own. They are told by their path keys.
namespace OssMaterialTypes {

OSSMODEL_EXPORT bool isMaterial(const QString &pathKey);
/// "Metal" of "Materials/Metal/Rusty Steel"; empty for what lies in no folder, or is no material.
OSSMODEL_EXPORT QString folderOf(const QString &pathKey);
/// The category "Materials/FOLDER".
OSSMODEL_EXPORT QString categoryOf(const QString &folder);

} // namespace OssMaterialTypes
