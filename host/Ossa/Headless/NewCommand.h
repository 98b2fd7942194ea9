#pragma once

#include <QString>
#include <QStringList>

/// What "ossa new" was asked for.
struct NewOptions
{
    QString project;    ///< the folder to be made, NAME.ossa
    QStringList meshes; ///< files; without any the shape is taken
    QString shape;
    QString split; ///< "one", "objects" or "materials"
    QString uvSet;
    QString up; ///< "file", "y" or "z"
    double scale = 1.0;
    bool unwraps = false;
    int resolution = 2048;
    QString config;       ///< as OssColorSettings has it; a path counts from the current folder
    QString workingSpace; ///< empty: the configuration's
};

/// Writes a new project with the meshes as its objects, and prints what became of them. What is wrong
/// with a mesh goes to stderr; where one cannot be used no project is written. Returns an ExitCode.
int runNewCommand(const NewOptions &options);
