#include "OssCore/Program/OssSettings.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryFile>

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

OssResult OssSettings::checkFolder()
{
    const QString folder = folderPath();
    QTemporaryFile trial(QDir(folder).filePath(QStringLiteral("trial")));
    // A few bytes: a file can be made on a disk that is full.
    if (QDir().mkpath(folder) && trial.open() && trial.write("trial\n") > 0 && trial.flush())
        return {};
    const QString reason = trial.error() == QFileDevice::NoError ? tr("it cannot be made")
                                                                 : trial.errorString();
    return OssResult::failure(
        tr("Nothing can be kept in \"%1\": %2").arg(QDir::toNativeSeparators(folder), reason));
}

OssSettings::OssSettings()
    : QSettings(filePath(), QSettings::IniFormat)
{
}
