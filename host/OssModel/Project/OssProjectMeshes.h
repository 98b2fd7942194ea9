#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/Objects/OssGeometrySource.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class OssGeoEntity;
class OssMeshReader;
class OssProject;

/// Meshes that come into the open project, take the place of others and are found again. Each is one
/// step. GUI thread.
namespace OssProjectMeshes {

/// The path as the project holds it: relative where it can be.
OSSMODEL_EXPORT OssGeometrySource shortened(const OssGeometrySource &source);

/// "one", "objects" or "materials" as scripts and the command line have it; anything else is one.
OSSMODEL_EXPORT OssEvMeshFile::Options::Split splitOf(const QString &word);

/// What an object of that source is best called.
OSSMODEL_EXPORT QString nameFor(const OssGeometrySource &source);

/// Makes an object of each part that was read and can be used; fails, in words, where none can.
/// `replaces`: the first part becomes this object's shape instead; null for none.
OSSMODEL_EXPORT OssResult add(OssProject *project, const OssMeshReader &read,
                              OssGeoEntity *replaces = nullptr,
                              QList<OssGeoEntity *> *made = nullptr);

/// Gives the object another shape; wires, paint and bakes stay. Fails where the shape's mesh cannot
/// be used, and changes nothing then. `changes` tells in words what is other. Handles events meanwhile.
OSSMODEL_EXPORT OssResult replace(OssGeoEntity *entity, const OssGeometrySource &source,
                                  const QString &title, QString *changes = nullptr);

/// A file that the project names and that is not there or cannot be read.
struct MissingFile
{
    enum Kind { Mesh, Image };

    Kind kind;
    QString path;      ///< absolute, or a pattern of patches
    QStringList users; ///< names of the objects, nodes or images that name it
};

/// Meshes first. Looks at the disk.
OSSMODEL_EXPORT QList<MissingFile> missing(const OssProject *project);

/// Where files of the same names lie in or below the folder: new paths by old ones. Looks at the disk.
OSSMODEL_EXPORT QMap<QString, QString> findIn(const QList<MissingFile> &files,
                                              const QString &folder);

/// Has all that names an old path name the new one. One step. The number of those that were changed.
OSSMODEL_EXPORT int relink(OssProject *project, const QMap<QString, QString> &paths);

/// A line for each object whose mesh is missing or has faults: what is wrong and what to do.
struct Trouble
{
    OssGeoEntity *entity;
    bool isMissing;
    QString text;

    bool operator==(const Trouble &other) const
    {
        return entity == other.entity && isMissing == other.isMissing && text == other.text;
    }
};

OSSMODEL_EXPORT QList<Trouble> troubles(const OssProject *project);

} // namespace OssProjectMeshes
