#include "ProgramRun.h"

#include <QProcess>
#include <QTemporaryDir>

ProgramRun ProgramRun::of(const QStringList &arguments, const QString &folder,
                          const QString &settings)
{
    return start(QStringLiteral(OSSA_PROGRAM), arguments, folder, settings);
}

ProgramRun ProgramRun::ofBatch(const QStringList &arguments)
{
    return start(QStringLiteral(OSSA_BATCH_PROGRAM), arguments, {}, {});
}

ProgramRun ProgramRun::start(const QString &path, const QStringList &arguments,
                             const QString &folder, const QString &settings)
{
    const QTemporaryDir fresh;
    const QString own = settings.isEmpty() ? fresh.path() : settings;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("OSSA_CONFIG_DIR"), own);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), fresh.path());
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(folder);
    program.start(path, arguments);
    const bool ended = program.waitForFinished(60000)
                       && program.exitStatus() == QProcess::NormalExit;
    return {ended ? program.exitCode() : -1, program.readAllStandardOutput(),
            program.readAllStandardError()};
}
