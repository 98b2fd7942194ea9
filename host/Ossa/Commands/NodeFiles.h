#pragma once

#include "OssCore/Values/OssResult.h"

#include <QString>

/// Files of nodes as a file manager hands them over.
namespace NodeFiles {

/// By its name: *.ong, *.oma, *.opc.
bool isOne(const QString &path);
/// A new project, named after the file, with what is in it. A damaged file leaves it empty.
OssResult openAsProject(const QString &path);

} // namespace NodeFiles
