#pragma once

#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssModel/OssModel_export.h"

#include <QString>
#include <QStringList>

class OssEvMesh;

/// Where the shape of an object comes from: one of the shapes that need no file, or a mesh file and how
/// it is understood. A value.
struct OSSMODEL_EXPORT OssGeometrySource
{
    /// Name of a shape, or the file, which may be relative as OssFilePath has it.
    QString shape = usualShape();
    /// The object or material slot of the file, as `options.split` says.
    QString part;
    OssEvMeshFile::Options options;
    /// The mesh that the project keeps in case the file goes (OssPixelStore); not what the source is.
    QString kept;

    /// "plane", "sphere", "cube", "cylinder", "shaderBall".
    static QStringList shapes();

    /// What objects have as long as nobody gives them another.
    static QString usualShape() { return QStringLiteral("plane"); }

    /// For people, translated.
    static QString shapeTitle(const QString &shape);
    static bool isFile(const QString &shape);

    bool isFile() const { return isFile(shape); }

    /// Of the file, resolved; empty for a shape.
    QString path() const;
    /// The mesh of a shape, always the same one; null for a file. GUI thread.
    std::shared_ptr<const OssEvMesh> builtIn() const;
    /// A text for the file and how it is understood, without the part. Equal for what is read at once.
    QString fileKey() const;
    /// For people: the shape's title, or the file's name and the part.
    QString title() const;

    bool operator==(const OssGeometrySource &other) const
    {
        return shape == other.shape && part == other.part && options == other.options;
    }

    bool operator!=(const OssGeometrySource &other) const { return !(*this == other); }
};
