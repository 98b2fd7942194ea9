#pragma once

#include "OssCore/OssResult.h"
#include "OssCoreModules/OssCoreModules_export.h"

#include <QString>

#include <memory>

class OssProject;

/// Projects on disk: a folder "NAME.ossa" with project.xml and, beside it, the last good
/// generations of it, history/project.1.xml (the newest) to project.3.xml.
namespace OssProjectFile {

constexpr int FormatMajor = 1;
constexpr int FormatMinor = 0;
constexpr int Generations = 3;

/// The folder of a project, given the folder or the document in it.
OSSCOREMODULES_EXPORT QString folderOf(const QString &path);

/// Reads a project. Its nodes have their contexts and saved state, but are neither wired nor
/// registered: OssShaderNetwork::finishLoading() does that. Null with file and reason on any fault.
OSSCOREMODULES_EXPORT std::unique_ptr<OssProject> read(const QString &path, OssResult *result);

/// Writes the project's document. When it fails, the project on disk is the one that was there.
OSSCOREMODULES_EXPORT OssResult write(OssProject *project, const QString &folder);

} // namespace OssProjectFile
