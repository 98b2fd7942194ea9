#pragma once

#include <QString>

/// Prints what is in the project: objects, node counts, images. A failure goes to stderr in one
/// line that names the file and the reason. `withState`: and its state hash, which is that of the
/// document only where the plug-ins that keep state with nodes are loaded. Returns an ExitCode.
int runInfoCommand(const QString &project, bool withState);
