#include "OssCore/Program/OssSettings.h"

#include <QDir>
#include <QStandardPaths>

QString OssSettings::filePath()
{
    return QDir(folderPath()).filePath(QStringLiteral("ossa.ini"));
}

QString OssSettings::folderPath()
{
    const QString folder = qEnvironmentVariable("OSSA_CONFIG_DIR");
    return folder.isEmpty()
               ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                     + QStringLiteral("/ossa")
               : folder;
}

OssSettings::OssSettings()
    : QSettings(filePath(), QSettings::IniFormat)
{
}
