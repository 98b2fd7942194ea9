#pragma once

#include "OssCore/Documents/OssSerializer.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QString>

#include <memory>

class OssProject;

/// Projects on disk: a folder "NAME.ossa" with project.xml and, in history/, the last good
/// generations of it (OssProjectHistory).
namespace OssProjectFile {

constexpr int FormatMajor = 1;
constexpr int FormatMinor = 0;

/// The folder of a project, given the folder or the document in it.
OSSMODEL_EXPORT QString folderOf(const QString &path);

/// project.xml in a project's folder.
OSSMODEL_EXPORT QString documentPath(const QString &folder);

/// Reads a project. Its nodes have their contexts and saved state, but are neither wired nor
/// registered: OssShaderNetwork::finishLoading() does that. Null with file and reason on any fault.
OSSMODEL_EXPORT std::unique_ptr<OssProject> read(const QString &path, OssResult *result);

/// Writes the project's document. When it fails, the project on disk is the one that was there.
OSSMODEL_EXPORT OssResult write(OssProject *project, const QString &folder);

/// Writes the document's text, with further attributes at its first element. False on failure.
bool writeText(OssSerializer &serializer, OssProject *project,
               const OssSerializer::Attributes &attributes = {});

/// Whether the text is a whole document: the last look before an old one is given up. `fileName` is
/// for the message only. Any thread.
OssResult checkText(const QByteArray &document, const QString &fileName);

} // namespace OssProjectFile
