#include "ProgramRun.h"

#include <QProcess>
#include <QTemporaryDir>

ProgramRun ProgramRun::of(const QStringList &arguments, const QString &folder)
{
    return start(QStringLiteral(OSSA_PROGRAM), arguments, folder);
}

ProgramRun ProgramRun::ofBatch(const QStringList &arguments)
{
    return start(QStringLiteral(OSSA_BATCH_PROGRAM), arguments, {});
}

ProgramRun ProgramRun::start(const QString &path, const QStringList &arguments,
                             const QString &folder)
{
    const QTemporaryDir settings;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("OSSA_CONFIG_DIR"), settings.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), settings.path());
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(folder);
    program.start(path, arguments);
    const bool ended = program.waitForFinished(60000)
                       && program.exitStatus() == QProcess::NormalExit;
    return {ended ? program.exitCode() : -1, program.readAllStandardOutput(),
            program.readAllStandardError()};
}
