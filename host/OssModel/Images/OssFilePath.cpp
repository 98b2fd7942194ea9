#include "OssModel/Images/OssFilePath.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssCustomAttribute.h"
#include "OssModel/Images/OssPixelStore.h"

#include <QDir>
#include <QFileInfo>

QString OssFilePath::base()
{
    const QString project = OssPixelStore::projectFolder();
    return project.isEmpty() ? QString() : QFileInfo(project).absolutePath();
}

QString OssFilePath::resolved(const QString &path)
{
    const QString folder = base();
    if (path.isEmpty() || folder.isEmpty() || QDir::isAbsolutePath(path))
        return path;
    return QDir::cleanPath(QDir(folder).filePath(path));
}

QString OssFilePath::shortened(const QString &path, const QString &folder)
{
    const QString below = folder
                          + (folder.endsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/"));
    const QString clean = QDir::cleanPath(path);
    return !folder.isEmpty() && clean.startsWith(below) ? clean.mid(below.size()) : path;
}

bool OssFilePath::isHeldBy(const OssCustomAttribute &attribute)
{
    const OssAttributeKind *kind = OssAttributeKind::of(attribute);
    return kind && kind->name == QLatin1String("file");
}

QVariant OssFilePath::valueOf(const OssCustomAttribute &attribute)
{
    return isHeldBy(attribute) ? QVariant(resolved(attribute.value().toString()))
                               : attribute.value();
}
