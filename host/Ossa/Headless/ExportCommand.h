#pragma once

#include "OssModel/Export/OssExportPlan.h"

/// What is to be exported, as the command line says it.
struct ExportOptions
{
    QString project;
    QString preset; ///< name, or path of a file; none for one glTF file
    OssExportOptions choices;
    bool listsPresets = false;
    bool listsFiles = false; ///< tells what would be written, and writes nothing
};

/// Writes the textures of the project's materials. A bar on stderr shows how far it is; Ctrl+C ends it
/// without a half file. Prints what was written, notes on stderr. Returns an ExitCode.
int runExportCommand(const ExportOptions &options);

/// The same with a preset at hand, of the open project. Choices of one file need none.
int exportOpenProject(const OssExportPreset &preset, const OssExportOptions &choices,
                      bool listsFiles = false);
