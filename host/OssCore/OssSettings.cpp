#include "OssCore/OssSettings.h"

#include <QDir>
#include <QStandardPaths>

QString OssSettings::filePath()
{
    const QString folder = qEnvironmentVariable("OSSA_CONFIG_DIR");
    const QDir base(folder.isEmpty()
                        ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                              + QStringLiteral("/ossa")
                        : folder);
    return base.filePath(QStringLiteral("ossa.ini"));
}

OssSettings::OssSettings()
    : QSettings(filePath(), QSettings::IniFormat)
{
}
