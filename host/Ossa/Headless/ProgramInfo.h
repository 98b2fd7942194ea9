#pragma once

#include <QString>
#include <QVector>

/// A plug-in as `ossa info --program` tells of it.
struct ProgramInfoPlugin
{
    QString file;
    QString text; ///< name and version, or why it cannot be used
};

/// Tells on stdout which program this is, and what was loaded from where.
int runProgramInfo(const QVector<ProgramInfoPlugin> &plugins);
