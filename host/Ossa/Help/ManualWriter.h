#pragma once

#include "OssCore/Values/OssResult.h"

#include <QString>

/// Writes the manual into a folder as pages for a browser: plain files that need no server, with a
/// search over all of them. Pictures and examples that lie in the folder already are shown.
namespace ManualWriter {

OssResult write(const QString &folder);

} // namespace ManualWriter

/// Does so on the command line. Says on stdout what was written, or, on stderr, also what the texts speak
/// of and is not there. Returns an ExitCode.
int runManualCommand(const QString &folder);
