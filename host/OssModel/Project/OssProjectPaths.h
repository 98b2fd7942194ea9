#pragma once

#include <QString>

class OssProject;

/// The paths of files that a project holds: of meshes, nodes and its colour configuration.
namespace OssProjectPaths {

/// They go on leading where they lead when the project comes to lie in `folder`, and those of meshes and
/// of the configuration are relative for what lies below that. Steps of the history.
void keep(OssProject *project, const QString &folder);

/// Of a project that was just read: its folder may be a copy, or bear another name than when it was
/// saved. Paths into the folder of old lead into this one where that has the file. No steps.
void adopt(OssProject *project);

} // namespace OssProjectPaths
