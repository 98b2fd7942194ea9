#pragma once

#include "OssModel/Export/OssExportPreset.h"

/// The presets that can be chosen: those of the program, and the user's own, which come first and
/// replace one of the same name. Each is a file, and read when it is asked for.
namespace OssExportPresets {

struct Entry
{
    OssExportPreset preset;
    QString path;
    bool isOwn = false;
};

/// By name. What cannot be read is left out, with a line in the log.
OSSMODEL_EXPORT QVector<Entry> all();
/// By its name, or by the path of a file. Fails, with the names there are.
OSSMODEL_EXPORT OssResult find(const QString &nameOrPath, OssExportPreset *preset);
/// Keeps one as the user's own.
OSSMODEL_EXPORT OssResult save(const OssExportPreset &preset);
/// Of the user's own.
OSSMODEL_EXPORT OssResult remove(const QString &name);
/// "ExportPresets" in the configuration folder.
OSSMODEL_EXPORT QString ownFolder();

} // namespace OssExportPresets
