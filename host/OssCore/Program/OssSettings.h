#pragma once

#include "OssCore/OssCore_export.h"
#include "OssCore/Values/OssResult.h"

#include <QSettings>

/// The user's settings store; all instances see the same one. Kept in an INI file in the user's
/// configuration folder, or in the folder that the environment variable OSSA_CONFIG_DIR names.
class OSSCORE_EXPORT OssSettings : public QSettings
{
    Q_OBJECT

public:
    OssSettings();

    static QString filePath();
    /// The user's configuration folder, in which the file lies.
    static QString folderPath();
    /// Whether anything can be kept in that folder, tried out by making it and a file there.
    static OssResult checkFolder();
};
