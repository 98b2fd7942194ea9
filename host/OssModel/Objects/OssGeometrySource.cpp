#include "OssModel/Objects/OssGeometrySource.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Images/OssFilePath.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace {

struct Shape
{
    const char *name;
    const char *title;
    std::shared_ptr<const OssEvMesh> (*make)();
};

const std::array<Shape, 5> Table{{
    {"plane", QT_TRANSLATE_NOOP("OssGeometrySource", "Plane"), OssEvShapes::plane},
    {"sphere", QT_TRANSLATE_NOOP("OssGeometrySource", "Sphere"), OssEvShapes::sphere},
    {"cube", QT_TRANSLATE_NOOP("OssGeometrySource", "Cube"), OssEvShapes::cube},
    {"cylinder", QT_TRANSLATE_NOOP("OssGeometrySource", "Cylinder"), OssEvShapes::cylinder},
    {"shaderBall", QT_TRANSLATE_NOOP("OssGeometrySource", "Shader Ball"), OssEvShapes::shaderBall},
}};

const Shape *find(const QString &name)
{
    const auto found = std::find_if(Table.begin(), Table.end(), [&name](const Shape &shape) {
        return name == QLatin1String(shape.name);
    });
    return found == Table.end() ? nullptr : &*found;
}

} // namespace

QStringList OssGeometrySource::shapes()
{
    QStringList names;
    for (const Shape &shape : Table)
        names.append(QLatin1String(shape.name));
    return names;
}

QString OssGeometrySource::shapeTitle(const QString &shape)
{
    const Shape *known = find(shape);
    return known ? QCoreApplication::translate("OssGeometrySource", known->title) : shape;
}

bool OssGeometrySource::isFile(const QString &shape)
{
    return !shape.isEmpty() && !find(shape);
}

QString OssGeometrySource::path() const
{
    return isFile() ? OssFilePath::resolved(shape) : QString();
}

std::shared_ptr<const OssEvMesh> OssGeometrySource::builtIn() const
{
    if (isFile())
        return nullptr;
    // Made once: whoever shows it tells by the mesh whether it is another.
    static std::array<std::shared_ptr<const OssEvMesh>, Table.size()> made;
    const Shape *known = find(shape);
    const Shape &chosen = known ? *known : Table.front();
    std::shared_ptr<const OssEvMesh> &mesh = made[std::size_t(&chosen - Table.data())];
    if (!mesh)
        mesh = chosen.make();
    return mesh;
}

QString OssGeometrySource::fileKey() const
{
    return QStringLiteral("%1\n%2 %3 %4 %5 %6")
        .arg(path())
        .arg(int(options.split))
        .arg(int(options.up))
        .arg(options.scale, 0, 'g', 17)
        .arg(int(options.unwraps))
        .arg(QString::fromStdString(options.uvSet));
}

QString OssGeometrySource::title() const
{
    if (!isFile())
        return shapeTitle(shape);
    const QString file = QFileInfo(shape).fileName();
    return part.isEmpty() ? file : file + QStringLiteral(": ") + part;
}
