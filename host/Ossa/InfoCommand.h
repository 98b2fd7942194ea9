#pragma once

#include <QString>

/// Prints what is in the project: objects, node counts, images. A failure goes to stderr in one
/// line that names the file and the reason. Returns an ExitCode.
int runInfoCommand(const QString &project);
