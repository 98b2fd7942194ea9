#include "OssCore/Program/OssResourceInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString findRoot()
{
    const QString named = qEnvironmentVariable("OSSA_ROOT");
    if (!named.isEmpty())
        return QDir(named).absolutePath();
    QDir folder(QCoreApplication::applicationDirPath());
    if (folder.exists(QStringLiteral("../share/ossa/NodeTypes")))
        return QDir::cleanPath(folder.filePath(QStringLiteral("../share/ossa")));
    // In a build folder: the source tree is one of the folders above.
    do {
        if (folder.exists(QStringLiteral("host/NodeTypes")))
            return folder.absolutePath();
    } while (folder.cdUp());
    return QDir::currentPath();
}

} // namespace

OssResourceInfo *OssResourceInfo::instance()
{
    static OssResourceInfo info;
    return &info;
}

OssResourceInfo::OssResourceInfo()
    : m_root(findRoot())
    , m_isInstalled(QDir(QCoreApplication::applicationDirPath())
                        .exists(QStringLiteral("../share/ossa/NodeTypes")))
{
}

QString OssResourceInfo::iconPath() const
{
    const QString source = m_root + QStringLiteral("/host/Icons");
    return QFileInfo::exists(source) ? source : m_root + QStringLiteral("/Icons");
}

QString OssResourceInfo::nodeTypePath() const
{
    const QString source = m_root + QStringLiteral("/host/NodeTypes");
    return QFileInfo::exists(source) ? source : m_root + QStringLiteral("/NodeTypes");
}

QString OssResourceInfo::materialPath() const
{
    const QString source = m_root + QStringLiteral("/host/Materials");
    return QFileInfo::exists(source) ? source : m_root + QStringLiteral("/Materials");
}

QString OssResourceInfo::exportPresetPath() const
{
    const QString source = m_root + QStringLiteral("/host/ExportPresets");
    return QFileInfo::exists(source) ? source : m_root + QStringLiteral("/ExportPresets");
}

QString OssResourceInfo::examplePath() const
{
    return m_root + QStringLiteral("/examples");
}

QString OssResourceInfo::manualSourcePath() const
{
    return m_root + QStringLiteral("/docs/manual");
}

QString OssResourceInfo::manualPath() const
{
    const QString installed = m_root + QStringLiteral("/manual");
    return QFileInfo::exists(installed) ? installed
                                        : QDir::cleanPath(QCoreApplication::applicationDirPath()
                                                          + QStringLiteral("/../manual"));
}

QString OssResourceInfo::pluginPath() const
{
    const QString named = qEnvironmentVariable("OSSA_PLUGIN_DIR");
    if (!named.isEmpty())
        return QDir(named).absolutePath();
    const QString below = m_isInstalled ? QStringLiteral(OSSA_PLUGINS_FROM_PROGRAM)
                                        : QStringLiteral("../plugins");
    return QDir::cleanPath(QDir(QCoreApplication::applicationDirPath()).filePath(below));
}

QStringList OssResourceInfo::extensionPaths()
{
    QStringList named{QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
                      + QStringLiteral("/ossa/plugins")};
    named += qEnvironmentVariable("OSSA_PLUGIN_PATH")
                 .split(QDir::listSeparator(), Qt::SkipEmptyParts);
    QStringList paths;
    for (const QString &path : qAsConst(named)) {
        const QString clean = QDir::cleanPath(path);
        if (QDir::isAbsolutePath(path) && QFileInfo(clean).isDir() && !paths.contains(clean))
            paths.append(clean);
    }
    return paths;
}

QStringList OssResourceInfo::nodeTypePaths() const
{
    QStringList paths{nodeTypePath(), materialPath()};
    for (const QString &path : extensionPaths()) {
        const QString types = path + QStringLiteral("/NodeTypes");
        if (QFileInfo(types).isDir())
            paths.append(types);
    }
    return paths;
}
