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

void listPresets(std::FILE *to)
{
    const QVector<OssExportPresets::Entry> entries = OssExportPresets::all();
    for (const OssExportPresets::Entry &entry : entries)
        std::fprintf(to, "%-28s %s\n", qPrintable(entry.preset.name),
                     qPrintable(entry.preset.description));
}

/// What is to be added to a line that leaves it out.
int askForMore(const ExportOptions &options)
{
    const bool hasFolder = !options.choices.folder.isEmpty();
    std::fprintf(
        stderr,
        "ossa: say %s: ossa export \"%s\" --preset \"NAME\" -o FOLDER, or -o NAME.glb for one "
        "glTF file. Presets are:\n",
        hasFolder                  ? "which preset"
        : options.preset.isEmpty() ? "which preset, and where to"
                                   : "where to",
        qPrintable(options.project));
    listPresets(stderr);
    return ExitCode::Usage;
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
        return failCommand(planned.error());
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
                  : failCommand(result.error().replace(QLatin1Char('\n'), QLatin1String("; ")));
}

int runExportCommand(const ExportOptions &options)
{
    if (options.listsPresets) {
        listPresets(stdout);
        return ExitCode::Success;
    }
    const bool isGltf = !options.choices.file.isEmpty();
    if (!isGltf && (options.preset.isEmpty() || options.choices.folder.isEmpty()))
        return askForMore(options);
    OssExportPreset preset;
    const OssResult found = isGltf ? OssResult() : OssExportPresets::find(options.preset, &preset);
    if (!found)
        return failCommand(found.error());
    const OssResult opened = OssProjectManager::instance()->openProject(options.project);
    return opened ? exportOpenProject(preset, options.choices, options.listsFiles)
                  : failCommand(opened.error());
}
