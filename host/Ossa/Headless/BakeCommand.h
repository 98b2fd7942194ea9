#pragma once

#include <QString>
#include <QStringList>

/// What is to be baked, as the command line says it.
struct BakeOptions
{
    QString project;
    /// Names or paths of nodes. None: every channel of the objects' materials.
    QStringList nodes;
    /// "1001-1004,1011"; empty: every patch of the object.
    QString patches;
    int resolution = 2048;
    QString format; ///< suffix of a format that is written
    QString folder;
};

/// Writes the textures into the folder, one file for each node, or channel, and patch; colours as the
/// format has them, numbers as they are. A bar on stderr shows how
/// far it is; Ctrl+C ends it without a half file. Prints what was written. Returns an ExitCode.
int runBakeCommand(const BakeOptions &options);
