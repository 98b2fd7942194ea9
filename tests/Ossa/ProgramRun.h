#pragma once

#include <QByteArray>
#include <QStringList>

/// One run of the program itself, without a display and with settings of its own.
struct ProgramRun
{
    int exitCode = -1; ///< -1: it crashed or did not end
    QByteArray out;
    QByteArray err;

    /// In the folder, or in the current one; with settings in a folder, or with none.
    static ProgramRun of(const QStringList &arguments, const QString &folder = {},
                         const QString &settings = {});
    /// Of the program without widgets.
    static ProgramRun ofBatch(const QStringList &arguments);

private:
    static ProgramRun start(const QString &path, const QStringList &arguments,
                            const QString &folder, const QString &settings);
};
