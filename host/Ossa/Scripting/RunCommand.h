#pragma once

#include "Ossa/Headless/CommandLine.h"

/// Runs a script without a window. The exit code is the script's; 130 when the user stopped it.
int runRunCommand(const RunOptions &options);

/// Writes the type stubs of the module "ossa" into a file, or, without one, to standard output.
int runStubsCommand(const QString &path);
