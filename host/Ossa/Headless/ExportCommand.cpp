#include "Ossa/Headless/ExportCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/Interrupt.h"
#include "Ossa/Headless/ProgressBar.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Export/OssExportPresets.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QFileInfo>

#include <cstdio>

namespace {

int fail(const QString &reason)
{
    std::fprintf(stderr, "ossa: %s\n", qPrintable(reason));
    return ExitCode::Failure;
}

void listPresets()
{
    const QVector<OssExportPresets::Entry> entries = OssExportPresets::all();
    for (const OssExportPresets::Entry &entry : entries)
        std::printf("%-28s %s\n", qPrintable(entry.preset.name),
                    qPrintable(entry.preset.description));
}

} // namespace

int exportOpenProject(const OssExportPreset &preset, const OssExportOptions &choices,
                      bool listsFiles)
{
    OssExportPlan plan;
    const OssProject *project = OssProjectManager::instance()->currentProject();
    OssExportPlan::waitForMeshes(project);
    const OssResult planned = choices.file.isEmpty()
                                  ? OssExportPlan::make(project, preset, choices, &plan)
                                  : OssExportPlan::makeGltf(project, choices, &plan);
    if (!planned)
        return fail(planned.error());
    for (const QString &note : qAsConst(plan.notes))
        std::fprintf(stderr, "ossa: %s\n", qPrintable(note));
    for (const OssExportFile &file : qAsConst(plan.files)) {
        if (listsFiles)
            std::printf("%s\t%d\t%s\t%s\t%s\n", qPrintable(file.path), file.resolution,
                        qPrintable(file.depthText()), qPrintable(file.spaceText()),
                        qPrintable(file.contentText()));
    }
    if (listsFiles)
        return ExitCode::Success;
    Interrupt::catchSignals();
    OssExportManager *exports = OssExportManager::instance();
    OssResult result;
    {
        const ProgressBar bar;
        result = exports->run(plan, [&bar](const OssExportJob &job) {
            bar.show(QFileInfo(job.currentFile()).fileName(), job.thousandths(), 1000);
            return !Interrupt::isRequested();
        });
    }
    const QStringList written = exports->job() ? exports->job()->written() : QStringList();
    for (const QString &path : written)
        std::printf("%s\n", qPrintable(path));
    if (Interrupt::isRequested())
        return Interrupt::exitCode;
    return result ? int(ExitCode::Success)
                  : fail(result.error().replace(QLatin1Char('\n'), QLatin1String("; ")));
}

int runExportCommand(const ExportOptions &options)
{
    if (options.listsPresets) {
        listPresets();
        return ExitCode::Success;
    }
    OssExportPreset preset;
    const OssResult found = options.choices.file.isEmpty()
                                ? OssExportPresets::find(options.preset, &preset)
                                : OssResult();
    if (!found)
        return fail(found.error());
    const OssResult opened = OssProjectManager::instance()->openProject(options.project);
    return opened ? exportOpenProject(preset, options.choices, options.listsFiles)
                  : fail(opened.error());
}
