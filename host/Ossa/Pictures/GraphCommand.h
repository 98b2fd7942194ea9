#pragma once

#include <QString>

/// Draws the node graph of the project's first object into `output`, a .png or .svg file, as the
/// Node Graph palette shows it when everything is framed. The plug-ins are loaded already. Says on
/// stdout what was written; a failure goes to stderr in one line that names the file and the
/// reason. Returns an ExitCode.
int runGraphCommand(const QString &project, const QString &output);
