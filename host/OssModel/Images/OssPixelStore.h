#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QString>
#include <QStringList>

/// Files of pixels, and of meshes that a project keeps, by their content: a file is named by the hash
/// of its bytes, is never written again, and may be shared by any number of image sets, objects, undo
/// steps and generations of a project.
///
/// New ones go to "pixels/" in the configuration folder, so that they outlive a crash with the
/// copy of the project. Saving brings what the project needs into its "images/" and "meshes/", before
/// the document that names it.
namespace OssPixelStore {

/// Whether the text can be the name of a pixel file; what a document names may be hostile.
OSSMODEL_EXPORT bool isName(const QString &name);
/// The same for a kept mesh.
OSSMODEL_EXPORT bool isMeshName(const QString &name);
/// All names of both kinds in a text.
OSSMODEL_EXPORT QStringList namesIn(const QString &text);

/// Where files lie that no saved project has yet.
OSSMODEL_EXPORT QString newFolder();
/// Where the pixels of a project lie, and its meshes.
OSSMODEL_EXPORT QString folderOf(const QString &projectFolder);
OSSMODEL_EXPORT QString meshFolderOf(const QString &projectFolder);

/// A free path for a file that is about to be made.
OSSMODEL_EXPORT QString newPath();
OSSMODEL_EXPORT QString newMeshPath();
/// Whether the name is one that newPath() gives.
OSSMODEL_EXPORT bool isNewName(const QString &name);

/// Takes a finished file over from newPath() or newMeshPath(), under the name that it gets here. Any
/// thread.
OSSMODEL_EXPORT OssResult adopt(const QString &path, QString *name);

/// Folder of the open project, which may not have one; empty at first. GUI thread.
OSSMODEL_EXPORT QString projectFolder();
OSSMODEL_EXPORT void setProjectFolder(const QString &folder);

/// Where the file is: in the project's folder, or among the new ones. Empty when they are gone.
OSSMODEL_EXPORT QString find(const QString &name, const QString &projectFolder);

/// Copies the pixels of another project to the new ones. Fails when they are not there, or are not
/// those that the name stands for. Any thread.
OSSMODEL_EXPORT OssResult bring(const QString &name, const QString &projectFolder);

/// Copies into `folder` what of `names` is not there yet, from `projectFolder` or the new ones.
/// What is found nowhere is a line in the log: a project that lost pixels can still be saved.
OSSMODEL_EXPORT OssResult keep(const QStringList &names, const QString &projectFolder,
                               const QString &folder);

} // namespace OssPixelStore
