#pragma once

#include <QString>
#include <QStringList>

/// What "ossa run" was asked for.
struct RunOptions
{
    QString script;
    QString project; ///< opened before the script starts; empty for none
    QStringList arguments;
};

/// Runs a script without a window. The exit code is the script's; 130 when the user stopped it.
int runRunCommand(const RunOptions &options);

/// Writes the type stubs of the module "ossa" into a file, or, without one, to standard output.
int runStubsCommand(const QString &path);
